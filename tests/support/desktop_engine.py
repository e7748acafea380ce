"""The double of the speech engine (tests/support/engine): what it is told, and what it was asked."""
import os

DESKTOP = os.environ["LECTORA_DESKTOP"]


def tell_engine(*lines):
    """What it does from now on."""
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
