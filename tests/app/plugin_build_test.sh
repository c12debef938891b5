#!/usr/bin/env bash
# The way of a third party: install the program, build the example plug-in against it, install that, and run it in the
# installed program. Arguments: cmake, the program's build folder, the example, a plug-in that drives the program, a
# stack, arguments of cmake.
set -euo pipefail
cmake=$1 build=$2 example=$3 driver=$4 stack=$5
shift 5
home=$build/plugin-test # the same each time, for the compiler's cache
rm -rf "$home"
mkdir -m 700 "$home"
trap 'rm -rf "$home"' EXIT
prefix=$home/prefix

fail()
{
  echo "FAILED: $1" >&2
  exit 1
}

quietly()
{
  "$@" >"$home/log" 2>&1 || fail "$*: $(cat "$home/log")"
}

quietly "$cmake" --install "$build" --prefix "$prefix"
for file in bin/mirelo bin/mirelo-batch share/applications/mirelo.desktop share/mime/packages/mirelo.xml \
  share/icons/hicolor/scalable/apps/mirelo.svg; do
  [ -f "$prefix/$file" ] || fail "$file is not installed"
done
quietly "$prefix/bin/mirelo-batch" info "$stack"
quietly "$cmake" -S "$example" -B "$home/build" -D CMAKE_PREFIX_PATH="$prefix" -D CMAKE_INSTALL_PREFIX="$prefix" \
  -D CMAKE_CXX_FLAGS="-Wall -Wextra -Werror" "$@"
quietly "$cmake" --build "$home/build"
quietly "$cmake" --install "$home/build"

users=$home/data/VELK/Mirelo/plugins
mkdir -p "$users"
cp "$driver" "$users"
mv "$prefix" "$home/moved" # the program finds its plug-ins wherever it is
export ASAN_OPTIONS=detect_leaks=0 # what libraries lose when they are unloaded is not ours
HOME=$home XDG_CONFIG_HOME=$home/config XDG_DATA_HOME=$home/data XDG_RUNTIME_DIR=$home LC_ALL=C \
  timeout 60 "$home/moved/bin/mirelo" "$stack" >"$home/out" 2>&1 ||
  fail "the program ended with status $?: $(cat "$home/out")"

# Names of the first two slices and of the last.
before=$(sed -n 's/^SLICE "\([^"]*\)".*/\1/p' "$stack" | sed -n '1,2p;$p' | paste -sd' ' | sed 's/ \([^ ]*\)$/, \1/')
last=$(grep -c '^SLICE' "$stack")
cat >"$home/expected" <<END
opened: $before
run: 01 02, $last, modified, Number slices
undone: $before
redone: 01 02, $last, modified, Number slices
END
diff "$home/expected" "$home/out" || fail "the program did not say what was expected"
