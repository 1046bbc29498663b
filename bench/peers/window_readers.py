"""The readers with windows: how each gets its feeds, and where its list of articles is."""

import contextlib
import shutil
import sqlite3

from measuring import environment
from server import BIN
from text_readers import Reader, Tidebrook, count_rows, subscriptions

ITEMS = 100  # of each feed


class WindowReader(Reader):
    """A first start makes the program's own files, and then `subscribe` gives it feeds, which it
    fetches at the next start if the settings say so, or when `fetch` has the user do that, and
    again every so many minutes if it `stays_open` for that. `stores_at_once`: not only at its end.
    `way` is what a user clicks who opens a feed's list, and `place` is on that list."""

    stores_at_once = True
    stays_open = False

    def __init__(self, home):
        self.home = home
        self.env = environment(home, QT_QPA_PLATFORM="xcb", GSETTINGS_BACKEND="keyfile",
                               QTWEBENGINE_DISABLE_SANDBOX="1",
                               XDG_RUNTIME_DIR=str(home / "run"))
        (home / "run").mkdir(mode=0o700, exist_ok=True)
        self.command = [self.program]

    def fetch(self, program):
        pass

    def sql(self, file, statement, rows):
        with contextlib.closing(sqlite3.connect(file)) as database, database:
            database.executemany(statement, rows)

    def write(self, file, text):
        (self.home / file).parent.mkdir(parents=True, exist_ok=True)
        (self.home / file).write_text(text, encoding="utf-8")


class TidebrookWindow(WindowReader):
    name, program = "tidebrook", str(BIN / "tidebrook")
    way = ((60, 71), (60, 120))
    place = (500, 300)

    def __init__(self, home):
        super().__init__(home)
        self.kept = home / ".local/share/tidebrook"

    def settings(self, is_fetching, minutes=0):
        pass

    def fetch(self, program):
        self.control("update")

    control = Tidebrook.control
    subscribe = Tidebrook.subscribe
    stored = Tidebrook.stored


class QuiteRss(WindowReader):
    name = program = "quiterss"
    way = ((90, 107),)
    place = (500, 200)
    folder = ".local/share/QuiteRss/QuiteRss"

    def subscribe(self, feeds):
        self.sql(self.home / self.folder / "feeds.db",
                 "INSERT INTO feeds (text, title, xmlUrl, htmlUrl, created, parentId, rowToParent, "
                 "duplicateNewsMode) VALUES (?, ?, ?, '', '2026-01-01T00:00:00', 0, ?, 1)",
                 [(name, name, url, row) for row, (name, url) in enumerate(feeds.items())])
        self.settings(True)

    def settings(self, is_fetching, minutes=0):
        self.write(".config/QuiteRss/QuiteRss.ini",
                   f"[Settings]\nautoUpdatefeedsStartUp={str(is_fetching).lower()}\n"
                   "showSplashScreen=false\nstoreDBMemory=false\n")

    def stored(self):
        return count_rows(self.home / self.folder / "feeds.db", "news")


class RssGuard(WindowReader):
    name = program = "rssguard"
    way = ((50, 130),)
    place = (750, 400)
    folder = ".config/RSS Guard 4"

    def subscribe(self, feeds):
        database = self.home / self.folder / "database/database.db"
        self.sql(database, "INSERT INTO Accounts (id, type) VALUES (?, ?)", [(1, "std-rss")])
        self.sql(database,
                 "INSERT INTO Feeds (id, title, category, source, update_type, account_id, custom_id, "
                 "date_created, custom_data) VALUES (?, ?, -1, ?, 1, 1, ?, 0, '{\"encoding\": \"UTF-8\", "
                 "\"type\": \"1\"}')",
                 [(i, name, url, str(i)) for i, (name, url) in enumerate(feeds.items(), 1)])
        self.settings(True)

    def settings(self, is_fetching, minutes=0):
        self.write(f"{self.folder}/config/config.ini",
                   "[main]\nfirst_run=false\nfirst_run_4.0.4=false\n[feeds]\n"
                   f"feeds_update_on_startup={str(is_fetching).lower()}\n")

    def fetch(self, program):
        program.user("mousemove", 39, 129, "click", 1)

    def stored(self):
        return count_rows(self.home / self.folder / "database/database.db", "Messages")


class Liferea(WindowReader):
    name = program = "liferea"
    stays_open = True
    way = ((60, 80),)
    place = (500, 300)

    def subscribe(self, feeds):
        self.write(".config/liferea/feedlist.opml", subscriptions(feeds))
        self.settings(True)

    def settings(self, is_fetching, minutes=0):
        self.write(".config/glib-2.0/settings/keyfile",
                   f"[net/sf/liferea]\nstartup-feed-action={0 if is_fetching else 1}\n"
                   f"default-update-interval={minutes}\n")

    def stored(self):
        return count_rows(self.home / ".local/share/liferea/liferea.db", "items")


class Akregator(WindowReader):
    name = program = "akregator"
    way = ((60, 103),)
    place = (600, 150)
    stores_at_once = False
    stays_open = True

    def subscribe(self, feeds):
        shutil.rmtree(self.home / ".local/share/akregator", ignore_errors=True)
        self.write(".local/share/akregator/data/feeds.opml", subscriptions(feeds))
        self.settings(True)

    def settings(self, is_fetching, minutes=0):
        self.write(".config/akregatorrc", "[General]\n"
                   f"Fetch On Startup={str(is_fetching).lower()}\n"
                   f"Use Interval Fetch={str(minutes > 0).lower()}\nAuto Fetch Interval={minutes or 60}\n")

    def stored(self):
        """Its archives cannot be counted: those of a feed's usual size have its articles."""
        files = (self.home / ".local/share/akregator/Archive").glob("http___127.0.0.1*.mk4")
        return sum(ITEMS for file in files if file.stat().st_size > ITEMS * 1024)


ALL = [TidebrookWindow, QuiteRss, RssGuard, Liferea, Akregator]
