#!/usr/bin/env python3
"""Reads the catalogue of messages (workbench/messages/) and says what is wrong with its entries, and where the workbench
says something that does not stand in it.

Prints a line for each, `file:line: what is wrong`, and exits with 1 when there is one. Of an entry: both languages say
something, have the same places, and each is in its language; no two entries have one name; something says it. Of the code
outside of the catalogue: no error, note or line of progress is made of a literal.
"""
import argparse
import re
import sys
from pathlib import Path

LITERAL = r'"(?:[^"\\]|\\.)*"'
ENTRY = re.compile(rf"inline constexpr Text<(\d+)> (\w+)\{{\s*((?:{LITERAL}\s*)+),\s*((?:{LITERAL}\s*)+)\}};")
DECLARED = re.compile(r"inline constexpr Text<")
# Characters of Chinese texts, with their punctuation.
CHINESE = re.compile("[\u3000-\u303f\u3400-\u9fff\uff00-\uffef\u201c\u201d]")

# Errors whose text the user reads. Their constructors take a Message, which a literal can only become by verbatim().
ERRORS = re.compile(r"\b(?:UserError|InputError|AccountError|CsvError|ValueError|DescriptionError|refuseUsage)\(")
VERBATIM = re.compile(r"\bMessage::verbatim\(\s*\"")
STANDARD = re.compile(r"\bthrow std::\w+\(")
NOTES = re.compile(r"\b(?:notes|notes\.notes|errors_?|std::cerr|failure_)\s*(?:<<|\+=)[^;]*;")
WORD = re.compile(r"[A-Za-z\u3400-\u9fff]")
# What may stand there: the program's name before a message, and codes that clear a terminal's line.
NO_MESSAGE = {'"quillon: "', r'"\r\x1b[K"', r'"^C\n"', '" [y/N] "'}

# Errors of developers, which no user's input leads to: a schema that ships with the program, sums of what is no number, a
# sample that is put together wrongly.
OF_DEVELOPERS = {
    "workbench/platform/json_schema.cpp",
    "workbench/presentation/exact_sum.cpp",
    "workbench/account/sample_stock.cpp",
}
# The objects of workbench/com speak to programs, and the engine of workbench/tsql in SQL Server's own words.
OUTSIDE = ("workbench/messages/", "workbench/com/", "workbench/tsql/")


def text_of(literals):
    return "".join(part[1:-1] for part in re.findall(LITERAL, literals))


def places(text):
    return sorted(set(re.findall(r"\{(\d)\}", text)))


def line_of(text, position):
    return text.count("\n", 0, position) + 1


def arguments(text, start):
    """The text between the parenthesis that ends at `start` and the one that closes it."""
    depth, at = 1, start
    while at < len(text) and depth:
        if text[at] == '"':
            at = re.compile(LITERAL).match(text, at).end()
            continue
        depth += {"(": 1, ")": -1}.get(text[at], 0)
        at += 1
    return text[start:at]


def without_comments(text):
    return re.sub(rf"({LITERAL})|//[^\n]*", lambda match: match[1] or "", text)


def check_entries(root, faults):
    """Gives the names of the entries, each with its place."""
    names = {}
    for path in sorted((root / "workbench/messages").glob("*.h")):
        text = path.read_text(encoding="utf-8")
        shown = path.relative_to(root)
        found = list(ENTRY.finditer(text))
        if len(found) != len(DECLARED.findall(text)):
            faults.append(f"{shown}:1: an entry is written in another way than the others")
        for entry in found:
            count, name, chinese, english = int(entry[1]), entry[2], text_of(entry[3]), text_of(entry[4])
            place = f"{shown}:{line_of(text, entry.start())}"
            if name in names:
                faults.append(f"{place}: {name} stands in {names[name]}, too")
            names[name] = place
            wanted = [str(number) for number in range(1, count + 1)]
            if places(chinese) != wanted or places(english) != wanted:
                faults.append(f"{place}: {name} has other places than {wanted}")
            if not chinese or not english:
                faults.append(f"{place}: {name} says nothing in one language")
            if CHINESE.search(english):
                faults.append(f"{place}: the English of {name} holds Chinese")
            if WORD.search(re.sub(r"\{\d\}", "", english)) and chinese != english and not CHINESE.search(chinese):
                faults.append(f"{place}: the Chinese of {name} is none")
    return names


def check_code(root, names, faults):
    said = set()
    for path in sorted((root / "workbench").rglob("*")):
        if path.suffix not in {".cpp", ".h"}:
            continue
        shown = path.relative_to(root).as_posix()
        text = without_comments(path.read_text(encoding="utf-8"))
        if not shown.startswith("workbench/messages/") or path.suffix == ".cpp":
            said |= set(re.findall(r"\bmessages::(\w+)", text))
        if shown.startswith(OUTSIDE):
            continue

        def fault(match, what):
            faults.append(f"{shown}:{line_of(text, match.start())}: {what}; put it in workbench/messages/")

        for match in ERRORS.finditer(text):
            made_of = arguments(text, match.end())
            if '"' in made_of and "messages::" not in made_of:
                fault(match, "an error is made of a literal")
        for match in VERBATIM.finditer(text):
            fault(match, "a literal is no words of somebody else")
        if shown not in OF_DEVELOPERS:
            for match in STANDARD.finditer(text):
                if '"' in arguments(text, match.end()):
                    fault(match, "an error is made of a literal")
        for match in NOTES.finditer(text):
            for literal in re.findall(LITERAL, match[0]):
                if literal not in NO_MESSAGE and WORD.search(re.sub(r"\\.", "", literal)):
                    fault(match, f"{literal} is said without the catalogue")
    for name, place in names.items():
        if name not in said:
            faults.append(f"{place}: nothing says {name}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--root", type=Path, default=Path(__file__).resolve().parent.parent, help="the checkout")
    root = parser.parse_args().root
    faults = []
    names = check_entries(root, faults)
    check_code(root, names, faults)
    for fault in faults:
        print(fault)
    if not faults:
        print(f"messages: {len(names)} entries in both languages, and nothing is said without them")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
