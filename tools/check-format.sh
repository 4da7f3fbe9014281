#!/bin/bash
# Holds every C++ file against .clang-format and shows what differs; with --fix
# it rewrites the files instead.
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t files < <(git ls-files '*.h' '*.cpp')
if [ "${1:-}" = --fix ]; then
  clang-format -i "${files[@]}"
else
  clang-format --dry-run --Werror "${files[@]}"
fi
