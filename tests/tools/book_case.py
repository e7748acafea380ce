"""A book to be spoken, and what other programs say of the sound."""
import array
import base64
import json
import os
import time
import zipfile

from program_case import EngineCase

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


class BookCase(EngineCase):
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

    def own_engine(self, file, name, language=""):
        folder = self.home + "/.quillon/lectora/engines"
        os.makedirs(folder, exist_ok=True)
        with open(f"{folder}/{file}.engine", "w") as engine:
            engine.write(f"[Engine]\nName={name}\nLanguage={language}\n"
                         f"Command=text2wave -eval '({name})' {{text}} -o {{wav}}\n")  # fmt: skip

    def stopped(self, command, number, made):
        """Runs it until a file is there, and ends it. What it has told."""
        run = self.start(*command, stderr=-1)
        self.addCleanup(run.kill)
        while not os.path.exists(self.path(made)) and run.poll() is None:
            time.sleep(0.01)
        run.send_signal(number)
        return run.communicate(timeout=30)[1].decode()
