"""A speech engine in trouble: the user is told, keeps the text, and can go on."""
import unittest

from desktop_case import DesktopCase, desktop

TEXT = "one two three"


class EngineTroubleTest(DesktopCase):
    def test_an_engine_that_lists_no_voices(self):
        desktop.tell_engine("festival nothing")
        lectora = self.start()
        lectora.wait_for_box("No voice is installed")
        lectora.press("push button", "OK")
        # A page that is nowhere is not opened.
        self.assertFalse([call for call in desktop.engine_calls() if call.startswith("browser")])
        # The engine has come to: reading asks it again.
        desktop.tell_engine()
        lectora.set_text(TEXT)
        self.assert_usable(lectora, TEXT)

    def test_an_engine_that_answers_late_keeps_nobody_waiting(self):
        desktop.tell_engine("festival hang")
        lectora = self.start(self.file("text.txt", TEXT))
        lectora.find("label", "Waiting for the Speech Engine")
        self.picture("engine-late")
        desktop.tell_engine("festival voices 12")
        self.card.wait_for(self.card.next_stream(), "close")
        items = [item.name for item in lectora.find("combo box", "Choose Voice: ")[0]]
        self.assertEqual(items, [f"voice{number}" for number in range(1, 13)])
        self.assertEqual(lectora.box_text(), "")

    def test_an_engine_that_fails_to_speak(self):
        for told, message in (
            ("silent", "produced no sound"),
            ("die", "produced no sound"),
            ("full", "stopped before the end"),
        ):
            with self.case(told) as lectora:
                lectora.set_text(TEXT)
                desktop.tell_engine("text2wave " + told)
                streams = len(self.card.streams())
                lectora.press("toggle button", "Read Aloud")
                lectora.wait_for_box(message)
                self.picture("engine-" + told)
                self.assertEqual(len(self.card.streams()), streams)
                lectora.press("push button", "OK")
                desktop.tell_engine()
                self.assert_usable(lectora, TEXT)

    def test_a_voice_slower_than_speech_is_waited_for(self):
        desktop.tell_engine("text2wave hang last")
        text = "This is a sentence of some length. " * 3 + "This is the last one."
        lectora = self.start(self.file("text.txt", text))
        stream = self.card.next_stream()
        desktop.wait_until(lambda: "slower than speech" in lectora.status(), "the status line")
        desktop.tell_engine()
        self.card.wait_for(stream, "close")
        self.assertEqual(desktop.Sound(desktop.SPEECH).frames, 800 * len(text.replace(" ", "")))


if __name__ == "__main__":
    unittest.main()
