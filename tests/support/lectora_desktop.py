"""The real program for tests (and script/demo.py): its widgets, real keys, and the sound card.

Runs below tests/support/virtual-desktop. Widgets are read through the accessibility bus; keys and
clicks are real ones.
"""
import array
import math
import operator
import os
import subprocess
import time
import wave

import accessible_roles
import pyatspi
import waiting

HERE = os.path.dirname(os.path.realpath(__file__))
DESKTOP = os.environ["LECTORA_DESKTOP"]
BUILD = os.environ["LECTORA_BUILD"]
HOME = os.environ["HOME"]
SPEECH = os.path.join(HOME, "speech.wav")

PATIENCE, TimeOut, wait_until = waiting.PATIENCE, waiting.TimeOut, waiting.wait_until

accessible_roles.use_names_of_tests()


# A click that comes sooner may be taken for the second of a double click.
DOUBLE_CLICK = 0.5

# Where a widget stands that is not drawn.
NOWHERE = -(2**31)


def xdotool(*arguments):
    deadline = time.monotonic() + PATIENCE
    while True:
        run = subprocess.run(
            ["xdotool", *map(str, arguments)],
            capture_output=True,
            text=True,
            check=False,
            timeout=PATIENCE,
        )
        # A window that goes while it looks ends it: that is no answer.
        if arguments[0] != "search" or "X Error" not in run.stderr or time.monotonic() > deadline:
            return run.stdout


def window_property(window, name, *change):
    """What a window's property says; it is set first when a format and a value are given."""
    ask = ["xprop", "-id", str(window), *change, name]
    run = subprocess.run(ask, capture_output=True, text=True, check=False, timeout=PATIENCE)
    return run.stdout.partition(" = ")[2].strip()


def press_keys(*keys):
    xdotool("key", "--delay", "20", *keys)


def screenshot(path, window="root"):
    """A PNG of the screen, or of a window with its frame; without the pointer's tooltips."""
    os.makedirs(os.path.dirname(os.path.realpath(path)), exist_ok=True)
    xdotool("mousemove", 0, 0, "sleep", 0.1)
    subprocess.run(["import", "-frame", "-window", window, path], check=True, timeout=PATIENCE)


def tell_engine(*lines):
    """What the fake engine (tests/support/engine) does from now on."""
    with open(os.path.join(DESKTOP, "engine"), "w") as file:
        file.write("\n".join(lines) + "\n")


def engine_calls():
    try:
        with open(os.path.join(DESKTOP, "engine.log"), encoding="utf-8", errors="replace") as file:
            return file.read().splitlines()
    except OSError:
        return []


def forget_engine_calls():
    open(os.path.join(DESKTOP, "engine.log"), "w").close()


class Sound:
    def __init__(self, path):
        with wave.open(path) as file:
            self.rate, self.channels = file.getframerate(), file.getnchannels()
            self.samples = array.array("h", file.readframes(file.getnframes()))

    @property
    def frames(self):
        return len(self.samples) // self.channels

    def channel(self, number):
        return self.samples[number :: self.channels]


def correlation(first, second):
    length = min(len(first), len(second))
    first, second = first[:length], second[:length]
    norm = math.sqrt(sum(map(operator.mul, first, first)) * sum(map(operator.mul, second, second)))
    return sum(map(operator.mul, first, second)) / norm if norm else 0.0


def best_correlation(first, second, most_lag):
    """The highest correlation with either sound shifted by up to most_lag samples."""
    probe = range(0, most_lag + 1)
    return max(
        max(correlation(first[lag:], second) for lag in probe),
        max(correlation(first, second[lag:]) for lag in probe),
    )


class Card:
    """A virtual sound card; see tests/support/vcard/card_folder.h for what it can be told."""

    def __init__(self, number=0):
        self.folder = os.path.join(os.environ["LECTORA_VCARD"], f"card{number}")
        os.makedirs(self.folder, exist_ok=True)
        self.seen = len(self.streams())

    def tell(self, *lines):
        """Replaces what the card is told, as "rates 48000", "fault vanish 9000"."""
        fresh = os.path.join(self.folder, "settings.new")
        with open(fresh, "w") as file:
            file.write("\n".join(("name Virtual Card A", "element Master 0 87", *lines)) + "\n")
        os.replace(fresh, os.path.join(self.folder, "settings"))
        try:
            os.unlink(os.path.join(self.folder, "gone"))
        except FileNotFoundError:
            pass

    def streams(self):
        return sorted(name[:-4] for name in os.listdir(self.folder) if name.endswith(".wav"))

    def next_stream(self, seconds=PATIENCE):
        """The name of the next stream that the test has not asked for yet."""
        wait_until(lambda: len(self.streams()) > self.seen, "a stream at the card", seconds)
        self.seen += 1
        stream = self.streams()[self.seen - 1]
        wait_until(lambda: self.events(stream), "the stream's first event", seconds)
        return stream

    def events(self, stream):
        """(monotonic seconds, event, frames received, frames played, more) of each log line."""
        with open(os.path.join(self.folder, stream + ".log")) as file:
            rows = [line.split() for line in file]
        return [
            (int(row[0]) / 1e6, row[1], int(row[2]), int(row[3]), [int(word) for word in row[4:]])
            for row in rows
        ]

    def wait_for(self, stream, event, seconds=PATIENCE):
        return wait_until(
            lambda: [row for row in self.events(stream) if row[1] == event],
            f"'{event}' at the card",
            seconds,
        )[0]

    def sound(self, stream):
        return Sound(os.path.join(self.folder, stream + ".wav"))


class Lectora:
    """The real program. Ends with the object; what it left running is told by leftovers()."""

    clicked = None, 0.0  # where, and when by the monotonic clock
    main_window = None
    settled = 0  # times

    def __init__(
        self,
        *arguments,
        program="lectora",
        fake_engine=True,
        path=None,
        asks=False,
        **environment,
    ):
        """asks: whether the first start asks its question, as it does in a fresh home."""
        everything = dict(os.environ, **environment)
        if not asks:
            answers = os.path.join(everything["HOME"], ".quillon/lectora")
            os.makedirs(answers, exist_ok=True)
            with open(os.path.join(answers, "hotkeys"), "w") as file:
                file.write("offered=1\r\n")
        if path is not None:
            everything["PATH"] = path
        if fake_engine:
            everything["PATH"] = os.path.join(HERE, "engine") + ":" + everything["PATH"]
        self.started = time.monotonic()
        self.process = subprocess.Popen(
            [os.path.join(BUILD, "bin", program), *arguments],
            env=everything,
            stdin=subprocess.DEVNULL,
        )

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()

    def end(self):
        self.process.kill()  # the main thread blocks every signal that can be blocked
        self.process.wait()

    def alive(self):
        return self.process.poll() is None

    # Widgets.

    def application(self):
        return next(
            each
            for each in pyatspi.Registry.getDesktop(0)
            if each and each.get_process_id() == self.process.pid
        )

    def walk(self, role, name=None):
        """The widgets of that role and name, those of the newest window first.

        A program that waits for the engine answers each question here only once in 75 ms, so that
        whoever needs one widget should not ask for all.
        """

        def below(widget):
            its = widget.getRoleName()
            if its == role and (name is None or widget.name == name):
                yield widget
            if role not in _BELOW.get(its, (role,)):
                return
            for child in widget:
                if child:
                    yield from below(child)

        for window in reversed(list(self.application())):
            if window:
                yield from below(window)

    def find_all(self, role, name=None):
        return list(self.walk(role, name))

    def find(self, role, name=None, seconds=PATIENCE):
        what = f"a {role} '{name or ''}'"
        return wait_until(lambda: next(self.walk(role, name), None), what, seconds)

    def active_window(self, role, name, seconds=PATIENCE):
        """The window or dialog that has the keyboard, as it knows itself."""
        return wait_until(
            lambda: next(
                each
                for each in self.application()
                if (each.getRoleName(), each.name) == (role, name) and self.has_keyboard(each)
            ),
            f"the {role} '{name}'",
            seconds,
        )

    @staticmethod
    def has_keyboard(window):
        return window.getState().contains(pyatspi.STATE_ACTIVE)

    def windows(self):
        """The X windows that it shows; dialogs carry the main window's title too."""
        mine = xdotool("search", "--onlyvisible", "--all", "--pid", self.process.pid, "--name", "Lectora")
        # The search does not mind case, and a tooltip is named after the program.
        return [
            window
            for window in mine.split()
            if "Lectora" in (name := xdotool("getwindowname", window)) and "Player" not in name
        ]

    def window(self, seconds=PATIENCE):
        return wait_until(self.windows, "the main window", seconds)[0]

    def settle(self, seconds=PATIENCE):
        """Until it has done what was asked of it, as it says itself. A long text that is being read
        keeps it at work."""
        if self.main_window is None:
            kind = "_NET_WM_WINDOW_TYPE"
            self.main_window = next(
                each for each in self.windows() if window_property(each, kind) == kind + "_NORMAL"
            )
        self.settled += 1
        asked = str(self.settled)
        ask = "_LECTORA_TELL_WHEN_IDLE"
        window_property(self.main_window, ask, "-f", ask, "32c", "-set", ask, asked)
        wait_until(
            lambda: window_property(self.main_window, "_LECTORA_IDLE") == asked, "it to rest", seconds
        )

    def type(self, *keys):
        """Presses the keys, and waits until all is done that they ask for."""
        press_keys(*keys)
        self.settle()

    def focus(self):
        xdotool("windowactivate", "--sync", self.window())

    def box_text(self):
        """Everything that the topmost message box says; '' without a box."""
        box = next(self.walk("alert"), None)
        return "\n".join(label.name for label in _labels(box)) if box else ""

    def wait_for_box(self, text, seconds=PATIENCE):
        found = wait_until(
            lambda: text in self.box_text() and self.box_text(), f"a box saying '{text}'", seconds
        )
        wait_until(lambda: self.has_keyboard(next(self.walk("alert"))), "the box's focus")
        return found

    def text_box(self):
        return self.find("text", "Text to read")

    def text(self):
        return self.text_box().queryText().getText(0, -1)

    def set_text(self, text):
        self.text_box().queryEditableText().setTextContents(text)

    def highlighted(self):
        """The stretch of the text box that has a background of its own."""
        text = self.text_box().queryText()
        at, end = 0, text.characterCount
        while at < end:
            attributes, start, at = text.getAttributeRun(at, False)
            if any(each.startswith("bg-color:") for each in attributes):
                return text.getText(start, at)
        return ""

    def status(self):
        return self.find("status bar").name

    def place(self, widget):
        """Where it stands on the screen."""
        return widget.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)

    def click(self, widget):
        """Presses the widget with the pointer, where it stands on the screen."""
        window = widget
        while window.getRoleName() not in ("alert", "dialog", "frame", "window", "menu"):
            window = window.parent
        # A new dialog stands in its place once the window manager gives it the keyboard.
        if window.getRoleName() in ("alert", "dialog"):
            wait_until(lambda: self.has_keyboard(window), f"the window of '{widget.name}'")
        # A question may be answered before what moves the widget is done.
        places = []
        while len(places) < 3 or len(set(places[-3:])) > 1:
            places.append(tuple(self.place(widget)))
            x, y, width, height = places[-1]
            xdotool("mousemove", x + width // 2, y + height // 2)
        place, when = self.clicked
        if place == places[-1] and time.monotonic() < when + DOUBLE_CLICK:
            time.sleep(DOUBLE_CLICK)
        xdotool("click", 1)
        self.clicked = places[-1], time.monotonic()

    def press(self, role, name):
        self.click(self.find(role, name))

    def can_press(self, role, name):
        return self.find(role, name).getState().contains(pyatspi.STATE_SENSITIVE)

    def choose(self, *names):
        """Goes through the menu bar with the pointer."""
        for name in names:
            roles = ("menu item", "check menu item") if name == names[-1] else ("menu",)
            self.click(wait_until(lambda: self.drawn(roles, name), f"'{name}' in its menu"))

    def drawn(self, roles, name):
        """The widget, once it is drawn. What an item says of its state may be remembered from before
        its menu was open; its place is not."""
        for role in roles:
            for each in self.walk(role, name):
                if self.place(each).x > NOWHERE:
                    return each
        return None

    def tray_icon(self):
        """Its X window, in the tray."""
        return wait_until(tray_icons, "the tray icon")[0]

    def press_tray_icon(self, button):
        xdotool("mousemove", "--window", self.tray_icon(), 8, 8, "click", button)

    def hide(self):
        """Closes the window into the tray."""
        self.tray_icon()
        self.focus()
        press_keys("alt+F4")
        wait_until(lambda: not self.windows(), "the window to hide")

    def shown(self, role, name):
        """The widget when it is on the screen; None when there is none, or hidden."""
        return next(
            (each for each in self.walk(role, name) if each.getState().contains(pyatspi.STATE_SHOWING)),
            None,
        )

    def press_popped_up(self, name):
        """An item of the menu that has popped up."""
        self.click(wait_until(lambda: self.shown("menu item", name), f"the item '{name}'"))

    def exit(self):
        """Ends it as its user does, and gives back the exit status."""
        self.focus()
        self.choose("Lectora", "Exit (Turn Off)")
        self.wait_for_box("Confirm Exit")
        self.press("push button", "No")
        return self.process.wait(PATIENCE)

    # The process as the kernel sees it.

    def threads(self):
        return len(os.listdir(f"/proc/{self.process.pid}/task"))

    def descriptors(self):
        folder = f"/proc/{self.process.pid}/fd"
        return sorted(
            filter(None, (_link(os.path.join(folder, name)) for name in os.listdir(folder)))
        )

    def cpu_seconds(self):
        with open(f"/proc/{self.process.pid}/stat") as file:
            fields = file.read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def resident_megabytes(self):
        with open(f"/proc/{self.process.pid}/status") as file:
            return next(int(line.split()[1]) for line in file if line.startswith("VmRSS")) / 1024


# What there is in the parts of the main window that hold many widgets.
_BELOW = {"menu bar": ("menu", "menu item", "check menu item"), "tool bar": ("push button",)}


def _labels(widget):
    found = [widget] if widget.getRoleName() == "label" else []
    for child in widget:
        if child:
            found += _labels(child)
    return found


def _link(path):
    try:
        # Pipes and sockets carry a number that changes; their kind is what counts.
        return os.readlink(path).split("[")[0]
    except OSError:
        return None


def tray_icons():
    return xdotool("search", "--onlyvisible", "--name", "^TrayIcon$").split()


def processes():
    """Process id -> command line of everything in this desktop, known by its environment."""
    mark = b"LECTORA_DESKTOP=" + os.fsencode(DESKTOP) + b"\0"
    found = {}
    for name in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{name}/environ", "rb") as file:
                if mark not in file.read():
                    continue
            with open(f"/proc/{name}/cmdline", "rb") as file:
                found[int(name)] = file.read().replace(b"\0", b" ").decode(errors="replace").strip()
        except OSError:
            pass
    return found
