#!/bin/sh
# Lays out an application folder, checks what is in it, and that laying it out again leaves what was
# written there since.
#
#   check_install.sh BUILD_FOLDER APPLICATION_FOLDER

set -eu
build=$1
app=$2

fail() {
    echo "FAILED: $*"
    exit 1
}

rm -rf "$app"
cmake --install "$build" --prefix "$app" > /dev/null
for folder in Profiles Data Log/Backup Log/Restore Queue BackupPackages Help; do
    [ -d "$app/$folder" ] || fail "no folder $folder"
    [ "$folder" = Data ] || [ -z "$(ls -A "$app/$folder")" ] || fail "$folder is not empty"
done
[ -x "$app/vardelinctl" ] || fail "no program in the root"
[ ! -x "$build/src/app/vardelin" ] || [ -x "$app/vardelin" ] || fail "no window in the root"
if [ -x "$app/vardelin" ]; then
    [ "$(head -c 6 "$app/Compress_ani.gif")" = GIF89a ] || fail "no animation in the root"
    grep -qx "Exec=\"$app/vardelin\" %f" "$app/share/applications/vardelin.desktop" ||
        fail "the desktop file names another program"
fi
for monitor in VDFileMon VDIdleMon VDScheduleMon; do
    [ -x "$app/$monitor" ] || fail "no $monitor beside the program"
done
[ -f "$app/Data/Other_Dsk.txt" ] || fail "no list of recent profiles"
[ ! -s "$app/Data/Other_Dsk.txt" ] || fail "the list of recent profiles is not empty"
[ -s "$app/share/man/man1/vardelinctl.1" ] || fail "no manual page"
[ -s "$app/share/bash-completion/completions/vardelinctl" ] || fail "no completion"

printf '[Recent Profile]\r\nMine.vdp\r\n' > "$app/Data/Other_Dsk.txt"
echo mine > "$app/Profiles/Mine.vdp"
echo log > "$app/Log/Backup/Mine.txt"
cmake --install "$build" --prefix "$app" > /dev/null
[ "$(wc -c < "$app/Data/Other_Dsk.txt")" -eq 28 ] || fail "the list of recent profiles was replaced"
[ "$(cat "$app/Profiles/Mine.vdp")" = mine ] || fail "a profile was replaced"
[ "$(cat "$app/Log/Backup/Mine.txt")" = log ] || fail "a log was replaced"
