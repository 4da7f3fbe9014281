#!/bin/bash
# The guest's file server on loopback.
#
# usage: samba.sh setup                   the account, the share's folder
#        samba.sh start [SETTING...]      starts it, SETTINGs added to [global];
#                                         returns once it listens
#        samba.sh reconfigure [SETTING...]
#                                         the same for the running server, from
#                                         the next connection on
#
# The share `docs` is the folder /run/share; the account is root with the
# password "secret".
set -euo pipefail

kConfiguration=/run/smb.conf
kServerId=/run/samba/smbd.pid

listening() {
    # One line for each socket; port 445 is 01BD, state 0A is LISTEN.
    grep -q ':01BD [0-9A-F]*:[0-9A-F]* 0A' "/proc/net/$1"
}

setup() {
    mkdir -p /run/share /run/samba /var/lib/samba/private /var/log/samba /var/cache/samba
    configure
    printf 'secret\nsecret\n' | smbpasswd -c $kConfiguration -a -s root
}

configure() {
    {
        cat <<'CONF'
[global]
 server min protocol = NT1
 interfaces = lo
 bind interfaces only = yes
 smb ports = 445
 map to guest = never
 ntlm auth = yes
 lock directory = /run/samba
 pid directory = /run/samba
 state directory = /var/lib/samba
 private dir = /var/lib/samba/private
 disable spoolss = yes
 load printers = no
CONF
        printf ' %s\n' "$@"
        cat <<'CONF'
[docs]
 path = /run/share
 read only = no
CONF
    } >$kConfiguration
}

start() {
    configure "$@"
    # Left behind by a server that was killed.
    rm -f $kServerId
    local deadline=$((SECONDS + 10))
    while listening tcp || listening tcp6; do
        if ((SECONDS > deadline)); then
            echo "samba.sh: another server listens already" >&2
            exit 1
        fi
        sleep 0.02
    done
    smbd -D -s $kConfiguration
    deadline=$((SECONDS + 10))
    until listening tcp && listening tcp6; do
        if ((SECONDS > deadline)); then
            echo "samba.sh: smbd does not listen" >&2
            cat /var/log/samba/* >&2 || true
            exit 1
        fi
        sleep 0.02
    done
}

# Whether a SIGHUP waits for the server: bit 0 of the last digit.
hangup_pends() {
    local name pending
    while read -r name pending; do
        [[ $name != ShdPnd: ]] || break
    done <"/proc/$1/status"
    (((16#${pending: -1} & 1) != 0))
}

reconfigure() {
    configure "$@"
    local server
    server=$(<$kServerId)
    kill -HUP "$server"
    # A connection that comes before the server has woken up would be accepted
    # first, with the old settings; once it has taken the signal, it reads the
    # new ones before it looks at its sockets again.
    local deadline=$((SECONDS + 10))
    while hangup_pends "$server"; do
        if ((SECONDS > deadline)); then
            echo "samba.sh: smbd does not take its signal" >&2
            exit 1
        fi
        sleep 0.01
    done
}

case ${1:-} in
    setup) setup ;;
    start) start "${@:2}" ;;
    reconfigure) reconfigure "${@:2}" ;;
    *)
        echo "usage: samba.sh setup | start [SETTING...] | reconfigure [SETTING...]" >&2
        exit 2
        ;;
esac
