#!/bin/sh
# packages-hosts.sh PREFIX SOURCE_DIR WORK_DIR - the example programs, compiled against what is installed below PREFIX
# with pkg-config and with CMake, as 64-bit and as 32-bit programs, answer from a dictionary that the installed
# compiler has made. Below /usr the profile is that of the installation, and the loader finds the libraries by itself.
set -eu
prefix=$1
source=$2
work=$3

fail() { echo "packages-hosts: $*" >&2; exit 1; }

mkdir -p "$work/project"
if [ "$prefix" = /usr ]; then
    folder=/var/lib/qeadrs
else
    folder=$work
    printf '[General]\nDicDir=%s\n' "$folder" >"$work/qe.ini"
    export QE_PROFILE="$work/qe.ini"
fi
# run TRIPLET COMMAND...: with the libraries of that word size.
run() {
    triplet=$1
    shift
    if [ "$prefix" = /usr ]; then "$@"; else LD_LIBRARY_PATH=$prefix/lib/$triplet "$@"; fi
}

run x86_64-linux-gnu "$prefix/bin/qeadrs-dic" build -q --sample --towns "$source/data/sample/utf_ken_all.csv" \
    --offices "$source/data/sample/JIGYOSYO.CSV" -o "$folder/qeadrs.dic"
run x86_64-linux-gnu "$prefix/bin/qeadrs" zip 100-0001 | grep -q '千代田区' || fail "no answer of qeadrs"

cat >"$work/project/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.16)
project(hosts C)
find_package(qeadrs 99 QUIET)
if(qeadrs_FOUND)
    message(FATAL_ERROR "version 99 was found: ${qeadrs_VERSION}")
endif()
find_package(qeadrs 1.0 REQUIRED)
add_executable(pstexec ${EXAMPLES}/pstexec.c)
target_link_libraries(pstexec PRIVATE qeadrs::qeadrs qeadrs::platform)
add_executable(legacy ${EXAMPLES}/legacy.c)
target_link_libraries(legacy PRIVATE qeadrs::qeadrs)
enable_language(CXX)
set(CMAKE_CXX_STANDARD 17)
add_executable(lookup ${EXAMPLES}/lookup.cpp)
target_link_libraries(lookup PRIVATE qeadrs::static)
add_executable(written ${EXAMPLES}/written.c)
target_link_libraries(written PRIVATE qeadrs::text)
add_executable(spelled ${EXAMPLES}/spelled.cpp)
target_link_libraries(spelled PRIVATE qeadrs::text_static)
END
for size in 64 32; do
    triplet=x86_64-linux-gnu
    [ $size = 64 ] || triplet=i386-linux-gnu
    made=$work/$size
    mkdir "$made"
    flags=$(PKG_CONFIG_LIBDIR=$prefix/lib/$triplet/pkgconfig pkg-config --cflags --libs qeadrs)
    text_flags=$(PKG_CONFIG_LIBDIR=$prefix/lib/$triplet/pkgconfig pkg-config --cflags --libs qetext)
    # shellcheck disable=SC2086  # flags are words
    {
        cc -m$size -std=c99 "$source/examples/written.c" $text_flags -o "$made/written"
        cc -m$size -std=c99 "$source/examples/pstexec.c" $flags -o "$made/pstexec"
        cc -m$size -std=c99 "$source/examples/legacy.c" $flags -o "$made/legacy"
        c++ -m$size -std=c++17 "$source/examples/towns.cpp" $flags -o "$made/towns"
    }
    { cmake -S "$work/project" -B "$made/cmake" -DCMAKE_BUILD_TYPE=Release -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_C_FLAGS=-m$size -DCMAKE_CXX_FLAGS=-m$size -DEXAMPLES="$source/examples" &&
        cmake --build "$made/cmake"; } >"$work/log" 2>&1 || { cat "$work/log"; fail "no CMake build, $size bit"; }
    run $triplet "$made/towns" 東京都 千代田区 | grep -q '丸の内' || fail "no answer of towns, $size bit"
    ! readelf -d "$made/cmake/lookup" | grep -q libqeadrs || fail "lookup is not static, $size bit"
    run $triplet "$made/cmake/lookup" "$folder/qeadrs.dic" 100-0001 | grep -q '千代田区' ||
        fail "no answer of lookup, $size bit"
    for program in "$made" "$made/cmake"; do
        readelf -h "$program/pstexec" | grep -q "Class: *ELF$size" || fail "$program is not $size bit"
        run $triplet "$program/pstexec" 100-0001 | grep -q '千代田区' || fail "no answer of $program/pstexec"
        run $triplet "$program/legacy" "$folder/qeadrs.dic" 100-0001 | grep -q '千代田区' ||
            fail "no answer of $program/legacy"
        run $triplet "$program/written" "$folder/qeadrs.dic" 余市町黒川町1-2 | grep -q '余市郡余市町' ||
            fail "no answer of $program/written"
    done
    ! readelf -d "$made/cmake/spelled" | grep -q 'libqetext\|libqeadrs' || fail "spelled is not static, $size bit"
    echo 余市町黒川町1-2 | run $triplet "$made/cmake/spelled" "$folder/qeadrs.dic" |
        grep -q '^0460003 北海道余市郡余市町黒川町1-2$' || fail "no answer of spelled, $size bit"
    echo "$size bit: the examples, compiled with pkg-config and with CMake, answer"
done
