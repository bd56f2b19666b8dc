#!/usr/bin/env python3
"""The list of exports, turned into what a linker reads, and compared with a built module.

usage: exports.py script LIST             a version script for the ELF linker, on standard output
       exports.py check LIST MODULE       status 1 and the differences when MODULE exports anything else than LIST
"""
import re
import subprocess
import sys


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


def exported(module):
    text = subprocess.run(["nm", "-D", "-C", "--defined-only", module], check=True, capture_output=True, text=True).stdout
    # address, type, name; the name of an absolute version node is not a symbol.
    rows = (re.match(r"[0-9a-f]+ (\w) (.+)$", line) for line in text.splitlines())
    return {row.group(2) for row in rows if row and row.group(1) != "A"}


def main():
    if len(sys.argv) == 3 and sys.argv[1] == "script":
        print(version_script(read_list(sys.argv[2])))
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
