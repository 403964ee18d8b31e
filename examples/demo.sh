#!/bin/sh
# A walk through the tool with a small structural model. Every step shows what it does and is checked; the first result
# that is not as expected ends the walk with exit code 1.
#
#   examples/demo.sh [TOOL [RUNNER]]     TOOL: the built zrtool, by default the first one found in build/; RUNNER: what
#                                        starts it, such as wine
set -u
here=$(cd "$(dirname "$0")" && pwd)
tool=${1-}
runner=${2-}
if [ -z "$tool" ]; then
    for found in "$here"/../build/*/tools/zrtool; do
        [ -x "$found" ] && tool=$found && break
    done
fi
[ -f "$tool" ] || { echo "demo.sh: no zrtool found, build it first or name it" >&2; exit 1; }
tool=$(cd "$(dirname "$tool")" && pwd)/$(basename "$tool")

work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
cp "$here/frame.zrenv" "$here/defaults.zrenv" "$work" || exit 1
cd "$work" || exit 1

steps=0
fail() {
    echo "   FAILED: $*" >&2
    exit 1
}
say() {
    steps=$((steps + 1))
    echo
    echo "$steps. $*"
}
# show EXPECTED-CODE WORD...: runs the tool, shows the command and what it prints, which also goes to the file "printed".
show() {
    wanted=$1
    shift
    echo "   \$ zrtool env $*"
    ${runner:+"$runner"} "$tool" env "$@" >printed 2>warned
    code=$?
    sed 's/^/     /' printed warned
    [ $code -eq "$wanted" ] || fail "exit code $code, expected $wanted"
}
printed() { [ "$(cat printed)" = "$1" ] || fail "expected '$1'"; }
same() { cmp "$1" "$2" || fail "$1 and $2 differ"; echo "   $1 and $2 are equal, byte for byte"; }

say "A model is read: its file is sound."
show 0 check frame.zrenv
printed "frame.zrenv: ok"

say "Its tree, two levels deep."
show 0 tree frame.zrenv --depth 2
grep -q '^\[Members\] (5)$' printed || fail "the section of members is not shown with its five children"

say "A value is addressed by its section and a path; a number chooses among elements of one name."
show 0 get frame.zrenv Nodes Node@3@Position
printed "9,7.4"

say "Searched anywhere in the section: nobody has to know where the bracket is."
show 0 get frame.zrenv Members Overhang --tree
printed "0.35"

say "What the model does not say comes from the defaults behind it."
show 1 get frame.zrenv Analysis Tolerance
show 0 get frame.zrenv Analysis Tolerance --defaults defaults.zrenv --origin
printed "defaults.zrenv: 1e-06"

say "What both say comes from the model."
show 0 get frame.zrenv Model Stage --defaults defaults.zrenv --origin
printed "frame.zrenv: 2"

say "A value is changed, and one is made, together with the blocks around it."
show 0 set frame.zrenv Loads Case@2@Line@Value -5.1
show 0 set frame.zrenv Results Deflection@Limit@Girder 0.045

say "The file is read again: both are there, and it is sound."
show 0 get frame.zrenv Loads Case@2@Line@Value
printed "-5.1"
show 0 tree frame.zrenv --section Results
printed "[Results] (1)
  Deflection (1)
    Limit (1)
      Girder = 0.045"
show 0 check frame.zrenv
[ ! -s warned ] || fail "a file that the tool wrote has nothing to warn of"

say "The tree goes to JSON and back; the text that comes back is the same."
show 0 convert frame.zrenv --to json -o frame.json
show 0 convert frame.json --from json --to wrapped -o again.zrenv
same frame.zrenv again.zrenv

say "Long lines can stay whole: not wrapped, and wrapped again."
show 0 convert frame.zrenv --to notwrapped -o whole.zrenv
show 0 convert whole.zrenv --to wrapped -o folded.zrenv
same frame.zrenv folded.zrenv
show 0 convert whole.zrenv --to json -o whole.json
same frame.json whole.json

say "A damaged file is refused, with the place of the fault, and stays as it is."
head -n 30 frame.zrenv >cut.zrenv
cp cut.zrenv before.zrenv
show 3 check cut.zrenv
grep -q '^cut.zrenv:[0-9][0-9]*:[0-9][0-9]*: ' warned || fail "the place of the fault is not told"
show 3 set cut.zrenv Model Title Changed
same cut.zrenv before.zrenv

echo
echo "All $steps steps went as expected."
