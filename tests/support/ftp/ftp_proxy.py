"""A man in the middle of FTP connections who can misbehave.

Each connection reads a file of faults when its USER comes: `userN` reads fault.N, every other user fault.1. What stands
before that, the greeting, is always fault.1's. The lines of a file are

    greeting TEXT          the server's first line is TEXT
    reply COMMAND TEXT     TEXT is the answer to COMMAND, which the server does not get to see
    silent COMMAND         COMMAND is never answered; `silent greeting` says nothing at all
    delay COMMAND SECONDS  COMMAND reaches the server later
    close COMMAND          the connection is closed when COMMAND comes
    listing FILE           each listing is the bytes of FILE
    cut COUNT              data goes no further behind so many bytes, in whichever direction, and everything is closed
    reset COUNT            the same, the data connections by a reset
    end COUNT              the data ends behind so many bytes, and the server says all the same that it is whole
    whole TEXT             TEXT takes the place of the server's 226, which says that a transfer is whole
    no data                the server's 150 comes, but no data connection
    hold COUNT             data stops for good behind so many bytes, and everything stays open; the log says "held"

In TEXT a "|" stands for the end of a line. An absent or empty file means an honest proxy.
"""
import pathlib
import queue
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
        try:
            text = path.read_text("latin-1")
        except FileNotFoundError:
            return
        for line in text.splitlines():
            words = 1 if line.split(" ")[0] in ("greeting", "whole", "listing") else 2
            self.lines.append(line.split(" ", words))

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


def drain(connection):
    while connection.recv(65536):
        pass


def in_background(target, *arguments):
    threading.Thread(target=target, args=arguments, daemon=True).start()


def connected(address):
    """Small pieces are sent at once: nobody waits for what would come with them."""
    connection = socket.create_connection(address)
    connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    return connection


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


class Transfer:
    """What passes between the two ends of one data connection and the control connection that it belongs to."""

    def __init__(self):
        self.command = queue.SimpleQueue()  # what was asked for; None when nothing will be
        self.carried = queue.SimpleQueue()  # whether the data has gone the whole way


def door_of(user):
    number = user.removeprefix("user")
    return int(number) if number != user and number.isdecimal() else 1


class Session:
    """One control connection and the data connections that belong to it."""

    def __init__(self, client, directory, log):
        self.client, self.directory, self.log = client, directory, log
        self.server = None
        self.faults = self.faults_at(1)
        self.transfer = Transfer()

    def faults_at(self, door):
        return Faults(self.directory / f"fault.{door}")

    def run(self, address):
        self.log.write("connected")
        try:
            self.server = connected(address)
            in_background(self.replies, self.faults)
            for line in lines_of(self.client):
                if not self.take(line):
                    break
        except OSError:
            pass
        finally:
            self.end()
            self.transfer.command.put(None)

    def end(self):
        close(self.client)
        if self.server:
            close(self.server)

    def say(self, data):
        try:
            self.client.sendall(data)
        except OSError:
            pass

    def replies(self, at_first):
        first = at_first.find("greeting")
        if at_first.find("silent", "greeting") is not None:
            return
        for line in lines_of(self.server):
            if line.startswith(b"226"):
                whole = self.faults.find("whole")
                if not self.transfer.carried.get():
                    line = text_of("426 the data connection broke")
                elif whole:
                    line = text_of(whole)
            self.say(text_of(first) if first else line)
            first = None
        self.end()

    def take(self, line):
        """Passes a command on, or does what a fault asks for instead. False when the connection is to end."""
        words = line.decode("utf-8", "surrogateescape").rstrip("\r\n")
        self.log.write(words)
        command, _, argument = words.partition(" ")
        command = command.upper()
        if command == "USER":
            self.faults = self.faults_at(door_of(argument))
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
        elif command in ("RETR", "STOR", "LIST"):
            self.transfer.command.put(command)
        self.server.sendall(line)
        return True

    def redirect(self, words):
        """Puts a listener of the proxy's own in the place of the client's."""
        numbers = [int(n) for n in words.split(" ")[1].split(",")]
        target = (".".join(map(str, numbers[:4])), numbers[4] * 256 + numbers[5])
        listener = socket.create_server(("127.0.0.1", 0))
        self.transfer.command.put(None)
        self.transfer = Transfer()
        in_background(self.join, listener, target, self.transfer)
        port = listener.getsockname()[1]
        return f"PORT 127,0,0,1,{port // 256},{port % 256}\r\n".encode()

    def join(self, listener, target, transfer):
        """Carries one transfer. The server may connect before it is asked for anything."""
        carried = False
        try:
            with listener:
                listener.settimeout(60)
                server, _ = listener.accept()
            with server:
                command = transfer.command.get()
                if command is None or self.faults.find("no", "data") is not None:
                    return
                with connected(target) as client:
                    carried = self.carry(command, server, client)
        except OSError:
            pass
        finally:
            transfer.carried.put(carried)

    def carry(self, command, server, client):
        if command == "LIST":
            listing = self.faults.find("listing")
            if listing:
                self.replace_listing(listing, server, client)
                return True
            return self.pump(server, client)
        source, target = (client, server) if command == "STOR" else (server, client)
        return self.pump(source, target, *self.limit())

    def replace_listing(self, listing, server, client):
        drain(server)
        client.sendall(pathlib.Path(listing).read_bytes())

    def limit(self):
        for kind in ("cut", "reset", "end", "hold"):
            count = self.faults.find(kind)
            if count is not None:
                return kind, int(count)
        return None, None

    def pump(self, source, target, kind=None, left=None):
        """Whether all has gone through, as far as anybody is to know."""
        while left != 0 and (data := source.recv(min(65536, left or 65536))):
            target.sendall(data)
            if left:
                left -= len(data)
        if left == 0:
            self.stop(kind, source, target)
        return left != 0 or kind == "end"

    def stop(self, kind, source, target):
        if kind == "hold":
            self.log.write("held")
            time.sleep(3600)
        if kind == "reset":
            close(source, reset=True)
            close(target, reset=True)
            self.end()
            return
        # A connection that is closed with bytes in it would be reset. What has gone is taken in before the end comes.
        target.shutdown(socket.SHUT_WR)
        drain(source)
        drain(target)
        if kind == "cut":
            self.end()


class Proxy:
    def __init__(self, listener, server, directory, log):
        self.listener, self.server, self.directory, self.log = listener, server, directory, log

    def serve(self):
        while True:
            client, _ = self.listener.accept()
            client.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            in_background(Session(client, self.directory, self.log).run, self.server)
