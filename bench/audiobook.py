#!/usr/bin/python3
"""An audiobook beside the engine and the encoder alone, read back by other programs.

    bench/audiobook.py [-v VOICE] PROGRAM_FOLDER DOCUMENT [TYPE...]

For each type (mp3, opus, m4b): wall and processor time of lectora-say, of espeak-ng over the same
text, and of the encoder over the engine's sound, in this order and then backwards, the better of
both; memory; the most that the disk holds meanwhile, as WAV and in all; size; what ffprobe, mutagen-inspect and
opusinfo say of chapters, tags and cover; and how far behind its mark each chapter begins, by the
correlation with the engine's own sound of its title.

A program that ignores the ends of its children is never told their time: engine and encoders are
found through commands of their names, which write it down.
"""
import argparse
import collections
import json
import os
import re
import shutil
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


TAGS = ("title", "artist", "album", "language")
CHAPTER = r"^(?:CHAP[=:]|\s*CHAPTER\d+=)"  # as mutagen-inspect and opusinfo tell one
Run = collections.namedtuple("Run", "wall processor megabytes wav disk")
COUNTED = """#!/bin/bash
{program} "$@"
status=$?
times >>{log}
exit $status
"""


def count_helpers(folder):
    """Commands in a folder that goes before PATH, and the file in which they tell their time."""
    log = os.path.join(folder, "times")
    os.mkdir(os.path.join(folder, "counted"))
    for name in ("espeak-ng", "lame", "ffmpeg"):
        path = os.path.join(folder, "counted", name)
        with open(path, "w") as file:
            file.write(COUNTED.format(program=shutil.which(name), log=log))
        os.chmod(path, 0o755)
    return log


def told_seconds(log):
    """Of lines like "0m1.234s 0m0.567s", the commands' own among them."""
    if not os.path.exists(log):
        return 0
    with open(log) as file:
        return sum(int(m) * 60 + float(s) for m, s in re.findall(r"(\d+)m([\d.]+)s", file.read()))


def disk_megabytes(folder):
    """What stands there of the book, as WAV and in all."""
    wav = whole = 0
    for at, _, names in os.walk(folder):
        for name in names:
            if name.startswith("plain.") or name in ("text", "cover.png"):  # of the engine and the encoder alone
                continue
            try:
                path = os.path.join(at, name)
                size = os.path.getsize(path)
                whole += size
                with open(path, "rb") as file:
                    wav += size if file.read(4) == b"RIFF" else 0
            except OSError:  # it has gone meanwhile
                pass
    return wav / 1e6, whole / 1e6


def peak_megabytes(process):
    """By now. What a process is told of its child counts what this one was before it ran anything."""
    try:
        with open(f"/proc/{process}/status") as file:
            return int(re.search(r"VmHWM:\s+(\d+)", file.read())[1]) / 1024
    except (OSError, TypeError):  # it has gone meanwhile
        return 0


def timed(command, folder, log=None):
    """Wall and processor seconds, MB of the program itself, of WAV files and of all files at once."""
    environment = {**os.environ, "TMPDIR": folder}
    if log:
        environment["PATH"] = os.path.join(folder, "counted") + ":" + os.environ["PATH"]
        open(log, "w").close()
    begin = time.monotonic()
    process = subprocess.Popen(command, cwd=folder, stderr=subprocess.DEVNULL, env=environment)
    wav = disk = memory = 0
    while (ended := os.wait4(process.pid, os.WNOHANG))[0] == 0:
        as_wav, in_all = disk_megabytes(folder)
        wav, disk = max(wav, as_wav), max(disk, in_all)
        memory = max(memory, peak_megabytes(process.pid))
        time.sleep(0.1)
    wall = time.monotonic() - begin
    _, status, usage = ended
    process.returncode = status
    if status != 0:
        raise SystemExit(f"{command[0]} failed")
    processor = usage.ru_utime + usage.ru_stime + (told_seconds(log) if log else 0)
    return Run(wall, processor, memory, wav, disk)


def sound(command, folder):
    raw = subprocess.run(command, cwd=folder, capture_output=True, check=True).stdout
    return numpy.frombuffer(raw, "<i2").astype(float)


def decoded(path, begin, seconds):
    command = ["ffmpeg", "-v", "error", "-ss", str(begin), "-t", str(seconds), "-i", path, "-map", "0:a",
               "-f", "s16le", "-ac", "1", "-ar", str(RATE), "-"]
    return sound(command, None)


def lateness(heard, own):
    """Milliseconds that `own` stands behind the beginning of `heard`, and the correlation there."""
    own = own[numpy.flatnonzero(abs(own) > 50)[0] :][:RATE]
    own = own - own.mean()
    count = len(heard) - len(own) + 1
    size = len(heard) + len(own)
    alike = numpy.fft.irfft(numpy.fft.rfft(heard, size) * numpy.fft.rfft(own, size).conj(), size)[:count]
    sums, squares = (numpy.concatenate(([0], numpy.cumsum(heard**power))) for power in (1, 2))
    each = (squares[-count:] - squares[:count]) - (sums[-count:] - sums[:count]) ** 2 / len(own)
    likeness = alike / numpy.sqrt(numpy.maximum(each, 1) * (own**2).sum())
    best = int(likeness.argmax())
    return best * 1000 / RATE, float(likeness[best])


def compare(kind, commands, folder, log, count):
    """Ours beside engine and encoder alone, the best of so many runs of each."""
    runs = {name: [] for name in commands}
    for _ in range(count):
        for name, command in commands.items():
            runs[name].append(timed(command, folder, log if name == "lectora-say" else None))
        os.remove(os.path.join(folder, "plain.wav"))
    best = {name: min(each) for name, each in runs.items()}
    for name, run in best.items():
        print(f"{kind:5} {name:12} wall {run.wall:7.1f} s  processor {run.processor:7.1f} s  {run.megabytes:5.0f} MB")
    ours, cores = best["lectora-say"], os.cpu_count()
    slower = max(best["engine"].wall, best["encoder"].wall)
    work = best["engine"].processor + best["encoder"].processor
    print(f"{kind:5} processor time {ours.processor / work:.2f} of engine and encoder together; wall "
          f"{ours.wall * cores / slower:.2f} of the slower alone divided by the cores, {ours.wall * cores / work:.2f} "
          f"of the work of both divided by them; on the disk at most {ours.wav:.0f} MB as WAV, {ours.disk:.0f} MB "
          f"in all", flush=True)


def read_back(kind, book, voice, folder):
    """What other programs say of the book, and where its chapters are heard."""
    shown = ["ffprobe", "-v", "error", "-show_chapters", "-show_format", "-show_streams", "-of", "json", book]
    told = json.loads(subprocess.run(shown, capture_output=True, check=True).stdout)
    hours = float(told["format"]["duration"]) / 3600
    pictures = sum(each["codec_type"] == "video" for each in told["streams"])
    tags = {**told["streams"][0].get("tags", {}), **told["format"].get("tags", {})}
    named = ", ".join(f"{name} {value!r}" for name, value in tags.items() if name.lower() in TAGS)
    print(f"{kind:5} {hours:.2f} hours, {os.path.getsize(book) / 1e6:.1f} MB, {len(told['chapters'])} chapters, "
          f"{pictures} cover, {named}")
    if kind != "m4b":  # which none of these knows more of
        judge = "opusinfo" if kind == "opus" else "mutagen-inspect"
        judged = subprocess.run([judge, book], capture_output=True, check=True, text=True).stdout
        print(f"{kind:5} {judge} tells of {len(re.findall(CHAPTER, judged, re.M))} chapters")
    late = []
    with open(os.path.join(folder, "text"), encoding="utf-8") as file:
        lines = [line.strip() for line in file]
    for chapter in told["chapters"]:
        # Numbers stand before titles in the text alone.
        title = chapter["tags"]["title"]
        heading = next((line for line in lines if line.endswith(title)), title)
        own = sound(["espeak-ng", "-v", voice, "--stdout", heading], folder)[22:]
        late.append(lateness(decoded(book, float(chapter["start_time"]), 2.5), own))
    sure = [ms for ms, correlation in late if correlation > 0.6]
    print(f"{kind:5} {len(sure)} of {len(late)} chapters were recognised by their headings and begin "
          f"{min(sure):.0f} to {max(sure):.0f} ms behind their marks", flush=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("-v", "--voice", default="en-us")
    parser.add_argument("--runs", type=int, default=2)
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
        picture = ["ffmpeg", "-v", "error", "-f", "lavfi", "-i", "color=s=600x800", "-frames:v", "1", "cover.png"]
        subprocess.run(picture, cwd=folder, check=True)
        log = count_helpers(folder)
        for kind in options.types:
            book = os.path.join(folder, "book." + kind)
            ours = [say, "-f", "--one-voice", "-v", "espeak-ng:" + options.voice, "--audiobook", "--cover=cover.png"]
            ours += ["-o", book, document]
            commands = {"engine": engine, "encoder": ENCODERS[kind], "lectora-say": ours}
            compare(kind, commands, folder, log, options.runs)
            read_back(kind, book, options.voice, folder)


if __name__ == "__main__":
    main()
