"""Saving as speech: chooser, synthesis, and the file that comes out of it."""
import os
import subprocess
import unittest

from desktop_case import DesktopCase, desktop

TEXT = "The quick brown fox jumps over the lazy dog."


class SavingTest(DesktopCase):
    def choose(self, lectora, path):
        """Answers the chooser that the key brings up."""
        lectora.focus()
        desktop.press_keys("ctrl+alt+v")
        chooser = desktop.wait_until(
            lambda: desktop.xdotool("search", "--onlyvisible", "--name", "Save File as").split(),
            "the chooser",
        )[0]
        desktop.xdotool("windowactivate", "--sync", chooser)
        self.picture("save-chooser")
        desktop.xdotool("type", "--delay", "10", path)
        desktop.press_keys("Return")

    def test_the_file_holds_the_spoken_text(self):
        lectora = self.start(fake_engine=False)
        lectora.set_text(TEXT)
        path = os.path.join(desktop.HOME, "fox.wav")
        # The ending is added to a name without one.
        self.choose(lectora, path[:-4])
        desktop.wait_until(
            lambda: os.path.exists(path) and not os.path.exists(desktop.SPEECH), "the file", 30
        )
        saved = desktop.Sound(path)
        own, reference = os.path.join(desktop.HOME, "own.wav"), os.path.join(
            desktop.HOME, "ref.wav"
        )
        subprocess.run(["text2wave", self.file("t.txt", TEXT), "-o", own], check=True)
        spoken = desktop.Sound(own)
        # The converter's ratio is one of small numbers, here 11 / 4: a little off 44100 / 16000.
        rate = round(spoken.rate * saved.frames / spoken.frames)
        self.assertLess(abs(rate - saved.rate), saved.rate * 0.005)
        subprocess.run(["sox", own, "-r", str(rate), reference], check=True)
        part = slice(rate // 2, rate)
        expected = desktop.Sound(reference).channel(0)[part]
        self.assertGreater(desktop.best_correlation(saved.channel(0)[part], expected, 100), 0.95)
        self.assertEqual(lectora.text(), TEXT)

    def test_a_folder_that_cannot_be_written(self):
        lectora = self.start()
        lectora.set_text(TEXT)
        self.choose(lectora, "/proc/fox.wav")
        desktop.wait_until(lambda: "Cannot save" in lectora.box_text(), "the message")
        self.picture("save-error")
        lectora.press("push button", "OK")
        self.assert_usable(lectora, TEXT)


if __name__ == "__main__":
    unittest.main()
