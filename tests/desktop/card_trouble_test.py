"""A sound card that is missing, busy, vanishes, runs dry or sleeps."""
import os
import unittest

from desktop_case import DesktopCase, desktop

TEXT = "one two three four five six seven eight nine ten"


class CardTroubleTest(DesktopCase):
    def start_with_text(self):
        lectora = self.start()
        lectora.set_text(TEXT)
        return lectora

    def test_a_card_that_cannot_be_opened(self):
        def take_out():
            os.unlink(os.path.join(self.card.folder, "settings"))

        for name, trouble in (
            ("missing", take_out),
            ("busy", lambda: self.card.tell("fault busy")),
        ):
            with self.subTest(name):
                lectora = self.start_with_text()
                trouble()
                lectora.press("toggle button", "Read Aloud")
                lectora.wait_for_box(
                    "Please check that you have selected the correct sound device."
                )
                self.picture("card-" + name)
                lectora.press("push button", "OK")
                self.card.tell("speed 8")
                self.assert_usable(lectora, TEXT)
                lectora.end()

    def test_a_card_that_vanishes_while_it_plays(self):
        lectora = self.start_with_text()
        self.card.tell("speed 8", "fault vanish 9000")
        lectora.press("toggle button", "Read Aloud")
        lectora.wait_for_box("The sound device stopped working")
        self.picture("card-vanished")
        lectora.press("push button", "OK")
        self.card.next_stream()
        self.card.tell("speed 8")
        self.assert_usable(lectora, TEXT)

    def test_reading_goes_on_after_an_interruption(self):
        lectora = self.start_with_text()
        whole = self.card.sound(self.read_aloud(lectora)).frames
        for fault, event in (("underrun 9000", "underrun"), ("suspend 9000", "resume")):
            with self.subTest(fault):
                self.card.tell("speed 8", "fault " + fault)
                stream = self.read_aloud(lectora)
                self.assertIn(event, [row[1] for row in self.card.events(stream)])
                # At most one block of a quarter second is lost.
                self.assertGreaterEqual(self.card.sound(stream).frames, whole - 4000)
        self.assertEqual(lectora.text(), TEXT)


if __name__ == "__main__":
    unittest.main()
