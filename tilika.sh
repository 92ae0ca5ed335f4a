#!/usr/bin/env bash
# One entry point for a fresh Debian 12 machine:
#   ./tilika.sh          install what is missing, build, and start Tilika
#   ./tilika.sh test     install what is missing, build, and run every test
#   ./tilika.sh install [PREFIX]   build, and install Tilika into PREFIX (~/.local)
# Anything after the command word is passed on (to the program, or to ctest).
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")"

install_missing_packages() {
    local wanted missing
    wanted=$(grep -v '^\s*#' scripts/debian-packages.txt | grep -v '^\s*$')
    # One dpkg-query for the whole list keeps a warm run instant.
    missing=$(for p in $wanted; do
        dpkg-query -W -f='${Status}\n' "$p" 2>/dev/null | grep -q '^install ok installed$' || echo "$p"
    done)
    [ -z "$missing" ] && return 0

    echo "tilika: installing missing packages:" $missing
    local sudo=""
    if [ "$(id -u)" -ne 0 ]; then
        sudo="sudo"
    fi
    export DEBIAN_FRONTEND=noninteractive
    $sudo apt-get update -q
    # shellcheck disable=SC2086
    $sudo apt-get install -y -q --no-install-recommends $missing
}

build() {
    if [ ! -f build/build.ninja ]; then
        cmake --preset default
    fi
    cmake --build --preset default
}

command=${1:-run}
[ $# -gt 0 ] && shift

case "$command" in
    run)
        install_missing_packages
        build
        exec build/tilika "$@"
        ;;
    test)
        install_missing_packages
        build
        ctest --preset default "$@"
        ;;
    install)
        install_missing_packages
        build
        cmake --install build --prefix "${1:-$HOME/.local}"
        ;;
    *)
        echo "usage: ./tilika.sh [test | install [PREFIX]]" >&2
        exit 64
        ;;
esac
