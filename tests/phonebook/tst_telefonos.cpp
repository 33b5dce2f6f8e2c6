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
#include <QLineEdit>
#include <QLockFile>
#include <QProcess>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QWheelEvent>

#include <functional>
#include <optional>
#include <utility>

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

// The names in the file, in file order, "," between.
QString disco()
{
    Rejilla g;
    LeerFicheroContactos(RutaContactos(), g);
    QStringList r;
    for (int f = 1; f < g.Rows(); ++f)
        r << g.TextMatrix(f, 1);
    return r.join(u',');
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

// What can stand in the way of a save.
enum class Estorbo { MismaHora, Cerrojo, CerrojoMuerto, SinAgenda, SoloLectura, SinCarpeta, DiscoLleno };

// A text with the contacts folder written "TLF".
QString conTLF(QString texto)
{
    const QString carpeta = QDir::cleanPath(qEnvironmentVariable("TLF"));
    return carpeta.isEmpty() ? texto : texto.replace(carpeta, u"TLF"_qs);
}

// Whether a text is the expected one, where a "*" in the expected stands for any text.
bool coincide(const QString &visto, const QString &esperado)
{
    const qsizetype comodin = esperado.indexOf(u'*');
    if (comodin < 0)
        return visto == esperado;
    return visto.startsWith(esperado.left(comodin)) && visto.endsWith(esperado.mid(comodin + 1));
}

// Replaces the contacts file by another of the same size whose time is the old one's to the
// nanosecond ("Eva" becomes "Eve"): only the file's identity tells them apart.
void ponerOtroDeMismaHora()
{
    const QString f = RutaContactos(), viejo = f + u".viejo"_qs;
    QVERIFY(QFile::rename(f, viejo));
    escribir(f, ficheroDe(QStringList(Agenda).replaceInStrings(u"Eva"_qs, u"Eve"_qs)));
    struct stat st {};
    QVERIFY(::stat(QFile::encodeName(viejo).constData(), &st) == 0);
    const struct timespec tiempos[2] = {st.st_atim, st.st_mtim};
    QVERIFY(::utimensat(AT_FDCWD, QFile::encodeName(f).constData(), tiempos, 0) == 0);
    QCOMPARE(SelloDe(f).nanosegundos, SelloDe(viejo).nanosegundos);
}

// The phone book window over the contacts folder, driven as a user would: keys go to the
// control with the focus; `caja` keeps the text of the last box answered.
struct Ventana {
    QPointer<Telefonos> t;
    QString caja;

    // Opens the window; `respuesta`, when given, answers the box it shows as it opens.
    explicit Ventana(const QString &respuesta = {})
    {
        ContactoElegido = u"antes"_qs;
        if (!respuesta.isEmpty())
            responder(respuesta);
        t = new Telefonos;
        t->show();
        QCoreApplication::processEvents();
    }
    ~Ventana() { delete t; }
    Q_DISABLE_COPY(Ventana)

    VisorRejilla *rejilla() const { return control<VisorRejilla>(t, "Telfs"); }
    // Presses a button; `respuesta`, when given, answers the box it shows.
    void pulsar(const char *boton, const QString &respuesta = {})
    {
        if (!respuesta.isEmpty())
            responder(respuesta);
        prueba::pulsar(control<QPushButton>(t, boton));
    }
    void escribir(const QString &texto) const { teclear(QApplication::focusWidget(), texto); }
    void tecla(const QString &teclas) const
    {
        QTest::keySequence(QApplication::focusWidget(), QKeySequence(teclas));
        QCoreApplication::processEvents();
    }
    // The next box is answered with this button.
    void responder(const QString &boton) { prueba::responder(boton, &caja); }
    // A cell of the row shown at `fila`.
    void clic(int fila, int col, Qt::MouseButton boton = Qt::LeftButton) const { clicCelda(rejilla(), fila, col, boton); }
    void doble(int fila, int col) const
    {
        clic(fila, col);
        QTest::mouseDClick(rejilla()->viewport(), Qt::LeftButton, {},
                           rejilla()->visualRect(rejilla()->currentIndex()).center());
    }
    void clicTitulo(int col, bool doble = false) const
    {
        QHeaderView *h = rejilla()->horizontalHeader();
        QTest::mouseEvent(doble ? QTest::MouseDClick : QTest::MouseClick, h->viewport(), Qt::LeftButton, {},
                          QPoint(h->sectionViewportPosition(col) + 5, 5));
    }
    QString texto(const char *nombre) const { return control(t, nombre)->property("text").toString(); }
    // The names the grid shows, "," between.
    QString vistos() const
    {
        QStringList v;
        for (int f = 0; f < rejilla()->model()->rowCount(); ++f)
            v << rejilla()->model()->index(f, rejilla()->modeloRejilla()->colVista(1)).data().toString();
        return v.join(u',');
    }
    // Which of the entry panel, its warning, a frame, Editar and Fax are shown and enabled.
    QString estado() const
    {
        QStringList e;
        for (const char *c : {"LaEntrada", "FueModificado", "Marco(1)", "cmdEditar", "cmdFax"})
            if (control(t, c)->isVisible() && control(t, c)->isEnabled())
                e << QString::fromLatin1(c);
        return e.join(u' ');
    }
};

// What a case does on the window.
using Accion = std::function<void(Ventana &)>;

} // namespace

Q_DECLARE_METATYPE(Estorbo)
Q_DECLARE_METATYPE(Accion)

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
        QTest::newRow("vacío") << QString() << u"1,2,3,4,5"_qs;
        QTest::newRow("entre celdas") << u"aló"_qs << u"1"_qs;
        QTest::newRow("eñe en mayúsculas") << u"PEÑA"_qs << u"2"_qs;
        QTest::newRow("NUL como blanco") << u"a b"_qs << u"3"_qs;
        QTest::newRow("secuencia cortada") << u"x\uFFFD"_qs << u"4"_qs;
        QTest::newRow("nada") << u"zz"_qs << QString();
        // Row 5 is long enough to be upper-cased in steps of eight bytes: only a to z change,
        // not the signs beside them in ASCII ("`" before "a", "{" after "z").
        QTest::newRow("ascii largo") << u"`abcxyz{|}~ @az["_qs << u"5"_qs;
        QTest::newRow("acento grave no es arroba") << u"@ABC"_qs << QString();
        QTest::newRow("llave no es corchete") << u"z[|"_qs << QString();
    }
    void buscar()
    {
        Rejilla g;
        CargarVisor(g, DescriptorContactos);
        const std::string_view filas[][3] = {{"", "Ana", "L\xC3\xB3pez"},
                                             {"", "pe\xC3\xB1" "a", "1"},
                                             {"", std::string_view("a\0b", 3), ""},
                                             {"", "x\xC3", ""},
                                             {"", "`abcxyz{|}~ @AZ[", ""}};
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
    // same UTF-8, rows joined by CR, the end CR LF; a TAB, CR or LF typed into a cell cannot split
    // the contact, short cell or long (a long one is searched eight bytes at a time). Files beside it that only look like a save's leftovers stay.
    void grabar()
    {
        const QString f = ruta(u"nuevo.DAT"_qs);
        Rejilla g;
        LeerFicheroContactos(f, g);
        const QStringList filas = L({"zoe|1", "Íñigo Núñez|2||íñigo@x.es", "ana|3", "ÁLVARO|4",
                                 "bea|un\ttab|91 555 12 34\r567890|correo.de.bea\t@ejemplo.es"});
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
                                   "\tNombre\tTeléfono\tFax\teMail\r\tÁLVARO\t4\t\t\r\tana\t3\t\t\r"
                                   "\tbea\tun tab\t91 555 12 34 567890\tcorreo.de.bea @ejemplo.es\r"
                                   "\tÍñigo Núñez\t2\t\tíñigo@x.es\r\tzoe\t1\t\t\r\n"));
        QCOMPARE(s, SelloDe(f));
        // The save errors hosts tell apart by their number: a read-only file, a missing folder.
        QFile::setPermissions(f, QFileDevice::ReadOwner);
        QCOMPARE(errorDe([&] { GrabarFicheroContactos(f, g, s); }), int(ErrorEjecucion::AccesoDenegado));
        QCOMPARE(errorDe([&] { GrabarFicheroContactos(ruta(u"no/hay.DAT"_qs), g, s); }), ErrorRutaNoEncontrada);
    }

    // Typed one key at a time, as a user types: after each key the rows shown are those whose four
    // columns, joined, hold the search text without regard to case (worked out here with
    // QString::contains); one more letter only narrows the last search, a deleted one widens it.
    void busquedaComoSubcadena_data()
    {
        QTest::addColumn<QStringList>("pasos"); // a text typed key by key, or "<" for Backspace
        QTest::newRow("letra a letra") << L({"ana"});
        QTest::newRow("eñe entre columnas") << L({"ña6"});
        QTest::newRow("borrar y seguir") << L({"ana", "<", "<", "o", "<", "<", "9"});
        QTest::newRow("mayúsculas y acento") << L({"LÓPEZ", "<", "<", "<", "<", "<", "ó"});
        QTest::newRow("hasta nada") << L({"zq", "<", "<", "52 0"});
        QTest::newRow("en el fax") << L({"952 000"});
    }
    void busquedaComoSubcadena()
    {
        QFETCH(QStringList, pasos);
        Ventana v;
        QLineEdit *busco = control<QLineEdit>(v.t, "BuscoTLF");
        busco->setFocus();
        const auto esperados = [](const QString &texto) {
            QStringList r;
            for (const QString &c : Agenda) {
                const QStringList celdas = c.split(u'|');
                if (celdas.join(QString()).contains(texto, Qt::CaseInsensitive))
                    r << celdas[0];
            }
            return r.join(u',');
        };
        for (const QString &paso : pasos) {
            const QStringList teclas = paso == u"<" ? QStringList{paso} : paso.split(QString(), Qt::SkipEmptyParts);
            for (const QString &tecla : teclas) {
                if (tecla == u"<")
                    v.tecla(u"Backspace"_qs);
                else
                    v.escribir(tecla);
                QCOMPARE(v.vistos(), esperados(busco->text()));
            }
        }
        v.tecla(u"Ctrl+A"_qs);
        v.tecla(u"Backspace"_qs);
        QCOMPARE(v.vistos(), Todos);
    }

    // The entry panel: Return goes on like Tab; a contact with a name is saved, after which
    // nothing is chosen; one without stays in the panel, unsaved.
    void nuevo_data()
    {
        QTest::addColumn<QString>("nombre");
        QTest::addColumn<QString>("disco");
        QTest::addColumn<QString>("foco");
        QTest::addColumn<QString>("estado");
        QTest::newRow("con nombre") << u"Alberto"_qs << u"Alberto,"_qs + Todos << u"Telfs"_qs << u"Marco(1) cmdFax"_qs;
        QTest::newRow("sin nombre no se graba") << QString() << Todos << u"Tlf(0)"_qs << u"LaEntrada"_qs;
    }
    void nuevo()
    {
        QFETCH(QString, nombre);
        Ventana v;
        v.pulsar("cmdNuevo");
        QCOMPARE(nombreDelFoco(), u"Tlf(0)"_qs);
        QCOMPARE(v.estado(), u"LaEntrada"_qs);
        v.escribir(nombre);
        v.tecla(u"Return"_qs);
        QCOMPARE(nombreDelFoco(), u"Tlf(1)"_qs);
        v.escribir(u"955"_qs);
        v.pulsar("cmdAceptar");
        QTEST(disco(), "disco");
        QTEST(nombreDelFoco(), "foco");
        QTEST(v.estado(), "estado");
    }

    void editar()
    {
        Ventana v;
        v.clic(1, 1);
        v.pulsar("cmdEditar");
        QCOMPARE(v.texto("Indice"), u"2"_qs);
        QCOMPARE(v.texto("Tlf(1)"), u"NA 5"_qs);
        v.tecla(u"Ctrl+A"_qs);
        v.escribir(u"Zacarías"_qs);
        v.pulsar("cmdAceptar");
        QCOMPARE(disco(), u"Ana López,Carlos Peña,Diego,Eva,Francisco,Zacarías"_qs);
    }

    void suprimir_data()
    {
        QTest::addColumn<QString>("respuesta");
        QTest::addColumn<QString>("disco");
        QTest::addColumn<QString>("estado");
        QTest::newRow("Si") << u"Si"_qs << u"Ana López,Bodega,Carlos Peña,Diego,Francisco"_qs << u"Marco(1) cmdFax"_qs;
        QTest::newRow("No") << u"No"_qs << Todos << u"Marco(1) cmdEditar cmdFax"_qs;
    }
    void suprimir()
    {
        QFETCH(QString, respuesta);
        Ventana v;
        v.clic(4, 2);
        v.pulsar("cmdBorrar", respuesta);
        QCOMPARE(v.caja, u"¿ Confirma que desea ELIMINAR el contacto seleccionado ?"_qs);
        QTEST(disco(), "disco");
        QTEST(v.estado(), "estado");
    }

    // Without TLF, the user's own folder, made by the first save, and an empty phone book there:
    // the new contact takes the blank row 1; no fax program, no "Fax". The version's date is the
    // file's, none before there is a file.
    void sinTLF()
    {
        qunsetenv("TLF");
        qputenv("XDG_DATA_HOME", QFile::encodeName(ruta(u"xdg"_qs)));
        Ventana v;
        QCOMPARE(v.estado(), u"Marco(1)"_qs);
        QVERIFY(!v.t->FechaContactos().isValid());
        v.pulsar("cmdNuevo");
        QCOMPARE(v.texto("Indice"), u"1"_qs);
        v.escribir(u"Ana"_qs);
        v.pulsar("cmdAceptar");
        QCOMPARE(disco(), u"Ana"_qs);
        QCOMPARE(v.t->FechaContactos(), QFileInfo(RutaContactos()).lastModified());
    }

    // A click on the titles chooses nothing; one on a contact shows its numbers.
    void titulosYContacto()
    {
        Ventana v;
        v.clicTitulo(1);
        QCOMPARE(v.estado(), u"Marco(1) cmdFax"_qs);
        QCOMPARE(v.vistos(), Todos);
        v.clic(5, 1);
        QCOMPARE(v.estado(), u"Marco(1) cmdEditar cmdFax"_qs);
        QCOMPARE(v.texto("NumeroTlf"), u"633"_qs);
        QCOMPARE(v.texto("NumeroFax"), u"952 000 000"_qs);
    }

    // A right click closes the window, picking the address when on the e-mail cell.
    void clicDerecho_data()
    {
        QTest::addColumn<int>("col");
        QTest::addColumn<QString>("elegido");
        QTest::newRow("en el correo") << 4 << u"carlos@pena.es"_qs;
        QTest::newRow("en otra celda") << 2 << u"antes"_qs;
    }
    void clicDerecho()
    {
        QFETCH(int, col);
        Ventana v;
        v.clic(2, col, Qt::RightButton);
        QTRY_VERIFY(!v.t);
        QTEST(ContactoElegido, "elegido");
    }

    // What the stand-in programs receive, "|" between lines, and in which folder the fax program
    // runs (TLF the contacts folder).
    void entregas_data()
    {
        QTest::addColumn<QString>("por");
        QTest::addColumn<Accion>("accion");
        QTest::addColumn<QString>("registro");
        QTest::newRow("correo con asunto") << u"Almacén Sur"_qs << Accion([](Ventana &v) { v.doble(0, 4); })
                                           << u"mailto:ana@lopez.es?Subject=Envio realizado por Almacén Sur"_qs;
        QTest::newRow("contacto sin correo") << QString() << Accion([](Ventana &v) { v.doble(4, 4); }) << u"mailto:"_qs;
        QTest::newRow("botón eMail") << u"Sur"_qs << Accion([](Ventana &v) { v.pulsar("cmdEmail"); })
                                     << u"mailto:?Subject=Envio realizado por Sur"_qs;
        QTest::newRow("fax") << QString() << Accion([](Ventana &v) { v.doble(5, 3); })
                             << u"TLF/Telecopia|[E(Francisco) F(952 000 000) ]"_qs;
        QTest::newRow("botón Fax") << QString() << Accion([](Ventana &v) { v.pulsar("cmdFax"); }) << u"TLF/Telecopia"_qs;
        QTest::newRow("doble clic en los títulos") << QString() << Accion([](Ventana &v) { v.clicTitulo(4, true); })
                                                   << QString();
    }
    void entregas()
    {
        QFETCH(QString, por);
        QFETCH(Accion, accion);
        EnviadoPor = por;
        Ventana v;
        accion(v);
        (void)QTest::qWaitFor([this] { return QFile::exists(m_registro); }, 3000);
        QString registro = QString::fromUtf8(QFile::exists(m_registro) ? leer(m_registro) : QByteArray());
        QTEST(conTLF(registro.trimmed().replace(u'\n', u'|')), "registro");
    }

    // Another phone book process saves first: this window is warned when its entry panel opens,
    // its save is refused with the message, and it then shows the other's contacts.
    void otroProcesoGrabaAntes()
    {
        Ventana v;
        QCOMPARE(agenda({u"agregar"_qs, u"1"_qs, u"Otro"_qs}), u"GRABADO Otro0"_qs);
        v.pulsar("cmdNuevo");
        QCOMPARE(v.estado(), u"LaEntrada FueModificado"_qs);
        v.escribir(u"Mío"_qs);
        v.pulsar("cmdAceptar", u"Aceptar"_qs);
        QCOMPARE(v.caja, u"Fichero de contactos fué modificado.\n\nSu cambio no pudo grabarse."_qs);
        QCOMPARE(v.vistos(), Todos + u",Otro0"_qs);
        QCOMPARE(disco(), Todos + u",Otro0"_qs);
    }

    // What a save of a new contact finds against the version this window read, put in place
    // after the window opened: another file of the same size and time (its entry panel warns),
    // another program's lock held for the whole wait, the lock of a killed process, no file, a
    // read-only file, no folder, a disk that fills half-way. A save that cannot be written names
    // the file and the cause ("*": any text), the contact stays in the grid, the file as it was.
    // TLF ends in its slash here.
    void estorbos_data()
    {
        QTest::addColumn<Estorbo>("estorbo");
        QTest::addColumn<bool>("aviso");
        QTest::addColumn<QString>("caja");
        QTest::addColumn<QString>("vistos");
        QTest::addColumn<QString>("disco");
        const QString eve = u"Ana López,Bodega,Carlos Peña,Diego,Eve,Francisco"_qs;
        const QString conNuevo = Todos + u",Nuevo"_qs;
        const QString noSePudo = u"No se pudo grabar el fichero de contactos TLF/TELEFONO.DAT: "_qs;
        QTest::newRow("misma hora y tamaño, otro fichero")
            << Estorbo::MismaHora << true << u"Fichero de contactos fué modificado.*"_qs << eve << eve;
        QTest::newRow("cerrojo de otro programa")
            << Estorbo::Cerrojo << false
            << u"El fichero de contactos lo está grabando otro programa.\n\nSu cambio sigue en la lista y se "
               "grabará con el próximo."_qs << conNuevo << Todos;
        QTest::newRow("cerrojo de un proceso muerto") << Estorbo::CerrojoMuerto << false << QString() << conNuevo << conNuevo;
        QTest::newRow("borrado: se crea") << Estorbo::SinAgenda << false << QString() << conNuevo << conNuevo;
        QTest::newRow("solo lectura")
            << Estorbo::SoloLectura << false
            << noSePudo + u"el fichero es de solo lectura.\n\nSu cambio sigue en la lista, sin grabar."_qs
            << conNuevo << Todos;
        QTest::newRow("carpeta de TLF ausente")
            << Estorbo::SinCarpeta << false << noSePudo + u"no existe la carpeta TLF*"_qs << conNuevo << QString();
        QTest::newRow("disco lleno a medias")
            << Estorbo::DiscoLleno << false << noSePudo + u"no cupo entero en el disco.*"_qs << conNuevo << Todos;
    }
    void estorbos()
    {
        QFETCH(Estorbo, estorbo);
        QFETCH(QString, caja);
        qputenv("TLF", QFile::encodeName(m_dir->path() + u'/'));
        Ventana v;
        QLockFile cerrojo(RutaContactos() + u".lock"_qs);
        std::optional<DiscoLleno> lleno;
        switch (estorbo) {
        case Estorbo::MismaHora: ponerOtroDeMismaHora(); break;
        case Estorbo::Cerrojo: QVERIFY(cerrojo.tryLock(0)); break;
        case Estorbo::CerrojoMuerto:
            // The lock of a phone book of this computer that was killed while it held it.
            QCOMPARE(agenda({u"bloquear"_qs, RutaContactos() + u".lock"_qs}, true), u"LISTO"_qs);
            break;
        case Estorbo::SinAgenda: QVERIFY(QFile::remove(RutaContactos())); break;
        case Estorbo::SoloLectura: QFile::setPermissions(RutaContactos(), QFileDevice::ReadOwner); break;
        case Estorbo::SinCarpeta: QVERIFY(QDir(m_dir->path()).removeRecursively()); break;
        case Estorbo::DiscoLleno: lleno.emplace(150); break;
        }
        v.pulsar("cmdNuevo");
        QTEST(v.estado().contains(u"FueModificado"_qs), "aviso");
        v.escribir(u"Nuevo"_qs);
        v.pulsar("cmdAceptar", caja.isEmpty() ? QString() : u"Aceptar"_qs); // a refused save asks
        lleno.reset(); // before anything is written, the test's own output included
        QVERIFY2(coincide(conTLF(v.caja), caja), qPrintable(v.caja));
        QTEST(v.vistos(), "vistos");
        QTEST(disco(), "disco");
    }

    // What is not a regular file in the contacts file's place is refused at once, with no window.
    void noEsUnFichero_data()
    {
        QTest::addColumn<bool>("carpeta");
        QTest::addColumn<QString>("caja");
        const QString leer = u"Error 75: No se pudo leer el fichero de contactos TLF/TELEFONO.DAT: "_qs;
        QTest::newRow("una carpeta") << true << leer + u"es una carpeta, no un fichero"_qs;
        QTest::newRow("una FIFO") << false << leer + u"es una tubería (FIFO), no un fichero"_qs;
    }
    void noEsUnFichero()
    {
        QFETCH(bool, carpeta);
        QVERIFY(QFile::remove(RutaContactos()));
        const QByteArray f = QFile::encodeName(RutaContactos());
        QVERIFY(carpeta ? QDir().mkdir(RutaContactos()) : ::mkfifo(f.constData(), 0644) == 0);
        Ventana v(u"Aceptar"_qs);
        QTEST(conTLF(v.caja), "caja");
        QVERIFY(!v.t || !v.t->isVisible());
    }

    // A file the grid cannot hold whole is opened for consulting only.
    void sinCabecera()
    {
        const QByteArray todo = ficheroDe(Agenda);
        escribir(RutaContactos(), todo.mid(todo.indexOf('\r') + 1));
        Ventana v(u"Aceptar"_qs);
        QCOMPARE(conTLF(v.caja), u"El fichero de contactos TLF/TELEFONO.DAT se abre solo para consulta: su primera "
                                 "línea no es la cabecera de la agenda.\n\nAl grabarlo se perdería lo que la agenda "
                                 "no puede mostrar."_qs);
        QCOMPARE(v.t->windowTitle(), u"Teléfonos (solo consulta)"_qs);
        v.clic(1, 1);
        QCOMPARE(v.estado(), u"Marco(1) cmdFax"_qs);
        QCOMPARE(v.vistos(), u"Bodega,Carlos Peña,Diego,Eva,Francisco"_qs);
    }

    // A new contact goes into row 1 when the last row has no name; a row 1 with data is
    // overwritten only when the user says so.
    void filaUnoConDatos_data()
    {
        QTest::addColumn<QString>("respuesta");
        QTest::addColumn<QString>("indice");
        QTest::addColumn<QString>("disco");
        QTest::newRow("no se pisa") << u"No"_qs << u"3"_qs << u",,Nuevo"_qs;
        QTest::newRow("se pisa") << u"Si"_qs << u"1"_qs << u",Nuevo"_qs;
    }
    void filaUnoConDatos()
    {
        QFETCH(QString, respuesta);
        escribir(RutaContactos(), ficheroDe(L({"|111", "|222"})));
        Ventana v;
        v.pulsar("cmdNuevo", respuesta);
        QCOMPARE(v.caja, u"La primera fila de la lista tiene datos, aunque no tiene nombre.\n\n¿ Desea escribir el "
                         "contacto nuevo sobre ella ?\n\n(No: se añade como contacto nuevo.)"_qs);
        QTEST(v.texto("Indice"), "indice");
        v.escribir(u"Nuevo"_qs);
        v.pulsar("cmdAceptar");
        QTEST(disco(), "disco");
    }

    // A contact that could not be saved is not left behind without a question.
    void cerrojoYSalir()
    {
        Ventana v;
        v.pulsar("cmdNuevo");
        v.escribir(u"Nuevo"_qs);
        QLockFile cerrojo(RutaContactos() + u".lock"_qs);
        QVERIFY(cerrojo.tryLock(0));
        v.pulsar("cmdAceptar", u"Aceptar"_qs);
        v.pulsar("cmdSalir", u"No"_qs);
        QCOMPARE(v.caja, u"Datos han sido modificados.\n\n¿ Desea salir sin grabar ?"_qs);
        QVERIFY(v.t && v.t->isVisible());
        v.pulsar("cmdSalir", u"Si"_qs);
        QVERIFY(!v.t || !v.t->isVisible());
        QCOMPARE(disco(), Todos);
    }

    // While active, a wheel turned anywhere over the window scrolls the grid a line a notch.
    void rueda()
    {
        Ventana v;
        QVERIFY(mostrarActiva(v.t));
        VisorRejilla *g = v.rejilla();
        g->setFixedHeight(g->rowHeight(0) * 4); // the sample's rows no longer fit
        g->setFocus();
        QWidget *sobre = control(v.t, "NumeroTlf");
        for (int muesca = 0; muesca < 2; ++muesca) {
            QWheelEvent e(QPointF(5, 5), sobre->mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(sobre, &e);
        }
        QCOMPARE(g->verticalScrollBar()->value(), 2);
    }

    // Four processes saving at once: every save reported as done is in the final file, and
    // nothing else is.
    void cuatroProcesos()
    {
        QProcess procesos[4];
        for (int p = 0; p < 4; ++p)
            procesos[p].start(QStringLiteral(AGENDA_PROCESO), {u"agregar"_qs, u"50"_qs, u"P%1-"_qs.arg(p)});
        QStringList esperado = disco().split(u','), grabados;
        for (QProcess &p : procesos) {
            QVERIFY(p.waitForFinished(120000));
            for (const QString &linea : QString::fromUtf8(p.readAllStandardOutput()).split(u'\n'))
                if (linea.startsWith(u"GRABADO "))
                    grabados << linea.mid(8);
        }
        QVERIFY(!grabados.isEmpty());
        esperado += grabados;
        esperado.sort();
        QStringList final = disco().split(u',');
        final.sort();
        QCOMPARE(final, esperado);
    }
};

QTEST_MAIN(TstTelefonos)
#include "tst_telefonos.moc"
