#!/usr/bin/env bash
# Runs clang-tidy over the library's and the tool's sources, or over those named.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/bootstrap.sh test format
cmake --preset linux >/dev/null

# The linter's compiler does not know each of the build compiler's flags.
mkdir -p build/lint
sed 's/ -fno-gnu-unique//' build/linux/compile_commands.json >build/lint/compile_commands.json

sources=("$@")
if [ $# -eq 0 ]; then
    mapfile -t sources < <(git ls-files 'qv/*.cpp' 'face/*.cpp' 'qvcore/*.cpp' 'tools/*.cpp' |
        grep -v /windows/)
fi
printf '%s\0' "${sources[@]}" | xargs -0 -n 1 -P 2 clang-tidy --quiet -p build/lint
