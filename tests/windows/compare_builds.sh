#!/usr/bin/env bash
# Runs every scenario through both builds of the tool - linked to the emulated PC, and kestova.exe under Wine with the
# unmodified Kestova.dll - and compares output, messages, exit status and the PC afterwards byte for byte.
#
# usage: compare_builds.sh LINUX_TOOL WINDOWS_TOOL      WINEPREFIX names a prefix; the DLLs are beside WINDOWS_TOOL.
set -euo pipefail
export LC_ALL=C.UTF-8
export SOURCE_DATE_EPOCH=0 # the time in a recording

source_folder=$(readlink -f "$(dirname "$0")/../..")
linux_tool=$(readlink -f "$1")
windows_tool=$(readlink -f "$2")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

# --- scenarios: a line each, the words of the command line; saved.json is the PC afterwards -------------------------

pcs=(factory-mbr factory-gpt winpe-two-disks winpe-media)
mapfile -t coming < <("$linux_tool" pcs --json | sed 's/{"name":"\([^"]*\)".*/\1/')
[ "${coming[*]}" = "${pcs[*]}" ] || { echo "the tool comes with other machines: ${coming[*]}" >&2; exit 1; }

# The description that the page on descriptions shows, without its disk on an image, and the least one.
# shellcheck disable=SC2016 # the fence of a code block
sed -n '/^## Example/,$p' "$source_folder/docs/pc-description.md" | sed -n '/^```json$/,/^```$/{/^```/!p}' |
    sed '/ A raw image file/,/^    },$/d' >workshop.json
[ -s workshop.json ] || { echo "the page on descriptions has no example" >&2; exit 1; }
echo '{}' >empty.json
pcs+=(../workshop.json ../empty.json)

# One call for each operation and each value of its arguments.
script() {
    local operation name values parameter value combined
    "$linux_tool" operations --json | while read -r operation; do
        name=${operation#'{"operation":"'}
        name=${name%%'"'*}
        values=('')
        while read -r parameter; do
            combined=()
            for value in "${values[@]}"; do
                case $parameter in
                    reserved) combined+=("$value false") ;;
                    disk) combined+=("$value 0" "$value 1") ;;
                    partition) combined+=("$value 1" "$value 2" "$value 3" "$value 6") ;;
                    letter) combined+=("$value C" "$value d" "$value X") ;;
                    size) combined+=("$value 33" "$value 1") ;;
                    count) combined+=("$value 26" "$value 1") ;;
                    *) echo "no value for the argument $parameter of $name" >&2 && exit 1 ;;
                esac
            done
            values=("${combined[@]}")
        done < <(grep -o '"name":"[^"]*","kind":"[^"]*","direction":"in"' <<<"$operation" |
            sed 's/"name":"\([^"]*\)".*/\1/')
        printf "$name%s\n" "${values[@]}"
    done
}
script >once.txt
# The second time on the PC and the object that the first has left.
cat once.txt once.txt >all.txt
printf '%s\n' SetRcvprtActive SetSystemActive SetPOneActive SetPTwoActive GetWinDriveLetters\ 26 AssignRecoveryPartition \
    GetAllEncryptVolume\ 33 GetRCVDISC GetRCVUFD GetVistaOSInfo IsCachePartitionForExpCacheExist >faults.txt

# Recordings of the one build, for replays by both.
for pc in "${pcs[@]}"; do
    name=$(basename "$pc")
    "$linux_tool" --quiet --pc "${pc#../}" --record "$name.jsonl" run all.txt >messages 2>&1 || [ $? -eq 1 ]
    [ -s "$name.jsonl" ] || { cat messages >&2; exit 1; }
done

mapfile -t calls < <("$linux_tool" calls --json | sed 's/{"call":"\([^"]*\)".*/\1/')
[ ${#calls[@]} -gt 50 ] || { echo "the tool lists too few calls: ${#calls[@]}" >&2; exit 1; }

scenarios() {
    local pc call
    printf '%s\n' --help operations 'operations --json' pcs 'pcs --json' calls 'calls --json' \
        'call SetActiv 1' '--pc factory-mrb status' '--pc missing.json status' '--pc ../all.txt status'
    for pc in "${pcs[@]}"; do
        printf -- "--pc $pc %s\n" status '--json status' '--pe --json status' '--windows --json status' letters \
            '--json letters' check '--json check' 'files 1' '--json files 1:/sources' 'files C:' 'boot recovery' \
            'boot system' '--json --trace --save saved.json boot recovery' \
            '--json --trace --pe --save saved.json boot system' '--dry-run boot recovery' \
            '--trace --log log.txt --save saved.json run ../once.txt' '--no-initialize --json --trace run ../once.txt' \
            '--json --trace --save saved.json run ../all.txt' '--json --trace --pe --save saved.json run ../all.txt' \
            '--json --trace --windows --save saved.json run ../all.txt' 'capture -o saved.json' \
            '--anonymous capture' '--with-installed-registry capture -o saved.json' '--record calls.jsonl status' \
            '--json --record calls.jsonl run ../all.txt'
        printf '%s\n' "replay ../$(basename "$pc").jsonl" "replay --json ../$(basename "$pc").jsonl"
        for call in "${calls[@]}"; do
            printf -- "--pc $pc --json --trace --fail %s=0x80070005 --save saved.json run ../faults.txt\n" "$call" \
                "$call#2+"
        done
    done
}

# --- both builds ---------------------------------------------------------------------------------------------------

# run FOLDER PROGRAM WORD...: everything that comes of it goes to FOLDER.
run() {
    local status=0 into=$1
    shift
    rm -f "$into"/*
    # Standard input is the list of scenarios.
    (cd "$into" && exec "$@" >output 2>errors </dev/null) || status=$?
    echo "$status" >"$into/status"
}

# A collision of addresses (see wine.sh) ends Wine before the tool has begun: it is started again.
run_windows() {
    run windows wine "$windows_tool" "$@"
    while grep -q 'failed to map the shared user data' windows/errors; do
        run windows wine "$windows_tool" "$@"
    done
}

# compare WORD...: both builds in the current folder; says what differs.
compare() {
    run linux "$linux_tool" "$@"
    run_windows "$@"
    if [ ! -s linux/output ] && [ ! -s linux/errors ]; then
        echo "nothing came of: kestova $*"
    elif ! diff -r linux windows >difference; then
        printf 'the builds differ: kestova %s\n' "$*"
        head -n 6 difference | cut -c1-600
    fi
}

# share NUMBER: every scenario of that number modulo the number of shares, in a folder of its own.
share() {
    local number=$1 at=0 words
    mkdir "$folder/$number"
    cd "$folder/$number"
    cp "$folder"/*.json "$folder"/*.jsonl "$folder"/*.txt .
    mkdir linux windows
    while read -r -a words; do
        if [ $((at++ % shares)) -eq "$number" ]; then compare "${words[@]}"; fi
    done <"$folder/list" >differences
}

scenarios >list
compared=$(wc -l <list)
[ "$compared" -gt 500 ] || { echo "only $compared scenarios ran" >&2; exit 1; }

shares=$(nproc)
workers=()
for ((number = 0; number < shares; ++number)); do
    share "$number" &
    workers+=($!)
done
for worker in "${workers[@]}"; do wait "$worker"; done

cat ./[0-9]*/differences >differences
[ ! -s differences ] || { cat differences >&2; exit 1; }
echo "$compared scenarios: both builds answer alike"
