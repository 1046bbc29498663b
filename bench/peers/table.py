"""The tables: medians, and their ratios to the first column, which is Tidebrook's."""

import statistics

FIGURES = {  # how each cost is called, and how many of its unit a unit of the table has
    "wall": ("time, ms", 1e-3, 0), "cpu": ("CPU, ms", 1e-3, 0),
    "instructions": ("million instructions", 1e6, 0),
    "peak": ("peak memory, MiB", 1, 1), "syncs": ("syncs", 1, 0), "written": ("written, MiB", 1, 1),
    "size": ("kept, MiB", 1, 1), "shown": ("until the window is there, ms", 1e-3, 0),
    "quiet": ("until it is quiet, ms", 1e-3, 0), "memory": ("memory, MiB", 1, 1),
    "anonymous": ("of that its own, MiB", 1, 1),
    "wheel": ("CPU of a turn of the wheel, ms", 1e-3, 2), "wakes": ("wake-ups a minute at rest", 1, 1),
    "rest": ("CPU of a minute at rest, ms", 1e-3, 2), "round wakes": ("wake-ups of a round", 1, 0),
    "round": ("CPU of a round, ms", 1e-3, 0), "day wakes": ("wake-ups of a day", 1, 0),
    "day": ("CPU of a day, s", 1, 1), "bytes": ("of 48 rounds, MiB both ways", 2**20, 2),
}


def median(runs, figure):
    values = [run[figure] for run in runs if run.get(figure) is not None]
    return statistics.median(values) if values else None


def cell(value, ours, figure):
    if value is None:
        return "-"
    _, unit, decimals = FIGURES[figure]
    text = f"{value / unit:,.{decimals}f}"
    has_ratio = ours and ours / unit >= 10 ** -decimals  # not to what is next to nothing
    return f"{text} ({value / ours:.2f})" if has_ratio else text


def show(title, columns):
    """`columns`: the runs of each reader, ours first. In a cell the ratio to ours is in brackets."""
    names, runs = list(columns), list(columns.values())
    present = [f for f in FIGURES if any(f in run for column in runs for run in column)]
    rows = [[title, *names], ["---", *["--:" for _ in names]]]
    for figure in present:
        ours, *others = (median(column, figure) for column in runs)
        rows.append([FIGURES[figure][0], cell(ours, None, figure), *(cell(v, ours, figure) for v in others)])
    widths = [max(len(row[i]) for row in rows) for i in range(len(rows[0]))]
    print()
    for first, *others in rows:
        cells = [first.ljust(widths[0]), *(text.rjust(width) for text, width in zip(others, widths[1:]))]
        print(f"| {' | '.join(cells)} |", flush=True)
