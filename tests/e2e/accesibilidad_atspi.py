#!/usr/bin/python3
"""Every window as a screen reader reads it: out of process, over AT-SPI (pyatspi), each window
opened as a user opens it (the kvr command, the demo host) on an X display with a session bus.

Run by accesibilidad_atspi.sh, which provides the display and the bus; this script starts the
accessibility bus itself. For each window of the table below it checks:
  - the window is a frame or a dialog named by its title, and no label repeats the title;
  - every control shown that takes input has a role that fits and a Spanish name;
  - the controls named in the table have the role given there;
  - Tab goes round the controls listed, in that order, and reaches every control that takes input;
  - and what the table's own step asks (keys typed, and what the reader must hear then).
Prints one line per check and exits 1 when any failed.

    accesibilidad_atspi.py KVR DEMO DATOS"""
import os
import subprocess
import sys
import tempfile
import time

import pyatspi
from gi.repository import GLib

KVR, DEMO, DATOS = sys.argv[1:4]
contexto = GLib.MainContext.default()
eventos = []
fallos = 0

# Roles of controls that take input: each must be named, and Tab must reach it.
DE_ENTRADA = {"push button", "check box", "radio button", "text", "combo box", "table", "spin button",
              "list", "toggle button", "page tab", "slider", "password text"}
# Names a control would have if it kept Qt's or an English default.
NO_ESPANOL = {"OK", "Cancel", "Yes", "Close", "Help", "Apply", "Open", "Save", "Browse", "Value", "Text"}


def bombear(segundos):
    fin = time.time() + segundos
    while time.time() < fin:
        while contexto.pending():
            contexto.iteration(False)
        time.sleep(0.02)


def al_evento(e):
    try:
        eventos.append((e.type, e.source.getRoleName(), e.source.name or "", e.detail1, str(e.any_data)))
    except Exception:  # the object died meanwhile
        pass


def comprobar(caso, bien, detalle=""):
    global fallos
    print(("bien   " if bien else "FALLO  ") + caso + ("" if bien else ": " + detalle), flush=True)
    if not bien:
        fallos += 1


def estados(o):
    try:
        return o.getState()
    except Exception:
        return None


def mostrado(o):
    s = estados(o)
    return s is not None and s.contains(pyatspi.STATE_SHOWING) and s.contains(pyatspi.STATE_VISIBLE)


def recorrer(o, profundidad=0):
    """Every object shown under o (the cells of big tables are not walked)."""
    yield o
    if profundidad > 12 or o.getRoleName() == "table":
        return
    for i in range(o.childCount):
        h = o.getChildAtIndex(i)
        if h is not None and mostrado(h):
            yield from recorrer(h, profundidad + 1)


def aplicacion(pid, segundos=15):
    fin = time.time() + segundos
    while time.time() < fin:
        bombear(0.2)
        escritorio = pyatspi.Registry.getDesktop(0)
        for i in range(escritorio.childCount):
            a = escritorio.getChildAtIndex(i)
            try:
                if a is not None and a.get_process_id() == pid and a.childCount > 0:
                    return a
            except Exception:
                pass
    return None


def ventana_de(app, titulo, segundos=15):
    fin = time.time() + segundos
    while time.time() < fin:
        for i in range(app.childCount):
            v = app.getChildAtIndex(i)
            if v is not None and v.name == titulo and mostrado(v):
                return v
        bombear(0.2)
    return None


def id_x(titulo):
    salida = subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", "^%s$" % titulo],
                            capture_output=True, text=True, timeout=15).stdout.split()
    return salida[0] if salida else None


def teclas(wid, *lista):
    for t in lista:
        if t.startswith("texto:"):
            subprocess.run(["xdotool", "type", "--window", wid, "--delay", "40", t[6:]], stderr=subprocess.DEVNULL)
        else:
            subprocess.run(["xdotool", "key", "--window", wid, t], stderr=subprocess.DEVNULL)
        bombear(0.25)


def enfocados():
    return [(r, n) for (t, r, n, d, _) in eventos if t == "object:state-changed:focused" and d == 1]


# What a user opens, and what a reader must meet there. "roles": control name -> role;
# "tab": the controls Tab goes through, in order, from the one with the focus at the start;
# "paso": keys and a check of the events they caused.
def paso_calculadora(wid, ventana):
    eventos.clear()
    teclas(wid, "2", "plus", "3", "equal")
    dichos = [a for (t, r, n, d, a) in eventos if t.startswith("object:text-changed:insert") and n == "Resultado"]
    comprobar("calculadora: el resultado llega al lector", any("5.00" in a for a in dichos),
              "eventos de Resultado: %r" % dichos)


def paso_telefonos(wid, ventana):
    eventos.clear()
    teclas(wid, "texto:alm")
    otros = [x for x in enfocados() if x[1] != "Buscar"]
    comprobar("teléfonos: el foco sigue en Buscar al teclear", not otros, "foco en %r" % otros)
    cuenta = [o for o in recorrer(ventana) if o.getRoleName() == "table"]
    descripcion = cuenta[0].description if cuenta else ""
    comprobar("teléfonos: se dice cuántos contactos quedan", descripcion.endswith("contactos")
              or descripcion.endswith("contacto") or descripcion == "Ningún contacto", repr(descripcion))
    cambios = [x for x in eventos if x[0] == "object:property-change:accessible-description" and x[1] == "table"]
    comprobar("teléfonos: el cambio de la cuenta se anuncia", len(cambios) >= 1, "sin evento")
    if cuenta:
        tabla = cuenta[0].queryTable()
        titulos = [tabla.getColumnHeader(c).name if tabla.getColumnHeader(c) else "" for c in range(tabla.nColumns)]
        comprobar("teléfonos: solo las columnas visibles", titulos == ["Nombre", "Teléfono", "Fax", "eMail"],
                  repr(titulos))


def abrir_kvr(*argumentos, entrada=None):
    return subprocess.Popen([KVR, *argumentos], stdin=entrada or subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                            stderr=subprocess.DEVNULL)


def casos(tmp):
    tlf = os.path.join(tmp, "tlf")
    os.makedirs(tlf, exist_ok=True)
    with open(os.path.join(DATOS, "TELEFONO.DAT"), "rb") as a, open(os.path.join(tlf, "TELEFONO.DAT"), "wb") as b:
        b.write(a.read())
    tabla = os.path.join(tmp, "tabla.txt")
    with open(tabla, "w") as f:
        f.write("LUGO\r\nMADRID\r\n")
    filas = os.path.join(tmp, "filas.txt")
    with open(filas, "w") as f:
        f.write("001\tAna\n002\tLuis\n")
    os.environ["TLF"] = tlf
    return [
        dict(nombre="mensaje", abrir=lambda: abrir_kvr("mensaje", "¿Seguimos?;Elija", "--botones", "3"),
             titulo="kvr", rol="dialog", roles={"Si": "push button", "No": "push button"}, tab=["Si", "No"]),
        dict(nombre="mensaje con título", abrir=lambda: abrir_kvr("mensaje", "Aviso", "--titulo", "Copias"),
             titulo="Copias", rol="dialog", roles={"Aceptar": "push button"}, tab=["Aceptar"]),
        dict(nombre="entrada", abrir=lambda: abrir_kvr("entrada", "Fecha de la factura", "--titulo", "Entrada",
                                                        "--tag", "T(F) L(10) A(I)"),
             titulo="Entrada", rol="dialog", roles={"Fecha de la factura": "text", "Aceptar": "push button"},
             tab=["Fecha de la factura", "Aceptar", "Cancelar"]),
        dict(nombre="clave", abrir=lambda: abrir_kvr("clave", "Contraseña del servidor", "--titulo", "Clave"),
             titulo="Clave", rol="dialog", roles={"Contraseña del servidor": "password text"},
             tab=["Contraseña del servidor", "Aceptar", "Cancelar"]),
        dict(nombre="formulario", abrir=lambda: abrir_kvr("formulario", "--titulo", "Factura", "--campo",
                                                          "Fecha;T(F) L(10)", "--campo", "Cliente;T(M) L(20)"),
             titulo="Factura", rol="dialog", roles={"Fecha": "text", "Cliente": "text", "Aceptar": "push button"},
             tab=["Fecha", "Cliente", "Aceptar", "Cancelar"]),
        dict(nombre="entrada de lista", abrir=lambda: abrir_kvr("entrada", "Provincia", "--titulo", "Lista",
                                                                 "--lista", "LUGO;MADRID"),
             titulo="Lista", rol="dialog", roles={"Provincia": "combo box"}, tab=["Provincia", "Aceptar", "Cancelar"]),
        dict(nombre="entrada de intervalo", abrir=lambda: abrir_kvr("entrada", "Importes", "--titulo", "Rango",
                                                                     "--tag", "T(N) L(8) A(D) (/)"),
             titulo="Rango", rol="dialog", roles={"Desde": "text", "Hasta": "text"},
             tab=["Desde", "Hasta", "Aceptar", "Cancelar"]),
        dict(nombre="visor", abrir=lambda: abrir_kvr("visor", "--titulo", "Clientes", "--titulos",
                                                     "Código#6;Nombre#20", entrada=open(filas)),
             titulo="Clientes", rol="dialog", roles={"Tabla": "table"}, tab=["Tabla", "Aceptar"]),
        dict(nombre="impresora", abrir=lambda: abrir_kvr("impresora"), titulo="Impresora", rol="dialog",
             roles={"Impresoras": "combo box", "Aceptar": "push button"},
             tab=["Impresoras", "Papel según Impresora", "Aceptar", "Cancelar"]),
        dict(nombre="calculadora", abrir=lambda: abrir_kvr("calculadora"), titulo="Calculadora", rol="frame",
             roles={"Resultado": "text", "Cinta": "text", "Teclado": None}, tab=["Teclado", "Resultado", "Cinta"],
             texto=["Resultado", "Cinta"], paso=paso_calculadora),
        dict(nombre="teléfonos", abrir=lambda: abrir_kvr("telefonos"), titulo="Teléfonos", rol="frame",
             roles={"Buscar": "text", "Contactos": "table", "Nuevo": "push button"},
             tab=["Buscar", "Contactos", "Nuevo", "eMail", "Salir"], paso=paso_telefonos),
        dict(nombre="tabla", abrir=lambda: abrir_kvr("tabla", tabla, "--titulos", "Provincia#25"),
             titulo="Edición de Tablas", rol="frame", roles={"Tabla": "table", "Elemento": "text"},
             tab=["Tabla", "Elemento", "Aceptar", "Grabar", "Salir"]),
        dict(nombre="ayuda", abrir=lambda: abrir_kvr("ayuda", os.path.join(DATOS, "ayuda_demo.rtf")),
             titulo="Ayuda", rol="dialog", roles={"Texto de la ayuda": "text", "Cerrar": "push button"},
             tab=["Texto de la ayuda", "Cerrar"]),
        dict(nombre="demostración", abrir=lambda: subprocess.Popen([DEMO], stdout=subprocess.DEVNULL,
                                                                    stderr=subprocess.DEVNULL),
             titulo="Runtime KVR - Demostración", rol="frame",
             roles={"Mensaje": "push button", "Importe (N)": "text", "Juego de botones": "combo box",
                    "Cliente activo": "check box"},
             tab=["Importe (N)", "Unidades sin signo (n)", "Cuenta (C)"]),
    ]


def revisar(caso, app):
    nombre = caso["nombre"]
    ventana = ventana_de(app, caso["titulo"])
    if ventana is None:
        titulos = [(app.getChildAtIndex(i).getRoleName(), app.getChildAtIndex(i).name) for i in range(app.childCount)]
        comprobar(nombre + ": la ventana aparece", False, "ventanas %r" % titulos)
        return None
    comprobar(nombre + ": es una ventana con su título", ventana.getRoleName() == caso["rol"],
              "rol %s" % ventana.getRoleName())
    objetos = list(recorrer(ventana))[1:]
    repetido = [o for o in objetos if o.getRoleName() == "label" and o.name == caso["titulo"]]
    comprobar(nombre + ": el título se dice una vez", not repetido, "etiqueta «%s» además" % caso["titulo"])
    sin_nombre, raros, de_entrada = [], [], []
    for o in objetos:
        rol = o.getRoleName()
        s = estados(o)
        if rol == "filler" and s.contains(pyatspi.STATE_FOCUSABLE):
            raros.append("relleno que toma el foco")
        if rol in DE_ENTRADA and s.contains(pyatspi.STATE_ENABLED) and s.contains(pyatspi.STATE_FOCUSABLE):
            de_entrada.append(o.name)
            if not o.name.strip():
                sin_nombre.append(rol)
            elif o.name in NO_ESPANOL:
                raros.append("«%s» no está en español" % o.name)
    comprobar(nombre + ": todo control tiene nombre", not sin_nombre, "sin nombre: %r" % sin_nombre)
    comprobar(nombre + ": nombres en español", not raros, "; ".join(raros))
    for control, rol in caso["roles"].items():
        hallados = [o.getRoleName() for o in objetos if o.name == control]
        comprobar("%s: «%s» es %s" % (nombre, control, rol or "visible"),
                  bool(hallados) and (rol is None or rol in hallados), "roles %r" % hallados)
    for control in caso.get("texto", []):
        o = next((o for o in objetos if o.name == control), None)
        try:
            o.queryText()
            tiene = True
        except Exception:
            tiene = False
        comprobar("%s: «%s» se lee como texto" % (nombre, control), tiene, "sin interfaz de texto")
    return ventana, de_entrada


def orden_tab(caso, wid, ventana, de_entrada):
    esperado = caso["tab"]
    if esperado is None:
        return
    vueltas = len(set(de_entrada)) + len(esperado) + 1
    primero = [o.name for o in recorrer(ventana) if estados(o).contains(pyatspi.STATE_FOCUSED)]
    eventos.clear()
    teclas(wid, *["Tab"] * vueltas)
    vistos = primero[:1] + [n for (_, n) in enfocados()]
    # The controls listed come round in that order (rotated to where the focus started).
    secuencia = [n for n in vistos if n in esperado]
    inicio = secuencia.index(esperado[0]) if esperado[0] in secuencia else 0
    vuelta = secuencia[inicio:inicio + len(esperado)]
    comprobar(caso["nombre"] + ": Tab sigue el orden " + " → ".join(esperado), vuelta == esperado,
              "visto %r" % vistos)
    faltan = sorted(set(de_entrada) - set(vistos) - {""})
    comprobar(caso["nombre"] + ": Tab llega a todo control de entrada", not faltan, "no llega a %r" % faltan)


def main():
    bus = subprocess.Popen(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"],
                           stderr=subprocess.DEVNULL)
    time.sleep(0.5)
    os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
    pyatspi.Registry.registerEventListener(al_evento, "object:state-changed:focused", "object:text-changed",
                                           "object:property-change:accessible-description")
    with tempfile.TemporaryDirectory() as tmp:
        os.environ["XDG_CONFIG_HOME"] = os.path.join(tmp, "config")
        os.environ["XDG_DATA_HOME"] = os.path.join(tmp, "datos")
        for caso in casos(tmp):
            proceso = caso["abrir"]()
            try:
                app = aplicacion(proceso.pid)
                if app is None:
                    comprobar(caso["nombre"] + ": la aplicación aparece en el bus", False, "no está")
                    continue
                hallado = revisar(caso, app)
                if hallado is None:
                    continue
                ventana, de_entrada = hallado
                wid = id_x(caso["titulo"])
                if wid is None:
                    comprobar(caso["nombre"] + ": la ventana X aparece", False, caso["titulo"])
                    continue
                bombear(0.5)
                # What a user does first (the focus where the window put it), then Tab round it.
                if "paso" in caso:
                    caso["paso"](wid, ventana)
                orden_tab(caso, wid, ventana, de_entrada)
            finally:
                proceso.kill()
                proceso.wait()
    bus.terminate()
    print("%d fallos" % fallos)
    return 1 if fallos else 0


if __name__ == "__main__":
    sys.exit(main())
