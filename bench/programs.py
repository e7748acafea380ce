#!/usr/bin/python3
"""lectora-convert beside its peers, whole processes.

    bench/programs.py [--runs N] [--only WORD] PROGRAM_FOLDER

Ten minutes of speech in memory-backed files; each program does the same work in turn, runs
interleaved, medians of user plus system time compared. Behind each side stands how good its output
is: signal-to-noise ratio and peak of a tone. Peers: sndfile-convert, sox, toast. Rates are compared
by rates.py.
"""
import argparse
import array
import math
import os
import shutil
import statistics
import struct
import subprocess
import sys
import tempfile

MINUTES = 10
TEXT = "The north wind and the sun were disputing which was the stronger. "


def run(command, output=None, folder=None):
    """CPU seconds of one run."""
    sink = open(os.path.join(folder, output), "wb") if output else subprocess.DEVNULL
    child = subprocess.Popen(command, cwd=folder, stdout=sink, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    child.returncode = 0
    if status != 0:
        sys.exit(f"failed: {' '.join(command)}")
    return usage.ru_utime + usage.ru_stime


def largest_memory(command, folder):
    """Megabytes. Through a small program: what Python would be told of its child includes Python."""
    told = subprocess.run(
        ["/usr/bin/time", "-f", "%M", *command], cwd=folder, check=True, capture_output=True
    )
    return int(told.stderr.split()[-1]) / 1024


def wav(path, samples, channels, rate):
    data = samples.tobytes()
    head = struct.pack(
        "<4sI8sIHHIIHH4sI",
        b"RIFF",
        len(data) + 36,
        b"WAVEfmt ",
        16,
        1,
        channels,
        rate,
        rate * channels * 2,
        channels * 2,
        16,
        b"data",
        len(data),
    )
    with open(path, "wb") as file:
        file.write(head + data)


def tones(frequencies, rate, channels, level, seconds=2):
    step = [2 * math.pi * f / rate for f in frequencies]
    phase = [1.7 * i * i for i in range(len(frequencies))]
    values = (
        round(level * sum(math.sin(s * i + p) for s, p in zip(step, phase)))
        for i in range(rate * seconds)
    )
    return array.array("h", (value for value in values for _ in range(channels)))


def tone_quality(samples, turn):
    """Signal-to-noise ratio in dB, the tone's exact frequency being searched for, and the peak."""
    part = samples[len(samples) // 3 :][:6000]

    def noise(turn):
        # Least squares of sine, cosine and offset.
        c = [math.cos(turn * i) for i in range(len(part))]
        s = [math.sin(turn * i) for i in range(len(part))]
        cc, ss, cs = (sum(map(lambda a, b: a * b, x, y)) for x, y in ((c, c), (s, s), (c, s)))
        pc, ps = (sum(map(lambda a, b: a * b, part, x)) for x in (c, s))
        det = cc * ss - cs * cs
        a, b = (pc * ss - ps * cs) / det, (ps * cc - pc * cs) / det
        return sum((p - a * x - b * y) ** 2 for p, x, y in zip(part, c, s))

    low, high = turn * 0.997, turn * 1.003
    steps = [low + (high - low) * i / 40 for i in range(41)]
    best = min(steps, key=noise)
    width = steps[1] - steps[0]
    for _ in range(22):
        width /= 2
        best = min((best - width, best, best + width), key=noise)
    power = sum(p * p for p in part)
    return 10 * math.log10(power / max(noise(best), 1e-6)), max(map(abs, samples))


class Bench:
    def __init__(self, programs, runs, only):
        self.convert = os.path.join(os.path.abspath(programs), "lectora-convert")
        self.runs = runs
        self.only = only
        base = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
        self.folder = tempfile.mkdtemp(prefix="lectora-bench-", dir=base)

    def path(self, name):
        return os.path.join(self.folder, name)

    def sox(self, *words):
        subprocess.run(
            ["sox", "-D", *words], cwd=self.folder, check=True, stderr=subprocess.DEVNULL
        )

    def make_speech(self):
        with open(self.path("text"), "w") as file:
            file.write(TEXT * 16)
        subprocess.run(["text2wave", "text", "-o", "short.wav"], cwd=self.folder, check=True)
        self.sox(
            "short.wav", "-r", "16000", "speech.wav", "repeat", "99", "trim", "0", str(60 * MINUTES)
        )
        for name, rate, channels in (
            ("48s", 48000, 2),
            ("44m", 44100, 1),
            ("44s", 44100, 2),
            ("16m", 16000, 1),
            ("8m", 8000, 1),
        ):
            self.sox("speech.wav", "-r", str(rate), "-c", str(channels), name + ".wav")
        self.sox("8m.wav", "-t", "raw", "8m.raw")
        subprocess.run(
            ["toast", "-l", "-c", "8m.raw"],
            stdout=open(self.path("8m.gsm"), "wb"),
            cwd=self.folder,
            check=True,
        )
        self.sox("16m.wav", "16m.vox")

    def heard(self, name, reading):
        """An output as samples of its first channel, and its rate."""
        if reading is None:
            reading = [name]
        elif name.endswith(".vox-ours"):  # sox has no decoder for the leak
            subprocess.run(
                [self.convert, "-f", *reading, name, "heard.wav"], cwd=self.folder, check=True
            )
            reading = ["heard.wav"]
        else:
            reading = [*reading, name]
        self.sox(*reading, "heard.s16.wav", "remix", "1")
        self.sox("heard.s16.wav", "-t", "raw", "-e", "signed", "-b", "16", "-L", "heard.s16")
        samples = array.array("h")
        with open(self.path("heard.s16"), "rb") as file:
            samples.frombytes(file.read())
        with open(self.path("heard.s16.wav"), "rb") as file:
            rate = struct.unpack("<I", file.read(28)[24:28])[0]
        return samples, rate

    def quality(self, side, rate_in, channels):
        frequency = 441
        self.quality_input(side, tones([frequency], rate_in, channels, 12000), channels, rate_in)
        samples, rate = self.heard(side["output"], side.get("reading"))
        turn = 2 * math.pi * frequency / rate
        ratio, peak = tone_quality(samples, turn)
        return f"SNR {ratio:5.1f} dB, peak {peak}"

    def quality_input(self, side, samples, channels, rate):
        wav(self.path("quality.wav"), samples, channels, rate)
        self.sox("quality.wav", "-t", "raw", "quality.raw")
        if "prepare" in side:
            run(side["prepare"], side.get("prepared"), self.folder)
        run(side["quality"], side["output"] if side.get("to_stdout") else None, self.folder)

    def compare(self, work, aim, ours, peers, rate_in, channels):
        if self.only not in work:
            return
        sides = [ours, *peers]
        times = [[] for _ in sides]
        for _ in range(self.runs):
            for side, taken in zip(sides, times):
                taken.append(
                    run(
                        side["command"],
                        side["output"] if side.get("to_stdout") else None,
                        self.folder,
                    )
                )
        medians = [statistics.median(taken) for taken in times]
        print(f"\n{work}")
        for side, median in zip(sides, medians):
            told = self.quality(side, rate_in, channels)
            print(f"  {side['name']:16} {median * 1000:8.1f} ms   {told}")
        for side, median, limit in zip(peers, medians[1:], aim):
            print(f"  ratio to {side['name']}: {medians[0] / median:.2f} (aim {limit})", flush=True)

    def ours(self, source, output, *options, reading=None, rate=None, raw=()):
        words = [self.convert, "-f", *options]
        kind = os.path.splitext(source)[1]
        return {
            "name": "lectora-convert",
            "command": [*words, *raw, source, output],
            "output": output,
            "quality": [*words, *raw, "quality" + (kind if kind == ".raw" else ".wav"), output],
            "reading": reading,
            "rate": rate,
        }

    def sndfile(self, source, output, *options, reading=None):
        return {
            "name": "sndfile-convert",
            "command": ["sndfile-convert", *options, source, output],
            "output": output,
            "quality": ["sndfile-convert", *options, "quality.wav", output],
            "reading": reading,
        }

    def by_sox(self, source, output, before=(), after=(), reading=None, rate=None):
        return {
            "name": "sox",
            "command": ["sox", "-D", *before, source, *output, *after],
            "output": output[-1],
            "quality": ["sox", "-D", *before, "quality.wav", *output, *after],
            "reading": reading,
            "rate": rate,
        }

    def formats(self):
        law = ["-t", "al", "-r", "48000", "-c", "2"]
        self.compare(
            "WAV to WAV, 48 kHz stereo",
            [0.75],
            self.ours("48s.wav", "a.wav"),
            [self.sndfile("48s.wav", "b.wav", "-pcm16")],
            48000,
            2,
        )
        self.compare(
            "WAV to AU mu-law",
            [0.75],
            self.ours("48s.wav", "a.au", "-e", "ulaw"),
            [self.sndfile("48s.wav", "b.au", "-ulaw")],
            48000,
            2,
        )
        self.compare(
            "WAV to raw A-law",
            [0.75],
            self.ours("48s.wav", "a.al", reading=law),
            [self.by_sox("48s.wav", ["-t", "al", "b.al"], reading=law)],
            48000,
            2,
        )
        self.compare(
            "WAV to AIFF",
            [0.75],
            self.ours("48s.wav", "a.aiff"),
            [self.sndfile("48s.wav", "b.aiff", "-pcm16")],
            48000,
            2,
        )

    def codecs(self):
        raw = ["--raw-rate=8000", "--raw-channels=1"]
        linear = ["-t", "raw", "-r", "8000", "-c", "1", "-e", "signed", "-b", "16"]
        toast = {
            "name": "toast",
            "command": ["toast", "-l", "-c", "8m.raw"],
            "output": "b.gsm",
            "to_stdout": True,
            "quality": ["toast", "-l", "-c", "quality.raw"],
        }
        self.compare(
            "GSM encode, 8 kHz mono", [0.8], self.ours("8m.raw", "a.gsm", raw=raw), [toast], 8000, 1
        )
        prepare = {"prepare": ["toast", "-l", "-c", "quality.raw"], "prepared": "quality.gsm"}
        ours = (
            self.ours("8m.gsm", "a.raw", reading=linear)
            | prepare
            | {"quality": [self.convert, "-f", "quality.gsm", "a.raw"]}
        )
        toast = {
            "name": "toast -d",
            "command": ["toast", "-d", "-l", "-c", "8m.gsm"],
            "output": "b.raw",
            "to_stdout": True,
            "quality": ["toast", "-d", "-l", "-c", "quality.gsm"],
            "reading": linear,
        } | prepare
        self.compare("GSM decode, 8 kHz mono", [0.85], ours, [toast], 8000, 1)
        vox = ["-t", "vox", "-r", "16000"]
        told = ["--raw-rate=16000", "--raw-encoding=adpcm"]
        self.compare(
            "VOX encode, 16 kHz mono",
            [0.8],
            self.ours("16m.wav", "a.vox-ours", "-r", "16000", "-t", "vox", reading=told),
            [self.by_sox("16m.wav", ["b.vox"], reading=vox)],
            16000,
            1,
        )
        prepare = {"prepare": [self.convert, "-f", "-r", "16000", "quality.wav", "quality.vox"]}
        ours = self.ours("16m.vox", "a.wav", raw=["--raw-rate=16000"]) | prepare
        ours["quality"] = [self.convert, "-f", "--raw-rate=16000", "quality.vox", "a.wav"]
        theirs = self.by_sox("16m.vox", ["b.wav"], before=["-r", "16000"]) | {
            "prepare": ["sox", "-D", "quality.wav", "quality.vox"]
        }
        theirs["quality"] = ["sox", "-r", "16000", "quality.vox", "b.wav"]
        self.compare("VOX decode, 16 kHz mono", [0.4], ours, [theirs], 16000, 1)

    def channels(self):
        self.compare(
            "mono to stereo, 44.1 kHz",
            [0.4],
            self.ours("44m.wav", "a.wav", "-c", "2"),
            [self.by_sox("44m.wav", ["b.wav"], after=["remix", "1", "1"])],
            44100,
            1,
        )

    def memory(self):
        if self.only not in "memory":
            return
        print("\nmemory, 16 kHz mono to mu-law")
        for name, hours in (("ten minutes", 1 / 6), ("ten hours", 10)):
            size = int(16000 * 2 * 3600 * hours)
            wav(self.path("long.wav"), array.array("h"), 1, 16000)
            with open(self.path("long.wav"), "r+b") as file:
                file.seek(40)
                file.write(struct.pack("<I", size))
                file.truncate(44 + size)
            ours = largest_memory([self.convert, "-f", "long.wav", "a.ul"], self.folder)
            peer = largest_memory(["sox", "long.wav", "-t", "ul", "b.ul"], self.folder)
            print(
                f"  {name:12} lectora-convert {ours:5.1f} MB, sox {peer:5.1f} MB (aim: under 10 MB, not growing)"
            )


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("programs", help="folder that holds lectora-convert")
    parser.add_argument("--runs", type=int, default=9)
    parser.add_argument("--only", default="", help="works whose names hold this")
    options = parser.parse_args()
    bench = Bench(options.programs, options.runs, options.only)
    try:
        bench.make_speech()
        bench.formats()
        bench.codecs()
        bench.channels()
        bench.memory()
    finally:
        shutil.rmtree(bench.folder)


if __name__ == "__main__":
    main()
