#!/usr/bin/env bash
# Generated code on other machines gives the bytes that it gives on this one: 32-bit Arm with hardware floating point, 64-bit
# Arm, and big-endian S/390, by cross compilers and user-mode emulation.
# Usage: other_machines.sh PROGRAM DATA_FOLDER quick|all
set -euo pipefail

program=$(realpath "$1")
data=$(realpath "$2")
selection=$3

machines=(arm-linux-gnueabihf:qemu-arm aarch64-linux-gnu:qemu-aarch64 s390x-linux-gnu:qemu-s390x)

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
        "${machine%%:*}-gcc" $strict -static "$work"/model/*.c -lm -o "$work/foreign"
        "${machine##*:}" "$work/foreign" --seed 1 "$matches" > "$work/foreign.json"
        if cmp -s "$work/native.json" "$work/foreign.json"; then
            echo "same bytes on ${machine%%:*}: $options"
        else
            echo "DIFFERENT on ${machine%%:*}: $options" >&2
            failures=$((failures + 1))
        fi
    done
done
[ "$failures" -eq 0 ]
