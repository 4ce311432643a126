#!/bin/bash
# bench.sh KESTOVA_PROGRAM [IMAGE]: what the tool costs on disk images, as multiples of what other tools take in the same run.
# Questions are asked on the image given, which stays as it is, or on a factory disk made here; everything else on images
# made here.
set -euo pipefail

fail() { echo "bench: $*" >&2; exit 1; }

[[ $# -ge 1 && $# -le 2 ]] || fail "usage: bench.sh KESTOVA_PROGRAM [IMAGE]"
source_folder=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
PATH=$(dirname "$(realpath "$1")"):$PATH
# In memory where there is a file system for that: flushes cost nothing there.
work=$(mktemp -d -p "$([[ -w /dev/shm ]] && echo /dev/shm || echo "${TMPDIR:-/tmp}")")
trap 'rm -rf "$work"' EXIT

given=$([[ $# -lt 2 ]] || realpath "$2")
cd "$work"
"$source_folder/tests/images/make-factory-mbr" factory.img >making 2>&1 || { cat making >&2; fail "the image could not be made"; }
if [[ -n $given ]]; then
    [[ -f $given ]] || fail "$2: no such file"
    ln -s "$given" disk.img
else
    ln -s factory.img disk.img
fi

# measure RUNS PREPARATION COMMAND...: a line each in `measured`, after its title: "command, mean, deviation, median, user, system".
measure() {
    local runs=$1 preparation=$2
    shift 2
    hyperfine --shell=none --warmup 5 --runs "$runs" --style none ${preparation:+--prepare "$preparation"} \
        --export-csv measured "$@" 2>warnings || { cat warnings >&2; fail "a command failed"; }
}

# compare TITLE COMMAND...: medians, as multiples of the first, and the peak of memory.
compare() {
    local row=1 command
    printf '%s\n' "$1"
    shift
    measure 60 '' "$@"
    for command in "$@"; do
        row=$((row + 1))
        # shellcheck disable=SC2086 # the words of the command
        env time --format %M --output peak $command >/dev/null
        awk -F , -v row="$row" -v peak="$(tail -n 1 peak)" -v command="${command:0:60}" '
            NR == 2 { first = $(NF - 4) }
            NR == row { printf "  %8.2f ms  %6.2f times  %6.1f MB  %s\n", 1000 * $(NF - 4), $(NF - 4) / first, peak / 1024, command }' measured
    done
}

compare 'A disk of four volumes' 'sfdisk -l disk.img' 'kestova --help' 'kestova --image disk.img status' \
    'kestova --image disk.img call GetFirstInternalDriveNumber' 'kestova --image disk.img --dry-run boot recovery'

# Processor time: sfdisk sleeps and has all file systems of the computer flushed.
printf 'Switch to recovery, processor time\n'
dd if=factory.img of=volume.img bs=1M skip=1 count=60 status=none
printf '[System]\r\nActive=2\r\n' >record
echo 'rm -f switched.*; cp --sparse=always factory.img switched.img' >renew
bash renew
measure 30 'bash renew' 'sfdisk --activate switched.img 1' \
    'ntfscp -f volume.img record SystemVolume.ini' 'kestova --image switched.img boot recovery'
bash renew
strace -f -qq -e trace=fsync,fdatasync -o flushes kestova --image switched.img boot recovery >/dev/null
awk -F , -v flushes="$(wc -l <flushes)" 'NR > 1 {
        time = $(NF - 3) + $(NF - 2)
        printf "  %8.2f ms  %s\n", 1000 * time, $1
        if (NR < 4) others += time
    } END { printf "  %.2f times what the other two take together; %d flushes\n", time / others, flushes }' measured

printf 'SetRcvprtActive\nSetSystemActive\n' >switch.txt
env kestova generate --count 1000 --output lab
printf 'Switch there and back on 1000 described PCs\n'
measure 3 '' 'kestova survey lab --script switch.txt --quiet --output /dev/null'
awk -F , 'NR > 1 { printf "  %8.2f s  %.0f PCs a minute, %.2f ms of processor time for each\n", $(NF - 4), 60000 / $(NF - 4), $(NF - 3) + $(NF - 2) }' measured

truncate -s 2T huge.img
printf 'label: gpt\ntype=E3C9E316-0B5C-4DB8-817D-F92DF00215AE, size=16MiB\ntype=EBD0A0A2-B9E5-4433-87C0-68B6B72699C7\n' |
    sfdisk --quiet huge.img
compare 'A disk of 2 TB, sparse' 'sfdisk -l huge.img' 'kestova --image huge.img status'

truncate -s 64M many.img
{
    echo 'label: gpt'
    for ((number = 1; number <= 16; ++number)); do echo 'size=2MiB, type=EBD0A0A2-B9E5-4433-87C0-68B6B72699C7'; done
} | sfdisk --quiet many.img
compare 'A GPT of 16 partitions' 'sfdisk -l many.img' 'kestova --image many.img status'

for count in 1 16 64; do
    listed='' opened=''
    for ((number = 1; number <= count; ++number)); do
        [[ -f disk-$number.img ]] || {
            truncate -s 64M "disk-$number.img"
            printf 'label: dos\nsize=16MiB, type=7\ntype=7, bootable\n' | sfdisk --quiet "disk-$number.img"
        }
        listed+=" disk-$number.img" opened+=" --image disk-$number.img"
    done
    compare "Disks: $count" "sfdisk -l$listed" "kestova$opened status"
done
