#!/usr/bin/env python3
"""Backs up, checks and restores what is large in one way or another, and prints time and memory.
Called by scripts/scale; see its --help."""

import argparse
import datetime
import os
import platform
import resource
import stat
import subprocess
import sys
import tempfile

import tools
from run_benchmarks import log, measure, used, warm, write_page
from volumes import Volumes

DEPTH = 200
DEEP_NAME = "a folder whose name is long enough that the paths below it soon exceed every limit {:03d}"
STRETCH = 1 << 20
STRETCHES = 6
BLOCK = 1 << 20


def make_deep(folder):
    """A chain of folders, each with a file. Their paths are longer than one system call takes, so
    every step is made from the folder above."""
    os.makedirs(folder)
    here = os.open(folder, os.O_RDONLY)
    for level in range(DEPTH):
        name = DEEP_NAME.format(level)
        os.mkdir(name, dir_fd=here)
        below = os.open(name, os.O_RDONLY, dir_fd=here)
        os.close(here)
        here = below
        file = os.open("note.txt", os.O_WRONLY | os.O_CREAT, dir_fd=here)
        os.write(file, f"level {level}\n".encode() * 20)
        os.close(file)
    os.close(here)


def make_sparse(folder, gigabytes):
    os.makedirs(folder)
    with open(os.path.join(folder, "disk.img"), "wb") as file:
        size = gigabytes << 30
        file.truncate(size)
        for index in range(STRETCHES):
            file.seek((size - STRETCH) * index // (STRETCHES - 1))
            file.write(bytes((index + 1,)) * STRETCH)


def data_stretches(file, size):
    """(offset, length) of everything that is no hole."""
    at = 0
    while at < size:
        try:
            begin = os.lseek(file, at, os.SEEK_DATA)
        except OSError:
            return
        at = os.lseek(file, begin, os.SEEK_HOLE)
        yield begin, at - begin


def has_all_of(one, other, size):
    """Whether `other` has the same bytes wherever `one` has data."""
    for begin, length in data_stretches(one, size):
        for at in range(begin, begin + length, BLOCK):
            n = min(BLOCK, begin + length - at)
            if os.pread(one, n, at) != os.pread(other, n, at):
                return False
    return True


def same_file(one, other):
    """Compares contents without reading the holes of both."""
    size = os.fstat(one).st_size
    return size == os.fstat(other).st_size and has_all_of(one, other, size) \
        and has_all_of(other, one, size)


def difference(one, other):
    """The name of the first entry that two folders do not share with kind, rights, content and a
    file's time; None where there is none. Goes by open folders, since the paths may be too long."""
    pending = [(os.open(one, os.O_RDONLY), os.open(other, os.O_RDONLY))]
    different = None
    while pending:
        left, right = pending.pop()
        names = set(os.listdir(left)) | set(os.listdir(right)) if different is None else ()
        for name in sorted(names):
            try:
                a = os.stat(name, dir_fd=left, follow_symlinks=False)
                b = os.stat(name, dir_fd=right, follow_symlinks=False)
            except FileNotFoundError:
                different = name
                break
            is_folder = stat.S_ISDIR(a.st_mode)
            if a.st_mode != b.st_mode or not is_folder and a.st_mtime_ns != b.st_mtime_ns:
                different = name
                break
            opened = (os.open(name, os.O_RDONLY, dir_fd=left),
                      os.open(name, os.O_RDONLY, dir_fd=right))
            if is_folder:
                pending.append(opened)
                continue
            if not same_file(*opened):
                different = name
            os.close(opened[0])
            os.close(opened[1])
        os.close(left)
        os.close(right)
    return different


def cases(generator, options):
    files, folders, wide, gigabytes = (10000, 500, 2000, 1) if options.quick else \
        (1000000, 50000, 200000, 100)

    def tiny(count, among):
        return lambda d: subprocess.run([generator, "tiny", d, str(count), str(among)], check=True,
                                        stdout=subprocess.DEVNULL)

    return {
        "many": (f"{files:,} files in {folders:,} folders", tiny(files, folders)),
        "wide": (f"{wide:,} files in one folder", tiny(wide, 1)),
        "deep": (f"{DEPTH} folders in one another, paths of {DEPTH * len(DEEP_NAME.format(0)):,} bytes",
                 make_deep),
        "sparse": (f"a sparse file of {gigabytes} GB, {STRETCHES} MB of it data",
                   lambda d: make_sparse(d, gigabytes)),
    }


def steps(tool, target):
    command = tool._command
    return [
        ("first", tool.backup(), (0,)),
        ("unchanged", tool.backup(), (4,)),
        ("list", command("list", "Bench"), (0,)),
        ("verify", command("verify", "Bench"), (0,)),
        ("prune", command("prune", "Bench", "--dry-run"), (0, 4)),
        ("restore all", tool.restore(target)[0], (0,)),
    ]


def run_case(name, description, make, volumes, has_prune):
    """The table's rows of one case."""
    home, archive, target = (volumes.fresh() for _ in range(3))
    source = os.path.join(home, "source")
    log(f"{name}: making {description}")
    make(source)
    if name == "many":
        warm(source)
    tool = tools.Vardelin(source, archive)
    tool.prepare()
    rows = []
    size = 0.0
    for what, command, accepted in steps(tool, target):
        if what == "prune" and not has_prune:
            continue
        seconds, memory = measure(command, accepted=accepted)
        if what == "first":
            size = used(archive)
        log(f"   {what:<12} {seconds:8.2f} s  {memory:6.1f} MiB")
        rows.append(f"| {description if what == 'first' else ''} | {what} | {seconds:.2f} | "
                    f"{memory:.0f} | {f'{size:,.1f}' if what == 'first' else ''} |")
    different = difference(source, tool.restored(target))
    if different is not None:
        raise RuntimeError(f"{name}: the restore differs from the source in {different}")
    for volume in (home, archive, target):
        volumes.discard(volume)
    return rows


def knows(program, word):
    """Whether the program's own help names a command or an option."""
    text = subprocess.run([program, "--help"], stdout=subprocess.PIPE, text=True).stdout
    return word in text.split()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True, help="build folder of the bench preset")
    parser.add_argument("--cases", default="many,wide,deep,sparse")
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--work", default="/var/tmp")
    parser.add_argument("--write", metavar="PAGE")
    options = parser.parse_args()
    build = os.path.abspath(options.build)
    tools.Vardelin.program = os.path.join(build, "src", "ctl", "vardelinctl")
    has_prune = knows(tools.Vardelin.program, "prune")

    # The comparison keeps a folder's subfolders open.
    most = resource.getrlimit(resource.RLIMIT_NOFILE)[1]
    resource.setrlimit(resource.RLIMIT_NOFILE, (most, most))
    known = cases(os.path.join(build, "bench", "make_workload"), options)
    work = tempfile.mkdtemp(prefix="vardelin-scale.", dir=options.work)
    volumes = Volumes(work)
    where = "each on fresh loop-mounted ext4" if volumes.loops else "in plain folders"
    lines = [f"Measured {datetime.date.today():%Y-%m-%d} on {os.cpu_count()} processors, Linux "
             f"{platform.release()}, {where}; one run each, warm cache, load at the start "
             f"{os.getloadavg()[0]:.1f}.", "",
             "| what | run | seconds | peak memory, MiB | archive, MB |",
             "|---|---|---:|---:|---:|"]
    try:
        for name in options.cases.split(","):
            description, make = known[name]
            lines += run_case(name, description, make, volumes, has_prune)
    finally:
        volumes.discard_all()
        subprocess.run(["rm", "-rf", work], check=False)
    print("\n".join(lines))
    if options.write:
        write_page(options.write, lines, "scale figures")


if __name__ == "__main__":
    sys.exit(main())
