"""Unpacking RAR by Quendle and by other extractors in turn: bench_rar.py PROGRAM FOLDER. No free program writes RAR, so
that archives from the folder are taken: for each way of packing the largest entry that nothing else goes on with, repeated
under other names until it gives so many bytes."""

import os
import shutil
import struct
import subprocess
import sys
import tempfile
import zlib

from common import MEMORY, compare

TOTAL = 50_000_000
LEAST = 1_000  # bytes of an entry: smaller ones measure the making of files
TOOLS = {"unar": "unar -q -f -D -o {out} {archive}", "bsdtar": "bsdtar -xf {archive} -C {out}"}


def reads(line, archive, out):
    """Not every tool knows every way of packing."""
    shutil.rmtree(out, ignore_errors=True)
    os.makedirs(out)
    command = [part.format(archive=archive, out=out) for part in line.split()]
    return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0


def number(data, at):
    value = shift = 0
    while True:
        byte = data[at]
        at += 1
        value |= (byte & 0x7F) << shift
        shift += 7
        if byte < 0x80:
            return value, at


def vint(value):
    out = b""
    while value >= 0x80:
        out += bytes((value & 0x7F | 0x80,))
        value >>= 7
    return out + bytes((value,))


def entries4(data):
    """Of RAR 1.5 to 4: way of packing, unpacked size, header, packed bytes."""
    at = 7
    while at + 7 <= len(data):
        kind, flags, size = struct.unpack_from("<BHH", data, at + 2)
        packed = struct.unpack_from("<I", data, at + 7)[0] if flags & 0x8000 or kind in (0x74, 0x7A) else 0
        if size < 7 or (kind == 0x73 and flags & 0x80):
            return
        content = data[at + size:at + size + packed]
        if kind == 0x74 and data[at + 25] != 0x30 and not flags & 0x17:
            way = {15: "1.5", 20: "2.0", 26: "2.0"}.get(data[at + 24], "2.9")
            if way == "2.9":
                way += ", PPM" if content[0] & 0x80 else ", LZ"
            yield way, struct.unpack_from("<I", data, at + 11)[0], data[at:at + size], content
        at += size + packed


def entries5(data):
    at = 8
    while at + 7 <= len(data):
        size, fields = number(data, at + 4)
        end = fields + size
        kind, here = number(data, fields)
        flags, here = number(data, here)
        extra, here = number(data, here) if flags & 1 else (0, here)
        packed, here = number(data, here) if flags & 2 else (0, here)
        if kind in (4, 5):
            return
        if kind == 2 and not flags & 0x18:
            file_flags, here = number(data, here)
            unpacked, here = number(data, here)
            _, here = number(data, here)
            here += (4 if file_flags & 2 else 0) + (4 if file_flags & 4 else 0)
            packing, _ = number(data, here)
            is_encrypted = 1 in records(data[end - extra:end])
            if packing >> 7 & 7 and not packing & 0x40 and not is_encrypted:
                yield "7" if packing & 0x3F else "5", unpacked, data[fields:end], data[end:end + packed]
        at = end + packed


def records(data):
    kinds, at = set(), 0
    while at < len(data):
        size, at = number(data, at)
        kinds.add(number(data, at)[0])
        at += size
    return kinds


def repeated4(size, header, content, count):
    main = struct.pack("<BHHHI", 0x73, 0, 13, 0, 0)
    yield b"Rar!\x1A\x07\0" + struct.pack("<H", zlib.crc32(main) & 0xFFFF) + main
    for i in range(count):
        name = b"f%05d" % i
        fixed = bytearray(header[2:32])
        flags = struct.unpack_from("<H", fixed, 1)[0] & ~0x1F18 | 0x8000
        struct.pack_into("<HH", fixed, 1, flags, 32 + len(name))
        struct.pack_into("<H", fixed, 24, len(name))
        block = bytes(fixed) + name
        yield struct.pack("<H", zlib.crc32(block) & 0xFFFF) + block + content
    yield b"\xC4\x3D\x7B\x00\x40\x07\x00"


def block5(fields):
    sized = vint(len(fields)) + fields
    return struct.pack("<I", zlib.crc32(sized)) + sized


def repeated5(size, header, content, count):
    """Without extra records, and with the name last."""
    _, at = number(header, 0)
    flags, at = number(header, at)
    if flags & 1:
        _, at = number(header, at)
    _, at = number(header, at)
    begin = at
    file_flags, at = number(header, at)
    for _ in range(2):
        _, at = number(header, at)
    at += (4 if file_flags & 2 else 0) + (4 if file_flags & 4 else 0)
    for _ in range(2):
        _, at = number(header, at)
    yield b"Rar!\x1A\x07\1\0" + block5(b"\1\0\0")
    for i in range(count):
        name = b"f%05d" % i
        yield block5(b"\2\2" + vint(len(content)) + header[begin:at] + vint(len(name)) + name) + content
    yield block5(b"\5\0\0")


def main():
    best = {}
    for path, _, names in os.walk(sys.argv[2]):
        for name in names:
            with open(os.path.join(path, name), "rb") as file:
                data = file.read()
            entries, repeat = (entries4, repeated4) if data[:7] == b"Rar!\x1A\x07\0" else (entries5, repeated5)
            if data[:4] != b"Rar!":
                continue
            for way, *entry in entries(data):
                if entry[0] >= LEAST and (way not in best or entry[0] > best[way][0][0]):
                    best[way] = (entry, repeat)
    with tempfile.TemporaryDirectory(dir=MEMORY) as home:
        os.environ["XDG_RUNTIME_DIR"] = os.path.join(home, "runtime")
        os.mkdir(os.environ["XDG_RUNTIME_DIR"])
        for way, (entry, repeat) in sorted(best.items()):
            archive = os.path.join(home, "a.rar")
            with open(archive, "wb") as out:
                out.writelines(repeat(*entry, TOTAL // entry[0] + 1))
            target = os.path.join(home, "out")
            tools = {tool: line for tool, line in TOOLS.items() if reads(line, archive, target)}
            compare(f"RAR {way}, {TOTAL // 1_000_000} MB in entries of {entry[0] // 1000} kB", archive, target, tools)


main()
