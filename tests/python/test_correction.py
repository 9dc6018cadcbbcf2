"""The per-LED correction's arrays, and the colour maths on NumPy arrays."""
import numpy as np
import pytest

import aimhue
from conftest import calibrate


def tristimulus(points):
    """Columns X, Y, Z of target points (L, x, y), one column per point."""
    L, x, y = points[:, 0].astype(float), points[:, 1].astype(float), points[:, 2].astype(float)
    return np.stack([x * L / y, L, (1 - x - y) * L / y])


def test_coefficients_mix_each_led_to_the_scaled_targets(screen):
    targets = calibrate(aimhue.Engine(), *screen).targets
    correction = aimhue.correct(targets, *screen)
    rows, cols = screen[0][0].shape
    assert correction.coeff.shape == (rows, cols, 3, 3)
    assert correction.delta_e_after.shape == (rows, cols, 4) and correction.gain.shape == (rows, cols)
    # M[r, c] has the measured X, Y, Z of emitter k in column k; M C = k T
    # holds for every LED that was neither clipped nor dimmed.
    measured = np.stack([np.stack([m.values for m in triple], -1) for triple in screen], -1)
    shown = measured.astype(float) @ correction.coeff.astype(float)
    plain = correction.flags == 0
    assert plain.sum() > 0.9 * rows * cols
    expected = correction.scale * tristimulus(targets[:3])
    assert np.allclose(shown[plain], expected, rtol=1e-4)
    assert np.allclose(correction.targets[:, 0], targets[:, 0] * correction.scale, rtol=1e-6)
    again = aimhue.Correction.from_bytes(correction.to_bytes())
    assert np.array_equal(again.coeff, correction.coeff) and again.counts == correction.counts


@pytest.mark.parametrize("settings, message", [
    ({"mode": "hue"}, "^mode: expected"), ({"bits": 7}, "^bits: must be"),
    ({"quantile": 0.0}, "^quantile: must lie"),
])
def test_correction_settings_are_checked(screen, settings, message):
    with pytest.raises(ValueError, match=message):
        aimhue.correct(np.ones((4, 3), np.float32), *screen, **settings)


def test_unusable_targets_raise_error(screen):
    with pytest.raises(aimhue.Error) as failure:
        aimhue.correct(np.ones((4, 3), np.float32), *screen)
    assert failure.value.status == 9
    assert failure.value.lines[0].startswith("CalcCorrection--Error :: ")


def test_colour_maths_against_published_values_and_broadcasting():
    # Sharma, Wu and Dalal (2005), table 1, pairs 1, 7 and 17.
    lab1 = np.array([[50, 2.6772, -79.7751], [50, 0, 0], [50, 2.5, 0]])
    lab2 = np.array([[50, 0, -82.7485], [50, -1, 2], [73, 25, -18]])
    assert np.allclose(aimhue.delta_e_2000(lab1, lab2), [2.0425, 2.3669, 27.1492], atol=5e-5)
    assert aimhue.delta_e_2000(lab1[:, None], lab2[None]).shape == (3, 3)
    white = np.array([95.047, 100.0, 108.883])
    assert np.allclose(aimhue.xyz_to_lab(white, white), [100, 0, 0])
    assert aimhue.xyz_to_lab(np.ones((2, 5, 3)), white).shape == (2, 5, 3)
    xy = aimhue.daylight_xy([6504, 3000])
    assert np.allclose(xy[0], [0.3127, 0.3290], atol=2e-4) and np.all(np.isnan(xy[1]))
    with pytest.raises(ValueError, match="^lab2: the last axis must hold 3 values"):
        aimhue.delta_e_2000(lab1, lab2[:, :2])
