#!/usr/bin/python3
"""Audiobooks: chapters, tags, times and levels, read back by other programs."""
import array
import base64
import contextlib
import glob
import json
import os
import re
import resource
import shutil
import signal
import subprocess
import time
import unittest
import zipfile

from program_case import SAY, EngineCase

# A picture of one point.
PICTURE = base64.b64decode(
    "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg=="
)
CONTAINER = (
    '<container version="1.0" xmlns="urn:oasis:names:tc:opendocument:xmlns:container"><rootfiles>'
    '<rootfile full-path="c.opf" media-type="application/oebps-package+xml"/></rootfiles></container>'
)
TITLES = ["One = a; #1", "Über die See", "Third"]
TEXTS = ["wonderful wonderful worlds. " * 4, "longest sentence. " * 5, "end of it all. " * 3]


class BookTest(EngineCase):
    def book(self, name, titles, texts, cover=PICTURE):
        with zipfile.ZipFile(self.path(name), "w") as epub:
            epub.writestr("mimetype", "application/epub+zip")
            epub.writestr("META-INF/container.xml", CONTAINER)
            epub.writestr("cover.png", cover)
            page = '<item id="c{0}" href="c{0}.xhtml" media-type="application/xhtml+xml"/>'
            items = "".join(page.format(i) for i in range(len(texts)))
            spine = "".join(f'<itemref idref="c{i}"/>' for i in range(len(texts)))
            epub.writestr(
                "c.opf",
                '<package xmlns="http://www.idpf.org/2007/opf" version="3.0"><metadata '
                'xmlns:dc="http://purl.org/dc/elements/1.1/"><dc:title>Of the Sea</dc:title>'
                "<dc:creator>Ann Author</dc:creator><dc:language>de-AT</dc:language></metadata>"
                f'<manifest>{items}<item id="v" href="cover.png" media-type="image/png" '
                f'properties="cover-image"/></manifest><spine>{spine}</spine></package>',
            )
            for i, (title, text) in enumerate(zip(titles, texts)):
                epub.writestr(
                    f"c{i}.xhtml",
                    '<html xmlns="http://www.w3.org/1999/xhtml"><head/><body>'
                    f"<h1>{title}</h1><p>{text}</p></body></html>",
                )

    def probed(self, name):
        shown = ("-show_chapters", "-show_format", "-show_streams", "-of", "json")
        told = self.run_program("ffprobe", "-v", "error", *shown, name)
        self.assertEqual((told.returncode, told.stderr), (0, b""), name)
        return json.loads(told.stdout)

    def heard(self, name):
        raw = ("-f", "s16le", "-ac", "1", "-ar", "16000", "-")
        decoded = self.run_program("ffmpeg", "-v", "error", "-i", name, "-map", "0:a", *raw)
        self.assertEqual((decoded.returncode, decoded.stderr), (0, b""), name)
        return array.array("h", decoded.stdout)

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

    def own_engine(self, file, name, language=""):
        folder = self.home + "/.quillon/lectora/engines"
        os.makedirs(folder, exist_ok=True)
        with open(f"{folder}/{file}.engine", "w") as engine:
            engine.write(f"[Engine]\nName={name}\nLanguage={language}\n"
                         f"Command=text2wave -eval '({name})' {{text}} -o {{wav}}\n")  # fmt: skip

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

    def test_what_was_finished_under_another_pronunciation_list_is_not_used(self):
        self.tell_engine("text2wave slow 1")
        self.book("book.epub", TITLES, TEXTS)
        command = (SAY, "--audiobook=chapters", "-t", "flac", "-o", "spoken/", "book.epub")
        self.stopped(command, signal.SIGINT, "spoken/01 One = a; #1.flac")
        with open(self.home + "/.quillon/lectora/pronunciations.txt", "w") as words:
            words.write("wonderful\tdull\n")
        self.check(*command)
        self.assertEqual(len([text for _, text in self.said() if "dull dull worlds" in text]), 1)

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

    def stopped(self, command, number, made):
        """Runs it until a file is there, and ends it. What it has told."""
        run = self.start(*command, stderr=-1)
        self.addCleanup(run.kill)
        while not os.path.exists(self.path(made)) and run.poll() is None:
            time.sleep(0.01)
        run.send_signal(number)
        return run.communicate(timeout=30)[1].decode()

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
        command = (SAY, "--audiobook=chapters", "-t", "flac", "--subtitles=srt", "-o", "spoken/", "book.epub")
        self.check(*command)
        whole = {name: self.load("spoken/" + name) for name in os.listdir(self.path("spoken"))}
        self.tell_engine("text2wave slow 1")
        self.stopped((*command, "-f", "--speed=150"), signal.SIGINT, "spoken/.lectora-book/key")
        self.assertEqual({name: self.load("spoken/" + name) for name in whole}, whole)
        # Only an unfinished run's own chapters go when another format is made there.
        other = [word.replace("spoken/", "other/").replace("flac", "opus") for word in command]
        told = self.stopped(other, signal.SIGINT, "other/.lectora-book/00001.made")
        self.assertIn("of 3 chapters are kept", told)
        self.check(*[word.replace("opus", "flac") for word in other])
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
