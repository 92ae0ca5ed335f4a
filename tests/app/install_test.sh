#!/usr/bin/env bash
# Installs the build the way a user or a package does, moves the installed tree
# elsewhere, and starts the program from there: everything it needs has to come
# from the installed tree, found from the executable's own place.
#   install_test.sh CMAKE BUILD_DIR BUILD_TREE_TILIKA
set -euo pipefail
cmake=$1
build=$2
built_tilika=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

"$cmake" --install "$build" --prefix "$work/staged" >/dev/null || fail "cmake --install failed"
mv "$work/staged" "$work/prefix"
prefix=$work/prefix
tilika=$prefix/bin/tilika
[ -x "$tilika" ] || fail "no bin/tilika"

# Every resource the build made is installed, and nothing of the build's own.
(cd "$build/resources" && find . -type f ! -name .stamp | sort) >"$work/built"
(cd "$prefix/share/tilika" && find . -type f | sort) >"$work/installed"
diff "$work/built" "$work/installed" >&2 || fail "installed resources differ from the built ones"

# The installed program starts and draws the same first screen as the one in
# the build tree, which it could not do without its database, words and pictures.
export QT_QPA_PLATFORM=offscreen
"$tilika" --data-dir "$work/d" --screenshot "$work/s.png" 2>"$work/log" \
    || { cat "$work/log" >&2; fail "the installed program did not start"; }
[ "$(head -c 8 "$work/s.png" | od -An -tx1 | tr -d ' \n')" = "89504e470d0a1a0a" ] \
    || fail "screenshot is not a PNG"
[ "$(stat -c %s "$work/s.png")" -gt 10000 ] || fail "screenshot is nearly empty"
tables=$(sqlite3 "$work/d/Documents/reserv/child.sqlite" "select count(*) from sqlite_master")
[ "$tables" -gt 0 ] || fail "the database was not made from the installed template"
"$built_tilika" --data-dir "$work/d-built" --screenshot "$work/s-built.png" 2>/dev/null \
    || fail "the build tree's program did not start"
cmp -s "$work/s.png" "$work/s-built.png" \
    || fail "the installed program draws its first screen differently from the built one"

# The menu entry is clean and points at what was installed.
desktop=$prefix/share/applications/tilika.desktop
command -v desktop-file-validate >/dev/null || fail "desktop-file-validate is not installed"
report=$(desktop-file-validate "$desktop" 2>&1) || fail "desktop-file-validate: $report"
[ -z "$report" ] || fail "desktop-file-validate: $report"
exec_name=$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$desktop")
[ -x "$prefix/bin/$exec_name" ] || fail "Exec=$exec_name is not the installed program"
icon=$(sed -n 's/^Icon=//p' "$desktop")
[ -f "$prefix/share/icons/hicolor/scalable/apps/$icon.svg" ] || fail "no icon named $icon"

# The software-centre metadata names the same menu entry, and validates.
metainfo=$(ls "$prefix"/share/metainfo/*.metainfo.xml)
grep -q '<launchable type="desktop-id">tilika.desktop</launchable>' "$metainfo" \
    || fail "the metadata does not launch tilika.desktop"
if command -v appstreamcli >/dev/null; then
    appstreamcli validate --no-net "$metainfo" >"$work/appstream" 2>&1 \
        || { cat "$work/appstream" >&2; fail "appstreamcli validate"; }
else
    echo "appstreamcli is not installed: the metadata is not validated"
fi

echo "install checks passed"
