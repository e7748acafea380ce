"""For script/lint: checks every source of a build's list of commands, as many at once as there are processors.

    static_checks.py alone     by the compiler: each source stands by itself, naming all headers that it needs
    static_checks.py grouped   by clang-tidy, in the groups of a grouped build: what a group's sources share
                               is read once, which is most of the work

What was found clean is not checked again until its text, its headers, its command or the rules change.
Prints what is wrong; its exit status says whether anything is.
"""
import concurrent.futures
import functools
import hashlib
import json
import os
import re
import shlex
import shutil
import subprocess
import sys

INCLUDE = re.compile(rb'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
CLEAN = "build/lint"


def output_of(command, directory="."):
    done = subprocess.run(["nice", *command], cwd=directory, capture_output=True, text=True, errors="replace")
    return done.returncode, done.stdout, done.stderr


class Compiler:
    build = "build/dev"

    def rules(self):
        return output_of(["c++", "--version"])[1]

    def complaint(self, entry):
        command = shlex.split(entry["command"])
        output = command.index("-o")
        del command[output:output + 2]
        status, _, errors = output_of([*command, "-fsyntax-only"], entry["directory"])
        return errors if status else ""


class ClangTidy:
    build = "build/test"
    # Debian 12 has version 14, which Debian 13 has no more; the sources suit both.
    program = shutil.which("clang-tidy-14") or "clang-tidy"

    def rules(self):
        with open(".clang-tidy", encoding="utf-8") as file:
            return output_of([self.program, "--version"])[1] + file.read()

    def complaint(self, entry):
        # A group is a file that includes sources: there it is meant.
        status, found, _ = output_of([self.program, "--quiet", "--warnings-as-errors=*",
                                      "--checks=-bugprone-suspicious-include", "-p", self.build, entry["file"]])
        return (found or f"{entry['file']}: clang-tidy ended with {status}") if status else ""


@functools.cache
def text_of(path):
    with open(path, "rb") as file:
        return file.read()


@functools.cache
def included_by(path, build):
    """What the file names directly; headers stand below the root, or are made by CMake."""
    names = [name.decode() for name in INCLUDE.findall(text_of(path))]
    places = [place for name in names for place in (name, os.path.join(build, "generated", name))]
    return [place for place in places if os.path.exists(place)]


def read_for(source, build):
    """The source and all files of ours that it brings in, whatever conditions stand around them."""
    found, left = set(), [source]
    while left:
        path = left.pop()
        if path not in found:
            found.add(path)
            left += included_by(path, build)
    return sorted(found)


def mark_of(entry, checker, rules):
    mark = hashlib.sha256(f"{type(checker).__name__} {rules} {entry['command']}".encode())
    for path in read_for(entry["file"], checker.build):
        mark.update(path.encode() + b"\0" + text_of(path) + b"\0")
    return os.path.join(CLEAN, mark.hexdigest()[:40])


def main():
    checker = {"alone": Compiler, "grouped": ClangTidy}[sys.argv[1]]()
    with open(os.path.join(checker.build, "compile_commands.json"), encoding="utf-8") as file:
        entries = [each for each in json.load(file) if each["file"].endswith((".cpp", ".cxx"))]
    os.makedirs(CLEAN, exist_ok=True)
    rules = checker.rules()
    marks = {mark: each for each in entries for mark in [mark_of(each, checker, rules)] if not os.path.exists(mark)}
    print(f"{len(marks)} of {len(entries)} have changed", flush=True)
    bad = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = {pool.submit(checker.complaint, each): mark for mark, each in marks.items()}
        for run in concurrent.futures.as_completed(runs):
            if run.result():
                print(run.result(), flush=True)
                bad += 1
            else:
                open(runs[run], "wb").close()
    sys.exit(bad > 0)


main()
