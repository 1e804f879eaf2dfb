"""Checks a web site of files: check-links.py FOLDER

Every link leads to a file that is there, and to an anchor in it; nothing is loaded over the network.
"""

import html.parser
import pathlib
import sys
import urllib.parse


class Page(html.parser.HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.anchors = set()
        self.links = []
        self.loads = []
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name in ("id", "name") and value:
                self.anchors.add(value)
            elif name == "href" and value:
                (self.links if tag == "a" else self.loads).append(value)
            elif name == "src" and value:
                self.loads.append(value)


def main():
    folder = pathlib.Path(sys.argv[1])
    pages = {path: Page(path) for path in sorted(folder.rglob("*.html"))}
    broken = [f"{path.name} loads {load}" for path, page in pages.items() for load in page.loads if "//" in load]
    count = 0
    for path, page in pages.items():
        for link in page.links + page.loads:
            parts = urllib.parse.urlsplit(link)
            if parts.scheme or parts.netloc:
                continue
            count += 1
            target = path.parent / urllib.parse.unquote(parts.path) if parts.path else path
            if not target.exists():
                broken.append(f"{path.name}: there is no {link}")
            elif parts.fragment and target in pages and parts.fragment not in pages[target].anchors:
                broken.append(f"{path.name}: no place {link}")
    print(*broken, sep="\n")
    print(f"{len(pages)} pages, {count} links, {len(broken)} broken")
    return 1 if broken or not pages else 0


sys.exit(main())
