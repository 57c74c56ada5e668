#!/usr/bin/env bash
# Times Tyx Vireo against the peer equalizer (LSP Parametric Equalizer x16 Stereo) on this
# machine: installs the peer's Debian package when it is missing and the system allows it,
# builds the plug-in and bench_peers in Release, and runs it. Without the package the
# benchmark says so and times Tyx Vireo alone.
#   scripts/bench-peers.sh [bench_peers options: --rounds R --seconds S --peer PATH]
set -euo pipefail
cd "$(dirname "$0")/.."

if ! dpkg-query -W -f='${Status}' lsp-plugins-vst 2>/dev/null | grep -q "install ok installed"; then
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  echo "bench-peers: installing lsp-plugins-vst" >&2
  if ! (export DEBIAN_FRONTEND=noninteractive; $sudo apt-get install -y -qq --no-install-recommends lsp-plugins-vst >/dev/null); then
    echo "bench-peers: lsp-plugins-vst could not be installed; the peer is skipped" >&2
  fi
fi

scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build --target TyxVireo bench_peers
exec build/bench_peers "$@"
