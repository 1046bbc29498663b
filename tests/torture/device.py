"""Devices that are tormented, their programs, and what is stored on them."""

import contextlib
import os
import pathlib
import re
import shutil
import sqlite3
import subprocess
import time
from email.utils import formatdate

BIN = pathlib.Path(os.environ["TORTURE_BIN"])
DAY = 86400
PATIENCE = 60  # seconds; a program that takes longer hangs


def feed(name, first, count, now=None):
    """A feed whose items are numbered from `first`, the newest last, each a minute older."""
    end = now or time.time()
    items = "".join(
        f"<item><title>{name} {n}</title><link>http://x/{name}/{n}</link><guid>{name}/{n}</guid>"
        f"<pubDate>{formatdate(end - 60 * (first + count - n))}</pubDate>"
        f"<description>{'text of %s ' % name * 30}{n}</description></item>"
        for n in range(first, first + count))
    return f'<?xml version="1.0"?><rss version="2.0"><channel><title>{name}</title>{items}</channel></rss>'


@contextlib.contextmanager
def feed_server(folder):
    server = subprocess.Popen([BIN / "feedserver", "--directory", folder], stdout=subprocess.PIPE,
                              text=True)
    try:
        yield server.stdout.readline().split()[-1]
    finally:
        server.terminate()
        server.wait()


class Device:
    """A folder with a device root, and with `out` for what is written elsewhere."""

    def __init__(self, folder, template=None):
        self.folder = pathlib.Path(folder)
        self.root = self.folder / "device"
        if template:
            shutil.rmtree(self.folder, ignore_errors=True)
            shutil.copytree(template.folder, self.folder, dirs_exist_ok=True,
                            ignore=shutil.ignore_patterns("*.event"))
        (self.folder / "out").mkdir(parents=True, exist_ok=True)

    def start(self, program, *words, env=None, screen=None, **options):
        """A program, in an environment without the user's own folders and screens; `screen` has
        what leads to another one."""
        base = {"PATH": os.environ["PATH"], "HOME": str(self.folder), "TIDEBROOK_PAUSES": "0",
                "TIDEBROOK_HOME": str(self.root), "QT_QPA_PLATFORM": "offscreen", "LC_ALL": "C.UTF-8",
                "DBUS_SESSION_BUS_ADDRESS": "disabled:", "DBUS_SYSTEM_BUS_ADDRESS": "disabled:"}
        if "TIDEBROOK_HTTP_PORT" in os.environ:
            base["TIDEBROOK_HTTP_PORT"] = os.environ["TIDEBROOK_HTTP_PORT"]
        base.update(screen or {})
        if "TSAN_OPTIONS" in os.environ:
            base["TSAN_OPTIONS"] = os.environ["TSAN_OPTIONS"]
        if env:
            base.update(env, LD_PRELOAD=str(BIN / "torture_shim.so"))
        return subprocess.Popen([BIN / program, *map(str, words)], env=base, text=True,
                                stdin=subprocess.DEVNULL, **options)

    def run(self, program, *words, env=None):
        """Exit status (None: it hung), output, errors."""
        process = self.start(program, *words, env=env, stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE)
        try:
            out, err = process.communicate(timeout=PATIENCE)
        except subprocess.TimeoutExpired:
            process.kill()
            return (None, *process.communicate())
        return process.returncode, out, err

    def ctl(self, *words):
        status, out, err = self.run("tidebrookctl", *words)
        assert status == 0, f"{words}: {status} {out}{err}"
        return out

    def faults(self):
        """What `check` finds."""
        status, out, err = self.run("tidebrookctl", "check")
        found = [line for line in out.splitlines() if not line.startswith("note: ")]
        return found or ([] if status == 0 else [f"check: {status} {err.strip()}"])

    def state(self):
        """All that the user has here, as a set of facts."""
        facts = set()

        def add(kind, file, query):
            try:
                with contextlib.closing(sqlite3.connect(file)) as database:
                    facts.update((kind, *row) for row in database.execute(query))
            except sqlite3.Error as error:
                facts.add((kind, "unreadable", str(error)))

        if (self.root / "RSSVault.sdf").exists():
            add("channel", self.root / "RSSVault.sdf",
                "SELECT CHANNEL_NAME, CATEGORY, CHANNEL_LINK FROM RSSCHRecord")
            add("article", self.root / "RSSVault.sdf",
                "SELECT CHANNEL_NAME, GUID, TITLE, ITEM_LINK, DESCRIPTION, READ_UNREAD FROM RSSRecord")
        if (self.root / "registry.db").exists():
            add("setting", self.root / "registry.db",
                "SELECT path, name, data FROM registry_values WHERE name NOT IN ('ERRORNO', "
                "'UnreadItems', 'CategoryNumber', 'NewArticles', 'NewChannels', 'LastAutoUpdate')")
        names = {fact[1] for fact in facts if fact[0] == "channel"}
        listed = self.root / "windows/UpdateChannel.list"
        if listed.exists():
            lines = listed.read_bytes().decode("utf-16-le").splitlines()
            facts.update(("auto", line.split("\t")[0]) for line in lines
                         if line.split("\t")[0] in names)
        for file in (self.folder / "out").iterdir():
            facts.add(("file", "" if file.name.startswith(".tidebrook-") else file.name,
                       file.read_bytes()))
        return frozenset(facts - {fact for fact in facts if fact[:2] == ("file", "")})


def clock(file, seconds):
    """Sets the clock of the programs that have this file ahead."""
    if not file.exists():
        file.write_bytes(bytes(8))
    with open(file, "r+b") as page:
        page.write(seconds.to_bytes(8, "little", signed=True))
    return {"TORTURE_CLOCK": str(file)}


def make_template(folder, feeds, url):
    """Categories C (channels a, b), D (c) and E; articles read and unread, some of them too old
    by now; a and c automatic; a list to import. Every feed has something new."""
    device = Device(folder)
    device.ctl("init")
    for line in device.ctl("categories").splitlines():
        device.ctl("delete-category", line, "--yes")
    for category, names in (("C", "ab"), ("D", "c")):
        for name in names:
            device.ctl("add", category, name, f"{url}/{name}", "--create")
    device.ctl("add-category", "E")
    for first, ago in ((0, 6), (4, 2)):
        for name in "abc":
            (feeds / name).write_text(feed(name, first, 6, time.time() - ago * DAY))
        past = clock(device.folder / "clock", -ago * DAY)
        assert device.run("tidebrookctl", "update", env=past)[0] == 0
    for name in "abc":
        (feeds / name).write_text(feed(name, 7, 6))
    device.ctl("mark", "a", "read", "2")
    device.ctl("mark", "b", "read")
    for name in "ac":
        device.ctl("auto", "add", name)
    for name in ("list.opml", "old.opml"):
        device.ctl("export", "C", device.folder / "out" / name)
    (device.folder / "out/page.html").write_text("the user's own page")
    opml = (device.folder / "out/list.opml")
    opml.write_text(re.sub(r'text="([ab])"', r'text="new \1"', opml.read_text()))
    assert device.faults() == []
    return device
