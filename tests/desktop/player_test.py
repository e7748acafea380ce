"""The player: where it stands, who has the keyboard, what its keys do, how it goes."""
import unittest

from desktop_case import DesktopCase, desktop

SENTENCES = [
    f"Number {word} is a sentence that goes on for a while here."
    for word in "one two three four".split()
]

# So slow that nothing ends before it is meant to.
SLOW = "speed 0.1"
TAKE_OUT, PUT_BACK = "Take the Player out of the Window", "Put the Player into the Window"


class PlayerTest(DesktopCase):
    def setUp(self):
        super().setUp()
        self.card.tell(SLOW)

    def start_reading(self, text=" ".join(SENTENCES), **settings):
        if settings:
            self.store("mainwindow", **settings)
        lectora = self.start()
        lectora.set_text(text)
        lectora.focus()
        desktop.press_keys("ctrl+shift+r")
        return lectora, self.card.next_stream()

    def window(self, shown=True):
        """The player's own X window, once it is on the screen; or waits until it is not."""
        find = ("search", "--onlyvisible", "--name", "^Lectora Player$")
        if not shown:
            return desktop.wait_until(lambda: not desktop.xdotool(*find), "the player's window to go")
        return int(desktop.wait_until(lambda: desktop.xdotool(*find), "the player's window").split()[0])

    def go_into(self, lectora):
        play = lectora.player()
        play.queryComponent().grabFocus()
        desktop.wait_until(lambda: play.getState().contains(desktop.pyatspi.STATE_FOCUSED), "its button")

    def leaves(self, lectora):
        desktop.wait_until(lambda: not lectora.shown("toggle button", "Play (F9)"), "the player to go")

    def frame(self, window):
        words = desktop.xdotool("getwindowgeometry", "--shell", window).split()
        return [int(dict(word.split("=") for word in words)[key]) for key in ("X", "Y", "WIDTH", "HEIGHT")]

    def test_it_stands_below_the_text_and_takes_the_keyboard_from_nobody(self):
        lectora, stream = self.start_reading()
        desktop.wait_until(lectora.highlighted, "the highlight")
        play = lectora.place(lectora.player())
        self.picture("player")
        box, large = lectora.place(lectora.text_box()), lectora.place(lectora.find("toggle button", "Read Aloud"))
        slider = lectora.place(lectora.find("slider", "Position"))
        self.assertLessEqual(box.y + box.height, play.y)
        self.assertLessEqual(slider.y + slider.height, large.y)
        self.assertLess(large.y - play.y, 90, "two rows")
        self.assertGreater(box.height, 300)
        desktop.press_keys("x")
        desktop.wait_until(lambda: "x" in lectora.text(), "the text box to have the keyboard")
        self.go_into(lectora)
        desktop.press_keys("ctrl+Right")
        stream = self.card.next_stream()
        desktop.wait_until(lambda: lectora.highlighted().strip() == SENTENCES[1], "the sentence")
        desktop.press_keys("space")
        self.card.wait_for(stream, "close")
        desktop.wait_until(lambda: lectora.status().startswith("Paused at 0:00:0"), "the pause in the status bar")
        self.assertFalse(self.is_down(lectora))
        desktop.press_keys("space")
        stream = self.card.next_stream()
        lectora.press("toggle button", "Volume and Device")
        desktop.wait_until(lambda: lectora.shown("combo box", "Playback Device"), "the device")
        self.picture("player-unfolded")
        desktop.press_keys("Escape")
        self.card.wait_for(stream, "close")
        desktop.wait_until(lambda: not self.is_down(lectora), "the button to come up")
        desktop.press_keys("Escape")
        self.leaves(lectora)
        desktop.press_keys("z")
        desktop.wait_until(lambda: "z" in lectora.text(), "the text box to have the keyboard again")

    def test_it_is_taken_out_kept_there_and_put_back(self):
        lectora, _ = self.start_reading()
        lectora.player()
        lectora.press("push button", TAKE_OUT)
        lectora.active_window("dialog", "Lectora Player")
        desktop.xdotool("windowmove", "--sync", self.window(), 700, 90)
        self.picture("player-taken-out")
        place = self.frame(self.window())
        desktop.press_keys("Escape", "Escape")
        self.window(shown=False)
        lectora.focus()
        desktop.press_keys("ctrl+shift+r")
        self.assertEqual(self.frame(self.window()), place)
        self.assertEqual(int(desktop.xdotool("getwindowfocus")), int(lectora.window()))
        desktop.xdotool("windowactivate", "--sync", self.window())
        lectora.press("push button", PUT_BACK)
        self.window(shown=False)
        play = lectora.player()
        desktop.wait_until(lambda: play.getState().contains(desktop.pyatspi.STATE_FOCUSED), "its button")
        self.assertEqual(self.card.events(self.card.streams()[-1])[-1][1], "start", "the reading goes on")

    def test_at_the_smallest_size_the_text_keeps_half_of_the_window(self):
        lectora, _ = self.start_reading(width=280, height=225)
        lectora.player()
        self.picture("player-smallest")
        self.assertEqual(self.frame(lectora.window())[2:], [280, 225])
        self.assertGreaterEqual(2 * lectora.place(lectora.text_box()).height, 225)
        desktop.press_keys("Escape")
        desktop.wait_until(lambda: lectora.shown("toggle button", "Read Aloud"), "the large button")

    def test_it_stays_for_another_play_only_while_the_user_is_in_it(self):
        lectora, stream = self.start_reading(SENTENCES[0])
        sounds = []
        self.go_into(lectora)
        for leaves in (False, False, True):
            desktop.wait_until(lectora.highlighted, "the highlight")
            if leaves:
                lectora.text_box().queryComponent().grabFocus()
            self.card.tell("speed 8")
            self.card.wait_for(stream, "close")
            sounds.append(self.card.sound(stream).samples)
            desktop.wait_until(lambda: not self.is_down(lectora), "the button to come up")
            self.card.tell(SLOW)
            if not leaves:
                lectora.player()
                desktop.press_keys("F9")
                stream = self.card.next_stream()
        self.leaves(lectora)
        self.assertEqual(sounds[1:], sounds[:-1])

    def test_the_large_button_goes_on_after_a_pause(self):
        lectora, _ = self.start_reading()
        lectora.player()
        desktop.press_keys("ctrl+Right", "F9")
        desktop.wait_until(lambda: lectora.status().startswith("Paused at"), "the pause")
        streams = len(self.card.streams())
        lectora.press("toggle button", "Read Aloud")
        desktop.wait_until(lambda: self.is_down(lectora), "the button to go down")
        desktop.wait_until(lambda: len(self.card.streams()) > streams, "the sound")
        self.assertEqual(lectora.highlighted().strip(), SENTENCES[1])

    def test_a_hotkey_leaves_keyboard_and_window_to_the_other_program(self):
        self.give_keys((5 << 16 | ord("R"), 1))
        lectora = self.start()
        other = self.start(HOME=self.folder("other"))
        desktop.xdotool("windowminimize", "--sync", lectora.window())
        desktop.wait_until(lambda: not lectora.windows(), "the window to go")
        desktop.xdotool("windowsize", "--sync", other.window(), 800, 600)
        desktop.xdotool("windowmove", "--sync", other.window(), 10, 30)
        other.focus()
        focus = int(other.window())
        self.select("a long story of many words that goes on")
        desktop.press_keys("ctrl+shift+r")
        stream = self.card.next_stream()
        x, y, width, height = self.frame(self.window())
        left, top, wide, high = self.frame(focus)
        self.picture("player-hotkey")
        self.assertTrue(x >= left + wide or y >= top + high or x + width <= left, "it covers the other program")
        desktop.press_keys("x")
        desktop.wait_until(lambda: other.text() == "x", "the key in the other program")
        self.assertEqual(int(desktop.xdotool("getwindowfocus")), focus)
        # Brought back, the window takes it in; hidden again, it lets it out.
        lectora.press_tray_icon(1)
        self.window(shown=False)
        lectora.player()
        lectora.hide()
        self.window()
        lectora.press_tray_icon(1)
        self.window(shown=False)
        lectora.focus()
        desktop.press_keys("Escape")
        self.card.wait_for(stream, "close")

    def test_files_that_wait_are_its_next_tracks(self):
        desktop.tell_engine("text2wave long 60")
        paths = [self.file(f"{name}.txt", f"The tale of {name}.") for name in ("one", "two")]
        lectora = self.start(*paths)
        stream = self.card.next_stream()
        self.go_into(lectora)
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
