#!/usr/bin/python3
"""A component server with manners, which its argument or else the component's name tells. Prints its port and when it
hangs, or its installer does; serves until its input ends."""
import contextlib
import os
import socket
import sys
import threading
import time

INSTALL = 'mkdir -p "$HOME/components/{0}" && echo x > "$HOME/components/{0}/{0}"\n'


def answer(name, manner):
    """Status, Content-Length or None, and the body."""
    script = INSTALL.format(name).encode()
    if manner == "moved":
        return "302 Found", len(script), script
    if manner == "gone":
        return "404 Not Found", len(script), script
    if manner == "half":
        return "200 OK", 2 * len(script), script
    if manner == "over":
        return "200 OK", len(script) // 2, script
    if manner in ("page", "moved page"):
        script = b"\n<!DOCTYPE html>\n<title>Sign in</title>\n"
        return "200 OK" if manner == "page" else "302 Found", len(script), script
    if manner == "damaged":
        script = script.replace(b"&&", b"&& (")
    if manner == "unmeasured":
        return "200 OK", None, script
    if manner == "huge":
        return "200 OK", 1 << 40, script
    if manner == "garbled":
        return "200 OK", "12x", script
    if manner == "empty":
        return "200 OK", 0, b""
    if manner == "unwilling":
        script = b"echo working; echo Something is missing.; exit 1\n"
    if manner == "busy":
        script = b'echo "$$ $0" > "$HOME/new" && mv "$HOME/new" "$HOME/pid"; sleep 1000\n'
    if manner == "mp3el":
        with open(os.environ["MP3EL"], "rb") as file:
            script = file.read()
    return "200 OK", len(script), script


def hang():
    os.write(1, b"hanging\n")
    time.sleep(1000)


def serve(connection):
    with contextlib.suppress(ConnectionError), connection:
        request = b""
        while b"\r\n\r\n" not in request:
            more = connection.recv(4096)
            if not more:
                return
            request += more
        name = request.split()[1].decode().rsplit("/", 1)[1]
        manner = sys.argv[1] if len(sys.argv) > 1 else name
        if manner == "mute":
            hang()
        status, length, body = answer(name, manner)
        head = f"HTTP/1.0 {status}\r\nServer: test\r\n"
        if length is not None:
            head += f"Content-Length: {length}\r\n"
        connection.sendall(head.encode() + b"\r\n")
        if manner == "stalling":
            connection.sendall(body[: len(body) // 2])
            hang()
        connection.sendall(body)
    if manner == "busy":
        while not os.path.exists(os.path.join(os.environ["HOME"], "pid")):
            time.sleep(0.02)
        hang()


def main():
    listener = socket.create_server(("127.0.0.1", 0))
    os.write(1, b"%d\n" % listener.getsockname()[1])
    threading.Thread(target=lambda: (sys.stdin.read(), os._exit(0)), daemon=True).start()
    while True:
        threading.Thread(target=serve, args=(listener.accept()[0],), daemon=True).start()


main()
