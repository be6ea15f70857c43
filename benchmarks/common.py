"""What the benchmarks share: running commands, settings folders, rows of the table."""

import os
import shutil
import statistics
import sys
import time

PROGRAM = sys.argv[1]
DISK = os.environ.get("BENCH_DISK", "/var/tmp")
MEMORY = os.environ.get("BENCH_MEMORY", "/dev/shm")
SILENT = [(os.POSIX_SPAWN_OPEN, fd, "/dev/null", os.O_RDWR, 0) for fd in (0, 1, 2)]


def measure(*command):
    """Wall and processor seconds and peak KiB of one command, which must succeed."""
    begin = time.perf_counter()
    pid = os.posix_spawnp(command[0], command, os.environ, file_actions=SILENT)
    _, status, usage = os.wait4(pid, 0)
    wall = time.perf_counter() - begin
    if status != 0:
        sys.exit(f"{' '.join(command)} failed")
    return wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss


def run(*command):
    """Wall and processor seconds of one command, which must succeed."""
    return measure(*command)[:2]


def settings(folder, profiles):
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "mover.ini"), "w", newline="\r\n") as file:
        file.write("[General]\nSmartRename=3\n")
    shutil.copy(os.path.join(folder, "mover.ini"), os.path.join(folder, "test.ini"))
    with open(os.path.join(folder, "items.ini"), "w", newline="\r\n") as file:
        for title, keys in profiles.items():
            file.write(f"[{title}]\n" + "".join(f"{key}={value}\n" for key, value in keys.items()))
    return folder


def profile(pattern, action, to):
    return {"Pattern": pattern, "MoveTo": to, "CopyTo": to, "ID": 1, "Action": action, "SmartRename": 1}


def row(what, ours, theirs, aim, of=statistics.median):
    a, b = of(ours), of(theirs)
    print(f"{what:<58} {a * 1000:10.1f} ms {b * 1000:10.1f} ms {a / b:6.2f}  {aim}", flush=True)
