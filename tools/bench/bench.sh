#!/bin/bash
# bench.sh KESTOVA_PROGRAM [IMAGE]: what the tool's questions cost on a disk image, as multiples of what `sfdisk -l` takes
# in the same run. On the image given, which stays as it is, or on a factory disk made here.
set -euo pipefail

fail() { echo "bench: $*" >&2; exit 1; }

[[ $# -ge 1 && $# -le 2 ]] || fail "usage: bench.sh KESTOVA_PROGRAM [IMAGE]"
source_folder=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
PATH=$(dirname "$(realpath "$1")"):$PATH
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

if [[ $# -eq 2 ]]; then
    [[ -f $2 ]] || fail "$2: no such file"
    ln -s "$(realpath "$2")" "$work/disk.img"
else
    "$source_folder/tests/images/make-factory-mbr" "$work/disk.img" >"$work/making" 2>&1 ||
        { cat "$work/making" >&2; fail "the image could not be made"; }
fi
cd "$work"

questions=("sfdisk -l disk.img")
for question in status 'call GetFirstInternalDriveNumber' '--dry-run boot recovery'; do
    questions+=("kestova --image disk.img $question")
done
hyperfine --shell=none --warmup 10 --runs 100 --style basic "${questions[@]}"
