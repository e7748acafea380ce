"""What the window remembers, and what it does with several files."""
import os
import subprocess
import unittest

from desktop_case import DesktopCase, desktop


class WindowTest(DesktopCase):
    def test_the_chosen_voice_reads_and_is_remembered_whatever_is_typed(self):
        desktop.tell_engine("festival voices 3")
        lectora = self.start()
        lectora.set_text("words")
        self.voices(lectora, 3)
        lectora.focus()
        # Down in the list's entry moves the selection on.
        desktop.press_keys("Tab", "Down", "Down", "x", "ctrl+shift+r")
        self.card.wait_for(self.card.next_stream(), "close")
        self.assertIn("(voice_voice3)", desktop.engine_calls()[-1])
        self.assertEqual(self.setting("settings", "voice"), "festival:voice3", "kept before the end")
        lectora.focus()
        desktop.press_keys("ctrl+a", *"voice2")
        self.assertEqual(lectora.exit(), 0)
        self.assertEqual(self.setting("settings", "voice"), "festival:voice2")
        again = self.start()
        self.voices(again, 3)
        self.assertIn("voice2", [entry.queryText().getText(0, -1) for entry in again.find_all("text")])
        self.assertEqual(again.exit(), 0)

    def voices(self, lectora, count):
        combo = lectora.find("combo box")
        desktop.wait_until(lambda: len(combo[0]) == count, "the voices")

    def test_a_maximised_window_keeps_its_own_size_and_escape_takes_the_end_back(self):
        lectora = self.start()
        window = lectora.window()
        desktop.xdotool("windowsize", "--sync", window, 640, 480)
        # A second start brings it to the front, where it stands.
        desktop.xdotool("windowmove", "--sync", window, 420, 300)
        place = desktop.xdotool("getwindowgeometry", window)
        subprocess.run([os.path.join(desktop.BUILD, "bin/lectora")], check=True, timeout=desktop.PATIENCE)
        lectora.settle()
        self.assertEqual(desktop.xdotool("getwindowgeometry", window), place)
        # The window manager's button for it, at the right of the title.
        desktop.xdotool("mousemove", "--window", window, "--", 614, -10, "click", 1)
        desktop.wait_until(lambda: lectora.text_box().queryComponent().getExtents(0).width > 900, "the large window")
        lectora.choose("Lectora", "Exit (Turn Off)")
        lectora.wait_for_box("Confirm Exit")
        desktop.press_keys("Escape")
        desktop.wait_until(lambda: not lectora.box_text(), "the end of the question")
        self.assertEqual(lectora.exit(), 0)
        self.assertEqual([self.setting("mainwindow", key) for key in ("width", "height", "maximized")], ["640", "480", "1"])

    def test_several_files_are_read_one_after_the_other_until_escape(self):
        files = [self.file(f"{word}.txt", word) for word in ("first", "second", "third")]
        missing = os.path.join(desktop.HOME, "missing.txt")
        self.card.tell("speed 0.1")
        desktop.tell_engine("text2wave long 10")
        lectora = self.start(files[0], missing, files[1], files[2])
        self.card.wait_for(self.card.next_stream(), "start")
        lectora.player()
        self.card.tell("speed 8")
        stream = self.card.next_stream()
        self.card.wait_for(stream, "start")
        self.card.tell("speed 0.1")
        # Stopping also forgets what waits.
        desktop.press_keys("Escape")
        self.card.wait_for(stream, "close")
        self.card.tell("speed 8")
        self.read_aloud(lectora)
        self.assertEqual([call.split()[-1] for call in self.spoken()], ["first", "second", "second"])

    def test_a_file_comes_from_a_second_start_and_an_edit_ends_the_queue(self):
        self.card.tell("speed 0.1")
        desktop.tell_engine("text2wave long 2")
        files = [self.file(f"{word}.txt", word) for word in ("first", "second")]
        lectora = self.start(*files)
        stream = self.card.next_stream()
        lectora.player()
        desktop.press_keys("ctrl+End", "x")
        desktop.wait_until(lambda: lectora.text() == "firstx", "the edit")
        self.card.tell("speed 8")
        self.card.wait_for(stream, "close")
        self.read_aloud(lectora)
        self.assertEqual(lectora.text(), "firstx")
        with desktop.Lectora(self.file("third.txt", "handed over")) as start:
            self.assertEqual(start.process.wait(desktop.PATIENCE), 0)
        self.card.wait_for(self.card.next_stream(), "start")
        self.assertEqual(lectora.text(), "handed over")

    def test_a_program_named_setup_ends_without_a_word(self):
        program = os.path.join(desktop.HOME, "lectora-setup")
        os.symlink(os.path.join(desktop.BUILD, "bin/lectora"), program)
        self.assertEqual(subprocess.run([program], timeout=desktop.PATIENCE).returncode, 0)


if __name__ == "__main__":
    unittest.main()
