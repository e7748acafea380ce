#!/usr/bin/python3
"""Sample rate converters beside each other, whole programs, everything in floats.

    bench/rates.py [--seconds N] PROGRAM_FOLDER

For each pair of rates: noise and distortion of a tone below that tone, the end of the pass band
within 0.1 dB (as a part of half the lower rate), the level of the loudest alias, the error in
length, and the processor time for ten minutes of noise, the best of three. Peers: sox, ffmpeg with
its own converter and with libsoxr as it comes.
"""
import argparse
import os
import subprocess
import tempfile

import numpy

PAIRS = [(16000, 44100), (22050, 44100), (22050, 48000), (48000, 44100), (44100, 22050), (48000, 8000)]


def programs(folder):
    convert = os.path.join(os.path.abspath(folder), "lectora-convert")
    ours = lambda quality: lambda i, o: [
        convert, "-f", "--quality", quality, "--raw-rate", i, "--raw-channels=1",
        "--raw-encoding=float", "-r", o, "-c1", "-e", "float", "in.raw", "out.raw",
    ]  # fmt: skip
    theirs = lambda *options: lambda i, o: [
        "ffmpeg", "-v", "error", "-y", "-threads", "1", "-f", "f32le", "-ar", i, "-ac", "1",
        "-i", "in.raw", *options, "-ar", o, "-f", "f32le", "out.raw",
    ]  # fmt: skip
    kind = lambda rate: ["-t", "f32", "-r", rate, "-c", "1"]
    return {
        "lectora-convert": ours("fine"),
        "  --quality fast": ours("fast"),
        "ffmpeg": theirs(),
        "ffmpeg, soxr": theirs("-af", "aresample=resampler=soxr"),
        "sox rate -h": lambda i, o: [
            "sox", "-D", *kind(i), "in.raw", *kind(o), "out.raw", "rate", "-h",
        ],  # fmt: skip
    }


def convert(command, samples, rates):
    """The output and the processor time."""
    samples.astype("<f4").tofile("in.raw")
    child = subprocess.Popen(command(*map(str, rates)), stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    child.returncode = status
    assert status == 0, command(*map(str, rates))
    return numpy.fromfile("out.raw", "<f4").astype(float), usage.ru_utime + usage.ru_stime


def tone(hertz, rate, seconds=2, level=0.5):
    return level * numpy.sin(2 * numpy.pi * hertz * numpy.arange(rate * seconds) / rate)


def fitted(samples, turn):
    """The tone's level, and what is left beside it, in the middle of the samples."""
    middle = samples[len(samples) // 4 : 3 * len(samples) // 4]
    angle = turn * numpy.arange(len(middle))
    waves = numpy.stack([numpy.cos(angle), numpy.sin(angle)], 1)
    found = numpy.linalg.lstsq(waves, middle, rcond=None)[0]
    return numpy.hypot(*found), numpy.sqrt(numpy.mean((middle - waves @ found) ** 2))


def decibels(ratio):
    return 20 * numpy.log10(max(ratio, 1e-12))


def measure(command, rates, seconds):
    half = min(rates) / 2
    out, _ = convert(command, tone(half * 0.3, rates[0]), rates)
    off = len(out) / (2 * rates[1]) - 1
    # A ratio that is met nearly moves the tone: it is looked for where it went.
    turn = 2 * numpy.pi * half * 0.3 / rates[1]
    turns = turn / (1 + off) * (1 + numpy.linspace(-1, 1, 41) * 1e-5) if abs(off) > 1e-4 else [turn]
    level, noise = min((fitted(out, one) for one in turns), key=lambda pair: pair[1])
    band = 0.5
    for part in numpy.arange(0.5, 1, 0.01):
        out, _ = convert(command, tone(half * part, rates[0]), rates)
        turn = 2 * numpy.pi * half * part / rates[1] / (1 + off)
        if abs(decibels(fitted(out, turn)[0] / 0.5)) > 0.1:
            break
        band = part
    alias = "-"
    if rates[0] > rates[1]:
        worst = 0
        for hertz in numpy.linspace(half * 1.03, rates[0] / 2 * 0.99, 12):
            out, _ = convert(command, tone(hertz, rates[0]), rates)
            quarter = len(out) // 4
            worst = max(worst, numpy.std(out[quarter:-quarter]) * numpy.sqrt(2) / 0.5)
        alias = f"{decibels(worst):.0f} dB"
    noise_in = numpy.random.default_rng(1).uniform(-0.5, 0.5, rates[0] * seconds)
    best = min(convert(command, noise_in, rates)[1] for _ in range(3))
    signal = decibels(level / numpy.sqrt(2) / noise)
    return f"{signal:5.0f} dB | {band:.2f} | {alias} | {off * 100:.3f} % | {best:.2f} s"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--seconds", type=int, default=600)
    parser.add_argument("programs")
    arguments = parser.parse_args()
    commands = programs(arguments.programs)
    print("| rates | program | signal to noise | pass band | aliases | length off | processor time |")
    print("|---|---|---|---|---|---|---|")
    with tempfile.TemporaryDirectory(dir="/dev/shm") as folder:
        os.chdir(folder)
        for rates in PAIRS:
            for name, command in commands.items():
                told = measure(command, rates, arguments.seconds)
                print(f"| {rates[0]} to {rates[1]} | {name} | {told} |", flush=True)


if __name__ == "__main__":
    main()
