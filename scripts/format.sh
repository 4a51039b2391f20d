#!/usr/bin/env bash
# Formats all sources of the tree, or, with --check, says which are not formatted and fails.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(-i)
[ "${1:-}" != --check ] || mode=(--dry-run --Werror)
git ls-files -z --cached --others --exclude-standard '*.cpp' '*.h' |
    xargs -0 -n 20 -P 2 clang-format "${mode[@]}"
