#!/usr/bin/python3
"""Writes the hostile inputs kept under tests/data/ (run from anywhere with
/usr/bin/python3 tests/data/make_bad_inputs.py). Each name says what is wrong
with the file; tests load every one of them and expect a clean refusal, of
the file or of the operations run on what it loads. The shots also seed the
fuzz corpora of the shot targets.
"""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))
FUZZ_CORPUS = os.path.join(HERE, "..", "..", "fuzz", "corpus")
SHOT_FUZZ_TARGETS = ("shot_buffer_fuzz", "shot_operations_fuzz")
END_TAG = 0xFFFFFFFF
CV_16UC5, CV_16FC3 = 2 + (4 << 3), 7 + (2 << 3)
CAM_RGB, CIE_Y = 0x70, 0x2


def words(*values):
    return struct.pack("<%dI" % len(values), *(v & 0xFFFFFFFF for v in values))


def block(rows, cols, type_code, channels, payload=b""):
    return struct.pack("<4i", rows, cols, type_code, channels) + payload


EMPTY = block(0, 0, 0, 0)
CHROMA = block(1, 2, 5, 1, struct.pack("<2f", 1.0, 2.0))


def meter(*parts):
    return b"L" + words(1, 2, 2) + b"".join(parts)


def shot(shot_type, image, records=b""):
    return b"L" + words(1, shot_type) + image + records + words(END_TAG)


COLOR = words(64, 2)


FILES = {
    # A chroma plane declared as 65536 x 65536 floats with 8 bytes behind it.
    "meter_chroma_declares_16gib.meter":
        meter(EMPTY, EMPTY, block(65536, 65536, 5, 1, b"\0" * 8), words(END_TAG)),
    # Rows and cols at the int limit and the most channels: the product
    # overflows 64 bits if it is formed naively.
    "meter_chroma_size_overflows_64_bits.meter":
        meter(EMPTY, EMPTY, block(0x7FFFFFFF, 0x7FFFFFFF, 6, 512), words(END_TAG)),
    "meter_without_end_tag.meter": meter(EMPTY, EMPTY, CHROMA, words(16, 1, 0, 1)),
    # Thousands of unknown tags and then the end of the data.
    "meter_endless_unknown_tags.meter": meter(EMPTY, EMPTY, CHROMA, words(*([77] * 4096))),
    "meter_layer_record_cut_short.meter": meter(EMPTY, EMPTY, CHROMA, words(16, 1)),
    "meter_pos_with_one_channel.meter":
        meter(EMPTY, block(1, 2, 5, 1, struct.pack("<2f", 0, 0)), CHROMA, words(END_TAG)),
    "meter_chroma_with_zero_channels.meter":
        meter(EMPTY, EMPTY, block(1, 2, 5, 0, b"\0" * 8), words(END_TAG)),
    "engine_image_cut_at_100_bytes.aimhue":
        (b"L" + words(1) + struct.pack("<5f", 1, 1, 1, 1, 0.8) + b"\0" * 144)[:100],
    "engine_mark_only.aimhue": b"L",
}

SHOTS = {
    # Loads with status 0; rotating nothing used to throw.
    "shot_with_empty_image.shot": shot(CIE_Y, EMPTY, COLOR),
    # 3 x 3 samples of ten bytes each, which OpenCV cannot transpose.
    "shot_16bit_image_with_five_channels.shot":
        shot(CIE_Y, block(3, 3, CV_16UC5, 5, bytes(range(90))), COLOR),
    # Half floats, which OpenCV's subtraction and channel mixing do not
    # handle (they crashed rather than threw).
    "shot_half_float_colour_image.shot":
        shot(CAM_RGB, block(2, 2, CV_16FC3, 3, struct.pack("<12e", *range(12))), COLOR),
}


def write(folder, name, data):
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data)


def main():
    for name, data in FILES.items():
        write(HERE, name, data)
    for name, data in SHOTS.items():
        write(HERE, name, data)
        for target in SHOT_FUZZ_TARGETS:
            write(os.path.join(FUZZ_CORPUS, target), name[:-len(".shot")], data)


if __name__ == "__main__":
    main()
