#!/usr/bin/python3
"""Audiobooks that were broken off, whose voice, encoder or disk fails, and what stands in their place."""
import contextlib
import glob
import os
import re
import resource
import shutil
import signal
import unittest

from book_case import PICTURE, TEXTS, TITLES, BookCase
from program_case import SAY


class BookTroubleTest(BookCase):
    def test_chapters_are_equally_loud_files_that_a_killed_run_leaves_whole(self):
        self.install_encoder()
        self.tell_engine("text2wave slow 1.5")
        self.book("book.epub", TITLES, TEXTS)
        command = (SAY, "--audiobook=chapters", "-o", "spoken/", "book.epub")
        names = ["01 One = a; #1.mp3", "02 Über die See.mp3", "03 Third.mp3"]
        first = self.path("spoken/" + names[0])
        for number in (signal.SIGKILL, signal.SIGINT):
            if os.path.exists(first):
                os.remove(first)
            told = self.stopped(command, number, first)
        self.assertRegex(told, r"stopped; [12] of 3 chapters are kept")
        left = {name.rpartition(".")[2] for name in os.listdir(self.path("spoken/.lectora-book"))}
        self.assertNotIn("wav", left)
        kept = sorted(name for name in os.listdir(self.path("spoken")) if name[0] != ".")
        whole = {name: self.load("spoken/" + name) for name in kept}
        spoken = len([text for _, text in self.said() if "wonderful" in text])
        self.check(*command)
        self.assertEqual(sorted(os.listdir(self.path("spoken"))), names)
        self.assertEqual(len([text for _, text in self.said() if "wonderful" in text]), spoken)
        for name, content in whole.items():
            self.assertEqual(self.load("spoken/" + name), content)
        for number, name in enumerate(names):
            told = self.probed("spoken/" + name)["format"]["tags"]
            self.assertEqual((told["track"], told["album"]), (f"{number + 1}/3", "Of the Sea"))
            measured = self.run_program(
                "ffmpeg", "-i", "spoken/" + name, "-map", "0:a", "-af", "ebur128=peak=true", "-f", "null", "-"
            ).stderr.decode()
            # A voice keeps its level through the book; these chapters are seconds of it.
            self.assertAlmostEqual(float(re.findall(r"I: +(-[\d.]+) LUFS", measured)[-1]), -19, delta=2)
            self.assertLess(float(re.findall(r"Peak: +(-?[\d.]+) dBFS", measured)[-1]), -1)
        self.check(*command, status=1, says="spoken/: holds other files")
        self.assertEqual(sorted(os.listdir(self.path("spoken"))), names)
        self.check(*command, "-f")

    def test_what_the_voice_cannot_say_of_a_long_chapter_is_told_once_with_its_amount(self):
        self.save("tale.txt", ("Some words of \u6771\u4eac are here.\n\n" * 400).encode())
        told = self.run_program(SAY, "--audiobook", "--one-voice", "-o", "tale.flac", "tale.txt").stderr.decode()
        self.assertEqual((told.count("400 words in Chinese"), told.count("left out")), (1, 1), told)

    def test_what_was_left_out_before_a_book_was_broken_off_is_told_when_it_is_done(self):
        self.tell_engine("text2wave nothing Boom\ntext2wave slow 0.2")
        self.save("tale.txt", b"Boom it goes.\n\n" + b"Some words are here.\n\n" * 700)
        command = (SAY, "--audiobook", "--one-voice", "-o", "tale.flac", "tale.txt")
        self.stopped(command, signal.SIGINT, ".tale.flac.lectora-book/00001.part")
        runs = len(self.said())
        self.check(*command, says="left out")
        self.assertNotIn("Boom", str(self.said()[runs:]))

    def test_what_a_failing_disk_has_cut_is_made_anew(self):
        self.tell_engine("text2wave slow 0.2")
        self.save("tale.txt", b"Some words are here.\n\n" * 900)
        command = (SAY, "--audiobook", "--one-voice", "--own-level", "-o", "tale.opus", "tale.txt")
        work = self.path(".tale.opus.lectora-book/")
        self.stopped(command, signal.SIGINT, work + "00002.part")
        os.truncate(work + "00003.lead", 1000)
        with contextlib.suppress(FileNotFoundError):
            os.remove(work + "00003.part")
        self.check(*command, status=1, says="00003.lead: is damaged, and is made anew")
        self.save(work + "00001.spoken", b"x")
        self.check(*command)
        self.assertEqual(len(self.heard("tale.opus")), 900 * 17 * 800 + 16000)

    def test_an_unfinished_book_goes_on_as_it_was_begun_and_takes_new_tags(self):
        self.install_encoder()
        self.book("book.epub", TITLES, TEXTS)
        for kind in ("mp3", "opus", "m4b", "flac"):
            self.tell_engine("text2wave slow 1")
            command = (SAY, "--audiobook=chapters", "-t", kind, "-o", kind + "/", "book.epub", "--speed")
            first = f"{kind}/01 One = a; #1.{kind}"
            self.stopped((*command, "150"), signal.SIGINT, kind + "/.lectora-book/00001.made")
            length = float(self.probed(first)["format"]["duration"])
            self.tell_engine("")
            runs = len(self.said())
            changed = (*command, "120", "--author", "Bo", "--cover=", "--title=Tide", "--as-begun")
            self.check(*changed)
            self.assertNotIn("wonderful", str(self.said()[runs:]))
            told = self.probed(first)
            found = told["format"].get("tags", {}) | told["streams"][0].get("tags", {})
            tags = {name.lower(): value for name, value in found.items()}
            self.assertEqual((tags["artist"], tags["album"], tags["title"]), ("Bo", "Tide", TITLES[0]))
            self.assertEqual([stream["codec_type"] for stream in told["streams"]], ["audio"])
            self.assertAlmostEqual(float(told["format"]["duration"]), length, delta=0.001)

    def test_what_a_run_left_that_was_killed_when_its_book_was_done_goes(self):
        self.save("tale.txt", b"Some words.")
        command = (SAY, "--audiobook", "-o", "tale.flac", "tale.txt")
        self.check(*command)
        work = self.path(".tale.flac.lectora-book/")
        for number, is_left in ((1, True), (os.stat(self.path("tale.flac")).st_ino, False)):
            os.makedirs(work, exist_ok=True)
            self.save(work + "key", b"4 ")
            self.save(work + "done", str(number).encode())
            self.check(*command, status=1, says="tale.flac: exists already")
            self.assertEqual(os.path.exists(work), is_left)
        # What its subtitles are made of stays until they stand, and leave to replace it is none for others.
        os.makedirs(work)
        self.save(work + "key", b"4 ")
        self.save(work + "done", str(os.stat(self.path("tale.flac")).st_ino).encode())
        self.check(*command, "--subtitles=srt", status=1, says="tale.flac: exists already")
        self.assertTrue(os.path.exists(work))

    def test_a_book_that_goes_on_as_begun_replaces_no_subtitles_that_nobody_named(self):
        self.tell_engine("text2wave slow 1")
        self.book("book.epub", TITLES, TEXTS)
        command = (SAY, "--audiobook", "-o", "tale.flac", "book.epub")
        self.stopped((*command, "--subtitles=srt"), signal.SIGINT, ".tale.flac.lectora-book/00001.part")
        self.tell_engine("")
        for name in ("tale.srt", "tale.flac"):
            self.save(name, b"mine")
        self.check(*command, "-f", "--as-begun", status=1, says="tale.srt: exists already")
        self.assertEqual(open(self.path("tale.srt"), "rb").read(), b"mine")

    def test_what_is_finished_of_a_book_begun_otherwise_is_lost_with_a_word(self):
        self.tell_engine("text2wave slow 1")
        self.book("book.epub", TITLES, TEXTS)
        command = (SAY, "--audiobook=chapters", "-t", "flac", "-o", "spoken/", "book.epub")
        self.check(*command)
        # That it may be replaced is said once.
        self.stopped((*command, "-f", "--speed=150"), signal.SIGINT, "spoken/.lectora-book/00001.made")
        self.check(*command, "--speed=120", says="begun with a speed of 150 %; ")

    def test_what_was_finished_under_another_pronunciation_list_is_not_used(self):
        self.tell_engine("text2wave slow 1")
        self.book("book.epub", TITLES, TEXTS)
        command = (SAY, "--audiobook=chapters", "-t", "flac", "-o", "spoken/", "book.epub")
        self.stopped(command, signal.SIGINT, "spoken/01 One = a; #1.flac")
        with open(self.home + "/.quillon/lectora/pronunciations.txt", "w") as words:
            words.write("wonderful\tdull\n")
        self.check(*command, says="was begun with other rules of speaking")
        self.assertEqual(len([text for _, text in self.said() if "dull dull worlds" in text]), 1)

    def test_what_goes_wrong_is_told_and_keeps_what_is_whole(self):
        self.book("book.epub", TITLES, TEXTS)
        command = (SAY, "--audiobook", "-o", "book.mp3", "book.epub")
        self.check(*command, status=1, says="the MP3 encoder component is not installed")
        self.install_encoder()
        for encoder in ("exec head -c 5 >/dev/null", 'lame --quiet "$@"; exit 1'):
            with open(self.home + "/components/mp3el/mp3el", "w") as file:
                file.write("#!/bin/sh\n" + encoder)
            self.check(*command, status=1, says="the MP3 encoder component failed")
            self.assertNotIn("book.mp3", self.files())
        self.book("long.epub", TITLES, [TEXTS[0], TEXTS[1] * 100, TEXTS[2]])
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (2000000, 2000000))
        flac = (SAY, "--audiobook", "-o", "long.flac", "long.epub")
        told = self.check(*flac, status=1, says="chapter 2 (", preexec_fn=limit)
        self.assertNotIn("long.flac", self.files())
        self.check(*flac)
        self.assertEqual(len(self.probed("long.flac")["chapters"]), 3)
        for words, says in (
            (("-o", "a.gsm"), "not gsm"),
            (("-o", "-"), "an audiobook is one file"),
            (("--subtitles=txt", "-o", "a.mp3"), "txt"),
            (("--split", "-o", "a.mp3"), "an audiobook is one file"),
        ):
            self.check(SAY, "--audiobook", *words, "book.epub", status=2, says=says)
        self.check(SAY, "--plan", "-o", "a.mp3", "book.epub", status=2, says="belong to --audiobook")
        self.assertEqual(told, "")

    def test_what_stands_there_stays_until_something_whole_replaces_it(self):
        self.book("book.epub", TITLES, TEXTS)
        os.mkdir(self.path("precious"))
        self.save("precious/letter.txt", b"mine")
        os.symlink("precious", self.path(".book.flac.lectora-book"))
        self.check(SAY, "--audiobook", "-o", "book.flac", "book.epub", status=1, says="is not a folder of yours")
        self.assertEqual(os.listdir(self.path("precious")), ["letter.txt"])
        self.save("own.srt", b"mine")
        subtitled = (SAY, "--audiobook", "--subtitles=srt", "-o", "own.flac", "book.epub")
        self.check(*subtitled, status=1, says="own.srt: exists already")
        self.assertEqual(self.load("own.srt"), b"mine")
        os.remove(self.path("own.srt"))
        os.symlink("nowhere", self.path("own.srt"))
        self.check(*subtitled, "-f", status=1, says="own.srt: is a link to a file that does not exist")
        self.assertEqual(self.said(), [], "it is told before hours are spoken")
        command = (SAY, "--audiobook=chapters", "-t", "flac", "--subtitles=srt", "-o", "spoken/", "book.epub")
        self.check(*command)
        whole = {name: self.load("spoken/" + name) for name in os.listdir(self.path("spoken"))}
        self.tell_engine("text2wave slow 1")
        self.stopped((*command, "-f", "--speed=150"), signal.SIGINT, "spoken/.lectora-book/key")
        self.assertEqual({name: self.load("spoken/" + name) for name in whole}, whole)
        runs = len(self.said())
        os.remove(self.path("spoken/03 Third.srt"))
        os.symlink("nowhere", self.path("spoken/03 Third.srt"))
        self.check(*command, "-f", status=1, says="03 Third.srt: is a link to a file that does not exist")
        self.assertEqual(len(self.said()), runs)
        # Only an unfinished run's own chapters go when another format is made there.
        other = [word.replace("spoken/", "other/").replace("flac", "opus") for word in command]
        told = self.stopped(other, signal.SIGINT, "other/.lectora-book/00001.made")
        self.assertIn("of 3 chapters are kept", told)
        self.check(*[word.replace("opus", "flac") for word in other], says="was begun with another format; ")
        self.assertEqual(sorted(os.listdir(self.path("other"))), sorted(whole))

    def test_a_disk_that_is_full_when_the_cover_is_put_in_is_told_of(self):
        self.install_encoder()
        self.book("book.epub", TITLES, TEXTS, PICTURE + bytes(3000000))
        for kind in ("mp3", "opus", "m4b", "flac"):
            command = (SAY, "--audiobook", "-o", f"book.{kind}", "book.epub")
            limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (2000000, 2000000))
            self.check(*command, status=1, says="File too large", preexec_fn=limit)
            self.assertNotIn(f"book.{kind}", self.files())
            self.check(*command)
            self.assertGreater(os.path.getsize(self.path(f"book.{kind}")), 3000000)
            self.heard(f"book.{kind}")

    def test_a_hanging_joint_can_be_broken_off_and_a_cut_part_is_made_anew(self):
        self.save("story.txt", "".join(f"Paragraph {i} of words.\n\n" for i in range(500)).encode())
        tools = os.path.join(self.folder, "tools")
        os.mkdir(tools)
        with open(tools + "/ffmpeg", "w") as file:
            real = shutil.which("ffmpeg")
            file.write('#!/bin/sh\ncase "$*" in *ffmetadata*) touch "$HOME/joint"; exec sleep 1000; esac\n' f'exec {real} "$@"\n')
        os.chmod(tools + "/ffmpeg", 0o755)
        command = (SAY, "--audiobook", "--one-voice", "-o", "book.m4b", "story.txt")
        path = self.environment["PATH"]
        self.environment["PATH"] = tools + ":" + path
        self.stopped(command, signal.SIGINT, self.home + "/joint")
        self.environment["PATH"] = path
        parts = sorted(glob.glob(self.path(".book.m4b.lectora-book/*.part")))
        self.assertGreater(len(parts), 1)
        os.truncate(parts[-1], os.path.getsize(parts[-1]) - 1)
        self.check(*command, status=1, says="a finished chapter is damaged")
        self.check(*command)
        self.assertEqual(self.files(), ["book.m4b", "story.txt"])

if __name__ == "__main__":
    unittest.main()
