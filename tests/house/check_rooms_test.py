"""The check of the rooms finds what it is there to find, and nothing in a tree that is in order."""

import os
import subprocess
import sys
import tempfile
import unittest

SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "scripts", "check_rooms.py")

IN_ORDER = {
    "platform/include/platform/base.h": "#ifdef _WIN32\n#define W(x) L##x\nusing T = wchar_t;\n#endif\n",
    "kernel/a.h": '#include "platform/base.h"\n// _WIN32, L"wide" and std::wstring in a comment\n',
    "kernel/runtime/start.h": '#include "kernel/a.h"\n',
    "settings/property_table.h": 'inline const char* kText = "_WIN32 std::wstring";\n',
    "reader/file.cpp": '#include "settings/property_table.h"\n#include "kernel/runtime/start.h"\n',
    "host/main.cpp": '#include "settings/property_table.h"\nint n = 1\'000;\n',
    "tests/kernel/a_test.cpp": '#include "reader/file.h"\n',
    "reader/file.h": "",
}

FAULTS = [
    ("upwards", "kernel/b.h", '#include "reader/file.h"\n', "kernel may not include reader/file.h"),
    ("a room's upper floor", "kernel/b.h", '#include "kernel/runtime/start.h"\n', "may not include kernel/runtime"),
    ("the module's inside", "host/b.cpp", '#include "reader/file.h"\n', "host may not include reader/file.h"),
    ("tests", "reader/b.cpp", '#include "tests/kernel/a_test.h"\n', "which lies in no room"),
    ("nothing", "reader/b.cpp", '#include "reader/gone.h"\n', "there is no reader/gone.h"),
    ("a circle", "reader/file.h", '#include "reader/round.h"\n', "circle"),
    ("the target", "reader/b.cpp", "#ifdef _WIN32\n#endif\n", "reader/b.cpp:1: _WIN32"),
    ("a wide text", "reader/b.cpp", "\n\nauto a = L\"x\";\n", "reader/b.cpp:3: a wide literal"),
    ("a wide character", "reader/b.cpp", "auto a = L'x';\n", "a wide literal"),
    ("a wide string", "reader/b.cpp", "std::wstring a;\n", "a wide std text"),
]


def run(files):
    with tempfile.TemporaryDirectory() as root:
        for path, text in files.items():
            os.makedirs(os.path.join(root, os.path.dirname(path)), exist_ok=True)
            with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                file.write(text)
        done = subprocess.run([sys.executable, SCRIPT, root], capture_output=True, text=True, check=False)
        return done.returncode, done.stdout


class CheckRooms(unittest.TestCase):
    def test_a_tree_in_order(self):
        self.assertEqual(run(IN_ORDER), (0, ""))

    def test_faults(self):
        extra = {"tests/kernel/a_test.h": "", "reader/round.h": '#include "reader/file.h"\n'}
        for name, path, text, expected in FAULTS:
            with self.subTest(name):
                status, output = run({**IN_ORDER, **extra, path: text})
                self.assertEqual(status, 1)
                self.assertIn(expected, output)
                self.assertEqual(len(output.splitlines()), 1, output)


if __name__ == "__main__":
    unittest.main()
