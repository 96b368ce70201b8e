#!/usr/bin/env bash
# Installs the Debian packages the build, tests and tools need, when missing.
# As root it runs apt-get; otherwise it prints the exact command to run.
set -euo pipefail

packages=(cmake ninja-build g++ clang clang-format libclang-rt-14-dev binutils gcovr
          libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev)
if [[ "${1:-}" == "--with-arm" ]]; then
    packages+=(g++-arm-linux-gnueabihf qemu-user)
fi

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

if [[ $(id -u) -eq 0 ]]; then
    echo "installing: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq
    apt-get install -y -qq --no-install-recommends "${missing[@]}"
else
    echo "missing packages; run as root:" >&2
    echo "  apt-get update && apt-get install -y ${missing[*]}" >&2
    exit 1
fi
