#!/bin/bash
# The configure step's three answers about libcurl.
#
#   check_curl_smb.sh CMAKE PATH_OF_CURL_SMB_CMAKE
set -euo pipefail

answer() {
  local script
  script=$(mktemp --suffix=.cmake)
  printf 'cmake_minimum_required(VERSION 3.25)\ninclude("%s")\nkvt_report_smb("8.0" "%s")\n' "$2" "$3" >"$script"
  "$1" -P "$script" 2>&1
  rm -f "$script"
}

expect() {
  local text
  text=$(answer "$1" "$2" "$3")
  if [[ $text != *"$4"* ]]; then
    printf 'protocols "%s": expected "%s", got "%s"\n' "$3" "$4" "$text" >&2
    exit 1
  fi
}

expect "$1" "$2" 'FILE HTTP SMB SMBS' 'libcurl 8.0 has smb://'
expect "$1" "$2" 'FILE SMB' 'libcurl 8.0 has smb://'
expect "$1" "$2" 'FILE HTTP SMBS' 'libcurl 8.0 has no smb://'
expect "$1" "$2" '' 'does not list its protocols'
