#!/usr/bin/env python3
"""Measures how long the window takes to be usable, beyond the splash's own timer.

    window_start.py BUILD_FOLDER [RUNS]

Starts the program of the build on a screen that nobody sees (Xvfb), in an application folder of its own,
and takes the time from the start of the process until its run log says that the main frame is loaded. The
splash waits 0.8 s by itself, which is taken off. The first start makes the default profile and counts
apart. Needs Xvfb.
"""

import os
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time

SPLASH = 0.8  # seconds
RECORD = 128  # bytes of the run log
LONGEST = 60.0


def loads(log):
    """How often the loading of the main frame has begun and ended."""
    try:
        with open(log, "rb") as file:
            data = file.read()
    except FileNotFoundError:
        return 0
    records = [data[i:i + RECORD] for i in range(RECORD, len(data), RECORD)]
    return sum(1 for record in records if record[8:48].rstrip() == b"MDIForm_Load")


def start(app, environment):
    log = os.path.join(app, "vardelin_Log_File.txt")
    before = loads(log)
    began = time.monotonic()
    process = subprocess.Popen([os.path.join(app, "vardelin")], env=environment,
                               stderr=subprocess.DEVNULL)
    while loads(log) < before + 2:
        if time.monotonic() - began > LONGEST or process.poll() is not None:
            process.kill()
            sys.exit("the window did not come up")
        time.sleep(0.002)
    took = time.monotonic() - began - SPLASH
    process.terminate()
    process.wait()
    return took


def end_monitors(app):
    for name in os.listdir("/proc"):
        try:
            if os.readlink(f"/proc/{name}/exe").startswith(app + "/"):
                os.kill(int(name), signal.SIGTERM)
        except (OSError, ValueError):
            pass


def main():
    build = sys.argv[1] if len(sys.argv) > 1 else "build/release"
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 7
    with tempfile.TemporaryDirectory() as folder:
        app = os.path.join(folder, "app")
        home = os.path.join(folder, "home")
        os.mkdir(home, 0o700)
        subprocess.run([f"{build}/src/ctl/vardelinctl", "init", app], check=True,
                       stdout=subprocess.DEVNULL)
        for program in ("app/vardelin", "monitors/VDFileMon", "monitors/VDIdleMon",
                        "monitors/VDScheduleMon"):
            shutil.copy(f"{build}/src/{program}", app)
        read, write = os.pipe()
        screen = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x720x24", "-nolisten", "tcp"],
            pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        display = os.read(read, 16).decode().strip()
        environment = dict(os.environ, DISPLAY=f":{display}", HOME=home, XDG_RUNTIME_DIR=home,
                           QT_QPA_PLATFORM="xcb")
        try:
            first = start(app, environment)
            later = [start(app, environment) for _ in range(runs)]
        finally:
            end_monitors(app)
            screen.terminate()
            screen.wait()
        print(f"first start  {first:.2f} s")
        print(f"later starts {statistics.median(later):.2f} s (median of {runs}, "
              f"{min(later):.2f} to {max(later):.2f})")


if __name__ == "__main__":
    main()
