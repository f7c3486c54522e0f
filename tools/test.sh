#!/usr/bin/env bash
# Set-up, build and every test (unit tests and macro tests) in one command.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/install-deps.sh
bash tools/build.sh
ctest --test-dir "${BUILD_DIR:-build}" --output-on-failure -j"$(nproc)"
