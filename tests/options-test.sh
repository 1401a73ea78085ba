#!/bin/sh
# options-test.sh WHAT BUILD_DIR SOURCE_DIR - what is made of the programs' options, held to what their help says.
# WHAT is help, man, bash, zsh or fish. The shells and man have to be there: one that is not tried proves nothing.
#
# shellcheck disable=SC2317  # functions are called by name
set -eu
what=$1
bin=$2/bin
pages=$2/docs/man
source=$3
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
export LC_ALL=C.UTF-8 COMPLETIONS="$2/completions" PLACE="$tmp" HOME="$tmp"
unset QE_PROFILE || :
failed=0

wrong() { printf 'WRONG: %s\n' "$*"; failed=1; }
need() { command -v "$1" >/dev/null || { echo "$1 is missing: install the package $2"; exit 1; }; }

# What the help lists, one on a line.
commands_of() { "$bin/$1" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p'; }
# shellcheck disable=SC2086  # no command is no word
options_of() {
    "$bin/$1" ${2:-} --help | sed -n '/^Options:/,/^$/s/^  \(-.*\)/\1/p' |
        sed 's/  .*//; s/--\[no-\]\([a-z-]*\)/--\1, --no-\1/' | tr ' ' '\n' | tr -d , | grep '^-' | sort
}

# expect WANTED FOUND WHERE: both the same lines.
expect() { [ "$1" = "$2" ] || wrong "$3: found \"$(one_line "$2")\" instead of \"$(one_line "$1")\""; }
one_line() { printf '%s' "$1" | tr '\n' ' '; }

# For every program, and for every command of it: CHECK PROGRAM [COMMAND].
everywhere() {
    for program in qeadrs qeadrs-dic; do
        "$1" $program
        [ "$(commands_of $program | wc -l)" -ge 6 ] || wrong "$program --help lists no commands"
        for command in $(commands_of $program); do "$1" $program "$command"; done
    done
}

# --- help: how large, and its parts ---

# shellcheck disable=SC2086
check_help() {
    "$bin/$1" ${2:-} --help >"$tmp/help"
    lines=40 width=100
    [ $# -gt 1 ] || { lines=24 width=80; }
    [ "$(wc -l <"$tmp/help")" -le $lines ] || wrong "$*: the help has more than $lines lines"
    [ "$(wc -L <"$tmp/help")" -le $width ] || wrong "$*: the help is wider than $width columns"
    ! grep -n ' $' "$tmp/help" || wrong "$*: blanks at the end of a line"
    head -1 "$tmp/help" | grep -q "^$* - ." || wrong "$*: the help does not begin with the name"
    sed -n 2p "$tmp/help" | grep -q "^Usage: $1 ${2:-COMMAND}" || wrong "$*: the second line is no usage"
    [ "$(grep -c '^Exit: 0 ' "$tmp/help")" = 1 ] || wrong "$*: the exit status is not told once"
    options_of "$@" | grep -qx -e --help || wrong "$*: --help is not listed"
    "$bin/$1" ${2:-} -h | cmp -s - "$tmp/help" || wrong "$*: -h says something else"
    ! grep -q -e --generate "$tmp/help" || wrong "$*: the hidden option is listed"
}

# --- man: every page is clean, every option is told, every example works ---

# check_told PROGRAM [COMMAND]: in the section of the command, or in that of what all take.
check_told() {
    [ $# -gt 1 ] || MANWIDTH=200 man -P cat -l "$pages/$1.1" >"$tmp/$1.text" 2>/dev/null
    awk -v command="${2:-}" '
        /^[A-Z]/ { section = $0; part = "" }
        /^   [a-z]/ { part = $1 }
        section == "OPTIONS" || (section == "COMMANDS" && command != "" && part == command)' "$tmp/$1.text" >"$tmp/told"
    [ -z "${2:-}" ] || grep -q "^   $2\$" "$tmp/told" || wrong "$1(1) has no section $2"
    for option in $(options_of "$@"); do
        grep -Eq -e "^ +(-.*, )?$option(,| |\$)" "$tmp/told" || wrong "$1(1): $* $option is missing"
    done
}

# The lines of a page's examples that begin with a word.
examples() {
    sed -n '/^# EXAMPLES/,/^# SEE/p' "$source/docs/man/$1.scd.in" | grep -E "^(printf.*\| )?$2 " | sed 's/\\\\/\\/g'
}

# run_examples PAGE WORD: as the reader types them.
run_examples() {
    examples "$1" "$2" >"$tmp/examples"
    [ "$(wc -l <"$tmp/examples")" -ge 5 ] || wrong "$1: has hardly any examples"
    while read -r line; do
        (cd "$tmp" && PATH=$bin:$PATH QE_PROFILE=$tmp/qe.ini sh -c "$line" >out 2>&1 </dev/null && [ -s out ]) ||
            wrong "$1: the example does not work: $line"
    done <"$tmp/examples"
}

check_man() {
    for page in qeadrs.1 qeadrs-dic.1 libqeadrs.3 qe.ini.5 qeadrs.dic.5 qeadrs-update.8; do
        [ -s "$pages/$page" ] || { wrong "$page is not built: configure again, now that scdoc is there"; continue; }
        man --warnings -E UTF-8 -l -Tutf8 -Z "$pages/$page" 2>&1 >/dev/null | sed "s/^/$page: /" >"$tmp/warnings"
        [ ! -s "$tmp/warnings" ] || { cat "$tmp/warnings"; wrong "$page: warnings"; }
        for section in NAME DESCRIPTION FILES EXAMPLES 'SEE ALSO'; do
            grep -q "^\.SH $section\$" "$pages/$page" || wrong "$page has no section $section"
        done
    done
    everywhere check_told
    for option in $("$source/packaging/update/qeadrs-update" --help | sed -n 's/^  \(-.*\)/\1/p' | sed 's/  .*//' |
        tr -d , | tr ' ' '\n' | grep '^-'); do
        grep -Eq -e "^(.*, )?\*$option\*(,| |\$)" "$source/docs/man/qeadrs-update.8.scd.in" ||
            wrong "qeadrs-update(8): $option is missing"
    done
    for function in $(sed -n 's/^QEADRS_API .* \(\w*\)(.*/\1/p' "$source/api/Pstexec.h" "$source/api/ga_legacy.h"); do
        grep -q "\*$function\*(" "$source/docs/man/libqeadrs.3.scd.in" || wrong "libqeadrs(3): $function is missing"
    done

    # The sample, under the names that the examples use.
    mkdir "$tmp/japanpost"
    cp "$source/data/sample/utf_ken_all.csv" "$tmp/japanpost/utf_ken_all.zip"
    cp "$source/data/sample/JIGYOSYO.CSV" "$tmp/japanpost/jigyosyo.zip"
    cp "$source/data/sample/previous-2018-01.csv" "$tmp/ken_all-2018-01.zip"
    printf '[General]\nDicDir=%s\n' "$tmp" >"$tmp/qe.ini"
    run_examples qeadrs-dic.1 'qeadrs-dic (build|check|info|dump|report)'
    run_examples qeadrs.1 qeadrs
    sed -n '/^int main/,/^}/p' "$source/docs/man/libqeadrs.3.scd.in" | sed 's/\\\\/\\/g' >"$tmp/main"
    { printf '#include "api/Pstexec.h"\n#include <stdio.h>\n'; cat "$tmp/main"; } >"$tmp/host.c"
    cc -std=c99 -Wall -Werror -I"$source" "$tmp/host.c" -L"$1/lib" -lqeadrs -lqewin -Wl,-rpath,"$1/lib" -o "$tmp/host"
    expect 1 "$(QE_PROFILE=$tmp/qe.ini "$tmp/host")" "libqeadrs.3: its program"
}

# --- completions: the same words as in the help, and files where a file is asked for ---

# start SCRIPT SHELL...: the shell runs a script that answers every line of standard input, a command line up to the
# cursor, with the words that it would offer and the line END.
start() {
    cat >"$tmp/answer"
    mkfifo "$tmp/lines" "$tmp/words"
    (cd "$tmp/place" && exec "$@" "$tmp/answer" <"$tmp/lines" >"$tmp/words" 2>"$tmp/complaints") &
    exec 3>"$tmp/lines" 4<"$tmp/words"
}

offers() {
    printf '%s\n' "$1" >&3
    while IFS= read -r word <&4 && [ "$word" != END ]; do printf '%s\n' "$word"; done | sort -u
}

# shellcheck disable=SC2086
check_words() {
    expect "$(options_of "$@")" "$(offers "$* -")" "$* -"
    [ $# -gt 1 ] || expect "$(commands_of "$1" | sort)" "$(offers "$1 ")" "$1"
}

check_offers() {
    everywhere check_words
    expect latest "$(offers 'qeadrs la')" "qeadrs la"
    expect --kana "$(offers 'qeadrs zip --k')" "qeadrs zip --k"
    expect --no-progress "$(offers 'qeadrs-dic fetch --no')" "qeadrs-dic fetch --no"
    expect "" "$(offers 'qeadrs zip 1')" "qeadrs zip 1"
    expect a.dic "$(offers 'qeadrs zip -d a.')" "qeadrs zip -d a."
    expect a.dic "$(offers 'qeadrs zip --dic=a.' | sed 's/^--dic=//')" "qeadrs zip --dic=a."
    expect a.dic "$(offers 'qeadrs-dic build --towns x.csv -o a.')" "qeadrs-dic build -o a."
    expect a.dic "$(offers 'qeadrs-dic check a.')" "qeadrs-dic check a."
    expect "a table" "$(offers 'qeadrs-dic build --skk ' | tr -d '/\\')" "qeadrs-dic build --skk"
    expect "" "$(offers 'qeadrs-dic fetch --tries ')" "qeadrs-dic fetch --tries"
    expect latest "$(offers 'qeadrs batch --op l')" "qeadrs batch --op l"
    expect "csv jsonl tsv" "$(one_line "$(offers 'qeadrs batch --from ')")" "qeadrs batch --from"
    [ ! -s "$tmp/complaints" ] || { cat "$tmp/complaints"; wrong "the shell complains"; }
}

mkdir -p "$tmp/place/a table"
touch "$tmp/place/a.dic"
case $what in
help) everywhere check_help ;;
man)
    need man man-db
    check_man "$2"
    ;;
bash)
    need bash bash
    # As the shell does, with "=" a word of its own; nothing of its usual helpers is there.
    start bash --noprofile --norc <<'END'
source "$COMPLETIONS/qeadrs.bash"
source "$COMPLETIONS/qeadrs-dic.bash"
while IFS= read -r line; do
    IFS=' ' read -ra COMP_WORDS <<<"${line//=/ = }"
    [[ $line != *' ' ]] || COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    read -r _ _ function _ < <(complete -p "${COMP_WORDS[0]}")
    COMPREPLY=(unset)
    $function
    ((${#COMPREPLY[@]} == 0)) || printf '%s\n' "${COMPREPLY[@]}"
    echo END
done
END
    check_offers
    ;;
zsh)
    need zsh zsh
    # The shell's own function for each word that is offered prints it and offers nothing, on a terminal of its own.
    for program in qeadrs qeadrs-dic; do
        zsh -n "$COMPLETIONS/$program.zsh" || wrong "$program.zsh is no script"
        cp "$COMPLETIONS/$program.zsh" "$tmp/_$program"
    done
    cat >"$tmp/set-up" <<'END'
PROMPT= RPROMPT=
fpath=($PLACE $fpath)
autoload -Uz compinit && compinit -u -D
bindkey -e
compadd() {
    if [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then builtin compadd "$@"; return; fi
    local -a found
    builtin compadd -A found "$@"
    (($#found)) && print -rl -- '' "WORD "$^found
    return 0
}
before() { compprefuncs=(before) }
after() { comppostfuncs=(after); print -r -- $'\nEND' }
before; comppostfuncs=(after)
print READY
END
    start zsh -f <<'END'
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell "PLACE=$PLACE; source $PLACE/set-up"
until [[ $text == READY* ]]; do zpty -r shell text; done
while IFS= read -r line; do
    zpty -n -w shell $'\C-u'"$line"$'\t'
    text=
    until [[ $text == END* ]]; do
        zpty -r shell text || break
        text=${text%%$'\r'*}
        [[ $text == WORD* ]] && print -r -- ${text#WORD }
    done
    print END
done
zpty -d shell
END
    check_offers
    ;;
fish)
    need fish fish
    start fish --no-config <<'END'
source "$COMPLETIONS/qeadrs.fish"
source "$COMPLETIONS/qeadrs-dic.fish"
while read -l line
    complete -C "$line" | string replace -r '\t.*' ''
    echo END
end
END
    check_offers
    ;;
esac
exit $failed
