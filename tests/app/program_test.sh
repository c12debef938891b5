#!/usr/bin/env bash
# The program itself: answers without a display, starts with the files it is given, keeps its settings.
set -euo pipefail
program=$1
example=$2
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export HOME=$home XDG_CONFIG_HOME=$home/config

fail()
{
  echo "FAILED: $1" >&2
  exit 1
}

env -u DISPLAY "$program" --help | grep -q '^Usage: mirelo' || fail "--help needs no display"
env -u DISPLAY "$program" --version | grep -qE '^mirelo [0-9]+\.[0-9]+' || fail "--version needs no display"

# Ended by the signal that a session manager sends; what was stored at once is there, under the program's own names.
timeout --preserve-status -s TERM 3 "$program" "$example" >"$home/out" 2>&1 || true
grep -q 'Exception' "$home/out" && fail "an exception escaped: $(cat "$home/out")"
[ -f "$XDG_CONFIG_HOME/VELK/Mirelo.conf" ] || fail "the window kept no place"
