"""The contents of a document beside its text: chapters, headings, pages, and the ways to them."""
import os
import subprocess
import unittest

from desktop_case import DesktopCase, desktop

CHAPTERS = ["Oars", "Sails", "Steam"]
PAGE = "<html><title>Ferries</title><h1>Ferries</h1>" + "".join(
    f"<h2>{name}</h2><p>The chapter about {name} begins here. It goes on for a while with more words."
    + (f"<h3>More of {name}</h3><p>There is a part below it, which has words of its own." if name != "Steam" else "")
    for name in CHAPTERS
)


def pdf(pages):
    """Each page one line."""
    objects = ["<</Type/Catalog/Pages 2 0 R>>", ""]
    for page in pages:
        stream = f"BT /F1 12 Tf 72 720 Td ({page}) Tj ET"
        objects.append(f"<</Type/Page/Parent 2 0 R/MediaBox[0 0 612 792]/Contents {len(objects) + 2} 0 R"
            "/Resources<</Font<</F1<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>>>>>>>")
        objects.append(f"<</Length {len(stream)}>>stream\n{stream}\nendstream")
    kids = " ".join(f"{3 + 2 * number} 0 R" for number in range(len(pages)))
    objects[1] = f"<</Type/Pages/Kids[{kids}]/Count {len(pages)}>>"
    file, places = "%PDF-1.4\n", []
    for number, content in enumerate(objects, 1):
        places.append(len(file))
        file += f"{number} 0 obj{content}endobj\n"
    table = "".join(f"{place:010} 00000 n \n" for place in places)
    return (f"{file}xref\n0 {len(places) + 1}\n0000000000 65535 f \n{table}"
            f"trailer<</Size {len(places) + 1}/Root 1 0 R>>\nstartxref\n{len(file)}\n%%EOF")


class ContentsTest(DesktopCase):
    def open(self, name, content):
        lectora = self.start()
        self.choose(lectora, "ctrl+o", "Locate File", self.file(name, content))
        desktop.wait_until(lectora.text, "the text")
        lectora.focus()
        return lectora

    def title(self, lectora):
        return desktop.xdotool("getwindowname", lectora.window()).strip()

    def cells(self, lectora):
        tree = lectora.shown("tree table", "Contents")
        rows = [cell for cell in tree or () if cell and cell.getRoleName() == "table cell"]
        return [cell.name for cell in sorted(rows, key=lambda cell: lectora.place(cell).y) if lectora.place(cell).height > 0]

    def wait_for_chapter(self, lectora, name):
        """Its heading alone may be heard too soon to be seen. The player has the keyboard then."""
        desktop.wait_until(lambda: lectora.highlighted().startswith(f"The chapter about {name}"), name)
        lectora.focus()

    def test_the_contents_lead_to_chapters_and_follow_what_is_heard(self):
        self.card.tell("speed 0.3")
        lectora = self.open("ferries.html", PAGE)
        rows = ["Ferries", "Oars", "More of Oars", "Sails", "More of Sails", "Steam"]
        desktop.wait_until(lambda: self.cells(lectora) == rows, "the contents")
        # Enter reads from there; the arrows fold.
        lectora.type("F6", "Down", "Down", "Left", "Left")
        self.assertEqual(self.cells(lectora), [row for row in rows if row != "More of Oars"])
        lectora.type("Down", "Return")
        self.wait_for_chapter(lectora, "Sails")
        desktop.wait_until(lambda: self.title(lectora) == "Ferries - Chapter 2 of 3 - Lectora", "the title")
        self.assertIn(", Chapter 2 of 3 (Esc stops)", lectora.status())
        self.picture("contents")
        # And goes on there while something is read; back in the text the tree follows.
        desktop.press_keys("Home", "Down", "Return")
        self.wait_for_chapter(lectora, "Oars")
        desktop.press_keys("F6", "ctrl+shift+Next", "ctrl+shift+Next")
        self.wait_for_chapter(lectora, "Steam")
        tree = lectora.shown("tree table", "Contents")
        selected = lambda: [cell.name for cell in tree if cell and cell.name and cell.getState().contains(desktop.pyatspi.STATE_SELECTED)]
        desktop.wait_until(lambda: selected() == ["Steam"], "the chapter that is heard")
        desktop.press_keys("ctrl+shift+Prior", "ctrl+shift+Prior")
        self.wait_for_chapter(lectora, "Sails")
        desktop.press_keys("Escape")
        desktop.wait_until(lambda: self.title(lectora) == "Ferries - Lectora", "the end")
        self.assertIn("Sails\\n\\n", [call.split(" ", 2)[2] for call in self.spoken()], "a heading is spoken alone")
        desktop.forget_engine_calls()
        path = os.path.join(desktop.HOME, "ferries.wav")
        self.choose(lectora, "ctrl+alt+v", "Save File as", path)
        desktop.wait_until(lambda: os.path.exists(path), "the saved speech")
        self.assertIn("Sails\\n\\n", [call.split(" ", 2)[2] for call in self.spoken()], "in a file as well")
        lectora.focus()
        # Where the chapters are now that the text was edited before them.
        lectora.text_box().queryEditableText().insertText(0, "New words. ", 11)
        lectora.type("F6", "End", "Return")
        self.wait_for_chapter(lectora, "Steam")
        desktop.press_keys("Escape")
        lectora.choose("Lectora", "Show Contents")
        desktop.wait_until(lambda: not self.cells(lectora), "the contents to go")
        self.assertEqual(self.setting("options", "showcontents"), "0")
        lectora.focus()
        lectora.type("F6")
        self.assertTrue(self.cells(lectora), "asked for, they are shown")
        # A text that comes back brings its structure and its name with it.
        lectora.type("F6", "ctrl+a", "Delete")
        desktop.wait_until(lambda: not self.cells(lectora), "the contents to go")
        other = self.file("other.txt", "Another text.")
        subprocess.run([os.path.join(desktop.BUILD, "bin/lectora"), other], check=True, timeout=desktop.PATIENCE)
        desktop.wait_until(lambda: self.title(lectora) == "other.txt - Lectora", "the other text")
        lectora.focus()
        lectora.type("Escape", "ctrl+z", "ctrl+z")
        desktop.wait_until(lambda: self.cells(lectora) == rows, "the contents that come back")
        desktop.wait_until(lambda: self.title(lectora) == "Ferries - Lectora", "their document's name")
        lectora.type("ctrl+y", "ctrl+y")
        desktop.wait_until(lambda: self.title(lectora) == "other.txt - Lectora", "the other text again")
        self.assertFalse(self.cells(lectora))
        lectora.type("ctrl+z", "ctrl+z")
        desktop.wait_until(lambda: self.cells(lectora) == rows, "the contents that come back")
        # Another day, and then another text, which has none.
        kept = os.path.join(desktop.HOME, ".quillon/lectora/text-structure")
        desktop.wait_until(lambda: os.path.exists(kept) and "chapter 20 " in open(kept).read(), "the structure to be kept")
        text = lectora.text()
        words = os.path.join(os.path.dirname(kept), "text")
        desktop.wait_until(lambda: open(words).read() == text, "the text to be kept")
        lectora.end()
        # A crash between the two gives no text the contents of another.
        open(words, "w").write("So " + text)
        lectora = self.start()
        desktop.wait_until(lambda: lectora.text() == "So " + text, "another text")
        self.assertFalse(self.cells(lectora))
        lectora.end()
        open(words, "w").write(text)
        lectora = self.start()
        desktop.wait_until(lambda: self.cells(lectora) == rows, "the contents")
        lectora.set_text("Only words.")
        desktop.wait_until(lambda: not self.cells(lectora), "the contents to go")
        lectora.focus()
        lectora.type("F6")
        desktop.wait_until(lambda: "no chapters and no headings" in lectora.status(), "the reason")

    def test_pages_are_gone_to_by_their_number(self):
        lectora = self.open("pages.pdf", pdf([f"This is what page {name} says." for name in ("one", "two", "three")]))
        self.assertFalse(self.cells(lectora))
        lectora.type("ctrl+g")
        self.assertTrue(lectora.find("label", "The document has 3 pages."))
        self.picture("go-to-page")
        desktop.press_keys("3", "Return")
        desktop.wait_until(lambda: "Page 3 of 3" in lectora.status(), "the page")
        desktop.forget_engine_calls()
        lectora.press("toggle button", "Read from Cursor")
        self.card.wait_for(self.card.next_stream(), "close")
        self.assertEqual(self.spoken()[0].split(" ", 2)[2], "This is what page three says.\\n")

    def test_what_is_left_out_is_each_users_choice(self):
        self.card.tell("speed 20")
        page = "<article><p>See https://www.example.org/a/b?c for <a href='#n'>more</a> of it[1].<pre>x = 1</pre>" + "Words. " * 40
        lectora = self.open("page.html", page)
        self.assertIn("of it.\n\nx = 1", lectora.text())
        desktop.press_keys("ctrl+shift+r")
        desktop.wait_until(lambda: any("See example.org for more of it." in call for call in self.spoken()), "the site alone")
        desktop.press_keys("Escape")
        lectora.press("push button", "Options")
        lectora.press("page tab", "Documents")
        for label in ("Marks that point to notes and sources, like [1]", "Listings of programs",
                      'Of web addresses all but the site, "example.org"'):
            lectora.press("check box", label)
        self.picture("options-documents")
        lectora.press("push button", "OK")
        desktop.wait_until(lambda: self.setting("skipping", "marks") == "0", "the choice")
        self.assertFalse(os.path.exists(os.path.join(desktop.HOME, ".quillon/lectora/skipping_")))
        desktop.forget_engine_calls()
        subprocess.run([os.path.join(desktop.BUILD, "bin/lectora"), os.path.join(desktop.HOME, "page.html")], check=True, timeout=desktop.PATIENCE)
        desktop.wait_until(lambda: "of it[1].\n\nWords." in lectora.text(), "the other rules")
        desktop.wait_until(lambda: any("/a/b?c" in call for call in self.spoken()), "all of the address")

    def test_a_scan_is_heard_from_its_first_page_on_while_the_others_come(self):
        """The program that recognises text waits with each page but the first until it may go on."""
        programs = self.folder("programs")
        self.file("programs/tesseract", """#!/bin/sh
            case "$*" in *list-langs*) printf 'List (1):\\neng\\n'; exit ;; esac
            page=$(($(cat "$HOME/page" 2>/dev/null || echo 0) + 1))
            echo $page >"$HOME/page"
            while [ $page -gt 1 ] && [ ! -e "$HOME/go$page" ]; do sleep 0.05; done
            printf 'This is what page %s says.\\n\\f' $(echo one two three | cut -d' ' -f$page)""")
        os.chmod(os.path.join(programs, "tesseract"), 0o755)
        path = f"{programs}:{os.environ['PATH']}"
        self.card.tell("speed 2")
        lectora = self.start(PATH=path)
        self.choose(lectora, "ctrl+shift+o", "Locate File", self.file("scan.pdf", pdf([""] * 3)))
        pages = [f"This is what page {name} says." for name in ("one", "two", "three")]
        desktop.wait_until(lambda: lectora.text() == pages[0], "the first page")
        desktop.wait_until(lambda: "Waiting for the next page" in lectora.status(), "its end")
        self.picture("scan-awaited")
        # What the user writes stays, and so does the place of it.
        lectora.focus()
        lectora.text_box().queryComponent().grabFocus()
        desktop.press_keys("ctrl+End", "space", "a")
        desktop.wait_until(lambda: lectora.text() == pages[0] + " a", "what was typed")
        self.card.tell("speed 0.3")
        self.file("go2", "")
        desktop.wait_until(lambda: lectora.text() == f"{pages[0]} a\n\n{pages[1]}", "the second page")
        desktop.wait_until(lambda: lectora.highlighted() == pages[1], "the second page to be heard")
        desktop.press_keys("b")
        desktop.wait_until(lambda: " ab\n" in lectora.text(), "what was typed")
        # Nobody saves a part for the whole.
        desktop.press_keys("ctrl+s")
        lectora.find("label", "scan.pdf")
        self.picture("scan-save")
        lectora.press("push button", "Cancel")
        desktop.wait_until(lambda: len(lectora.windows()) == 1, "the end of the command")
        self.file("go3", "")
        desktop.wait_until(lambda: lectora.text() == f"{pages[0]} ab\n\n{pages[1]}\n\n{pages[2]}\n", "the last page")
        desktop.wait_until(lambda: lectora.highlighted() == pages[2], "the last page to be heard")
        # The pages are one step, whatever was written between them.
        lectora.focus()
        lectora.text_box().queryComponent().grabFocus()
        lectora.type("Escape", "ctrl+z", "ctrl+z")
        self.assertEqual(lectora.text(), "\n\n".join(pages) + "\n")
        # What takes so long is done once: an audiobook is made of what stands in the window.
        desktop.press_keys("ctrl+alt+a")
        desktop.wait_until(lambda: lectora.shown("table cell", "scan"), "the document in the list")
        self.assertEqual(open(os.path.join(desktop.HOME, "page")).read(), "3\n")
        desktop.press_keys("Escape")
        desktop.wait_until(lambda: len(lectora.windows()) == 1, "the end of the list")
        lectora.type("ctrl+z")
        self.assertEqual(lectora.text(), "")
        # An end in the middle is told at the next start.
        scan = os.path.join(desktop.HOME, "scan.pdf")
        for name in ("page", "go2", "go3"):
            os.remove(os.path.join(desktop.HOME, name))
        self.choose(lectora, "ctrl+o", "Locate File", scan)
        desktop.wait_until(lambda: lectora.text() == pages[0], "the first page")
        desktop.wait_until(lambda: "%, on a page that is still to come" in lectora.status(), "the place to be told")
        kept = os.path.join(desktop.HOME, ".quillon/lectora/text")
        desktop.wait_until(lambda: open(kept).read() == pages[0], "it to be kept")
        lectora.end()
        lectora = self.start(PATH=path)
        desktop.wait_until(lambda: "Only the first pages" in lectora.status(), "what is missing")
        # The place that was kept on the last page is offered when that has come.
        os.remove(os.path.join(desktop.HOME, "page"))
        self.file("go2", "")
        self.choose(lectora, "ctrl+o", "Locate File", scan)
        desktop.wait_until(lambda: lectora.text() == f"{pages[0]}\n\n{pages[1]}", "the second page")
        self.assertFalse(lectora.shown("push button", "Go On"))
        lectora.focus()
        self.file("go3", "")
        desktop.wait_until(lambda: lectora.shown("push button", "Go On"), "the offer")
        desktop.press_keys("alt+g")
        desktop.wait_until(lambda: lectora.highlighted() == pages[2], "the last page to be heard")


if __name__ == "__main__":
    unittest.main()
