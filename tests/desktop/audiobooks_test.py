"""Audiobooks made in the window: the list, what is changed, pause, an end in the middle, and what is then there."""
import json
import os
import subprocess
import unittest

from desktop_case import SHARE, DesktopCase, desktop

CHAPTERS = "<h1>One</h1><p>First words.</p><h1>Two</h1><p>Other words.</p><h1>Three</h1><p>Last words.</p>"
PAGE = "<html lang=en><head><title>{}</title><body>" + CHAPTERS


class AudiobooksTest(DesktopCase):
    def open_dialog(self, lectora):
        lectora.focus()
        desktop.press_keys("ctrl+alt+a")
        lectora.active_window("dialog", "Save as Audiobook")

    def rows(self, lectora):
        # The first of a row holds a place for a picture beside its text.
        cells = [cell.name or "".join(part.name for part in cell)
                 for cell in lectora.find("table", "Documents") if cell.getRoleName() == "table cell"]
        return [cells[at : at + 4] for at in range(0, len(cells), 4)]

    def state(self, lectora, row):
        return self.rows(lectora)[row][3]

    def probe(self, name):
        command = ["ffprobe", "-v", "error", "-show_chapters", "-show_format", "-show_streams", "-of", "json", os.path.join(desktop.HOME, name)]
        return json.loads(subprocess.run(command, capture_output=True, check=True, timeout=desktop.PATIENCE).stdout)

    def test_books_are_listed_changed_paused_killed_and_gone_on_with(self):
        self.store("audiobooks", format="flac", folder=desktop.HOME)
        desktop.tell_engine("text2wave slow 1")
        story = self.file("story.html", PAGE.format("Of the Sea"))
        paths = [self.file(f"{name}.html", PAGE.format("The Same")) for name in "ab"]
        lectora = self.start(story)
        desktop.wait_until(lambda: "Last words." in lectora.text(), "the text")
        self.card.wait_for(self.card.next_stream(), "close")
        # What was edited is in no document.
        lectora.focus()
        desktop.press_keys("ctrl+End", "x")
        desktop.wait_until(lambda: lectora.text().endswith("x"), "the letter")
        self.open_dialog(lectora)
        desktop.wait_until(lambda: [row[0] for row in self.rows(lectora)] == ["Of the Sea"], "the window's text")
        lectora.press("push button", "Add...")
        lectora.active_window("dialog", "Add Documents")
        desktop.xdotool("type", "--delay", "10", paths[0])
        desktop.press_keys("Return")
        desktop.wait_until(lambda: len(self.rows(lectora)) == 2, "the document")
        self.assertRegex(" ".join(self.rows(lectora)[1]), r"The Same 0:00:\d\d \d+\.\d MB")
        lectora.press("push button", "Title and Cover...")
        lectora.active_window("dialog", "About This Book")
        self.picture("audiobook-details")
        desktop.press_keys("ctrl+a", *"Tide", "Return")
        desktop.wait_until(lambda: self.rows(lectora)[1][0] == "Tide", "its new title")
        self.picture("audiobook")
        # Kept with the books: in another voice what is finished would be spoken anew.
        lectora.find("combo box", "Voice:").querySelection().selectChild(1)
        desktop.forget_engine_calls()
        desktop.press_keys("alt+s")
        desktop.wait_until(lambda: "%" in self.state(lectora, 0), "the first book to begin")
        self.assertIn("Waiting", self.state(lectora, 1))
        desktop.wait_until(lambda: self.kept(), "a finished chapter")
        lectora.press("push button", "Pause")
        desktop.wait_until(lambda: "Paused" in self.state(lectora, 0), "the pause")
        self.picture("audiobook-paused")
        lectora.process.kill()
        lectora.process.wait()
        kept = self.kept()
        self.assertEqual(len(self.texts()), 1)

        desktop.tell_engine()
        lectora = self.start()
        self.open_dialog(lectora)
        desktop.wait_until(lambda: [row[0] for row in self.rows(lectora)] == ["Of the Sea", "Tide"], "the books")
        desktop.forget_engine_calls()
        desktop.press_keys("alt+s")
        # What the user does meanwhile is not in its way, nor it in theirs.
        desktop.press_keys("Escape")
        for name in ("Of the Sea.flac", "Tide.flac"):
            desktop.wait_until(lambda: os.path.exists(os.path.join(desktop.HOME, name)), name)
        self.assertEqual(len(self.spoken()), 2 * (6 - kept), "the heading and the words of each chapter left")
        for title in ("Of the Sea", "Tide"):
            told = self.probe(title + ".flac")
            self.assertEqual([chapter["tags"]["title"] for chapter in told["chapters"]], ["One", "Two", "Three"])
            self.assertEqual(told["format"]["tags"]["TITLE"], title)
        desktop.wait_until(lambda: "Tide: Saved as" in lectora.status(), "what became of it")
        self.assertEqual(self.texts(), [])
        self.open_dialog(lectora)
        self.assertEqual([row[3] for row in self.rows(lectora)], ["Done", "Done"])
        self.picture("audiobook-done")

    def test_a_book_that_is_begun_otherwise_and_under_another_title_can_go_on_as_it_was_begun(self):
        self.store("audiobooks", format="flac", folder=desktop.HOME)
        desktop.tell_engine("text2wave slow 1")
        lectora = self.start(self.file("story.html", PAGE.format("Of the Sea")))
        desktop.wait_until(lambda: "Last words." in lectora.text(), "the text")
        self.card.wait_for(self.card.next_stream(), "close")
        self.open_dialog(lectora)
        desktop.wait_until(lambda: len(self.rows(lectora)) == 1, "the window's text")
        desktop.press_keys("alt+s")
        desktop.wait_until(lambda: "%" in self.state(lectora, 0) and self.kept(), "a finished chapter")
        lectora.press("push button", "Break Off")
        desktop.wait_until(lambda: self.state(lectora, 0) == "Broken off", "the end of the book")
        kept = self.kept()
        desktop.tell_engine()
        desktop.forget_engine_calls()
        lectora.find("combo box", "Voice:").querySelection().selectChild(1)
        formats = lectora.find("combo box", "Format:")
        formats.querySelection().selectChild([each.name.startswith("WAV") for each in formats[0]].index(True))
        lectora.press("push button", "Title and Cover...")
        lectora.active_window("dialog", "About This Book")
        desktop.press_keys("ctrl+a", *"Tide", "Return")
        desktop.wait_until(lambda: self.rows(lectora)[0][0] == "Tide", "its new title")
        desktop.press_keys("alt+s")
        lectora.press("push button", "Cancel")
        desktop.wait_until(lambda: lectora.find("push button", "Break Off") is not None, "the question's end")
        self.assertEqual((self.state(lectora, 0), self.spoken()), ("Broken off", []))
        desktop.press_keys("alt+s")
        lectora.press("push button", "Go On as Begun")
        desktop.wait_until(lambda: self.state(lectora, 0) == "Done", "the book")
        self.assertEqual(len(self.spoken()), 6 - 2 * kept, "the heading and the words of each chapter left")
        self.assertEqual(self.probe("Tide.flac")["format"]["tags"]["TITLE"], "Tide")

    def test_a_document_that_was_edited_keeps_its_language(self):
        self.store("audiobooks", format="m4b", folder=desktop.HOME)
        lectora = self.start(self.file("tide.html", PAGE.format("Tide").replace("lang=en", "lang=de")))
        self.card.wait_for(self.card.next_stream(), "close")
        lectora.focus()
        desktop.press_keys("ctrl+End", "x")
        desktop.wait_until(lambda: lectora.text().endswith("x"), "the letter")
        self.open_dialog(lectora)
        desktop.wait_until(lambda: [row[0] for row in self.rows(lectora)] == ["Tide"], "the text")
        desktop.press_keys("alt+s")
        desktop.wait_until(lambda: self.state(lectora, 0) == "Done", "the book")
        self.assertEqual(self.probe("Tide.m4b")["streams"][0]["tags"]["language"], "deu")

    def test_an_encoder_that_hangs_keeps_nobody_from_breaking_off(self):
        self.store("audiobooks", format="mp3", folder=desktop.HOME)
        subprocess.run(["bash", os.path.join(SHARE, "components/mp3el")], check=True, timeout=desktop.PATIENCE)
        hanging = self.file("components/mp3el/mp3el", "#!/bin/sh\ntouch \"$HOME/hangs\"\nexec sleep 1000\n")
        os.chmod(hanging, 0o755)
        lectora = self.start()
        lectora.set_text("Some words.")
        self.open_dialog(lectora)
        desktop.wait_until(lambda: len(self.rows(lectora)) == 1, "the window's text")
        desktop.press_keys("alt+s")
        desktop.wait_until(lambda: os.path.exists(os.path.join(desktop.HOME, "hangs")), "the encoder")
        desktop.wait_until(lambda: "%" in self.state(lectora, 0), "how far it is")
        lectora.press("push button", "Break Off")
        desktop.wait_until(lambda: self.state(lectora, 0) == "Broken off", "the end of the book")
        left = [name for _, _, names in os.walk(desktop.HOME) for name in names if name.endswith((".mp3", ".wav", ".part"))]
        self.assertEqual(left, [])

    def texts(self):
        return [name for name in os.listdir(os.path.join(desktop.HOME, ".quillon/lectora")) if name.startswith("audiobook-text")]

    def kept(self):
        folder = os.path.join(desktop.HOME, ".Of the Sea.flac.lectora-book")
        return len([name for name in os.listdir(folder) if name.endswith(".part")])


if __name__ == "__main__":
    unittest.main()
