#!/bin/bash
# Compiles every public header alone, then all of them in one source in
# alphabetical order and in the reverse, with warnings as errors.
#
#   check_headers.sh COMPILER STANDARD INCLUDE_DIRECTORY
set -euo pipefail

compiler=$1
standard=$2
directory=$3

compile() {
  printf '#include "%s"\n' "$@" |
    "$compiler" -std="$standard" -Wall -Wextra -Wpedantic -Werror \
      -fsyntax-only -I "$directory" -x c++ - ||
    { echo "$compiler -std=$standard refuses: $*" >&2; exit 1; }
}

mapfile -t headers < <(cd "$directory" && ls -- *.h)
if [ "${#headers[@]}" -eq 0 ]; then
  echo "no headers in $directory" >&2
  exit 1
fi
for header in "${headers[@]}"; do compile "$header"; done
mapfile -t reversed < <(printf '%s\n' "${headers[@]}" | tac)
compile "${headers[@]}"
compile "${reversed[@]}"
echo "$compiler -std=$standard: ${#headers[@]} headers"
