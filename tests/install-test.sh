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
for header in dic/AddrDic.h dic/Addr.h dic/AddrNode.h tree/AddrPnt.h tree/DispTree.h api/Pstexec.h api/ga_legacy.h \
    platform/Win32Compat.h; do
    found=$(find "$moved" -path "*/$header")
    [ -n "$found" ] || { echo "$header is not installed"; exit 1; }
done
echo "installed and answered: $answer"
