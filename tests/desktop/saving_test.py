"""Saving as speech: chooser, synthesis, and the file that comes out of it."""
import os
import resource
import subprocess
import unittest

from desktop_case import DesktopCase, desktop

TEXT = "The quick brown fox jumps over the lazy dog."


class SavingTest(DesktopCase):
    def save_as(self, lectora, path, replaces=False):
        self.choose(lectora, "ctrl+alt+v", "Save File as", path, replaces)

    def test_the_file_holds_the_spoken_text(self):
        lectora = self.start(fake_engine=False)
        lectora.set_text(TEXT)
        path = os.path.join(desktop.HOME, "fox.wav")
        # The ending is added to a name without one.
        self.save_as(lectora, path[:-4])
        desktop.wait_until(
            lambda: os.path.exists(path) and not os.path.exists(desktop.SPEECH), "the file"
        )
        saved = desktop.Sound(path)
        own, reference = (os.path.join(desktop.HOME, name) for name in ("own.wav", "ref.wav"))
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

    def test_what_does_not_end_well_leaves_the_chosen_file_alone(self):
        def cancel_the_engine(lectora):
            lectora.find("label", "Synthesizing Voice")
            lectora.press("push button", "Cancel")

        def run_out_of_room(lectora):
            lectora.wait_for_box("Cannot save the file")
            self.picture("save-full")
            lectora.press("push button", "OK")

        def leave_the_format_open(lectora):
            lectora.active_window("dialog", "Wave Encoder Options")
            desktop.press_keys("Escape")

        for engine, limit, ask, ending in (
            ("text2wave slow 600", resource.RLIM_INFINITY, False, cancel_the_engine),
            ("text2wave long 10", 600_000, False, run_out_of_room),
            ("text2wave long 1", resource.RLIM_INFINITY, True, leave_the_format_open),
        ):
            with self.case(engine) as lectora:
                lectora.set_text("the text before")
                self.read_aloud(lectora)
                lectora.set_text(TEXT)
                path = self.file("old.wav", "what it held")
                desktop.tell_engine(engine)
                self.store("settings", savedefaultformat=0 if ask else 1)
                hard = resource.prlimit(lectora.process.pid, resource.RLIMIT_FSIZE)[1]
                resource.prlimit(lectora.process.pid, resource.RLIMIT_FSIZE, (limit, hard))
                self.save_as(lectora, path, replaces=True)
                ending(lectora)
                desktop.wait_until(lambda: len(lectora.windows()) == 1, "the end of the flow")
                with open(path) as file:
                    self.assertEqual(file.read(), "what it held")
                self.assertEqual([name for name in os.listdir(desktop.HOME) if "old.wav" in name], ["old.wav"])

    def test_a_cancelled_save_holds_what_was_spoken_by_then(self):
        desktop.tell_engine("text2wave slow 2")
        lectora = self.start()
        sentence = "These are some words to speak. "
        lectora.set_text(sentence * 2000)
        path = os.path.join(desktop.HOME, "part.wav")
        self.save_as(lectora, path)
        lectora.find("label", "Synthesizing Voice")
        cancel = lectora.find("push button", "Cancel")
        desktop.wait_until(lambda: os.path.getsize(desktop.SPEECH) > 100, "the first piece")
        self.picture("saving")
        lectora.click(cancel)
        desktop.wait_until(lambda: os.path.exists(path), "the file")
        seconds = desktop.Sound(path).frames / 44100
        self.assertGreater(seconds, 10)
        self.assertLess(seconds, 1000)

    def test_what_cannot_be_saved_is_told_before_the_engine_speaks(self):
        here = os.path.join(desktop.HOME, "fox.wav")
        for text, path, message in (
            (TEXT, "/proc/fox.wav", "Cannot save"),
            (TEXT, desktop.SPEECH, "is Lectora's own file"),
            ("word " * 200000, here, "longer than a sound file can hold"),
        ):
            with self.case(message) as lectora:
                lectora.set_text(text)
                self.save_as(lectora, path)
                lectora.wait_for_box(message)
                self.picture("save-error")
                lectora.press("push button", "OK")
                self.assertEqual(self.spoken(), [])
                self.assertFalse(os.path.exists(here))


if __name__ == "__main__":
    unittest.main()
