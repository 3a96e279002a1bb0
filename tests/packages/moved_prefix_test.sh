#!/bin/sh
# Installs, moves the prefix, and uses it from the outside: no file may name the place that it was installed to or built in.
# Usage: moved_prefix_test.sh BUILD_FOLDER SOURCE_FOLDER LIBRARY_FOLDER [PYTHON PYTHON_FOLDER]
set -eu
build=$1 source=$2 libdir=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/installed" > "$work/log" || { cat "$work/log"; exit 1; } >&2
mv "$work/installed" "$work/moved"
if grep -rIF -e "$work/installed" -e "$build" -e "$source" "$work/moved"; then
    echo "these files name another folder" >&2
    exit 1
fi

unset ESTTFORM_BLOCK
PATH=$work/moved/bin:$PATH CMAKE_PREFIX_PATH=$work/moved PKG_CONFIG_PATH=$work/moved/$libdir/pkgconfig
export PATH CMAKE_PREFIX_PATH PKG_CONFIG_PATH
"$(dirname "$0")/run_consumer.sh" "$work" "$source/examples/data/arches_panorama_500.csv"
if [ -e "$work/moved/$libdir/esttform/esttform_vision.so" ]; then
    images=$source/examples/data/images
    esttform register "$images/box.png" "$images/box_in_scene.png" --seed 1 --quiet > "$work/log"
fi
if [ $# -ge 5 ]; then
    esttform estimate "$source/examples/data/arches_panorama_500.csv" --seed 1 --format json > "$work/expected"
    PYTHONPATH=$work/moved/$5 "$4" -B - "$source/examples/data/arches_panorama_500.csv" "$work/expected" << 'END'
import json, sys
import esttform
result = esttform.estimate(*esttform.read_matches(sys.argv[1]), seed=1)
assert result.tform.T.tolist() == json.load(open(sys.argv[2]))["tform"], result
END
fi
