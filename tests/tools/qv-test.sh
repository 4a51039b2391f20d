#!/usr/bin/env bash
# Uses the command-line program as a shell user would, on real and on hostile input.
#
#   qv-test.sh [RUNNER] PROGRAM
set -uo pipefail
qv=("$@")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
checks=0

# check NAME EXPECTED ACTUAL
check() {
    checks=$((checks + 1))
    if [ "$2" != "$3" ]; then
        failures=$((failures + 1))
        printf 'FAILED %s\n  expected: %s\n  actual:   %s\n' "$1" "$2" "$3"
    fi
}

# fails NAME EXIT-CODE TEXT COMMAND...: exit code and the whole of standard error
fails() {
    local name=$1 code=$2 text=$3
    shift 3
    local message
    message=$("$@" 2>&1 >/dev/null </dev/null)
    check "$name: exit code" "$code" $?
    check "$name: standard error" "$text" "$message"
}

hex() { od -An -tx1 -v | tr -d ' \n'; }

# Under Wine a path of this system is one of its drive Z, but for the separator.
path() { printf '%s' "$1"; }

check version "qv 7.0.0" "$("${qv[@]}" version)"
check "help names every command" 15 "$("${qv[@]}" help | grep -c '^  ')"
check "help of a command" "usage: qv lock -name=NAME [-hold=MILLISECONDS]" "$("${qv[@]}" help lock | head -1)"
for command in $("${qv[@]}" help | tr -d '\r' | awk '/^  / { print $1 }'); do
    check "help of $command" "usage: qv $command" "$("${qv[@]}" help "$command" | head -1 | cut -d' ' -f1-3)"
done
check "encodings are sorted" "" "$("${qv[@]}" encodings | cut -f1 | LC_ALL=C sort -c 2>&1)"
check "encodings: code page and alias" "$(printf 'CP1252\t1252\tWINDOWS-1252\tbuiltin')" \
    "$("${qv[@]}" encodings | grep '^CP1252')"
check "encodings: nothing serves it" "$(printf 'EUCJP\t20932\tEUC-JP,EUC_JP\tmissing')" \
    "$("${qv[@]}" encodings | grep '^EUCJP')"
check "encodings: all of them" 33 "$("${qv[@]}" encodings | wc -l)"
check "classes: with a factory" "$(printf 'CQVString\t+')" "$("${qv[@]}" classes | grep '^CQVString	')"
check "classes: without a factory" "$(printf 'CQVReader\t-')" "$("${qv[@]}" classes | grep '^CQVReader')"
check "classes are sorted" "" "$("${qv[@]}" classes | cut -f1 | LC_ALL=C sort -c 2>&1)"
check path "root=C:\\ absolute=true unc=false drive=C: directory=C:\\x name=a.b.c basename=a.b extension=.c parent=C:\\x text=C:\\x\\a.b.c" \
    "$("${qv[@]}" path '-text=C:/x/a.b.c' | tr '\n' ' ' | sed 's/ $//')"
check "path: of a server" "root=\\\\s\\h\\ absolute=true unc=true drive=\\\\s\\h directory=\\\\s\\h\\ name=a basename=a extension= parent=\\\\s\\h\\ text=\\\\s\\h\\a" \
    "$("${qv[@]}" path '-text=//s/h/a' | tr '\n' ' ' | sed 's/ $//')"
check "path: relative" "root= absolute=false unc=false drive= directory= name=a basename=a extension= parent= text=a" \
    "$("${qv[@]}" path -text=x/../a | tr '\n' ' ' | sed 's/ $//')"
check normalize 'b/c' "$("${qv[@]}" normalize -text=a/../b/./c -slash=forward)"
check "normalize: native" 'b\c' "$("${qv[@]}" normalize -text=a/../b//c)"
check "normalize: back" 'b\c' "$("${qv[@]}" normalize -text=a/../b//c -slash=back)"
check "normalize: comma in the text" 'a,b\c' "$("${qv[@]}" normalize -text=a,b/c)"
check lock held "$("${qv[@]}" lock -name="qv-test-$$" -hold=1)"

check "digest: of standard input" "900150983cd24fb0d6963f7d28e17f72  -" "$(printf abc | "${qv[@]}" digest)"
check "digest: of nothing" "d41d8cd98f00b204e9800998ecf8427e  -" "$("${qv[@]}" digest -in=- </dev/null)"
printf abc >"$work/abc"
head -c 1000000 /dev/zero >"$work/zeros"
check "digest: of several files" "$(printf '900150983cd24fb0d6963f7d28e17f72  %s\n879f4bba57ed37c9ec5e5aedf9864698  %s' \
    "$(path "$work/abc")" "$(path "$work/zeros")")" \
    "$("${qv[@]}" digest "-in=$(path "$work/abc"),$(path "$work/zeros")")"
check "digest: those before a missing file stay" "900150983cd24fb0d6963f7d28e17f72  $(path "$work/abc")" \
    "$("${qv[@]}" digest "-in=$(path "$work/abc"),$(path "$work/none")" 2>/dev/null)"
fails "digest: missing file" 1 "qv: file not found [0x80070002]" "${qv[@]}" digest "-in=$(path "$work/none")"

check "cipher: a published block" 0aceab0fc6a0a28d \
    "$(printf '\001\043\105\147\211\253\315\357' | "${qv[@]}" cipher -encrypt -key=fedcba9876543210 | hex)"
check "cipher: and back" 0123456789abcdef \
    "$(printf '\012\316\253\017\306\240\242\215' | "${qv[@]}" cipher -decrypt -key=FEDCBA9876543210 | hex)"
"${qv[@]}" cipher -encrypt -key=01 "-in=$(path "$work/zeros")" "-out=$(path "$work/enciphered")"
"${qv[@]}" cipher -decrypt -key=01 "-in=$(path "$work/enciphered")" "-out=$(path "$work/deciphered")"
check "cipher: a file comes back" 0 "$(cmp -s "$work/zeros" "$work/deciphered"; echo $?)"
check "cipher: a file changes" 1 "$(cmp -s "$work/zeros" "$work/enciphered"; echo $?)"
usage_cipher="usage: qv cipher -encrypt|-decrypt -key=HEX [-in=FILE] [-out=FILE]"
fails "cipher: without a way" 2 "$usage_cipher" "${qv[@]}" cipher -key=00
fails "cipher: both ways" 2 "$usage_cipher" "${qv[@]}" cipher -encrypt -decrypt -key=00
fails "cipher: without a key" 2 "$usage_cipher" "${qv[@]}" cipher -encrypt
fails "cipher: half a byte of key" 2 "$usage_cipher" "${qv[@]}" cipher -encrypt -key=123
fails "cipher: no digits" 2 "$usage_cipher" "${qv[@]}" cipher -encrypt -key=0g
fails "cipher: a key too long" 2 "$usage_cipher" "${qv[@]}" cipher -encrypt "-key=$(printf '%0122d' 0)"
check "cipher: a key of 60 bytes" "" "$("${qv[@]}" cipher -encrypt "-key=$(printf '%0120d' 0)" </dev/null)"
fails "cipher: no whole blocks" 1 "qv: only supports 8 byte block boundaries" "${qv[@]}" cipher -encrypt -key=00 "-in=$(path "$work/abc")"
fails "cipher: same file" 1 "qv: input and output are the same file" "${qv[@]}" cipher -encrypt -key=00 \
    "-in=$(path "$work/abc")" "-out=$(path "$work/abc")"

check "alphanum: encode" ABCDEFGH "$(printf '\000\104\062\024\307' | "${qv[@]}" alphanum -encode)"
check "alphanum: encode adds nothing" 3936 "$(printf '\377' | "${qv[@]}" alphanum -encode | hex)"
check "alphanum: decode" 00443214c7 "$(printf ABCDEFGH | "${qv[@]}" alphanum -decode | hex)"
check "alphanum: decode keeps the byte of padding" ff00 "$(printf 96 | "${qv[@]}" alphanum -decode | hex)"
check "alphanum: letters of the user's" 01234567 \
    "$(printf '\000\104\062\024\307' | "${qv[@]}" alphanum -encode -alphabet=0123456789abcdefghijklmnopqrstuv)"
"${qv[@]}" alphanum -encode "-in=$(path "$work/enciphered")" "-out=$(path "$work/letters")"
"${qv[@]}" alphanum -decode "-in=$(path "$work/letters")" "-out=$(path "$work/bytes")"
check "alphanum: a file comes back" 0 "$(cmp -s "$work/enciphered" "$work/bytes"; echo $?)"
usage_alphanum="usage: qv alphanum -encode|-decode [-alphabet=LETTERS] [-in=FILE] [-out=FILE]"
fails "alphanum: without a way" 2 "$usage_alphanum" "${qv[@]}" alphanum
fails "alphanum: a foreign letter" 1 "qv: Invalid AlphaNum character [0x8BB34101]" "${qv[@]}" alphanum -decode "-in=$(path "$work/abc")"
printf 'AB\200CDEFGH' >"$work/foreign"
fails "alphanum: a byte that is no letter anywhere" 1 "qv: Invalid AlphaNum character [0x8BB34101]" \
    "${qv[@]}" alphanum -decode "-in=$(path "$work/foreign")"
accented=-alphabet=ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏABCDEFGHJKLMNPQR
check "alphanum: accented letters" c0c0c041 "$(printf '\000\001' | "${qv[@]}" alphanum -encode "$accented" | hex)"
check "alphanum: accented letters, back" 000100 \
    "$(printf '\300\300\300\101' | "${qv[@]}" alphanum -decode "$accented" | hex)"
fails "alphanum: an alphabet too short" 1 "qv: bad argument [0x80070057]" "${qv[@]}" alphanum -encode -alphabet=abc "-out=$(path "$work/abc")"
check "alphanum: the refused output is untouched" abc "$(cat "$work/abc")"

check "guid" 1 "$("${qv[@]}" guid | grep -cE '^\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\}$')"
check "guid: many" 100 "$("${qv[@]}" guid -count=100 | sort -u | wc -l)"
check "guid: none" "" "$("${qv[@]}" guid -count=0)"
fails "guid: bad count" 2 "usage: qv guid [-count=N]" "${qv[@]}" guid -count=x
check tokens "a|b|" "$("${qv[@]}" tokens '-text=a;;b' '-delims=;' | tr '\n' '|')"
check "tokens: delimiters kept" "a|;|;|b|" "$("${qv[@]}" tokens '-text=a;;b' '-delims=;' -keep | tr '\n' '|')"
check "tokens: default delimiters" "a;b|" "$("${qv[@]}" tokens '-text=a;b' | tr '\n' '|')"
fails "tokens: without a text" 2 "usage: qv tokens -text=TEXT [-delims=DELIMITERS] [-keep]" "${qv[@]}" tokens

check "bigint: defaults" 123456789012345678901234567890 "$("${qv[@]}" bigint -op=add -a=123456789012345678901234567889 -b=1)"
check "bigint: quotient and remainder" "-3 1" "$("${qv[@]}" bigint -op=div -a=-7 -b=2)"
check "bigint: result in a radix" -ff "$("${qv[@]}" bigint -op=tostring -a=-255 -radix=16)"
check "bigint: comparison" -1 "$("${qv[@]}" bigint -op=cmp -a=-7 -b=2 -radix=16)"
check "bigint: modulus as the second operand" 2 "$("${qv[@]}" bigint -op=mod -a=-7 -b=3)"
check "decimal: sum" 4.2 "$("${qv[@]}" decimal -op=add -a=1.5 -b=2.7)"
check "decimal: difference" -1.2 "$("${qv[@]}" decimal -op=sub -a=1.5 -b=2.7)"
check "decimal: product" 0.375 "$("${qv[@]}" decimal -op=mul -a=1.5 -b=0.25)"
check "decimal: quotient" 0.67 "$("${qv[@]}" decimal -op=div -a=2 -b=3 -scale=2)"
check "decimal: comparison" 1 "$("${qv[@]}" decimal -op=cmp -a=1.5 -b=1.4)"
check "decimal: scale" 1.2 "$("${qv[@]}" decimal -op=setscale -a=1.25 -scale=1)"
check "decimal: scale below the point" 12 "$("${qv[@]}" decimal -op=setscale -a=125 -scale=-1)"
check "decimal: a scale is decimal" 0.33333333 "$("${qv[@]}" decimal -op=div -a=1 -b=3 -scale=08)"
check "decimal: text" 1.5 "$("${qv[@]}" decimal -op=tostring -a=1.50)"
bigint_usage="usage: qv bigint -op=add|sub|mul|div|mod|pow|modpow|modinv|gcd|cmp|tostring -a=N [-b=N] [-m=N] [-radix=R]"
decimal_usage="usage: qv decimal -op=add|sub|mul|div|cmp|setscale|tostring -a=N [-b=N] [-scale=S]"
fails "bigint: no operation" 2 "$bigint_usage" "${qv[@]}" bigint -a=1 -b=2
fails "bigint: unknown operation" 2 "$bigint_usage" "${qv[@]}" bigint -op=root -a=1
fails "bigint: operand missing" 2 "$bigint_usage" "${qv[@]}" bigint -op=add -a=1
fails "bigint: bad radix" 2 "$bigint_usage" "${qv[@]}" bigint -op=tostring -a=1 -radix=37
fails "bigint: bad radix, with nothing to print in it" 2 "$bigint_usage" "${qv[@]}" bigint -op=cmp -a=1 -b=2 -radix=99
fails "bigint: bad radix, in front of the calculation" 2 "$bigint_usage" \
    "${qv[@]}" bigint -op=div -a=1 -b=0 -radix=1
fails "bigint: division by zero" 1 "qv: Divide by zero." "${qv[@]}" bigint -op=div -a=1 -b=0
fails "bigint: no number" 1 "qv: Number Format Exception" "${qv[@]}" bigint -op=tostring -a=1-2
fails "bigint: no inverse" 1 "qv: Not invertible." "${qv[@]}" bigint -op=modinv -a=2 -m=4
fails "bigint: negative exponent" 1 "qv: Negative Exponent" "${qv[@]}" bigint -op=pow -a=2 -b=-1
fails "bigint: no room for the result" 1 "qv: out of memory [0x8007000E]" "${qv[@]}" bigint -op=pow -a=2 -b=99999999999
fails "decimal: no scale" 2 "$decimal_usage" "${qv[@]}" decimal -op=div -a=1 -b=3
fails "decimal: unknown operation" 2 "$decimal_usage" "${qv[@]}" decimal -op=mod -a=1 -b=3
fails "decimal: division by zero" 1 "qv: Divide by zero." "${qv[@]}" decimal -op=div -a=1 -b=0 -scale=1
if command -v python3 >/dev/null; then
    check "bigint agrees with Python" "" \
        "$(python3 "$(dirname "$0")/python-integers.py" "$([ $# -eq 1 ] && echo 500 || echo 5)" "${qv[@]}" 2>&1)"
else
    echo "skipped: bigint agrees with Python, which is not installed"
fi

check "convert: to UTF-16" 6100e9002d4e3dd800de "$(printf 'a\303\251\344\270\255\360\237\230\200' | "${qv[@]}" convert -from=UTF-8 -to=UTF-16LE | hex)"
check "convert: names in any case" 61e93f "$(printf 'a\303\251\344\270\255' | "${qv[@]}" convert -from=utf-8 -to=windows-1252 | hex)"
check "convert: line ends stay" 610d0a1a0a "$(printf 'a\r\n\032\n' | "${qv[@]}" convert -from=UTF-8 -to=UTF-8 | hex)"
check "convert: nothing" "" "$("${qv[@]}" convert -from=UTF-8 -to=UTF-8 </dev/null | hex)"
check "convert: bad bytes" efbfbd41 "$(printf '\377A' | "${qv[@]}" convert -from=UTF-8 -to=UTF-8 | hex)"
check "convert: cut at the end" 41efbfbdefbfbd "$(printf 'A\344\270' | "${qv[@]}" convert -from=UTF-8 -to=UTF-8 | hex)"
check "convert: odd UTF-32" 41efbfbd "$(printf 'A\0\0\0B' | "${qv[@]}" convert -from=UTF-32LE -to=UTF-8 | hex)"

printf 'text \303\251\n' >"$work/in put"
"${qv[@]}" convert -from=UTF-8 -to=ISO8859_1 "-in=$(path "$work/in put")" "-out=$(path "$work/out")"
check "convert: files" 7465787420e90a "$(hex <"$work/out")"

fails "no command" 2 "usage: qv COMMAND [-option[=value]]... (qv help lists the commands)" "${qv[@]}"
fails "unknown command" 2 "usage: qv COMMAND [-option[=value]]... (qv help lists the commands)" "${qv[@]}" nonsense
fails "unknown option" 2 "usage: qv version" "${qv[@]}" version -x
fails "missing option" 2 "usage: qv path -text=PATH" "${qv[@]}" path
fails "option without its value" 2 "usage: qv path -text=PATH" "${qv[@]}" path -text
fails "parameter too many" 2 "usage: qv version" "${qv[@]}" version x
fails "value that nobody wants" 2 "usage: qv convert -from=ENCODING -to=ENCODING [-in=FILE] [-out=FILE] [-strict]" \
    "${qv[@]}" convert -from=UTF-8 -to=UTF-8 -strict=yes
fails "unknown slash" 2 "usage: qv normalize -text=PATH [-slash=native|forward|back]" "${qv[@]}" normalize -text=a -slash=none
fails "help of nothing known" 2 "usage: qv help [COMMAND]" "${qv[@]}" help nonsense
fails "number with a tail" 2 "usage: qv lock -name=NAME [-hold=MILLISECONDS]" "${qv[@]}" lock -name=x -hold=5x
fails "bad number" 2 "usage: qv lock -name=NAME [-hold=MILLISECONDS]" "${qv[@]}" lock -name=x -hold=-1
fails "unknown encoding" 1 "qv: unknown encoding nope [0x8BB34103]" "${qv[@]}" convert -from=nope -to=UTF-8
fails "known and missing encoding" 1 "qv: unknown encoding EUC-JP [0x8BB34103]" "${qv[@]}" convert -from=EUC-JP -to=UTF-8
fails "missing file" 1 "qv: file not found [0x80070002]" "${qv[@]}" convert -from=UTF-8 -to=UTF-8 "-in=$(path "$work/none")"
fails "directory as a file" 1 "qv: access denied [0x80070005]" "${qv[@]}" convert -from=UTF-8 -to=UTF-8 "-in=$(path "$work")"
fails "same file" 1 "qv: input and output are the same file" "${qv[@]}" convert -from=UTF-8 -to=UTF-8 "-in=$(path "$work/out")" "-out=$(path "$work/out")"
fails "same file by a detour" 1 "qv: input and output are the same file" "${qv[@]}" convert -from=UTF-8 -to=UTF-8 \
    "-in=$(path "$work/../${work##*/}/./out")" "-out=$(path "$work/out")"
fails "bad path" 1 "qv: invalid drive" "${qv[@]}" path -text=ab:c
check "the refused output is untouched" 7465787420e90a "$(hex <"$work/out")"
strict() { printf '%b' "$1" | "${qv[@]}" convert -from="$2" -to="$3" -strict 2>&1 >/dev/null; }
check "strict encoder" "qv: a character or byte that the encoding does not have [0x8BB34102]" "$(strict '\0303\0251' UTF-8 ASCII)"
check "strict decoder" "qv: a character or byte that the encoding does not have [0x8BB34102]" "$(strict '\0200' ASCII UTF-8)"
check "strict at the end" "qv: incomplete character at the end of the input [0x8BB34101]" "$(strict 'A\0303' UTF-8 UTF-16LE)"
check "lone surrogate" "qv: leading surrogate without trailing [0x8BB34101]" "$(printf '\0\330' | "${qv[@]}" convert -from=UTF-16LE -to=UTF-8 2>&1 >/dev/null)"

if [ $# -eq 1 ]; then # devices and pipes are this system's own
    ln -s out "$work/link"
    fails "same file by a link" 1 "qv: input and output are the same file" "$1" convert -from=UTF-8 -to=UTF-8 "-in=$work/out" "-out=$work/link"
    check "the linked file is untouched" 7465787420e90a "$(hex <"$work/out")"
    folder=$work/$(printf 'x%.0s' {1..150})/$(printf 'y%.0s' {1..150})
    mkdir -p "$folder"
    printf 'long\n' >"$folder/in:put"
    "$1" convert -from=UTF-8 -to=UTF-16BE "-in=$folder/in:put" "-out=$work/out"
    check "a long input path with a colon" 006c006f006e0067000a "$(hex <"$work/out")"
    mkfifo "$work/fifo"
    "$1" convert -from=UTF-8 -to=UTF-16LE <"$work/fifo" >/dev/null &
    converter=$!
    peak() { awk '/^VmHWM/ { print $2 }' "/proc/$converter/status"; } # kB
    exec 3>"$work/fifo"
    yes 'a text of several words' | head -c 1000000 >&3
    early=$(peak)
    yes 'a text of several words' | head -c 100000000 >&3
    late=$(peak)
    exec 3>&-
    wait "$converter"
    check "convert: memory does not grow with the input" "0 yes" \
        "$? $([ -n "$early" ] && [ $((late - early)) -lt 20000 ] && echo yes || echo "$early kB, then $late kB")"
    check "cipher: a key of no bytes" 617971157f96fc3c "$(printf abcdefgh | "$1" cipher -encrypt '-key=""' | hex)"
    check "tokens: quotes protect commas" "a|,|,|b|" "$("$1" tokens '-text="a,,b"' '-delims=","' -keep | tr '\n' '|')"
    check "tokens: default delimiters are blanks" "a|b|" "$("$1" tokens '-text=a  b' | tr '\n' '|')"
    check "quotes protect commas" 'a,,b' "$("$1" normalize '-text="a,,b"')"
    check "text beyond ASCII" 'é\中' "$(LC_ALL=C.UTF-8 "$1" normalize -text=é/中)"
    "$1" lock -name="qv-test-$$" -hold=60000 >"$work/holder" &
    holder=$!
    until grep -qs held "$work/holder" || ! kill -0 "$holder" 2>/dev/null; do sleep 0.01; done
    timeout 1 "$1" lock -name="qv-test-$$" >"$work/waiter"
    check "lock: another waits" "124 " "$? $(cat "$work/waiter")"
    kill "$holder"
    wait "$holder" 2>/dev/null
    check "lock: a holder that was ended holds no more" held "$(timeout 60 "$1" lock -name="qv-test-$$")"
    fails "a message is one line" 1 "qv: unknown encoding no  such [0x8BB34103]" "$1" convert -to=UTF-8 -from=$'no\n\vsuch'
    fails "full disk" 1 "qv: disk full [0x80070070]" bash -c "'$1' version >/dev/full"
    yes | head -c 20000000 | "${qv[@]}" convert -from=UTF-8 -to=UTF-8 2>"$work/error" | head -c 1 >/dev/null
    check "pipe that closes early: exit code" 1 "${PIPESTATUS[2]}"
    check "pipe that closes early: one line" "qv: the reader has gone [0x8007006D]" "$(cat "$work/error")"
    fails "no standard output" 1 "qv: not open [0x80070006]" bash -c "'$1' version >&-"
fi

echo "$((checks - failures)) passed, $failures failed"
[ "$failures" -eq 0 ]
