#!/bin/bash
# The guest's first process: an empty /mnt, loopback, the CIFS client, a Samba
# with the share `docs`, then the command that boot.sh left.
set -uo pipefail
export PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin
export HOME=/run LC_ALL=C.UTF-8
here=$(cd "$(dirname "$0")" && pwd -P)
results=$(cd "$KVT_HANDOVER/results" && pwd -P)

# Leaves the status where boot.sh looks for it and ends the guest.
end() {
    echo "$1" >"$results/status"
    # SysRq, since a small Debian has no poweroff(8); it works behind the write.
    echo o >/proc/sysrq-trigger
    sleep 60
}

prepare() {
    mount -t proc proc /proc
    mount -t sysfs sys /sys
    # What lies outside these folders is the machine's own disk.
    local folder
    for folder in /run /mnt /var/lib/samba /var/log /var/cache; do
        mount -t tmpfs -o mode=755,size=90% tmpfs "$folder"
    done
    # Private to the guest, so that tests can name hosts.
    cp /etc/hosts /run/hosts
    mount --bind /run/hosts /etc/hosts

    # The machine has no modules for the guest's kernel, and the CIFS client
    # asks for its ciphers by name: a wrapper finds them in their package.
    local release
    release=$(uname -r)
    mkdir -p /run/modules/lib/modules
    ln -s "/usr/lib/uml/modules/$release" /run/modules/lib/modules/
    printf '#!/bin/sh\nexec /sbin/modprobe -d /run/modules "$@"\n' >/run/modprobe
    chmod +x /run/modprobe
    echo /run/modprobe >/proc/sys/kernel/modprobe
    /run/modprobe -a ipv6 cifs md4 md5 hmac cmac sha256 sha512 aes ccm gcm ecb arc4 des nls_utf8 2>/dev/null
    ip link set lo up
    "$here/samba.sh" setup && "$here/samba.sh" start
}

{ prepare; } >"$results/prepare" 2>&1 || {
    cat "$results/prepare" >"$results/output"
    end 125
}
bash "$KVT_HANDOVER/command" >"$results/output" 2>&1 </dev/null
end $?
