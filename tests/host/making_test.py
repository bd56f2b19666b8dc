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
        for args, frames, samples in [((), 48, 96000), (("--frames", "5"), 5, 10000), (("--seconds", "0.5"), 12, 24000),
                                      (("--seconds", "0.01"), 1, 2000),
                                      (("--seconds", "1e-300"), 1, 2000), (("--frames", "1", "--rate", "1/10"), 1, 480000), (("--frames", "30", "--rate", "29.97"), 30, 48048)]:
            with self.subTest(args):
                self.clipfio("make-sample", "a.r3d", "--size", "16x16", *args)
                entry = self.entry("a.r3d")
                self.assertEqual((entry["video"]["frames"], entry["audio"]["samples"]), (frames, samples))

    def test_sample_of_one_pixel(self):
        self.clipfio("make-sample", "a.r3d", "--size", "1x1", "--frames", "1")
        self.clipfio("frame", "a.r3d", "0", "-o", "f.png")

    def test_timecode(self):
        frame = bytes(16 * 16 * 6)
        for rate, timecode, last in [("24", "10:20:30:23", "10:20:31:00"), ("25", "00:00:00:00", "00:00:00:01"),
                                     ("29.97", "01:00:00;00", "01:00:00:01"), ("59.94", "00:01:00;04", "00:01:00:05"),
                                     ("29.97", "00:09:59;29", "00:10:00:00")]:
            with self.subTest(timecode):
                self.clipfio("make-clip", "a.r3d", "--size", "16x16", "--rate", rate, "--timecode", timecode,
                             stdin=frame * 2)
                entry = self.entry("a.r3d")["timecode"]
                self.assertEqual((entry["first"], entry["last"]), (timecode.replace(";", ":"), last))

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

    def test_output_that_cannot_be_written(self):
        os.mkdir(self.path("folder.r3d"))
        for output in ("gone/a.r3d", "folder.r3d"):
            with self.subTest(output):
                self.assertIn(f"cannot write {output}",
                              self.clipfio("make-sample", output, "--size", "16x16", expect=1).err)
        self.assertEqual(self.names(), ["folder.r3d"])

    def test_interrupt_leaves_no_clip(self):
        self.write("a.r3d", b"older")
        with self.start("make-sample", "a.r3d", "--frames", "5000") as process:
            self.wait_for_files(process, 2)
            process.send_signal(signal.SIGINT)
            self.assertIn(b"stopped", process.stderr.read())
            self.assertEqual(process.wait(TIMEOUT), 1)
        self.assertEqual((self.names(), self.read("a.r3d")), (["a.r3d"], b"older"))

    def film_to_clip(self, *source, audio=()):
        """A film, as 8-bit frames, and the clip made of it."""
        film = self.path("film.mkv")
        ffmpeg("-y", *source, "-frames:v", FRAMES, "-vf", f"scale={WIDTH}:{HEIGHT}", "-an", "-c:v", "ffv1", "-pix_fmt",
               "gbrp", film)
        frames = ffmpeg("-i", film, "-f", "rawvideo", "-pix_fmt", "rgb48le", "-")
        self.clipfio("make-clip", "film.r3d", "--size", f"{WIDTH}x{HEIGHT}", "--rate", "25", *audio, stdin=frames)
        return ffmpeg("-i", film, "-f", "rawvideo", "-pix_fmt", "bgra", "-")

    def check_through_an_encoder(self, film):
        piped = self.clipfio("pipe", "film.r3d").raw
        self.assertEqual(len(piped), len(film))
        self.assertLess(worst_mean_difference(piped, film), 1.0)
        # What the program says to be piped is what the encoder takes.
        ffmpeg(*VIDEO, "-pix_fmt", "bgra", "-i", "-", "-y", "-c:v", "libx264", "-qp", "8", "-pix_fmt", "yuv444p",
               self.path("out.mov"), stdin=piped)
        back = ffmpeg("-i", self.path("out.mov"), "-f", "rawvideo", "-pix_fmt", "bgra", "-")
        self.assertEqual(len(back), len(film))
        self.assertLess(worst_mean_difference(back, film), 3.0)
        return back

    def test_film_through_an_encoder_and_back(self):
        """Detail at all scales, flat areas and moving edges go through the decoder, an encoder and its decoder."""
        for source in (f"mandelbrot=s={WIDTH}x{HEIGHT}:r=25", f"testsrc2=s={WIDTH}x{HEIGHT}:r=25"):
            with self.subTest(source):
                film = self.film_to_clip("-f", "lavfi", "-i", source)
                back = self.check_through_an_encoder(film)
                self.assertGreater(worst_mean_difference(back, film[::-1]), 10.0)

    def test_film_of_a_camera(self):
        ffmpeg("-i", CAMERA_FILM, "-vn", "-c:a", "pcm_s24le", "-ac", "2", self.path("sound.wav"))
        self.check_through_an_encoder(self.film_to_clip("-i", CAMERA_FILM, audio=("--audio", "sound.wav")))
        self.clipfio("audio", "film.r3d", "-o", "back.wav")
        sound, back = (ffmpeg("-i", self.path(name), "-f", "f32le", "-") for name in ("sound.wav", "back.wav"))
        self.assertEqual(len(sound), len(back))
        self.assertEqual(sound, back)
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
