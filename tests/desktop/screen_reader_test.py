"""What a screen reader says of the program, which is used by the keyboard alone."""
import os
import signal
import subprocess
import tempfile
import unittest

from desktop_case import DesktopCase, desktop
from screen_reader import ScreenReader, active_window, describe

PROGRAM = "opt/quillon/lectora/bin/lectora"

# From which window, by which control in it and which keys, what is heard then, and what Tab must
# reach where that is a window or page; whatever else can have the focus is walked to and heard too.
MAIN, LOAD, OPTIONS = "frame Lectora", "dialog Locate File to Read Text", "dialog Options"
ASSIGN, PLAYER, QUESTION = "dialog Hot-Key Assignment", "dialog Lectora Player", "alert Question"
FIRST_START = (
    (None, None, "", "Do you want to use Lectora from every program? Select a text", "Yes, No"),
)
WINDOWS = (
    (MAIN, None, "", "Text to read text",
     "Text to read, Choose Voice:, Read Aloud, Save as Speech, Options, Read from a file"),
    (MAIN, "Text to read", "ctrl+f", "Find: text", "Find:, Next, Close"),
    (MAIN, "Find:", "z Return", '"z" is not in the text.', None),
    (MAIN, None, "Escape", "Text to read text", None),
    (MAIN, None, "alt+h a", "Lectora dialog", "OK"),
    (MAIN, None, "ctrl+o", "Locate File to Read Text dialog", "Files, Places, Cancel, Open"),
    (LOAD, None, "slash z Return", "alert Error", "OK"),
    (MAIN, None, "ctrl+alt+v", "Save File as dialog", "Name:, Create Folder, Places, Cancel, Save"),
    (MAIN, None, "alt+t o", "Options dialog", "General, For whom, Format Settings, OK"),
    (OPTIONS, "Format Settings", "space", "Wave Encoder Options dialog", "OK"),
    (OPTIONS, "Choose Format", "Up", "MP3", None),
    (OPTIONS, "Format Settings", "space", "alert Information. MP3 Settings are", "OK"),
    (OPTIONS, None, "ctrl+Page_Down", "HotKeys page tab", "System Wide HotKeys, Add..., Change..."),
    (OPTIONS, "Remove...", "space", "alert Question. Confirms Delete", "Yes, No"),
    (OPTIONS, "Add...", "space", "Hot-Key Assignment dialog", "Command, HotKey Assigned:, OK"),
    # Every key is taken there, Tab as well.
    (ASSIGN, "Change Key", "space", "Press a key or a key combination", None),
    (MAIN, None, "ctrl+shift+r", "Lectora Player dialog",
     "Play (F9), Stop (Esc), Previous Sentence (Ctrl+Left), Position, Volume, Now Playing"),
    (PLAYER, "Play (F9)", "Escape", "not pressed", None),
)
TROUBLE = (
    (MAIN, "Text to read", "ctrl+shift+r", "Lectora dialog Synthesize Voice", "Cancel"),
    (MAIN, None, "F10 Up Return", "Confirm Exit", "Yes, No, Cancel"),
    (QUESTION, "Cancel", "space", "Text to read text", None),
)
WIZARDS = {
    "-install": (
        (None, None, "", "Welcome to Lectora panel", "Cancel, Next"),
        (None, None, "alt+n", "What will be placed where panel", "What will be placed where, Back"),
        (None, None, "alt+i", "Lectora is installed.", "Finish"),
    ),
    "-check": (
        (None, None, "", "Check This Computer dialog",
         "What is needed, Check Again, Read a Test Sentence, More voices, Close"),
        (None, "Check Again", "space", "Everything is there.", None),
    ),
    "-uninstall": (
        (None, None, "", "Remove Lectora panel",
         "Also remove the settings that Lectora keeps for all users, Next"),
        (None, None, "alt+n", "Send Uninstall Comments panel", "Reason, Back, Cancel"),
        (None, "Reason", "Down Down", "I have problems using it", None),
        (None, None, "Tab", "Please tell us what problems do you have had? [Optional] text", None),
        (None, "Finish", "space", "Uninstall is complete.", "OK"),
    ),
}


class ScreenReaderTest(DesktopCase):
    @classmethod
    def setUpClass(cls):
        cls.reader = ScreenReader()
        cls.addClassCleanup(cls.reader.end)
        cls.neighbour = desktop.Lectora(HOME=tempfile.mkdtemp(dir=desktop.DESKTOP))
        cls.addClassCleanup(cls.neighbour.end)

    def leave(self):
        """Gives the keyboard to another program: the reader hangs, or misses the next window, when
        the one that it is asking about ends."""
        before = self.reader.mark()
        self.neighbour.focus()
        self.reader.wait_until_said("Text to read text", since=before)

    def walk(self, rows):
        for origin, control, keys, heard, names in rows:
            before = self.reader.mark() if keys else self.began
            while origin and describe(window := active_window()) != origin:
                desktop.press_keys("Escape")
                desktop.wait_until(lambda: active_window() != window, "its end")
            if control:
                self.reader.go_to(active_window(), control)
            desktop.press_keys(*keys.split())
            self.reader.wait_until_said(heard, since=before)
            if names:
                self.picture("heard-" + heard.split(" dialog")[0].replace("/", " ")[:30])
                stops = self.reader.tab_stops(active_window(), before)
                missing = set(names.split(", ")) - {stop.name for stop in stops}
                self.assertFalse(missing, f"{heard}: not reached by Tab")

    def test_every_control_is_said(self):
        self.store("settings", savedefaultformat=1, saveformat=1)
        desktop.tell_engine("text2wave long 600")
        self.card.tell("speed 1")
        self.began = self.reader.mark()
        lectora = self.start(asks=True)
        self.walk(FIRST_START)
        self.give_keys((0x40000 | ord("Q"), 1))
        lectora.set_text("some words")
        self.walk(WINDOWS)
        desktop.tell_engine("text2wave hang")
        self.walk(TROUBLE)
        self.leave()

    def test_the_wizards_and_the_check_are_said(self):
        folder = tempfile.mkdtemp(dir=desktop.HOME)
        tree, machine = (os.path.join(folder, name) for name in ("tree", "machine"))
        subprocess.run(["cmake", "--install", desktop.BUILD], env={**os.environ, "DESTDIR": tree},
                       check=True, stdout=subprocess.DEVNULL)
        for option, rows in WIZARDS.items():
            self.began = self.reader.mark()
            program = os.path.join(tree if option == "-install" else machine, PROGRAM)
            wizard = desktop.Lectora(option, program=program, LECTORA_ROOT=machine)
            self.addCleanup(wizard.end)
            self.walk(rows)
            self.leave()
            wizard.end()


if __name__ == "__main__":
    unittest.main()
