#!/bin/sh
# readme-test.sh PROGRAM DATA_DIR README... - what the README shows is what the command prints on a terminal, with the
# dictionary of the whole country. A line "..." stands for lines that it leaves out.
set -eu
program=$1
data=$2
shift 2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
printf '[General]\nDicDir=%s\n' "$data" >"$folder/qe.ini"
export QE_PROFILE="$folder/qe.ini" TERM=dumb

# compare COMMAND_LINE: the lines that were read after it, against the answer.
compare() {
    arguments=${1#qeadrs }
    script -qec "'$program' $arguments" /dev/null </dev/null | tr -d '\r' >"$folder/answer" || :
    if grep -q '^ *\.\.\.$' "$folder/shown"; then
        before=$(sed '/^ *\.\.\.$/,$d' "$folder/shown" | wc -l)
        behind=$(sed '1,/^ *\.\.\.$/d' "$folder/shown" | wc -l)
        { head -n "$before" "$folder/answer" && echo ... && tail -n "$behind" "$folder/answer"; } >"$folder/ends"
        mv "$folder/ends" "$folder/answer"
        sed -i 's/^ *\.\.\.$/.../' "$folder/shown"
    fi
    diff -u --label "$readme: $1" --label answer "$folder/shown" "$folder/answer" || status=1
    compared=$((compared + 1))
}

status=0
for readme in "$@"; do
    compared=0
    command_line=
    while IFS= read -r line; do
        case $line in
        "    \$ qeadrs "*) command_line=${line#"    \$ "} && : >"$folder/shown" ;;
        "    "*) [ -z "$command_line" ] || printf '%s\n' "${line#    }" >>"$folder/shown" ;;
        *) [ -z "$command_line" ] || { compare "$command_line" && command_line=; } ;;
        esac
    done <"$readme"
    echo "$readme: $compared commands compared"
    [ $compared -ge 5 ] || { echo "$readme shows fewer commands than it should"; status=1; }
done
exit $status
