// The phone book on a real contacts file in a folder given by TLF. First the file alone: what a
// load puts in the grid, what a save puts on disk (code page 850 as glibc's iconv writes it) and
// the saves that must not happen. Then the window driven with real keys and clicks: the search,
// the entry panel and what each change leaves on disk, the picks of an e-mail address, the wheel,
// the hand-offs received by stand-in programs placed on disk (an xdg-open first on PATH, the fax
// program in the contacts folder), a failed save, and other phone book processes saving the file.
#include <kvr/comunes.h>
#include <kvr/buscador.h>
#include <kvr/contactos.h>
#include <kvr/mivisor.h>
#include <kvr/tablas.h>
#include <kvr/telefonos.h>

#include "comun/pruebas.h"

#include <QHeaderView>
#include <QLockFile>
#include <QProcess>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QWheelEvent>

#include <optional>

#include <fcntl.h>
#include <sys/stat.h>

using namespace kvr;
using namespace prueba;

namespace {

// Shown sorted by name, so a contact's row in the grid is its place here.
const QStringList Agenda = L({
    "Ana López|952 111 111|952 111 112|ana@lopez.es",
    "Bodega|NA 5||bodega@x.es",
    "Carlos Peña|600 000 000|| carlos@pena.es ",
    "Diego|611||juliana@ejemplo.es",
    "Eva|622||",
    "Francisco|633|952 000 000|fran@x.es",
});
const QString Todos = u"Ana López,Bodega,Carlos Peña,Diego,Eva,Francisco"_qs;

QByteArray ficheroDe(const QStringList &contactos)
{
    QString texto = u"\tNombre\tTeléfono\tFax\teMail"_qs;
    for (const QString &c : contactos)
        texto += u"\r\t"_qs + QString(c).replace(u'|', u'\t');
    return BytesDeDos(texto + u"\r\n"_qs);
}

// The names in the file, in file order.
QStringList nombresEnDisco()
{
    Rejilla g;
    LeerFicheroContactos(RutaContactos(), g);
    QStringList r;
    for (int f = 1; f < g.Rows(); ++f)
        r << g.TextMatrix(f, 1);
    return r;
}

// Runs the phone book process with these arguments to its end, or, with `matar`, kills it once
// it is ready; what it printed.
QString agenda(const QStringList &argumentos, bool matar = false)
{
    QProcess p;
    p.start(QStringLiteral(AGENDA_PROCESO), argumentos);
    if (matar && p.waitForReadyRead(10000))
        p.kill();
    p.waitForFinished(30000);
    return QString::fromUtf8(p.readAllStandardOutput()).trimmed();
}

} // namespace

class TstTelefonos : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_registro;

    QString ruta(const QString &nombre) const { return m_dir->filePath(nombre); }

    // A stand-in program: runs `cuerpo` and leaves what it printed in the record, whole.
    void ponerPrograma(const QString &ruta, const QByteArray &cuerpo)
    {
        const QByteArray r = QFile::encodeName(m_registro);
        escribir(ruta, "#!/bin/sh\n{ " + cuerpo + "; } > " + r + ".tmp && mv " + r + ".tmp " + r + "\n");
        QFile::setPermissions(ruta, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    }

private Q_SLOTS:
    void initTestCase()
    {
        // The desktop's opener: a stand-in first on PATH records what it was handed.
        static QTemporaryDir bin;
        m_registro = bin.filePath(u"registro"_qs);
        ponerPrograma(bin.filePath(u"xdg-open"_qs), "printf '%s\\n' \"$@\"");
        qputenv("PATH", QFile::encodeName(bin.path()) + ":" + qgetenv("PATH"));
    }

    // Each test gets its own contacts folder with the sample phone book and the fax program.
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        qputenv("TLF", QFile::encodeName(m_dir->path()));
        escribir(RutaContactos(), ficheroDe(Agenda));
        QDir(m_dir->path()).mkdir(u"Telecopia"_qs);
        ponerPrograma(ruta(u"Telecopia/Telecopia"_qs), "pwd; for a in \"$@\"; do printf '[%s]\\n' \"$a\"; done");
        QFile::remove(m_registro);
        EnviadoPor.clear();
    }

    // What a load puts in the grid, as a save would write it again: any line end, empty lines
    // skipped, no end at the end, an empty file, a NUL read as a blank. What the grid cannot hold
    // (cells past the e-mail, a first line that is not the header) is named, so that the window
    // opens the file for consulting only.
    void cargar_data()
    {
        QTest::addColumn<QByteArray>("disco");
        QTest::addColumn<QByteArray>("grid");
        QTest::addColumn<QString>("motivo");
        const QByteArray cabecera("\tNombre\tTel\x82" "fono\tFax\teMail");
        const QByteArray dos = cabecera + "\r\tANA PE\xA5" "A\t952 1\t952 2\tana@x.es\r\tjos\x82\t3\t\t\r\n";
        const QString ajena = u"su primera línea no es la cabecera de la agenda"_qs;
        QTest::newRow("CR") << cabecera + "\r\tjos\x82\t3\r\tANA PE\xA5" "A\t952 1\t952 2\tana@x.es\r\n" << dos << QString();
        QTest::newRow("LF, sin final") << QByteArray("\n\tjos\x82\t3\n\tANA PE\xA5" "A\t952 1\t952 2\tana@x.es") << dos
                                       << QString();
        QTest::newRow("lineas vacias, CR LF, otra cabecera")
            << QByteArray("x\r\r\n\tjos\x82\t3\r\r\tANA PE\xA5" "A\t952 1\t952 2\tana@x.es\r\n\r\n") << dos << ajena;
        QTest::newRow("vacio") << QByteArray() << cabecera + "\r\t\t\t\t\r\n" << QString();
        QTest::newRow("NUL como blanco, celdas de mas")
            << cabecera + QByteArray("\r\tA\0B\t1\t2\t3\r\tC\t1\t2\t3\textra\r\n", 28)
            << cabecera + "\r\tA B\t1\t2\t3\r\tC\t1\t2\t3\r\n" << u"la línea 3 tiene más de cinco columnas"_qs;
        QTest::newRow("una sola línea larga")
            << QByteArray(1 << 20, 'x') << cabecera + "\r\t\t\t\t\r\n" << ajena;
    }
    void cargar()
    {
        QFETCH(QByteArray, disco);
        escribir(RutaContactos(), disco);
        Rejilla g;
        QString motivo;
        QCOMPARE(LeerFicheroContactos(RutaContactos(), g, &motivo).tamano, disco.size());
        QTEST(TextoContactos(g), "grid");
        QTEST(motivo, "motivo");
    }

    // The search index over rows added from raw UTF-8: a plain substring of the cells joined,
    // without regard to case, across cells; a NUL reads as a blank, a cut sequence as U+FFFD.
    void buscar_data()
    {
        QTest::addColumn<QString>("texto");
        QTest::addColumn<QString>("filas"); // the rows found, from 1
        QTest::newRow("vacío") << QString() << u"1,2,3,4"_qs;
        QTest::newRow("entre celdas") << u"aló"_qs << u"1"_qs;
        QTest::newRow("eñe en mayúsculas") << u"PEÑA"_qs << u"2"_qs;
        QTest::newRow("NUL como blanco") << u"a b"_qs << u"3"_qs;
        QTest::newRow("secuencia cortada") << u"x\uFFFD"_qs << u"4"_qs;
        QTest::newRow("nada") << u"zz"_qs << QString();
    }
    void buscar()
    {
        Rejilla g;
        CargarVisor(g, DescriptorContactos);
        const std::string_view filas[][3] = {{"", "Ana", "L\xC3\xB3pez"},
                                             {"", "pe\xC3\xB1" "a", "1"},
                                             {"", std::string_view("a\0b", 3), ""},
                                             {"", "x\xC3", ""}};
        for (const auto &f : filas)
            g.AgregarFilaUtf8(f, 3);
        g.RemoveItem(1); // the blank row of the set-up
        IndiceBusqueda indice;
        indice.Construir(g, {ColNombre, ColTelefono, ColFax, ColEmail});
        QFETCH(QString, texto);
        const std::vector<unsigned char> dentro = indice.Buscar(texto);
        QStringList vistas;
        for (std::size_t i = 0; i < dentro.size(); ++i)
            if (dentro[i])
                vistas << QString::number(i + 1);
        QTEST(vistas.join(u','), "filas");
    }

    // Rows are saved sorted by name without regard to case; the text is what iconv gives for the
    // same UTF-8, rows joined by CR, the end CR LF; a TAB typed into a cell cannot split the
    // contact. Files beside it that only look like a save's leftovers stay.
    void grabar()
    {
        const QString f = ruta(u"nuevo.DAT"_qs);
        Rejilla g;
        LeerFicheroContactos(f, g);
        const QStringList filas = L({"zoe|1", "Íñigo Núñez|2||íñigo@x.es", "ana|3", "ÁLVARO|4", "bea|un\ttab"});
        for (int i = 0; i < filas.size(); ++i)
            for (int c = 0; c < filas[i].count(u'|') + 1; ++c)
                PonerCelda(g, i + 1, c + 1, filas[i].section(u'|', c, c));
        for (const QString &resto : {u"nuevo.DAT.Ab12cD"_qs, u"nuevo.DAT.copia"_qs}) {
            escribir(ruta(resto), "x");
            QFile viejo(ruta(resto));
            viejo.open(QIODevice::ReadWrite);
            viejo.setFileTime(QDateTime::currentDateTime().addSecs(-3600), QFileDevice::FileModificationTime);
        }
        SelloFichero s;
        QCOMPARE(GrabarFicheroContactos(f, g, s), ResultadoGrabacion::Grabado);
        // Names a user may give a copy stay, whatever their age.
        QCOMPARE(QDir(m_dir->path()).entryList({u"nuevo.*"_qs}), L({"nuevo.DAT", "nuevo.DAT.Ab12cD", "nuevo.DAT.copia"}));
        QCOMPARE(leer(f), ejecutar(u"iconv"_qs, {u"-f"_qs, u"UTF-8"_qs, u"-t"_qs, u"CP850"_qs},
                                   "\tNombre\tTeléfono\tFax\teMail\r\tÁLVARO\t4\t\t\r\tana\t3\t\t\r\tbea\tun tab\t\t\r"
                                   "\tÍñigo Núñez\t2\t\tíñigo@x.es\r\tzoe\t1\t\t\r\n"));
        QCOMPARE(s, SelloDe(f));
        // The save errors hosts tell apart by their number: a read-only file, a missing folder.
        QFile::setPermissions(f, QFileDevice::ReadOwner);
        QCOMPARE(errorDe([&] { GrabarFicheroContactos(f, g, s); }), int(ErrorEjecucion::AccesoDenegado));
        QCOMPARE(errorDe([&] { GrabarFicheroContactos(ruta(u"no/hay.DAT"_qs), g, s); }), ErrorRutaNoEncontrada);
    }

    // A row's steps on a window over the sample phone book, in a folder given by TLF without its
    // slash. Before "abrir": "TLF con barra", "sin TLF", "solo lectura", "por WHO" (EnviadoPor). Then "clic R C", "derecho R
    // C", "doble R C" (the cell of shown row R, column C), "títulos C", "dobleTítulos C", "teclear
    // TEXT", "tecla KEYS", "caja CAPTION" (answers the next box), "rueda" (a notch down over the
    // numbers), or a control's name: a button is pressed, another control takes the focus. What
    // the file meets, before or after: "sin agenda" (no file), "misma hora" (another file of the
    // same size and time), "cerrojo" (another program's lock), "cerrojo muerto" (the lock of a
    // killed process), "sin carpeta", "disco lleno". A "?" step compares what it sees with the
    // rest of the step, where "Agenda" stands for the sample's six names, TLF for the contacts
    // folder and a "*" for any text: "?foco", "?fecha" (the window's version date: "ninguna", "la
    // del fichero" or "otra"), "?estado" (which of the entry panel, its warning, a frame, Editar
    // and Fax are shown and enabled), "?disco" (the names in the file), "?vistos" (the names the
    // grid shows), "?caja" (the last box's text), "?registro" (the lines a stand-in program got,
    // "|" between), "?otro" (what another process that adds the contact Otro0 prints), "?elegido"
    // (the pick of a window that closed), "?barra" (the grid's scroll position), or a control's
    // name: its text.
    void ventana_data()
    {
        QTest::addColumn<QStringList>("pasos");
        // The search looks in every column, across the cells of a row, without regard to case.
        QTest::newRow("buscar en nombre, entre columnas y en el correo")
            << L({"abrir", "BuscoTLF", "teclear ana", "?vistos Ana López,Bodega,Diego"});
        QTest::newRow("buscar mayúsculas con eñe") << L({"abrir", "BuscoTLF", "teclear PEÑA", "?vistos Carlos Peña"});
        QTest::newRow("buscar en el fax") << L({"abrir", "BuscoTLF", "teclear 952 000", "?vistos Francisco"});
        QTest::newRow("buscar nada, y borrar")
            << L({"abrir", "BuscoTLF", "teclear zzz", "?vistos", "tecla Ctrl+A", "tecla Backspace", "?vistos Agenda"});
        // The entry panel: Return goes on like Tab; each change is saved; after it nothing is chosen.
        QTest::newRow("nuevo")
            << L({"abrir", "cmdNuevo", "?foco Tlf(0)", "?estado LaEntrada", "teclear Alberto", "tecla Return",
                  "?foco Tlf(1)", "teclear 955", "cmdAceptar", "?disco Alberto,Agenda", "?foco Telfs",
                  "?estado Marco(1) cmdFax"});
        QTest::newRow("sin nombre no se graba")
            << L({"abrir", "cmdNuevo", "tecla Return", "teclear 955", "cmdAceptar", "?disco Agenda", "?foco Tlf(0)",
                  "?estado LaEntrada"});
        QTest::newRow("editar")
            << L({"abrir", "clic 1 1", "cmdEditar", "?Indice 2", "?Tlf(1) NA 5", "tecla Ctrl+A", "teclear Zacarías",
                  "cmdAceptar", "?disco Ana López,Carlos Peña,Diego,Eva,Francisco,Zacarías"});
        QTest::newRow("suprimir, Si")
            << L({"abrir", "clic 4 2", "caja Si", "cmdBorrar", "?caja ¿ Confirma que desea ELIMINAR el contacto "
                  "seleccionado ?", "?disco Ana López,Bodega,Carlos Peña,Diego,Francisco", "?estado Marco(1) cmdFax"});
        QTest::newRow("suprimir, No")
            << L({"abrir", "clic 4 2", "caja No", "cmdBorrar", "?disco Agenda", "?estado Marco(1) cmdEditar cmdFax"});
        // Without TLF, the user's own folder, made by the first save, and an empty phone book
        // there: the new contact takes the blank row 1; no fax program, no "Fax". The version's
        // date is the file's, none before there is a file.
        QTest::newRow("sin TLF, agenda vacía")
            << L({"sin TLF", "abrir", "?estado Marco(1)", "?fecha ninguna", "cmdNuevo", "?Indice 1", "teclear Ana",
                  "cmdAceptar", "?disco Ana", "?fecha la del fichero"});
        // A click on the titles chooses nothing; one on a contact shows its numbers.
        QTest::newRow("títulos y contacto")
            << L({"abrir", "títulos 1", "?estado Marco(1) cmdFax", "?vistos Agenda", "clic 5 1",
                  "?estado Marco(1) cmdEditar cmdFax", "?NumeroTlf 633", "?NumeroFax 952 000 000"});
        // A right click closes the window, picking the address when on the e-mail cell.
        QTest::newRow("clic derecho en el correo") << L({"abrir", "derecho 2 4", "?elegido carlos@pena.es"});
        QTest::newRow("clic derecho en otra celda") << L({"abrir", "derecho 2 2", "?elegido antes"});
        // What the stand-in programs receive, and in which folder the fax program runs.
        QTest::newRow("correo con asunto")
            << L({"por Almacén Sur", "abrir", "doble 0 4", "?registro mailto:ana@lopez.es?Subject=Envio realizado por "
                  "Almacén Sur"});
        QTest::newRow("contacto sin correo") << L({"abrir", "doble 4 4", "?registro mailto:"});
        QTest::newRow("botón eMail")
            << L({"por Sur", "abrir", "cmdEmail", "?registro mailto:?Subject=Envio realizado por Sur"});
        QTest::newRow("fax") << L({"abrir", "doble 5 3", "?registro TLF/Telecopia|[E(Francisco) F(952 000 000) ]"});
        QTest::newRow("botón Fax") << L({"abrir", "cmdFax", "?registro TLF/Telecopia"});
        QTest::newRow("doble clic en los títulos") << L({"abrir", "dobleTítulos 4", "?registro"});
        // Another phone book process saves first: this window is warned when its entry panel
        // opens, its save is refused with the message, and it then shows the other's contacts.
        QTest::newRow("otro proceso graba antes")
            << L({"abrir", "?otro GRABADO Otro0", "cmdNuevo", "?estado LaEntrada FueModificado", "teclear Mío",
                  "caja Aceptar", "cmdAceptar", "?caja Fichero de contactos fué modificado.\n\nSu cambio no pudo "
                  "grabarse.", "?vistos Agenda,Otro0", "?disco Agenda,Otro0"});
        // What else a save finds against the version this window read: the same file's size and
        // time but not the same file, no file, a lock held (for the whole wait) or left by a killed
        // process. A save that cannot be written: a message naming the file and the cause, the
        // contact still in the grid, the file as it was.
        QTest::newRow("misma hora y tamaño, otro fichero")
            << L({"abrir", "misma hora", "cmdNuevo", "?estado LaEntrada FueModificado", "teclear Mío", "caja Aceptar",
                  "cmdAceptar", "?caja Fichero de contactos fué modificado.*",
                  "?vistos Ana López,Bodega,Carlos Peña,Diego,Eve,Francisco"});
        QTest::newRow("borrado: se crea")
            << L({"abrir", "cmdNuevo", "teclear Nuevo", "sin agenda", "cmdAceptar", "?disco Agenda,Nuevo"});
        QTest::newRow("cerrojo de otro programa")
            << L({"abrir", "cmdNuevo", "teclear Nuevo", "cerrojo", "caja Aceptar", "cmdAceptar", "?caja El fichero de "
                  "contactos lo está grabando otro programa.\n\nSu cambio sigue en la lista y se grabará con el "
                  "próximo.", "?disco Agenda"});
        QTest::newRow("cerrojo de un proceso muerto")
            << L({"abrir", "cerrojo muerto", "cmdNuevo", "teclear Nuevo", "cmdAceptar", "?disco Agenda,Nuevo"});
        QTest::newRow("solo lectura, TLF con barra")
            << L({"TLF con barra", "solo lectura", "abrir", "cmdNuevo", "teclear Nuevo", "caja Aceptar", "cmdAceptar",
                  "?caja No se pudo grabar el fichero de contactos TLF/TELEFONO.DAT: el fichero es de solo lectura."
                  "\n\nSu cambio sigue en la lista, sin grabar.", "?vistos Agenda,Nuevo", "?disco Agenda",
                  "?fecha la del fichero"});
        QTest::newRow("carpeta de TLF ausente")
            << L({"abrir", "cmdNuevo", "teclear Nuevo", "sin carpeta", "caja Aceptar", "cmdAceptar",
                  "?caja No se pudo grabar el fichero de contactos TLF/TELEFONO.DAT: no existe la carpeta TLF.*",
                  "?disco"});
        QTest::newRow("disco lleno a medias")
            << L({"abrir", "cmdNuevo", "teclear Nuevo", "disco lleno", "caja Aceptar", "cmdAceptar",
                  "?caja No se pudo grabar el fichero de contactos TLF/TELEFONO.DAT: no cupo entero en el disco.*",
                  "?disco Agenda"});
        // What is not a regular file in the contacts file's place is refused at once, with no
        // window; a file the grid cannot hold whole is opened for consulting only.
        QTest::newRow("una carpeta en su lugar")
            << L({"carpeta", "caja Aceptar", "abrir", "?caja Error 75: No se pudo leer el fichero de contactos "
                  "TLF/TELEFONO.DAT: es una carpeta, no un fichero", "?abierta no"});
        QTest::newRow("una FIFO en su lugar")
            << L({"fifo", "caja Aceptar", "abrir", "?caja Error 75: No se pudo leer el fichero de contactos "
                  "TLF/TELEFONO.DAT: es una tubería (FIFO), no un fichero", "?abierta no"});
        QTest::newRow("sin cabecera: solo consulta")
            << L({"sin cabecera", "caja Aceptar", "abrir", "?caja El fichero de contactos TLF/TELEFONO.DAT se abre "
                  "solo para consulta: su primera línea no es la cabecera de la agenda.\n\nAl grabarlo se perdería "
                  "lo que la agenda no puede mostrar.", "?título Teléfonos (solo consulta)", "clic 1 1",
                  "?estado Marco(1) cmdFax", "?vistos Bodega,Carlos Peña,Diego,Eva,Francisco"});
        // A new contact goes into row 1 when the last row has no name; a row 1 with data is
        // overwritten only when the user says so.
        QTest::newRow("fila 1 con datos, no se pisa")
            << L({"sin nombres", "abrir", "caja No", "cmdNuevo", "?caja La primera fila de la lista tiene datos, "
                  "aunque no tiene nombre.\n\n¿ Desea escribir el contacto nuevo sobre ella ?\n\n(No: se añade "
                  "como contacto nuevo.)", "?Indice 3", "teclear Nuevo", "cmdAceptar", "?disco ,,Nuevo"});
        QTest::newRow("fila 1 con datos, se pisa")
            << L({"sin nombres", "abrir", "caja Si", "cmdNuevo", "?Indice 1", "teclear Nuevo", "cmdAceptar",
                  "?disco ,Nuevo"});
        // A contact that could not be saved is not left behind without a question.
        QTest::newRow("cerrojo y salir")
            << L({"abrir", "cmdNuevo", "teclear Nuevo", "cerrojo", "caja Aceptar", "cmdAceptar", "caja No",
                  "cmdSalir", "?caja Datos han sido modificados.\n\n¿ Desea salir sin grabar ?", "?abierta sí",
                  "caja Si", "cmdSalir", "?abierta no", "?disco Agenda"});
        // While active, a wheel turned anywhere over the window scrolls the grid a line a notch.
        QTest::newRow("rueda") << L({"abrir", "rueda", "rueda", "?barra 2"});
    }
    void ventana()
    {
        QFETCH(QStringList, pasos);
        QPointer<Telefonos> t;
        const auto cerrar = qScopeGuard([&t] { delete t; });
        QString caja;
        ContactoElegido = u"antes"_qs;
        QLockFile cerrojo(RutaContactos() + u".lock"_qs);
        std::optional<DiscoLleno> lleno;
        for (const QString &paso : pasos) {
            const QString orden = paso.section(u' ', 0, 0), resto = paso.section(u' ', 1);
            const int fila = resto.section(u' ', 0, 0).toInt(), col = paso.section(u' ', -1).toInt();
            VisorRejilla *v = t ? control<VisorRejilla>(t, "Telfs") : nullptr;
            QWidget *foco = QApplication::focusWidget();
            QString visto;
            if (paso == u"TLF con barra") {
                qputenv("TLF", QFile::encodeName(m_dir->path() + u'/'));
            } else if (paso == u"sin TLF") {
                qunsetenv("TLF");
                qputenv("XDG_DATA_HOME", QFile::encodeName(ruta(u"xdg"_qs)));
            } else if (paso == u"sin agenda") {
                QVERIFY(QFile::remove(RutaContactos()));
            } else if (paso == u"solo lectura") {
                QFile::setPermissions(RutaContactos(), QFileDevice::ReadOwner);
            } else if (paso == u"misma hora") {
                // A new file of the same size with the old time to the nanosecond: only its identity tells.
                const QString f = RutaContactos(), viejo = f + u".viejo"_qs;
                QVERIFY(QFile::rename(f, viejo));
                escribir(f, ficheroDe(QStringList(Agenda).replaceInStrings(u"Eva"_qs, u"Eve"_qs)));
                struct stat st {};
                QVERIFY(::stat(QFile::encodeName(viejo).constData(), &st) == 0);
                const struct timespec tiempos[2] = {st.st_atim, st.st_mtim};
                QVERIFY(::utimensat(AT_FDCWD, QFile::encodeName(f).constData(), tiempos, 0) == 0);
                QCOMPARE(SelloDe(f).nanosegundos, SelloDe(viejo).nanosegundos);
            } else if (paso == u"cerrojo") {
                QVERIFY(cerrojo.tryLock(0));
            } else if (paso == u"cerrojo muerto") {
                // The lock of a phone book of this computer that was killed while it held it.
                QCOMPARE(agenda({u"bloquear"_qs, RutaContactos() + u".lock"_qs}, true), u"LISTO"_qs);
                QVERIFY(QFile::exists(RutaContactos() + u".lock"_qs));
            } else if (paso == u"carpeta" || paso == u"fifo") {
                QVERIFY(QFile::remove(RutaContactos()));
                QVERIFY(paso == u"carpeta" ? QDir().mkdir(RutaContactos())
                                          : ::mkfifo(QFile::encodeName(RutaContactos()).constData(), 0644) == 0);
            } else if (paso == u"sin cabecera") {
                const QByteArray todo = ficheroDe(Agenda);
                escribir(RutaContactos(), todo.mid(todo.indexOf('\r') + 1));
            } else if (paso == u"sin nombres") {
                escribir(RutaContactos(), ficheroDe(L({"|111", "|222"})));
            } else if (paso == u"sin carpeta") {
                QVERIFY(QDir(m_dir->path()).removeRecursively());
            } else if (paso == u"disco lleno") {
                lleno.emplace(150);
            } else if (orden == u"por") {
                EnviadoPor = resto;
            } else if (orden == u"abrir") {
                t = new Telefonos;
                t->show();
                QCoreApplication::processEvents();
            } else if (orden == u"clic" || orden == u"derecho" || orden == u"doble") {
                clicCelda(v, fila, col, orden == u"derecho" ? Qt::RightButton : Qt::LeftButton);
                if (orden == u"doble")
                    QTest::mouseDClick(v->viewport(), Qt::LeftButton, {}, v->visualRect(v->currentIndex()).center());
            } else if (orden.endsWith(u"ítulos")) {
                QTest::mouseEvent(orden == u"títulos" ? QTest::MouseClick : QTest::MouseDClick,
                                  v->horizontalHeader()->viewport(), Qt::LeftButton, {},
                                  QPoint(v->horizontalHeader()->sectionViewportPosition(col) + 5, 5));
            } else if (orden == u"teclear") {
                teclear(foco, resto);
            } else if (orden == u"tecla") {
                QTest::keySequence(foco, QKeySequence(resto));
                QCoreApplication::processEvents();
            } else if (orden == u"caja") {
                responder(resto, &caja);
            } else if (orden == u"rueda") {
                QVERIFY(mostrarActiva(t));
                v->setFixedHeight(v->rowHeight(0) * 4); // the sample's rows no longer fit
                v->setFocus();
                QWidget *sobre = control(t, "NumeroTlf");
                QWheelEvent e(QPointF(5, 5), sobre->mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120), Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
                QApplication::sendEvent(sobre, &e);
            } else if (orden == u"?foco") {
                visto = nombreDelFoco();
            } else if (orden == u"?estado") {
                QStringList estado;
                for (const char *c : {"LaEntrada", "FueModificado", "Marco(1)", "cmdEditar", "cmdFax"})
                    if (control(t, c)->isVisible() && control(t, c)->isEnabled())
                        estado << QString::fromLatin1(c);
                visto = estado.join(u' ');
            } else if (orden == u"?disco") {
                visto = nombresEnDisco().join(u',');
            } else if (orden == u"?vistos") {
                QStringList vistos;
                for (int f = 0; f < v->model()->rowCount(); ++f)
                    vistos << v->model()->index(f, 1).data().toString();
                visto = vistos.join(u',');
            } else if (orden == u"?fecha") {
                const QDateTime fecha = t->FechaContactos();
                const bool delFichero = fecha == QFileInfo(RutaContactos()).lastModified();
                visto = !fecha.isValid() ? u"ninguna"_qs : delFichero ? u"la del fichero"_qs : u"otra"_qs;
            } else if (orden == u"?caja") {
                visto = caja;
            } else if (orden == u"?registro") {
                (void)QTest::qWaitFor([this] { return QFile::exists(m_registro); }, 3000);
                visto = QString::fromUtf8(QFile::exists(m_registro) ? leer(m_registro) : QByteArray());
                visto = visto.trimmed().replace(u'\n', u'|');
            } else if (orden == u"?otro") {
                visto = agenda({u"agregar"_qs, u"1"_qs, u"Otro"_qs});
            } else if (orden == u"?elegido") {
                QTRY_VERIFY(!t);
                visto = ContactoElegido;
            } else if (orden == u"?abierta") {
                visto = t && t->isVisible() ? u"sí"_qs : u"no"_qs;
            } else if (orden == u"?título") {
                visto = t->windowTitle();
            } else if (orden == u"?barra") {
                visto = QString::number(v->verticalScrollBar()->value());
            } else if (orden.startsWith(u'?')) {
                visto = control(t, orden.mid(1))->property("text").toString();
            } else if (auto *boton = control<QPushButton>(t, orden)) {
                pulsar(boton);
            } else {
                control(t, orden)->setFocus();
            }
            if (!orden.startsWith(u'?'))
                continue;
            visto.replace(m_dir->path(), u"TLF"_qs);
            const QString esperado = QString(resto).replace(u"Agenda"_qs, Todos);
            const qsizetype comodin = esperado.indexOf(u'*'); // any text there
            if (comodin >= 0 && visto.startsWith(esperado.left(comodin)) && visto.endsWith(esperado.mid(comodin + 1)))
                visto = esperado;
            QCOMPARE(visto, esperado);
        }
    }

    // Four processes saving at once: every save reported as done is in the final file, and
    // nothing else is.
    void cuatroProcesos()
    {
        QProcess procesos[4];
        for (int p = 0; p < 4; ++p)
            procesos[p].start(QStringLiteral(AGENDA_PROCESO), {u"agregar"_qs, u"50"_qs, u"P%1-"_qs.arg(p)});
        QStringList esperado = nombresEnDisco(), grabados;
        for (QProcess &p : procesos) {
            QVERIFY(p.waitForFinished(120000));
            for (const QString &linea : QString::fromUtf8(p.readAllStandardOutput()).split(u'\n'))
                if (linea.startsWith(u"GRABADO "))
                    grabados << linea.mid(8);
        }
        QVERIFY(!grabados.isEmpty());
        esperado += grabados;
        esperado.sort();
        QStringList final = nombresEnDisco();
        final.sort();
        QCOMPARE(final, esperado);
    }
};

QTEST_MAIN(TstTelefonos)
#include "tst_telefonos.moc"
