#!/bin/sh
# packages-root.sh DEBS_DIR SOURCE_DIR - a new Debian, into which apt installs the packages of both word sizes with
# all that they depend on: the example programs are compiled and run there, systemd and cron can start the monthly
# update, a changed profile outlives an update, and after purging nothing is left and nothing is started. Needs root
# rights and a package registry (DEBIAN_MIRROR).
set -eu
debs=$1
source=$2
mirror=${DEBIAN_MIRROR:-http://deb.debian.org/debian}
root=$(mktemp -d)
chmod 755 "$root" # its users have to get in
trap 'umount "$root/proc" "$root/sys" 2>/dev/null || :; rm -rf --one-file-system "$root" "$root.log"' EXIT
trap 'exit 1' INT TERM

fail() { echo "packages-root: $*" >&2; exit 1; }
# in_root COMMAND...: in the new system; what it says is shown when it fails.
in_root() {
    chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive LC_ALL=C "$@" \
        >"$root.log" 2>&1 || { cat "$root.log"; fail "$*"; }
}
install_in_root() { in_root apt-get install -y -q --no-install-recommends "$@"; }

debootstrap --variant=minbase bookworm "$root" "$mirror" >"$root.log" 2>&1 || { cat "$root.log"; fail "debootstrap"; }
mount -t proc proc "$root/proc"
in_root dpkg --add-architecture i386
in_root apt-get update -q

mkdir -p "$root/src/debs" "$root/src/tests"
cp "$debs"/*.deb "$root/src/debs"
cp -r "$source/examples" "$source/data" "$root/src"
cp "$source/tests/packages-hosts.sh" "$root/src/tests"
in_root sh -c 'apt-get install -y -q --no-install-recommends /src/debs/*.deb'
chroot "$root" stat -c %U:%a /var/lib/qeadrs | grep -qx qeadrs:755 || fail "not the owner's: /var/lib/qeadrs"
echo "installed by apt: libqeadrs1 and libqeadrs-dev for amd64 and i386, qeadrs-tools"

install_in_root cmake g++ g++-multilib make pkg-config
chroot "$root" sh /src/tests/packages-hosts.sh /usr /src /hosts || fail "hosts"

in_root sh -c 'echo "; mine" >>/etc/qe.ini'
install_in_root systemd # the other way to a user
in_root sh -c 'dpkg -i /src/debs/*.deb'
in_root grep -qx '; mine' /etc/qe.ini

# What systemd does not know in a unit it only says. There is no man here that could show the pages.
in_root systemd-analyze verify --man=no qeadrs-update.service qeadrs-update.timer
[ ! -s "$root.log" ] || { cat "$root.log"; fail "units"; }
cron=$(sed -n 's/^\([0-9*,]\+ \+\)\{5\}qeadrs \+//p' "$root/usr/share/doc/qeadrs-tools/examples/qeadrs-update.cron")
in_root runuser -u qeadrs -- sh -c "$cron --help"
grep -q '^Usage: qeadrs-update ' "$root.log" || { cat "$root.log"; fail "cron does not start it: $cron"; }
echo "systemd and cron can start the update"

# As if systemd ran, with a timer that is on: the packages' scripts tell it, and go on whatever it answers.
in_root systemctl enable qeadrs-update.timer
mkdir -p "$root/run/systemd/system"
cat >"$root/usr/sbin/systemctl" <<'END'
#!/bin/sh
echo "$*" >>/src/systemctl
SYSTEMD_OFFLINE=1 /usr/bin/systemctl "$@"
exit 1
END
chmod 755 "$root/usr/sbin/systemctl"
in_root dpkg -P qeadrs-tools libqeadrs-dev:amd64 libqeadrs-dev:i386 libqeadrs1:amd64 libqeadrs1:i386
left=$(cd "$root" && find . -xdev \( -path ./src -o -path ./hosts -o -path ./proc \) -prune -o \
    \( -name '*qeadrs*' -o -name 'libqe*' -o -name 'qe.ini*' \) -print | LC_ALL=C sort | tr '\n' ' ')
[ -z "$left" ] || fail "purged, and left: $left"
grep -qx 'stop qeadrs-update.service' "$root/src/systemctl" || fail "a run was not stopped"
in_root sh -c "$cron"
[ ! -s "$root.log" ] || { cat "$root.log"; fail "cron after purging: $cron"; }
echo "a changed profile was kept, and purging left nothing"
