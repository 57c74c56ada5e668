#!/usr/bin/env bash
# Sets up a fresh machine, builds the plug-in and the offline host, and renders the built-in
# test signal through the plug-in into vireo-demo.wav, loading it as a DAW does.
# Arguments go to vireo-render (default: the factory preset "Mid Boost"); e.g.
#   scripts/demo.sh --preset "Bottom End"
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j"$(nproc)" --target TyxVireo vireo-render
if [ $# -eq 0 ]; then
  set -- --preset "Mid Boost"
fi
build/vireo-render "$@"
