#!/usr/bin/env bash
# Builds everything, writes the "server" virtual host into the build folder
# and runs dksmi on it: a realistic multi-GPU host without any hardware.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build --target dksmi dkvhost_cli
build/vhost/dkvhost write server build/host-server
DK_SMI_FSROOT="$PWD/build/host-server" build/tools/dksmi/dksmi "$@"
