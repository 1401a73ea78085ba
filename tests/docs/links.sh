#!/bin/sh
# links.sh SOURCE_DIR - fails unless every relative link of the pages leads to a file, and every anchor to a heading.
set -eu
cd "$1"
LC_ALL=C
export LC_ALL
pages=$(find . -name '*.md' -not -path './build/*' -not -path './.*/*' | sort)
[ -n "$pages" ]

# shellcheck disable=SC2086
awk '
# Of a heading as the hosting site makes it: lower case, without punctuation, blanks as hyphens.
function anchor(heading) {
    sub(/^#+ +/, "", heading)
    sub(/ +$/, "", heading)
    while (match(heading, /\]\([^)]*\)/)) # a link in it counts by its text
        heading = substr(heading, 1, RSTART - 1) substr(heading, RSTART + RLENGTH)
    heading = tolower(heading)
    gsub(/[!-,.\/:-@\[-^`{-~]/, "", heading)
    gsub(/、|。|「|」|（|）|・|：|？|！|／|〜/, "", heading)
    gsub(/ /, "-", heading)
    return heading
}
function folder(path) { return path ~ /\// ? substr(path, 1, match(path, /\/[^\/]*$/)) : "" }
# "./docs/../data/x" as "./data/x"
function plain(path) {
    gsub(/\/\.\//, "/", path)
    while (match(path, /\/[^\/]+\/\.\.(\/|$)/)) path = substr(path, 1, RSTART) substr(path, RSTART + RLENGTH)
    return path
}
function keep(target) { link[++links] = target; from[links] = FILENAME; line[links] = FNR }

FNR == 1 { code = 0 }
/^```/ { code = !code; next }
code || /^    / { next }
/^#+ / {
    name = anchor($0)
    times = seen[FILENAME, name]++
    heading[FILENAME "#" name (times ? "-" times : "")] = 1
}
/^\[[^]]+\]: / { keep($2) }
{
    text = $0
    gsub(/`[^`]*`/, "", text)
    while (match(text, /\]\([^)]*\)/)) {
        target = substr(text, RSTART + 2, RLENGTH - 3)
        text = substr(text, RSTART + RLENGTH)
        sub(/ +".*"$/, "", target)
        keep(target)
    }
}
END {
    for (n = 1; n <= links; ++n) {
        if (link[n] ~ /^[a-z]+:/) continue
        ++relative
        mark = index(link[n], "#")
        file = mark ? substr(link[n], 1, mark - 1) : link[n]
        path = plain(file == "" ? from[n] : folder(from[n]) file)
        if (system("test -e \"" path "\"") != 0) problem = "no such file"
        else if (mark && !((path substr(link[n], mark)) in heading)) problem = "no such heading"
        else continue
        print from[n] ":" line[n] ": " link[n] ": " problem
        ++bad
    }
    print relative + 0 " relative links, " bad + 0 " lead nowhere"
    exit bad > 0 || relative == 0
}' $pages
