#!/usr/bin/env python3
"""Measures the window's runs beside the terminal's, and the review of large archives. Called by
scripts/bench --window; see its --help."""

import argparse
import datetime
import os
import platform
import shutil
import statistics
import subprocess
import sys
import tempfile

import tools
from run_benchmarks import checksums, log, measure, warm, write_page
from volumes import Volumes

RUN_FACTOR = 1.05  # the window's run may take so many times the terminal's
FIRST_ROWS = 8.0   # seconds
OPEN_ROW = 1.0
DELETE = 5.0
REVIEW_MIB = 500
PROFILE = "Bench"


class Window:
    """The program's window without a screen, in the application folder of a tool."""

    def __init__(self, program):
        self.program = program

    def steps(self, what, app, *words):
        """Name, seconds and processor seconds of each step, and the peak memory in MiB."""
        os.sync()
        profile = os.path.join(app, "Profiles", PROFILE + ".vdp")
        done = subprocess.run([self.program, what, app, profile, *words], text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        if done.returncode != 0:
            raise RuntimeError(f"the window's {what}: {done.stderr.strip()}")
        steps, peak = [], 0
        for line in done.stdout.splitlines():
            name, *numbers = line.split("\t")
            if name == "peak":
                peak = int(numbers[0])
            else:
                steps.append((name, *map(float, numbers)))
        return steps, peak

    def took(self, what, app, *words):
        steps, _ = self.steps(what, app, *words)
        return next(seconds for name, seconds, _ in steps if name == what)


def compare_runs(window, volumes, make, runs):
    """Seconds of backups and restores of the same data, the terminal's and the window's in turn."""
    seconds = {(run, by): [] for run in ("first backup", "restore") for by in ("terminal", "window")}
    home = volumes.fresh()
    source = os.path.join(home, "source")
    subprocess.run([*make[:2], source, *make[2:]], check=True, stdout=subprocess.DEVNULL)
    warm(source)
    wanted = checksums(source)
    for number in range(runs):
        log(f"   run {number + 1} of {runs}")
        # Who goes second finds the machine warmer, so they take turns at that.
        order = ("terminal", "window") if number % 2 == 0 else ("window", "terminal")
        kept = None
        for by in order:
            tool = tools.Vardelin(source, volumes.fresh())
            tool.prepare()
            if by == "window":
                taken = window.took("backup", tool.app)
            else:
                taken, _ = measure(tool.backup())
            seconds[("first backup", by)].append(taken)
            if kept is not None:
                volumes.discard(kept.archive)
            kept = tool
        for by in order:
            target = volumes.fresh()
            if by == "window":
                taken = window.took("restore", kept.app, target)
            else:
                taken, _ = measure(kept.restore(target)[0])
            seconds[("restore", by)].append(taken)
            if checksums(kept.restored(target)) != wanted:
                raise RuntimeError(f"the {by}'s restore is something else than the source")
            volumes.discard(target)
        volumes.discard(kept.archive)
    volumes.discard(home)
    return {key: statistics.median(values) for key, values in seconds.items()}


def verdict(value, limit):
    return "met" if value <= limit else "missed"


def runs_table(rows):
    lines = ["| run | terminal | window | ratio | target | |", "|---|---:|---:|---:|---|---|"]
    for description, medians in rows:
        for run in ("first backup", "restore"):
            terminal, own = medians[(run, "terminal")], medians[(run, "window")]
            target = (f"{RUN_FACTOR:g} x", verdict(own, RUN_FACTOR * terminal)) \
                if run == "restore" else ("", "")
            lines.append(f"| {description}, {run} | {terminal:.3f} | {own:.3f} | "
                         f"{own / terminal:.2f} x | {target[0]} | {target[1]} |")
    return lines


def review(window, volumes, generator, description, shape, deleted):
    log(f"review: {description}")
    home = volumes.fresh()
    app = os.path.join(home, "app")
    tool = tools.Vardelin("/home/person", home)
    tool.quietly(tool.program, "init", app)
    tool.quietly(tool.program, "--app", app, "--quiet", "profile", "new", PROFILE, "--source", home,
                 "--dest", os.path.join(home, "store"))
    subprocess.run([generator, "make", home, *shape], check=True, stdout=subprocess.DEVNULL)
    root = os.path.join(home, "store", PROFILE)
    os.rename(os.path.join(home, "store", "Home"), root)
    # The copies are empty, and an archive of no bytes is none; the engine keeps the profile in it.
    shutil.copy(os.path.join(app, "Profiles", PROFILE + ".vdp"), root)
    steps, peak = window.steps("review", app, str(deleted))
    volumes.discard(home)
    first = next(seconds for name, seconds, _ in steps if name == "first rows")
    slowest = max(seconds for name, seconds, _ in steps if name.startswith("open "))
    gone = next(seconds for name, seconds, _ in steps if name.startswith("delete "))
    return (f"| {description} | {first:.2f} ({verdict(first, FIRST_ROWS)}) | "
            f"{slowest:.2f} ({verdict(slowest, OPEN_ROW)}) | {gone:.2f} ({verdict(gone, DELETE)}) | "
            f"{peak} ({verdict(peak, REVIEW_MIB)}) |")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True, help="build folder of the bench preset")
    parser.add_argument("--runs", type=int, default=None)
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--work", default="/var/tmp")
    parser.add_argument("--write", metavar="PAGE")
    options = parser.parse_args()
    build = os.path.abspath(options.build)
    runs = options.runs or (1 if options.quick else 5)
    tools.Vardelin.program = os.path.join(build, "src", "ctl", "vardelinctl")
    window = Window(os.path.join(build, "bench", "window_runs"))
    workload = os.path.join(build, "bench", "make_workload")
    generator = os.path.join(build, "bench", "review_speed")
    if not os.access(window.program, os.X_OK):
        sys.exit("the window is not built: its figures need Qt 6")

    files, folders, large = ("5000", "200", "64") if options.quick else ("50000", "2000", "256")
    million = 10 if options.quick else 1000  # copies in each of the thousand folders
    # No dot: the box of the restore's place takes none.
    work = tempfile.mkdtemp(prefix="vardelin-window-", dir=options.work)
    volumes = Volumes(work)
    try:
        rows = []
        for description, make in (
                (f"{int(files):,} small files", [workload, "small", files, folders]),
                (f"6 files of {large} MB", [workload, "large", "6", large])):
            log(description)
            rows.append((description, compare_runs(window, volumes, make, runs)))
        reviews = [
            review(window, volumes, generator, f"{1000 * million:,} copies in 1,000 folders",
                   ["1000", str(million)], million),
            review(window, volumes, generator,
                   f"{1000 * million:,} copies in {50 * million:,} folders",
                   [str(50 * million), "20"], 20)]
    finally:
        volumes.discard_all()
        subprocess.run(["rm", "-rf", work], check=False)

    where = "each on a fresh loop-mounted ext4" if volumes.loops else "in plain folders"
    lines = [f"Measured {datetime.date.today():%Y-%m-%d} on {os.cpu_count()} processors, Linux "
             f"{platform.release()}, {where}; wall seconds, runs the median of {runs}, reviews once.", ""]
    lines += runs_table(rows) + [""]
    lines += ["| review of | first rows | slowest row to open | delete the rows of a folder | peak memory, MiB |",
              "|---|---:|---:|---:|---:|", *reviews]
    print("\n".join(lines))
    if options.write:
        write_page(options.write, lines, "window figures")


if __name__ == "__main__":
    main()
