#!/bin/sh
# packages-test.sh [--root] RELEASE_BUILD I386_BUILD SOURCE_DIR - the Debian packages of both build folders: made
# twice with the same bytes, complete, without a complaint of lintian, unpacked over each other into an empty folder,
# and answering from there. With --root they are installed by apt into a new Debian instead, which needs root rights,
# a package registry and some minutes.
set -eu
clean_root=
[ "$1" != --root ] || { clean_root=yes; shift; }
release=$1
i386=$2
source=$(cd "$3" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' INT TERM
unset LD_LIBRARY_PATH QE_PROFILE || :

fail() { echo "packages-test: $*" >&2; exit 1; }

for build in "$release" "$i386"; do
    rm -rf "$build/packages"
    cmake --build "$build" --target packages >"$work/log" 2>&1 || { cat "$work/log"; fail "$build: no packages"; }
done
mkdir "$work/again" "$work/debs"
cp "$release"/packages/*.deb "$i386"/packages/*.deb "$work/debs"
version=$(dpkg-deb -f "$work"/debs/qeadrs-tools_*.deb Version)
(cd "$work/debs" && ls) >"$work/names"
cat >"$work/expected" <<END
libqeadrs-dev_${version}_amd64.deb
libqeadrs-dev_${version}_i386.deb
libqeadrs1_${version}_amd64.deb
libqeadrs1_${version}_i386.deb
qeadrs-tools_${version}_amd64.deb
END
diff "$work/expected" "$work/names" || fail "other packages"

# The same input once more, in another folder.
for build in "$release" "$i386"; do
    (umask 022 && cpack --config "$build/CPackConfig.cmake" -B "$work/again") >"$work/log" 2>&1 ||
        { cat "$work/log"; fail "no packages a second time"; }
done
for deb in "$work"/again/*.deb; do
    cmp "$deb" "$work/debs/$(basename "$deb")" || fail "made twice, not the same"
done
lintian --tag-display-limit 0 --fail-on error,warning --allow-root "$work"/debs/*.deb || fail "lintian"

# What is in them. Links are listed with their goal.
contents() { dpkg-deb -c "$1" | sed -n 's/^[-l].* \.\//\//p' | LC_ALL=C sort; }
# has PACKAGE.deb FILE...
has() {
    deb=$work/debs/$1
    contents "$deb" >"$work/contents"
    shift
    for file in "$@"; do grep -qFx "$file" "$work/contents" || fail "$(basename "$deb") lacks $file"; done
}
cat >"$work/headers" <<END
api/Pstexec.h
api/ga_legacy.h
api/qeadrs.hpp
dic/Addr.h
dic/AddrDic.h
dic/AddrNode.h
dic/Export.h
dic/ImageHeader.h
platform/Win32Compat.h
text/AddressText.h
text/qetext.h
tree/AddrPnt.h
tree/DispTree.h
END
for triplet in amd64:x86_64-linux-gnu i386:i386-linux-gnu; do
    arch=${triplet%:*}
    lib=/usr/lib/${triplet#*:}
    has "libqeadrs1_${version}_$arch.deb" /etc/qe.ini "$lib/libqeadrs.so.${version%-*}" "$lib/libqewin.so" \
        "$lib/libqeprof.so" "$lib/libqeadrs.so.${version%%.*} -> libqeadrs.so.${version%-*}" \
        "$lib/libqetext.so.${version%-*}" "$lib/libqetext.so.${version%%.*} -> libqetext.so.${version%-*}" \
        /usr/share/man/man5/qe.ini.5.gz
    has "libqeadrs-dev_${version}_$arch.deb" "$lib/libqeadrs.so -> libqeadrs.so.${version%%.*}" "$lib/libqeadrs.a" \
        "$lib/libqetext.so -> libqetext.so.${version%%.*}" "$lib/libqetext.a" \
        "$lib/pkgconfig/qeadrs.pc" "$lib/pkgconfig/qetext.pc" "$lib/cmake/qeadrs/qeadrsConfig.cmake" \
        "$lib/cmake/qeadrs/qeadrsConfigVersion.cmake" "$lib/cmake/qeadrs/qeadrsTargets.cmake" \
        /usr/share/man/man3/libqeadrs.3.gz /usr/share/doc/libqeadrs-dev/format.md \
        /usr/share/doc/libqeadrs-dev/examples/pstexec.c /usr/share/doc/libqeadrs-dev/examples/written.c
    sed -n 's|^/usr/include/qeadrs/||p' "$work/contents" | diff "$work/headers" - || fail "$arch: other headers"
    dpkg-deb -I "$work/debs/libqeadrs1_${version}_$arch.deb" conffiles | grep -qFx /etc/qe.ini || fail "no conffile"
    for field in libc6 libstdc++6 libgcc-s1; do
        dpkg-deb -f "$work/debs/libqeadrs1_${version}_$arch.deb" Depends | grep -qF "$field (>= " ||
            fail "$arch: no dependency on $field"
    done
    ! dpkg-deb -f "$work/debs/libqeadrs1_${version}_$arch.deb" Depends | grep -q libinih ||
        fail "$arch: inih is not linked statically"
    for deb in "$work"/debs/lib*_"$arch".deb; do
        [ "$(dpkg-deb -f "$deb" Multi-Arch)" = same ] || fail "$deb is not Multi-Arch: same"
    done
done
has "qeadrs-tools_${version}_amd64.deb" /usr/bin/qeadrs /usr/bin/qeadrs-dic /usr/sbin/qeadrs-update \
    /usr/share/man/man1/qeadrs.1.gz /usr/share/man/man1/qeadrs-dic.1.gz /usr/share/man/man8/qeadrs-update.8.gz \
    /usr/share/bash-completion/completions/qeadrs /usr/share/bash-completion/completions/qeadrs-dic \
    /usr/share/zsh/vendor-completions/_qeadrs /usr/share/zsh/vendor-completions/_qeadrs-dic \
    /usr/share/fish/vendor_completions.d/qeadrs.fish /usr/share/fish/vendor_completions.d/qeadrs-dic.fish \
    /usr/share/man/man5/qeadrs.dic.5.gz /usr/share/doc/qeadrs-tools/updating.md \
    /usr/lib/systemd/system/qeadrs-update.service /usr/lib/systemd/system/qeadrs-update.timer
! grep '^/etc/systemd\|\.wants/' "$work/contents" || fail "a unit is switched on"
dpkg-deb -c "$work/debs/qeadrs-tools_${version}_amd64.deb" | grep -q ' \./var/lib/qeadrs/$' ||
    fail "no /var/lib/qeadrs"

if [ -n "$clean_root" ]; then
    sh "$source/tests/packages-root.sh" "$work/debs" "$source"
    exit 0
fi

# Both word sizes in one tree. What both have must be the same file.
for arch in amd64 i386; do
    for deb in "$work"/debs/*_"$arch".deb; do dpkg-deb -x "$deb" "$work/$arch"; done
done
(cd "$work/i386" && find . -type f) >"$work/files"
while read -r file; do
    [ ! -e "$work/amd64/$file" ] || cmp "$work/amd64/$file" "$work/i386/$file" || fail "$file differs"
done <"$work/files"
cp -a "$work/i386/." "$work/amd64"
mv "$work/amd64" "$work/root"
sh "$source/tests/packages-hosts.sh" "$work/root/usr" "$source" "$work/hosts"
