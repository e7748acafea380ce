"""The real program for tests (and script/demo.py): its widgets and real keys.

Runs below tests/support/virtual-desktop. Widgets are read through the accessibility bus; keys and
clicks are real ones. What else a test of the desktop uses has the same name here: waits, the screen,
the engine's double, the sound cards.
"""
import os
import time

import accessible_roles
import pyatspi
from desktop_card import Card, Sound, best_correlation, correlation
from desktop_engine import engine_calls, forget_engine_calls, tell_engine
from desktop_process import BUILD, DESKTOP, HERE, Process, processes
from desktop_screen import press_keys, screenshot, tray_icons, window_property, xdotool
from gi.repository import GLib
from waiting import PATIENCE, TimeOut, wait_until

__all__ = [
    "BUILD", "DESKTOP", "HERE", "HOME", "PATIENCE", "SPEECH",
    "Card", "Lectora", "Sound", "TimeOut",
    "best_correlation", "correlation", "engine_calls", "forget_engine_calls", "press_keys",
    "processes", "pyatspi", "screenshot", "tell_engine", "tray_icons", "wait_until",
    "window_property", "xdotool",
]  # fmt: skip

HOME = os.environ["HOME"]
SPEECH = os.path.join(HOME, "speech.wav")

accessible_roles.use_names_of_tests()


# A click that comes sooner may be taken for the second of a double click.
DOUBLE_CLICK = 0.5

# Where a widget stands that is not drawn.
NOWHERE = -(2**31)


class Lectora(Process):
    """The real program."""

    clicked = None, 0.0  # where, and when by the monotonic clock
    main_window = None
    settled = 0  # times

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
            if role in _WINDOWS or role not in _BELOW.get(its, (role,)):
                return
            for child in _children(widget):
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
        # It may move on while its parts are asked for.
        before, now = None, self._marked_text()
        while now != before:
            before, now = now, self._marked_text()
        return now

    def _marked_text(self):
        return "".join(text for text, _ in self.marked())

    def highlighted_word(self):
        """The word in it that is marked once more."""
        return "".join(text for text, attributes in self.marked() if "underline:single" in attributes)

    def marked(self):
        text = self.text_box().queryText()
        at, end, runs = 0, text.characterCount, []
        while at < end:
            begin = at
            attributes, start, at = text.getAttributeRun(begin, False)
            if at <= begin:  # another text has come that is shorter
                break
            if any(each.startswith("bg-color:") for each in attributes):
                runs.append((text.getText(start, at), attributes))
            elif runs:
                break
        return runs

    def status(self):
        return self.find("status bar").name

    def player(self):
        """Its button "Play", once the player is on the screen."""
        return wait_until(lambda: self.shown("toggle button", "Play (F9)"), "the player")

    def place(self, widget):
        """Where it stands on the screen."""
        return widget.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)

    def click(self, widget, takes_keyboard=True):
        """Presses the widget with the pointer, where it stands on the screen. takes_keyboard: whether
        its dialog does when it comes."""
        window = widget
        while window.getRoleName() not in ("alert", "dialog", "frame", "window", "menu"):
            window = window.parent
        # A new dialog stands in its place once the window manager gives it the keyboard.
        if takes_keyboard and window.getRoleName() in ("alert", "dialog"):
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


# What stands in no other widget.
_WINDOWS = ("alert", "dialog", "frame")

# What there is in the parts of the main window that hold many widgets.
_BELOW = {"menu bar": ("menu", "menu item", "check menu item"), "tool bar": ("push button",)}


def _children(widget):
    """Those that are there: one that goes while it is asked for is none."""
    try:
        return [child for child in widget if child]
    except GLib.GError:
        return []


def _labels(widget):
    found = [widget] if widget.getRoleName() == "label" else []
    for child in _children(widget):
        found += _labels(child)
    return found
