// kvr: the runtime's boxes and windows for shell scripts, cron jobs and programs in any language.
// One subcommand per box or window; answers go to standard output, one per line. Exit status 0
// when the user accepts, 1 when the user cancels, says "No" or closes the window, 2 when the
// command line is wrong or the window cannot be opened (a Spanish line on standard error), 5 when
// nobody answered within --timeout.
#include <kvr/kvr.h>

#include "agenda.h"
#include "formulario.h"
#include "linea.h"
#include "pantalla.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <optional>
#include <unistd.h>

namespace {

constexpr int Aceptado = 0;
constexpr int Cancelado = 1;
constexpr int ErrorUso = 2;
constexpr int TiempoAgotado = 5;

using kvr::orden::Argumentos;

struct Orden {
    kvr::orden::ReglasOrden reglas;
    const char *ayuda; // shown by "kvr ORDEN --help"
    std::function<int(Argumentos &)> ejecutar;
};

void escribir(FILE *f, const QString &texto)
{
    (void)std::fputs(texto.toUtf8().constData(), f); // nothing to tell if the output is gone
}

void salida(const QString &linea)
{
    escribir(stdout, linea + u'\n');
    (void)std::fflush(stdout);
}

int errorUso(const QString &orden, const QString &mensaje)
{
    const QString quien = orden.isEmpty() ? QStringLiteral("kvr") : QStringLiteral("kvr ") + orden;
    escribir(stderr, quien + QStringLiteral(": ") + mensaje + u'\n');
    escribir(stderr, QStringLiteral("Pruebe «%1 --help» para más información.\n").arg(quien));
    return ErrorUso;
}

int errorEjecucion(const QString &orden, const kvr::ErrorEjecucion &e)
{
    escribir(stderr, QStringLiteral("kvr %1: error %2: %3\n").arg(orden).arg(e.numero()).arg(e.descripcion()));
    return ErrorUso;
}

std::optional<int> entero(const Argumentos &a, const char *opcion, int omision, int desde, int hasta)
{
    if (!a.tiene(opcion))
        return omision;
    bool ok = false;
    const int v = a.valor(opcion).toInt(&ok);
    if (!ok || v < desde || v > hasta) {
        errorUso(a.orden, QStringLiteral("--%1 debe ser un número de %2 a %3: «%4»")
                              .arg(QString::fromLatin1(opcion)).arg(desde).arg(hasta).arg(a.valor(opcion)));
        return std::nullopt;
    }
    return v;
}

QString leerEntrada()
{
    QFile f;
    if (!f.open(stdin, QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(f.readAll());
}

// --ancho / --alto: the size wanted for the first window the command opens (0: its own).
int g_ancho = 0;
int g_alto = 0;
// "kvr clave": the box's field hides what is typed.
bool g_clave = false;

// The result code of the last runtime box that closed, read as it hides: MyInputBox gives "" both
// for "Cancelar" and for an empty answer accepted, and the exit status tells them apart.
float g_ultimoResultado = 0;

// Every window the command opens is activated as it appears: without a window manager (Xvfb, a
// bare X session) nobody else gives it the keyboard.
class Activador : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject *o, QEvent *e) override
    {
        if (!o->isWidgetType())
            return false;
        auto *w = static_cast<QWidget *>(o);
        if (e->type() == QEvent::Show && w->isWindow()) {
            if (g_clave)
                if (auto *campo = w->findChild<QLineEdit *>(QStringLiteral("CampoTexto"))) {
                    campo->setEchoMode(QLineEdit::Password);
                    campo->setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText);
                }
            // The size asked for goes to the first window only (not to a message it may show),
            // through the proportional layout: controls, fonts and grid columns follow.
            if ((g_ancho > 0 || g_alto > 0) && !m_dimensionada && w->objectName() != u"Formulario") {
                m_dimensionada = true;
                float ancho = float(g_ancho > 0 ? g_ancho : w->width());
                float alto = float(g_alto > 0 ? g_alto : w->height());
                kvr::Redimensionar(w, ancho, alto, false);
                // The scaling rounds each control; the window itself is given the size exactly.
                w->resize(g_ancho > 0 ? g_ancho : w->width(), g_alto > 0 ? g_alto : w->height());
                kvr::Centrar(w);
            }
            QTimer::singleShot(0, w, [w] { w->raise(); w->activateWindow(); });
        } else if (e->type() == QEvent::Hide) {
            if (auto *caja = qobject_cast<kvr::MyBox *>(w))
                g_ultimoResultado = caja->Resultado();
        }
        return false;
    }

private:
    bool m_dimensionada = false;
};

int mensaje(Argumentos &a)
{
    const auto icono = entero(a, "icono", kvr::IconoInformacion, 1, kvr::NumeroIconos);
    const auto botones = entero(a, "botones", 1, 1, 6);
    const auto omision = entero(a, "omision", 1, 1, 3);
    if (!icono || !botones || !omision)
        return ErrorUso;
    const int r = int(kvr::MyMsgBox(a.posicionales.value(0), a.valor("titulo", QStringLiteral("kvr")),
                                    *icono, *botones, *omision));
    salida(QString::number(r));
    // Aceptar, Reintentar, Ignorar and Si go on; Cancelar, Abortar, No and Escape do not.
    return (r == 1 || r == 4 || r == 5 || r == 6) ? Aceptado : Cancelado;
}

int entrada(Argumentos &a)
{
    const auto icono = entero(a, "icono", kvr::IconoPregunta, 1, kvr::NumeroIconos);
    if (!icono)
        return ErrorUso;
    QString tag = kvr::orden::CompletarTag(a.valor("tag", QStringLiteral("T(A) L(60) A(I)")));
    QString inicial = a.valor("inicial");
    if (a.tiene("lista")) {
        if (a.tiene("tag"))
            return errorUso(a.orden, QStringLiteral("--lista y --tag no pueden ir juntas"));
        tag = QStringLiteral("TABLA");
        inicial = a.valor("lista");
    }
    const QString ayuda = a.valor("ayuda");
    if (!ayuda.isEmpty() && !QFile::exists(ayuda))
        return errorUso(a.orden, QStringLiteral("no existe el fichero de ayuda «%1»").arg(ayuda));
    g_ultimoResultado = 0;
    const QString r = kvr::MyInputBox(a.posicionales.value(0), a.valor("titulo", QStringLiteral("kvr")),
                                      *icono, tag, inicial, -1, -1, nullptr, ayuda);
    if (g_ultimoResultado != 1.0f)
        return Cancelado;
    if (kvr::TipoDePregunta(tag) == kvr::TipoPregunta::Rango) {
        const auto partes = kvr::PartirRango(r);
        const QString sep = a.valor("separador", QStringLiteral("\t"));
        salida(partes ? partes->first + sep + partes->second : r);
    } else {
        salida(r);
    }
    return Aceptado;
}

int clave(Argumentos &a)
{
    const auto icono = entero(a, "icono", kvr::IconoClave, 1, kvr::NumeroIconos);
    const auto longitud = entero(a, "longitud", 60, 1, 255);
    if (!icono || !longitud)
        return ErrorUso;
    g_clave = true;
    g_ultimoResultado = 0;
    const QString r = kvr::MyInputBox(a.posicionales.value(0), a.valor("titulo", QStringLiteral("kvr")), *icono,
                                      QStringLiteral("T(A) L(%1) A(I)").arg(*longitud));
    if (g_ultimoResultado != 1.0f)
        return Cancelado;
    salida(r);
    return Aceptado;
}

int formulario(Argumentos &a)
{
    QString problema;
    const auto campos = kvr::orden::LeerCampos(a.valores("campo"), problema);
    if (!campos)
        return errorUso(a.orden, problema);
    const auto r = kvr::orden::PedirFormulario(a.valor("titulo", QStringLiteral("kvr")), *campos, g_ancho, g_alto);
    if (!r)
        return Cancelado;
    if (a.tiene("separador"))
        salida(r->join(a.valor("separador")));
    else
        for (const QString &linea : *r)
            salida(linea);
    return Aceptado;
}

int visor(Argumentos &a)
{
    const auto icono = entero(a, "icono", kvr::IconoBuscar, 1, kvr::NumeroIconos);
    if (!icono)
        return ErrorUso;
    const QString titulos = a.valor("titulos");
    kvr::Rejilla modelo;
    kvr::CargarVisor(modelo, titulos);
    const int columnas = modelo.Cols();
    // Row i, element j goes to grid row i, column j - 1: element 0 of each row and row 0 are
    // not shown. Short lines are filled with empty cells, long ones cut at the grid's columns.
    QVector<QStringList> matriz{QStringList(columnas + 1)};
    QStringList lineas = leerEntrada().split(u'\n');
    if (!lineas.isEmpty() && lineas.last().isEmpty())
        lineas.removeLast();
    for (QString linea : lineas) {
        if (linea.endsWith(u'\r'))
            linea.chop(1);
        QStringList fila = QStringList{QString()} + linea.split(u'\t');
        while (fila.size() < columnas + 1)
            fila.append(QString());
        matriz.append(fila.mid(0, columnas + 1));
    }
    g_ultimoResultado = 0;
    const QString r = kvr::MyVisorBox(a.valor("titulo", QStringLiteral("kvr")), titulos, matriz,
                                      *icono, a.valor("columna"));
    if (g_ultimoResultado != 1.0f || (a.tiene("columna") && r.isEmpty()))
        return Cancelado;
    if (!r.isEmpty())
        salida(r);
    return Aceptado;
}

int progreso(Argumentos &a)
{
    const auto total = entero(a, "total", 100, 1, 2000000000);
    if (!total)
        return ErrorUso;
    kvr::BarraProgreso(kvr::ProgresoIniciar, 0, true, 0, float(*total), a.valor("titulo"));
    // The window is found by its name, as the runtime finds it; a "# text" line rewrites its title.
    QWidget *ventana = nullptr;
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (w->objectName() == u"Progreso")
            ventana = w;
    }
    int estado = Aceptado;
    bool acabada = false;
    QByteArray pendiente;
    QSocketNotifier lector(STDIN_FILENO, QSocketNotifier::Read);
    // What one read brought is taken as one step: the title of its last "# text" line and the
    // value of its last number. The bar then advances once, and the event loop it runs cannot
    // call this again before it returns (the notifier is off meanwhile), so a fast writer neither
    // nests calls nor repaints once per line.
    const auto leerLo = [&] {
        lector.setEnabled(false);
        char bufer[65536];
        const ssize_t n = ::read(STDIN_FILENO, bufer, sizeof bufer);
        if (n > 0)
            pendiente.append(bufer, n);
        else
            pendiente.append('\n'); // the end: a last line without its end counts too
        // Only the last title and the last number count: the complete lines are read from the end
        // back until both are found.
        std::optional<QString> titulo;
        std::optional<double> valor;
        const qsizetype completas = pendiente.lastIndexOf('\n') + 1;
        for (qsizetype fin = completas - 1; fin >= 0 && !(titulo && valor);) {
            const qsizetype inicio = fin > 0 ? pendiente.lastIndexOf('\n', fin - 1) + 1 : 0;
            const QString t = QString::fromUtf8(pendiente.constData() + inicio, fin - inicio).trimmed();
            if (t.startsWith(u'#')) {
                if (!titulo)
                    titulo = t.mid(1).trimmed();
            } else if (bool ok = false; !valor && ((void)t.toDouble(&ok), ok)) {
                valor = t.toDouble();
            }
            fin = inicio - 1;
        }
        pendiente.remove(0, completas);
        if (titulo && ventana)
            if (QLabel *etiqueta = ventana->findChild<QLabel *>(QStringLiteral("BarraTitulo")))
                etiqueta->setText(*titulo);
        if (valor)
            kvr::BarraProgreso(kvr::ProgresoAvanzar, float(*valor), true);
        if (n <= 0) {
            acabada = true;
            QCoreApplication::quit();
            return;
        }
        lector.setEnabled(true);
    };
    QObject::connect(&lector, &QSocketNotifier::activated, leerLo);
    // The user closing the window stops the task, as a cancel.
    if (ventana) {
        ventana->setAttribute(Qt::WA_DeleteOnClose, false);
        QObject::connect(qApp, &QApplication::lastWindowClosed, [&] {
            if (acabada)
                return;
            estado = Cancelado;
            QCoreApplication::quit();
        });
    }
    QCoreApplication::exec();
    kvr::BarraProgreso(kvr::ProgresoCerrar);
    return estado;
}

int calculadora(Argumentos &)
{
    auto *calc = new kvr::MiCalc; // deletes itself when closed
    calc->show();
    return QCoreApplication::exec() == 0 ? Aceptado : Cancelado;
}

int telefonos(Argumentos &)
{
    kvr::ContactoElegido.clear();
    auto *agenda = new kvr::Telefonos; // deletes itself when closed
    if (!agenda->Cargada()) {
        // Its file could not be read: the error was shown, and there is no window to wait for.
        delete agenda;
        return ErrorUso;
    }
    agenda->show();
    QCoreApplication::exec();
    if (kvr::ContactoElegido.isEmpty())
        return Cancelado;
    salida(kvr::ContactoElegido);
    return Aceptado;
}

int impresora(Argumentos &a)
{
    kvr::Impresora dialogo;
    if (a.tiene("apaisado"))
        dialogo.ProponerApaisado();
    dialogo.exec();
    if (kvr::ImpresoraCancelada)
        return Cancelado;
    salida(kvr::ImpresoraElegida);
    salida(kvr::OrientacionElegida);
    return Aceptado;
}

int ayuda(Argumentos &a)
{
    const QString que = a.posicionales.value(0);
    kvr::MiniHelp ventana;
    // The strip at the top says what is shown: the caller's text, else the program and its version.
    ventana.TituloMiniWeb(a.valor("titulo"));
    const bool web = que.startsWith(u"http://") || que.startsWith(u"https://") || que.startsWith(u"file://");
    if (web) {
        bool problema = false;
        ventana.MiExplorer(que, problema);
        if (problema) {
            escribir(stderr, QStringLiteral("kvr ayuda: no se pudo abrir «%1»\n").arg(que));
            return Cancelado;
        }
    } else {
        try {
            ventana.CargarAyuda(que);
        } catch (const kvr::ErrorEjecucion &e) {
            return errorEjecucion(a.orden, e);
        }
    }
    ventana.exec();
    return Aceptado;
}

int tabla(Argumentos &a)
{
    if (!QFile::exists(a.posicionales.value(0)))
        return errorUso(a.orden, QStringLiteral("no existe el fichero «%1»").arg(a.posicionales.value(0)));
    auto *t = new kvr::frmTablas; // deletes itself when closed
    t->Dimensionar(nullptr, a.posicionales.value(0), a.valor("titulos", QStringLiteral("Elemento#25")),
                   a.valor("tag", QStringLiteral("T(M) L(15) A(I)")));
    t->show();
    return QCoreApplication::exec() == 0 ? Aceptado : Cancelado;
}

int letras(Argumentos &a)
{
    QString problema;
    const std::optional<double> leido = kvr::orden::LeerCantidad(a.posicionales.value(0), problema);
    if (!leido)
        return errorUso(a.orden, problema.isEmpty() ? QStringLiteral("«%1» no es una cantidad").arg(a.posicionales.value(0))
                                                    : problema);
    const double importe = *leido;
    try {
        if (a.tiene("numero")) {
            if (importe != double(qint64(importe)))
                return errorUso(a.orden, QStringLiteral("--numero pide un número entero"));
            salida(kvr::NumeroEnLetras(qint64(importe)));
        } else {
            salida(kvr::ImporteEnLetras(importe, a.valor("moneda", QStringLiteral("EUR")).toUpper()));
        }
    } catch (const kvr::ErrorEjecucion &e) {
        return errorEjecucion(a.orden, e);
    }
    return Aceptado;
}

int nif(Argumentos &a)
{
    const kvr::Identificacion id = kvr::ValidarIdentificacionFiscal(a.posicionales.value(0));
    static const char *const tipos[] = {"desconocido", "DNI", "NIE", "NIF", "CIF"};
    salida(QString::fromLatin1(tipos[int(id.tipo)]));
    salida(id.normalizada);
    salida(id.control.isNull() ? QString() : QString(id.control));
    return id.valida ? Aceptado : Cancelado;
}

const char *const AyudaGeneral =
    "Uso: kvr ORDEN [OPCIONES] [ARGUMENTOS]\n"
    "Muestra las cajas y ventanas del Runtime KVR desde guiones y otros programas.\n"
    "\n"
    "Órdenes:\n"
    "  mensaje      caja de mensaje con botones (escribe el código del botón)\n"
    "  entrada      pide un valor, un intervalo o una opción de una lista\n"
    "  clave        pide una contraseña sin mostrar lo que se teclea\n"
    "  formulario   pide varios campos en una caja, cada uno con su descripción\n"
    "  visor        muestra filas de la entrada estándar y escribe la elegida\n"
    "  progreso     ventana de progreso guiada por la entrada estándar\n"
    "  calculadora  calculadora con cinta de papel\n"
    "  telefonos    agenda de teléfonos (escribe el correo elegido)\n"
    "  impresora    elige impresora (escribe la impresora y la orientación)\n"
    "  ayuda        muestra un fichero de ayuda RTF o una página web\n"
    "  tabla        editor de tablas de un fichero de texto\n"
    "  letras       escribe una cantidad en letras (sin ventana)\n"
    "  nif          comprueba un NIF, NIE o CIF (sin ventana)\n"
    "\n"
    "Opciones:\n"
    "  -h, --help     muestra esta ayuda y termina\n"
    "  -V, --version  muestra la versión y termina\n"
    "\n"
    "Toda orden con ventana acepta además:\n"
    "  --timeout SEGUNDOS  cierra la ventana si nadie responde en ese tiempo (estado 5)\n"
    "formulario, calculadora, telefonos, ayuda y tabla aceptan también:\n"
    "  --ancho PIXELES, --alto PIXELES  tamaño de la ventana (sus controles y letras\n"
    "                      crecen con ella)\n"
    "\n"
    "Cada orden acepta --help.  Las respuestas salen por la salida estándar, una por línea.\n"
    "\n"
    "Estado de salida:\n"
    "  0  aceptado (\"Aceptar\", \"Si\")\n"
    "  1  cancelado, \"No\" o ventana cerrada\n"
    "  2  línea de órdenes errónea o no hay pantalla\n"
    "  5  se agotó el tiempo de --timeout\n"
    "\n"
    "Ejemplo:\n"
    "  kvr mensaje '¿Borrar los listados?;Se perderán' --botones 3 --icono 7 && rm -f listados/*\n";

Orden hacer(const char *nombre, const char *ayuda, const QStringList &conValor, const QStringList &banderas,
            int minimo, int maximo, bool ventana, std::function<int(Argumentos &)> ejecutar)
{
    return {{QString::fromLatin1(nombre), conValor, banderas, minimo, maximo, ventana, {}}, ayuda, std::move(ejecutar)};
}

std::vector<Orden> ordenes()
{
    const auto L = [](std::initializer_list<const char *> l) {
        QStringList r;
        for (const char *s : l)
            r << QString::fromLatin1(s);
        return r;
    };
    return {
        hacer("mensaje",
         "Uso: kvr mensaje TEXTO [OPCIONES]\n"
         "Muestra una caja de mensaje y escribe el código del botón pulsado.\n"
         "\";\" en TEXTO empieza una línea nueva.\n\n"
         "  --titulo TEXTO   título de la caja\n"
         "  --icono N        1 información, 2 pregunta, 3 advertencia, 4 error, 5 impresora,\n"
         "                   6 grabar, 7 borrar, 8 espera, 9 clave, 10 buscar (1)\n"
         "  --botones N      1 Aceptar, 2 Aceptar Cancelar, 3 Si No, 4 Si No Cancelar,\n"
         "                   5 Abortar Reintentar Ignorar, 6 Reintentar Cancelar (1)\n"
         "  --omision N      botón inicial: 1 el primero, 2 el segundo, 3 el último (1)\n\n"
         "Códigos: Aceptar 1, Cancelar 2, Abortar 3, Reintentar 4, Ignorar 5, Si 6, No 7,\n"
         "0 cerrada con Escape.  Estado 0 con Aceptar, Reintentar, Ignorar o Si; 1 con los demás.\n",
         L({"titulo", "icono", "botones", "omision"}), {}, 1, 1, true, mensaje),
        hacer("entrada",
         "Uso: kvr entrada TEXTO [OPCIONES]\n"
         "Pide un valor en un campo que se comporta según su descripción y lo escribe.\n\n"
         "  --tag TAG          descripción del campo, p. ej. \"T(F) L(10) A(I)\" (una fecha);\n"
         "                     acabada en \"(/)\" pide un intervalo desde-hasta\n"
         "  --inicial VALOR    valor inicial (en un intervalo, desde y hasta unidos por \"ƒ\")\n"
         "  --lista LISTA      elegir de una lista: \"a;b;c\" o @fichero\n"
         "  --separador SEP    separa desde y hasta de un intervalo (tabulador)\n"
         "  --ayuda FICHERO    fichero de ayuda RTF del botón \"Ayuda\"\n"
         "  --titulo TEXTO     título de la caja\n"
         "  --icono N          icono, como en «kvr mensaje» (2)\n\n"
         "Estado 0 con Aceptar (aunque el valor esté vacío), 1 con Cancelar o Escape.\n",
         L({"tag", "inicial", "lista", "separador", "ayuda", "titulo", "icono"}), {}, 1, 1, true, entrada),
        hacer("clave",
         "Uso: kvr clave TEXTO [OPCIONES]\n"
         "Pide una contraseña: lo tecleado se ve como puntos y se escribe una sola vez en la\n"
         "salida estándar, nunca en la de errores.\n\n"
         "  --titulo TEXTO     título de la caja\n"
         "  --longitud N       caracteres como mucho (60)\n"
         "  --icono N          icono, como en «kvr mensaje» (9)\n\n"
         "Estado 0 con Aceptar, 1 con Cancelar o Escape.\n",
         L({"titulo", "longitud", "icono"}), {}, 1, 1, true, clave),
        hacer("formulario",
         "Uso: kvr formulario --campo 'ETIQUETA;TAG[;INICIAL]'... [OPCIONES]\n"
         "Pide varios campos en una caja; cada --campo es uno, con su etiqueta, la descripción\n"
         "que rige sus teclas (\"T(F) L(10)\" una fecha, \"T(N) L(12) D(2)\" un importe...) y\n"
         "un valor inicial.  Intro pasa al campo siguiente y, tras el último, a \"Aceptar\".\n\n"
         "  --campo CAMPO      un campo (se repite, en el orden de la caja)\n"
         "  --separador SEP    las respuestas en una línea, separadas por SEP (una por línea)\n"
         "  --titulo TEXTO     título de la caja\n"
         "  --ancho N, --alto N  tamaño de la caja en píxeles\n\n"
         "Ejemplo:\n"
         "  kvr formulario --campo 'Fecha;T(F) L(10)' --campo 'Cliente;T(M) L(20)' \\\n"
         "                 --campo 'Importe;T(N) L(12) A(D) D(2)' --separador ';'\n\n"
         "Estado 0 con Aceptar, 1 con Cancelar o Escape.\n",
         L({"campo", "separador", "titulo", "ancho", "alto"}), {}, 0, 0, true, formulario),
        hacer("visor",
         "Uso: kvr visor --titulos COLUMNAS [OPCIONES] < FILAS\n"
         "Muestra en una rejilla las filas de la entrada estándar (celdas separadas por\n"
         "tabuladores) y escribe la columna pedida de la fila elegida.\n\n"
         "  --titulos LINEA    columnas, p. ej. \"Código#6;Nombre#30\" (título#ancho)\n"
         "  --columna TITULO   columna que se devuelve (o \"#n\"); sin ella solo se muestra\n"
         "  --titulo TEXTO     título de la caja\n"
         "  --icono N          icono, como en «kvr mensaje» (10)\n\n"
         "Estado 0 con una fila elegida y Aceptar, 1 si no.\n",
         L({"titulos", "columna", "titulo", "icono"}), {}, 0, 0, true, visor),
        hacer("progreso",
         "Uso: kvr progreso [OPCIONES] < ORDENES\n"
         "Muestra la ventana de progreso.  Cada línea de la entrada estándar con un número\n"
         "avanza hasta él; una línea \"# texto\" cambia el título; el fin de la entrada la cierra.\n\n"
         "  --total N          valor del final de la tarea (100)\n"
         "  --titulo TEXTO     título inicial\n\n"
         "Estado 0 al acabar la entrada, 1 si el usuario cierra la ventana.\n",
         L({"total", "titulo"}), {}, 0, 0, true, progreso),
        hacer("calculadora",
         "Uso: kvr calculadora [+N]\n"
         "Abre la calculadora con cinta de papel (+2: al doble de su tamaño).\n\n"
         "  --ancho N, --alto N  tamaño de la ventana en píxeles\n",
         L({"ancho", "alto"}), {}, 0, 1, true, calculadora),
        hacer("telefonos",
         "Uso: kvr telefonos [--importar FICHERO | --exportar FICHERO] [OPCIONES]\n"
         "Abre la agenda de teléfonos y escribe el correo del contacto elegido.\n"
         "La agenda es TELEFONO.DAT en la carpeta de la variable TLF.\n\n"
         "  --ancho N, --alto N  tamaño de la ventana en píxeles\n"
         "  --importar FICHERO  añade a la agenda los contactos del fichero, sin ventana\n"
         "  --exportar FICHERO  escribe los contactos de la agenda en el fichero, sin ventana\n"
         "El formato sigue al nombre: .vcf (vCard), .csv (UTF-8, \";\", cabecera\n"
         "Nombre;Teléfono;Fax;eMail) u otro TELEFONO.DAT.  Importar dos veces no duplica nada.\n"
         "Al importar escribe cuántos contactos leyó, añadió, actualizó y omitió; estado 1\n"
         "si rechazó alguno (lo dice en la salida de errores), 2 si no pudo usar el fichero.\n\n"
         "Estado 0 con un correo elegido, 1 si no.\n",
         L({"ancho", "alto", "importar", "exportar"}), {}, 0, 0, true, telefonos),
        hacer("impresora",
         "Uso: kvr impresora [--apaisado]\n"
         "Elige impresora y orientación; escribe la impresora y \"Vertical\" u \"Horizontal\".\n\n"
         "  --apaisado   propone la otra orientación de la impresora\n\n"
         "Estado 0 con Aceptar, 1 con Cancelar.\n",
         {}, L({"apaisado"}), 0, 0, true, impresora),
        hacer("ayuda",
         "Uso: kvr ayuda FICHERO|URL\n"
         "Muestra un fichero de ayuda RTF o una página web en la ventana de ayuda.\n\n"
         "  --titulo TEXTO     texto de la franja de arriba (el programa y su versión)\n"
         "  --ancho N, --alto N  tamaño de la ventana en píxeles\n",
         L({"titulo", "ancho", "alto"}), {}, 1, 1, true, ayuda),
        hacer("tabla",
         "Uso: kvr tabla FICHERO [OPCIONES]\n"
         "Edita una tabla de una columna guardada en un fichero de texto.\n\n"
         "  --titulos LINEA    columna de la rejilla (\"Elemento#25\")\n"
         "  --tag TAG          descripción del campo (\"T(M) L(15) A(I)\")\n"
         "  --ancho N, --alto N  tamaño de la ventana en píxeles\n",
         L({"titulos", "tag", "ancho", "alto"}), {}, 1, 1, true, tabla),
        hacer("letras",
         "Uso: kvr letras CANTIDAD [OPCIONES]\n"
         "Escribe una cantidad en letras: 1234,56 da \"mil doscientos treinta y cuatro euros\n"
         "con cincuenta y seis céntimos\".\n\n"
         "  --moneda MONEDA    EUR (euros) o ESP (pesetas) (EUR)\n"
         "  --numero           un número entero, sin moneda\n",
         L({"moneda"}), L({"numero"}), 1, 1, false, letras),
        hacer("nif",
         "Uso: kvr nif TEXTO\n"
         "Comprueba un DNI, NIE, NIF o CIF.  Escribe su clase, el identificador normalizado\n"
         "y el carácter de control que le corresponde.\n"
         "Estado 0 si es válido, 1 si no.\n",
         {}, {}, 1, 1, false, nif),
    };
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    if (args.isEmpty())
        return errorUso({}, QStringLiteral("falta la orden"));
    if (args[0] == u"--help" || args[0] == u"-h") {
        escribir(stdout, QString::fromUtf8(AyudaGeneral));
        return 0;
    }
    if (args[0] == u"--version" || args[0] == u"-V") {
        escribir(stdout, QStringLiteral("kvr (Runtime KVR) %1\n").arg(QStringLiteral(KVR_VERSION)));
        return 0;
    }
    std::vector<Orden> lista = ordenes();
    for (Orden &o : lista)
        if (o.reglas.nombre == u"formulario")
            o.reglas.repetibles << QStringLiteral("campo");
    const Orden *orden = nullptr;
    for (const Orden &o : lista) {
        if (args[0] == o.reglas.nombre)
            orden = &o;
    }
    if (!orden)
        return errorUso({}, QStringLiteral("orden desconocida «%1»").arg(args[0]));

    const kvr::orden::Lectura lectura = kvr::orden::LeerLinea(args.mid(1), orden->reglas);
    if (lectura.ayuda) {
        escribir(stdout, QString::fromUtf8(orden->ayuda));
        return 0;
    }
    if (!lectura.error.isEmpty())
        return errorUso(args[0], lectura.error);
    Argumentos a = lectura.argumentos;
    if (a.orden == u"visor" && !a.tiene("titulos"))
        return errorUso(a.orden, QStringLiteral("falta --titulos"));
    if (QString problema; a.orden == u"formulario" && !kvr::orden::LeerCampos(a.valores("campo"), problema))
        return errorUso(a.orden, problema);
    // --timeout: seconds, a fraction allowed, up to a day.
    std::optional<int> esperaMs;
    if (a.tiene("timeout") && !(esperaMs = kvr::orden::LeerSegundos(a.valor("timeout"))))
        return errorUso(a.orden, QStringLiteral("--timeout debe ser un número de segundos de 0 a 86400: «%1»")
                                     .arg(a.valor("timeout")));
    // --ancho / --alto: pixels, within what a screen can hold.
    for (auto [opcion, destino] : {std::pair{"ancho", &g_ancho}, std::pair{"alto", &g_alto}}) {
        const auto v = entero(a, opcion, 0, 50, 20000);
        if (!v)
            return ErrorUso;
        *destino = *v;
    }
    // A list from a file must be a regular file that can be read (a FIFO would block the box, a
    // folder or a missing file would give an empty list without a word): told before any window.
    if (const QString lista = a.valor("lista"); a.orden == u"entrada" && lista.startsWith(u'@')) {
        QByteArray datos;
        if (const auto fallo = kvr::LeerFicheroRegular(lista.mid(1), datos))
            return errorUso(a.orden, QStringLiteral("no se puede leer la lista «%1»: %2").arg(lista.mid(1), fallo->causa));
    }

    // The application sees the program's name and, for the calculator, its size ("+2").
    static QByteArray nombrePrograma = QByteArray(argv[0]);
    static QList<QByteArray> resto;
    static std::vector<char *> argvQt{nombrePrograma.data()};
    if (a.orden == u"calculadora") {
        for (const QString &p : std::as_const(a.posicionales))
            resto << p.toLocal8Bit();
        for (QByteArray &b : resto)
            argvQt.push_back(b.data());
    }
    static int argcQt = int(argvQt.size());
    argvQt.push_back(nullptr);

    // The phone book's contacts in and out of a file need no window (nor a display).
    if (a.orden == u"telefonos" && (a.tiene("importar") || a.tiene("exportar"))) {
        if (a.tiene("importar") && a.tiene("exportar"))
            return errorUso(a.orden, QStringLiteral("--importar y --exportar no pueden ir juntas"));
        QCoreApplication app(argcQt, argvQt.data());
        return a.tiene("importar") ? kvr::orden::ImportarContactos(a.valor("importar"))
                                   : kvr::orden::ExportarContactos(a.valor("exportar"));
    }
    if (!orden->reglas.ventana) {
        QCoreApplication app(argcQt, argvQt.data());
        return orden->ejecutar(a);
    }
    if (QString motivo; !kvr::orden::HayPantalla(motivo)) {
        escribir(stderr, QStringLiteral("kvr %1: no hay pantalla donde abrir la ventana (%2)\n").arg(a.orden, motivo));
        return ErrorUso;
    }
    // The web engine's own progress notes stay quiet. Rules set here come before the user's
    // (QT_LOGGING_RULES and the logging configuration files are applied after them), so a user
    // who asks for the notes still gets them.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.webenginecontext.debug=false\nqt.webenginecontext.info=false"));
    QApplication app(argcQt, argvQt.data());
    kvr::orden::CerrarSondaPantalla(); // Qt is connected now
    QApplication::setApplicationName(QStringLiteral("kvr"));
    QApplication::setApplicationVersion(QStringLiteral(KVR_VERSION));
    Activador activador;
    app.installEventFilter(&activador);
    // Nobody answered in time: every window still open is closed as the user would close it, and
    // the command ends with its own status.
    bool agotado = false;
    if (esperaMs)
        QTimer::singleShot(*esperaMs, &app, [&agotado] {
            agotado = true;
            for (QWidget *w : QApplication::topLevelWidgets())
                if (w->isVisible())
                    w->close();
        });
    int estado;
    try {
        estado = orden->ejecutar(a);
    } catch (const kvr::ErrorEjecucion &e) {
        return errorEjecucion(a.orden, e);
    }
    return agotado ? TiempoAgotado : estado;
}
