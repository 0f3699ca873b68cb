#!/usr/bin/env python3
"""Tests of tools/check-messages.py, on trees with one fault each."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TOOL = Path(__file__).resolve().parents[2] / "tools" / "check-messages.py"
GOOD = 'inline constexpr Text<1> noFile{"没有文件 {1}", "there is no file {1}"};\n'
SAID = "void f() { throw UserError(messages::noFile(name)); }\n"


class CheckMessages(unittest.TestCase):
    def told(self, catalogue=GOOD, code=SAID):
        """What the tool says of a tree with one header of entries and one file of code."""
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            for path, text in (("workbench/messages/file.h", catalogue), ("workbench/cli/some.cpp", code)):
                (root / path).parent.mkdir(parents=True)
                (root / path).write_text(text, encoding="utf-8")
            run = subprocess.run(
                [sys.executable, TOOL, "--root", root], capture_output=True, text=True, check=False, encoding="utf-8"
            )
            self.assertEqual(run.returncode, 0 if run.stdout.startswith("messages: ") else 1, run.stderr)
            return run.stdout.splitlines()

    def assert_fault(self, told, place, part):
        self.assertTrue(any(line.startswith(place + ": ") and part in line for line in told), told)

    def test_nothing_is_wrong(self):
        self.assertEqual(self.told(), ["messages: 1 entries in both languages, and nothing is said without them"])

    def test_entries(self):
        place = "workbench/messages/file.h:1"
        for entry, part in (
            ('inline constexpr Text<1> noFile{"没有文件", "there is no file {1}"};\n', "other places"),
            ('inline constexpr Text<0> noFile{"", "there is no file"};\n', "says nothing"),
            ('inline constexpr Text<0> noFile{"no file", "there is no file"};\n', "the Chinese of noFile is none"),
            ('inline constexpr Text<0> noFile{"没有文件", "没有文件"};\n', "holds Chinese"),
            ("inline constexpr Text<0> noFile{chinese, english};\n", "in another way"),
        ):
            self.assert_fault(self.told(catalogue=entry), place, part)
        self.assert_fault(self.told(catalogue=GOOD * 2), "workbench/messages/file.h:2", "stands in")
        self.assert_fault(self.told(code=""), place, "nothing says noFile")

    def test_what_is_said_without_the_catalogue(self):
        for code in (
            'throw UserError("no file " + name);',
            'throw InputError(name +\n "is missing");',
            'throw std::runtime_error("no file");',
            'notes << "quillon: no file\\n";',
            'std::cerr << name << " is missing";',
            'throw UserError(Message::verbatim("no file"));',
        ):
            self.assert_fault(self.told(code=SAID + code), "workbench/cli/some.cpp:2", "put it in workbench/messages/")

    def test_what_is_no_message(self):
        for code in (
            'notes << "quillon: " << messages::noFile(name).in(language) << \'\\n\';',
            "throw UserError(Message::verbatim(error.what()));",
            '// throw UserError("in a comment");',
            'out << "code,name\\r\\n";',
        ):
            self.assertEqual(len(self.told(code=SAID + code)), 1)
            self.assertTrue(self.told(code=SAID + code)[0].startswith("messages: "), code)


if __name__ == "__main__":
    unittest.main()
