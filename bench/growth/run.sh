#!/bin/sh
# run.sh - what queries cost when the dictionary grows: makes the dictionaries, measures, prints a table and draws a
# plot.
#
#   bench/growth/run.sh BUILD_DIR DICTIONARY OUT_DIR [DOCUMENT]
#
#   BUILD_DIR   a release build folder; what is needed of it is built
#   DICTIONARY  of the whole country, as tests/national/prepare.sh makes it
#   OUT_DIR     is made; dictionaries and figures of an earlier run in it are used again: delete what is to be made
#               anew
#   DOCUMENT    a Markdown file whose table between the marks "figures" is replaced (docs/growth.md); the plot goes
#               beside it
#
# Without DOCUMENT the table is printed only, and the plot is OUT_DIR/growth.svg. GROWTH_TIMES="1 5 10 100" chooses
# the sizes; 100 times the country takes 3 GB of disk, 8 GB of memory and about five minutes. GROWTH_REPETITIONS=3 is
# how often each benchmark is repeated; medians are shown.
#
# Needs Python 3. Any failure ends the script with status 1.
set -eu

say() { echo "growth: $*" >&2; }
fail() { say "$*"; exit 1; }

case $# in 3 | 4) ;; *) sed -n '2,19s/^# \{0,1\}//p' "$0" >&2; exit 2 ;; esac
build=$1
dictionary=$2
out=$3
document=${4:-}
folder=$(dirname "$0")

command -v python3 >/dev/null || fail "python3 is needed (Debian: apt-get install python3)."
[ -r "$dictionary" ] || fail "$dictionary is not there."
ninja -C "$build" qeadrs_grow qeadrs_growth qeadrs-dic >&2

mkdir -p "$out"
# make KIND TIMES
make() {
    name=$out/$1-$2
    if [ ! -e "$name.dic" ]; then
        say "making $name.dic"
        "$build/bin/qeadrs_grow" "$1" "$2" "$dictionary" "$name.dic.new"
        "$build/bin/qeadrs-dic" check "$name.dic.new" >&2
        mv "$name.dic.new" "$name.dic"
    fi
    [ "$2" -ne 1 ] || cmp -s "$dictionary" "$name.dic" ||
        say "grown once, $dictionary is laid out otherwise: it was written by another version of the compiler"
}
# measure KIND TIMES
measure() {
    name=$out/$1-$2
    [ ! -e "$name.json" ] || return 0
    say "measuring $name.dic"
    cat "$name.dic" >/dev/null # into the page cache
    "$build/bin/qeadrs_growth" --memory "$name.dic" >"$name.memory.json"
    "$build/bin/qeadrs_growth" "$name.dic" --benchmark_min_time=0.3 \
        --benchmark_repetitions="${GROWTH_REPETITIONS:-3}" --benchmark_report_aggregates_only=true \
        --benchmark_out="$name.json.new" --benchmark_out_format=json >&2
    mv "$name.json.new" "$name.json"
}
for times in ${GROWTH_TIMES:-1 5 10 100}; do
    for kind in cities towns; do
        # Grown once, both are the country itself.
        [ "$kind-$times" != towns-1 ] || continue
        make $kind "$times"
        measure $kind "$times"
    done
done
if [ -n "$document" ]; then
    python3 "$folder/report.py" "$out" "${document%.md}.svg" "$document"
else
    python3 "$folder/report.py" "$out" "$out/growth.svg"
fi
