"""Saving as MP3: the encoder is fetched when it is needed, and the file holds the engine's own sound."""
import os
import subprocess
import unittest

from desktop_case import SHARE, DesktopCase, desktop

TEXT = "The quick brown fox jumps over the lazy dog."
SERVER = os.path.join(desktop.HERE, "component_server.py")


class ComponentsTest(DesktopCase):
    def setUp(self):
        super().setUp()
        self.target = os.path.join(desktop.HOME, "fox.mp3")
        self.store("settings", savedefaultformat=0)

    def name_servers(self, first, second):
        folder = os.path.join(os.environ["LECTORA_ROOT"], "opt/quillon/lectora/etc")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, "hosts"), "w") as file:
            file.write(f"components={first}\r\nweb={second}\r\n")

    def serve(self, *manner):
        """A server in the second place, behind one that is down; it ends with the test."""
        process = subprocess.Popen(["/usr/bin/python3", SERVER, *manner], stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, text=True, env={**os.environ, "MP3EL": os.path.join(SHARE, "components/mp3el")})
        self.addCleanup(process.communicate)
        self.name_servers("127.0.0.1:1", f"127.0.0.1:{process.stdout.readline().strip()}")

    def install(self, script):
        folder = os.path.join(desktop.HOME, "components/mp3el")
        os.makedirs(folder)
        if script:
            with open(os.open(os.path.join(folder, "mp3el"), os.O_WRONLY | os.O_CREAT, 0o755), "w") as file:
                file.write(f"#!/bin/sh\n{script}\n")

    def save(self, lectora):
        lectora.set_text(TEXT)
        self.choose(lectora, "ctrl+alt+v", "Save File as", self.target)

    def cancel(self, lectora):
        """Until it is heard: the window manager may still be placing the dialog."""
        def is_gone():
            button = next(lectora.walk("push button", "Cancel"), None)
            if button:
                lectora.click(button)
            return len(lectora.windows()) == 1
        desktop.wait_until(is_gone, "the end of the dialog")

    def assert_nothing_left(self, lectora):
        desktop.wait_until(lambda: len(lectora.windows()) == 1, "the end of the flow")
        desktop.wait_until(lambda: not [name for name in os.listdir(desktop.HOME) if "fox" in name], "no file")
        self.assertFalse([line for line in desktop.processes().values() if "sleep" in line])

    def test_an_encoder_that_was_fetched_keeps_the_engines_sound(self):
        self.serve()
        lectora = self.start(fake_engine=False)
        self.save(lectora)
        desktop.wait_until(lambda: os.path.exists(self.target) and not os.path.exists(desktop.SPEECH), "the file")
        own, saved, reference = (os.path.join(desktop.HOME, f"{name}.wav") for name in ("own", "saved", "reference"))
        subprocess.run(["text2wave", self.file("t.txt", TEXT), "-o", own], check=True)
        subprocess.run(["lame", "--quiet", "--decode", self.target, saved], check=True)
        spoken, heard = desktop.Sound(own), desktop.Sound(saved)
        self.assertEqual((heard.rate, heard.channels), (44100, 2))
        # The converter's ratio is one of small numbers; the encoder adds some silence.
        rate = 44000 if spoken.rate == 16000 else 44100
        self.assertLess(abs(heard.frames / rate - spoken.frames / spoken.rate), 0.1)
        subprocess.run(["sox", own, "-r", str(rate), reference], check=True)
        part = slice(rate // 2, rate // 2 + 4000)
        expected = desktop.Sound(reference).channel(0)
        for channel in (0, 1):
            self.assertGreater(desktop.best_correlation(heard.channel(channel)[part], expected[part], 1500), 0.9)

    def test_a_server_that_does_not_deliver_is_told(self):
        advice = 'LAME (package "lame")'
        for manner, message in ((None, advice), ("gone", advice), ("half", advice), ("empty", advice),
            ("unwilling", "Something is missing.")):
            with self.case(manner or "down") as lectora:
                self.name_servers("127.0.0.1:1", "127.0.0.1:1")
                if manner:
                    self.serve(manner)
                self.save(lectora)
                lectora.wait_for_box(message)
                self.picture(f"component-{manner}")
                lectora.press("push button", "OK")
                self.assert_nothing_left(lectora)
                self.assertFalse(os.path.exists(os.path.join(desktop.HOME, "components")))
                self.assertEqual(self.spoken(), [])

    def test_a_cancel_leaves_nothing(self):
        pid = os.path.join(desktop.HOME, "pid")
        for manner in ("mute", "stalling", "busy"):
            with self.case(manner) as lectora:
                self.serve(manner)
                self.save(lectora)
                lectora.find("label", "Download install-on-demand")
                if manner == "busy":
                    desktop.wait_until(lambda: os.path.exists(pid), "the installer")
                self.picture(f"component-{manner}")
                self.cancel(lectora)
                self.assert_nothing_left(lectora)
                self.assertEqual((lectora.box_text(), self.spoken()), ("", []))

    def test_an_encoder_that_fails_is_told_and_one_that_hangs_can_be_left(self):
        for script in ("exit 1", "head -c 100000 >/dev/null; exit 1", None, "sleep 1000", "cat >/dev/null; sleep 1000"):
            with self.case(script) as lectora:
                desktop.tell_engine("text2wave long 20")
                self.install(script)
                self.save(lectora)
                if script and "sleep" in script:
                    lectora.find("label", "Saving File")
                    self.cancel(lectora)
                else:
                    lectora.wait_for_box("The MP3 encoder has ended too early")
                    lectora.press("push button", "OK")
                self.assert_nothing_left(lectora)
                self.assertEqual(lectora.text(), TEXT)


if __name__ == "__main__":
    unittest.main()
