#!/usr/bin/env bash
# Installs the Debian 12 packages the build, the tools and the tests need
# (only those that are missing). Runs apt-get through sudo when not root.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config binutils
  libgtest-dev libgmock-dev libbenchmark-dev
  nlohmann-json3-dev libcli11-dev libfmt-dev
  pciutils hwloc-nox strace curl
  python3 python3-venv mypy
  prometheus-cpp-dev prometheus
)
[[ "${DKSML_WITH_FUZZ:-0}" == 1 ]] && packages+=(clang libclang-rt-14-dev)
[[ "${DKSML_WITH_LINT:-0}" == 1 ]] && packages+=(clang-tidy)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

sudo=""
[[ $(id -u) -ne 0 ]] && sudo="sudo"
echo "installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
