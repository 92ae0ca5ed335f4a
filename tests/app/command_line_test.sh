#!/usr/bin/env bash
# Starts the program the way a user would and checks what it leaves behind.
set -euo pipefail
tilika=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

# Without a display it explains itself in one line and exits with 2.
set +e
message=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$tilika" --data-dir "$work/none" 2>&1)
status=$?
set -e
[ "$status" -eq 2 ] || fail "no display: exit $status"
[ "$(printf '%s\n' "$message" | wc -l)" -eq 1 ] || fail "no display: more than one line: $message"
[[ "$message" == *--screenshot* ]] || fail "no display: the line does not say what to do"
[ ! -e "$work/none" ] || fail "no display: data folder created anyway"

# With --screenshot it draws the first screen and sets up the data folder.
env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM \
    "$tilika" --data-dir "$work/data" --screenshot "$work/shot.png" 2>/dev/null \
    || fail "screenshot run failed"
[ "$(head -c 8 "$work/shot.png" | od -An -tx1 | tr -d ' \n')" = "89504e470d0a1a0a" ] \
    || fail "screenshot is not a PNG"
for folder in Documents/reserv Documents/picture Documents/picture-s Documents/analizy \
              Documents/documents Library tmp Cloud; do
    [ -d "$work/data/$folder" ] || fail "missing folder $folder"
done
[ -f "$work/data/Documents/reserv/child.sqlite" ] || fail "no database"

# A second start the same day keeps the same identity and makes no new copy
# (unless midnight passed in between).
day=$(date +%F)
copies=$(ls "$work/data/Documents/reserv" | wc -l)
guid=$(grep appguid "$work/data/Library/settings.json")
"$tilika" --data-dir "$work/data" --screenshot "$work/shot2.png" 2>/dev/null || fail "second run"
if [ "$(date +%F)" = "$day" ]; then
    [ "$(ls "$work/data/Documents/reserv" | wc -l)" -eq "$copies" ] || fail "second copy on one day"
fi
[ "$(grep appguid "$work/data/Library/settings.json")" = "$guid" ] || fail "identity changed"

echo "command line checks passed"
