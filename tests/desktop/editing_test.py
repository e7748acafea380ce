"""What a text box is expected to have: undoing, finding, larger letters, recent files."""
import os
import subprocess
import sys
import unittest

from desktop_case import DesktopCase, desktop

# A program with a file to be dragged away.
FILE_MANAGER = """
import sys, gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk
window, button = Gtk.Window(title="Files"), Gtk.Button(label="file")
button.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, [], Gdk.DragAction.COPY)
button.drag_source_add_uri_targets()
button.connect("drag-data-get", lambda _, __, data, *___: data.set_uris([sys.argv[1]]))
window.add(button)
window.move(1000, 40)
window.show_all()
Gtk.main()
"""


class EditingTest(DesktopCase):
    def test_a_text_and_a_file_are_dropped_on_the_window(self):
        path = self.file("dropped file.txt", "out of a file")
        lectora = self.start()
        lectora.set_text("one two three")
        lectora.focus()
        text_box, status = lectora.place(lectora.text_box()), lectora.place(lectora.find("status bar"))

        def drag_a_word():
            desktop.press_keys("ctrl+Home", "ctrl+shift+Right")
            self.drag(text_box.x + 8, text_box.y + 8, status.x + 300, status.y + 8)

        self.drag_until(drag_a_word, lambda: lectora.text() == "one")
        address = "file://" + path.replace(" ", "%20")
        files = subprocess.Popen([sys.executable, "-c", FILE_MANAGER, address])
        self.addCleanup(files.wait)
        self.addCleanup(files.kill)
        find = ("search", "--onlyvisible", "--name", "^Files$")
        window = desktop.wait_until(lambda: desktop.xdotool(*find).split(), "the other program")[0]
        desktop.xdotool("mousemove", "--sync", "--window", window, 10, 10)
        at = dict(each.split(":") for each in desktop.xdotool("getmouselocation").split())
        self.drag_until(lambda: self.drag(int(at["x"]), int(at["y"]), text_box.x + 80, text_box.y + 80),
                        lambda: lectora.text() == "out of a file")

    def drag_until(self, drag, is_there):
        """Again when it was dropped before the window had seen it come, as a busy one may."""
        desktop.wait_until(lambda: is_there() or drag() or desktop.wait_until(is_there, "what was dragged", 5), "it")

    def drag(self, x, y, to_x, to_y):
        go = ("sleep", 0.2, "mousemove")
        desktop.xdotool("mousemove", x, y, "sleep", 0.2, "mousedown", 1, *go, x + 15, y + 15,
                        *go, to_x - 5, to_y, *go, to_x, to_y, "sleep", 0.5, "mouseup", 1)

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
            lectora.type(keys)
            self.assertEqual(lectora.text(), text, keys)
        lectora.choose("Edit", "Undo")
        lectora.settle()
        self.assertEqual(lectora.text(), "typed")

    def test_words_are_found_one_after_the_other_and_from_the_beginning_again(self):
        lectora = self.start()
        lectora.set_text("Fox one\nfox two\nand no more")
        lectora.text_box().queryText().setCaretOffset(0)
        lectora.focus()
        lectora.type("ctrl+f", *"fox", "Return")
        for place, note in ((0, "Found"), (8, "Found"), (0, "beginning")):
            self.assertEqual(self.selected(lectora), (place, place + 3))
            self.picture("find")
            self.assertIn(note, lectora.status())
            lectora.type("F3")
        # Undoing in the bar is none of the text's.
        lectora.type("ctrl+f", *"cat", "ctrl+z", "Return")
        self.assertIn("not in the text", lectora.status())
        lectora.type("Escape", "x")
        self.assertIsNone(lectora.shown("text", "Find:"))
        self.assertEqual(lectora.text(), "Fox one\nfoxx two\nand no more")

    def selected(self, lectora):
        return tuple(lectora.text_box().queryText().getSelection(0)[:2])

    def test_the_size_of_letters_and_the_recent_files_are_kept(self):
        files = [self.file(f"{name}.txt", name) for name in ("a & b", "_c")]
        lectora = self.start(*files)
        for _ in files:
            self.card.wait_for(self.card.next_stream(), "close")
        lectora.settle()
        lectora.focus()
        sizes = [""]
        for key in ("ctrl+plus", "ctrl+equal", "ctrl+minus"):
            lectora.type(key)
            sizes.append(lectora.status())
            self.assertNotEqual(*sizes[-2:])
        size = sizes[-1]
        self.assertIn("points", size)
        self.assertEqual(size, sizes[1])
        lectora.end()
        os.unlink(files[1])
        lectora = self.start()
        lectora.focus()
        lectora.type("ctrl+plus", "ctrl+minus")
        self.assertEqual(lectora.status(), size)
        lectora.choose("Lectora", "Recent Files", f"2 {files[0]}")
        lectora.settle()
        self.assertEqual(lectora.text(), "a & b")
        lectora.choose("Lectora", "Recent Files", f"2 {files[1]}")
        lectora.wait_for_box("no longer there")
        self.picture("recent-gone")
        lectora.type("Return")
        self.assertEqual(lectora.find_all("menu item", f"2 {files[1]}"), [])


if __name__ == "__main__":
    unittest.main()
