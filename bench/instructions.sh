#!/bin/sh
# instructions.sh PROGRAM DICTIONARY - instructions per call, counted by callgrind, as a table.
#
# PROGRAM is bin/qeadrs_instructions of a release build. The counts do not depend on how busy the machine is. They hold
# what a caller does for a call (a record to fill, a vector to empty): a few dozen instructions.
set -eu
[ $# -eq 2 ] || { sed -n '2,5s/^# \{0,1\}//p' "$0" >&2; exit 2; }
command -v valgrind >/dev/null || { echo "instructions: valgrind is needed (Debian: apt-get install valgrind)." >&2; exit 1; }

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# One count file per kind of question, counts.1 and so on, in the order in which the program names them.
valgrind --tool=callgrind --callgrind-out-file="$folder/counts" --toggle-collect=CountedCalls --dump-after=CountedCalls \
    "$1" "$2" >"$folder/calls" 2>"$folder/log" || { cat "$folder/log" >&2; exit 1; }

echo "| function | calls | instructions per call |"
echo "|---|--:|--:|"
number=0
while read -r calls what; do
    number=$((number + 1))
    total=$(sed -n 's/^\(summary\|totals\): *//p' "$folder/counts.$number" | head -n 1)
    printf '| %s | %s | %s |\n' "$what" "$calls" $((total / calls))
done <"$folder/calls"
