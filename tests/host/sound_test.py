"""clipfio audio and waveform."""

import unittest

from harness import CommandTest, make_wav, read_png, read_wav

RATE = 48000


class Sound(CommandTest):
    def clip_with(self, channels, samples, bits=32):
        """A clip of one black frame whose sound is that of a file."""
        self.write("in.wav", make_wav(RATE, channels, samples, bits))
        self.clipfio("make-clip", "s.r3d", "--size", "16x16", "--rate", "24", "--audio", "in.wav",
                     stdin=bytes(16 * 16 * 6))

    def test_samples_arrive_as_they_were(self):
        for channels, mask in [(1, 0x1), (2, 0x3), (3, 0x7), (4, 0xF)]:
            with self.subTest(channels):
                # Powers of two over the whole range, each with both signs: exact in a float.
                samples = [sign << bit for bit in range(8, 31) for sign in (1, -1)] * channels + [0] * channels
                self.clip_with(channels, samples)
                self.clipfio("audio", "s.r3d")
                rate, found, found_mask, floats = read_wav(self.read("s.wav"))
                self.assertEqual((rate, found, found_mask), (RATE, channels, mask))
                self.assertEqual(list(floats), [sample / 2**31 for sample in samples])

    def test_parts(self):
        self.sample()
        total = self.clipfio("info", "--json", "a.r3d").json["files"][0]["audio"]["samples"]
        self.clipfio("audio", "a.r3d", "-o", "all.wav")
        everything = read_wav(self.read("all.wav"))[3]
        self.assertEqual(len(everything), total * 2)
        self.assertGreater(max(everything), 0.05)
        for first, count in [(0, 1), (1000, 7), (total - 5, 5), (100, 0), (total, 0)]:
            with self.subTest((first, count)):
                self.clipfio("audio", "a.r3d", "-o", "part.wav", "--from", first, "--count", count)
                self.assertEqual(read_wav(self.read("part.wav"))[3], everything[first * 2:(first + count) * 2])
        self.clipfio("audio", "a.r3d", "-o", "part.wav", "--from", total - 9)
        self.assertEqual(read_wav(self.read("part.wav"))[3], everything[-18:])
        for args in [("--from", total + 1), ("--from", total - 1, "--count", 2), ("--count", total + 1)]:
            with self.subTest(args):
                self.assertNotIn("there are not", self.clipfio("audio", "a.r3d", *args, expect=1).err)
                self.assertIn(f"has {total} samples", self.clipfio("audio", "a.r3d", *args, expect=1).err)

    def test_clips_without_their_sound(self):
        self.sample("mute.r3d", "--size", "16x16", "--frames", "2", "--channels", "0")
        self.sample("a.r3d", "--size", "16x16", "--frames", "24")
        self.cut("a.r3d", "cut.r3d", -100_000)
        for command in ("audio", "waveform"):
            with self.subTest(command):
                self.assertIn("has no sound", self.clipfio(command, "mute.r3d", "-o", "x", expect=1).err)
                self.assertIn("the sound ends", self.clipfio(command, "cut.r3d", "-o", "x", expect=1).err)
        self.assertEqual(self.names(), ["a.r3d", "cut.r3d", "mute.r3d"])

    def test_waveform(self):
        loud, silent = 0x40000000, 0
        self.clip_with(2, [loud, silent, -loud, silent] * 2000)
        self.clipfio("waveform", "s.r3d", "-o", "w.png", "--size", "40x80")
        width, height, bits, _, rows = read_png(self.read("w.png"))
        self.assertEqual((width, height, bits), (40, 80, 8))
        column = [tuple(row[60:63]) for row in rows]
        background, middle_left, middle_right = column[0], column[20], column[60]
        # The left lane is filled from -1/2 to 1/2, the right one has its middle line only.
        self.assertEqual(sum(colour == middle_left for colour in column[:40]), 18)
        self.assertEqual(sum(colour == middle_right for colour in column[40:]), 1)
        self.assertNotIn(background, (middle_left, middle_right))
        # Sound that reaches full scale, up or down, with 16 bits or more, has another colour.
        for bits, sample, red in [(16, 32767, True), (32, 2**31 - 1, True), (16, -32768, True), (16, 32766, False)]:
            with self.subTest((bits, sample)):
                self.clip_with(1, [sample, 0] * 2000, bits)
                self.clipfio("waveform", "s.r3d", "-o", "w.png", "--size", "40x80")
                rows = read_png(self.read("w.png"))[4]
                self.assertEqual(any(tuple(row[60:63]) == (230, 80, 60) for row in rows), red)
        self.clip_with(2, [loud, silent] * 2000)
        self.clipfio("waveform", "s.r3d", "-o", "w.png")
        self.assertEqual(read_png(self.read("w.png"))[:2], (1200, 320))


if __name__ == "__main__":
    unittest.main()
