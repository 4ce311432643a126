# Runs a command of ./dev, or the Debian package, where nothing is installed but a minimal Debian. Sourced by ./dev, whose folder for
# temporary files it uses.
# shellcheck shell=bash disable=SC2154

# clean_room COMMAND...: in a fresh Debian root, with a clone of the current commit.
clean_room() {
    [ $# -gt 0 ] || fail "clean-room: which command of ./dev?"
    [ "$(id -u)" -eq 0 ] || fail "clean-room: must be started by root, to enter another root folder"
    need "to make a clean root" clean-room
    [ -z "$(git status --porcelain)" ] || say "clean-room: changes that are not committed are left out"
    local root=$temporary/root
    make_root "$root"
    git clone --quiet "$PWD" "$root/kestova"
    say "clean-room: $(git rev-parse --short HEAD) in a Debian root of $(packages_in "$root") packages: ./dev $*"
    in_root "$root" /kestova/dev "$@"
}

make_root() {
    quietly "making a clean root" mmdebstrap --variant=apt bookworm "$1"
    cp /etc/resolv.conf "$1/etc/"
}

# in_root ROOT COMMAND...: the mounts and whatever the command leaves running end with its own namespaces.
in_root() {
    # shellcheck disable=SC2016 # expanded by the shell in the namespaces
    unshare --mount --pid --fork --kill-child bash -c '
        mount -t proc proc "$0/proc" && mount --rbind /dev "$0/dev" &&
            exec chroot "$0" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 "$@"' "$@"
}

# try_package: the Debian package in a fresh root, from its installation to a PC that was switched and switched back; this PC
# is started from its disk as it was at each of these times.
try_package() {
    [ "$(id -u)" -eq 0 ] || fail "try-package: must be started by root, to enter another root folder"
    need "to make a clean root, and a virtual disk from which a PC starts" clean-room image start
    package_deb
    dpkg-deb --extract build/deb/kestova_*.deb "$temporary/content"
    tests/package/sbom.py "$temporary/content" usr/share/doc/kestova/sbom.spdx.json
    local root=$temporary/root
    make_root "$root"
    mkdir "$root/try"
    tests/images/make-startable-mbr "$temporary/disk.img" >/dev/null 2>&1 || fail "the image could not be made"
    qemu-img convert -O qcow2 "$temporary/disk.img" "$root/try/pc.qcow2"
    cp build/deb/kestova_*.deb tests/package/try "$root/try"
    in_root "$root" bash /try/try
    start_expecting "Recovery starts" "$root/try/switched.qcow2"
    start_expecting "Windows starts" "$root/try/back.qcow2"
    start_expecting "Windows starts" "$root/try/pc.qcow2"
}

# start_expecting WORDS FILE: what a PC has to say that is started from this disk.
start_expecting() {
    local words
    words=$(tests/images/start qcow2 "$2") || fail "a PC with ${2##*/} does not start"
    [ "$words" = "$1" ] || fail "a PC with ${2##*/} says: $words"
    say "try-package: a PC with ${2##*/} says: $words"
}

packages_in() { find "$1/var/lib/dpkg/info" -name '*.list' | wc -l; }
