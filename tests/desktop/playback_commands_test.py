"""A reading controlled from the window's keys and menu and from the tray's menu."""
import unittest

from desktop_case import DesktopCase, desktop


SENTENCES = [f"Number {word} is a sentence that goes on for a while here." for word in ("one", "two", "three")]


class PlaybackCommandsTest(DesktopCase):
    def test_keys_menu_and_tray_control_a_reading_and_leave_the_text_its_keys(self):
        self.card.tell("speed 0.1")
        desktop.tell_engine("text2wave long 60")
        lectora = self.start()
        lectora.set_text(" ".join(SENTENCES))
        lectora.focus()
        # While nothing is read, the arrows are the text's, and the tray offers nothing of a reading.
        desktop.press_keys("ctrl+Home", "ctrl+Right")
        desktop.wait_until(lambda: lectora.text_box().queryText().caretOffset == 6, "the next word")
        lectora.press_tray_icon(3)
        self.assertIsNone(lectora.shown("menu item", "Next Sentence"))
        lectora.press_popped_up("Open Lectora")

        desktop.press_keys("F9")
        stream = self.card.next_stream()
        self.card.wait_for(stream, "start")
        lectora.player()
        self.reads(lectora)
        self.picture("reading")
        desktop.press_keys("F9")
        self.is_paused(lectora)
        self.picture("paused")
        lectora.choose("Playback", "Play")
        self.reads(lectora)
        lectora.choose("Playback", "Sleep Timer", "In 15 Minutes")
        desktop.wait_until(lambda: lectora.status().endswith("; sleeps in 15 min"), "the sleep timer")
        self.picture("sleep-timer")
        lectora.focus()
        desktop.press_keys("ctrl+t", "ctrl+t", "ctrl+t")
        desktop.wait_until(lambda: lectora.status().endswith("at the end of the chapter"), "the fourth choice")
        desktop.press_keys("ctrl+t")
        desktop.wait_until(lambda: lectora.status().endswith("(Esc stops)"), "the sleep timer to be off")
        lectora.press_tray_icon(3)
        self.picture("tray-menu-reading")
        lectora.press_popped_up("Pause")
        self.is_paused(lectora)
        lectora.press_tray_icon(3)
        lectora.press_popped_up("Play")
        self.reads(lectora)
        for keys, speed in (("alt+Prior", "1.1\u00d7"), ("alt+Next", "1.0\u00d7")):
            desktop.press_keys(keys)
            desktop.wait_until(lambda: next(lectora.walk("label", speed), None), keys)
        desktop.press_keys("ctrl+Right")
        desktop.wait_until(lambda: lectora.highlighted().strip() == SENTENCES[1], "the next sentence")
        # The list of voices, in which nothing was typed, has no words to move through.
        voice = next(each for each in lectora.find_all("text") if "voice" in each.queryText().getText(0, -1))
        voice.queryComponent().grabFocus()
        desktop.wait_until(lambda: voice.getState().contains(desktop.pyatspi.STATE_FOCUSED), "the keyboard")
        desktop.press_keys("ctrl+Left")
        desktop.wait_until(lambda: lectora.highlighted().strip() == SENTENCES[0], "the sentence before")
        lectora.text_box().queryComponent().grabFocus()
        lectora.press_tray_icon(3)
        lectora.press_popped_up("Stop")
        desktop.wait_until(lambda: not self.is_down(lectora), "the end")
        self.assertEqual(lectora.text_box().queryText().caretOffset, 6)

    def reads(self, lectora):
        desktop.wait_until(lambda: self.is_down(lectora), "the sound")

    def is_paused(self, lectora):
        desktop.wait_until(lambda: "aused" in lectora.status(), "the pause")
        self.assertFalse(self.is_down(lectora))


if __name__ == "__main__":
    unittest.main()
