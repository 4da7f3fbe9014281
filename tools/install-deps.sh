#!/bin/bash
# Installs the Debian packages that building and testing need and that are not
# there yet.  Needs root or sudo only when something is missing.
#
#   tools/install-deps.sh                  everything
#   tools/install-deps.sh build guest      these groups only
#   tools/install-deps.sh --missing ...    print what is missing, install nothing
set -euo pipefail

declare -A groups=(
  # The compiler and what configures and drives it.
  [build]="g++ make cmake pkg-config git ca-certificates"
  # What the library stands on: transfers, GUIDs, JSON.
  [library]="libcurl4-openssl-dev uuid-dev libcjson-dev"
  # The argument parser of the example programs.
  [examples]="libcli11-dev"
  # Unit tests and benchmarks; the latter measure against the curl command.
  [tests]="libgtest-dev libgmock-dev libbenchmark-dev curl binutils python3"
  # The servers that tests start on loopback, and what makes their networks and
  # certificates.
  [servers]="samba smbclient nginx vsftpd tinyproxy openssl iproute2 util-linux procps"
  # A kernel with a CIFS client that runs as an ordinary process, beside Samba.
  [guest]="user-mode-linux kmod samba smbclient util-linux procps iproute2"
  # Second opinion on the headers, the fuzzers' run time, the format of the
  # sources, the documentation and its pictures.
  [checks]="clang libclang-rt-14-dev clang-format doxygen graphviz"
  # tools/coverage.sh
  [coverage]="gcovr"
)
all="build library examples tests servers guest checks coverage"

# Units of the packages above that Debian starts on its own.
services="smbd nmbd samba-ad-dc nginx vsftpd tinyproxy"

installed() {
  [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

as_root() {
  if [ "$(id -u)" = 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    echo "install-deps.sh: root or sudo is needed to install: ${missing[*]}" >&2
    exit 1
  fi
}

only_print=false
wanted=()
for word in "$@"; do
  if [ "$word" = --missing ]; then
    only_print=true
  elif [ -n "${groups[$word]:-}" ]; then
    wanted+=("$word")
  else
    echo "install-deps.sh: no group '$word'; there are: $all" >&2
    exit 2
  fi
done
[ "${#wanted[@]}" -gt 0 ] || read -ra wanted <<<"$all"

missing=()
for group in "${wanted[@]}"; do
  for package in ${groups[$group]}; do
    [[ " ${missing[*]-} " == *" $package "* ]] && continue
    installed "$package" || missing+=("$package")
  done
done
if $only_print; then
  [ "${#missing[@]}" -eq 0 ] || printf '%s\n' "${missing[@]}"
  exit 0
fi
[ "${#missing[@]}" -gt 0 ] || exit 0
echo "Installing: ${missing[*]}"

# Installing a server starts it.  A policy that refuses keeps the machine as it
# was; one that is there already is the administrator's and stays.
policy=/usr/sbin/policy-rc.d
policy_is_ours=false
if [ ! -e "$policy" ]; then
  printf '#!/bin/sh\nexit 101\n' | as_root tee "$policy" >/dev/null
  as_root chmod 755 "$policy"
  policy_is_ours=true
fi
remove_policy() {
  if $policy_is_ours; then as_root rm -f "$policy"; fi
}
trap remove_policy EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

new_services=()
for service in $services; do
  [ -e "/lib/systemd/system/$service.service" ] || new_services+=("$service")
done

apt() {
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y \
    -o DPkg::Lock::Timeout=300 "$@" </dev/null
}
apt update
apt install --no-install-recommends "${missing[@]}"

# Nor are they to come up with the next boot.
for service in "${new_services[@]}"; do
  if [ -e "/lib/systemd/system/$service.service" ] &&
    command -v systemctl >/dev/null; then
    as_root systemctl --quiet disable "$service" 2>/dev/null ||
      echo "install-deps.sh: $service stays enabled" >&2
  fi
done
