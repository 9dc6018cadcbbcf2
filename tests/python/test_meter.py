"""Meters: file and byte round trips, shared memory and descriptive records."""
import numpy as np
import pytest

import aimhue


def test_meter_round_trips_through_files_and_bytes(tmp_path):
    values = np.arange(12, dtype=np.float32).reshape(3, 4) / 7
    state = np.zeros((3, 4), np.uint8)
    state[1, 2] = 1
    meter = aimhue.Meter(values, color=2, type=4, state=state)
    meter.layer = {"index": 1, "linear_norms": 0.5, "value": 255}
    meter.partition = {"x": 0, "y": 0, "w": 4, "h": 3, "screen_w": 4, "screen_h": 3}
    path = str(tmp_path / "a.meter")
    meter.save(path)
    for copy in (aimhue.Meter.load(path), aimhue.Meter.from_bytes(meter.to_bytes())):
        assert np.array_equal(copy.values, values) and copy.values.dtype == np.float32
        assert np.array_equal(copy.state, state)
        assert (copy.color, copy.type, copy.shape) == (2, 4, (3, 4))
        assert copy.layer == {"index": 1, "linear_norms": 0.5, "value": 255}
        assert copy.partition == meter.partition and copy.led_panel is None
    assert open(path, "rb").read() == meter.to_bytes()


def test_values_share_memory_and_outlive_the_meter():
    meter = aimhue.Meter(np.ones((2, 3), np.float32), color=1, type=1)
    view = meter.values
    view[0, 0] = 5.0
    assert meter.values[0, 0] == 5.0
    meter.values = np.zeros((4, 4), np.float32)
    del meter
    assert view[0, 0] == 5.0 and view.shape == (2, 3)


def test_dead_points_are_repaired(screen):
    red, _, _ = aimhue.synthetic_screen(30, 40, seed=2, dead=2)
    dead = red[1].state & 1 == 1
    assert dead.sum() == 2 and np.all(red[1].values[dead] == 0)
    red[1].fix_dead_points()
    assert np.all(red[1].values[dead] > 0)


def test_descriptive_records_are_checked():
    meter = aimhue.Meter(np.ones((2, 2), np.float32))
    with pytest.raises(aimhue.Error) as failure:
        meter.led_panel = {"type": 0, "layout": 0, "subpixel_type": 0, "w": 0, "h": 4,
                           "pixel_pitch": 1.5}
    assert failure.value.status == 106 and meter.led_panel is None
    with pytest.raises(ValueError, match="layer: missing field 'value'"):
        meter.layer = {"index": 1, "linear_norms": 0.5}
