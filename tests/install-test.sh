#!/bin/sh
# install-test.sh BUILD_DIR SOURCE_DIR - what `cmake --install` puts in place works from there, wherever it is moved
# to: the tools find their libraries without LD_LIBRARY_PATH, the library finds the profile library beside itself,
# pkg-config finds both; and a profile that is there already stays.
set -eu
build=$1
source=$2
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
unset LD_LIBRARY_PATH QE_PROFILE DESTDIR || :

mkdir -p "$prefix/usr/etc"
echo '; mine' >"$prefix/usr/etc/qe.ini"
cmake --install "$build" --prefix "$prefix/usr" >/dev/null
[ "$(cat "$prefix/usr/etc/qe.ini")" = '; mine' ] || { echo "the profile was overwritten"; exit 1; }
rm "$prefix/usr/etc/qe.ini"
cmake --install "$build" --prefix "$prefix/usr" --component runtime >/dev/null
grep -qx 'DicDir=/var/lib/qeadrs' "$prefix/usr/etc/qe.ini" || { echo "no profile"; exit 1; }
# Where the loader looks by itself, the profile goes where the profile library looks.
for usual in /usr /usr/local; do
    DESTDIR=$prefix/staged$usual cmake --install "$build" --prefix $usual --component runtime >/dev/null
    [ -f "$prefix/staged$usual/etc/qe.ini" ] || { echo "no /etc/qe.ini for the prefix $usual"; exit 1; }
done

moved=$prefix/elsewhere # relocated: nothing may remember the prefix of the installation
mv "$prefix/usr" "$moved"
"$moved/bin/qeadrs-dic" build -q --sample --towns "$source/data/sample/utf_ken_all.csv" \
    --offices "$source/data/sample/JIGYOSYO.CSV" -o "$prefix/qeadrs.dic"
printf '[General]\nDicDir=%s\n' "$prefix" >"$prefix/qe.ini"
answer=$(QE_PROFILE=$prefix/qe.ini "$moved/bin/qeadrs" zip 100-0001)
case $answer in
*東京都*千代田区*千代田*) ;;
*) echo "unexpected answer: $answer"; exit 1 ;;
esac

# Programs of one's own, from the installed headers and libraries alone: every header by itself, one host with the
# shared library, one with the static one.
lib=$(dirname "$(find "$moved" -name libqeadrs.so)")
flags() { PKG_CONFIG_LIBDIR=$lib/pkgconfig pkg-config "$@"; }
# shellcheck disable=SC2046  # flags are words
for header in dic/AddrDic.h dic/Addr.h dic/AddrNode.h dic/Export.h dic/ImageHeader.h tree/AddrPnt.h tree/DispTree.h \
    api/Pstexec.h api/ga_legacy.h api/qeadrs.hpp platform/Win32Compat.h text/qetext.h text/AddressText.h; do
    echo "#include \"$header\"" | c++ -std=c++17 -fsyntax-only $(flags --cflags qeadrs) -x c++ - ||
        { echo "$header"; exit 1; }
done
# shellcheck disable=SC2046
echo '#include "text/qetext.h"' | cc -std=c99 -pedantic-errors -fsyntax-only $(flags --cflags qetext) -x c -
# shellcheck disable=SC2046
cc -std=c99 "$source/examples/pstexec.c" $(flags --cflags --libs qeadrs) -Wl,-rpath,"$lib" -o "$prefix/pstexec"
# shellcheck disable=SC2046
cc -std=c99 $(flags --cflags qeadrs) "$source/examples/legacy.c" "$lib/libqeadrs.a" -L"$lib" -lqewin -lstdc++ \
    -Wl,-rpath,"$lib" -o "$prefix/legacy"
readelf -d "$prefix/legacy" | grep -q 'libqeadrs' && { echo "not linked with the static library"; exit 1; }
QE_PROFILE=$prefix/qe.ini "$prefix/pstexec" 100-0001 | grep -q '千代田区' || { echo "no answer of pstexec"; exit 1; }
"$prefix/legacy" "$prefix/qeadrs.dic" 100-0001 | grep -q '千代田区' || { echo "no answer of legacy"; exit 1; }
# shellcheck disable=SC2046
cc -std=c99 "$source/examples/written.c" $(flags --cflags --libs qetext) -Wl,-rpath,"$lib" -o "$prefix/written"
# shellcheck disable=SC2046
c++ -std=c++17 $(flags --cflags qetext) "$source/examples/spelled.cpp" "$lib/libqetext.a" "$lib/libqeadrs.a" -L"$lib" \
    -lqewin -Wl,-rpath,"$lib" -o "$prefix/spelled"
readelf -d "$prefix/spelled" | grep -q 'libqetext\|libqeadrs' && { echo "spelled: not static"; exit 1; }
"$prefix/written" "$prefix/qeadrs.dic" 余市町黒川町1-2 | grep -q '余市郡余市町' || { echo "no answer of written"; exit 1; }
echo 余市町黒川町1-2 | "$prefix/spelled" "$prefix/qeadrs.dic" | grep -q '^0460003 北海道余市郡余市町黒川町1-2$' ||
    { echo "no answer of spelled"; exit 1; }
echo "installed and answered: $answer"
