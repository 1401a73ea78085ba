#!/bin/sh
# prepare.sh - makes the folder that the whole-data tests read, out of the official files.
#
#   tests/national/prepare.sh SOURCE BUILD_DIR OUT_DIR
#
#   SOURCE     folder with utf_ken_all.zip and jigyosyo.zip, with ken_all.zip if the comparison is wanted, and with
#              history/ken_all-2015-10.zip and so on, earlier editions of ken_all.zip named after their month, if
#              addresses that have changed are wanted
#   BUILD_DIR  a build folder in which qeadrs-dic has been built (the 64-bit one: its output serves all word sizes)
#   OUT_DIR    is made, or overwritten file by file; then: cmake -DQEADRS_TEST_DATA=OUT_DIR ...
#
# OUT_DIR/utf_ken_all.csv, jigyosyo-utf8.csv    the tables, UTF-8
# OUT_DIR/qeadrs.dic, statistics.json           the dictionary compiled from them, and what the compiler counted
# OUT_DIR/figures.json, misses.tsv              how many addresses it finds as a user expects, and which it does not
# OUT_DIR/previous-2015-10.csv, ...             the earlier editions, UTF-8, as their files have them otherwise
# OUT_DIR/successions.tsv                       what became of the towns that are gone
# OUT_DIR/skk.dic, skk-zipcode.txt              the same from the SKK dictionaries (folder $QEADRS_SKK, by default
#                                               /usr/share/skk of Debian's skkdic-extra), when they are installed
#
# Needs unzip and iconv. Nothing is downloaded. Any failure ends the script with status 1.
set -eu

say() { echo "prepare: $*"; }
fail() { echo "prepare: $*" >&2; exit 1; }

[ $# -eq 3 ] || { sed -n '2,21s/^# \{0,1\}//p' "$0" >&2; exit 2; }
source=$1
compiler=$2/bin/qeadrs-dic
out=$3
skk=${QEADRS_SKK:-/usr/share/skk}

for tool in unzip iconv cmp; do
    command -v $tool >/dev/null || fail "$tool is needed (Debian: apt-get install unzip libc-bin diffutils)."
done
[ -x "$compiler" ] || fail "$compiler is not there: build the target qeadrs-dic first."
for file in utf_ken_all.zip jigyosyo.zip; do
    [ -r "$source/$file" ] || fail "$source/$file is not there."
done

mkdir -p "$out"
# The tests look at the folder as a whole: nothing of an earlier run may stay behind a failure of this one.
rm -f "$out/utf_ken_all.csv" "$out/jigyosyo-utf8.csv" "$out/qeadrs.dic" "$out/statistics.json" "$out/skk.dic" \
    "$out/skk-zipcode.txt" "$out/other.dic" "$out/figures.json" "$out/misses.tsv" "$out/successions.tsv" \
    "$out"/previous-*.csv

say "unpacking the tables"
unzip -p "$source/utf_ken_all.zip" utf_ken_all.csv >"$out/utf_ken_all.csv" || fail "utf_ken_all.zip has no utf_ken_all.csv."
unzip -p "$source/jigyosyo.zip" JIGYOSYO.CSV >"$out/jigyosyo.csv" || fail "jigyosyo.zip has no JIGYOSYO.CSV."
iconv -f CP932 -t UTF-8 "$out/jigyosyo.csv" >"$out/jigyosyo-utf8.csv" || fail "JIGYOSYO.CSV is not CP932."
rm -f "$out/jigyosyo.csv"

# The earlier editions: their names go to the compiler as they are, whatever characters are in them.
towns=$source/utf_ken_all.zip
offices=$source/jigyosyo.zip
set --
for earlier in "$source"/history/ken_all-*.zip; do
    [ -r "$earlier" ] || continue
    month=$(basename "$earlier" .zip)
    month=${month#ken_all-}
    say "unpacking the table of $month"
    unzip -p "$earlier" KEN_ALL.CSV >"$out/previous.csv" || fail "$earlier has no KEN_ALL.CSV."
    iconv -f CP932 -t UTF-8 "$out/previous.csv" >"$out/previous-$month.csv" || fail "KEN_ALL.CSV of $month is not CP932."
    rm -f "$out/previous.csv"
    set -- "$@" --previous "$earlier"
done
[ $# -gt 0 ] || say "no $source/history/ken_all-*.zip: the tests of addresses that have changed are left out"

# compile OUTPUT TOWNS [OPTION...]; the earlier editions are options as well.
compile() {
    output=$1
    table=$2
    shift 2
    "$compiler" build --no-progress --towns "$table" --offices "$offices" -o "$output" "$@" ||
        fail "the compilation of $table failed."
}

if [ -r "$source/ken_all.zip" ]; then
    say "compiling the dictionary from ken_all.zip, for comparison"
    compile "$out/other.dic" "$source/ken_all.zip" "$@" --quiet
else
    say "no ken_all.zip: the comparison of both editions of the table is left out"
fi
say "compiling the dictionary from utf_ken_all.zip"
compile "$out/qeadrs.dic" "$towns" "$@" --report "$out/successions.tsv" --json >"$out/statistics.json"
[ $# -gt 0 ] || rm "$out/successions.tsv"
if [ -r "$out/other.dic" ]; then
    cmp "$out/qeadrs.dic" "$out/other.dic" || fail "utf_ken_all.zip and ken_all.zip give different dictionaries."
    say "both editions of the table give the same bytes"
    rm -f "$out/other.dic"
fi
say "measuring the dictionary"
"$compiler" report "$out/qeadrs.dic" --towns "$towns" --offices "$offices" "$@" --json --misses "$out/misses.tsv" \
    >"$out/figures.json" || fail "the measurement failed."

if [ -r "$skk/SKK-JISYO.zipcode" ]; then
    say "compiling the dictionary of $skk"
    iconv -f EUC-JISX0213 -t UTF-8 "$skk/SKK-JISYO.zipcode" >"$out/skk-zipcode.txt" ||
        fail "SKK-JISYO.zipcode is not EUC-JIS-2004."
    "$compiler" build --no-progress --skk "$skk" -o "$out/skk.dic" --quiet || fail "the compilation of $skk failed."
else
    say "no $skk/SKK-JISYO.zipcode (Debian: skkdic-extra): its tests are left out"
fi
say "done: $out"
