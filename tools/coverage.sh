#!/bin/sh
# How much of src/env and src/frame their own tests and the seeds of the data store's fuzz targets run: prints lines and
# branches of every source, what is missing, and the sums. Ends with 1 below 95 % of the lines or 85 % of the branches.
# A branch that only an exception takes, out of any call that could throw, is no branch of the source and is not counted.
set -eu
cd "$(dirname "$0")/.."
tools/setup.sh coverage

build=build/linux-coverage
names=$(for source in tests/env/*_test.cpp tests/frame/*_test.cpp fuzz/env_*_fuzz.cpp; do basename "$source" .cpp; done)
cmake --preset linux-coverage >/dev/null
# shellcheck disable=SC2086 # the list is meant to be split
cmake --build --preset linux-coverage -j "$(nproc)" --target $names
find $build -name '*.gcda' -delete
ctest --test-dir $build --output-on-failure -j "$(nproc)" -R "^($(echo "$names" | paste -sd '|'))\$"

report() {
    gcovr --root . --filter 'src/(env|frame)/' --exclude-throw-branches --exclude-unreachable-branches "$@" $build/src
}
report --branches
report --print-summary --fail-under-line 95 --fail-under-branch 85
