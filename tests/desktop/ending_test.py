"""An end that the desktop, a terminal or another program asks for by a signal."""
import glob
import os
import signal
import subprocess
import unittest

from desktop_case import DesktopCase, desktop

SENTENCE = "These are some words to speak. "


class EndingTest(DesktopCase):
    def test_a_signal_ends_it_in_order_whatever_it_is_doing(self):
        for name, number, engine, act in (
            ("hidden and reading", signal.SIGHUP, "", self.read_hidden),
            ("asking whether to end", signal.SIGTERM, "", self.ask_whether_to_end),
            ("asking in a file chooser", signal.SIGTERM, "", self.ask_whether_to_replace),
            ("a menu", signal.SIGINT, "", lambda lectora: lectora.press("menu", "Tools")),
            ("changing a hotkey", signal.SIGINT, "", self.change_hot_key),
            ("saving", signal.SIGTERM, "text2wave slow 2", self.save),
            ("an engine that hangs", signal.SIGTERM, "text2wave hang", self.wait_for_speech),
        ):
            with self.case(name) as lectora:
                combo = lectora.find("combo box")
                desktop.wait_until(lambda: len(combo[0]) == 2, "the voices")
                old = self.file("old.wav", "what it held")
                desktop.tell_engine(engine)
                desktop.xdotool("windowmove", "--sync", lectora.window(), 40, 60)
                lectora.set_text(SENTENCE * 2000)
                lectora.focus()
                desktop.press_keys("Tab", "Down", "Down")
                act(lectora)
                self.picture("ending-" + name.replace(" ", "-"))
                self.end(lectora, number)
                self.assertEqual(self.setting("settings", "voice"), "festival:voice2")
                self.assertLess(abs(int(self.setting("mainwindow", "x")) - 40), 20)
                with open(old) as file:
                    self.assertEqual(file.read(), "what it held")

    def end(self, lectora, number):
        lectora.process.send_signal(number)
        self.assertEqual(lectora.process.wait(10), -number)
        desktop.wait_until(lambda: not [each for each in desktop.processes().values() if "festival" in each
                                        or "text2wave" in each], "the engine's end", 5)
        left = [name for name in os.listdir(desktop.HOME) if name.startswith((".Lectora", ".speech", "old.wav."))]
        self.assertEqual(left + [each for each in glob.glob("/tmp/0??????") if self.is_mine(each)], [])

    def is_mine(self, path):
        try:
            with open(path, errors="replace") as file:
                return SENTENCE.strip() in file.read()
        except FileNotFoundError:
            return False  # another test's, which is gone by now

    def read_hidden(self, lectora):
        self.card.tell("speed 1")
        lectora.press("toggle button", "Read Aloud")
        self.card.wait_for(self.card.next_stream(), "start")
        lectora.hide()

    def ask_whether_to_end(self, lectora):
        lectora.choose("Lectora", "Exit (Turn Off)")
        lectora.wait_for_box("Confirm Exit")

    def ask_whether_to_replace(self, lectora):
        self.choose(lectora, "ctrl+alt+v", "Save File as", os.path.join(desktop.HOME, "old.wav"))
        lectora.active_window("alert", "Question")

    def change_hot_key(self, lectora):
        lectora.choose("Tools", "Options...")
        lectora.press("page tab", "HotKeys")
        lectora.press("push button", "Add...")
        lectora.active_window("dialog", "Hot-Key Assignment")
        lectora.press("push button", "Change Key")
        lectora.active_window("dialog", "Key Change")

    def save(self, lectora):
        """Cancelled by its user, the file would be replaced by what was spoken."""
        path = os.path.join(desktop.HOME, "old.wav")
        self.choose(lectora, "ctrl+alt+v", "Save File as", path, replaces=True)
        lectora.find("label", "Synthesizing Voice")
        speech = os.path.join(desktop.HOME, ".quillon/lectora/saving.wav")
        desktop.wait_until(lambda: os.path.getsize(speech) > 100, "the first piece")

    def wait_for_speech(self, lectora):
        lectora.press("toggle button", "Read Aloud")
        lectora.find("label", "Synthesizing Voice")

    def test_a_further_signal_ends_it_at_once_but_not_the_one_that_follows_at_a_sessions_end(self):
        """A display that answers nobody keeps the first signal waiting."""
        lectora = self.start()
        lectora.settle()  # a call that waits for the display would keep every signal waiting
        subprocess.run(["pkill", "-STOP", "-x", "Xvfb"], check=True, timeout=desktop.PATIENCE)
        self.addCleanup(subprocess.run, ["pkill", "-CONT", "-x", "Xvfb"])
        for number in (signal.SIGTERM, signal.SIGHUP):
            lectora.process.send_signal(number)
            with self.assertRaises(subprocess.TimeoutExpired):
                lectora.process.wait(1)
        lectora.process.send_signal(signal.SIGINT)
        self.assertEqual(lectora.process.wait(10), -signal.SIGINT)

    def test_without_an_engine_it_opens_nothing_and_keeps_the_choice(self):
        desktop.tell_engine("festival nothing")
        self.store("settings", voice="festival:voice3")
        for role, arguments in (("alert", []), ("dialog", ["-check"])):
            with desktop.Lectora(*arguments) as lectora:
                lectora.find(role)
                self.end(lectora, signal.SIGTERM)
            self.assertEqual(self.setting("settings", "voice"), "festival:voice3")
        self.assertEqual([call for call in desktop.engine_calls() if call.startswith("browser")], [])


if __name__ == "__main__":
    unittest.main()
