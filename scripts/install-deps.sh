#!/usr/bin/env bash
# Installs every Debian package that the build, the tests and the benchmarks use.
# Idempotent and quiet when everything is already present.
set -euo pipefail

packages=(
  g++ cmake ninja-build pkg-config
  libgtest-dev libgmock-dev libbenchmark-dev
  libfftw3-dev
  libsndfile1-dev
  libcairo2-dev libfreetype-dev libx11-dev libxtst-dev xvfb xauth
  xfonts-base fonts-dejavu-extra
  clang libclang-rt-14-dev
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
echo "install-deps: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
