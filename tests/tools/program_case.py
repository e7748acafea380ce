"""A test case that runs the command-line programs in a folder, home and machine root of its own."""
import os
import shutil
import subprocess
import tempfile
import unittest

PROGRAMS = os.environ["LECTORA_PROGRAMS"]
CONVERT = os.path.join(PROGRAMS, "lectora-convert")
SAY = os.path.join(PROGRAMS, "lectora-say")

ENGINE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../support/engine")
# LAME stands in for the encoder component, which swaps bytes on -x of its own accord.
ENCODER = """#!/bin/sh
echo "$@" > "$HOME/encoder.log"
for a; do shift; [ "$a" = -x ] || set -- "$@" "$a"; done
exec lame "$@" 2>/dev/null
"""


class ProgramCase(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="lectora-tools-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.home = os.path.join(self.folder, "home")
        self.work = os.path.join(self.folder, "work")
        os.makedirs(self.home + "/.quillon/lectora")
        os.makedirs(self.work)
        self.environment = dict(
            os.environ, HOME=self.home, LECTORA_ROOT=os.path.join(self.folder, "root"), LC_ALL="C"
        )

    def path(self, name):
        return os.path.join(self.work, name)

    def save(self, name, data):
        with open(self.path(name), "wb") as file:
            file.write(data)
        return self.path(name)

    def load(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def files(self):
        return sorted(os.listdir(self.work))

    def install_encoder(self, script=ENCODER):
        folder = os.path.join(self.home, "components/mp3el")
        os.makedirs(folder)
        with open(folder + "/mp3el", "w") as file:
            file.write(script)
        os.chmod(folder + "/mp3el", 0o755)

    def run_program(self, *command, **options):
        return subprocess.run(
            [str(word) for word in command],
            cwd=self.work,
            env=self.environment,
            capture_output=True,
            timeout=60,
            **options,
        )

    def start(self, *command, **options):
        return subprocess.Popen(command, cwd=self.work, env=self.environment, **options)

    def check(self, *command, status=0, says=None, **options):
        """Runs a program to the exit status; says: what standard error holds."""
        result = self.run_program(*command, **options)
        message = result.stderr.decode()
        self.assertEqual(result.returncode, status, f"{command}: {message}")
        if says is None:
            self.assertEqual(message, "", command)
        else:
            self.assertIn(says, message, command)
        return result.stdout.decode(errors="replace")

    def sox(self, *command):
        result = self.run_program("sox", *command)
        self.assertEqual(result.returncode, 0, result.stderr.decode())


class EngineCase(ProgramCase):
    """With a speech engine that speaks a tone for each word (50 ms a letter)."""

    def setUp(self):
        super().setUp()
        self.desktop = os.path.join(self.folder, "desktop")
        temporary = os.path.join(self.folder, "tmp")
        os.makedirs(self.desktop)
        os.makedirs(temporary)
        self.environment.update(
            LECTORA_DESKTOP=self.desktop, TMPDIR=temporary, PATH=ENGINE + ":" + os.environ["PATH"]
        )

    def tell_engine(self, line):
        with open(self.desktop + "/engine", "w") as file:
            file.write(line + "\n")

    def said(self):
        """What the engine was given: (voice, text) for each run."""
        if not os.path.exists(self.desktop + "/engine.log"):
            return []
        with open(self.desktop + "/engine.log", encoding="latin-1") as log:
            lines = [line.rstrip("\n").split(" ", 2) for line in log]
        return [(line[1], line[2]) for line in lines if line[0] == "text2wave"]
