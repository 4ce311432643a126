# What the scripts beside it share: a sparse image file, and file systems put into it at an offset. Debian's own tools do
# all of it as an ordinary user, without a mount and without a loop device.
# Programs: the group image of packages.txt.

# The types of GPT partitions, for the scripts that source this one.
# shellcheck disable=SC2034
{
  makers_boot=5B8E2A91-3C7D-4F06-9E14-72D0C6A4B3E5
  recovery=DE94BBA4-06D1-4D40-A16A-BFD50179D6AC
  efi_system=C12A7328-F81F-11D2-BA4B-00A0C93EC93B
  reserved=E3C9E316-0B5C-4DB8-817D-F92DF00215AE
  basic_data=EBD0A0A2-B9E5-4433-87C0-68B6B72699C7
}

fail() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

# begin_image FILE MIB: an empty disk.
begin_image() {
  [[ ! -e $1 ]] || fail "$1: is there already; nothing done"
  for tool in sfdisk mkntfs mkfs.fat mkfs.exfat wimcapture wimapply mcopy genisoimage; do
    command -v "$tool" >/dev/null || fail "$tool is missing; see packages.txt"
  done
  begin_parts "$1"
  truncate -s "$2M" "$image" || fail "$image: cannot be made"
}

# begin_parts FILE: a folder for the parts that are put into the image, which is removed unless end_image is reached.
begin_parts() {
  image=$1
  parts=$(mktemp -d)
  finished=
  trap 'rm -rf "$parts"; [[ $finished ]] || rm -f "$image"' EXIT
}

end_image() {
  finished=yes
}

# quietly COMMAND...: what the command says matters only when it fails.
quietly() {
  "$@" >"$parts/said" 2>&1 || { cat "$parts/said" >&2; fail "$image: $1 failed"; }
}

# partition SCRIPT: the partition table, in the words of sfdisk(8).
partition() {
  quietly sfdisk --quiet "$image" <<<"$1"
}

# put FILE START_MIB: a file system into its partition, as sparse as it is.
put() {
  quietly dd if="$1" of="$image" bs=1M seek="$2" conv=sparse,notrunc
}

# put_ntfs LABEL START_MIB SIZE_MIB FOLDER: an NTFS volume with what the folder holds.
put_ntfs() {
  truncate -s "$3M" "$parts/volume"
  quietly mkntfs --fast --force --no-indexing --label "$1" --partition-start $(($2 * 2048)) \
    --heads 255 --sectors-per-track 63 --sector-size 512 "$parts/volume"
  quietly wimcapture "$4" "$parts/files.wim" --compress=none --no-acls
  quietly wimapply "$parts/files.wim" 1 "$parts/volume" --no-acls
  put "$parts/volume" "$2"
  rm "$parts/volume" "$parts/files.wim"
}

# put_fat BITS LABEL START_MIB SIZE_MIB FOLDER: the same with a FAT12, FAT16 or FAT32 volume.
put_fat() {
  truncate -s "$4M" "$parts/volume"
  quietly mkfs.fat -F "$1" -n "$2" -h $(($3 * 2048)) "$parts/volume"
  quietly mcopy -s -i "$parts/volume" "$5"/* ::
  put "$parts/volume" "$3"
  rm "$parts/volume"
}

# put_exfat LABEL START_MIB SIZE_MIB FOLDER: the same with an exFAT volume, which fsck.exfat finds sound.
put_exfat() {
  truncate -s "$3M" "$parts/volume"
  quietly mkfs.exfat -L "$1" "$parts/volume"
  quietly "$(dirname "${BASH_SOURCE[0]}")/put-exfat-files" "$parts/volume" "$4"
  quietly fsck.exfat -n "$parts/volume"
  put "$parts/volume" "$2"
  rm "$parts/volume"
}

# recovery_files FOLDER: what a factory recovery partition is recognised by.
recovery_files() {
  mkdir -p "$1"/sources/{Orvo,data,idf}
  printf '[Recovery]\r\nVersion=1\r\n' >"$1/sources/Qelhdrcv.ini"
  printf 'WIM' >"$1/sources/boot.wim"
}

# windows_files FOLDER: what an installed Windows is recognised by.
windows_files() {
  mkdir -p "$1"/Windows/System32/config "$1/Users"
  printf 'MZ' >"$1/Windows/System32/Winload.exe"
  printf 'regf' >"$1/Windows/System32/config/SYSTEM"
}

# windows_re_files FOLDER: what a Windows recovery environment is recognised by.
windows_re_files() {
  mkdir -p "$1"/{Boot,EFI/Microsoft/Boot,Recovery/WindowsRE,sources/Autorun,sources/Orvo,sources/HDD}
  printf 'BCD' | tee "$1/Boot/BCD" >"$1/EFI/Microsoft/Boot/BCD"
  printf 'WIM' >"$1/Recovery/WindowsRE/winre.wim"
  printf 'BOOTMGR' | tee "$1/bootmgr" >"$1/bootmgr.efi"
}

# efi_files FOLDER: what an EFI system partition starts Windows from.
efi_files() {
  mkdir -p "$1"/EFI/{Boot,Microsoft/Boot}
  printf 'MZ' | tee "$1/EFI/Boot/bootx64.efi" >"$1/EFI/Microsoft/Boot/bootmgfw.efi"
}

# recovery_media_files FOLDER KIND: a recovery partition's files with the flag of a disc, DVD, or of a stick, UFD. The
# long name shows which names a reader understands.
recovery_media_files() {
  recovery_files "$1"
  printf '%s' "$2" >"$1/sources/$2"
  seq 10000 >"$1/sources/Image of the factory state.wim"
}
