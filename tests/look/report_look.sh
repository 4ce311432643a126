#!/usr/bin/env bash
# usage: report_look.sh TOOL FOLDER [record]
#
# What a browser shows of the report, on a desk and on a phone, light and dark, compared with the pictures beside this
# script. What was seen stays in FOLDER; with "record" it becomes what is expected.
set -euo pipefail
tool=$1 folder=$2 mode=${3:-compare}
expected=$(dirname "$(readlink -f "$0")")
# The pictures kept have fewer colours, and fonts are drawn a little differently by each version: 0.004 was seen.
# A page without its drawing differs by 0.14. Of the whole range.
tolerance=0.01
mkdir -p "$folder"
folder=$(readlink -f "$folder")
profile=$(mktemp -d)
trap 'rm -rf "$profile"' EXIT

SOURCE_DATE_EPOCH=1700000000 "$tool" --quiet --pc winpe-media --overwrite report -o "$folder/page.html"
# A window is never as narrow as a phone, but a frame in it is.
printf '%s\n' '<!DOCTYPE html><body style="margin:0"><iframe src="page.html" style="border:0;width:390px;height:1700px">' \
    '</iframe></body>' >"$folder/phone.html"

# see PAGE WIDTH SCHEME FILE: the scheme of the browser, 0 for dark and 1 for light.
see() {
    chromium --headless --no-sandbox --disable-gpu --hide-scrollbars --allow-file-access-from-files \
        --user-data-dir="$profile" --blink-settings=preferredColorScheme="$3" --window-size="$2,1700" \
        --screenshot="$folder/$4" "file://$folder/$1" >"$folder/said" 2>&1 || { cat "$folder/said" >&2; exit 1; }
}
see page.html 1200 1 desk-light.png
see page.html 1200 0 desk-dark.png
see phone.html 500 1 phone-light.png
see phone.html 500 0 phone-dark.png

failed=0
for picture in desk-light desk-dark phone-light phone-dark; do
    if [ "$mode" = record ]; then
        convert "$folder/$picture.png" -colors 256 "PNG8:$expected/$picture.png"
        continue
    fi
    # "4096.2 (0.0625)", with status 1 for the smallest difference; pictures of other sizes have no number.
    said=$(compare -metric RMSE "$folder/$picture.png" "$expected/$picture.png" "$folder/$picture-differs.png" 2>&1) || true
    difference=$(sed -n 's/.*(\(.*\)).*/\1/p' <<<"$said")
    if ! awk -v found="${difference:-1}" -v most="$tolerance" 'BEGIN { exit !(found + 0 <= most + 0) }'; then
        printf '%s differs by %s; see %s\n' "$picture" "${difference:-its size}" "$folder/$picture-differs.png" >&2
        failed=1
    fi
done
exit "$failed"
