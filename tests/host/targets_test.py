"""Where results go: links, devices, folders, older files, and outputs that are the input."""

import os
import shutil
import stat
import threading
import unittest

from harness import CommandTest, make_wav, read_wav

SMALL = ("--size", "16x16", "--frames", "2", "--channels", "1")
FRAME = bytes(16 * 16 * 6)


def read_all(path):
    with open(path, "rb") as file:
        return file.read()


class Targets(CommandTest):
    def setUp(self):
        super().setUp()
        self.sample("a.r3d", *SMALL)

    def make_clip(self, output, *args, **more):
        return self.clipfio("make-clip", output, "--size", "16x16", "--rate", "24", *args, stdin=FRAME, **more)

    # Each writes a file of its own kind to the output named.
    def writers(self):
        return {
            "make-sample": lambda output, **more: self.clipfio("make-sample", output, *SMALL, **more),
            "make-clip": self.make_clip,
            "frame": lambda output, **more: self.clipfio("frame", "a.r3d", "0", "-o", output, **more),
            "audio": lambda output, **more: self.clipfio("audio", "a.r3d", "-o", output, **more),
            "sheet": lambda output, **more: self.clipfio("sheet", "a.r3d", "-o", output, **more),
            "waveform": lambda output, **more: self.clipfio("waveform", "a.r3d", "-o", output, **more),
        }

    def test_links_are_followed(self):
        for name, write in self.writers().items():
            for there in (True, False):
                with self.subTest((name, there)):
                    if there:
                        self.write("target", b"older")
                    os.symlink("target", self.path("link"))
                    write("link")
                    self.assertTrue(os.path.islink(self.path("link")))
                    self.assertGreater(len(self.read("target")), 5)
                    os.remove(self.path("link"))
                    os.remove(self.path("target"))

    def test_what_cannot_be_replaced_is_refused_and_stays(self):
        os.mkdir(self.path("folder"))
        os.symlink("round", self.path("round"))
        self.write("protected", b"older")
        os.chmod(self.path("protected"), 0o444)
        os.mkfifo(self.path("pipe"))
        before = self.names()
        for name, write in self.writers().items():
            for target, message in [("folder", "it is a folder"), ("round", "round"), ("gone/x", "no such folder"),
                                    ("protected", "write-protected")]:
                with self.subTest((name, target)):
                    error = write(target, expect=1).err
                    self.assertIn(f"cannot write {target}: ", error)
                    self.assertIn(message, error)
        for name in ("make-sample", "make-clip"):
            for target in ("pipe", "/dev/null"):
                with self.subTest((name, target)):
                    self.assertIn("a device or a pipe", self.writers()[name](target, expect=1).err)
        self.assertTrue(stat.S_ISFIFO(os.stat(self.path("pipe")).st_mode))
        self.assertEqual((self.names(), self.read("protected")), (before, b"older"))

    def test_other_files_stay_as_they_are(self):
        """Names that end in .part are the user's; the longest name that a folder takes will do, and so will two writers."""
        long = "x" * 251 + ".r3d"
        self.write("new.r3d.part", b"mine")
        self.write("new.r3d.sound.part", b"mine too")
        writers = [threading.Thread(target=self.writers()[name], args=("new.r3d",))
                   for name in ("make-sample", "make-clip", "make-sample")]
        for writer in writers:
            writer.start()
        for writer in writers:
            writer.join()
        self.clipfio("info", "new.r3d")
        self.clipfio("make-clip", "new.r3d", "--size", "99x99", "--rate", "24", stdin=FRAME, expect=1)
        self.assertEqual((self.read("new.r3d.part"), self.read("new.r3d.sound.part")), (b"mine", b"mine too"))
        self.clipfio("make-sample", long, *SMALL)
        self.assertEqual(self.names(), sorted(["a.r3d", "new.r3d", "new.r3d.part", "new.r3d.sound.part", long]))

    def test_an_output_that_is_the_input(self):
        os.symlink("a.r3d", self.path("link"))
        os.link(self.path("a.r3d"), self.path("000001.png"))
        self.write("in.wav", make_wav(48000, 1, [1] * 100))
        before = {name: self.read(name) for name in self.names()}
        for args in [("frame", "a.r3d", "0"), ("audio", "a.r3d"), ("sheet", "a.r3d"), ("waveform", "a.r3d")]:
            for output in ("a.r3d", "link", "./a.r3d", "C:" + self.path("a.r3d").replace("/", "\\")):
                with self.subTest((args, output)):
                    self.assertIn("is the input", self.clipfio(*args, "-o", output, expect=2).err)
        self.assertIn("is the input", self.clipfio("export", "a.r3d", ".", expect=2).err)
        self.assertIn("is the input", self.make_clip("in.wav", "--audio", "in.wav", expect=2).err)
        self.assertEqual({name: self.read(name) for name in self.names()}, before)

    def test_pipes_take_what_files_would(self):
        for name, args in [("f.png", ("frame", "a.r3d", "0")), ("f.pfm", ("frame", "a.r3d", "0", "--bits", "128")),
                           ("f.wav", ("audio", "a.r3d")), ("s.png", ("sheet", "a.r3d")), ("w.png", ("waveform", "a.r3d"))]:
            with self.subTest(name):
                self.clipfio(*args, "-o", name)
                fifo = self.path("fifo" + name[-4:])
                os.mkfifo(fifo)
                taken = []
                reader = threading.Thread(target=lambda: taken.append(read_all(fifo)), daemon=True)
                reader.start()
                self.clipfio(*args, "-o", fifo)
                reader.join(60)
                self.assertEqual(taken, [self.read(name)])
                os.remove(fifo)
        self.assertEqual(self.clipfio("audio", "a.r3d", "-o", "/dev/stdout").raw, self.read("f.wav"))
        self.assertGreater(len(read_wav(self.read("f.wav"))[3]), 0)

    def test_paths_with_a_drive(self):
        """The host reads a path as the module does: drive letters, and either separator."""
        folder = "C:" + self.path("").replace("/", "\\")
        self.clipfio("frame", folder + "a.r3d", "0")
        self.clipfio("frame", folder + "a.r3d", "0", "-o", folder + "x.png")
        os.mkdir(self.path("d"))
        self.clipfio("export", folder + "a.r3d", folder + "d", "--to", "0")
        self.assertEqual((self.names(), self.names("d")), (["a-0.png", "a.r3d", "d", "x.png"], ["000000.png"]))

    def test_a_name_that_ends_in_a_blank(self):
        os.rename(self.path("a.r3d"), self.path("a.r3d "))
        (entry,) = self.clipfio("settings", "--json", "a.r3d ", "--set", "Tint=5").json["files"]
        self.assertEqual((entry["written"], entry["settings"]["file"]), (True, "a.r3d .KtDecProp"))
        self.assertEqual(self.names(), ["a.r3d ", "a.r3d .KtDecProp"])

    def test_any_character_may_stand_in_a_name(self):
        for name in ("\x1f", "[\x1f]", "[a,b]", "\x1f[a]", "a\nb"):
            with self.subTest(name):
                os.mkdir(self.path("x.d"))
                self.clipfio("make-sample", f"x.d/{name}", *SMALL)
                (entry,) = self.clipfio("settings", "--json", f"x.d/{name}", "--set", "Tint=5").json["files"]
                self.assertEqual((entry["written"], entry["path"]), (True, f"x.d/{name}"))
                self.assertEqual(self.names("x.d"), sorted([name, name + ".KtDecProp"]))
                shutil.rmtree(self.path("x.d"))

    def test_a_pipe_is_no_clip(self):
        os.mkfifo(self.path("fifo"))
        for command in (["info", "fifo"], ["frame", "fifo", "0"], ["settings", "fifo", "--set", "Tint=1"]):
            with self.subTest(command):
                self.assertIn("a device or a pipe", self.clipfio(*command, expect=1).err)

    def test_output_that_takes_nothing_fails(self):
        """Not only a full device: this one refuses what is no number, by the error that a closed pipe has elsewhere."""
        with open("/proc/self/oom_score_adj", "w", encoding="ascii") as output:
            self.assertIn("cannot write to standard output", self.clipfio("info", "a.r3d", stdout=output, expect=1).err)

    def test_file_modes_stay(self):
        self.write("f.png", b"older")
        os.chmod(self.path("f.png"), 0o600)
        self.clipfio("frame", "a.r3d", "0", "-o", "f.png")
        self.assertEqual(stat.S_IMODE(os.stat(self.path("f.png")).st_mode), 0o600)


if __name__ == "__main__":
    unittest.main()
