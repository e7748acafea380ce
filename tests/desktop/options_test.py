"""The options, and the hotkeys of the first start."""
import os
import unittest

from desktop_case import DesktopCase, desktop

UPDATE, READ, SAVE = range(3)
CONTROL_ALT = 12 << 16


class FirstStartTest(DesktopCase):
    def setUp(self):
        super().setUp()
        self.give_keys()

    def answer(self, lectora, key):
        text = lectora.wait_for_box("from every program")
        desktop.press_keys(key)
        desktop.wait_until(lambda: not lectora.box_text(), "the end of the question")
        return text

    def test_a_yes_takes_keys_that_are_free_and_work_at_once(self):
        self.give_keys((CONTROL_ALT | ord("R"), READ))
        other = self.start(HOME=self.folder("other"))
        self.give_keys()
        lectora = self.start(asks=True)
        self.assertIn("Ctrl+Alt+Shift+R", self.answer(lectora, "alt+y"))
        other.end()
        for key, reads in (("ctrl+alt+r", False), ("ctrl+alt+shift+r", True)):
            self.select(f"by {key}")
            desktop.press_keys(key)
            if reads:
                self.card.wait_for(self.card.next_stream(), "close")
        self.assertEqual([call.split(" ", 2)[2] for call in self.spoken()], ["by ctrl+alt+shift+r"])

    def test_it_asks_once_and_never_over_a_reading(self):
        lectora = self.start(self.file("fox.txt", "some words"), asks=True)
        self.card.wait_for(self.card.next_stream(), "close")
        self.assertEqual(lectora.box_text(), "")
        lectora.end()
        lectora = self.start(asks=True)
        self.answer(lectora, "Escape")
        self.select("not read")
        desktop.press_keys("ctrl+alt+r")
        lectora.end()
        lectora = self.start(asks=True)
        lectora.set_text("read")
        self.read_aloud(lectora)
        self.assertEqual(lectora.box_text(), "")
        self.assertNotIn("not read", "".join(self.spoken()))


if __name__ == "__main__":
    unittest.main()
