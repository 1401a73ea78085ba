#!/bin/sh
# run-examples.sh PROGRAM EXPECTED DICTIONARY - runs the examples of a page in a folder of their own, over the dictionary
# of the sample data, and fails unless they print what the page says.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp "$3" "$folder/qeadrs.dic"
printf '[General]\nDicDir=.\n' >"$folder/qe.ini"
cd "$folder"
QE_PROFILE=$folder/qe.ini
export QE_PROFILE
"$1" >"$folder/found" || { cat "$folder/found"; echo "the examples ended with status $?"; exit 1; }
diff -u "$2" "$folder/found" # "-" is what the page says
