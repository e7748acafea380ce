"""What a user sees after a fatal signal, and how the process then ends."""
import signal
import types
import unittest

from desktop_case import DesktopCase, desktop

CRASH_PAGE = "http://quillon.example/software/bug.html?software=Lectora&version=1.05GTK"


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
        for answer, page in (
            (lambda box: desktop.press_keys("Escape"), []),
            (lambda box: box.press("push button", "Yes"), ["browser " + CRASH_PAGE]),
        ):
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


if __name__ == "__main__":
    unittest.main()
