"""What a screen reader says of the program, which is used by the keyboard alone."""
import os
import subprocess
import tempfile
import unittest

from desktop_case import SHARE, DesktopCase, desktop
from gi.repository import GLib
from screen_reader import ScreenReader, active_window, describe

PROGRAM = "opt/quillon/lectora/bin/lectora"

# From which window, by which control in it and which keys, what is heard then, and what Tab must
# reach where that is a window or page; whatever else can have the focus is walked to and heard too.
MAIN, LOAD, OPTIONS = "frame Lectora", "dialog Locate File to Read Text", "dialog Options"
ASSIGN, QUESTION, BOOKS = "dialog Hot-Key Assignment", "alert Question", "dialog Save as Audiobook"
FIRST_START = (
    (None, None, "", "Do you want to use Lectora from every program? Select a text", "Yes, No"),
    (MAIN, None, "", "Text to read text",
     "Text to read, Choose Voice:, Read Aloud, Save as Speech, Options, Read from a file"),
)
WINDOWS = (
    (MAIN, "Text to read", "ctrl+f", "Find: text", "Find:, Next, Close"),
    (MAIN, "Find:", "z Return", '"z" is not in the text.', None),
    (MAIN, None, "Escape", "Text to read text", None),
    (MAIN, None, "ctrl+k", "Bookmark: ", None),
    (MAIN, None, "ctrl+shift+k", "Bookmarks dialog", "Bookmarks, Rename..., Remove, Go There, Cancel"),
    (MAIN, None, "alt+h a", "Lectora dialog", "OK"),
    (MAIN, None, "ctrl+o", "Locate File to Read Text dialog", "Files, Places, Cancel, Open"),
    (LOAD, None, "slash z Return", "alert Error", "OK"),
    (MAIN, None, "ctrl+alt+v", "Save File as dialog", "Name:, Create Folder, Places, Cancel, Save"),
    (MAIN, None, "ctrl+alt+a", "Save as Audiobook dialog",
     "Documents, Add..., Format:, Voice:, Speed:, Folder:, Start"),
    (BOOKS, "Title and Cover...", "space", "About This Book dialog", "Title:, Author:, Choose Cover..., Chapters, OK"),
    (MAIN, None, "alt+t o", "Options dialog", "General, Choose Format, Format Settings, OK"),
    (OPTIONS, "Format Settings", "space", "Wave Encoder Options dialog", "OK"),
    (OPTIONS, "Choose Format", "Up", "MP3", None),
    (OPTIONS, "Format Settings", "space", "alert Information. MP3 Settings are", "OK"),
    (OPTIONS, "Help", "ctrl+Page_Down", "HotKeys page tab", "System Wide HotKeys, Add..., Change..."),
    (OPTIONS, "Remove...", "space", "alert Question. Confirms Delete", "Yes, No"),
    (OPTIONS, "Add...", "space", "Hot-Key Assignment dialog", "Command, HotKey Assigned:, OK"),
    # Every key is taken there, Tab as well.
    (ASSIGN, "Change Key", "space", "Press a key or a key combination", None),
    (MAIN, None, "ctrl+shift+r", "", None),
)
# While it reads, the window is called otherwise.
PLAYER = (
    (None, "Volume and Device", "Return F9", "Paused",
     "Play (F9), Stop (Esc), Previous Sentence (Ctrl+Left), Position, Reading Speed, Volume, "
     "Take the Player out of the Window"),
    (None, "Play (F9)", "Escape", "Stopped", None),
)
TROUBLE = (
    (MAIN, "Text to read", "ctrl+shift+r", "Waiting for the first sentence", None),
    (None, None, "Escape", "Stopped", None),
    (MAIN, None, "F10 Up Return", "Confirm Exit", "Yes, No, Cancel"),
    (QUESTION, "Cancel", "space", "Text to read text", None),
)
WIZARDS = {
    "-install": (
        (None, None, "", "Welcome to Lectora panel", "Cancel, Next"),
        (None, None, "alt+n", "What will be placed where panel", "What will be placed where, Back"),
        (None, None, "alt+i", "Lectora is installed.", "Finish"),
    ),
    "-check": (
        (None, None, "", "Check This Computer dialog",
         "What is needed, Check Again, Read a Test Sentence, More voices, Close"),
        (None, "Check Again", "space", "Everything is there.", None),
    ),
    "-uninstall": (
        (None, None, "", "Remove Lectora panel",
         "Also remove the settings that Lectora keeps for all users, Next"),
        (None, None, "alt+n", "Send Uninstall Comments panel", "Reason, Back, Cancel"),
        (None, "Reason", "Down Down", "I have problems using it", None),
        (None, None, "Tab", "Please tell us what problems do you have had? [Optional] text", None),
        (None, "Finish", "space", "Uninstall is complete.", "OK"),
    ),
}
SENTENCES = [f"Number {word} is a sentence that goes on{' and on' * 20}." for word in ("one", "two", "three")]
# The words that are heard, and the keys that they lead to.
TO_SOUND = (
    ("Text to read text", "ctrl+o"),
    ("Locate File to Read Text dialog", "STORY"),
    ("and on", "Tab"),
    ("Choose Voice: editable combo box", "Down"),
    ("voice2", "ctrl+shift+r"),
)
TO_A_PAUSE = (
    ("", "F9"),
    ("Paused", ""),
)
TO_A_FILE_AND_A_HOTKEY = (
    ("", "Escape"),
    ("Stopped", "ctrl+alt+v"),
    ("Save File as dialog. Name: text", "SOUND"),
    ("Saved as", "alt+t o"),
    ("Options dialog", "Tab"),
    ("when computer starts check box", "ctrl+Page_Down"),
    ("System Wide HotKeys. table with 0 rows", "Tab"),
    ("Add... push button", "space"),
    ("Hot-Key Assignment dialog. Command combo box", "Down"),
    ("Read text from clipboard", "Tab"),
    ("Change Key push button", "space"),
    ("Press a key or a key combination", "ctrl+alt+k"),
    ("Ctrl+Alt+K", "alt+o"),
    ("Add... push button", "alt+o"),
    ("Text to read", ""),
)


class ScreenReaderTest(DesktopCase):
    @classmethod
    def setUpClass(cls):
        # Whoever works on the program may use a reader of their own meanwhile.
        other = os.path.join(desktop.DESKTOP, "orca")
        os.symlink("/bin/sleep", other)
        cls.addClassCleanup(subprocess.Popen([other, "10000"]).kill)
        cls.reader = ScreenReader()
        cls.addClassCleanup(cls.reader.end)
        cls.neighbour = desktop.Lectora(HOME=tempfile.mkdtemp(dir=desktop.DESKTOP))
        cls.addClassCleanup(cls.neighbour.end)

    def setUp(self):
        super().setUp()
        self.began = self.reader.mark()

    def keep_waiting(self, *paths):
        """As an earlier run of the program has left them."""
        kept = os.path.join(desktop.HOME, ".quillon/lectora/waiting-files")
        os.makedirs(os.path.dirname(kept), exist_ok=True)
        with open(kept, "w", opener=lambda path, flags: os.open(path, flags, 0o600)) as file:
            file.write("".join(path + "\0" for path in paths))

    def leave(self):
        """Gives the keyboard to another program: the reader hangs, or misses the next window, when
        the one that it is asking about ends. What it says of a window that comes back differs."""
        self.neighbour.focus()
        self.hear("F10", "Lectora menu")
        self.hear("Escape", "Text to read text")

    def walk(self, rows):
        for origin, control, keys, heard, names in rows:
            before = self.reader.mark() if keys else self.began
            while origin and describe(window := active_window()) != origin:
                desktop.press_keys("Escape")
                desktop.wait_until(lambda: active_window() != window, "its end")
            if control:
                self.reader.go_to(active_window(), control)
            desktop.press_keys(*keys.split())
            self.reader.wait_until_said(heard, since=before)
            if names:
                self.picture("heard-" + heard.split(" dialog")[0].replace("/", " ")[:30])
                stops = self.reader.tab_stops(active_window(), before)
                missing = set(names.split(", ")) - {stop.name for stop in stops}
                self.assertFalse(missing, f"{heard}: not reached by Tab")

    def hear_menu(self, menu, keys):
        for item in menu:
            if item.name and item.getState().contains(desktop.pyatspi.STATE_SENSITIVE):
                self.hear(keys, item.name)
                keys = "Down"
                if item.getRoleName() == "menu":
                    self.hear_menu(item, "Right")
                    self.hear("Left", item.name)

    def hear(self, keys, words):
        before = self.reader.mark()
        desktop.press_keys(*keys.split())
        self.reader.wait_until_said(words, since=before)

    def test_every_control_is_said(self):
        self.store("settings", savedefaultformat=1, saveformat=1)
        desktop.tell_engine("text2wave long 600")
        self.card.tell("speed 1")
        lectora = self.start(asks=True)
        lectora.set_text("some words")
        self.walk(FIRST_START)
        self.give_keys((0x40000 | ord("Q"), 1))
        for number, menu in enumerate(lectora.find("menu bar")):
            self.hear_menu(menu, "F10" + " Right" * number + " Down")
            self.hear("Escape Escape", "Text to read text")
        self.walk(WINDOWS)
        lectora.player()
        self.walk(PLAYER)
        lectora.text_box().queryComponent().grabFocus()
        desktop.tell_engine("text2wave hang")
        self.walk(TROUBLE)
        self.leave()

    def test_the_files_that_wait_are_said(self):
        self.keep_waiting("/nowhere/one.txt", "/nowhere/two.txt")
        self.start()
        self.walk((
            (None, None, "ctrl+l", "Waiting Files dialog", "Waiting Files, Down, Remove, Remove All, Cancel, Read Now"),
            (None, None, "Escape", "Text to read text", None),
        ))
        self.leave()

    def test_pause_jumps_and_end_are_said_in_a_word_and_nothing_else_is(self):
        self.card.tell("speed 1")
        lectora = self.start()
        lectora.set_text(" ".join(4 * SENTENCES))
        lectora.focus()
        # With the first key the program no longer tells a late reader where the focus is.
        self.hear("F10", "Lectora menu")
        before = self.reader.mark()
        desktop.press_keys("Escape")
        self.reader.wait_until_told("Text to read text", before)
        heard = {}

        def press(keys, words, then):
            """What is said from these keys until then."""
            before = self.reader.mark()
            desktop.press_keys(*keys.split())
            if words:
                self.reader.wait_until_told(words, before)
            then()
            heard[keys or then.__name__] = self.reader.said_since(before)

        def reads_on(seconds=2, meanwhile=lambda: None):
            # Of all streams: a jump may begin another one a moment later.
            def heard_seconds():
                sounds = map(self.card.sound, self.card.streams())
                return sum(sound.frames / sound.rate for sound in sounds)

            enough = heard_seconds() + seconds
            desktop.wait_until(lambda: meanwhile() or heard_seconds() > enough, "the sound to go on")

        def begins():
            self.card.next_stream()
            lectora.player()
            reads_on()
            loop, told, kinds = GLib.MainContext.default(), [], ("object", "window", "focus")
            while loop.iteration(False):  # what was told of the beginning
                pass
            for kind in kinds:
                desktop.pyatspi.Registry.registerEventListener(told.append, kind)
            reads_on(4, lambda: loop.iteration(False) and None)
            for kind in kinds:
                desktop.pyatspi.Registry.deregisterEventListener(told.append, kind)
            self.assertLess(len(told), 4 * 5, "a crowd of which a screen reader drops some")

        press("F9", "", begins)
        self.reader.go_to(active_window(), "Position")
        press("", "", reads_on)
        press("Up", "%", reads_on)
        press("ctrl+Right", "%", reads_on)
        press("F9 ", "Paused", lambda: None)
        press("ctrl+Left", "%", reads_on)
        # The keyboard may go on from the player to the text by itself.
        before = self.reader.mark()
        press("Escape", "Stopped", lambda: None)
        lectora.text_box().queryComponent().grabFocus()
        self.reader.wait_until_told("Text to read text", before)
        # Not so fast that all of a reading's news come at once: of a crowd a screen reader drops some.
        self.card.tell("speed 5")
        press("ctrl+shift+r", "End of the text", lambda: None)
        for quiet in ("F9", "reads_on"):
            self.assertEqual(heard.pop(quiet), "")
        for keys, said in heard.items():
            self.assertRegex(said, r"^(\d+ %|Paused|Stopped|End of the text)\.?$", keys)

    def test_the_contents_of_a_document_are_said(self):
        page = "<title>Ferries</title><h1>Ferries</h1><h2>Oars</h2><p>Words.<h2>Sails</h2><p>More."
        self.card.tell("speed 20")
        self.start(self.file("ferries.html", page))
        self.card.wait_for(self.card.next_stream(), "close")
        self.walk((
            (None, None, "F6", "tree level", None),
            (None, None, "Home Down", "Oars", None),
            (None, None, "F6", "Text to read text", None),
        ))
        self.leave()

    def test_the_wizards_and_the_check_are_said(self):
        folder = tempfile.mkdtemp(dir=desktop.HOME)
        tree, machine = (os.path.join(folder, name) for name in ("tree", "machine"))
        os.makedirs(os.path.join(machine, "opt"))
        subprocess.run(["cmake", "--install", desktop.BUILD], env={**os.environ, "DESTDIR": tree},
                       check=True, stdout=subprocess.DEVNULL)
        for option, rows in WIZARDS.items():
            self.began, before = self.reader.mark(), desktop.xdotool("getactivewindow")
            program = os.path.join(tree if option == "-install" else machine, PROGRAM)
            # A program that is there before anybody can listen, as on a busy machine.
            subprocess.run(["pkill", "-STOP", "-f", "at-spi2-registryd"], check=True, timeout=desktop.PATIENCE)
            wizard = desktop.Lectora(option, program=program, LECTORA_ROOT=machine)
            self.addCleanup(wizard.end)
            desktop.wait_until(lambda: desktop.xdotool("getactivewindow") != before, "its window")
            subprocess.run(["pkill", "-CONT", "-f", "at-spi2-registryd"], check=True, timeout=desktop.PATIENCE)
            self.walk(rows)
            self.leave()
            wizard.end()

    def test_a_story_is_read_saved_and_given_a_key_by_its_words_alone(self):
        self.give_keys()
        self.store("settings", savedefaultformat=0)
        subprocess.run(["bash", os.path.join(SHARE, "components/mp3el")], check=True, timeout=desktop.PATIENCE)
        paths = {"STORY": self.file("story.txt", " ".join(SENTENCES)), "SOUND": os.path.join(desktop.HOME, "story.mp3")}
        engine = [os.path.join(desktop.HERE, "engine/text2wave"), "-eval", "(voice_voice2)", paths["STORY"]]
        own, decoded = (self.file(f"{name}.wav", "") for name in ("own", "decoded"))
        subprocess.run([*engine, "-o", own], check=True, timeout=desktop.PATIENCE)
        spoken = desktop.Sound(own)
        desktop.forget_engine_calls()
        self.card.tell("speed 1")
        lectora = self.start()
        began = self.reader.follow(TO_SOUND, self.began, paths)
        stream = self.card.next_stream()
        # Until the second sentence is heard, which is a buffer after it was handed over.
        length = 800 * len("".join(SENTENCES[0].split()))
        desktop.wait_until(lambda: self.card.sound(stream).frames > length + 20000, "the second sentence")
        self.assertEqual(self.reader.said_since(began), "", "nothing is said over a reading")
        began = self.reader.follow(TO_A_PAUSE, began, paths)
        lectora.text_box().queryComponent().grabFocus()  # the list of voices has the arrow keys for itself
        self.reader.wait_until_told("Text to read", began)
        began = self.reader.mark()
        desktop.press_keys("ctrl+Left")
        self.reader.wait_until_told("0 %", began)
        self.card.wait_for(stream, "close")
        stream = self.card.next_stream()
        self.assertTrue(all("(voice_voice2)" in call for call in self.spoken()))
        one = slice(800 * len("Number"), 800 * len("Numberone"))
        desktop.wait_until(lambda: self.card.sound(stream).frames > one.stop + 200, "the first sentence")
        heard = self.card.sound(stream)
        self.assertGreater(desktop.best_correlation(heard.samples[one], spoken.samples[one], 200), 0.99)
        self.reader.follow(TO_A_FILE_AND_A_HOTKEY, began, paths)
        subprocess.run(["lame", "--quiet", "--decode", paths["SOUND"], decoded], check=True, timeout=desktop.PATIENCE)
        saved, part = desktop.Sound(decoded), slice(8000, 14000)
        self.assertEqual((saved.rate, saved.channels), (spoken.rate, 1))
        self.assertLess(abs(saved.frames - spoken.frames) / spoken.rate, 0.2)
        self.assertGreater(desktop.best_correlation(saved.channel(0)[part], spoken.channel(0)[part], 2000), 0.9)
        self.select("words of another program")
        desktop.press_keys("ctrl+alt+k")
        desktop.wait_until(lambda: self.spoken()[-1].endswith("words of another program"), "the words")
        self.card.next_stream()
        desktop.press_keys("Escape")
        self.leave()


if __name__ == "__main__":
    unittest.main()
