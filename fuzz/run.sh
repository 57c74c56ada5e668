#!/usr/bin/env bash
# Fuzzes the preset system's readers of untrusted bytes: the host's chunk (chunk_fuzzer) and
# the preset and bank images of files, stored defaults and memories (image_fuzzer). Built with
# clang, libFuzzer, AddressSanitizer and UBSan, apart from the g++ build.
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

sanitize="-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer"
cxxflags="-std=c++20 -g -O1 -I$root/src -I$root/fuzz $sanitize"
sources=("$root"/src/presets/*.cpp "$root"/src/vst/*.cpp "$root"/src/platform/UserStore.cpp
         "$root"/src/platform/AtomicFile.cpp)

mkdir -p "$out/obj"
objects=()
stale=()
for src in "${sources[@]}"; do
  rel=${src#"$root"/src/}
  obj="$out/obj/${rel//\//_}.o"
  objects+=("$obj")
  if [ ! -f "$obj" ] || [ "$src" -nt "$obj" ] || [ -n "$(find "$root/src" -name '*.h' -newer "$obj" -print -quit)" ]; then
    stale+=("$src" "$obj")
  fi
done
if [ ${#stale[@]} -gt 0 ]; then
  printf '%s\n' "${stale[@]}" |
    xargs -P 2 -n 2 sh -c "$cxx $cxxflags -fsanitize=fuzzer-no-link -c \"\$0\" -o \"\$1\""
fi

for target in chunk_fuzzer image_fuzzer; do
  "$cxx" $cxxflags -fsanitize=fuzzer "$root/fuzz/$target.cpp" "${objects[@]}" -o "$out/$target"
done

if [ "$mode" = seeds ]; then
  "$cxx" $cxxflags "$root/fuzz/make_seeds.cpp" "${objects[@]}" -o "$out/make_seeds"
  rm -rf "$root/fuzz/corpus/chunk" "$root/fuzz/corpus/images"
  "$out/make_seeds" "$root/fuzz/corpus"
  exit 0
fi

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
