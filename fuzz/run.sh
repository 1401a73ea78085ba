#!/bin/sh
# run.sh - searches for inputs that hurt: builds the fuzz targets with clang, libFuzzer and the address and
# undefined-behaviour sanitizers, and runs each of them over a copy of its corpus.
#
#   fuzz/run.sh SECONDS [TARGET...]    Api, Legacy, Profile, Image, Compiler, Codes, Text; without one: all of them
#
# Exit status 0: no finding; 1: a finding, which lies in build/fuzz/found; 2: wrong call, or nothing could be built.
set -eu
cd "$(dirname "$0")/.."
BUILD=build/fuzz
ALL='Api Legacy Profile Image Compiler Codes Text'

usage() {
    sed -n '2,7s/^# \{0,1\}//p' fuzz/run.sh >&2
    exit 2
}
case ${1:-} in
'' | 0* | *[!0-9]*) usage ;;
esac
SECONDS_EACH=$1
shift
# shellcheck disable=SC2086
[ $# -gt 0 ] || set -- $ALL
for target; do
    case " $ALL " in
    *" $target "*) ;;
    *) usage ;;
    esac
done

command -v clang++ >/dev/null || {
    echo "fuzz/run.sh: clang++ is not installed (Debian: apt-get install clang); the corpus alone needs none:" >&2
    echo "    ctest --preset release -R '^Fuzz'" >&2
    exit 2
}
mkdir -p "$BUILD/found" "$BUILD/corpus"
if ! {
    cmake -S . -B "$BUILD" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug -DQEADRS_FUZZ=ON \
        -DQEADRS_SANITIZE=ON -DQEADRS_BENCH=OFF "-DCMAKE_CXX_FLAGS_DEBUG=-O1 -g1" \
        -DCMAKE_CXX_FLAGS=-Wno-unknown-warning-option && cmake --build "$BUILD" --target fuzz qeprof
} >"$BUILD/build.log" 2>&1; then
    cat "$BUILD/build.log" >&2
    exit 2
fi

# value NAME FILE: the last number behind "NAME: " in the log
value() {
    sed -n "s/.*$1: *\([0-9][0-9]*\).*/\1/p" "$2" | tail -n 1
}

found=0
for target; do
    log=$BUILD/$target.log
    corpus=$BUILD/corpus/$target
    rm -rf "$corpus"
    cp -R "fuzz/corpus/$target" "$corpus"
    before=$(find "$corpus" -type f | wc -l)
    program=$BUILD/bin/fuzz_$(echo "$target" | tr '[:upper:]' '[:lower:]')
    status=0
    "$program" -max_total_time="$SECONDS_EACH" -max_len=4096 -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 \
        -dict=fuzz/tokens.dict -artifact_prefix="$BUILD/found/$target-" "$corpus" >"$log" 2>&1 || status=$?
    echo "$target: $(value stat::number_of_executed_units "$log") executions in $SECONDS_EACH s," \
        "$(value cov "$log") edges, $(value ft "$log") features," \
        "corpus $before -> $(find "$corpus" -type f | wc -l) files"
    grep -E '^(images|inputs): ' "$log" | sed 's/^/    /' || true
    [ "$status" -ne 0 ] || continue
    found=1
    echo "$target: A FINDING. $(grep -E '^(broken promise|SUMMARY|terminate)' "$log" | head -n 1)"
    sed -n 's/^.*Test unit written to /    the input: /p' "$log"
    echo "    all that was said: $log"
done
exit "$found"
