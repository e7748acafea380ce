"""What tests of the real program share: a fresh home, a card, a picture of the screen on failure."""
import contextlib
import os
import shutil
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.realpath(__file__)), "../support"))
import lectora_desktop as desktop  # noqa: E402

PICTURES = os.path.join(desktop.BUILD, "screenshots")
SHARE = os.path.join(os.path.dirname(os.path.realpath(__file__)), "../../share")


class DesktopCase(unittest.TestCase):
    def setUp(self):
        shutil.rmtree(desktop.HOME, ignore_errors=True)
        os.mkdir(desktop.HOME)
        desktop.tell_engine()
        desktop.forget_engine_calls()
        self.card = desktop.Card()
        self.card.tell("speed 8")
        self.troubles_before = self._troubles()

    def _troubles(self):
        """How many tests of this run have failed by now."""
        result = self._outcome.result
        return len(result.failures) + len(result.errors)

    def picture(self, name):
        desktop.screenshot(os.path.join(PICTURES, name + ".png"))

    def file(self, name, content):
        path = os.path.join(desktop.HOME, name)
        with open(path, "wb") as file:
            file.write(content.encode() if isinstance(content, str) else content)
        return path

    def folder(self, name):
        path = os.path.join(desktop.HOME, name)
        os.mkdir(path)
        return path

    def store(self, section, **values):
        """Replaces a section of the user's settings."""
        folder = os.path.join(desktop.HOME, ".quillon/lectora")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, section), "w") as file:
            file.writelines(f"{key}={value}\r\n" for key, value in values.items())

    def setting(self, section, key):
        try:
            with open(os.path.join(desktop.HOME, ".quillon/lectora", section)) as file:
                return dict(line.rstrip("\r\n").split("=", 1) for line in file).get(key)
        except FileNotFoundError:
            return None

    def start(self, *arguments, **options):
        """Lectora with its window open; ends with the test."""
        lectora = desktop.Lectora(*arguments, **options)
        self.addCleanup(self._end, lectora)
        lectora.window()
        return lectora

    @contextlib.contextmanager
    def case(self, name):
        """A subtest from the beginning; what it leaves open when it fails ends with it."""
        with self.subTest(name):
            self.setUp()
            lectora = self.start()
            try:
                yield lectora
            except BaseException:
                self.picture(f"failed-{self.id().rsplit('.', 1)[-1]}-{name}".replace(" ", "-"))
                raise
            finally:
                lectora.end()

    def _end(self, lectora):
        if self._troubles() > self.troubles_before and lectora.alive():
            self.picture("failed-" + self.id().rsplit(".", 1)[-1])
        lectora.end()

    def choose(self, lectora, keys, title, path, replaces=False):
        """Answers the file chooser that the keys bring up, and whether the file is to be replaced."""
        # A command before this one may still be at its end, and takes no other.
        lectora.settle()
        lectora.focus()
        desktop.press_keys(keys)
        chooser = desktop.wait_until(
            lambda: desktop.xdotool("search", "--onlyvisible", "--name", title).split(), title
        )[0]
        desktop.xdotool("windowactivate", "--sync", chooser)
        self.picture("chooser")
        # The chooser looks into folders in the background, and drops an answer that comes meanwhile.
        lectora.settle()
        desktop.xdotool("type", "--delay", "10", path)
        lectora.settle()
        desktop.press_keys("Return")
        if replaces:
            lectora.active_window("alert", "Question")
            desktop.press_keys("alt+r")

    def select(self, text):
        """Selects the text in another program, which is given back."""
        process = subprocess.Popen(["xclip", "-quiet", "-selection", "primary"],
            stdin=subprocess.PIPE,
            stderr=subprocess.DEVNULL)
        self.addCleanup(process.kill)
        process.stdin.write(text.encode())
        process.stdin.close()
        desktop.wait_until(lambda: self.selection("primary") == text, "the selection")
        return process

    def selection(self, which):
        command = ["xclip", "-o", "-selection", which]
        return subprocess.run(command, capture_output=True, text=True, timeout=60).stdout

    def spoken(self):
        """What the engine was asked to speak."""
        return [call for call in desktop.engine_calls() if call.startswith("text2wave")]

    def give_keys(self, *keys):
        """The hotkeys kept until the end of the test: (key code, command) of each; the first record is missing, as after a removal."""
        folder = os.path.join(os.environ["LECTORA_ROOT"], "opt/quillon/lectora/etc/hotkey_")
        shutil.rmtree(folder, ignore_errors=True)
        self.addCleanup(shutil.rmtree, folder, ignore_errors=True)  # they are the machine's, not the home's
        os.makedirs(os.path.join(folder, "details_"), exist_ok=True)
        with open(os.path.join(folder, "details"), "w") as file:
            file.write(f"maxid={len(keys) + 1}\r\n")
        for number, (code, command) in enumerate(keys, 1):
            with open(os.path.join(folder, "details_", str(number)), "w") as file:
                file.write(f"key={code}\r\ncommand={command}\r\n")

    def read_aloud(self, lectora):
        """Presses the button and gives back the stream that then played to its end."""
        desktop.wait_until(lambda: not self.is_down(lectora), "the button to come up")
        lectora.press("toggle button", "Read Aloud")
        stream = self.card.next_stream()
        self.card.wait_for(stream, "close")
        return stream

    def is_down(self, lectora):
        button = lectora.find("toggle button", "Read Aloud")
        return button.getState().contains(desktop.pyatspi.STATE_CHECKED)

    def told_status(self):
        """State, title, time and sentence as the running Lectora tells them, hidden or not."""
        command = [os.path.join(desktop.BUILD, "bin/lectora"), "--status"]
        run = subprocess.run(command, capture_output=True, text=True, timeout=desktop.PATIENCE, check=True)
        return run.stdout.rstrip("\n").split("\t")

    def await_status(self, state, sentence=""):
        """Gives back title and time."""
        told = desktop.wait_until(
            lambda: (now := self.told_status())[0] == state and sentence in now[3] and now, f"{state} {sentence}")
        return told[1:3]

    def assert_usable(self, lectora, text):
        """The text is still there, and reading works."""
        self.assertEqual(lectora.text(), text)
        stream = self.read_aloud(lectora)
        self.assertGreater(self.card.sound(stream).frames, 0)
