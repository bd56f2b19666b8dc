"""clipfio settings."""

import os
import shutil
import unittest

from harness import CommandTest

FILE = "a.KtDecProp"


class Settings(CommandTest):
    def setUp(self):
        super().setUp()
        self.sample("a.r3d", "--size", "16x16", "--frames", "1", "--channels", "0")

    def another(self, name):
        shutil.copy(self.path("a.r3d"), self.path(name))
        return name

    def entries(self, *args, expect=0):
        result = self.clipfio("settings", "--json", *args, expect=expect).json
        self.assertEqual((list(result), result["schema"]), (["schema", "files"], 1))
        return result["files"]

    def values(self, clip="a.r3d"):
        return self.entries(clip)[0]["settings"]["values"]

    def test_show(self):
        (entry,) = self.entries("a.r3d")
        self.assertEqual(list(entry), ["path", "error", "decoder", "written", "changes", "settings"])
        self.assertEqual((entry["written"], entry["changes"]), (False, {}))
        self.assertEqual((entry["settings"]["source"], entry["settings"]["file"]), ("clip", None))
        self.assertEqual(len(entry["settings"]["values"]), 69)
        text = self.clipfio("settings", "a.r3d", "--print").out
        self.assertRegex(text, r"^a\.r3d\n  Brightness +0\n")
        self.assertRegex(text, r"\n  ImageDetail +2 \(High\)\n")
        self.assertRegex(text, r"\n  UserCurve +0,0  0.25,0.25  0.5,0.5  0.75,0.75  1,1\n")
        self.assertEqual(self.names(), ["a.r3d"])

    def test_set(self):
        (entry,) = self.entries("a.r3d", "--set", "ColorTemperature=3200", "--set", "Tint=-12.5", "--set",
                                "ImageDenoise=milder", "--set", "ImageISO=12800", "--set", "DEB=on", "--set",
                                "UserCurveRed[3]=0.3")
        wanted = {"ColorTemperature": 3200, "Tint": -12.5, "ImageDenoise": 2, "ImageISO": 12800, "DEB": True,
                  "UserCurveRed[3]": 0.3}
        self.assertEqual({key: change["to"] for key, change in entry["changes"].items()}, wanted)
        self.assertEqual(entry["changes"]["DEB"]["from"], False)
        self.assertEqual((entry["written"], entry["settings"]["source"], entry["settings"]["file"]),
                         (True, "file", FILE))
        text = self.read(FILE).decode("ascii")
        self.assertTrue(text.startswith("File Content=R3D decode properties|File Version=1.0|"))
        self.assertIn("|Tint=-12.5|", text)
        values = self.values()
        self.assertEqual({key: values[key] for key in wanted}, wanted)
        # A second edit keeps what the first one did.
        self.clipfio("settings", "a.r3d", "--set", "Tint=1")
        self.assertEqual(self.values(), {**values, "Tint": 1})

    def test_the_file_is_named_as_the_module_names_it(self):
        os.mkdir(self.path("d.d"))
        for clip, file in [(".r3d", ".KtDecProp"), ("d.d/noext", "d.d/noext.KtDecProp"), ("d.d/b.r3d", "d.d/b.KtDecProp"),
                           ("a.b.c", "a.b.KtDecProp"), ("plain", "plain.KtDecProp")]:
            with self.subTest(clip):
                self.another(clip)
                (entry,) = self.entries(clip, "--set", "Tint=5")
                self.assertEqual((entry["written"], entry["settings"]["source"], entry["settings"]["file"]),
                                 (True, "file", file))
                self.assertTrue(os.path.isfile(self.path(file)))
                os.remove(self.path(file))
        # A clip is not taken for its own settings file.
        clip = self.another("x.KtDecProp")
        before = self.read(clip)
        self.clipfio("settings", clip, "--set", "Tint=5", expect=1)
        self.assertEqual(self.read(clip), before)

    def test_nonsense(self):
        for args, message in [(["--set", "tint=0"], "did you mean Tint?"), (["--set", "Unheard=0"], "no setting 'Unheard'"),
                              (["--unset", "UserCurve[10]"], "no setting"), (["--set", "Tint=100.5"], "-100 to 100"),
                              (["--set", "Tint=1,5"], "'1,5'"), (["--set", "Tint="], "''"), (["--set", "Tint=nan"], "nan"),
                              (["--set", "Tint=5x"], "5x"), (["--set", "Saturation=4.0000001"], "0 to 4"), (["--set", "ImageISO=321"], "320, 400"),
                              (["--set", "ImageGammaCurve=13"], "12 (the default)"),
                              (["--set", "ImageDenoise=7"], "6 (Maximum)"), (["--set", "DEB=2"], "0 or 1"),
                              (["--set", "Tint=1", "--unset", "Tint"], "both set and unset")]:
            with self.subTest(args):
                result = self.clipfio("settings", "--json", "a.r3d", *args, expect=2)
                self.assertIn(message, result.err)
                self.assertEqual(result.out, "")
        self.assertEqual(self.names(), ["a.r3d"])

    def test_unset_and_reset(self):
        own = self.values()
        self.clipfio("settings", "a.r3d", "--set", "Tint=5", "--set", "Contrast=0.5")
        self.clipfio("settings", "a.r3d", "--unset", "Tint")
        self.assertEqual(self.values(), {**own, "Contrast": 0.5})
        self.clipfio("settings", "a.r3d", "--reset", "--set", "Tint=7")
        self.assertEqual(self.values(), {**own, "Tint": 7})
        (entry,) = self.entries("a.r3d", "--reset")
        self.assertEqual((entry["written"], entry["settings"]["source"]), (True, "clip"))
        self.assertEqual(self.names(), ["a.r3d"])
        self.assertEqual(self.values(), own)
        self.clipfio("settings", "a.r3d", "--reset")

    def test_dry_run(self):
        for edit in (["--set", "Tint=5"], ["--reset"], ["--unset", "Contrast"]):
            self.clipfio("settings", "a.r3d", "--set", "Contrast=0.5")
            before = self.read(FILE)
            with self.subTest(edit):
                (entry,) = self.entries("a.r3d", *edit, "--dry-run")
                self.assertFalse(entry["written"])
                self.assertEqual(list(entry["changes"]), ["Tint"] if "Tint=5" in edit else ["Contrast"])
                self.assertEqual(self.read(FILE), before)
        self.assertIn("a.r3d (not written)\n  Tint: 0 -> 5\n",
                      self.clipfio("settings", "a.r3d", "--set", "Tint=5", "--dry-run").out)

    def test_copy(self):
        source = self.another("source.r3d")
        target = self.another("target.r3d")
        self.clipfio("settings", source, "--set", "Tint=5", "--set", "GainRed=0.333333")
        self.clipfio("settings", target, "--set", "Contrast=1")
        (entry,) = self.entries(target, "--copy-from", source, "--dry-run")
        self.assertEqual(sorted(entry["changes"]), ["Contrast", "GainRed", "Tint"])
        self.assertEqual(self.values(target)["Contrast"], 1)
        self.entries(target, "a.r3d", "--copy-from", source)
        for clip in (target, "a.r3d"):
            self.assertEqual(self.values(clip), self.values(source))
        self.assertIn("gone.r3d", self.clipfio("settings", target, "--copy-from", "gone.r3d", expect=1).err)
        entries = self.entries(target, "a.r3d", "--copy-from", "gone.r3d", expect=1)
        self.assertEqual([entry["error"] for entry in entries], ["gone.r3d: there is no such file"] * 2)
        # Also from a clip that has no file.
        self.clipfio("settings", source, "--reset")
        self.clipfio("settings", target, "--copy-from", source)
        self.assertEqual(self.values(target), self.values(source))

    def test_many_clips_and_one_that_fails(self):
        clips = ["a.r3d", "gone.r3d", self.another("b.r3d"), self.another("c.r3d")]
        self.clipfio("settings", "b.r3d", "--set", "Tint=50", "--set", "Contrast=-1")
        entries = self.entries(*clips, "--set", "Tint=5", expect=1)
        self.assertEqual([entry["path"] for entry in entries], clips)
        self.assertEqual([entry["error"] is None for entry in entries], [True, False, True, True])
        self.assertEqual(list(entries[1]), ["path", "error"])
        self.assertEqual(entries[2]["changes"], {"Tint": {"from": 50, "to": 5}})
        for clip in ("a.r3d", "b.r3d", "c.r3d"):
            self.assertEqual(self.values(clip)["Tint"], 5)
        self.assertEqual(self.values("b.r3d")["Contrast"], -1)

    def test_file_that_cannot_be_written(self):
        os.mkdir(self.path(FILE))
        for edit in (["--set", "Tint=5"], ["--copy-from", "a.r3d"]):
            with self.subTest(edit):
                self.assertIn(FILE, self.clipfio("settings", "a.r3d", *edit, expect=1).err)

    def test_file_with_strange_values(self):
        self.write(FILE, b"Tint=abc|ImageISO=123|GainRed=1e30|Contrast=nan|Unheard=4|Saturation=0.5")
        values = self.values()
        self.assertEqual((values["Tint"], values["ImageISO"], values["Saturation"]), (0, 123, 0.5))
        self.assertIn("ImageISO", self.clipfio("settings", "a.r3d").out)

    def test_keys(self):
        text = self.clipfio("settings", "--keys").out
        self.assertRegex(text, r"(?m)^ColorTemperature +1700 to 100000$")
        self.assertRegex(text, r"(?m)^ImageDenoise +0 \(Off\), 1 \(Minimum\)")
        self.assertEqual(sum(not line.startswith(" ") for line in text.splitlines()), 69)


if __name__ == "__main__":
    unittest.main()
