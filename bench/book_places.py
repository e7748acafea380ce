#!/usr/bin/python3
"""How fast a long book is heard at another place, and whether its place is kept.

    bench/book_places.py [BUILD_FOLDER [BOOK]]     (build/dev, Debian's guide for maintainers as EPUB)

The installed engine reads the book to a virtual card: to the middle by slider, by search and "Read
from Here", and by headings; then the program is told to end and started again, is killed and
started again. Prints from which press the card had sound in how many seconds, and how many
sentences lie between those heard before and after. Run it with each engine alone
(LECTORA_BENCH_VOICE names the beginning of a voice). Fails only when something does not work at all.
"""
import os
import signal
import statistics
import subprocess
import sys
import time

TOP = os.path.dirname(os.path.dirname(os.path.realpath(__file__)))
SUPPORT = os.path.join(TOP, "tests/support")
BOOK = "/usr/share/doc/debmake-doc/debmake-doc.en.epub"

if "LECTORA_DESKTOP" not in os.environ:
    build = os.path.realpath(sys.argv[1]) if len(sys.argv) > 1 else os.path.join(TOP, "build/dev")
    os.execv(
        os.path.join(SUPPORT, "virtual-desktop"),
        ["virtual-desktop", "--build", build, "--", "/usr/bin/python3", "-B", "-W", "ignore",
         os.path.realpath(__file__), *sys.argv[2:3]],
    )

sys.path.insert(0, SUPPORT)
import lectora_desktop as desktop  # noqa: E402


class Reader:
    def __init__(self, *arguments):
        self.card = desktop.Card()
        self.card.tell("speed 1")
        self.lectora = desktop.Lectora(*arguments, fake_engine=False)
        self.lectora.window()

    def seconds_to_sound(self, act):
        """From the act to the first sound of the stream that it brought."""
        self.card.seen = len(self.card.streams())
        pressed = time.monotonic()
        act()
        return self.card.wait_for(self.card.next_stream(), "first")[0] - pressed

    def keys(self, *keys):
        return lambda: desktop.xdotool("key", *keys)

    def status(self):
        program = os.path.join(desktop.BUILD, "bin/lectora")
        run = subprocess.run([program, "--status"], capture_output=True, text=True, check=True)
        return run.stdout.rstrip("\n").split("\t")

    def sentence(self):
        """The one that is heard, once it has been for a moment."""
        desktop.wait_until(lambda: self.status()[0] == "reading", "the reading")
        return desktop.wait_until(self.lectora.highlighted, "the sentence").strip()

    def end(self, how):
        self.lectora.process.send_signal(how)
        self.lectora.process.wait()


def show(what, seconds):
    print(f"{what:44} {seconds:5.2f} s to the first sound", flush=True)


def engine_alone():
    """What a sentence costs with nothing around it."""
    text = os.path.join(desktop.HOME, "sentence.txt")
    with open(text, "w") as file:
        file.write("This is a sentence as long as many another one in the book is.\n")
    began = time.monotonic()
    subprocess.run(["text2wave", text, "-o", text + ".wav"], check=True)
    print(f"{'the engine alone, a sentence':44} {time.monotonic() - began:5.2f} s", flush=True)


def jump(reader):
    engine_alone()
    position = reader.lectora.find("slider", "Position").queryValue()

    def move(percent):
        def act():
            position.currentValue = percent
        return act

    times = []
    for percent in (50, 20, 80, 35, 65, 50):
        times.append(reader.seconds_to_sound(move(percent)))
        show(f"slider to {percent} %", times[-1])
        time.sleep(1)
    reader.lectora.focus()
    for _ in range(4):
        times.append(reader.seconds_to_sound(reader.keys("ctrl+Next")))
        show("next heading", times[-1])
        time.sleep(1)
    reader.lectora.text_box().queryComponent().grabFocus()
    desktop.press_keys("ctrl+f")
    desktop.xdotool("type", "--delay", "20", "upstream tarball")
    desktop.press_keys("Return", "Return", "Return", "Escape")
    times.append(reader.seconds_to_sound(reader.keys("ctrl+Return")))
    show("search, and read from here", times[-1])
    print(f"{'all of these':44} {statistics.median(times):5.2f} s median, {max(times):.2f} s at most")


def distance(text, before, after):
    """In sentences, about: by the full stops between them."""
    first, second = sorted((text.index(before), text.index(after)))
    return sum(text[first:second].count(mark) for mark in (". ", ".\n", "? ", ": "))


def go_on(reader, how):
    time.sleep(8)
    before = reader.sentence()
    reader.end(how)
    again = Reader()
    text = again.lectora.text()
    again.lectora.focus()
    show(f"started again after {how.name}, Alt+G", again.seconds_to_sound(again.keys("alt+g")))
    after = again.sentence()
    print(f"    heard before: {before[:70]!r}\n    heard after:  {after[:70]!r}")
    print(f"    sentences between them: {distance(text, before, after)}", flush=True)
    return again


def main():
    book = sys.argv[1] if len(sys.argv) > 1 else BOOK
    began = time.monotonic()
    reader = Reader(book)
    reader.card.wait_for(reader.card.next_stream(), "first")
    show("start with the book", time.monotonic() - began)
    reader.lectora.player()
    title, times = reader.status()[1:3]
    print(f"{title}: {times}; {len(reader.lectora.text())} characters")
    jump(reader)
    for how in (signal.SIGTERM, signal.SIGKILL):
        reader = go_on(reader, how)
    reader.end(signal.SIGKILL)


main()
