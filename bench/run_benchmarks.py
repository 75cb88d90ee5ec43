#!/usr/bin/env python3
"""Runs the benchmarks and prints them side by side. Called by scripts/bench; see its --help."""

import argparse
import concurrent.futures
import datetime
import hashlib
import os
import platform
import re
import statistics
import subprocess
import sys
import tempfile
import time

import tools
from volumes import Volumes

# Row, the number it is measured against, and how many times that it may take.
TARGETS = {
    ("S", "first"): ("floor", 1.3), ("S", "unchanged"): ("scan", 2.0),
    ("S", "1 % changed"): ("scan", 3.0), ("S", "restore all"): ("floor", 1.3),
    ("L", "first"): ("floor", 1.15), ("L", "unchanged"): ("scan", None),
    ("L", "1 MB changed in each"): ("restic", 1.0), ("L", "restore all"): ("floor", 1.2),
    ("R", "first"): ("floor", 1.3), ("R", "unchanged"): ("scan", 2.0),
    ("R", "1 % changed"): ("scan", None), ("R", "restore all"): ("floor", 1.3),
    ("M", "first"): ("floor", None), ("M", "unchanged"): ("scan", None),
}
UNCHANGED_MILLION_SECONDS = 6.0
PEAK_MEMORY_MIB = 150.0
ENCRYPTED_FACTOR = 1.25  # times our own run without encryption


class Workload:
    def __init__(self, letter, make, changed, change, description, peers=True, restore=True):
        self.letter = letter            # of the table's row
        self.make = make                # folder -> command lines that fill it
        self.changed = changed          # name of the row of a changed run, or None
        self.change = change            # folder, number -> the command that changes it
        self.description = description
        self.peers = peers
        self.restore = restore


def workloads(generator, options):
    def per_cent(folder, number):
        return [generator, "change", folder, "10", str(number)]

    def patch(folder, number):
        return [generator, "patch", folder, str(number)]

    files, folders = ("5000", "200") if options.quick else ("50000", "2000")
    large, mebibytes = ("2", "64") if options.quick else ("6", "256")
    real = ["/usr/include"] if options.quick else ["/usr/share", "/usr/include", "/usr/lib/gcc"]
    return {
        "S": Workload("S", lambda d: [[generator, "small", d, files, folders]], "1 % changed", per_cent,
                      f"{int(files):,} files of 1 to 24 KB in {int(folders):,} folders"),
        "L": Workload("L", lambda d: [[generator, "large", d, large, mebibytes]],
                      "1 MB changed in each", patch,
                      f"{large} files of {mebibytes} MB that compress 2:1"),
        "R": Workload("R", lambda d: [["mkdir", d], ["cp", "-a", *real, d]], "1 % changed", per_cent,
                      "real files copied from " + ", ".join(real)),
        "M": Workload("M", lambda d: [[generator, "tiny", d, "1000000", "50000"]], None, None,
                      "1,000,000 files of 16 to 271 bytes in 50,000 folders",
                      peers=False, restore=False),
    }


class Results:
    """Seconds and peak memory by row and tool; every run of a cell is kept."""

    def __init__(self):
        self.seconds = {}
        self.memory = {}

    def add(self, row, tool, seconds, mebibytes):
        self.seconds.setdefault((row, tool), []).append(seconds)
        self.memory[tool] = max(self.memory.get(tool, 0.0), mebibytes)

    def median(self, row, tool):
        values = self.seconds.get((row, tool))
        return statistics.median(values) if values else None


def measure(command, environment=None, folder=None, accepted=(0,)):
    """Wall seconds and peak resident memory in MiB of one command. What earlier steps have written
    is flushed before, so that nobody pays for another's data."""
    os.sync()
    # time(1) stands between: the peak of a child that this process forks itself would count the
    # interpreter's own memory.
    with tempfile.NamedTemporaryFile("r") as peak:
        began = time.perf_counter()
        done = subprocess.run(["/usr/bin/time", "-q", "-o", peak.name, "-f", "%M", *command],
                              env=environment, cwd=folder, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE)
        seconds = time.perf_counter() - began
        if done.returncode not in accepted:
            raise RuntimeError(f"{' '.join(command)} ended with {done.returncode}: "
                               f"{done.stderr.decode(errors='replace').strip()}")
        return seconds, int(peak.read()) / 1024


def checksums(folder):
    """SHA-256 of every file and target of every link by relative path: what two trees must share."""
    entries = {}
    files = []
    for parent, folders, names in os.walk(folder):
        for name in folders + names:
            path = os.path.join(parent, name)
            if os.path.islink(path):
                entries[os.path.relpath(path, folder)] = os.readlink(path)
            elif os.path.isfile(path):
                files.append(path)

    def digest(path):
        with open(path, "rb") as file:
            return hashlib.file_digest(file, "sha256").hexdigest()

    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        for path, value in zip(files, pool.map(digest, files)):
            entries[os.path.relpath(path, folder)] = value
    return entries


def warm(folder):
    subprocess.run(["bash", "-c", "find \"$1\" -type f -print0 | xargs -0 cat > /dev/null", "bash",
                    folder], check=True)


def log(text):
    print(text, file=sys.stderr, flush=True)


class Session:
    def __init__(self, options, volumes, contenders):
        self.options = options
        self.volumes = volumes
        self.contenders = contenders
        self.results = Results()
        self.changes = 0
        self.facts = {}
        self.sizes = {}

    def run(self, workload):
        home = self.volumes.fresh()
        source = os.path.join(home, "source")
        log(f"{workload.letter}: making {workload.description}")
        for command in workload.make(source):
            subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
        self.facts[workload.letter] = self.describe(workload, source)
        warm(source)
        for number in range(1, self.options.runs + 1):
            self.scan(workload, source, "unchanged")
            for contender in self.contenders:
                if workload.peers or contender.name in ("vardelin", "floor"):
                    log(f"{workload.letter}: run {number} of {self.options.runs}, {contender.name}")
                    self.series(workload, source, contender)
        self.volumes.discard(home)

    def describe(self, workload, source):
        files = subprocess.run(["find", source, "-type", "f", "-printf", "%s\\n"], check=True,
                               stdout=subprocess.PIPE).stdout.split()
        total = sum(int(size) for size in files) / 1e6
        return f"{workload.letter}: {workload.description} ({len(files):,} files, {total:,.0f} MB)"

    def scan(self, workload, source, what):
        row = (workload.letter, what)
        self.results.add(row, "scan", *measure(["find", source, "-printf", "%s %T@\\n"]))

    def series(self, workload, source, contender):
        """First run, unchanged run, changed run and restore of one tool, on fresh file systems."""
        tool = contender(source, self.volumes.fresh())
        tool.prepare()
        floor = contender.name == "floor"
        self.time(workload, "first", tool, tool.backup())
        self.sizes[(workload.letter, tool.name)] = used(tool.archive)
        if not floor:
            # 4 is the product's own way to say that there was nothing to do.
            self.time(workload, "unchanged", tool, tool.backup(), accepted=(0, 4))
        if workload.changed:
            self.changes += 1
            subprocess.run(workload.change(source, self.changes), check=True,
                           stdout=subprocess.DEVNULL)
            if floor:
                self.scan(workload, source, workload.changed)
                # The floor remembers nothing: its second run compresses everything again.
                self.volumes.discard(tool.archive)
                tool.archive = self.volumes.fresh()
            self.time(workload, workload.changed, tool, tool.backup())
        if workload.restore and contender.name != "rsync":
            self.restore(workload, source, tool)
        self.volumes.discard(tool.archive)

    def time(self, workload, what, tool, command, folder=None, accepted=(0,)):
        seconds, memory = measure(command, tool.environment, folder, accepted)
        self.results.add((workload.letter, what), tool.name, seconds, memory)
        log(f"   {what:<22} {seconds:8.3f} s  {memory:7.1f} MiB")

    def restore(self, workload, source, tool):
        target = self.volumes.fresh()
        command, folder = tool.restore(target)
        self.time(workload, "restore all", tool, command, folder)
        # The floor keeps no links, so real files come back incomplete.
        if tool.name != "floor" and checksums(tool.restored(target)) != checksums(source):
            raise RuntimeError(f"{tool.name} restored something else than the source of "
                               f"{workload.letter}")
        self.volumes.discard(target)


def used(folder):
    return int(subprocess.run(["du", "-s", "--block-size=1", folder], check=True,
                              stdout=subprocess.PIPE).stdout.split()[0]) / 1e6


def table(results, names, quick):
    """The rows as Markdown: all figures in seconds, ours with its ratio and the target."""
    lines = ["| run | scan | " + " | ".join(names) + " | ratio | target | |",
             "|---|" + "---:|" * (len(names) + 2) + "---|---|"]
    for row, (basis, factor) in TARGETS.items():
        if not any(key[0] == row for key in results.seconds):
            continue
        cells = [results.median(row, name) for name in ["scan", *names]]
        ours, against = results.median(row, "vardelin"), results.median(row, basis)
        ratio, target, verdict = "", "", ""
        if ours is not None and against:
            ratio = f"{ours / against:.2f} x {basis}"
            if factor:
                target = f"{factor:g} x {basis}"
                verdict = "met" if ours <= factor * against else "missed"
            elif row == ("M", "unchanged"):
                target = f"{UNCHANGED_MILLION_SECONDS:g} s"
                verdict = "met" if ours <= UNCHANGED_MILLION_SECONDS else "missed"
        if quick and verdict:
            verdict = "(" + verdict + ")"
        lines.append(f"| {row[0]} {row[1]} | "
                     + " | ".join("" if cell is None else f"{cell:.3f}" for cell in cells)
                     + f" | {ratio} | {target} | {verdict} |")
    peaks = [results.memory.get(name) for name in ["scan", *names]]
    verdict = ""
    own = [peak for name, peak in results.memory.items() if name.startswith("vardelin")]
    if own:
        verdict = "met" if max(own) <= PEAK_MEMORY_MIB else "missed"
    lines.append("| peak memory, MiB | "
                 + " | ".join("" if peak is None else f"{peak:.0f}" for peak in peaks)
                 + f" | | {PEAK_MEMORY_MIB:g} MiB | {verdict} |")
    return lines


def encrypted_table(results, refusal, quick):
    """Our own runs with encryption beside those without."""
    if refusal is not None:
        return [f"Encrypted runs were not measured: the program refuses them ({refusal})."]
    lines = ["| encrypted run | vardelin | vardelin-enc | ratio | target | |",
             "|---|---:|---:|---:|---|---|"]
    for row in TARGETS:
        plain, encrypted = results.median(row, "vardelin"), results.median(row, "vardelin-enc")
        if plain is None or encrypted is None:
            continue
        verdict = "met" if encrypted <= ENCRYPTED_FACTOR * plain else "missed"
        if quick:
            verdict = "(" + verdict + ")"
        lines.append(f"| {row[0]} {row[1]} | {plain:.3f} | {encrypted:.3f} | "
                     f"{encrypted / plain:.2f} x vardelin | {ENCRYPTED_FACTOR:g} x vardelin | "
                     f"{verdict} |")
    return lines


def sizes(session, names):
    letters = [letter for letter in "SLRM" if (letter, names[0]) in session.sizes]
    lines = ["| archive after the first run, MB | " + " | ".join(names) + " |",
             "|---|" + "---:|" * len(names)]
    for letter in letters:
        cells = [session.sizes.get((letter, name)) for name in names]
        lines.append(f"| {letter} | "
                     + " | ".join("" if cell is None else f"{cell:,.0f}" for cell in cells) + " |")
    return lines


def version_of(*command):
    try:
        text = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              text=True).stdout
    except OSError:
        return None
    found = re.search(r"\d+\.\d+(\.\d+)?", text)
    return f"{command[0]} {found.group()}" if found else None


def report(session, names, options, refusal):
    volumes = "each measurement on a fresh loop-mounted ext4" if session.volumes.loops else \
        "in plain folders, since no loop device can be mounted here"
    versions = [version_of(*c) for c in (("zstd", "--version"), ("restic", "version"),
                                         ("borg", "--version"), ("rsync", "--version"))]
    lines = [f"Measured {datetime.date.today():%Y-%m-%d} on {os.cpu_count()} processors, Linux "
             f"{platform.release()}, {volumes}; wall seconds, median of {options.runs}, warm cache. "
             + ", ".join(v for v in versions if v) + ".", ""]
    lines += [f"- {fact}" for fact in session.facts.values()] + [""]
    lines += table(session.results, names, options.quick) + [""]
    lines += encrypted_table(session.results, refusal, options.quick) + [""] + sizes(session, names)
    return lines


def write_page(path, lines, what="figures"):
    """Replaces what stands between two marks of the page; the words around them are kept."""
    with open(path, encoding="utf-8") as file:
        page = file.read()
    begin, end = f"<!-- {what} -->\n", f"<!-- end of {what} -->"
    head, rest = page.split(begin)
    tail = rest.split(end)[1]
    with open(path, "w", encoding="utf-8") as file:
        file.write(head + begin + "\n".join(lines) + "\n" + end + tail)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True, help="build folder of the bench preset")
    parser.add_argument("--runs", type=int, default=None)
    parser.add_argument("--workloads", default=None)
    parser.add_argument("--peers", default="restic,borg,borg-enc,rsync")
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--work", default="/var/tmp")
    parser.add_argument("--write", metavar="PAGE")
    options = parser.parse_args()
    options.build = os.path.abspath(options.build)
    options.runs = options.runs or (1 if options.quick else 3)
    options.workloads = options.workloads or ("SLR" if options.quick else "SLRM")

    tools.Floor.program = os.path.join(options.build, "bench", "floor")
    contenders = [tools.Floor]
    program = os.path.join(options.build, "src", "ctl", "vardelinctl")
    if os.access(program, os.X_OK):
        tools.Vardelin.program = program
        contenders.append(tools.Vardelin)
    else:
        log(f"{program} is not built: the table has the floor and the peers only")
    work = tempfile.mkdtemp(prefix="vardelin-bench.", dir=options.work)
    refusal = "it is not built"
    if tools.Vardelin in contenders:
        refusal = tools.VardelinEncrypted.refusal(work)
        if refusal is None:
            contenders.append(tools.VardelinEncrypted)
        else:
            log(f"vardelin-enc is left out: {refusal}")
    wanted = [name for name in options.peers.split(",") if name]
    peers = tools.installed_peers(wanted)
    contenders += [tools.PEERS[name] for name in peers]

    volumes = Volumes(work)
    if not volumes.loops:
        log("No loop device can be mounted: measuring in plain folders, which is less even.")
    session = Session(options, volumes, contenders)
    known = workloads(os.path.join(options.build, "bench", "make_workload"), options)
    try:
        for letter in options.workloads:
            session.run(known[letter])
    finally:
        volumes.discard_all()
        subprocess.run(["rm", "-rf", work], check=False)

    lines = report(session, [contender.name for contender in contenders], options, refusal)
    print("\n".join(lines))
    if options.write:
        write_page(options.write, lines)


if __name__ == "__main__":
    main()
