"""Power cuts: what a series of commands does to the files is written down, and the device is built
as a cut at any moment may leave it. What was synced is there. Of what a file got since its last sync
any part may be there: none, all, the first ones, some, or half a page of the last one. Of the
changes of folders any beginning is there that has those that were synced."""

import concurrent.futures
import contextlib
import os
import pathlib
import random
import shutil
import sqlite3
import struct
import threading

import faults
from device import Device

ENTRY = struct.Struct("<QqIIc7x")
HALF_PAGE = 2048
VARIANTS = ("least", "most", 1, 2, 3, 4)  # a number seeds a choice at random

SERIES = [[command.split() for command in line.split(";")] for line in """
    update
    update C
    update D
    rename a zz
    delete a
    move a D
    mark a read
    auto add b
    auto remove a
    rename-category C Z
    delete-category C --yes
    import OUT/list.opml Z
    export C OUT/old.opml
    setting FontSize 12
    update ; rename a zz ; auto add b ; mark b unread ; rename-category C Z ; update --full
    setting FontSize 12 ; add-category X ; rename-category X Y ; delete-category Y --yes
""".strip().splitlines()]


class Disk:
    """The files below a folder, and in order what a log says became of them."""

    def __init__(self, folder):
        self.folder = str(folder)
        self.files = []    # what each file has at first
        self.names = {}    # path: number of a file, None for a folder
        self.changes = []  # (what, file or folder or names, offset, data)
        for path in sorted(pathlib.Path(folder).rglob("*")):
            if path.is_dir() or path.is_file() and not path.name.endswith("-shm"):
                self.names[str(path)] = None if path.is_dir() else self.add(path.read_bytes())

    def add(self, content=b""):
        self.files.append(content)
        return len(self.files) - 1

    def read(self, log):
        bytes_, at, now = log.read_bytes(), 0, dict(self.names)
        while at < len(bytes_):
            _, offset, size, length, kind = ENTRY.unpack_from(bytes_, at)
            path = bytes_[at + ENTRY.size:at + ENTRY.size + length].decode()
            at += ENTRY.size + length + size
            self.take(now, kind.decode(), path, offset, bytes_[at - size:at])

    def take(self, now, kind, path, offset, data):
        is_known = path in now
        if path.endswith((" (deleted)", "-shm")):
            return
        if kind in "cwt" and not is_known:  # another process may have made it
            self.rename(now, {path: self.add()})
        if kind == "m":
            self.rename(now, {path: None})
        elif kind == "u":
            self.rename(now, {path: "gone"})
        elif kind == "r":
            self.rename(now, {path: "gone", data.decode(): now[path]})
        elif kind == "s":
            folder = now.get(path, path) is None or path == self.folder
            self.changes.append(("folder synced", path) if folder else ("synced", now[path]))
        elif kind in "wt":
            self.changes.append(("data", now[path], offset, data if kind == "w" else None))

    def rename(self, now, names):
        self.changes.append(("names", names))
        now.update(names)
        for path in [path for path, file in now.items() if file == "gone"]:
            del now[path]

    def build(self, moment, variant, folder):
        """The device after a cut behind so many changes."""
        chance = random.Random(f"{moment} {variant}")
        done = self.changes[:moment]
        names = dict(self.names)
        for change in self.kept_names(done, variant, chance):
            names.update(change)
        shutil.rmtree(folder, ignore_errors=True)
        pathlib.Path(folder).mkdir()
        for path, file in sorted(names.items(), key=lambda item: item[0]):
            place = pathlib.Path(folder) / os.path.relpath(path, self.folder)
            if file is None:
                place.mkdir(parents=True)
            elif file != "gone":
                place.write_bytes(self.content(file, done, variant, chance))

    @staticmethod
    def kept_names(done, variant, chance):
        changes, sure = [], 0
        for what, value, *_ in done:
            if what == "names":
                changes.append(value)
            elif what == "folder synced":
                sure = max([i + 1 for i, names in enumerate(changes)
                            if any(os.path.dirname(path) == value for path in names)] + [sure])
        most = len(changes)
        return changes[:{"least": sure, "most": most}.get(variant, chance.randint(sure, most))]

    def content(self, file, done, variant, chance):
        sure, rest = [], []
        for what, value, *change in done:
            if what == "data" and value == file:
                rest.append(change)
            elif what == "synced" and value == file:
                sure, rest = sure + rest, []
        content = bytearray(self.files[file])
        for offset, data in sure + some(rest, variant, chance):
            content.extend(bytes(max(0, offset - len(content))))
            if data is None:
                del content[offset:]
            else:
                content[offset:offset + len(data)] = data
        return bytes(content)


def some(changes, variant, chance):
    """Of the changes of a file that no sync has made sure of."""
    if variant == "most" or not changes:
        return changes
    manner = "none" if variant == "least" else chance.choice(("none", "all", "first", "some", "torn"))
    if manner == "none":
        return []
    if manner == "first":
        return changes[:chance.randint(0, len(changes))]
    if manner == "some":
        return [change for change in changes if chance.random() < 0.5]
    offset, data = changes[-1]
    is_torn = manner == "torn" and data is not None
    return changes[:-1] + [(offset, data[:min(HALF_PAGE, len(data) // 2)])] if is_torn else changes


def record(work, template, series):
    """The log of a series, how long it was behind each command, and the states between them."""
    device = Device(work / "recorded", template)
    disk = Disk(device.folder)
    log = work / "log"
    log.unlink(missing_ok=True)
    ends, states = [], [device.state()]
    with contextlib.ExitStack() as others:
        if len(series) > 1:  # as a reader has them open: nothing is written back between
            for name in ("RSSVault.sdf", "registry.db"):
                other = others.enter_context(contextlib.closing(sqlite3.connect(device.root / name)))
                other.execute("SELECT count(*) FROM sqlite_master").fetchall()
        for command in series:
            status, out, err = faults.run(device, command, {"TORTURE_ROOT": str(device.folder),
                                                            "TORTURE_LOG": str(log)})
            assert status == 0, f"{command}: {out}{err}"
            part = Disk(work / "none")
            part.names, part.files, part.folder = dict(disk.names), list(disk.files), disk.folder
            part.read(log)
            ends.append(len(part.changes))
            states.append(device.state())
        disk.read(log)
        disk.build(len(disk.changes), "most", work / "rebuilt")
        for path in (work / "rebuilt").rglob("*"):
            real = device.folder / path.relative_to(work / "rebuilt")
            assert path.is_dir() or path.read_bytes() == real.read_bytes(), f"{real} is not as logged"
    return disk, ends, states


def cut(work, series, disk, ends, states, moment, variant):
    """What is wrong after this cut."""
    device = Device(work / f"cut{threading.get_ident()}")
    disk.build(moment, variant, device.folder)
    wrong = device.faults()
    state = device.state()
    done = sum(end <= moment for end in ends)
    command = series[min(done, len(series) - 1)]
    before, after = states[done], states[min(done + 1, len(series))]
    wrong += faults.judge(command, before, after, state, 1, "cut", True)
    if wrong or done == len(series):
        return wrong
    return wrong + faults.again(device, command, state, after)


def torture(work, template, step, report):
    """Every `step`th cut in every series. Cases, faults."""
    counts = [0, 0]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count() + 1) as pool:
        for series in SERIES:
            own = faults.template_for(series[0], work, template)
            recorded = record(work, own, series)
            cases = [(moment, variant) for moment in range(len(recorded[0].changes) + 1)
                     for place, variant in enumerate(VARIANTS) if (moment + place) % step == 0]
            counts[0] += len(cases)
            judged = pool.map(lambda case: cut(work, series, *recorded, *case), cases)
            for (moment, variant), wrong in zip(cases, judged):
                if wrong:
                    counts[1] += 1
                    name = " ; ".join(map(" ".join, series))
                    report(f"{name}, cut behind change {moment}, {variant}: {'; '.join(wrong)}")
    return counts
