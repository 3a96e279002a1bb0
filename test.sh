#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test: with GCC, under valgrind, generated code on other machines, under
# the sanitizers, with Clang, installed by pip, from packages in a bare Debian.
set -euo pipefail
cd "$(dirname "$0")"

tools/install-packages.sh test
jobs=$(nproc)

# Everything, warnings as errors.
cmake --preset ci
cmake --build --preset ci -- --quiet
ctest --preset ci -j "$jobs"

# Every access and allocation of the replayed kernels, fits and steps.
valgrind --quiet --error-exitcode=1 --leak-check=full build/ci/bin/vectors_test

# Generated code on a 32-bit and on a big-endian machine.
tests/codegen/other_machines.sh build/ci/bin/esttform examples/data quick

# The same tests under AddressSanitizer and UndefinedBehaviorSanitizer; without those of pages and packages, which only run the
# program as others do.
cmake --preset asan
cmake --build --preset asan -- --quiet
ctest --preset asan -j "$jobs" -E '^(readme|report_page|moved_prefix)_test$'

# The other compiler: the same results to the bit.
cmake --preset clang
cmake --build --preset clang --target vectors_test generated_vectors_test real_matches_test -- --quiet
build/clang/bin/vectors_test
build/clang/bin/generated_vectors_test
build/clang/bin/real_matches_test

# The Python module as pip builds it; for the interpreter that the build chose.
tests/python/pip_install_test.sh "$(sed -n 's/^Python_EXECUTABLE:.*=//p' build/ci/CMakeCache.txt)" build/ci/bin/esttform

# The Debian packages: built, examined, installed, used and removed.
tools/test-packages.sh
