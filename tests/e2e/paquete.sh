#!/bin/sh
# Installs the runtime into a temporary prefix and builds and runs a host against it.
set -e
construccion="$1"; fuentes="$2"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
cmake --install "$construccion" --prefix "$tmp/prefijo" >/dev/null
test -f "$tmp/prefijo/include/kvr/kvr.h"
cmake -S "$fuentes" -B "$tmp/anfitrion" -G Ninja -DCMAKE_PREFIX_PATH="$tmp/prefijo" >/dev/null
cmake --build "$tmp/anfitrion" >/dev/null
LD_LIBRARY_PATH="$tmp/prefijo/lib:$tmp/prefijo/lib/x86_64-linux-gnu" QT_QPA_PLATFORM=offscreen "$tmp/anfitrion/anfitrion"
