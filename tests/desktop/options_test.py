"""The options, and the hotkeys of the first start."""
import os
import subprocess
import unittest

from desktop_case import DesktopCase, desktop

UPDATE, READ, SAVE = range(3)
CONTROL_ALT = 12 << 16


class FirstStartTest(DesktopCase):
    def setUp(self):
        super().setUp()
        self.give_keys()

    def answer(self, lectora, key):
        text = lectora.wait_for_box("from every program")
        desktop.press_keys(key)
        desktop.wait_until(lambda: not lectora.box_text(), "the end of the question")
        return text

    def test_a_yes_takes_keys_that_are_free_and_work_at_once(self):
        self.give_keys((CONTROL_ALT | ord("R"), READ))
        other = self.start(HOME=self.folder("other"))
        self.give_keys()
        lectora = self.start(asks=True)
        self.assertIn("Ctrl+Alt+Shift+R", self.answer(lectora, "alt+y"))
        other.end()
        for key, reads in (("ctrl+alt+r", False), ("ctrl+alt+shift+r", True)):
            self.select(f"by {key}")
            desktop.press_keys(key)
            if reads:
                self.card.wait_for(self.card.next_stream(), "close")
        self.assertEqual([call.split(" ", 2)[2] for call in self.spoken()], ["by ctrl+alt+shift+r"])

    def test_under_wayland_nothing_is_promised_and_commands_for_the_desktops_keys_are_shown(self):
        lectora = self.start(asks=True, XDG_SESSION_TYPE="wayland")
        shown = lectora.wait_for_box("keyboard settings")
        self.assertIn("lectora --toggle-pause", shown)
        self.assertNotIn("Ctrl+", shown)
        self.picture("wayland-first-start")
        lectora.press("push button", "Copy Commands")
        self.commands_are_copied()
        subprocess.run(["xclip", "-selection", "clipboard"], input=b"something else", check=True)
        lectora.press("push button", "Options")
        lectora.press("page tab", "HotKeys")
        self.picture("wayland-options")
        lectora.press("push button", "Copy Commands")
        self.commands_are_copied()

    def commands_are_copied(self):
        desktop.wait_until(lambda: self.selection("clipboard").startswith("lectora --read-selection\n"), "the commands")

    def test_it_asks_once_and_never_over_a_reading(self):
        lectora = self.start(self.file("fox.txt", "some words"), asks=True)
        self.card.wait_for(self.card.next_stream(), "close")
        self.assertEqual(lectora.box_text(), "")
        lectora.end()
        lectora = self.start(asks=True)
        self.answer(lectora, "Escape")
        self.select("not read")
        desktop.press_keys("ctrl+alt+r")
        lectora.end()
        lectora = self.start(asks=True)
        lectora.set_text("read")
        self.read_aloud(lectora)
        self.assertEqual(lectora.box_text(), "")
        self.assertNotIn("not read", "".join(self.spoken()))


class OptionsTest(DesktopCase):
    def setUp(self):
        super().setUp()
        self.give_keys()

    def open(self, lectora, page="General"):
        lectora.press("push button", "Options")
        lectora.press("page tab", page)

    def wait_for_dialog(self, title):
        """Until it has the focus, so that it gets the keys."""
        desktop.wait_until(lambda: title in desktop.xdotool("getactivewindow", "getwindowname"), title)

    def press(self, lectora, name, then):
        lectora.press("push button", name)
        self.wait_for_dialog(then)

    def rows(self, lectora):
        cells = [cell.name for cell in lectora.find_all("table cell")]
        # Before the texts stand a check box and an image, which this list does without.
        return [tuple(cells[at + 2 : at + 5]) for at in range(0, len(cells), 5)]

    def wait_for_rows(self, lectora, *rows):
        desktop.wait_until(lambda: self.rows(lectora) == list(rows), f"{rows}, not {self.rows(lectora)}")

    def prepare_start_on_login(self):
        """A machine whose one account is this user's; gives back where the entry will stand."""
        root = os.environ["LECTORA_ROOT"]
        for folder in ("etc", "usr/share/applications/desktop"):
            os.makedirs(os.path.join(root, folder), exist_ok=True)
        with open(os.path.join(root, "etc/passwd"), "w") as file:
            # A home is looked for below the machine's root.
            file.write(f"me:x:{os.getuid()}:{os.getgid()}::/{os.path.relpath(desktop.HOME, root)}:\n")
        with open(os.path.join(root, "usr/share/applications/desktop/lectora.desktop"), "w") as file:
            file.write("[Desktop Entry]\n")
        self.addCleanup(os.remove, os.path.join(root, "etc/passwd"))
        os.makedirs(os.path.join(desktop.HOME, ".config"), exist_ok=True)
        return os.path.join(desktop.HOME, ".config/autostart/lectora.desktop")

    def test_what_is_chosen_is_kept(self):
        entry = self.prepare_start_on_login()
        lectora = self.start(USERNAME="me")
        self.open(lectora)
        self.picture("options-general")
        # What is only looked at stays as it is.
        lectora.press("push button", "OK")
        desktop.wait_until(lambda: len(lectora.windows()) == 1, "the end of the options")
        self.assertEqual([self.setting("settings", key) for key in ("savedefaultformat", "saveformat")], [None, None])
        self.open(lectora)
        lectora.press("radio button", "Use these default format settings ")
        desktop.press_keys("Tab", "Up")
        lectora.press("push button", "Format Settings")
        self.assertEqual(lectora.wait_for_box("MP3 Settings").strip(), "MP3 Settings are: Constant bitrate, 128")
        lectora.press("push button", "OK")
        desktop.wait_until(lambda: not lectora.box_text(), "the end of the box")
        self.wait_for_dialog("Options")
        lectora.press("radio button", "Use these default format settings ")
        desktop.press_keys("Tab", "Down")
        self.press(lectora, "Format Settings", "Wave Encoder Options")
        desktop.press_keys("End")  # Custom, at 44,100 samples a second in one channel, as nothing was kept
        self.picture("options-wave")
        lectora.press("push button", "OK")
        self.wait_for_dialog("Options")
        lectora.press("check box", "Run Lectora automatically when computer starts")
        lectora.press("radio button", "Prompt for format settings")
        desktop.wait_until(lambda: not lectora.can_press("push button", "Format Settings"), "the button")
        lectora.press("push button", "OK")
        desktop.wait_until(lambda: len(lectora.windows()) == 1, "the end of the options")
        self.assertEqual([self.setting("settings", key) for key in ("savedefaultformat", "saveformat")], ["0", None])
        self.assertEqual(os.stat(entry).st_mode & 0o777, 0o644)
        self.assertEqual(os.path.getsize(os.path.join(desktop.HOME, ".quillon/lectora/WavCodec.wff")), 1028)
        lectora.end()
        lectora = self.start(USERNAME="me")
        self.open(lectora)
        for role, name, on in (("radio button", "Prompt for format settings", True),
            ("check box", "Run Lectora automatically when computer starts", True)):
            state = lectora.find(role, name).getState()
            self.assertEqual(state.contains(desktop.pyatspi.STATE_CHECKED), on, name)
        self.assertFalse(lectora.can_press("push button", "Format Settings"))
        store = os.path.join(desktop.HOME, ".quillon/lectora/settings")
        os.remove(store)
        os.mkdir(store)
        lectora.press("radio button", "Use these default format settings ")
        lectora.press("push button", "OK")
        self.assertIn("folder cannot be written", lectora.wait_for_box("Your options could not be kept."))
        os.rmdir(store)

    def test_hotkeys_are_added_changed_and_removed_and_act_at_once(self):
        lectora = self.start()
        self.open(lectora, "HotKeys")
        self.press(lectora, "Add...", "Hot-Key Assignment")
        desktop.press_keys("Down")
        lectora.press("push button", "OK")
        # Too early, which leads to the field; the way on is the button behind it.
        desktop.wait_until(
            lambda: lectora.find("text", "HotKey Assigned:").getState().contains(desktop.pyatspi.STATE_FOCUSED),
            "the focus")
        self.picture("options-key-required")
        for lock, keys, shown in (("Caps_Lock", "XF86AudioPlay", "AudioPlay"), ("Num_Lock", "shift+F5", "Shift+F5")):
            desktop.press_keys(lock)
            self.addCleanup(desktop.press_keys, lock)
            # One that everybody types with is refused.
            for answer in (("Escape",), ("Shift_L", "Control_L", "r", keys)):
                lectora.find("push button", "Change Key").queryComponent().grabFocus()
                desktop.press_keys("space")
                self.wait_for_dialog("Key Change")
                self.picture("options-key")
                desktop.press_keys(*answer)
                self.wait_for_dialog("Hot-Key Assignment")
            desktop.wait_until(lambda: lectora.find("text", "HotKey Assigned:").queryText().getText(0, -1) == shown, shown)
            lectora.press("push button", "OK")
            self.wait_for_dialog("Options")
            self.wait_for_rows(lectora, (shown, "Read text from clipboard", ""))
            lectora.press("push button", "OK")
            desktop.wait_until(lambda: len(lectora.windows()) == 1, "the end of the options")
            self.select(f"words of {keys}")
            if lock == "Num_Lock":
                desktop.press_keys("XF86AudioPlay")  # which is nobody's any more
            desktop.press_keys(keys)
            self.card.wait_for(self.card.next_stream(), "close")
            self.open(lectora, "HotKeys")
            if lock == "Caps_Lock":
                self.press(lectora, "Change...", "Hot-Key Assignment")
        # One that is in use is refused.
        self.press(lectora, "Add...", "Hot-Key Assignment")
        self.press(lectora, "Change Key", "Key Change")
        desktop.press_keys("shift+F5")
        self.wait_for_dialog("Hot-Key Assignment")
        lectora.press("push button", "OK")
        desktop.wait_until(
            lambda: lectora.find("text", "HotKey Assigned:").getState().contains(desktop.pyatspi.STATE_FOCUSED),
            "the focus")
        self.picture("options-key-in-use")
        desktop.press_keys("Escape")
        self.wait_for_dialog("Options")
        self.press(lectora, "Remove...", "Confirms Delete")
        self.picture("options-remove")
        desktop.press_keys("alt+y")
        self.wait_for_rows(lectora)
        self.wait_for_dialog("Options")
        desktop.press_keys("Escape")
        desktop.wait_until(lambda: len(lectora.windows()) == 1, "the end of the options")
        self.select("not read")
        desktop.press_keys("shift+F5")
        lectora.set_text("by hand")
        self.read_aloud(lectora)
        self.assertEqual([call.split(" ", 2)[2] for call in self.spoken()],
            ["words of XF86AudioPlay", "words of shift+F5", "by hand"])

    def test_a_key_that_cannot_work_says_so_in_its_row(self):
        self.give_keys((CONTROL_ALT | ord("R"), READ), (0xFFFE, 9), (ord("R"), READ))
        self.start(HOME=self.folder("other"))
        lectora = self.start()
        self.open(lectora, "HotKeys")
        self.wait_for_rows(lectora, ("Ctrl+Alt+R", "Read text from clipboard", "Held by another program"),
            ("Unknown key", "Nothing", "Not on this keyboard"), ("R", "Read text from clipboard", "Needs Ctrl, Alt or Super"))
        self.picture("options-hotkeys")


if __name__ == "__main__":
    unittest.main()
