#!/bin/bash
# Shows the library's main job for real: installs what is missing, builds, boots
# a guest with a kernel CIFS client and a Samba server, and in it sends a file to
# the share, fetches it back, deletes it, and more.  The last line says whether
# every step did what it says; so does the exit status.
set -euo pipefail

# --- Inside the guest --------------------------------------------------------

step=0
failures=0

# Starts a step.
announce() {
    step=$((step + 1))
    printf '\n%d. %s\n' "$step" "$1"
}

# Ends one: its last words, then the condition that has to hold.
check() {
    local what=$1
    shift
    if "$@"; then
        echo "   ok: $what"
    else
        echo "   FAILED: $what"
        failures=$((failures + 1))
    fi
}

# Runs kvtshare as a user would type it and shows command, output and time; the
# exit status lands in `status`.
kvtshare() {
    echo "   \$ kvtshare $*"
    local begin end
    begin=$(date +%s%N)
    status=0
    "$program" "$@" </dev/null 2>&1 | sed 's/^/     /' || status=${PIPESTATUS[0]}
    end=$(date +%s%N)
    echo "     (exit status $status, $(((end - begin) / 1000000)) ms)"
}

# Both files' checksums, shown; false when they differ.
same_checksum() {
    local first second
    first=$(sha256sum <"$1") || return 1
    second=$(sha256sum <"$2") || return 1
    echo "   ${first%% *}  $1"
    echo "   ${second%% *}  $2"
    [[ $first == "$second" ]]
}

status_is() { [[ $status -eq $1 ]]; }
is_gone() { [[ ! -e $1 ]]; }
share_is_mounted() { grep ' cifs ' /proc/mounts | sed 's/^/   \/proc\/mounts: /'; }
nothing_is_mounted() { ! grep -q ' cifs ' /proc/mounts; }

in_guest() {
    program=$1
    samba=$2
    local folder=/run/demo
    mkdir $folder
    head -c 8M /dev/urandom >$folder/report.bin
    echo secret >$folder/password
    echo wrong >$folder/wrong-password
    local login=(--user root --password-file "$folder/password")

    echo "This is the guest: Linux $(uname -r), with a Samba that gives out the"
    echo "folder /run/share as //127.0.0.1/docs.  The local file is"
    echo "$folder/report.bin, 8 MB of random bytes."

    announce "Send the file into a folder of the share that does not exist yet"
    kvtshare send $folder/report.bin '\\127.0.0.1\docs\reports\2024\q1.bin' "${login[@]}"
    check "the library reports success" status_is 0
    check "the share is mounted" share_is_mounted
    check "the server's own folder holds the same bytes" \
        same_checksum $folder/report.bin /run/share/reports/2024/q1.bin

    announce "Fetch it back under another name"
    kvtshare send smb://127.0.0.1/docs/reports/2024/q1.bin $folder/back.bin "${login[@]}"
    check "the library reports success" status_is 0
    check "what came back is what went out" \
        same_checksum $folder/report.bin $folder/back.bin

    announce "Delete it on the share"
    kvtshare delete //127.0.0.1/docs/reports/2024/q1.bin "${login[@]}"
    check "the library reports success" status_is 0
    check "the file is gone from the server's folder" \
        is_gone /run/share/reports/2024/q1.bin

    announce "Try with a wrong password (by another address: the first one is mounted)"
    kvtshare send $folder/report.bin '//[::1]/docs/intruder.bin' \
        --user root --password-file $folder/wrong-password
    check "the library reports that access was refused, 6" status_is 6
    check "nothing reached the server" is_gone /run/share/intruder.bin

    announce "Unmount"
    kvtshare unmount --all
    check "the library reports success" status_is 0
    check "nothing is mounted" nothing_is_mounted
    check "the mount folder is gone" is_gone /mnt/orbmountZ

    announce "An old server that speaks SMB 1 only, without a mount: send and fetch"
    "$samba" reconfigure "server max protocol = NT1"
    kvtshare send --smb1 $folder/report.bin //127.0.0.1/docs/old.bin "${login[@]}"
    check "the library reports success" status_is 0
    check "the server's own folder holds the same bytes" \
        same_checksum $folder/report.bin /run/share/old.bin
    kvtshare send --smb1 //127.0.0.1/docs/old.bin $folder/old-back.bin "${login[@]}"
    check "the library reports success" status_is 0
    check "what came back is what went out" \
        same_checksum $folder/report.bin $folder/old-back.bin
    check "nothing was mounted for it" nothing_is_mounted

    [[ $failures -eq 0 ]]
}

# --- On the machine ----------------------------------------------------------

cd "$(dirname "${BASH_SOURCE[0]}")"
if [[ ${1:-} == --in-guest ]]; then
    in_guest "${@:2}"
    exit
fi

SECONDS=0
fail() {
    printf '\ndemo.sh: %s, after %d s: not everything held.\n' "$1" "$SECONDS"
    exit 1
}

echo "== Packages"
tools/install-deps.sh build library examples guest || fail "packages are missing"

echo "== Build"
{
    cmake -S . -B build/demo -DCMAKE_BUILD_TYPE=Release -DKVT_BUILD_TESTS=OFF &&
        cmake --build build/demo --target kvtshare -j "$(nproc)"
} || fail "the build failed"

echo
echo "== Guest (boots in a few seconds)"
tests/guest/boot.sh --memory 512 build/demo/guest \
    "$PWD/demo.sh" --in-guest "$PWD/build/demo/examples/kvtshare/kvtshare" \
    "$PWD/tests/guest/samba.sh" || fail "a step in the guest failed"

printf '\ndemo.sh: every step did what it says; %d s in all.\n' "$SECONDS"
