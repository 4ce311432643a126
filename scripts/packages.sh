# Installs what packages.txt lists. Sourced by ./dev.
# shellcheck shell=bash

# packages_of GROUP...: the packages of the groups, a line each.
packages_of() {
    local group
    for group in "$@"; do
        awk -v group="$group" '$1 == group { print $2 }' packages.txt
    done
}

# need WHY GROUP...: installs the packages of the groups that are missing, and says so first.
need() {
    local why=$1 package missing=()
    shift
    while read -r package; do
        dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -q '^installed$' || missing+=("$package")
    done < <(packages_of "$@" | sort -u)
    [ ${#missing[@]} -gt 0 ] || return 0
    say "Installing, $why: ${missing[*]}"
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "these packages are missing, and neither root nor sudo is at hand: ${missing[*]}"
        as_root=(sudo)
    fi
    local start=$SECONDS
    quietly "installing ${missing[*]} with apt-get" install_packages
    say "  (installed in $(after "$start"))"
}

# Uses the caller's as_root and missing.
install_packages() {
    "${as_root[@]}" apt-get update -qq &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
}
