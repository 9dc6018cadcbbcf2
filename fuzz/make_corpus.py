#!/usr/bin/python3
"""Writes the seed corpus of the fuzz targets into fuzz/corpus/<target>/.

Run from anywhere: /usr/bin/python3 fuzz/make_corpus.py
The seeds are small valid and nearly valid contents of each format, so that
the fuzzer starts from the structure instead of having to find it.
"""
import os
import struct

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus")
END_TAG = 0xFFFFFFFF
CV_8UC1, CV_16UC1, CV_32FC1, CV_32FC2, CV_64FC1, CV_8UC3 = 0, 2, 5, 13, 6, 16
CV_32FC4, CV_32FC9 = 29, 69


def words(*values):
    return struct.pack("<%dI" % len(values), *(v & 0xFFFFFFFF for v in values))


def block(rows, cols, type_code, channels, payload=b""):
    return struct.pack("<4i", rows, cols, type_code, channels) + payload


def floats(*values):
    return struct.pack("<%df" % len(values), *values)


def meter(color, mtype, state, pos, chroma, records=b"", end=True):
    body = b"L" + words(1, color, mtype) + state + pos + chroma + records
    return body + (words(END_TAG) if end else b"")


def correction(rows, cols, mode=0, bits=0, end=True):
    leds = rows * cols
    header = b"L" + words(1) + floats(0.75) + floats(*[0.1 * (i + 1) for i in range(12)])
    header += floats(0.999) + struct.pack("<2i", mode, bits)
    if leds == 0:
        planes = block(0, 0, 0, 0) * 5
    else:
        planes = (block(rows, cols, CV_32FC9, 9, floats(*[0.5] * (9 * leds))) +
                  block(rows, cols, CV_8UC1, 1, bytes([0, 1, 64, 8, 128, 2][:leds] * (leds // 6 + 1))[:leds]) +
                  block(rows, cols, CV_32FC1, 1, floats(*[1.0] * leds)) +
                  block(rows, cols, CV_32FC4, 4, floats(*[2.5] * (4 * leds))) +
                  block(rows, cols, CV_32FC4, 4, floats(*[0.5] * (4 * leds))))
    return header + planes + (words(END_TAG) if end else b"")


def write(target, name, data):
    folder = os.path.join(ROOT, target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data)


def main():
    empty = block(0, 0, 0, 0)
    chroma23 = block(2, 3, CV_32FC1, 1, floats(1, 2, 3, 4, 5, 6))
    layer = words(16) + struct.pack("<ifi", 7, 0.5, 128)
    partition = words(4) + struct.pack("<6i", 0, 0, 2, 3, 10, 10)
    panel = words(8) + struct.pack("<5if", 1, 2, 3, 16, 8, 2.5)
    capture = words(2) + struct.pack("<5i", 100, 2, 8, 0, 1)
    full_state = block(2, 3, CV_8UC1, 1, bytes(range(6)))
    full_pos = block(2, 3, CV_32FC2, 2, floats(*range(12)))

    write("meter_buffer_fuzz", "layer_only", meter(2, 2, empty, empty, chroma23, layer))
    write("meter_buffer_fuzz", "all_records",
          meter(1, 1, full_state, full_pos, chroma23, partition + panel + layer + capture))
    write("meter_buffer_fuzz", "unknown_tag_reordered",
          meter(4, 4, empty, empty, chroma23, capture + words(77) + layer))
    write("meter_buffer_fuzz", "no_end_tag", meter(2, 2, empty, empty, chroma23, layer, end=False))
    write("meter_buffer_fuzz", "empty_meter", meter(0, 0, empty, empty, empty))

    fresh = b"L" + words(1) + floats(1, 1, 1, 1, 0.8) + bytes(144)
    searched = b"L" + words(1) + floats(0.5, 0.5, 0.5, 1, 0.7) + floats(*[i / 8 for i in range(36)])
    write("engine_buffer_fuzz", "fresh", fresh)
    write("engine_buffer_fuzz", "searched", searched)
    write("engine_buffer_fuzz", "short", fresh[:100])
    write("engine_buffer_fuzz", "version_2", b"L" + words(2) + fresh[5:])

    write("correction_buffer_fuzz", "chroma_2x3", correction(2, 3))
    write("correction_buffer_fuzz", "brightness_12bit_1x1", correction(1, 1, mode=1, bits=12))
    write("correction_buffer_fuzz", "empty_record", correction(0, 0))
    write("correction_buffer_fuzz", "no_end_tag", correction(1, 2, end=False))

    write("matrix_block_fuzz", "u8c3_2x2", block(2, 2, CV_8UC3, 3, bytes(range(12))))
    write("matrix_block_fuzz", "f32_2x3", chroma23)
    write("matrix_block_fuzz", "u16_1x4", block(1, 4, CV_16UC1, 1, struct.pack("<4H", 1, 2, 3, 65535)))
    write("matrix_block_fuzz", "f64_1x1", block(1, 1, CV_64FC1, 1, struct.pack("<d", 0.1)))
    write("matrix_block_fuzz", "empty", empty)
    write("matrix_block_fuzz", "declared_too_large", block(1 << 20, 1 << 20, CV_32FC1, 4, b"\0" * 16))


if __name__ == "__main__":
    main()
