#!/usr/bin/env python3
"""other_formats.py PROGRAMS FOLDER...: has each document of the folders read as a feed, with and
without the other formats than RSS, and compares what is stored with a reading of its own."""

import contextlib
import email.utils
import html.parser
import json
import os
import pathlib
import re
import sqlite3
import sys
import tempfile
import xml.etree.ElementTree as ET
from urllib.parse import urljoin

os.environ["TORTURE_BIN"] = sys.argv[1]
sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "torture"))
from device import Device, feed_server  # noqa: E402

FEED = ("{http://www.w3.org/2005/Atom}", "{http://purl.org/atom/ns#}", "{http://purl.org/rss/1.0/}",
        "{http://my.netscape.com/rdf/simple/0.9/}", "{http://channel.netscape.com/rdf/simple/0.9/}", "")
RDF = "{http://www.w3.org/1999/02/22-rdf-syntax-ns#}"
DC_DATE = "{http://purl.org/dc/elements/1.1/}date"
BASE = "{http://www.w3.org/XML/1998/namespace}base"


def plain(markup):
    text = []
    parser = html.parser.HTMLParser()
    parser.handle_data = text.append
    parser.handle_starttag = lambda tag, _: text.append(" " * (tag in ("br", "p", "div")))
    parser.feed(markup)
    parser.close()
    return "".join(text)


def clean(text):
    """A text on one line, without what XML cannot hold."""
    text = re.sub("[\0-\x1f]", " ", text)
    return " ".join(re.sub("[\ud800-\udfff\ufffe\uffff]", "\ufffd", text).split())


def parse(document):
    """The root. As in the programs, a DTD allows any entity, and prefixes need not be declared."""
    if b"<!DOCTYPE" in document:
        document = re.sub(rb"&(?!(?:amp|lt|gt|quot|apos);)(\w+);", rb"&amp;\1;", document)
    for prefix in set(re.findall(rb"</?(\w+):", document)) - set(re.findall(rb"xmlns:(\w+)", document)):
        document = re.sub(rb"(</?" + prefix + b"):", rb"\1-", document)
    return ET.fromstring(document)


def children(element, name):
    return [child for space in FEED for child in element.findall(space + name)]


def first(element, *names):
    """The first child of one of these names that has a text, and the text."""
    for child in (child for name in names for child in children(element, name) or element.findall(name)):
        text = "".join(child.itertext()).strip()
        if text:
            isMarkup = "html" in child.get("type", "") and len(child) == 0
            return plain(text) if isMarkup else text
    return ""


def read_entry(entry, base):
    base = urljoin(base, entry.get(BASE, ""))
    links = [link for link in children(entry, "link") if link.get("rel", "alternate") == "alternate"]
    links.sort(key=lambda link: "html" not in link.get("type", "html"))
    link = urljoin(urljoin(base, links[0].get(BASE, "")), links[0].get("href")) if links else ""
    return (first(entry, "id"), link, first(entry, "title"),
            first(entry, "published", "issued", "updated", "modified", "created", DC_DATE),
            first(entry, "content", "summary"))


def read_item(item, base):
    about = item.get(f"{RDF}about", "")
    about = about and urljoin(base, about)
    return about, first(item, "link") or about, first(item, "title"), first(item, DC_DATE), ""


def read_note(item, base):
    link = item.get("url") or item.get("external_url") or ""
    text = plain(item.get("content_html") or "") or item.get("content_text") or item.get("summary")
    return (str(item.get("id", "")), link and urljoin(base, link), item.get("title", ""),
            item.get("date_published") or item.get("date_modified") or "", text or "")


def read(document, address):
    """The codes of a refresh without the other formats and with them, and the items that it has
    with them: guid, link, title, date, text. Nothing for RSS, which is no other then."""
    if document.removeprefix(b"\xef\xbb\xbf").lstrip()[:1] == b"{":
        try:
            feed = json.loads(document)
        except ValueError:
            return 1002, 1002, []
        isFeed = "jsonfeed.org/version/1" in str(feed.get("version"))
        return 1002, 0 if isFeed else 1003, [read_note(item, address) for item in feed["items"] if isFeed]
    try:
        root = parse(document)
    except (ET.ParseError, ValueError, LookupError):
        return 1002, 1002, []
    if root.tag == "rss":
        return None
    if root.tag in [space + "feed" for space in FEED]:
        base = urljoin(address, root.get(BASE, ""))
        return 1003, 0, [read_entry(entry, base) for entry in children(root, "entry")]
    if root.tag == RDF + "RDF" and (children(root, "channel") or children(root, "item")):
        return 1003, 0, [read_item(item, address) for item in children(root, "item")]
    return 1003, 1003, []


def stored_of(items):
    """What is stored of these, and whether all could be."""
    stored, known = [], set()
    for guid, link, title, date, text in items:
        if not guid and not link:
            return stored, False
        guid, link = (clean(each).replace("'", "%27")[:512] for each in (guid or link, link))
        title = clean(title)[:255].strip() or clean(text)
        if not known & {("guid", guid), ("title", title)}:
            stored.append((guid, link or "DEFAULT", title or "DEFAULT", day(date)))
            known |= {("guid", guid), ("title", title)}
    return stored, True


def day(date):
    """Nothing for a date that is not understood, which is stored as that of today."""
    parts = re.match(r"(\d{4})(?:-(\d\d)(?:-(\d\d))?)?(?:$|[T ])", date)
    if parts:
        return "-".join(part or "01" for part in parts.groups())
    rfc = email.utils.parsedate(date)
    return f"{rfc[0]}-{rfc[1]:02}-{rfc[2]:02}" if rfc else None if date else ""


def refresh(device, url):
    """The code of a refresh, and what it stores."""
    device.ctl("add", "C", "ch", url, "--create", "--feed", "0")
    status, out, err = device.run("tidebrookctl", "update", "C", "ch")
    assert status in (0, 1) and out, f"{url}: {status} {out}{err}"
    with contextlib.closing(sqlite3.connect(device.root / "RSSVault.sdf")) as database:
        rows = list(database.execute("SELECT GUID, ITEM_LINK, TITLE, PUBDATE FROM RSSRecord ORDER BY rowid"))
    device.ctl("delete", "ch")
    fields = out.split("\t")
    return int(fields[1]) if fields[0] == "error" else 0, rows


def is_same(row, item):
    title, name = clean(row[2]), item[2]
    isNamed = title == name or title.endswith("…") and name.startswith(title[:-1]) and len(title) > 20
    return row[:2] == item[:2] and isNamed and item[3] in (row[3], None)


def faults(devices, url, document):
    strict, lenient = (refresh(device, url) for device in devices)
    expected = read(document, url)
    if expected is None:
        return [] if strict == lenient else ["RSS is another with the other formats"]
    items, isWhole = stored_of(expected[2])
    codes = (expected[0], expected[1] if isWhole else 1001)
    found = [] if (strict[0], lenient[0]) == codes else [f"{(strict[0], lenient[0])} instead of {codes}"]
    if strict[1] or len(lenient[1]) != len(items):
        found.append(f"{len(strict[1])} and {len(lenient[1])} articles instead of 0 and {len(items)}")
    return found + [f"{row} instead of {item}" for row, item in zip(lenient[1], items)
                    if not is_same(row, item)]


def main():
    found = documents = 0
    with tempfile.TemporaryDirectory() as folder:
        devices = [Device(f"{folder}/{value}") for value in (0, 1)]
        for value, device in enumerate(devices):
            device.ctl("init")
            device.ctl("setting", "OtherFormats", value)
        for source in sys.argv[2:]:
            with feed_server(source) as url:
                os.environ["TIDEBROOK_HTTP_PORT"] = url.split(":")[-1]
                for file in sorted(pathlib.Path(source).iterdir()):
                    documents += 1
                    for fault in faults(devices, f"{url}/{file.name}", file.read_bytes()):
                        found += 1
                        print(f"{file.name}: {fault}")
    print(f"{documents} documents, {found} faults")
    return found > 0 or documents == 0


sys.exit(main())
