#!/usr/bin/env python3
"""Measures Tidebrook beside other readers; `--help` says how."""

import argparse
import pathlib
import sys
import tempfile

import battery
import refresh
import windows
from checking import LEFT_OUT
from server import BIN, FeedServer

CASES = ("refresh", "growth", "windows", "battery")


def arguments():
    parser = argparse.ArgumentParser(prog="./dev bench peers", description="""Measures Tidebrook
        beside other readers where they are installed, on the same feeds and in turns. A cell has the
        median and, in brackets, its ratio to the first column's. What the readers with windows have
        fetched is kept in build/bench/peers/, and the first run takes minutes more for it. The exit
        is 1 if another reader could not be measured somewhere, which is said there.""")
    parser.add_argument("--install", action="store_true", help="install them first (Debian)")
    parser.add_argument("--quick", action="store_true", help="one run of each, and shorter rests")
    parser.add_argument("--counts", action="store_true",
                        help="count the instructions of large feeds, too; takes minutes")
    parser.add_argument("--runs", type=int, default=3, help="of each measurement (3)")
    parser.add_argument("cases", nargs="*", metavar="CASE", help=f"{', '.join(CASES)}: these alone")
    given = parser.parse_args()
    unknown = set(given.cases) - set(CASES)
    if unknown:
        parser.error(f"there is no case {', '.join(sorted(unknown))}")
    return given


def main():
    given = arguments()
    runs = 1 if given.quick else given.runs
    homes = BIN.parent / "peers"
    homes.mkdir(exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="tidebrook-peers-") as folder, FeedServer() as server:
        work = pathlib.Path(folder)
        run = {"refresh": lambda: refresh.run(work, server, runs, given.counts),
               "growth": lambda: refresh.growth(work, server),
               "windows": lambda: windows.run(homes, server, runs),
               "battery": lambda: battery.run(work, server, 20 if given.quick else 60)}
        for case in given.cases or CASES:
            run[case]()
    return 1 if LEFT_OUT else 0


if __name__ == "__main__":
    sys.exit(main())
