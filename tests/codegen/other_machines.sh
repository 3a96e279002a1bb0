#!/usr/bin/env bash
# Generated code on other machines gives the bytes that it gives on this one, by cross compilers and user-mode emulation:
# 32-bit Arm with hardware floating point and big-endian POWER; with "all" also 64-bit Arm, big-endian S/390 and more models.
# Usage: other_machines.sh PROGRAM DATA_FOLDER quick|all
# Needs gcc-arm-linux-gnueabihf, gcc-powerpc64-linux-gnu and qemu-user; for "all" also gcc-aarch64-linux-gnu and
# gcc-s390x-linux-gnu.
set -euo pipefail

program=$(realpath "$1")
data=$(realpath "$2")
selection=$3

# Compiler, emulator, option. S/390 computes float in double under -std=c99 unless told otherwise.
machines=("arm-linux-gnueabihf qemu-arm -O2" "powerpc64-linux-gnu qemu-ppc64 -O2")
if [ "$selection" = all ]; then
    machines+=("aarch64-linux-gnu qemu-aarch64 -O2" "s390x-linux-gnu qemu-s390x -fexcess-precision=fast")
fi

# Options of 'codegen', then the file of matches.
models=("--type projective --max-points 500 --samples 200:arches_panorama_500.csv"
        "--type affine --points-type uint8 --tform-type single --layout rows --variable-size --max-points 600 --method median:slice_shift_uint8.csv")
if [ "$selection" = all ]; then
    models+=("--type similarity --points-type single --variable-size --max-points 2000 --sampling cyclic --samples 500:scan_text_rotated.csv"
             "--type projective --points-type single --variable-size --max-points 2000:box_in_scene.csv"
             "--type projective --points-type int16 --variable-size --max-points 2000 --stop-at-inliers 80:arches_panorama_int16.csv"
             "--type affine --no-robust --variable-size --max-points 2000 --layout rows:scan_page_affine.csv"
             "--type similarity --method median --points-type double --variable-size --max-points 2000:street_handheld.csv")
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
strict="-std=c99 -O2 -ffp-contract=off -Wall -Wextra -Werror"
failures=0
for entry in "${models[@]}"; do
    options=${entry%%:*}
    matches=$data/${entry##*:}
    rm -rf "$work/model"
    # shellcheck disable=SC2086
    "$program" codegen $options --with-main --name model -o "$work/model" > "$work/log"
    gcc $strict "$work"/model/*.c -lm -o "$work/native"
    "$work/native" --seed 1 "$matches" > "$work/native.json"
    for machine in "${machines[@]}"; do
        read -r target emulator option <<< "$machine"
        "$target-gcc" $strict "$option" -static "$work"/model/*.c -lm -o "$work/foreign"
        "$emulator" "$work/foreign" --seed 1 "$matches" > "$work/foreign.json"
        if cmp -s "$work/native.json" "$work/foreign.json"; then
            echo "same bytes on $target: $options"
        else
            echo "DIFFERENT on $target: $options" >&2
            failures=$((failures + 1))
        fi
    done
done
[ "$failures" -eq 0 ]
