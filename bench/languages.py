#!/usr/bin/python3 -B
"""Paragraphs of 5 to 50 words in many languages, for speech_bench.

    bench/languages.py [--others] | build/bench/bin/speech_bench --languages

They are the translated messages of the programs that are installed, joined at random: harder than
prose, since sentences do not belong together and English names stand between. With --others they
are those of all other programs, which nobody has looked at while the words were chosen.
"""
import gettext
import os
import random
import re
import sys

LANGUAGES = "de fr es it ru cs pl nl sv da nb fi pt tr hu ro uk el ja ca sk sl hr bg vi eu et lv lt id gl sr ko af be".split()
PROGRAMS = "bash coreutils apt dpkg findutils grep sed tar diffutils adduser gawk make wget gtk20 glib20 debconf".split()
SIZES = ((5, 9), (10, 19), (20, 50))
MOST = 120
NO_PROSE = re.compile(r"%|--|`|\$|<|>|[A-Z]{3,}|_|\\|=|[a-z]\(|/|\bGNU\b|[][*|&^{}]|\B-\w|\w\.\w")
WORD = re.compile(r"[^\W\d_]{2,}")
MOST_ENGLISH = 0.2  # of the words: what is not translated tells nothing of a language


def is_translated(original, translated):
    original = original[0] if isinstance(original, tuple) else original  # of several, by number
    english = set(WORD.findall(original.lower()))
    words = WORD.findall(translated.lower())
    return sum(word in english for word in words) <= MOST_ENGLISH * len(words)


def all_programs(language):
    folder = f"/usr/share/locale/{language}/LC_MESSAGES"
    catalogs = sorted(os.listdir(folder)) if os.path.isdir(folder) else []
    return [name[:-3] for name in catalogs if name.endswith(".mo") and not name.startswith("iso")]


def other_programs(language):
    return [name for name in all_programs(language) if name.split("-")[0] not in PROGRAMS]


def messages(language, programs):
    found = set()
    for program in programs:
        try:
            with open(f"/usr/share/locale/{language}/LC_MESSAGES/{program}.mo", "rb") as file:
                catalog = gettext.GNUTranslations(file)._catalog
        except (OSError, UnicodeDecodeError, IndexError):
            continue
        for original, translated in catalog.items():
            text = re.sub(r"\s+", " ", translated.strip()) if isinstance(translated, str) else ""
            enough = len(text.split()) >= 4 or (language[:2] in ("ja", "zh") and len(text) > 12)
            if original and enough and is_translated(original, text) and not NO_PROSE.search(text):
                found.add(text)
    return sorted(found)


def paragraphs(texts, least, most):
    texts = iter(texts)
    for text in texts:
        while len(text.split()) < least:
            more = next(texts, None)
            if more is None:
                return
            text += (" " if text[-1] in ".!?:" else ". ") + more
        if len(text.split()) <= most:
            yield text


def main():
    random.seed(1)
    for language in LANGUAGES:
        texts = messages(language, other_programs(language) if "--others" in sys.argv[1:] else PROGRAMS)
        random.shuffle(texts)
        for least, most in SIZES:
            for _, text in zip(range(MOST), paragraphs(texts, least, most)):
                print(f"{language}\t{least:02}\t{text}")


if __name__ == "__main__":
    main()
