#!/usr/bin/python3
"""The community server of tools/community-server, misbehaving on request: each new
command reads the mode from the file "hostile-mode" in the served folder, so one
server serves every case of a test suite. Modes:

  normal         behaves
  bad-names      the listing names files that reach outside the folder, and one good file
  many-names     the listing names 100,000 files
  endless-lines  the listing and the news are one line that never ends (64 MB)
  huge-file      every file of the community folder is 1 GB long
  drop           a file stops half-way and the connection is dropped
  stall-banner   a new connection never gets its welcome
  stall-reply    RETR, STOR and NLST never answer on the control connection
  trickle        RETR sends one byte every 50 ms, for an hour
  refuse-store   STOR is refused
"""
import importlib.machinery
import importlib.util
import os
import signal
import sys
import time

here = os.path.dirname(os.path.abspath(__file__))
tool = os.path.join(here, "..", "..", "tools", "community-server")
loader_entry = importlib.util.spec_from_loader("community_server", importlib.machinery.SourceFileLoader("community_server", tool))
community = importlib.util.module_from_spec(loader_entry)
loader_entry.loader.exec_module(community)

folder = None
FOREVER = 3600


def mode():
    try:
        with open(os.path.join(folder, "hostile-mode")) as f:
            return f.read().strip()
    except OSError:
        return "normal"


class Repeat:
    """A producer of `total` bytes made of `piece`, each piece after `pause` seconds."""

    def __init__(self, piece, total, pause=0):
        self.piece, self.left, self.pause = piece, total, pause

    def more(self):
        if self.pause:
            time.sleep(self.pause)
        if self.left <= 0:
            return b""
        chunk = self.piece[: min(len(self.piece), self.left)]
        self.left -= len(chunk)
        return chunk


class Dropping:
    def __init__(self, handler, data):
        self.handler, self.data, self.done = handler, data, False

    def more(self):
        if not self.done:
            self.done = True
            return self.data[: len(self.data) // 2]
        # Both connections cut at once, without a word: no "226" can follow.
        import socket as sockets
        for channel in (self.handler.data_channel, self.handler):
            try:
                channel.socket.shutdown(sockets.SHUT_RDWR)
            except (OSError, AttributeError) as err:
                sys.stderr.write("drop: %r\n" % (err,))
        return b""


class HostileHandler(community.CommunityHandler):
    def handle(self):
        if mode() == "stall-banner":
            return
        community.CommunityHandler.handle(self)

    def ftp_NLST(self, path):
        m = mode()
        if m == "stall-reply":
            time.sleep(FOREVER)
        if m == "bad-names":
            names = ["../escaped.csv", "../../etc/passwd", "/tmp/absolute.csv", "C:evil.csv", "back\\slash.csv",
                     "tab\there.csv", ".hidden.csv", "x" * 300 + ".csv", "..", "good.csv"]
            data = "".join("Vistarig/CommunityFiles/%s\r\n" % n for n in names)
            self.push_dtp_data(data.encode("utf8"), cmd="NLST")
            return path
        if m == "many-names":
            data = "".join("Vistarig/CommunityFiles/%06d_Vistarig_X.csv\r\n" % i for i in range(100000))
            self.push_dtp_data(data.encode("utf8"), cmd="NLST")
            return path
        if m == "endless-lines":
            self.push_dtp_data(Repeat(b"Vistarig/CommunityFiles/" + b"A" * 65536, 64 << 20), isproducer=True, cmd="NLST")
            return path
        return community.CommunityHandler.ftp_NLST(self, path)

    def ftp_RETR(self, file):
        m = mode()
        in_files = "CommunityFiles" in file
        if m == "stall-reply":
            time.sleep(FOREVER)
        if m == "endless-lines" and not in_files:
            self.push_dtp_data(Repeat(b"B" * 65536, 64 << 20), isproducer=True, cmd="RETR")
            return file
        if m == "huge-file" and in_files:
            self.push_dtp_data(Repeat(b"C" * 65536, 1 << 30), isproducer=True, cmd="RETR")
            return file
        if m == "trickle" and in_files:
            self.push_dtp_data(Repeat(b"D", 72000, pause=0.05), isproducer=True, cmd="RETR")
            return file
        if m == "drop" and in_files:
            with open(file, "rb") as f:
                self.push_dtp_data(Dropping(self, f.read()), isproducer=True, cmd="RETR")
            return file
        return community.CommunityHandler.ftp_RETR(self, file)

    def ftp_STOR(self, file, mode_="w"):
        if mode() == "stall-reply":
            time.sleep(FOREVER)
        if mode() == "refuse-store":
            self.respond("550 Refused.")
            return None
        return community.CommunityHandler.ftp_STOR(self, file, mode_)


def main():
    global folder
    import argparse
    parser = argparse.ArgumentParser()
    parser.add_argument("--folder", required=True)
    parser.add_argument("--port", type=int, default=0)
    args = parser.parse_args()
    folder = os.path.abspath(args.folder)
    import logging
    logging.basicConfig(level=logging.WARNING)
    server = community.make_server(folder, "127.0.0.1", args.port, community.DEFAULT_PASSWORD,
                                   handler=HostileHandler, threaded=True)
    # Stalled threads sleep for an hour: leave at once.
    signal.signal(signal.SIGTERM, lambda *_: os._exit(0))
    signal.signal(signal.SIGINT, lambda *_: os._exit(0))
    print("listening on %s:%d" % server.address, flush=True)
    server.serve_forever(handle_exit=False)


if __name__ == "__main__":
    main()
