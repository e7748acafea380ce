"""The virtual desktop itself: what it gives, and that nothing of it outlives it."""
import os
import signal
import socket
import subprocess
import tempfile
import time
import unittest
import uuid

HERE = os.path.dirname(os.path.realpath(__file__))
DESKTOP = os.path.join(HERE, "virtual-desktop")


def processes_with(mark):
    found = []
    for name in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{name}/environ", "rb") as file:
                if mark.encode() in file.read():
                    found.append(name)
        except OSError:
            pass
    return found


class VirtualDesktopTest(unittest.TestCase):
    def setUp(self):
        self.mark = uuid.uuid4().hex
        self.environment = dict(os.environ, DESKTOP_TEST_MARK=self.mark)

    def start(self, *arguments, prefix=(), **options):
        process = subprocess.Popen(
            [*prefix, DESKTOP, *arguments],
            env=self.environment,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            **options,
        )
        self.addCleanup(process.stdout.close)
        return process

    def first_line(self, process):
        return process.stdout.readline().strip()

    def assert_gone(self, folder, display=None):
        deadline = time.monotonic() + 10
        while time.monotonic() < deadline and (processes_with(self.mark) or os.path.exists(folder)):
            time.sleep(0.05)
        self.assertEqual(processes_with(self.mark), [])
        self.assertFalse(os.path.exists(folder), folder)
        if display:
            path = "/tmp/.X11-unix/X" + display[1:]
            with socket.socket(socket.AF_UNIX) as client:
                # A desktop beside this one may have taken the free number; nobody answers at a
                # left socket.
                self.assertTrue(client.connect_ex(path) == 0 or not os.path.exists(path), path)

    def test_gives_back_status_and_private_surroundings(self):
        script = (
            'echo "$LECTORA_DESKTOP"; test "$HOME" != "$OLD_HOME" && xdotool getdisplaygeometry && '
            'xprop -root _NET_SUPPORTING_WM_CHECK && test -d "$XDG_RUNTIME_DIR" && '
            'ls "$LECTORA_VCARD"; exit 7'
        )
        self.environment["OLD_HOME"] = os.environ.get("HOME", "")
        process = self.start("--cards", "2", "--size", "800x600", "--", "sh", "-c", script)
        folder = self.first_line(process)
        rest = process.stdout.read()
        process.wait(60)
        self.assertEqual(process.returncode, 7, rest)
        self.assertIn("800 600", rest)
        self.assertIn("card0\ncard1", rest)
        self.assert_gone(folder)

    def test_nothing_outlives_it(self):
        # The command leaves a process behind that ignores every polite request and has a session
        # of its own.
        script = (
            "echo $LECTORA_DESKTOP $DISPLAY; "
            "setsid sh -c \"trap '' TERM HUP; sleep 1000\" & exec sleep 1000"
        )
        endings = [
            (isolation, ending)
            for isolation in ([], ["--no-namespace"])
            for ending in (signal.SIGKILL, signal.SIGTERM)
        ]
        for isolation, ending in endings:
            with self.subTest(isolation=isolation, ending=ending):
                process = self.start(*isolation, "--", "sh", "-c", script)
                folder, display = self.first_line(process).split()
                self.assertGreater(len(processes_with(self.mark)), 5)
                process.send_signal(ending)
                process.wait(30)
                self.assert_gone(folder, display)

    def test_nothing_outlives_a_killed_caller(self):
        process = self.start(
            "--",
            "sh",
            "-c",
            "echo $LECTORA_DESKTOP; exec sleep 1000",
            prefix=("sh", "-c", '"$@"; true', "caller"),
        )
        folder = self.first_line(process)
        process.kill()
        process.wait(30)
        self.assert_gone(folder)

    def test_two_run_at_once(self):
        both = [
            self.start("--", "sh", "-c", "echo $DISPLAY; read answer", stdin=subprocess.PIPE)
            for _ in range(2)
        ]
        displays = [self.first_line(process) for process in both]
        self.assertNotEqual(displays[0], displays[1])
        for process in both:
            process.communicate("\n", timeout=30)
            self.assertEqual(process.returncode, 0)

    @unittest.skipUnless(os.geteuid() == 0, "needs root to become somebody else")
    def test_works_for_an_ordinary_user(self):
        with tempfile.TemporaryDirectory() as scratch:
            os.chmod(scratch, 0o777)
            other = ("setpriv", "--reuid=65534", "--regid=65534", "--clear-groups")
            if subprocess.run([*other, "test", "-r", os.path.realpath(__file__)]).returncode != 0:
                self.skipTest("this folder is root's alone")
            self.environment.update(HOME=scratch)
            process = self.start(
                "--",
                "sh",
                "-c",
                "echo $LECTORA_DESKTOP; id -u; xdotool getdisplaygeometry",
                prefix=other,
            )
            folder = self.first_line(process)
            rest = process.stdout.read()
            process.wait(60)
            self.assertEqual((process.returncode, rest), (0, "65534\n1280 900\n"))
            self.assert_gone(folder)


if __name__ == "__main__":
    unittest.main()
