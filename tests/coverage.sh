#!/bin/sh
# coverage.sh - runs the library tests of a build that counts (preset coverage) and prints, for each file of dic/,
# tree/ and api/, the lines and branches that they reached, and in front of that the ones that they did not.
#
#   tests/coverage.sh GCOV SOURCE_FOLDER BUILD_FOLDER TEST_PROGRAM...
#
# It fails when a test fails; when a folder has fewer than MIN_LINES % of its lines or MIN_BRANCHES % of its branches;
# and when what was not reached is not what tests/coverage-left.txt says, which has the reason for each.
#
# Two things are left out, because the compiler makes them and the text does not have them: the branch behind a call
# that is taken when the call throws (gcov: "throw"), and a line that is nothing but a closing brace and that only
# exceptions pass ("====="), where the objects of its block are destroyed. What a catch does counts like everything
# else. A line or branch of an inline function or template counts as reached when any of its copies reached it.
set -eu
GCOV=$1
SOURCE=$(cd "$2" && pwd)
BUILD=$(cd "$3" && pwd)
shift 3

OBJECTS=$BUILD/dic/CMakeFiles/qeadrs_objects.dir
OUT=$BUILD/coverage
LEFT=$SOURCE/tests/coverage-left.txt
MIN_LINES=100
MIN_BRANCHES=95
rm -rf "$OUT"
mkdir -p "$OUT"
find "$OBJECTS" -name '*.gcda' -exec rm {} +
for test; do
    echo "coverage: $test"
    "$BUILD/bin/$test" >"$OUT/$test.log" 2>&1 || { cat "$OUT/$test.log"; echo "coverage: $test fails." >&2; exit 1; }
done

# All at once, so that the counts of a header's copies are added up.
cd "$OUT"
find "$OBJECTS" -name '*.gcda' >objects
[ -s objects ] || { echo "coverage: nothing was counted." >&2; exit 1; }
# shellcheck disable=SC2046
"$GCOV" --branch-probabilities --branch-counts --preserve-paths --relative-only --source-prefix "$SOURCE" \
    $(cat objects) >gcov.log 2>&1 || { cat gcov.log; exit 1; }

# A line of gcov's listing is "count:number:text", its branches follow it.
cat >report.awk <<'EOF'
FNR == 1 {
    file = FILENAME
    sub(/\.gcov$/, "", file)
    gsub(/#/, "/", file)
    if (!(file in known)) { known[file] = 1; names[++files] = file }
}
/^ *[^:]+: *[0-9]+:/ {
    split($0, part, ":")
    count = part[1]; number = part[2] + 0
    gsub(/[ *]/, "", count)
    if (number == 0 || count == "-") next
    key = file SUBSEP number
    content = substr($0, index($0, ":" part[2] ":") + length(part[2]) + 2)
    if (!(key in text)) order[file, ++places[file]] = number
    text[key] = content
    if (content !~ /^ *};?$/ || count !~ /^=/) counts[key] = 1
    if (count !~ /^[#=]/) line[key] = 1
}
# A copy that never ran does not tell which of its branches are "throw": its lines count, its branches do not.
/^function / { ran = $0 !~ / called 0 / }
/^branch / && ran {
    key = file SUBSEP number SUBSEP $2
    if ($0 ~ /\(throw\)/) thrown[key] = 1
    if (!(key in branch)) { branch[key] = 0; ways[file, number] = ways[file, number] " " $2 }
    if ($0 !~ /never executed/ && $4 > 0) branch[key] = 1
}
function percent(part, whole) { return whole == 0 ? 100 : 100 * part / whole }
function row(name, l, ls, b, bs) {
    printf "%-24s %5d %5d  %6.2f   %5d %5d  %6.2f\n", name, l, ls, percent(l, ls), b, bs, percent(b, bs)
}
function sum_up(name) {
    row(name, sum_l[name], sum_ls[name], sum_b[name], sum_bs[name])
    if (percent(sum_l[name], sum_ls[name]) < MIN_LINES || percent(sum_b[name], sum_bs[name]) < MIN_BRANCHES) {
        printf "%s: below %s %% of lines or %s %% of branches\n", name, MIN_LINES, MIN_BRANCHES > "below"
    }
}
function miss(what) { printf "%s:%d: %s\n", file, number, what; printf "%s: %s\n", file, what > "missed" }
END {
    print "not reached:"
    for (f = 1; f <= files; f++) {
        file = names[f]
        folder = file
        sub(/\/.*/, "/", folder)
        if (!(folder in sum_ls)) folders[++groups] = folder
        for (i = 1; i <= places[file]; i++) {
            number = order[file, i]
            if (!((file, number) in counts)) continue
            lines[file]++
            content = text[file, number]
            sub(/^ */, "", content)
            if ((file, number) in line) reached[file]++
            else miss("line: " content)
            w = split(ways[file, number], way, " ")
            n = missing = 0
            for (; w > 0; w--) {
                if ((file, number, way[w]) in thrown) continue
                n++
                if (!branch[file, number, way[w]]) missing++
            }
            branches[file] += n
            taken[file] += n - missing
            if (missing && (file, number) in line) miss(sprintf("%d of %d branches: %s", missing, n, content))
        }
        sum_l[folder] += reached[file]; sum_ls[folder] += lines[file]
        sum_b[folder] += taken[file]; sum_bs[folder] += branches[file]
        sum_l["all"] += reached[file]; sum_ls["all"] += lines[file]
        sum_b["all"] += taken[file]; sum_bs["all"] += branches[file]
    }
    printf "\n%-24s %5s %5s  %6s   %5s %5s  %6s\n", "file", "lines", "of", "%", "branch", "of", "%"
    for (f = 1; f <= files; f++) {
        file = names[f]
        row(file, reached[file], lines[file], taken[file], branches[file])
    }
    print ""
    for (g = 1; g <= groups; g++) sum_up(folders[g])
    sum_up("all")
}
EOF
set --
for listing in dic*.gcov tree*.gcov api*.gcov; do
    [ ! -f "$listing" ] || set -- "$@" "$listing"
done
: >missed
: >below
awk -v MIN_LINES=$MIN_LINES -v MIN_BRANCHES=$MIN_BRANCHES -f report.awk "$@" | tee report.txt

# By text rather than by line number: a list of numbers would be wrong after each edit.
LC_ALL=C sort missed >missed.sorted
grep -v -e '^#' -e '^$' "$LEFT" | LC_ALL=C sort >left.sorted
STATUS=0
if ! diff left.sorted missed.sorted >difference; then
    echo "coverage: not what tests/coverage-left.txt says (<: said, but reached or gone; >: not reached):" >&2
    grep '^[<>]' difference >&2
    STATUS=1
fi
sed 's/^/coverage: /' below >&2
[ ! -s below ] || STATUS=1
exit $STATUS
