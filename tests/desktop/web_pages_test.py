"""Pages from the web: the article, all of it, and addresses given, pasted and dropped."""
import http.server
import os
import ssl
import subprocess
import threading
import unittest

from desktop_case import DesktopCase, desktop

WORDS = "These are the words of an article that is long enough to be one. " * 6
PAGE = f"<html><head><title>T</title></head><body><nav><a href=/>Menu entry</a></nav><h1>Title</h1><p>{WORDS}</p></body></html>"
ARTICLE = "Title\n\n" + WORDS.strip()


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        if self.path == "/slow":
            self.server.may_end.wait()
        if self.path == "/mail":
            self.wfile.write(b"220 ready\r\n")
            return
        if self.path.startswith("/to?"):
            self.send_response(302)
            self.send_header("Location", self.path[4:])
            self.end_headers()
            return
        self.send_response(200)
        self.end_headers()
        try:
            while self.path == "/endless":
                self.wfile.write(b"word " * 13000)
        except OSError:
            return
        self.wfile.write(PAGE.encode())

    def log_message(self, *_):
        pass


class WebPagesTest(DesktopCase):
    def setUp(self):
        super().setUp()
        self.server = self.serve()

    def serve(self):
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        server.daemon_threads = True
        server.may_end = threading.Event()
        threading.Thread(target=server.serve_forever, daemon=True).start()
        for end in (server.server_close, server.shutdown, server.may_end.set):
            self.addCleanup(end)
        return server

    def serve_with_own_certificate(self):
        """Its address."""
        pem = os.path.join(desktop.HOME, "own.pem")
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", pem, "-out", pem + ".crt", "-days", "2", "-subj", "/CN=127.0.0.1",
            "-addext", "subjectAltName=IP:127.0.0.1"], check=True, capture_output=True)
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(pem + ".crt", pem)
        server = self.serve()
        server.socket = context.wrap_socket(server.socket, server_side=True)
        return f"https://127.0.0.1:{server.server_port}/page"

    def address(self, path):
        return f"http://127.0.0.1:{self.server.server_port}{path}"

    def test_an_address_brings_the_article_and_a_command_the_whole_page(self):
        lectora = self.start(self.address("/page"))
        desktop.wait_until(lambda: lectora.text() == ARTICLE, "the article")
        self.card.wait_for(self.card.next_stream(), "close")
        lectora.focus()
        desktop.press_keys("ctrl+shift+w")
        desktop.wait_until(lambda: lectora.text().startswith("Menu entry"), "the whole page")
        desktop.press_keys("ctrl+shift+w")
        desktop.wait_until(lambda: "Nothing around the text is left out" in lectora.status(), "the reason")
        # Selected in another program.
        self.select(self.address("/page"))
        for verb in ("--read-selection", "--stop"):
            subprocess.run([os.path.join(desktop.BUILD, "bin/lectora"), verb], check=True, timeout=desktop.PATIENCE)
        self.assertEqual(lectora.text(), ARTICLE)
        # Pasted alone; a page that does not come can be cancelled, and the text stays.
        for path in ("/other", "/slow"):
            subprocess.run(["xclip", "-selection", "clipboard"], input=self.address(path).encode(), check=True)
            desktop.press_keys("ctrl+a", "ctrl+v")
            if path == "/other":
                desktop.wait_until(lambda: lectora.text() == ARTICLE, "the pasted page's article")
                desktop.wait_until(lambda: "2 words around the article are left out" in lectora.status(), "the note")
                self.picture("web-page")
        lectora.find("label", self.address("/slow"))
        self.picture("web-page-loading")
        lectora.press("push button", "Cancel")
        desktop.wait_until(lambda: len(lectora.windows()) == 1, "the dialog to go")
        self.assertEqual(lectora.text(), self.address("/slow"))
        desktop.press_keys("ctrl+z")
        desktop.wait_until(lambda: lectora.text() == ARTICLE, "the text before")

        # A site that keeps no promise is told in one sentence, and takes no text away.
        for address, sentence in (
            (self.serve_with_own_certificate(), "127.0.0.1 cannot prove that it is what it says: its certificate is not valid."),
            ("/to?http://127.0.0.2/", "127.0.0.2 is an address inside this computer or network; a page that leads there is not followed."),
            ("/to?file:///etc/passwd", "127.0.0.1 leads to what is no web page."),
            ("/endless", "127.0.0.1 sends more than can be read."),
            ("/mail", "127.0.0.1 answers with something that is no web page."),
        ):
            self.select(address if address.startswith("https:") else self.address(address))
            desktop.press_keys("ctrl+b")
            lectora.find("label", sentence)
            lectora.press("push button", "OK")
            desktop.wait_until(lambda: len(lectora.windows()) == 1, "the box to go")
            self.assertEqual(lectora.text(), ARTICLE)


if __name__ == "__main__":
    unittest.main()
