#!/usr/bin/env python3
"""Holds the links and pictures of a folder of HTML pages against its files: check_html.py FOLDER"""

import html.parser
import pathlib
import sys
import urllib.parse

FOLDER = pathlib.Path(sys.argv[1])


class Links(html.parser.HTMLParser):
    """Collects what a page leads to, and the anchors that it has."""

    def __init__(self, page):
        super().__init__()
        self.links = []
        self.anchors = set()
        self.feed(page.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("href", "src", "data") and value:
                self.links.append(urllib.parse.urlsplit(value))
            elif name in ("id", "name"):
                self.anchors.add(value)


def main():
    pages = {page.name: Links(page) for page in sorted(FOLDER.glob("*.html"))}
    links = 0
    faults = [] if pages else ["no page found"]
    for name, page in pages.items():
        for link in page.links:
            if link.scheme or link.netloc:
                continue
            links += 1
            target = urllib.parse.unquote(link.path) or name
            anchor = link.fragment
            if not (FOLDER / target).is_file():
                faults.append(f"{name}: {target} is not there")
            elif anchor and target in pages and anchor not in pages[target].anchors:
                faults.append(f"{name}: {target} has no #{anchor}")

    print("\n".join(faults))
    print(f"{len(pages)} pages, {links} links, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
