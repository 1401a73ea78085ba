# shellcheck shell=sh disable=SC2034
# packages.sh - installing Debian packages, for the scripts at the root (sourced, not run).

# What the library, the tools and a dictionary need.
PACKAGES_BUILD="ca-certificates cmake g++ libcli11-dev libcurl4-openssl-dev libinih-dev libncurses-dev libutf8proc-dev
    libzip-dev make ninja-build nlohmann-json3-dev pkg-config"
# What the tests need besides.
PACKAGES_CHECK="abigail-tools binutils clang-format-14 cppcheck doxygen dpkg-dev file fish g++-multilib git groff-base
    libbenchmark-dev libgmock-dev libgtest-dev libsqlite3-dev libutf8proc-dev lintian man-db scdoc skkdic-extra unicode-data unzip zsh"
# Of the foreign architecture: for the 32-bit platform layer, its tests and its packages.
PACKAGES_I386="libgmock-dev:i386 libgtest-dev:i386 libinih-dev:i386 libstdc++6:i386 libutf8proc-dev:i386"

say() { printf '\n==> %s\n' "$*"; }
# A path as the user means it, from the folder that the script was called in: CALLER.
absolute() { case $1 in /*) printf '%s\n' "$1" ;; *) printf '%s\n' "$CALLER/$1" ;; esac; }
fail() { printf '\nERROR: %s\n' "$*" >&2; exit 1; }

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"
    elif command -v sudo >/dev/null 2>&1; then sudo "$@"
    else fail "root is needed for: $* (run this script as root, or install sudo)"
    fi
}

# The packages of the list that are not installed, one line.
missing_packages() {
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || printf '%s ' "$package"
    done
}

# A mirror in the middle of its update fails now and then, or lacks one index that nobody needs here: the installation
# itself decides.
update_lists() { as_root apt-get update -qq || say "some package lists could not be updated; going on with what there is"; }

# install_packages PACKAGE...: installs what is missing and says so; returns 1 when that fails.
install_packages() {
    missing=$(missing_packages "$@")
    [ -n "$missing" ] || return 0
    say "installing: $missing"
    update_lists
    # shellcheck disable=SC2086
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >/dev/null
}

# The foreign architecture i386, known to the package manager from now on.
enable_i386() {
    dpkg --print-foreign-architectures | grep -qx i386 && return 0
    say "adding the foreign architecture i386 (for the 32-bit build)"
    as_root dpkg --add-architecture i386
}
