"""clipfio info: text, JSON, clips that fail."""

import os
import struct
import unittest
import zlib

from harness import TIMEOUT, CommandTest

NULL = type(None)
# The type of each member of an entry; "values" are checked apart.
ENTRY = {
    "path": str, "error": NULL, "data_rate": int, "decoder": str,
    "class": {"name": str, "short_name": str, "pattern": str, "format_id": str},
    "duration": {"seconds": float, "ticks": int},
    "video": {"code": str, "type": str, "format": str, "width": int, "height": int, "bits_per_pixel": int,
              "frames": int, "frame_rate": float, "data_rate": int},
    "audio": {"code": str, "type": str, "format": str, "channels": int, "sample_rate": int, "samples": int,
              "data_rate": int},
    "timecode": {"first": str, "last": str, "first_ticks": int, "last_ticks": int},
    "settings": {"source": str, "file": NULL, "values": dict},
}


class Info(CommandTest):
    def check_types(self, entry, types, where=""):
        self.assertEqual(list(entry.keys() - types.keys()) + list(types.keys() - entry.keys()), [], where)
        for name, kind in types.items():
            if isinstance(kind, dict):
                self.check_types(entry[name], kind, where + "." + name)
            else:
                self.assertIs(type(entry[name]), kind, f"{where}.{name} is {entry[name]!r}")

    def header_with(self, *fields):
        """The header of a.r3d with other fields, and the checksum put right."""
        header = bytearray(self.read("a.r3d")[:512])
        for form, at, value in (*fields, ("<I", 12, 0)):
            struct.pack_into(form, header, at, value)
        struct.pack_into("<I", header, 12, zlib.crc32(header))
        return bytes(header)

    def test_json_of_a_clip(self):
        self.sample("a.r3d", "--size", "96x64", "--frames", "36", "--rate", "24", "--channels", "2")
        result = self.clipfio("info", "a.r3d", "--json").json
        self.assertEqual(list(result), ["schema", "files"])
        self.assertEqual(result["schema"], 1)
        (entry,) = result["files"]
        self.check_types(entry, ENTRY)
        self.assertEqual(entry["class"]["pattern"], "*.r3d")
        self.assertEqual(entry["duration"], {"seconds": 1.5, "ticks": 15000000})
        video = entry["video"]
        self.assertEqual((video["code"], video["width"], video["height"], video["frames"], video["frame_rate"],
                          video["format"], video["bits_per_pixel"]), ("R3DV", 96, 64, 36, 24.0, "96x64x48", 48))
        audio = entry["audio"]
        self.assertEqual((audio["code"], audio["channels"], audio["sample_rate"], audio["samples"]),
                         ("R3DA", 2, 48000, 72000))
        self.assertEqual(entry["data_rate"], video["data_rate"] + audio["data_rate"])
        self.assertEqual(entry["timecode"], {"first": "01:00:00:00", "last": "01:00:01:11",
                                             "first_ticks": 36000000000, "last_ticks": 36014583333})
        values = entry["settings"]["values"]
        self.assertEqual(len(values), 69)
        self.assertIs(type(values["DEB"]), bool)
        self.assertIs(type(values["ImageISO"]), int)
        self.assertIsInstance(values["ColorTemperature"], (int, float))
        self.assertEqual([values[f"UserCurve[{i}]"] for i in range(10)], [0, 0, .25, .25, .5, .5, .75, .75, 1, 1])

    def test_clip_without_sound(self):
        self.sample("a.r3d", "--size", "32x32", "--frames", "1", "--channels", "0")
        (entry,) = self.clipfio("info", "a.r3d", "--json").json["files"]
        self.assertIsNone(entry["audio"])
        self.assertEqual(entry["timecode"]["first"], entry["timecode"]["last"])
        self.assertIn("audio       none", self.clipfio("info", "a.r3d").out)

    def test_channels_that_are_none(self):
        """Sound of no channel that counts is no sound, and hides nothing of the pictures."""
        self.sample("a.r3d", "--size", "32x16", "--frames", "3", "--channels", "1")
        for mask in (0, 0x10):
            with self.subTest(mask):
                self.write("b.r3d", self.header_with(("<I", 72, mask)) + self.read("a.r3d")[512:])
                (entry,) = self.clipfio("info", "b.r3d", "--json").json["files"]
                video = entry["video"]
                self.assertEqual((video["width"], video["height"], video["frames"], entry["audio"]), (32, 16, 3, None))
                self.assertEqual(entry["duration"]["ticks"], 1250000)

    def test_clip_without_frames(self):
        self.sample("a.r3d", "--size", "16x16", "--frames", "1", "--channels", "0")
        self.write("b.r3d", self.header_with(("<Q", 32, 0), ("<Q", 88, 512)))
        (entry,) = self.clipfio("info", "b.r3d", "--json").json["files"]
        self.assertEqual((entry["video"]["frames"], entry["timecode"]), (0, None))

    def test_text(self):
        self.sample()
        result = self.clipfio("info", "a.r3d")
        self.assertEqual(result.err, "")
        for part in ["a.r3d\n", "RED Raw (R3D)", "96x64x48", "01:00:00:00 to 01:00:00:11", "the clip's own",
                     "ImageISO"]:
            self.assertIn(part, result.out)

    def test_names_of_all_sorts(self):
        for name in ["Übung für İstanbul.r3d", "映画.r3d", "with space.R3D", "-dash.r3d", "no extension",
                     "[a.r3d]", "[a,b].r3d"]:
            with self.subTest(name):
                self.clipfio("make-sample", "--size", "16x16", "--frames", "1", "--", name)
                (entry,) = self.clipfio("info", "--json", "--", name).json["files"]
                self.assertEqual((entry["path"], entry["error"]), (name, None))
        nested = os.path.join(self.folder, "sub", "b.r3d")
        os.mkdir(os.path.dirname(nested))
        self.clipfio("make-sample", nested, "--size", "16x16", "--frames", "1")
        self.clipfio("info", nested)
        self.clipfio("info", "./sub/../sub/b.r3d")

    def test_path_that_is_too_long(self):
        # As long as the module's paths may be, with the settings file's and without, and one more.
        for length, message in [(253, None), (259, "the name cannot be used: it is too long"),
                                (260, "259 characters at most")]:
            with self.subTest(length):
                folder = "é" * 100 + "/" + "漢" * 80
                os.makedirs(self.path(folder), exist_ok=True)
                name = (folder + "/").ljust(length - len(".r3d"), "x") + ".r3d"
                os.rename(self.path(self.sample()), self.path(name))
                result = self.clipfio("info", name, expect=1 if message else 0)
                self.assertIn(message or "96x64", result.err if message else result.out)

    def test_failures_do_not_stop_the_others(self):
        self.sample("good.r3d")
        self.write("empty.r3d", b"")
        self.write("short.r3d", b"RED2")
        self.write("other.r3d", b"This is no clip at all.")
        self.cut("good.r3d", "header.r3d", 100)
        flipped = bytearray(self.read("good.r3d"))
        flipped[16] ^= 0xFF
        self.write("damaged.r3d", bytes(flipped))
        os.mkdir(self.path("folder.r3d"))
        expected = [("missing.r3d", "there is no such file"), ("empty.r3d", "empty"), ("short.r3d", "too short"),
                    ("other.r3d", "no R3D clip"), ("folder.r3d", "a folder"), ("header.r3d", "damaged or cut short"),
                    ("damaged.r3d", "damaged or cut short"), ("good.r3d", None)]
        names = [name for name, _ in expected]
        result = self.clipfio("info", "--json", *names, expect=1)
        entries = result.json["files"]
        self.assertEqual([entry["path"] for entry in entries], names)
        for entry, (name, error) in zip(entries, expected):
            with self.subTest(name):
                if error is None:
                    self.check_types(entry, ENTRY)
                else:
                    self.assertEqual(list(entry), ["path", "error"])
                    self.assertIn(error, entry["error"])
                    self.assertIn(f"clipfio: {name}: {entry['error']}\n", result.err)
        text = self.clipfio("info", *names, expect=1)
        self.assertTrue(text.out.startswith("good.r3d\n"))

    def test_unreadable_file(self):
        if os.geteuid() == 0:
            self.skipTest("root reads everything")
        self.sample()
        os.chmod(self.path("a.r3d"), 0)
        self.assertIn("cannot be opened", self.clipfio("info", "a.r3d", expect=1).err)

    def test_no_decoder(self):
        self.sample()
        os.mkdir(self.path("nothing"))
        env = {**self.env, "R3DSDKPATH": self.path("nothing")}
        command = self.program_without_decoder()
        for args in [("info", "--json", "a.r3d"), ("frame", "a.r3d", "0"), ("export", "a.r3d", "out"),
                     ("settings", "a.r3d", "--reset")]:
            with self.subTest(args[0]):
                result = self.clipfio(*args, env=env, expect=1, command=command)
                for part in ["REDR3D-x64.dll was not found", "current folder", self.path("nothing")]:
                    self.assertIn(part, result.err)
        self.assertEqual(self.names(), ["a.r3d", "alone", "nothing"])

    def test_decoder_that_does_not_load(self):
        self.sample()
        os.mkdir(self.path("bad"))
        self.write("bad/REDR3D-x64.dll", b"no library")
        env = {**self.env, "R3DSDKPATH": self.path("bad")}
        error = self.clipfio("info", "a.r3d", env=env, expect=1, command=self.program_without_decoder()).err
        self.assertIn(f"the decoder library {self.path('bad')}/REDR3D-x64.dll cannot be used", error)

    def test_reader_that_goes_away(self):
        self.sample()
        with self.start("info", "--json", *["a.r3d"] * 40) as process:
            process.stdout.close()
            error = process.stderr.read()
            self.assertEqual((process.wait(TIMEOUT), error), (0, b""))


if __name__ == "__main__":
    unittest.main()
