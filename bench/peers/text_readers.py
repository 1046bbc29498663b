"""The readers that refresh as a command: each with a home of its own and the feeds it is to have."""

import contextlib
import shutil
import sqlite3
import subprocess
from xml.sax.saxutils import quoteattr

from measuring import environment
from server import BIN

CONTROL = str(BIN / "tidebrookctl")
JOBS = 8  # fetched at a time, by each


def subscriptions(feeds):
    """The list of channels that every reader can import."""
    outlines = "".join(f"<outline text={quoteattr(name)} title={quoteattr(name)} type='rss' "
                       f"xmlUrl={quoteattr(url)}/>" for name, url in feeds.items())
    return (f"<?xml version='1.0' encoding='UTF-8'?><opml version='2.0'><head><title>Feeds</title>"
            f"</head><body>{outlines}</body></opml>")


def count_rows(file, table):
    with contextlib.closing(sqlite3.connect(file)) as database:
        return database.execute(f"SELECT count(*) FROM {table}").fetchone()[0]


class Reader:
    """`program` is what must be installed, `refresh` the command that updates all feeds."""

    def __init__(self, home, feeds):
        shutil.rmtree(home, ignore_errors=True)
        self.home = home
        self.env = environment(home)
        self.prepare(feeds)

    def size(self):
        """MiB of all that is kept."""
        return sum(file.stat().st_size for file in self.kept.rglob("*") if file.is_file()) / 2**20


class Tidebrook(Reader):
    name, program = "tidebrook", CONTROL

    def prepare(self, feeds):
        self.kept = self.home / "device"
        self.env["TIDEBROOK_HOME"] = str(self.kept)
        self.refresh = [self.program, "update", "--jobs", str(JOBS)]
        self.control("init")
        self.subscribe(feeds)

    def subscribe(self, feeds):
        (self.home / "feeds.opml").write_text(subscriptions(feeds), encoding="utf-8")
        for category in self.control("categories").splitlines():
            self.control("delete-category", category, "--yes")
        self.control("import", self.home / "feeds.opml", "Bench")

    def control(self, *words):
        return subprocess.run([CONTROL, *map(str, words)], env=self.env, check=True, text=True,
                              stdout=subprocess.PIPE).stdout

    def stored(self):
        return count_rows(self.kept / "RSSVault.sdf", "RSSRecord")


class Newsboat(Reader):
    name = program = "newsboat"

    def prepare(self, feeds):
        self.kept = self.home / ".newsboat"
        self.kept.mkdir()
        (self.kept / "urls").write_text("".join(f"{url}\n" for url in feeds.values()))
        (self.kept / "config").write_text(f"reload-threads {JOBS}\n")
        self.refresh = [self.program, "-x", "reload"]

    def stored(self):
        return count_rows(self.kept / "cache.db", "rss_item")


class Sfeed(Reader):
    """A shell script and a few programs; keeps a text file for each feed."""
    name, program = "sfeed", "sfeed_update"

    def prepare(self, feeds):
        self.kept = self.home / ".sfeed"
        self.kept.mkdir()
        calls = "".join(f'feed "{name}" "{url}"\n' for name, url in feeds.items())
        (self.kept / "sfeedrc").write_text(f"maxjobs={JOBS}\nfeeds() {{\n{calls}}}\n")
        self.refresh = [self.program]

    def stored(self):
        return sum(file.read_bytes().count(b"\n") for file in (self.kept / "feeds").iterdir())


ALL = [Tidebrook, Newsboat, Sfeed]


def installed(readers):
    """Those that are there; names the others."""
    for reader in readers:
        if not shutil.which(reader.program):
            print(f"{reader.name}: not installed")
    return [reader for reader in readers if shutil.which(reader.program)]
