"""Lectora told what to do from outside its windows: by verbs of its command line."""
import os
import re
import signal
import subprocess
import time
import unittest

from desktop_case import DesktopCase, desktop

SENTENCES = [f"Number {word} is a sentence that goes on for a while here." for word in ("one", "two", "three")]
SOCKET = os.path.join(desktop.HOME, ".Lectora.runonce")


def ask(*words):
    """Exit status, what it said, and the seconds until then."""
    start = time.monotonic()
    run = subprocess.run([os.path.join(desktop.BUILD, "bin/lectora"), *words], capture_output=True, text=True,
                         timeout=desktop.PATIENCE, check=False)
    return run.returncode, run.stdout + run.stderr, time.monotonic() - start


class ControlTest(DesktopCase):
    def done(self, *words):
        status, said, _ = ask(*words)
        self.assertEqual(status, 0, f"{words}: {said}")
        return said

    def refused(self, reason, *words):
        status, said, _ = ask(*words)
        self.assertEqual(status, 1, words)
        self.assertRegex(said, reason)

    def test_verbs_control_a_reading_whether_the_window_is_there_or_not(self):
        self.card.tell("speed 0.1")
        desktop.tell_engine("text2wave long 30")
        path = self.file("three.txt", "\n".join(SENTENCES))
        lectora = self.start()
        self.assertEqual(self.done("--status"), "stopped\t\t\t\n")
        self.refused("no text", "--toggle-pause")
        self.refused("Nothing is being read", "--next-sentence")
        self.refused("could not read /no/such/file", "--read", "/no/such/file")
        for hidden in (False, True):
            if hidden:
                lectora.hide()
            with self.subTest(hidden=hidden):
                self.done("--read", path)
                self.assertEqual(self.await_status("reading", SENTENCES[0])[0], "three.txt")
                self.done("--next-sentence")
                self.await_status("reading", SENTENCES[1])
                self.done("--toggle-pause")
                self.assertRegex(self.await_status("paused", SENTENCES[1])[1], r"^0:00:3\d of (about )?0:01:\d\d$")
                self.done("--previous-sentence")
                self.await_status("reading", SENTENCES[0])
                self.done("--faster")
                self.done("--stop")
                self.await_status("stopped")
                self.refused("Nothing is being read", "--stop")
        self.refused("No text is selected", "--read-selection")
        self.select("some selected words")
        self.done("--read-selection")
        self.assertEqual(self.await_status("reading", "some selected words")[0], "some selected words")
        self.refused("no text on the clipboard", "--read-clipboard")
        for words in (["--read"], ["--read", path, path], ["--stop", "now"]):
            self.assertEqual(ask(*words)[0], 2, words)
        self.assertIn("--toggle-pause", self.done("--help"))
        best = min(ask("--status")[2] for _ in range(20))
        print(f"a verb is answered within {best * 1000:.0f} ms of its start")

    def test_a_verb_finds_a_copy_that_starts_one_that_hangs_and_none(self):
        self.card.tell("speed 0.1")
        desktop.tell_engine("text2wave long 30")
        self.assertEqual(ask("--status")[:2], (1, "not running\n"))
        self.refused("not running", "--stop")
        self.select("words for a start")
        first = self.start("--read-selection")
        self.await_status("reading", "words for a start")
        self.assertIsNone(first.process.poll())

        first.process.send_signal(signal.SIGSTOP)
        self.refused("does not answer", "--status")  # just started: it is given more time
        os.utime(SOCKET, (0, 0))
        status, said, seconds = ask("--toggle-pause")
        self.assertRegex(said, rf"process {first.process.pid}\b.* does not answer")
        self.assertEqual(status, 1)
        self.assertTrue(2 <= seconds < 6, seconds)
        first.process.send_signal(signal.SIGCONT)
        first.end()

        second = desktop.Lectora()
        self.addCleanup(self._end, second)
        desktop.wait_until(lambda: re.search("reading", self.ask_starting()), "the reading")

    def ask_starting(self):
        """Where the last one was killed, its socket stands there, dead, until the next start replaces it."""
        status, said, _ = ask("--status")
        if status == 0 and said.startswith("stopped"):
            self.done("--read", self.file("early.txt", "Early words."))
        return said

    def test_two_verbs_at_once_are_both_answered(self):
        self.card.tell("speed 0.1")
        desktop.tell_engine("text2wave long 30")
        path = self.file("three.txt", "\n".join(SENTENCES))
        self.start(path)
        self.await_status("reading")
        asked = [subprocess.Popen([os.path.join(desktop.BUILD, "bin/lectora"), verb], stdout=subprocess.DEVNULL)
                 for verb in ("--faster", "--slower") * 4]
        self.assertEqual([each.wait(desktop.PATIENCE) for each in asked], [0] * 8)


class MediaPlayerTest(DesktopCase):
    """The judge is the program that desktops and their users press players' keys with."""

    def ask(self, *words):
        run = subprocess.run(["playerctl", "--player=lectora", *words], capture_output=True, text=True,
                             timeout=desktop.PATIENCE, check=False)
        return run.stdout.strip()

    def sees(self, expected, *words):
        desktop.wait_until(lambda: self.ask(*words) == expected, f"{words}: {expected}")

    def at(self, seconds):
        desktop.wait_until(lambda: seconds <= float(self.ask("position")) < seconds + 10, f"the place {seconds}")

    def test_a_reading_is_seen_and_controlled_as_a_player(self):
        self.card.tell("speed 0.1")
        desktop.tell_engine("text2wave long 30")
        heard = subprocess.Popen(["dbus-monitor", "--session", "path=/org/mpris/MediaPlayer2"],
                                 stdout=subprocess.PIPE, text=True)
        self.addCleanup(heard.wait)
        self.addCleanup(heard.kill)
        followed = subprocess.Popen(["playerctl", "--player=lectora", "--follow", "status"],
                                    stdout=subprocess.PIPE, text=True)
        self.addCleanup(followed.wait)
        self.addCleanup(followed.kill)
        lectora = self.start()
        self.sees("Stopped", "status")
        lectora.set_text("\n".join(SENTENCES))
        self.ask("play")
        self.sees("Playing", "status")
        desktop.wait_until(lambda: self.ask("metadata", "title").startswith("Number one is"), "the title")
        self.await_status("reading")
        self.ask("next")
        self.at(30)
        self.ask("pause")
        self.sees("Paused", "status")
        self.ask("pause")  # is no "go on"
        self.assertEqual(self.ask("status"), "Paused")
        self.ask("play-pause")
        self.sees("Playing", "status")
        self.ask("previous")
        self.at(0)
        self.ask("position", "10+")
        self.at(10)
        self.ask("position", "65")
        self.at(60)
        self.ask("volume", "0.5")
        self.assertEqual(self.ask("volume"), "0.501187")
        self.ask("stop")
        self.sees("Stopped", "status")
        path = self.file("caf\u00e9 \u65e5.txt", "From an address.")
        self.ask("open", path)
        self.sees("caf\u00e9 \u65e5.txt", "metadata", "title")
        lectora.end()
        followed.kill()
        seen = [line for line in followed.stdout.read().split("\n") if line]
        self.assertEqual(seen[:5], ["Stopped", "Playing", "Paused", "Playing", "Stopped"])
        heard.kill()
        jumps = re.findall(r"member=Seeked\n +int64 (\d+)", heard.stdout.read())
        self.assertEqual([int(each) // 10000000 for each in jumps[:4]], [3, 0, 1, 6])

    def test_a_second_player_has_its_own_name_and_none_needs_a_bus(self):
        first, second = self.start(), self.start(HOME=self.folder("other"))
        names = f"lectora\nlectora.instance{second.process.pid}"
        desktop.wait_until(lambda: "\n".join(sorted(self.ask("--list-all").split())) == names, "both")
        self.assertTrue(first.alive())
        alone = self.start(HOME=self.folder("third"), DBUS_SESSION_BUS_ADDRESS="unix:path=/nonexistent")
        alone.focus()
        desktop.press_keys("a")
        self.assertEqual(ask("--status")[0], 0)
        self.assertTrue(alone.alive())


if __name__ == "__main__":
    unittest.main()
