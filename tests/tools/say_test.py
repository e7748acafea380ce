#!/usr/bin/python3
"""lectora-say with a speech engine that speaks a tone for each word (50 ms a letter)."""
import os
import signal
import subprocess
import time
import unittest

from program_case import CONVERT, SAY, EngineCase


class SayTest(EngineCase):
    def logged(self):
        logs = os.path.join(self.home, ".quillon/lectora/Logs")
        return "".join(open(os.path.join(logs, name)).read() for name in os.listdir(logs))

    def frames(self, name):
        told = self.check(CONVERT, "--info", name)
        return int(told.split("Frames: ")[1].split("\n")[0])

    def test_text_becomes_a_sound_file_of_any_type(self):
        self.install_encoder()
        self.save("a.txt", b"Hello wonderful world.\n")
        frames = 800 * 20
        for kind, factor in (("wav", 1), ("gsm", 0.5), ("vox", 0.5)):
            self.check(SAY, "-o", f"a.{kind}", "a.txt")
            self.assertAlmostEqual(self.frames(f"a.{kind}"), frames * factor, delta=160, msg=kind)
        self.check(SAY, "-o", "a.mp3", "a.txt")
        self.assertGreater(len(self.load("a.mp3")), 1000)
        self.check(SAY, "-t", "au", "-o", "named", input="Hello caf\u00e9 \u2013 world".encode())
        self.assertEqual(self.load("named")[:4], b".snd")
        self.assertEqual(self.said()[-1][0], "(voice_voice1)")
        self.assertIn("cafe", self.said()[-1][1])
        self.assertEqual(os.listdir(self.environment["TMPDIR"]), [])

    def test_voices_by_name_and_number(self):
        self.tell_engine("festival voices 17")
        listed = [line.split("\t") for line in self.check(SAY, "--list-voices").splitlines()]
        self.assertEqual(listed[2], ["2", "voice3", "festival", "-", "voice3"])
        self.assertEqual(len(listed), 17)
        self.save("a.txt", b"word")
        for voice, name in (("voice2", "voice2"), ("2", "voice3"), ("0", "voice1"), ("voice17", "voice17")):
            self.check(SAY, "-f", "-v", voice, "-o", "a.wav", "a.txt")
            self.assertEqual(self.said()[-1][0], f"(voice_{name})")
        for voice in ("17", "-1", "voice18", "", "(quit)"):
            says = voice + ": no such voice"
            self.check(SAY, "-f", "-v", voice, "-o", "b.wav", "a.txt", status=1, says=says)
        self.tell_engine("festival nothing")
        self.check(SAY, "-o", "b.wav", "a.txt", status=1, says="no speech engine")
        self.check(SAY, "--list-voices", status=1, says="no speech engine")
        self.assertEqual(self.files(), ["a.txt", "a.wav"])

    def test_text_is_printed_in_place_of_spoken(self):
        self.save("a.html", "<html><body><h1>Caf\u00e9</h1><p>It\u2019s <b>one</b>.\nTwo!".encode())
        whole = "Caf\u00e9\n\nIt\u2019s one. Two!\n"
        self.assertEqual(self.check(SAY, "--text", "a.html"), whole)
        self.assertEqual(self.check(SAY, "--text", "-", input=whole.encode()), whole)
        self.assertEqual(
            self.check(SAY, "--text=sentences", "a.html"), "Caf\u00e9\nIt\u2019s one.\nTwo!\n"
        )
        self.assertEqual(self.said(), [])
        self.assertEqual(self.check(SAY, "--text=spoken", "a.html"), "Cafe\nIt's one.\nTwo!\n")
        self.assertEqual(
            self.check(SAY, "--text=spoken", input="yes да".encode(), says="1 word in Cyrillic"), "yes\n"
        )
        self.assertEqual(self.check(SAY, "--text=spoken", input=b"...", says="There is nothing in this text"), "")
        self.save("b.html", f"<html><nav><a href=x>Menu</a></nav><p>{'word ' * 60}".encode())
        article = self.check(SAY, "--text", "b.html", says="--whole-page reads them")
        self.assertEqual(article, ("word " * 60).strip() + "\n")
        self.assertIn("Menu", self.check(SAY, "--text", "--whole-page", "b.html"))
        self.save("c.html", b"<p>Text[1] here<pre>code</pre>")
        self.assertEqual(self.check(SAY, "--text", "--skip=code,notes", "--keep=marks", "c.html"), "Text[1] here\n")
        self.check(SAY, "--text", "--skip=pictures", "c.html", status=2, says="pictures")
        self.check(SAY, "--text", "a.html", "none.html", status=1, says="none.html: ")
        self.check(SAY, "--text=odd", status=2, says="odd")
        self.check(SAY, "--text", "-o", "a.wav", "a.html", status=2, says="without -o")

    def test_standard_output_streams_from_the_first_sentence_on(self):
        sentences = [f"This is sentence number {i} of the text. " for i in range(6)]
        self.save("a.txt", "".join(sentences).encode())
        samples = [800 * len(word) for text in sentences for word in text.split()]
        whole = self.run_program(SAY, "-o", "-", "a.txt").stdout
        self.assertEqual(len(whole), 44 + 2 * sum(samples))
        self.assertIn("Speech engine: a word of the engine's", self.logged())
        # Each sentence is longer than what a pipe holds, so the engine is not far ahead.
        os.remove(self.desktop + "/engine.log")
        pipes = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE}
        say = self.start(SAY, "-o", "-", "-p", "a.txt", **pipes)
        self.assertEqual(say.stdout.read(12), b"RIFF\xff\xff\xff\xffWAVE")
        self.assertLessEqual(len(self.said()), 3)
        say.stdout.close()
        self.assertIn(b"standard output: Broken pipe", say.stderr.read())
        say.stderr.close()
        self.assertEqual(say.wait(timeout=20), 1)
        self.assertEqual(os.listdir(self.environment["TMPDIR"]), [])

    def test_parts_are_numbered_and_hold_the_whole(self):
        self.save("a.txt", ("One more sentence of the book. " * 1000).encode())
        self.check(SAY, "--split=15", "-o", "a.wav", "a.txt")
        names = [name for name in self.files() if name != "a.txt"]
        self.assertEqual(names, [f"a-{i:02}.wav" for i in range(1, len(names) + 1)])
        frames = [self.frames(name) for name in names]
        self.assertEqual(sum(frames), 1000 * 800 * 25)
        self.assertTrue(all(0 < count <= 15 * 60 * 16000 for count in frames), frames)
        self.check(SAY, "-o", "a.vox", "a.txt")
        # Odd pieces must not shift the nibbles of ADPCM.
        self.assertAlmostEqual(self.frames("a.vox"), 1000 * 400 * 25, delta=2 * len(self.said()))

    def test_what_kills_the_engine_is_left_out_and_told(self):
        self.save("a.txt", b"A good sentence stands here. A killer stands here. And another one.")
        self.tell_engine("text2wave die killer")
        for output in ("a.wav", "-"):
            result = self.run_program(SAY, "-o", output, "a.txt")
            self.assertEqual(result.returncode, 0)
            self.assertIn(b'a.txt: The speech engine could not speak "A killer', result.stderr)
        self.assertEqual(self.frames("a.wav"), 800 * 38)

    def test_many_files_make_one_output_each(self):
        os.mkdir(self.path("out"))
        os.mkdir(self.path("in"))
        for name in ("a.txt", "in/b.tar.md", ".profile", "plain"):
            self.save(name, f"text of {name}".encode())
        self.check(SAY, "-o", "out/", "-t", "au", "a.txt", "in/b.tar.md", ".profile", "plain")
        self.assertEqual(
            sorted(os.listdir(self.path("out"))), [".profile.au", "a.au", "b.tar.au", "plain.au"]
        )
        result = self.run_program(SAY, "-o", "out", "a.txt", "gone.txt", "plain")
        self.assertEqual(result.returncode, 1)
        self.assertIn("gone.txt: The file cannot be opened: No such file", result.stderr.decode())
        self.assertIn("plain.wav", os.listdir(self.path("out")))

    def test_trouble_is_told_and_leaves_no_output(self):
        for name, data in (
            ("a.txt", b"some words"),
            ("mute.txt", b"----\n...\n\x01\x02"),
            ("long.txt", b"word " * 600000),
            ("there.wav", b"mine"),
            ("binary.txt", b"words \x00\xff\xfe more\x00 words"),
        ):
            self.save(name, data)
        before = self.files()
        for engine, arguments, says in (
            ("text2wave hang", ["-o", "o.wav", "long.txt"], "--split"),
            ("text2wave hang", ["-o", "o.mp3", "long.txt"], "--split"),
            ("", ["-o", "o.wav", "."], ".: This is a folder"),
            ("", ["-o", "o.wav", "mute.txt"], "mute.txt: There is nothing"),
            ("", ["-o", "there.wav", "a.txt"], "there.wav: exists already"),
            ("text2wave die", ["-o", "o.wav", "a.txt"], "a.txt: The speech engine"),
            ("text2wave full", ["-o", "o.wav", "a.txt"], "a.txt: The speech"),
        ):
            with self.subTest(engine=engine, arguments=arguments):
                self.tell_engine(engine)
                self.check(SAY, *arguments, status=1, says=says)
                self.assertEqual(self.files(), before)
        self.tell_engine("")
        for arguments, says in (
            (["a.txt"], "-o names"),
            (["-o", "-", "a.txt", "b.txt"], "one text"),
            (["-o", "-", "-t", "au", "a.txt"], "one stream of WAV"),
            (["-o", "o.ogg", "a.txt"], "o.ogg: ogg files can be read but not written"),
            (["--split=9", "-o", "a.wav", "a.txt"], "no such length"),
            (["-o", "./", "-", "a.txt"], "'-'"),
            (["-o", "a.xyz", "a.txt"], "a.xyz"),
            (["-o", "a.wav", "a.txt", "b.txt"], "need a folder"),
            (["-o", "./"], "needs files"),
            (["-o", "./", "a.txt", "x/a.md"], "two of the files"),
            (["--what"], "what"),
        ):
            self.check(SAY, *arguments, status=2, says=says)
        self.assertEqual(self.files(), before)
        self.assertEqual(self.check(SAY, "--version"), "lectora-say 1.05\n")
        self.assertIn("--list-voices", self.check(SAY, "--help"))
        self.check(SAY, "-o", "binary.wav", "binary.txt")
        self.assertEqual(self.said()[-1][1].split(), ["words", "yth", "more", "words"])

    def test_an_interrupted_run_leaves_nothing(self):
        self.save("a.txt", b"some words")
        self.tell_engine("text2wave hang")
        run = self.start(SAY, "-o", "o.wav", "a.txt", stderr=subprocess.PIPE, start_new_session=True)
        deadline = time.time() + 20
        while not os.path.exists(self.desktop + "/engine.log") or not self.said():
            self.assertLess(time.time(), deadline)
            time.sleep(0.05)
        os.killpg(run.pid, signal.SIGINT)  # as a terminal does
        started = time.time()
        self.assertIn(b"a.txt: stopped", run.communicate(timeout=20)[1])
        self.assertLess(time.time() - started, 3)
        self.assertEqual(run.returncode, -signal.SIGINT)
        self.assertEqual(self.files(), ["a.txt"])
        self.assertEqual(os.listdir(self.environment["TMPDIR"]), [])


if __name__ == "__main__":
    unittest.main()
