#!/usr/bin/env python3
"""Reads the #include lines of all own sources and says which of them the table of rooms (tools/rooms.txt) does not allow.

Prints a line for each, `file:line: what is wrong`, and exits with 1 when there is one. Folders without a room, headers
that do not exist and .cpp files without the header of their own name (where the table asks for one) are told as well.
"""
import argparse
import fnmatch
import re
import sys
from pathlib import Path

# The headers of C++20's standard library, the C ones by both of their names.
STANDARD = set(
    """algorithm any array atomic barrier bit bitset charconv chrono compare complex concepts condition_variable
    coroutine deque exception execution filesystem format forward_list fstream functional future initializer_list
    iomanip ios iosfwd iostream istream iterator latch limits list locale map memory memory_resource mutex new numbers
    numeric optional ostream queue random ranges ratio regex scoped_allocator semaphore set shared_mutex source_location
    span sstream stack stdexcept stop_token streambuf string string_view strstream syncstream system_error thread tuple
    type_traits typeindex typeinfo unordered_map unordered_set utility valarray variant vector version""".split()
)
for name in """assert ctype errno fenv float inttypes limits locale math setjmp signal stdarg stddef stdint stdio stdlib
               string time uchar wchar wctype""".split():
    STANDARD |= {f"c{name}", f"{name}.h"}
# A name of C's library that is a header of the system, too.
STANDARD -= {"signal.h"}

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)
# Headers that the build makes, by the folder of the source that they are made from.
GENERATED = {"component/quillon_interfaces.h"}


class TableError(Exception):
    pass


class Rooms:
    """The table: rooms in their order, libraries and the folders that want own headers."""

    def __init__(self, path):
        self.rows = []  # (pattern of the folder, list of what it may use)
        self.libraries = {}
        self.own_headers = []
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            line = line.strip()
            if not line or line.startswith("#"):
                continue
            if line.startswith("own headers:"):
                self.own_headers = listed(line.removeprefix("own headers:"))
            elif library := re.fullmatch(r"(\[[^\]]+\])\s+(.+)", line):
                self.libraries[library[1]] = listed(library[2])
            elif row := re.fullmatch(r"(\S+/)\s*\|\s*(.+)", line):
                self.rows.append((row[1], [] if row[2] == "nothing else" else listed(row[2])))
            else:
                raise TableError(f"{path}:{number}: neither a room, a library nor a list of folders: {line}")
        for folder, uses in self.rows:
            for use in uses:
                if use.startswith("[") and use not in self.libraries:
                    raise TableError(f"{path}: {folder} uses {use}, whose headers are not listed")

    def room_of(self, file):
        """The folder that is the room of a path inside the checkout, and its row; None without a room."""
        for pattern, uses in self.rows:
            if match := re.match(re.escape(pattern).replace(r"\*", "[^/]+"), file):
                return match[0], uses
        return None

    def allowed(self, uses, seen=()):
        """Folders and headers out of `uses`, each "and below" resolved."""
        for use in uses:
            folder = use.removesuffix(" and below")
            if folder.startswith("["):
                continue
            yield folder
            if folder != use and folder not in seen:
                rooms = [inner for pattern, inner in self.rows if pattern.startswith(folder)]
                if not rooms:
                    raise TableError(f'"{use}": {folder} is no room')
                for inner in rooms:
                    yield from self.allowed([item.removesuffix(" and below") + (" and below" if is_folder(item) else "")
                                             for item in inner], (*seen, folder))

    def tops(self):
        return sorted({folder.split("/")[0] for folder, _ in self.rows})


def is_folder(use):
    return use.removesuffix(" and below").endswith("/")


def listed(text):
    return [item.strip() for item in text.split(",") if item.strip()]


def fits(path, allowance):
    if allowance.endswith("/"):
        return path.startswith(allowance)
    return fnmatch.fnmatchcase(path, allowance)


def violations(root, rooms):
    """Each fault of the tree `root` as (file, line, text)."""
    for top in rooms.tops():
        for path in sorted((root / top).rglob("*")):
            if path.suffix in {".cpp", ".h", ".inc"} and path.is_file():
                yield from violations_of(root, path.relative_to(root).as_posix(), rooms)


def violations_of(root, file, rooms):
    room = rooms.room_of(file)
    if not room:
        yield file, 1, "its folder is no room of tools/rooms.txt"
        return
    folder, uses = room
    text = (root / file).read_text(encoding="utf-8")
    if any(file.startswith(own) for own in rooms.own_headers) and file.endswith(".cpp"):
        header = file.removesuffix(".cpp") + ".h"
        if Path(file).name != "main.cpp" and not (root / header).is_file():
            yield file, 1, f"it has no header of its own name ({header})"
    anything = "everything" in uses
    allowed = [folder, *rooms.allowed([use for use in uses if use != "everything"])]
    headers = [header for use in uses if use.startswith("[") for header in rooms.libraries[use]]
    for include in INCLUDE.finditer(text):
        line = text.count("\n", 0, include.start()) + 1
        own, system = include.groups()
        if own is not None:
            if own not in GENERATED and not (root / own).is_file():
                yield file, line, f'"{own}" is no file of the checkout (includes start at its top)'
            elif not anything and not any(fits(own, allowance) for allowance in allowed):
                yield file, line, f'{folder} may not use "{own}"'
        elif not anything and system not in STANDARD and not any(fits(system, header) for header in headers):
            yield file, line, f"{folder} may not use <{system}>"


def main(words=None):
    here = Path(__file__).resolve().parent
    arguments = argparse.ArgumentParser(description="Checks the #include lines against the table of rooms.")
    arguments.add_argument("--root", type=Path, default=here.parent, help="the checkout")
    arguments.add_argument("--rooms", type=Path, default=here / "rooms.txt", help="the table of rooms")
    options = arguments.parse_args(words)
    try:
        found = list(violations(options.root, Rooms(options.rooms)))
    except TableError as error:
        sys.exit(f"check-includes: {error}")
    for file, line, text in found:
        print(f"{file}:{line}: {text}")
    if found:
        print(f"includes: {len(found)} line{'s go' if len(found) > 1 else ' goes'} against tools/rooms.txt")
        sys.exit(1)
    print("includes: every line goes with tools/rooms.txt")


if __name__ == "__main__":
    main()
