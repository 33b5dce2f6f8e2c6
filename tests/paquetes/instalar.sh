#!/bin/bash
# The Debian packages as an office installs them and a host developer uses them, on this machine
# (as root): install build/paquetes/*.deb with apt-get, build the example host against them with
# CMake (find_package) and with make (pkg-config) and run its test each time, run the installed
# kvr command and read its manual page, then purge the packages and check that no file of theirs
# is left. Also checks that the packages hold every file "cmake --install" installs.
set -euo pipefail
raiz=$(cd "${1:-.}" && pwd)
paquetes=("$raiz"/build/paquetes/*.deb)
nombres=(libkvr1 libkvr-dev kvr)
[ "$(id -u)" = 0 ] || { echo "instalar.sh: hay que ejecutarlo como root (instala y purga paquetes)" >&2; exit 1; }
for p in "${nombres[@]}"; do
  if dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "ok installed"; then
    echo "instalar.sh: $p ya está instalado; esta prueba lo purgaría. Nada hecho." >&2
    exit 1
  fi
done
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

echo "== Los paquetes tienen todo lo que instala cmake --install"
cmake --install "$raiz/build/paquetes-obra" --prefix "$tmp/cmake/usr" >/dev/null
(cd "$tmp/cmake" && find . -type f -o -type l | sed 's|^\./|/|' | sort) > "$tmp/instalados"
for deb in "${paquetes[@]}"; do dpkg-deb -c "$deb"; done | awk '$1 !~ /^d/ {print $6}' | sed 's|^\./|/|' | sort \
  > "$tmp/empaquetados"
if faltan=$(comm -23 "$tmp/instalados" "$tmp/empaquetados") && [ -n "$faltan" ]; then
  echo "Ficheros que instala cmake y no están en ningún paquete:" >&2; echo "$faltan" >&2; exit 1
fi

echo "== apt-get install ${paquetes[*]##*/}"
DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${paquetes[@]}" >"$tmp/apt.log" 2>&1 \
  || { cat "$tmp/apt.log" >&2; exit 1; }
dpkg-query -L "${nombres[@]}" | sort -u > "$tmp/ficheros"
purgar() { DEBIAN_FRONTEND=noninteractive apt-get purge -y "${nombres[@]}" >/dev/null 2>&1 || true; }
trap 'purgar; rm -rf "$tmp"' EXIT

export QT_QPA_PLATFORM=offscreen
unset LD_LIBRARY_PATH PKG_CONFIG_PATH CMAKE_PREFIX_PATH

echo "== El ejemplo con CMake (find_package(KVR))"
cp -r "$raiz/examples/factura" "$tmp/con-cmake"
cmake -S "$tmp/con-cmake" -B "$tmp/con-cmake/obra" -G Ninja >/dev/null
cmake --build "$tmp/con-cmake/obra" >/dev/null
ctest --test-dir "$tmp/con-cmake/obra" --output-on-failure

echo "== El ejemplo con make (pkg-config kvr)"
cp -r "$raiz/examples/factura" "$tmp/con-make"
make -s -C "$tmp/con-make" facturas prueba

echo "== La referencia de la API instalada"
grep -q "guia.html" /usr/share/doc/libkvr-dev/html/index.html

echo "== La orden kvr instalada"
test "$(command -v kvr)" = /usr/bin/kvr
kvr --version
test "$(kvr letras 21 --moneda ESP)" = "veintiuna pesetas"
man -P cat kvr 2>/dev/null | grep -q "cajas y ventanas del Runtime KVR"
for orden in calculadora telefonos RTimeKVR kvr-demo; do
  man -w "$orden" >/dev/null
done
echo "man kvr: $(man -P cat kvr 2>/dev/null | grep -c .) líneas"

echo "== apt-get purge ${nombres[*]}"
DEBIAN_FRONTEND=noninteractive apt-get purge -y "${nombres[@]}" >"$tmp/apt.log" 2>&1 || { cat "$tmp/apt.log" >&2; exit 1; }
trap 'rm -rf "$tmp"' EXIT
quedan=()
while read -r f; do
  # Directories shared with the system (/usr, /usr/share/man/man1...) stay; ours must go.
  if [ -d "$f" ] && [ ! -L "$f" ]; then
    case "$f" in
      */kvr|*/kvr/*|*/KVR|*/KVR/*|*/libkvr1|*/libkvr-dev) quedan+=("$f") ;;
    esac
  elif [ -e "$f" ] || [ -L "$f" ]; then
    quedan+=("$f")
  fi
done < "$tmp/ficheros"
if [ ${#quedan[@]} -gt 0 ]; then
  echo "Quedan tras la purga:" >&2; printf '  %s\n' "${quedan[@]}" >&2; exit 1
fi
echo "== Purgados: no queda ninguno de sus $(wc -l < "$tmp/ficheros") ficheros y carpetas"
