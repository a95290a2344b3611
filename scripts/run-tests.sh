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

cmake -S . -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$BUILD" -j "$JOBS"

for lang in cs_CZ.UTF-8 C; do
  echo "== tests under LANG=$lang"
  (cd "$BUILD" && LANG=$lang LC_ALL= ctest --output-on-failure)
done

echo "== tests built with -fsanitize=address,undefined"
cmake -S . -B "$ASAN_BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVELMORA_SANITIZE=ON >/dev/null
cmake --build "$ASAN_BUILD" -j "$JOBS"
(cd "$ASAN_BUILD" && UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
   ASAN_OPTIONS=detect_leaks=0 VELMORA_FUZZ_SEQUENCES=40000 ctest --output-on-failure)
