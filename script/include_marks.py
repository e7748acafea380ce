"""For script/lint: a line "MARK SOURCE" for each source; the mark changes with all that a check of it reads.

    include_marks.py RULES SOURCE...

That is the source, every header of ours that it includes, through other headers too, how it is
compiled, and RULES, which stands for the rest.
"""
import functools
import hashlib
import json
import os
import re
import sys

INCLUDE = re.compile(rb'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
GENERATED = "build/dev/generated"


@functools.cache
def text_of(path):
    with open(path, "rb") as file:
        return file.read()


@functools.cache
def included_by(path):
    """What the file names directly; headers stand below the root, or are made by CMake."""
    names = (name.decode() for name in INCLUDE.findall(text_of(path)))
    places = ((name, os.path.join(GENERATED, name)) for name in names)
    return [place for both in places for place in both if os.path.exists(place)]


def read_for(source):
    """The source and all headers that it brings in, whatever conditions stand around them."""
    found, left = set(), [source]
    while left:
        path = left.pop()
        if path not in found:
            found.add(path)
            left += included_by(path)
    return sorted(found)


def main():
    rules, *sources = sys.argv[1:]
    with open("build/dev/compile_commands.json", encoding="utf-8") as file:
        commands = {os.path.relpath(each["file"]): each["command"] for each in json.load(file)}
    for source in sources:
        mark = hashlib.sha256(f"{rules} {source} {commands.get(source)}".encode())
        for path in read_for(source):
            mark.update(path.encode() + b"\0" + text_of(path) + b"\0")
        print(mark.hexdigest()[:40], source)


main()
