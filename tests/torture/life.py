"""A long life: thirty days of one downloader, by a clock that is set ahead, with feeds that grow,
lose what is old, move, break and come back. One day brings ten times the news. Memory, descriptors
and files stay as large as they are in an ordinary week, and each feed's articles are there."""

import contextlib
import http.server
import os
import pathlib
import sqlite3
import subprocess
import threading
import time

from device import DAY, PATIENCE, Device, clock, feed

FEEDS = 200
DAYS = 30
ROUNDS = 8  # a day
ITEMS = 20  # of a feed
NEWS_DAY = 12
MOST_UNUSED = 0.3  # of what is used of the database's file, unless it is but a few pages
FEW_PAGES = 64
GROWTH = 1.3  # of what is measured twice, with an ordinary week before each
LEAST = {"-wal": 300_000, ".db": 32768}  # bytes; a journal at rest begins anew at 64 pages


class Publisher(http.server.BaseHTTPRequestHandler):
    """Answers for every feed: /NAME, or /NAME/moved once it has moved."""

    protocol_version = "HTTP/1.1"
    disable_nagle_algorithm = True
    round = 0
    now = 0

    def log_message(self, *_):
        pass

    def send(self, status, body=b"", **headers):
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name, value)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def do_GET(self):
        name = self.path.split("/")[1]
        number, day = int(name[1:]), self.round // ROUNDS
        if number % 10 == 1 and day >= 5 and not self.path.endswith("/moved"):
            return self.send(301, Location=f"/{name}/moved")
        if number % 10 == 2 and 8 <= day < 10 + number % 3:
            return self.send((500, 404, 503)[number % 3])
        tag = f'"{newest_of(number, self.round)}"'
        if self.headers.get("If-None-Match") == tag:
            return self.send(304, ETag=tag)
        text = feed_of(number, self.round, self.now)
        if number % 10 == 3 and 14 <= day < 16:
            text = text[:len(text) // 2]
        return self.send(200, text.encode(), ETag=tag)


def newest_of(number, round_):
    """The feed's newest item: one in four rounds, and forty a round on the day of news."""
    extra = max(0, min(round_ - NEWS_DAY * ROUNDS, ROUNDS)) * 40
    return ITEMS + (round_ + number) // 4 + extra


def feed_of(number, round_, now):
    newest = newest_of(number, round_)
    count = ITEMS + 40 if NEWS_DAY * ROUNDS <= round_ <= (NEWS_DAY + 1) * ROUNDS else ITEMS
    return feed(f"f{number}", newest - count, count, now)


def status_at_rest(device, process):
    """Of the downloader, once it has closed the database and sleeps."""
    status, end = {}, time.monotonic() + PATIENCE
    while time.monotonic() < end:
        text = pathlib.Path(f"/proc/{process.pid}/status").read_text(encoding="utf-8")
        status = dict(line.split(":", 1) for line in text.splitlines())
        is_open = (device.root / "RSSVault.sdf-wal").exists()
        if not is_open and int(status["Threads"]) == 1 and "sleeping" in status["State"]:
            break
        time.sleep(0.01)
    return status


def measure(device, process):
    """Of the downloader and its device."""
    status = status_at_rest(device, process)
    with contextlib.closing(sqlite3.connect(device.root / "RSSVault.sdf")) as database:
        pages, unused, articles = (database.execute(query).fetchone()[0] for query in (
            "PRAGMA page_count", "PRAGMA freelist_count", "SELECT count(*) FROM RSSRecord"))
    files = {path.name: path.stat().st_size for path in device.root.rglob("*")
             if path.is_file() and not path.name.endswith("-shm")}
    return {"memory": int(status["RssAnon"].split()[0]), "articles": articles,
            "descriptors": len(os.listdir(f"/proc/{process.pid}/fd")), "pages": pages, "unused": unused, **files}


def grown(early, late):
    """What has become larger than it was, and by how much."""
    found = {}
    for name, size in late.items():
        least = next((size for ending, size in LEAST.items() if name.endswith(ending)), 0)
        if name not in ("unused", "feedlarkd.log") and size > max(early.get(name, 0), least) * GROWTH:
            found[name] = early.get(name, 0), size
    return found


def rounds(device, process, ahead, report):
    """Runs them; what was measured at each day's end."""
    days = []
    for round_ in range(DAYS * ROUNDS):
        seconds = round_ * DAY // ROUNDS
        clock(ahead, seconds)
        Publisher.round, Publisher.now = round_, time.time() + seconds
        device.ctl("auto", "run")
        for line in process.stderr:
            if "automatic update:" in line:
                break
        if round_ % ROUNDS != ROUNDS - 1:
            continue
        days.append(measure(device, process))
        report(f"day {len(days)}: {days[-1]}; {line.split('update: ')[1].strip()}", False)
        for fault in device.faults():
            report(fault)
    return days


def torture(work, report):
    device = Device(work / "life")
    device.ctl("init")
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Publisher)
    server.daemon_threads = True
    threading.Thread(target=server.serve_forever, daemon=True).start()
    for category in device.ctl("categories").splitlines():
        device.ctl("delete-category", category, "--yes")
    outlines = "".join(
        f'<outline text="f{i}" type="rss" xmlUrl="http://h{i % 8}.localhost:{server.server_port}/f{i}"/>'
        for i in range(FEEDS))
    (device.folder / "list.opml").write_text(f"<opml><body>{outlines}</body></opml>")
    device.ctl("import", device.folder / "list.opml", "C")
    device.ctl("auto", "add", "--all")
    ahead = device.folder / "clock"
    process = device.start("feedlarkd", "--foreground", env=clock(ahead, 0),
                           stderr=subprocess.PIPE)
    faults = 0

    def tell(text, is_fault=True):
        nonlocal faults
        faults += is_fault
        report(text)

    days = rounds(device, process, ahead, tell)
    process.terminate()
    process.communicate()
    server.shutdown()
    for name, (early, late) in grown(days[:NEWS_DAY - 1][-1], days[-1]).items():
        tell(f"{name} has grown from {early} to {late}")
    for day in days[NEWS_DAY + 7:]:
        if day["unused"] > max(FEW_PAGES, MOST_UNUSED * (day["pages"] - day["unused"])):
            tell(f"the database has {day['unused']} unused pages of {day['pages']}")
            break
    state = device.state()
    last = DAYS * ROUNDS - 1
    lost = [i for i in range(FEEDS) if not any(
        fact[:3] == ("article", f"f{i}", f"f{i}/{newest_of(i, last) - 1}") for fact in state)]
    if lost:
        tell(f"the newest article of these is missing: {lost}")
    return days[-1], faults
