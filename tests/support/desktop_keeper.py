"""The outer half of the virtual desktop: options, folders, and that nothing outlives it.

Three processes stand in a row. The *front* is what the caller started. The *keeper*, in a session
of its own, watches a pipe that only the front holds: when the front is gone, however it went, the
pipe ends and the keeper clears up. Below the keeper runs the *session* (desktop_session.py), in a
PID namespace where the machine allows one, so that the kernel itself ends every process in it;
elsewhere the keeper, as subreaper, finds and ends its descendants.
"""
import argparse
import ctypes
import os
import select
import shutil
import signal
import socket
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.realpath(__file__))
PR_SET_PDEATHSIG = 1
PR_SET_CHILD_SUBREAPER = 36
_libc = ctypes.CDLL(None, use_errno=True)


def die_with_parent():
    """Has the kernel kill this process when its parent dies. For the start of a child."""
    _libc.prctl(PR_SET_PDEATHSIG, signal.SIGKILL, 0, 0, 0)


def parse(description):
    parser = argparse.ArgumentParser(
        prog="virtual-desktop",
        description=description,
        formatter_class=argparse.RawDescriptionHelpFormatter,
    )
    parser.add_argument(
        "--build",
        metavar="DIR",
        help="build folder with virtual card and icons (default: the one that holds COMMAND, "
        "else $LECTORA_BUILD, else build/dev)",
    )
    parser.add_argument(
        "--cards",
        type=int,
        default=1,
        choices=range(0, 17),
        metavar="N",
        help="number of sound cards (1)",
    )
    parser.add_argument(
        "--rates", default="", help="rates that the cards grant, as '22050 48000' (any)"
    )
    parser.add_argument(
        "--channels", default="", help="channel counts that the cards grant (1 and 2)"
    )
    parser.add_argument(
        "--speed", type=float, default=1.0, help="how many times too fast the cards' clocks run (1)"
    )
    parser.add_argument(
        "--fault",
        action="append",
        default=[],
        help="as 'busy', 'vanish 22050', 'underrun 22050', 'suspend 22050', 'again 22050'",
    )
    parser.add_argument("--size", default="1280x900", help="size of the screen (1280x900)")
    parser.add_argument(
        "--screenshot", metavar="FILE", help="a PNG of the screen at the end of the command"
    )
    parser.add_argument(
        "--keep", metavar="DIR", help="leave what the cards received, and the logs, in this folder"
    )
    parser.add_argument("--no-namespace", action="store_true", help="do without a PID namespace")
    parser.add_argument("command", nargs="+", metavar="COMMAND")
    return parser.parse_args()


def build_folder(options):
    if options.build:
        return os.path.realpath(options.build)
    folder = os.path.dirname(
        os.path.realpath(shutil.which(options.command[0]) or options.command[0])
    )
    while folder != "/":
        if os.path.exists(os.path.join(folder, "CMakeCache.txt")):
            return folder
        folder = os.path.dirname(folder)
    return os.environ.get("LECTORA_BUILD") or os.path.realpath(
        os.path.join(HERE, "../../build/dev")
    )


def card_settings(options, number):
    lines = [
        f"name Virtual Card {'ABCDEFGHIJKLMNOP'[number]}",
        f"speed {options.speed}",
        "element Master 0 87",
        "element PCM 0 255",
        "element Capture 0 63",
    ]
    if options.rates:
        lines.append("rates " + options.rates)
    if options.channels:
        lines.append("channels " + options.channels)
    lines += ["fault " + fault for fault in options.fault]
    return "\n".join(lines) + "\n"


def furnish(options, folder):
    """Makes the private folders; gives back the environment of everything inside."""
    build = build_folder(options)
    for name in ("home", "run", "root", "cards", "log"):
        os.mkdir(os.path.join(folder, name), 0o700)
    icons = os.path.join(build, "root")
    if os.path.isdir(icons):
        # Without the build's own components: tests say which programs there are.
        without = shutil.ignore_patterns("components")
        shutil.copytree(icons, os.path.join(folder, "root"), dirs_exist_ok=True, ignore=without)
    for number in range(options.cards):
        card = os.path.join(folder, "cards", f"card{number}")
        os.mkdir(card)
        with open(os.path.join(card, "settings"), "w") as file:
            file.write(card_settings(options, number))
    configuration = os.path.join(build, "tests/support/vcard/asound.conf")
    if not os.path.exists(configuration):
        # Without the plug-in there is no card at all, rather than the machine's.
        configuration = os.path.join(folder, "no-cards.conf")
        open(configuration, "w").close()
        print(
            f"virtual-desktop: no virtual sound card in {build}; going on without one",
            file=sys.stderr,
        )
    environment = {
        name: value
        for name, value in os.environ.items()
        if name
        not in (
            "NO_AT_BRIDGE",
            "WAYLAND_DISPLAY",
            "SESSION_MANAGER",
            "GDK_BACKEND",
            "AT_SPI_BUS_ADDRESS",
            "DBUS_SESSION_BUS_ADDRESS",
            "DISPLAY",
            "XAUTHORITY",
            "KDE_FULL_SESSION",
            "MAKEFLAGS",
        )
        and not name.startswith("XDG_")
    }
    environment.update(
        HOME=os.path.join(folder, "home"),
        XDG_RUNTIME_DIR=os.path.join(folder, "run"),
        LECTORA_ROOT=os.path.join(folder, "root"),
        LECTORA_VCARD=os.path.join(folder, "cards"),
        LECTORA_BUILD=build,
        LECTORA_DESKTOP=folder,
        ALSA_CONFIG_PATH=configuration,
        GTK_MODULES="gail:atk-bridge",
        GSETTINGS_BACKEND="memory",
        LC_ALL="C.UTF-8",
    )
    return environment


def namespace_prefix(options):
    """What starts the session in a PID namespace of its own; empty where that is not allowed."""
    base = ["unshare", "--pid", "--fork", "--mount-proc", "--kill-child"]
    if os.geteuid() != 0:
        base[1:1] = ["--user", "--map-current-user"]
    if options.no_namespace or not shutil.which("unshare"):
        return []
    probe = subprocess.run(
        base + ["true"],
        stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
        check=False,
    )
    return base if probe.returncode == 0 else []


def descendants(root):
    parents = {}
    for name in os.listdir("/proc"):
        if not name.isdigit():
            continue
        try:
            with open(f"/proc/{name}/stat") as file:
                # The command's name may hold blanks and brackets; the parent stands second behind
                # its last bracket.
                parents[int(name)] = int(file.read().rsplit(")", 1)[1].split()[1])
        except (OSError, ValueError):
            pass
    found, wave = [], {root}
    while wave:
        wave = {process for process, parent in parents.items() if parent in wave}
        found += wave
    return found


def end_descendants():
    """Kills whatever still runs below this process, their subreaper, until nothing is left."""
    while True:
        for process in descendants(os.getpid()):
            try:
                os.kill(process, signal.SIGKILL)
            except ProcessLookupError:
                pass
        try:
            os.waitpid(-1, 0)
        except ChildProcessError:
            return


def remove_display_files(folder):
    """Removes the lock and socket of a killed X server unless another has taken its number."""
    try:
        with open(os.path.join(folder, "display")) as file:
            number = int(file.read())
    except (OSError, ValueError):
        return
    with socket.socket(socket.AF_UNIX) as probe:
        if probe.connect_ex(f"\0/tmp/.X11-unix/X{number}") == 0:
            return
    for path in (f"/tmp/.X11-unix/X{number}", f"/tmp/.X{number}-lock"):
        try:
            os.unlink(path)
        except OSError:
            pass


def keep(options, folder, front):
    """The keeper's life. Gives back the exit status of the command."""
    os.setsid()
    _libc.prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    status = 1
    try:
        session = subprocess.Popen(
            namespace_prefix(options)
            + [
                sys.executable,
                "-B",
                os.path.join(HERE, "desktop_session.py"),
                options.size,
                options.screenshot or "",
            ]
            + options.command,
            env=furnish(options, folder),
            preexec_fn=die_with_parent,
        )
        ended = os.pidfd_open(session.pid)
        ready, _, _ = select.select([front, ended], [], [])
        if ended in ready:
            status = session.wait()
    finally:
        end_descendants()
        remove_display_files(folder)
        if options.keep:
            for part in ("cards", "log"):
                shutil.copytree(
                    os.path.join(folder, part), os.path.join(options.keep, part), dirs_exist_ok=True
                )
        shutil.rmtree(folder, ignore_errors=True)
    return status if status >= 0 else 128 - status


def main(description):
    options = parse(description)
    die_with_parent()
    folder = tempfile.mkdtemp(prefix="lectora-desktop-")
    front_read, front_write = os.pipe()
    keeper = os.fork()
    if keeper == 0:
        os.close(front_write)
        status = 1
        try:
            status = keep(options, folder, front_read)
        finally:
            os._exit(status)
    os.close(front_read)

    def stop(*_):
        nonlocal front_write
        if front_write >= 0:
            os.close(front_write)
            front_write = -1

    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, stop)
    _, status = os.waitpid(keeper, 0)
    return os.waitstatus_to_exitcode(status)
