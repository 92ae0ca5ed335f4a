#!/usr/bin/env bash
# Fails when anything under the core's source folder includes a Qt header.
set -euo pipefail
if grep -rnE '#\s*include\s*[<"](Q[A-Za-z]+|Qt[A-Za-z]*/)' "$1"; then
    echo "Qt header included in the core" >&2
    exit 1
fi
echo "core is free of Qt headers"
