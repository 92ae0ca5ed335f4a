#!/bin/sh
# Runs the core tests that need a disk of their own, one they can turn
# read-only or fill up under the program: a small tmpfs, mounted in a mount
# namespace of this run alone, so nothing outside sees it. Where the system
# refuses a namespace or the mount, the tests are reported as skipped.
#
# Usage: run_on_own_disk.sh <tilika_core_tests>
binary=$1
if ! unshare -m true 2>/dev/null; then
    echo "SKIPPED: 'unshare -m' is refused here, so the writes on a read-only or full disk were not tried"
    exit 77
fi
exec unshare -m sh -c '
    disk=$(mktemp -d) || exit 1
    if ! mount -t tmpfs -o size=1m tilika-own-disk "$disk"; then
        rmdir "$disk"
        echo "SKIPPED: a tmpfs could not be mounted, so the writes on a read-only or full disk were not tried"
        exit 77
    fi
    TMPDIR="$disk" TILIKA_TEST_DISK="$disk" "$1" --gtest_filter="OwnDiskTest.*"
    status=$?
    umount "$disk" && rmdir "$disk"
    exit $status
' sh "$binary"
