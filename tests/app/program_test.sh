#!/usr/bin/env bash
# The program itself: answers without a display, opens the files it is given, quits by its shortcut, keeps its settings.
set -euo pipefail
program=$1
example=$2
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export ASAN_OPTIONS=detect_leaks=0 # what libraries lose when they are unloaded is not ours
export HOME=$home XDG_CONFIG_HOME=$home/config XDG_RUNTIME_DIR=$home LC_ALL=C

fail()
{
  echo "FAILED: $1" >&2
  exit 1
}

env -u DISPLAY "$program" --help | grep -q '^Usage: mirelo' || fail "--help needs no display"
env -u DISPLAY "$program" --version | grep -qE '^mirelo [0-9]+\.[0-9]+' || fail "--version needs no display"

timeout 30 "$program" "$example" >"$home/out" 2>&1 &
timeout 20 xdotool search --sync --onlyvisible --name '^Mirelo - specimen$' windowfocus --sync ||
  fail "no window with the stack's name: $(cat "$home/out")"
xdotool key ctrl+q # to whoever has the focus: the window may be gone before the key is up
wait $! || fail "the program ended with status $?: $(cat "$home/out")"
[ ! -s "$home/out" ] || fail "the program said: $(cat "$home/out")"
grep -q "^recentFiles=.*specimen.sdf" "$XDG_CONFIG_HOME/VELK/Mirelo.conf" || fail "the settings were not saved"
