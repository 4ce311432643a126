# Registry hives: an empty one, keys merged into it, and what a Windows remembers of its letters.
# The folder for the parts is that of volumes.sh; formats of printf carry bytes here.
# shellcheck shell=bash disable=SC2059,SC2154

# le32 NUMBER: its four bytes, the lowest first, in the words of printf.
le32() {
  printf '\\x%02x\\x%02x\\x%02x\\x%02x' $(($1 & 255)) $(($1 >> 8 & 255)) $(($1 >> 16 & 255)) $(($1 >> 24 & 255))
}

# put_bytes FILE OFFSET BYTES: bytes in the words of printf.
put_bytes() {
  printf -- "$3" | dd of="$1" bs=1 seek=$(($2)) conv=notrunc status=none
}

# hive_sum FILE: the checksum of a hive's header, over the 127 numbers before it.
hive_sum() {
  local word sum=0
  for word in $(od -An -v -tu4 -N508 "$1"); do
    sum=$((sum ^ word))
  done
  le32 $sum
}

# empty_hive FILE: the smallest registry hive, 8 KiB: a header, and one bin with the root key, its security and free
# space. Offsets in a hive count from the end of the header. A cell begins with its length, negative when it is used.
empty_hive() {
  local none root=0x20 security=0x78 free=0xa8
  none=$(le32 -1)
  truncate -s 8192 "$1"
  put_bytes "$1" 0 "regf$(le32 1)$(le32 1)$(le32 0)$(le32 0)$(le32 1)$(le32 3)$(le32 0)$(le32 1)$(le32 $root)$(le32 0x1000)$(le32 1)"
  put_bytes "$1" 508 "$(hive_sum "$1")"
  put_bytes "$1" 0x1000 "hbin$(le32 0)$(le32 0x1000)"
  put_bytes "$1" 0x1020 "$(le32 -0x58)nk\x2c\x00"
  put_bytes "$1" 0x1034 "$none$(le32 0)$(le32 0)$none$none$(le32 0)$none$(le32 $security)$none"
  put_bytes "$1" 0x106c '\x04\x00\x00\x00ROOT'
  put_bytes "$1" 0x1078 "$(le32 -0x30)sk\x00\x00$(le32 $security)$(le32 $security)$(le32 1)$(le32 20)\x01\x00\x00\x80"
  put_bytes "$1" 0x10a8 "$(le32 $((0x1000 - free)))"
}

# merge_hive FILE <REG: adds the keys of a .reg file, below HKEY_LOCAL_MACHINE\SYSTEM.
merge_hive() {
  cat >"$parts/keys.reg"
  quietly hivexregedit --merge "$1" --prefix 'HKEY_LOCAL_MACHINE\SYSTEM' "$parts/keys.reg"
}

# The bytes of standard input, in the words of a .reg file.
reg_binary() {
  printf 'hex(3):%s' "$(od -An -v -tx1 | tr -s ' \n' , | sed 's/^,//; s/,$//')"
}

# mbr_place SIGNATURE START_MIB: a partition of an MBR disk as MountedDevices has it: the disk's signature, and the offset
# in bytes.
mbr_place() {
  printf "$(le32 "$1")$(le32 $(($2 << 20)))$(le32 $(($2 >> 12)))" | reg_binary
}

# gpt_place GUID: a partition of a GPT disk: its id, the first three groups of it with the lowest byte first.
gpt_place() {
  local id
  id=$(sed -E 's/^(..)(..)(..)(..)-(..)(..)-(..)(..)-/\4\3\2\1\6\5\8\7/; s/-//g; s/../\\x&/g' <<<"$1")
  printf "DMIO:ID:$id" | reg_binary
}
