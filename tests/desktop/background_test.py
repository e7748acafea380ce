"""The window closed and brought back, and the ways to end the program."""
import os
import signal
import subprocess
import unittest

from desktop_case import DesktopCase, desktop


class BackgroundTest(DesktopCase):
    def test_the_closed_window_reads_on_and_comes_back_where_it_was_by_each_way(self):
        self.card.tell("speed 0.1")
        desktop.tell_engine("text2wave long 60")
        lectora = self.start(self.file("long.txt", "a long story"))
        stream = self.card.next_stream()
        lectora.player()
        desktop.xdotool("windowmove", "--sync", lectora.window(), 40, 60)
        place = desktop.xdotool("getwindowgeometry", lectora.window())
        # A tray that starts again gets the icon again, also while the window is hidden.
        for back in (self.click, self.menu, self.second_start, self.new_tray, self.click):
            with self.subTest(back.__name__):
                lectora.hide()
                back(lectora)
                self.assertEqual(desktop.xdotool("getwindowgeometry", lectora.window()), place)
        self.assertEqual(self.card.events(stream)[-1][1], "start")

    def click(self, lectora):
        lectora.press_tray_icon(1)

    def menu(self, lectora):
        lectora.press_tray_icon(3)
        self.picture("tray-menu")
        lectora.press_popped_up("Open Lectora")

    def second_start(self, _):
        with desktop.Lectora() as second:
            self.assertEqual(second.process.wait(desktop.PATIENCE), 0)

    def new_tray(self, lectora):
        self.end_tray()
        tray = subprocess.Popen("trayer --edge bottom --align right --height 24".split())
        self.addCleanup(tray.wait)
        self.addCleanup(tray.kill)
        lectora.press_tray_icon(1)

    def end_tray(self):
        for pid, command in desktop.processes().items():
            if command.startswith("trayer"):
                os.kill(pid, signal.SIGKILL)
        desktop.wait_until(lambda: not desktop.tray_icons(), "the icon's end")

    def test_exit_does_as_it_is_answered(self):
        lectora = self.start()
        for answer, windows in (("Cancel", 1), ("Yes", 0)):
            lectora.press_tray_icon(3)
            lectora.press_popped_up("Exit (Hot Keys Off)")
            lectora.wait_for_box("continue run in the background")
            self.picture("confirm-exit")
            lectora.press("push button", answer)
            desktop.wait_until(lambda: len(lectora.windows()) == windows, answer)
        self.click(lectora)
        lectora.window()
        self.assertEqual(lectora.exit(), 0)

    def test_without_a_tray_closing_minimises_and_says_why(self):
        lectora = self.start()
        self.end_tray()
        lectora.focus()
        desktop.press_keys("alt+F4")
        lectora.find("notification")
        self.picture("minimised")
        desktop.wait_until(lambda: not lectora.windows(), "the window to go")
        self.second_start(lectora)
        lectora.window()


if __name__ == "__main__":
    unittest.main()
