"""Writes an uncompressed 16-bit greyscale TIFF with tifffile, for the DNG
reader tests: an independent writer, not our own code.

usage: write_tiff.py OUT ROWS COLS (le|be) ROWS_PER_STRIP

ROWS_PER_STRIP 0 writes a single strip. Sample (r, c) is
((r * COLS + c) * 1031 + 7) mod 65536, so that its two bytes differ and a
swapped byte order or a flipped row shows.
"""
import sys

import numpy as np
import tifffile


def main():
    out, rows, cols, order, rows_per_strip = sys.argv[1:6]
    rows, cols, rows_per_strip = int(rows), int(cols), int(rows_per_strip)
    index = np.arange(rows * cols, dtype=np.uint64).reshape(rows, cols)
    samples = ((index * 1031 + 7) % 65536).astype(np.uint16)
    options = {"rowsperstrip": rows_per_strip} if rows_per_strip > 0 else {}
    tifffile.imwrite(out, samples, byteorder="<" if order == "le" else ">",
                     photometric="minisblack", **options)


if __name__ == "__main__":
    main()
