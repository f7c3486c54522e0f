#!/usr/bin/env bash
# Set-up, build and a run of the example job on generated sample data.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/install-deps.sh
bash tools/build.sh
mkdir -p build/example
/usr/bin/python3 examples/make_sample.py build/example
cp examples/demo.macro build/example/
cd build/example
../voxmill -strict -macro=demo.macro demo-output
echo "The files are in $(pwd)/demo-output"
