"""What a text box is expected to have: undoing, finding, larger letters, recent files."""
import os
import unittest

from desktop_case import DesktopCase, desktop


class EditingTest(DesktopCase):
    def test_a_text_that_was_replaced_comes_back(self):
        lectora = self.start()
        lectora.focus()
        desktop.press_keys(*"typed")
        self.select("from elsewhere")
        for keys, text in (
            ("ctrl+b", "from elsewhere"),
            ("ctrl+z", "typed"),
            ("ctrl+z", ""),
            ("ctrl+shift+z", "typed"),
            ("ctrl+y", "from elsewhere"),
        ):
            desktop.press_keys(keys)
            desktop.wait_until(lambda: lectora.text() == text, f"{keys} to bring '{text}'")
        lectora.choose("Edit", "Undo")
        desktop.wait_until(lambda: lectora.text() == "typed", "the menu's Undo")

    def test_words_are_found_one_after_the_other_and_from_the_beginning_again(self):
        lectora = self.start()
        lectora.set_text("Fox one\nfox two\nand no more")
        lectora.text_box().queryText().setCaretOffset(0)
        lectora.focus()
        desktop.press_keys("ctrl+f", *"fox", "Return")
        for place, note in ((0, "Found"), (8, "Found"), (0, "beginning")):
            desktop.wait_until(lambda: self.selected(lectora) == (place, place + 3), place)
            self.picture("find")
            self.assertIn(note, lectora.status())
            desktop.press_keys("F3")
        desktop.press_keys("ctrl+f", *"cat", "Return")
        desktop.wait_until(lambda: "not in the text" in lectora.status(), "the answer")
        desktop.press_keys("Escape", "x")
        desktop.wait_until(lambda: not lectora.shown("text", "Find:"), "the bar to go")
        self.assertEqual(lectora.text(), "Fox one\nfoxx two\nand no more")

    def selected(self, lectora):
        return tuple(lectora.text_box().queryText().getSelection(0)[:2])

    def test_the_size_of_letters_and_the_recent_files_are_kept(self):
        files = [self.file(f"{name}.txt", name) for name in ("a & b", "_c")]
        lectora = self.start(*files)
        for _ in files:
            self.card.wait_for(self.card.next_stream(), "close")
        lectora.focus()
        desktop.press_keys("ctrl+plus", "ctrl+equal", "ctrl+minus")
        size = desktop.wait_until(lambda: "points" in lectora.status() and lectora.status(), "the size")
        lectora.end()
        os.unlink(files[1])
        lectora = self.start()
        lectora.focus()
        desktop.press_keys("ctrl+plus", "ctrl+minus")
        desktop.wait_until(lambda: lectora.status() == size, size)
        lectora.choose("Lectora", "Recent Files", f"2 {files[0]}")
        desktop.wait_until(lambda: lectora.text() == "a & b", "the text")
        lectora.choose("Lectora", "Recent Files", f"2 {files[1]}")
        lectora.wait_for_box("no longer there")
        self.picture("recent-gone")
        desktop.press_keys("Return")
        desktop.wait_until(lambda: not next(lectora.walk("menu item", f"2 {files[1]}"), None), "its end")


if __name__ == "__main__":
    unittest.main()
