#!/usr/bin/env bash
# A masked line from a Windows console, which the emulator shows on a terminal of this system.
#
#   masked-console.sh EMULATOR... PROGRAM
set -u
export SHELL=/bin/sh

# The role's console: its terminal's output, without the sequences that draw it.
open_console() {
    coproc terminal {
        script -qefc "stty raw -echo; exec $(printf "%q " "${program[@]}") --child $1" /dev/null |
            sed -u 's/\x1B\[[?0-9;]*[A-Za-z]//g; s/\r//g'
    }
}
type_keys() { printf "$1" >&"${terminal[1]}"; }
hear() { IFS= read -r -t 60 line <&"${terminal[0]}"; }
expect() {
    line=''
    hear
    if [ "$line" != "$1" ]; then
        echo "masked-console: expected '$1', found '$line'" >&2
        exit 1
    fi
}
program=("$@")

open_console masked-console-reader
hear
foreign=$line
length=$(printf '%s' "$foreign" | sed 's/[0-9A-F]\{2\}/x/g' | wc -c)
expect raw
type_keys 'sec\bret\r'
expect 6:seret
expect raw
type_keys '\xC3\xA9a\xE2\x82\xAC\r' # U+00E9, a and U+20AC, as the emulator takes them
expect "$((length + 1)):$foreign"
expect raw
type_keys 'x\003' # the emulator breaks the read off before it has taken the first key
expect aborted
expect raw
type_keys 'ab\r'
expect 3:ab
wait "$terminal_PID"

open_console masked-console-pair
expect raw
type_keys 'ab\rcde\r'
expect 3:ab:4:cde:restored
wait "$terminal_PID"

open_console masked-console-heir
expect 7:restored
wait "$terminal_PID"
echo "masked-console: lines, an abort and two readers, without echo, and a console that is restored"
