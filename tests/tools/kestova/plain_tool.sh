#!/usr/bin/env bash
# usage: plain_tool.sh TOOL IMAGES
#
# Runs every command of the tool on copies of the test images. Meant for the plain build: it has a limit of address space,
# which a sanitized one cannot have, and may make fewer system calls.
set -euo pipefail
tool=$1 images=$2
folder=$(mktemp -d)
disk=
clean_up() {
    [ -z "$disk" ] || losetup --detach "$disk"
    rm -rf "$folder"
}
trap clean_up EXIT
for image in factory-mbr.img factory-gpt.img installed-windows.img disc-iso.iso disc-udf.iso stick-fat32.img stick-ntfs.img; do
    cp --sparse=always "$images/$image" "$folder"
done
cd "$folder"

# expect STATUS WORD...: the tool with these words.
number=0 failed=0
expect() {
    local expected=$1 status=0
    shift
    "$tool" "$@" >output 2>&1 <script || status=$?
    number=$((number + 1))
    [ "$status" -ne "$expected" ] || return 0
    cat output >&2
    printf 'kestova %s: exit status %s instead of %s\n' "$*" "$status" "$expected" >&2
    failed=1
}

printf 'GetDriveLetter 0 1\nSetActive 2\nClearActive\nSetActive 2\n' >script
media=(--disc disc-iso.iso --disc disc-udf.iso --stick stick-fat32.img --stick stick-ntfs.img)

expect 0 --help
expect 0 --version
expect 0 operations
expect 0 pcs
expect 0 calls
expect 2 no-such-command
expect 3 --image missing.img status

expect 0 --image factory-mbr.img status
expect 0 --image factory-gpt.img "${media[@]}" --json status
expect 0 --image factory-gpt.img "${media[@]}" call GetRCVUFD
# The SYSTEM hive of an installed Windows is read.
expect 0 --image installed-windows.img letters
# Also one that was not closed: the header's number of the last change that was begun, and its checksum, are changed.
hive=$(LC_ALL=C grep -abo regf installed-windows.img | head -n 1 | cut -d : -f 1)
for field in 4 508; do
    byte=$(od -An -tu1 -N1 -j $((hive + field)) installed-windows.img)
    # shellcheck disable=SC2059 # the byte is the format
    printf "\\x$(printf %02x $((byte ^ 1)))" |
        dd of=installed-windows.img bs=1 seek=$((hive + field)) conv=notrunc status=none
done
expect 0 --image installed-windows.img letters
grep -q 'was not closed' output || failed=1
expect 0 --image factory-mbr.img --save pc.json --log log.txt --trace --ledger call GetDriveLetter 0 1
expect 0 --pc pc.json status
expect 0 --image factory-mbr.img "${media[@]}" --hash files 1:/sources
expect 0 --image factory-mbr.img "${media[@]}" --json --hash files F:/sources
expect 0 --image factory-mbr.img check
expect 1 --image factory-gpt.img check
expect 1 --image factory-gpt.img boot recovery
expect 0 --image factory-mbr.img --columns number,size,label --bytes status
expect 0 --image factory-mbr.img report -o page.html
expect 0 --image factory-gpt.img report -o page.html
expect 0 --image factory-gpt.img --format markdown report

expect 0 --image factory-mbr.img --dry-run boot recovery
expect 0 --image factory-mbr.img boot recovery
expect 0 --image factory-mbr.img --journal kept boot system
expect 0 --image factory-mbr.img --no-journal call SetBIOSHibernationPartitionID 3
expect 0 --image factory-mbr.img run -
expect 0 --image factory-mbr.img recover
for format in qcow2 vhdx vpc vmdk vdi; do
    qemu-img convert -f raw -O "$format" factory-mbr.img "disk.$format"
    expect 0 --image "disk.$format" status
    expect 0 --image "disk.$format" check
    expect 0 --image "disk.$format" --hash files 1:/sources
    expect 0 --image "disk.$format" boot recovery
    expect 0 undo "disk.$format.kestova-backup-1"
    expect 0 --image "disk.$format" --force-dirty boot recovery
    expect 0 --image "disk.$format" run -
    expect 0 --image "disk.$format" recover
    expect 0 --image "disk.$format" boot system
done
ewfacquire -u -q -c fast -t disk factory-mbr.img >/dev/null 2>&1
expect 0 --image disk.E01 status
expect 0 --image disk.E01 --hash files 1:/sources
expect 0 --image disk.E01 --dry-run boot recovery
expect 3 --image disk.E01 boot recovery
dd if=/dev/zero of=factory-gpt.img bs=512 seek=1 count=33 conv=notrunc status=none
expect 3 --image factory-gpt.img call DisableOrvoBootPartition
expect 0 --image factory-gpt.img repair-table
expect 0 undo factory-gpt.img.kestova-backup-1
expect 0 --image factory-gpt.img repair-table
expect 0 --image factory-gpt.img call DisableOrvoBootPartition

# A disk of this computer, where one can be made.
cp --sparse=always "$images/factory-mbr.img" loop.img
if disk=$(losetup --show --find loop.img 2>/dev/null); then
    expect 0 --image "$disk" status
    expect 0 --image "$disk" --yes --journal loop.journal --backup loop.backup boot recovery
    expect 0 --image "$disk" --yes --journal loop.journal --no-backup undo loop.backup
else
    disk=
    printf 'skipped: no loop device can be set up here\n'
fi

[ "$failed" -eq 0 ] || exit 1
printf '%s commands of the plain tool\n' "$number"
