#!/bin/bash
# Prints what a shared library exports, one symbol a line, sorted by mangled
# name: the mangled name, a blank, the readable one.
#
#   tools/list-exports.sh build/debug/libkvtbase.so > tests/abi/exported_symbols.txt
#
# rewrites the list that CTest holds the library against, after a change of the
# interface that is meant.
set -euo pipefail
export LC_ALL=C

names=$(nm --dynamic --defined-only --format=posix "$1" | cut -d' ' -f1 | sort)
readable=$(c++filt <<<"$names")
paste -d' ' <(echo "$names") <(echo "$readable")
