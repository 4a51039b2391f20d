#!/usr/bin/env bash
# Installs the build, builds an outside project against the installed tree by find_package and by
# pkg-config, and runs both.
#
#   install.sh BUILD-FOLDER SOURCE-FOLDER
set -euo pipefail
build=$1
source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/prefix" >/dev/null
program=$source/examples/FirstProgram.cpp

cmake -G Ninja -S "$source/tests/install/project" -B "$work/outside" -DPROGRAM="$program" \
    -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/outside" >/dev/null
cd "$source"
"$work/outside/outside" | grep -q "96 units: All human"
echo "find_package: passed"

if command -v pkg-config >/dev/null; then
    library=$(dirname "$(find "$work/prefix" -name qvcl.pc)")
    export PKG_CONFIG_PATH="$library"
    # shellcheck disable=SC2046
    c++ -std=c++20 "$program" -o "$work/by-pkg-config" $(pkg-config --cflags --libs qvcl)
    LD_LIBRARY_PATH="$library/.." "$work/by-pkg-config" | grep -q "96 units: All human"
    echo "pkg-config: passed"
fi

"$work/prefix/bin/qv" version
