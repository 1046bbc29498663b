"""Refreshing: the first time, again, from slow servers, and while the store grows."""

import itertools

import table
from checking import check
from measuring import can_perf, costs, counted, traced
from text_readers import ALL, installed

STEPS = ("first", "again")


def refresh_twice(reader_class, home, server, feeds, articles, measure):
    """The costs of both steps. Each must have asked for every feed, and all be stored."""
    reader, steps = reader_class(home, feeds), {}
    for step in STEPS:
        server.counts()
        steps[step] = measure(reader.refresh, reader.env)
        asked, stored = server.counts()["requests"], reader.stored()
        check((asked, stored) == (len(feeds), articles),
              f"{reader.name} asks for {len(feeds)} feeds ({asked}) and stores {articles} ({stored})")
    steps["again"]["size"] = reader.size()
    return steps


def compare(readers, work, server, title, feeds, articles, measures):
    """Each measurement of all readers in turns."""
    runs = {step: {reader.name: [] for reader in readers} for step in STEPS}
    for measure, reader in itertools.product(measures, readers):
        steps = refresh_twice(reader, work / reader.name, server, feeds, articles, measure)
        for step, figures in steps.items():
            runs[step][reader.name].append(figures)
    for step in STEPS:
        table.show(f"{title}, {step}", runs[step])


def many_sizes(readers, work, server, runs, are_counted):
    for count, items in ((1, 1000), (1, 10000), (50, 100)):
        server.serve(range(1, count + 1), items)
        # Without the processor's own count each process takes seconds, and each item milliseconds.
        is_counted = can_perf() or (count == 1 and (items == 1000 or are_counted))
        measures = [costs] * runs + [traced] + [counted] * is_counted
        compare(readers, work, server, f"{count} x {items:,} items",
                server.urls(range(1, count + 1)), count * items, measures)


def slow_servers(readers, work, server, runs):
    server.delay(100)
    compare(readers, work, server, "50 x 100 items, each answered after 100 ms",
            server.urls(range(1, 51)), 5000, [costs] * runs)
    server.delay(0)


def growth(work, server, rounds=10, count=50, items=200):
    """Each round brings nothing but new articles. The rounds of all readers are in turns."""
    numbers = range(1, count + 1)
    feeds = server.urls(numbers)
    homes = [reader(work / reader.name, feeds) for reader in installed(ALL)]
    runs = {}
    for round_ in range(rounds):
        server.serve(numbers, items, first=round_ * items)
        stored = (round_ + 1) * count * items
        runs[stored] = {}
        for reader in homes:
            figures = costs(reader.refresh, reader.env)
            check(reader.stored() == stored, f"{reader.name} stores {stored}")
            runs[stored][reader.name] = [{**figures, "size": reader.size()}]
    for stored in (min(runs), max(runs)):
        table.show(f"{count * items:,} new articles, {stored:,} with them", runs[stored])


def run(work, server, runs, are_counted):
    readers = installed(ALL)
    many_sizes(readers, work, server, runs, are_counted)
    slow_servers(readers, work, server, runs)
