#!/usr/bin/env python3
"""Checks the project's pages (*.md) as a reader walks through them.

  check_links.py ROOT

- Every relative link leads to a file, and its anchor to a heading of that page.
- Every path in backticks that begins with one of the project's folders is there, so that a moved file takes its
  mentions along. `*` stands for any name; what is built or written by a command is not looked for.
- docs/README.md, the index, has every page of docs/ and the pages beside the README, each once.
- README.md leads to the index, and the index to README.md's own pages: no page can be reached by its name alone.

Prints one line a fault and ends with 1 when there was any.
"""

import pathlib
import re
import sys

# Made by builds and set-up, not kept.
NOT_KEPT = {".git", ".deps", ".wine", "build", "dist"}
INDEX = "docs/README.md"
START = "README.md"

FENCE = re.compile(r"^\s*(```|~~~)")
CODE = re.compile(r"`([^`]+)`")
LINK = re.compile(r"!?\[(?:[^\[\]]|\[[^\]]*\])*\]\(\s*<?([^)\s>]+)>?(?:\s+\"[^\"]*\")?\s*\)")
IMAGE_TAG = re.compile(r"<img[^>]*\ssrc=\"([^\"]+)\"")
PATH = re.compile(r"^[A-Za-z0-9_.*-]+(/[A-Za-z0-9_.*-]+)*/?$")


def pages_of(root):
    for path in sorted(root.rglob("*.md")):
        inside = path.relative_to(root)
        if not NOT_KEPT.intersection(inside.parts):
            yield inside.as_posix()


class Page:
    """The lines of a page that are text, without fenced examples."""

    def __init__(self, root, name):
        self.name = name
        self.lines = []  # (number, text)
        fenced = False
        for number, line in enumerate((root / name).read_text(encoding="utf-8").splitlines(), 1):
            if FENCE.match(line):
                fenced = not fenced
            elif not fenced:
                self.lines.append((number, line))

    def links(self):
        for number, line in self.lines:
            text = CODE.sub(lambda code: "x" * len(code.group(0)), line)
            for pattern in (LINK, IMAGE_TAG):
                for found in pattern.finditer(text):
                    yield number, found.group(1)

    def paths(self):
        for number, line in self.lines:
            for found in CODE.finditer(line):
                if PATH.match(found.group(1)):
                    yield number, found.group(1)

    def anchors(self):
        """As forges make them: small letters, punctuation dropped, blanks to hyphens, repeated ones numbered."""
        taken = {}
        for _, line in self.lines:
            heading = re.match(r"#{1,6}\s+(.*?)\s*#*$", line)
            if not heading:
                continue
            text = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading.group(1)).replace("`", "").replace("*", "")
            anchor = re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", "-")
            count = taken.get(anchor, 0)
            taken[anchor] = count + 1
            yield anchor if count == 0 else f"{anchor}-{count}"


def is_elsewhere(target):
    return re.match(r"^[a-z][a-z0-9+.-]*:", target) is not None


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: check_links.py ROOT")
    root = pathlib.Path(sys.argv[1]).resolve()
    pages = {name: Page(root, name) for name in pages_of(root)}
    faults = []
    linked = {name: [] for name in pages}  # the project's files that a page links to

    for name, page in pages.items():
        for number, target in page.links():
            if is_elsewhere(target):
                continue
            file, _, anchor = target.partition("#")
            path = (root / name).parent / file if file else root / name
            inside = path.resolve()
            if not inside.is_relative_to(root) or not inside.exists():
                faults.append(f"{name}:{number}: the link {target} leads nowhere")
                continue
            found = inside.relative_to(root).as_posix()
            linked[name].append(found)
            if anchor and (found not in pages or anchor not in set(pages[found].anchors())):
                faults.append(f"{name}:{number}: {found} has no heading for #{anchor}")

        folders = {path.name for path in root.iterdir() if path.is_dir()} - NOT_KEPT
        for number, path in page.paths():
            if "/" in path and path.split("/")[0] in folders and not any(root.glob(path.rstrip("/"))):
                faults.append(f"{name}:{number}: there is no {path}")

    for required in (START, INDEX):
        if required not in pages:
            sys.exit(f"there is no {required}")
    for name in pages:
        belongs = name != INDEX and (name.startswith("docs/") or "/" not in name)
        count = linked[INDEX].count(name)
        if belongs and count != 1:
            faults.append(f"{INDEX}: has {count} links to {name}, not one")
    if INDEX not in linked[START]:
        faults.append(f"{START}: does not lead to {INDEX}")

    # What nobody comes across, outside of docs/ too.
    reached, waiting = set(), [START]
    while waiting:
        name = waiting.pop()
        if name not in reached:
            reached.add(name)
            waiting += [found for found in linked.get(name, []) if found in pages]
    for name in sorted(set(pages) - reached):
        faults.append(f"{name}: no page that {START} leads to has a link to it")

    for fault in faults:
        print(fault)
    print(f"{len(pages)} pages, {sum(len(found) for found in linked.values())} links, {len(faults)} faults")
    sys.exit(1 if faults else 0)


main()
