"""Shared fixtures of the Python module's tests."""
import numpy as np
import pytest

import aimhue

ROWS, COLS = 90, 160


@pytest.fixture(scope="session")
def screen():
    """A small synthetic screen: (red, green, blue), each three Meters X, Y, Z."""
    return aimhue.synthetic_screen(ROWS, COLS, seed=5)


@pytest.fixture(scope="session")
def planes(screen):
    """The same screen as float32 (rows, cols, 3) arrays of X, Y, Z."""
    return tuple(np.stack([m.values for m in triple], axis=-1) for triple in screen)


def calibrate(engine, red, green, blue):
    """The calling order of a calibration, with the settings of c_reference_engine."""
    engine.percent_end = (0.99, 0.99, 0.99, 0.98)
    engine.search(red, green, blue)
    engine.fractions = (1, 1, 1, 1)
    engine.calc_white(white=(0.3127, 0.329))
    engine.calc_ng(red, green, blue)
    return engine
