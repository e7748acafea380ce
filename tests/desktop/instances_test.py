"""One Lectora a user: second starts, and what a crash leaves."""
import unittest

from desktop_case import DesktopCase, desktop


class InstancesTest(DesktopCase):
    def second_start(self, *arguments):
        with desktop.Lectora(*arguments) as second:
            return second.process.wait(desktop.PATIENCE)

    def test_a_second_start_hands_its_file_over_and_ends(self):
        lectora = self.start()
        path = self.file("second.txt", "handed over")
        self.assertEqual(self.second_start(path), 0)
        stream = self.card.next_stream()
        self.card.wait_for(stream, "close")
        self.assertEqual(lectora.text(), "handed over")
        # Without a file it only brings the window back.
        lectora.hide()
        self.assertEqual(self.second_start(), 0)
        lectora.window()
        self.assertEqual(lectora.text(), "handed over")


if __name__ == "__main__":
    unittest.main()
