"""One Lectora a user: second starts, and what a crash leaves."""
import os
import socket
import unittest

from desktop_case import DesktopCase, desktop

SOCKET = ".Lectora.runonce"


class InstancesTest(DesktopCase):
    def second_start(self, *arguments):
        with desktop.Lectora(*arguments) as second:
            return second.process.wait(20)

    def test_a_second_start_hands_its_file_over_and_ends(self):
        lectora = self.start()
        path = self.file("second.txt", "handed over")
        self.assertEqual(self.second_start(path), 0)
        stream = self.card.next_stream()
        self.card.wait_for(stream, "close")
        self.assertEqual(lectora.text(), "handed over")
        # Without a file it only brings the window back.
        desktop.xdotool("windowminimize", "--sync", lectora.window())
        self.assertEqual(self.second_start(), 0)
        lectora.window()
        self.assertEqual(lectora.text(), "handed over")

    def test_a_relative_path_means_the_same_file_to_the_running_instance(self):
        lectora = self.start()
        self.file("near.txt", "from here")
        here = os.getcwd()
        self.addCleanup(os.chdir, here)
        os.chdir(desktop.HOME)
        self.assertEqual(self.second_start("near.txt"), 0)
        desktop.wait_until(lambda: lectora.text() == "from here", "the text")

    def test_a_stale_socket_is_replaced(self):
        path = os.path.join(desktop.HOME, SOCKET)
        with socket.socket(socket.AF_UNIX) as stale:
            stale.bind(path)
        lectora = self.start()
        self.assertEqual(self.second_start(self.file("after.txt", "after the crash")), 0)
        desktop.wait_until(lambda: lectora.text() == "after the crash", "the text")


if __name__ == "__main__":
    unittest.main()
