#!/bin/bash
# Installs a build into a scratch prefix, moves that tree, builds a program
# against it and runs it.
#
#   check_install.sh find_package|pkg_config BUILD_DIRECTORY CMAKE COMPILER FLAGS
set -euo pipefail

way=$1
build=$2
cmake=$3
compiler=$4
flags=$5
user=$(cd "$(dirname "$0")" && pwd)/user

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
"$cmake" --install "$build" --prefix "$scratch/first" >"$scratch/log" ||
  { cat "$scratch/log" >&2; exit 1; }
prefix=$scratch/moved
mv "$scratch/first" "$prefix"
libdir=$(dirname "$(find "$prefix" -name 'libkvtbase.so')")

case $way in
  find_package)
    "$cmake" -S "$user" -B "$scratch/build" -DCMAKE_PREFIX_PATH="$prefix" \
      -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags" \
      >"$scratch/log" && "$cmake" --build "$scratch/build" >>"$scratch/log" ||
      { cat "$scratch/log" >&2; exit 1; }
    program=$scratch/build/user
    ;;
  pkg_config)
    export PKG_CONFIG_PATH=$libdir/pkgconfig
    pkg-config --exists --print-errors 'kvtbase >= 1.0'
    program=$scratch/user
    # shellcheck disable=SC2046,SC2086
    "$compiler" $flags -std=c++11 -Wall -Wextra -Wpedantic -Werror \
      -o "$program" "$user/user.cpp" $(pkg-config --cflags --libs kvtbase)
    ;;
  *)
    echo "no way called $way" >&2
    exit 2
    ;;
esac

output=$(LD_LIBRARY_PATH=$libdir "$program")
# By its SONAME, which programs that are built already ask for.
loaded=$(LD_LIBRARY_PATH=$libdir ldd "$program")
if [ "$output" != "share 10.0.0.5 0 11" ] ||
  [[ $loaded != *"libkvtbase.so.1 => $prefix/"* ]]; then
  printf 'the program printed "%s" with %s\n' "$output" "$loaded" >&2
  exit 1
fi

# Nothing but the library, the headers, the package and the .pc file.
unexpected=$(cd "$prefix" && find . -type f ! -path './include/kvtbase/KVT*.h' \
  ! -path './lib*/libkvtbase.so.*' ! -path './lib*/cmake/kvtbase/*.cmake' \
  ! -path './lib*/pkgconfig/kvtbase.pc')
if [ -n "$unexpected" ]; then
  echo "installed besides: $unexpected" >&2
  exit 1
fi
