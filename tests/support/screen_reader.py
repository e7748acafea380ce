"""A real screen reader in the virtual desktop: what it says when Tab reaches a control.

It runs without a voice; its own log says each utterance. Runs below tests/support/virtual-desktop.
"""
import collections
import os
import re
import subprocess
import tempfile
import unittest

import pyatspi

import accessible_roles
import lectora_desktop as desktop

# A log that is written in whole blocks would hold back the last utterances for ever; what else it
# would tell costs the reader as much time as its speech. On a busy machine a start of more than ten
# seconds is no hang, and the echo of Tab only hides what counts.
_CUSTOMIZATIONS = """
from orca import debug, settings
debug.debugFile.reconfigure(line_buffering=True)
debug.debugLevel = debug.LEVEL_INFO
writer = "println" if hasattr(debug, "println") else "_print_text"
def speech_only(level, text="", *details, write=getattr(debug, writer)):
    if text.startswith("SPEECH OUTPUT") or "^^^^^" in text:
        write(level, text, *details)
setattr(debug, writer, speech_only)
settings.timeoutTime = 0
settings.enableKeyEcho = settings.enableBraille = False
"""

# An utterance, whose further lines are indented, or the end of what an event made the reader say.
_LOGGED = re.compile(r"SPEECH OUTPUT: '(.*?)'(?: voice=\w+)? ?(?:\{[^\n]*\}|None)?\n(?! {18})|(\^{5}) (?:PROCESS|FINISHED)", re.DOTALL)

# What the user hears about states that a key press changes: the state, when set, else.
_SPOKEN_STATES = {
    "check box": (pyatspi.STATE_CHECKED, "checked", "not checked"),
    "radio button": (pyatspi.STATE_CHECKED, "selected", "not selected"),
    "toggle button": (pyatspi.STATE_CHECKED, "pressed", "not pressed"),
}

# What takes part in its parent's stop, and what only hands the focus on to its child.
_PARTS = ("table cell", "table column header", "scroll pane", "split pane", "page tab list")


class ScreenReader:
    def __init__(self):
        if accessible_roles.IS_NEWER:
            # It tells the name behind the role, leaves some roles out, and says less of a list.
            raise unittest.SkipTest("the words of Debian 13's screen reader differ from Debian 12's")
        self._folder = tempfile.mkdtemp(prefix="screen-reader-", dir=desktop.DESKTOP)
        with open(os.path.join(self._folder, "orca-customizations.py"), "w") as file:
            file.write(_CUSTOMIZATIONS)
        log = os.path.join(self._folder, "log")
        open(log, "w").close()
        self._log = open(log, encoding="utf-8", errors="replace")
        self._unread, self._logged = "", []
        self._hide_others()
        output = os.path.join(self._folder, "output")
        with open(output, "w") as file:
            self.process = subprocess.Popen(
                ["orca", "--user-prefs", self._folder, "--debug-file", log],
                env=dict(os.environ, PATH=self._folder + ":" + os.environ["PATH"]),
                stdin=subprocess.DEVNULL,
                stdout=file,
                stderr=file,
            )
        try:
            self.wait_until_said("Screen reader on.")
        except AssertionError as error:
            with open(output) as file:
                raise AssertionError(f"{error}; the screen reader: {file.read()}") from None

    def _hide_others(self):
        """It starts beside no other of the same user, whose desktop this one has nothing to do with;
        its only question about processes is this program's."""
        answer = os.path.join(self._folder, "pgrep")
        with open(answer, "w") as file:
            file.write("#!/bin/sh\nexit 1\n")
        os.chmod(answer, 0o700)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()

    def end(self):
        self.process.kill()
        self.process.wait()
        self._log.close()

    def _read_log(self):
        """The utterances, and None where an event has ended."""
        self._unread += self._log.read()
        end = 0
        for match in _LOGGED.finditer(self._unread):
            self._logged.append(None if match[2] else " ".join(match[1].split()))
            end = match.end()
        self._unread = self._unread[end:]
        return self._logged

    def mark(self):
        """The present moment, for said_since."""
        return len(self._read_log())

    def said_since(self, mark):
        return " ".join(filter(None, self._read_log()[mark:]))

    def wait_until_said(self, *parts, since=0):
        """Everything said since then, once it holds all these parts."""

        def said():
            assert self.process.poll() is None, "the screen reader has ended"
            heard = self.said_since(since)
            return heard if all(part in heard for part in parts) else None

        try:
            return desktop.wait_until(said, "")
        except desktop.TimeOut:
            raise AssertionError(f"{parts} not said, but: {self.said_since(since)!r}") from None

    def tab_stops(self, window, since=0):
        """Presses Tab through the active window until it comes round, and the arrow keys through what
        is one stop; the stops in their order. The first counts as said when it was said since then.

        Fails at the first control that is not said with its name, its role and its state, when one
        that could have the focus is passed by, and when the way through does not follow the eye.
        """
        stops = [self._heard(_focus(window), since)]
        while len(_focusable(window)) > 1:
            for _ in range(_arrows(stops[-1].widget)):
                stops.append(self._next(window, stops[-1].widget, "Right"))
            following = self._next(window, stops[-1].widget, "Tab")
            if any(following.widget == stop.widget for stop in stops):
                break
            stops.append(following)
        reached = [stop.widget for stop in stops]
        passed_by = [describe(each) for each in _focusable(window) if each not in reached]
        assert not passed_by, f"Tab passes by {passed_by}"
        # Downwards or to the right, but for the one step that begins again.
        places = [stop.widget.queryComponent().getExtents(pyatspi.DESKTOP_COORDS) for stop in stops]
        back = [
            stop.name
            for stop, to, at in zip(stops, places, places[-1:] + places)
            if to.x <= at.x and to.y <= at.y and (to.x, to.y) != (at.x, at.y)
        ]
        assert len(back) <= 1, f"Tab goes back to {back}"
        return stops

    def go_to(self, window, name):
        """Presses Tab until the focus is on what has the name, and is said."""
        stop, seen = _focus(window), []
        while _name(stop) != name:
            assert stop not in seen, f"Tab does not reach '{name}'"
            seen.append(stop)
            mark = self.mark()
            stop = self._move(window, stop, "Tab")
        if seen:
            self._heard(stop, mark)

    def follow(self, steps, since, paths):
        """Presses the keys of each step once its words are heard, and a last Tab again and again
        until they are; the name of a path is typed as that path. Gives back the moment of the last
        key."""
        tabs = False
        for words, keys in steps:
            if tabs:
                # What is said of one stop decides on the next Tab: none may run ahead of the voice.
                window = active_window()
                stop = self._next(window, _focus(window), "Tab")
                while words not in stop.said:
                    stop = self._next(window, stop.widget, "Tab")
            elif words:
                self.wait_until_told(words, since)
            since = self.mark()
            if keys in paths:
                desktop.xdotool("type", "--delay", "20", paths[keys])
                keys = "Return"
            tabs = keys.endswith("Tab")
            desktop.press_keys(*keys.removesuffix("Tab").split())
        return since

    def wait_until_told(self, words, mark):
        """Until these words were said, and what else there was to say: the rest would be taken for
        the next control's."""
        self.wait_until_said(words, since=mark)
        desktop.wait_until(lambda: self._read_log()[-1] is None, "the end of its speech")

    def _next(self, window, widget, key):
        mark = self.mark()
        return self._heard(self._move(window, widget, key), mark)

    def _move(self, window, widget, key):
        desktop.press_keys(key)
        try:
            return desktop.wait_until(
                lambda: (now := _focus(window)) != widget and now, "the focus to move on"
            )
        except desktop.TimeOut:
            raise AssertionError(f"{key} does not lead on from {describe(widget)}") from None

    def _heard(self, widget, since):
        role, name = widget.getRoleName(), _name(widget)
        assert name, f"a {role} has no name"
        said = self.wait_until_said(name, _spoken_role(widget), _spoken_state(widget), since=since)
        return Stop(widget, role, name, said)


Stop = collections.namedtuple("Stop", "widget role name said")


def active_window():
    """The window or dialog of any program that has the keyboard."""
    return desktop.wait_until(
        lambda: next(
            window
            for program in pyatspi.Registry.getDesktop(0)
            for window in program
            if window.getState().contains(pyatspi.STATE_ACTIVE)
        ),
        "an active window",
    )


def _name(widget):
    """Its own, or that of what labels it."""
    labels = [
        each.getTarget(0).name
        for each in widget.getRelationSet()
        if each.getRelationType() == pyatspi.RELATION_LABELLED_BY
    ]
    return " ".join((widget.name or "".join(labels)).split())


def describe(widget):
    return f"{widget.getRoleName()} {_name(widget)}"


def _spoken_role(widget):
    return "combo box" if widget.parent.getRoleName() == "combo box" else widget.getRoleName()


def _spoken_state(widget):
    states = widget.getState()
    if states.contains(pyatspi.STATE_EXPANDABLE):
        return "expanded" if states.contains(pyatspi.STATE_EXPANDED) else "collapsed"
    state, when_set, otherwise = _SPOKEN_STATES.get(widget.getRoleName(), (None, "", ""))
    return when_set if state and states.contains(state) else otherwise


def _below(widget):
    yield widget
    for child in widget:
        if child and child.getState().contains(pyatspi.STATE_SHOWING):
            yield from _below(child)


def _focus(window):
    """What has the keyboard focus in the window; a list rather than its cell."""
    return desktop.wait_until(
        lambda: next(
            (
                each
                for each in _below(window)
                if each.getState().contains(pyatspi.STATE_FOCUSED)
                and each.getRoleName() not in _PARTS
            ),
            None,
        ),
        "the focus",
    )


def _takes_focus(widget):
    role, states = widget.getRoleName(), widget.getState()
    if role == "combo box":
        # A drop-down list takes the focus and does not tell; with an entry, the entry takes it.
        return not any(child.getRoleName() == "text" for child in widget)
    if role == "radio button" and not states.contains(pyatspi.STATE_CHECKED):
        return False
    return role not in _PARTS and states.contains(pyatspi.STATE_FOCUSABLE)


def _focusable(window):
    """The showing controls that the keyboard can use."""
    return [
        each
        for each in _below(window)
        if _takes_focus(each)
        and each.getState().contains(pyatspi.STATE_SENSITIVE)
    ]


def _arrows(widget):
    """How often an arrow key moves on from here within what is one stop for Tab."""
    bar = widget.parent and widget.parent.parent
    if bar and bar.getRoleName() == "tool bar":
        return len(_focusable(bar)) - 1
    return 0
