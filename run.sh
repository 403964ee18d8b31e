#!/bin/sh
# Builds the command line tool and shows it at work on the examples. Installs compiler and build tools when missing.
set -eu
cd "$(dirname "$0")"
tools/setup.sh build
mkdir -p build
if ! { cmake --preset linux-release -D ZRCLB_BUILD_TESTS=OFF -B build/run && cmake --build build/run --target zrtool; } \
    >build/run.log 2>&1; then
    cat build/run.log
    exit 1
fi
exec examples/demo.sh build/run/tools/zrtool
