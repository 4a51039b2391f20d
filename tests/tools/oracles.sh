#!/usr/bin/env bash
# Compares the command-line program with the system's own programs, on random bytes of many sizes.
#
#   oracles.sh [RUNNER] PROGRAM
set -uo pipefail
qv=("$@")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
comparisons=0

# same NAME: whether both files are the same
same() {
    comparisons=$((comparisons + 1))
    if ! cmp -s "$work/ours" "$work/theirs"; then
        failures=$((failures + 1))
        echo "FAILED $1"
    fi
}

# has PROGRAM: says so where it is missing
has() {
    command -v "$1" >/dev/null && return
    echo "skipped: $1 is not installed"
    return 1
}

enciphered() { openssl enc -bf-ecb -nopad -provider legacy -provider default -K "$1"; }

has md5sum && digests=yes || digests=no
has openssl && ciphers=yes || ciphers=no
has basenc && letters=yes || letters=no

for size in 0 1 2 3 4 5 8 16 55 56 57 63 64 65 119 120 1000 16384 16385 1000000; do
    head -c "$size" /dev/urandom >"$work/bytes"
    if [ $digests = yes ]; then
        "${qv[@]}" digest <"$work/bytes" >"$work/ours"
        md5sum <"$work/bytes" >"$work/theirs"
        same "digest of $size bytes"
    fi
    if [ $letters = yes ]; then
        "${qv[@]}" alphanum -encode <"$work/bytes" >"$work/ours"
        basenc --base32 -w0 <"$work/bytes" | tr -d = | tr A-Z2-7 A-HJ-NP-Z2-9 >"$work/theirs"
        same "letters of $size bytes"
    fi
    if [ $ciphers = yes ]; then
        key=$(head -c 16 /dev/urandom | od -An -tx1 -v | tr -d ' \n')
        head -c $((size / 8 * 8)) "$work/bytes" >"$work/blocks"
        "${qv[@]}" cipher -encrypt -key="$key" <"$work/blocks" >"$work/ours"
        enciphered "$key" <"$work/blocks" >"$work/theirs"
        same "cipher of $size bytes"
        "${qv[@]}" cipher -decrypt -key="$key" <"$work/theirs" >"$work/ours"
        mv "$work/blocks" "$work/theirs"
        same "cipher of $size bytes, back"
    fi
done

echo "$((comparisons - failures)) comparisons agree, $failures do not"
[ $failures -eq 0 ]
