#!/bin/sh
# Installs what a build needs on Debian 12 and is not there yet; does nothing when all is there.
#   tools/setup.sh build    the compiler and the build tools
#   tools/setup.sh test     also the other compilers, Wine, the test library and the checkers
#   tools/setup.sh coverage what a build needs, the test library and the reporter of coverage
#   tools/setup.sh bench    what a build needs, the benchmark library and the peers
set -eu

packages="g++ cmake ninja-build"
if [ "${1:-build}" = test ]; then
    packages="$packages g++-multilib clang-14 clang-tidy-14 clang-format-14 googletest
              g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix
              gcc-mingw-w64-i686-posix lld wine wine64 git locales"
fi
if [ "${1:-build}" = coverage ]; then
    packages="$packages googletest gcovr"
fi
if [ "${1:-build}" = bench ]; then
    packages="$packages pkg-config libbenchmark-dev libpugixml-dev rapidjson-dev libboost-dev libglib2.0-dev libmuparser-dev
              libabsl-dev flex libinih-dev libsimpleini-dev python3"
fi

missing=""
for package in $packages; do
    if ! dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
        missing="$missing $package"
    fi
done
[ -n "$missing" ] || exit 0

if [ "$(id -u)" -eq 0 ]; then
    sudo=""
else
    sudo="sudo"
fi
echo "installing:$missing"
$sudo env DEBIAN_FRONTEND=noninteractive apt-get update -qq
# shellcheck disable=SC2086 # the list is meant to be split
$sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing
