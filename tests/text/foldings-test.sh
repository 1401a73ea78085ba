#!/bin/sh
# foldings-test.sh PERL SOURCE_DIR [UNICODE_DIR] - whether text/FoldTable.cpp is what its generator makes of the list and
# of Unicode's tables, and whether the generator refuses a list that contradicts itself. Needs Debian's unicode-data.
set -u
LC_ALL=C
export LC_ALL
perl=$1
source=$2
unicode=${3-/usr/share/unicode}
work=$(mktemp -d) || exit 2
trap 'rm -rf "$work"' EXIT
wrong=0

wrong() {
    echo "$*" >&2
    wrong=1
}

[ -f "$unicode/Unihan_Variants.txt.bz2" ] || { echo "no Unihan tables in $unicode: install unicode-data" >&2; exit 1; }

"$perl" "$source/text/fold-table.pl" "$unicode" "$source/text/foldings.txt" > "$work/FoldTable.cpp" ||
    wrong "the generator fails"
cmp "$work/FoldTable.cpp" "$source/text/FoldTable.cpp" || wrong "text/FoldTable.cpp is not what fold-table.pl makes"

# refuses LINE WORDS: with that line the list is refused, and the message has the words.
refuses() {
    { cat "$source/text/foldings.txt"; echo "$1"; } > "$work/foldings.txt"
    if "$perl" "$source/text/fold-table.pl" "$unicode" "$work/foldings.txt" > /dev/null 2> "$work/said"; then
        wrong "\"$1\" is not refused"
    elif ! grep -q "$2" "$work/said"; then
        wrong "\"$1\": $(cat "$work/said")"
    fi
}
refuses 'kanji 坂 阪' '坂 and 阪 would fold together'
refuses 'kanji 斎 薺' '斎 stands in two lines'
refuses 'ke ケ の' 'U+30B1 folds twice'
refuses 'kanij 亜 亞' 'what is "kanij"?'
exit $wrong
