"""Camera-file readers return NumPy arrays of the file's samples."""
import struct

import numpy as np
import pytest

import aimhue

SAMPLES = np.array([[1, 2, 3], [256, 40000, 65535]], np.uint16)


def test_raw_pgm_and_dng_files_read_as_uint16(tmp_path):
    raw = tmp_path / "a.raw"
    raw.write_bytes(SAMPLES.astype("<u2").tobytes())
    pgm = tmp_path / "a.pgm"
    pgm.write_bytes(b"P5\n3 2\n65535\n" + SAMPLES.astype(">u2").tobytes())
    # A minimal little-endian DNG: header, one directory with width, length
    # and a strip offset pointing at the data's offset.
    entries = [(256, 4, 1, 3), (257, 4, 1, 2), (273, 4, 1, 8 + 2 + 3 * 12)]
    directory = struct.pack("<H", len(entries)) + b"".join(struct.pack("<HHII", *e) for e in entries)
    data_offset = 8 + len(directory) + 4
    dng = tmp_path / "a.dng"
    dng.write_bytes(b"II" + struct.pack("<HI", 42, 8) + directory + struct.pack("<I", data_offset)
                    + SAMPLES.astype("<u2").tobytes())
    for image in (aimhue.read_raw(str(raw), 2, 3), aimhue.read_pgm(str(pgm)),
                  aimhue.read_dng(str(dng))):
        assert image.dtype == np.uint16 and np.array_equal(image, SAMPLES)
    with pytest.raises(aimhue.Error, match="Check file size"):
        aimhue.read_raw(str(raw), 2, 2)
