"""A fault at every step: each change of a file that a command makes fails, is cut in two, or is the
last one. What is stored must then be sound and whole, and the same command must do its work."""

import concurrent.futures
import contextlib
import os
import signal
import sqlite3
import subprocess
import threading

from device import PATIENCE, Device

# How a change is met, and which ones: w(rite), s(ync), r(ename), t(runcate), o(pen), l(ock),
# u(nlink), m(ake).
HOWS = {"kill": "wsrtoulm", "EIO": "wsrtoulm", "dead": "wsrtoum", "ENOSPC": "wotm",
        "short": "w", "torn": "w", "full": "wotm"}

COMMANDS = [line.split() for line in """
    init
    add-category X
    rename-category C Z
    rename-category E Z
    delete-category C --yes
    add --create New new http://127.0.0.1:1/new
    rename a zz
    move a D
    relink a http://127.0.0.1:1/new
    delete a
    show a 1
    mark a read
    mark a unread
    save a 1 article OUT/page.html
    import OUT/list.opml Z
    export C OUT/old.opml
    export C a OUT/new.opml
    update
    update C
    update D
    update C a --full
    update --pauses
    auto add b
    auto add --all
    auto remove a
    setting FontSize 12
    setting Enabled 0
    reader_jobs ROOT properties
    reader_jobs ROOT read
    feedlarkd --foreground
""".strip().splitlines()]

# Each of their steps is a whole one: a channel, a feed, a property.
STEPWISE = ("import", "update", "feedlarkd", "reader_jobs")


def run_round(device, words, env):
    """The downloader until its first round has ended; the round's failures make the status 1."""
    process = device.start(*words, env=env, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    late = threading.Timer(PATIENCE, process.kill)
    late.start()
    text = ""
    for line in process.stderr:
        text += line
        if "automatic update" in line:
            break
    process.terminate()
    text += process.stderr.read()
    status = process.wait()
    is_late = not late.is_alive()
    late.cancel()
    is_done = " 0 failed" in text and "tried again" not in text
    return None if is_late else status if status < 0 else int(not is_done), "", text


def run(device, command, env=None):
    words = [word.replace("OUT", str(device.folder / "out")).replace("ROOT", str(device.root))
             for word in command]
    if words[0] == "feedlarkd":
        return run_round(device, words, env)
    return device.run(*(words if words[0] == "reader_jobs" else ["tidebrookctl", *words]), env=env)


def identities(facts):
    """What is still the same when it is renamed, moved, read or given another address."""
    return {("article", fact[2]) for fact in facts if fact[0] == "article"}


def without_empty_categories(facts):
    """A category that a change cut short leaves empty does no harm."""
    used = {fact[2] for fact in facts if fact[0] == "channel"}
    return {fact for fact in facts
            if fact[0] != "setting" or not fact[1].endswith("Categories") or fact[2] in used}


def articles_of(facts, channel):
    return {fact for fact in facts if fact[:2] == ("article", channel)}


def judge(command, before, after, state, status, text, is_killed):
    """What is wrong after a command that met something."""
    wrong = []
    if status is None:
        wrong.append("it hangs")
    lost = (before & after) - state
    lost |= (identities(before) & identities(after)) - identities(state)
    if lost:
        wrong.append(f"lost: {sorted(map(str, lost))[:3]}")
    if state - before - after and command[-1] != "properties":
        wrong.append(f"made up: {sorted(map(str, state - before - after))[:3]}")
    for channel in "abc":
        if articles_of(state, channel) not in (articles_of(before, channel),
                                               articles_of(after, channel)):
            wrong.append(f"{channel} is half done")
    if status == 0 and state != after:
        wrong.append("it says that it is done, but it is not")
    if status and not is_killed and not text.strip():
        wrong.append("it fails without a word")
    wholes = map(without_empty_categories, (before, after))
    if without_empty_categories(state) not in wholes and command[0] not in STEPWISE:
        wrong.append(f"half done: not {sorted(map(str, after - state))[:3]}, "
                     f"still {sorted(map(str, state - after))[:3]}")
    return wrong


def torment(template, folder, command, before, after, number, how):
    """What is wrong after this fault; None where the command did not come so far."""
    device = Device(folder, template)
    count = device.folder / "count"
    status, out, err = run(device, command, {"TORTURE_ROOT": str(device.folder),
                                             "TORTURE_FAULT": f"{number} {how}",
                                             "TORTURE_COUNT": str(count)})
    if "!" not in count.read_text():
        return None if status == 0 else ["it failed by itself"]
    wrong = device.faults()
    state = device.state()
    is_killed = status == -signal.SIGKILL and how in ("kill", "torn")
    wrong += judge(command, before, after, state, status, out + err, is_killed)
    return wrong + again(device, command, state, after)


def again(device, command, state, after):
    """What is wrong when the command is repeated, now that nothing keeps it from its work."""
    # A channel has had its turn in a round also when it could not be stored.
    status, out, err = run(device, ["update"] if command[0] == "feedlarkd" else command)
    wrong = []
    if state != after and command[0] != "import":  # which gives each name that is there another one
        wrong += [f"again: {status} {out}{err}"] if status != 0 else []
        wrong += ["again: it does not do its work"] if device.state() != after else []
    return wrong + [f"again: {fault}" for fault in device.faults()]


def template_for(command, work, template):
    if command[0] == "feedlarkd":
        rounds = Device(work / "rounds", template)
        rounds.ctl("setting", "UpdateMode", "1")
        rounds.ctl("auto", "add", "b")
        return rounds
    if command in (["update", "C"], ["update", "D"]):
        return roomy(Device(work / f"roomy {command[1]}", template), command == ["update", "C"])
    return template


def roomy(device, is_old):
    """A device with much unused space, which the next update returns to the disk."""
    with contextlib.closing(sqlite3.connect(device.root / "RSSVault.sdf")) as database:
        if is_old:
            database.execute("PRAGMA auto_vacuum = NONE")
            database.execute("VACUUM")
        database.execute("CREATE TABLE gone AS SELECT zeroblob(500000)")
        database.execute("DROP TABLE gone")
        database.commit()
    return device


def torture(work, template, step, report):
    """Every `step`th fault of every command. Cases, faults."""
    cases = []
    for command in COMMANDS:
        own = template_for(command, work, template)
        device = Device(work / "whole", own)
        count = device.folder / "count"
        before = device.state()
        status, out, err = run(device, command, {"TORTURE_ROOT": str(device.folder),
                                                 "TORTURE_COUNT": str(count)})
        assert status == 0, f"{command}: {out}{err}"
        letters = count.read_text()
        after = device.state()
        for place, (how, kinds) in enumerate(HOWS.items()):
            cases += [(own, command, before, after, number + 1, how)
                      for number, letter in enumerate(letters)
                      if letter in kinds and (number + place) % step == 0]
    faults = unmet = 0

    def one(case):
        folder = work / f"case{threading.get_ident()}"
        return case, torment(case[0], folder, *case[1:])

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count() + 1) as pool:
        for (_, command, _, _, number, how), wrong in pool.map(one, cases):
            unmet += wrong is None
            if wrong:
                faults += 1
                report(f"{' '.join(command)}, change {number}, {how}: {'; '.join(wrong)}")
    return len(cases) - unmet, faults
