#!/usr/bin/env bash
# Makes the texts that the converters are measured with out of the installed manual pages:
# FOLDER/{english,french,russian,chinese,japanese}.txt, UTF-8, about 8 MB each. A language without
# installed pages is left out.
#
# Usage: scripts/make-bench-texts.sh FOLDER
set -eu

folder=${1:?usage: $0 FOLDER}
size=$((8 * 1024 * 1024))
mkdir -p "$folder"

# make_text NAME PAGES: the pages of a language one behind the other, over again until the size is reached.
make_text() {
    local target="$folder/$1.txt" pages="$folder/$1.pages"
    find "$2" -maxdepth 2 -path "$2/man*" -name '*.gz' -type f 2>/dev/null | LC_ALL=C sort |
        xargs -r zcat -f 2>/dev/null | iconv -c -f UTF-8 -t UTF-8 | head -c "$size" >"$pages" || true
    if [ ! -s "$pages" ]; then
        rm -f "$pages" "$target"
        echo "no manual pages in $2: $1 is left out" >&2
        return
    fi
    : >"$target.part"
    while [ "$(stat -c %s "$target.part")" -lt "$size" ]; do
        cat "$pages" >>"$target.part"
    done
    head -c "$size" "$target.part" | { iconv -c -f UTF-8 -t UTF-8 2>/dev/null || true; } >"$target"
    rm -f "$pages" "$target.part"
}

make_text english /usr/share/man
make_text french /usr/share/man/fr
make_text russian /usr/share/man/ru
make_text chinese /usr/share/man/zh_CN
make_text japanese /usr/share/man/ja
