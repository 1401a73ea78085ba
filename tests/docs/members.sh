#!/bin/sh
# members.sh HEADER PAGE - fails unless the page's examples call every public member function of the header's main classes.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# A class begins at the left margin; its members stand four columns in, one to a line where a name begins.
awk '
/^class (CDictionaryFile|CRecords|CDictionary|CBlock|CApi)( |$)/ { class = $2; public = 0 }
/^};/ { class = "" }
class != "" && /^  public:/ { public = 1 }
class != "" && /^  private:/ { public = 0 }
class != "" && public && /^    [A-Za-z].*\(/ {
    declaration = substr($0, 1, index($0, "(") - 1)
    if (match(declaration, /[ *&][A-Z][A-Za-z]*$/)) print substr(declaration, RSTART + 1)
}' "$1" | sort -u | grep -vx -e CDictionaryFile -e CDictionary -e CRecords -e CBlock -e CApi >"$folder/members"
if [ "$(wc -l <"$folder/members")" -lt 30 ]; then
    echo "the header looks different: only these were found"
    cat "$folder/members"
    exit 1
fi

awk '/^```cpp$/ { code = 1; next } /^```$/ { code = 0 } code' "$2" >"$folder/examples"
missing=0
while read -r name; do
    grep -q "[.>:]$name(" "$folder/examples" || { echo "no example calls $name"; missing=1; }
done <"$folder/members"
exit $missing
