#!/bin/sh
# calls.sh NM LIST... -- OBJECT... - fails unless the examples in OBJECT call everything that the libraries export, name by
# name: a call that no page shows at work is named.
set -eu
LC_ALL=C
export LC_ALL
nm=$1
shift
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

while [ "$1" != -- ]; do
    c++filt <"$1" >>"$folder/exported"
    shift
done
shift
"$nm" -u "$@" >"$folder/symbols"
awk 'NF == 2 { print $2 }' "$folder/symbols" | c++filt | sort -u >"$folder/called"
sort -u "$folder/exported" | comm -23 - "$folder/called" >"$folder/missing"
[ -s "$folder/exported" ] || { echo "no list of exported names"; exit 1; }
[ ! -s "$folder/missing" ] || { echo "No example calls:"; cat "$folder/missing"; exit 1; }
