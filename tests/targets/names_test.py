"""The two targets run the same tests, but for those that the README's table names with a reason.

usage: names_test.py README NATIVE_FOLDER UNIT_TESTS MODULE_TESTS LAUNCHER..."""
import fnmatch
import os
import re
import subprocess
import sys

NOT_BUILT = 77
readme, native, unit_tests, module_tests, *launcher = sys.argv[1:]


def tests(*command):
    """Suite.Name of each test of a program; a family's parameters count, their printed values do not."""
    text = subprocess.run([*command, "--gtest_list_tests"], check=True, stdout=subprocess.PIPE, text=True).stdout
    names, suite = set(), ""
    for line in text.splitlines():
        line = line.split("  #")[0].rstrip()
        if line.endswith(".") and not line.startswith(" "):
            suite = line
        elif line.startswith("  "):
            names.add(suite + line.strip())
    return names


def excused():
    """(pattern, target) of each row of the README's table of tests that run on one target only, but for those of the
    command line, which say so themselves."""
    with open(readme, encoding="utf-8") as file:
        rows = re.findall(r"^\| (`[^|]+`) \| (native|Windows) \| \S.* \|$", file.read(), re.MULTILINE)
    return [(pattern, target) for cell, target in rows for pattern in re.findall(r"`([\w./*]+)`", cell)
            if not pattern.startswith("host.")]


def unexcused(names, target, rows, used):
    left = []
    for name in sorted(names):
        hits = [row for row in rows if row[1] == target and fnmatch.fnmatchcase(name, row[0])]
        used.update(hits)
        left += [] if hits else [name]
    return left


faults, rows, used = [], excused(), set()
for program, windows_program in (("unit_tests", unit_tests), ("module_tests", module_tests)):
    if not os.path.exists(os.path.join(native, program)):
        print(f"{program} of the native target is not built")
        sys.exit(NOT_BUILT)
    ours = tests(os.path.join(native, program))
    theirs = tests(*launcher, windows_program)
    assert ours and theirs
    print(f"{program}: {len(ours)} tests native, {len(theirs)} on Windows, {len(ours & theirs)} of them the same")
    faults += [f"{program}: only native: {name}" for name in unexcused(ours - theirs, "native", rows, used)]
    faults += [f"{program}: only on Windows: {name}" for name in unexcused(theirs - ours, "Windows", rows, used)]
faults += [f"README: no such difference: {pattern} ({target})" for pattern, target in rows if (pattern, target) not in used]
print("\n".join(faults))
sys.exit(bool(faults))
