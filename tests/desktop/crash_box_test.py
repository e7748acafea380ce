"""What a user sees after a fatal signal, and how the process then ends."""
import os
import signal
import subprocess
import types
import unittest

from desktop_case import DesktopCase, desktop

CRASH_PAGE = "http://quillon.example/software/bug.html?software=Lectora&version=1.05GTK"
HANG_PAGE = CRASH_PAGE.replace("GTK", "&xi=AbTermOrHang-Gtk")
CHILD = os.path.join(desktop.BUILD, "bin/foundation_child")
MARK = "/tmp/_lectora_rl"


class Box(desktop.Lectora):
    """The box that a process has started."""

    def __init__(self, parent):
        pid = desktop.wait_until(lambda: self._child(parent.pid), "the box program")
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

    def child(self, *arguments, **environment):
        process = subprocess.Popen([CHILD, *arguments], env=dict(self.environment, **environment))
        self.addCleanup(process.kill)
        return process

    def assert_opened(self, text):
        pages = ""
        if os.path.exists(self.opened):
            with open(self.opened) as file:
                pages = file.read()
        self.assertEqual(pages, text)

    def test_with_heap_and_gdk_locked_the_box_asks_and_the_signal_ends_the_process(self):
        process = self.child("crash", "heap", "")
        box = Box(process)
        text = box.wait_for_box("Lectora has crashed with an abnormal signal.")
        self.assertIn('that you received a "SIGNAL11" code.', text)
        self.assertTrue(desktop.xdotool("search", "--name", "^Abnormal Signal Crash$"))
        self.picture("crash-box")
        self.assertIsNone(process.poll(), "the process waits for the answer")
        box.press("push button", "Yes")
        self.assertEqual(process.wait(20), -signal.SIGSEGV)
        self.assert_opened(f"gnome-open {CRASH_PAGE} ")

    def test_the_program_itself_asks_and_neither_no_nor_closing_opens_a_page(self):
        for answer in (
            lambda box: box.press("push button", "No"),
            lambda box: desktop.press_keys("Escape"),
        ):
            lectora = self.start()
            lectora.process.send_signal(signal.SIGSEGV)
            box = Box(lectora.process)
            box.wait_for_box("SIGNAL11")
            answer(box)
            self.assertEqual(lectora.process.wait(20), -signal.SIGSEGV)
            self.assert_opened("")

    def test_a_run_that_left_its_mark_is_asked_about_once(self):
        if os.path.exists(MARK):
            os.unlink(MARK)
        self.assertEqual(self.child("run", "leave").wait(20), 0)
        self.assertTrue(os.path.exists(MARK))
        process = self.child("run", "end")
        for text in ("Did Lectora hang or crash when last run?", "Would you be willing"):
            box = Box(process)
            box.wait_for_box(text)
            self.assertTrue(desktop.xdotool("search", "--name", "^Abnormal Termination Detected$"))
            box.press("push button", "Yes")
            desktop.wait_until(lambda: not os.path.exists(f"/proc/{box.process.pid}"), "its end")
        self.assertEqual(process.wait(20), 0)
        self.assert_opened(f"gnome-open {HANG_PAGE} ")
        self.assertEqual(self.child("run", "end").wait(5), 0, "the next start asks nothing")
        self.assertFalse(os.path.exists(MARK))


if __name__ == "__main__":
    unittest.main()
