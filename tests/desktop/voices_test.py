"""The window that chooses a voice, a choice while something is read, and who reads in its place."""
import unittest

from desktop_case import DesktopCase, desktop


class VoicesTest(DesktopCase):
    def said(self):
        return [tuple(call.split(" ", 2)[1:]) for call in self.spoken()]

    def test_a_voice_is_found_heard_and_chosen(self):
        desktop.tell_engine("festival voices 300")
        lectora = self.start()
        lectora.set_text("Some text.")
        lectora.focus()
        desktop.press_keys("ctrl+shift+v")
        dialog = lectora.active_window("dialog", "Choose a Voice")
        search = lectora.find("text", "Search:")
        desktop.wait_until(lambda: lectora.has_keyboard(dialog), "the keyboard")
        desktop.press_keys(*"voice29")
        desktop.wait_until(lambda: next(lectora.walk("label", "11 of 300 voices."), None), "the voices that are found")
        desktop.press_keys("Down")
        self.picture("choose-voice")
        self.assertEqual(search.queryText().getText(0, -1), "voice29")
        stream = self.card.next_stream
        desktop.press_keys("alt+i")
        self.card.wait_for(stream(), "close")
        self.assertEqual(self.said()[-1], ("(voice_voice290)", "1, 2, 3, 4, 5."))
        desktop.press_keys("Return")
        desktop.wait_until(lambda: self.setting("settings", "voice") == "festival:voice290", "the choice")
        lectora.press("toggle button", "Read Aloud")
        self.card.wait_for(self.card.next_stream(), "close")
        self.assertEqual(self.said()[-1], ("(voice_voice290)", "Some text."))

    def test_a_missing_voice_stays_kept_until_another_is_picked(self):
        desktop.tell_engine("festival voices 3")
        self.store("settings", voice="festival:removed")
        lectora = self.start()
        for keys, kept in ((("Return",), "festival:removed"), (("Down", "Return"), "festival:voice2")):
            lectora.focus()
            desktop.press_keys("ctrl+shift+v")
            dialog = lectora.active_window("dialog", "Choose a Voice")
            desktop.wait_until(lambda: lectora.has_keyboard(dialog), "the keyboard")
            desktop.press_keys(*keys)
            desktop.wait_until(lambda: next(lectora.walk("dialog"), None) is None, "the chooser's end")
            self.assertEqual(self.setting("settings", "voice"), kept)

    def test_a_voice_keeps_its_manner_and_speaks_in_it(self):
        desktop.tell_engine("festival voices 1", "espeak-ng voices")
        self.store("settings", voice="espeak-ng:en-us")
        manner = ("150", "80", "Linda")

        def open_chooser(lectora):
            lectora.focus()
            desktop.press_keys("ctrl+shift+v")
            lectora.active_window("dialog", "Choose a Voice")

        def shown(lectora):
            numbers = [lectora.find("spin button", name + " in percent:") for name in ("Pitch", "Volume")]
            variant = lectora.find("combo box", "Variant:").querySelection().getSelectedChild(0)
            return (*(number.queryText().getText(0, -1) for number in numbers), variant.name)

        lectora = self.start()
        open_chooser(lectora)
        desktop.press_keys("alt+r", "Down", "alt+p", "ctrl+a", *manner[0], "alt+l", "ctrl+a", *manner[1], "Tab")
        desktop.wait_until(lambda: shown(lectora) == manner, "the manner")
        self.picture("voice-manner")
        desktop.press_keys("alt+o")
        desktop.wait_until(lambda: next(lectora.walk("dialog"), None) is None, "the chooser's end")
        lectora.end()
        desktop.forget_engine_calls()
        lectora = self.start()
        lectora.set_text("Some text.")
        open_chooser(lectora)
        self.assertEqual(shown(lectora), manner)
        desktop.press_keys("Escape")
        lectora.press("toggle button", "Read Aloud")
        self.card.wait_for(self.card.next_stream(), "close")
        options = next(call for call in desktop.engine_calls() if call.startswith("espeak-ng "))
        self.assertIn("espeak-ng -b 1 -p 90 -a 80 -v en-us+f2 -f ", options)
        lectora.set_text("Some more of it. " * 100)
        lectora.press("toggle button", "Read Aloud")
        self.card.wait_for(self.card.next_stream(), "first")
        open_chooser(lectora)
        desktop.press_keys("alt+p", "ctrl+a", *"100", "alt+o")
        otherwise = "espeak-ng -b 1 -a 80 -v en-us+f2 -f "
        desktop.wait_until(lambda: any(otherwise in call for call in desktop.engine_calls()), "another manner meanwhile")


if __name__ == "__main__":
    unittest.main()
