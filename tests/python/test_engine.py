"""The engine through Python against the C interface, its settings and results."""
import os
import subprocess
import threading

import numpy as np
import pytest

import aimhue
from conftest import TOOL_CALIBRATE, calibrate

AXES = ("X", "Y", "Z")
PRIMARIES = ("red", "green", "blue")


@pytest.mark.skipif(not os.environ.get("AIMHUE_TOOL"), reason="the tool is not built")
def test_results_are_bit_identical_to_the_c_interface(screen, planes, tmp_path):
    """The tool, a host of the C interface, calibrates the same meter files."""
    files = []
    for primary, triple in zip(PRIMARIES, screen):
        files.append(f"--{primary}")
        for axis, meter in zip(AXES, triple):
            files.append(str(tmp_path / f"{primary}_{axis}.meter"))
            meter.save(files[-1])
    result = tmp_path / "screen.aimhue"
    subprocess.run([os.environ["AIMHUE_TOOL"], *TOOL_CALIBRATE, *files, "-o", str(result)],
                   check=True, capture_output=True)
    reference = result.read_bytes()
    assert len(reference) == 169
    # Meters, interleaved planes and tuples of planes are three routes to
    # the same meter triples.
    tuples = tuple(tuple(m.values for m in triple) for triple in screen)
    for red, green, blue in (screen, planes, tuples):
        with aimhue.Engine() as engine:
            assert calibrate(engine, red, green, blue).to_bytes() == reference


def test_results_and_settings_read_back(screen):
    engine = calibrate(aimhue.Engine(ng_thresh=0.05), *screen)
    record = np.frombuffer(engine.to_bytes()[5:], dtype="<f4")
    assert np.array_equal(engine.fractions, [1, 1, 1, 1])
    assert engine.ng_limit == record[4]
    for name, offset in (("targets", 5), ("search_end", 17), ("search_start", 29)):
        block = getattr(engine, name)
        assert block.shape == (4, 3) and block.dtype == np.float32
        assert np.array_equal(block.ravel(), record[offset:offset + 12])
    assert engine.ng_thresh == np.float32(0.05)
    assert np.array_equal(engine.percent_end, np.float32([0.99, 0.99, 0.99, 0.98]))
    coverage = aimhue.coverage(*screen, engine.targets)
    assert np.float32(coverage[3] - engine.ng_thresh) == np.float32(engine.ng_limit)
    assert engine.judge(*screen) is False
    engine.ng_limit  # noqa: B018 - readable again after judge
    mask = np.zeros(screen[0][0].shape, np.uint8)
    mask[:, :10] = 1
    masked = aimhue.coverage(*screen, engine.targets, mask)
    assert masked.shape == (4,) and not np.array_equal(masked, coverage)


def test_targets_set_keep_other_results(screen):
    engine = calibrate(aimhue.Engine(), *screen)
    before = engine.to_bytes()
    targets = engine.targets
    targets[3] = (100.0, 0.31, 0.33)
    engine.targets = targets
    after = engine.to_bytes()
    assert np.array_equal(engine.targets, targets)
    assert before[:25] == after[:25] and before[73:] == after[73:]


def test_save_load_and_bytes_round_trip(screen, tmp_path):
    engine = calibrate(aimhue.Engine(), *screen)
    path = str(tmp_path / "screen.aimhue")
    engine.save(path)
    assert aimhue.Engine.load(path).to_bytes() == engine.to_bytes()
    assert aimhue.Engine.from_bytes(engine.to_bytes()).to_bytes() == engine.to_bytes()


def test_closed_engine_refuses_calls():
    engine = aimhue.Engine()
    with engine:
        pass
    assert engine.closed
    with pytest.raises(ValueError, match="closed"):
        engine.targets  # noqa: B018


def test_searches_in_two_threads_match_sequential_ones():
    screens = [aimhue.synthetic_screen(270, 480, seed=seed) for seed in (11, 12)]
    expected = [calibrate(aimhue.Engine(), *s).to_bytes() for s in screens]
    results = [None, None]

    def run(index):
        results[index] = calibrate(aimhue.Engine(), *screens[index]).to_bytes()

    threads = [threading.Thread(target=run, args=(index,)) for index in range(2)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert results == expected
