"""A sound card that is missing, busy, vanishes, runs dry or sleeps."""
import os
import unittest

from desktop_case import DesktopCase, desktop

TEXT = "one two three four five six seven eight nine ten"


class CardTroubleTest(DesktopCase):
    def test_a_card_that_cannot_be_opened(self):
        def take_out():
            os.unlink(os.path.join(self.card.folder, "settings"))

        for name, trouble in (
            ("missing", take_out),
            ("busy", lambda: self.card.tell("fault busy")),
        ):
            with self.case(name) as lectora:
                lectora.set_text(TEXT)
                trouble()
                lectora.press("toggle button", "Read Aloud")
                lectora.wait_for_box(
                    "Please check that you have selected the correct sound device."
                )
                self.picture("card-" + name)
                lectora.press("push button", "OK")
                if name == "missing":  # told in the window that helps
                    lectora.press("push button", "Close")
                self.card.tell("speed 8")
                self.assert_usable(lectora, TEXT)

    def test_a_card_that_vanishes_while_it_plays(self):
        lectora = self.start()
        lectora.set_text(TEXT)
        self.card.tell("speed 8", "fault vanish 9000")
        lectora.press("toggle button", "Read Aloud")
        lectora.wait_for_box("The sound device stopped working")
        self.picture("card-vanished")
        lectora.press("push button", "OK")
        self.card.next_stream()
        self.card.tell("speed 8")
        self.assert_usable(lectora, TEXT)


if __name__ == "__main__":
    unittest.main()
