"""What a screen reader says of every control of the program, reached by the keyboard alone."""
import unittest

from desktop_case import DesktopCase, desktop
from screen_reader import ScreenReader

MAIN, OPTIONS = "frame Lectora", "dialog Options"
# From which window, by which control in it and which keys, one comes to which window; some controls
# that Tab must reach there. Whatever else can have the focus is walked to and heard as well. Where a
# window has ended, the focus is where it was before.
WINDOWS = (
    (None, None, (), MAIN,
     "Text to read, Choose Voice: , Read Aloud, Save as Speech, Options, Read from a file"),
    (MAIN, "Text to read", ("alt+h", "a"), "dialog Lectora", "OK"),
    (MAIN, "Text to read", ("alt+t", "o"), OPTIONS, "General, For whom, Format Settings, OK"),
    (OPTIONS, "Format Settings", ("space",), "dialog Wave Encoder Options", "OK"),
    (OPTIONS, "Format Settings", ("ctrl+Page_Down",), OPTIONS,
     "HotKeys, System Wide HotKeys, Add..."),
    (OPTIONS, "Add...", ("space",), "dialog Hot-Key Assignment",
     "Command, HotKey Assigned:, Change Key"),
)


class ScreenReaderTest(DesktopCase):
    def test_every_control_is_said(self):
        self.store("settings", savedefaultformat=1, saveformat=1)
        reader = ScreenReader()
        self.addCleanup(reader.end)
        lectora = self.start()
        lectora.set_text("some words")
        open_window, window, before = None, None, 0
        for origin, control, keys, title, names in WINDOWS:
            if origin:
                if origin != open_window:
                    desktop.press_keys("Escape")
                window = lectora.active_window(*origin.split(" ", 1))
                reader.go_to(window, control)
                before = reader.mark()
            desktop.press_keys(*keys)
            open_window = title
            window = lectora.active_window(*title.split(" ", 1))
            stops = {stop.name for stop in reader.tab_stops(window, before)}
            self.assertFalse(set(names.split(", ")) - stops, f"{title}: not reached by Tab")
        before = reader.mark()
        reader.go_to(window, "Change Key")
        desktop.press_keys("space")
        reader.wait_until_said("Press a key or a key combination", since=before)


if __name__ == "__main__":
    unittest.main()
