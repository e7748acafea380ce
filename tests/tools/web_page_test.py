#!/usr/bin/python3
"""lectora-say with the address of a page, against a server that keeps no promise."""
import http.server
import io
import os
import shutil
import signal
import ssl
import subprocess
import threading
import unittest
import zipfile

from program_case import SAY, ProgramCase

WORDS = "These are the words of an article that is long enough to be one. " * 8
PAGE = f"<html><head><title>T</title></head><body><nav><a href=/>Menu entry</a></nav><h1>Title</h1><p>{WORDS}</p></body></html>"


def office_text(words):
    """A packed document: bytes that are no text in any charset."""
    file = io.BytesIO()
    with zipfile.ZipFile(file, "w", zipfile.ZIP_DEFLATED) as archive:
        archive.writestr("mimetype", "application/vnd.oasis.opendocument.text", zipfile.ZIP_STORED)
        office = "urn:oasis:names:tc:opendocument:xmlns:"
        archive.writestr("content.xml", f'<o:document-content xmlns:o="{office}office:1.0" xmlns:t="{office}text:1.0">'
            f"<o:body><o:text><t:p>{words}</t:p></o:text></o:body></o:document-content>")
    return file.getvalue()


# What a server says of the charset, and what it sends.
CHARSETS = {
    "/old": ("text/plain; charset=koi8-r", "Да, это слова страницы.".encode("koi8-r")),
    "/wrong": ("text/html; charset=iso-8859-1", "<p>Да, это слова страницы.".encode()),
    "/packed": ("application/octet-stream; charset=iso-8859-1", office_text("Да, это слова страницы.")),
}


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        server = self.server
        server.asked.append((self.path, dict(self.headers)))
        if self.path == "/page":
            self.answer(PAGE.encode(), "text/html")
        elif self.path in CHARSETS:
            kind, body = CHARSETS[self.path]
            self.answer(body, kind)
        elif self.path.startswith("/to?"):
            self.send_response(302)
            self.send_header("Set-Cookie", "a=b")
            self.send_header("Location", self.path[4:])
            self.end_headers()
        elif self.path == "/cut":
            self.send_response(200)
            self.send_header("Content-Length", "5000")
            self.end_headers()
            self.wfile.write(b"<p>beginning")
        elif self.path == "/mail":
            self.wfile.write(b"220 ready\r\n")
        elif self.path in ("/endless", "/heads"):
            self.send_response(200)
            block = b"word " * 13000 if self.path == "/endless" else b"X-A: " + b"b" * 60000 + b"\r\n"
            self.end_headers() if self.path == "/endless" else self.flush_headers()
            try:
                while True:
                    self.wfile.write(block)
            except OSError:
                pass
        elif self.path == "/slow":
            self.send_response(200)
            self.end_headers()
            self.wfile.write(b"<p>")
            self.wfile.flush()
            server.is_slow.set()
            server.may_end.wait()
        else:
            self.send_error(404)

    def answer(self, body, kind):
        self.send_response(200)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self, certificate=None):
        super().__init__(("127.0.0.1", 0), Handler)
        self.asked = []
        self.is_slow = threading.Event()
        self.may_end = threading.Event()
        if certificate:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(certificate)
            self.socket = context.wrap_socket(self.socket, server_side=True)
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def handle_error(self, *_):
        pass

    def address(self, path, scheme="http", host="127.0.0.1"):
        return f"{scheme}://{host}:{self.server_port}{path}"


class WebPageTest(ProgramCase):
    def setUp(self):
        super().setUp()
        self.server = self.serve()

    def serve(self, certificate=None):
        server = Server(certificate)
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        self.addCleanup(server.may_end.set)
        return server

    def say(self, address):
        run = subprocess.run([SAY, "--text", address], capture_output=True, env=self.environment, encoding="utf-8", timeout=100)
        return run.returncode, run.stdout, run.stderr

    def assert_refused(self, address, reason):
        status, text, told = self.say(address)
        self.assertEqual((status, text), (1, ""), told)
        self.assertIn(reason, told)
        self.assertIn(address, told)

    def test_a_page_is_fetched_and_read_without_what_surrounds_it(self):
        self.environment["http_proxy"] = "http://127.0.0.1:1/"
        for path in ("/page", "/to?/page", "/to?" + self.server.address("/to?/page")):
            status, text, told = self.say(self.server.address(path))
            self.assertEqual((status, text), (0, "Title\n\n" + WORDS.strip() + "\n"), told)
            self.assertIn("words around the article are left out", told)
        self.assertFalse([heads for _, heads in self.server.asked if "Cookie" in heads])
        for path in CHARSETS:
            self.assertIn("Да, это слова страницы.", self.say(self.server.address(path))[1], path)

    def test_no_page_leads_into_this_computer_or_to_a_file(self):
        for target in (
            self.server.address("/page", host="localhost"),
            self.server.address("/page", host="127.0.0.2"),
            self.server.address("/page", host="[::1]"),
            self.server.address("/page", host="[::ffff:127.0.0.1]"),
            self.server.address("/page", host="0.0.0.0"),
            self.server.address("/page", host="0x7f.1.1.1"),
            "http://169.254.169.254/",
            "http://10.1.2.3/",
        ):
            self.assert_refused(self.server.address("/to?" + target), "inside this computer or network")
        for target, reason in (("file:///etc/passwd", "no web page"), ("ftp://127.0.0.1/", "no web page"), ("gopher://127.0.0.1/", "no web page"), ("http://a:b@127.0.0.1/", "password")):
            self.assert_refused(self.server.address("/to?" + target), reason)
        self.assertFalse([path for path, _ in self.server.asked if path == "/page"])
        self.assert_refused(self.server.address("/to?" * 12 + "/page"), "on and on")

    def test_whatever_a_server_sends_ends_in_bounds(self):
        for path, reason in (("/endless", "more than can be read"), ("/heads", "more than can be read"), ("/cut", "before the page was whole"), ("/mail", "something that is no web page"), ("/none", "no such page (404)")):
            self.assert_refused(self.server.address(path), reason)
        port = self.server.server_port
        self.assert_refused(f"http://nobody.invalid:{port}/", "no site called nobody.invalid")
        closed = self.serve()
        closed.shutdown()
        closed.server_close()
        self.assert_refused(closed.address("/page"), "does not answer")
        slow = subprocess.Popen([SAY, "--text", self.server.address("/slow")], env=self.environment, stderr=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.assertTrue(self.server.is_slow.wait(100))
        slow.send_signal(signal.SIGINT)
        text, told = slow.communicate(timeout=100)
        self.assertEqual(text, "")
        self.assertIn("stopped", told)

    def test_a_certificate_that_nobody_vouches_for_is_refused(self):
        pem = self.path("own.pem")
        subprocess.run(
            ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", pem + ".key", "-out", pem, "-days", "2", "-subj", "/CN=localhost", "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1"],
            check=True, capture_output=True,
        )
        with open(pem, "ab") as both, open(pem + ".key", "rb") as key:
            shutil.copyfileobj(key, both)
        secure = self.serve(pem)
        for host in ("127.0.0.1", "localhost"):
            self.assert_refused(secure.address("/page", "https", host), "certificate is not valid")
        self.assertEqual(secure.asked, [])
        self.assertEqual(os.listdir(self.home + "/.quillon/lectora"), [])


if __name__ == "__main__":
    unittest.main()
