#!/usr/bin/env python3
"""The include ladder: each layer of src/ may include its own headers and those of the layers
below it, never one above or beside it. The programs in apps/ stand on top and may include
everything.

A public header lives in src/<layer>/core/kvr/ (logic library) or src/<layer>/widgets/kvr/
(widget library) and is included as <kvr/NAME.h>. Besides the ladder this checks that a logic
header includes no widget header, and that every header under those folders is listed in its
layer's CMakeLists.txt (an unlisted header would not be installed).

Exit status 1 with one line a finding, 0 when the tree is clean."""
import pathlib
import re
import sys

# From the bottom up; layers on one rung do not include each other.
ESCALERA = [
    ["platform"],
    ["fields"],
    ["layout"],
    ["grid", "minihelp"],
    ["dialogs", "progress"],
    ["tables", "printer"],
    ["phonebook"],
    ["auxiliar"],
    ["calculator"],
    ["launcher"],
]
PELDANO = {capa: n for n, capas in enumerate(ESCALERA) for capa in capas}
# Headers CMake writes into the build (generate_export_header): the libraries' export macros, at
# the bottom of the ladder.
GENERADAS = {"kvr_core_export": ("platform", "core"), "kvr_export": ("platform", "widgets")}
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]kvr/(\w+)\.h[>"]', re.M)


def main(raiz: pathlib.Path) -> int:
    src = raiz / "src"
    hallazgos = []
    # NAME -> (layer, library, path)
    cabeceras = {n: (capa, bib, "(generada)") for n, (capa, bib) in GENERADAS.items()}
    listas = {}  # layer -> its CMakeLists.txt
    for h in sorted(src.glob("*/*/kvr/*.h")):
        capa, biblioteca = h.parts[-4], h.parts[-3]
        if capa not in PELDANO or biblioteca not in ("core", "widgets"):
            hallazgos.append(f"{h.relative_to(raiz)}: fuera de las carpetas de una capa")
            continue
        if h.stem in cabeceras:
            hallazgos.append(f"{h.relative_to(raiz)}: <kvr/{h.stem}.h> ya está en {cabeceras[h.stem][2]}")
        cabeceras[h.stem] = (capa, biblioteca, h.relative_to(raiz))
        if capa not in listas:
            listas[capa] = (src / capa / "CMakeLists.txt").read_text()
        if f"{biblioteca}/kvr/{h.name}" not in listas[capa]:
            hallazgos.append(f"{h.relative_to(raiz)}: no figura en src/{capa}/CMakeLists.txt")
    for capa in sorted(p.name for p in src.iterdir() if p.is_dir()):
        if capa not in PELDANO:
            hallazgos.append(f"src/{capa}: capa que no está en la escalera de tools/escalera.py")

    for f in sorted(src.rglob("*")):
        if f.suffix not in (".h", ".cpp") or not f.is_file():
            continue
        capa = f.relative_to(src).parts[0]
        if capa not in PELDANO:
            continue
        es_cabecera_logica = f.parent.name == "kvr" and f.parent.parent.name == "core"
        texto = f.read_text(errors="replace")
        for m in INCLUDE.finditer(texto):
            linea = texto.count("\n", 0, m.start()) + 1
            nombre = m.group(1)
            donde = f"{f.relative_to(raiz)}:{linea}"
            if nombre not in cabeceras:
                hallazgos.append(f"{donde}: <kvr/{nombre}.h> no existe")
                continue
            otra, biblioteca, _ = cabeceras[nombre]
            if otra != capa and PELDANO[otra] >= PELDANO[capa]:
                hacia = "más arriba" if PELDANO[otra] > PELDANO[capa] else "en el mismo peldaño"
                hallazgos.append(f"{donde}: {capa} incluye <kvr/{nombre}.h> de {otra}, {hacia}")
            if es_cabecera_logica and biblioteca == "widgets":
                hallazgos.append(f"{donde}: una cabecera de kvr_core incluye <kvr/{nombre}.h> de kvr")

    for h in hallazgos:
        print(h)
    if hallazgos:
        print(f"escalera: {len(hallazgos)} hallazgo(s)", file=sys.stderr)
        return 1
    print(f"escalera: {len(cabeceras) - len(GENERADAS)} cabeceras en {len(PELDANO)} capas, ninguna inclusión hacia arriba")
    return 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()))
