#!/usr/bin/env bash
# From a fresh Debian 12 to a result: installs what is missing, builds, estimates the transformation between two
# photographs from their bundled matches, and leaves a picture.
set -euo pipefail
cd "$(dirname "$0")"

tools/install-packages.sh build
cmake --preset release >/dev/null
cmake --build --preset release -- --quiet

mkdir -p demo_output
matches=examples/data/arches_panorama.csv
picture=demo_output/arches_panorama.png
echo
echo "\$ esttform estimate $matches --seed 1 --plot $picture"
build/release/bin/esttform estimate "$matches" --seed 1 --plot "$picture"
echo
echo "The matches, right and wrong, with the transformation: $picture"

# The same from Python, by the interpreter that the module is built for.
python=$(sed -n 's/^Python_EXECUTABLE:.*=//p' build/release/CMakeCache.txt)
echo
echo "\$ PYTHONPATH=build/release/python python3 examples/shift.py"
PYTHONPATH=build/release/python "$python" examples/shift.py
