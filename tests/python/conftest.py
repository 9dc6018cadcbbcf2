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


# The same calibration by the command-line tool (dead LEDs kept, as here).
TOOL_CALIBRATE = ("calibrate", "--percent-end", "0.99,0.99,0.99,0.98", "--fraction", "1,1,1,1",
                  "--white", "0.3127,0.329", "--keep-dead")


def calibrate(engine, red, green, blue):
    """The calling order of a calibration, with the settings of TOOL_CALIBRATE."""
    engine.percent_end = (0.99, 0.99, 0.99, 0.98)
    engine.search(red, green, blue)
    engine.fractions = (1, 1, 1, 1)
    engine.calc_white(white=(0.3127, 0.329))
    engine.calc_ng(red, green, blue)
    return engine
