"""Engine.search through the Python module beside AimhueSearch called from C.

Usage: python_search_overhead.py C_TIMING_PROGRAM [ROWS COLS RUNS]

Both search the same synthetic screen (the same generator and seed); the C
program (the median of three searches in one process, so that it runs warm
like the Python process) and the Python runs alternate so that the ratio
holds on a busy machine. Prints the median time of each input form and its ratio to C.
"""
import statistics
import subprocess
import sys
import time

import numpy as np

import aimhue

program = sys.argv[1]
rows, cols, runs = (int(v) for v in (sys.argv[2:5] or (2160, 3840, 5)))
red, green, blue = screen = aimhue.synthetic_screen(rows, cols, seed=1)
planes = tuple(tuple(meter.values for meter in triple) for triple in screen)
interleaved = tuple(np.stack(triple, axis=-1) for triple in planes)
forms = {"Meter objects": screen, "tuples of planes": planes, "(rows, cols, 3) arrays": interleaved}
engine = aimhue.Engine(percent_end=(0.99, 0.99, 0.99, 0.98))

times = {name: [] for name in ("C AimhueSearch", *forms)}
for _ in range(runs):
    times["C AimhueSearch"].append(float(subprocess.run(
        [program, str(rows), str(cols), "1", "3"], check=True, capture_output=True,
        text=True).stdout))
    for name, form in forms.items():
        start = time.perf_counter()
        engine.search(*form)
        times[name].append(time.perf_counter() - start)

baseline = statistics.median(times["C AimhueSearch"])
print(f"search of a {cols} x {rows} screen, median of {runs}")
for name, values in times.items():
    median = statistics.median(values)
    print(f"  {name:24s} {median * 1000:8.1f} ms  {median / baseline:5.2f} x C")
