#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing need; only what is missing.
set -euo pipefail
packages=(build-essential cmake ninja-build zlib1g-dev libgtest-dev libbenchmark-dev python3 clang
          libclang-rt-14-dev libfreeimage3)
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
echo "Installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
