#!/usr/bin/env bash
# Run in a new prefix: gives its PC the drives of a recovery landscape. Their files are made by the tests.
#   E: the recovery partition   F: a fixed drive labelled "Factory"   R: an optical drive   U: a removable drive
#   X: the drive of Windows PE
set -euo pipefail
cd "$WINEPREFIX"
for letter in e f r u x; do
    mkdir "drive_$letter"
    ln -s "../drive_$letter" "dosdevices/$letter:"
done
printf 'Factory\n' >drive_f/.windows-label
for drive in e:=hd f:=hd r:=cdrom u:=floppy x:=hd; do
    wine reg add 'HKLM\Software\Wine\Drives' /v "${drive%=*}" /d "${drive#*=}" /f
done
