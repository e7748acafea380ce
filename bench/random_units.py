#!/usr/bin/python3 -B
"""Random units through a voice, each a text of its own: which of them end without sound, although the
engine was handed something to say, and which kill it.

    bench/random_units.py [-n UNITS] [-s SEED] PROGRAM_FOLDER VOICE
"""
import argparse
import os
import random
import shutil
import subprocess
import tempfile
import wave

WORDS = (
    "the ferry was late because of storm U.S. Mr. 42 3.5 $5 10% (see page 7) \"quoted\" it's ... x@y.de "
    "http://a.b/c naïve café straße Привет мир 你好 日本 हिन्दी العربية 😀 ½ № € № a/b — … « » ‘q’ I II XIV 1/2 "
    "12:30 2024-05-06 C++ #tag @me & * ~ ^ | < > { } [ ] \\ ` _ = + - ; : , . ? !"
).split()
ODD = [b"\x01", b"\x07", b"\x1b[31m", b"\x7f", b"\x80", b"\xc3", b"\xe2\x80", b"\xf0\x9f", b"\xff", b"\xef\xbb\xbf"]
ODD += ["\u200b".encode(), "\u202e".encode(), "\u0301".encode(), b"----", b"????", b"!!!", b"...", b'""']
ODD += [b"<b>", b"&amp;", b"[[", b"]]", b"\\pau=100\\", b"<speak>"]
# Stands in front of the engine and keeps the text that it is handed.
KEEPER = """#!/bin/sh
for word; do [ -f "$word" ] && cat "$word"; done >> "$KEPT"
exec %s "$@"
"""


def unit():
    parts = []
    for _ in range(random.randint(1, 12)):
        parts.append(random.choice(ODD) if random.random() < 0.25 else random.choice(WORDS).encode())
    return random.choice([b" ", b" ", b""]).join(parts) + random.choice([b".", b"?", b"!", b"", b"\n"])


def frames_of(path):
    try:
        with wave.open(path) as sound:
            return sound.getnframes()
    except (OSError, EOFError, wave.Error):
        return 0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("-n", type=int, default=6000)
    parser.add_argument("-s", type=int, default=11)
    parser.add_argument("folder")
    parser.add_argument("voice")
    options = parser.parse_args()
    random.seed(options.s)
    say = os.path.join(options.folder, "lectora-say")
    row = options.voice.split(":")[0]
    engine = "text2wave" if row == "festival" else row
    handed, silent, told = 0, [], []
    with tempfile.TemporaryDirectory(prefix="lectora-units-") as folder:
        text, sound, kept = (os.path.join(folder, name) for name in ("text", "sound.wav", "kept"))
        with open(os.path.join(folder, engine), "w", encoding="ascii") as keeper:
            keeper.write(KEEPER % shutil.which(engine))
        os.chmod(keeper.name, 0o755)
        for other in {"festival", "espeak-ng", "flite"} - {row}:  # whose voices nobody needs
            os.symlink("/bin/true", os.path.join(folder, other))
        surroundings = dict(os.environ, PATH=f"{folder}:{os.environ['PATH']}", KEPT=kept)
        for _ in range(options.n):
            with open(text, "wb") as file:
                file.write(unit())
            for path in (sound, kept):
                if os.path.exists(path):
                    os.remove(path)
            command = [say, "--one-voice", "-v", options.voice, "-o", sound, text]
            run = subprocess.run(command, capture_output=True, env=surroundings, timeout=60, check=False)
            if not os.path.exists(kept) or os.path.getsize(kept) == 0:
                continue
            handed += 1
            with open(kept, "rb") as file:
                case = file.read()
            if frames_of(sound) < 1000:
                silent.append(case)
            if b"engine" in run.stderr:
                told.append((case, run.stderr))
    print(f"{options.voice}: {handed} of {options.n} units had something to say; {len(silent)} were silent, "
          f"{len(told)} failed")
    for case in silent[:8] + told[:8]:
        print("  ", case)


main()
