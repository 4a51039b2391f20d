#!/usr/bin/env bash
# Shows that the library's load notification is the last of its static constructors: the last entry of the
# module's table of them is the one of LoadNotification.cpp.
set -euo pipefail
library=$1
# The entries are filled in by relocations whose addend is the function's address.
section=$(readelf -SW "$library" | sed -n 's/.* \.init_array  *INIT_ARRAY  *\([0-9a-f]*\) [0-9a-f]* \([0-9a-f]*\).*/\1 \2/p')
start=$((16#${section% *}))
size=$((16#${section#* }))
last=$(printf '%016x' $((start + size - 8)))
function=$(readelf -rW "$library" | awk -v at="$last" '$1 == at { print $NF }')
name=$(nm "$library" | awk -v at="$(printf '%016x' $((16#$function)))" '$1 == at { print $3 }')
echo "last of $((size / 8)) static constructors: $name"
[[ $name == *LoadNotification* ]] || [[ $name == *notification* ]]
