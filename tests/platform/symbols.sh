#!/bin/sh
# symbols.sh NM LIBRARY LIST - fails unless LIBRARY exports exactly the names in LIST (one per line, any order).
set -u
LC_ALL=C
export LC_ALL
found=$(mktemp) && wanted=$(mktemp) || exit 2
trap 'rm -f "$found" "$wanted"' EXIT

# Into a file first: in a pipe the failure of nm would be lost, and an empty list could pass for a result.
"$1" -D --defined-only "$2" > "$found" || exit 2
awk '{ print $NF }' "$found" | sort > "$wanted.found" && mv "$wanted.found" "$found" || exit 2
sort "$3" > "$wanted" || exit 2

# Left of the lines: "-" is missing in the library, "+" is exported without being listed.
diff -u "$wanted" "$found"
