#!/usr/bin/env python3
"""The list of exports, turned into what a linker reads, and compared with a built module.

usage: exports.py script LIST             a version script for the ELF linker, on standard output
       exports.py def LIST ARCHIVE        a module definition file for the PE linker, on standard output: the compiler's
                                          names of what has C++ linkage are taken from ARCHIVE
       exports.py check LIST MODULE       status 1 and the differences when MODULE exports anything else than LIST
"""
import re
import subprocess
import sys

# A C++ line of the list has the types of the native target. The same declarations have these on Windows, where `long`
# is 32 bits wide; each type stands for one of the other target, so nothing becomes ambiguous.
NATIVE_TYPES = {
    "unsigned long long": "unsigned long",
    "unsigned long": "unsigned int",
    "long long": "long",
    "long": "int",
    "wchar_t": "char16_t",
    "_GUID": "GUID",
}
FOREIGN_TYPE = re.compile(r"\b(?:" + "|".join(NATIVE_TYPES) + r")\b")


def output_of(*command, **options):
    return subprocess.run(command, check=True, capture_output=True, text=True, **options).stdout


def demangled(symbols):
    """The symbols of a PE file as the list spells them, each with the symbol that it stands for."""
    lines = output_of("c++filt", "--no-strip-underscore", input="\n".join(symbols)).splitlines()
    return [(FOREIGN_TYPE.sub(lambda match: NATIVE_TYPES[match.group()], line), symbol)
            for line, symbol in zip(lines, symbols)]


def read_list(path):
    lines = [line.strip() for line in open(path, encoding="utf-8")]
    names = [line for line in lines if line and not line.startswith("#")]
    twice = sorted({name for name in names if names.count(name) > 1})
    if twice:
        sys.exit(f"{path}: listed twice: {', '.join(twice)}")
    return names


def version_script(names):
    c_names = [name for name in names if "(" not in name]
    cpp_names = [name for name in names if "(" in name]
    out = ["{", "  global:"]
    out += [f"    {name};" for name in c_names]
    out += ['    extern "C++" {'] + [f'      "{name}";' for name in cpp_names] + ["    };"]
    return "\n".join(out + ["  local:", "    *;", "};"])


def definition_file(names, archive):
    text = output_of("x86_64-w64-mingw32-nm", "--defined-only", "--extern-only", archive)
    symbols = sorted(set(re.findall(r"^[0-9a-f]+ [TD] (_Z.+)$", text, re.MULTILINE)))
    # A constructor is several symbols under one name.
    by_name = {}
    for name, symbol in demangled(symbols):
        by_name.setdefault(name, []).append(symbol)
    wanted = set(names)
    missing = [name for name in names if "(" in name and name not in by_name]
    if missing:
        sys.exit(f"{archive} has nothing of the name:\n  " + "\n  ".join(missing))
    cpp_symbols = [symbol for name in by_name if name in wanted for symbol in by_name[name]]
    return "\n".join(["EXPORTS"] + [f"  {symbol}" for symbol in [n for n in names if "(" not in n] + cpp_symbols])


def exported_by_elf(module):
    text = output_of("nm", "-D", "-C", "--defined-only", module)
    # address, type, name; the name of an absolute version node is not a symbol.
    rows = (re.match(r"[0-9a-f]+ (\w) (.+)$", line) for line in text.splitlines())
    return {row.group(2) for row in rows if row and row.group(1) != "A"}


def exported_by_pe(module):
    text = output_of("x86_64-w64-mingw32-objdump", "-p", module)
    table = text[text.index("[Ordinal/Name Pointer] Table"):].split("\n\n")[0]
    return {name for name, _ in demangled(re.findall(r"^\t\[ *\d+\] (\S+)$", table, re.MULTILINE))}


def exported(module):
    with open(module, "rb") as file:
        return (exported_by_pe if file.read(2) == b"MZ" else exported_by_elf)(module)


def main():
    if len(sys.argv) == 3 and sys.argv[1] == "script":
        print(version_script(read_list(sys.argv[2])))
        return 0
    if len(sys.argv) == 4 and sys.argv[1] == "def":
        print(definition_file(read_list(sys.argv[2]), sys.argv[3]))
        return 0
    if len(sys.argv) == 4 and sys.argv[1] == "check":
        wanted, found = set(read_list(sys.argv[2])), exported(sys.argv[3])
        for name in sorted(wanted - found):
            print(f"missing: {name}")
        for name in sorted(found - wanted):
            print(f"extra:   {name}")
        return int(wanted != found)
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main())
