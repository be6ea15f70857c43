"""Runs of Quendle and of the system's tools in turn, on the same data: bench.py PROGRAM."""

import os
import shutil
import statistics
import sys
import tempfile

from common import DISK, MEMORY, PROGRAM, profile, row, run, settings


def small_move(home):
    inbox, out = os.path.join(home, "in"), os.path.join(home, "out")
    os.makedirs(inbox), os.makedirs(out)
    folder = settings(os.path.join(home, "s"), {"all": profile(".*", 2, out)})
    file, moved = os.path.join(inbox, "f.txt"), os.path.join(out, "f.txt")
    ours, theirs = [], []
    for i in range(620):
        for times, command in ((ours, (PROGRAM, "--batch", "--settings", folder, file)), (theirs, ("mv", file, out))):
            with open(file, "w") as stream:
                stream.write("x")
            wall, _ = run(*command)
            os.unlink(moved)
            if i >= 20:
                times.append(wall)
    row("one small file moved / mv", ours, theirs, "at most 2")


def batch_move(home, count=20_000):
    """Many files in one run, from one folder into another on the same file system. The first round only warms up."""
    inbox, out = os.path.join(home, "in"), os.path.join(home, "out")
    os.makedirs(inbox), os.makedirs(out)
    folder = settings(os.path.join(home, "s"), {"all": profile(".*", 2, out)})
    files = [os.path.join(inbox, f"f{i:05}.txt") for i in range(count)]
    for file in files:
        open(file, "w").close()
    commands = ((PROGRAM, "--batch", "--settings", folder, *files), ("mv", "-n", "-t", out, *files))
    times = ([], [])
    for turn in range(6):
        for index in (0, 1) if turn % 2 else (1, 0):
            os.sync()
            wall, _ = run(*commands[index])
            if turn > 0:
                times[index].append(wall)
            os.rmdir(inbox)
            os.rename(out, inbox)
            os.makedirs(out)
    row(f"a batch of {count:,} moves / mv -n -t", *times, "at most 5", of=min)


def make_big(path):
    block = os.urandom(1 << 20)
    with open(path, "wb") as file:
        for i in range(1024):
            file.write(i.to_bytes(8, "little") + block[8:])
        os.fsync(file.fileno())


def make_tree(path):
    for i in range(10_000):
        folder = os.path.join(path, f"d{i // 100:03}")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, f"file{i:05}.txt"), "w") as file:
            file.write("small file " * (i % 200))
    os.sync()


def remove(path):
    if os.path.isdir(path):
        shutil.rmtree(path)
    elif os.path.exists(path):
        os.unlink(path)


def transfers(name, make, copy_tool, rounds, aim, disk, memory):
    """Copies and moves of one thing from each file system to the other. The first round only warms up.

    The best times are compared: what a busy disk or host adds to some of them says nothing about either program.
    """
    for origin, target, way in ((disk, memory, "disk to memory"), (memory, disk, "memory to disk")):
        source, out = os.path.join(origin, name), os.path.join(target, "out")
        os.makedirs(out, exist_ok=True)
        copier = settings(os.path.join(origin, "s"), {"c": profile(".*", 4, out)})
        mover = settings(os.path.join(origin, "t"), {"m": profile(".*", 2, out)})
        move = (PROGRAM, "--batch", "--settings", mover, source)
        cases = {
            "copied / " + " ".join(copy_tool): ((PROGRAM, "--batch", "--settings", copier, source), (*copy_tool, source, out)),
            "moved / mv": (move, ("mv", source, out)),
        }
        if target == disk:  # only there a sync costs anything
            synced = ("sh", "-c", 'mv "$1" "$2" && sync -f "$2"', "sh", source, out)
            cases["moved / mv and sync"] = (move, synced)
        for what, commands in cases.items():
            times = ([], [])
            for turn in range(rounds + 1):
                for index in (0, 1) if turn % 2 else (1, 0):
                    if not os.path.exists(source):
                        make(source)
                    os.sync()
                    wall, _ = run(*commands[index])
                    if turn > 0:
                        times[index].append(wall)
                    remove(os.path.join(out, name))
            row(f"{name}, {way}, {what}", *times, aim, of=min)
        remove(source)


def many_profiles(home):
    file = os.path.join(home, "name12345.txt")
    open(file, "w").close()
    print()
    for count in (1, 1000, 10_000, 20_000):
        profiles = {f"profile {i:05}": profile(rf"name{i:05}.*\.(txt|pdf)", 4, "/nowhere") for i in range(count - 1)}
        profiles["the one"] = profile(r"n.*12345.*\.txt", 4, "/nowhere")
        if count > 12345:
            del profiles["profile 12345"]
        folder = settings(os.path.join(home, f"s{count}"), profiles)
        times = [run(PROGRAM, "--dry-run", "--settings", folder, file)[1] for _ in range(11)]
        print(f"--dry-run of one name against {count:>6} profiles: {statistics.median(times) * 1000:7.1f} ms of processor time")
    profiles = {f"p{i:04}": profile(rf"(report|scan){i:04}_.*\.(pdf|txt)", 4, "/nowhere") for i in range(1000)}
    folder = settings(os.path.join(home, "sq"), profiles)
    names = os.path.join(home, "names")
    os.makedirs(names)
    files = [os.path.join(names, f"scan{i:04}_page.pdf") for i in range(1000)]
    for name in files:
        open(name, "w").close()
    times = [run(PROGRAM, "--dry-run", "--settings", folder, *files)[0] for _ in range(5)]
    print(f"--dry-run of 1,000 names against 1,000 profiles: {statistics.median(times) * 1000:7.1f} ms")


def main():
    with tempfile.TemporaryDirectory(dir=DISK) as disk, tempfile.TemporaryDirectory(dir=MEMORY) as memory:
        if os.stat(disk).st_dev == os.stat(memory).st_dev:
            sys.exit(f"{DISK} and {MEMORY} are one file system; set BENCH_DISK and BENCH_MEMORY")
        print(f"{'':<58} {'Quendle':>13} {'the tool':>13} {'ratio':>6}  aim")
        small_move(os.path.join(disk, "small"))
        batch_move(os.path.join(disk, "batch"))
        transfers("1GiB", make_big, ("cp",), 7, "at most 1.1", disk, memory)
        transfers("10000files", make_tree, ("cp", "-a"), 5, "at most 1.2", disk, memory)
        many_profiles(disk)


main()
