"""Readers with windows: the start, warm and cold, the memory, and scrolling."""

import concurrent.futures
import itertools
import os
import shutil
import time

import table
from checking import attempt, check
from screen import Program, Screen, cpu, memory
from text_readers import installed
from window_readers import ALL, ITEMS

FEEDS = 200
PATIENCE = 600  # seconds to fetch all of them
SIZE = 1000, 700  # of every window that scrolls
TURNS = 40  # of the wheel


def prepare(reader_class, home, server, feeds):
    """A home with that many articles, fetched by the program itself. One that is there is kept."""
    if (home / "ready").exists():
        return reader_class(home)
    shutil.rmtree(home, ignore_errors=True)
    reader = reader_class(home)
    with Screen() as screen:
        with Program(screen, reader.command, reader.env) as program:
            program.await_window()
            program.await_quiet()
        reader.subscribe(feeds)
        reader.settings(bool(feeds))
        with Program(screen, reader.command, reader.env) as program:
            program.await_window()
            program.await_quiet()
            if feeds:
                reader.fetch(program)
            articles, end = len(feeds) * ITEMS, time.monotonic() + PATIENCE
            while reader.stores_at_once and reader.stored() < articles and time.monotonic() < end:
                time.sleep(1)
            program.await_quiet()
        check(not feeds or reader.stored() == articles,
              f"it has fetched {articles} articles ({reader.stored()})")
        reader.settings(False)
        with Program(screen, reader.command, reader.env) as program:
            program.await_window()
            program.await_quiet()
    (home / "ready").touch()
    return reader


def prepare_all(readers, homes, server):
    """The readers without feeds, and those with all articles."""
    server.serve(range(1, FEEDS + 1), ITEMS)
    feeds = {f"Feed {n}": f"http://127.0.0.1:{server.port}/{n}" for n in range(1, FEEDS + 1)}
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        pending = [[pool.submit(attempt, reader.name, prepare, reader, homes / f"{reader.name}-{name}", server, subscribed)
                    for reader in readers] for name, subscribed in (("empty", {}), ("full", feeds))]
    return [[reader for each in homes if (reader := each.result())] for homes in pending]


def files_of(reader, screen):
    """All that a start opens."""
    log = reader.home / "tmp/opened"
    command = ["strace", "-f", "-qq", "--seccomp-bpf", "-s4096", "-eopenat,execve", f"-o{log}", *reader.command]
    with Program(screen, command, reader.env) as program:
        program.await_window()
        program.await_quiet()
    lines = log.read_text(errors="replace").splitlines()
    return {path for line in lines if '"' in line for path in [line.split('"')[1]] if os.path.isfile(path)}


def forget(files):
    """Puts files out of the system's memory, but for what other programs have mapped."""
    os.sync()
    for path in files:
        file = os.open(path, os.O_RDONLY)
        os.posix_fadvise(file, 0, 0, os.POSIX_FADV_DONTNEED)
        os.close(file)


def start(reader, screen, server):
    server.counts()
    with Program(screen, reader.command, reader.env) as program:
        shown = program.await_window()
        figures = {"shown": shown, **program.await_quiet(), **memory(program.pids())}
    check(server.counts()["requests"] == 0, "it fetches nothing when it starts")
    return figures


def cold_start(reader, screen, server, files):
    if reader not in files:
        files[reader] = files_of(reader, screen)
    forget(files[reader])
    return start(reader, screen, server)


def compare(title, readers, runs, measure, *arguments):
    """Runs of all readers in turns."""
    columns = {reader.name: [] for reader in readers}
    for _, reader in itertools.product(range(runs), readers):
        columns[reader.name].append(attempt(reader.name, measure, reader, *arguments) or {})
    table.show(title, columns)


def scroll(reader, screen):
    """The CPU of a turn of the wheel over a list of articles, down and up again."""
    with Program(screen, reader.command, reader.env) as program:
        program.await_window()
        program.await_quiet()
        program.user("windowmove", program.window, 0, 0, "windowsize", program.window, *SIZE)
        for x, y in reader.way:
            program.user("mousemove", x, y, "sleep", 0.2, "click", 1)
            time.sleep(2)
        program.user("mousemove", *reader.place)
        before = program.await_quiet()["cpu"]
        top = program.picture()
        for button in (5, 4):
            program.user("click", "--repeat", TURNS // 2, "--delay", 100, button)
            check(button == 4 or program.picture() != top, "its list moves")
        return {"wheel": (program.await_quiet()["cpu"] - before) / TURNS}


def run(homes, server, runs):
    readers = installed(ALL)
    empty, full = prepare_all(readers, homes, server)
    with Screen() as screen:
        compare("Start, warm, no feeds", empty, runs, start, screen, server)
        compare(f"Start, warm, {FEEDS * ITEMS:,} articles", full, runs, start, screen, server)
        compare(f"Start, cold, {FEEDS * ITEMS:,} articles", full, runs, cold_start, screen, server, {})
        compare(f"A list of {ITEMS} articles", full, runs, scroll, screen)
