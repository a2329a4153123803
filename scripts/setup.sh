#!/usr/bin/env bash
# Installs the Debian packages that building, testing and running Tessera need.
# Only missing packages are installed; running it twice is harmless.
set -euo pipefail

packages=(
    g++ cmake ninja-build pkg-config ccache
    qt6-base-dev qt6-tools-dev libqt6opengl6-dev libxkbcommon-dev libgl-dev
    libopenimageio-dev openimageio-tools libtbb-dev libopencolorio-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    clang libclang-rt-14-dev clang-format
    xauth xvfb
    # the farm test's one-node Slurm cluster (scripts/farm-cluster.sh)
    slurm-wlm munge iproute2
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    echo "setup: every package is installed"
    exit 0
fi

echo "setup: installing ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
    sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
