"""What a screen reader says of every control of the gallery, reached by the keyboard alone."""
import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.realpath(__file__)), "../support"))
import lectora_desktop as desktop  # noqa: E402
from screen_reader import ScreenReader  # noqa: E402

# The windows of the gallery in their order, and what Tab reaches in each.
WINDOWS = [
    (
        "dialog Controls",
        "Name, Password, Copies, Voice, Device, Remind me, Calendar, Speed, Volume, Volume, Notes,"
        " Quillon on the web, Prompt for format settings, Tell me when it is done, Add..., Change...,"
        " Remove..., Restore Defaults, OK, Cancel, Help",
    ),
    ("dialog Lists and log", "System Wide HotKeys, Status, Go Back, Help"),
    (
        "dialog Menus, tool bar, command bar",
        "Read Aloud, Save as Speech, Rewind (<-), Read Aloud, Read current text, Save as Speech,"
        " Save current text, Read Aloud, Read Aloud menu, Save Speech, Save Speech menu, Options,"
        " Toolbox, Help",
    ),
    (
        "dialog Options",
        "General, Run Lectora automatically when computer starts, Run Start Up, Help, OK, Cancel",
    ),
    ("dialog Lectora", "Cancel"),
    (
        "alert Question",
        "Cancel, Confirm Exit, Do you want Lectora to continue run in the background so you can use"
        " your hot keys to read text?, Yes, No",
    ),
]


class ScreenReaderTest(unittest.TestCase):
    def test_every_control_is_said(self):
        with ScreenReader() as reader, desktop.Lectora(program="gui_gallery") as gallery:
            before = 0
            for title, names in WINDOWS:
                stops = reader.tab_stops(gallery.active_window(*title.split(" ", 1)), before)
                self.assertEqual(", ".join(stop.name for stop in stops), names)
                self.and_besides(reader, title, before)
                before = reader.mark()
                desktop.press_keys("Escape")

    def and_besides(self, reader, title, before):
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
            reader.wait_until_said("Read Aloud toggle button", since=now)
        elif title == "dialog Lectora":
            reader.wait_until_said("Synthesize Voice", since=before)


if __name__ == "__main__":
    unittest.main()
