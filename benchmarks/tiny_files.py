"""Makes archives of very many entries: tiny_files.py PATH COUNT."""

import struct
import sys
import zlib


def tiny_files(path, count):
    """A ZIP archive of stored files of one byte, a hundred in a folder."""
    crc = zlib.crc32(b"x")
    directory = []
    position = 0
    with open(path, "wb") as out:
        for i in range(count):
            name = f"d{i // 100:05}/f{i:07}.txt".encode()
            sizes = struct.pack("<HHHIIII", 10, 0, 0, 0x50210000, crc, 1, 1)
            local = b"PK\3\4" + sizes + struct.pack("<HH", len(name), 0) + name + b"x"
            where = struct.pack("<HHHHHII", len(name), 0, 0, 0, 0, 0o100644 << 16, position)
            directory.append(b"PK\1\2" + struct.pack("<H", 3 << 8) + sizes + where + name)
            out.write(local)
            position += len(local)
        listed = b"".join(directory)
        out.write(listed)
        if count >= 0xFFFF:
            out.write(b"PK\6\6" + struct.pack("<QHHIIQQQQ", 44, 45, 45, 0, 0, count, count, len(listed), position))
            out.write(b"PK\6\7" + struct.pack("<IQI", 0, position + len(listed), 1))
        few = min(count, 0xFFFF)
        out.write(b"PK\5\6" + struct.pack("<HHHHIIH", 0, 0, few, few, len(listed), position, 0))


if __name__ == "__main__":
    tiny_files(sys.argv[1], int(sys.argv[2]))
