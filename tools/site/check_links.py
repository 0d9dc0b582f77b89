#!/usr/bin/env python3
"""Checks a built site: every link, anchor and picture in it is there, every page can be reached from the first one by
links, nothing is fetched from elsewhere, and there is no script.

usage: check_links.py SITE
"""

import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit


class Reader(HTMLParser):
    """What a page points to and what can be pointed to in it."""

    def __init__(self) -> None:
        super().__init__()
        self.links: list[str] = []  # that a reader may follow
        self.parts: list[str] = []  # that the page is made of: pictures, styles
        self.anchors: set[str] = set()
        self.scripts = 0
        self.without_text: list[str] = []  # pictures

    def handle_starttag(self, tag: str, attrs: list[tuple[str, str | None]]) -> None:
        found = {name: value or "" for name, value in attrs}
        self.scripts += tag == "script" or any(name.startswith("on") for name in found)
        if "id" in found:
            self.anchors.add(found["id"])
        if tag == "a" and "href" in found:
            self.links.append(found["href"])
        if tag == "img" and not found.get("alt"):
            self.without_text.append(found.get("src", ""))
        if tag in ("img", "script", "source", "iframe") and "src" in found:
            self.parts.append(found["src"])
        if tag == "link" and "href" in found:
            self.parts.append(found["href"])


def read(page: Path) -> Reader:
    reader = Reader()
    reader.feed(page.read_text())
    return reader


def check(site: Path) -> tuple[list[str], int, int]:
    """What is wrong, how many pages there are, and how many links were looked at."""
    pages = {page.resolve(): read(page) for page in sorted(site.rglob("*.html"))}
    wrong: list[str] = []
    reached = {site.resolve() / "index.html"}
    left = list(reached)
    count = 0
    while left:
        page = left.pop()
        reader = pages[page]
        for target in reader.links:
            place = urlsplit(target)
            if place.scheme or place.netloc:
                continue
            other = (page.parent / unquote(place.path)).resolve() if place.path else page
            if other in pages and other not in reached:
                reached.add(other)
                left.append(other)
    for page, reader in pages.items():
        name = page.relative_to(site.resolve())
        if reader.scripts:
            wrong.append(f"{name}: has a script")
        if name.parts[0] != "made":  # what programs have written has rules of its own
            wrong += [f"{name}: a picture without words: {source}" for source in reader.without_text]
        wrong += [f"{name}: fetches {part}" for part in reader.parts if urlsplit(part).netloc]
        if page not in reached:
            wrong.append(f"{name}: no link leads there")
        for target in reader.links + reader.parts:
            place = urlsplit(target)
            if place.scheme or place.netloc:
                continue
            count += 1
            other = (page.parent / unquote(place.path)).resolve() if place.path else page
            if not other.is_file() or not other.is_relative_to(site.resolve()):
                wrong.append(f"{name}: there is no {target}")
            elif place.fragment and other in pages and unquote(place.fragment) not in pages[other].anchors:
                wrong.append(f"{name}: there is no place {target}")
    return wrong, len(pages), count


def main() -> None:
    if len(sys.argv) != 2:
        sys.exit("usage: check_links.py SITE")
    wrong, pages, links = check(Path(sys.argv[1]))
    print("\n".join(wrong), end="\n" if wrong else "")
    print(f"{pages} pages, {links} links, anchors and pictures looked at, {len(wrong)} wrong")
    sys.exit(1 if wrong or not pages else 0)


if __name__ == "__main__":
    main()
