#!/usr/bin/env bash
# Installs the Debian packages that are missing for a purpose; asks for sudo only when not root.
# Usage: tools/install-packages.sh build|test
set -euo pipefail

packages=(g++ make cmake ninja-build pkg-config
          libcli11-dev libfmt-dev nlohmann-json3-dev libcsv-dev libcairo2-dev
          python3-dev python3-numpy pybind11-dev python3-pybind11)
case "${1:-}" in
    build) ;;
    test) packages+=(binutils libgtest-dev libbenchmark-dev libeigen3-dev libopencv-dev chromium clang valgrind
                     gcc-arm-linux-gnueabihf libc6-dev-armhf-cross gcc-powerpc64-linux-gnu libc6-dev-ppc64-cross qemu-user
                     python3-pytest python3-distributed python3-pandas python3-matplotlib python3-skimage python3-opencv mypy
                     python3-pip python3-venv python3-setuptools python3-wheel python3-skbuild
                     debootstrap dpkg-dev file lintian) ;;
    *) echo "usage: $0 build|test" >&2; exit 2 ;;
esac

missing=()
for package in "${packages[@]}"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
"${sudo[@]}" apt-get update -q
"${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
