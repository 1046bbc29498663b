"""A screen of its own for each start of a program with windows: when its window is there and quiet,
what it and all that it has started need, and a user at its keyboard."""

import contextlib
import os
import pathlib
import re
import select
import signal
import subprocess
import threading
import time

PATIENCE = 60  # seconds, for a window
BUSY_PATIENCE = 600
CLOSING = 10
QUIET = 1.0
BUSY = 0.03  # seconds of CPU in that time
WINDOW = re.compile(r"window 0x([0-9a-f]+)")
SIZE = re.compile(r"width (\d+), height (\d+)")
LEAST = 300, 200  # pixels of a window that is no message
HELPERS = ("dbus-daemon", "dbus-run-sessio")


def processes(home):
    """Those with this home, and what they have started."""
    found, parents = set(), {}
    for entry in pathlib.Path("/proc").iterdir():
        try:
            name, rest = (entry / "stat").read_text().split("(", 1)[1].rsplit(")", 1)
            parents[int(entry.name)] = int(rest.split()[1])
            if name not in HELPERS and f"HOME={home}\0".encode() in (entry / "environ").read_bytes():
                found.add(int(entry.name))
        except (OSError, ValueError, IndexError):
            pass
    while more := {child for child, parent in parents.items() if parent in found} - found:
        found |= more
    return found


def cpu(pids):
    """Seconds; of those that have ended, nothing."""
    total = 0
    for pid in pids:
        with contextlib.suppress(OSError):
            total += time.clock_gettime((~pid << 3) | 2)
    return total


def figures_of(file, pattern):
    """Their sum; 0 where the file is gone with its process."""
    with contextlib.suppress(OSError):
        return sum(map(int, re.findall(pattern, file.read_text(), re.M)))
    return 0


def sleeps(pids):
    """How often each of their threads has gone to sleep."""
    return {task.name: figures_of(task / "status", r"^voluntary_ctxt_switches:\s+(\d+)")
            for pid in pids for task in pathlib.Path(f"/proc/{pid}/task").iterdir()}


def memory(pids):
    """MiB: what is shared counts by its share."""
    files = [pathlib.Path(f"/proc/{pid}/smaps_rollup") for pid in pids]
    return {"memory": sum(figures_of(file, r"^Pss:\s+(\d+)") for file in files) / 1024,
            "anonymous": sum(figures_of(file, r"^Pss_Anon:\s+(\d+)") for file in files) / 1024}


class Screen:
    """An X server, as long as the `with` block; `display` is its name."""

    def __enter__(self):
        read, write = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x800x24", "-nolisten", "tcp"],
            pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with open(read, encoding="ascii") as answer:
            self.display = ":" + answer.readline().strip()
        return self

    def __exit__(self, *_):
        self.server.terminate()
        self.server.wait()


class Program:
    """One that runs on the screen, with a session bus of its own, and is ended with the `with` block."""

    window = None

    def __init__(self, screen, command, env):
        self.command, self.env = command, {**env, "DISPLAY": screen.display}

    def __enter__(self):
        self.events = subprocess.Popen(["xev", "-root", "-event", "substructure", "-event", "property"],
                                       env=self.env, stdout=subprocess.PIPE, text=True)
        while not select.select([self.events.stdout], [], [], 0.05)[0]:  # until xev listens
            subprocess.run(["xprop", "-root", "-f", "WATCHED", "8s", "-set", "WATCHED", "1"],
                           env=self.env, check=True)
        self.begin = time.monotonic()
        self.process = subprocess.Popen(["dbus-run-session", "--", *self.command], env=self.env,
                                        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL, start_new_session=True)
        return self

    def __exit__(self, *_):
        if self.window:
            self.user("windowfocus", self.window, "key", "ctrl+q")
            with contextlib.suppress(subprocess.TimeoutExpired):
                self.process.wait(CLOSING)
        for number in (signal.SIGTERM, signal.SIGKILL):
            end = time.monotonic() + CLOSING
            for pid in self.pids() | ({self.process.pid} if self.process.poll() is None else set()):
                with contextlib.suppress(ProcessLookupError):
                    os.kill(pid, number)
            while self.pids() and time.monotonic() < end:
                time.sleep(0.1)
        self.process.wait()
        self.events.terminate()
        self.events.wait()

    def await_window(self):
        """Seconds until a window is there, which becomes `window`."""
        sizes, lines = {}, []
        patience = threading.Timer(PATIENCE, self.events.terminate)
        patience.daemon = True
        patience.start()
        for line in self.events.stdout:
            lines = [line] if line[0].isalpha() else lines + [line]
            text = "".join(lines)
            window = text.count("window 0x") and WINDOW.findall(text)[-1]
            if size := SIZE.search(text):
                sizes[window] = tuple(map(int, size.groups()))
            is_large = all(a >= b for a, b in zip(sizes.get(window, (0, 0)), LEAST))
            if text.startswith("MapNotify") and "override NO" in text and is_large:
                self.window = str(int(window, 16))
                patience.cancel()
                return time.monotonic() - self.begin
        raise RuntimeError(f"{self.command} shows no window")

    def pids(self):
        return processes(self.env["HOME"])

    def await_quiet(self):
        """Seconds from the start until it had nothing more to do, and the CPU of that."""
        samples, end = [], time.monotonic() + BUSY_PATIENCE
        while time.monotonic() < end:
            now, used = time.monotonic(), cpu(self.pids())
            samples = [sample for sample in samples if sample[0] > now - QUIET - 0.2] + [(now, used)]
            if now - samples[0][0] >= QUIET and used - samples[0][1] < BUSY:
                return {"quiet": samples[0][0] - self.begin, "cpu": used}
            time.sleep(0.1)
        raise RuntimeError(f"{self.command} is never quiet")

    def user(self, *words):
        subprocess.run(["xdotool", *map(str, words)], env=self.env, check=False,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def picture(self):
        """What the screen shows."""
        return subprocess.run(["xwd", "-root", "-silent"], env=self.env, check=True,
                              stdout=subprocess.PIPE).stdout
