"""Reading aloud: what the card received, buttons and keys, cancelling, nothing left behind."""
import glob
import operator
import os
import statistics
import subprocess
import time
import unittest
import uuid

from desktop_case import SHARE, DesktopCase, desktop

SAMPLE = os.path.join(SHARE, "sample.txt")


class ReadingTest(DesktopCase):
    def test_the_card_receives_the_engines_own_sound(self):
        self.card.tell("speed 4")
        lectora = self.start(SAMPLE, fake_engine=False)
        stream = self.card.next_stream()
        desktop.wait_until(lectora.highlighted, "the highlight")
        self.picture("reading")
        self.card.wait_for(stream, "close")
        received, spoken = self.card.sound(stream), desktop.Sound(desktop.SPEECH)
        self.assertEqual((received.rate, received.channels), (spoken.rate, spoken.channels))
        self.assertGreater(spoken.frames, 5 * spoken.rate)
        self.assertLessEqual(abs(received.frames - spoken.frames), spoken.rate // 4)
        self.assertGreater(desktop.correlation(received.samples, spoken.samples), 0.99)
        with open(SAMPLE) as file:
            self.assertEqual(lectora.text(), file.read())

    def test_cancel_stops_at_once_and_the_next_reading_works(self):
        lectora = self.start()
        lectora.set_text("one two three")
        desktop.tell_engine("text2wave hang")
        streams = self.card.streams()
        waited = []
        # A busy machine may hold one up, but not every time.
        while not waited or min(waited) > 1 and len(waited) < 10:
            lectora.press("toggle button", "Read Aloud")
            lectora.find("label", "Synthesizing Voice")
            self.picture("progress")
            cancel = lectora.find("push button", "Cancel")
            self.assertIn("first sentence", lectora.status())
            pressed = time.monotonic()
            lectora.click(cancel, takes_keyboard=False)
            desktop.wait_until(lambda: len(lectora.windows()) == 1, "the dialog to go")
            waited.append(time.monotonic() - pressed)
        self.assertLess(min(waited), 1.0)
        self.assertEqual(self.card.streams(), streams)
        desktop.tell_engine()
        self.assert_usable(lectora, "one two three")

    def test_escape_and_a_second_press_stop_the_reading(self):
        self.card.tell("speed 1")
        desktop.tell_engine("text2wave long 60")
        lectora = self.start()
        lectora.set_text("a long story")
        lectora.focus()
        for stop in (
            lambda: desktop.press_keys("Escape"),
            lambda: lectora.press("toggle button", "Read Aloud"),
        ):
            lectora.press("toggle button", "Read Aloud")
            stream = self.card.next_stream()
            self.card.wait_for(stream, "start")
            stop()
            self.card.wait_for(stream, "close", 30)

    def test_the_sentence_being_heard_is_shown_also_while_its_user_types(self):
        self.card.tell("speed 1")
        sentences = [
            f"{name} says what stands in this sentence{' of ours' * (number % 3)}."
            for number, name in enumerate(f"Reader{letter}" for letter in "abcdefghi")
        ]
        text = " ".join(sentences)
        lectora = self.start()
        lectora.set_text(text)
        lectora.text_box().queryText().setCaretOffset(3)
        lectora.press("toggle button", "Read Aloud")
        stream = self.card.next_stream()
        shown = []  # sentence, when it was not shown yet, when it was
        asked = time.monotonic()
        while not self.card.events(stream)[-1][1] == "close":
            before, asked = asked, time.monotonic()
            sentence = lectora.highlighted().strip()
            if sentence and sentence not in [row[0] for row in shown]:
                shown.append((sentence, before, time.monotonic()))
        self.assertEqual([row[0] for row in shown], sentences)
        frame = 0
        late = []
        for sentence, earliest, latest in shown:
            heard = self.heard_at(stream, frame)
            late.append(earliest - heard)
            self.assertLess(heard - latest, 0.25, sentence)
            frame += 800 * len(sentence.replace(" ", ""))
        self.assertLess(statistics.median(late), 0.25)  # a busy machine may hold some up
        self.assertEqual(lectora.text_box().queryText().caretOffset, 3)
        lectora.set_text(" ".join(sentences[:3]))
        self.card.tell("speed 0.1")
        lectora.press("toggle button", "Read Aloud")
        stream = self.card.next_stream()
        desktop.wait_until(lectora.highlighted, "the highlight")
        lectora.focus()
        lectora.text_box().queryComponent().grabFocus()
        desktop.press_keys("x")
        desktop.wait_until(lambda: lectora.text().endswith("x"), "the letter")
        self.assertEqual(lectora.highlighted().strip(), sentences[0])
        self.assertEqual(self.card.events(stream)[-1][1], "start", "it reads on")
        self.card.tell("speed 8")
        self.card.wait_for(stream, "close")
        whole = 800 * len("".join(sentences[:3]).replace(" ", ""))
        self.assertGreater(self.card.sound(stream).frames, whole - 8000)

    def heard_at(self, stream, frame):
        """When the card played that frame of the engine's 16 kHz, by its own log."""
        rate = self.card.sound(stream).rate
        frame = frame * rate // 16000
        starts = [row for row in self.card.events(stream) if row[1] == "start" and row[3] <= frame]
        return starts[-1][0] + (frame - starts[-1][3]) / rate

    def test_a_sentence_that_kills_the_engine_is_left_out_and_told(self):
        desktop.tell_engine("text2wave die poison")
        lectora = self.start()
        lectora.set_text("This comes before. Some poison is here. That comes behind it.")
        stream = self.read_aloud(lectora)
        self.assertEqual(self.card.sound(stream).frames, 800 * len("Thiscomesbefore.Thatcomesbehindit."))
        desktop.wait_until(lambda: "Some poison is here." in lectora.status(), "the sentence")
        self.picture("left-out")
        self.assertEqual(lectora.box_text(), "")

    def test_twenty_readings_leave_nothing_behind(self):
        self.card.tell("speed 50")
        lectora = self.start()
        text = f"word {uuid.uuid4().hex[:6]}"
        lectora.set_text(text)
        lectora.focus()

        def held():
            return lectora.threads(), len(lectora.descriptors()), len(desktop.processes())

        self.read_aloud(lectora)
        lectora.settle()
        # Its connection to the session's bus, which begins a moment after the window, stays.
        ask = ["playerctl", "--player=lectora", "status"]
        desktop.wait_until(lambda: subprocess.run(ask, capture_output=True, timeout=60).returncode == 0, "the player")
        before = held()
        for _ in range(20):
            desktop.press_keys("ctrl+shift+r")
            self.card.wait_for(self.card.next_stream(), "close")
        # What a reading uses ends a moment after it.
        desktop.wait_until(lambda: all(map(operator.le, held(), before)), f"no more than {before} to be held")
        self.assertEqual([path for path in glob.glob("/tmp/0??????") if self.holds(path, text)], [])

    def holds(self, path, text):
        try:
            with open(path) as file:
                return text in file.read()
        except OSError:
            return False


if __name__ == "__main__":
    unittest.main()
