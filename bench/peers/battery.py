"""A day of a phone: what the downloader and the Today item need for 48 rounds, which follow each
other at once, and for two minutes without any, beside readers that must stay open to update."""

import contextlib
import os
import subprocess
import time

import table
from checking import attempt, check
from screen import Program, Screen, cpu, sleeps
from server import BIN
from text_readers import Tidebrook, installed
from window_readers import ALL

ROUNDS = 48
FEEDS = 100
CHANGING = 5  # feeds in each round
NEWS = 3  # articles of each
ITEMS = 30  # of a document
SETTLING = 20  # seconds
MINUTES_OF_DAY = 1440
PATIENCE = 120  # seconds for a reader to fetch all feeds


def serve_round(server, number):
    """The first round, 0, brings whole feeds, and each later one news of five of them."""
    if number == 0:
        server.serve(range(1, FEEDS + 1), ITEMS, validators=True)
        return
    turn, place = divmod((number - 1) * CHANGING, FEEDS)
    server.serve(range(place + 1, place + CHANGING + 1), ITEMS, first=NEWS * (turn + 1), validators=True)


class Phone:
    """A device with the two programs, which run as long as the `with` block. Behind it `costs` has
    the wake-ups and the seconds of CPU of each."""

    def __init__(self, home, server, screen):
        self.server = server
        self.device = Tidebrook(home, server.urls(range(1, FEEDS + 1)))
        (home / "run").mkdir(mode=0o700)
        self.device.control("auto", "add", "--all")
        self.device.control("setting", "UpdateInterval", 6)  # the rounds come on request
        self.device.control("setting", "UpdateMode", 1)
        self.env = {**self.device.env, "DISPLAY": screen.display, "QT_QPA_PLATFORM": "xcb",
                    "XDG_RUNTIME_DIR": str(home / "run"),
                    "DBUS_SESSION_BUS_ADDRESS": "disabled:", "DBUS_SYSTEM_BUS_ADDRESS": "disabled:"}

    def __enter__(self):
        serve_round(self.server, 0)
        self.begin = time.monotonic()
        self.downloader = subprocess.Popen([BIN / "feedlarkd", "--foreground"], env=self.env, text=True,
                                           stderr=subprocess.PIPE)
        self.item = subprocess.Popen([BIN / "tidebrook-today", "--window"], env=self.env)
        self.await_round()
        return self

    def await_round(self):
        check(any("automatic update:" in line for line in self.downloader.stderr), "a round ends")

    def run_rounds(self, count):
        for number in range(1, count + 1):
            serve_round(self.server, number)
            self.device.control("auto", "run")
            self.await_round()

    def __exit__(self, *_):
        self.costs, self.time = [], time.monotonic() - self.begin
        for process in (self.downloader, self.item):
            process.terminate()
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = status
            self.costs.append((usage.ru_nvcsw, usage.ru_utime + usage.ru_stime))


def rest_of(pids_of, seconds):
    """Of each, the wake-ups and the seconds of CPU in a minute of rest. A thread that ends meanwhile
    does not count."""
    before = {name: (sleeps(pids), cpu(pids)) for name, pids in pids_of.items()}
    time.sleep(seconds)
    rest = {}
    for name, pids in pids_of.items():
        (threads, used), now = before[name], sleeps(pids)
        wake_ups = sum(count - threads.get(thread, 0) for thread, count in now.items())
        rest[name] = tuple(figure / seconds * 60 for figure in (wake_ups, cpu(pids) - used))
    return rest


def rest_at(home, server, screen, seconds):
    """Of the two programs; of the item where it is shown and where it is put away."""
    with Phone(home, server, screen) as phone:
        time.sleep(SETTLING)
        rest = rest_of({"feedlarkd": [phone.downloader.pid], "item, shown": [phone.item.pid]}, seconds)
        phone.device.control("setting", "--today", "Enabled", "0")
        time.sleep(2)
        return rest | rest_of({"item, put away": [phone.item.pid]}, seconds)


def rounds_at(home, server, screen, shown):
    """What the rounds alone cost each program, and the bytes of both ways."""
    with Phone(home, server, screen) as without:
        pass
    with Phone(home, server, screen) as phone:
        server.counts()
        phone.run_rounds(ROUNDS)
        counts, stored = server.counts(), phone.device.stored()
    check(stored == FEEDS * ITEMS + ROUNDS * CHANGING * NEWS, f"all news are stored ({stored})")
    check(counts["requests"] == ROUNDS * FEEDS, f"each round asks for each feed ({counts})")
    minutes = (phone.time - without.time) / 60  # the item goes on stepping meanwhile
    steps = (0, 0), tuple(figure * minutes for figure in shown)
    costs = [tuple(max(0, a - b - c) for a, b, c in zip(*each))
             for each in zip(phone.costs, without.costs, steps)]
    return costs, counts["received"] + counts["sent"]


@contextlib.contextmanager
def opened(reader_class, home, server):
    """One that has fetched all feeds, and will again in half an hour."""
    reader = reader_class(home)
    with Screen() as screen:
        with Program(screen, reader.command, reader.env) as program:
            program.await_window()
            program.await_quiet()
        reader.subscribe({f"Feed {n}": f"http://127.0.0.1:{server.port}/{n}" for n in range(1, FEEDS + 1)})
        reader.settings(True, minutes=30)
        server.counts()
        with Program(screen, reader.command, reader.env) as program:
            program.await_window()
            asked, end = 0, time.monotonic() + PATIENCE
            while asked < FEEDS and time.monotonic() < end:
                time.sleep(1)
                asked += server.counts()["requests"]
            check(asked >= FEEDS, f"it has asked for all feeds ({asked})")
            program.await_quiet()
            server.counts()
            yield program


def await_silence(server):
    """Until the readers settle with nothing asked for: they fetch in parts, seconds apart."""
    end = time.monotonic() + PATIENCE
    asked = 1
    while asked and time.monotonic() < end:
        time.sleep(SETTLING)
        asked = server.counts()["requests"]
    check(asked == 0, "the fetching ends")


def rest_of_others(work, server, seconds):
    """Of readers that must stay open to update, at the same time."""
    readers = [reader for reader in installed(ALL) if reader.stays_open]
    with contextlib.ExitStack() as stack:
        programs = {reader.name: attempt(reader.name, stack.enter_context,
                                         opened(reader, work / f"{reader.name}-open", server))
                    for reader in readers}
        await_silence(server)
        rest = rest_of({name: program.pids() for name, program in programs.items() if program}, seconds)
        check(server.counts()["requests"] == 0, "nothing is fetched at rest")
    return rest


def figures(rest, rounds=None):
    """Without rounds where it runs none, or none were measured."""
    wake_ups, seconds = rest
    more = rounds or (0, 0)
    found = {"wakes": wake_ups, "rest": seconds, "day wakes": MINUTES_OF_DAY * wake_ups + more[0],
             "day": MINUTES_OF_DAY * seconds + more[1]}
    if rounds:
        found |= {"round wakes": rounds[0] / ROUNDS, "round": rounds[1] / ROUNDS}
    return found


def run(work, server, seconds):
    with Screen() as screen:
        rest = rest_at(work / "rest", server, screen, seconds)
        (downloader, item), bytes_ = rounds_at(work / "day", server, screen, rest["item, shown"])
    columns = {"feedlarkd": [figures(rest["feedlarkd"], downloader) | {"bytes": bytes_}],
               "item, shown": [figures(rest["item, shown"], item)],
               "item, put away": [figures(rest["item, put away"])]}
    others = attempt("the others", rest_of_others, work, server, seconds) or {}
    columns |= {name: [figures(each)] for name, each in others.items()}
    table.show("A day", columns)
