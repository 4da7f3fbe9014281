#!/bin/bash
# Every row of docs/surprises.md ends in a test, and each such test exists: as a
# GoogleTest in the sources or as a name in a CMakeLists.txt.
#
#   check_surprises.sh SOURCE_DIRECTORY
set -euo pipefail
cd "$1"

mapfile -t rows < <(grep '^|' docs/surprises.md | grep -v -e '^|---' -e '^| What ')
if [ "${#rows[@]}" -eq 0 ]; then
  echo "docs/surprises.md has no rows" >&2
  exit 1
fi
sources=$(find tests -name '*.cpp' -exec cat {} + | tr '\n' ' ' | tr -s ' ')
lists=$(find tests -name CMakeLists.txt -exec cat {} +)

missing=0
for row in "${rows[@]}"; do
  if ! [[ $row =~ \`([A-Za-z0-9_]+)\.([A-Za-z0-9_]+)\`\ \|$ ]]; then
    echo "no test: $row" >&2
    missing=1
    continue
  fi
  suite=${BASH_REMATCH[1]}
  name=${BASH_REMATCH[2]}
  if ! grep -qE "TEST(_F|_P)?\( ?$suite, $name\)" <<<"$sources" &&
    ! grep -qF "NAME $suite.$name" <<<"$lists"; then
    echo "no such test: $suite.$name" >&2
    missing=1
  fi
done
exit "$missing"
