#!/usr/bin/python3
"""Audiobooks: chapters, tags, times and levels, read back by other programs."""
import contextlib
import glob
import os
import re
import subprocess
import unittest
import zipfile

from book_case import TEXTS, TITLES, BookCase
from program_case import SAY


class BookTest(BookCase):
    def test_one_file_tells_its_chapters_where_they_are_heard(self):
        self.install_encoder()
        titles = [*TITLES[:2], "Third" + " and so on" * 15]
        self.book("book.epub", titles, TEXTS)
        for kind in ("mp3", "opus", "m4b", "flac", "wav"):
            with self.subTest(kind=kind):
                says = "WAV files hold no titles" if kind == "wav" else None
                self.check(SAY, "--audiobook", "-o", f"book.{kind}", "book.epub", says=says)
                self.assertEqual(self.files(), sorted(["book.epub", f"book.{kind}"]))
                samples = self.heard(f"book.{kind}")
                loudest = max(map(abs, samples))
                self.assertLess(loudest, 32767 * 0.891)
                told = self.probed(f"book.{kind}")
                length = float(told["format"]["duration"])
                self.assertAlmostEqual(len(samples) / 16000, length, delta=0.1)
                os.remove(self.path(f"book.{kind}"))
                if kind == "wav":
                    continue
                tagged = told["streams"][0] if kind == "opus" else told["format"]
                tags = {key.lower(): value for key, value in tagged["tags"].items()}
                self.assertEqual((tags["title"], tags["artist"]), ("Of the Sea", "Ann Author"))
                if kind in ("mp3", "m4b"):
                    spoken = {**told["streams"][0].get("tags", {}), **tags}
                    self.assertEqual(spoken["language"], "deu")
                pictures = [s for s in told["streams"] if s["codec_type"] == "video"]
                self.assertEqual(len(pictures), 1)
                shown = 126 if kind == "mp3" else 200
                self.assertEqual([c["tags"]["title"] for c in told["chapters"]], [title[:shown] for title in titles])
                self.assertAlmostEqual(float(told["chapters"][-1]["end_time"]), length, delta=0.1)
                for chapter in told["chapters"]:
                    start = round(float(chapter["start_time"]) * 16000)
                    # Encoders are late by up to 70 ms, and Opus hints at a sound 4 ms before it; a
                    # second of silence stands before.
                    self.assertGreater(max(samples[start : start + 2400]), loudest / 4)
                    before = samples[max(start - 8000, 0) : max(start - 160, 0)]
                    self.assertLess(max(before, default=0), loudest / 50)

    def test_subtitles_stand_where_their_sentences_are_heard(self):
        self.book("book.epub", ["Aaaaaaaaaa", "Bbbbbbbbbbb"], ["Four tones are here. So are two. "] * 2)
        # Tones are 50 ms a letter; this is the second chapter's, behind its heading and a pause.
        words = {"vtt": "\nFour <00:00:04.750>tones <00:00:05.000>are <00:00:05.150>here.\n",
                 "lrc": "[00:04.55]Four <00:04.75>tones <00:05.00>are <00:05.15>here.\n",
                 "srt": "\nFour tones are here.\n"}  # fmt: skip
        for form, mark in words.items():
            self.check(SAY, "-f", "--audiobook", f"--subtitles={form}", "-o", "book.flac", "book.epub")
            self.assertIn(mark, self.load("book." + form).decode())
        self.check(SAY, "-f", "--audiobook", "--speed=200", "--subtitles=vtt", "-o", "fast.flac", "book.epub")
        times = [re.findall(r"<00:00:([\d.]+)>", self.load(name).decode())[:5] for name in ("book.vtt", "fast.vtt")]
        for own, fast in zip(*times, strict=True):
            self.assertAlmostEqual(float(own) / 2, float(fast), delta=0.03)
        # Sentences whose words the engine does not tell are spoken one by one, at the same times.
        told, runs = self.load("book.srt"), len(self.said()) // 4
        self.tell_engine("text2wave untold tones")
        self.check(SAY, "-f", "--audiobook", "--subtitles=srt", "-o", "book.flac", "book.epub")
        self.assertEqual(self.load("book.srt"), told)
        self.assertEqual((runs, len(self.said()) - 4 * runs), (4, 4 + 2 * 2))
        samples = self.heard("book.flac")
        rows = re.findall(r"(\d+):(\d+):(\d+),(\d+) --> .*\n(.*)", self.load("book.srt").decode())
        self.assertIn("Four tones are here.", rows[1][4] + rows[0][4])
        chapter = float(self.probed("book.flac")["chapters"][1]["start_time"])
        begins = [int(h) * 3600 + int(m) * 60 + int(s) + int(ms) / 1000 for h, m, s, ms, _ in rows]
        self.assertIn(chapter, [round(begin, 3) for begin in begins])
        for begin in begins:
            at = round(begin * 16000)
            self.assertGreater(max(samples[at : at + 1600]), 3000)

    def test_each_chapter_is_spoken_in_the_languages_that_the_document_names(self):
        self.own_engine("en", "English", "en")
        self.own_engine("de", "German", "de")
        # Too short to show a language by themselves.
        words = (("Arm.", ""), ("Hand.", " lang=de"), ("Ring.", ""), ("Wind.", " lang=de"))
        body = "".join(f"<p{language}>{word}</p>" for word, language in words)
        self.save("book.html", f"<html lang=en><h1>A</h1><p>Bank.</p><h1>B</h1>{body}</html>".encode())
        self.check(SAY, "--audiobook", "--subtitles=srt", "-v", "English", "--by-language", "-o", "book.flac", "book.html")
        german = [text[:5] for voice, text in self.said() if voice == "(German)"]
        self.assertEqual(sorted(german), ["Hand.", "Wind."])
        self.assertEqual(re.findall("[A-Z][a-z]*[.]?$", self.load("book.srt").decode(), re.M),
                         ["A", "Bank.", "B", *(word for word, _ in words)])  # fmt: skip

    def test_speed_silence_and_tags_are_as_asked_for(self):
        self.book("book.epub", TITLES, TEXTS)
        self.run_program("ffmpeg", "-f", "lavfi", "-i", "color=s=2x2", "-frames:v", "1", "other.png")
        lengths = {}
        for words in (("--speed=100", "--silence=0"), ("--speed=200", "--silence=0"), ("--speed=100", "--silence=3")):
            self.check(SAY, "-f", "--audiobook", *words, "-o", "book.flac", "book.epub")
            lengths[words] = float(self.probed("book.flac")["format"]["duration"])
        own, fast, silent = lengths.values()
        self.assertAlmostEqual(own / fast, 2, delta=0.03)
        with open(self.home + "/.quillon/lectora/playertempo", "w") as store:
            store.write("own:quick:quick=50\r\n")
        self.own_engine("quick", "Quick")
        self.check(SAY, "-f", "--audiobook", "-v", "Quick", "--speed=listened", "--silence=0", "-o", "book.flac", "book.epub")
        self.assertAlmostEqual(own / float(self.probed("book.flac")["format"]["duration"]), 0.5, delta=0.01)
        self.assertAlmostEqual(silent, own + 9, delta=0.01)
        tags = ("--title=Tide", "--author=", "--cover=other.png", "--own-level")
        self.check(SAY, "-f", "--audiobook", *tags, "-o", "book.flac", "book.epub")
        told = self.probed("book.flac")
        self.assertEqual((told["format"]["tags"]["TITLE"], told["format"]["tags"].get("ARTIST")), ("Tide", None))
        self.assertIn(self.load("other.png"), self.load("book.flac"))
        self.assertEqual(max(map(abs, self.heard("book.flac"))), 8000)  # the engine's own tones
        self.check(SAY, "-f", "--audiobook", "--cover=book.epub", "-o", "a.flac", "book.epub", status=1, says="A cover is a PNG")

    def test_a_long_chapter_is_spoken_in_parts_that_nobody_hears(self):
        self.tell_engine("text2wave slow 0.1")
        story = "\n\n".join(f"Paragraph {number} of words." for number in range(900))
        self.save("story.txt", story.encode())
        self.check(SAY, "-f", "--one-voice", "-o", "plain.wav", "story.txt")
        plain = self.heard("plain.wav")
        command = ("--audiobook", "--one-voice", "--own-level", "--silence=0", "--subtitles=srt", "-o", "book.flac", "story.txt")
        run, most = self.start(SAY, *command), 0
        while run.poll() is None:
            waiting = glob.glob(self.path(".book.flac.lectora-book/*.wav"))
            with contextlib.suppress(FileNotFoundError):
                most = max(most, sum(map(os.path.getsize, waiting)))
        self.assertEqual(run.returncode, 0)
        self.assertTrue(0 < most < 1.6 * len(plain))  # bytes of four sections in six
        self.assertEqual(self.heard("book.flac"), plain)
        self.assertEqual(len(self.probed("book.flac").get("chapters", [])), 0)
        rows = re.findall(r"(\d+):(\d+):(\d+),(\d+) -->", self.load("book.srt").decode())
        begins = [int(h) * 3600 + int(m) * 60 + int(s) + int(ms) / 1000 for h, m, s, ms in rows]
        self.assertEqual((begins, len(begins)), (sorted(begins), 900))
        for begin in begins:
            self.assertGreater(max(plain[round(begin * 16000) :][:800]), 3000)
        # What is encoded in sections is the same sound at the same time, to the sample.
        self.install_encoder()
        for kind in ("mp3", "opus", "m4b"):
            self.check(SAY, "-f", *command[:-2], f"book.{kind}", command[-1])
            samples = self.heard(f"book.{kind}")
            self.assertAlmostEqual(len(samples), len(plain), delta=1024 if kind == "m4b" else 2)
            for at in range(0, len(plain) - 8000, 8000):
                own, coded = plain[at : at + 8000], samples[at : at + 8000]
                noise = sum((one - other) ** 2 for one, other in zip(own, coded))
                self.assertLess(noise, sum(one**2 for one in own) / 10, (kind, at))

    def test_sections_join_at_low_rates_and_where_nothing_sounds(self):
        self.install_encoder()
        story = "* * *\n\n" * 1300 + "\n\n".join(f"Paragraph {number} of words." for number in range(300))
        self.save("story.txt", story.encode())
        command = ("--audiobook", "--one-voice", "--own-level", "--silence=0")
        self.check(SAY, *command, "-o", "book.flac", "story.txt")
        whole = len(self.heard("book.flac"))
        for kind, more in (("mp3", "--bitrate=16"), ("opus", "--bitrate=16"), ("m4b", "--bitrate=24")):
            self.check(SAY, *command, more, "-o", f"book.{kind}", "story.txt")
            self.assertAlmostEqual(len(self.heard(f"book.{kind}")), whole, delta=1024 if kind == "m4b" else 2)

    def test_text_and_sound_together_hold_each_other(self):
        self.install_encoder()
        titles = ["One &amp; &lt;all&gt;", "Two"]
        self.book("book.epub", titles, ["First &amp; foremost. A second\none.</p><p>Last \"words\".", "----"])
        self.run_program("ffmpeg", "-f", "lavfi", "-i", "color=s=2x2", "-frames:v", "1", "cover.png")
        self.check(SAY, "--audiobook", "--cover=cover.png", "-o", "heard.epub", "book.epub")
        with zipfile.ZipFile(self.path("heard.epub")) as epub:
            self.assertEqual(epub.testzip(), None)
            self.assertEqual((epub.infolist()[0].filename, epub.read("mimetype")), ("mimetype", b"application/epub+zip"))
            page, overlay = (epub.read(f"book/00001.{kind}").decode() for kind in ("xhtml", "smil"))
            self.save("one.mp3", epub.read("book/00001.mp3"))
            self.assertEqual(epub.read("book/cover.png"), self.load("cover.png"))
        spans = dict(re.findall(r'<span id="(s\d+)">([^<]*)</span>', page))
        clips = re.findall(r'xhtml#(s\d+)"/><audio src="00001.mp3" clipBegin="0:00:([\d.]+)" clipEnd="0:00:([\d.]+)"', overlay)
        self.assertEqual([spans[name].strip() for name, _, _ in clips],
                         ["One &amp; &lt;all&gt;", "First &amp; foremost.", "A second one.", "Last &quot;words&quot;."])
        self.assertIn("<h1>", page)
        samples = self.heard("one.mp3")
        loudest = max(map(abs, samples))
        for _, begin, end in clips:
            at, to = (round(float(time) * 16000) for time in (begin, end))
            self.assertGreater(max(map(abs, samples[at : at + 2400])), loudest / 4)
            self.assertGreater(to, at)
        judge = ("java", "-jar", "/usr/share/java/epubcheck.jar", self.path("heard.epub"))
        checked = subprocess.run(judge, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=600)
        self.assertEqual(checked.returncode, 0, checked.stdout.decode())

    def test_a_long_text_without_chapters_has_parts_and_what_no_file_can_hold_is_told_at_once(self):
        plan = (SAY, "--audiobook", "--plan", "-o", "a.mp3")
        tale = "Some words of a tale.\n"
        self.save("latin.txt", tale.encode() * 9000)
        self.save("greek.txt", re.sub("[a-z]", "λ", tale).encode() * 9000)
        latin, greek = ([line.split("\t") for line in self.check(*plan, name).splitlines()[1:]]
                        for name in ("latin.txt", "greek.txt"))  # fmt: skip
        self.assertEqual([row[2] for row in latin[1:]], [f"Part {i} of 4" for i in range(1, 5)])
        self.assertEqual(len({row[1][:4] for row in latin[1:]}), 1)  # within ten minutes
        self.assertEqual(latin[0][0][:10], greek[0][0][:10])
        self.save("long.txt", tale.encode() * 120000)
        self.check(SAY, "--audiobook", "-o", "a.wav", "long.txt", status=1, says="longer than one such file can hold")
        self.assertNotIn("a.wav", self.files())

    def test_a_book_of_two_thousand_chapters_with_long_titles_and_a_huge_cover_is_planned(self):
        titles = ["\N{SNOWMAN}/.." * 2000 if i % 100 == 0 else f"Number {i}" for i in range(2000)]
        self.book("huge.epub", titles, ["word."] * 2000, bytes(6000000))
        told = self.check(SAY, "--audiobook", "--plan", "-o", "a.opus", "huge.epub").splitlines()
        self.assertEqual(told[0], "Of the Sea\tAnn Author\tde-AT")
        self.assertEqual(len(told), 2002)
        self.assertLessEqual(len(told[2].split("\t")[2].encode()), 200)
        self.assertEqual(told[3].split("\t")[0::2], ["2", "Number 1"])

if __name__ == "__main__":
    unittest.main()
