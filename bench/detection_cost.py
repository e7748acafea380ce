#!/usr/bin/python3 -B
"""What it costs to find a voice for each language, as a part of the processor time of the engine that
is the quickest, eSpeak NG, which speaks the same text into nothing.

    bench/detection_cost.py BENCH_FOLDER        (build/bench/bin)

The texts: translated messages of the programs that are installed, 150 kB of each language, five to a
paragraph; and all of them once more in one text, whose language changes with each sentence, and with
each paragraph.
"""
import os
import random
import resource
import subprocess
import sys
import tempfile

import languages

LANGUAGES = ["en-US", "de", "fr", "es", "it", "ru", "cs"]
BYTES = 150000
IN_PARAGRAPH = 5
RUNS = 3


def sentences(language):
    if language == "en-US":
        with open("/usr/share/common-licenses/GPL-3", encoding="ascii") as file:
            texts = [" ".join(part.split()) for part in file.read().split(". ")]
    else:
        texts = languages.messages(language, languages.all_programs(language))
    random.Random(language).shuffle(texts)
    chosen, size = [], 0
    while size < BYTES:
        text = texts[len(chosen) % len(texts)]
        chosen.append(text if text[-1] in ".!?" else text + ".")
        size += len(chosen[-1].encode()) + 1
    return chosen


def written(folder, name, texts):
    path = os.path.join(folder, name)
    with open(path, "w", encoding="utf-8") as file:
        for at in range(0, len(texts), IN_PARAGRAPH):
            file.write(" ".join(texts[at : at + IN_PARAGRAPH]) + "\n\n")
    return path


def engine_seconds(language, path):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    command = ["espeak-ng", "-v", language.lower(), "-f", path, "--stdout"]
    subprocess.run(command, stdout=subprocess.DEVNULL, check=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def preparing_seconds(folder, language, path):
    """For one voice, and for a voice of each language."""
    with open(path, "rb") as text:
        command = [os.path.join(folder, "speech_bench"), "--detection", language]
        told = subprocess.run(command, stdin=text, stdout=subprocess.PIPE, check=True).stdout
    return [float(seconds) for seconds in told.split()]


def tell(what, size, alone, by_language, engine):
    print(f"{what:28} {size / 1000:4.0f} kB: prepared in {alone:.3f} s, with a voice for each language in "
          f"{by_language:.3f} s; spoken in {engine:.1f} s: {100 * (by_language - alone) / engine:.2f} % more", flush=True)


def in_turn(lists, at_once):
    """Some of each, until one of them is at its end."""
    count = min(map(len, lists)) // at_once * at_once
    return [text for at in range(0, count, at_once) for texts in lists for text in texts[at : at + at_once]]


def main():
    bench = sys.argv[1] if len(sys.argv) > 1 else "build/bench/bin"
    texts = {language: sentences(language) for language in LANGUAGES}
    rate = {}  # engine's and our own seconds for a byte
    with tempfile.TemporaryDirectory(prefix="lectora-detection-") as folder:
        for language in LANGUAGES:
            path = written(folder, language, texts[language])
            size = os.path.getsize(path)
            # In turn, the shortest each: what else the machine does is not to be told.
            runs = [(*preparing_seconds(bench, language, path), engine_seconds(language, path)) for _ in range(RUNS)]
            alone, by_language, engine = map(min, zip(*runs))
            rate[language] = engine / size, alone / size
            tell(language, size, alone, by_language, engine)
        for what, at_once in (("each sentence another one", 1), ("each paragraph another one", IN_PARAGRAPH)):
            mixed = in_turn(list(texts.values()), at_once)
            path = written(folder, "mixed", mixed)
            share = {key: sum(len(text.encode()) + 1 for text in texts[key][: len(mixed) // len(texts)]) for key in texts}
            engine, alone = (sum(size * rate[key][i] for key, size in share.items()) for i in (0, 1))
            by_language = min(preparing_seconds(bench, "en-US", path)[1] for _ in range(RUNS))
            tell(what, os.path.getsize(path), alone, by_language, engine)


main()
