#!/usr/bin/env python3
"""Torments the programs; `--help` says how. A table of what was done is the end, and the exit
status says whether all went well."""

import argparse
import os
import pathlib
import sys
import tempfile
import time

import chaos
import cuts
import disk
import faults
import life
import screens
from device import feed_server, make_template

CASES = ("faults", "disk", "cuts", "chaos", "life", "screens")
SANITIZED = 90  # seconds
QUICK_STEP = {"faults": 7, "cuts": 3, "disk": 1}


def arguments():
    parser = argparse.ArgumentParser(prog="./dev torture", description="""Runs the programs on
        devices where calls of the system fail, disks are full, the power is cut and processes are
        killed, for thirty days on end, and on a touch screen.""")
    parser.add_argument("--whole", action="store_true",
                        help="every fault and every cut, instead of a selection, and the suites of "
                        "the screens")
    parser.add_argument("--minutes", type=float, default=2, help="of chaos (2)")
    parser.add_argument("--hours", type=float, default=0, help="of chaos")
    parser.add_argument("--tsan", action="store_true",
                        help="the screens alone, by finger, of programs with ThreadSanitizer")
    parser.add_argument("cases", nargs="*", metavar="CASE", help=f"{', '.join(CASES)}: these alone")
    given = parser.parse_args()
    unknown = set(given.cases) - ({"screens"} if given.tsan else set(CASES))
    if unknown:
        parser.error(f"there is no case {', '.join(sorted(unknown))}")
    given.cases = given.cases or (["screens"] if given.tsan else CASES)
    return given


def run(case, given, work, report):
    """What was done, and how many faults were found."""
    feeds = work / "feeds"
    feeds.mkdir(parents=True)
    if case == "life":
        return life.torture(work, report)
    with feed_server(feeds) as url:
        if case == "chaos":
            return chaos.torture(work, feeds, url, given.hours * 3600 or given.minutes * 60, report)
        if case == "screens":
            return screens.torture(work, feeds, url, SANITIZED if given.tsan else 0,
                                   given.whole, report)
        template = make_template(work / "template", feeds, url)
        module = {"faults": faults, "disk": disk, "cuts": cuts}[case]
        count, found = module.torture(work, template, 1 if given.whole else QUICK_STEP[case], report)
        return f"{count} cases", found


def main():
    given = arguments()
    rows = []
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    with tempfile.TemporaryDirectory(prefix="tidebrook-torture-", dir=memory) as folder:
        for case in given.cases:
            begun = time.monotonic()
            done, found = run(case, given, pathlib.Path(folder) / case,
                              lambda text, *_, case=case: print(f"{case}: {text}", flush=True))
            rows.append((case, found, time.monotonic() - begun, done))
    print()
    for case, found, took, done in rows:
        print(f"{case:8}{'FAILED' if found else 'passed'}{found:6} faults{took:8.0f} s  {done}")
    return int(any(found for _, found, *_ in rows))


if __name__ == "__main__":
    sys.exit(main())
