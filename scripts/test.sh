#!/usr/bin/env bash
# Sets up a fresh Debian machine, builds Tessera and runs the whole test suite.
#   scripts/test.sh            the release build and its tests
#   scripts/test.sh asan       the same under AddressSanitizer and UBSan
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-release}
scripts/setup.sh
cmake --preset "$preset"
cmake --build --preset "$preset" -j "$(nproc)"
ctest --preset "$preset" -j "$(nproc)"
