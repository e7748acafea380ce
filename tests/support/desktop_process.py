"""A program under test as a process: started in the virtual desktop, and seen as the kernel does."""
import os
import subprocess
import time

HERE = os.path.dirname(os.path.realpath(__file__))
DESKTOP = os.environ["LECTORA_DESKTOP"]
BUILD = os.environ["LECTORA_BUILD"]


class Process:
    """Ends with the object; what it left running is told by processes()."""

    def __init__(
        self,
        *arguments,
        program="lectora",
        fake_engine=True,
        path=None,
        asks=False,
        **environment,
    ):
        """asks: whether the first start asks its question, as it does in a fresh home."""
        everything = dict(os.environ, **environment)
        if not asks:
            answers = os.path.join(everything["HOME"], ".quillon/lectora")
            os.makedirs(answers, exist_ok=True)
            with open(os.path.join(answers, "hotkeys"), "w") as file:
                file.write("offered=1\r\n")
        if path is not None:
            everything["PATH"] = path
        if fake_engine:
            everything["PATH"] = os.path.join(HERE, "engine") + ":" + everything["PATH"]
        self.started = time.monotonic()
        self.process = subprocess.Popen(
            [os.path.join(BUILD, "bin", program), *arguments],
            env=everything,
            stdin=subprocess.DEVNULL,
        )

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()

    def end(self):
        self.process.kill()  # the main thread blocks every signal that can be blocked
        self.process.wait()

    def alive(self):
        return self.process.poll() is None

    def threads(self):
        return len(os.listdir(f"/proc/{self.process.pid}/task"))

    def descriptors(self):
        folder = f"/proc/{self.process.pid}/fd"
        return sorted(
            filter(None, (_link(os.path.join(folder, name)) for name in os.listdir(folder)))
        )

    def cpu_seconds(self):
        with open(f"/proc/{self.process.pid}/stat") as file:
            fields = file.read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def resident_megabytes(self):
        with open(f"/proc/{self.process.pid}/status") as file:
            return next(int(line.split()[1]) for line in file if line.startswith("VmRSS")) / 1024


def _link(path):
    try:
        # Pipes and sockets carry a number that changes; their kind is what counts.
        return os.readlink(path).split("[")[0]
    except OSError:
        return None


def processes():
    """Process id -> command line of everything in this desktop, known by its environment."""
    mark = b"LECTORA_DESKTOP=" + os.fsencode(DESKTOP) + b"\0"
    found = {}
    for name in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{name}/environ", "rb") as file:
                if mark not in file.read():
                    continue
            with open(f"/proc/{name}/cmdline", "rb") as file:
                found[int(name)] = file.read().replace(b"\0", b" ").decode(errors="replace").strip()
        except OSError:
            pass
    return found
