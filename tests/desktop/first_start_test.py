"""The first start where one speech engine is installed, or none."""
import os
import unittest

from desktop_case import DesktopCase, desktop

DOUBLES = os.path.join(os.path.dirname(os.path.dirname(os.path.realpath(__file__))), "support/engine")
ENGINES = ("espeak", "speak", "festival", "text2wave", "flite")


class FirstStartTest(DesktopCase):
    def programs(self, *engines):
        """A folder of the machine's programs with these engines alone."""
        folder = self.folder("programs-" + "-".join(engines))
        for name in os.listdir("/usr/bin"):
            if not name.startswith(ENGINES):
                os.symlink(os.path.join("/usr/bin", name), os.path.join(folder, name))
        for name in engines:
            with open(os.path.join(folder, name), "w") as file:
                file.write(f'#!/bin/sh\nexec {os.path.join(DOUBLES, name)} "$@"\n')
            os.chmod(os.path.join(folder, name), 0o755)
        return folder

    def read_with(self, engines, told, voice):
        desktop.tell_engine(told)
        text = self.file("text.txt", "one two three")
        lectora = self.start(text, fake_engine=False, path=self.programs(*engines))
        self.card.wait_for(self.card.next_stream(), "close")
        names = lectora.find("combo box", "Choose Voice: ")
        self.assertIn(voice, names.querySelection().getSelectedChild(0).name)
        self.assertEqual(lectora.text(), "one two three")
        self.assertGreater(desktop.Sound(desktop.SPEECH).frames, 0)

    def test_espeak_ng_alone_reads_at_once(self):
        self.read_with(("espeak-ng",), "espeak-ng voices", "eSpeak NG")

    def test_festival_alone_reads_at_once(self):
        self.read_with(("festival", "text2wave"), "festival voices 1", "voice1")

    def test_without_an_engine_it_says_what_is_missing_and_keeps_the_text(self):
        lectora = self.start(self.file("text.txt", "one two three"), fake_engine=False, path=self.programs())
        lectora.wait_for_box("No voice is installed")
        lectora.press("push button", "Check This Computer")
        lectora.find("push button", "Check Again")
        self.assertEqual(lectora.text(), "one two three")


if __name__ == "__main__":
    unittest.main()
