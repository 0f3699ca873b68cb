#!/usr/bin/env python3
"""The desk of quillon.exe, whose reports run through COM, gives what the native desk gives: dialogs, statements, every row of
every layout, documents, exports. Each is used over HTTP as a browser uses it, and leaves nothing when it ends.

    same_desk.py NATIVE_PROGRAM WIN32_PROGRAM WIN32_STARTER ACCOUNT
"""
import fcntl
import http.client
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import termios
import threading
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
WAIT = 120  # seconds; what takes longer has failed
ENDED_BY_CTRL_C = 130


def take_terminal():
    os.setsid()
    fcntl.ioctl(0, termios.TIOCSCTTY, 0)


class Desk:
    """A desk that serves, and a session with it."""

    def __init__(self, command, folder, environment=None):
        self.folder = folder
        # It has a terminal, on which Ctrl+C can be typed.
        self.terminal, standard_input = os.openpty()
        self.process = subprocess.Popen(command, stdin=standard_input, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                        env=environment, preexec_fn=take_terminal)
        os.close(standard_input)
        self.errors = b""
        self.reader = threading.Thread(target=self._read_errors)
        self.reader.start()
        link = self.process.stdout.readline().decode().strip()
        found = re.fullmatch(r"http://(127\.0\.0\.1:\d+)(/open/[0-9a-f]{64})", link)
        assert found, f"no link: {link!r}, {self.errors!r}"
        self.host, path = found.groups()
        self.cookie = None
        self.connection = http.client.HTTPConnection(self.host, timeout=WAIT)
        status, fields, _ = self.send("GET", "/api/account")
        assert status == 401, f"without a cookie: {status}"
        status, fields, _ = self.send("GET", path)
        assert status == 303 and fields["Location"] == "/", f"the link: {status}"
        cookie, *attributes = fields["Set-Cookie"].split("; ")
        assert "HttpOnly" in attributes and "SameSite=Strict" in attributes, attributes
        self.cookie = cookie
        status, _, page = self.send("GET", "/")
        assert status == 200 and b"<!doctype html>" in page.lower(), f"the start page: {status}"
        status, _, _ = self.send("POST", "/api/runs", b"{}", {"Origin": "http://elsewhere.example"})
        assert status == 403, f"from another site: {status}"
        status, _, refusal = self.send("POST", "/api/runs", b"{")
        assert status == 400 and json.loads(refusal)["error"]["code"] == "json", f"no JSON: {status} {refusal}"

    def _read_errors(self):
        for line in self.process.stderr:
            self.errors += line

    def send(self, method, path, body=None, fields=None):
        headers = {"Origin": f"http://{self.host}", "Accept-Language": "en", **(fields or {})}
        if self.cookie:
            headers["Cookie"] = self.cookie
        if body is not None:
            headers["Content-Type"] = "application/json"
        self.connection.request(method, path, body, headers)
        response = self.connection.getresponse()
        return response.status, response.headers, response.read()

    def ask(self, method, path, body=None, expected=200):
        sent = None if body is None else json.dumps(body).encode()
        status, _, answer = self.send(method, "/api/" + path, sent)
        assert status == expected, f"{method} {path}: {status} {answer.decode()}"
        return json.loads(answer)

    def end(self):
        """Types Ctrl+C; nothing that the program has made may be left."""
        self.connection.close()
        assert any(self.folder.iterdir()), "its files lie elsewhere"
        os.write(self.terminal, b"\x03")
        status = self.process.wait(WAIT)
        self.reader.join()
        assert status == ENDED_BY_CTRL_C, f"the desk ended with {status}: {self.errors.decode()}"
        assert b"the desk is closed" in self.errors, self.errors
        left = [str(path.relative_to(self.folder)) for path in self.folder.rglob("*")]
        assert not left, f"the desk left {left}"

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
        os.close(self.terminal)


def all_rows(desk, view):
    rows = []
    while True:
        page = desk.ask("GET", f"{view}/rows?offset={len(rows)}&limit=1000")
        rows += page["rows"]
        if page["complete"] and len(rows) >= page["rowCount"]:
            return rows


def without(answer, *names):
    return {name: value for name, value in answer.items() if name not in names}


def session(desk, values):
    """Uses every report; gives what has to be the same on each desk."""
    seen = {"account": desk.ask("GET", "account"), "reports": desk.ask("GET", "reports")}
    seen["account"]["name"] = "?"
    for report in seen["reports"]:
        name = report["name"]
        opened = desk.ask("POST", "dialogs", {"report": name, "lang": "en", "values": values.get(name, {})}, 201)
        refused = desk.ask("POST", f"dialogs/{opened['id']}/set", {"key": "nothing", "value": "1"}, 422)
        lookup = next(item["key"] for item in opened["state"]["items"] if item["lookup"])
        found = desk.ask("GET", f"dialogs/{opened['id']}/lookup?item={lookup}&limit=20")
        clicked = desk.ask("POST", f"dialogs/{opened['id']}/click")
        assert clicked["accepted"], clicked["state"]["messages"]
        run = desk.ask("POST", "runs", {"report": name, "lang": "en", "dialog": opened["id"]}, 201)["id"]
        desk.ask("DELETE", f"dialogs/{opened['id']}")
        _, _, events = desk.send("GET", f"/api/runs/{run}/events")
        info = desk.ask("GET", f"runs/{run}")
        assert info["state"] == "done", info["error"]
        assert events.count(b"event: statement\n") == len(info["statements"]) and b"event: done\n" in events
        assert info["rowCount"] > 0, f"{name} finds nothing to compare"
        seen[name] = {
            "dialog": [opened["state"], refused, found, clicked],
            "run": without(info, "id", "started", "elapsedMs", "statements"),
            "statements": len(info["statements"]),
        }
        for layout in report["layouts"]:
            view = desk.ask("POST", f"runs/{run}/views", {"layout": layout["name"], "lang": "en"}, 201)
            path = f"runs/{run}/views/{view['id']}"
            rows = all_rows(desk, path)
            assert rows, f"{name} {layout['name']} shows nothing"
            documents = None
            opening = next((row["n"] for row in rows if row["opens"]), None)
            if opening is not None:
                documents = desk.ask("POST", f"{path}/document", {"n": opening})
                assert documents["documents"], documents
            _, _, table = desk.send("GET", f"/api/{path}/export?format=csv&captions=1")
            seen[name][layout["name"]] = {
                "view": without(view, "id"), "rows": rows, "documents": documents, "csv": table.decode()}
        seen[name]["opens"] = any(seen[name][layout["name"]]["documents"] for layout in report["layouts"])
        assert seen[name]["opens"] or not report["opensDocuments"], f"{name} opens no document"
    # A run that is stopped, one that is not closed: the end of the program takes both along.
    stopped = desk.ask("POST", "runs", {"report": "sfc-item", "lang": "en"}, 201)["id"]
    desk.ask("POST", f"runs/{stopped}/stop", {})
    return seen


def differences(one, other, place=""):
    if isinstance(one, dict) and isinstance(other, dict):
        for key in sorted(one.keys() | other.keys()):
            yield from differences(one.get(key), other.get(key), f"{place}/{key}")
    elif isinstance(one, list) and isinstance(other, list) and len(one) == len(other):
        for number, (left, right) in enumerate(zip(one, other)):
            yield from differences(left, right, f"{place}/{number}")
    elif one != other:
        yield f"{place}: {str(one)[:200]} / {str(other)[:200]}"


def ledger_values(program, account):
    """An inventory for the detail ledger: one that issues are posted of and that is kept neither by batch nor by free items."""
    statement = """Select Top 1 base.cInvCode, base.cWhCode From ia_subsidiary base
        Inner Join Inventory inv On inv.cInvCode = base.cInvCode
        Where base.iMonth > 0 And base.cVouType = N'32' And base.cPZID Is Not Null And IsNull(inv.bCheckBatch, 0) = 0
        And IsNull(inv.bCheckFree1, 0) = 0 And IsNull(inv.bCheckFree2, 0) = 0
        Order By base.iYear Desc, base.cInvCode, base.cWhCode"""
    answer = subprocess.run([program, "sql", "--account", account, "--format", "csv"], input=statement,
                            check=True, capture_output=True, text=True)
    inventory, warehouse = answer.stdout.splitlines()[-1].split(",")
    return {"cInvCode": {"value": inventory}, "cWhCode": {"value": warehouse}}


def main():
    native, win32, starter, account = sys.argv[1:]
    assert os.access(native, os.X_OK), f"{native} is not built: build the preset native first"
    with tempfile.TemporaryDirectory() as work:
        work = Path(work)
        desks = {}
        for name in ("native", "win32"):
            # A copy for each, so that neither waits for the other's lock.
            shutil.copy(account, work / f"{name}.account")
            (work / f"{name}.temporary").mkdir()
        values = {"fx-detail": ledger_values(native, work / "native.account")}
        seen = {}
        try:
            folder = work / "native.temporary"
            desks["native"] = Desk([native, "serve", "--lang", "en", "--account", work / "native.account"], folder,
                                   {**os.environ, "TMPDIR": str(folder)})
            folder = work / "win32.temporary"
            desks["win32"] = Desk([ROOT / "tools/wine.sh", starter, f"Z:{folder}", f"Z:{win32}", "serve", "--lang", "en",
                                   "--account", f"Z:{work / 'win32.account'}"], folder)
            for name, desk in desks.items():
                seen[name] = session(desk, values)
                desk.end()
                assert (work / f"{name}.account").read_bytes() == Path(account).read_bytes(), "the account has changed"
        except BaseException:
            # Which of the two ended by itself, and what it said.
            for name, desk in desks.items():
                print(f"{name}: ended with {desk.process.poll()}, said {desk.errors.decode()!r}", file=sys.stderr)
            raise
        finally:
            for desk in desks.values():
                desk.kill()
    found = list(differences(seen["native"], seen["win32"]))
    assert not found, "\n".join(found[:20])
    for report in seen["native"]["reports"]:
        layouts = seen["native"][report["name"]]
        print(report["name"], *(f"{layout['name']}: {len(layouts[layout['name']]['rows'])} rows"
                                for layout in report["layouts"]), sep="  ")


if __name__ == "__main__":
    main()
