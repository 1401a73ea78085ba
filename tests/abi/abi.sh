#!/bin/sh
# abi.sh LIBRARY ARCHITECTURE [--update] - the binary interface of libqeadrs.so is the one that the files beside this
# script hold: every exported function and variable with its types, the layout of every record that hosts share, and
# what the platform layer has to offer.
# LIBRARY has debug information. --update writes the files from the library instead of comparing.
set -eu
library=$1
architecture=$2
folder=$(dirname "$0")
reference=$folder/libqeadrs.$architecture.abi
records=$folder/records.$architecture.txt
now=$(mktemp -d)
trap 'rm -rf "$now"' EXIT

abidw --exported-interfaces-only --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed \
    --no-parameter-names --type-id-style hash --out-file "$now/abi" "$library"
awk -f "$folder/records.awk" "$now/abi" >"$now/records"
# Functions of the C and C++ libraries have a version behind their names, those of the platform layer have none.
nm -D --undefined-only "$library" | awk '$1 == "U" && !/@/ { print $2 }' | LC_ALL=C sort >"$now/imports"
grep -q '^CAddrDic ' "$now/records" || { echo "$library has no debug information: nothing to compare"; exit 1; }

if [ "${3:-}" = --update ]; then
    mv "$now/abi" "$reference"
    mv "$now/records" "$records"
    mv "$now/imports" "$folder/imports.txt"
    echo "written: $reference, $records, $folder/imports.txt"
    exit 0
fi

status=0
diff -u "$records" "$now/records" || status=1
diff -u "$folder/imports.txt" "$now/imports" || status=1
abidiff --suppr "$folder/internal.abignore" "$reference" "$now/abi" || status=1
[ $status = 0 ] || cat <<END

The binary interface is not the one of $reference.
Was that not meant? Then programs that are compiled already would break: undo it. Was it meant? docs/abi.md says which
number of the version it changes; then write the files anew:
    sh tests/abi/abi.sh $library $architecture --update
END
exit $status
