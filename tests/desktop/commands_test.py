"""Every command by every way that offers it, and what it then does."""
import unittest

from desktop_case import DesktopCase, desktop

OWN, THEIRS = "own text", "text of theirs"

# What happens; menu, item there and below the tool bar's arrow; item of the command bar; key; item
# of the tray's menu.
COMMANDS = (
    ("read", "Read Aloud", "Read CurrentText", "Read current text", "ctrl+shift+r", None),
    ("locate", "Read Aloud", "Read from file", "Read from a file", "ctrl+shift+o", None),
    ("theirs read", "Read Aloud", "Read from Clipboard", "Read from clipboard", "ctrl+shift+b",
     "Read from Clipboard"),
    ("save", "Save as Speech", "Save Current Text", "Save current text", "ctrl+alt+v", None),
    ("locate", "Save as Speech", "Save from file", "Save speech from file", "ctrl+alt+o", None),
    ("theirs save", "Save as Speech", "Save from Clipboard", "Save from clipboard", "ctrl+alt+b",
     "Save from Clipboard"),
    ("audiobook", "Save as Speech", "Save as Audiobook...", None, "ctrl+alt+a", None),
    ("theirs", "Update Text", "Update From Clipboard", "Update from clipboard", "ctrl+b", None),
    ("locate", "Update Text", "Load Text From File", "Update text from file", "ctrl+o", None),
)
TOOL_BAR = {"Save as Speech": "Save Speech"}
CHOOSERS = {"locate": "Locate File to Read Text", "save": "Save File as", "audiobook": "Save as Audiobook"}


class CommandsTest(DesktopCase):
    def test_each_place_that_offers_a_command_runs_it(self):
        self.card.tell("speed 50")
        lectora = self.start()
        lectora.set_text(OWN)
        bar_item = ("push button", "Read from clipboard")
        self.assertIsNone(lectora.shown(*bar_item))
        self.select(THEIRS)
        desktop.wait_until(lambda: lectora.shown(*bar_item), "the command to be offered")
        for outcome, menu, item, bar_item, key, tray_item in COMMANDS:
            button = TOOL_BAR.get(menu, menu)
            ways = {
                "menu": lambda: lectora.choose("Lectora", menu, item),
                "drop-down": lambda: (
                    lectora.press("push button", button + " menu"),
                    lectora.press_popped_up(item),
                ),
                "key": lambda: desktop.press_keys(key),
            }
            if bar_item:
                ways["command bar"] = lambda: lectora.press("push button", bar_item)
            if outcome in ("read", "save", "theirs"):
                ways["tool bar"] = lambda: lectora.press("push button", button)
            if tray_item:
                ways["tray"] = lambda: (
                    lectora.press_tray_icon(3), lectora.press_popped_up(tray_item)
                )
            for name, go in ways.items():
                with self.subTest(f"{item} by {name}"):
                    lectora.set_text(OWN)
                    lectora.focus()
                    go()
                    for step in outcome.split():
                        self.expect(lectora, step)

    def expect(self, lectora, step):
        if step == "read":
            text = lectora.text()
            self.card.wait_for(self.card.next_stream(), "close")
            self.assertEqual(self.spoken()[-1].split(" ", 2)[2], text)
        elif step == "theirs":
            desktop.wait_until(lambda: lectora.text() == THEIRS, "the selection in the text box")
        else:
            find = ("search", "--onlyvisible", "--name", CHOOSERS[step])
            chooser = desktop.wait_until(lambda: desktop.xdotool(*find).split(), step)[0]
            desktop.xdotool("windowactivate", "--sync", chooser)
            desktop.press_keys("Escape")
            desktop.wait_until(lambda: not desktop.xdotool(*find), "its end")


if __name__ == "__main__":
    unittest.main()
