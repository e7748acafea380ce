"""System-wide hotkeys: what is selected in another program is read and saved by one key."""
import os
import signal
import subprocess
import unittest

from desktop_case import DesktopCase, desktop
from shortcut_portal import ShortcutPortal

UPDATE, READ, SAVE, PAUSE, STOP, BACK, AHEAD, FASTER, SLOWER = range(9)
CONTROL_SHIFT, CONTROL_ALT = 5 << 16, 12 << 16


class HotKeysTest(DesktopCase):
    def test_one_key_reads_the_selection_pauses_and_goes_on_whatever_lock_is_on(self):
        self.give_keys((CONTROL_SHIFT | ord("R"), READ), (CONTROL_ALT | ord("U"), UPDATE))
        self.card.tell("speed 0.1")
        desktop.tell_engine("text2wave long 60")
        lectora = self.start()
        lectora.hide()
        for lock in (None, "Caps_Lock", "Num_Lock"):
            with self.subTest(lock):
                if lock:
                    desktop.press_keys(lock)
                    self.addCleanup(desktop.press_keys, lock)
                text = f"words of {lock}"
                self.select(text)
                desktop.press_keys("ctrl+shift+r")
                self.card.wait_for(self.card.next_stream(), "start")
                self.await_status("reading", text)
                for state in ("paused", "reading", "paused"):
                    desktop.press_keys("ctrl+shift+r")
                    self.await_status(state)
                self.assertEqual(self.spoken()[-1].split(" ", 2)[2], text)
        self.select("not read")
        desktop.press_keys("ctrl+alt+u")
        lectora.press_tray_icon(1)
        desktop.wait_until(lambda: lectora.text() == "not read", "the text")
        # What was selected before a reading began is nothing new.
        lectora.focus()
        desktop.press_keys("Escape")
        self.await_status("stopped")
        lectora.set_text("typed words")
        desktop.press_keys("F9")
        self.await_status("reading", "typed words")
        desktop.press_keys("ctrl+shift+r")
        self.await_status("paused", "typed words")
        self.select("new words")
        desktop.press_keys("ctrl+shift+r")
        self.await_status("reading", "new words")
        # The reading ends while a program is asked that has nothing in the end: the text stays.
        owner = self.select("")
        owner.send_signal(signal.SIGSTOP)
        desktop.press_keys("ctrl+shift+r", "ctrl+shift+r")
        desktop.wait_until(lambda: "still being asked" in lectora.status(), "the wait")
        desktop.press_keys("Escape")
        self.await_status("stopped")
        owner.send_signal(signal.SIGCONT)
        self.selection("primary")  # it answers one after the other
        lectora.settle()
        self.assertEqual(lectora.text(), "new words")

    def test_under_wayland_the_desktop_gives_the_keys_where_it_can(self):
        self.give_keys((CONTROL_ALT | ord("R"), READ), (CONTROL_SHIFT | 0xFFC2, STOP))
        self.card.tell("speed 0.1")
        desktop.tell_engine("text2wave long 60")
        portal = ShortcutPortal(os.environ["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(portal.end)
        lectora = self.start(XDG_SESSION_TYPE="wayland")
        desktop.wait_until(
            lambda: list(portal.sessions.values())
            == [[("1", "Read text from clipboard", "CTRL+ALT+r"), ("4", "Stop reading", "CTRL+SHIFT+F5")]],
            "the shortcuts",
        )
        lectora.hide()
        self.select("words by the portal")
        portal.press("1")
        self.await_status("reading", "words by the portal")
        portal.press("4")
        self.await_status("stopped")
        lectora.press_tray_icon(1)
        lectora.press("push button", "Options")
        lectora.press("page tab", "HotKeys")
        self.assertEqual(lectora.find_all("push button", "Copy Commands"), [], "the keys reach every program")
        lectora.press("push button", "Cancel")
        # Once its user has refused, the commands for his own keys are shown again.
        portal.agrees = False
        lectora.end()
        portal.sessions.clear()  # a portal's go with their program
        lectora = self.start(XDG_SESSION_TYPE="wayland")
        desktop.wait_until(lambda: portal.refusals == 1, "the refusal")
        desktop.wait_until(lambda: not portal.sessions, "the session to be given up")
        lectora.end()
        lectora = self.start(XDG_SESSION_TYPE="wayland")
        lectora.press("push button", "Options")
        lectora.press("page tab", "HotKeys")
        lectora.find("push button", "Copy Commands")
        self.assertEqual(portal.refusals, 1, "he is not asked again")
        # But for other keys.
        portal.agrees = True
        lectora.press("push button", "Remove...")
        lectora.press("push button", "Yes")
        lectora.press("push button", "OK")
        desktop.wait_until(
            lambda: list(portal.sessions.values()) == [[("4", "Stop reading", "CTRL+SHIFT+F5")]], "the other key"
        )

    def test_the_first_start_under_wayland_waits_for_what_the_desktop_can_do(self):
        portal = ShortcutPortal(os.environ["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(portal.end)
        portal.may_be_found.clear()
        lectora = self.start(asks=True, XDG_SESSION_TYPE="wayland")
        lectora.focus()
        lectora.settle()
        portal.may_be_found.set()
        lectora.wait_for_box("use Lectora from every program")
        lectora.press("push button", "Yes")
        keys = ["CTRL+ALT+r", "CTRL+ALT+s", "CTRL+ALT+u"]
        desktop.wait_until(
            lambda: [sorted(key for *_, key in given or ()) for given in portal.sessions.values()] == [keys], "the keys"
        )

    def test_keys_control_a_reading_over_another_programs_window(self):
        keys = {PAUSE: "p", STOP: "x", BACK: "b", AHEAD: "a", FASTER: "f", SLOWER: "s"}
        self.give_keys(*((CONTROL_ALT | ord(key.upper()), command) for command, key in keys.items()))
        self.card.tell("speed 0.1")
        desktop.tell_engine("text2wave long 60")
        sentences = [f"Number {word} is a sentence that goes on for a while here." for word in ("one", "two")]
        lectora = self.start(self.file("two.txt", "\n".join(sentences)))
        self.card.wait_for(self.card.next_stream(), "start")
        lectora.hide()
        for command, seen in (
            (AHEAD, lambda: self.told_status()[3] == sentences[1]),
            (BACK, lambda: self.told_status()[3] == sentences[0]),
            (PAUSE, lambda: self.told_status()[0] == "paused"),
            (PAUSE, lambda: self.told_status()[0] == "reading"),
            (FASTER, lambda: next(lectora.walk("label", "1.1\u00d7"), None)),
            (SLOWER, lambda: next(lectora.walk("label", "1.0\u00d7"), None)),
            (STOP, lambda: self.told_status()[0] == "stopped"),
        ):
            desktop.press_keys("ctrl+alt+" + keys[command])
            desktop.wait_until(seen, f"command {command}")

    def test_hotkeys_and_commands_follow_the_layout_of_the_keyboard(self):
        self.give_keys((CONTROL_ALT | ord("Z"), UPDATE))
        self.addCleanup(subprocess.run, ["setxkbmap", "us"])
        # Also for screen readers it needs nothing from the session.
        lectora = self.start(GTK_MODULES="")
        self.select("by its new place")
        z_of_german, f_of_english = 29, 41
        subprocess.run(["setxkbmap", "de"], check=True, timeout=desktop.PATIENCE)
        pressed = lambda: desktop.press_keys(f"ctrl+alt+{z_of_german}") or lectora.text()  # noqa: E731
        desktop.wait_until(pressed, "the text")
        subprocess.run(["setxkbmap", "ru,us"], check=True, timeout=desktop.PATIENCE)
        lectora.focus()
        asked = lambda: desktop.press_keys(f"ctrl+{f_of_english}") or lectora.shown("push button", "Next")  # noqa: E731
        desktop.wait_until(asked, "the find bar")

    def test_a_key_that_another_program_holds_harms_nobody(self):
        self.give_keys((CONTROL_SHIFT | ord("R"), READ))
        first = self.start()
        other = self.start(HOME=self.folder("other"))
        self.select("only once")
        desktop.press_keys("ctrl+shift+r")
        self.card.wait_for(self.card.next_stream(), "close")
        self.assertEqual((first.text(), other.text()), ("only once", ""))
        self.assertEqual(len(self.spoken()), 1)


if __name__ == "__main__":
    unittest.main()
