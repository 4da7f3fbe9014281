#!/bin/bash
# Runs Doxygen over the public headers; its warnings are errors.
#
#   check_reference.sh SOURCE_DIRECTORY
set -euo pipefail
cd "$1"
output=$(mktemp -d)
trap 'rm -rf "$output"' EXIT
(cat docs/Doxyfile && echo "OUTPUT_DIRECTORY = $output") | doxygen -
# It did read the headers.
[ -n "$(find "$output" -name 'classKVTString.html')" ]
