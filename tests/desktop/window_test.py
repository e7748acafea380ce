"""What the window remembers, and what it does with several files."""
import os
import subprocess
import time
import unittest

from desktop_case import DesktopCase, desktop


class WindowTest(DesktopCase):
    def setting(self, section, key):
        try:
            with open(os.path.join(desktop.HOME, ".quillon/lectora", section)) as file:
                return dict(line.rstrip("\r\n").split("=", 1) for line in file).get(key)
        except FileNotFoundError:
            return None

    def close(self, lectora):
        desktop.press_keys("alt+F4")
        self.assertEqual(lectora.process.wait(10), 0)

    def test_the_chosen_voice_is_remembered(self):
        desktop.tell_engine("festival voices 3")
        lectora = self.start()
        # Down in the list's entry moves the selection on.
        desktop.press_keys("Tab", "Down", "Down")
        self.close(lectora)
        self.assertEqual(self.setting("settings", "texttospeechvoice"), "2")
        again = self.start()
        self.assertIn("voice3", [entry.queryText().getText(0, -1) for entry in again.find_all("text")])
        self.close(again)

    def test_no_answer_from_the_engine_does_not_lose_the_choice(self):
        folder = os.path.join(desktop.HOME, ".quillon/lectora")
        os.makedirs(folder)
        with open(os.path.join(folder, "settings"), "w") as file:
            file.write("texttospeechvoice=2\r\n")
        desktop.tell_engine("festival nothing")
        lectora = desktop.Lectora()
        self.addCleanup(lectora.end)
        lectora.wait_for_box("No voice is installed")
        desktop.press_keys("Return")
        lectora.window(20)
        self.close(lectora)
        self.assertEqual(self.setting("settings", "texttospeechvoice"), "2")

    def test_several_files_are_read_one_after_the_other_until_escape(self):
        files = [self.file(f"{word}.txt", word) for word in ("first", "second", "third")]
        missing = os.path.join(desktop.HOME, "missing.txt")
        lectora = self.start(files[0], missing, files[1], files[2])
        for word in ("first", "second"):
            stream = self.card.next_stream()
            self.assertEqual(lectora.text(), word)
            if word == "first":
                self.card.wait_for(stream, "close")
        # Stopping also forgets what waits.
        desktop.press_keys("Escape")
        self.card.wait_for(stream, "close")
        time.sleep(1.0)
        self.assertEqual(lectora.text(), "second")

    def test_without_a_usable_home_it_runs_and_rests(self):
        lectora = desktop.Lectora(HOME=os.path.join(desktop.HOME, "missing"))
        self.addCleanup(lectora.end)
        lectora.window(20)
        before = self.cpu_seconds(lectora)
        time.sleep(2.0)
        self.assertLess(self.cpu_seconds(lectora) - before, 0.5)

    def cpu_seconds(self, lectora):
        with open(f"/proc/{lectora.process.pid}/stat") as file:
            fields = file.read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def test_a_program_named_setup_ends_without_a_word(self):
        program = os.path.join(desktop.HOME, "lectora-setup")
        os.symlink(os.path.join(desktop.BUILD, "bin/lectora"), program)
        self.assertEqual(subprocess.run([program], timeout=10).returncode, 0)


if __name__ == "__main__":
    unittest.main()
