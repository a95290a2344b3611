#!/usr/bin/env bash
# Builds and runs every test: under a Czech and a C locale (the results must not
# depend on the machine's locale), then built with AddressSanitizer and
# UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD=${BUILD:-build}
ASAN_BUILD=${ASAN_BUILD:-build-asan}
JOBS=${JOBS:-$(nproc)}
export QT_QPA_PLATFORM=offscreen

# Runs ctest in build folder $1 with the environment settings that follow. Each run
# starts its own PostgreSQL server and stops it at the end (the fixture tests
# pg_start and pg_stop); any server it started that still runs fails the run.
# CTEST_ARGS holds more arguments for ctest.
run_ctest() {
  local build=$1 rc=0 data
  shift
  (cd "$build" && env "$@" ctest --output-on-failure ${CTEST_ARGS:-}) || rc=$?
  local started=$build/tests/pg/servers
  if [ -f "$started" ]; then
    while read -r data; do
      if pgrep -f -- "$data/db" >/dev/null; then
        echo "run-tests: a PostgreSQL test server still runs in $data" >&2
        rc=1
      fi
    done <"$started"
    rm -f "$started"
  fi
  return $rc
}

cmake -S . -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$BUILD" -j "$JOBS"

# The checks labelled "once" (formatting, API docs, install, package) run in the first
# run only.
for lang in cs_CZ.UTF-8 C; do
  echo "== tests under LANG=$lang"
  run_ctest "$BUILD" LANG=$lang LC_ALL=
  CTEST_ARGS="-LE once"
done

echo "== tests built with -fsanitize=address,undefined"
cmake -S . -B "$ASAN_BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVELMORA_SANITIZE=ON >/dev/null
cmake --build "$ASAN_BUILD" -j "$JOBS"
run_ctest "$ASAN_BUILD" UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 ASAN_OPTIONS=detect_leaks=0 \
  VELMORA_FUZZ_SEQUENCES=100000
