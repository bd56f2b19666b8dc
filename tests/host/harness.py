"""What the tests of the command line share: the program, a folder of its own, sample clips, readers of its files."""

import json
import os
import shlex
import shutil
import struct
import subprocess
import tempfile
import time
import unittest
import zlib

# The program, with what starts it before it where the system does not run it by itself.
COMMAND = shlex.split(os.environ.get("CLIPFIO", ""))
native_only = unittest.skipIf(len(COMMAND) > 1, "the program runs under another system; the README says why this cannot")
TIMEOUT = 120


class Result:
    def __init__(self, done):
        self.status = done.returncode
        self.raw = done.stdout
        # Lines end as the system's do.
        self.out = (done.stdout or b"").decode("utf-8", "replace").replace("\r\n", "\n")
        self.err = done.stderr.decode("utf-8", "replace").replace("\r\n", "\n")

    @property
    def json(self):
        return json.loads(self.out)


def environment(**changes):
    """The test run's environment; None takes a variable away."""
    env = {**os.environ, **changes}
    return {name: value for name, value in env.items() if value is not None}


class CommandTest(unittest.TestCase):
    """Each test works in an empty folder of its own."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="clipfio-test-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.env = environment(KT_REGISTRY=os.path.join(self.folder, ".registry"))

    def clipfio(self, *args, stdin=b"", stdout=subprocess.PIPE, env=None, expect=0, command=COMMAND):
        def run(**changes):
            return subprocess.run([*command, *map(str, args)], input=stdin, stdout=stdout, stderr=subprocess.PIPE,
                                  cwd=self.folder, env={**(env or self.env), **changes}, timeout=TIMEOUT, check=False)
        done = run()
        # GCC 12's leak checker dies itself over a few runs, always the same ones: those do without it.
        if b"LeakSanitizer has encountered a fatal error" in done.stderr:
            done = run(ASAN_OPTIONS=os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0")
        result = Result(done)
        if expect is not None:
            self.assertEqual(result.status, expect, f"{args}\n{result.err}")
        if expect == 0:
            self.assertNotIn("runtime error", result.err)
        return result

    def start(self, *args, prepare=None):
        """The program at work, with pipes; `prepare` runs before it in its process."""
        return subprocess.Popen([*COMMAND, *args], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, cwd=self.folder, env=self.env, preexec_fn=prepare)

    def wait_for_files(self, process, count, folder=""):
        deadline = time.monotonic() + TIMEOUT
        while len(self.names(folder)) < count and time.monotonic() < deadline and process.poll() is None:
            time.sleep(0.002)

    def on_terminal(self, *args):
        """What a terminal shows as standard error of a run that must succeed."""
        terminal, screen = os.openpty()
        subprocess.run([*COMMAND, *args], stderr=screen, cwd=self.folder, env=self.env, timeout=TIMEOUT, check=True)
        os.close(screen)
        shown = b""
        try:
            while part := os.read(terminal, 100000):
                shown += part
        except OSError:  # nobody has the screen open any more
            pass
        os.close(terminal)
        return shown.decode()

    def program_without_decoder(self):
        """The command line of a copy of the program with the module beside it and no decoder library."""
        folder = os.path.dirname(COMMAND[-1])
        os.mkdir(self.path("alone"))
        for name in [os.path.basename(COMMAND[-1]), "clipfio.dll", "libclipfio.so"]:
            if os.path.exists(os.path.join(folder, name)):
                shutil.copy2(os.path.join(folder, name), self.path("alone"))
        return [*COMMAND[:-1], os.path.join(self.path("alone"), os.path.basename(COMMAND[-1]))]

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, data):
        with open(self.path(name), "wb") as file:
            file.write(data)
        return name

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def names(self, folder=""):
        return sorted(name for name in os.listdir(self.path(folder)) if name != ".registry")

    def sample(self, name="a.r3d", *args):
        self.clipfio("make-sample", name, *(args or ("--size", "96x64", "--frames", "12")))
        return name

    def cut(self, source, name, size):
        """A clip that was cut short: the first `size` bytes, from the end when that is negative."""
        return self.write(name, self.read(source)[:size])


def read_png(data):
    """(width, height, bits, chunk names, rows of samples); samples of all channels in one list a row."""
    assert data[:8] == b"\x89PNG\r\n\x1a\n", "no PNG"
    at, names, header = 8, [], None
    while at < len(data):
        size, name = struct.unpack_from(">I4s", data, at)
        body = data[at + 8:at + 8 + size]
        assert struct.unpack_from(">I", data, at + 8 + size)[0] == zlib.crc32(name + body), "bad checksum"
        names.append(name.decode())
        header = struct.unpack(">IIBBBBB", body) if name == b"IHDR" else header
        at += size + 12
    assert names[0] == "IHDR" and names[-1] == "IEND"
    width, height, bits, colour, _, _, interlace = header
    assert colour == 2 and interlace == 0
    raw = subprocess.run(["ffmpeg", "-v", "error", "-f", "png_pipe", "-i", "-", "-f", "rawvideo", "-pix_fmt",
                          "rgb24" if bits == 8 else "rgb48be", "-"], input=data, capture_output=True, timeout=TIMEOUT,
                         check=True).stdout
    values = raw if bits == 8 else struct.unpack(f">{width * height * 3}H", raw)
    return width, height, bits, names, [list(values[y * width * 3:(y + 1) * width * 3]) for y in range(height)]


def read_pfm(data):
    """(width, height, rows of floats from the top)."""
    kind, size, scale, body = data.split(b"\n", 3)
    assert kind == b"PF" and float(scale) < 0
    width, height = map(int, size.split())
    floats = struct.unpack(f"<{width * height * 3}f", body)
    rows = [floats[y * width * 3:(y + 1) * width * 3] for y in range(height)]
    return width, height, rows[::-1]


def read_wav(data):
    """(rate, channels, mask, floats) of a file of 32-bit floats."""
    assert data[:4] == b"RIFF" and data[8:12] == b"WAVE"
    assert struct.unpack_from("<I", data, 4)[0] == len(data) - 8
    at, chunks = 12, {}
    while at < len(data):
        name, size = struct.unpack_from("<4sI", data, at)
        chunks[name] = data[at + 8:at + 8 + size]
        assert len(chunks[name]) == size
        at += 8 + size + (size & 1)
    tag, channels, rate, bytes_per_second, block, bits, _, valid, mask = struct.unpack_from("<HHIIHHHHI",
                                                                                           chunks[b"fmt "])
    assert (tag, bits, valid) == (0xFFFE, 32, 32) and chunks[b"fmt "][24:26] == b"\x03\x00"
    assert block == 4 * channels and bytes_per_second == rate * block
    floats = struct.unpack(f"<{len(chunks[b'data']) // 4}f", chunks[b"data"])
    assert struct.unpack("<I", chunks[b"fact"])[0] * channels == len(floats)
    return rate, channels, mask, floats


def make_wav(rate, channels, samples, bits=32):
    """A plain PCM file; `samples` are interleaved integers."""
    width = bits // 8
    data = b"".join(sample.to_bytes(width, "little", signed=True) for sample in samples)
    fmt = struct.pack("<HHIIHH", 1, channels, rate, rate * channels * width, channels * width, bits)
    body = b"WAVE" + b"fmt " + struct.pack("<I", len(fmt)) + fmt + b"data" + struct.pack("<I", len(data)) + data
    return b"RIFF" + struct.pack("<I", len(body)) + body
