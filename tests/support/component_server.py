#!/usr/bin/python3
"""A component server with manners that its components' names tell. Prints its port and when it hangs; serves
until its input ends."""
import os
import socket
import sys
import threading
import time

INSTALL = 'mkdir -p "$HOME/components/{0}" && echo x > "$HOME/components/{0}/{0}"\n'


def answer(name):
    """Status, Content-Length or None, and the body."""
    script = INSTALL.format(name).encode()
    if name == "moved":
        return "302 Found", len(script), script
    if name == "gone":
        return "404 Not Found", len(script), script
    if name == "half":
        return "200 OK", 2 * len(script), script
    if name == "unmeasured":
        return "200 OK", None, script
    if name == "huge":
        return "200 OK", 1 << 40, script
    if name == "garbled":
        return "200 OK", "12x", script
    if name == "empty":
        return "200 OK", 0, b""
    if name == "unwilling":
        script = b"echo working; echo Something is missing.; exit 1\n"
    if name == "mp3el":
        with open(os.environ["MP3EL"], "rb") as file:
            script = file.read()
    return "200 OK", len(script), script


def hang():
    os.write(1, b"hanging\n")
    time.sleep(1000)


def serve(connection):
    with connection:
        request = b""
        while b"\r\n\r\n" not in request:
            request += connection.recv(4096)
        name = request.split()[1].decode().rsplit("/", 1)[1]
        if name == "mute":
            hang()
        status, length, body = answer(name)
        head = f"HTTP/1.0 {status}\r\nServer: test\r\n"
        if length is not None:
            head += f"Content-Length: {length}\r\n"
        connection.sendall(head.encode() + b"\r\n")
        if name == "stalling":
            connection.sendall(body[: len(body) // 2])
            hang()
        connection.sendall(body)


def main():
    listener = socket.create_server(("127.0.0.1", 0))
    os.write(1, b"%d\n" % listener.getsockname()[1])
    threading.Thread(target=lambda: (sys.stdin.read(), os._exit(0)), daemon=True).start()
    while True:
        threading.Thread(target=serve, args=(listener.accept()[0],), daemon=True).start()


main()
