"""What a user sees after a fatal signal, and how the process then ends."""
import os
import signal
import subprocess
import types
import unittest

from desktop_case import DesktopCase, desktop

CRASH_PAGE = "/software/bug.html?software=Lectora&version=1.05GTK"
BOX = os.path.join(desktop.BUILD, "bin/lectora-crash-box")
HANG_PAGE = "/software/bug.html?software=Lectora&version=1.05&xi=AbTermOrHang-Gtk"
CHILD = os.path.join(desktop.BUILD, "bin/foundation_child")
GDK_CHILD = os.path.join(desktop.BUILD, "bin/foundation_gdk_child")
MARK = "/tmp/_lectora_rl"


class Box(desktop.Lectora):
    """The box that a process has started."""

    def __init__(self, parent):
        pid = desktop.wait_until(lambda: self._child(parent), "the box program")
        self.process = types.SimpleNamespace(pid=pid)

    @staticmethod
    def _child(parent):
        with open(f"/proc/{parent}/task/{parent}/children") as file:
            return next((int(word) for word in file.read().split()), None)


class CrashBoxTest(DesktopCase):
    def setUp(self):
        super().setUp()
        folder = os.path.join(desktop.HOME, "bin")
        os.mkdir(folder)
        self.opened = os.path.join(desktop.HOME, "opened")
        for name in ("gnome-open", "kfmclient"):
            with open(os.path.join(folder, name), "w") as file:
                file.write(f'#!/bin/sh\nprintf "%s " "${{0##*/}}" "$@" >>{self.opened}\n')
            os.chmod(os.path.join(folder, name), 0o755)
        self.environment = dict(os.environ, PATH=folder + ":" + os.environ["PATH"])
        self.environment.pop("KDE_FULL_SESSION", None)

    def pages(self):
        try:
            with open(self.opened) as file:
                return file.read()
        except FileNotFoundError:
            return ""

    def crash(self, **environment):
        process = subprocess.Popen([GDK_CHILD], env=dict(self.environment, **environment))
        self.addCleanup(process.kill)
        return process

    def test_with_heap_and_gdk_locked_the_box_asks_and_the_signal_ends_the_process(self):
        process = self.crash()
        box = Box(process.pid)
        text = box.wait_for_box("Lectora has crashed with an abnormal signal.")
        self.assertIn('that you received a "SIGNAL11" code.', text)
        self.assertTrue(
            desktop.xdotool("search", "--onlyvisible", "--name", "^Abnormal Signal Crash$")
        )
        self.picture("crash-box")
        self.assertIsNone(process.poll(), "the process waits for the answer")
        box.press("push button", "Yes")
        self.assertEqual(process.wait(20), -signal.SIGSEGV)
        self.assertEqual(self.pages(), f"gnome-open http://quillon.example{CRASH_PAGE} ")

    def test_in_a_kde_session_its_own_command_opens_the_page(self):
        process = self.crash(KDE_FULL_SESSION="true")
        Box(process.pid).press("push button", "Yes")
        self.assertEqual(process.wait(20), -signal.SIGSEGV)
        self.assertEqual(self.pages(), f"kfmclient exec http://quillon.example{CRASH_PAGE} ")

    def test_no_and_closing_the_box_open_nothing(self):
        for answer in (
            lambda box: box.press("push button", "No"),
            lambda _: desktop.press_keys("Escape"),
        ):
            process = self.crash()
            box = Box(process.pid)
            box.wait_for_box("abnormal signal")
            answer(box)
            self.assertEqual(process.wait(20), -signal.SIGSEGV)
            self.assertEqual(self.pages(), "")

    def test_the_program_itself_asks_and_ends_with_its_signal(self):
        lectora = self.start()
        lectora.process.send_signal(signal.SIGSEGV)
        box = Box(lectora.process.pid)
        box.wait_for_box("SIGNAL11")
        box.press("push button", "No")
        self.assertEqual(lectora.process.wait(20), -signal.SIGSEGV)

    def test_a_question_is_answered_in_words(self):
        for button in ("Yes", "No"):
            process = subprocess.Popen(
                [BOX, "--question", "A title", "A <b>plain</b> 100% text"],
                env=self.environment,
                stdout=subprocess.PIPE,
                text=True,
            )
            box = Box.__new__(Box)
            box.process = process
            box.wait_for_box("A <b>plain</b> 100% text")
            self.assertTrue(desktop.xdotool("search", "--onlyvisible", "--name", "^A title$"))
            box.press("push button", button)
            self.assertEqual(process.communicate(timeout=20)[0], button.lower() + "\n")

    def test_a_run_that_left_its_mark_is_asked_about_once(self):
        if os.path.exists(MARK):
            os.unlink(MARK)
        run = lambda how: subprocess.Popen([CHILD, "run", how], env=self.environment)
        self.assertEqual(run("leave").wait(20), 0)
        self.assertTrue(os.path.exists(MARK))
        process = run("end")
        self.addCleanup(process.kill)
        for text in ("Did Lectora hang or crash when last run?", "Would you be willing"):
            box = Box(process.pid)
            box.wait_for_box(text)
            self.assertTrue(desktop.xdotool("search", "--name", "^Abnormal Termination Detected$"))
            box.press("push button", "Yes")
            desktop.wait_until(lambda: not os.path.exists(f"/proc/{box.process.pid}"), "its end")
        self.assertEqual(process.wait(20), 0)
        self.assertEqual(self.pages(), f"gnome-open http://quillon.example{HANG_PAGE} ")
        self.assertEqual(run("end").wait(5), 0, "the next start asks nothing")
        self.assertFalse(os.path.exists(MARK))

    def test_without_a_display_nothing_is_asked_and_the_signal_stays_true(self):
        done = subprocess.run(
            [CHILD, "crash", "fault", BOX],
            env={name: value for name, value in self.environment.items() if name != "DISPLAY"},
            timeout=20,
            check=False,
        )
        self.assertEqual(done.returncode, -signal.SIGSEGV)
        self.assertEqual(self.pages(), "")


if __name__ == "__main__":
    unittest.main()
