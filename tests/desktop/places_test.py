"""Places in the text: where a reading begins, follows its user's edits, and goes on another day."""
import os
import unittest

from desktop_case import DesktopCase, desktop

SENTENCES = [
    f"Number {word} is a sentence that goes on for a while here."
    for word in "one two three four five six".split()
]
TEXT = " ".join(SENTENCES)


class PlacesTest(DesktopCase):
    def words_spoken(self):
        return " ".join(call.split(" ", 2)[2] for call in self.spoken())

    def wait_for_highlight(self, lectora, sentence):
        desktop.wait_until(lambda: lectora.highlighted().strip() == sentence, sentence)

    def double_click(self, lectora, offset):
        text = lectora.text_box().queryText()
        x, y, width, height = text.getCharacterExtents(offset, desktop.pyatspi.DESKTOP_COORDS)
        desktop.xdotool("mousemove", x + width // 2, y + height // 2, "click", "--repeat", 2, "--delay", 50, 1)

    def test_a_reading_begins_with_the_selection_at_the_cursor_or_at_the_beginning(self):
        lectora = self.start()
        lectora.set_text("One two three. Four five six.")
        box = lectora.text_box().queryText()
        lectora.focus()

        def spoken_after(act):
            desktop.forget_engine_calls()
            act()
            self.card.wait_for(self.card.next_stream(), "close")
            desktop.wait_until(lambda: "eading" not in lectora.status(), "the end")
            return self.words_spoken()

        def press(name):
            return lambda: lectora.press("toggle button", name)

        self.assertEqual(spoken_after(press("Read Aloud")), "One two three. Four five six.")
        box.setCaretOffset(22)  # within "five"
        lectora.find("toggle button", "Read from Cursor")
        self.picture("read-from-cursor")
        self.assertEqual(spoken_after(press("Read from Cursor")), "five six.")
        self.assertEqual(spoken_after(lambda: desktop.press_keys("ctrl+shift+r")), "five six.")
        box.addSelection(4, 13)
        self.assertEqual(spoken_after(press("Read Selection")), "two three")
        # A selection is a place too.
        self.assertEqual(
            spoken_after(lambda: desktop.press_keys("ctrl+Return")), "two three. Four five six."
        )
        self.assertEqual(lectora.text(), "One two three. Four five six.")
        lectora.set_text("Another text.")
        lectora.find("toggle button", "Read Aloud")

    def test_the_highlight_follows_edits_and_double_clicks_move_it(self):
        self.card.tell("speed 0.2")
        lectora = self.start()
        lectora.set_text(TEXT)
        lectora.focus()
        desktop.press_keys("F9")
        self.wait_for_highlight(lectora, SENTENCES[0])
        self.assertEqual(
            desktop.xdotool("getwindowname", lectora.window()).strip(),
            "Number one is a sentence that... - Lectora",
        )
        lectora.focus()
        self.double_click(lectora, TEXT.index(SENTENCES[3]) + 12)
        self.wait_for_highlight(lectora, SENTENCES[3])
        # Into a sentence before the one that is heard, and into one behind it.
        box = lectora.text_box().queryEditableText()
        box.insertText(4, "more and more ", 14)
        self.assertEqual(lectora.highlighted().strip(), SENTENCES[3])
        box.insertText(lectora.text().index("five"), "nearly ", 7)
        self.assertEqual(lectora.highlighted().strip(), SENTENCES[3])
        desktop.press_keys("ctrl+Right", "ctrl+Right")
        self.wait_for_highlight(lectora, SENTENCES[5])
        self.picture("highlight-after-edits")
        desktop.press_keys("ctrl+Left")
        desktop.wait_until(lambda: not lectora.highlighted(), "the edited sentence, which has none")
        desktop.press_keys("ctrl+Left")
        self.wait_for_highlight(lectora, SENTENCES[3])
        desktop.press_keys("Escape")
        self.assertIn("more and more", lectora.text())

    def ground(self, lectora):
        """The colour behind the first word that has one."""
        text = lectora.text_box().queryText()
        for at in range(0, text.characterCount, 5):
            attributes = text.getAttributeRun(at, False)[0]
            for each in attributes if "underline:single" not in attributes else ():
                if each.startswith("bg-color:"):
                    return tuple(int(part) >> 8 for part in each.split(":")[1].split(","))
        return None

    def test_the_word_that_is_heard_is_marked_in_its_sentence_unless_that_is_switched_off(self):
        self.card.tell("speed 0.2")
        lectora = self.start()
        lectora.set_text(TEXT)
        lectora.focus()
        desktop.press_keys("F9")
        for word in SENTENCES[0].split()[:3]:
            desktop.wait_until(lambda: lectora.highlighted_word() == word, word)
        self.picture("highlighted-word")
        self.assertEqual(lectora.highlighted().strip(), SENTENCES[0])
        lectora.text_box().queryEditableText().insertText(lectora.text().index("two"), "nearly ", 7)
        # Where the stretch itself begins, its words are still found.
        lectora.text_box().queryEditableText().insertText(0, "Größer: ", 10)
        desktop.wait_until(lambda: lectora.highlighted_word() == "goes", "a word behind an edit")
        self.assertEqual(lectora.highlighted().strip(), SENTENCES[0])
        lectora.focus()
        desktop.press_keys("ctrl+Right")
        desktop.wait_until(lambda: not lectora.highlighted(), "a sentence that is not as it is heard")
        self.assertEqual(lectora.highlighted_word(), "")
        desktop.press_keys("alt+t", "o")
        lectora.press("check box", "Mark each word")
        lectora.press("push button", "OK")
        desktop.wait_until(lambda: self.setting("options", "markwords") == "0", "the choice")
        lectora.focus()
        desktop.press_keys("ctrl+Right")
        self.wait_for_highlight(lectora, SENTENCES[2])
        self.card.tell("speed 5")
        self.wait_for_highlight(lectora, SENTENCES[3])
        self.assertEqual(lectora.highlighted_word(), "")

    def test_the_colours_of_the_highlight_are_a_choice_and_follow_high_contrast(self):
        self.card.tell("speed 0.2")
        contrast = self.file("contrast", 'gtk-theme-name = "HighContrast"\n')
        for theme, rc in (("ordinary", {}), ("contrast", {"GTK2_RC_FILES": contrast})):
            lectora = self.start(self.file("story.txt", TEXT), **rc)
            ground = desktop.wait_until(lambda: self.ground(lectora), "the highlight")
            self.picture(f"highlight-{theme}")
            self.assertEqual(ground == (0xFF, 0xE0, 0x8A), theme == "ordinary", ground)
            lectora.focus()
            desktop.press_keys("alt+t", "o")
            lectora.find("combo box", "Mark what is heard in").querySelection().selectChild(1)
            lectora.press("push button", "OK")
            desktop.wait_until(lambda: self.setting("options", "highlight") == "green", "the choice")
            lectora.focus()
            desktop.press_keys("ctrl+Right")
            desktop.wait_until(lambda: self.ground(lectora) == (0xB5, 0xE6, 0xA2), "the next sentence in it")
            lectora.end()
            os.remove(os.path.join(desktop.HOME, ".quillon/lectora/options"))

    def test_a_killed_reading_goes_on_where_it_was(self):
        self.card.tell("speed 0.5")
        path = self.file("ferries.txt", TEXT)
        lectora = self.start(path)
        for sentence in SENTENCES[:3]:
            self.wait_for_highlight(lectora, sentence)
        # Which the card tells of a moment later than its beginning was foreseen.
        desktop.wait_until(lambda: lectora.highlighted_word() == "sentence", "a word in its middle")
        lectora.end()
        store = os.path.join(desktop.HOME, ".quillon/lectora/reading-places")
        self.assertEqual(os.stat(store).st_mode & 0o777, 0o600)

        lectora = self.start()
        offer = lectora.find("label", 'You stopped at 33 %, "Number three is a sentence that..."')
        self.picture("place-offered")
        self.assertTrue(offer.getState().contains(desktop.pyatspi.STATE_SHOWING))
        lectora.focus()
        desktop.press_keys("alt+g")
        self.wait_for_highlight(lectora, SENTENCES[2])
        self.assertEqual(desktop.xdotool("getwindowname", lectora.window()).strip(), "ferries.txt - Lectora")
        desktop.wait_until(lambda: not offer.getState().contains(desktop.pyatspi.STATE_SHOWING), "the offer to go")
        lectora.focus()
        desktop.press_keys("Escape")
        desktop.wait_until(lambda: not self.is_down(lectora), "the end")
        lectora.end()

        # The file has changed: the sentence is found again.
        self.file("ferries.txt", "A line that is new stands before all of it. " + TEXT)
        lectora = self.start(path)
        self.wait_for_highlight(lectora, "A line that is new stands before all of it.")
        lectora.focus()
        desktop.press_keys("alt+g")
        self.wait_for_highlight(lectora, SENTENCES[2])
        self.card.tell("speed 20")
        desktop.wait_until(lambda: not self.is_down(lectora), "the end")
        lectora.end()
        lectora = self.start()
        self.assertFalse(lectora.shown("push button", "Go On"), "it was heard to its end")

    def test_bookmarks_are_set_renamed_gone_to_and_found_in_a_changed_document(self):
        self.card.tell("speed 0.2")
        path = self.file("ferries.txt", TEXT)
        lectora = self.start()
        self.choose(lectora, "ctrl+o", "Locate File to Read Text", path)
        lectora.focus()
        desktop.press_keys("ctrl+shift+k")
        desktop.wait_until(lambda: "no bookmark in this text yet" in lectora.status(), "the note")
        box = lectora.text_box().queryText()
        box.setCaretOffset(TEXT.index("three") + 3)
        desktop.press_keys("ctrl+k")
        desktop.wait_until(lambda: lectora.status() == 'Bookmark: "Number three is a sentence that..."', "the first")
        # While it reads, what is heard.
        box.setCaretOffset(0)
        desktop.press_keys("F9")
        self.wait_for_highlight(lectora, SENTENCES[0])
        desktop.press_keys("ctrl+Right")
        self.wait_for_highlight(lectora, SENTENCES[1])
        desktop.press_keys("ctrl+k")
        desktop.wait_until(lambda: lectora.find_all("status bar"), "the second")
        desktop.press_keys("ctrl+shift+k")
        lectora.active_window("dialog", "Bookmarks")
        lectora.press("push button", "Rename...")
        lectora.active_window("dialog", "Rename Bookmark")
        desktop.xdotool("type", "Second thoughts")
        self.picture("bookmark-name")
        desktop.press_keys("Return")
        lectora.find("table cell", "Second thoughts")
        lectora.find("table cell", "33 %")
        self.picture("bookmarks")
        lectora.active_window("dialog", "Bookmarks")
        desktop.press_keys("Down", "Return")
        self.wait_for_highlight(lectora, SENTENCES[2])
        desktop.press_keys("Escape")
        store = os.path.join(desktop.HOME, ".quillon/lectora/bookmarks")
        self.assertEqual(os.stat(store).st_mode & 0o777, 0o600)
        lectora.end()

        # Of two bookmarks one sentence is gone, the other stands elsewhere.
        self.file("ferries.txt", "A line that is new stands before all of it. " + TEXT.replace(SENTENCES[1], ""))
        lectora = self.start(path)
        self.wait_for_highlight(lectora, "A line that is new stands before all of it.")
        lectora.focus()
        desktop.press_keys("Escape")
        desktop.wait_until(lambda: not self.is_down(lectora), "the end")
        desktop.press_keys("ctrl+shift+k")
        lectora.active_window("dialog", "Bookmarks")
        lectora.find("table cell", "not in the text now")
        desktop.press_keys("Down", "Return")
        text = lectora.text()
        desktop.wait_until(
            lambda: lectora.text_box().queryText().caretOffset == text.index(SENTENCES[2]), "the third sentence"
        )
        lectora.focus()
        desktop.press_keys("ctrl+shift+k")
        lectora.active_window("dialog", "Bookmarks")
        for _ in range(2):
            lectora.press("push button", "Remove")
        desktop.press_keys("Escape")
        desktop.wait_until(lambda: os.path.getsize(store) == 0, "both to be removed")

    def test_files_that_wait_are_seen_reordered_set_aside_and_read(self):
        desktop.tell_engine("text2wave long 60")
        self.card.tell("speed 1")
        paths = [self.file(f"{name}.txt", f"Here is {name}.") for name in ("one", "two", "three", "four")]
        lectora = self.start(*paths)
        self.wait_for_highlight(lectora, "Here is one.")
        desktop.wait_until(lambda: lectora.status().endswith("; 3 files wait"), "the number of files")
        lectora.focus()
        desktop.press_keys("ctrl+l")
        lectora.active_window("dialog", "Waiting Files")
        desktop.press_keys("End", "Tab")

        def cells():
            return [os.path.basename(each.name) for each in lectora.find_all("table cell") if each.name]

        orders = (["two.txt", "four.txt", "three.txt"], ["four.txt", "two.txt", "three.txt"])
        for order in orders:
            desktop.press_keys("space")
            desktop.wait_until(lambda: cells() == order, "the new order")
        desktop.press_keys("space")  # can go no further up, and undoes nothing
        self.picture("waiting-files")
        desktop.press_keys("shift+Tab", "Down", "alt+m")
        desktop.wait_until(lambda: cells() == ["four.txt", "three.txt"], "one to go")
        desktop.press_keys("Escape")
        lectora.focus()
        desktop.press_keys("F9")
        desktop.wait_until(lambda: "aused" in lectora.status(), "the pause")
        self.choose(lectora, "ctrl+alt+l", "Locate File to Read Text", paths[1])
        desktop.wait_until(lambda: lectora.status() == "Will be read: " + paths[1], "one more")
        lectora.focus()
        desktop.press_keys("Escape")
        desktop.wait_until(lambda: "3 files wait until they are asked for" in lectora.status(), "all to be set aside")
        kept = os.path.join(desktop.HOME, ".quillon/lectora/waiting-files")
        waiting = "".join(path + "\0" for path in (paths[3], paths[2], paths[1]))
        desktop.wait_until(lambda: open(kept).read() == waiting, "them to be kept")
        lectora.process.kill()
        lectora.process.wait()
        lectora = self.start()
        desktop.wait_until(lambda: "3 files wait until they are asked for" in lectora.status(), "them to be there again")
        lectora.focus()
        desktop.press_keys("ctrl+l")
        lectora.active_window("dialog", "Waiting Files")
        desktop.press_keys("Down", "Return")
        self.wait_for_highlight(lectora, "Here is three.")
        self.card.tell("speed 20")
        for name in ("four", "two"):
            self.wait_for_highlight(lectora, f"Here is {name}.")
        desktop.wait_until(lambda: not self.is_down(lectora), "the end")
        lectora.focus()
        desktop.press_keys("ctrl+l")
        desktop.wait_until(lambda: "No file waits" in lectora.status(), "the note")


if __name__ == "__main__":
    unittest.main()
