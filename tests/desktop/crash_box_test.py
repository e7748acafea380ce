"""What a user sees after a fatal signal, and how the process then ends."""
import os
import signal
import types
import unittest

from desktop_case import DesktopCase, desktop

CRASH_PAGE = "http://127.0.0.1:1/software/bug.html?software=Lectora&version=1.05GTK"


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
    def test_the_program_asks_and_only_yes_opens_the_page(self):
        etc = os.path.join(os.environ["LECTORA_ROOT"], "opt/quillon/lectora/etc")
        os.makedirs(etc, exist_ok=True)
        for answer, host, page in (
            (lambda box: desktop.press_keys("Escape"), "127.0.0.1:1", []),
            (lambda box: box.press("push button", "Yes"), "127.0.0.1:1", ["browser " + CRASH_PAGE]),
            (self.say_yes_and_hear_of_the_log, "", []),
        ):
            with open(os.path.join(etc, "hosts"), "w") as file:
                file.write(f"web={host}\r\n")
            lectora = self.start()
            # The engine's own processes would be taken for the box.
            desktop.wait_until(lambda: len(lectora.find("combo box")[0]) > 0, "the voices")
            desktop.forget_engine_calls()
            # The menu holds pointer and keyboard of the whole desktop.
            lectora.press("menu", "Tools")
            desktop.wait_until(lambda: lectora.drawn(["menu item"], "Options..."), "the menu")
            lectora.process.send_signal(signal.SIGSEGV)
            box = Box(lectora.process)
            text = box.wait_for_box("Lectora has crashed with an abnormal signal.")
            self.assertIn('that you received a "SIGNAL11" code.', text)
            self.picture("crash-box")
            self.assertTrue(lectora.alive(), "the process waits for the answer")
            answer(box)
            self.assertEqual(lectora.process.wait(desktop.PATIENCE), -signal.SIGSEGV)
            self.assertEqual(desktop.engine_calls(), page)

    def say_yes_and_hear_of_the_log(self, box):
        box.press("push button", "Yes")
        text = box.wait_for_box("There is no web page for bug reports yet")
        self.assertIn(os.path.join(desktop.HOME, ".quillon/lectora/Logs"), text)
        self.picture("crash-no-page")
        box.press("push button", "OK")


if __name__ == "__main__":
    unittest.main()
