"""One Lectora a user: second starts, and what a crash leaves."""
import os
import signal
import subprocess
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
        desktop.xdotool("windowminimize", "--sync", lectora.window())
        self.assertEqual(self.second_start(), 0)
        lectora.window()
        self.assertEqual(lectora.text(), "handed over")

    def test_the_tray_icon_brings_the_window_back_also_in_a_tray_that_starts_again(self):
        lectora = self.start()
        for _ in range(2):
            icon = desktop.wait_until(
                lambda: desktop.xdotool("search", "--onlyvisible", "--name", "^TrayIcon$").split(), "the icon"
            )[0]
            self.picture("tray")
            desktop.xdotool("windowminimize", "--sync", lectora.window())
            desktop.xdotool("mousemove", "--window", icon, 8, 8, "click", 1)
            lectora.window()
            trays = [pid for pid, command in desktop.processes().items() if command.startswith("trayer")]
            os.kill(trays[0], signal.SIGKILL)
            desktop.wait_until(
                lambda: not desktop.xdotool("search", "--onlyvisible", "--name", "^TrayIcon$"), "its end"
            )
            tray = subprocess.Popen("trayer --edge bottom --align right --height 24".split())
            self.addCleanup(tray.kill)


if __name__ == "__main__":
    unittest.main()
