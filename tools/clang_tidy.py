#!/usr/bin/env python3
"""clang-tidy over all that is compiled for Linux, except what has been found clean before.

The project's own sources are looked at one by one, so that a source whose includes do not suffice is noticed. Tests are
looked at in the batches in which the presets for work compile them: most of the time goes into the headers, and the
tests of a folder share theirs. Nothing has to be built first.

What an outcome depends on is hashed: the version and settings of clang-tidy, how the sources are compiled, their text
and that of the project's headers that they include, and the versions of the libraries. A hash that was clean once is
kept in the user's cache folder and not looked at again; a hash that was not is never kept.

  tools/clang_tidy.py [SOURCE...]    these sources only, or everything

Exit status 1, with what clang-tidy says, if something is not clean.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "tidy"
CACHE = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache") / "quillon-clang-tidy"
KEPT_DAYS = 60
# Where the headers come from that are not the project's own.
LIBRARIES = ("libstdc++-12-dev", "libc6-dev", "nlohmann-json3-dev", "libcli11-dev", "libboost1.81-dev", "googletest",
             "libgmock-dev", "libgtest-dev", "libedit-dev", "unixodbc-dev")


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, cwd=ROOT).stdout


class Job:
    """What one run of clang-tidy looks at: a source, or the sources of a batch."""

    def __init__(self, file, sources, command):
        self.file, self.sources, self.command = file, sources, command
        self.of_tests = all(source.is_relative_to(ROOT / "tests") for source in sources)

    def name(self):
        first = self.sources[0].relative_to(ROOT)
        return str(first) if len(self.sources) == 1 else f"{first} and {len(self.sources) - 1} more"


def jobs():
    found = []
    for entry in json.loads((BUILD / "compile_commands.json").read_text()):
        file = pathlib.Path(entry["file"])
        command = shlex.split(entry["command"])
        # Without what stands in front of the compiler.
        command = command[next(i for i, word in enumerate(command) if re.search(r"(\+\+|cc)$", word) and "ccache" not in word):]
        # What GCC alone knows.
        command.append("-Wno-unknown-warning-option")
        sources = [file]
        if file.is_relative_to(BUILD):
            if not file.is_file():
                continue  # nothing has been built, and what the build makes is not looked at
            sources = [pathlib.Path(name) for name in re.findall(r'^#include "(.*)"', file.read_text(), re.M)]
        sources = [source for source in sources if source.suffix == ".cpp" and source.is_relative_to(ROOT)
                   and not source.is_relative_to(ROOT / "build") and not source.is_relative_to(ROOT / ".deps")]
        if not sources:
            continue
        job = Job(file, sources, command)
        if job.of_tests:
            found.append(job)
        else:
            found += [Job(source, [source], [str(source) if word == str(file) else word for word in command])
                      for source in sources]
    return found


class Texts:
    """The project's own files that a source is made of, each read once."""

    def __init__(self):
        self.known = {}

    def of(self, path):
        if path not in self.known:
            text = path.read_bytes()
            names = re.findall(rb'^\s*#\s*include\s+"([^"]+)"', text, re.M)
            places = [base / name.decode() for name in names for base in (path.parent, ROOT)]
            self.known[path] = (hashlib.sha256(text).hexdigest(),
                                sorted({place.resolve() for place in places if place.is_file()}))
        return self.known[path]

    def all_of(self, sources):
        seen, rest = {}, list(sources)
        while rest:
            path = rest.pop()
            if path not in seen:
                seen[path], more = self.of(path)
                rest += more
        return [f"{path.relative_to(ROOT)} {seen[path]}" for path in sorted(seen)]


def versions():
    known = subprocess.run(["dpkg-query", "-W", *LIBRARIES], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                           check=False).stdout if pathlib.Path("/var/lib/dpkg").exists() else ""
    fetched = [path.read_text() for path in sorted((ROOT / ".deps").glob("*/.version"))]
    return "\n".join([output_of("clang-tidy", "--version"), (ROOT / ".clang-tidy").read_text(),
                      pathlib.Path(__file__).read_text(), known, *fetched])


def key_of(job, common, texts):
    # A checkout elsewhere gives the same hash.
    command = " ".join(job.command).replace(str(ROOT), "")
    return hashlib.sha256("\n".join([common, command, *texts.all_of(job.sources)]).encode()).hexdigest()


def check(job, key, database):
    command = ["clang-tidy", "--quiet", "-p", str(database)]
    if job.of_tests:
        # Sources of a batch are included files.
        command += ["--checks=-clang-analyzer-*,-bugprone-suspicious-include", "--header-filter=/tests/.*"]
    run = subprocess.run([*command, str(job.file)], cwd=ROOT, text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    # What the database does not have is skipped, and that counts as well done.
    if run.returncode == 0 and "Skipping" not in run.stderr:
        (CACHE / key).touch()
        return ""
    return run.stdout or f"{job.name()}: clang-tidy failed with exit status {run.returncode}\n{run.stderr}"


def main():
    if any(name in ("-h", "--help") for name in sys.argv[1:]):
        print(__doc__.strip())
        return 0
    output_of("cmake", "--preset", "tidy")
    CACHE.mkdir(parents=True, exist_ok=True)
    for entry in CACHE.iterdir():
        if time.time() - entry.stat().st_mtime > KEPT_DAYS * 24 * 3600:
            entry.unlink()

    wanted = [pathlib.Path(name).resolve() for name in sys.argv[1:]]
    everything = [job for job in jobs() if not wanted or any(source in wanted for source in job.sources)]
    unknown = [str(name) for name in wanted if not any(name in job.sources for job in everything)]
    if unknown:
        print(f"clang_tidy.py: not compiled for Linux: {', '.join(unknown)}", file=sys.stderr)
        return 2
    with tempfile.TemporaryDirectory() as database:  # of its own: two of them may run at once
        return look_at(everything, pathlib.Path(database))


def look_at(everything, database):
    (database / "compile_commands.json").write_text(json.dumps(
        [{"directory": str(BUILD), "file": str(job.file), "arguments": job.command} for job in everything]))

    texts, common = Texts(), versions()
    keys = {job: key_of(job, common, texts) for job in everything}
    open_jobs = [job for job in everything if not (CACHE / keys[job]).exists()]
    for job in everything:
        if job not in open_jobs:
            (CACHE / keys[job]).touch()
    # What takes longest starts first.
    open_jobs.sort(key=lambda job: -sum(source.stat().st_size for source in job.sources))
    not_clean = done = 0
    started = time.monotonic()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for finished in concurrent.futures.as_completed([pool.submit(check, job, keys[job], database) for job in open_jobs]):
            done += 1
            if finding := finished.result():
                not_clean += 1
                print(finding, end="", flush=True)
            if sys.stdout.isatty() or done % 25 == 0:
                print(f"clang-tidy: {done} of {len(open_jobs)} runs, {time.monotonic() - started:.0f} s",
                      end="\r" if sys.stdout.isatty() else "\n", flush=True)
    sources = sum(len(job.sources) for job in everything)
    print(f"clang-tidy: {sources} sources in {len(everything)} runs, {len(open_jobs)} of them not looked at before, "
          f"{not_clean} not clean")
    return 1 if not_clean else 0


sys.exit(main())
