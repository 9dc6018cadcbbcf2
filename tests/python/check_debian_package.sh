#!/usr/bin/env bash
# Builds the Debian package from a built tree, unpacks it into a scratch root
# with dpkg -x and runs the tool and `import aimhue` from there, as a user of
# the installed package would (without installing into the system).
set -euo pipefail
build_dir=$1
work=$2

rm -rf "$work"
mkdir -p "$work"
(cd "$build_dir" && cpack -G DEB -B "$work/package" >/dev/null)
debs=("$work"/package/aimhue_*.deb)
[ ${#debs[@]} -eq 1 ] || { echo "expected one package, got ${debs[*]}"; exit 1; }
deb=${debs[0]}

depends=$(dpkg-deb -f "$deb" Depends)
for needed in python3-numpy 'python3 (>=' libopencv-core; do
  [[ $depends == *"$needed"* ]] || { echo "Depends lacks $needed: $depends"; exit 1; }
done

root="$work/root"
dpkg -x "$deb" "$root"
for file in usr/include/aimhue/aimhue.h usr/share/man/man1/aimhue.1.gz usr/bin/aimhue; do
  [ -f "$root/$file" ] || { echo "not in the package: $file"; exit 1; }
done
find "$root/usr/lib" -name aimhueConfig.cmake | grep -q . || { echo "no CMake package"; exit 1; }
find "$root/usr/lib" -name aimhue.pc | grep -q . || { echo "no aimhue.pc"; exit 1; }
# The SONAME link is in the package, so the dynamic linker finds the library.
find "$root/usr/lib" -name 'libaimhue.so.[0-9]' -type l | grep -q . || { echo "no SONAME link"; exit 1; }
zcat "$root/usr/share/man/man1/aimhue.1.gz" | grep -q '^\.SH "EXIT STATUS"' ||
  { echo "man page lacks its exit statuses"; exit 1; }

# The tool and the module find the library relative to themselves.
"$root/usr/bin/aimhue" --version
"$root/usr/bin/aimhue" simulate --size 32x18 --out "$work/meters" >/dev/null
module=$(find "$root/usr/lib" -name 'aimhue.cpython-*.so')
PYTHONPATH=$(dirname "$module") /usr/bin/python3 - "$root" <<'PYTHON'
import sys
import aimhue
assert aimhue.__file__.startswith(sys.argv[1]), aimhue.__file__
engine = aimhue.Engine()
engine.search(*aimhue.synthetic_screen(18, 32))
print("import aimhue", aimhue.__version__, "from", aimhue.__file__)
PYTHON
