"""The screen of the virtual desktop: its windows, keys and pictures."""
import os
import subprocess
import time

from waiting import PATIENCE


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


def tray_icons():
    return xdotool("search", "--onlyvisible", "--name", "^TrayIcon$").split()
