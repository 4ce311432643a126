# The fuzz targets, built and run. Sourced by ./dev.
# shellcheck shell=bash

# What fuzzing finds is kept outside the tree: the inputs of each target, from run to run, and crashes.
fuzz_folder=${XDG_CACHE_HOME:-${HOME:-$temporary}/.cache}/kestova-fuzz
fuzz_figures=tests/figures/fuzz.tsv

fuzz_targets() { sed -n 's/^\([a-z][a-z-]*\) .*/\1/p' fuzz/targets.txt; }

# fuzz_length TARGET: its longest input, of the table.
fuzz_length() { awk -v target="$1" '$1 == target { print $2 }' fuzz/targets.txt; }

# fuzz_corpus TARGET PRESET: the folder of the inputs that it keeps. In the preset sanitize they are not kept from run to
# run: what it tries depends on the sources alone.
fuzz_corpus() {
    if [ "$2" = sanitize ]; then echo "$temporary/corpus/$1"; else echo "$fuzz_folder/corpus/$1"; fi
}

# fuzz_seed PRESET: what its random numbers begin with; 0 is another number in each run.
fuzz_seed() {
    if [ "$1" = sanitize ]; then echo 1; else echo 0; fi
}

# fuzz_one TARGET SECONDS PRESET: one run, at most half a minute longer than that. Its words are in
# $temporary/fuzz-TARGET.
fuzz_one() {
    local target=$1 status=0 start=$SECONDS corpus
    corpus=$(fuzz_corpus "$target" "$3")
    mkdir -p "$corpus" "$fuzz_folder/crashes"
    fuzz/make-seeds "$target" "$temporary/seeds/$target" >"$temporary/fuzz-$target" 2>&1 || status=$?
    if [ "$status" -eq 0 ]; then
        timeout $(($2 + 30)) "build/$3/fuzz/$target" -max_total_time="$2" -max_len="$(fuzz_length "$target")" \
            -seed="$(fuzz_seed "$3")" -timeout=20 -rss_limit_mb=1024 -print_final_stats=1 -artifact_prefix="$fuzz_folder/crashes/$target-" \
            "$corpus" "$temporary/seeds/$target" >"$temporary/fuzz-$target" 2>&1 || status=$?
    fi
    printf '%s %s %s\n' "$target" "$status" $((SECONDS - start)) >>"$temporary/fuzz-done"
}

# fuzz_executions TARGET: how many inputs its run has tried. One that its time limit ends says so twice.
fuzz_executions() { sed -n 's/^stat::number_of_executed_units: *//p' "$temporary/fuzz-$1" | tail -n 1; }

# fuzz_report TARGET STATUS SECONDS PRESET: a line about a run, all of it after a crash, and the figures of one that took a
# minute or more, or ended with a crash.
fuzz_report() {
    local target=$1 crashes=0 executions inputs
    [ "$2" -eq 0 ] || crashes=1
    executions=$(fuzz_executions "$target")
    inputs=$(find "$(fuzz_corpus "$target" "$4")" -type f | wc -l)
    printf '  %-18s %9s executions, %5s inputs kept, crashes: %s\n' "$target" "${executions:-?}" "$inputs" "$crashes"
    if [ "$3" -ge 60 ] || [ "$crashes" -eq 1 ]; then
        printf '%s\t%s\t%s\t%s\t%s\t%s\t%s\n' "$(date -u +%F)" "$(git rev-parse --short HEAD)" "$target" "$3" \
            "${executions:-0}" "$inputs" "$crashes" >>"$fuzz_figures"
    fi
    [ "$crashes" -eq 1 ] || return 0
    tail -n 60 "$temporary/fuzz-$target" >&2
    local saved
    saved=$(sed -n 's/.*Test unit written to //p' "$temporary/fuzz-$target")
    say "$target: crashed; run it again with: build/$4/fuzz/$target ${saved:-$(fuzz_corpus "$target" "$4")/*}" >&2
}

# fuzz [TARGET|all] [SECONDS [PRESET]]: two at a time; every target, five seconds each, unless more is said. In the
# preset sanitize only the targets themselves say what an input reaches: that does for a few seconds, and needs no build of
# its own.
fuzz() {
    local seconds=${2:-5} preset=${3:-fuzz} start=$SECONDS targets target status took failed=0
    mapfile -t targets < <(fuzz_targets)
    if [ "${1:-all}" != all ]; then
        [[ " ${targets[*]} " == *" $1 "* ]] || fail "fuzz what? one of: all ${targets[*]}"
        targets=("$1")
    fi
    [[ $seconds =~ ^[1-9][0-9]{0,5}$ ]] || fail "fuzz for how many seconds? not '$seconds'"
    build "$preset" kestova_fuzz
    export -f fuzz_one fuzz_length fuzz_corpus fuzz_seed
    export temporary fuzz_folder
    # shellcheck disable=SC2016 # expanded by the shells that xargs starts
    printf '%s\n' "${targets[@]}" | xargs -P 2 -I '{}' bash -c 'fuzz_one "$@"' - '{}' "$seconds" "$preset"
    while read -r target status took; do
        fuzz_report "$target" "$status" "$took" "$preset"
        [ "$status" -eq 0 ] || failed=$((failed + 1))
    done <"$temporary/fuzz-done"
    [ "$(wc -l <"$temporary/fuzz-done")" -eq ${#targets[@]} ] || fail "fuzz: not every target ran"
    [ "$failed" -eq 0 ] || fail "fuzz: $failed of ${#targets[@]} targets crashed"
    say "fuzz: ${#targets[@]} targets, $seconds seconds each, no crash; $(after "$start")"
}
