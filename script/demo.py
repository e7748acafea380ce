"""Inside the virtual desktop: Lectora reads files to the end. Called by script/run.

    demo.py FOLDER FILE...

Leaves what the card received and screenshots in FOLDER and tells how long each step took.
"""
import os
import shutil
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.realpath(__file__)), "../tests/support"))
import lectora_desktop as desktop  # noqa: E402


def tell(text):
    print("script/run: " + text, flush=True)


def read(lectora, card, folder, number, path, begin):
    name = os.path.splitext(os.path.basename(path))[0]
    stream = card.next_stream(120)
    first = card.wait_for(stream, "first")[0]
    tell(f"{name}: {first - begin:.1f} s until the first sound reached the card")
    time.sleep(1.0)
    picture = os.path.join(folder, f"{number}-{name}.png")
    desktop.screenshot(picture, lectora.window())
    ended = card.wait_for(stream, "close", 24 * 3600)
    sound = card.sound(stream)
    tell(f"{name}: read to the end in {ended[0] - first:.1f} s")
    recording = os.path.join(folder, f"{number}-{name}.wav")
    shutil.copy(os.path.join(card.folder, stream + ".wav"), recording)
    tell(
        f"what the card received: {recording} ({sound.frames / sound.rate:.1f} s, {sound.rate} Hz, "
        f"{sound.channels} channel{'s' if sound.channels > 1 else ''})"
    )
    tell(f"the window while reading: {picture}")
    return any(sound.samples)


def main():
    _, folder, *files = sys.argv
    card = desktop.Card()
    # Several files are handed over one after the other, as a second start does.
    with desktop.Lectora(files[0], fake_engine=False) as lectora:
        try:
            lectora.window(30)
            tell(f"window shown after {time.monotonic() - lectora.started:.1f} s")
            heard = read(lectora, card, folder, 1, files[0], lectora.started)
            for number, path in enumerate(files[1:], 2):
                begin = time.monotonic()
                with desktop.Lectora(path, fake_engine=False) as second:
                    second.process.wait(30)
                heard = read(lectora, card, folder, number, path, begin) and heard
        except desktop.TimeOut as failure:
            desktop.screenshot(os.path.join(folder, "trouble.png"))
            tell(f"it did not work: {failure}; see {folder}/trouble.png")
            return 1
    if not heard:
        tell("the card received nothing but silence")
    return 0 if heard else 1


if __name__ == "__main__":
    sys.exit(main())
