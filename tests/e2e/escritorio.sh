#!/bin/sh
# Installs the runtime into a temporary prefix and validates the desktop entries it installed:
# desktop-file-validate passes, and each entry's program and icon are installed with it.
set -e
construccion="$1"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
cmake --install "$construccion" --prefix "$tmp" >/dev/null
for programa in calculadora telefonos; do
  entrada="$tmp/share/applications/$programa.desktop"
  desktop-file-validate --no-hints "$entrada"
  grep -qx "Exec=$programa" "$entrada"
  test -x "$tmp/bin/$programa"
  test -s "$tmp/share/icons/hicolor/scalable/apps/kvr-$programa.svg"
  grep -qx "Icon=kvr-$programa" "$entrada"
done
echo "entradas de escritorio válidas"
