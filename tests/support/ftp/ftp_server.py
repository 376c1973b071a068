#!/usr/bin/python3
"""An FTP server on 127.0.0.1:21 for tests: ftp_server.py DIRECTORY [--faulty]

Serves DIRECTORY/files to the users `user` (all rights), `reader` and anonymous (reading only); the password is
`secret`. DIRECTORY/log gets a line for each connection, command and end of a connection. Names are bytes: what a
client sends is what the file is called. With --faulty every connection goes through a proxy that does what
DIRECTORY/fault asks for (see ftp_proxy.py).

Says "ready" when it listens, and runs until it is ended.
"""
import pathlib
import socket
import sys
import threading
import warnings

warnings.filterwarnings("ignore")
from pyftpdlib.authorizers import DummyAuthorizer  # noqa: E402
from pyftpdlib.handlers import DTPHandler, FTPHandler  # noqa: E402
from pyftpdlib.log import config_logging  # noqa: E402
from pyftpdlib.servers import FTPServer  # noqa: E402

from ftp_proxy import Log, Proxy  # noqa: E402

ADDRESS = ("127.0.0.1", 21)


def listen():
    listener = socket.socket()
    listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    try:
        listener.bind(ADDRESS)
    except OSError as error:
        sys.exit(f"no FTP server can listen on {ADDRESS[0]}:{ADDRESS[1]}: {error.strerror}")
    listener.listen(64)
    return listener


def users(files):
    authorizer = DummyAuthorizer()
    authorizer.add_user("user", "secret", files, perm="elradfmwMT")
    authorizer.add_user("reader", "secret", files, perm="elr")
    authorizer.add_anonymous(files, perm="elr")
    return authorizer


def handler(directory, log):
    class Data(DTPHandler):
        unicode_errors = "surrogateescape"

    class Control(FTPHandler):
        authorizer = users(str(directory / "files"))
        dtp_handler = Data
        unicode_errors = "surrogateescape"
        auth_failed_timeout = 0.01

        def on_connect(self):
            log.write("connected")

        def on_disconnect(self):
            log.write("gone")

        def pre_process_command(self, line, cmd, arg):
            log.write(line)
            super().pre_process_command(line, cmd, arg)

    return Control


def main():
    directory = pathlib.Path(sys.argv[1])
    (directory / "files").mkdir(exist_ok=True)
    config_logging(level=50)
    listener = listen()
    log = Log(directory / "log")
    if sys.argv[2:] == ["--faulty"]:
        server = FTPServer(("127.0.0.1", 0), handler(directory, Log(None)))
        proxy = Proxy(listener, server.socket.getsockname(), directory / "fault", log)
        threading.Thread(target=proxy.serve, daemon=True).start()
    else:
        server = FTPServer(listener, handler(directory, log))
    print("ready", flush=True)
    server.serve_forever(timeout=0.05)


main()
