#!/usr/bin/env bash
# Starts the program on a data folder it can't have, the way a user would meet
# one: held by another program (lock), or on a disk turned read-only or full
# (unwritable). The tests run as root, where file modes stop nothing, so the
# disk is a small tmpfs in a mount namespace of the test's own.
#
#   data_folder_test.sh TILIKA lock|unwritable SCREENSHOT_DIR
set -euo pipefail
tilika=$1
mode=$2
shots=$3

if [ "$mode" = unwritable ] && [ "${TILIKA_OWN_MOUNTS:-}" != 1 ]; then
    if ! unshare -m true 2>/dev/null; then
        echo "SKIP: unshare -m is refused here, so no read-only disk can be made for the test"
        exit 77
    fi
    TILIKA_OWN_MOUNTS=1 exec unshare -m --propagation private "$0" "$@"
fi

work=$(mktemp -d)
holder=
cleanup() {
    [ -z "$holder" ] || kill "$holder" 2>/dev/null || true
    if [ "$mode" = unwritable ]; then umount "$work/disk" 2>/dev/null || true; fi
    rm -rf "$work"
}
trap cleanup EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

# Runs the program with --screenshot into $work/shot.png; sets status and err.
run() {
    rm -f "$work/shot.png"
    set +e
    err=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM \
          "$tilika" --data-dir "$1" --screenshot "$work/shot.png" 2>&1 >/dev/null)
    status=$?
    set -e
}

is_png() {
    [ "$(head -c 8 "$1" 2>/dev/null | od -An -tx1 | tr -d ' \n')" = "89504e470d0a1a0a" ]
}

if [ "$mode" = lock ]; then
    data=$work/data
    lock=$data/Library/tilika.lock
    run "$data"
    [ "$status" -eq 0 ] || fail "first start: exit $status: $err"

    # A living process holds the lock: the program says it is already open.
    ( exec 9>>"$lock"; flock -n 9 || exit 1; touch "$work/held"; exec sleep 60 ) &
    holder=$!
    for _ in $(seq 100); do [ -e "$work/held" ] && break; sleep 0.1; done
    [ -e "$work/held" ] || fail "the test could not take the lock"
    run "$data"
    [ "$status" -eq 1 ] || fail "held lock: exit $status"
    [[ "$err" == *"already open"* ]] || fail "held lock: $err"
    is_png "$work/shot.png" || fail "held lock: no picture of the message"

    # The holder dies as a crash would, leaving its file: the lock is taken over.
    kill -9 "$holder"
    wait "$holder" 2>/dev/null || true
    holder=
    [ -e "$lock" ] || fail "the lock file went away with its holder"
    run "$data"
    [ "$status" -eq 0 ] || fail "stale lock: exit $status: $err"
    grep -q '^[0-9][0-9]*$' "$lock" || fail "the lock file does not name its holder"
    echo "lock checks passed"
    exit 0
fi

[ "$mode" = unwritable ] || fail "unknown mode $mode"
mkdir "$work/disk"
mount -t tmpfs -o size=4m tmpfs "$work/disk" || fail "cannot mount a tmpfs in the namespace"
run "$work/disk/used"
[ "$status" -eq 0 ] || fail "writable disk: exit $status: $err"
mount -o remount,ro "$work/disk" || fail "cannot make the tmpfs read-only"

# A new folder on a read-only disk: a window with the folder and the reason.
run "$work/disk/new"
[ "$status" -eq 1 ] || fail "read-only, new folder: exit $status"
[[ "$err" == *"$work/disk/new"*"Read-only file system"* ]] || fail "read-only, new folder: $err"
is_png "$work/shot.png" || fail "read-only, new folder: no picture of the message"
mkdir -p "$shots"
cp "$work/shot.png" "$shots/folder_not_writable.png"

# A folder used before, with its lock file: still the disk, not "already open".
run "$work/disk/used"
[ "$status" -eq 1 ] || fail "read-only, used folder: exit $status"
[[ "$err" == *"Read-only file system"* ]] || fail "read-only, used folder: $err"
[[ "$err" != *"already open"* ]] || fail "read-only taken for a running program: $err"

# A full disk.
mount -o remount,rw "$work/disk"
dd if=/dev/zero of="$work/disk/filler" bs=64k 2>/dev/null || true
run "$work/disk/full"
[ "$status" -eq 1 ] || fail "full disk: exit $status"
[[ "$err" == *"No space left on device"* ]] || fail "full disk: $err"
is_png "$work/shot.png" || fail "full disk: no picture of the message"

echo "unwritable folder checks passed"
