#!/usr/bin/python3
"""A batch of documents as audiobooks, killed at random moments until it is done: nothing is lost or doubled.

bench/batch.py [DOCUMENTS [KILLS]] (50 and 40): with the engine and the encoder that are installed.
"""
import filecmp
import os
import random
import re
import signal
import subprocess
import sys
import tempfile
import time

TOP = os.path.dirname(os.path.dirname(os.path.realpath(__file__)))
SAY = os.path.join(TOP, "build/bin/lectora-say")
MOST_SECONDS = 30  # a document of some sentences
WORDS = "harbour lantern window thirty promise yellow engine mountain silver question butter window".split()


def document(path, number):
    """Some chapters of some sentences, of which no two documents have the same."""
    pick = random.Random(number)
    with open(path, "w") as file:
        file.write(f"<html lang=en><head><title>Document {number}</title></head><body>")
        for chapter in range(pick.randint(2, 5)):
            file.write(f"<h1>Chapter {chapter + 1}</h1>")
            for _ in range(pick.randint(1, 5)):
                words = " ".join(pick.choice(WORDS) for _ in range(pick.randint(4, 14)))
                file.write(f"<p>{words.capitalize()}.</p>")


def make(folder, documents, kills):
    """How often it was started, and the seconds; `kills` at random moments, then to its end."""
    command = [SAY, "-v", "espeak-ng:en-us", "--audiobook", "-t", "flac", "-o", folder + "/", *documents]
    begin, runs = time.monotonic(), 0
    while True:
        runs += 1
        run = subprocess.Popen(command, stderr=subprocess.PIPE, process_group=0)
        if runs <= kills:
            try:
                run.wait(random.uniform(0.05, 2.5))
            except subprocess.TimeoutExpired:
                pass
            # What a crash leaves is the worst; the engine of that moment goes on alone.
            run.send_signal(random.choice((signal.SIGKILL, signal.SIGKILL, signal.SIGTERM, signal.SIGINT)))
        try:
            told = run.communicate(timeout=60 + MOST_SECONDS * len(documents))[1].decode()
        except subprocess.TimeoutExpired:
            os.killpg(run.pid, signal.SIGKILL)
            sys.exit(f"run {runs} does not end")
        others = [line for line in told.splitlines() if not re.search("exists already|stopped", line)]
        if others:
            sys.exit("\n".join(others))
        done = [name for name in os.listdir(folder) if not name.startswith(".")]
        if runs > kills and len(done) >= len(documents):
            return runs, time.monotonic() - begin
        if runs > kills + 3:
            sys.exit(f"{len(done)} of {len(documents)} books are done after {runs} runs")


def main():
    count, kills = (int(word) for word in (sys.argv[1:] + ["50", "40"][len(sys.argv) - 1 :]))
    seed = int(time.time())
    random.seed(seed)
    with tempfile.TemporaryDirectory(prefix="lectora-batch-") as top:
        documents = [os.path.join(top, f"document-{number:02}.html") for number in range(count)]
        for number, path in enumerate(documents):
            document(path, number)
        folders = [os.path.join(top, name) for name in ("whole", "killed")]
        for folder in folders:
            os.mkdir(folder)
        _, plain = make(folders[0], documents, 0)
        runs, seconds = make(folders[1], documents, kills)
        names = sorted(os.listdir(folders[0]))
        _, *wrong = filecmp.cmpfiles(*folders, names, shallow=False)
        wrong = sum(map(len, wrong))
        left = [name for name in os.listdir(folders[1]) if name not in names]
        print(f"{count} documents, seed {seed}: {plain:.0f} s in one run; {runs - 1} kills and {seconds:.0f} s in {runs} runs; "
              f"{wrong} books differ, {len(left)} other files and folders are left")
        sys.exit(wrong > 0 or len(left) > 0)


main()
