#!/usr/bin/python3
"""Two libraries that stretch time without a change of pitch, on the same speech at twice its speed.

    bench/tempo.py [VOICE]

Through their own command-line programs (packages soundstretch and rubberband-cli): CPU seconds, how
far each moment's spectral envelope is from the original's at the same place in the text, and how far
the pitch strays.
"""
import os
import subprocess
import sys
import tempfile
import wave

import numpy

SENTENCES = (
    "The north wind and the sun were disputing which was the stronger. "
    "How many of them came, and why did nobody tell us? At half past ten, forty people left. "
)
COMMANDS = {
    "SoundTouch": ["soundstretch", "in.wav", "out.wav", "-tempo=100", "-speech"],
    "Rubber Band, faster": ["rubberband", "-q", "-t", "0.5", "in.wav", "out.wav"],
    "Rubber Band, finer": ["rubberband", "-q", "--fine", "-t", "0.5", "in.wav", "out.wav"],
}
LOUD = 400  # of 32767: quieter moments are pauses


def load(path):
    with wave.open(path) as file:
        sound = numpy.frombuffer(file.readframes(file.getnframes()), "<i2").astype(float)
        return sound, file.getframerate()


def envelope(sound, centre):
    """Decibels in some twenty bands, or None at the ends."""
    part = sound[max(0, centre - 256) : centre + 256]
    if len(part) < 512:
        return None
    power = numpy.abs(numpy.fft.rfft(part * numpy.hanning(512))) ** 2
    edges = numpy.unique(numpy.round(numpy.geomspace(3, 256, 24)).astype(int))
    return 10 * numpy.log10(numpy.add.reduceat(power, edges)[:-1] + 1000)


def pitch(sound, rate, centre):
    """Hertz, 0 where there is no clear pitch."""
    half = rate // 50
    part = sound[max(0, centre - half) : centre + half]
    if len(part) < 2 * half or numpy.sqrt((part * part).mean()) < LOUD:
        return 0
    part = part - part.mean()
    likeness = numpy.correlate(part, part, "full")[len(part) - 1 :]
    low, high = rate // 250, rate // 70
    period = low + int(numpy.argmax(likeness[low:high]))
    return rate / period if likeness[period] > 0.5 * likeness[0] else 0


def compare(original, stretched, rate):
    best = None
    for delay in range(-30, 31, 5):  # milliseconds that a library adds throughout
        distances, ratios = [], []
        for centre in range(rate, len(original) - rate, rate // 25):
            there = centre // 2 + delay * rate // 1000
            before, after = envelope(original, centre), envelope(stretched, there)
            here = original[centre - 256 : centre + 256]
            if before is None or after is None or numpy.sqrt((here**2).mean()) < LOUD:
                continue
            distances.append(numpy.sqrt(((before - after) ** 2).mean()))
            first, second = pitch(original, rate, centre), pitch(stretched, rate, there)
            if first and second and 0.8 < second / first < 1.25:
                ratios.append(abs(second / first - 1))
        found = (numpy.median(distances), numpy.median(ratios), numpy.percentile(ratios, 90))
        best = found if best is None or found[0] < best[0] else best
    return best


def main():
    voice = sys.argv[1] if len(sys.argv) > 1 else "kal_diphone"
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        with open("in.txt", "w", encoding="ascii") as text:
            text.write(SENTENCES * 12)
        subprocess.run(
            ["text2wave", "-eval", f"(voice_{voice})", "in.txt", "-o", "in.wav"], check=True
        )
        original, rate = load("in.wav")
        print(f"{len(original) / rate:.0f} s of {voice} at {rate} Hz")
        for name, command in COMMANDS.items():
            child = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            usage = os.wait4(child.pid, 0)[2]
            distance, stray, most = compare(original, load("out.wav")[0], rate)
            print(
                f"{name:20} {usage.ru_utime + usage.ru_stime:6.3f} s CPU, envelope {distance:.1f} dB off, "
                f"pitch {100 * stray:.1f} % off (nine tenths within {100 * most:.1f} %)"
            )


if __name__ == "__main__":
    main()
