#!/usr/bin/python3
"""An FTP server for tests: ftp_server.py DIRECTORY [--faulty]

Listens on 127.0.0.1 port 21, which a machine has once: one server runs at a time.

Serves DIRECTORY/files to the users `user` (all rights), `reader` and anonymous (reading only); the password is
`secret`. DIRECTORY/log gets a line for each connection, command and end of a connection. Names are bytes: what a
client sends is what the file is called. With --faulty every connection goes through a proxy that does what
DIRECTORY/fault.1 asks for (see ftp_proxy.py). It has further doors: the users `user2` to `userDOORS` have the rights of
`user`, and each has a file of faults of its own, DIRECTORY/fault.2 and so on.

Says "ready" when it listens, and runs until it is ended.
"""
import logging
import os
import pathlib
import signal
import socket
import sys
import warnings

warnings.filterwarnings("ignore")
from pyftpdlib.authorizers import DummyAuthorizer  # noqa: E402
from pyftpdlib.handlers import DTPHandler, FTPHandler  # noqa: E402
from pyftpdlib.ioloop import IOLoop  # noqa: E402
from pyftpdlib.log import config_logging  # noqa: E402

from ftp_proxy import Log, Proxy, in_background  # noqa: E402

HOST, PORT = "127.0.0.1", 21
DOORS = 24


def listen():
    try:
        return socket.create_server((HOST, PORT), backlog=64)
    except OSError as error:
        sys.exit(f"no FTP server can listen on {HOST} port {PORT}: {os.strerror(error.errno)}")


def users(files):
    authorizer = DummyAuthorizer()
    for name in ["user"] + [f"user{door}" for door in range(2, DOORS + 1)]:
        authorizer.add_user(name, "secret", files, perm="elradfmwMT")
    authorizer.add_user("reader", "secret", files, perm="elr")
    authorizer.add_anonymous(files, perm="elr")
    return authorizer


def session_class(directory, log, behind_proxy):
    """What serves one session. A proxy in front of it tells the log of connections and commands by itself; only the
    server knows when a session is over with all its files."""

    class Data(DTPHandler):
        unicode_errors = "surrogateescape"

    class Control(FTPHandler):
        authorizer = users(str(directory / "files"))
        dtp_handler = Data
        unicode_errors = "surrogateescape"
        auth_failed_timeout = 0.01
        over = False

        def on_connect(self):
            if not behind_proxy:
                log.write("connected")

        def on_disconnect(self):
            self.over = True
            log.write("gone")

        def pre_process_command(self, line, cmd, arg):
            if not behind_proxy:
                log.write(line)
            super().pre_process_command(line, cmd, arg)

    return Control


class Server:
    """Gives each session a thread and a loop of its own. In one loop for all, a session that ends while its data
    connection is open now and then takes another one's events with it, which then gets no answer."""

    # What the sessions look at.
    ip_map = ()  # of the addresses whose sessions are counted: none
    backlog = 5  # of a listener for one data connection

    def __init__(self, listener, session):
        self.socket, self.session = listener, session

    def _accept_new_cons(self):
        return True

    def serve(self):
        while True:
            in_background(self.serve_one, self.socket.accept()[0])

    def serve_one(self, client):
        client.setblocking(False)
        with IOLoop() as loop:
            session = self.session(client, self, ioloop=loop)
            if session.connected:
                session.handle()
                while not session.over:
                    loop.loop(timeout=0.05, blocking=False)


def faulty(directory, listener, log):
    """A proxy, and the server behind it."""
    behind = socket.create_server((HOST, 0))
    in_background(Server(behind, session_class(directory, log, behind_proxy=True)).serve)
    return Proxy(listener, behind.getsockname(), directory, log)


def main():
    directory = pathlib.Path(sys.argv[1])
    (directory / "files").mkdir(exist_ok=True)
    config_logging(level=logging.ERROR)
    listener = listen()
    log = Log(directory / "log")
    if sys.argv[2:] == ["--faulty"]:
        server = faulty(directory, listener, log)
    else:
        server = Server(listener, session_class(directory, log, behind_proxy=False))
    in_background(server.serve)
    print("ready", flush=True)
    signal.pause()


main()
