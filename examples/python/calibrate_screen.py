"""Calibrating an LED screen from Python, step by step.

Run it as a script (``/usr/bin/python3 calibrate_screen.py --out pictures``)
or cell by cell in a notebook. It simulates a screen (or loads the nine
meter files of a measured one with ``--meters``), finds the targets, the
white point and the NG limit, computes the per-LED correction and saves two
pictures: the gamut with the targets, and the correction map.
"""
import argparse
import pathlib

import matplotlib.pyplot as plt
import numpy as np

import aimhue

PRIMARIES = ("red", "green", "blue")
AXES = ("X", "Y", "Z")

# %% The measurement: three primaries, each its X, Y and Z meters.
parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
parser.add_argument("--meters", help="folder with red_X.meter ... blue_Z.meter")
parser.add_argument("--out", default=".", help="folder for the PNG pictures")
arguments = parser.parse_args()
out = pathlib.Path(arguments.out)
out.mkdir(parents=True, exist_ok=True)

if arguments.meters:
    screen = tuple(tuple(aimhue.Meter.load(f"{arguments.meters}/{p}_{a}.meter") for a in AXES)
                   for p in PRIMARIES)
else:
    screen = aimhue.synthetic_screen(180, 320, seed=3, dead=3)

# %% Dead LEDs (X = Y = Z = 0) have no chromaticity: mark and repair them.
for triple in screen:
    dead = np.logical_and.reduce([meter.values == 0 for meter in triple])
    for meter in triple:
        meter.state = np.where(dead, 1, 0).astype(np.uint8)
        meter.fix_dead_points()
print(f"{int(dead.sum())} dead LEDs repaired")

# %% Targets, white point and NG limit.
with aimhue.Engine(percent_end=(0.99, 0.99, 0.99, 0.98), ng_thresh=0.05) as engine:
    engine.search(*screen)
    engine.fractions = (1, 1, 1, 1)
    engine.calc_white(white=aimhue.daylight_xy(6504))
    ng_limit = engine.calc_ng(*screen)
    targets, start = engine.targets, engine.search_start
coverage = aimhue.coverage(*screen, targets)
print("targets (L, x, y):\n", targets)
print("coverage red, green, blue, all:", coverage, " NG limit:", ng_limit)

# %% The per-LED correction.
correction = aimhue.correct(targets, *screen)
print("luminance scale:", correction.scale, " counts:", correction.counts)

# %% Gamut: every LED's chromaticity, the means and the targets.
figure, axes = plt.subplots(figsize=(6, 6))
for name, triple in zip(PRIMARIES, screen):
    X, Y, Z = (meter.values.ravel()[::7].astype(float) for meter in triple)
    total = X + Y + Z
    axes.scatter(X / total, Y / total, s=1, color=name, alpha=0.2)
closed = [0, 1, 2, 0]
axes.plot(start[closed, 1], start[closed, 2], "k:", label="means")
axes.plot(targets[closed, 1], targets[closed, 2], "k-", label="targets")
axes.plot(*targets[3, 1:], "k+", markersize=12, label="white")
axes.set(xlabel="x", ylabel="y", title="Chromaticity of every LED", xlim=(0, 0.8), ylim=(0, 0.9))
axes.legend()
figure.savefig(out / "gamut.png", dpi=100)

# %% Correction map: the white's colour difference before and after, and the flags.
figure, axes = plt.subplots(1, 3, figsize=(15, 3.5))
limit = np.nanpercentile(correction.delta_e_before[..., 3], 99)
for axis, plane, title in ((axes[0], correction.delta_e_before[..., 3], "white ΔE00 before"),
                           (axes[1], correction.delta_e_after[..., 3], "white ΔE00 after")):
    picture = axis.imshow(plane, vmin=0, vmax=limit, cmap="magma")
    axis.set_title(title)
    figure.colorbar(picture, ax=axis)
picture = axes[2].imshow(correction.flags, cmap="tab10", interpolation="nearest")
axes[2].set_title("flags (clipped, dimmed, skipped)")
figure.colorbar(picture, ax=axes[2])
figure.savefig(out / "correction.png", dpi=100)
print("pictures in", out)
