#!/usr/bin/env bash
# Fuzzes the preset system's readers of untrusted bytes: the host's chunk (chunk_fuzzer) and
# the preset and bank images of files, stored defaults and memories (image_fuzzer). They are
# CMake targets of a clang build folder of their own (TYX_FUZZ=ON: libFuzzer, ASan, UBSan).
#
#   fuzz/run.sh [seconds]   build, replay the committed corpus, then fuzz each target for
#                           the given seconds (default 25; 0 only builds and replays)
#   fuzz/run.sh seeds       rewrite the committed seed corpus in fuzz/corpus/
#
# New inputs found while fuzzing go to the build folder, never into fuzz/corpus/; a crash
# leaves its input there as crash-* and fails the script.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out=${TYX_FUZZ_BUILD:-$root/build-fuzz}
mode=${1:-25}

cxx=${TYX_FUZZ_CXX:-}
if [ -z "$cxx" ]; then
  for c in clang++-14 clang++; do command -v "$c" >/dev/null && { cxx=$c; break; }; done
fi
[ -n "$cxx" ] || { echo "fuzz: clang++ not found" >&2; exit 1; }

cmake -S "$root" -B "$out" -G Ninja -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
      -DTYX_FUZZ=ON -DTYX_BUILD_TESTS=OFF -DTYX_BUILD_BENCH=OFF >/dev/null

if [ "$mode" = seeds ]; then
  cmake --build "$out" -j"$(nproc)" --target make_seeds
  rm -rf "$root/fuzz/corpus/chunk" "$root/fuzz/corpus/images"
  "$out/make_seeds" "$root/fuzz/corpus"
  exit 0
fi
cmake --build "$out" -j"$(nproc)" --target fuzzers

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
cd "$out"
for target in chunk_fuzzer image_fuzzer; do
  corpus="$root/fuzz/corpus/${target%_fuzzer}"
  [ "$target" = image_fuzzer ] && corpus="$root/fuzz/corpus/images"
  found="$out/found-${target%_fuzzer}"
  mkdir -p "$found"
  echo "fuzz: $target replays $(ls "$corpus" | wc -l) seeds"
  "./$target" -runs=0 "$corpus"
  if [ "$mode" -gt 0 ]; then
    "./$target" -max_total_time="$mode" -max_len=70000 -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
      -dict="$root/fuzz/presets.dict" "$found" "$corpus"
  fi
done
