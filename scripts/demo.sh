#!/usr/bin/env bash
# Sets up a fresh machine, builds the plug-in and shows it through a host's eyes.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j"$(nproc)" --target TyxVireo vireo-inspect
build/vireo-inspect build/TyxVireo.so
