#!/usr/bin/env bash
# Runs the installed aimhue tool as a user would: installs the build into a
# scratch prefix, then demo, simulate -> calibrate -> judge -> coverage ->
# inspect on the files it wrote, the JSON reports and the plot read back,
# and the exit status and message of bad input.
set -euo pipefail
build_dir=$1
work=$2
python=/usr/bin/python3

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build_dir" --prefix "$work/prefix" >/dev/null
aimhue="$work/prefix/bin/aimhue"
[ -x "$aimhue" ] || { echo "not installed: bin/aimhue"; exit 1; }
cd "$work"

failures=0
fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
}

# expect STATUS COMMAND...: runs the command, keeps its output in out.txt and
# err.txt and checks its exit status.
expect() {
  local wanted=$1 status=0
  shift
  "$@" >out.txt 2>err.txt || status=$?
  if [ "$status" -ne "$wanted" ]; then
    fail "exit status $status instead of $wanted: $*"
    sed 's/^/  | /' out.txt err.txt | tail -n 20
  fi
}

# contains FILE TEXT: the file holds the text.
contains() {
  grep -qF -- "$2" "$1" || { fail "$1 lacks '$2'"; sed 's/^/  | /' "$1" | tail -n 10; }
}

meters() {  # the --red/--green/--blue options for the nine files of folder $1
  local folder=$1 primary
  for primary in red green blue; do
    printf -- '--%s %s/%s_X.meter %s/%s_Y.meter %s/%s_Z.meter ' "$primary" "$folder" "$primary" \
      "$folder" "$primary" "$folder" "$primary"
  done
}

# --- help and usage ---------------------------------------------------------
expect 0 "$aimhue" --help
contains out.txt "Exit status"
for command in demo simulate calibrate judge coverage inspect correct; do
  expect 0 "$aimhue" "$command" --help
  contains out.txt "Examples:"
  contains out.txt "Exit status:"
done
expect 0 "$aimhue" calibrate --help
contains out.txt "--percent-end"
contains out.txt "1,1,1,1"      # defaults are shown
expect 2 "$aimhue"
expect 2 "$aimhue" frobnicate
expect 2 "$aimhue" demo --size 0x10 --out demo
contains err.txt "--size"
expect 2 "$aimhue" demo --size 32x16 --white D66 --out demo
contains err.txt "--white"
expect 2 "$aimhue" demo --size 32x16 --scale 1.5 --out demo
expect 2 "$aimhue" demo --size 32x16 --fraction 1,1,nan,1 --out demo
contains err.txt "value 3 of 4, 'nan', is not a number"
expect 2 "$aimhue" demo --size 32x16 --percent-end 1,1,1,1e-40 --out demo
contains err.txt "value 4 of 4, '1e-40', is out of range"

# --- demo ---------------------------------------------------------------------
expect 0 "$aimhue" demo --size 64x48 --seed 3 --out demo
contains out.txt "Targets"
contains out.txt "Dead LEDs"
contains out.txt "NG limit"
contains out.txt "Per-LED correction"
contains out.txt "White luminance uniformity"
for file in result.aimhue report.json gamut.png correction.corr correction_map.png; do
  [ -s "demo/$file" ] || fail "demo did not write $file"
done

# The JSON report read back: the targets and the NG limit are the stored
# 32-bit values bit for bit, the coverage is a fraction, the dead LEDs were
# repaired, and the PNG has the plot's size.
"$python" - demo/report.json demo/result.aimhue demo/gamut.png <<'PY' || fail "demo report check"
import json, math, struct, sys
report = json.load(open(sys.argv[1]))
stored = open(sys.argv[2], "rb").read()
assert len(stored) == 169 and stored[0:1] == b"L", "result file"
floats = struct.unpack("<41f", stored[5:])
as_bits = lambda v: struct.pack("<f", v)
names = ["red", "green", "blue", "white"]
for block, offset in (("targets", 5), ("searchEnd", 17), ("searchStart", 29)):
    for i, name in enumerate(names):
        for j, key in enumerate("Lxy"):
            value = report[block][name][key]
            if block != "targets" and (name == "white" or (block == "searchEnd" and key == "L")):
                continue  # slots the search leaves without a result
            assert as_bits(value) == as_bits(floats[offset + 3 * i + j]), (block, name, key)
assert as_bits(report["ngLimit"]) == as_bits(floats[4]), "ngLimit"
for key in ("red", "green", "blue", "all"):
    assert 0.0 <= report["coverage"][key] <= 1.0, key
for name in names:
    for key in "Lxy":
        assert math.isfinite(report["targets"][name][key]), (name, key)
assert report["targets"]["white"]["x"] == 0.3127 and report["targets"]["white"]["y"] == 0.329
assert report["deadLeds"]["repaired"] is True
assert sum(report["deadLeds"]["found"].values()) > 0, "the demo screen has dead LEDs"
assert sum(report["deadLeds"]["remaining"].values()) == 0
assert report["ng"] is False
assert report["screen"] == {"cols": 64, "rows": 48, "leds": 3072}
png = open(sys.argv[3], "rb").read()
assert png[:8] == b"\x89PNG\r\n\x1a\n", "PNG signature"
assert struct.unpack(">II", png[16:24]) == (1640, 1000), "PNG size"
PY

# Dead LEDs kept: the library succeeds with NaN targets, the tool says so
# and writes nothing.
expect 3 "$aimhue" demo --size 32x24 --keep-dead --out kept
contains out.txt "kept as measured"
contains err.txt "not finite"
if grep -qF implausible err.txt; then fail "dead LEDs were counted as implausible"; fi
[ -z "$(ls -A kept)" ] || fail "a refused demo wrote $(ls -A kept)"

# --- simulate -> calibrate -> judge -> coverage -> inspect -------------------
expect 0 "$aimhue" simulate --size 48x32 --seed 5 --out meters
for primary in red green blue; do
  for component in X Y Z; do
    [ -s "meters/${primary}_${component}.meter" ] || fail "simulate: ${primary}_${component}.meter"
  done
done
# shellcheck disable=SC2046
expect 0 "$aimhue" calibrate $(meters meters) -o screen.aimhue --json calibrate.json \
  --plot plot.png --white 0.30,0.32 --fraction 0.8,0.8,0.8,1 --percent-end 0.99,0.99,0.99,1
contains out.txt "pass"
[ -s screen.aimhue ] && [ -s calibrate.json ] && [ -s plot.png ] || fail "calibrate outputs"
if grep -qF implausible err.txt; then fail "a simulated screen was called implausible"; fi
# Implausible measured values are counted and reported per primary: red LED 0
# reads X = Y = Z = 3e38 (their sum overflows), red LED 1 a negative Y; the
# search then gives targets that are not finite.
cp -r meters odd-meters
"$python" - odd-meters <<'PY' || fail "patching the meters"
import struct, sys
for axis, values in (("X", (3e38, 1)), ("Y", (3e38, -2)), ("Z", (3e38, 1))):
    name = f"{sys.argv[1]}/red_{axis}.meter"
    data = bytearray(open(name, "rb").read())
    at = 13  # after the header: state, positions, values as (rows, cols, type, channels, samples)
    for plane in ("state", "positions", "values"):
        rows, cols, kind, channels = struct.unpack_from("<4i", data, at)
        at += 16
        if plane != "values":
            at += rows * cols * channels * (1, 1, 2, 2, 4, 4, 8, 2)[kind % 8]
    assert (rows, cols, kind, channels) == (32, 48, 5, 1), "value plane header"
    struct.pack_into("<2f", data, at, *values)
    open(name, "wb").write(data)
PY
# shellcheck disable=SC2046
expect 3 "$aimhue" calibrate $(meters odd-meters) -o odd.aimhue
contains err.txt "aimhue: warning: red: implausible measured values in 1 of 1536 LEDs (luminance Y \
not a positive number) and 2 of 1536 LEDs (chromaticity outside the spectral locus); check the meter files"
if grep -qE "warning: (green|blue)" err.txt; then fail "green or blue called implausible"; fi
# shellcheck disable=SC2046
expect 0 "$aimhue" judge screen.aimhue $(meters meters) --json judge.json
contains out.txt "pass"
"$python" - calibrate.json judge.json <<'PY' || fail "judge report check"
import json, sys
calibrated, judged = (json.load(open(name)) for name in sys.argv[1:3])
assert judged["ng"] is False
assert judged["ngLimit"] == calibrated["ngLimit"]
assert judged["targets"] == calibrated["targets"]
assert calibrated["settings"]["white"]["x"] == 0.3
PY

# A screen with a third of its LEDs pulled away in one primary fails the
# limit of the first screen.
expect 0 "$aimhue" simulate --size 48x32 --seed 6 --outliers 600 --out bad-meters
# shellcheck disable=SC2046
expect 0 "$aimhue" calibrate $(meters meters) -o strict.aimhue --ng-thresh 0.01
# shellcheck disable=SC2046
expect 1 "$aimhue" judge strict.aimhue $(meters bad-meters)
contains out.txt "NG"

# A mask that keeps the left half of the screen, and one of the wrong size.
"$python" - <<'PY'
import struct, zlib
def png(name, width, height, value_of):
    raw = b"".join(b"\x00" + bytes(value_of(x) for x in range(width)) for _ in range(height))
    chunk = lambda kind, data: (struct.pack(">I", len(data)) + kind + data
                                + struct.pack(">I", zlib.crc32(kind + data)))
    with open(name, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0))
                + chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b""))
png("left.png", 48, 32, lambda x: 255 if x < 24 else 0)
png("wrong.png", 40, 32, lambda x: 255)
PY
# shellcheck disable=SC2046
expect 0 "$aimhue" coverage --targets screen.aimhue --mask left.png $(meters meters) --json left.json
contains out.txt "Coverage"
# shellcheck disable=SC2046
expect 3 "$aimhue" coverage --targets screen.aimhue --mask wrong.png $(meters meters)
contains err.txt "status 9"

expect 0 "$aimhue" inspect screen.aimhue meters/red_X.meter
contains out.txt "NG limit"
contains out.txt "CIE_X"
# The library's log level comes from AIMHUE_LOG: a known level takes effect,
# "off" silences even errors, an unknown one is reported and ignored.
expect 0 env AIMHUE_LOG=info "$aimhue" inspect screen.aimhue meters/red_X.meter
contains err.txt "[info] LedMeter::Load"
expect 3 env AIMHUE_LOG=off "$aimhue" inspect missing.aimhue
if grep -qF "[error]" err.txt; then fail "AIMHUE_LOG=off still logs errors"; fi
expect 3 env AIMHUE_LOG=loud "$aimhue" inspect missing.aimhue
contains err.txt "AIMHUE_LOG holds an unknown level"
contains err.txt "[error] Aimhue::Load -- Failed to Open file."
expect 0 "$aimhue" inspect --json screen.aimhue meters/green_Y.meter
"$python" - out.txt calibrate.json <<'PY' || fail "inspect JSON check"
import json, sys
files = json.load(open(sys.argv[1]))
calibrated = json.load(open(sys.argv[2]))
results, meter = files
assert results["kind"] == "aimhue" and results["ngLimit"] == calibrated["ngLimit"]
assert results["targets"] == calibrated["targets"]
assert meter["kind"] == "meter" and meter["typeName"] == "CIE_Y"
assert meter["chroma"]["rows"] == 32 and meter["chroma"]["cols"] == 48
assert meter["partition"]["screen_w"] == 48
PY

# --- correct ------------------------------------------------------------------
# shellcheck disable=SC2046
expect 0 "$aimhue" correct screen.aimhue $(meters meters) -o screen.corr --bits 12 \
  --json correct.json --panels panels.csv --panel 16x16 --worst 4 --map map.png --export planes
contains out.txt "Scale k"
contains out.txt "CIEDE2000"
contains out.txt "Worst LEDs"
[ -s screen.corr ] && [ -s map.png ] || fail "correct outputs"
leftovers() { ls -A . planes | grep -E '^\.[^/]+\.[A-Za-z0-9]{6}$'; }
leftovers && fail "correct left temporary files behind"
worst_led=$("$python" -c 'import json; w = json.load(open("correct.json"))["worst"][0]; print("%d,%d" % (w["row"], w["col"]))')
expect 0 "$aimhue" inspect --json --led "$worst_led" screen.corr
cp out.txt worst_led.json
# The report's figures agree with each other; the exported planes read back
# as 16-bit integers whose row sums never pass full scale, and at the worst
# LED they hold its saved coefficients, gain and flags as inspect reads them
# from the .corr file; the panel table covers the screen; the worst list is
# in order.
"$python" - correct.json panels.csv planes worst_led.json <<'PY' || fail "correct outputs check"
import csv, json, os, struct, sys
report = json.load(open(sys.argv[1]))
counts = report["counts"]
assert counts["corrected"] + counts["dead"] + counts["notFinite"] + counts["singular"] == 48 * 32
assert 0 < report["scale"] <= 1 and report["settings"]["bits"] == 12
after = report["deltaE2000"]["after"]["white"]
assert after["p50"] <= after["p95"] <= after["p99"] <= after["max"]
assert after["p95"] < report["deltaE2000"]["before"]["white"]["p95"]
assert report["whiteLuminanceUniformity"]["after"]["relativeStdDev"] < \
    report["whiteLuminanceUniformity"]["before"]["relativeStdDev"]
worst = report["worst"]
assert len(worst) == 4 and worst[0]["after"]["white"] == after["max"]
assert all(a["after"]["white"] >= b["after"]["white"] for a, b in zip(worst, worst[1:]))
rows = list(csv.DictReader(open(sys.argv[2])))
assert len(rows) == 3 * 2, len(rows)
assert sum(int(r["corrected"]) for r in rows) == counts["corrected"]
assert sum(int(r["dimmed"]) for r in rows) == counts["dimmed"]

def tiff(name):  # an uncompressed single-strip-or-more 16-bit TIFF, little-endian
    data = open(os.path.join(sys.argv[3], name), "rb").read()
    assert data[:4] == b"II*\x00", name
    (offset,) = struct.unpack_from("<I", data, 4)
    (count,) = struct.unpack_from("<H", data, offset)
    tags = {}
    for i in range(count):
        tag, kind, n, value = struct.unpack_from("<HHII", data, offset + 2 + 12 * i)
        tags[tag] = (kind, n, value)
    width, height = tags[256][2], tags[257][2]
    assert tags[258][2] == 16 and tags[259][2] == 1, (name, tags[258], tags[259])
    kind, n, value = tags[273]
    strips = [value] if n == 1 else struct.unpack_from("<%dI" % n, data, value)
    pixels = b"".join(data[s:s + 2 * width * height] for s in strips)[:2 * width * height]
    return width, height, struct.unpack("<%dH" % (width * height), pixels)

names = ["red", "green", "blue"]
planes = {(e, i): tiff("coefficient_%s_for_%s.tiff" % (e, i)) for e in names for i in names}
assert all(p[:2] == (48, 32) for p in planes.values())
for e in names:
    for led in range(48 * 32):
        assert sum(planes[(e, i)][2][led] for i in names) <= 4095
assert tiff("gain.tiff")[:2] == (48, 32) and tiff("flags.tiff")[:2] == (48, 32)
led = json.load(open(sys.argv[4]))[0]
at = led["row"] * 48 + led["col"]
for k, e in enumerate(names):
    for j, i in enumerate(names):
        assert planes[(e, i)][2][at] == round(led["coefficients"][k][j] * 4095), (e, i)
assert tiff("gain.tiff")[2][at] == round(led["gain"] * 4095), led["gain"]
assert tiff("flags.tiff")[2][at] == led["flagBits"] and led["row"] < 32
PY
expect 0 "$aimhue" inspect --led "$worst_led" screen.corr
contains out.txt "red emitter"
contains out.txt "$("$python" -c 'import json; print(json.load(open("correct.json"))["worst"][0]["flags"])')"
expect 0 "$aimhue" inspect screen.corr
contains out.txt "correction (.corr): 48 x 32 LEDs"
expect 2 "$aimhue" inspect --led 32,0 screen.corr
contains err.txt "outside the screen"
expect 2 "$aimhue" inspect --led 1,1 screen.aimhue
expect 2 "$aimhue" inspect --led -1,2 screen.corr
contains err.txt "--led"

# Refusals: each names its cause, and no file already on disk changes.
cp screen.corr before.corr
cp map.png before.png
unchanged() { cmp -s screen.corr before.corr && cmp -s map.png before.png || fail "an output was overwritten"; }
# shellcheck disable=SC2046
expect 2 "$aimhue" correct screen.aimhue $(meters meters) -o screen.corr --quantile 0
# shellcheck disable=SC2046
expect 2 "$aimhue" correct screen.aimhue $(meters meters) -o screen.corr --bits 7
# shellcheck disable=SC2046
expect 2 "$aimhue" correct screen.aimhue $(meters meters) -o screen.meter
expect 0 "$aimhue" simulate --size 40x32 --seed 5 --out small-meters
# shellcheck disable=SC2046
expect 3 "$aimhue" correct screen.aimhue $(meters meters | sed 's#meters/blue_Z#small-meters/blue_Z#') \
  -o screen.corr --map map.png
contains err.txt "not of one screen"
unchanged
expect 0 "$aimhue" simulate --size 1x1 --dead 1 --outliers 0 --out dead-meters
# shellcheck disable=SC2046
expect 3 "$aimhue" correct screen.aimhue $(meters dead-meters) -o screen.corr --map map.png
contains err.txt "no LED left to correct"
unchanged
# Result files with hand-made targets: red beyond every LED, and three
# primaries on one line.
"$python" - <<'PY'
import struct
def result(name, targets):
    floats = [1, 1, 1, 1, 0.5] + targets + [0.0] * 24
    open(name, "wb").write(b"L" + struct.pack("<I", 1) + struct.pack("<41f", *floats))
white = [900, 0.3127, 0.329]
result("far.aimhue", [250, 0.72, 0.27, 600, 0.17, 0.72, 60, 0.14, 0.06] + white)
result("line.aimhue", [250, 0.6, 0.3, 600, 0.4, 0.3, 60, 0.2, 0.3] + white)
PY
# shellcheck disable=SC2046
expect 3 "$aimhue" correct far.aimhue $(meters meters) -o screen.corr --map map.png
contains err.txt "red target lies outside the gamut of every LED"
unchanged
# shellcheck disable=SC2046
expect 3 "$aimhue" correct line.aimhue $(meters meters) -o screen.corr --map map.png
contains err.txt "degenerate triangle"
unchanged
# A write that fails last (the correction file's folder is missing) leaves
# the map that was ready before it out of place too.
# shellcheck disable=SC2046
expect 4 "$aimhue" correct screen.aimhue $(meters meters) -o missing/screen.corr --map map.png
contains err.txt "missing/screen.corr"
unchanged
leftovers && fail "a failed correct left temporary files behind"
head -c 300 screen.corr >cut.corr
expect 3 "$aimhue" inspect cut.corr
contains err.txt "status 3"

# --- white points on the daylight locus, standard gamuts --------------------
expect 0 "$aimhue" demo --size 32x24 --white 6500K --out kelvin
"$python" - kelvin/report.json <<'PY' || fail "6500K white"
import json, sys
white = json.load(open(sys.argv[1]))["settings"]["white"]
assert white["name"] == "6500K", white
assert abs(white["x"] - 0.3128) < 2e-4 and abs(white["y"] - 0.3292) < 2e-4, white
assert (white["x"], white["y"]) != (0.3127, 0.329)  # not D65
PY
expect 2 "$aimhue" demo --size 32x24 --white 3999K --out kelvin
contains err.txt "4000K to 25000K"
expect 0 "$aimhue" calibrate --help
contains out.txt "6500K is not D65"
# shellcheck disable=SC2046
expect 0 "$aimhue" calibrate $(meters meters) -o rec709.aimhue --gamut rec709 --json rec709.json
contains out.txt "can show the whole Rec.709 gamut"
"$python" - rec709.json <<'PY' || fail "--gamut rec709"
import json, sys
report = json.load(open(sys.argv[1]))
targets = report["targets"]
assert (targets["red"]["x"], targets["red"]["y"]) == (0.64, 0.33)
assert (targets["green"]["x"], targets["blue"]["y"]) == (0.3, 0.06)
assert report["settings"]["white"]["name"] == "D65" and report["settings"]["gamut"] == "Rec.709"
assert 0.0 <= report["coverage"]["all"] <= 1.0
PY
# shellcheck disable=SC2046
expect 2 "$aimhue" calibrate $(meters meters) --gamut srgb

# --- bad and missing files -----------------------------------------------------
printf 'B\001\000\000\000' >bad.meter
expect 3 "$aimhue" inspect bad.meter meters/red_X.meter
contains err.txt "bad.meter"
contains err.txt "status 10"
contains out.txt "red_X.meter"    # the good file after the bad one is still shown
expect 3 "$aimhue" inspect missing.aimhue
contains err.txt "status 2"
# A capture of 2 x 3 16-bit samples with a colour record, written by hand.
"$python" - <<'PY'
import struct
samples = struct.pack("<6H", 0, 1, 2, 3, 4, 65535)
shot = (b"L" + struct.pack("<II", 1, 2) + struct.pack("<4i", 2, 3, 2, 1) + samples
        + struct.pack("<ii", 64, 2) + struct.pack("<I", 0xFFFFFFFF))
open("capture.shot", "wb").write(shot)
PY
expect 0 "$aimhue" inspect capture.shot
contains out.txt "CIE_Y"
contains out.txt "2 x 3 CV_16UC1: min 0, max 65535, mean 10924.167"
contains out.txt "color: 2"
printf 'L\002\000\000\000' >old.shot
expect 3 "$aimhue" inspect old.shot
contains err.txt "status 3"
expect 2 "$aimhue" inspect notes.txt
# shellcheck disable=SC2046
expect 3 "$aimhue" calibrate $(meters meters | sed 's#meters/blue_Z#meters/none_Z#')
contains err.txt "none_Z.meter"
contains err.txt "status 2"
# shellcheck disable=SC2046
# shellcheck disable=SC2046
expect 2 "$aimhue" calibrate $(meters meters) -o result.txt
contains err.txt ".aimhue"
# shellcheck disable=SC2046
expect 3 "$aimhue" judge bad.aimhue $(meters meters)
expect 2 "$aimhue" judge screen.aimhue --red meters/red_X.meter

# --- outputs are whole or absent ---------------------------------------------
fingerprint() { cat screen.aimhue calibrate.json plot.png | cksum; }
before=$(fingerprint)
refused() {  # STATUS TEXT ARGS...: the command fails and leaves the outputs as they were
  local status=$1 text=$2
  shift 2
  expect "$status" "$aimhue" "$@"
  contains err.txt "$text"
  [ "$(fingerprint)" = "$before" ] || fail "a refused command changed an output: $*"
  [ -z "$(find . -maxdepth 1 -name '.*.??????')" ] || fail "temporary files left: $*"
}
outputs=(-o screen.aimhue --json calibrate.json --plot plot.png)
# Meters in the wrong places: swapped X and Y, another primary's files.
swapped=(--red meters/red_Y.meter meters/red_X.meter meters/red_Z.meter
  --green meters/green_X.meter meters/green_Y.meter meters/green_Z.meter
  --blue meters/blue_X.meter meters/blue_Y.meter meters/blue_Z.meter)
refused 3 "given as the red primary's X meter but holds the red primary's Y meter" \
  calibrate "${swapped[@]}" "${outputs[@]}"
# shellcheck disable=SC2046
refused 3 "holds the green primary's X meter" \
  calibrate $(meters meters | sed 's#meters/red_#meters/green_#g') "${outputs[@]}"
# Meters of zeros (every LED dead) give NaN targets.
expect 0 "$aimhue" simulate --size 8x6 --dead 48 --out zero-meters
# shellcheck disable=SC2046
refused 3 "not finite" calibrate $(meters zero-meters) "${outputs[@]}"
# An output that cannot be written keeps the others from being replaced.
# shellcheck disable=SC2046
refused 4 "missing/report.json" calibrate $(meters meters) -o screen.aimhue --plot plot.png \
  --json missing/report.json
# A full disk: every write is checked (a link to /dev/full is written through).
ln -s /dev/full full.aimhue
# shellcheck disable=SC2046
refused 4 "full.aimhue" calibrate $(meters meters) -o full.aimhue --json calibrate.json
# shellcheck disable=SC2046
refused 4 "/dev/full" calibrate $(meters meters) -o screen.aimhue --json /dev/full
# shellcheck disable=SC2046
refused 4 "/dev/full" judge screen.aimhue $(meters meters) --json /dev/full
mkdir full-meters
ln -s /dev/full full-meters/green_Y.meter
expect 4 "$aimhue" simulate --size 8x6 --out full-meters
contains err.txt "green_Y.meter"
[ "$(ls full-meters)" = "green_Y.meter" ] || fail "a failed simulate left meter files"

# Two runs writing the same files at once each leave whole files.
for round in 1 2 3; do
  # shellcheck disable=SC2046
  "$aimhue" calibrate $(meters meters) -o same.aimhue --json same.json --plot same.png \
    >/dev/null 2>&1 &
  # shellcheck disable=SC2046
  "$aimhue" calibrate $(meters bad-meters) -o same.aimhue --json same.json --plot same.png \
    >/dev/null 2>&1 || fail "concurrent calibrate $round"
  wait $! || fail "concurrent calibrate $round"
  "$python" - same.aimhue same.json same.png <<'PY' || fail "concurrent outputs $round"
import json, struct, sys, zlib
assert len(open(sys.argv[1], "rb").read()) == 169
json.load(open(sys.argv[2]))
png = open(sys.argv[3], "rb").read()
at, data = 8, b""
while True:  # every chunk's CRC holds and the image data inflates whole
    length, kind = struct.unpack(">I4s", png[at:at + 8])
    body = png[at + 8:at + 8 + length]
    assert zlib.crc32(kind + body) == struct.unpack(">I", png[at + 8 + length:at + 12 + length])[0]
    data += body if kind == b"IDAT" else b""
    at += 12 + length
    if kind == b"IEND":
        break
assert at == len(png) and len(zlib.decompress(data)) == 1000 * (1 + 3 * 1640)
PY
done

# --- stored results that cannot judge ----------------------------------------
# patch FILE OFFSET VALUE: a copy of screen.aimhue with one float replaced.
patch() {
  "$python" - screen.aimhue "$1" "$2" "$3" <<'PY'
import struct, sys
data = bytearray(open(sys.argv[1], "rb").read())
struct.pack_into("<f", data, int(sys.argv[3]), float(sys.argv[4]))
open(sys.argv[2], "wb").write(data)
PY
}
patch nan-limit.aimhue 21 nan
patch nan-target.aimhue 29 nan   # the red target's x
patch negative-limit.aimhue 21 -0.05
# shellcheck disable=SC2046
expect 3 "$aimhue" judge nan-limit.aimhue $(meters meters)
contains err.txt "NG limit that is not finite"
# shellcheck disable=SC2046
expect 3 "$aimhue" judge nan-target.aimhue $(meters meters)
contains err.txt "targets that are not finite"
# shellcheck disable=SC2046
expect 3 "$aimhue" coverage --targets nan-target.aimhue $(meters meters)
# shellcheck disable=SC2046
expect 0 "$aimhue" judge negative-limit.aimhue $(meters bad-meters)
contains err.txt "is negative: every measurement passes it"

# --- strings that are not text -------------------------------------------------
# A capture whose device name holds a control sequence and bytes that are not
# UTF-8.
"$python" - <<'PY'
import struct
device = (b"cam\x1b[2J\xff\xfe" + b"\0" * 64)[:64] + struct.pack("<i", 1) + b"lens".ljust(64, b"\0") \
    + struct.pack("<i", 2)
shot = (b"L" + struct.pack("<II", 1, 2) + struct.pack("<4i", 1, 1, 2, 1) + struct.pack("<H", 7)
        + struct.pack("<i", 1) + device + struct.pack("<I", 0xFFFFFFFF))
open("device.shot", "wb").write(shot)
PY
expect 0 "$aimhue" inspect --json device.shot screen.aimhue
"$python" - out.txt <<'PY' || fail "inspect JSON of a name that is not UTF-8"
import json, sys
shot, results = json.load(open(sys.argv[1], encoding="utf-8"))
assert shot["device"]["id"] == "cam\x1b[2J\ufffd\ufffd", shot["device"]["id"]
assert results["kind"] == "aimhue"
PY
expect 0 "$aimhue" inspect device.shot
contains out.txt 'id cam\x1b[2J\xff\xfe'
if grep -q $'\x1b' out.txt; then fail "inspect copied a control byte to the terminal"; fi

if [ "$failures" -ne 0 ]; then
  echo "$failures check(s) failed"
  exit 1
fi
echo "all tool checks passed"
