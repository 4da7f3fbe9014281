#!/bin/bash
# Runs a program that is linked with the library in a root directory that holds
# every shared object it needs, libcjson left out, and expects the dynamic
# linker to refuse; then with libcjson, and expects success.
#
#   without_libcjson.sh PROGRAM
set -euo pipefail

program=$1
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT

mapfile -t objects < <(ldd "$program" | grep -o '/[^ ]*')
[ "${#objects[@]}" -gt 0 ]
cjson=
for object in "${objects[@]}"; do
  if [[ $object == */libcjson.so.1 ]]; then
    cjson=$object
  else
    install -D "$object" "$root$object"
  fi
done
if [ -z "$cjson" ]; then
  echo "libcjson is not among what the program loads" >&2
  exit 1
fi
install -D "$program" "$root/program"

# chroot(2) takes root: an ordinary user's comes from a namespace.
run() {
  if [ "$(id -u)" = 0 ]; then
    chroot "$root" /program
  else
    PATH=$PATH:/usr/sbin:/sbin
    unshare --map-root-user chroot "$root" /program
  fi
}

if output=$(run 2>&1); then
  echo "the program ran without libcjson" >&2
  exit 1
fi
if [[ $output != *"libcjson.so.1: cannot open shared object file"* ]]; then
  echo "it failed for another reason: $output" >&2
  exit 1
fi
install -D "$cjson" "$root$cjson"
run
