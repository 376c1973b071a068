"""A man in the middle of FTP connections who can misbehave.

Each new connection reads the file of faults: lines of

    greeting TEXT          the server's first line is TEXT
    reply COMMAND TEXT     TEXT is the answer to COMMAND, which the server does not get to see
    silent COMMAND         COMMAND is never answered; `silent greeting` says nothing at all
    delay COMMAND SECONDS  COMMAND reaches the server later
    close COMMAND          the connection is closed when COMMAND comes
    listing FILE           each listing is the bytes of FILE
    cut COUNT              everything is closed behind so many bytes of data, in whichever direction
    reset COUNT            the same, by a reset
    end COUNT              the data connection ends behind so many bytes, the commands go on
    no data                the server's 150 comes, but no data connection
    hold COUNT             data stops for good behind so many bytes, and everything stays open

In TEXT a "|" stands for the end of a line. An absent or empty file means an honest proxy.
"""
import pathlib
import socket
import struct
import threading
import time


class Log:
    def __init__(self, path):
        self.file = open(path, "ab", buffering=0) if path else None

    def write(self, line):
        if self.file:
            self.file.write(line.encode("utf-8", "surrogateescape") + b"\n")


class Faults:
    def __init__(self, path):
        self.lines = []
        if path.exists():
            self.lines = [line.split(" ", 2) for line in path.read_text("latin-1").splitlines() if line]

    def find(self, verb, command=None):
        """The last word of the first line that starts so, or None."""
        for line in self.lines:
            if line[0] == verb and command in (None, line[1]):
                return line[-1]
        return None


def text_of(words):
    return words.encode("latin-1").replace(b"|", b"\r\n") + b"\r\n"


def close(connection, reset=False):
    try:
        if reset:
            connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        else:
            connection.shutdown(socket.SHUT_RDWR)
    except OSError:
        pass
    connection.close()


def in_background(target, *arguments):
    threading.Thread(target=target, args=arguments, daemon=True).start()


def lines_of(connection):
    waiting = b""
    while True:
        try:
            part = connection.recv(65536)
        except OSError:
            return
        if not part:
            return
        waiting += part
        *lines, waiting = waiting.split(b"\n")
        for line in lines:
            yield line + b"\n"


class Session:
    """One control connection and the data connections that belong to it."""

    def __init__(self, client, server, faults, log):
        self.client, self.server, self.faults, self.log = client, server, faults, log
        self.command = ""
        self.listing = faults.find("listing")
        self.guard = threading.Lock()

    def run(self):
        self.log.write("connected")
        in_background(self.replies)
        for line in lines_of(self.client):
            if not self.take(line):
                break
        self.end()
        self.log.write("gone")

    def end(self, reset=False):
        close(self.client, reset)
        close(self.server)

    def say(self, data):
        try:
            self.client.sendall(data)
        except OSError:
            pass

    def replies(self):
        first = self.faults.find("greeting")
        if self.faults.find("silent", "greeting") is not None:
            return
        for line in lines_of(self.server):
            self.say(text_of(first) if first else line)
            first = None
        self.end()

    def take(self, line):
        """Passes a command on, or does what a fault asks for instead. False when the connection is to end."""
        words = line.decode("utf-8", "surrogateescape").rstrip("\r\n")
        self.log.write(words)
        self.command = command = words.split(" ")[0].upper()
        if self.faults.find("close", command) is not None:
            return False
        if self.faults.find("silent", command) is not None:
            return True
        reply = self.faults.find("reply", command)
        if reply is not None:
            self.say(text_of(reply))
            return True
        delay = self.faults.find("delay", command)
        if delay is not None:
            time.sleep(float(delay))
        if command == "PORT":
            line = self.redirect(words)
        try:
            self.server.sendall(line)
        except OSError:
            return False
        return True

    def redirect(self, words):
        """Puts a listener of the proxy's own in the place of the client's."""
        numbers = [int(n) for n in words.split(" ")[1].split(",")]
        target = (".".join(map(str, numbers[:4])), numbers[4] * 256 + numbers[5])
        listener = socket.create_server(("127.0.0.1", 0))
        in_background(self.join, listener, target)
        port = listener.getsockname()[1]
        return f"PORT 127,0,0,1,{port // 256},{port % 256}\r\n".encode()

    def join(self, listener, target):
        listener.settimeout(60)
        try:
            server, _ = listener.accept()
            if self.faults.find("no", "data") is not None:
                return
            client = socket.create_connection(target)
        except OSError:
            return
        finally:
            listener.close()
        if self.listing and self.command == "LIST":
            self.replace_listing(server, client)
            return
        down = threading.Thread(target=self.pump, args=(server, client), daemon=True)
        down.start()
        self.pump(client, server)
        down.join()
        server.close()
        client.close()

    def replace_listing(self, server, client):
        while server.recv(65536):
            pass
        try:
            client.sendall(pathlib.Path(self.listing).read_bytes())
        except OSError:
            pass
        close(client)
        server.close()

    def pump(self, source, target):
        kind, left = self.limit()
        try:
            while data := source.recv(min(65536, left) if left else 65536):
                target.sendall(data)
                if left:
                    left -= len(data)
                if left == 0:
                    self.stop(kind, source, target)
                    return
            target.shutdown(socket.SHUT_WR)
        except OSError:
            pass

    def limit(self):
        for kind in ("cut", "reset", "end", "hold"):
            count = self.faults.find(kind)
            if count is not None and self.command in ("RETR", "STOR"):
                return kind, int(count)
        return None, None

    def stop(self, kind, source, target):
        if kind == "hold":
            time.sleep(3600)
        if kind != "end":
            self.end(reset=kind == "reset")
        close(source, reset=kind == "reset")
        close(target, reset=kind == "reset")


class Proxy:
    def __init__(self, listener, server, faults, log):
        self.listener, self.server, self.faults, self.log = listener, server, faults, log

    def serve(self):
        while True:
            client, _ = self.listener.accept()
            server = socket.create_connection(self.server)
            in_background(Session(client, server, Faults(self.faults), self.log).run)
