#!/bin/sh
# quickstart.sh [CODE...] - from a bare Debian 12 machine to the addresses of a postal code (default 100-0001).
#
# Installs what is missing, builds, compiles a dictionary from the best source within reach, writes a profile that
# points at it, and answers. Run it again at any time: what is installed and built stays.
#   QEADRS_SOURCE=DIR   folder with utf_ken_all.zip (or ken_all.zip, or their CSV) and jigyosyo.zip (or JIGYOSYO.CSV)
#   QEADRS_HOME=DIR     where the dictionary and fetched files live (default ~/.local/share/qeadrs)
set -eu
CALLER=$PWD
cd "$(dirname "$0")"
. scripts/packages.sh

[ -z "${QEADRS_SOURCE:-}" ] || QEADRS_SOURCE=$(absolute "$QEADRS_SOURCE")
[ -z "${QEADRS_HOME:-}" ] || QEADRS_HOME=$(absolute "$QEADRS_HOME")
HOME_DIR=${QEADRS_HOME:-${XDG_DATA_HOME:-$HOME/.local/share}/qeadrs}
FETCHED=$HOME_DIR/fetched
DICTIONARY=$HOME_DIR/qeadrs.dic
BIN=build/release/bin
DOWNLOAD_PAGE=https://www.post.japanpost.jp/service/search/zipcode/download/

build_tools() {
    # shellcheck disable=SC2086
    install_packages $PACKAGES_BUILD || fail "the packages above could not be installed; is a package registry within reach?"
    say "building (release)"
    cmake --preset release -DQEADRS_TESTS=OFF -DQEADRS_BENCH=OFF >/dev/null
    cmake --build --preset release
}

# first_of FILE...: the first that exists.
first_of() {
    for file in "$@"; do
        [ -f "$file" ] && printf '%s\n' "$file" && return 0
    done
    return 1
}

# compile_tables DIR: the official tables in DIR, whatever their form, and earlier editions of them.
compile_tables() {
    tables=$1
    towns=$(first_of "$tables/utf_ken_all.zip" "$tables/utf_ken_all.csv" "$tables/ken_all.zip" "$tables/KEN_ALL.CSV") ||
        return 1
    offices=$(first_of "$tables/jigyosyo.zip" "$tables/JIGYOSYO.CSV") || offices=
    set -- --towns "$towns"
    [ -z "$offices" ] || set -- "$@" --offices "$offices"
    LACKS="addresses that have changed (no earlier edition, ken_all-YYYY-MM.zip, beside the town table)"
    for file in "$tables"/history/ken_all-*.zip "$tables"/ken_all-*.zip "$HOME_DIR"/history/ken_all-*.zip; do
        [ -f "$file" ] || continue
        set -- "$@" --previous "$file"
        LACKS="nothing"
    done
    [ -n "$offices" ] || LACKS="organisations (no jigyosyo.zip beside the town table)"
    "$BIN/qeadrs-dic" build -q "$@" -o "$DICTIONARY" || return 1
}

from_named_folder() {
    [ -n "${QEADRS_SOURCE:-}" ] || { say "source: QEADRS_SOURCE is not set"; return 1; }
    say "source: the folder of QEADRS_SOURCE, $QEADRS_SOURCE"
    compile_tables "$QEADRS_SOURCE" || fail "QEADRS_SOURCE=$QEADRS_SOURCE has no town table that can be compiled."
    WHAT="official tables from $QEADRS_SOURCE"
}

from_fetched_files() {
    [ -f "$FETCHED/utf_ken_all.zip" ] || { say "source: no files fetched earlier in $FETCHED"; return 1; }
    say "source: files fetched earlier, in $FETCHED"
    compile_tables "$FETCHED" || return 1
    WHAT="official tables fetched earlier into $FETCHED"
}

from_download() {
    say "source: downloading the official tables (giving up after a few seconds without a network)"
    "$BIN/qeadrs-dic" fetch -d "$FETCHED" --tries 1 --connect-timeout 5 || return 1
    compile_tables "$FETCHED" || return 1
    WHAT="official tables, downloaded now"
}

# What follows is older or smaller: it never replaces official tables that an earlier run has compiled.
from_earlier_run() {
    "$BIN/qeadrs-dic" info "$DICTIONARY" 2>/dev/null | grep -q '^source *official tables$' || return 1
    say "source: keeping the dictionary that an earlier run compiled from official tables"
    WHAT="official tables, compiled by an earlier run"
    LACKS="nothing"
}

from_skkdic() {
    say "source: Debian's package skkdic-extra (public domain, the whole country)"
    install_packages skkdic-extra || return 1
    "$BIN/qeadrs-dic" build -q --skk /usr/share/skk -o "$DICTIONARY" || return 1
    WHAT="the postal dictionaries of Debian's skkdic-extra"
    LACKS="readings, old postal codes, most subdivisions, and the changes since its date"
}

from_sample() {
    say "source: the sample in data/sample/"
    "$BIN/qeadrs-dic" build -q --towns data/sample/utf_ken_all.csv --offices data/sample/JIGYOSYO.CSV --sample \
        --previous data/sample/previous-2018-01.csv -o "$DICTIONARY"
    WHAT="the hand-written sample in data/sample/"
    LACKS="nearly everything: a few hundred addresses, for a first look only"
}

# An existing profile of the user's own is not touched; the query then uses one beside the dictionary.
write_profile() {
    profile=${XDG_CONFIG_HOME:-$HOME/.config}/qe/qe.ini
    if [ -e "$profile" ] && ! grep -q '^; written by quickstart.sh' "$profile"; then
        say "profile: $profile is yours and stays as it is; using $HOME_DIR/qe.ini (set QE_PROFILE to it)"
        profile=$HOME_DIR/qe.ini
    fi
    mkdir -p "$(dirname "$profile")"
    printf '; written by quickstart.sh\n[General]\nDicDir=%s\n' "$HOME_DIR" >"$profile"
    export QE_PROFILE="$profile"
    say "profile: $profile points at $HOME_DIR"
}

build_tools
mkdir -p "$HOME_DIR"
from_named_folder || from_fetched_files || from_download || from_earlier_run || from_skkdic || from_sample
write_profile

EDITION=$("$BIN/qeadrs-dic" info "$DICTIONARY" | sed -n 's/^edition *//p')
say "dictionary: $DICTIONARY - $WHAT; edition: $EDITION; it lacks: $LACKS."
case $WHAT in
official*) echo "    Next month's edition: PATH=$PWD/$BIN:\$PATH packaging/update/qeadrs-update -d $HOME_DIR
    (published at $DOWNLOAD_PAGE)" ;;
*) echo "    The official edition: get utf_ken_all.zip and jigyosyo.zip from $DOWNLOAD_PAGE
    into a folder DIR, or with $BIN/qeadrs-dic fetch -d DIR, then QEADRS_SOURCE=DIR ./quickstart.sh" ;;
esac

[ $# -gt 0 ] || set -- 100-0001
say "qeadrs zip $*"
status=0
"$BIN/qeadrs" zip "$@" || status=$?

cat <<END

Try next (QE_PROFILE=$QE_PROFILE):
    $BIN/qeadrs zip 060-0042               one code
    $BIN/qeadrs zip --kana 100             everything below a leading part, with readings
    $BIN/qeadrs addr 東京都千代田区千代田１－１   the code of an address
    $BIN/qeadrs find 東京都千代田区        all addresses that a text can stand for
    $BIN/qeadrs browse                     prefectures, cities and towns to pick from
    $BIN/qeadrs refine --code 100-00       candidates for a partly typed code
    $BIN/qeadrs batch --help               a whole table, line by line
    $BIN/qeadrs zip --json 9808485         for programs
    $BIN/qeadrs-dic info $DICTIONARY
    ./check.sh                             all tests
END
exit $status
