"""Every documented refusal: aimhue.Error for a library status, TypeError or
ValueError naming the argument for arrays refused at the border."""
import numpy as np
import pytest

import aimhue


def meter_bytes(first=b"L", version=1):
    data = bytearray(aimhue.Meter(np.ones((1, 1), np.float32), color=1, type=1).to_bytes())
    data[0:1] = first
    data[1:5] = version.to_bytes(4, "little")
    return bytes(data)


@pytest.mark.parametrize("call, status, line", [
    (lambda d: aimhue.Meter.load(f"{d}/a.METER"), 8, "LedMeter::Load--Error :: ext filename mismatch."),
    (lambda d: aimhue.Meter.load(f"{d}/missing.meter"), 2, "LedMeter::Load -- Failed to Open file."),
    (lambda d: aimhue.Meter.from_bytes(meter_bytes(b"B")), 10, "LedMeter::FromBuffer -- Error file endianness."),
    (lambda d: aimhue.Meter.from_bytes(meter_bytes(version=2)), 3, "LedMeter::FromBuffer -- Error version in file."),
    (lambda d: aimhue.Meter(np.ones((1, 1), np.float32)).save(f"{d}/no/a.meter"), 4, "LedMeter::Save -- Failed to Open file."),
    (lambda d: aimhue.Meter().to_bytes(), 5, None),
    (lambda d: aimhue.Engine.load(f"{d}/x.aimhue"), 2, "Aimhue::Load -- Failed to Open file."),
    (lambda d: aimhue.Engine().save(f"{d}/x.txt"), 8, "Aimhue::Save--Error :: ext filename mismatch."),
    (lambda d: aimhue.Engine.from_bytes(b"L\x01\x00\x00\x00"), 3, None),
    (lambda d: aimhue.Shot.load(f"{d}/x.shot"), 2, "Shot::Load"),
    (lambda d: aimhue.read_raw(f"{d}/missing.raw", 2, 2), 2, "BImage::ReadOrvoRaw -- Open file failure"),
    (lambda d: aimhue.read_dng(f"{d}/missing.dng"), 2, "BImage::ReadRggbDng -- Failed to Open file."),
    (lambda d: aimhue.read_pgm(f"{d}/missing.pgm"), 2, None),
])
def test_library_statuses_raise_error_with_their_lines(tmp_path, call, status, line):
    with pytest.raises(aimhue.Error) as failure:
        call(tmp_path)
    error = failure.value
    assert isinstance(error, RuntimeError) and error.status == status
    assert aimhue.status_text(status) in str(error)
    if line is not None:
        assert any(text.startswith(line) for text in error.lines)
        assert line in str(error)


def test_meter_checks_of_a_search_raise_error(screen):
    red, green, blue = screen
    with pytest.raises(aimhue.Error) as failure:
        aimhue.Engine().search((red[1], red[1], red[2]), green, blue)
    assert failure.value.status == 9
    assert failure.value.lines == ("LedMeter::Check--Error in LedMeter input type same",)
    empty = np.zeros((0, 0), np.float32)
    with pytest.raises(aimhue.Error) as failure:
        aimhue.coverage((empty,) * 3, (empty,) * 3, (empty,) * 3, np.ones((4, 3), np.float32))
    assert failure.value.status == 12


def test_float64_is_refused_unless_converted(planes):
    red, green, blue = planes
    with pytest.raises(TypeError, match=r"^green: dtype float64 .* convert=True"):
        aimhue.Engine().search(red, green.astype(np.float64), blue)
    engine = aimhue.Engine()
    engine.search(red, green.astype(np.float64), blue, convert=True)
    assert engine.to_bytes() == _searched(planes).to_bytes()
    # Integer types of at most 16 bits are exact in float32 and accepted.
    counts = (red * 0 + 7).astype(np.uint16)
    aimhue.coverage(counts, counts, counts, np.ones((4, 3), np.float32))


def _searched(planes):
    engine = aimhue.Engine()
    engine.search(*planes)
    return engine


@pytest.mark.parametrize("make, error, message", [
    (lambda r: (r.astype(np.complex64), r, r), TypeError, "^red: expected a numeric array"),
    (lambda r: (r, r[..., 0], r), ValueError, r"^green: expected an array of shape \(rows, cols, 3\)"),
    (lambda r: (r, r, r[1:]), ValueError, r"^blue: shape \(89, 160\) differs"),
    (lambda r: (r, (r[..., 0], r[..., 1], r[..., 2]), r), ValueError, r"^green\[0\] \(X\): the columns must be contiguous"),
    (lambda r: (r, r, (r[..., 0].copy(),) * 2), ValueError, "^blue: expected three planes"),
    (lambda r: ((r[..., 0].copy(),) * 2 + (np.ones((3, 3, 3), np.float32),), r, r), ValueError, r"^red\[2\] \(Z\): expected a 2-D array"),
    (lambda r: (aimhue.Meter(), r, r), TypeError, "^red: a primary needs its three meters"),
])
def test_bad_primaries_are_refused_at_the_border(planes, make, error, message):
    with pytest.raises(error, match=message):
        aimhue.Engine().search(*make(planes[0]))


@pytest.mark.parametrize("targets, mask, error, message", [
    (np.ones((3, 3), np.float32), None, ValueError, r"^targets: expected shape \(4, 3\)"),
    (np.ones((4, 3)), None, TypeError, "^targets: dtype float64"),
    (np.ones((4, 3), np.float32), np.ones((90, 160), np.float32), TypeError, "^mask: expected uint8"),
    (np.ones((4, 3), np.float32), np.ones((90, 10), np.uint8), ValueError, "^mask: expected the screen's shape"),
    (np.ones((4, 3), np.float32), np.ones((160, 90), np.uint8).T, ValueError, "^mask: must be C-contiguous"),
])
def test_bad_coverage_arguments_are_refused(screen, targets, mask, error, message):
    with pytest.raises(error, match=message):
        aimhue.coverage(*screen, targets, mask)


@pytest.mark.parametrize("change, message", [
    (lambda e: setattr(e, "ng_thresh", 0.0), "^ng_thresh: must lie in"),
    (lambda e: setattr(e, "ng_thresh", float("nan")), "^ng_thresh: must lie in"),
    (lambda e: setattr(e, "percent_end", (1, 1, 1)), "^percent_end: expected four values"),
    (lambda e: setattr(e, "percent_end", (1, 1, 1, 1.5)), "^percent_end: every value"),
    (lambda e: setattr(e, "fractions", (0, 1, 1, 1)), "^fractions: every value"),
    (lambda e: e.calc_white(white=(0.31, 0.33), scale=2.0), "^scale: must lie in"),
    (lambda e: e.calc_white(white=(0.31, 0.0)), "^white: x and y"),
    (lambda e: setattr(e, "targets", np.zeros((4, 3), np.float32)), "^targets: every value"),
])
def test_settings_out_of_range_raise_value_error(change, message):
    engine = aimhue.Engine()
    before = engine.to_bytes()
    with pytest.raises(ValueError, match=message):
        change(engine)
    assert engine.to_bytes() == before
    assert engine.ng_thresh == np.float32(0.08)
    assert np.array_equal(engine.percent_end, [1, 1, 1, 1])
