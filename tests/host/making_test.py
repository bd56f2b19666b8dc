"""Clips that the program makes: of raw frames, of films, of the test picture."""

import os
import signal
import subprocess
import unittest

from harness import TIMEOUT, CommandTest, make_wav

WIDTH, HEIGHT, FRAMES = 320, 180, 20
VIDEO = ("-f", "rawvideo", "-s", f"{WIDTH}x{HEIGHT}", "-r", "25")
# Shot by a telephone's camera, with sound: noise, motion and colours that no generator makes.
CAMERA_FILM = "/usr/share/forensics-samples/original-files/movie1/VID_20191220_170832.mp4"


def ffmpeg(*args, stdin=None):
    done = subprocess.run(["ffmpeg", "-v", "error", *map(str, args)], input=stdin, capture_output=True, timeout=TIMEOUT,
                          check=False)
    assert done.returncode == 0, done.stderr.decode()
    return done.stdout


class Making(CommandTest):
    def entry(self, name):
        return self.clipfio("info", "--json", name).json["files"][0]

    def test_sample_lengths(self):
        for args, frames, samples, rate in [
                ((), 48, 96000, 24), (("--frames", "5"), 5, 10000, 24), (("--seconds", "0.5"), 12, 24000, 24),
                (("--seconds", "0.01"), 1, 2000, 24), (("--seconds", "1e-300"), 1, 2000, 24),
                (("--frames", "1", "--rate", "1/10"), 1, 480000, 0.1),
                (("--frames", "30", "--rate", "29.97"), 30, 48048, 30000 / 1001)]:
            with self.subTest(args):
                self.clipfio("make-sample", "a.r3d", "--size", "16x16", *args)
                entry = self.entry("a.r3d")
                self.assertEqual((entry["video"]["frames"], entry["audio"]["samples"]), (frames, samples))
                self.assertAlmostEqual(entry["video"]["frame_rate"], rate, places=4)

    def test_sample_of_one_pixel(self):
        self.clipfio("make-sample", "a.r3d", "--size", "1x1", "--frames", "1")
        self.clipfio("frame", "a.r3d", "0", "-o", "f.png")

    def test_input_that_does_not_fit(self):
        frame = bytes(16 * 16 * 6)
        self.write("five.wav", make_wav(48000, 5, [0] * 10))
        self.write("none.wav", b"no sound")
        for data, audio, message in [(b"", None, "no frame"), (frame[:-1], None, "within frame 0"),
                                     (frame + b"x", None, "within frame 1"), (frame, "gone.wav", "gone.wav"),
                                     (frame, "none.wav", "none.wav"), (frame, "five.wav", "5 channels")]:
            with self.subTest(message):
                args = ("--audio", audio) if audio else ()
                result = self.clipfio("make-clip", "a.r3d", "--size", "16x16", "--rate", "24", *args, stdin=data,
                                      expect=1)
                self.assertIn(message, result.err)
                self.assertEqual(self.names(), ["five.wav", "none.wav"])

    def test_interrupt_leaves_no_clip(self):
        self.write("a.r3d", b"older")
        with self.start("make-sample", "a.r3d", "--frames", "5000") as process:
            self.wait_for_files(process, 2)
            process.send_signal(signal.SIGINT)
            self.assertIn(b"stopped", process.stderr.read())
            self.assertEqual(process.wait(TIMEOUT), 1)
        self.assertEqual((self.names(), self.read("a.r3d")), (["a.r3d"], b"older"))

    def test_film_of_a_camera(self):
        """Through the decoder, an encoder and its decoder; the sound arrives as it was."""
        film, back = self.path("film.mkv"), self.path("out.mov")
        ffmpeg("-i", CAMERA_FILM, "-frames:v", FRAMES, "-vf", f"scale={WIDTH}:{HEIGHT}", "-an", "-c:v", "ffv1",
               "-pix_fmt", "gbrp", film)
        ffmpeg("-i", CAMERA_FILM, "-vn", "-c:a", "pcm_s24le", "-ac", "2", self.path("sound.wav"))
        self.clipfio("make-clip", "film.r3d", "--size", f"{WIDTH}x{HEIGHT}", "--rate", "25", "--audio", "sound.wav",
                     stdin=ffmpeg("-i", film, "-f", "rawvideo", "-pix_fmt", "rgb48le", "-"))
        piped = self.clipfio("pipe", "film.r3d").raw
        # What the program says to be piped is what the encoder takes.
        ffmpeg(*VIDEO, "-pix_fmt", "bgra", "-i", "-", "-c:v", "libx264", "-qp", "8", "-pix_fmt", "yuv444p", back,
               stdin=piped)
        frames, again = (ffmpeg("-i", name, "-f", "rawvideo", "-pix_fmt", "bgra", "-") for name in (film, back))
        self.assertEqual((len(piped), len(again)), (len(frames), len(frames)))
        self.assertLess(worst_mean_difference(piped, frames), 1.0)
        self.assertLess(worst_mean_difference(again, frames), 3.0)
        self.assertGreater(worst_mean_difference(again, frames[::-1]), 10.0)
        self.clipfio("audio", "film.r3d", "-o", "back.wav")
        sound, heard = (ffmpeg("-i", self.path(name), "-f", "f32le", "-") for name in ("sound.wav", "back.wav"))
        self.assertEqual(sound, heard)
        self.assertGreater(len(set(sound)), 100)


def worst_mean_difference(one, other):
    """Of all frames, the largest mean difference of a sample; alpha does not count. Every 7th pixel is looked at."""
    size = WIDTH * HEIGHT * 4
    worst = 0.0
    for at in range(0, len(one), size):
        a, b = one[at:at + size], other[at:at + size]
        total = sum(abs(a[i + c] - b[i + c]) for i in range(0, size, 28) for c in range(3))
        worst = max(worst, total / (3 * (size // 28)))
    return worst


if __name__ == "__main__":
    unittest.main()
