#!/usr/bin/env bash
# Installs from Debian's packages what a job needs and this machine lacks. Nothing is touched where all is
# there.
#
#   scripts/bootstrap.sh [build] [test] [windows] [bench] [format]
#
# build    the compiler and the build tools (what every job needs)
# test     GoogleTest's sources and the oracles of the tests
# windows  the cross compiler and Wine
# bench    Google Benchmark, the peers and the texts of the benchmarks
# format   the formatter and the linter
set -euo pipefail

packages_of() {
    case $1 in
    build) echo g++ cmake ninja-build ;;
    test) echo googletest locales pkg-config binutils libgmp-dev libssl-dev openssl python3 ;;
    windows) echo g++-mingw-w64-x86-64-posix wine wine64 ;;
    bench) echo libbenchmark-dev libicu-dev qtbase5-dev libboost-dev libgmp-dev libpoco-dev libssl-dev \
        pkg-config \
        manpages manpages-fr manpages-ru manpages-zh manpages-ja ;;
    format) echo clang-format clang-tidy ;;
    *)
        echo "bootstrap: unknown job $1" >&2
        exit 2
        ;;
    esac
}

is_installed() {
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

missing=()
for job in build "$@"; do
    packages=$(packages_of "$job")
    for package in $packages; do
        is_installed "$package" || missing+=("$package")
    done
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
echo "bootstrap: installing ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
