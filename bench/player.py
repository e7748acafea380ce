#!/usr/bin/python3
"""How the player answers, what it costs, and whether it drifts.

    bench/player.py [BUILD_FOLDER]        (build/dev)

The engine is the stand-in of tests/support/engine and the card a virtual one whose log tells what
was heard when. Prints figures; fails only when something does not work at all.
"""
import os
import sys
import time

TOP = os.path.dirname(os.path.dirname(os.path.realpath(__file__)))
SUPPORT = os.path.join(TOP, "tests/support")
ROUNDS = 9
RATE = 16000

if "LECTORA_DESKTOP" not in os.environ:
    build = os.path.realpath(sys.argv[1]) if len(sys.argv) > 1 else os.path.join(TOP, "build/dev")
    os.execv(
        os.path.join(SUPPORT, "virtual-desktop"),
        ["virtual-desktop", "--build", build, "--", "/usr/bin/python3", "-B", os.path.realpath(__file__)],
    )

sys.path.insert(0, SUPPORT)
import lectora_desktop as desktop  # noqa: E402
from figures import report  # noqa: E402


class Player:
    """A reading of that many seconds in the player, which has the keyboard."""

    def __init__(self, lectora, card, seconds, *settings):
        self.card = card
        card.tell(*settings)
        desktop.tell_engine(f"text2wave long {seconds}")
        lectora.set_text("a story")
        lectora.focus()
        desktop.press_keys("ctrl+shift+r")
        self.stream = self.next("start")[0]
        lectora.player().queryComponent().grabFocus()

    def next(self, event):
        stream = self.card.next_stream()
        return stream, self.card.wait_for(stream, event)[0]

    def press(self, key):
        """When it was pressed."""
        now = time.monotonic()
        desktop.xdotool("key", key)
        return now


def close(card, stream):
    return card.wait_for(stream, "close")[0]


def measure_keys(player):
    """An xdotool key takes some milliseconds of its own, which are in the figures."""
    silence, sound, stopped, moved = [], [], [], []
    for _ in range(ROUNDS):
        time.sleep(0.4)
        pressed = player.press("space")
        silence.append(1000 * (close(player.card, player.stream) - pressed))
        time.sleep(0.2)
        pressed = player.press("space")
        player.stream, began = player.next("start")
        sound.append(1000 * (began - pressed))
        time.sleep(0.3)
        pressed = player.press("ctrl+Down")
        player.stream, began = player.next("start")
        moved.append(1000 * (began - pressed))
    for _ in range(ROUNDS):
        time.sleep(0.3)
        pressed = player.press("Escape")
        stopped.append(1000 * (close(player.card, player.stream) - pressed))
        player.press("F9")
        player.stream = player.next("start")[0]
    report("key to silence, pause", silence)
    report("key to silence, stop", stopped)
    report("key to sound, play after a pause", sound)
    report("position moved to sound", moved)


def switches(pid):
    """Voluntary context switches of every thread: how often they woke up."""
    count = 0
    for task in os.listdir(f"/proc/{pid}/task"):
        with open(f"/proc/{pid}/task/{task}/status") as file:
            count += next(int(line.split()[1]) for line in file if line.startswith("voluntary"))
    return count


def measure_load(lectora, player, seconds=20):
    before = lectora.cpu_seconds()
    time.sleep(seconds)
    share = 100 * (lectora.cpu_seconds() - before) / seconds
    print(f"processor share, playing with meter and waveform   {share:.1f} % of a core   aim: 5 %")
    player.press("space")
    close(player.card, player.stream)
    time.sleep(3)  # the meter falls
    before = switches(lectora.process.pid)
    time.sleep(seconds)
    woken = (switches(lectora.process.pid) - before) / seconds
    print(f"wake-ups a second when paused   {woken:.2f}   aim: 0", flush=True)


def measure_two_hours(lectora, card):
    """A text of two hours at a hundred times a real card's speed."""
    seconds = 7200
    before = lectora.resident_megabytes()
    player = Player(lectora, card, seconds, "speed 100")
    fastest = []
    while card.events(player.stream)[-1][1] != "close":
        fastest.append(lectora.resident_megabytes())
        time.sleep(1)
    frames = card.sound(player.stream).frames
    lost = [row for row in card.events(player.stream) if row[1] == "underrun"]
    print(
        f"two hours of speech: {frames - seconds * RATE:+d} frames against the text's sound, "
        f"{len(lost)} underruns; memory {before:.1f} MB before, {fastest[len(fastest) // 4]:.1f} MB "
        f"after a quarter, {fastest[-1]:.1f} MB at the end"
    )


def main():
    card = desktop.Card()
    card.tell("speed 1")
    desktop.tell_engine()
    with desktop.Lectora() as lectora:
        lectora.window()
        player = Player(lectora, card, 600, "speed 1")
        measure_keys(player)
        measure_load(lectora, player)
        player.press("Escape")
        measure_two_hours(lectora, card)


main()
