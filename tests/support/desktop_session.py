"""The inner half of the virtual desktop: starts servers and command, and reaps what they leave.

Called by desktop_keeper.py as `desktop_session.py SIZE SCREENSHOT COMMAND...`, in the environment
that it made; often as process 1 of a PID namespace, where it also has to reap orphans.
"""
import ctypes
import os
import signal
import subprocess
import sys
import time

from desktop_keeper import die_with_parent

FOLDER = os.environ["LECTORA_DESKTOP"]
START_SECONDS = 20


class StartFailure(Exception):
    pass


class Servers:
    def __init__(self):
        self._running = {}

    def start(self, name, *arguments, pass_fds=()):
        with open(os.path.join(FOLDER, "log", name + ".log"), "ab") as log:
            try:
                self._running[name] = subprocess.Popen(
                    [name, *arguments],
                    stdin=subprocess.DEVNULL,
                    stdout=log,
                    stderr=log,
                    pass_fds=pass_fds,
                    preexec_fn=die_with_parent,
                )
            except FileNotFoundError:
                raise StartFailure(f"{name} is not installed; script/setup installs it") from None

    def start_announcing(self, name, arguments):
        """Starts a server that writes its address to a descriptor, "{fd}" in the arguments."""
        read_end, write_end = os.pipe()
        self.start(
            name,
            *[argument.replace("{fd}", str(write_end)) for argument in arguments],
            pass_fds=(write_end,),
        )
        os.close(write_end)
        with os.fdopen(read_end) as announced:
            return announced.readline().strip()

    def stop(self, name):
        """Ends a server the polite way, so that it removes its own files."""
        process = self._running.get(name)
        if process and process.poll() is None:
            process.send_signal(signal.SIGTERM)
            try:
                process.wait(5)
            except subprocess.TimeoutExpired:
                pass


def wait_until(what, condition):
    deadline = time.monotonic() + START_SECONDS
    while not condition():
        if time.monotonic() > deadline:
            raise StartFailure(f"{what} did not come up in {START_SECONDS} s")
        time.sleep(0.02)


def answers(command, part):
    """Whether the command succeeds and its output holds the part."""
    try:
        result = subprocess.run(
            command, capture_output=True, text=True, check=False, timeout=START_SECONDS
        )
    except subprocess.TimeoutExpired:
        return False
    return result.returncode == 0 and part in result.stdout


def tray_is_there():
    """Whether somebody owns the tray's selection. Its panel shows no window while it is empty."""
    x11 = ctypes.CDLL("libX11.so.6")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    x11.XInternAtom.restype = x11.XGetSelectionOwner.restype = ctypes.c_ulong
    display = ctypes.c_void_p(x11.XOpenDisplay(None))
    tray = ctypes.c_ulong(x11.XInternAtom(display, b"_NET_SYSTEM_TRAY_S0", 0))
    owner = x11.XGetSelectionOwner(display, tray)
    x11.XCloseDisplay(display)
    return owner != 0


def remove_stale_locks():
    """Removes locks of killed X servers, which a server in a PID namespace cannot judge."""
    for name in os.listdir("/tmp"):
        if (
            name.startswith(".X")
            and name.endswith("-lock")
            and os.stat(f"/tmp/{name}").st_uid == os.geteuid()
        ):
            number = name[2:-5]
            with open("/proc/net/unix") as sockets:
                if not any(line.rstrip().endswith(f"/tmp/.X11-unix/X{number}") for line in sockets):
                    os.unlink(f"/tmp/{name}")


def start_display(servers, size):
    # Numbers are fought over by desktops that start together: the loser of a number tries again.
    for _ in range(10):
        arguments = f"-displayfd {{fd}} -screen 0 {size}x24 -nolisten tcp -noreset -s 0".split()
        if os.geteuid() == 0:
            arguments.append("-nolock")
        number = servers.start_announcing("Xvfb", arguments)
        if number:
            with open(os.path.join(FOLDER, "display"), "w") as file:
                file.write(number)
            os.environ["DISPLAY"] = ":" + number
            return
        try:
            remove_stale_locks()
        except OSError:
            pass
        time.sleep(0.1)
    raise StartFailure("Xvfb found no display number; see its log with --keep")


def start_desktop(servers, size):
    start_display(servers, size)
    bus = "--address=unix:path=" + os.path.join(os.environ["XDG_RUNTIME_DIR"], "bus")
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = servers.start_announcing(
        "dbus-daemon", ["--session", "--nofork", "--nopidfile", "--print-address={fd}", bus]
    )
    servers.start("openbox", "--sm-disable")
    os.environ["PATH"] += ":/usr/libexec:/usr/lib/at-spi2-core"
    servers.start("at-spi-bus-launcher", "--launch-immediately")
    window_manager = ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"]
    wait_until("the window manager", lambda: answers(window_manager, "window id"))
    # The tray is a GTK program too: it would hang on an accessibility bus that is just coming up.
    address = "dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus"
    address = (address + " org.a11y.Bus.GetAddress").split()
    wait_until("the accessibility bus", lambda: answers(address, "unix:"))
    tray = "trayer --edge bottom --align right --height 24 --widthtype request"
    servers.start(*tray.split())
    wait_until("the notification area", tray_is_there)


def run_command(command):
    try:
        process = subprocess.Popen(command, preexec_fn=die_with_parent)
    except OSError as error:
        print(f"virtual-desktop: {command[0]}: {error.strerror}", file=sys.stderr)
        return 127
    while True:
        # Any child may end first: process 1 of a namespace is handed every orphan.
        ended, status = os.waitpid(-1, 0)
        if ended == process.pid:
            code = os.waitstatus_to_exitcode(status)
            process.returncode = code
            return code if code >= 0 else 128 - code


def main():
    size, screenshot, *command = sys.argv[1:]
    servers = Servers()
    try:
        start_desktop(servers, size)
    except StartFailure as failure:
        print(f"virtual-desktop: {failure}", file=sys.stderr)
        return 125
    status = run_command(command)
    if screenshot:
        subprocess.run(["import", "-window", "root", screenshot], check=False, timeout=START_SECONDS)
    servers.stop("Xvfb")
    return status


if __name__ == "__main__":
    sys.exit(main())
