#!/bin/sh
# Installs the runtime into a temporary prefix and builds and runs hosts against it, as the README
# tells a host developer, with no LD_LIBRARY_PATH: the installed libraries must find each other.
set -e
construccion="$1"; fuentes="$2"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
cmake --install "$construccion" --prefix "$tmp/prefijo" >/dev/null
test -f "$tmp/prefijo/include/kvr/kvr.h"
cmake -S "$fuentes" -B "$tmp/anfitrion" -G Ninja -DCMAKE_PREFIX_PATH="$tmp/prefijo" >/dev/null
cmake --build "$tmp/anfitrion" >/dev/null
unset LD_LIBRARY_PATH
export QT_QPA_PLATFORM=offscreen
"$tmp/anfitrion/anfitrion"
# The host that shows only a box records libkvr and not libkvr_core, so that it checks the
# libraries' own run path.
readelf -d "$tmp/anfitrion/anfitrion_caja" | grep -q 'libkvr\.so'
if readelf -d "$tmp/anfitrion/anfitrion_caja" | grep -q 'libkvr_core\.so'; then
  echo "anfitrion_caja enlaza libkvr_core directamente" >&2; exit 1
fi
"$tmp/anfitrion/anfitrion_caja"
# The kvr command finds the installed libraries from bin/ by itself too (a build without the
# programs, such as the coverage one, installs no command).
if [ -d "$construccion/apps/kvr" ]; then
  test "$("$tmp/prefijo/bin/kvr" letras 21 --moneda ESP)" = "veintiuna pesetas"
  test -s "$tmp/prefijo/share/bash-completion/completions/kvr"
fi
