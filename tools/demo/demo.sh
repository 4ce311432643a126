#!/bin/bash
# demo.sh KESTOVA_PROGRAM [IMAGE]: the main job on a real disk image, with the proof of tools that know nothing
# of Kestova. Works on a copy of the image given, or on a factory disk made here.
set -euo pipefail

fail() { echo "demo: $*" >&2; exit 1; }
step() { printf '\n== %s\n\n' "$*"; }

[[ $# -ge 1 && $# -le 2 ]] || fail "usage: demo.sh KESTOVA_PROGRAM [IMAGE]"
kestova=$(realpath "$1")
source_folder=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

if [[ $# -eq 2 ]]; then
    [[ -f $2 ]] || fail "$2: no such file"
    cp --sparse=always "$2" "$work/disk.img"
    made="A copy of $2"
else
    "$source_folder/tests/images/make-factory-mbr" "$work/disk.img" > "$work/making" 2>&1 ||
        { cat "$work/making" >&2; fail "the image could not be made"; }
    made="A factory disk made with sfdisk and mkntfs"
fi
cd "$work"
cp --sparse=always disk.img before.img

run() {
    echo "\$ kestova $*"
    "$kestova" "$@" || fail "kestova $* ended with status $?"
}

table() { sfdisk --dump disk.img; }

show_table_changes() {
    echo "\$ sfdisk --dump, before and after"
    if cmp --silent "$1" "$2"; then
        echo "(no difference)"
    else
        { diff --unified=0 "$1" "$2" || true; } | grep '^[-+]disk'
    fi
}

# The recovery partition is number 1, which need not be the first slot of the table.
first_partition() { sfdisk --json disk.img | tr -d ' \n' | grep -o '"start":[0-9]*,"size":[0-9]*' | head -n 1; }

read -r start sectors <<< "$(first_partition | tr -c '0-9\n' ' ')"

# recovery_volume IMAGE VOLUME: cuts the recovery partition out, since the tools for volumes know no offsets.
recovery_volume() { dd if="$1" of="$2" bs=512 skip="$start" count="$sectors" status=none; }

# Every file and folder of a volume, with the sum of what is in it.
contents() {
    local folder="" name
    ntfsls --all --recursive --force "$1" | while read -r name; do
        case $name in
            /*:) folder=${name%:}; folder=${folder%/} ;;
            "" | . | ..) ;;
            *) echo "$folder/$name $(ntfscat --force "$1" "$folder/$name" 2> /dev/null | md5sum)" ;;
        esac
    done
}

show_record() {
    recovery_volume disk.img recovery.ntfs
    echo "\$ ntfscat recovery partition SystemVolume.ini"
    ntfscat --force recovery.ntfs SystemVolume.ini 2> ntfscat.errors || echo "(there is no such file)"
}

differing_bytes() { { cmp -l before.img disk.img || true; } | wc -l; }

step "$made"
run --image disk.img status
table > table.before

step "Switch to recovery"
run --image disk.img boot recovery

step "What changed in the image, as other tools see it"
table > table.recovery
show_table_changes table.before table.recovery
echo
show_record
echo
echo "$(differing_bytes) of $(stat --format=%s disk.img) bytes differ"

step "Switch back"
run --image disk.img boot system

step "The image afterwards"
table > table.after
show_table_changes table.before table.after
cmp --silent table.before table.after || fail "the partition table is not as it was"
echo
show_record
if ntfscat --force recovery.ntfs SystemVolume.ini > /dev/null 2>&1; then fail "SystemVolume.ini is still there"; fi
echo
left=$(differing_bytes)
recovery_volume before.img before.ntfs
[[ $(contents before.ntfs) == "$(contents recovery.ntfs)" ]] || fail "the files of the recovery partition differ"
outside=$({ cmp -l before.img disk.img || true; } |
    awk -v first=$((start * 512)) -v last=$(((start + sectors) * 512)) '$1 <= first || $1 > last' | wc -l)
[[ $outside -eq 0 ]] || fail "$outside bytes outside the recovery partition differ"
if [[ $left -eq 0 ]]; then
    echo "Every byte of the image is as it was."
else
    echo "The partition table is as it was, and so is every byte outside the recovery partition."
    echo "Inside it every file is as it was, by name and content. $left bytes of the file system's own"
    echo "bookkeeping differ: the freed record of the deleted file, its index entry and its folder's times."
fi
ntfsfix --no-action recovery.ntfs > ntfsfix.out 2>&1 || { cat ntfsfix.out; fail "the volume is not sound"; }
echo "ntfsfix finds the volume sound."

printf '\nThe demo succeeded.\n'
