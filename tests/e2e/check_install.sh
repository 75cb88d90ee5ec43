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

# What a desktop that has the installed folder among its own makes of a profile. Works on a copy, for
# a desktop keeps its indexes beside what it reads.
checkDesktop() {
    for tool in update-mime-database update-desktop-database desktop-file-validate gio; do
        command -v "$tool" > /dev/null || {
            echo "not asked what a desktop makes of a profile: $tool is missing"
            return 0
        }
    done
    data=$app.desktop
    rm -rf "$data"
    mkdir -p "$data/home"
    cp -R "$app/share" "$data/share"
    desktop-file-validate "$data/share/applications/vardelin.desktop" || fail "the desktop file"
    printf 'scrambled' > "$data/Work.vdp"
    desktop="env HOME=$data/home XDG_DATA_HOME=$data/home/share XDG_DATA_DIRS=$data/share
        XDG_CONFIG_HOME=$data/home/config XDG_CONFIG_DIRS=$data/home XDG_CURRENT_DESKTOP= DISPLAY="
    # shellcheck disable=SC2086 # words
    $desktop update-mime-database "$data/share/mime" || fail "the type of profiles"
    update-desktop-database "$data/share/applications" || fail "the index of desktop files"
    # shellcheck disable=SC2086
    $desktop gio info -a standard::content-type,standard::icon "$data/Work.vdp" > "$data/info"
    grep -q 'content-type: application/x-vardelin-profile$' "$data/info" ||
        fail "a profile has another type: $(cat "$data/info")"
    grep -q 'icon: application-x-vardelin-profile,' "$data/info" ||
        fail "a profile has another icon: $(cat "$data/info")"
    # shellcheck disable=SC2086
    $desktop gio mime application/x-vardelin-profile > "$data/handlers"
    grep -q 'vardelin.desktop' "$data/handlers" ||
        fail "nothing opens profiles: $(cat "$data/handlers")"
    rm -rf "$data"
}

rm -rf "$app"
cmake --install "$build" --prefix "$app" > /dev/null
for folder in Profiles Data Log/Backup Log/Restore Queue BackupPackages Help; do
    [ -d "$app/$folder" ] || fail "no folder $folder"
    case $folder in
    Data | Help) ;;
    *) [ -z "$(ls -A "$app/$folder")" ] || fail "$folder is not empty" ;;
    esac
done
if [ -d "$build/help" ]; then
    cmp -s "$build/help/VardelinHelp.html" "$app/Help/VardelinHelp.html" || fail "no help"
    # What its pages show and lead to has come along; names there hold no blanks.
    links=$(grep -Eho '(href|src)="[^"#]+' "$app"/Help/*.html | sed 's/.*="//' | sort -u)
    [ "$(echo "$links" | wc -l)" -gt 20 ] || fail "the help leads nowhere"
    for link in $links; do
        [ -s "$app/Help/$link" ] || fail "$link of the help is missing"
    done
fi
[ -x "$app/vardelinctl" ] || fail "no program in the root"
[ ! -x "$build/src/app/vardelin" ] || [ -x "$app/vardelin" ] || fail "no window in the root"
if [ -x "$app/vardelin" ]; then
    [ "$(head -c 6 "$app/Compress_ani.gif")" = GIF89a ] || fail "no animation in the root"
    grep -qx "Exec=\"$app/vardelin\" %f" "$app/share/applications/vardelin.desktop" ||
        fail "the desktop file names another program"
    grep -qx 'MimeType=application/x-vardelin-profile;' "$app/share/applications/vardelin.desktop" ||
        fail "the desktop file opens no profiles"
    for icon in apps/vardelin mimetypes/application-x-vardelin-profile; do
        [ -s "$app/share/icons/hicolor/scalable/$icon.svg" ] || fail "no icon $icon"
    done
    checkDesktop
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
