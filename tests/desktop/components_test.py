"""Saving as MP3: the encoder is fetched when it is needed, and the file holds the engine's own sound."""
import glob
import os
import shutil
import subprocess
import unittest

from desktop_case import SHARE, DesktopCase, desktop

TEXT = "The quick brown fox jumps over the lazy dog."
SERVER = os.path.join(desktop.HERE, "component_server.py")
OLD = "what it held"
CANCEL = None


def rough_frequency(path):
    told = subprocess.run(["sox", path, "-n", "remix", "1", "stat"], capture_output=True, text=True, check=True, timeout=desktop.PATIENCE).stderr
    return int(next(line for line in told.splitlines() if line.startswith("Rough")).split()[-1])


class ComponentsTest(DesktopCase):
    def setUp(self):
        super().setUp()
        self.target = self.file("fox.mp3", OLD)

    def machine(self, section, **values):
        """Replaces a section of the machine's settings."""
        folder = os.path.join(os.environ["LECTORA_ROOT"], "opt/quillon/lectora/etc")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, section), "w") as file:
            file.writelines(f"{key}={value}\r\n" for key, value in values.items())

    def serve(self, *manner):
        """A server in the second place, behind one that is down; it ends with the test."""
        process = subprocess.Popen(["/usr/bin/python3", SERVER, *manner], stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, text=True, env={**os.environ, "MP3EL": os.path.join(SHARE, "components/mp3el")})
        self.addCleanup(process.communicate)
        self.machine("hosts", components="127.0.0.1:1", web=f"127.0.0.1:{process.stdout.readline().strip()}")

    def install(self, script):
        folder = os.path.join(desktop.HOME, "components/mp3el")
        shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(folder)
        if script:
            with open(os.open(os.path.join(folder, "mp3el"), os.O_WRONLY | os.O_CREAT, 0o755), "w") as file:
                file.write(f"#!/bin/bash\n{script}\n")

    def save(self, lectora):
        self.choose(lectora, "ctrl+alt+v", "Save File as", self.target, replaces=True)

    def end(self, lectora, message):
        """The box that says so, or a cancel; afterwards nothing is left, and the old file is whole."""
        if message:
            lectora.wait_for_box(message)
            self.picture(f"component-{message}".replace(" ", "-"))
            lectora.press("push button", "OK")
        else:
            lectora.press("push button", "Cancel")
        desktop.wait_until(lambda: len(lectora.windows()) == 1, "the end of the flow")
        desktop.wait_until(lambda: [name for name in os.listdir(desktop.HOME) if "fox" in name] == ["fox.mp3"], "no file")
        desktop.wait_until(lambda: "sleep" not in " ".join(desktop.processes().values()), "the end of what was started")
        with open(self.target) as file:
            self.assertEqual(file.read(), OLD)
        self.assertEqual((lectora.box_text(), lectora.text()), ("", TEXT))

    def test_bad_servers_harm_nothing_and_a_good_one_serves_after_them(self):
        advice = 'LAME (package "lame")'
        pid = os.path.join(desktop.HOME, "pid")
        downloads = set(glob.glob("/tmp/0*.tar.gz"))
        self.machine("hosts", components="127.0.0.1:1", web="127.0.0.1:1")
        lectora = self.start(fake_engine=False)
        lectora.set_text(TEXT)
        for manner, message in (("down", advice), ("gone", advice), ("half", advice), ("over", advice), ("empty", advice),
            ("stalling", advice), ("page", "sign in first"), ("moved page", "sign in first"),
            ("damaged", "installer is damaged"), ("unwilling", "Something is missing."), ("untrusted", "settings name"),
            ("mute", CANCEL), ("busy", CANCEL)):
            with self.subTest(manner, message=message):
                self.machine("componentsha256", mp3el="a" * 64 if manner == "untrusted" else "")
                if manner != "down":
                    self.serve(manner)
                self.save(lectora)
                if message is CANCEL:  # while nothing comes, and while the installer is at work
                    lectora.find("label", "Download install-on-demand")
                if manner == "busy":
                    self.picture("component-busy")
                    desktop.wait_until(lambda: os.path.exists(pid), "the installer")
                self.end(lectora, message)
                self.assertFalse(os.path.exists(os.path.join(desktop.HOME, "components")))
                self.assertFalse(os.path.exists(desktop.SPEECH))
                desktop.wait_until(lambda: not set(glob.glob("/tmp/0*.tar.gz")) - downloads, "no download")
        self.install(None)  # left by an installer that was killed
        self.file("components/mp3el/note", OLD)
        self.serve()
        self.save(lectora)
        desktop.wait_until(lambda: os.path.getsize(self.target) > len(OLD) and not os.path.exists(desktop.SPEECH), "the file")
        self.assert_holds_the_engines_sound()
        with open(os.path.join(desktop.HOME, "components/mp3el.kept1/note")) as note:
            self.assertEqual(note.read(), OLD)

    def assert_holds_the_engines_sound(self):
        own, saved = (os.path.join(desktop.HOME, f"{name}.wav") for name in ("own", "saved"))
        subprocess.run(["text2wave", self.file("t.txt", TEXT), "-o", own], check=True, timeout=desktop.PATIENCE)
        subprocess.run(["lame", "--quiet", "--decode", self.target, saved], check=True, timeout=desktop.PATIENCE)
        spoken, heard = desktop.Sound(own), desktop.Sound(saved)
        # Speech is stored as the voice speaks it; the encoder adds some silence.
        self.assertEqual((heard.rate, heard.channels), (spoken.rate, spoken.channels))
        self.assertLess(abs(heard.frames - spoken.frames) / spoken.rate, 0.2)
        self.assertLess(abs(rough_frequency(saved) / rough_frequency(own) - 1), 0.1)
        part = slice(spoken.rate // 2, spoken.rate)
        self.assertGreater(desktop.best_correlation(heard.channel(0)[part], spoken.channel(0)[part], 2000), 0.9)

    def test_an_encoder_that_fails_is_told_and_one_that_hangs_can_be_left(self):
        ended = "The MP3 encoder has ended too early"
        copy = 'cat >"${!#}"'
        self.machine("hosts", components="127.0.0.1:1", web="127.0.0.1:1")
        desktop.tell_engine("text2wave long 10")
        lectora = self.start()
        lectora.set_text(TEXT)
        for script, message in (("exit 1", ended), (None, "could not be installed"),
            ('head -c 100000 >"${!#}"; rm -r "${0%/*}"; kill -9 $$', ended), (f"ulimit -f 100; {copy}", ended),
            ("sleep 1000", CANCEL), ("cat >/dev/null; sleep 1000", CANCEL)):
            with self.subTest(script):
                self.install(script)
                self.save(lectora)
                if message is CANCEL:
                    lectora.find("label", "Saving File")
                self.end(lectora, message)
        self.install(copy)
        self.save(lectora)
        desktop.wait_until(lambda: os.path.getsize(self.target) > 300_000, "the file")


if __name__ == "__main__":
    unittest.main()
