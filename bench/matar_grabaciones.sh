#!/bin/bash
# Kills a program that saves the contacts file in a loop (kill -9, at a random moment) again and
# again, and checks after every kill that the file is byte for byte one of the two versions the
# program saves: an atomic save leaves the old file or the new one, never a mixture or a cut.
#   matar_grabaciones.sh AGENDA_PROCESO [VECES] [FILAS]      (defaults 1000 and 100000)
# Exit status 0 when every kill left a whole file.
set -u
programa=$1
veces=${2:-1000}
filas=${3:-100000}
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
export TLF="$dir" QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}

rotos=0
vistos_a=0
vistos_b=0
for ((i = 1; i <= veces; i++)); do
  "$programa" alternar "$filas" > "$dir/salida" 2>&1 &
  pid=$!
  # Wait until it is ready to save (its references written), then let it save for a random while.
  for ((j = 0; j < 6000; j++)); do
    grep -q LISTO "$dir/salida" 2>/dev/null && break
    sleep 0.01
  done
  sleep "0.$(printf '%03d' $((RANDOM % 400)))"
  kill -9 "$pid" 2>/dev/null
  wait "$pid" 2>/dev/null
  if [ ! -f "$dir/TELEFONO.DAT" ]; then
    continue # killed before its first save
  fi
  if cmp -s "$dir/TELEFONO.DAT" "$dir/A.ref"; then
    vistos_a=$((vistos_a + 1))
  elif cmp -s "$dir/TELEFONO.DAT" "$dir/B.ref"; then
    vistos_b=$((vistos_b + 1))
  else
    rotos=$((rotos + 1))
    echo "vez $i: el fichero no es ninguna de las dos versiones ($(stat -c %s "$dir/TELEFONO.DAT") bytes)"
    cp "$dir/TELEFONO.DAT" "/tmp/TELEFONO.roto.$i"
  fi
done
restos=$(find "$dir" -maxdepth 1 -name 'TELEFONO.DAT?*' ! -name 'TELEFONO.DAT.lock' -printf '%f ')
echo "matar_grabaciones: $veces muertes con $filas contactos: versión A $vistos_a, versión B $vistos_b, rotos $rotos, temporales sueltos: ${restos:-ninguno}"
[ "$rotos" -eq 0 ]
