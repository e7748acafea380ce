"""A sound card that is missing, busy, vanishes, runs dry or sleeps."""
import os
import unittest

from desktop_case import DesktopCase, desktop

TEXT = "one two three four five six seven eight nine ten"


class CardTroubleTest(DesktopCase):
    def test_a_card_that_cannot_be_opened(self):
        for name, trouble, note in (
            ("missing", self.take_out, ""),
            ("busy", self.hold, "The sound card is in use by another program."),
        ):
            with self.case(name) as lectora:
                lectora.set_text(TEXT)
                trouble()
                status = lectora.find("status bar")
                lectora.press("toggle button", "Read Aloud")
                if note:
                    desktop.wait_until(lambda: "trying again" in status.name, "the status")
                box = lectora.wait_for_box(
                    "Please check that you have selected the correct sound device."
                )
                self.assertIn(note, box)
                self.picture("card-" + name)
                lectora.press("push button", "OK")
                if name == "missing":  # told in the window that helps
                    lectora.press("push button", "Close")
                self.card.tell("speed 8")
                self.assert_usable(lectora, TEXT)

    def take_out(self):
        os.unlink(os.path.join(self.card.folder, "settings"))

    def hold(self):
        self.card.tell("fault busy")

    def test_the_sound_server_plays_when_the_card_cannot(self):
        server = desktop.Card(9)
        self.addCleanup(os.unlink, os.path.join(server.folder, "settings"))
        for trouble, note in (
            (self.hold, "The sound card is in use by another program"),
            (self.take_out, "The sound card is not there"),
        ):
            with self.case(note) as lectora:
                lectora.set_text(TEXT)
                trouble()
                server.tell("server 45", "speed 0.1")
                lectora.press("toggle button", "Read Aloud")
                stream = server.next_stream()
                lectora.find("label", note + "; playing through the desktop's sound server.")
                self.picture("card-server")
                server.tell("server 45", "speed 8")
                server.wait_for(stream, "close")
                self.assertEqual(lectora.box_text(), "")

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
