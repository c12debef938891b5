#!/usr/bin/env bash
# Lays all sources out as .clang-format says; with --check, fails when one of them is not.
set -euo pipefail
ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

die()
{
  printf 'mirelo: %s\n' "$1" >&2
  exit 2
}

formatter=$(command -v clang-format-14 || command -v clang-format) || die "clang-format is missing; install the Debian package clang-format"
mapfile -d '' -t sources < <(cd "$ROOT" && git ls-files -z --cached --others --exclude-standard '*.cpp' '*.h')
[ ${#sources[@]} -gt 0 ] || die "git lists no sources in $ROOT; formatting is checked in a git clone only"

cd "$ROOT"
case "${1:-}" in
  "") "$formatter" -i "${sources[@]}" ;;
  --check) "$formatter" --dry-run --Werror "${sources[@]}" ;;
  *) die "unknown argument $1; usage: scripts/format.sh [--check]" ;;
esac
