"""How the time grows with the number of entries, cores, profiles and paths: curves.py PROGRAM [FOLDER].

Writes curves.json and a picture for each into FOLDER (docs/images). Each point is the best of three runs."""

import json
import os
import shutil
import sys
import tempfile
import time
import zipfile

from common import MEMORY, PROGRAM, measure, profile, settings, text
from log_plot import draw
from tiny_files import tiny_files

ROUNDS = 3
HERE = os.path.dirname(os.path.abspath(__file__))


def settled(folder, profiles):
    """A settings folder that nobody seems to be writing to: a run waits for one."""
    settings(folder, profiles)
    time.sleep(1)
    return folder


def best(count, *command, before=lambda: None, after=lambda: None, wall=True):
    times = []
    for _ in range(ROUNDS):
        before()
        times.append(measure(*command)[0 if wall else 1])
        after()
    print(f"{count:>9,} {min(times) * 1000:10.1f} ms", flush=True)
    return [count, round(min(times), 6)]


def packed_files(path, count=200, size=1_000_000):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for i in range(count):
            archive.writestr(f"f{i:04}.txt", text(size))


def extracting(home, to):
    return settled(os.path.join(home, "extracting"), {"all": {
        "Pattern": ".*", "ExtractTo": to, "ID": 1, "Action": 1, "ExtractType": 1}})


def over_entries(home):
    out = os.path.join(home, "out")
    folder = extracting(home, out)
    archive = os.path.join(home, "tiny.zip")
    series = {"extraction": [], "plan (--dry-run)": []}
    for count in (1000, 10_000, 100_000, 1_000_000):
        tiny_files(archive, count)
        clear = lambda: shutil.rmtree(out, ignore_errors=True)
        series["extraction"].append(best(count, PROGRAM, "--batch", "--settings", folder, archive, before=clear, after=clear))
        series["plan (--dry-run)"].append(best(count, PROGRAM, "--dry-run", "--settings", folder, archive))
    os.unlink(archive)
    return series


def over_cores(home):
    out = os.path.join(home, "out")
    folder = extracting(home, out)
    archive = os.path.join(home, "packed.zip")
    packed_files(archive)
    cores = sorted(os.sched_getaffinity(0))
    counts = [count for count in (1, 2, 4, 8, 16, 32, 64) if count <= len(cores)]
    points = []
    for count in counts:
        some = ",".join(str(core) for core in cores[:count])
        points.append(best(count, "taskset", "-c", some, PROGRAM, "--batch", "--settings", folder, archive,
                           before=lambda: shutil.rmtree(out, ignore_errors=True)))
    shutil.rmtree(out)
    return {"extraction of 200 MB, deflated": points}


def over_profiles(home):
    file = os.path.join(home, "name12345.txt")
    open(file, "w").close()
    points = []
    for count in (10, 100, 1000, 10_000, 20_000):
        profiles = {f"profile {i:05}": profile(rf"name{i:05}x.*\.(txt|pdf)", 4, "/nowhere") for i in range(count - 1)}
        profiles["the one"] = profile(r"n.*12345.*\.txt", 4, "/nowhere")
        folder = settled(os.path.join(home, f"profiles{count}"), profiles)
        points.append(best(count, PROGRAM, "--dry-run", "--settings", folder, file, wall=False))
    return {"plan of one file": points}


def over_paths(home):
    inbox, out = os.path.join(home, "from"), os.path.join(home, "to")
    folder = settled(os.path.join(home, "moving"), {"all": profile(".*", 2, out)})
    points = []
    for count in (1, 10, 100, 1000, 10_000, 20_000):
        files = [os.path.join(inbox, f"f{i:05}.txt") for i in range(count)]

        def fill():
            os.makedirs(inbox), os.makedirs(out)
            for file in files:
                open(file, "w").close()

        def clear():
            shutil.rmtree(inbox), shutil.rmtree(out)

        points.append(best(count, PROGRAM, "--batch", "--settings", folder, *files, before=fill, after=clear))
    return {"moves within a file system": points}


# Name of the picture, what it is over, what is measured, the slope of what would be linear, the measurement.
CURVES = (
    ("entries", "entries of the archive", "wall time", 1, over_entries),
    ("cores", "cores", "wall time", -1, over_cores),
    ("profiles", "profiles", "processor time", 1, over_profiles),
    ("paths", "paths of the run", "wall time", 1, over_paths),
)


def main():
    folder = sys.argv[2] if len(sys.argv) > 2 else os.path.join(HERE, "..", "docs", "images")
    numbers = {}
    for name, over, what, slope, measured in CURVES:
        print(f"time over {over}", flush=True)
        with tempfile.TemporaryDirectory(dir=MEMORY) as home:
            numbers[name] = measured(home)
        draw(os.path.join(folder, f"curve-{name}.svg"), numbers[name], over, what, slope)
    with open(os.path.join(folder, "curves.json"), "w") as file:
        file.write(json.dumps(numbers, indent=1) + "\n")


main()
