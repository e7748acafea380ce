#!/usr/bin/python3
"""An audiobook beside the engine and the encoder alone, read back by other programs.

    bench/audiobook.py [-v VOICE] PROGRAM_FOLDER DOCUMENT [TYPE...]

For each type (mp3, opus, m4b): wall and processor time of lectora-say, of espeak-ng over the same
text, and of the encoder over the engine's sound, in this order and then backwards, the better of
both; memory; size; what ffprobe says of chapters, tags and cover; and how far behind its mark each
chapter begins, by the correlation with the engine's own sound of its title.
"""
import argparse
import json
import os
import resource
import subprocess
import tempfile
import time

import numpy

RATE = 22050
ENCODERS = {
    "mp3": ["lame", "--quiet", "-m", "m", "-b", "48", "-h", "plain.wav", "plain.mp3"],
    "opus": ["opusenc", "--quiet", "--bitrate", "24", "plain.wav", "plain.opus"],
    "m4b": ["ffmpeg", "-v", "error", "-y", "-i", "plain.wav", "-c:a", "aac", "-b:a", "48k", "plain.m4a"],
}


def timed(command, folder):
    """Wall and processor seconds, and MB of the program itself."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    begin = time.monotonic()
    process = subprocess.Popen(command, cwd=folder, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        raise SystemExit(f"{command[0]} failed")
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    cpu = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return time.monotonic() - begin, cpu, usage.ru_maxrss / 1024


def sound(command, folder):
    raw = subprocess.run(command, cwd=folder, capture_output=True, check=True).stdout
    return numpy.frombuffer(raw, "<i2").astype(float)


def decoded(path, begin, seconds):
    command = ["ffmpeg", "-v", "error", "-ss", str(begin), "-t", str(seconds), "-i", path, "-map", "0:a",
               "-f", "s16le", "-ac", "1", "-ar", str(RATE), "-"]
    return sound(command, None)


def lateness(heard, own):
    """Milliseconds that `own` stands behind the beginning of `heard`, and the correlation there."""
    own = own[numpy.flatnonzero(abs(own) > 50)[0] :][: RATE]
    best = (0, 0)
    for at in range(0, len(heard) - len(own), 8):
        part = heard[at : at + len(own)]
        best = max(best, (float(numpy.corrcoef(part, own)[0, 1]), at))
    return best[1] * 1000 / RATE, best[0]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("-v", "--voice", default="en-us")
    parser.add_argument("folder")
    parser.add_argument("document")
    parser.add_argument("types", nargs="*", default=list(ENCODERS))
    options = parser.parse_args()
    say = os.path.abspath(os.path.join(options.folder, "lectora-say"))
    document = os.path.abspath(options.document)
    with tempfile.TemporaryDirectory(prefix="lectora-book-") as folder:
        with open(os.path.join(folder, "text"), "wb") as text:
            subprocess.run([say, "--text", document], stdout=text, check=True)
        engine = ["espeak-ng", "-v", options.voice, "-f", "text", "-w", "plain.wav"]
        for kind in options.types:
            book = os.path.join(folder, "book." + kind)
            ours = [say, "-f", "--one-voice", "-v", "espeak-ng:" + options.voice, "--audiobook", "-o", book, document]
            commands = {"lectora-say": ours, "engine": engine, "encoder": ENCODERS[kind]}
            timed(engine, folder)
            runs = [(name, timed(commands[name], folder)) for name in [*commands, *reversed(commands)]]
            best = {name: min(each for which, each in runs if which == name) for name in commands}
            for name, (wall, cpu, megabytes) in best.items():
                print(f"{kind:5} {name:12} wall {wall:7.1f} s  processor {cpu:7.1f} s  {megabytes:5.0f} MB")
            slower = max(best["engine"][1], best["encoder"][1])
            work = best["engine"][1] + best["encoder"][1]
            print(f"{kind:5} processor time {best['lectora-say'][1] / work:.2f} of engine and encoder together; "
                  f"wall {best['lectora-say'][0] / max(slower, work / os.cpu_count()):.2f} of the better bound")
            shown = ["ffprobe", "-v", "error", "-show_chapters", "-show_format", "-show_streams", "-of", "json", book]
            told = json.loads(subprocess.run(shown, capture_output=True, check=True).stdout)
            hours = float(told["format"]["duration"]) / 3600
            print(f"{kind:5} {hours:.2f} hours, {os.path.getsize(book) / 1e6:.1f} MB, {len(told['chapters'])} chapters, "
                  f"{sum(each['codec_type'] == 'video' for each in told['streams'])} cover")
            late = []
            for chapter in told["chapters"]:
                own = sound(["espeak-ng", "-v", options.voice, "--stdout", chapter["tags"]["title"]], folder)[22:]
                late.append(lateness(decoded(book, float(chapter["start_time"]), 2.5), own))
            sure = [ms for ms, correlation in late if correlation > 0.6]
            print(f"{kind:5} {len(sure)} of {len(late)} chapters were recognised by their titles and begin "
                  f"{min(sure):.0f} to {max(sure):.0f} ms behind their marks", flush=True)


main()
