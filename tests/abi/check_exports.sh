#!/bin/bash
# Holds what the library exports against the list of what it is to export.  Any
# difference fails: a lost symbol breaks programs that are built already, a new
# one becomes a promise.
#
#   check_exports.sh LIBRARY
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

actual=$("$here/../../tools/list-exports.sh" "$1")
if ! diff -u --label expected --label exported \
  "$here/exported_symbols.txt" <(echo "$actual"); then
  echo "Where the change is meant: tools/list-exports.sh rewrites the list." >&2
  exit 1
fi
