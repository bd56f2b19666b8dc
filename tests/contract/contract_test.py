"""A host in another language, without our headers, finds the same on every target: the module's binary contract.

usage: contract_test.py EXPECTED FOLDER_OF_PROGRAMS SUFFIX [LAUNCHER...]"""
import difflib
import os
import subprocess
import sys
import tempfile

expected_file, programs, suffix, *launcher = sys.argv[1:]


def run(folder, program, *arguments):
    command = [*launcher, os.path.join(programs, program + suffix), *arguments]
    return subprocess.run(command, cwd=folder, env={**os.environ, "R3DSDKPATH": programs, "LC_ALL": "C.UTF-8"}, check=True,
                          stdout=subprocess.PIPE, text=True, timeout=120).stdout


with tempfile.TemporaryDirectory() as folder:
    run(folder, "clipfio", "make-sample", "clip.r3d", "--size", "96x64", "--frames", "12")
    found = run(folder, "binary_contract", "clip.r3d").splitlines()
with open(expected_file, encoding="utf-8") as file:
    expected = file.read().splitlines()
difference = list(difflib.unified_diff(expected, found, "expected", "found", lineterm="", n=1))
print("\n".join(difference) if difference else f"{len(found)} lines as expected")
sys.exit(bool(difference))
