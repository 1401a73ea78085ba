#!/bin/sh
# instructions.sh PROGRAM DICTIONARY - instructions per call of the address text functions, counted by callgrind.
#
# PROGRAM is bin/qeadrs_instructions of a release build. The counts do not depend on how busy the machine is.
set -eu
[ $# -eq 2 ] || { sed -n '2,4s/^# \{0,1\}//p' "$0" >&2; exit 2; }
command -v valgrind >/dev/null || { echo "instructions: valgrind is needed (Debian: apt-get install valgrind)." >&2; exit 1; }

out=$(mktemp)
trap 'rm -f "$out" "$out.calls" "$out.log"' EXIT

# count FUNCTION SYMBOL
count() {
    valgrind --tool=callgrind --callgrind-out-file="$out" --toggle-collect="$2" "$program" "$dictionary" "$1" \
        >"$out.calls" 2>"$out.log" || { cat "$out.log" >&2; exit 1; }
    total=$(sed -n 's/^\(summary\|totals\): *//p' "$out" | head -n 1)
    calls=$(cat "$out.calls")
    printf '| %s | %s | %s |\n' "$1" "$calls" $((total / calls))
}

program=$1
dictionary=$2
echo "| function | calls | instructions per call |"
echo "|---|--:|--:|"
count DivideAddr 'CAddrDic::DivideAddr(char const*, tagADDR*)'
count GetPostCodeFromAddr 'CAddrDic::GetPostCodeFromAddr(char const*, char const*, tagADDR&)'
count GetPostCodeFromAddr+organisation 'CAddrDic::GetPostCodeFromAddr(char const*, char const*, tagADDR&)'
count GetLatestAddr 'CAddrDic::GetLatestAddr(char const*, tagADDR&)'
