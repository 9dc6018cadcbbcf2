#!/usr/bin/env bash
# One entry point for a fresh machine or a warm checkout:
#   ./run.sh demo   install what is missing, build the library and the tool
#                   only (not the tests), run the demo
#   ./run.sh test   install what is missing, build and run every test:
#                   release build, address/undefined sanitizer build,
#                   thread sanitizer build of the concurrency tests, and a
#                   bounded libFuzzer run of every fuzz target
#   ./run.sh build  install what is missing and build the release tree only
#   ./run.sh bench  build and run the benchmarks (not part of the tests)
# Builds live under build/; a second run only rebuilds what changed.
# AIMHUE_FUZZ_SECONDS sets the time of each fuzz target (default 60).
set -euo pipefail
cd "$(dirname "$0")"

jobs=$(nproc 2>/dev/null || echo 2)
packages=(
  build-essential cmake pkg-config ccache
  libopencv-dev libomp-dev
  libgtest-dev libbenchmark-dev
  libcli11-dev nlohmann-json3-dev
  clang libclang-rt-14-dev
  python3-tifffile python3-numpy
  pybind11-dev python3-dev python3-pytest python3-matplotlib help2man
)

log() { printf '== %s\n' "$*"; }

# The release tree also builds the Python module (the sanitizer trees do not:
# a sanitized module cannot be loaded by an unsanitized python3).
release_options=(-DAIMHUE_BUILD_PYTHON=ON)

# Makes `/usr/bin/python3 -c "import aimhue"` find the module of
# build/release: a .pth file in the user's site-packages names that folder
# (no root needed; delete the file to undo).
link_python_module() {
  local site
  site=$(/usr/bin/python3 -m site --user-site)
  mkdir -p "$site"
  printf '%s\n' "$PWD/build/release/python" >"$site/aimhue-build.pth"
  log "python3 finds aimhue through $site/aimhue-build.pth"
}

setup() {
  local missing=() package
  for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
      missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  log "installing ${missing[*]}"
  local sudo=()
  [ "$(id -u)" -eq 0 ] || sudo=(sudo)
  "${sudo[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}" >/dev/null
}

# Compiler cache: repeated builds, also from another clone of the same
# sources, reuse earlier object files (paths are taken relative to the clone).
export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=true

# configure NAME [cmake options...]: configure build/NAME.
configure() {
  local name=$1
  shift
  local werror=OFF launcher=()
  [ "${CI:-}" = true ] && werror=ON
  command -v ccache >/dev/null 2>&1 && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  cmake -S . -B "build/$name" -DCMAKE_BUILD_TYPE=Release -DAIMHUE_WERROR=$werror \
    "${launcher[@]}" "$@" >/dev/null
}

# build NAME [cmake options...]: configure and build all of build/NAME.
build() {
  log "building build/$1"
  configure "$@"
  cmake --build "build/$1" -j "$jobs"
}

run_tests() {
  local name=$1
  shift
  log "testing build/$name"
  ctest --test-dir "build/$name" --output-on-failure -j "$jobs" "$@"
}

# Builds every fuzz target with clang and runs each for a bounded time on a
# scratch copy of its seed corpus; any crash, leak or sanitizer report fails.
fuzz() {
  if ! ls fuzz/*_fuzz.cpp >/dev/null 2>&1; then
    log "no fuzz targets"
    return 0
  fi
  log "building build/fuzz"
  CC=clang CXX=clang++ configure fuzz -DAIMHUE_SANITIZE=address,undefined \
    -DAIMHUE_BUILD_FUZZERS=ON -DAIMHUE_BUILD_TESTS=OFF -DAIMHUE_BUILD_EXAMPLES=OFF \
    -DAIMHUE_BUILD_TOOLS=OFF
  cmake --build build/fuzz -j "$jobs"
  local seconds=${AIMHUE_FUZZ_SECONDS:-60} failed=0 source name pids=() names=()
  rm -rf build/fuzz/runs
  mkdir -p build/fuzz/runs
  for source in fuzz/*_fuzz.cpp; do
    name=$(basename "$source" .cpp)
    mkdir -p "build/fuzz/runs/$name/corpus"
    [ -d "fuzz/corpus/$name" ] && cp -r "fuzz/corpus/$name/." "build/fuzz/runs/$name/corpus/"
    log "fuzzing $name for ${seconds}s"
    (cd "build/fuzz/runs/$name" &&
      ../../fuzz/"$name" -max_total_time="$seconds" -rss_limit_mb=2048 -print_final_stats=1 \
        corpus >log.txt 2>&1) &
    pids+=($!)
    names+=("$name")
    # Two targets at a time: one per core.
    if [ ${#pids[@]} -ge "$jobs" ]; then
      wait "${pids[0]}" || failed=1
      pids=("${pids[@]:1}")
    fi
  done
  for pid in "${pids[@]}"; do wait "$pid" || failed=1; done
  for name in "${names[@]}"; do
    local runs
    runs=$(grep -E '^stat::number_of_executed_units' "build/fuzz/runs/$name/log.txt" | awk '{print $2}')
    if grep -qE 'ERROR: (AddressSanitizer|LeakSanitizer|libFuzzer)|runtime error:|SUMMARY: ' \
      "build/fuzz/runs/$name/log.txt"; then
      failed=1
      log "fuzz target $name FAILED:"
      tail -n 40 "build/fuzz/runs/$name/log.txt"
    else
      log "fuzz target $name: ${runs:-?} executions, no findings"
    fi
  done
  return "$failed"
}

case "${1:-}" in
  demo)
    setup
    # Only what the demo runs; the same tree, so that "test" later builds
    # just the rest.
    log "building the library and the tool in build/release"
    configure release "${release_options[@]}"
    cmake --build build/release -j "$jobs" --target aimhue_tool aimhue_python
    link_python_module
    log "demo"
    ./build/release/tools/aimhue/aimhue demo --size 320x180 --out build/demo
    ;;
  test)
    setup
    build release "${release_options[@]}"
    run_tests release
    build sanitize -DAIMHUE_SANITIZE=address,undefined -DAIMHUE_BUILD_EXAMPLES=OFF
    run_tests sanitize
    log "building build/tsan"
    configure tsan -DAIMHUE_SANITIZE=thread -DAIMHUE_BUILD_EXAMPLES=OFF
    cmake --build build/tsan -j "$jobs" --target aimhue_concurrency_tests
    run_tests tsan -L concurrency
    fuzz
    log "all tests passed"
    ;;
  build)
    setup
    build release "${release_options[@]}"
    ;;
  bench)
    setup
    build bench -DAIMHUE_BUILD_BENCHMARKS=ON -DAIMHUE_BUILD_TESTS=OFF
    for program in build/bench/bench/*_bench; do
      [ -x "$program" ] && "$program"
    done
    ;;
  *)
    echo "usage: ./run.sh demo|test|build|bench" >&2
    exit 2
    ;;
esac
