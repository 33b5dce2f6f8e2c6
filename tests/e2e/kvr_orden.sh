#!/bin/bash
# The kvr command as a script uses it: a real process on an X display (run under xvfb-run -a),
# answered with real key presses sent by xdotool to its window. Each case checks what the command
# writes on standard output and its exit status.
#   kvr_orden.sh KVR DATOS    KVR: the built command; DATOS: the demo host's sample data
set -u
K="$1"; DATOS="$2"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
export LC_ALL=C.UTF-8 XDG_DATA_HOME="$tmp/datos" XDG_CONFIG_HOME="$tmp/config" XDG_RUNTIME_DIR="$tmp/run"
mkdir -m 700 "$tmp/run"
fallos=0

# lanzar ARGUMENTOS...: starts kvr in the background, standard input from $ENTRADA.
lanzar() {
    timeout 20 "$K" "$@" < "${ENTRADA:-/dev/null}" > "$tmp/salida" 2> "$tmp/error" &
    pid=$!
}
# teclas TITULO TECLA...: waits for the window of that title (its id left in $id) and sends it
# the keys in order; "texto:abc" types abc.
teclas() {
    local titulo="$1" t
    shift
    id=$(timeout 10 xdotool search --sync --onlyvisible --name "^$titulo\$" | head -n 1)
    sleep 0.3
    for t in "$@"; do
        case "$t" in
            texto:*) xdotool type --window "$id" --delay 30 "${t#texto:}" ;;
            *) xdotool key --window "$id" "$t" ;;
        esac 2>/dev/null
        sleep 0.1
    done
}
terminar() {
    wait "$pid"
    estado=$?
    salida=$(cat "$tmp/salida")
}
# comprobar CASO ESTADO SALIDA
comprobar() {
    if [ "$estado" = "$2" ] && [ "$salida" = "$3" ]; then
        echo "bien   $1"
    else
        echo "FALLO  $1: estado $estado (se esperaba $2), salida «$salida» (se esperaba «$3»)" \
             "error «$(cat "$tmp/error")»"
        fallos=$((fallos + 1))
    fi
}

# Message box: the first button of "Si No" has the focus; Escape closes without a button.
lanzar mensaje "¿Seguimos?;Elija" --titulo "Caja uno" --botones 3 --omision 1 --icono 2
teclas "Caja uno" Return; terminar; comprobar "mensaje Si" 0 6
lanzar mensaje "¿Seguimos?" --titulo "Caja dos" --botones 3 --omision 2
teclas "Caja dos" Return; terminar; comprobar "mensaje No" 1 7
lanzar mensaje "Aviso" --titulo "Caja tres" --botones 2
teclas "Caja tres" Escape; terminar; comprobar "mensaje Escape" 1 0

# Input box: a date field completes the year; Enter moves on to "Aceptar" like Tab.
lanzar entrada "Fecha de la factura" --titulo "Entrada fecha" --tag "T(F) L(10) A(I)"
teclas "Entrada fecha" texto:0203 Return Return; terminar
comprobar "entrada fecha" 0 "02/03/$(date +%Y)"
lanzar entrada "Nombre" --titulo "Entrada cancelada" --inicial "ANA"
teclas "Entrada cancelada" Escape; terminar; comprobar "entrada cancelada" 1 ""
lanzar entrada "Nombre" --titulo "Entrada vacía" --tag "T(M) L(10) A(I)"
teclas "Entrada vacía" Return Return; terminar; comprobar "entrada vacía aceptada" 0 ""
lanzar entrada "Importes" --titulo "Entrada rango" --tag "T(N) L(8) A(D) (/)" --separador ":"
teclas "Entrada rango" texto:5 Return texto:20 Return Return; terminar
comprobar "entrada intervalo" 0 "5.00:20.00"
lanzar entrada "Provincia" --titulo "Entrada lista" --lista "ÁLAVA;ALBACETE;ALICANTE"
teclas "Entrada lista" Down Tab Return; terminar; comprobar "entrada lista" 0 "ALBACETE"
printf 'LUGO\nMADRID\n' > "$tmp/lista.txt"
lanzar entrada "Provincia" --titulo "Entrada fichero" --lista "@$tmp/lista.txt"
teclas "Entrada fichero" Down Tab Return; terminar; comprobar "entrada lista @fichero" 0 "MADRID"

# A password: typed hidden, written once on standard output and nowhere else.
lanzar clave "Contraseña del servidor" --titulo "Clave"
teclas "Clave" texto:S3creto! Return Return; terminar; comprobar "clave" 0 "S3creto!"
if grep -q "S3creto" "$tmp/error"; then echo "FALLO  la clave sale por la salida de errores"; fallos=$((fallos + 1)); fi
[ "$(grep -c "S3creto" "$tmp/salida")" = 1 ] || { echo "FALLO  la clave no sale una sola vez"; fallos=$((fallos + 1)); }
lanzar clave "Contraseña" --titulo "Clave cancelada"
teclas "Clave cancelada" texto:abc Escape; terminar; comprobar "clave cancelada" 1 ""

# A form of three typed fields, each with its own tag: Enter moves on, then accepts; the answers
# in their editing forms, one per line or on one line with --separador.
formulario() {
    lanzar formulario --titulo "$1" --campo 'Fecha;T(F) L(10)' --campo 'Cliente;T(M) L(20) A(I)' \
      --campo 'Importe;T(N) L(12) A(D) D(2)' "${@:2}"
    teclas "$1" texto:0203 Return texto:ana Return texto:1234.5 Return Return; terminar
}
formulario "Factura"; comprobar "formulario" 0 "$(printf '02/03/%s\nANA\n1234.50' "$(date +%Y)")"
formulario "Factura en una línea" --separador ";"; comprobar "formulario con separador" 0 "02/03/$(date +%Y);ANA;1234.50"
lanzar formulario --titulo "Sin respuesta" --campo "Nombre" --timeout 0.5; terminar
comprobar "formulario, tiempo agotado" 5 ""
lanzar formulario --titulo "Sin campos"; terminar; comprobar "formulario sin campos" 2 ""
grep -q "falta algún --campo" "$tmp/error" || { echo "FALLO  formulario sin campos: $(cat "$tmp/error")"; fallos=$((fallos + 1)); }

# Viewer box: rows from standard input; the focus starts on "Cancelar", Tab back to the grid.
printf '001\tAna\n002\tLuis\n003\tEva\n' > "$tmp/filas.txt"
ENTRADA="$tmp/filas.txt" lanzar visor --titulo "Visor" --titulos "Código#6;Nombre#20" --columna Nombre
teclas "Visor" shift+Tab shift+Tab Down Return; terminar; comprobar "visor fila" 0 "Luis"
ENTRADA="$tmp/filas.txt" lanzar visor --titulo "Visor cancelado" --titulos "Código#6;Nombre#20" --columna "#0"
teclas "Visor cancelado" Escape; terminar; comprobar "visor cancelado" 1 ""

# Progress window driven by standard input; it closes when the input ends.
printf '10\n# Copiando\n50\n100\n' > "$tmp/avance.txt"
ENTRADA="$tmp/avance.txt" lanzar progreso --total 100 --titulo "Copia"; terminar
comprobar "progreso" 0 ""

# A million lines as fast as a program can write them: read in chunks, one step of the bar each.
seq 1 1000000 > "$tmp/millon.txt"
ENTRADA="$tmp/millon.txt" lanzar progreso --total 1000000; terminar
comprobar "progreso de un millón de líneas" 0 ""

# Printer chooser: Escape cancels.
lanzar impresora
teclas "Impresora" Escape; terminar; comprobar "impresora cancelada" 1 ""
# With the test queues of src/printer/colas_cups.sh (PDF, portrait, the default), Enter accepts
# the default queue in its own orientation or, with --apaisado, in the other one.
if [ "$(lpstat -d 2>/dev/null)" = "system default destination: PDF" ]; then
    lanzar impresora
    teclas "Impresora" Return; terminar; comprobar "impresora aceptada" 0 "$(printf 'PDF\nVertical')"
    lanzar impresora --apaisado
    teclas "Impresora" Return; terminar; comprobar "impresora apaisada" 0 "$(printf 'PDF\nHorizontal')"
fi

# Phone book: a search, then "Salir" (Shift+Tab from the search field) with no address picked.
mkdir -p "$tmp/tlf" && cp "$DATOS/TELEFONO.DAT" "$tmp/tlf/"
TLF="$tmp/tlf" lanzar telefonos
teclas "Teléfonos" texto:almacenes shift+Tab space; terminar; comprobar "telefonos sin elegir" 1 ""
# A right click on the first contact's e-mail (its cell at the window's design size) picks it and
# closes the phone book.
TLF="$tmp/tlf" lanzar telefonos
teclas "Teléfonos"; xdotool mousemove --window "$id" 650 87 click 3 2>/dev/null; terminar
comprobar "telefonos elige un correo" 0 "info@almacenesgonzale.es"

# Calculator: 2 + 3 = and Escape; the result goes to the clipboard, nothing is written.
lanzar calculadora
teclas "Calculadora" 2 plus 3 equal Escape; terminar; comprobar "calculadora" 0 ""

# A size factor far past any screen: the window is bounded by the screen (twice its size at most),
# not gigabytes of pixels.
lanzar calculadora +1000
teclas "Calculadora"
ancho=$(xdotool getwindowgeometry "$id" 2>/dev/null | sed -n 's/.*Geometry: \([0-9]*\)x.*/\1/p')
pantalla=$(xdotool getdisplaygeometry 2>/dev/null | cut -d' ' -f1)
xdotool key --window "$id" Escape 2>/dev/null; terminar
[ -n "$ancho" ] && [ "$ancho" -le $((2 * pantalla)) ] && salida=acotada || salida="ancho $ancho, pantalla $pantalla"
comprobar "calculadora +1000" 0 acotada

# --ancho / --alto: the window takes that size.
lanzar calculadora --ancho 600 --alto 320
teclas "Calculadora"
medida=$(xdotool getwindowgeometry "$id" 2>/dev/null | sed -n 's/.*Geometry: \([0-9]*x[0-9]*\).*/\1/p')
xdotool key --window "$id" Escape 2>/dev/null; terminar; salida="$medida"; comprobar "calculadora --ancho --alto" 0 "600x320"
lanzar ayuda "$DATOS/ayuda_demo.rtf" --ancho 50000; terminar; comprobar "ancho fuera de rango" 2 ""

# Help window from an RTF file, closed with Escape; a missing file is an error of the caller.
lanzar ayuda "$DATOS/ayuda_demo.rtf"
teclas "Ayuda" Escape; terminar; comprobar "ayuda" 0 ""
lanzar ayuda "$tmp/no_existe.rtf"; terminar; comprobar "ayuda sin fichero" 2 ""

# A web page: the web engine's progress notes stay off standard error (unless asked for), and
# --timeout closes the window nobody answered, with status 5.
echo '<html><body>Ayuda</body></html>' > "$tmp/ayuda.html"
QTWEBENGINE_CHROMIUM_FLAGS="--no-sandbox --disable-gpu" lanzar ayuda "file://$tmp/ayuda.html" --timeout 3; terminar
comprobar "ayuda web, tiempo agotado" 5 ""
if grep -q "qt.webenginecontext" "$tmp/error"; then echo "FALLO  notas del motor web: $(head -c 300 "$tmp/error")"; fallos=$((fallos + 1)); fi
lanzar mensaje "¿Alguien?" --titulo "Sin respuesta" --timeout 0.5; terminar; comprobar "mensaje, tiempo agotado" 5 0

# Table editor: the grid has the focus; Tab to the field, a new element, Enter to "Aceptar"
# (the focus goes back to the field), Tab Tab to "Grabar", Tab to "Salir".
printf 'LUGO\r\nMADRID\r\n' > "$tmp/tabla.txt"
lanzar tabla "$tmp/tabla.txt" --titulos "Provincia#25"
teclas "Edición de Tablas" Tab texto:soria Return space Tab Tab space Tab space; terminar
comprobar "tabla" 0 ""
salida=$(tr -d '\r' < "$tmp/tabla.txt"); comprobar "tabla grabada" 0 "$(printf 'LUGO\nMADRID\nSORIA')"

# The phone book's contacts out and in without a window: exported as vCard, CSV and TELEFONO.DAT,
# imported into an empty phone book (each format gives the same contacts), imported again (nothing
# added); python3-vobject reads the vCards; a line with no value is refused (1), a file that is no
# vCard file is not used (2).
mkdir -p "$tmp/ag" "$tmp/ag_vcf" "$tmp/ag_csv" "$tmp/ag_dat"
cp "$DATOS/TELEFONO.DAT" "$tmp/ag/"
cuantos=$(TLF="$tmp/ag" "$K" telefonos --exportar "$tmp/todos.vcf" | sed -n 's/exportados \([0-9]*\) .*/\1/p')
TLF="$tmp/ag" "$K" telefonos --exportar "$tmp/todos.csv" > /dev/null
TLF="$tmp/ag" "$K" telefonos --exportar "$tmp/otro.DAT" > /dev/null
for f in vcf csv dat; do
    fichero="$tmp/todos.$f"; [ $f = dat ] && fichero="$tmp/otro.DAT"
    salida=$(TLF="$tmp/ag_$f" "$K" telefonos --importar "$fichero"); estado=$?
    comprobar "importar $f" 0 "leídos $cuantos, añadidos $cuantos, actualizados 0, omitidos 0 (ya estaban), rechazados 0"
    salida=$(TLF="$tmp/ag_$f" "$K" telefonos --importar "$fichero"); estado=$?
    comprobar "importar $f otra vez" 0 "leídos $cuantos, añadidos 0, actualizados 0, omitidos $cuantos (ya estaban), rechazados 0"
    # The same contacts (a save puts them in its own order).
    salida=$(cmp <(tr '\r' '\n' < "$tmp/ag_$f/TELEFONO.DAT" | sort) <(tr '\r' '\n' < "$tmp/ag/TELEFONO.DAT" | sort) && echo iguales)
    estado=0; comprobar "importar $f da los mismos contactos" 0 iguales
done
salida=$(/usr/bin/python3 -c 'import sys, vobject; print(len(list(vobject.readComponents(open(sys.argv[1]).read()))))' "$tmp/todos.vcf"); estado=$?
comprobar "vobject lee las vCards exportadas" 0 "$cuantos"
printf 'Nombre;Tel\xc3\xa9fono\r\nAna;1\r\n;\r\n' > "$tmp/uno.csv"
salida=$(TLF="$tmp/ag_csv" "$K" telefonos --importar "$tmp/uno.csv" 2> "$tmp/error"); estado=$?
comprobar "importar con una línea vacía" 1 "leídos 2, añadidos 1, actualizados 0, omitidos 0 (ya estaban), rechazados 1"
grep -q "rechazado, línea 3" "$tmp/error" || { echo "FALLO  línea rechazada: $(cat "$tmp/error")"; fallos=$((fallos + 1)); }
printf 'BEGIN:VCARD\r\nFN:Cortada\r\n' > "$tmp/cortada.vcf"
salida=$(TLF="$tmp/ag_vcf" "$K" telefonos --importar "$tmp/cortada.vcf" 2> "$tmp/error"); estado=$?
comprobar "importar vCard cortada" 2 ""
grep -q "falta el final" "$tmp/error" || { echo "FALLO  vCard cortada: $(cat "$tmp/error")"; fallos=$((fallos + 1)); }

# Without a window.
lanzar letras 1234,56; terminar
comprobar "letras" 0 "mil doscientos treinta y cuatro euros con cincuenta y seis céntimos"
lanzar nif "12.345.678-z"; terminar; comprobar "nif válido" 0 "$(printf 'DNI\n12345678Z\nZ')"
lanzar nif "X1234567A"; terminar; comprobar "nie no válido" 1 "$(printf 'NIE\nX1234567A\nL')"

# Amounts whose marks could be thousands or decimals are refused, not guessed.
lanzar letras 1.234; terminar; comprobar "letras ambigua" 2 ""
grep -q "«1.234» es ambigua" "$tmp/error" || { echo "FALLO  mensaje de cantidad ambigua"; fallos=$((fallos + 1)); }
lanzar letras 1.234,5; terminar; comprobar "letras con miles" 0 "mil doscientos treinta y cuatro euros con cincuenta céntimos"

# A list file that is missing, a folder or a FIFO: refused at once, with its cause.
mkfifo "$tmp/tuberia"
for caso in "no_existe.txt:no existe" "tuberia:es una tubería (FIFO), no un fichero" ".:es una carpeta, no un fichero"; do
    lanzar entrada "Provincia" --lista "@$tmp/${caso%%:*}"; terminar; comprobar "lista @${caso%%:*}" 2 ""
    grep -q "no se puede leer la lista .*: ${caso#*:}" "$tmp/error" || { echo "FALLO  lista @${caso%%:*}: $(cat "$tmp/error")"; fallos=$((fallos + 1)); }
done
# The help's example is whole.
salida=$("$K" --help | tail -n 1); estado=0
comprobar "ejemplo de la ayuda" 0 "  kvr mensaje '¿Borrar los listados?;Se perderán' --botones 3 --icono 7 && rm -f listados/*"

# Wrong command lines: status 2 and a Spanish line on standard error.
lanzar mensaje "Hola" --botones 9; terminar; comprobar "botones fuera de rango" 2 ""
grep -q "debe ser un número de 1 a 6" "$tmp/error" || { echo "FALLO  mensaje de rango"; fallos=$((fallos + 1)); }
lanzar mensaje "Hola" --colores 3; terminar; comprobar "opción desconocida" 2 ""
grep -q "opción no válida «--colores»" "$tmp/error" || { echo "FALLO  mensaje de opción"; fallos=$((fallos + 1)); }

# No display: one Spanish line, no Qt abort.
env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$K" mensaje "Hola" > "$tmp/salida" 2> "$tmp/error"
estado=$?; salida=$(cat "$tmp/error"); comprobar "sin pantalla" 2 \
  "kvr mensaje: no hay pantalla donde abrir la ventana (DISPLAY y WAYLAND_DISPLAY están vacías)"
DISPLAY=:987 "$K" mensaje "Hola" > "$tmp/salida" 2> "$tmp/error"
estado=$?; salida=$(cat "$tmp/error"); comprobar "pantalla que no responde" 2 \
  "kvr mensaje: no hay pantalla donde abrir la ventana (no responde el servidor X de DISPLAY=:987)"
# A display with no X server behind its port: the same line, not Qt's abort.
DISPLAY=127.0.0.1:97 "$K" mensaje "Hola" > "$tmp/salida" 2> "$tmp/error"
estado=$?; salida=$(cat "$tmp/error"); comprobar "pantalla remota que no responde" 2 \
  "kvr mensaje: no hay pantalla donde abrir la ventana (no responde el servidor X de DISPLAY=127.0.0.1:97)"

echo "$fallos fallos"
[ "$fallos" = 0 ]
