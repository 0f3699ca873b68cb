#!/usr/bin/env python3
"""clang-tidy over everything that build/native compiles, except what has been found clean before.

What a file's outcome depends on is hashed: the version and settings of clang-tidy, how the file is compiled, and the
text of the file and of every header that the compiler read for it, as the build has recorded them. A hash that was
clean once is kept in the user's cache folder and not looked at again; a hash that was not is never kept.

Needs a built build/native. Exit status 1, with what clang-tidy says, if a file is not clean.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "native"
CACHE = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache") / "quillon-clang-tidy"
KEPT_DAYS = 60


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True, cwd=ROOT).stdout


def inside(path):
    """A file's path in the checkout, wherever the checkout lies; the whole path of a file elsewhere."""
    full = os.path.normpath(BUILD / path)
    return os.path.relpath(full, ROOT) if full.startswith(f"{ROOT}/") else full


def files_by_object():
    """The files that each object was compiled from, its source first, as ninja has recorded them."""
    files, current = {}, None
    for line in output_of("ninja", "-C", str(BUILD), "-t", "deps").splitlines():
        if line.startswith("    "):
            current.append(line.strip())
        elif ": #deps" in line:
            current = files.setdefault(line.split(": #deps")[0], [])
    return files


class Hashes:
    """Hashes of files' texts; each file is read once."""

    def __init__(self):
        self.known = {}

    def of(self, path):
        if path not in self.known:
            self.known[path] = hashlib.sha256((BUILD / path).read_bytes()).hexdigest()
        return self.known[path]


def jobs():
    """Each of the project's own sources, with the hash of all that its outcome depends on."""
    own = set(output_of("git", "ls-files", "--cached", "--others", "--exclude-standard", "*.cpp").split())
    files, hashes = files_by_object(), Hashes()
    common = output_of("clang-tidy", "--version") + (ROOT / ".clang-tidy").read_text()
    found = []
    for entry in json.loads((BUILD / "compile_commands.json").read_text()):
        source = inside(entry["file"])
        if source not in own:
            continue
        built = re.search(r" -o (\S+)", entry["command"]).group(1)
        if built not in files:
            sys.exit(f"clang-tidy: {source} has not been built; build the preset native first")
        key = hashlib.sha256(common.encode())
        # A checkout elsewhere gives the same hash.
        key.update(entry["command"].replace(str(ROOT), "").encode())
        for path in files[built]:
            key.update(f"\n{inside(path)} {hashes.of(path)}".encode())
        found.append((source, key.hexdigest()))
    return sorted(found)


def check(job):
    source, key = job
    run = subprocess.run(["clang-tidy", "--quiet", "-p", str(BUILD), source], cwd=ROOT, text=True,
                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    if run.returncode == 0:
        (CACHE / key).touch()
        return ""
    return run.stdout or f"{source}: clang-tidy failed with exit status {run.returncode}\n"


def main():
    CACHE.mkdir(parents=True, exist_ok=True)
    for entry in CACHE.iterdir():
        if time.time() - entry.stat().st_mtime > KEPT_DAYS * 24 * 3600:
            entry.unlink()
    everything = jobs()
    open_jobs = [job for job in everything if not (CACHE / job[1]).exists()]
    for job in everything:
        if (CACHE / job[1]).exists():
            (CACHE / job[1]).touch()
    not_clean = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for finding in filter(None, pool.map(check, open_jobs)):
            not_clean += 1
            print(finding, end="", flush=True)
    print(f"clang-tidy: {len(open_jobs)} of {len(everything)} files looked at, {not_clean} not clean")
    return 1 if not_clean else 0


sys.exit(main())
