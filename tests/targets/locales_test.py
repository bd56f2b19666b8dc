"""On Windows the user's locale is the process's, from its start. So the tests that ask for one run once in each of the
locales that they ask for; none of them may fail, and each has to run in at least one.

usage: locales_test.py TESTS_FOLDER UNIT_TESTS MODULE_TESTS LAUNCHER..."""
import os
import re
import subprocess
import sys

LOCALES = ("en_US", "de_DE", "fr_FR", "ja_JP", "pt_BR", "hi_IN", "fi_FI")
folder, unit_tests, module_tests, *launcher = sys.argv[1:]


def suites():
    """Of the files that ask for a locale."""
    found = set()
    for parent, _, names in os.walk(folder):
        for name in (name for name in names if name.endswith("_test.cpp")):
            with open(os.path.join(parent, name), encoding="utf-8") as file:
                text = file.read()
            if "support/in_locale.h" in text or "KT_LCID" in text:
                found.update(re.findall(r"^TEST(?:_F)?\((\w+), ", text, re.MULTILINE))
    return sorted(found)


def results(program, locale, wanted):
    """{Suite.Name: OK, SKIPPED or FAILED} and what the program printed."""
    done = subprocess.run([*launcher, program, "--gtest_filter=" + ":".join(f"{suite}.*" for suite in wanted)],
                          env=os.environ | {"LC_ALL": f"{locale}.UTF-8"}, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    text = done.stdout.decode("utf-8", "replace").replace("\r", "")
    return dict((name, result.strip()) for result, name in
                re.findall(r"^\[ +(OK|SKIPPED|FAILED) +\] (\w+\.\w+) \(", text, re.MULTILINE)), text


wanted, ran, skipped, faults = suites(), set(), set(), []
for program in (unit_tests, module_tests):
    for locale in LOCALES:
        found, text = results(program, locale, wanted)
        if not found:
            sys.exit(f"{program} runs nothing in {locale}:\n{text}")
        ran.update(name for name, result in found.items() if result == "OK")
        skipped.update(name for name, result in found.items() if result == "SKIPPED")
        failed = [name for name, result in found.items() if result == "FAILED"]
        if failed:
            faults.append(f"in {locale}: {', '.join(failed)}\n{text}")
faults += [f"skipped in every locale: {name}" for name in sorted(skipped - ran)]
print("\n".join(faults) or f"{len(ran)} tests in {len(LOCALES)} locales")
sys.exit(bool(faults))
