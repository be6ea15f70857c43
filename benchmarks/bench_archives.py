"""Extraction by Quendle and by other extractors in turn, from the same archives: bench_archives.py PROGRAM."""

import os
import shutil
import struct
import subprocess
import tempfile

from common import MEMORY, PROGRAM, ROUNDS, compare, measure, settings, text

SOURCES = ("/usr/lib", "/usr/include", "/usr/share")


def fill(folder, total, most=20_000_000):
    """Copies files of this machine into the folder: programs, headers and texts, a third of the bytes each."""
    count = 0
    for source in SOURCES:
        left = total // len(SOURCES)
        for path, _, names in os.walk(source):
            for name in sorted(names):
                file = os.path.join(path, name)
                if os.path.islink(file) or not os.path.isfile(file) or not 0 < os.path.getsize(file) < most:
                    continue
                if left <= 0:
                    break
                left -= os.path.getsize(file)
                os.makedirs(os.path.join(folder, f"d{count // 100:03}"), exist_ok=True)
                shutil.copy(file, os.path.join(folder, f"d{count // 100:03}", f"f{count:05}"))
                count += 1


def small_files(folder, count, per_folder):
    for i in range(count):
        path = os.path.join(folder, f"top/d{i // per_folder:04}")
        os.makedirs(path, exist_ok=True)
        with open(os.path.join(path, f"f{i:06}.txt"), "w") as file:
            file.write(f"line {i}\n" * 10)


def crc16(data):
    table = []
    for value in range(256):
        for _ in range(8):
            value = value >> 1 ^ (0xA001 if value & 1 else 0)
        table.append(value)
    crc = 0
    for byte in data:
        crc = crc >> 8 ^ table[(crc ^ byte) & 0xFF]
    return crc


def stored_lzh(path, files=200, size=1 << 20):
    """An LZH archive of stored files. Twenty different contents: the checksums are slow to compute here."""
    blocks = [os.urandom(size) for _ in range(20)]
    sums = [crc16(block) for block in blocks]
    with open(path, "wb") as out:
        for i in range(files):
            name = f"f{i:04}.bin".encode()
            head = b"-lh0-" + struct.pack("<IIIBBB", size, size, 0x50210000, 0x20, 0, len(name)) + name
            head += struct.pack("<H", sums[i % 20])
            out.write(bytes((len(head), sum(head) & 0xFF)) + head + blocks[i % 20])
        out.write(b"\0")


def text_files(folder, count, size):
    os.makedirs(folder)
    for i in range(count):
        with open(os.path.join(folder, f"f{i:04}.txt"), "w") as file:
            file.write(text(size))


def smart_folders(what, archive, out):
    """The same archive with and without a second folder level avoided."""
    best = {}
    for turn in range(ROUNDS + 1):
        for smart in (0, 1):
            folder = settings(os.path.join(os.path.dirname(archive), f"s{smart}"), {"all": {
                "Pattern": ".*", "ExtractTo": out, "ID": 1, "Action": 1, "ExtractType": 1, "SmartMakeDir": smart}})
            shutil.rmtree(out, ignore_errors=True)
            os.makedirs(out)
            wall, _, _ = measure(PROGRAM, "--batch", "--settings", folder, archive)
            if turn > 0:
                best[smart] = min(best.get(smart, wall), wall)
    print(f"{what:<40} {best[1] * 1000:7.0f} ms with the option, {best[0] * 1000:.0f} without: {best[1] / best[0]:.2f}", flush=True)


def make(archive, folder, *command):
    subprocess.run(command, cwd=folder, check=True, stdout=subprocess.DEVNULL)
    return archive


def main():
    with tempfile.TemporaryDirectory(dir=MEMORY) as home:
        os.environ["XDG_RUNTIME_DIR"] = os.path.join(home, "runtime")  # which a desktop session has, in memory
        os.mkdir(os.environ["XDG_RUNTIME_DIR"])
        big, many, out = (os.path.join(home, name) for name in ("big", "many", "out"))
        fill(big, 200_000_000)
        small_files(many, 100_000, 100)
        path = lambda name: os.path.join(home, name)
        bsdtar, seven, unar = "bsdtar -xf {archive} -C {out}", "7zz x -bd -y -o{out} {archive}", "unar -q -f -D -o {out} {archive}"
        common = {"bsdtar": bsdtar, "7zz": seven, "unar": unar}
        unzip = {"unzip": "unzip -q -o {archive} -d {out}"}
        big_zip = make(path("big.zip"), big, "zip", "-qr", path("big.zip"), ".")
        compare("ZIP, 200 MB", big_zip, out, common | unzip)
        compare("ZIP, 200 MB, one core", big_zip, out, common | unzip, ("taskset", "-c", "0"))
        compare("7Z, 200 MB, solid", make(path("big.7z"), big, "7zz", "a", "-bd", path("big.7z"), "."), out, common)
        blocks = make(path("blocks.7z"), big, "7zz", "a", "-bd", "-ms=off", path("blocks.7z"), ".")
        compare("7Z, 200 MB, a block for each file", blocks, out, common)
        names = subprocess.run(("find", ".", "-type", "f", "-printf", "%P\n"), cwd=big, capture_output=True, text=True).stdout.split()
        cab = make(path("big.cab"), big, "gcab", "-c", "-z", path("big.cab"), *names)
        compare("CAB, 200 MB", cab, out, common | {"cabextract": "cabextract -q -d {out} {archive}", "gcab": "gcab -x -C {out} {archive}"})
        stored_lzh(path("big.lzh"))
        lha = {"lha": "lha -xqfw={out} {archive}", "jlha": "jlha xqw={out} {archive}"}
        compare("LZH, 200 MB, stored", path("big.lzh"), out, common | lha)
        lh5 = make(path("lh5.lzh"), big, "jlha", "co5", path("lh5.lzh"), *sorted(os.listdir(big)))
        compare("LZH, 200 MB, -lh5-", lh5, out, {"bsdtar": bsdtar, "7zz": seven} | lha)  # unar does not read all of it
        shutil.rmtree(big)
        texts = path("texts")
        text_files(texts, 150, 1_000_000)
        packed = make(path("texts.lzh"), texts, "jlha", "aq", path("texts.lzh"), *sorted(os.listdir(texts)))
        shutil.rmtree(texts)
        compare("LZH, 150 MB, -lh5-", packed, out, {"bsdtar": bsdtar, "7zz": seven, "lha": lha["lha"]})
        many_zip = make(path("many.zip"), many, "zip", "-qr", path("many.zip"), ".")
        compare("ZIP, 100,000 small files", many_zip, out, common | unzip)
        many_7z = make(path("many.7z"), many, "7zz", "a", "-bd", path("many.7z"), ".")
        compare("7Z, 100,000 small files, solid", many_7z, out, common)
        smart_folders("ZIP, 1,000 folders", many_zip, out)
        smart_folders("7Z, 1,000 folders, solid", many_7z, out)


main()
