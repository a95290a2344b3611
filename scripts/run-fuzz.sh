#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each of them for a while
# (FUZZ_SECONDS each, default 60) on a corpus of its own kept in the build folder.
# FUZZ_TARGETS picks some of them: FUZZ_TARGETS="fuzz_numbers fuzz_dates" make fuzz
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD=${1:-build-fuzz}
SECONDS_TO_RUN=${FUZZ_SECONDS:-60}
TARGETS=${FUZZ_TARGETS:-fuzz_keys fuzz_numbers fuzz_dates fuzz_patterns fuzz_formats fuzz_lists fuzz_settings}
cmake -S . -B "$BUILD" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
      -DVELMORA_BUILD_FUZZ=ON -DVELMORA_BUILD_TESTS=OFF >/dev/null
# shellcheck disable=SC2086 # one word per target
cmake --build "$BUILD" --target $TARGETS -j "${JOBS:-$(nproc)}"
cd "$BUILD"
mkdir -p crashes
for target in $TARGETS; do
  mkdir -p "corpus/$target"
  echo "== $target for $SECONDS_TO_RUN s"
  "./fuzz/$target" -max_total_time="$SECONDS_TO_RUN" -artifact_prefix="crashes/$target-" \
                   "corpus/$target"
done
