#!/usr/bin/env python3
"""Makes the bundle's icon out of the drawing, or checks the one that is there.

    make-icns.py DRAWING.svg ICON.icns     needs rsvg-convert (librsvg2-bin)
    make-icns.py --check ICON.icns         every picture is a PNG of the size that its type promises
"""
import struct
import subprocess
import sys

# Type of an entry: pixels of its picture. From 16 points at double density up to 512 at double.
SIZES = {b"ic11": 32, b"ic12": 64, b"ic07": 128, b"ic13": 256, b"ic08": 256, b"ic14": 512, b"ic09": 512, b"ic10": 1024}
PNG = b"\x89PNG\r\n\x1a\n"


def draw(drawing, pixels):
    command = ["rsvg-convert", "--width", str(pixels), "--height", str(pixels), drawing]
    return subprocess.run(command, check=True, capture_output=True).stdout


def make(drawing):
    pictures = {pixels: draw(drawing, pixels) for pixels in sorted(set(SIZES.values()))}
    entries = b"".join(kind + struct.pack(">I", 8 + len(pictures[pixels])) + pictures[pixels]
                       for kind, pixels in SIZES.items())
    return b"icns" + struct.pack(">I", 8 + len(entries)) + entries


def faults(data):
    """What is wrong with an icon, a sentence each."""
    if len(data) < 8 or data[:4] != b"icns" or struct.unpack(">I", data[4:8])[0] != len(data):
        return ["no icon, or not as long as it says"]
    found, at, wrong = set(), 8, []
    while at < len(data):
        if at + 8 > len(data):
            return wrong + ["rest at its end"]
        kind, length = data[at:at + 4], struct.unpack(">I", data[at + 4:at + 8])[0]
        picture = data[at + 8:at + length]
        if length < 8 or at + length > len(data):
            return wrong + [f"{kind!r} is longer than the file"]
        size = struct.unpack(">II", picture[16:24]) if picture[:8] == PNG else None
        if kind not in SIZES or size != (SIZES[kind], SIZES[kind]):
            wrong.append(f"{kind!r} holds {size}")
        found.add(kind)
        at += length
    return wrong + [f"{kind!r} is missing" for kind in SIZES if kind not in found]


def main(arguments):
    if len(arguments) != 2:
        sys.exit(__doc__)
    if arguments[0] == "--check":
        with open(arguments[1], "rb") as file:
            sys.exit("\n".join(faults(file.read())) or None)
    with open(arguments[1], "wb") as file:
        file.write(make(arguments[0]))


main(sys.argv[1:])
