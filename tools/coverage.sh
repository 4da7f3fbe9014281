#!/bin/bash
# Line and branch coverage of src/ by the whole test suite of a build of its own,
# the guest's tests included: a summary by file on standard output, the pages in
# build/coverage/report/index.html.
#
#   tools/coverage.sh [ARGUMENTS FOR CTEST, such as -R '^PathTable']
set -euo pipefail
cd "$(dirname "$0")/.."

if ! command -v gcovr >/dev/null; then
  echo "coverage.sh: gcovr is missing: tools/install-deps.sh coverage" >&2
  exit 1
fi
jobs=$(nproc)
cmake --preset coverage
cmake --build --preset coverage -j "$jobs"
find build/coverage -name '*.gcda' -delete

status=0
ctest --preset coverage -j "$jobs" --no-tests=error "$@" || status=$?

# Branches that only exceptions take are counted apart from those of the code.
# The placeholders in src/json are never called.
report() {
  gcovr --root . --filter src/ --exclude src/json/ --exclude-throw-branches \
    --object-directory build/coverage --exclude-directories '.*/CompilerIdCXX' \
    "$@"
}
mkdir -p build/coverage/report
report --html-details build/coverage/report/index.html
report --branches --print-summary
report
exit "$status"
