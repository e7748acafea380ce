#!/usr/bin/python3
"""Writes the seed corpora: tiny files that between them take every branch of a header. Run after a format changes."""
import os
import io
import struct
import sys
import zipfile

HERE = os.path.dirname(os.path.abspath(__file__))
TONE = bytes(range(0, 240, 3))


def save(corpus, name, data):
    folder = os.path.join(HERE, "corpus", corpus)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as file:
        file.write(data)


def chunk(name, data, size=None, pad=True):
    padding = b"\0" if pad and len(data) % 2 else b""
    return name + struct.pack("<I", len(data) if size is None else size) + data + padding


def fmt(tag=1, channels=1, rate=8000, bits=16, extra=b"", align=None):
    align = channels * bits // 8 if align is None else align
    return chunk(
        b"fmt ",
        struct.pack("<HHIIHH", tag, channels, rate, rate * align & 0xFFFFFFFF, align, bits) + extra,
    )


def riff(*chunks, size=None):
    body = b"WAVE" + b"".join(chunks)
    return b"RIFF" + struct.pack("<I", len(body) if size is None else size) + body


def wav():
    data = chunk(b"data", TONE)
    save("wav", "plain", riff(fmt(), data))
    save("wav", "cbsize", riff(fmt(extra=b"\0\0"), data))
    save("wav", "stereo8", riff(fmt(channels=2, bits=8), data))
    save("wav", "streaming", riff(fmt(), chunk(b"data", TONE, 0xFFFFFFFF), size=0xFFFFFFFF))
    save(
        "wav", "chunks", riff(chunk(b"LIST", b"INFOodd"), fmt(), chunk(b"fact", b"\1\0\0\0"), data)
    )
    save("wav", "foreign", chunk(b"JUNK", b"12345678") + riff(fmt(), data))
    save("wav", "empty_chunks", riff(*[chunk(b"JUNK", b"")] * 200, fmt(), data))
    save("wav", "float", riff(fmt(tag=3, bits=32), data))
    save("wav", "bits24", riff(fmt(bits=24), data))
    save("wav", "mp3_tag", riff(fmt(tag=0x55, bits=0, extra=b"\x0c\0" + b"\1" * 12), data))
    save("wav", "zeros", riff(fmt(channels=0, rate=0, bits=0, align=0), data))
    save("wav", "large", riff(fmt(channels=255, rate=196000), data))
    for size in (0x7FFFFFFF, 0x80000000, 0xFFFFFFFE):
        save("wav", f"chunk_{size:x}", riff(chunk(b"LIST", b"ab", size), fmt(), data))
        save("wav", f"data_{size:x}", riff(fmt(), chunk(b"data", TONE, size)))
    save("wav", "fmt_short", riff(chunk(b"fmt ", b"\1\0\1\0" * 3 + b"\0"), data))
    save("wav", "fmt_twice", riff(fmt(), fmt(channels=2), data))
    save("wav", "data_first", riff(data, fmt()))


def au():
    for encoding in (0, 1, 2, 3, 6, 27):
        save(
            "au",
            f"encoding_{encoding}",
            struct.pack(">4sIIIII", b".snd", 24, len(TONE), encoding, 8000, 1) + TONE,
        )
    save("au", "unknown_size", struct.pack(">4sIIIII", b".snd", 32, 0xFFFFFFFF, 3, 44100, 2) + TONE)
    save(
        "au",
        "extremes",
        struct.pack(">4sIIIII", b".snd", 0, 0x80000000, 3, 0xFFFFFFFF, 0xFFFFFFFF) + TONE,
    )
    save("au", "zeros", struct.pack(">4sIIIII", b".snd", 24, 0, 3, 0, 0) + TONE)
    save("au", "short", b".snd\0\0\0\x18")


def aiff():
    def chunk_be(name, data, size=None):
        return name + struct.pack(">I", len(data) if size is None else size) + data

    def comm(channels=1, frames=40, bits=16, rate=b"\x40\x0b\xfa" + b"\0" * 7, more=b""):
        return chunk_be(b"COMM", struct.pack(">HIH", channels, frames, bits) + rate + more)

    def form(*chunks, kind=b"AIFF"):
        return chunk_be(b"FORM", kind + b"".join(chunks))

    ssnd = chunk_be(b"SSND", b"\0" * 8 + TONE)
    save("aiff", "plain", form(comm(), ssnd))
    save("aiff", "bytes", form(comm(channels=2, bits=8), ssnd))
    save("aiff", "long_comm", form(comm(more=b"more"), ssnd))
    save(
        "aiff",
        "other_chunks",
        form(chunk_be(b"NAME", b"odd"), comm(), chunk_be(b"MARK", b""), ssnd),
    )
    save("aiff", "aifc", form(comm(more=b"NONE\0\0"), ssnd, kind=b"AIFC"))
    save("aiff", "bits24", form(comm(bits=24), ssnd))
    for name, rate in (
        ("zero", b"\0" * 10),
        ("infinity", b"\x7f\xff\x80" + b"\0" * 7),
        ("nan", b"\x7f\xff" + b"\xff" * 8),
        ("negative", b"\xc0\x0b\xfa" + b"\0" * 7),
        ("huge", b"\x40\x1e" + b"\xff" * 8),
    ):
        save("aiff", "rate_" + name, form(comm(rate=rate), ssnd))
    for size in (0, 4, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF):
        save("aiff", f"ssnd_{size:x}", form(comm(), chunk_be(b"SSND", b"\0" * 8 + TONE, size)))
        save("aiff", f"comm_{size:x}", form(chunk_be(b"COMM", b"\0" * 18, size), ssnd))


def headerless():
    for codec in range(10):
        for channels in (0, 1, 2, 255):
            save("raw", f"codec_{codec}_{channels}", bytes([codec, channels]) + TONE)
    infinities = struct.pack("<6f", float("inf"), float("-inf"), float("nan"), 1e30, -1e30, 0.5)
    save("raw", "float_extremes", bytes([7, 1]) + infinities)
    save(
        "raw",
        "float_be_extremes",
        bytes([8, 1]) + b"".join(infinities[i : i + 4][::-1] for i in range(0, 24, 4)),
    )
    save("vox", "tone", TONE)
    save("vox", "one", b"\x08")
    save("gsm", "frames", (b"\xd0" + TONE[:32]) * 4)
    save("gsm", "partial", b"\xd0" + b"\xff" * 32 + b"\xd5\x55")
    save("gsm", "noise", bytes((i * i * 37 + i * 11) & 255 for i in range(1300)))
    for corpus in (
        "raw",
        "vox",
        "gsm",
        "wav",
        "au",
        "aiff",
        "dictation",
        "settings_file",
        "dat_file",
    ):
        save(corpus, "empty", b"")


def dictation():
    def header(version, flags, rest, size=None):
        extra = struct.pack("<I", 3) + b"abc" if version == 3 else b""
        body = b"\0" * 8 + extra + b"\0" * 4 + rest
        return struct.pack("<HII", version, 10 + len(body) if size is None else size, flags) + body

    notes = b"\5Smith" + b"\0" * 9 + b"\xff" + b"n" * 255
    tail = b"\0" + struct.pack("<I", 2) + b"xy"
    files = b"\2" + b"\3a.b" + struct.pack("<I", 4) + b"data" + b"\0" + struct.pack("<I", 0)
    save("dictation", "version0", header(0, 0, b"\0" * 11 + tail))
    save("dictation", "version1", header(1, 0, notes + tail + b"\1"))
    save("dictation", "attachments", header(2, 6, notes + tail + files + b"\1"))
    save("dictation", "version3", header(3, 4, notes + tail + files + b"\1audio"))
    save("dictation", "version4", header(4, 0, notes + tail + b"\1"))
    save("dictation", "no_end_mark", header(1, 0, notes + tail + b"\0"))
    save("dictation", "long_block", header(1, 0, notes + b"\0" + struct.pack("<I", 0xFFFFFFFF)))
    save(
        "dictation",
        "long_file",
        header(2, 4, notes + tail + b"\1\0" + struct.pack("<I", 0x7FFFFFFF)),
    )
    save("dictation", "wrong_size", header(1, 0, notes + tail + b"\1", 7))


def settings():
    save("settings_file", "plain", b"rate=44100\r\nsome key=old\r\nempty=\r\n")
    save("settings_file", "odd", b"a==b\n=c\rKey=V\n\r  x = y = z\r\r\nnothing\n\0=\0")
    save("settings_file", "long", b"k" * 300 + b"=" + b"v" * 300 + b"\nsome key=1\nsome key=2")
    save("dat_file", "plain", b"[one]\r\na=1\r\nb=2\r\n\r\n[section]\r\nkey=old\r\n\r\n")
    save(
        "dat_file",
        "odd",
        b"early=1\n[ONE\na=1\nA=2\n[]x\n=v\n[one]]\nb\n\0[\0=\0\n\r\n\n\r[section\nKEY=1",
    )
    save(
        "dat_file",
        "long",
        b"[" + b"s" * 600 + b"]\n" + b"k" * 300 + b"=" + b"v" * 300 + b"\n" + b"x" * 551 + b"=y\n",
    )


def archive(**files):
    out = io.BytesIO()
    with zipfile.ZipFile(out, "w", zipfile.ZIP_DEFLATED) as writer:
        for name, text in files.items():
            # Always the same time, so that the seeds stay the same.
            writer.writestr(zipfile.ZipInfo(name), text)
    return out.getvalue()


def documents():
    page = "<!DOCTYPE html><html><head><meta charset=latin1><style>p{}</style></head><body hidden=no>"
    page += "<h1>A</h1><p>b<br>c &amp;&eacute;<script>x<y</script><!-- d --><pre>e\n f</pre>"
    page += "<table><tr><td>g<td>h</table><ul><li>i<img alt='j'></ul>"
    odt = "<?xml version='1.0'?><office:document xmlns:office='o' xmlns:text='t'><office:body>"
    odt += "<text:h>A</text:h><text:p>b<text:s/>c<text:note><text:p>d</text:p></text:note></text:p>"
    odt += "<table-cell><text:p>e</text:p></table-cell></office:body></office:document>"
    docx = "<w:document xmlns:w='w'><w:p><w:r><w:t>a &lt;</w:t><w:tab/><w:t>b</w:t></w:r></w:p>"
    docx += "<w:tbl><w:tr><w:tc><w:p><w:r><w:t>c</w:t></w:r></w:p></w:tc></w:tr></w:tbl></w:document>"
    entities = "<!DOCTYPE a [<!ENTITY b 'c'><!ENTITY d '&b;&b;'>]>"
    container = "<container><rootfile full-path='O/b.opf'/></container>"
    package = "<package><item id='a' href='../a%20.html' media-type='text/html'/>"
    package += "<itemref idref='a'/><itemref idref='a'/></package>"
    save("document", "page", page.encode("latin1"))
    save("page", "page", page.encode())
    save("charset", "page", page.encode("latin1"))
    save("document", "page_utf16", page.encode("utf-16"))
    save("document", "flat_odt", odt.encode())
    save("flat_odt", "odt", odt.encode())
    save("document", "odt", archive(**{"mimetype": "m", "content.xml": odt}))
    save("document", "docx", archive(**{"word/document.xml": docx}))
    styles = "<w:styles xmlns:w='w'><w:style w:styleId='h'><w:pPr><w:outlineLvl w:val='0'/></w:pPr></w:style></w:styles>"
    numbers = "<w:n xmlns:w='w'><w:abstractNum w:abstractNumId='1'><w:lvl w:ilvl='0'><w:numFmt w:val='lowerRoman'/>"
    numbers += "<w:lvlText w:val='%1.'/></w:lvl></w:abstractNum><w:num w:numId='2'><w:abstractNumId w:val='1'/></w:num></w:n>"
    notes = "<w:f xmlns:w='w'><w:footnote w:id='3'><w:p><w:r><w:t>note</w:t></w:r></w:p></w:footnote></w:f>"
    more = "<w:p><w:pPr><w:pStyle w:val='h'/></w:pPr><w:r><w:t>head</w:t><w:footnoteReference w:id='3'/></w:r></w:p><w:p>"
    more += "<w:pPr><w:numPr><w:ilvl w:val='0'/><w:numId w:val='2'/></w:numPr></w:pPr><w:r><w:t>item</w:t></w:r></w:p></w:document>"
    save("docx", "docx", "\x1f".join((docx.replace("</w:document>", more), styles, numbers, notes)).encode())
    save("document", "entities", archive(**{"word/document.xml": entities + docx}))
    save(
        "document",
        "epub",
        archive(
            **{
                "META-INF/container.xml": container,
                "META-INF/encryption.xml": "<e><CipherReference URI='O/font'/></e>",
                "O/b.opf": package,
                "a .html": page,
            }
        ),
    )
    save("document", "pages", b"Title 1\nA divi-\nded well-known\n1\n\x0cTitle 2\nwell-\nknown\n\x0c")
    save("pages", "pages", b"Title 1\nA divi-\nded well-known\n1\n\x0cTitle 2\nwell-\nknown\n\x0c")
    save("pages", "chapters", "\f".join(f"A Book\n\nChapter {n}\n\nWords {n} of it.\n\n{n}\n" for n in range(9)).encode())
    layout = '<page width="9">\n<block xMin="5" xMax="90">\n<line>\n'
    layout += '<word xMin="5" yMin="1" xMax="9" yMax="11">War</word>\n'
    layout += '<word xMin="9.1" yMin="1" xMax="11" yMax="5">2</word>\n</line>\n<line>\n'
    layout += '<word xMin="nan" yMin="-1e999" xMax="inf" yMax="1e300">a-</word>\n</line>\n'
    save("pdf_layout", "layout", layout.encode())
    columns = "<page>\n<block>\n"
    for line in range(10):
        for left in (5, 55):
            place = f'yMin="{10 * line}" yMax="{10 * line + 8}"'
            columns += f'<word xMin="{left}" xMax="{left + 40}" {place}>w{line}</word>\n'
        columns += "</line>\n"
    save("pdf_layout", "columns", (columns + "</page>\n").encode())
    save(
        "page",
        "broken_page",
        b"<p a='b>c<!-- <svg><path/></svg><math><msup><mi>x</mi><mn>2</mn></msup></math><sup>[1]</sup>"
        b"<ol start=9 type=i><li><title>d<![CDATA[e]]>&eacute&#x80;&#1114112;</p><table><td><script>",
    )
    pptx = "<p:sld xmlns:p='p' xmlns:a='a'><p:sp><p:ph type='title'/><a:p><a:t>f</a:t></a:p></p:sp></p:sld>"
    nav = "<html><body><nav type='toc'><ol><li><a href='a.xhtml'>One</a></li><li><a href='b.xhtml#c'>Two</a></li></ol></nav>"
    opf = "<package><metadata><dc:title>t</dc:title><dc:language>de</dc:language></metadata><manifest>"
    opf += "<item id='n' href='nav.xhtml' properties='nav' media-type='application/xhtml+xml'/>"
    opf += "".join(f"<item id='{c}' href='{c}.xhtml' media-type='application/xhtml+xml'/>" for c in "ab")
    opf += "</manifest><spine><itemref idref='a'/><itemref idref='b'/></spine></package>"
    save("epub", "epub", "\x1f".join((opf, nav, "<h1>One</h1><h3>Part</h3><p>a", "<body><h2 id='c'>Two</h2><p>b")).encode())
    slides = "<p:p xmlns:p='p' xmlns:r='r'><p:sldId id='1' r:id='r1'/></p:p>"
    save(
        "document",
        "pptx",
        archive(
            **{
                "ppt/presentation.xml": slides,
                "ppt/_rels/presentation.xml.rels": "<R><Relationship Id='r1' Target='s.xml'/></R>",
                "ppt/s.xml": pptx,
            }
        ),
    )
    relations = "<R><Relationship Id='r1' Target='s.xml'/><Relationship Id='r2' Target='t.xml'/></R>"
    two = slides.replace("</p:p>", "<p:sldId id='2' r:id='r2'/></p:p>")
    save("pptx", "pptx", "\x1f".join((two, relations, pptx, pptx)).encode())
    book = "<?xml version='1.0'?><FictionBook><body><title><p>a</p></title><section><p>b"
    book += "<a type='note'>1</a></p></section></body><binary>c</binary></FictionBook>"
    save("document", "fb2", book.encode())
    save("fiction_book", "fb2", book.encode())
    rtf = r"{\rtf1\ansi{\deleted a}{\v b}{\footnote c}\uc2 d\u252\'fc\'3f{\uc0\u-10179\u-8704}\u8217 ?e\'92}"
    save("rtf", "rtf", rtf.encode())
    article = "<title>a b</title><nav><a href=x>c</a></nav><main><div class='share-bar'><a href=y>d</a>"
    article += f"</div><article><h1>a b</h1><p>{'e ' * 150}</p></article><div id=comments>f</div></main>"
    save("page", "article", article.encode())
    mail = "From: =?utf-8?q?a?= <a@b>\nDate: Mon, 02 Mar 2026 10:20:00 +0100\nContent-Type: "
    mail += "multipart/mixed; boundary=x\n\n--x\nContent-Type: multipart/alternative; boundary=y\n\n"
    mail += "--y\n\nc=20d\n--y\nContent-Type: text/html; charset=koi8-r\nContent-Transfer-Encoding: "
    mail += "base64\n\nPHA+YQ==\n--y--\n--x\nContent-Type: message/rfc822\n\nSubject: e\n\nf\n--x--\n"
    save("document", "mail", mail.encode())
    save("mail", "mail", mail.encode())
    save("charset", "mixed", "“é” ".encode() + b"\xe9\xe2\x80\0\x93\xf0\x9f\x98")


def text_units():
    save("text_units", "plain", b"Hello, Dr. Smith. -- \"Yes!\" ... (no)\n\n* * *\nU.S.S.R., etc.  A")
    save("text_units", "signs", "€5bn, 3 − 2 = 10⁻⁶ ½ 20°C 5 Ω “π” Привет 😀 é e\u0301 ﬁ".encode())
    save("text_units", "runs", b"a" * 600 + b" " + b"-" * 300 + b" , b" * 300 + b"\n\x07\r\x0c\xe2\x80")


if __name__ == "__main__":
    for make in (wav, au, aiff, headerless, dictation, settings, documents, text_units):
        make()
    sys.exit(0)
