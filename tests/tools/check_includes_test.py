#!/usr/bin/env python3
"""tools/check-includes.py on small trees: one that goes with the table of rooms, and one for each kind of fault."""
import contextlib
import importlib.util
import io
import tempfile
import unittest
from pathlib import Path

TOOLS = Path(__file__).resolve().parents[2] / "tools"
loaded = importlib.util.spec_from_file_location("check_includes", TOOLS / "check-includes.py")
check_includes = importlib.util.module_from_spec(loaded)
loaded.loader.exec_module(check_includes)

# What the trees of these tests have in common; it goes with the table.
SOUND = {
    "frame/session.h": "#pragma once\n#include <string>\n#include <cstdint>\n",
    "frame/session.cpp": '#include "frame/session.h"\n',
    "frame/automation_error.h": "#pragma once\n",
    "reports/one/one.h": '#pragma once\n#include "frame/session.h"\n',
    "reports/one/one.cpp": '#include "reports/one/one.h"\n',
    "reports/two/two.h": '#pragma once\n#include "frame/session.h"\n',
    "filters/control.h": '#pragma once\n#include "frame/session.h"\n',
    "automation/variant.h": '#pragma once\n#include <windows.h>\n#include "frame/automation_error.h"\n',
    "component/ado_session.h": '#pragma once\n#include "automation/variant.h"\n#include "frame/session.h"\n',
    "component/classes.h": '#pragma once\n#include "reports/one/one.h"\n#include "filters/control.h"\n',
    "component/classes.cpp": '#include "component/classes.h"\n#include "component/quillon_interfaces.h"\n',
    "workbench/tsql/values/value.h": "#pragma once\n#include <variant>\n",
    "workbench/tsql/syntax/parser.h": '#pragma once\n#include "workbench/tsql/values/value.h"\n',
    "workbench/tsql/engine/engine.h": '#pragma once\n#include "workbench/tsql/values/value.h"\n',
    "workbench/tsql/engine/executor.h": '#pragma once\n#include <sqlite3.h>\n#include "workbench/tsql/syntax/parser.h"\n',
    "workbench/account/account.h": '#pragma once\n#include "workbench/tsql/engine/engine.h"\n',
    "workbench/platform/login.h": '#pragma once\n#include "frame/session.h"\n#include "workbench/account/account.h"\n',
    "workbench/catalogue/table.h": '#pragma once\n#include "reports/two/two.h"\n',
    "workbench/catalogue/table.cpp": '#include "workbench/catalogue/table.h"\n',
    # "and below": the account is two rooms down.
    "workbench/presentation/page.h": '#pragma once\n#include "workbench/catalogue/table.h"\n'
                                     '#include "workbench/account/account.h"\n#include <nlohmann/json.hpp>\n',
    "workbench/presentation/page.cpp": '#include "workbench/presentation/page.h"\n',
    "workbench/com/platform.h": '#pragma once\n#include "component/ado_session.h"\n#include "workbench/platform/login.h"\n',
    "workbench/cli/main.cpp": '#include <CLI/CLI.hpp>\n#include "workbench/presentation/page.h"\n',
    "tests/fakes.h": '#pragma once\n#include <gtest/gtest.h>\n#include "workbench/tsql/engine/executor.h"\n',
    "bench/bench.cpp": '#include "tests/fakes.h"\n',
}


def run(root, rooms=TOOLS / "rooms.txt"):
    """Exit status and output of the tool on the tree `root`."""
    output = io.StringIO()
    with contextlib.redirect_stdout(output):
        try:
            check_includes.main(["--root", str(root), "--rooms", str(rooms)])
        except SystemExit as end:
            return 1, output.getvalue() + (end.code if isinstance(end.code, str) else "")
    return 0, output.getvalue()


class CheckIncludes(unittest.TestCase):
    def check(self, changes=None):
        """Exit status and output for the sound tree with `changes`."""
        with tempfile.TemporaryDirectory() as folder:
            for name, text in {**SOUND, **(changes or {})}.items():
                path = Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            return run(folder)

    def refused(self, file, text, expected):
        """`file` with `text` is the one fault, told with `expected` behind the file's name."""
        status, output = self.check({file: text})
        self.assertEqual(status, 1, output)
        lines = output.splitlines()
        self.assertEqual(len(lines), 2, output)
        self.assertEqual(lines[0], f"{file}:{expected}")
        self.assertIn("1 line", lines[1])

    def test_a_sound_tree(self):
        status, output = self.check()
        self.assertEqual(status, 0, output)

    def test_up(self):
        self.refused("frame/session.cpp", '#include "frame/session.h"\n\n#include "filters/control.h"\n',
                     '3: frame/ may not use "filters/control.h"')

    def test_up_inside_the_workbench(self):
        self.refused("workbench/account/account.h", '#include "workbench/platform/login.h"\n',
                     '1: workbench/account/ may not use "workbench/platform/login.h"')

    def test_sideways_between_reports(self):
        self.refused("reports/one/one.cpp", '#include "reports/two/two.h"\n',
                     '1: reports/one/ may not use "reports/two/two.h"')

    def test_sideways_inside_the_workbench(self):
        self.refused("workbench/trace/trace.h", '#include "workbench/presentation/page.h"\n',
                     '1: workbench/trace/ may not use "workbench/presentation/page.h"')

    def test_a_shelf_uses_only_the_ones_before_it(self):
        self.refused("workbench/tsql/values/value.h", '#include "workbench/tsql/engine/engine.h"\n',
                     '1: workbench/tsql/values/ may not use "workbench/tsql/engine/engine.h"')

    def test_the_engine_behind_its_face(self):
        self.refused("workbench/platform/login.h", '#include "workbench/tsql/engine/executor.h"\n',
                     '1: workbench/platform/ may not use "workbench/tsql/engine/executor.h"')

    def test_single_headers_of_a_room(self):
        self.refused("automation/variant.h", '#include "frame/session.h"\n',
                     '1: automation/ may not use "frame/session.h"')
        self.refused("workbench/com/platform.h", '#include "component/classes.h"\n',
                     '1: workbench/com/ may not use "component/classes.h"')

    def test_what_is_below_a_room_without_and_below(self):
        self.refused("workbench/presentation/page.h", '#include "reports/one/one.h"\n',
                     '1: workbench/presentation/ may not use "reports/one/one.h"')

    def test_tests_and_benchmarks(self):
        self.refused("workbench/platform/login.h", '#include "tests/fakes.h"\n',
                     '1: workbench/platform/ may not use "tests/fakes.h"')
        self.refused("component/classes.h", '#include "bench/bench.cpp"\n',
                     '1: component/ may not use "bench/bench.cpp"')

    def test_the_core_has_the_standard_library_alone(self):
        for file in ("frame/session.h", "reports/one/one.h", "filters/control.h"):
            room = file.rsplit("/", 1)[0]
            for header in ("windows.h", "nlohmann/json.hpp", "sqlite3.h", "unistd.h"):
                self.refused(file, f"#  include <{header}>\n", f"1: {room}/ may not use <{header}>")

    def test_a_library_is_not_passed_on(self):
        self.refused("workbench/account/account.h", "#include <sqlite3.h>\n",
                     "1: workbench/account/ may not use <sqlite3.h>")

    def test_a_source_without_its_header(self):
        for room in ("catalogue", "cli", "presentation", "trace"):
            self.refused(f"workbench/{room}/alone.cpp", "",
                         f"1: it has no header of its own name (workbench/{room}/alone.h)")

    def test_a_folder_without_a_room(self):
        self.refused("workbench/cellar/box.h", "#pragma once\n", "1: its folder is no room of tools/rooms.txt")

    def test_a_header_that_is_not_there(self):
        self.refused("frame/session.cpp", '#include "session.h"\n',
                     '1: "session.h" is no file of the checkout (includes start at its top)')

    def test_every_fault_is_told(self):
        status, output = self.check({"frame/a.h": '#include <windows.h>\n#include "filters/control.h"\n',
                                     "reports/one/b.h": "#include <sqlite3.h>\n"})
        self.assertEqual(status, 1)
        self.assertEqual(len(output.splitlines()), 4, output)

    def test_a_table_that_cannot_be_read(self):
        with tempfile.TemporaryDirectory() as folder:
            for table, expected in {"frame/ uses nothing": "neither a room", "frame/ | [Ink]": "headers are not listed",
                                    "tests/ | cellar/ and below": "no room"}.items():
                Path(folder, "tests").mkdir(exist_ok=True)
                Path(folder, "tests", "a.h").write_text("#pragma once\n", encoding="utf-8")
                rooms = Path(folder, "rooms.txt")
                rooms.write_text(table + "\n", encoding="utf-8")
                status, output = run(folder, rooms)
                self.assertEqual(status, 1)
                self.assertIn(expected, output)


if __name__ == "__main__":
    unittest.main()
