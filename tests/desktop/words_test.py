"""Words that are said differently: the dialog, the list of the options, and what is then spoken."""
import os
import unittest

from desktop_case import DesktopCase, desktop


class WordsTest(DesktopCase):
    def said(self):
        return [call.split(" ", 2)[2] for call in self.spoken()]

    def kept(self):
        path = os.path.join(desktop.HOME, ".quillon/lectora/pronunciations.txt")
        if not os.path.exists(path):
            return []
        with open(path) as file:
            return [line.rstrip("\n") for line in file if not line.startswith("# ")]

    def wait_for_dialog(self, title):
        desktop.wait_until(lambda: title in desktop.xdotool("getactivewindow", "getwindowname"), title)

    def test_a_word_is_heard_kept_and_said_and_the_text_stays(self):
        lectora = self.start()
        text = "Ask Nguyen now."
        lectora.set_text(text)
        lectora.text_box().queryText().setCaretOffset(6)
        lectora.focus()
        # The menu about the word below the pointer.
        box = lectora.text_box().queryText().getRangeExtents(4, 10, desktop.pyatspi.DESKTOP_COORDS)
        desktop.xdotool("mousemove", box[0] + 12, box[1] + 6, "click", 3)
        lectora.press("menu item", "Say It Differently...")
        self.wait_for_dialog("Say It Differently")
        self.assertEqual(lectora.find("text", "Text:").queryText().getText(0, -1), "Nguyen")
        desktop.press_keys("ctrl+a", *"win")
        self.picture("say-it-differently")
        stream = self.card.next_stream
        lectora.press("push button", "Hear It")
        self.card.wait_for(stream(), "close")
        self.assertEqual((self.said(), self.kept()), (["win"], []))
        # What another program writes meanwhile stays.
        path = os.path.join(desktop.HOME, ".quillon/lectora/pronunciations.txt")
        self.file(path, "alpha\tay\n")
        lectora.press("push button", "OK")
        desktop.wait_until(lambda: self.kept() == ["Nguyen\twin", "alpha\tay"], "the word to be kept")
        self.assertEqual(lectora.text(), text)
        lectora.press("toggle button", "Read from Cursor")
        self.card.wait_for(self.card.next_stream(), "close")
        self.assertEqual(self.said()[-1], "win now.")

        lectora.press("push button", "Options")
        lectora.press("page tab", "Words")
        desktop.wait_until(lambda: any(cell.name == "Nguyen" for cell in lectora.find_all("table cell")), "the list")
        self.picture("options-words")
        # A list that somebody else changes meanwhile, or that cannot be read, is left as it is.
        self.file(path, "alpha\tay\nbeta\tbee\n")
        lectora.press("push button", "Remove")
        lectora.wait_for_box("The list was changed by another program.")
        lectora.press("push button", "OK")
        desktop.wait_until(lambda: any(cell.name == "alpha" for cell in lectora.find_all("table cell")), "the list as it is")
        lectora.press("push button", "Remove")
        desktop.wait_until(lambda: self.kept() == ["beta\tbee"], "the first to be gone")
        lectora.press("push button", "Cancel")
        os.rename(path, path + ".own")
        os.symlink(path + ".own", path)
        lectora.focus()
        desktop.press_keys("ctrl+d")
        lectora.wait_for_box("The word could not be kept.")
        self.picture("words-unread")
        lectora.press("push button", "OK")
        self.assertEqual(self.kept(), ["beta\tbee"])
        self.assertTrue(os.path.islink(path))


if __name__ == "__main__":
    unittest.main()
