#!/usr/bin/env bash
# Runs clang-tidy over the library's and the tool's sources, or over those named.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/bootstrap.sh test format
cmake --preset linux >/dev/null

sources=("$@")
if [ $# -eq 0 ]; then
    mapfile -t sources < <(git ls-files 'qv/*.cpp' 'face/*.cpp' 'qvcore/common/*.cpp' \
        'qvcore/posix/*.cpp' 'tools/*.cpp' | grep -v /windows/)
fi
printf '%s\0' "${sources[@]}" | xargs -0 -n 4 -P 2 clang-tidy --quiet -p build/linux
