# doxygen-pages.awk - our pages as Doxygen reads them (its input filter for Markdown): anchors are those of the hosting
# site, the language of a fenced block stands in braces, and links to what is not among the pages become their text.
#
#   LC_ALL=C awk -v root=SOURCE_DIR -v pages=" README.md docs/format.md ... " -f doxygen-pages.awk SOURCE_DIR/docs/format.md

# As the hosting site makes it: lower case, without punctuation, blanks as hyphens.
function anchor(heading) {
    sub(/^#+ +/, "", heading)
    heading = tolower(heading)
    gsub(/[!-,.\/:-@\[-^`{-~]/, "", heading)
    gsub(/、|。|「|」|（|）|・|：|？|！|／|〜/, "", heading)
    gsub(/ /, "-", heading)
    return heading
}
function identifier(path) { sub(/\.md$/, "", path); gsub(/[^A-Za-z0-9]/, "-", path); return path }
# The name of a section for Doxygen, in ASCII.
function section(path, heading,    i, c, name) {
    for (i = 1; i <= length(heading); ++i) {
        c = substr(heading, i, 1)
        name = name (c in hex ? hex[c] : c)
    }
    return identifier(path) "-" name
}
# A path from the folder of the page, as one from the root.
function resolved(path) {
    if (path == "") return self
    path = folder path
    while (match(path, /[^\/]+\/\.\.\//)) path = substr(path, 1, RSTART - 1) substr(path, RSTART + RLENGTH)
    return path
}

BEGIN {
    for (n = 128; n < 256; ++n) hex[sprintf("%c", n)] = sprintf("%02x", n)
}
FNR == 1 {
    self = substr(FILENAME, length(root) + 2)
    folder = self
    sub(/[^\/]*$/, "", folder)
}

/^```/ {
    code = !code
    print code ? "@verbatim" : "@endverbatim"
    next
}
code { print; next }
/^    / { print; next }
/^##+ / {
    name = section(self, anchor($0))
    times = seen[name]++
    print $0 " {#" name (times ? "-" times : "") "}"
    next
}
{
    text = $0
    line = ""
    while (match(text, /\[[^]]*\]\([^)]*\)/)) {
        found = substr(text, RSTART, RLENGTH)
        line = line substr(text, 1, RSTART - 1)
        text = substr(text, RSTART + RLENGTH)
        label = found
        sub(/^\[/, "", label)
        sub(/\]\([^)]*\)$/, "", label)
        target = found
        sub(/^.*\]\(/, "", target)
        sub(/\)$/, "", target)
        mark = index(target, "#")
        file = resolved(mark ? substr(target, 1, mark - 1) : target)
        if (target ~ /^https?:/) line = line found
        else if (!index(pages, " " file " ")) line = line label
        else if (mark) line = line "@ref " section(file, substr(target, mark + 1)) " \"" label "\""
        else line = line "[" label "](" target ")"
    }
    print line text
}
