#!/bin/sh
# run.sh [BUILD_DIR [OPTION...]] - builds and runs all benchmarks beside their yardsticks: one table of ratios, one of
# memory, one of the targets, and the instructions per call when valgrind is there.
#
#   QEADRS_BENCH_DIC=FILE   dictionary to ask       } README.md beside this script says
#   QEADRS_SOURCE=DIR       tables to compile       } what stands in without them
#   QEADRS_BENCH_REPEAT=N   repetitions (default 5), in random order
#
# BUILD_DIR is a release build folder (default build/release of the repository; made when it is not there). Options go
# to the program: --benchmark_filter=zip_full measures one group.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
build=$root/build/release
if [ $# -gt 0 ]; then
    case $1 in
        -h | --help) sed -n '2,10s/^# \{0,1\}//p' "$0"; exit 0 ;;
        -*) ;;
        *) build=$1; shift ;;
    esac
fi

say() { echo "run: $*" >&2; }

# setting NAME: its value in the build folder's cache.
setting() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }

[ -f "$build/CMakeCache.txt" ] || cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >&2
[ "$(setting CMAKE_BUILD_TYPE)" = Release ] || say "$build is no release build: its figures say little"
cmake --build "$build" --target qeadrs_bench qeadrs_instructions >&2

status=0
"$build/bin/qeadrs_bench" --benchmark_repetitions="${QEADRS_BENCH_REPEAT:-5}" --benchmark_report_aggregates_only=true \
    --benchmark_enable_random_interleaving=true "$@" || status=$?
[ $status -eq 0 ] || { say "the benchmarks failed; no instructions are counted"; exit $status; }

# The same dictionary as above; of the sample counts say nothing.
data=$(setting QEADRS_TEST_DATA)
dictionary=${QEADRS_BENCH_DIC:-${data:+$data/qeadrs.dic}}
echo
if [ -z "$dictionary" ]; then
    echo "No instructions counted: neither QEADRS_BENCH_DIC nor QEADRS_TEST_DATA names a dictionary."
elif ! command -v valgrind >/dev/null; then
    echo "No instructions counted: valgrind is not there (Debian: apt-get install valgrind)."
else
    echo "Instructions per call, by callgrind:"
    echo
    sh "$root/bench/instructions.sh" "$build/bin/qeadrs_instructions" "$dictionary"
fi
