#!/usr/bin/python3
"""lectora-convert, run as its users run it. sox and ffprobe are the witnesses."""
import array
import math
import os
import pty
import resource
import signal
import struct
import subprocess
import time
import unittest

from program_case import CONVERT, ProgramCase

# Headerless data as sox has to be told of it.
SOX_KIND = {
    kind: ["-t", "raw", "-r", "8000", "-c", "1", "-e", encoding, "-b", bits]
    for kind, encoding, bits in (
        ("raw", "signed", "16"),
        ("ul", "mu-law", "8"),
        ("al", "a-law", "8"),
    )
}


def tone(frames, channels=1, rate=8000, frequency=440):
    samples = [round(9000 * math.sin(2 * math.pi * frequency * i / rate)) for i in range(frames)]
    return array.array("h", (s for s in samples for _ in range(channels)))


def wav(samples, channels=1, rate=8000, bits=16, tag=1, data_size=None):
    data = samples.tobytes() if isinstance(samples, array.array) else samples
    align = channels * bits // 8
    header = struct.pack("<HHIIHH", tag, channels, rate, rate * align, align, bits)
    size = len(data) if data_size is None else data_size
    riff = b"WAVEfmt " + struct.pack("<I", 16) + header + b"data" + struct.pack("<I", size) + data
    return b"RIFF" + struct.pack("<I", (len(riff)) & 0xFFFFFFFF) + riff


def noise_ratio(wanted, got):
    count = min(len(wanted), len(got))
    signal_power = sum(s * s for s in wanted[:count])
    noise = sum((a - b) ** 2 for a, b in zip(wanted[:count], got[:count]))
    return 10 * math.log10(signal_power / max(noise, 1e-9))


class ConvertTest(ProgramCase):
    def heard(self, name, *input_format):
        """What sox reads from a file, as 16-bit samples."""
        self.sox(
            "-D", *input_format, name, "-t", "raw", "-e", "signed", "-b", "16", "-L", "heard.s16"
        )
        return array.array("h", self.load("heard.s16"))

    def test_every_type_keeps_the_sound(self):
        self.install_encoder()
        settings = "constantbitrate=0 vbrmaxbitrate=192 vbrminbitrate=8 vbrquality=7"
        settings += " channelmode=0 errorprotection=1"
        self.save("../home/.quillon/lectora/mp3encoder", settings.replace(" ", "\r\n").encode())
        original = tone(8000)
        self.save("in.wav", wav(original))
        least = {"gsm": 6, "vox": 14, "ul": 30, "al": 30}
        for kind in ("wav", "au", "aiff", "gsm", "vox", "raw", "ul", "al", "mp3"):
            with self.subTest(kind=kind):
                options = ["-r44100", "-c2"] if kind == "mp3" else []
                self.check(CONVERT, "-f", *options, "in.wav", f"in.{kind}")
                if kind == "mp3":
                    told = self.run_program("ffprobe", "-show_entries", "format=duration", "in.mp3")
                    self.assertIn(b"duration=1.", told.stdout)
                    with open(self.home + "/encoder.log") as log:
                        self.assertIn("-m s -p -v -b 32 -B 192 -V 7 -r -x -s 44.100 -S -", log.read())
                    continue
                raw = ["--raw-rate=8000", "--raw-channels=1"] if kind == "raw" else []
                self.check(CONVERT, *raw, f"in.{kind}", f"{kind}-to.wav")
                # sox's decoder knows nothing of the leak of VOX and hears a tilted sound.
                names = [f"{kind}-to.wav"] + ([f"in.{kind}"] if kind != "vox" else [])
                for name in names:
                    known = SOX_KIND.get(kind, []) if name.startswith("in.") else []
                    heard = self.heard(name, *known)
                    self.assertAlmostEqual(len(heard), 8000, delta=160)
                    self.assertGreater(noise_ratio(original, heard), least.get(kind, 80))

    def test_encodings_are_taken_where_the_type_holds_them(self):
        self.save("in.wav", wav(tone(400)))
        sizes = dict(pcm8=400, pcm8s=400, ulaw=400, alaw=400, pcm16=800, pcm16be=800)
        sizes.update(float=1600, floatbe=1600, adpcm=200)
        for encoding, size in sizes.items():
            self.check(CONVERT, "-e", encoding, "in.wav", f"{encoding}.raw")
            self.assertEqual(len(self.load(f"{encoding}.raw")), size)
        taken = "pcm16be.au pcm8.au pcm8s.au ulaw.au alaw.au pcm8.wav pcm16be.aiff"
        for name in taken.split():
            self.check(CONVERT, "-e", name.split(".")[0], "in.wav", name)
        refused = "alaw.wav adpcm.au pcm8.aiff pcm16.gsm pcm8.vox gsm.raw alaw.ul ulaw.al pcm16.mp3"
        for name in refused.split():
            encoding = name.split(".")[0]
            self.check(CONVERT, "-e", encoding, "in.wav", name, status=2, says=name)

    def test_rate_and_channels(self):
        self.save("in.wav", wav(tone(16000, 2, 16000), 2, 16000))
        for rate, channels in ((44100, 2), (8000, 1)):
            self.check(CONVERT, "-f", "-r", rate, "-c", channels, "in.wav", "out.wav")
            heard = self.heard("out.wav")[::channels]
            self.assertEqual(len(heard), rate)
            self.check(CONVERT, "-f", "--quality=fast", "-r", rate, "in.wav", "out.wav")
            # Ratios are met to a thousandth.
            fast = len(self.heard("out.wav")) // 2
            self.assertTrue(fast == 8000 if rate == 8000 else 0 < abs(fast - rate) < rate * 0.003)
        for arguments in (["-r", "16000", "in.wav", "a.gsm"], ["-c2", "in.wav", "a.vox"]):
            self.check(CONVERT, *arguments, status=2, says=arguments[-1])
        self.save("six.wav", wav(tone(100, 6), 6))
        self.check(CONVERT, "six.wav", "six.au")
        self.check(CONVERT, "-c", "2", "six.wav", "two.au", status=1, says="6 channels")

    def test_what_recorders_and_phones_make_is_read_through_pipes_too(self):
        original = tone(8000)
        self.save("in.wav", wav(original))
        self.sox("-D", "in.wav", "in.flac")
        self.sox("-D", "in.wav", "in.ogg")
        self.sox("-D", "in.wav", "-b", "24", "deep.wav")
        self.sox("-D", "in.wav", "-b", "32", "-e", "float", "float.wav")
        self.sox("-D", "in.wav", "-e", "mu-law", "law.wav")
        size = struct.pack("<Q", 1 << 20)
        ds64 = b"ds64" + struct.pack("<I", 28) + size + struct.pack("<QQI", 16000, 8000, 0)
        rest = wav(original)[12:].replace(b"data" + struct.pack("<I", 16000), b"data" + b"\xff" * 4)
        self.save("large.wav", b"RF64\xff\xff\xff\xffWAVE" + ds64 + rest)
        for name in ("in.flac", "in.ogg", "deep.wav", "float.wav", "law.wav", "large.wav"):
            with self.subTest(name=name):
                self.check(CONVERT, "-f", name, "out.wav")
                heard = self.heard("out.wav")
                self.assertEqual(len(heard), 8000)
                least = {"in.ogg": 20, "law.wav": 30}.get(name, 150)
                self.assertGreater(noise_ratio(original, heard), least)
                with open(self.path(name), "rb") as file:
                    piped = self.run_program(CONVERT, "-", "-", stdin=file)
                self.assertEqual((piped.returncode, piped.stderr), (0, b""))
                self.assertEqual(piped.stdout, self.load("out.wav"))
        self.check(CONVERT, "in.wav", "out.flac")
        self.assertEqual(self.heard("out.flac"), original)
        told = self.check(CONVERT, "--info", "out.flac")
        self.assertIn("Type: flac\n  Codec: FLAC (Free Lossless Audio Codec), Signed 16", told)
        self.sox("-n", "-r", "8000", "long.flac", "synth", "9", "pinknoise")
        cut = self.run_program(CONVERT, "-", "o.wav", input=self.load("long.flac")[:50000])
        self.assertIn(b"standard input: was cut short", cut.stderr)
        self.assertNotIn("o.wav", self.files())
        with open("/dev/full", "wb") as full:
            result = subprocess.run([CONVERT, self.path("in.wav"), "-"], stdout=full, stderr=-1)
        self.assertIn(b"standard output: No space left", result.stderr)

    def test_seconds_cuts_what_the_whole_holds_there(self):
        self.save("in.wav", wav(tone(16000)))
        spans = (("0.5-1.25", 4000, 10000), ("-0.25", 0, 2000))
        spans += (("0:01-", 8000, 16000), ("1.9-99", 15200, 16000))
        for kind in ("wav", "gsm", "vox", "al"):
            self.check(CONVERT, "-f", "in.wav", f"in.{kind}")
            self.check(CONVERT, "-f", f"in.{kind}", "whole.raw")
            whole = self.load("whole.raw")
            for span, start, end in spans:
                with self.subTest(kind=kind, span=span):
                    self.check(CONVERT, "-f", "--seconds", span, f"in.{kind}", "part.raw")
                    part = self.load("part.raw")
                    self.assertEqual(len(part), 2 * (end - start))
                    # The limiter, at work on GSM and VOX, starts anew at the cut.
                    wanted = array.array("h", whole[2 * start : 2 * end])
                    near = noise_ratio(wanted, array.array("h", part))
                    self.assertGreater(near, 25 if kind in ("gsm", "vox") else 150)
        for span in ("5", "-", "2-1", "a-b", "1:2:3:4-", "1e3-2e3"):
            self.check(CONVERT, "--seconds", span, "in.wav", "no.wav", status=2, says=span)
        says = "in.wav: holds no sound"
        self.check(CONVERT, "--seconds", "2-3", "in.wav", "no.wav", status=1, says=says)

    def test_info(self):
        self.save("a.b.WAV", wav(tone(12000, 2), 2))
        self.save("mp3.wav", wav(b"1234", tag=0x55))
        self.check(CONVERT, "-e", "alaw", "a.b.WAV", "a.wav.sNd")
        told = self.check(CONVERT, "--info", "a.b.WAV", "mp3.wav", "a.wav.sNd")
        for line in (
            "a.b.WAV:\n  Type: wav\n  Codec: Microsoft PCM Format\n  Rate: 8000\n  Channels: 2\n  Frames: 12000\n  Time: 0:00:01.500",
            "mp3.wav:\n  Type: wav\n  Codec: MPEG-1 Layer 3 (MP3)\n  Rate: 8000",
            "a.wav.sNd:\n  Type: au\n  Codec: Microsoft ALAW (CCITT A-Law)",
        ):
            self.assertIn(line, told)
        rest = b"\0" * 12 + b"\x0bTo Mr Smith" + b"\0" * 10 + b"\0" * 5 + b"\1"
        self.save("letter.dct", struct.pack("<HII", 1, 10 + len(rest), 0) + rest)
        told = self.check(CONVERT, "--info", "letter.dct")
        self.assertRegex(told, r"Type: dictation\n  Version: 1\n  Encrypted: No[^$]*To Mr Smith")
        says = "gone.wav: No such file"
        told = self.check(CONVERT, "--info", "gone.wav", "mp3.wav", status=1, says=says)
        self.assertIn("mp3.wav", told)

    def test_what_cannot_be_done_is_said_and_leaves_nothing(self):
        good = wav(tone(1000))
        for name, data in (
            ("good.wav", good),
            ("empty.wav", b""),
            ("deep.wav", wav(b"\0" * 30, tag=0x55)),
            ("phone.wav", b"\0\0\0\x20ftypM4A " + bytes(50)),
            ("film.au", b"\0\0\0\x20ftypM4A " + bytes(50)),
            ("talk", b"ID3\4" + bytes(50)),
            ("wav", b"12"),
            ("wild.au", b".snd" + struct.pack(">5I", 24, 600, 3, 0x7FFFFFFF, 255) + bytes(600)),
            ("there.wav", b"mine"),
        ):
            self.save(name, data)
        os.mkfifo(self.path("fifo.wav"))
        os.mkdir(self.path("folder.wav"))
        os.symlink("loop.wav", self.path("loop.wav"))
        os.symlink("nowhere.wav", self.path("link.wav"))
        before = self.files()
        failures = [
            (["gone.wav", "o.wav"], 1, "gone.wav: No such file"),
            (["empty.wav", "o.wav"], 1, "empty.wav: is not a valid wav file"),
            (["deep.wav", "o.wav"], 1, "deep.wav: holds wav data in an encoding that cannot be read: MPEG-1 Layer 3"),
            (["phone.wav", "o.wav"], 1, "is not a valid wav file; it holds MPEG-4 sound"),
            (["film.au", "o.wav"], 1, "is not a valid au file; it holds MPEG-4 sound"),
            (["talk", "o.wav"], 1, "talk: holds MP3 sound, which is not read here"),
            (["wild.au", "o.wav"], 1, "wild.au: has a rate of 2147483647 Hz"),
            (["--seconds", "400000:00:00-", "good.wav", "o.wav"], 1, "holds no sound in that part"),
            (["fifo.wav", "o.wav"], 1, "fifo.wav: is not a regular file"),
            (["folder.wav", "o.wav"], 1, "folder.wav: is a folder"),
            (["loop.wav", "o.wav"], 1, "loop.wav: Too many levels"),
            (["-f", "good.wav", "link.wav"], 1, "link.wav: is a link to a file that does not"),
            (["--quality=fast", "-r196000", "good.wav", "o.wav"], 1, "o.wav: sound of 8000 Hz can become"),
            (["wav", "o.wav"], 1, "wav: has no extension"),
            (["good.wav", "there.wav"], 1, "there.wav: exists already"),
            (["-f", "good.wav", "folder.wav"], 1, "folder.wav: is a folder"),
            (["-f", "good.wav", "fifo.wav"], 1, "fifo.wav: is not a regular file"),
            (["good.wav", "no/such/o.wav"], 1, "no/such/o.wav: No such file"),
            (["good.wav", "o.mp3"], 1, "o.mp3: the MP3 encoder component is not installed"),
            (["-f", "good.wav", "/dev/full", "-t", "raw"], 1, "/dev/full: No space left"),
            (["--info", "-"], 2, "takes files"),
            (["good.wav", "o.ogg"], 2, "o.ogg: ogg files can be read but not written"),
            (["--quality=best", "good.wav", "o.wav"], 2, "best"),
            (["good.wav"], 2, "an input and an output"),
            (["good.wav", "o.wav/x"], 2, "o.wav/x"),
            (["-r", "999", "good.wav", "o.wav"], 2, "999"),
            (["-e", "pcm24", "good.wav", "o.wav"], 2, "pcm24"),
            (["--nonsense"], 2, "nonsense"),
            (["--info"], 2, "at least one file"),
        ]
        for arguments, status, says in failures:
            with self.subTest(arguments=arguments):
                self.check(CONVERT, *arguments, status=status, says=says)
                self.assertEqual(self.files(), before)
        self.assertEqual(self.load("there.wav"), b"mine")
        self.assertIn("Usage:", self.check(CONVERT, "--help"))
        self.assertEqual(self.check(CONVERT, "--version"), "lectora-convert 1.05\n")

    def test_a_file_shorter_than_its_header_says_is_told_of_and_not_filled_up(self):
        self.save("whole.wav", wav(tone(1000)))
        for kind, rest in (("wav", 1046), ("au", 1024), ("aiff", 1054)):
            self.check(CONVERT, "-f", "whole.wav", f"cut.{kind}")
            os.truncate(self.path(f"cut.{kind}"), rest)
            self.check(CONVERT, "-f", f"cut.{kind}", "out.raw", says=f"cut.{kind}: is cut short")
            self.assertEqual(self.load("out.raw"), tone(500).tobytes())
            self.assertIn("Missing: ", self.check(CONVERT, "--info", f"cut.{kind}"))

    def test_a_header_that_says_there_is_no_sound_is_not_believed_when_there_is(self):
        samples = tone(500)
        self.save("crashed.wav", wav(samples, data_size=0))
        self.check(CONVERT, "crashed.wav", "o.raw", says="crashed.wav: says that it is empty")
        self.assertEqual(self.load("o.raw"), samples.tobytes())
        self.assertIn("Frames: 500", self.check(CONVERT, "--info", "crashed.wav"))
        self.save("empty.wav", wav(b"LIST\4\0\0\0abcd", data_size=0))
        self.check(CONVERT, "empty.wav", "o.al", says="")
        self.assertEqual(self.load("o.al"), b"")

    def test_overwriting_replaces_the_file_and_keeps_its_mode_and_links(self):
        self.save("a.wav", wav(tone(1000)))
        self.save("there.wav", b"mine")
        os.chmod(self.path("there.wav"), 0o640)
        os.symlink("there.wav", self.path("link.wav"))
        self.check(CONVERT, "-f", "a.wav", "link.wav")
        self.assertTrue(os.path.islink(self.path("link.wav")))
        self.assertEqual(os.stat(self.path("there.wav")).st_mode & 0o777, 0o640)
        self.check(CONVERT, "-f", "-e", "pcm8", "a.wav", "a.wav")  # onto itself
        self.assertEqual(len(self.load("a.wav")), 1046)
        if os.getuid() == 0:
            os.chown(self.path("there.wav"), 4321, 1234)
            self.check(CONVERT, "-f", "a.wav", "there.wav")
            info = os.stat(self.path("there.wav"))
            self.assertEqual((info.st_uid, info.st_gid, info.st_mode & 0o777), (4321, 1234, 0o640))
        self.assertEqual(self.files(), ["a.wav", "link.wav", "there.wav"])

    def test_a_full_disk_or_a_dying_encoder_leaves_no_output(self):
        self.save("a.wav", wav(tone(100000)))
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (2000, 2000))
        for target in ("o.wav", "o.au", "o.aiff", "o.raw", "o.ul", "o.vox", "o.gsm"):
            self.check(CONVERT, "a.wav", target, status=1, says="File too large", preexec_fn=limit)
            self.assertEqual(self.files(), ["a.wav"])
        self.install_encoder("#!/bin/sh\nhead -c 99 >/dev/null\nexit 3\n")
        self.check(CONVERT, "a.wav", "o.mp3", status=1, says="o.mp3: ")
        self.assertEqual(self.files(), ["a.wav"])

    def test_sizes_beyond_what_headers_and_counters_hold_are_refused(self):
        stereo = ["--raw-rate=8000", "--raw-channels=2", "--raw-encoding=pcm8s"]
        for name, size, options, says in (
            ("in.ul", 2200 << 20, [], "too long"),
            ("stereo.raw", 3 << 30, stereo, "4 GiB"),
        ):
            with open(self.path(name), "wb") as file:
                file.truncate(size)
            self.check(CONVERT, *options, name, "o.wav", status=1, says=says)
            self.assertEqual(self.files(), [name])
            os.unlink(self.path(name))

    def test_an_interrupted_run_leaves_nothing(self):
        with open(self.path("long.wav"), "wb") as file:
            file.write(wav(b"", data_size=1 << 30))
            file.truncate(1 << 30)
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGKILL):
            with self.subTest(number=number):
                run = self.start(CONVERT, "-r", "16000", "long.wav", "o.wav", stderr=subprocess.PIPE)
                deadline = time.time() + 20
                while len(self.files()) < 2 and time.time() < deadline:
                    time.sleep(0.01)
                run.send_signal(number)
                message = run.communicate(timeout=20)[1].decode()
                left = [name for name in self.files() if name != "long.wav"]
                if number == signal.SIGKILL:  # nothing is left that could clean up
                    for name in left:
                        self.assertTrue(name.startswith(".") and not name.endswith(".wav"))
                else:
                    self.assertEqual((run.returncode, left), (-number, []))
                    self.assertIn("o.wav: stopped", message)

    def test_progress_stands_on_a_terminal_only(self):
        self.save("a.wav", wav(tone(400000)))
        ours, theirs = pty.openpty()
        run = self.start(CONVERT, "-r", "44100", "a.wav", "o.wav", stderr=theirs)
        os.close(theirs)
        seen = b""
        try:
            while block := os.read(ours, 4096):
                seen += block
        except OSError:
            pass  # how a terminal reports that its other end is closed
        os.close(ours)
        self.assertEqual(run.wait(), 0)
        self.assertRegex(seen.decode(), r"a\.wav [1-9]\d %")
        self.assertTrue(seen.endswith(b"\r\x1b[K"))


if __name__ == "__main__":
    unittest.main()
