#!/usr/bin/env bash
# Kills a program that saves whole days in a loop, at random moments, again
# and again; after each kill the diary must be sound and every day whole:
# what was committed stays, and no day is ever left half written.
set -euo pipefail
saver=$1
resources=$2
kills=${3:-60}
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

for ((i = 1; i <= kills; i++)); do
    "$saver" save "$dir" "$resources" &
    pid=$!
    # Somewhere between the start-up and a few dozen saves.
    sleep "0.$(printf '%03d' $((RANDOM % 250 + 20)))"
    kill -9 "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
    if ! "$saver" check "$dir" "$resources" >/dev/null; then
        echo "after kill $i the diary was damaged or a day was half written" >&2
        exit 1
    fi
done
echo "$kills kills, every day whole: $("$saver" check "$dir" "$resources")"
