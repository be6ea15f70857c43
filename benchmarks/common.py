"""What the benchmarks share: running commands, settings folders, rows of the table."""

import os
import shutil
import statistics
import sys
import time

PROGRAM = sys.argv[1]
DISK = os.environ.get("BENCH_DISK", "/var/tmp")
MEMORY = os.environ.get("BENCH_MEMORY", "/dev/shm")
ROUNDS = 5  # of comparisons of extractors
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


WORDS = [os.urandom(3).hex() for _ in range(4096)]


def text(size):
    """About so many characters of words in no order, which pack to half of that."""
    picks = memoryview(os.urandom(size // 7 * 2)).cast("H")
    return " ".join(WORDS[pick % 4096] for pick in picks)


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


def compare(what, archive, out, tools, prefix=()):
    """The best wall times and the peak memory of all. `prefix`: what each command is run by, such as ("taskset", "-c", "0")."""
    folder = settings(os.path.join(os.path.dirname(archive), "s"), {"all": {
        "Pattern": ".*", "ExtractTo": out, "ID": 1, "Action": 1, "ExtractType": 1}})
    commands = {"Quendle": (PROGRAM, "--batch", "--settings", folder, archive)}
    commands.update({tool: [part.format(archive=archive, out=out) for part in line.split()] for tool, line in tools.items()})
    results = {}
    for turn in range(ROUNDS + 1):  # the first only warms up
        for name, command in commands.items():
            shutil.rmtree(out, ignore_errors=True)
            os.makedirs(out)
            wall, _, peak = measure(*prefix, *command)
            if turn > 0:
                best, most = results.get(name, (wall, peak))
                results[name] = (min(best, wall), max(most, peak))
    ours, peak = results.pop("Quendle")
    best = min(results, key=lambda name: results[name][0])
    times = ", ".join(f"{name} {wall * 1000:.0f}" for name, (wall, _) in sorted(results.items(), key=lambda r: r[1]))
    print(f"{what:<40} {ours * 1000:7.0f} ms {ours / results[best][0]:5.2f} of {best:<10} {peak / 1024:6.0f} MiB   {times}", flush=True)
