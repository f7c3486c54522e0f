#!/usr/bin/env bash
# Configures and builds into BUILD_DIR (default build/); SANITIZE=1 adds ASan and UBSan.
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir=${BUILD_DIR:-build}
type=${BUILD_TYPE:-Release}
sanitize=OFF
[ "${SANITIZE:-0}" = "1" ] && sanitize=ON && type=${BUILD_TYPE:-RelWithDebInfo}
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE="$type" -DVOXMILL_SANITIZE="$sanitize" >/dev/null
ninja -C "$build_dir"
