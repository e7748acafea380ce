#!/usr/bin/python3 -B
"""Does what a voice is heard to say stand for what its engine says by itself? Every voice of the engines
that are installed speaks sentences of its language through lectora-say, and through the engine's own
command; the two sounds are laid over each other.

    bench/own_sound.py [-n SENTENCES] [-l LEAST] PROGRAM_FOLDER [VOICE_OR_ENGINE...]

The sentences: the sample that the window of voices lets one hear, ten of plain_sentences.txt or, where a
language has none there, as many translated messages of the programs that are installed. Where the sounds
differ the engine is handed the text as the voice is handed it: then the sentence is "prepared", and
printed, as is one that the engine has nothing to say of. Fails when a sound is missing that the engine
itself makes, or correlates less than LEAST (0.99) with both.
"""
import argparse
import os
import random
import re
import subprocess
import sys
import tempfile
import wave

import numpy

import languages
from audiobook import RATE, decoded

TOP = os.path.dirname(os.path.dirname(os.path.realpath(__file__)))
STOPS = ".!?…。！？।॥։؟።။၊"
ONE_SENTENCE = re.compile(rf"[^{STOPS}:;\n]{{8,150}}[{STOPS}]?")
CATALOGS = {"cmn": "zh_CN", "pt-BR": "pt_BR"}  # else named as the language
SILENT = -1.0  # in place of a coefficient: neither says anything
OWN_COMMANDS = {
    "festival": lambda name, text, wav: ["text2wave", "-eval", f"(voice_{name})", text, "-o", wav],
    "espeak-ng": lambda name, text, wav: ["espeak-ng", "-v", name, "-f", text, "-w", wav],
    "flite": lambda name, text, wav: ["flite", "-voice", name, "-f", text, "-o", wav],
}


def samples():
    with open(os.path.join(TOP, "speech/sample_sentence.cpp"), encoding="utf-8") as file:
        found = dict(re.findall(r'\{"(\w+)", "(.+)"\}', file.read()))
    assert len(found) > 30, "the samples were not found in the source"
    return found


def plain_sentences():
    with open(os.path.join(TOP, "bench/plain_sentences.txt"), encoding="utf-8") as file:
        blocks = file.read().split("\n== ")[1:]
    return {block.split("\n")[0]: block.strip().split("\n")[1:] for block in blocks}


def sentences_of(tag, own, most):
    """Beside the sample, always the same ones."""
    language = tag.split("-")[0]
    for known in (tag, language):
        if known in own:
            return own[known][:most]
    catalog = CATALOGS.get(tag) or CATALOGS.get(language) or language
    messages = languages.messages(catalog, languages.all_programs(catalog))
    messages = [text for text in messages if ONE_SENTENCE.fullmatch(text)]
    return random.Random(tag).sample(messages, min(most, len(messages)))


def sound(path):
    """Rate and samples; none for what is no sound."""
    try:
        with wave.open(path) as file:
            return file.getframerate(), numpy.frombuffer(file.readframes(file.getnframes()), "<i2").astype(float)
    except (OSError, EOFError, wave.Error):
        return RATE, numpy.zeros(0)


def compared(heard_path, own_path):
    """Coefficient, milliseconds that the one is behind the other, and whether all samples are the same."""
    (rate, heard), (own_rate, own) = sound(heard_path), sound(own_path)
    if not heard.any() or not own.any():
        return (SILENT if heard.any() == own.any() else 0.0), 0.0, False
    if rate == own_rate and numpy.array_equal(heard, own):
        return 1.0, 0.0, True
    if rate != own_rate:
        rate, heard, own = RATE, *(decoded(path, 0, 600) for path in (heard_path, own_path))
    size = len(heard) + len(own)
    alike = numpy.fft.irfft(numpy.fft.rfft(heard, size) * numpy.fft.rfft(own, size).conj(), size)
    best = int(alike.argmax())
    lag = best if best < len(heard) else best - size
    return float(alike[best] / numpy.sqrt((heard**2).sum() * (own**2).sum())), lag * 1000 / rate, False


class Voice:
    def __init__(self, line, say, folder):
        _, self.name, self.engine, self.tag, self.title = line.split("\t")
        self.key = f"{self.engine}:{self.name}"
        self.say = [say, "--one-voice", "-v", self.key]
        self.folder = folder
        self.row = {"sentences": 0, "same": 0, "prepared": 0, "silent": 0, "least": 1.0, "lag": 0.0, "failed": 0}

    def own_sound(self, text):
        wav = os.path.join(self.folder, "own.wav")
        if os.path.exists(wav):
            os.remove(wav)
        subprocess.run(OWN_COMMANDS[self.engine](self.name, text, wav), timeout=60, check=False, capture_output=True)
        return wav

    def prepared(self, text):
        spoken = os.path.join(self.folder, "spoken")
        with open(spoken, "wb") as file:
            subprocess.run([*self.say, "--text=spoken", text], stdout=file, check=True)
        return spoken

    def compare(self, sentences):
        texts = []
        for number, sentence in enumerate(sentences):
            texts.append(os.path.join(self.folder, f"{number:02}.txt"))
            with open(texts[-1], "w", encoding="utf-8") as file:
                file.write(sentence + "\n")
        subprocess.run([*self.say, "-f", "-t", "wav", "-o", self.folder + "/", *texts], timeout=600, check=False)
        for sentence, text in zip(sentences, texts):
            self.note(sentence, text, text[:-3] + "wav")

    def note(self, sentence, text, heard):
        likeness, lag, same = compared(heard, self.own_sound(text))
        if likeness == SILENT:
            print(f"  {self.key} silent, as the engine itself: {sentence!r}", flush=True)
        elif likeness < options.least:
            with open(self.prepared(text), encoding="utf-8") as file:
                spoken = file.read().strip()
            otherwise = compared(heard, self.own_sound(file.name))
            what = "prepared" if otherwise[0] >= options.least else "DIFFERS"
            print(f"  {self.key} {what}: {sentence!r} {likeness:.3f}, as {spoken!r} {otherwise[0]:.3f}", flush=True)
            self.row["prepared" if what == "prepared" else "failed"] += 1
            likeness, lag, same = otherwise
        if os.path.exists(heard):
            os.remove(heard)
        self.row["sentences"] += 1
        self.row["same"] += same
        self.row["silent"] += likeness == SILENT
        self.row["least"] = min(self.row["least"], abs(likeness))
        self.row["lag"] = max(self.row["lag"], lag, key=abs)


def summary(name, rows):
    total = {key: sum(row[key] for row in rows) for key in ("sentences", "same", "prepared", "silent", "failed")}
    least, lag = min(row["least"] for row in rows), max((row["lag"] for row in rows), key=abs)
    print(f"{name:34} {total['sentences']:9} {total['same']:9} {total['prepared']:9} {total['silent']:7}"
          f" {total['failed']:8} {least:9.4f} {lag:7.1f} ms", flush=True)


def main():
    say = os.path.abspath(os.path.join(options.folder, "lectora-say"))
    texts, own = samples(), plain_sentences()
    rows = {}
    with tempfile.TemporaryDirectory(prefix="lectora-own-sound-") as folder:
        os.environ["HOME"] = folder  # where nobody has chosen another pitch, or other pronunciations
        listed = subprocess.run([say, "--list-voices"], capture_output=True, text=True, check=True).stdout
        print(f"{'voice':34} sentences  the same  prepared  silent  differs     least        lag")
        for voice in (Voice(line, say, folder) for line in listed.splitlines()):
            if voice.engine not in OWN_COMMANDS or (
                options.only and voice.engine not in options.only and voice.key not in options.only
            ):
                continue
            sample = texts.get({"cmn": "zh"}.get(voice.name, voice.tag.split("-")[0]), "1, 2, 3, 4, 5.")
            voice.compare([sample, *sentences_of(voice.tag, own, options.sentences)])
            rows.setdefault(voice.engine, []).append(voice.row)
            summary(voice.key, [voice.row])
    for engine, of_voices in rows.items():
        summary(f"all {len(of_voices)} voices of {engine}", of_voices)
    return 1 if not rows or any(row["failed"] for each in rows.values() for row in each) else 0


parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
parser.add_argument("-n", "--sentences", type=int, default=10)
parser.add_argument("-l", "--least", type=float, default=0.99)
parser.add_argument("folder", metavar="PROGRAM_FOLDER")
parser.add_argument("only", nargs="*", metavar="VOICE_OR_ENGINE")
options = parser.parse_args()
sys.exit(main())
