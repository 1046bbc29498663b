"""What a program costs that runs to its end. Costs have the same names in all tables."""

import functools
import os
import pathlib
import re
import subprocess
import tempfile
import time

CALLS = "fsync,fdatasync,sync,syncfs,sync_file_range,msync,write,pwrite64,writev,pwritev,pwritev2"
WRITE = re.compile(r"p?writev?(?:64|2)?\(\d+<(/(?!dev/|proc/)[^>]*)>")


def environment(home, **more):
    """One without anything of the user's. Temporary files are on the disk of the rest."""
    (home / "tmp").mkdir(parents=True, exist_ok=True)
    return {"PATH": os.environ["PATH"], "HOME": str(home), "TMPDIR": str(home / "tmp"),
            "LC_ALL": "C.UTF-8", "no_proxy": "*", **more}


def finish(command, env):
    """Runs a program, which must succeed. Seconds of time and of CPU, of its children too."""
    with tempfile.TemporaryFile() as output:
        begin = time.monotonic()
        process = subprocess.Popen(command, env=env, cwd=env["HOME"], stdin=subprocess.DEVNULL,
                                   stdout=output, stderr=output)
        _, status, usage = os.wait4(process.pid, 0)
        wall = time.monotonic() - begin
        process.returncode = os.waitstatus_to_exitcode(status)
        if status:
            output.seek(0)
            raise RuntimeError(f"{command}: {output.read().decode(errors='replace')[-2000:]}")
    return {"wall": wall, "cpu": usage.ru_utime + usage.ru_stime}


def costs(command, env):
    """Time, CPU, and the peak of the memory: of several processes that of the largest."""
    with tempfile.NamedTemporaryFile("r", dir=env["TMPDIR"]) as peak:
        # The small program in between: else the peak would be at least that of this script.
        figures = finish(["time", "--format=%M", f"--output={peak.name}", *command], env)
        return {**figures, "peak": int(peak.read()) / 1024}


def traced(command, env):
    """Syncs, and MiB written to files."""
    with tempfile.NamedTemporaryFile("r", dir=env["TMPDIR"]) as log:
        finish(["strace", "--follow-forks", "--seccomp-bpf", "-qq", "-y", "-s0", f"-etrace={CALLS}",
                f"-o{log.name}", *command], env)
        syncs, written, begun = 0, 0, {}
        for line in log:
            thread, call = line.split(maxsplit=1)
            if "resumed>" in call:
                call = begun.pop(thread, "") + call
            elif "<unfinished" in call:
                begun[thread] = call
                continue
            if WRITE.match(call):
                written += max(0, int(call.rsplit("=", 1)[1].split()[0]))
            else:
                syncs += call.startswith(("f", "sync", "msync"))
    return {"syncs": syncs, "written": written / 2**20}


@functools.cache
def can_perf():
    try:
        check = subprocess.run(["perf", "stat", "-x,", "-einstructions:u", "true"],
                               capture_output=True, text=True, check=True)
    except (OSError, subprocess.CalledProcessError):
        return False
    return "not" not in check.stderr


def counted(command, env):
    """Instructions of all processes, by the processor where it lets itself be asked."""
    with tempfile.TemporaryDirectory(dir=env["TMPDIR"]) as folder:
        if can_perf():
            finish(["perf", "stat", "-x,", "-einstructions:u", f"--output={folder}/count", *command], env)
        else:
            finish(["valgrind", "--tool=callgrind", "--trace-children=yes",
                    "--callgrind-out-file=/dev/null", f"--log-file={folder}/%p", *command], env)
        text = "\n".join(file.read_text(errors="replace") for file in pathlib.Path(folder).iterdir())
    pattern = r"^(\d+)," if can_perf() else r"Collected : (\d+)"
    return {"instructions": sum(map(int, re.findall(pattern, text, re.M)))}
