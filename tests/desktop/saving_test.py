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
        desktop.wait_until(lambda: os.path.exists(path), "the file")
        saved = desktop.Sound(path)
        own, reference = (os.path.join(desktop.HOME, name) for name in ("own.wav", "ref.wav"))
        subprocess.run(["text2wave", self.file("t.txt", TEXT), "-o", own], check=True, timeout=desktop.PATIENCE)
        spoken = desktop.Sound(own)
        rate = saved.rate
        self.assertLess(abs(saved.frames - spoken.frames * rate / spoken.rate), 2)
        subprocess.run(["sox", own, "-r", str(rate), reference], check=True, timeout=desktop.PATIENCE)
        part = slice(rate // 2, rate)
        expected = desktop.Sound(reference).channel(0)[part]
        self.assertGreater(desktop.best_correlation(saved.channel(0)[part], expected, 100), 0.95)
        self.assertEqual(lectora.text(), TEXT)

    def test_name_and_ending_are_the_users_and_no_path_is_too_long_for_them(self):
        folder = os.path.join(desktop.HOME, "a" * 200, "b" * 150)
        os.makedirs(folder)
        document = os.path.join(folder, "Chapter 1.2.txt")
        with open(document, "w") as file:
            file.write(TEXT)
        lectora = self.start()
        self.choose(lectora, "ctrl+o", "Locate File to Read Text", document)
        desktop.wait_until(lambda: lectora.text() == TEXT, "the text")
        self.save_as(lectora, os.path.join(folder, "fox.au"))
        lectora.active_window("dialog", "Au Encoder Options")
        self.picture("save-au")
        lectora.press("push button", "OK")
        path = os.path.join(folder, "fox.au")
        desktop.wait_until(lambda: os.path.exists(path), "the file")
        told = subprocess.run(["sox", "--info", path], capture_output=True, text=True, check=True, timeout=desktop.PATIENCE).stdout
        self.assertIn("44100", told)
        # Suggested is the document's name, else the text's first words, where no folder was kept.
        for text, name in ((TEXT, "Chapter 12"), ("Dear reader: how are you?\nFine, thanks.", "Dear reader how are you Fine")):
            if text != TEXT:
                lectora.set_text("")
                lectora.set_text(text)
            self.save_as(lectora, "")
            saved = os.path.join(desktop.HOME, name + ".wav")
            desktop.wait_until(lambda saved=saved: os.path.exists(saved), saved)
            desktop.wait_until(lambda saved=saved: "Saved as " + saved in lectora.status(), "the note")
        # The ending of what is only read, or only an audiobook, names no type to save.
        for name in ("fox.ogg", "fox.m4b"):
            self.save_as(lectora, os.path.join(desktop.HOME, name))
            desktop.wait_until(lambda name=name: "Saved as " + os.path.join(desktop.HOME, name) in lectora.status(), name)
            with open(os.path.join(desktop.HOME, name), "rb") as file:
                self.assertEqual(file.read(4), b"RIFF")
        for name, message in (("c" * 256 + ".wav", "File name too long"), ("fox.au", None)):
            self.save_as(lectora, os.path.join(folder, name), replaces=message is None)
            if message:
                self.assertIn(message, lectora.wait_for_box("Cannot save"))
                lectora.press("push button", "OK")
            else:
                lectora.active_window("dialog", "Au Encoder Options")
                desktop.press_keys("Escape")
            desktop.wait_until(lambda: len(lectora.windows()) == 1, "the end of the flow")
        with open(os.path.join(desktop.HOME, ".quillon/lectora/recent-files")) as file:
            self.assertEqual(file.read(), "\0" + document)

    def test_what_does_not_end_well_leaves_the_chosen_file_alone(self):
        def run_out_of_room(lectora):
            lectora.wait_for_box("Cannot save the file")
            self.picture("save-full")
            lectora.press("push button", "OK")

        def leave_the_format_open(lectora):
            lectora.active_window("dialog", "Wave Encoder Options")
            desktop.press_keys("Escape")

        for engine, limit, ask, ending in (
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

    def test_a_cancelled_save_keeps_an_old_file_and_the_beginning_of_a_new_one(self):
        desktop.tell_engine("text2wave slow 2")
        lectora = self.start()
        lectora.set_text("These are some words to speak. " * 2000)
        speech = os.path.join(desktop.HOME, ".quillon/lectora/saving.wav")
        old, new = self.file("old.wav", "what it held"), os.path.join(desktop.HOME, "part.wav")
        for path, note in ((old, "Nothing was saved"), (new, "Only the beginning was saved, as " + new)):
            self.save_as(lectora, path, replaces=path == old)
            lectora.find("label", "Synthesizing Voice")
            cancel = lectora.find("push button", "Cancel")
            desktop.wait_until(lambda: os.path.exists(speech) and os.path.getsize(speech) > 100, "the first piece")
            self.assertEqual(os.stat(speech).st_mode & 0o777, 0o600)
            self.picture("saving")
            lectora.click(cancel)
            desktop.wait_until(lambda note=note: note in lectora.status(), note)
            self.assertFalse(os.path.exists(speech))
        with open(old) as file:
            self.assertEqual(file.read(), "what it held")
        seconds = desktop.Sound(new).frames / 44100
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
