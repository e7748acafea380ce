"""Inside the virtual desktop: the windows that the documents show. Called by script/pictures.

    pictures.py FOLDER TEXT
"""
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.realpath(__file__)), "../tests/support"))
import lectora_desktop as desktop  # noqa: E402


def main_window(picture, text):
    """While it reads, the sentence that is heard marked."""
    card = desktop.Card()
    with desktop.Lectora(text, fake_engine=False) as lectora:
        card.wait_for(card.next_stream(), "first")
        lectora.player()
        desktop.wait_until(lectora.highlighted, "the highlight")
        desktop.screenshot(picture, lectora.window())


def ready_window(picture):
    """Where nothing is installed."""
    programs = os.path.join(desktop.HOME, "bin")
    os.mkdir(programs)
    os.symlink("/bin/sh", os.path.join(programs, "sh"))
    with desktop.Lectora("-check", fake_engine=False, path=programs) as lectora:
        desktop.wait_until(
            lambda: any("this installs" in label.name for label in lectora.walk("label")), "the advice"
        )
        find = ("search", "--onlyvisible", "--name", "^Check This Computer$")
        desktop.screenshot(picture, desktop.xdotool(*find).split()[0])


def main():
    _, folder, text = sys.argv
    main_window(os.path.join(folder, "main-window.png"), text)
    ready_window(os.path.join(folder, "ready-window.png"))


if __name__ == "__main__":
    main()
