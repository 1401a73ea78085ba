#!/bin/sh
# check.sh - installs, builds and tests everything: release, i386 and the sanitizers, formatting, cppcheck, the documents,
# the packages, and the whole national data when they are there (QEADRS_SOURCE, else ../shared/japanpost).
set -eu
CALLER=$PWD
cd "$(dirname "$0")"
. scripts/packages.sh

PRESETS=${QEADRS_PRESETS:-release i386 asan asan-i386 tsan}
JOBS=$(nproc)
DATA=$PWD/build/national

# shellcheck disable=SC2086
install_packages $PACKAGES_BUILD $PACKAGES_CHECK || fail "the packages above could not be installed."
case " $PRESETS " in
*"i386 "*)
    enable_i386
    # shellcheck disable=SC2086
    install_packages $PACKAGES_I386 || fail "$PACKAGES_I386 could not be installed: the 32-bit platform layer needs it."
    ;;
esac

SOURCE=${QEADRS_SOURCE:+$(absolute "$QEADRS_SOURCE")}
[ -n "$SOURCE" ] || [ ! -f ../shared/japanpost/utf_ken_all.zip ] || SOURCE=$(cd ../shared/japanpost && pwd)

# configure PRESET DATA_FOLDER
configure() {
    cmake --preset "$1" -DQEADRS_WERROR=ON -DQEADRS_TESTS=ON -DQEADRS_TEST_DATA="$2" >build/configure.log ||
        { cat build/configure.log; fail "preset $1 cannot be configured."; }
}

mkdir -p build
TEST_DATA=
if [ -n "$SOURCE" ]; then
    say "whole-data tests: with the national data of $SOURCE"
    configure release ""
    cmake --build --preset release --target qeadrs-dic -j "$JOBS"
    tests/national/prepare.sh "$SOURCE" build/release "$DATA"
    TEST_DATA=$DATA
else
    say "whole-data tests: NONE, because neither QEADRS_SOURCE nor ../shared/japanpost has the official tables"
fi

for preset in $PRESETS; do
    say "$preset: building"
    case $preset in
    release | i386) configure "$preset" "$TEST_DATA" ;;
    *) configure "$preset" "" ;; # the whole data takes minutes under the sanitizers: CONTRIBUTING.md says how to run it
    esac
    cmake --build --preset "$preset" -j "$JOBS"
    if [ "$preset" = release ]; then
        say "formatting, what cppcheck finds, and the API reference"
        cmake --build --preset release --target format-check cppcheck docs
    fi
    say "$preset: testing"
    ctest --preset "$preset" -j "$JOBS"
done
has_preset() { case " $PRESETS " in *" $1 "*) ;; *) return 1 ;; esac; }
if has_preset release && has_preset i386; then
    say "packages of both word sizes: lintian, unpacking, hosts compiled against them"
    tests/packages-test.sh build/release build/i386 .
    PACKAGED=", the packages"
else
    say "packages: NOT tested, they need the presets release and i386"
fi
say "all checks passed: $PRESETS${PACKAGED:-}${TEST_DATA:+, with the whole national data}"
