"""The window that tells what is missing, and gets it."""
import os
import unittest

from desktop_case import DesktopCase, desktop

ENGINE = os.path.join(desktop.HERE, "engine")


class ReadyTest(DesktopCase):
    def wait_for_states(self, lectora, *wanted):
        """Of engine, voices, card, encoder and recognition, as the window shows them; None: whatever it is."""

        def are_there():
            cells = [cell.name for cell in lectora.find("table", "What is needed")]
            # Two headings, then what and its state in each row.
            return all(want in (None, got) for want, got in zip(wanted, cells[3::2], strict=True))

        desktop.wait_until(are_there, wanted)

    def check(self, programs):
        """The window, for somebody who has only these programs."""
        lectora = desktop.Lectora("-check", fake_engine=False, path=programs)
        self.addCleanup(self._end, lectora)
        lectora.find("table", "What is needed")
        return lectora

    def test_what_is_missing_is_named_and_installed_and_speaks(self):
        programs = os.path.join(desktop.HOME, "bin")
        os.mkdir(programs)
        for name in ("sh", "cat", "sed", "date", "sleep", "ln", "env", "python3"):
            os.symlink(f"/usr/bin/{name}", os.path.join(programs, name))
        lectora = self.check(programs)
        self.wait_for_states(lectora, "missing: package festival", "missing: package festvox-kallpc16k",
                             "Virtual Card A", "missing: package lame", "missing: package tesseract-ocr")
        self.picture("ready-missing")
        lectora.find("label", "In a terminal, this installs what is missing: "
                     "sudo apt install festival festvox-kallpc16k lame tesseract-ocr")
        for button in ("Install What Is Missing", "Read a Test Sentence"):
            self.assertFalse(lectora.can_press("push button", button), button)
        # A desktop whose sound goes elsewhere has a sound server alone.
        server = desktop.Card(9)
        self.addCleanup(os.unlink, os.path.join(server.folder, "settings"))
        server.tell("server 45")
        os.unlink(os.path.join(self.card.folder, "settings"))
        # A package service that fails the first time.
        said = self.file("said", "")
        for end in ("echo no network; exit 4", f"ln -s {ENGINE}/* /usr/bin/lame /usr/bin/tesseract {programs}"):
            self.program(programs, "pkcon", f'echo "$@" >>{said}\n{end}')
            lectora.press("push button", "Check Again")
            desktop.wait_until(lambda: lectora.can_press("push button", "Install What Is Missing"), "the button")
            lectora.press("push button", "Install What Is Missing")
            if "exit" in end:
                self.assertIn("sudo apt install festival", lectora.wait_for_box("no network"))
                self.picture("ready-failed")
                lectora.press("push button", "OK")
        self.wait_for_states(lectora, "Festival", "2 found", "The desktop's sound server", "found", "found")
        self.picture("ready-there")
        with open(said) as file:
            self.assertEqual(file.read(), "--plain -y install festival festvox-kallpc16k lame tesseract-ocr\n" * 2)
        lectora.press("push button", "Read a Test Sentence")
        server.wait_for(server.next_stream(), "close")
        lectora.press("push button", "Close")
        self.assertEqual(lectora.process.wait(desktop.PATIENCE), 0)

    def program(self, folder, name, script):
        with open(os.path.join(folder, name), "w") as file:
            file.write("#!/bin/sh\n" + script + "\n")
        os.chmod(file.name, 0o755)


if __name__ == "__main__":
    unittest.main()
