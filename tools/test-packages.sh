#!/usr/bin/env bash
# Builds the Debian packages, examines them with lintian, and installs, uses and removes them in a bare Debian, made with
# debootstrap in a temporary folder. The bare Debian needs root; for others only the first half runs, and says so.
# Usage: tools/test-packages.sh [FOLDER_WITH_PACKAGES]    builds them in build/package when no folder is named
set -euo pipefail
cd "$(dirname "$0")/.."
packages=${1:-build/package/packages}

if [ $# -eq 0 ]; then
    cmake --preset package > /dev/null
    cmake --build --preset package -- --quiet
    rm -rf "$packages"
    (cd build/package && cpack &> cpack.log || { cat cpack.log; exit 1; })
fi

# The packages go to no archive: there is no bug to close with the first upload.
lintian --allow-root --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs "$packages"/*.deb

work=$(mktemp -d)
root=$work/root
trap 'umount -q "$root/proc" || true; rm -rf --one-file-system "$work"' EXIT
if ! { mount --bind "$work" "$work" && umount "$work"; } 2> /dev/null; then
    echo "test-packages.sh: needs root, and mounts: skipping the installation in a bare Debian" >&2
    exit 0
fi

# ---- A bare Debian of this machine's release, from where this machine has its packages
. /etc/os-release
mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' "Codename: $VERSION_CODENAME" 'Origin: Debian' | sed q)
debootstrap --variant=minbase "$VERSION_CODENAME" "$root" "$mirror" > "$work/log" || { cat "$work/log"; exit 1; } >&2
cp /etc/resolv.conf "$root/etc/"
apt-config dump | grep -E '^Acquire::(https?|Retries)' > "$root/etc/apt/apt.conf.d/90machine" || true
mount -t proc proc "$root/proc"
mkdir "$root/test"
cp -r "$packages"/*.deb tests/packages examples/data/arches_panorama_500.csv "$root/test"

fail() { echo "test-packages.sh: $1" >&2; exit 1; }
inside() {
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
        http_proxy="${http_proxy:-}" https_proxy="${https_proxy:-}" sh -euc "$1"
}
quietly() { inside "$1" > "$work/log" 2>&1 || { cat "$work/log"; fail "$1"; } >&2; }
expect() { inside "$2" > "$work/log" 2>&1; grep "$1" "$work/log" > /dev/null || { cat "$work/log"; fail "$2"; } >&2; }

# ---- The program alone, then what developers need
quietly 'apt-get update; apt-get install -y --no-install-recommends /test/esttform_*.deb'
expect '^projective transformation' 'esttform estimate /test/arches_panorama_500.csv --seed 1'
expect 'install the package esttform-vision' 'esttform register a.png b.png || true'

quietly 'apt-get install -y --no-install-recommends g++ cmake make pkg-config /test/*.deb'
inside 'mkdir /test/work; /test/packages/run_consumer.sh /test/work /test/arches_panorama_500.csv'
expect '^projective transformation' 'cd /usr/share/doc/esttform/examples/data/images; esttform register box.png box_in_scene.png --seed 1'
expect '^4 inliers, shift (10, 5)' 'python3 /usr/share/doc/esttform/examples/shift.py'

# ---- Nothing stays behind
quietly 'apt-get purge -y "*esttform*"'
left=$(inside 'find / -xdev -path /test -prune -o -path /var/cache/apt -prune -o \( -path "*esttform*" -o -name "*blockhost*" \) -print')
[ -z "$left" ] || fail "left behind after removing: $left"
echo "The packages install, work and remove cleanly."
