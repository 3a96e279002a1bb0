#!/bin/sh
# Installs the module with pip, without any network, into a new virtual environment, and compares a result with the program's.
# Usage: pip_install_test.sh PYTHON PROGRAM    in the folder of the sources, which are not touched
set -eu
python=$1 program=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$python" -m venv --system-site-packages "$work/venv"
mkdir "$work/sources"
cp -r CMakeLists.txt CHANGELOG.md NOTICE README.md apps blockhost cmake host include linalg packaging python rt src "$work/sources"
rm -rf "$work/sources/python/_skbuild"
"$work/venv/bin/pip" install --no-build-isolation --no-index --no-deps "$work/sources/python" > "$work/log" 2>&1 || { cat "$work/log"; exit 1; } >&2
rm -rf "$work/sources"                                     # what is installed needs nothing of them

matches=$PWD/examples/data/scan_page_affine.csv
"$program" estimate "$matches" --seed 1 --format json > "$work/expected"
cd "$work"
unset PYTHONPATH ESTTFORM_BLOCK
venv/bin/python -B - "$matches" expected << 'END'
import json, pathlib, sys
import esttform
assert "venv" in pathlib.Path(esttform.__file__).parts, esttform.__file__
result = esttform.estimate(*esttform.read_matches(sys.argv[1]), seed=1)
assert result.tform.T.tolist() == json.load(open(sys.argv[2]))["tform"], result
END
venv/bin/pip uninstall -y -q esttform
! venv/bin/python -c "import esttform" 2> /dev/null || { echo "the module is still there" >&2; exit 1; }
echo "pip installs, uses and removes the module."
