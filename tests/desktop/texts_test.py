"""Files of every kind as arguments, and texts with nothing to say."""
import os
import time
import unittest

from desktop_case import DesktopCase, desktop


class TextsTest(DesktopCase):
    def test_files_that_cannot_be_loaded_leave_the_text_alone(self):
        closed = os.path.join(desktop.HOME, "folder")
        os.mkdir(closed)
        lectora = self.start(self.file("first.txt", "first text"))
        self.card.wait_for(self.card.next_stream(), "close")
        for path in (closed, os.path.join(desktop.HOME, "not there.txt")):
            with desktop.Lectora(path) as second:
                self.assertEqual(second.process.wait(20), 0)
        time.sleep(0.5)
        self.assert_usable(lectora, "first text")

    def test_a_line_of_ten_megabytes_is_read_and_typed_into_without_delay(self):
        text = "All work and no play makes Jack a dull boy. " * 240000
        lectora = self.start(self.file("huge.txt", text))
        self.card.wait_for(self.card.next_stream(60), "start")
        lectora.focus()
        for place in ("ctrl+Home", "ctrl+End"):
            desktop.press_keys(place)
            caret = lectora.text_box().queryText().caretOffset
            before = lectora.cpu_seconds()
            desktop.press_keys(*"nothingbutsomewords")
            desktop.wait_until(
                lambda: lectora.text_box().queryText().caretOffset == caret + 19, "the words", 60
            )
            self.assertLess((lectora.cpu_seconds() - before) / 19, 0.1)

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
