#!/bin/sh
# keep.sh - keeps of a long run's corpus what reaches code that the inputs with names of their own do not: replaces
# the files reached-... in fuzz/corpus by the fewest of build/fuzz/corpus that do.
#
#   fuzz/run.sh 600 Image && fuzz/keep.sh Image
set -eu
cd "$(dirname "$0")/.."
BUILD=build/fuzz
[ $# -gt 0 ] || { sed -n '5s/^# *//p' fuzz/keep.sh >&2; exit 2; }
for target; do
    program=$BUILD/bin/fuzz_$(echo "$target" | tr '[:upper:]' '[:lower:]')
    merged=$BUILD/merged/$target
    rm -rf "$merged"
    mkdir -p "$merged"
    find "fuzz/corpus/$target" -type f ! -name 'reached-*' -exec cp {} "$merged" \;
    # Edges, not how often each of them was taken.
    "$program" -set_cover_merge=1 -use_counters=0 "$merged" "$BUILD/corpus/$target" >"$BUILD/$target-merge.log" 2>&1
    rm -f "fuzz/corpus/$target"/reached-*
    kept=0
    for file in "$merged"/*; do
        [ ! -e "fuzz/corpus/$target/$(basename "$file")" ] || continue
        kept=$((kept + 1))
        cp "$file" "fuzz/corpus/$target/reached-$(printf '%03d' "$kept")"
    done
    echo "$target: $kept kept"
done
