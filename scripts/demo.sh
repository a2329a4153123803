#!/usr/bin/env bash
# Sets up a fresh Debian machine, builds Tessera and runs its main job:
# tessera-run on its defaults (keys the built-in demo plate; outputs in out/).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target tessera-run ZNtesseraUi
exec build/release/bin/tessera-run "$@"
