"""Holds the layers of docs/architecture.md: who includes whom, who sees which library, file sizes.

    check_includes.py ROOT

Prints a line for each wrong include and fails when there is one. Before that it checks itself on
a tree with planted violations.
"""
import os
import re
import sys

from source_tree import report, sources_in, try_on_planted


def read_layers():
    """(folder -> what it may include, start of a library's headers -> who may see it)."""
    may_include, libraries, houses = {}, {}, {}

    def folders(words):
        return [folder for word in words.split() for folder in houses.get(word, [word])]

    with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "layers.txt")) as file:
        for line in file:
            name, colon, words = line.partition(":")
            if colon and not line.startswith("#"):
                tables = {"<": libraries, "@": houses}
                tables.get(name[0], may_include)[name.lstrip("<")] = folders(words)
    return may_include, libraries


MAY_INCLUDE, LIBRARIES = read_layers()
MAIN_LINES = 60
MOST_LINES = {".h": 150, ".cpp": 400}
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]')


def folder_of(path, folders):
    """The longest of the folders that the path lies in; None when it lies in none."""
    inside = [folder for folder in folders if path == folder or path.startswith(folder + "/")]
    return max(inside, key=len, default=None)


def rules_for(path):
    """(folder, what it may include). A test may do what its folder may, and use the support."""
    folder = folder_of(path, MAY_INCLUDE)
    if folder or not path.startswith("tests/"):
        return folder, [folder, *MAY_INCLUDE.get(folder, [])]
    tested = folder_of(path[len("tests/") :], MAY_INCLUDE)
    # A folder is tried with its rooms; the dialogs of every folder with gui's, under one display.
    tried = [
        name
        for name in MAY_INCLUDE
        if name == tested
        or name.startswith(f"{tested}/")
        or (tested == "gui" and name.endswith("/dialogs"))
    ]
    below = [name for folder in tried for name in MAY_INCLUDE.get(folder, [])]
    return tested, [*tried, *below, "tests/support", f"tests/{tested}"]


def circle(may_include):
    """The folders of a way that leads back to its beginning; empty when there is none."""
    way, done = [], set()

    def visit(folder):
        if folder in way:
            return way[way.index(folder) :] + [folder]
        if folder in done:
            return []
        way.append(folder)
        found = [circle for lower in may_include.get(folder, []) if (circle := visit(lower))]
        done.add(way.pop())
        return found[0] if found else []

    return next((found for folder in may_include if (found := visit(folder))), [])


def allowed(header, permitted):
    if header in permitted:
        return True
    folder = folder_of(header, [*MAY_INCLUDE, "tests"])
    if folder and folder.startswith("tests"):
        return any(header.startswith(name + "/") for name in permitted if name.startswith("tests/"))
    return folder in permitted


def check_include(root, path, quote, header):
    folder, permitted = rules_for(path)
    if quote == '"':
        # A header made at configure time stands as its template.
        if not any(os.path.exists(os.path.join(root, header + suffix)) for suffix in ("", ".in")):
            return f"{header} is not there, seen from the root"
        if not allowed(header, permitted):
            return f"{folder}/ may not include {header}"
    for library, users in LIBRARIES.items():
        seer = folder_of(path[len("tests/") :], MAY_INCLUDE) if path.startswith("tests/") else None
        if header.startswith(library) and folder_of(path, MAY_INCLUDE) not in users:
            # A test of a folder that may see a library may see it as well.
            if library == "alsa/" or seer not in users + ["foundation"]:
                return f"{path.rsplit('/', 1)[0]}/ may not see {library}"
    return None


def check(root):
    problems = []
    for path, lines in sources_in(root):
        is_main = os.path.basename(path) == "main.cpp" and not path.startswith("tests/")
        limit = MAIN_LINES if is_main else MOST_LINES[os.path.splitext(path)[1]]
        if len(lines) > limit:
            problems.append(f"{path}:{len(lines)}: longer than {limit} lines")
        for number, line in enumerate(lines, 1):
            match = INCLUDE.match(line)
            wrong = match and check_include(root, path, *match.groups())
            if wrong:
                problems.append(f"{path}:{number}: {wrong}")
    return problems


def check_itself():
    if circle({"a": ["b", "c"], "b": ["c"], "c": []}) or not circle({"a": ["b"], "b": ["a"]}):
        sys.exit("the check of circles is wrong")
    planted = {
        "sound/wrong_layer.cpp": '#include "formats/reader.h"\n',
        "formats/reader.h": "#include <gtk/gtk.h>\n",
        "gui/meter.cpp": '#include "sound/stream.h"\n',
        "speech/missing.cpp": '#include "not_there.h"\n',
        "tools/main.cpp": "\n" * 61,
        "tests/sound/peeks.cpp": '#include "gui/meter.h"\n',
        "app/long.cpp": "\n" * 401,
        "app/long.h": "\n" * 151,
    }
    fine = {
        "sound/level.h": "",
        "sound/stream.h": "",
        "gui/meter.h": '#include "sound/level.h"\n#include <gtk/gtk.h>\n',
        "tests/sound/good.cpp": '#include "sound/stream.h"\n#include "tests/support/double.h"\n',
        "tests/support/double.h": '#include "sound/stream.h"\n#include <alsa/asoundlib.h>\n',
    }
    try_on_planted(check, planted, fine)


def main():
    check_itself()
    problems = check(sys.argv[1])
    if way := circle(MAY_INCLUDE):
        problems.append("the layers run in a circle: " + " -> ".join(way))
    report(problems, "every include keeps to the layers")


if __name__ == "__main__":
    main()
