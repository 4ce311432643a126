# What make-factory-mbr and make-factory-gpt share: a sparse image file, and file systems put into it at an offset.
# Debian's own tools do all of it as an ordinary user, without a mount and without a loop device.
# Packages: fdisk (sfdisk), ntfs-3g (mkntfs), wimtools (folders and files onto NTFS), dosfstools (mkfs.fat).

PATH=$PATH:/usr/sbin:/sbin

fail() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

# begin_image FILE MIB: an empty disk, and a folder for the parts it is put together from.
begin_image() {
  image=$1
  [[ ! -e $image ]] || fail "$image: is there already; nothing done"
  for tool in sfdisk mkntfs mkfs.fat wimcapture wimapply; do
    command -v "$tool" >/dev/null || fail "$tool is missing; see the packages in $BASH_SOURCE"
  done
  parts=$(mktemp -d)
  finished=
  trap 'rm -rf "$parts"; [[ $finished ]] || rm -f "$image"' EXIT
  truncate -s "$2M" "$image" || fail "$image: cannot be made"
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

# put_fat32 LABEL START_MIB SIZE_MIB
put_fat32() {
  truncate -s "$3M" "$parts/volume"
  quietly mkfs.fat -F 32 -n "$1" -h $(($2 * 2048)) "$parts/volume"
  put "$parts/volume" "$2"
  rm "$parts/volume"
}

# recovery_files FOLDER: what a factory recovery partition is told by.
recovery_files() {
  mkdir -p "$1"/sources/{Orvo,data,idf}
  printf '[Recovery]\r\nVersion=1\r\n' >"$1/sources/Qelhdrcv.ini"
  printf 'WIM' >"$1/sources/boot.wim"
}

# windows_files FOLDER: what an installed Windows is told by.
windows_files() {
  mkdir -p "$1"/Windows/System32/config "$1/Users"
  printf 'MZ' >"$1/Windows/System32/Winload.exe"
  printf 'regf' >"$1/Windows/System32/config/SYSTEM"
}

# windows_re_files FOLDER: what a Windows recovery environment is told by.
windows_re_files() {
  mkdir -p "$1"/{Boot,EFI/Microsoft/Boot,Recovery/WindowsRE,sources/Autorun,sources/Orvo,sources/HDD}
  printf 'BCD' | tee "$1/Boot/BCD" >"$1/EFI/Microsoft/Boot/BCD"
  printf 'WIM' >"$1/Recovery/WindowsRE/winre.wim"
  printf 'BOOTMGR' | tee "$1/bootmgr" >"$1/bootmgr.efi"
}
