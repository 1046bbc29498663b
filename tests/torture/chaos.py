"""Chaos: all programs and four users of the command line work on one device whose feeds change,
and each is killed at random. What is stored is sound all the time, what was reported as done is
there, and no command takes long. A period ends as a backup begins: nothing runs any more."""

import contextlib
import itertools
import os
import random
import re
import signal
import subprocess
import threading
import time

from device import Device, feed

LONGEST = 3  # seconds, on a machine that has a processor for each process
PERIOD = 30
FEEDS = 12
NEWS = 200  # of a feed; then it begins again
USERS = 4
NUMBERS = itertools.count(1)  # of new names, none of which another period has left behind
PROGRAMS = (["tidebrook"], ["tidebrook-today"], ["feedlarkd", "--foreground"])
CRASHES = (-signal.SIGSEGV, -signal.SIGABRT, -signal.SIGBUS, -signal.SIGFPE, -signal.SIGILL)


class Period:
    def __init__(self, device, feeds, url, report):
        self.device, self.feeds, self.url, self.report = device, feeds, url, report
        self.end = threading.Event()
        self.running = {}  # by what runs it
        self.counts = {"commands": 0, "kills": 0, "slowest": 0.0}

    def do(self, who, *words, is_timed=True):
        """A program or command to its end; its status (negative: killed) and output."""
        begun = time.monotonic()
        process = self.device.start(*words, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.running[who] = process
        out = process.communicate()[0]
        took = time.monotonic() - begun
        if process.returncode in CRASHES:
            self.report(f"{' '.join(words)} crashed: {process.returncode} {out[-500:]}")
        if is_timed and process.returncode >= 0:
            self.counts["commands"] += 1
            self.counts["slowest"] = max(took, self.counts["slowest"])
            if took > LONGEST * max(1, os.getloadavg()[0] / os.cpu_count()):
                self.report(f"{' '.join(words)} took {took:.1f} s")
        return process.returncode, out

    def keep_running(self, program):
        while not self.end.wait(0.2):
            self.do(program[0], *program, is_timed=False)

    def check(self):
        while not self.end.wait(0.1):
            status, out = self.do("check", "tidebrookctl", "check")
            found = re.sub(r"^note: .*\n", "", out, flags=re.M)
            if status >= 0 and found:
                self.report(f"check: {found}")

    def change_feeds(self, chance):
        number = 0
        while not self.end.wait(0.05):
            number += 1
            name = f"f{chance.randrange(FEEDS)}"
            (self.feeds / name).write_text(feed(name, number % NEWS, 15))

    def kill(self, chance):
        while not self.end.wait(chance.uniform(0, 0.3)):
            who = chance.choice(list(self.running))
            status = self.device.run("tidebrookctl", "service", "status")[1]
            if who == "feedlarkd" and "process" in status:  # which another program may have started
                self.running["feedlarkd"].kill()
                with contextlib.suppress(ProcessLookupError):
                    os.kill(int(status.split()[-1]), signal.SIGKILL)
            elif self.running[who].poll() is None:
                self.running[who].kill()
                self.counts["kills"] += 1

    def use(self, user, owned, chance):
        """A user with channels of their own. `owned` has what is known of each: its category."""
        while not self.end.is_set():
            number = next(NUMBERS)
            name, new = chance.choice([*owned, "f0"]), f"u{user} {number}"
            home = f"U{user}{chance.choice('ab')}"
            kind = chance.choice(("add", "rename", "move", "delete", "free", "free", "free"))
            known = owned.pop(name, None) if kind in ("rename", "move", "delete") else None
            if kind == "add":
                words = ("add", "--create", home, new, f"{self.url}/f{number % FEEDS}")
            elif kind == "free":
                words = chance.choice((
                    ("update", "--jobs", "2"), ("mark", f"f{number % FEEDS}", "read"),
                    ("mark", f"f{number % FEEDS}", "unread"), ("auto", "add", name),
                    ("auto", "remove", name), ("setting", "FontSize", str(8 + number % 5)),
                    ("add-category", f"U{user}{number % 3}"), ("search", "text"),
                    ("rename-category", f"U{user}0", f"U{user}1"),
                    ("delete-category", f"U{user}2", "--yes"),
                    ("export", "F", str(self.device.folder / f"out/{user}.opml")),
                    ("request", "F", f"f{number % FEEDS}", "--timeout", "2")))
            elif known is None:
                continue
            else:
                words = {"rename": ("rename", name, new), "move": ("move", name, home),
                         "delete": ("delete", name)}[kind]
            status, out = self.do(user, "tidebrookctl", *words)
            is_refused = any(word in out for word in ("locked", "1001", "there is no category"))
            if kind != "free" and status > 0 and not is_refused:
                self.report(f"{' '.join(words)}: {status} {out.strip()}")
            if status == 0 and kind in ("add", "move"):
                owned[new if kind == "add" else name] = home
            elif status == 0 and kind == "rename":
                owned[new] = known
            elif status > 0 and known:
                owned[name] = known

    def live(self, owned, chance):
        works = [(self.keep_running, program) for program in PROGRAMS]
        works += [(self.use, user, owned[user], random.Random(chance.random())) for user in owned]
        works += [(self.check,), (self.change_feeds, chance), (self.kill, chance)]
        threads = [threading.Thread(target=work, args=arguments) for work, *arguments in works]
        for thread in threads:
            thread.start()
        time.sleep(PERIOD)
        self.end.set()
        while any(thread.is_alive() for thread in threads):
            for process in list(self.running.values()):
                process.kill()
            time.sleep(0.05)
        self.device.run("tidebrookctl", "service", "stop")
        self.device.ctl("init")


def torture(work, feeds, url, seconds, report):
    chance = random.Random(2026)
    device = Device(work / "chaos")
    device.ctl("init")
    device.ctl("add-category", "F")
    for i in range(FEEDS):
        (feeds / f"f{i}").write_text(feed(f"f{i}", 0, 15))
        device.ctl("add", "F", f"f{i}", f"{url}/f{i}")
        device.ctl("auto", "add", f"f{i}")
    device.ctl("setting", "UpdateMode", "1")
    owned = {user: {} for user in range(USERS)}
    totals, faults, end = {"backups": 0}, 0, time.monotonic() + seconds

    def tell(text):
        nonlocal faults
        faults += 1
        report(text)

    while time.monotonic() < end:
        period = Period(device, feeds, url, tell)
        period.live(owned, chance)
        backup = Device(work / "backup", device)
        for fault in backup.faults():
            tell(f"the backup: {fault}")
        stored = {fact[1]: fact[2] for fact in backup.state() if fact[0] == "channel"}
        for channels in owned.values():
            for name, category in channels.items():
                if stored.get(name) != category:
                    tell(f"{name} is in {stored.get(name)}, and not in {category}")
        totals["backups"] += 1
        for name, count in period.counts.items():
            joined = max if name == "slowest" else lambda a, b: a + b
            totals[name] = joined(totals.get(name, 0), count)
    return totals, faults
