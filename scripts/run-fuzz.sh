#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs the key-sequence fuzzer for a while
# (FUZZ_SECONDS, default 300) on a corpus kept in the build folder.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD=${1:-build-fuzz}
SECONDS_TO_RUN=${FUZZ_SECONDS:-300}
cmake -S . -B "$BUILD" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
      -DVELMORA_BUILD_FUZZ=ON -DVELMORA_BUILD_TESTS=OFF >/dev/null
cmake --build "$BUILD" --target fuzz_keys -j "${JOBS:-$(nproc)}"
mkdir -p "$BUILD/corpus" "$BUILD/crashes"
cd "$BUILD"
exec ./fuzz/fuzz_keys -max_total_time="$SECONDS_TO_RUN" -artifact_prefix=crashes/ corpus
