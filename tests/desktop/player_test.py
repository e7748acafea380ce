"""The player beside the main window: who has the keyboard, what its keys do, how it goes."""
import unittest

import pyatspi
from desktop_case import DesktopCase, desktop

SENTENCES = [
    f"Number {word} is a sentence that goes on for a while here."
    for word in "one two three four".split()
]


class PlayerTest(DesktopCase):
    def setUp(self):
        super().setUp()
        self.card.tell("speed 1")

    def player(self, shown=True):
        """The player's X window, once it is on the screen; or waits until it is not."""
        def seen():
            return desktop.xdotool("search", "--onlyvisible", "--name", "Lectora Player").split()

        found = desktop.wait_until(lambda: bool(seen()) == shown and (seen() or [""]), "the player")
        return int(found[0] or 0)

    def wait_for_focus(self, window, what):
        desktop.wait_until(lambda: int(desktop.xdotool("getwindowfocus")) == window, what)

    def is_down(self, lectora):
        return self.has_state(lectora, "Read Aloud", pyatspi.STATE_CHECKED)

    def has_state(self, lectora, button, state):
        return lectora.find("toggle button", button).getState().contains(state)

    def test_keys_work_in_the_player_and_go_back_to_the_text(self):
        lectora = self.start()
        lectora.set_text(" ".join(SENTENCES))
        lectora.focus()
        main = int(lectora.window())
        desktop.xdotool("mousemove", 0, 0)  # a window under the pointer stays where it is
        desktop.press_keys("ctrl+shift+r")
        stream = self.card.next_stream()
        self.wait_for_focus(self.player(), "the player")
        self.assertTrue(self.has_state(lectora, "Play (F9)", pyatspi.STATE_FOCUSED))
        desktop.wait_until(lectora.highlighted, "the highlight")
        self.picture("player")
        # The main window has moved over for it: neither lies on the other.
        own = lectora.place(lectora.find("frame", "Lectora"))
        self.assertLessEqual(own.x + own.width, lectora.place(lectora.find("dialog", "Lectora Player")).x)
        desktop.press_keys("ctrl+Right")
        stream = self.card.next_stream()
        desktop.wait_until(lambda: lectora.highlighted().strip() == SENTENCES[1], "the sentence")
        desktop.press_keys("space")
        self.card.wait_for(stream, "close")
        self.picture("player-paused")
        desktop.press_keys("space")
        stream = self.card.next_stream()
        desktop.press_keys("ctrl+shift+r")  # the main window's key
        self.card.wait_for(stream, "close")
        stream = self.card.next_stream()
        desktop.press_keys("Escape")
        self.card.wait_for(stream, "close")
        self.assertEqual(int(desktop.xdotool("getwindowfocus")), self.player())
        desktop.press_keys("Escape")
        self.player(shown=False)
        self.wait_for_focus(main, "the main window")
        desktop.press_keys("x")
        desktop.wait_until(lambda: "x" in lectora.text(), "the text box to have the keyboard")

    def test_it_stays_for_another_play_only_when_the_user_is_in_it(self):
        self.card.tell("speed 4")
        lectora = self.start()
        lectora.set_text(SENTENCES[0])
        stream = self.read_aloud(lectora)
        desktop.wait_until(lambda: not self.is_down(lectora), "the button to come up")
        self.wait_for_focus(self.player(), "the player")
        desktop.press_keys("F9")
        again = self.card.next_stream()
        desktop.wait_until(lectora.highlighted, "the highlight")
        self.card.wait_for(again, "close")
        self.assertEqual(self.card.sound(again).samples, self.card.sound(stream).samples)
        self.card.tell("speed 1")
        desktop.press_keys("F9")
        stream = self.card.next_stream()
        lectora.focus()
        self.card.wait_for(stream, "close")
        self.player(shown=False)
        lectora.press("toggle button", "Read Aloud")
        stream = self.card.next_stream()
        desktop.xdotool("windowactivate", "--sync", self.player(), "key", "alt+F4")
        self.card.wait_for(stream, "close")
        self.player(shown=False)
        self.assertFalse(self.is_down(lectora))

    def test_a_hotkey_leaves_the_keyboard_to_the_other_program(self):
        self.give_keys((5 << 16 | ord("R"), 1))
        lectora = self.start()
        other = self.start(HOME=self.folder("other"))
        desktop.xdotool("windowminimize", "--sync", lectora.window())
        desktop.wait_until(lambda: not lectora.windows(), "the window to go")
        other.focus()
        focus = int(other.window())
        self.wait_for_focus(focus, "the other program")
        self.select("a long story of many words that goes on")
        desktop.press_keys("ctrl+shift+r")
        stream = self.card.next_stream()
        player = self.player()
        desktop.press_keys("x")
        desktop.wait_until(lambda: other.text() == "x", "the key in the other program")
        self.assertEqual(int(desktop.xdotool("getwindowfocus")), focus)
        desktop.xdotool("windowactivate", "--sync", player)
        desktop.press_keys("Escape")
        self.card.wait_for(stream, "close")

    def test_files_that_wait_are_its_next_tracks(self):
        desktop.tell_engine("text2wave long 60")
        paths = [self.file(f"{name}.txt", f"The tale of {name}.") for name in ("one", "two")]
        lectora = self.start(*paths)
        stream = self.card.next_stream()
        desktop.xdotool("windowactivate", "--sync", self.player())
        desktop.wait_until(lambda: self.has_next(lectora), "the button")
        desktop.press_keys("Next")
        self.card.wait_for(stream, "close")
        desktop.wait_until(lambda: lectora.text() == "The tale of two.", "the second file")
        self.card.next_stream()
        desktop.wait_until(lambda: not self.has_next(lectora), "the button to go")

    def has_next(self, lectora):
        return lectora.shown("push button", "Next Track (PgDn)")


if __name__ == "__main__":
    unittest.main()
