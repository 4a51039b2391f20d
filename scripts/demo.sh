#!/usr/bin/env bash
# Sets up, builds the library and its program, and runs the main job on a real text: it goes in through a
# file stream, is decoded, encoded, and goes out. Says what it did.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/bootstrap.sh
cmake --preset linux -DQVCL_TESTS=OFF -B build/demo >/dev/null
cmake --build build/demo >/dev/null
qv=build/demo/bin/qv
text=examples/texts/declaration.txt
out=build/demo/texts
mkdir -p "$out"

echo "$("$qv" version), built in build/demo"
echo "read      $text: $(wc -c <"$text") bytes of UTF-8, $(wc -l <"$text") lines in seven languages"
for encoding in UTF-16LE UTF-32BE CP1252 AMP-7; do
    "$qv" convert -from=UTF-8 -to=$encoding -in="$text" -out="$out/$encoding"
    "$qv" convert -from=$encoding -to=UTF-8 -in="$out/$encoding" -out="$out/$encoding.back"
    if cmp -s "$text" "$out/$encoding.back"; then
        back="comes back byte for byte"
    else
        back="comes back with ? for what the encoding has no form for"
    fi
    printf 'converted to %-9s %6d bytes, %s\n' "$encoding:" "$(wc -c <"$out/$encoding")" "$back"
done
echo "the text in AMP-7 begins: $(sed -n 4p "$out/AMP-7" | cut -c1-72)"
echo "the files are in $out"
