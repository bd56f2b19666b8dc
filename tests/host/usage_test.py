"""Versions, help and command lines that make no sense."""

import unittest

from harness import CommandTest

COMMANDS = ["info", "frame", "export", "pipe", "audio", "waveform", "sheet", "settings", "make-sample", "make-clip"]

# Command lines, and what their messages name.
NONSENSE = [
    ("", "subcommand"), ("unheard", "no command 'unheard'"), ("--module m.so unheard a.r3d", "no command 'unheard'"),
    ("info", "at least one clip"), ("info a.r3d --unheard", "unheard"), ("frame a.r3d", "number"),
    ("frame a.r3d x", "'x'"), ("frame a.r3d -1", "-1"), ("frame a.r3d 1.5", "'1.5'"),
    ("frame a.r3d 01:00:00", "timecode"), ("frame a.r3d 01:00:00:00:00", "timecode"),
    ("frame a.r3d 01:00:00:x", "timecode"), ("pipe a.r3d --from 01:00;00,00", "--from"),
    ("frame a.r3d 99999999999999999999", "99999999999999999999"), ("frame a.r3d 0 --bits 48", "--bits"),
    ("frame a.r3d 0 -o x.pfm", "--bits 128"), ("frame a.r3d 0 --gamma 1", "--bits 128"),
    ("frame a.r3d 0 --scale 0", "--scale"), ("frame a.r3d 0 --scale 1.5", "--scale"),
    ("frame a.r3d 0 --scale nan", "--scale"), ("export a.r3d", "folder"), ("export a.r3d d --jobs 0", "--jobs"),
    ("sheet a.r3d", "--output"), ("sheet a.r3d -o x.png --frames 0", "--frames"),
    ("waveform a.r3d -o x.png --size 10", "--size"), ("settings", "clip"),
    ("settings a.r3d --set Tint", "Key=Value"), ("settings --keys a.r3d", "--keys"),
    ("settings --keys --json", "--keys"), ("settings --keys --reset", "--keys"),
    ("settings a.r3d --copy-from b.r3d --reset", "--copy-from"), ("make-sample x.r3d --size 0x10", "--size"),
    ("make-sample x.r3d --size 20000x10", "16384"), ("make-sample x.r3d --rate 0", "--rate"),
    ("make-sample x.r3d --rate 24/0", "--rate"), ("make-sample x.r3d --rate 1001", "--rate"),
    ("make-sample x.r3d --rate 1000001/1000", "--rate"), ("make-sample x.r3d --channels 5", "--channels"),
    ("make-sample x.r3d --frames 5 --seconds 1", "--seconds"), ("make-clip x.r3d --size 8x8", "--rate"),
    ("make-clip x.r3d --size 8x8 --rate 24 --timecode 24:00:00:00", "--timecode"),
    ("make-clip x.r3d --size 8x8 --rate 24 --timecode 01:00:00:24", "--timecode"),
    ("make-clip x.r3d --size 8x8 --rate 24 --timecode 01:00:00;00", "drop-frame"),
    ("make-clip x.r3d --size 8x8 --rate 29.97 --timecode 00:01:00;00", "leaves"),
    ("make-clip x.r3d --size 8x8 --rate 29.97 --timecode 1;2:3:4", "--timecode"),
]


class Usage(CommandTest):
    def test_version(self):
        result = self.clipfio("--version")
        self.assertRegex(result.out, r"^clipfio \d+\.\d+\.\d+\n$")
        self.assertEqual(result.err, "")

    def test_help(self):
        everything = self.clipfio("--help").out
        for command in COMMANDS:
            with self.subTest(command):
                self.assertIn(command, everything)
                result = self.clipfio(command, "--help")
                self.assertIn("Options:", result.out)
                self.assertEqual(result.err, "")

    def test_output_that_cannot_be_written(self):
        self.sample()
        for args in (["--help"], ["--version"], ["info", "--help"], ["info", "a.r3d"]):
            with self.subTest(args), open("/dev/full", "wb") as full:
                error = self.clipfio(*args, stdout=full, expect=1).err
                self.assertIn("cannot write to standard output", error)

    def test_nonsense_is_status_2_and_touches_nothing(self):
        self.sample()
        before = self.names()
        for line, named in NONSENSE:
            with self.subTest(line):
                result = self.clipfio(*line.split(), expect=2)
                self.assertIn(named, result.err)
                self.assertEqual(result.out, "")
                self.assertEqual(self.names(), before)

    def test_module_that_is_none(self):
        self.sample()
        self.write("text.so", b"no module")
        for module, message in [("gone.so", "no module gone.so"), ("text.so", "cannot load the module text.so")]:
            with self.subTest(module):
                result = self.clipfio("info", "a.r3d", "--module", module, "--json", expect=1)
                self.assertIn(message, result.json["files"][0]["error"])
        env = {**self.env, "CLIPFIO_MODULE": "gone.so"}
        self.assertIn("gone.so", self.clipfio("info", "a.r3d", env=env, expect=1).err)


if __name__ == "__main__":
    unittest.main()
