#!/bin/bash
# Runtime KVR: one command for each job on a fresh Debian 12 machine.
#   ./kvr.sh demo    installs what is missing, builds, and opens the demo host
#   ./kvr.sh test    installs what is missing, builds, runs every test suite, the same suites
#                    under AddressSanitizer and UndefinedBehaviorSanitizer, and the fuzzers
#   ./kvr.sh build   installs what is missing and builds (no tests)
#   ./kvr.sh bench   builds and runs the benchmarks in bench/
#   ./kvr.sh capturas  pictures of every window into docs/capturas/ (1x and 2x)
#   ./kvr.sh analisis  the include ladder (tools/escalera.py), then clang-tidy and clazy over
#                    both libraries and the programs; fails on any finding (the checks and why
#                    some are left out: .clang-tidy, and below)
#   ./kvr.sh abi     the libraries' ABI against its record in abi/ ("./kvr.sh abi grabar" records it)
#   ./kvr.sh documentacion  the API reference (Doxygen) into build/documentacion/html; fails on
#                    a public name without documentation
#   ./kvr.sh paquetes  the Debian packages libkvr1, libkvr-dev and kvr into build/paquetes/, and
#                    lintian over them ("./kvr.sh paquetes prueba", as root: install them, build
#                    the example host against them with CMake and with pkg-config, purge them)
#   ./kvr.sh cobertura  builds the coverage preset, runs every suite and prints the line and
#                    branch coverage of libkvr_core and libkvr
set -euo pipefail
cd "$(dirname "$0")"

PAQUETES=(cmake ninja-build g++ clang-14 libclang-rt-14-dev pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-webengine-dev libgl-dev
  xvfb xauth xdotool cups cups-client printer-driver-cups-pdf libcups2-dev python3 procps
  libzip-dev zip unzip python3-stdnum poppler-utils desktop-file-utils llvm-14 help2man
  clang-tidy-14 clazy abigail-tools dpkg-dev lintian doxygen
  python3-pyatspi at-spi2-core dbus-daemon python3-vobject)
FUZZ_SEGUNDOS=${FUZZ_SEGUNDOS:-45}
FUZZ_SEMILLA=${FUZZ_SEMILLA:-1}   # a fixed seed: a finding can be reproduced from the log

preparar() {
  local faltan=()
  for p in "${PAQUETES[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || faltan+=("$p")
  done
  if [ ${#faltan[@]} -gt 0 ]; then
    echo "== Instalando: ${faltan[*]}"
    local sudo=""
    [ "$(id -u)" = 0 ] || sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${faltan[@]}"
  fi
}

compilar() {
  cmake --preset default
  cmake --build --preset default
}

# cupsd and the two PDF queues that the printer dialog's tests and the demo print to.
impresoras() {
  ./src/printer/colas_cups.sh || echo "== Sin sistema de impresión: las pruebas de impresoras se saltarán"
}

con_pantalla() {
  if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    "$@"
  else
    echo "== Sin pantalla: se abre bajo Xvfb (xvfb-run)"
    xvfb-run -a "$@"
  fi
}

# Static analysis of the project's own sources (src/ and apps/, not the generated files), from the
# default build's compile commands. clazy's level-1 checks, less non-pod-global-static: the
# constant tables of texts built at load time (.clang-tidy says why for its twin, cert-err58-cpp).
analisis() {
  local fuentes informe
  echo "== Escalera de inclusiones"
  python3 tools/escalera.py
  mapfile -t fuentes < <(python3 -c '
import json, sys
for e in json.load(open("build/default/compile_commands.json")):
    f = e["file"]
    if ("/src/" in f or "/apps/" in f) and "_autogen" not in f and "/build/" not in f:
        print(f)' | sort -u)
  informe=$(mktemp)
  echo "== clang-tidy en ${#fuentes[@]} fuentes"
  printf '%s\n' "${fuentes[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy-14 -p build/default --quiet >"$informe" 2>/dev/null || true
  echo "== clazy en ${#fuentes[@]} fuentes"
  printf '%s\n' "${fuentes[@]}" | xargs -P "$(nproc)" -n 4 clazy-standalone -p build/default/compile_commands.json \
    -checks=level1,no-non-pod-global-static >>"$informe" 2>&1 || true
  if grep -E "(warning|error):" "$informe"; then
    echo "== El análisis estático ha encontrado lo de arriba"
    rm -f "$informe"
    return 1
  fi
  rm -f "$informe"
  echo "== Análisis estático: nada que señalar"
}

# The ABI of both libraries against its record in abi/ (abidw, from abigail-tools): a change that
# breaks hosts built against this release (abidiff's "incompatible change" bit) fails unless the
# SONAME was raised with it; added names are reported and pass. "./kvr.sh abi grabar" records the
# ABI of the default build (after a deliberate SONAME change, or when a release adds names).
abi() {
  local prefijo grabar="${1:-}" fallos=0
  prefijo=$(mktemp -d)
  cmake --install build/default --prefix "$prefijo" >/dev/null
  for lib in kvr_core kvr; do
    local so registro informe rc antes ahora
    so=$(find "$prefijo" -name "lib$lib.so.*.*.*" | head -n 1)
    registro="$prefijo/lib$lib.abi"
    if [ "$grabar" = grabar ]; then
      mkdir -p abi
      abidw --headers-dir "$prefijo/include/kvr" --drop-private-types --no-corpus-path --out-file "$registro" "$so"
      gzip -9n <"$registro" >"abi/lib$lib.abi.gz"
      echo "== ABI de lib$lib grabada en abi/lib$lib.abi.gz"
      continue
    fi
    gzip -dc "abi/lib$lib.abi.gz" >"$registro"
    informe=$(mktemp)
    set +e
    abidiff --headers-dir2 "$prefijo/include/kvr" --drop-private-types "$registro" "$so" >"$informe" 2>&1
    rc=$?
    set -e
    antes=$(grep -o "soname='[^']*'" "$registro" | head -n 1 | cut -d"'" -f2)
    ahora=$(objdump -p "$so" | awk '/SONAME/ {print $2}')
    if (( rc & 3 )); then
      cat "$informe"; echo "== abidiff no pudo comparar lib$lib"; fallos=1
    elif (( rc & 8 )) && [ "$antes" = "$ahora" ]; then
      cat "$informe"; echo "== lib$lib rompe la ABI de $antes sin subir el SONAME"; fallos=1
    elif (( rc & 4 )); then
      echo "== lib$lib: cambios compatibles con $antes (o SONAME nuevo $ahora):"; head -n 20 "$informe"
    else
      echo "== lib$lib: la ABI es la de $antes"
    fi
    rm -f "$informe"
  done
  rm -rf "$prefijo"
  return "$fallos"
}

# The three Debian packages into build/paquetes/, built with Debian's hardening flags, and
# lintian over them: an error fails; the warnings left are named in the README.
paquetes() {
  local cxxflags ldflags
  export DEB_BUILD_MAINT_OPTIONS=hardening=+all
  cxxflags="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS)"
  ldflags="$(dpkg-buildflags --get LDFLAGS)"
  cmake --preset paquetes -DCMAKE_CXX_FLAGS="$cxxflags" -DCMAKE_EXE_LINKER_FLAGS="$ldflags" \
    -DCMAKE_SHARED_LINKER_FLAGS="$ldflags"
  cmake --build --preset paquetes
  rm -rf build/paquetes
  cpack --config build/paquetes-obra/CPackConfig.cmake -B build/paquetes
  rm -rf build/paquetes/_CPack_Packages
  ls -l build/paquetes/*.deb
  echo "== lintian"
  lintian --fail-on error --tag-display-limit 0 build/paquetes/*.deb
}

# The API reference: every public header's documentation comments and the guide in
# docs/referencia, as HTML in build/documentacion/html. A public name without documentation, or a
# comment Doxygen cannot read, is a warning, and any warning fails.
documentacion() {
  rm -rf build/documentacion
  mkdir -p build/documentacion
  KVR_RAIZ="$PWD" KVR_ENTRADAS="$(echo src/*/*/kvr) docs/referencia" KVR_SALIDA=build/documentacion \
    doxygen docs/referencia/Doxyfile
  echo "== Referencia en build/documentacion/html/index.html"
}

fuzz() {
  cmake --preset fuzz
  cmake --build --preset fuzz
  local tmp
  tmp=$(mktemp -d)
  for f in build/fuzz/fuzz/fuzz_*; do
    if [ ! -f "$f" ] || [ ! -x "$f" ]; then continue; fi
    local nombre corpus
    nombre=$(basename "$f")
    corpus="$tmp/$nombre"
    mkdir -p "$corpus"
    [ -d "fuzz/corpus/$nombre" ] && cp -r "fuzz/corpus/$nombre/." "$corpus/"
    echo "== $nombre durante ${FUZZ_SEGUNDOS} s"
    QT_QPA_PLATFORM=offscreen "$f" -seed="$FUZZ_SEMILLA" -max_total_time="$FUZZ_SEGUNDOS" -rss_limit_mb=4096 -timeout=10 \
      -print_final_stats=1 "$corpus" 2>&1 | tail -n 12
  done
  rm -rf "$tmp"
}

caso="${1:-}"
case "$caso" in
  demo)
    preparar
    compilar
    impresoras
    con_pantalla ./build/default/apps/kvr-demo
    ;;
  test)
    preparar
    compilar
    impresoras
    ctest --preset default --output-on-failure
    analisis
    documentacion
    abi
    cmake --preset asan
    cmake --build --preset asan
    ctest --preset asan --output-on-failure
    fuzz
    echo "== Todas las pruebas han pasado"
    ;;
  build)
    preparar
    compilar
    ;;
  documentacion)
    preparar
    documentacion
    ;;
  paquetes)
    preparar
    paquetes
    # "./kvr.sh paquetes prueba" (as root) installs them, builds the example host against them
    # both ways, runs it, and purges them again.
    if [ "${2:-}" = prueba ]; then
      tests/paquetes/instalar.sh "$PWD"
    fi
    ;;
  capturas)
    # Pictures of every window for the README, at 1x and 2x, under Xvfb.
    preparar
    cmake --preset default
    cmake --build --preset default --target kvr-capturas
    for escala in 1 2; do
      sufijo=""; [ "$escala" = 2 ] && sufijo="@2x"
      QT_SCALE_FACTOR=$escala dbus-run-session -- xvfb-run -a -s "-screen 0 1280x1024x24" \
        ./build/default/apps/capturas/kvr-capturas docs/capturas "$sufijo"
    done
    ;;
  bench)
    preparar
    compilar
    for b in build/default/bench/bench_*; do
      if [ -f "$b" ] && [ -x "$b" ]; then "$b"; fi
    done
    ;;
  analisis)
    preparar
    compilar
    analisis
    ;;
  abi)
    preparar
    compilar
    abi "${2:-}"
    ;;
  cobertura)
    preparar
    impresoras
    cmake --preset coverage
    cmake --build --preset coverage
    perfiles=build/coverage/perfiles
    rm -rf "$perfiles" && mkdir -p "$perfiles"
    # One raw profile per process (%p): the suites start helper programs and hosts of their own.
    estado=0
    LLVM_PROFILE_FILE="$PWD/$perfiles/%p.profraw" ctest --test-dir build/coverage --output-on-failure || estado=$?
    llvm-profdata-14 merge -sparse "$perfiles"/*.profraw -o "$perfiles/kvr.profdata"
    for lib in libkvr_core.so libkvr.so; do
      # Only the project's own sources: Qt's headers and the generated moc/uic files are left out.
      llvm-cov-14 report "build/coverage/src/$lib" -instr-profile="$perfiles/kvr.profdata" \
        -ignore-filename-regex='^/usr/|/build/' | awk -v lib="$lib" \
        '$1 == "TOTAL" { printf "%-16s líneas %s  ramas %s\n", lib, $10, $13 }'
    done
    exit "$estado"
    ;;
  *)
    echo "uso: $0 demo | test | build | bench | analisis | capturas | cobertura" >&2
    exit 2
    ;;
esac
