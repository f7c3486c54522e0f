#!/usr/bin/env bash
# Configures and builds into BUILD_DIR (default build/); SANITIZE=1 adds ASan and UBSan;
# WERROR=1 makes any compiler warning an error.
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir=${BUILD_DIR:-build}
type=${BUILD_TYPE:-Release}
sanitize=OFF
[ "${SANITIZE:-0}" = "1" ] && sanitize=ON && type=${BUILD_TYPE:-RelWithDebInfo}
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE="$type" -DVOXMILL_SANITIZE="$sanitize" \
  -DVOXMILL_WERROR="$([ "${WERROR:-0}" = "1" ] && echo ON || echo OFF)" >/dev/null
ninja -C "$build_dir"
