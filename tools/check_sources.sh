#!/bin/sh
# Checks of the sources as text: ASCII only, no tabs or blanks at line ends, includes that never point upwards, and tests
# for the operating system only where they belong. Prints each fault with its place; ends with 1 when there was one.
cd "$(dirname "$0")/.." || exit 1

# fault TITLE < list of places. At the end of a pipe it runs in a process of its own, so a file remembers the fault.
faults=$(mktemp) || exit 1
trap 'rm -f "$faults"' EXIT
fault() {
    places=$(cat)
    if [ -n "$places" ]; then
        printf '%s:\n%s\n' "$1" "$places" | tee -a "$faults"
    fi
}

# Every text of the project; data that is kept byte for byte is left out.
texts=$(find . -path ./build -prune -o -path ./.git -prune -o -path ./tests/golden -prune -o -path ./fuzz/corpus -prune \
    -o -path ./examples -prune -o -type f -print)
sources=$(find include src tests tools bench fuzz examples -name '*.h' -o -name '*.hpp' -o -name '*.c' -o -name '*.cpp')
[ -n "$sources" ] || { echo "no sources found"; exit 1; }

echo "$texts" | LC_ALL=C xargs grep -nP '[^\x00-\x7F]' | fault "not ASCII"
echo "$texts" | LC_ALL=C xargs grep -lP '\r' | fault "carriage returns"
echo "$sources" | xargs grep -nP '\t|[ \t]+$' | fault "tabs or blanks at the end of a line"

upwards() {
    [ ! -d "src/$1" ] || grep -rnE "#include [<\"](\.\./)*($2)/" "src/$1" | fault "src/$1 includes from a floor above"
}
upwards platform "frame|files|env|settings|expressions|desktop|library"
upwards frame "files|env|settings|expressions|desktop|library"
upwards files "env|settings|expressions|desktop|library"
upwards env "files|settings|expressions|desktop|library"
upwards settings "expressions|desktop|library"
upwards expressions "desktop|library"
upwards desktop "expressions|library"

system='_WIN32|_WIN64|__linux__|__unix__|_MSC_VER|__MINGW32__|<windows\.h>|<unistd\.h>|<sys/|<pthread\.h>'
find src -path src/platform -prune -o -type f -print | xargs grep -nE "$system" | fault "operating system outside src/platform"
grep -rnE "$system" src/platform/*.h src/platform/*.cpp | fault "operating system in the portable parts of the seam"

[ ! -s "$faults" ]
