#!/usr/bin/env bash
# Sets up, builds and runs the tests of every configuration, or of those named.
#
#   scripts/test.sh [release] [asan] [tsan] [windows]
set -euo pipefail
cd "$(dirname "$0")/.."

configurations=("$@")
[ $# -gt 0 ] || configurations=(release asan tsan windows)

jobs=(test)
[[ " ${configurations[*]} " != *" windows "* ]] || jobs+=(windows)
scripts/bootstrap.sh "${jobs[@]}"

preset_of() {
    case $1 in
    release) echo linux ;;
    asan) echo linux-asan ;;
    tsan) echo linux-tsan ;;
    windows) echo windows ;;
    *)
        echo "test: unknown configuration $1" >&2
        exit 2
        ;;
    esac
}

for configuration in "${configurations[@]}"; do
    preset=$(preset_of "$configuration")
    echo "== $configuration"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
    if [ "$configuration" = windows ]; then
        scripts/wine-run.sh wineboot --init >/dev/null 2>&1 || true # the prefix, before programs race for it
    fi
    ctest --preset "$preset"
done
