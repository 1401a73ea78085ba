#!/bin/sh
# install-test.sh BUILD_DIR SOURCE_DIR - what `cmake --install` puts in place works from there: the tools find their
# libraries without LD_LIBRARY_PATH, and the library finds the profile library beside itself.
set -eu
build=$1
source=$2
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
unset LD_LIBRARY_PATH QE_PROFILE || :

cmake --install "$build" --prefix "$prefix/usr" >/dev/null
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
# A program of one's own, from the installed headers and libraries alone.
include=$(dirname "$(dirname "$(find "$moved" -path '*/api/Pstexec.h')")")
lib=$(dirname "$(find "$moved" -name libqeadrs.so)")
for header in dic/AddrDic.h dic/Addr.h dic/AddrNode.h tree/AddrPnt.h tree/DispTree.h api/Pstexec.h api/ga_legacy.h \
    platform/Win32Compat.h; do
    echo "#include \"$header\"" | c++ -std=c++17 -fsyntax-only -I"$include" -x c++ - || { echo "$header"; exit 1; }
done
for host in pstexec legacy; do
    cc -std=c99 -I"$include" "$source/examples/$host.c" -L"$lib" -lqeadrs -lqewin -Wl,-rpath,"$lib" -o "$prefix/$host"
done
QE_PROFILE=$prefix/qe.ini "$prefix/pstexec" 100-0001 | grep -q '千代田区' || { echo "no answer of pstexec"; exit 1; }
"$prefix/legacy" "$prefix/qeadrs.dic" 100-0001 | grep -q '千代田区' || { echo "no answer of legacy"; exit 1; }
echo "installed and answered: $answer"
