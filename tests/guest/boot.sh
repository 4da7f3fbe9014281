#!/bin/bash
# Runs one command inside a guest: a kernel with a CIFS client of its own, on
# this machine's file system, beside a Samba on the guest's loopback.
#
# usage: boot.sh [--timeout SECONDS] [--memory MB] RESULT_FOLDER COMMAND [ARGUMENT...]
#
# The command's output appears here as it comes and stays in
# RESULT_FOLDER/output; its exit status is this script's.  124: the guest did
# not end in time.  125: the guest could not be had, or left no result.
#
# The guest writes to this machine's disk, except below the folders that its
# first process covers (see kCovered): it works on any checkout elsewhere, for
# root and for ordinary users.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
kCovered=(/run /mnt /var/lib/samba /var/log /var/cache)
seconds=180
megabytes=1600

fail() {
    echo "boot.sh: $*" >&2
    exit 125
}

while [[ ${1:-} == --* ]]; do
    case $1 in
        --timeout) seconds=$2 ;;
        --memory) megabytes=$2 ;;
        *) fail "unknown option $1" ;;
    esac
    shift 2
done
[[ $# -ge 2 ]] || fail "usage: boot.sh [--timeout SECONDS] [--memory MB] RESULT_FOLDER COMMAND [ARGUMENT...]"
results=$(realpath -m -- "$1")
shift

export PATH=$PATH:/usr/local/sbin:/usr/sbin:/sbin
for program in linux.uml:user-mode-linux smbd:samba smbpasswd:samba-common-bin modprobe:kmod ip:iproute2 taskset:util-linux; do
    command -v "${program%%:*}" >/dev/null ||
        fail "${program%%:*} is missing: install the package ${program##*:}"
done
for folder in "${kCovered[@]}"; do
    for path in "$here" "$results" "$PWD"; do
        [[ $path/ != "$folder"/* ]] ||
            fail "the guest covers $folder with an empty file system and would not see $path"
    done
done

mkdir -p "$results"

# The guest's memory is a file that it maps: it must lie where there is room and
# where programs may run, neither of which the /dev/shm of a container has.
memory_folder=
for folder in /dev/shm "${TMPDIR:-/tmp}" /tmp /var/tmp; do
    free=$(df --output=avail -m "$folder" 2>/dev/null | tail -n 1) || continue
    options=$(findmnt --noheadings --output OPTIONS --target "$folder") || continue
    if [[ -w $folder && $free -gt $megabytes && ,$options, != *,noexec,* ]]; then
        memory_folder=$folder
        break
    fi
done
[[ -n $memory_folder ]] || fail "no room for the guest's memory ($megabytes MB) in /dev/shm, /tmp or /var/tmp"

# The kernel's command line splits at blanks, so the guest is told one path
# without any; what it needs stands below.
handover=$(mktemp -d /tmp/kvtguest.XXXXXX)
tail_id=
guest_id=
# shellcheck disable=SC2317  # the trap calls it
clean_up() {
    # Whoever ends this script ends the guest.
    [[ -z $guest_id ]] || kill "$guest_id" 2>/dev/null || true
    [[ -z $tail_id ]] || kill "$tail_id" 2>/dev/null || true
    rm -rf "$handover"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
ln -s "$here" "$handover/scripts"
ln -s "$results" "$handover/results"
{
    printf 'cd %q\n' "$PWD"
    printf 'exec'
    printf ' %q' "$@"
    printf '\n'
} >"$handover/command"
rm -f "$results/status" "$results/output" "$results/console"
: >"$results/output"

# The guest's kernel and its programs are processes that wake each other at every
# system call and page fault: on one processor that takes half the time.
allowed=$(taskset --cpu-list --pid $$)

booted=0
TMPDIR=$memory_folder taskset --cpu-list "${allowed##*[^0-9]}" \
    timeout --kill-after=5 "$seconds" linux.uml "mem=${megabytes}M" \
    root=/dev/root rootfstype=hostfs rootflags=/ rw \
    "init=$handover/scripts/init.sh" con0=null,fd:1 con=null quiet \
    "KVT_HANDOVER=$handover" </dev/null >"$results/console" 2>&1 &
guest_id=$!
# Ends by itself behind the guest, with all of the output shown.
tail -n +1 -s 0.1 --pid="$guest_id" -f "$results/output" &
tail_id=$!
wait "$guest_id" || booted=$?
guest_id=
wait "$tail_id" || true
tail_id=

if [[ $booted -eq 124 || $booted -eq 137 ]]; then
    echo "boot.sh: the guest did not end within $seconds seconds" >&2
    exit 124
fi
if [[ ! -s $results/status ]]; then
    tail -n 20 "$results/console" >&2
    fail "the guest left no result in $results"
fi
exit "$(cat "$results/status")"
