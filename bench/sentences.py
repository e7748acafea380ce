#!/usr/bin/python3
"""The times of an audiobook's sentences against its sound: subtitles of a document, and for sentences
spread over it where the engine's own sound of each is found in the book.

    bench/sentences.py [-v VOICE] [-n SENTENCES] PROGRAM_FOLDER DOCUMENT [TYPE...]
"""
import argparse
import os
import re
import subprocess
import tempfile

import numpy
from audiobook import RATE, decoded, lateness

EARLIER = 0.5  # seconds, from which on it is looked for
ROW = re.compile(r"(\d+):(\d+):(\d+),(\d+) --> .*\n(.+)")


def own_sound(voice, text, folder):
    """The engine's own sound of the text, and the milliseconds of silence that it begins with."""
    engine, name = voice.split(":", 1)
    written, spoken = (os.path.join(folder, "own." + ending) for ending in ("txt", "wav"))
    with open(written, "w", encoding="utf-8") as file:
        file.write(text)
    commands = {
        "espeak-ng": ["espeak-ng", "-v", name, "-f", written, "-w", spoken],
        "festival": ["text2wave", "-eval", f"(voice_{name})", written, "-o", spoken],
    }
    subprocess.run(commands[engine], check=True)
    own = decoded(spoken, 0, 60)
    return own, numpy.flatnonzero(abs(own) > 50)[0] * 1000 / RATE


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("-v", "--voice", default="espeak-ng:en-us")
    parser.add_argument("-n", type=int, default=20)
    parser.add_argument("folder")
    parser.add_argument("document")
    parser.add_argument("types", nargs="*", default=["flac", "mp3", "opus", "m4b"])
    options = parser.parse_args()
    say = os.path.abspath(os.path.join(options.folder, "lectora-say"))
    for kind in options.types:
        with tempfile.TemporaryDirectory(prefix="lectora-sentences-") as folder:
            book = os.path.join(folder, "book." + kind)
            make = [say, "--one-voice", "-v", options.voice, "--audiobook", "--subtitles=srt"]
            subprocess.run([*make, "-o", book, options.document], check=True)
            with open(os.path.join(folder, "book.srt"), encoding="utf-8") as file:
                rows = [row for row in ROW.findall(file.read()) if 30 < len(row[4]) < 200]
            late = []
            for hours, minutes, seconds, milliseconds, text in rows[:: max(1, len(rows) // options.n)][: options.n]:
                begin = int(hours) * 3600 + int(minutes) * 60 + int(seconds) + int(milliseconds) / 1000
                own, silence = own_sound(options.voice, text, folder)
                at, likeness = lateness(decoded(book, max(begin - EARLIER, 0), 3), own)
                late.append((at - min(begin, EARLIER) * 1000 - silence, likeness))
            sure = [at for at, likeness in late if likeness > 0.6]
            print(f"{kind:5} {len(sure)} of {len(late)} sentences were recognised and begin {min(sure):.0f} to "
                  f"{max(sure):.0f} ms behind their times", flush=True)


main()
