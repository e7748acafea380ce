"""Files of every kind as arguments, and texts with nothing to say."""
import os
import signal
import subprocess
import unittest

from desktop_case import DesktopCase, desktop


class TextsTest(DesktopCase):
    def test_a_document_that_cannot_be_read_is_told_and_a_slow_one_can_be_cancelled(self):
        tools = os.path.join(desktop.HOME, "bin")
        os.mkdir(tools)
        with open(os.path.join(tools, "pdftotext"), "w") as tool:
            tool.write("#!/bin/sh\nexec sleep 600\n")
        os.chmod(tool.name, 0o755)
        picture = self.file("picture.txt", b"\x89PNG\r\n\x1a\n" + bytes(100))
        slow = self.file("slow.pdf", "%PDF-1.4\n")
        lectora = self.start(self.file("first.txt", "first text"), PATH=f"{tools}:{os.environ['PATH']}")
        self.card.wait_for(self.card.next_stream(), "close")
        missing = os.path.join(desktop.HOME, "not there.txt")
        # The window may be out of sight; a later file takes the sentence away.
        for path, note in ((tools, "This is a folder"), (missing, "cannot be opened"), (self.file("first.txt", "first text"), None)):
            if note:
                lectora.hide()
            with desktop.Lectora(path) as second:
                self.assertEqual(second.process.wait(desktop.PATIENCE), 0)
            if note:
                desktop.wait_until(lambda: lectora.windows(), "the window")
                desktop.wait_until(lambda: note in lectora.status() and path in lectora.status(), note)
        self.card.wait_for(self.card.next_stream(), "close")
        desktop.wait_until(lambda: "Cannot read" not in lectora.status(), "the end of the sentence")
        self.open_file(lectora, picture)
        lectora.wait_for_box("Cannot read the file.")
        self.picture("cannot-read")
        lectora.press("push button", "OK")
        self.open_file(lectora, slow)
        lectora.find("label", "slow.pdf")
        self.picture("loading")
        lectora.press("push button", "Cancel")
        desktop.wait_until(lambda: len(lectora.windows()) == 1, "the dialog to go")
        self.assert_usable(lectora, "first text")
        desktop.wait_until(lambda: "sleep 600" not in desktop.processes().values(), "the tool's end")

    def open_file(self, lectora, path):
        self.choose(lectora, "ctrl+o", "Locate File to Read Text", path)

    def test_what_was_typed_is_there_after_every_end_and_what_was_only_fetched_is_not(self):
        kept = os.path.join(desktop.HOME, ".quillon/lectora/text")
        lectora = self.start()
        lectora.set_text("grüße ")
        self.assertEqual(lectora.exit(), 0)
        lectora = self.start()
        self.assertEqual(lectora.text(), "grüße ")
        desktop.press_keys("ctrl+z", "ctrl+End", *"kind")
        desktop.wait_until(lambda: lectora.text() == "grüße kind", "the words")
        desktop.wait_until(lambda: open(kept, encoding="utf-8").read() == "grüße kind", "its file")
        self.assertEqual(os.stat(kept).st_mode & 0o777, 0o600)
        lectora.end()  # killed
        lectora = self.start()
        self.assertEqual((lectora.text(), lectora.text_box().queryText().caretOffset), ("grüße kind", 10))
        self.select("theirs")
        desktop.press_keys("ctrl+b")
        desktop.wait_until(lambda: lectora.text() == "theirs", "their text")
        lectora.process.terminate()
        lectora.process.wait(desktop.PATIENCE)
        lectora = self.start()
        self.assertEqual(lectora.text(), "grüße kind")
        path = os.path.join(desktop.HOME, "letter.txt")
        # What comes while the name is asked for does not go by it.
        lectora.focus()
        desktop.press_keys("ctrl+s")
        chooser = desktop.wait_until(lambda: desktop.xdotool("search", "--onlyvisible", "--name", "Save Text As").split(), "the chooser")[0]
        other = subprocess.run([os.path.join(desktop.BUILD, "bin/lectora"), "--read-selection"], capture_output=True, text=True, timeout=desktop.PATIENCE)
        self.assertNotEqual(other.returncode, 0, other)
        self.assertEqual(lectora.text(), "grüße kind")
        desktop.xdotool("windowactivate", "--sync", chooser)
        desktop.press_keys("Escape")
        self.choose(lectora, "ctrl+s", "Save Text As", path[:-4])
        desktop.wait_until(lambda: "Saved as " + path in lectora.status(), "the note")
        with open(path, encoding="utf-8") as file:
            self.assertEqual(file.read(), "grüße kind")
        lectora.press("push button", "Options")
        lectora.press("check box", "Keep the text for the next start")
        lectora.press("push button", "OK")
        desktop.wait_until(lambda: not os.path.exists(kept), "nothing kept")
        lectora.focus()
        desktop.press_keys("ctrl+End", "x")
        lectora.exit()
        self.assertFalse(os.path.exists(kept))
        self.assertEqual(self.start().text(), "")

    def test_another_program_that_does_not_answer_holds_up_nothing(self):
        lectora = self.start()
        lectora.set_text("own")
        owner = self.select("late")
        owner.send_signal(signal.SIGSTOP)
        for edit in (True, False):
            lectora.focus()
            desktop.press_keys("ctrl+shift+b")
            if edit:  # its answer comes too late
                lectora.type("ctrl+End", "x")
                self.assertEqual(lectora.text(), "ownx")
            else:
                lectora.type("ctrl+shift+b", "ctrl+shift+b")
                self.assertIn("still being asked", lectora.status())
        owner.send_signal(signal.SIGCONT)
        self.card.wait_for(self.card.next_stream(), "close")
        self.assertEqual(lectora.text(), "late")
        self.read_aloud(lectora)
        self.assertEqual(len(self.spoken()), 2)
        # What was copied later counts, unless it is no text; one's own selection never does.
        subprocess.run(["xclip", "-selection", "clipboard"], input=b"copied", check=True, timeout=desktop.PATIENCE)
        lectora.focus()
        desktop.press_keys("ctrl+a", "ctrl+b")
        desktop.wait_until(lambda: lectora.text() == "copied", "what was copied")
        owner = self.select("later")
        owner.send_signal(signal.SIGSTOP)
        desktop.press_keys("ctrl+shift+b")
        self.assertEqual(lectora.exit(), 0)

    def test_a_line_of_ten_megabytes_is_typed_into_without_delay_and_copied_as_it_was(self):
        text = "All work and no play makes Jack a dull boy. " * 240000
        lectora = self.start(self.file("huge.txt", text))
        lectora.player()
        lectora.focus()
        desktop.press_keys("ctrl+a", "ctrl+c")
        for selection in ("primary", "clipboard"):
            desktop.wait_until(lambda: self.selection(selection) == text, "the " + selection)
        box = lectora.text_box().queryText()
        for key in ("ctrl+Home", "ctrl+End"):
            desktop.press_keys(key)
            place = 0 if key == "ctrl+Home" else box.characterCount
            desktop.wait_until(lambda: box.caretOffset == place, key)
            before = lectora.cpu_seconds()
            desktop.press_keys(*"nothingbutsomewords")
            desktop.wait_until(lambda: box.caretOffset == place + 19, "the words")
            self.assertLess((lectora.cpu_seconds() - before) / 19, 0.1)
        desktop.press_keys("shift+ctrl+Left", "ctrl+x")
        desktop.wait_until(lambda: self.selection("clipboard") == "nothingbutsomewords", "what was cut")

    def test_a_text_with_nothing_to_say_does_not_start_the_engine(self):
        lectora = self.start()
        calls = len(desktop.engine_calls())
        lectora.set_text("---- … ????\n!!! ***")
        lectora.press("toggle button", "Read Aloud")
        lectora.wait_for_box("There is nothing in this text")
        self.picture("nothing-to-say")
        lectora.press("push button", "OK")
        self.assertEqual(len(desktop.engine_calls()), calls)
        self.assertEqual(lectora.text(), "---- … ????\n!!! ***")


if __name__ == "__main__":
    unittest.main()
