"""The player beside the main window: who has the keyboard, what its keys do, how it goes."""
import unittest

from desktop_case import DesktopCase, desktop

SENTENCES = [
    f"Number {word} is a sentence that goes on for a while here."
    for word in "one two three four".split()
]

# So slow that nothing ends before it is meant to.
SLOW = "speed 0.1"


class PlayerTest(DesktopCase):
    def setUp(self):
        super().setUp()
        self.card.tell(SLOW)

    def player(self, shown=True):
        """The player's X window, once it is on the screen; or waits until it is not."""
        find = ("search", "--onlyvisible", "--name", "Lectora Player")
        if not shown:
            return desktop.wait_until(lambda: not desktop.xdotool(*find), "the player to go")
        return int(desktop.wait_until(lambda: desktop.xdotool(*find), "the player").split()[0])

    def wait_for_focus(self, window, what):
        desktop.wait_until(lambda: int(desktop.xdotool("getwindowfocus")) == window, what)

    def test_keys_work_in_the_player_and_go_back_to_the_text(self):
        self.store("mainwindow", width=1000)  # leaves no room beside it
        lectora = self.start()
        lectora.set_text(" ".join(SENTENCES))
        lectora.focus()
        main = int(lectora.window())
        desktop.xdotool("mousemove", 0, 0)  # a window under the pointer stays where it is
        desktop.press_keys("ctrl+shift+r")
        stream = self.card.next_stream()
        self.wait_for_focus(self.player(), "the player")
        play = lectora.find("toggle button", "Play (F9)")
        desktop.wait_until(lambda: play.getState().contains(desktop.pyatspi.STATE_FOCUSED), "its button")
        desktop.wait_until(lectora.highlighted, "the highlight")
        self.picture("player")
        # The main window has moved over for it as far as it can, and its buttons are in sight.
        own, player = lectora.find("frame"), lectora.find("dialog", "Lectora Player")
        desktop.wait_until(lambda: lectora.place(own).x < 10, "the move")
        box = lectora.place(player)
        save = lectora.place(lectora.find("push button", "Save as Speech"))
        self.assertLess(box.x, save.x + save.width)
        self.assertLessEqual(box.y + box.height, save.y)
        desktop.press_keys("ctrl+Right")
        stream = self.card.next_stream()
        desktop.wait_until(lambda: lectora.highlighted().strip() == SENTENCES[1], "the sentence")
        desktop.press_keys("space")
        self.card.wait_for(stream, "close")
        desktop.wait_until(lambda: lectora.status().startswith("Paused at 0:00:0"), "the pause in the status bar")
        self.assertFalse(self.is_down(lectora))
        self.picture("player-paused")
        desktop.press_keys("space")
        stream = self.card.next_stream()
        desktop.press_keys("ctrl+shift+r")  # the main window's key
        self.card.wait_for(stream, "close")
        stream = self.card.next_stream()
        desktop.press_keys("Escape")
        self.card.wait_for(stream, "close")
        desktop.wait_until(lambda: not self.is_down(lectora), "the button to come up")
        self.wait_for_focus(self.player(), "the player")
        desktop.press_keys("Escape")
        self.player(shown=False)
        self.wait_for_focus(main, "the main window")
        desktop.press_keys("x")
        desktop.wait_until(lambda: "x" in lectora.text(), "the text box to have the keyboard")

    def test_it_stays_for_another_play_only_when_the_user_is_in_it(self):
        lectora = self.start()
        lectora.set_text(SENTENCES[0])
        lectora.press("toggle button", "Read Aloud")
        sounds = []
        for leaves in (False, False, True):
            stream = self.card.next_stream()
            desktop.wait_until(lectora.highlighted, "the highlight")
            lectora.active_window("dialog", "Lectora Player")
            if leaves:
                lectora.focus()
                desktop.wait_until(lambda: lectora.has_keyboard(lectora.find("frame")), "the window")
            self.card.tell("speed 8")
            self.card.wait_for(stream, "close")
            sounds.append(self.card.sound(stream).samples)
            desktop.wait_until(lambda: not self.is_down(lectora), "the button to come up")
            self.player(shown=not leaves)
            self.card.tell(SLOW)
            if not leaves:
                desktop.press_keys("F9")
        self.assertEqual(sounds[1:], sounds[:-1])
        lectora.press("toggle button", "Read Aloud")
        stream = self.card.next_stream()
        desktop.xdotool("windowactivate", "--sync", self.player(), "key", "alt+F4")
        self.card.wait_for(stream, "close")
        self.player(shown=False)
        desktop.wait_until(lambda: not self.is_down(lectora), "the button to come up")

    def test_the_large_button_goes_on_after_a_pause(self):
        lectora = self.start()
        lectora.set_text(" ".join(SENTENCES))
        lectora.press("toggle button", "Read Aloud")
        self.card.next_stream()
        desktop.xdotool("windowactivate", "--sync", self.player(), "key", "ctrl+Right", "space")
        desktop.wait_until(lambda: lectora.status().startswith("Paused at"), "the pause")
        lectora.press("toggle button", "Read Aloud")
        desktop.wait_until(lambda: self.is_down(lectora), "the button to go down")
        self.card.wait_for(self.card.next_stream(), "start")
        self.assertEqual(lectora.highlighted().strip(), SENTENCES[1])

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
