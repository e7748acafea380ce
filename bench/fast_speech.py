#!/usr/bin/python3
"""How well fast speech is understood: spoken fast by the engine, or spoken as usual and stretched.

    bench/fast_speech.py [VOICE [STRINGS]]     (en-us, 25)

Strings of eight digits by eSpeak NG, heard by a recogniser that knows nothing but digits (packages
pocketsphinx, pocketsphinx-en-us, soundstretch): the words it gets wrong, in percent, at speeds up to
six times the voice's own. It is no human ear, and slow speech is strange to it; what counts is the
difference between the two columns.
"""
import os
import random
import subprocess
import sys
import tempfile

DIGITS = "zero one two three four five six seven eight nine".split()
OWN_WORDS = 175  # a minute
SPEEDS = (100, 150, 200, 250, 300, 350, 400, 500, 600)


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def distance(said, heard):
    """Words that were changed, lost or added."""
    row = list(range(len(heard) + 1))
    for number, word in enumerate(said, 1):
        before, row = row, [number]
        for at, other in enumerate(heard):
            row.append(min(before[at + 1] + 1, row[at] + 1, before[at] + (word != other)))
    return row[-1]


def recognised(sound):
    run("sox", sound, "-r", "16000", "heard.wav", "pad", "0.2", "0.2")
    return run("pocketsphinx_continuous", "-infile", "heard.wav", "-jsgf", "digits.gram", "-frate", "200").split()


def main():
    voice = sys.argv[1] if len(sys.argv) > 1 else "en-us"
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 25
    chance = random.Random(5)
    strings = [[chance.choice(DIGITS) for _ in range(8)] for _ in range(count)]
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        with open("digits.gram", "w") as file:
            file.write(f"#JSGF V1.0;\ngrammar digits;\npublic <digits> = ({' | '.join(DIGITS)})+;\n")
        print(f"{'speed':>6} {'engine':>8} {'stretched':>10}")
        for percent in SPEEDS:
            wrong = {"engine": 0, "stretched": 0}
            for digits in strings:
                text = ", ".join(" ".join(half) for half in (digits[:4], digits[4:])) + "."
                run("espeak-ng", "-v", voice, "-s", str(OWN_WORDS * percent // 100), "-w", "engine.wav", text)
                run("espeak-ng", "-v", voice, "-w", "own.wav", text)
                run("soundstretch", "own.wav", "stretched.wav", f"-tempo={percent - 100}", "-speech")
                for way in wrong:
                    wrong[way] += distance(digits, recognised(way + ".wav"))
            said = count * len(strings[0])
            print(f"{percent:>5}% {100 * wrong['engine'] / said:7.1f}% {100 * wrong['stretched'] / said:9.1f}%", flush=True)


if __name__ == "__main__":
    main()
