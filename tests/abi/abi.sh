#!/bin/sh
# abi.sh LIBRARY ARCHITECTURE [--update] - the binary interface of libqeadrs.so, or libqetext.so, is the one that the files
# beside this script hold: every exported function and variable with its types, the layout of every record that hosts
# share, and what the platform layer has to offer.
# LIBRARY has debug information. --update writes the files from the library instead of comparing.
set -eu
library=$(realpath "$1")
architecture=$2
update=${3:-}
cd "$(dirname "$0")/../.." # abidw knows the headers by the names that the debug information has, from here
folder=tests/abi
name=$(basename "$library")
name=${name%%.so*}
reference=$folder/$name.$architecture.abi
# Of libqetext only what its headers define is looked at: the rest is behind pointers that no host follows.
case $name in
libqeadrs)
    records=$folder/records.$architecture.txt
    ours='CAddrDic|tag[A-Z]+|GA_[A-Z]+'
    set --
    ;;
*)
    records=$folder/records-$name.$architecture.txt
    ours='CAddressText|CTextStep|tagQETEXT[A-Z]+'
    set -- --drop-private-types --header-file text/qetext.h --header-file text/AddressText.h
    ;;
esac
now=$(mktemp -d)
trap 'rm -rf "$now"' EXIT

abidw "$@" --exported-interfaces-only --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed \
    --no-parameter-names --type-id-style hash --out-file "$now/abi" "$library"
awk -v ours="$ours" -f "$folder/records.awk" "$now/abi" >"$now/records"
# Functions of the C and C++ libraries have a version behind their names, those of the platform layer have none. Those that
# libqetext takes out of libqeadrs are promised by that.
nm -D --undefined-only "$library" | awk '$1 == "U" && !/@/ { print $2 }' | LC_ALL=C sort >"$now/imports"
[ "$name" = libqeadrs ] || rm "$now/imports"
grep -qE "^($ours) " "$now/records" || { echo "$library has no debug information: nothing to compare"; exit 1; }

if [ "$update" = --update ]; then
    mv "$now/abi" "$reference"
    mv "$now/records" "$records"
    [ ! -f "$now/imports" ] || mv "$now/imports" "$folder/imports.txt"
    echo "written: $reference, $records"
    exit 0
fi

status=0
diff -u "$records" "$now/records" || status=1
[ ! -f "$now/imports" ] || diff -u "$folder/imports.txt" "$now/imports" || status=1
abidiff --suppr "$folder/internal.abignore" "$reference" "$now/abi" || status=1
[ $status = 0 ] || cat <<END

The binary interface is not the one of $reference.
Was that not meant? Then programs that are compiled already would break: undo it. Was it meant? docs/abi.md says which
number of the version it changes; then write the files anew:
    sh tests/abi/abi.sh $library $architecture --update
END
exit $status
