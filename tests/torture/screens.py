"""The screens where they are shown: their suites on X11 and Wayland, and a reader that is used by
finger alone, on a real touch screen. What a finger has done is seen in what is stored."""

import contextlib
import json
import os
import re
import signal
import subprocess
import threading
import time

from device import BIN, PATIENCE, Device, feed

SUITE_PATIENCE = 1800  # seconds
# What runs offscreen alone: tests whose programs choose their platform themselves; and, since on
# Wayland the pictures are files, those of a full disk; and one that counts rows of a font which is
# a pixel larger there.
NOT_RUN = {"xcb": ["ProgramTest"],
           "wayland": ["ProgramTest", "BadGround", "ABusyDatabaseIsWaitedForOrTold",
                       "RowsMakeRoomForTheScrollBarWhereThereIsOne"]}

SCREEN = (480, 640)
ROW, FIRST_ROW = 52, 78  # pixels, of a list on this screen
BACK = (120, 618)  # the left soft key
ASIDE = (60, 570)  # beside any menu
DOUBLE_TAP = 0.5  # seconds, after which a tap is one of its own
MANY = 40  # articles of b3


@contextlib.contextmanager
def x11(_folder):
    """A screen with a window manager, without which no window gets the keyboard."""
    server = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten",
                               "tcp"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    env = {"TIDEBROOK_PLATFORM": "xcb", "DISPLAY": f":{server.stdout.readline().strip()}"}
    manager = subprocess.Popen(["openbox", "--sm-disable"], env=os.environ | env,
                               stderr=subprocess.DEVNULL)
    try:
        yield env
    finally:
        for process in (manager, server):
            process.terminate()
            process.wait()


@contextlib.contextmanager
def wayland(folder, *options):
    """A compositor, whose socket is called `screens`."""
    folder.mkdir(mode=0o700, parents=True)
    env = {"XDG_RUNTIME_DIR": str(folder), "WAYLAND_DISPLAY": "screens"}
    server = subprocess.Popen([BIN / "touchscreen", "screens", *options], env=os.environ | env,
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                              stderr=subprocess.DEVNULL)
    try:
        until(lambda: (folder / "screens").exists(), "a compositor")
        yield env | {"TIDEBROOK_PLATFORM": "wayland"}, server
    finally:
        server.terminate()
        server.communicate()


@contextlib.contextmanager
def desk(folder):
    with wayland(folder, "1024", "768", "desk") as (env, _server):
        yield env


def until(condition, what):
    end = time.monotonic() + PATIENCE
    while not condition():
        assert time.monotonic() < end, f"in vain: {what}"
        time.sleep(0.05)


def run_suites(env, report):
    """How many tests of the screens passed, and how many did not."""
    platform = env["TIDEBROOK_PLATFORM"]
    done = subprocess.run(["ctest", "--test-dir", BIN.parent, "--tests-regex", "^(ui|app)/",
                           "--exclude-regex", "|".join(NOT_RUN[platform])], text=True,
                          env=os.environ | env, timeout=SUITE_PATIENCE, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, check=False)
    ended = re.findall(r"Test +#\d+: (\S+) \.*(.*?) +[\d.]+ sec", done.stdout)
    failed = [test for test, end in ended if end.strip() != "Passed"]
    for test in failed:
        report(f"{test} on {platform}")
    if not ended or bool(done.returncode) != bool(failed):
        report(f"the suites on {platform}: {done.returncode} {done.stdout[-500:]}")
        failed.append(None)
    return len(ended) - len(failed), len(failed)


class Hand:
    """Up to two fingers on the touch screen, and the eyes above it."""

    def __init__(self, process):
        self.process = process

    def say(self, *words):
        self.process.stdin.write(" ".join(map(str, words)) + "\n")
        self.process.stdin.flush()
        return self.process.stdout.readline().strip()

    def state(self):
        return json.loads(self.say("state"))

    def tap(self, place):
        time.sleep(DOUBLE_TAP)
        self.say("down", 0, *place)
        self.say("up", 0, *place)

    def move(self, *ways):
        """A finger for each way, (from, to), at the pace of a hand."""
        for step in range(11):
            for finger, (start, end) in enumerate(ways):
                place = [a + (b - a) * step // 10 for a, b in zip(start, end)]
                self.say("move" if step else "down", finger, *place)
            time.sleep(0.01)
        for finger, (_, end) in enumerate(ways):
            self.say("up", finger, *end)

    def sees(self, title, row=1):
        """Waits for a list with this title and such a row, whose place it returns."""
        place = (200, FIRST_ROW + ROW * row)
        until(lambda: self.state().get("title") == f"{title}Tidebrook"
              and self.say("ink", 50, place[1] - 20, 250, 40) == "yes", (title, row, self.state()))
        return place

    def still(self):
        """Waits until nothing moves any more."""
        seen = []
        until(lambda: seen.append(self.state()) or time.sleep(0.3) or seen[-1] == self.state(),
              "a screen that stands still")
        return seen[-1]


def read(device, channel):
    """The places of the articles of a channel that are marked read."""
    lines = device.ctl("articles", channel).splitlines()
    return [place for place, line in enumerate(lines) if line.startswith("r\t")]


def go(device, hand):
    """One way through the reader: into a category, a channel and an article, back, and so on."""
    hand.tap(hand.sees(""))
    hand.tap(hand.sees("B – "))  # at the place of the tap before
    hand.tap(hand.sees("b2 – "))
    until(lambda: read(device, "b2") == [1], "the second article of b2 is read")
    hand.tap(BACK)
    hand.sees("b2 – ")
    hand.still()
    hand.tap(BACK)
    hand.tap(hand.sees("B – ", 2))
    hand.sees("b3 – ", 5)

    top = hand.still()
    hand.move(((200, 500), (200, 200)))
    until(lambda: hand.state() != top, "a list that a finger moves")
    place = hand.sees("b3 – ", 2)
    hand.still()
    assert not read(device, "b3"), "what a finger scrolls is not read"
    hand.tap(place)
    until(lambda: read(device, "b3"), "an article is open")
    opened = read(device, "b3")
    assert len(opened) == 1 and opened[0] > 5, f"what has come below the finger opens: {opened}"
    hand.tap(BACK)
    hand.sees("b3 – ", 1)
    hand.still()
    device.ctl("mark", "b3", "unread")
    stay(device, hand, hand.still())

    hand.say("size", *reversed(SCREEN))
    until(lambda: hand.state()["areas"] == [[0, 0, *reversed(SCREEN)]], "a screen that is turned")
    hand.still()
    hand.tap(place)
    until(lambda: read(device, "b3"), "an article is open on the turned screen")
    assert read(device, "b3") == opened, f"{read(device, 'b3')} is at the place of {opened}"


def stay(device, hand, before):
    """What leads nowhere: a menu that is opened and closed, and fingers that spread."""
    hand.say("down", 0, 200, 300)
    until(lambda: len(hand.state()["areas"]) == 2, "the menu of a row")
    hand.say("up", 0, 200, 300)
    assert len(hand.still()["areas"]) == 2, "the menu stays when the finger is lifted"
    hand.tap(ASIDE)
    until(lambda: len(hand.state()["areas"]) == 1, "a menu that is closed")
    hand.move(((200, 300), (100, 200)), ((250, 350), (350, 450)))
    assert hand.still()["title"] == before["title"] and not read(device, "b3"), "two fingers"


def journey(device, hand, env):
    """The reader from its start to its end."""
    for channel in ("b2", "b3"):
        device.ctl("mark", channel, "unread")
    hand.say("size", *SCREEN)
    reader = device.start("tidebrook", screen=env)
    try:
        go(device, hand)
        hand.say("close")
        until(lambda: reader.poll() is not None, "the end of the reader")
        assert reader.returncode == 0, f"the reader ended with {reader.returncode}"
        assert not device.faults(), device.faults()
    except AssertionError as error:
        hand.say("grab", BIN.parent / "screen.png")
        raise AssertionError(f"{error}; see {BIN.parent}/screen.png") from error
    finally:
        reader.kill()
        reader.wait()


def keep_updating(device, feeds, end):
    """The downloader's rounds, which bring something new each time."""
    number = 0
    while not end.wait(0.2):
        number += 1
        for name in ("a1", "c1"):
            (feeds / name).write_text(feed(name, number, 3))
        device.run("tidebrookctl", "auto", "run")
        device.run("tidebrookctl", "request", "C", "c2", "--timeout", "5")


def journeys(device, feeds, hand, env, seconds):
    """How many times the reader was used, beside the Today item and the downloader; once at least."""
    end, count, closing = time.monotonic() + seconds, 0, threading.Event()
    today = device.start("tidebrook-today", "--window", screen=env)
    rounds = threading.Thread(target=keep_updating, args=(device, feeds, closing))
    rounds.start()
    try:
        while count == 0 or time.monotonic() < end:
            journey(device, hand, env)
            count += 1
    finally:
        closing.set()
        rounds.join()
        today.send_signal(signal.SIGTERM)
        ended = today.wait()
        device.run("tidebrookctl", "service", "stop")
    assert ended == 0, f"the Today item ended with {ended}"
    return count


def make_device(folder, feeds, url):
    """Categories A, B and C with three channels each; the third one's articles are many."""
    device = Device(folder)
    device.ctl("init")
    for line in device.ctl("categories").splitlines():
        device.ctl("delete-category", line, "--yes")
    for name in (f"{category}{number}" for category in "abc" for number in (1, 2, 3)):
        (feeds / name).write_text(feed(name, 0, MANY if name.endswith("3") else 3))
        device.ctl("add", name[0].upper(), name, f"{url}/{name}", "--create")
    device.ctl("update")
    device.ctl("auto", "add", "a1")
    device.ctl("auto", "add", "c1")
    device.ctl("setting", "Enabled", "1", "--today")
    return device


def use_by_finger(work, feeds, url, seconds, report):
    if "TSAN_OPTIONS" in os.environ:
        os.environ["TSAN_OPTIONS"] += f":log_path={work}/tsan"
    device = make_device(work / "screens", feeds, url)
    count, faults = 0, []
    with wayland(work / "touch", *map(str, SCREEN)) as (env, screen):
        hand = Hand(screen)
        env = env | {"QT_QPA_PLATFORM": "wayland", "QT_WAYLAND_DISABLE_WINDOWDECORATION": "1"}
        try:
            count = journeys(device, feeds, hand, env, seconds)
        except AssertionError as error:
            faults.append(str(error))
    faults += [path.read_text() for path in work.glob("tsan.*")]
    for fault in faults:
        report(fault)
    return f"{count} journeys by finger", len(faults)


def torture(work, feeds, url, seconds, is_whole, report):
    """The journeys for so many seconds, or one; on the whole the suites, too."""
    done, faults = use_by_finger(work, feeds, url, seconds, report)
    for display in (x11, desk) if is_whole else ():
        with display(work / display.__name__) as env:
            passed, failed = run_suites(env, report)
        platform = env["TIDEBROOK_PLATFORM"]
        done += f"; {passed} tests on {platform}, without {' '.join(NOT_RUN[platform])}"
        faults += failed
    return done, faults
