"""Installing and removing in windows, from an unpacked copy into a machine that stands in a folder."""
import os
import shutil
import socket
import subprocess
import tempfile
import unittest

from desktop_case import DesktopCase, desktop
from report_server import ReportServer

PROGRAM = "opt/quillon/lectora/bin/lectora"
INSTALLED = (0, 'Lectora is installed. The command "lectora" starts it.\n')


class Wizard(desktop.Lectora):
    """A program of a tree or a machine, with the machine that it works on."""

    def __init__(self, program, *arguments, machine, **environment):
        self.process = subprocess.Popen(
            [program, *arguments],
            env={**os.environ, "LECTORA_ROOT": machine, **environment},
            stdin=subprocess.DEVNULL,
        )

    def go(self, button, page):
        """Presses the button once it can be pressed, and waits for the page that it leads to."""
        desktop.wait_until(lambda: self.can_press("push button", button), f"{button} to be ready")
        self.press("push button", button)
        desktop.wait_until(lambda: any(map(self.shows, self.walk("label", page))), page)

    @staticmethod
    def shows(widget):
        return widget.getState().contains(desktop.pyatspi.STATE_SHOWING)


def everything(folder):
    """Path -> what it holds, of all that is in the folder."""
    found = {}
    for where, folders, files in os.walk(folder):
        for name in folders + files:
            path = os.path.join(where, name)
            if os.path.islink(path):
                held = "-> " + os.readlink(path)
            elif os.path.isdir(path):
                held = "a folder"
            else:
                with open(path, "rb") as file:
                    held = file.read()
            found[os.path.relpath(path, folder)] = (held, os.lstat(path).st_mode)
    return found


class InstallTest(DesktopCase):
    def setUp(self):
        super().setUp()
        self.folder = tempfile.mkdtemp(prefix="lectora 'install\" ")
        self.addCleanup(shutil.rmtree, self.folder)
        self.tree = os.path.join(self.folder, "the tree")
        self.machine = os.path.join(self.folder, 'a "machine"')
        subprocess.run(
            ["cmake", "--install", desktop.BUILD], env={**os.environ, "DESTDIR": self.tree},
            check=True, stdout=subprocess.DEVNULL,
        )
        for name in ("opt", "usr/bin", "usr/share/applications", "etc"):
            os.makedirs(os.path.join(self.machine, name))
        with open(os.path.join(self.machine, "usr/bin/other"), "w") as file:
            file.write("somebody's")
        self.before = everything(self.machine)

    def run_wizard(self, where, *arguments):
        wizard = Wizard(os.path.join(where, PROGRAM), *arguments, machine=self.machine)
        self.addCleanup(self._end, wizard)
        return wizard

    def install(self):
        self.assertEqual(self.on_console(self.tree, "-install"), INSTALLED)

    def uninstall(self, reason=None, comment="", choices=(), pictures=False):
        """Through the wizard; the comment goes where the machine's settings say."""
        wizard = self.run_wizard(self.machine, "-uninstall")
        wizard.find("label", "Remove Lectora")
        for choice in choices:
            wizard.press("check box", choice)
        self.picture("uninstall-choice")
        wizard.go("Next", "Send Uninstall Comments")
        self.assertFalse(wizard.can_press("push button", "Finish"), "neither a reason nor a refusal")
        if reason is None:
            wizard.press("radio button", "No, I don't want to tell you")
        else:
            if comment:
                wizard.find("text").queryEditableText().setTextContents(comment)
            self.choose_reason(wizard, reason)
        desktop.wait_until(lambda: wizard.can_press("push button", "Finish"), "Finish to be ready")
        self.picture(f"uninstall-comment-{reason}")
        wizard.press("push button", "Finish")
        box = wizard.wait_for_box("Uninstall is complete.")
        self.picture("uninstall-complete")
        self.assertIn("download it from http://quillon.example/.", box)
        wizard.press("push button", "OK")
        self.assertEqual(wizard.process.wait(desktop.PATIENCE), 0)

    def choose_reason(self, wizard, reason):
        wizard.find("combo box").queryAction().doAction(0)
        desktop.wait_until(lambda: wizard.shows(wizard.find("menu item", reason)), "the reasons")
        wizard.press("menu item", reason)
        desktop.wait_until(lambda: not wizard.shows(wizard.find("menu item", reason)), "their end")

    def test_the_wizards_leave_nothing_behind(self):
        wizard = self.run_wizard(self.tree, "-install")
        wizard.press("push button", "Cancel")
        self.assertEqual(wizard.process.wait(desktop.PATIENCE), 0)
        self.assertEqual(everything(self.machine), self.before)
        wizard = self.run_wizard(self.tree, "-install")
        wizard.find("label", "Welcome to Lectora")
        self.picture("install-welcome")
        wizard.go("Next", "What will be placed where")
        self.picture("install-places")
        wizard.go("Back", "Welcome to Lectora")
        wizard.go("Next", "What will be placed where")
        wizard.go("Install", "Installation")
        self.picture("install-end")
        wizard.press("push button", "Finish")
        self.assertEqual(wizard.process.wait(desktop.PATIENCE), 0)
        self.assertEqual(everything(self.machine)[PROGRAM], everything(self.tree)[PROGRAM])
        self.uninstall(choices=["Also remove the settings that Lectora keeps for all users"])
        self.assertEqual(everything(self.machine), self.before)

    def test_each_reason_reaches_the_report_server_byte_for_byte(self):
        # The comment that is typed -> the text of the form; None: nothing is sent.
        for reason, comment, text in (
            ("I don't use it very often", "slow app", "slow app-slow%20app"),
            ("I have problems using it", "slow & \u00e9", "-"),
            ("Other", "typed", None),
        ):
            self.install()
            with ReportServer() as server:
                self.report_to(server.host)
                self.uninstall(reason, comment)
            body = f"software=Lectora&version=1.05&report=UNINSTALL&text={text}"
            post = (
                f"POST /cgi-bin/report.exe HTTP/1.0\r\nHost: {server.host}\r\n"
                "Content-Type: application/x-www-form-urlencoded\r\n"
                f"Content-Length: {len(body)}\r\n\r\n{body}"
            )
            self.assertEqual(server.received, [] if text is None else [post.encode()], reason)

    def on_console(self, where, *arguments, **environment):
        """Without a display; gives back the status, and what it said on both outputs."""
        run = subprocess.run(
            [os.path.join(where, PROGRAM), *arguments], stdin=subprocess.DEVNULL,
            env={"PATH": os.environ["PATH"], "LECTORA_ROOT": self.machine, **environment},
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=desktop.PATIENCE, check=False,
        )
        return run.returncode, run.stdout.decode()

    def test_the_console_leaves_nothing_behind_in_poor_surroundings(self):
        removed = (0, "Uninstall is complete. If you need to reinstall this software again you can "
                      "download it from http://quillon.example/\n\n")
        home = os.path.join(self.folder, "a home")  # without a .config
        os.mkdir(home)
        for surroundings in ({"HOME": home, "LANG": "C"}, {}):
            self.assertEqual(self.on_console(self.tree, "-install", **surroundings), INSTALLED)
            self.assertEqual(self.on_console(self.machine, "-install", **surroundings),
                             (0, "Lectora is installed already.\n"))
            self.assertEqual(self.on_console(self.machine, "-uninstall", **surroundings), removed)
            self.assertEqual(everything(self.machine), self.before)
            self.assertEqual(os.listdir(home), [])

    def test_a_copy_that_runs_is_told_of_before_it_is_replaced(self):
        lectora = self.start()
        wizard = self.run_wizard(self.tree, "-install")
        self.assertEqual(wizard.process.wait(desktop.PATIENCE), 0)
        lectora.wait_for_box("Please end it first")
        self.picture("install-while-running")
        self.assertFalse(os.path.exists(os.path.join(self.machine, PROGRAM)))

    def test_without_rights_the_administrator_is_asked_for_the_password(self):
        """The one who asks is a stand-in that cannot become root: it notes what it was to run."""
        home = os.path.join(self.folder, "home")
        asked = os.path.join(home, "asked")
        os.mkdir(home)
        with open(os.path.join(home, "pkexec"), "w") as file:
            file.write("#!/bin/sh\nprintf '%s|' \"$@\" >\"$HOME/asked\"\n"
                       "echo 'This incident has been reported.' >&2; exit 127\n")
        os.chmod(file.name, 0o755)
        other = []
        if os.geteuid() == 0:
            other = "setpriv --reuid=65534 --regid=65534 --clear-groups".split()
            os.chmod(self.folder, 0o755)
            os.chown(home, 65534, 65534)
        os.chmod(self.machine, 0o555)
        program = os.path.join(self.tree, PROGRAM)
        # Another user's programs are not on the accessibility bus.
        wizard = Wizard(*other, program, "-install", machine=self.machine, HOME=home, GTK_MODULES="",
                        PATH=home + ":" + os.environ["PATH"])
        self.addCleanup(self._end, wizard)
        find = ("search", "--onlyvisible", "--name", "Install Lectora")
        window = desktop.wait_until(lambda: desktop.xdotool(*find), "it").split()[0]
        desktop.xdotool("windowactivate", "--sync", window)
        for _ in range(2):
            desktop.press_keys("Return")
            self.picture("install-as-user")
        desktop.wait_until(lambda: os.path.exists(asked) and open(asked).read().endswith("-install|"), "the question")
        self.assertEqual(open(asked).read(), program + "|-install|")
        self.picture("install-as-user-end")

    def test_a_report_server_that_does_not_answer_holds_nothing_up(self):
        self.install()
        with socket.create_server(("127.0.0.1", 0), backlog=0) as silent:
            # Its queue is full: who comes now is not even refused.
            host = "%s:%d" % silent.getsockname()
            waiting = []
            for _ in range(3):
                waiting.append(socket.socket())
                waiting[-1].setblocking(False)
                waiting[-1].connect_ex(silent.getsockname())
                self.addCleanup(waiting[-1].close)
            self.report_to(host)
            self.uninstall("I have problems using it")
        self.assertFalse(os.path.exists(os.path.join(self.machine, PROGRAM)))

    def report_to(self, host):
        with open(os.path.join(self.machine, "opt/quillon/lectora/etc/hosts"), "w") as file:
            file.write(f"report={host}\r\n")


if __name__ == "__main__":
    unittest.main()
