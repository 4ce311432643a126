# Runs a command of ./dev where nothing is installed but a minimal Debian. Sourced by ./dev, whose folder for
# temporary files it uses.
# shellcheck shell=bash disable=SC2154

# clean_room COMMAND...: in a fresh Debian root, with a clone of the current commit.
clean_room() {
    [ $# -gt 0 ] || fail "clean-room: which command of ./dev?"
    [ "$(id -u)" -eq 0 ] || fail "clean-room: must be started by root, to enter another root folder"
    need "to make a clean root" clean-room
    [ -z "$(git status --porcelain)" ] || say "clean-room: changes that are not committed are left out"
    local root=$temporary/root
    quietly "making a clean root" mmdebstrap --variant=apt bookworm "$root"
    git clone --quiet "$PWD" "$root/kestova"
    cp /etc/resolv.conf "$root/etc/"
    say "clean-room: $(git rev-parse --short HEAD) in a Debian root of $(packages_in "$root") packages: ./dev $*"
    # The mounts and whatever the command leaves running end with its own namespaces.
    # shellcheck disable=SC2016 # expanded by the shell in the namespaces
    unshare --mount --pid --fork --kill-child bash -c '
        mount -t proc proc "$0/proc" && mount --rbind /dev "$0/dev" &&
            exec chroot "$0" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 /kestova/dev "$@"' "$root" "$@"
}

packages_in() { find "$1/var/lib/dpkg/info" -name '*.list' | wc -l; }
