"""Runs that are ended from outside: by signals, and by limits to what may be written."""

import os
import resource
import signal
import subprocess
import unittest

from harness import COMMAND, TIMEOUT, CommandTest

FILE = "a.KtDecProp"
MAKE_CLIP = ("make-clip", "a.r3d", "--size", "16x16", "--rate", "24")


def limit_files(size):
    """For a process about to start: no file grows above `size` bytes, and nothing was ignored for it."""
    def prepare():
        signal.signal(signal.SIGXFSZ, signal.SIG_DFL)
        resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))
    return prepare


class Stops(CommandTest):
    def test_one_signal_ends_the_wait_for_input(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(number):
                self.write("a.r3d", b"older")
                with self.start(*MAKE_CLIP) as process:
                    self.wait_for_files(process, 2)
                    process.send_signal(number)
                    self.assertEqual((process.wait(TIMEOUT), process.stderr.read()), (1, b"clipfio: stopped\n"))
                self.assertEqual((self.names(), self.read("a.r3d")), (["a.r3d"], b"older"))

    def test_what_was_ignored_stays_ignored(self):
        self.write("a.r3d", b"older")
        with self.start(*MAKE_CLIP, prepare=lambda: signal.signal(signal.SIGINT, signal.SIG_IGN)) as process:
            self.wait_for_files(process, 2)
            process.send_signal(signal.SIGINT)
            process.stdin.write(bytes(16 * 16 * 6))
            process.stdin.close()
            self.assertEqual(process.wait(TIMEOUT), 0)
        self.clipfio("info", "a.r3d")

    def test_input_that_cannot_be_read(self):
        folder = os.open(self.folder, os.O_RDONLY)
        done = subprocess.run([*COMMAND, *MAKE_CLIP], stdin=folder, capture_output=True, cwd=self.folder, env=self.env,
                              timeout=TIMEOUT, check=False)
        os.close(folder)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"cannot read standard input: ", done.stderr)
        self.assertEqual(self.names(), [])

    def limited(self, size, *args):
        with self.start(*args, prepare=limit_files(size)) as process:
            output, error = process.communicate(timeout=TIMEOUT)
            return process.returncode, output, error.decode()

    def test_no_room_leaves_the_older_file(self):
        self.sample("a.r3d", "--size", "96x64", "--frames", "2")
        before = self.read("a.r3d")
        for args in [("frame", "a.r3d", "0"), ("audio", "a.r3d"), ("sheet", "a.r3d", "-o", "s.png"),
                     ("make-sample", "a.r3d")]:
            with self.subTest(args):
                status, _, error = self.limited(1000, *args)
                self.assertEqual(status, 1, error)
                self.assertRegex(error, "cannot (write|finish) ")
                self.assertEqual((self.names(), self.read("a.r3d")), (["a.r3d"], before))

    def test_settings_that_cannot_be_written_whole(self):
        """Whatever the number of bytes that fit, the file is the older one or the new one, and the status says which."""
        self.sample("a.r3d", "--size", "16x16", "--frames", "1")
        self.clipfio("settings", "a.r3d", "--set", "Tint=7")
        whole = len(self.read(FILE))
        for older in (False, True):
            for size in (0, 1, 100, 1000, whole - 2, whole):
                with self.subTest((older, size)):
                    os.remove(self.path(FILE))
                    if older:
                        self.clipfio("settings", "a.r3d", "--set", "Tint=5", "--set", "Contrast=0.5")
                    before = self.read(FILE) if older else None
                    status, _, error = self.limited(size, "settings", "a.r3d", "--set", "Tint=7", "--unset", "Contrast")
                    self.assertNotIn("Traceback", error)
                    fits = size >= (len(before) if older else whole)
                    self.assertEqual(status, 0 if fits else 1, error)
                    if not fits:
                        self.assertIn(FILE, error)
                        self.assertEqual(self.read(FILE) if FILE in self.names() else None, before)
                    if not os.path.exists(self.path(FILE)):
                        self.clipfio("settings", "a.r3d", "--set", "Tint=7")
                    self.assertEqual(self.names(), sorted([FILE, "a.r3d"]))


if __name__ == "__main__":
    unittest.main()
