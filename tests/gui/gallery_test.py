"""The gallery in use: what a screen reader says of it, real keys and the real pointer."""
import os
import sys
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.realpath(__file__)), "../support"))
import pyatspi  # noqa: E402

import lectora_desktop as desktop  # noqa: E402
from screen_reader import ScreenReader  # noqa: E402

# The windows of the gallery in their order, and what Tab reaches in each.
WINDOWS = [
    (
        "dialog Controls",
        "Name, Password, Copies, Voice, Device, Remind me, Calendar, Speed, Volume, Volume, Notes,"
        " Quillon on the web, Prompt for format settings, Tell me when it is done, Add..., Change...,"
        " Remove..., Defaults, OK, Cancel, Help",
    ),
    ("dialog Lists and log", "System Wide HotKeys, Status, Go Back, Help"),
    (
        "dialog Menus, tool bar, command bar",
        "Read Aloud, Save as Speech, Rewind (<-), Read Aloud, Read current text, Save as Speech,"
        " Save current text, Read Aloud, Read Aloud menu, Save Speech, Save Speech menu, Options,"
        " Help",
    ),
    (
        "dialog MP3 Encoder Options",
        "Channel Mode:, Constant Bitrate, Bitrate (kbps):, High Quality, Error Protection, Defaults, OK,"
        " Cancel, Help",
    ),
    (
        "dialog Au Encoder Options",
        "Channels, Sample Rate, Channels, Restore Defaults, OK, Cancel, Help",
    ),
    ("dialog AIFF Encoder Options", "Sample Rate, Channels, Restore Defaults, OK, Cancel, Help"),
    ("dialog Raw Encoder Options", "Codec:, Sample Rate:, Sample Rate:, Channels:, Restore Defaults, OK, Cancel, Help"),
]

# What the window is sent by keys; 7 is what it asked to be told when a menu opens.
KEYS_IN_MENUS = [
    (" 7 7 1021", ("F10", "Right", "Down", "Return")),
    (" 7 7 1021", ("F10", "Right", "Down", "space")),
    (" 7 1021", ("alt+t", "o")),
    (" 7 1008", ("F10", "Down", "Right", "Down", "Return")),
    (" 7 2001", ("F10", "Up", "Up", "Up", "Return")),
    (" 7", ("F10", "Escape")),
    (" 1011", ("ctrl+shift+r",)),
]


class GalleryTest(unittest.TestCase):
    def test_every_control_is_said(self):
        with ScreenReader() as reader, desktop.Lectora(program="gui_gallery") as gallery:
            before = 0
            for title, names in WINDOWS:
                stops = reader.tab_stops(gallery.active_window(*title.split(" ", 1)), before)
                self.assertEqual(", ".join(stop.name for stop in stops), names)
                self.and_besides(reader, title)
                before = reader.mark()
                desktop.press_keys("Escape")

    def and_besides(self, reader, title):
        """What is said although it never has the focus, and what only arrow keys reach."""
        now = reader.mark()
        if title == "dialog Controls":
            desktop.press_keys(*["shift+Tab"] * 7, "space")
            reader.wait_until_said("notification Please enter your name.", since=now)
        elif title.startswith("dialog Menus"):
            desktop.press_keys("F10", "Right", "Down")
            reader.wait_until_said("Tools menu", "Options...", since=now)
            now = reader.mark()
            desktop.press_keys("Escape")  # leaves the menu
            reader.wait_until_said("Read Aloud push button", since=now)

    def test_menus_and_slider_by_pointer_and_keys(self):
        with desktop.Lectora(program="gui_gallery") as gallery:
            gallery.active_window("dialog", "Controls")
            slider = gallery.find("slider", "Volume")
            box = slider.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
            y = box.y + box.height // 2
            # The handle of -6 dB stands at a bit more than half the track; the click jumps, the
            # press at the handle drags.
            desktop.xdotool("mousemove", box.x + 3, y, "click", 1)
            self.wait_for_level(slider, -32)
            desktop.xdotool("mousemove", box.x + 6, y, "mousedown", 1)
            # Of a single motion GTK may tell nothing; a hand makes many.
            for x in range(6, box.width + 20, 5):
                desktop.xdotool("mousemove", box.x + x, y)
            desktop.xdotool("mouseup", 1)
            self.wait_for_level(slider, 16)
            slider.queryValue().currentValue = 3
            self.wait_for_level(slider, 3)

            for title, following in (("Controls", "Lists and log"),
                                     ("Lists and log", "Menus, tool bar, command bar")):
                gallery.active_window("dialog", title)
                desktop.press_keys("Escape")
                gallery.active_window("dialog", following)
            sent = "Commands:"
            for commands, keys in KEYS_IN_MENUS:
                desktop.press_keys(*keys)
                sent = self.wait_for_status(gallery, sent + commands)
            gallery.press("menu", "Lectora")
            gallery.press("menu", "Read Aloud")
            gallery.press("menu item", "Read from file")
            self.wait_for_status(gallery, sent + " 7 1008")

            # What is left are answers, and the splash: once until it is clicked, once until its time
            # is up.
            for title, _ in WINDOWS[2:]:
                gallery.active_window(*title.split(" ", 1))
                desktop.press_keys("Escape")
            box = gallery.place(gallery.find("icon", "Lectora"))  # it never takes the keyboard
            desktop.xdotool("mousemove", box.x + 9, box.y + 9, "click", 1)
            started = time.monotonic()
            self.assertEqual(gallery.process.wait(desktop.PATIENCE), 0)
            self.assertGreater(time.monotonic() - started, 4.5)

    def wait_for_status(self, gallery, text):
        desktop.wait_until(lambda: gallery.status() == text, f"'{text}' in the status bar")
        return text

    def wait_for_level(self, slider, level):
        desktop.wait_until(lambda: slider.queryValue().currentValue == level, f"{level} dB")


if __name__ == "__main__":
    unittest.main()
