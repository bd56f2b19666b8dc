"""The demo shows the same on both targets: equal sound, and pictures of which no value differs by more than one.

usage: demo_test.py ROOT NATIVE_PROGRAMS"""
import os
import re
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "host"))
from harness import read_pfm, read_png, read_wav  # noqa: E402

NOT_BUILT = 77
TARGETS = ("native", "windows")
root, native = sys.argv[1:]
if not os.path.exists(os.path.join(native, "clipfio")):
    print("the native host is not built")
    sys.exit(NOT_BUILT)


def differences(name, files):
    """What is wrong with the two targets' files of one name; nothing when they agree."""
    if name.endswith(".png"):
        pictures = [read_png(data) for data in files]
        if pictures[0][:3] != pictures[1][:3]:
            return f"{pictures[0][:3]} and {pictures[1][:3]}"
        most = max(abs(a - b) for rows in zip(pictures[0][4], pictures[1][4]) for a, b in zip(*rows))
        return f"values {most} apart" if most > 1 else ""
    if name.endswith(".pfm"):
        pictures = [read_pfm(data) for data in files]
        if pictures[0][:2] != pictures[1][:2]:
            return "another size"
        # One value of the 16 bits that a camera records.
        most = max(abs(a - b) for rows in zip(pictures[0][2], pictures[1][2]) for a, b in zip(*rows))
        return f"values {most} apart" if most > 1 / 65535 else ""
    if name.endswith(".wav"):
        return "" if read_wav(files[0]) == read_wav(files[1]) else "other samples"
    # Report and settings also tell where the decoder library lies, and the user's locale by the runtime's name and point.
    texts = [re.sub(rb"\[[^\]\n]*[/\\]bin[/\\]+\]|File (?:Locale|DecimalPoint)=[^|]*", b"", data) for data in files]
    return "" if texts[0] == texts[1] else "other bytes"


with tempfile.TemporaryDirectory() as folder:
    results = []
    for target in TARGETS:
        # The same path for both, because the report names it.
        out = os.path.join(folder, "out")
        done = subprocess.run(["scripts/demo", target, out], cwd=root, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False)
        if done.returncode != 0:
            sys.exit(f"the demo of {target} fails:\n{done.stdout}")
        results.append({name: open(os.path.join(out, name), "rb").read() for name in sorted(os.listdir(out))})

if results[0].keys() != results[1].keys():
    sys.exit(f"other files: {sorted(results[0])} and {sorted(results[1])}")
faults = [f"{name}: {text}" for name in results[0]
          if (text := differences(name, [result[name] for result in results]))]
print("\n".join(faults) or f"{len(results[0])} files agree")
sys.exit(bool(faults))
