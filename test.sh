#!/bin/bash
# Installs what is missing, builds the library twice and runs every test: the
# plain build with all suites, the guest's included, then the build with
# AddressSanitizer and UndefinedBehaviorSanitizer.  The last line adds up both
# runs; the exit status is 0 only when both builds and both runs went well.
set -uo pipefail
cd "$(dirname "$0")" || exit

jobs=$(nproc)
# Servers, devices and mounts take root.
as_root=()
if [ "$(id -u)" != 0 ] && command -v sudo >/dev/null; then as_root=(sudo); fi
passed=0
failed=0
skipped=0
broken=()

# An attribute of the JUnit report's <testsuite>, which CTest writes one a line.
count() {
  sed -n "/<testsuite/,/>/s/^[[:space:]]*$2=\"\([0-9]*\)\".*/\1/p" "$1"
}

# Builds one preset and runs its tests.
check() {
  local preset=$1 report=build/$1/junit.xml tests failures disabled skips
  echo "== $preset: build"
  if ! cmake --preset "$preset" || ! cmake --build --preset "$preset" -j "$jobs"; then
    broken+=("$preset: the build failed")
    return
  fi

  echo "== $preset: tests"
  rm -f "$report"
  "${as_root[@]}" ctest --preset "$preset" -j "$jobs" --no-tests=error \
    --output-junit "$PWD/$report" || broken+=("$preset: tests failed")
  # What root's tests left is to be the user's.
  [ "${#as_root[@]}" -eq 0 ] || sudo chown -R "$(id -u):$(id -g)" "build/$preset"
  if [ ! -s "$report" ]; then
    broken+=("$preset: CTest left no report")
    return
  fi
  tests=$(count "$report" tests)
  failures=$(count "$report" failures)
  disabled=$(count "$report" disabled)
  skips=$(count "$report" skipped)
  passed=$((passed + tests - failures - disabled - skips))
  failed=$((failed + failures))
  skipped=$((skipped + disabled + skips))
}

tools/install-deps.sh || { echo "test.sh: packages are missing" >&2; exit 1; }
check debug
check asan-ubsan

echo
for reason in "${broken[@]}"; do echo "test.sh: $reason" >&2; done
if [ "$skipped" -gt 0 ]; then
  echo "$passed passed, $failed failed, $skipped skipped"
else
  echo "$passed passed, $failed failed"
fi
[ "${#broken[@]}" -eq 0 ]
