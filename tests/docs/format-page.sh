#!/bin/sh
# format-page.sh QEADRS_DIC PAGE - the command on the page of the file format, run as it stands there on the rows that stand
# there, writes the bytes that stand there.
set -eu
PATH=$(dirname "$1"):$PATH
page=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

awk '
/^## / { example = $0 == "## A whole dictionary, byte by byte" }
!example { next }
/^```csv / { file = $2; next }
/^```sh$/ { file = "command"; next }
/^```$/ { file = ""; next }
file != "" { print >file }
/^\| 0x/ {
    split($0, cell, "|")
    gsub(/[ `]/, "", cell[3])
    for (i = 1; i < length(cell[3]); i += 2) print tolower(substr(cell[3], i, 2)) >"wanted"
}' "$page"
sh -e ./command >output || { cat output; exit 1; }
od -An -v -tx1 qeadrs.dic | tr -s ' ' '\n' | sed '/^$/d' >found
cmp wanted found
