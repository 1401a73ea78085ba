# doxygen-headers.awk - our plain comments as Doxygen reads them (its input filter for headers).
#
#   A block before a declaration documents it, and those that follow it without a blank line or a comment between.
#   The first block of a file documents the file. A block of "// --- title ---" begins a group of a class's members.
#   A comment behind a declaration documents that one; the fields of a drawn record have the meaning of their row.
#   Within a block, "Label    text" is a paragraph of its own, and what is indented stays as it is drawn.
#
# What stands in no block is documented where it can only be one thing (a destructor, a field, a line that is all of its
# function); any other declaration is left for Doxygen to complain of. Its messages count the lines of what this prints.

function escaped(text) {
    gsub(/[\\@]/, "\\\\&", text)
    gsub(/[<#%*][A-Za-z\/]/, "\\\\&", text)
    return text
}

# Prints the block that was read last as documentation, a command in front of it.
function document(command,    i, text, label, drawn) {
    label = drawn = 0
    print "/**"
    if (command != "") print command
    for (i = 1; i <= lines; ++i) {
        text = block[i]
        if (text ~ /^   / && !label) {
            if (!drawn) print "@verbatim"
            drawn = 1
            print substr(text, 4)
            continue
        }
        if (drawn && text == "" && i < lines && block[i + 1] ~ /^   /) {
            print ""
            continue
        }
        if (drawn) print "@endverbatim"
        drawn = 0
        if (text ~ /^ [A-Z][A-Za-z]*( [a-z]+)?  +[^ ]/) {
            match(text, /  +[^ ]/)
            print "@par " escaped(substr(text, 2, RSTART - 2))
            text = substr(text, RSTART + RLENGTH - 1)
            label = 1
        } else if (text !~ /^   /) label = 0
        sub(/^ +/, "", text)
        print escaped(text)
    }
    if (drawn) print "@endverbatim"
    print "*/"
}

# The rows of a drawn record: "  off size  field  meaning".
function learn(    i, part, n) {
    for (i = 1; i <= lines; ++i) {
        n = split(block[i], part, " ")
        if (n > 3 && part[1] ~ /^[0-9]+$/ && part[3] ~ /^[a-z]+[A-Z]/) {
            meaning[part[3]] = block[i]
            sub(/^ *[0-9]+ +[0-9?]+ +[A-Za-z0-9]+ +/, "", meaning[part[3]])
        }
    }
}

# What a member does that every class has.
function special(code,    name, argument) {
    if (code ~ /~[A-Za-z]/) return "Gives back what the object holds."
    if (code ~ /= delete/) return "Not to be copied."
    name = substr(code, 1, index(code, "(") - 1)
    sub(/^.*[ &]/, "", name)
    argument = substr(code, index(code, "(") + 1)
    sub(/[ &)].*$/, "", argument)
    if (name != "" && (name == argument || name == "operator=")) return code ~ /&&[^,)]*\)/ ? "Moves." : "Copies."
    if (name ~ /^(tag|C)[A-Z]/ && code ~ /[A-Za-z]\(\)/ && code !~ /[A-Za-z] +[A-Za-z]+\(/)
        return "An object with nothing in it yet."
    if (code ~ /operator/ || name ~ /^(begin|end|size|empty)$/) return "As everywhere in the language."
    return ""
}
# What is documented by what it is.
function common(code) {
    if (special(code) != "") return special(code)
    if (code ~ /^ *(typedef|using) /) return "As its name says."
    if (code ~ /\).*\{.*\} *$/) return "As its name says." # all of it stands in the line
    if (code ~ /\(/) return ""
    if (code ~ /^ *(class|struct|namespace) /) return "Described with its file."
    return code ~ /[a-z]Unused/ ? "Not used." : "As its name says."
}

# The code of a line without its texts, characters and comments, for counting braces.
function bare(code) {
    gsub(/\\./, "", code)
    gsub(/"[^"]*"/, "", code)
    gsub(/'[^']*'/, "", code)
    sub(/\/\/.*$/, "", code)
    gsub(/\/\*[^*]*\*\//, "", code)
    return code
}

# Opens and closes scopes. A scope is "d" where declarations stand, "e" in an enumeration, "b" in a body.
function follow(code,    i, c) {
    for (i = 1; i <= length(code); ++i) {
        c = substr(code, i, 1)
        if (c == "{") {
            kind = statement ~ /(^|[ >])(class|struct|namespace|extern)([ :]|$)/ ? "d" : "b"
            if (statement ~ /^ *(typedef )?enum /) kind = "e"
            if (statement ~ /\)[^)]*$/ && statement !~ /^ *(class|struct) /) kind = "b"
            scope[++depth] = kind
            statement = ""
        } else if (c == "}") {
            --depth
            statement = ""
        } else if (c == ";") statement = ""
        else statement = statement c
    }
    if (statement ~ /^ *(public|private|protected): *$/) statement = ""
    if (statement ~ /^ *$/) statement = ""
    else statement = statement " "
}
function declares(    i) {
    for (i = 1; i <= depth; ++i)
        if (scope[i] == "b") return 0
    return 1
}

FNR == 1 { first = 1 }

# C's own comments count as the others.
within_c || /^[^#]*\/\*/ {
    if (!within_c) sub(/\/\*/, "//")
    else if (/^ *\*\/$/) $0 = ""
    else sub(/^ *\*?/, "//")
    within_c = $0 != "" && $0 !~ /\*\/$/
    sub(/ *\*\/$/, "")
}

# A block of comments where declarations stand.
/^ *\/\// && declares() && statement == "" {
    if (!reading) { lines = 0; reading = 1 }
    indent = $0
    sub(/\/\/.*$/, "", indent)
    text = $0
    sub(/^ *\/\//, "", text)
    block[++lines] = text
    next
}

{
    code = bare($0)
    if (reading) {
        reading = 0
        learn()
        fresh = 0
        title = ""
        if (first) {
            document("@file")
            first = 0
        } else if (block[1] ~ /^ --- /) {
            if (depth > 0 && scope[depth] == "d" && $0 ~ /^$/ && indent != "") {
                if (grouped) print "///@}"
                title = block[1]
                sub(/^ --- */, "", title)
                sub(/ *-*$/, "", title)
                block[1] = ""
                document("@name " escaped(title))
                print "///@{"
                grouped = 1
                if (lines == 1) {
                    block[1] = " " toupper(substr(title, 1, 1)) substr(title, 2) "."
                    fresh = 1
                } else title = ""
            }
        } else if ($0 !~ /^ *$/) {
            document()
            fresh = 1
        }
        heir = fresh
        if (title != "") fresh = 0
    } else if (declares() && (code ~ /^ *$/ && !title || code ~ /^ *(private|protected):/)) heir = 0
    else if (statement == "" && declares() && code !~ /^ *([#}]|static_assert|(public|private|protected):)/ &&
             code !~ /^ *((class|struct) [A-Za-z]+;|friend (class|struct) |extern *\{)/) {
        # A declaration without a block of its own.
        if ($0 !~ /[;,{}] *\/\// && depth >= 0 && scope[depth] != "e") {
            name = code
            sub(/[\[;={,].*$/, "", name)
            sub(/ *$/, "", name)
            sub(/^.*[ *&]/, "", name)
            if (code !~ /\(/ && (name in meaning)) print "/// " escaped(meaning[name])
            else if (heir && special(code) == "" && code ~ /\(|constexpr|^ *template/) document()
            else if (code ~ /^ *template/) name = ""
            else if (common(code) != "") print "/// " common(code)
        }
    } else if (code ~ /^ *# *define/ && heir) document()
    if (code ~ /^ *private:/ && grouped) { print "///@}"; grouped = 0 }
    if (code ~ /^ *};/ && depth == 1 && grouped) { print "///@}"; grouped = 0 }

    if (code !~ /^ *$/) title = ""
    line = $0
    if (declares() && line ~ /\{ *\/\// && code !~ /^ *(namespace|extern) /) { # behind the brace it would be nobody's
        note = line
        sub(/^.*\/\/ */, "", note)
        print "/// " escaped(note)
        sub(/ *\/\/.*$/, "", line)
    }
    if (declares() && depth > 0 && scope[depth] == "d" && line ~ /^ *[A-Za-z_:0-9]+ [A-Za-z]+(, [A-Za-z]+)+;/) {
        # Several fields of one type: one to a line.
        type = line
        sub(/[^ ].*$/, "", type)
        n = split(line, part, " ")
        type = type part[1] " "
        note = line ~ /\/\// ? line : "//As its name says."
        sub(/^.*\/\/ */, "", note)
        fields = code
        sub(/^ *[^ ]+ /, "", fields)
        sub(/;.*$/, "", fields)
        n = split(fields, part, ", ")
        for (i = 1; i <= n; ++i) print type part[i] "; ///< " escaped(note)
        follow(code)
        next
    }
    if (declares() && line ~ /[^ ].*\/\// && line !~ /:\/\// && code !~ /^ *}/ && line !~ /^ *(class|struct) [A-Za-z]+;/) {
        match(line, /\/\//)
        note = substr(line, RSTART + 2)
        sub(/^ */, "", note)
        line = substr(line, 1, RSTART - 1) "///< " (note != "" ? escaped(note) : scope[depth] == "e" ? "As its name says." : "In the same way.")
    } else if (line ~ /^ *# *define.*\/\*/) sub(/\/\*/, "/**<", line)
    else if (depth > 0 && scope[depth] == "e" && line ~ /[A-Za-z0-9],? *$/ && !fresh) line = line " ///< As its name says."
    print line
    fresh = 0
    if (code !~ /^ *#/) follow(code)
}
