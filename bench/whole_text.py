#!/usr/bin/python3
"""Is a long text spoken whole? Every sentence, in order, in the engine's own words and samples.

    bench/whole_text.py [BUILD_FOLDER [BYTES]]        (build/dev, 1,000,000)

lectora-say saves numbered sentences of the licence texts of the distribution. What the installed
engine was given and what it answered, run by run, is noted on the way; the saved file must hold just
that, in the order of the sentences. Takes minutes; prints figures; fails when anything is missing.
"""
import hashlib
import os
import re
import subprocess
import sys
import tempfile
import time

TOP = os.path.dirname(os.path.dirname(os.path.realpath(__file__)))
BUILD = os.path.realpath(sys.argv[1]) if len(sys.argv) > 1 else os.path.join(TOP, "build/dev")
BYTES = int(sys.argv[2]) if len(sys.argv) > 2 else 1000000
# Stands in front of text2wave and keeps the text of each run, and its samples as a sum.
NOTING_ENGINE = """#!/usr/bin/python3 -SE
import hashlib, os, shutil, subprocess, sys
status = subprocess.call(["/usr/bin/text2wave"] + sys.argv[1:])
note = os.path.join(os.environ["ENGINE_NOTES"], str(os.getpid()))
shutil.copy(sys.argv[3], note + ".txt")
with open(sys.argv[5], "rb") as file:
    header = file.read(44)
    samples = file.read()
with open(note + ".sum", "w") as file:
    file.write("%d %s" % (len(samples), hashlib.sha256(samples).hexdigest()))
sys.exit(status)
"""


def make_sentences():
    words = open("/usr/share/common-licenses/GPL-3", encoding="ascii", errors="ignore").read()
    found = [" ".join(part.split()) for part in re.findall(r"[A-Z][a-z ,\n]{40,200}\.", words)]
    sentences, size = [], 0
    while size < BYTES:
        number = len(sentences)
        sentences.append(f"Number {number}: {found[number % len(found)]}")
        size += len(sentences[-1]) + 2
    return sentences


def noted_runs(notes):
    """Text, bytes and sum of each run, in the order of the sentences in their texts."""
    runs = []
    for name in os.listdir(notes):
        if name.endswith(".txt"):
            with open(os.path.join(notes, name)) as text, open(
                os.path.join(notes, name[:-3] + "sum")
            ) as sums:
                size, digest = sums.read().split()
                runs.append((text.read(), int(size), digest))
    return sorted(runs, key=lambda run: int(re.search(r"Number (\d+)", run[0]).group(1)))


def main():
    with tempfile.TemporaryDirectory(prefix="lectora-bench-") as folder:
        sentences = make_sentences()
        text, saved, notes = (os.path.join(folder, name) for name in ("a.txt", "a.wav", "notes"))
        with open(text, "w") as file:
            file.write("\n\n".join(sentences) + "\n")
        os.mkdir(notes)
        engine = os.path.join(folder, "bin/text2wave")
        os.mkdir(os.path.dirname(engine))
        with open(engine, "w") as file:
            file.write(NOTING_ENGINE)
        os.chmod(engine, 0o755)
        path = os.path.dirname(engine) + ":" + os.environ["PATH"]
        start = time.monotonic()
        subprocess.run(
            [os.path.join(BUILD, "bin/lectora-say"), "-o", saved, text],
            check=True,
            env=dict(os.environ, ENGINE_NOTES=notes, PATH=path),
        )
        took = time.monotonic() - start
        runs = noted_runs(notes)
        given = " ".join(run[0] for run in runs).split()
        assert given == " ".join(sentences).split(), "the engine was not given every word in order"
        with open(saved, "rb") as file:
            frames = (os.path.getsize(saved) - file.seek(46)) // 2
            for number, (_, size, digest) in enumerate(runs):
                assert hashlib.sha256(file.read(size)).hexdigest() == digest, f"run {number} differs"
            assert not file.read(1), "there is more than the engine said"
        print(
            f"{os.path.getsize(text)} bytes, {len(sentences)} sentences in {len(runs)} runs: every "
            f"word given in order, all {frames} frames ({frames / 57600000:.1f} h) those of the "
            f"engine, in order; {took:.0f} s"
        )


main()
