#!/bin/sh
# Builds the consumer with CMake and with pkg-config, as PATH, CMAKE_PREFIX_PATH, PKG_CONFIG_PATH and CXXFLAGS say, and compares
# its results, and those of generated code, with the program's.
# Usage: run_consumer.sh WORK_FOLDER MATCHES.csv
set -eu
consumer=$(dirname "$0")/consumer
work=$1 matches=$2

# Fails, with both, unless the output of the program is the same as that of the others.
compare() {
    cmp "$work/expected" "$work/result" || { echo "$1:"; cat "$work/result"; echo "expected:"; cat "$work/expected"; exit 1; } >&2
    echo "$1: as the program"
}

cmake -S "$consumer" -B "$work/consumer" > "$work/log" || { cat "$work/log"; exit 1; } >&2
cmake --build "$work/consumer" >> "$work/log" || { cat "$work/log"; exit 1; } >&2
# shellcheck disable=SC2086,SC2046  # lists of options
${CXX:-c++} -std=c++17 ${CXXFLAGS:-} "$consumer/main.cpp" -o "$work/consumer_pc" \
    $(pkg-config --cflags --libs esttform) "-Wl,-rpath,$(pkg-config --variable=libdir esttform)"

esttform estimate "$matches" --seed 1 --format csv | sed -n 's/^0,\(.*\),,$/\1/p' > "$work/expected"
[ -s "$work/expected" ] || { echo "esttform estimate: no result" >&2; exit 1; }
"$work/consumer/consumer" < "$matches" > "$work/result"
compare "find_package"
"$work/consumer_pc" < "$matches" > "$work/result"
compare "pkg-config"

esttform estimate "$matches" --seed 1 --format json > "$work/expected"
"$work/consumer/generated" --seed 1 "$matches" > "$work/result"
compare "generated code"
