"""The generated feeds, from the repository's own feed server."""

import os
import pathlib
import subprocess

BIN = pathlib.Path(os.environ["BENCH_BIN"])


class FeedServer:
    """Serves feeds as /1, /2, ...; ends with the `with` block."""

    def __enter__(self):
        self.process = subprocess.Popen([BIN / "bench_server"], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True)
        self.port = int(self.process.stdout.readline().split()[-1])
        return self

    def __exit__(self, *_):
        self.process.stdin.close()
        self.process.wait()

    def _order(self, *words):
        print(*words, file=self.process.stdin, flush=True)
        return self.process.stdout.readline().split()[:-1]

    def serve(self, numbers, items, first=0, validators=False):
        """Feeds of so many items, the oldest with the number `first`, always or when they changed."""
        self._order("serve", numbers[0], numbers[-1], items, first, int(validators))

    def delay(self, milliseconds):
        self._order("delay", milliseconds)

    def counts(self):
        """Requests, and bytes received and sent, since the last time."""
        words = self._order("counts")
        return dict(zip(words[::2], map(int, words[1::2])))

    def urls(self, numbers):
        """Each on a host of its own, which a polite reader asks for one document at a time."""
        return {f"Feed {n}": f"http://{n}.localhost:{self.port}/{n}" for n in numbers}
