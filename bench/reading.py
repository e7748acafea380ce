#!/usr/bin/python3
"""How readings do with the installed engine: first sound, gaps, cost of a save, memory, stopping.

    bench/reading.py [BUILD_FOLDER [VOICE]]        (build/dev, kal_diphone)

lectora-say reads the licence texts of the distribution; text2wave speaks the same text in the same
run. Prints figures; fails only when something does not work at all.
"""
import glob
import os
import select
import signal
import subprocess
import sys
import tempfile
import time

TOP = os.path.dirname(os.path.dirname(os.path.realpath(__file__)))
BUILD = os.path.realpath(sys.argv[1]) if len(sys.argv) > 1 else os.path.join(TOP, "build/dev")
VOICE = sys.argv[2] if len(sys.argv) > 2 else "kal_diphone"
SAY = os.path.join(BUILD, "bin/lectora-say")
READ = [SAY, "-v", VOICE]
TEXT2WAVE = ["text2wave", "-eval", f"(voice_{VOICE})"]
BYTES_PER_SECOND = 32000
TICKS = os.sysconf("SC_CLK_TCK")
# Stands in front of text2wave and adds its processor seconds to a log.
COUNTED_ENGINE = '#!/bin/sh\nexec /usr/bin/time -a -o "$ENGINE_LOG" -f "%U %S" {} "$@"\n'


def make_text(size):
    words = open("/usr/share/common-licenses/GPL-3", encoding="ascii", errors="ignore").read()
    return (words * (size // len(words) + 1))[1000 : 1000 + size]


def written(folder, name, text):
    path = os.path.join(folder, name)
    with open(path, "w", encoding="ascii") as file:
        file.write(text)
    return path


def seconds_of(*command):
    start = time.monotonic()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    return time.monotonic() - start


def stream(path):
    return subprocess.Popen(
        READ + ["-o", "-", path], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL
    )


def measure_first_sound(folder):
    query = min(seconds_of(SAY, "--list-voices") for _ in range(3))
    first = written(folder, "first.txt", make_text(10**5).split(". ")[0] + ".")
    engine = min(
        seconds_of(*TEXT2WAVE, first, "-o", os.path.join(folder, "first.wav")) for _ in range(3)
    )
    print(f"voice query {query:.2f} s; the engine's first sentence {engine:.2f} s")
    for size in (100, 10**4, 10**6, 10**7):
        path = written(folder, f"{size}.txt", make_text(size))
        times = []
        for _ in range(5):
            start = time.monotonic()
            with stream(path) as say:
                say.stdout.read(4096)
                times.append(time.monotonic() - start - query)
                say.send_signal(signal.SIGINT)
                say.stdout.read()
        print(f"  {size:>9} bytes: start to first sound less the query {min(times):.2f} s best, "
              f"{sorted(times)[2]:.2f} s median")


def measure_gaps(path, seconds):
    """A player of no buffer but the pipe's: how long it had nothing to play."""
    with stream(path) as say:
        say.stdout.read(46)
        silent = 0.0
        due = time.monotonic()
        end = due + seconds
        block = BYTES_PER_SECOND // 10
        while due < end:
            begin = time.monotonic()
            if not select.select([say.stdout], [], [], 0)[0]:
                select.select([say.stdout], [], [], 10)
                silent += time.monotonic() - begin
                due = time.monotonic()
            os.read(say.stdout.fileno(), block)
            due += 0.1
            time.sleep(max(0, due - time.monotonic()))
        say.send_signal(signal.SIGINT)
        say.stdout.read()
    print(f"gaps in {seconds} s of listening: {silent * 1000:.0f} ms")


def processor_seconds(pid):
    with open(f"/proc/{pid}/stat") as file:
        fields = file.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / TICKS


def peak_megabytes(pid):
    with open(f"/proc/{pid}/status") as file:
        return int(file.read().split("VmHWM:")[1].split()[0]) / 1024


def engine_seconds(log):
    with open(log) as file:
        return sum(float(number) for line in file for number in line.split())


def measure_save(folder, size):
    path = written(folder, "save.txt", make_text(size))
    os.mkdir(os.path.join(folder, "bin"))
    engine = os.path.join(folder, "bin/text2wave")
    with open(engine, "w") as file:
        file.write(COUNTED_ENGINE.format("/usr/bin/text2wave"))
    os.chmod(engine, 0o755)
    log = os.path.join(folder, "engine.log")
    environment = dict(
        os.environ, ENGINE_LOG=log, PATH=os.path.dirname(engine) + ":" + os.environ["PATH"]
    )
    start = time.monotonic()
    say = subprocess.Popen(
        READ + ["-f", "-o", os.path.join(folder, "save.wav"), path], env=environment
    )
    own = 0.0
    while say.poll() is None:
        own = processor_seconds(say.pid)
        time.sleep(0.02)
    wall = time.monotonic() - start
    cost = own + engine_seconds(log)
    os.remove(log)
    one_wall = seconds_of(
        "env", f"ENGINE_LOG={log}", engine, *TEXT2WAVE[1:], path, "-o", os.path.join(folder, "one.wav")
    )
    one = engine_seconds(log)
    print(f"save of {size} bytes: processor {cost:.1f} s ({own:.2f} s ours), one run {one:.1f} s: "
          f"ratio {cost / one:.2f}; wall {wall:.1f} s against {one_wall:.1f} s")
    ours, theirs = (os.path.getsize(os.path.join(folder, name)) for name in ("save.wav", "one.wav"))
    # The engine gets the text as it stands here, which preparation changes a little.
    print(f"  length against the one run's: {ours / theirs:.4f}")


def measure_memory(path):
    with stream(path) as say:
        for _ in range(100):
            say.stdout.read(BYTES_PER_SECOND // 2)
        print(f"memory at {os.path.getsize(path)} bytes of text: {peak_megabytes(say.pid):.0f} MB")
        say.send_signal(signal.SIGINT)
        say.stdout.read()


def measure_stop(folder, path):
    """While a save has two engines at work."""
    lags = []
    for number in range(5):
        say = subprocess.Popen(
            READ + ["-f", "-o", os.path.join(folder, "stop.wav"), path], stderr=subprocess.DEVNULL
        )
        engines = set()
        while len(engines) < 2 and say.poll() is None:
            engines = {pid for pid in children(say.pid) if "text2wave" in command_of(pid)}
        time.sleep(0.05 * number)
        start = time.monotonic()
        say.send_signal(signal.SIGINT)
        while any(is_running(pid) for pid in engines) or say.poll() is None:
            time.sleep(0.002)
        lags.append(1000 * (time.monotonic() - start))
    print(f"stop to no engine left: {sorted(lags)[2]:.0f} ms median, {max(lags):.0f} ms at most")


def command_of(pid):
    try:
        with open(f"/proc/{pid}/cmdline") as file:
            return file.read()
    except OSError:
        return ""


def children(parent):
    for path in glob.glob("/proc/[0-9]*/stat"):
        try:
            with open(path) as file:
                fields = file.read().rsplit(")", 1)[1].split()
        except OSError:
            continue
        if int(fields[1]) == parent:
            yield int(path.split("/")[2])


def is_running(pid):
    return command_of(pid) != ""


def main():
    with tempfile.TemporaryDirectory(prefix="lectora-bench-") as folder:
        measure_first_sound(folder)
        measure_gaps(os.path.join(folder, "1000000.txt"), 30)
        measure_save(folder, 100000)
        measure_memory(os.path.join(folder, "10000000.txt"))
        measure_stop(folder, os.path.join(folder, "1000000.txt"))


main()
