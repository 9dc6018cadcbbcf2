#!/usr/bin/python3
"""Writes the seed corpus of the capture fuzz targets into fuzz/corpus/<target>/:
dng_reader_fuzz, pgm_reader_fuzz, shot_buffer_fuzz and shot_operations_fuzz
(the shots that crashed an operation once are written by
tests/data/make_bad_inputs.py).

Run from anywhere: /usr/bin/python3 fuzz/make_capture_corpus.py
TIFF seeds come from tifffile (an independent writer); the others are small
valid and nearly valid contents written here.
"""
import io
import os
import struct

import numpy as np
import tifffile

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus")
END_TAG = 0xFFFFFFFF
CV_16UC1, CV_16UC3, CV_32FC1 = 2, 18, 5


def write(target, name, data):
    folder = os.path.join(ROOT, target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data)


def tiff(rows, cols, order, rows_per_strip=None):
    samples = (np.arange(rows * cols, dtype=np.uint32).reshape(rows, cols) * 1031 + 7) % 65536
    out = io.BytesIO()
    options = {"rowsperstrip": rows_per_strip} if rows_per_strip else {}
    tifffile.imwrite(out, samples.astype(np.uint16), byteorder=order, photometric="minisblack",
                     **options)
    return out.getvalue()


def own_dng(order, width, length, strip_value, payload):
    """The readers' own shape: little-endian header, three tags at offset 8."""
    entries = b"".join(struct.pack("<HHII", tag, 4, 1, value)
                       for tag, value in ((256, width), (257, length), (273, strip_value)))
    return order + struct.pack("<HI", 42, 8) + struct.pack("<H", 3) + entries + payload


def words(*values):
    return struct.pack("<%dI" % len(values), *(v & 0xFFFFFFFF for v in values))


def shot(shot_type, image, records=b"", end=True):
    body = b"L" + words(1, shot_type) + image + records
    return body + (words(END_TAG) if end else b"")


def main():
    write("dng_reader_fuzz", "tifffile_le_strips", tiff(6, 4, "<", 2))
    write("dng_reader_fuzz", "tifffile_be_single", tiff(3, 5, ">"))
    write("dng_reader_fuzz", "own_toup_2x2", own_dng(b"II", 2, 2, 46, struct.pack("<4H", 1, 2, 3, 4)))
    write("dng_reader_fuzz", "own_rggb_mm", own_dng(b"MM", 2, 1, 46, struct.pack("<I", 50) + b"\x01\x02\x03\x04"))

    write("pgm_reader_fuzz", "valid_3x2", b"P5\n3 2\n65535\n" + bytes(range(12)))
    write("pgm_reader_fuzz", "empty_image", b"P5\n0 0\n65535\n")
    write("pgm_reader_fuzz", "short_samples", b"P5\n2 2\n4095\n\x00\x01\x00")
    write("pgm_reader_fuzz", "version_blank", b"P5 \n1 1\n65535\n\x00\x01")

    empty = struct.pack("<4i", 0, 0, 0, 0)
    grey23 = struct.pack("<4i", 2, 3, CV_16UC1, 1) + struct.pack("<6H", *range(6))
    colour11 = struct.pack("<4i", 1, 1, CV_16UC3, 3) + struct.pack("<3H", 7, 8, 9)
    device = words(1) + b"cam".ljust(64, b"\0") + struct.pack("<i", 320012) + \
        b"lens".ljust(64, b"\0") + struct.pack("<i", 2)
    capture = words(2) + struct.pack("<5i", 100, 2, 8, 0, 1)
    part = words(4) + struct.pack("<6i", 0, 0, 3, 2, 10, 10)
    panel = words(8) + struct.pack("<5if", 1, 4, 0, 16, 8, 2.5)
    layer = words(16) + struct.pack("<ifi", 3, 0.5, 128)
    pattern = words(32) + struct.pack("<7i", 1, 2, 2, 1, 0, 1, 1)
    color = words(64) + struct.pack("<i", 2)
    for target in ("shot_buffer_fuzz", "shot_operations_fuzz"):
        write(target, "empty", shot(0, empty))
        write(target, "grey_color_only", shot(0x20, grey23, color))
        write(target, "all_records",
              shot(0x70, colour11, device + capture + part + panel + layer + pattern + color))
        write(target, "unknown_tag_no_end", shot(0x2, grey23, words(77) + layer, end=False))
    # A capture of cell (1, 0) of a 2 x 2 grid over a 3 x 2 partition, as a
    # measurement would add it.
    write("shot_operations_fuzz", "grid_capture",
          shot(0x2, grey23, part + words(32) + struct.pack("<7i", 1, 2, 2, 1, 0, -1, -1) + color))


if __name__ == "__main__":
    main()
