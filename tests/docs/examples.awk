# examples.awk - the examples of documentation pages as a program, and what the pages say that it prints.
#
#   awk -v language=cpp -v source=examples.cpp -v expected=examples.txt -f examples.awk PAGE...
#
# A fenced block of the language is the body of a function; with the word "shared" behind the language it stands outside
# of all functions, for the examples behind it. The block ```text that follows an example is its output; an example
# without one prints nothing. Examples run in the order of the pages.

function page(path) { sub(/^.*docs\//, "docs/", path); return path }
function place() { return page(FILENAME) ":" FNR }

BEGIN { printf "" >source; printf "" >expected }
FNR == 1 && open != "" { print place() ": the page before ends within a block" >"/dev/stderr"; failed = 1; exit }

/^```/ && open == "" {
    open = "other"
    if ($1 == "```" language) {
        open = $2 == "shared" ? "shared" : "example"
        if (open == "example") {
            ++count
            printf "static void Example%d(void) {\n", count >source
            title[count] = place()
            print "--- " title[count] >expected
        }
        printf "#line %d \"%s\"\n", FNR + 1, page(FILENAME) >source
        last = open
    } else if ($0 == "```text" && last == "example") {
        open = "output"
        last = ""
    } else last = ""
    next
}
/^```$/ {
    if (open == "example") print "}" >source
    open = ""
    next
}
open == "example" || open == "shared" { print >source }
open == "output" { print >expected }

END {
    if (failed || open != "" || count == 0) exit 1
    print "int main(void) {" >source
    for (n = 1; n <= count; ++n) {
        printf "    printf(\"--- %s\\n\");\n    Example%d();\n", title[n], n >source
        print "    fflush(stdout);" >source
    }
    print "    return 0;\n}" >source
}
