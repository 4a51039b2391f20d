#!/usr/bin/env bash
# Compares the program's output for all Unicode scalar values with that of the system's own iconv.
#
#   all-scalars.sh [RUNNER] PROGRAM
#
# Where the two differ on purpose:
#   UTF-8 decoding   sequences whose second byte is 0xB0 to 0xBF count as bad in four-byte sequences, so
#                    U+30000 to U+3FFFF, U+70000 to U+7FFFF, U+B0000 to U+BFFFF and U+F0000 to U+FFFFF are
#                    written and not read
#   ISO8859_1 decoding  bytes from 0x80 on are widened as signed values: 0xE9 becomes U+FFE9
#   single-byte encoding  what has no form becomes "?", where iconv stops
set -uo pipefail
qv=("$@")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0
passed=0

same() { # NAME FILE FILE
    if cmp -s "$2" "$3"; then
        passed=$((passed + 1))
    else
        failures=$((failures + 1))
        echo "FAILED $1: $(cmp "$2" "$3" 2>&1)"
    fi
}
convert() { "${qv[@]}" convert -from="$1" -to="$2"; }

perl -e 'binmode STDOUT; for (0 .. 0x10FFFF) { print pack("V", $_) unless $_ >= 0xD800 && $_ <= 0xDFFF }' >all
perl -e 'binmode STDOUT; for (0 .. 0x10FFFF) { my $refused = $_ > 0xFFFF && (($_ >> 16) & 3) == 3;
    print pack("V", $_) unless $_ >= 0xD800 && $_ <= 0xDFFF || $refused }' >readable

for encoding in UTF-8 UTF-16LE UTF-16BE UTF-32LE UTF-32BE; do
    iconv -f UTF-32LE -t $encoding <all >expected
    convert UTF-32LE $encoding <all >actual
    same "to $encoding" expected actual
    scalars=all
    [ $encoding != UTF-8 ] || scalars=readable
    iconv -f UTF-32LE -t $encoding <$scalars >encoded
    convert $encoding UTF-32LE <encoded >actual
    same "from $encoding" $scalars actual
done

for pair in CP1252:CP1252 CP437:CP437 ISO8859_1:ISO-8859-1; do
    encoding=${pair%:*}
    name=${pair#*:}
    # The bytes that iconv knows, one by one.
    : >known
    for byte in $(seq 0 255); do
        [ $encoding != ISO8859_1 ] || [ "$byte" -lt 128 ] || break
        # shellcheck disable=SC2059
        printf "\\x$(printf %x "$byte")" >one
        iconv -f "$name" -t UTF-16LE <one >/dev/null 2>&1 && cat one >>known
    done
    iconv -f "$name" -t UTF-16LE <known >expected
    convert $encoding UTF-16LE <known >actual
    same "from $encoding" expected actual

    perl -e 'binmode STDOUT; print pack("C*", 0 .. 255)' >bytes
    iconv -c -f "$name" -t UTF-32LE <bytes >mapped
    iconv -f UTF-32LE -t "$name" <mapped >expected
    convert UTF-32LE $encoding <mapped >actual
    same "to $encoding" expected actual

    # All others become a question mark.
    perl -e 'binmode STDOUT; local $/; open F, "<:raw", "mapped"; my %m = map { $_ => 1 } unpack("V*", <F>);
        open A, "<:raw", "all"; print pack("V*", grep { !$m{$_} } unpack("V*", <A>))' >others
    count=$(($(wc -c <others) / 4))
    head -c $count /dev/zero | tr '\0' '?' >expected
    convert UTF-32LE $encoding <others >actual
    same "to $encoding: no form" expected actual
done

echo "$passed passed, $failures failed"
[ "$failures" -eq 0 ]
