"""Frames: as files, exported, piped, on a contact sheet."""

import os
import signal
import struct
import unittest

from harness import TIMEOUT, CommandTest, native_only, read_pfm, read_png

HEADER = 512


class Pictures(CommandTest):
    def png(self, name):
        return read_png(self.read(name))

    def pipe(self, *args):
        return self.clipfio("pipe", *args).raw

    def test_sizes(self):
        self.sample("a.r3d", "--size", "98x66", "--frames", "2")
        for scale, size in [("1", (98, 66)), ("0.5", (49, 33)), ("0.3", (49, 33)), ("0.25", (24, 16)),
                            ("0.125", (12, 8)), ("0.0625", (6, 4)), ("0.0001", (6, 4)), ("1e-320", (6, 4))]:
            with self.subTest(scale):
                result = self.clipfio("frame", "a.r3d", "1", "--scale", scale, "-o", "f.png")
                self.assertEqual(result.out, "")
                self.assertEqual(self.png("f.png")[:3], (*size, 8))

    def test_too_small_a_clip_for_the_scale(self):
        self.sample("a.r3d", "--size", "8x8", "--frames", "1")
        self.assertIn("nothing is left", self.clipfio("frame", "a.r3d", "0", "--scale", "0.0625", expect=1).err)
        self.assertEqual(self.names(), ["a.r3d"])

    def test_png_and_pipe_show_the_same_pixels_top_first(self):
        self.sample()
        self.clipfio("frame", "a.r3d", "3", "-o", "f.png")
        width, height, _, _, rows = self.png("f.png")
        raw = self.pipe("a.r3d", "--from", "3", "--to", "3")
        self.assertEqual(len(raw), width * height * 4)
        piped = [[raw[(y * width + x) * 4 + c] for x in range(width) for c in (2, 1, 0)] for y in range(height)]
        self.assertEqual(rows, piped)
        # The test picture has its bars above and its fine checks below: the rows are not upside down.
        self.assertGreater(len({tuple(rows[height - 4][x:x + 3]) for x in range(0, width * 3, 3)}), 2)
        self.assertEqual(rows[0], rows[1])

    def test_pixels_arrive_as_they_were(self):
        """Bit for bit, since the factory look shows footage as it is: of each frame what was put in."""
        frames = [[(i * 40503 + frame * 9973) % 65536 for i in range(37 * 21 * 3)] for frame in range(3)]
        self.clipfio("make-clip", "a.r3d", "--size", "37x21", "--rate", "24",
                     stdin=b"".join(struct.pack(f"<{len(samples)}H", *samples) for samples in frames))
        eight = [(samples[i + c] + 128) // 257 if c < 3 else 255
                 for samples in frames for i in range(0, len(samples), 3) for c in (2, 1, 0, 3)]
        self.assertEqual(list(self.pipe("a.r3d")), eight)
        for frame, samples in enumerate(frames):
            self.clipfio("frame", "a.r3d", frame, "--bits", "128", "--gamma", "2.2222", "-o", "f.pfm")
            floats = [value * 65535 for row in read_pfm(self.read("f.pfm"))[2] for value in row]
            self.assertLess(max(abs(a - b) for a, b in zip(floats, samples)), 0.01)

    def test_float_frames(self):
        self.sample()
        for gamma in ("0", "1"):
            self.clipfio("frame", "a.r3d", "0", "--bits", "128", "--gamma", gamma, "-o", "f.pfm")
            self.clipfio("frame", "a.r3d", "0", "--bits", "128", "--gamma", gamma, "-o", "f.png")
            width, height, floats = read_pfm(self.read("f.pfm"))
            png_width, png_height, bits, chunks, rows = self.png("f.png")
            self.assertEqual((width, height, bits), (png_width, png_height, 16))
            self.assertEqual("gAMA" in chunks, gamma == "1")
            for of_floats, of_png in zip(floats, rows):
                self.assertEqual([round(value * 65535) for value in of_floats], of_png)
        # In the gamma of a display the floats are those of the 8-bit frame; linear ones are darker.
        self.clipfio("frame", "a.r3d", "0", "--bits", "128", "--gamma", "2.2222", "-o", "f.pfm")
        self.clipfio("frame", "a.r3d", "0", "-o", "f8.png")
        display = sum(map(sum, read_pfm(self.read("f.pfm"))[2]))
        eight = sum(map(sum, self.png("f8.png")[4])) / 255
        linear = sum(map(sum, floats))
        self.assertAlmostEqual(display / eight, 1, delta=0.01)
        self.assertLess(linear, 0.9 * display)

    def test_output_names(self):
        self.sample()
        self.clipfio("frame", "a.r3d", "2")
        self.clipfio("frame", "a.r3d", "2", "--bits", "128")
        self.assertEqual(self.names(), ["a-2.pfm", "a-2.png", "a.r3d"])

    def test_frames_that_are_not_there(self):
        self.sample()
        self.cut("a.r3d", "cut.r3d", HEADER + 10 * 96 * 64 * 6)
        self.write("x.png", b"older")
        for args, message in [(("frame", "a.r3d", "12"), "frames 0 to 11"),
                              (("pipe", "a.r3d", "--to", "12"), "no frame 12"),
                              (("export", "a.r3d", "d", "--from", "20"), "no frame 20"),
                              (("frame", "cut.r3d", "11", "-o", "x.png"), "damaged or cut short"),
                              (("sheet", "cut.r3d", "-o", "x.png"), "damaged or cut short")]:
            with self.subTest(args):
                self.assertIn(message, self.clipfio(*args, expect=1).err)
        self.assertIn("lies behind", self.clipfio("pipe", "a.r3d", "--from", "5", "--to", "4", expect=2).err)
        self.assertEqual((self.names(), self.read("x.png")), (["a.r3d", "cut.r3d", "x.png"], b"older"))

    def test_frames_by_their_timecode(self):
        pixels = 16 * 16 * 3
        for rate, first, names in [
                ("24", "01:00:00:22", {"01:00:00:22": 0, "1:0:0:23": 1, "01:00:01:00": 2, "01:00:01:01": 3}),
                ("25", "23:59:59:23", {"23:59:59:24": 1, "00:00:00:00": 2, "00:00:00:01": 3}),
                ("29.97", "00:00:59;28", {"00:00:59:29": 1, "00:01:00;02": 2, "00:01:00:03": 3, "00:01:00:00": None}),
                ("29.97", "00:00:59:28", {"00:00:59:29": 1, "00:01:00:00": 2, "00:01:00;01": 3, "00:01:00:02": None}),
                ("59.94", "00:01:59;58", {"00:01:59;59": 1, "00:02:00;04": 2, "00:02:00;03": None}),
                ("23.976", "10:00:00:00", {"10:00:00:03": 3, "10:00:00:04": None, "09:59:59:23": None})]:
            self.clipfio("make-clip", "a.r3d", "--size", "16x16", "--rate", rate, "--timecode", first,
                         stdin=b"".join(bytes([0, 50 * n] * pixels) for n in range(4)))
            for name, frame in names.items():
                with self.subTest((rate, first, name)):
                    if frame is None:
                        result = self.clipfio("pipe", "a.r3d", "--from", name, expect=1)
                        self.assertIn(f"no frame {name}: the clip has frames {first.replace(';', ':')} to", result.err)
                        continue
                    raw = self.pipe("a.r3d", "--from", name, "--to", name)
                    self.assertEqual(raw, self.pipe("a.r3d", "--from", frame, "--to", frame))
                    self.assertNotEqual(raw, self.pipe("a.r3d", "--from", (frame + 1) % 4, "--to", (frame + 1) % 4))
        self.clipfio("frame", "a.r3d", "10:00:00:02")
        self.clipfio("frame", "a.r3d", "2", "-o", "two.png")
        self.assertEqual(self.read("a-2.png"), self.read("two.png"))
        self.clipfio("export", "a.r3d", "d", "--from", "10:00:00:01", "--to", "2")
        self.assertEqual(self.names("d"), ["000001.png", "000002.png"])
        self.assertIn("lies behind", self.clipfio("export", "a.r3d", "d", "--from", "10:00:00:03", "--to", "1",
                                                  expect=2).err)

    def test_outputs_that_cannot_be_written(self):
        self.sample()
        os.mkdir(self.path("folder"))
        for output, message in [("gone/f.png", "gone/f.png"), ("folder", "it is a folder"), ("a.r3d/f.png", "a.r3d/f.png")]:
            for command in [("frame", "a.r3d", "0"), ("sheet", "a.r3d"), ("waveform", "a.r3d"), ("audio", "a.r3d")]:
                with self.subTest((command, output)):
                    result = self.clipfio(*command, "-o", output, expect=1)
                    self.assertIn("cannot write", result.err)
                    self.assertIn(message, result.err)
        self.assertIn("cannot make the folder", self.clipfio("export", "a.r3d", "a.r3d/x", expect=1).err)
        self.assertEqual(self.names() + self.names("folder"), ["a.r3d", "folder"])

    def test_export(self):
        self.sample()
        result = self.clipfio("export", "a.r3d", "deep/one", "--from", "2", "--to", "9", "--jobs", "1")
        self.assertEqual(result.out, "")
        self.assertEqual(self.names("deep/one"), [f"{n:06}.png" for n in range(2, 10)])
        self.clipfio("export", "a.r3d", "many", "--jobs", "4")
        self.assertEqual(self.names("many"), [f"{n:06}.png" for n in range(12)])
        for n in (2, 5, 9):
            self.assertEqual(self.read(f"deep/one/{n:06}.png"), self.read(f"many/{n:06}.png"))
        self.assertNotEqual(self.read("many/000002.png"), self.read("many/000003.png"))
        self.clipfio("frame", "a.r3d", "5", "-o", "five.png")
        self.assertEqual(self.read("five.png"), self.read("many/000005.png"))

    def test_export_of_a_clip_that_was_cut(self):
        self.sample()
        self.cut("a.r3d", "cut.r3d", HEADER + 8 * 96 * 64 * 6)
        self.assertIn("cannot be decoded", self.clipfio("export", "cut.r3d", "d", "--jobs", "2", expect=1).err)
        for name in self.names("d"):
            self.assertEqual(self.png(os.path.join("d", name))[:2], (96, 64))

    def test_interrupt_leaves_whole_files(self):
        self.sample("a.r3d", "--size", "640x360", "--frames", "120", "--channels", "0")
        os.mkdir(self.path("d"))
        with self.start("export", "a.r3d", "d", "--jobs", "2") as process:
            self.wait_for_files(process, 3, "d")
            process.send_signal(signal.SIGINT)
            error = process.stderr.read().decode()
            self.assertEqual(process.wait(TIMEOUT), 1, error)
        self.assertIn("stopped", error)
        names = self.names("d")
        self.assertTrue(3 <= len(names) < 120, names)
        self.assertTrue(all(name.endswith(".png") and not name.startswith(".") for name in names), names)
        for name in (names[0], names[-1]):
            self.assertEqual(self.png(os.path.join("d", name))[:2], (640, 360))

    def test_pipe(self):
        self.sample("a.r3d", "--size", "96x64", "--frames", "12", "--rate", "23.976")
        result = self.clipfio("pipe", "a.r3d", "--scale", "0.5")
        self.assertEqual(len(result.raw), 12 * 48 * 32 * 4)
        self.assertIn("-f rawvideo -pix_fmt bgra -s 48x32 -r 24000/1001 -i -", result.err)
        self.assertEqual(self.pipe("a.r3d", "--from", "11"), self.pipe("a.r3d")[-96 * 64 * 4:])

    def test_pipe_whose_reader_goes_away(self):
        self.sample("a.r3d", "--size", "320x180", "--frames", "24")
        with self.start("pipe", "a.r3d") as process:
            process.stdout.read(1000)
            process.stdout.close()
            error = process.stderr.read().decode()
            self.assertEqual(process.wait(TIMEOUT), 0)
        self.assertEqual(len(error.splitlines()), 1, error)

    def test_a_reader_that_goes_away_hides_no_failure(self):
        with self.start("info", "--json", *(f"none{i}" for i in range(1000))) as process:
            process.stdout.close()
            process.stderr.read()
            self.assertEqual(process.wait(TIMEOUT), 1)

    @native_only
    def test_bar_on_a_terminal(self):
        self.sample()
        shown = self.on_terminal("export", "a.r3d", "d")
        self.assertIn("\rexport [", shown)
        self.assertIn("100%", shown)
        self.assertIn("12 of 12 frames", shown.split("\033[K")[-1])

    @native_only
    def test_the_bar_goes_before_the_closing_line(self):
        self.sample()
        for args in [("make-sample", "b.r3d", "--size", "16x16"), ("sheet", "a.r3d", "-o", "s.png"),
                     ("audio", "a.r3d", "-o", "s.wav"), ("waveform", "a.r3d", "-o", "w.png"), ("export", "a.r3d", "d")]:
            with self.subTest(args[0]):
                self.assertRegex(self.on_terminal(*args), r"\r\033\[Kclipfio: [^\033]*\n$")

    def test_sheet(self):
        self.sample()
        cell = (64 + 8, 42 + 22 + 8)
        for frames, columns, rows in [("1", 1, 1), ("5", 3, 2), ("12", 4, 3), ("400", 4, 3)]:
            with self.subTest(frames):
                self.clipfio("sheet", "a.r3d", "-o", "s.png", "--frames", frames, "--width", "64")
                self.assertEqual(self.png("s.png")[:3], (columns * cell[0] + 8, rows * cell[1] + 8, 8))
        # A clip that is almost all width, and a sheet that no PNG holds, which is said before the work.
        self.sample("wide.r3d", "--size", "1280x3", "--frames", "1")
        self.clipfio("sheet", "wide.r3d", "-o", "s.png", "--frames", "1", "--width", "64")
        self.assertEqual(self.png("s.png")[:2], (80, 1 + 22 + 16))
        self.sample("long.r3d", "--size", "64x64", "--frames", "400", "--channels", "0")
        self.assertIn("too large", self.clipfio("sheet", "long.r3d", "-o", "x.png", "--frames", "400", "--width", "2048",
                                                expect=1).err)
        self.clipfio("sheet", "a.r3d", "-o", "s.png", "--frames", "400", "--width", "64")
        # Another look gives another sheet.
        before = self.read("s.png")
        self.clipfio("settings", "a.r3d", "--set", "Saturation=0")
        self.clipfio("sheet", "a.r3d", "-o", "s.png", "--frames", "400", "--width", "64")
        self.assertNotEqual(self.read("s.png"), before)


if __name__ == "__main__":
    unittest.main()
