#!/usr/bin/env bash
# Builds the plug-in and runs every test suite: a Release build, an AddressSanitizer +
# UBSan build of the single-threaded suites, and a ThreadSanitizer build of the threaded ones.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

jobs=$(nproc)
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j"$jobs"
ctest --test-dir build --output-on-failure

cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTYX_SANITIZE=address \
      -DTYX_BUILD_BENCH=OFF >/dev/null
cmake --build build-asan -j"$jobs"
# The hostile-host suite is threaded but runs here too: memory faults under hostile input
# matter as much as races.
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan --output-on-failure -LE threaded
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan --output-on-failure -R '^threaded_robustness$'

cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTYX_SANITIZE=thread \
      -DTYX_BUILD_BENCH=OFF >/dev/null
if compgen -G "tests/threaded/*/*.cpp" >/dev/null; then
  cmake --build build-tsan -j"$jobs" --target threaded_tests
  TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1" \
    ctest --test-dir build-tsan --output-on-failure -L threaded
fi

# The preset system's fuzzers (clang, libFuzzer, ASan + UBSan): replay the committed seed
# corpus, then fuzz each of the two targets for 25 seconds.
fuzz/run.sh 25
