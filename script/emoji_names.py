#!/usr/bin/env python3
"""Makes share/emoji/LANGUAGE.txt of CLDR's short names: a maintainer's tool.

usage: emoji_names.py ANNOTATIONS OUTPUT, of the folder that holds annotations/ and
annotationsDerived/ (Debian's unicode-cldr-core: /usr/share/unicode/cldr/common). Variation
selectors and skin tones are left out: an emoji is looked for without them.
"""
import os
import sys
import unicodedata
import xml.etree.ElementTree as ElementTree

LANGUAGES = "ca cs de en es fi fr hi it ru".split()
LEFT_OUT = {0xFE0F, *range(0x1F3FB, 0x1F400)}
FIRST_PICTURE = 0x2190


def is_emoji(sequence):
    return any(ord(character) >= FIRST_PICTURE and unicodedata.category(character) == "So"
               or ord(character) == 0x20E3 for character in sequence)


def names_in(folder, language):
    names = {}
    for part in ("annotations", "annotationsDerived"):
        tree = ElementTree.parse(os.path.join(folder, part, language + ".xml"))
        for note in tree.iter("annotation"):
            sequence = note.get("cp")
            if note.get("type") != "tts" or not note.text or not is_emoji(sequence):
                continue
            if set(map(ord, sequence)) & LEFT_OUT:
                continue
            name = " ".join(note.text.split())
            # "flag: Germany"
            names[sequence] = name.replace(":", ",")
    return names


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    for language in LANGUAGES:
        names = names_in(sys.argv[1], language)
        lines = sorted(f"{sequence}\t{name}\n".encode() for sequence, name in names.items())
        with open(os.path.join(sys.argv[2], language + ".txt"), "wb") as output:
            output.writelines(lines)
        print(language, len(lines), sum(map(len, lines)))


if __name__ == "__main__":
    main()
