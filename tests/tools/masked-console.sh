#!/usr/bin/env bash
# A masked line from a Windows console, which the emulator shows on a terminal of this system.
#
#   masked-console.sh EMULATOR... PROGRAM
set -u
export SHELL=/bin/sh

# The terminal's output without the sequences that draw it.
coproc terminal {
    script -qefc "stty raw -echo; exec $(printf "%q " "$@") --child masked-console-reader" /dev/null |
        sed -u 's/\x1B\[[?0-9;]*[A-Za-z]//g; s/\r//g'
}
type_keys() { printf "$1" >&"${terminal[1]}"; }
expect() {
    local line=''
    IFS= read -r -t 60 line <&"${terminal[0]}"
    if [ "$line" != "$1" ]; then
        echo "masked-console: expected '$1', found '$line'" >&2
        exit 1
    fi
}

expect raw
type_keys 'sec\bret\r'
expect 6:seret
expect raw
type_keys 'x\003'
expect aborted
wait "$terminal_PID"
echo "masked-console: a line and an abort, without echo"
