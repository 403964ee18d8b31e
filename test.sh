#!/bin/bash
# Builds and tests everything on a bare Debian 12: Linux (GCC, Clang, 32 bits, sanitizers) and Windows (through Wine; of 32 bits
# the library as a file), and checks format, texts and lint. Installs what is missing. The last line counts the tests of all
# runs.
#   ./test.sh                       everything
#   ./test.sh linux-release ...     only these presets, without the checks of the sources
set -u
cd "$(dirname "$0")" || exit 1
jobs=$(nproc)
presets=("$@")
[ $# -gt 0 ] || presets=(linux-release windows-release linux-asan linux-32 windows-32 linux-tsan fuzz)

passed=0
failed=0
faults=()
export WINEPREFIX="$PWD/build/wine"
trap 'stop_wine' EXIT

section() {
    printf '\n=== %s  [%dm%02ds]\n' "$*" $((SECONDS / 60)) $((SECONDS % 60))
}

# A step that went wrong counts as one failure, besides those of the tests.
fault() {
    echo "FAILED: $*"
    faults+=("$*")
    failed=$((failed + 1))
}

# Ends the Wine server of this folder's prefix, if one runs.
stop_wine() {
    [ -d "$WINEPREFIX" ] || return 0
    local server
    for server in wineserver wineserver64 /usr/lib/wine/wineserver64 /usr/lib/wine/wineserver; do
        if command -v "$server" >/dev/null 2>&1; then
            "$server" -k 2>/dev/null
            return 0
        fi
    done
}

# Wine's desktop would start with the first program that asks for it, hold that program's output open and end with the last one:
# it starts ahead of the tests and stays for all of them.
keep_wine() {
    cmake/wine.sh explorer.exe /desktop >/dev/null 2>&1 &
    cmake/wine.sh cmd /c exit >/dev/null 2>&1
    sleep 2
}

check_format() {
    find include src tests tools bench fuzz examples -name '*.h' -o -name '*.hpp' -o -name '*.c' -o -name '*.cpp' |
        xargs clang-format-14 --dry-run -Werror
}

# The compile commands of the Clang build tell the checker how each source is compiled.
check_lint() {
    find src tools -name '*.cpp' -not -path '*/win32/*' -print0 |
        xargs -0 -n 4 -P "$jobs" clang-tidy-14 -p build/linux-asan --quiet 2>/dev/null
}

# run_preset NAME: configures, builds and tests, and adds what ctest itself reports to the counts.
run_preset() {
    local preset=$1 log="build/$1.log" summary
    section "$preset: configure and build"
    if ! cmake --preset "$preset" >"$log" 2>&1; then
        cat "$log"
        fault "$preset: configure"
        return
    fi
    if ! cmake --build --preset "$preset" -j "$jobs" >"$log" 2>&1; then
        grep -vE '^\[[0-9]+/[0-9]+\] (Building|Linking|Generating)' "$log" | tail -n 60
        fault "$preset: build"
        return
    fi
    section "$preset: test"
    [ "$preset" != windows-release ] || keep_wine
    ctest --preset "$preset" -j "$jobs" 2>&1 | tee "$log"
    summary=$(grep -E '^[0-9]+% tests passed, [0-9]+ tests failed out of [0-9]+$' "$log" | tail -n 1)
    if [[ $summary =~ ([0-9]+)\ tests\ failed\ out\ of\ ([0-9]+)$ ]] && [ "${BASH_REMATCH[2]}" -gt 0 ]; then
        failed=$((failed + BASH_REMATCH[1]))
        passed=$((passed + BASH_REMATCH[2] - BASH_REMATCH[1]))
        [ "${BASH_REMATCH[1]}" -eq 0 ] || faults+=("$preset: ${BASH_REMATCH[1]} tests")
    else
        fault "$preset: no test ran"
    fi
}

section "tools"
tools/setup.sh test || { echo "0 passed, 1 failed"; exit 1; }
mkdir -p build/locale

# A locale with a decimal comma, for the tests that show that numbers do not follow it.
if [ ! -d build/locale/de_DE.UTF-8 ]; then
    localedef -i de_DE -f UTF-8 build/locale/de_DE.UTF-8 || fault "locale"
fi
export LOCPATH="$PWD/build/locale"

if [ $# -eq 0 ]; then
    section "sources: texts and format"
    tools/check_sources.sh || fault "texts"
    check_format || fault "format"
fi

for preset in "${presets[@]}"; do
    run_preset "$preset"
done

if [ $# -eq 0 ]; then
    section "sources: lint"
    check_lint || fault "lint"
fi

section "result"
for item in "${faults[@]}"; do
    echo "failed: $item"
done
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
