// The phone book on a real contacts file in a folder given by TLF. First the file alone: what a
// load puts in the grid, what a save puts on disk (code page 850 as glibc's iconv writes it) and
// the saves that must not happen. Then the window driven with real keys and clicks: the search,
// the entry panel and what each change leaves on disk, the picks of an e-mail address, the wheel,
// the hand-offs received by stand-in programs placed on disk (an xdg-open first on PATH, the fax
// program in the contacts folder), a failed save, and other phone book processes saving the file.
#include <kvr/comunes.h>
#include <kvr/contactos.h>
#include <kvr/error.h>
#include <kvr/mivisor.h>
#include <kvr/tablas.h>
#include <kvr/telefonos.h>
#include <kvr/visorrejilla.h>

#include "comun/pruebas.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QLockFile>
#include <QProcess>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QWheelEvent>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

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
enum { Ana, Bodega, Carlos, Diego, Eva, Francisco };

QByteArray ficheroDe(const QStringList &contactos)
{
    QString texto = u"\tNombre\tTeléfono\tFax\teMail"_qs;
    for (const QString &c : contactos)
        texto += u"\r\t"_qs + QString(c).replace(u'|', u'\t');
    return BytesDeDos(texto + u"\r\n"_qs);
}

// The contacts of a grid, rows 1 on, as "name|phone|fax|e-mail" (the names alone with 1 column).
QStringList contactos(const Rejilla &g, int columnas = 4)
{
    QStringList r;
    for (int f = 1; f < g.Rows(); ++f) {
        QStringList celdas;
        for (int c = 1; c <= columnas; ++c)
            celdas << g.TextMatrix(f, c);
        r << celdas.join(u'|');
    }
    return r;
}

QStringList nombresEnDisco()
{
    Rejilla g;
    LeerFicheroContactos(RutaContactos(), g);
    return contactos(g, 1);
}

QByteArray iconvACp850(const QString &texto)
{
    QProcess p;
    p.start(u"iconv"_qs, {u"-f"_qs, u"UTF-8"_qs, u"-t"_qs, u"CP850"_qs});
    p.write(texto.toUtf8());
    p.closeWriteChannel();
    p.waitForFinished();
    return p.readAllStandardOutput();
}

VisorRejilla *telfs(QWidget *t) { return control<VisorRejilla>(t, "Telfs"); }

// The names of the rows the grid shows, top to bottom.
QStringList nombresVisibles(QWidget *t)
{
    QStringList r;
    for (int f = 0; f < telfs(t)->model()->rowCount(); ++f)
        r << telfs(t)->model()->index(f, 1).data().toString();
    return r;
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

    Telefonos *abrir()
    {
        auto *t = new Telefonos;
        t->show();
        QCoreApplication::processEvents();
        return t;
    }

private Q_SLOTS:
    void initTestCase()
    {
        // The desktop's opener: a stand-in first on PATH records what it was handed.
        static QTemporaryDir bin;
        m_registro = bin.filePath(u"registro"_qs);
        ponerPrograma(bin.filePath(u"xdg-open"_qs), "printf '%s\\n' \"$@\"");
        qputenv("PATH", QFile::encodeName(bin.path()) + ":" + qgetenv("PATH"));
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
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
    void cleanup()
    {
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == u"Telefonos")
                delete w;
    }

    void cargar_data()
    {
        QTest::addColumn<QByteArray>("disco");
        QTest::addColumn<QStringList>("esperado");
        const QStringList dos = L({"ANA PEÑA|952 1|952 2|ana@x.es", "josé|3||"});
        QTest::newRow("CR") << QByteArray("cabecera\r\tjos\x82\t3\r\tANA PE\xA5" "A\t952 1\t952 2\tana@x.es\r\n") << dos;
        QTest::newRow("LF, sin final") << QByteArray("\n\tjos\x82\t3\n\tANA PE\xA5" "A\t952 1\t952 2\tana@x.es") << dos;
        QTest::newRow("lineas vacias, CR LF")
            << QByteArray("x\r\r\n\tjos\x82\t3\r\r\tANA PE\xA5" "A\t952 1\t952 2\tana@x.es\r\n\r\n") << dos;
        QTest::newRow("vacio") << QByteArray() << QStringList{u"|||"_qs};
        QTest::newRow("NUL como blanco, celdas de mas fuera")
            << QByteArray("c\r\tA\0B\t1\t2\t3\textra\r\n", 20) << L({"A B|1|2|3"});
    }
    void cargar()
    {
        QFETCH(QByteArray, disco);
        escribir(RutaContactos(), disco);
        Rejilla g;
        const SelloFichero s = LeerFicheroContactos(RutaContactos(), g);
        QVERIFY(s.existe);
        QCOMPARE(s.tamano, disco.size());
        QTEST(contactos(g), "esperado");
        QCOMPARE(g.TextMatrix(0, 2), u"Teléfono"_qs);
    }

    // Rows are saved sorted by name without regard to case; the text is what iconv gives for the
    // same UTF-8, rows joined by CR, the end CR LF; a TAB typed into a cell cannot split the
    // contact. What a save killed an hour ago left behind goes; a file of another name stays.
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
        QCOMPARE(QDir(m_dir->path()).entryList({u"nuevo.*"_qs}), L({"nuevo.DAT", "nuevo.DAT.copia"}));
        QCOMPARE(leer(f), iconvACp850(u"\tNombre\tTeléfono\tFax\teMail\r\tÁLVARO\t4\t\t\r\tana\t3\t\t\r"
                                      "\tbea\tun tab\t\t\r\tÍñigo Núñez\t2\t\tíñigo@x.es\r\tzoe\t1\t\t\r\n"_qs));
        QCOMPARE(s, SelloDe(f));
    }

    // Where the file lies; without TLF, the user's own folder, made by the first save. A
    // version's date is its file's time; a missing file has none.
    void carpeta()
    {
        qputenv("TLF", "/datos/agenda/");
        QCOMPARE(RutaContactos(), u"/datos/agenda/TELEFONO.DAT"_qs);
        qputenv("TLF", "/datos/agenda");
        QCOMPARE(RutaContactos(), u"/datos/agenda/TELEFONO.DAT"_qs);
        qunsetenv("TLF");
        qputenv("XDG_DATA_HOME", QFile::encodeName(ruta(u"xdg"_qs)));
        QCOMPARE(RutaContactos(), ruta(u"xdg/kvr/TELEFONO.DAT"_qs));
        Rejilla g;
        SelloFichero s = LeerFicheroContactos(RutaContactos(), g);
        QVERIFY(!s.fecha().isValid());
        PonerCelda(g, 1, 1, u"ana"_qs);
        QCOMPARE(GrabarFicheroContactos(RutaContactos(), g, s), ResultadoGrabacion::Grabado);
        QCOMPARE(s.fecha(), QFileInfo(RutaContactos()).lastModified());
    }

    // What a save finds on disk against the version it was given: written, refused (0, 1, 2 as
    // ResultadoGrabacion) or thrown, the error's number naming the file, and the file left as it was.
    void grabacion_data()
    {
        QTest::addColumn<QString>("cambio");
        QTest::addColumn<int>("resultado");
        QTest::newRow("otro grabó") << u"grabar"_qs << int(ResultadoGrabacion::Modificado);
        QTest::newRow("misma hora y tamaño, otro fichero") << u"mismaHora"_qs << int(ResultadoGrabacion::Modificado);
        QTest::newRow("borrado: se crea") << u"borrar"_qs << int(ResultadoGrabacion::Grabado);
        QTest::newRow("cerrojo de otro programa") << u"cerrojo"_qs << int(ResultadoGrabacion::Ocupado);
        QTest::newRow("cerrojo de un proceso muerto") << u"cerrojoMuerto"_qs << int(ResultadoGrabacion::Grabado);
        QTest::newRow("solo lectura") << u"lectura"_qs << int(ErrorEjecucion::AccesoDenegado);
        QTest::newRow("carpeta de TLF ausente") << u"carpeta"_qs << ErrorRutaNoEncontrada;
        QTest::newRow("disco lleno a medias") << u"lleno"_qs << int(ErrorEjecucion::ErrorEntradaSalida);
    }
    void grabacion()
    {
        QFETCH(QString, cambio);
        QString f = RutaContactos();
        QByteArray esperado("c\r\tana\t1\t\t\r\n");
        escribir(f, esperado);
        if (cambio == u"carpeta")
            qputenv("TLF", QFile::encodeName(ruta(u"no/existe"_qs)));
        Rejilla g;
        SelloFichero s = LeerFicheroContactos(RutaContactos(), g);
        PonerCelda(g, 2, 1, u"bea"_qs);
        QLockFile cerrojo(f + u".lock"_qs);
        if (cambio == u"grabar") {
            esperado = "c\r\totro\t2\t\t\r\n";
            QFile::remove(f);
            escribir(f, esperado);
        } else if (cambio == u"mismaHora") {
            // A new file of the same size with the old time to the nanosecond: only its identity tells.
            esperado = "c\r\tAna\t1\t\t\r\n";
            QVERIFY(QFile::rename(f, f + u".viejo"_qs));
            escribir(f, esperado);
            struct stat st {};
            QVERIFY(::stat(QFile::encodeName(f + u".viejo"_qs).constData(), &st) == 0);
            const struct timespec tiempos[2] = {st.st_atim, st.st_mtim};
            QVERIFY(::utimensat(AT_FDCWD, QFile::encodeName(f).constData(), tiempos, 0) == 0);
            QCOMPARE(SelloDe(f).nanosegundos, s.nanosegundos);
        } else if (cambio == u"borrar") {
            QFile::remove(f);
        } else if (cambio == u"cerrojo") {
            QVERIFY(cerrojo.tryLock(0));
        } else if (cambio == u"cerrojoMuerto") {
            // The lock of a phone book of this computer that was killed while it held it.
            QProcess p;
            p.start(QStringLiteral(AGENDA_PROCESO), {u"bloquear"_qs, f + u".lock"_qs});
            QVERIFY(p.waitForReadyRead(10000));
            p.kill();
            p.waitForFinished();
            QVERIFY(QFile::exists(f + u".lock"_qs));
        } else if (cambio == u"lectura") {
            QFile::setPermissions(f, QFileDevice::ReadOwner);
        }
        // A file size limit stands for a disk that fills half way through the write.
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit antes{}, corto{};
        getrlimit(RLIMIT_FSIZE, &antes);
        corto = antes;
        corto.rlim_cur = 256;
        if (cambio == u"lleno") {
            for (int i = 3; i < 200; ++i)
                PonerCelda(g, i, 1, u"contacto %1"_qs.arg(i));
            setrlimit(RLIMIT_FSIZE, &corto);
        }
        int visto = -1;
        try {
            visto = int(GrabarFicheroContactos(RutaContactos(), g, s, 300));
        } catch (const ErrorEjecucion &e) {
            visto = e.numero();
            QVERIFY2(e.descripcion().contains(RutaContactos()), qPrintable(e.descripcion()));
        }
        setrlimit(RLIMIT_FSIZE, &antes);
        QTEST(visto, "resultado");
        if (visto == int(ResultadoGrabacion::Grabado))
            esperado = "\tNombre\tTel\x82" "fono\tFax\teMail\r\tana\t1\t\t\r\tbea\t\t\t\r\n";
        QCOMPARE(leer(f), esperado);
        cerrojo.unlock();
        QVERIFY(!QFile::exists(f + u".lock"_qs));
        QVERIFY(!QDir(ruta(u"no"_qs)).exists());
    }

    // A row's steps on a window over the sample phone book, and what its "?" steps saw (the
    // contacts folder written TLF). Before "abrir": "sin agenda" (no file, no fax program),
    // "solo lectura", "muchos" (200 contacts more), "por WHO" (EnviadoPor). Then "clic R C",
    // "derecho R C", "doble R C" (the cell of shown row R, column C), "títulos C", "dobleTítulos
    // C", "teclear TEXT", "tecla KEYS", "caja CAPTION" (answers the next box), "otro" (another
    // process adds the contact Otro0, printing what it did), "rueda" (a notch down over the
    // numbers), or a control's name: a button is pressed, another control takes the focus. Seen:
    // "?foco", "?estado" (which of the entry panel, its warning, a frame, Editar and Fax are
    // shown and enabled), "?disco" (the names in the file), "?vistos" (the names the grid
    // shows), "?caja" (the last box's text), "?registro" (the lines a stand-in program got),
    // "?elegido" (the pick of a window that closed), "?barra" (the grid's scroll position), or
    // "?" and a control's name: its text.
    void ventana_data()
    {
        QTest::addColumn<QStringList>("pasos");
        QTest::addColumn<QStringList>("visto");
        const QString todos = u"Ana López,Bodega,Carlos Peña,Diego,Eva,Francisco"_qs;
        // The search looks in every column, across the cells of a row, without regard to case.
        QTest::newRow("buscar en nombre, entre columnas y en el correo")
            << L({"abrir", "BuscoTLF", "teclear ana", "?vistos"}) << L({"Ana López,Bodega,Diego"});
        QTest::newRow("buscar mayúsculas con eñe")
            << L({"abrir", "BuscoTLF", "teclear PEÑA", "?vistos"}) << L({"Carlos Peña"});
        QTest::newRow("buscar en el fax") << L({"abrir", "BuscoTLF", "teclear 952 000", "?vistos"}) << L({"Francisco"});
        QTest::newRow("buscar nada, y borrar")
            << L({"abrir", "BuscoTLF", "teclear zzz", "?vistos", "tecla Ctrl+A", "tecla Backspace", "?vistos"})
            << QStringList{QString(), todos};
        // The entry panel: Return goes on like Tab; each change is saved; after it nothing is chosen.
        QTest::newRow("nuevo")
            << L({"abrir", "cmdNuevo", "?foco", "?estado", "teclear Alberto", "tecla Return", "?foco", "teclear 955",
                  "cmdAceptar", "?disco", "?foco", "?estado"})
            << QStringList{u"Tlf(0)"_qs, u"LaEntrada"_qs, u"Tlf(1)"_qs, u"Alberto,"_qs + todos, u"Telfs"_qs,
                           u"Marco(1) cmdFax"_qs};
        QTest::newRow("sin nombre no se graba")
            << L({"abrir", "cmdNuevo", "tecla Return", "teclear 955", "cmdAceptar", "?disco", "?foco", "?estado"})
            << QStringList{todos, u"Tlf(0)"_qs, u"LaEntrada"_qs};
        QTest::newRow("editar")
            << L({"abrir", "clic 1 1", "cmdEditar", "?Indice", "?Tlf(1)", "tecla Ctrl+A", "teclear Zacarías",
                  "cmdAceptar", "?disco"})
            << L({"2", "NA 5", "Ana López,Carlos Peña,Diego,Eva,Francisco,Zacarías"});
        QTest::newRow("suprimir, Si")
            << L({"abrir", "clic 4 2", "caja Si", "cmdBorrar", "?caja", "?disco", "?estado"})
            << L({"¿ Confirma que desea ELIMINAR el contacto seleccionado ?", "Ana López,Bodega,Carlos Peña,Diego,Francisco",
                  "Marco(1) cmdFax"});
        QTest::newRow("suprimir, No") << L({"abrir", "clic 4 2", "caja No", "cmdBorrar", "?disco", "?estado"})
                                      << QStringList{todos, u"Marco(1) cmdEditar cmdFax"_qs};
        // An empty phone book: the new contact takes the blank row 1; no fax program, no "Fax".
        QTest::newRow("agenda vacía")
            << L({"sin agenda", "abrir", "?estado", "cmdNuevo", "?Indice", "teclear Ana", "cmdAceptar", "?disco"})
            << L({"Marco(1)", "1", "Ana"});
        // A click on the titles chooses nothing; one on a contact shows its numbers.
        QTest::newRow("títulos y contacto")
            << L({"abrir", "títulos 1", "?estado", "?vistos", "clic 5 1", "?estado", "?NumeroTlf", "?NumeroFax"})
            << QStringList{u"Marco(1) cmdFax"_qs, todos, u"Marco(1) cmdEditar cmdFax"_qs, u"633"_qs,
                           u"952 000 000"_qs};
        // A right click closes the window, picking the address when on the e-mail cell.
        QTest::newRow("clic derecho en el correo") << L({"abrir", "derecho 2 4", "?elegido"}) << L({"carlos@pena.es"});
        QTest::newRow("clic derecho en otra celda") << L({"abrir", "derecho 2 2", "?elegido"}) << L({"antes"});
        // What the stand-in programs receive, and in which folder the fax program runs.
        QTest::newRow("correo con asunto") << L({"por Almacén Sur", "abrir", "doble 0 4", "?registro"})
                                           << L({"mailto:ana@lopez.es?Subject=Envio realizado por Almacén Sur"});
        QTest::newRow("contacto sin correo") << L({"abrir", "doble 4 4", "?registro"}) << L({"mailto:"});
        QTest::newRow("botón eMail") << L({"por Sur", "abrir", "cmdEmail", "?registro"})
                                     << L({"mailto:?Subject=Envio realizado por Sur"});
        QTest::newRow("fax") << L({"abrir", "doble 5 3", "?registro"})
                             << L({"TLF/Telecopia", "[E(Francisco) F(952 000 000) ]"});
        QTest::newRow("botón Fax") << L({"abrir", "cmdFax", "?registro"}) << L({"TLF/Telecopia"});
        QTest::newRow("doble clic en los títulos") << L({"abrir", "dobleTítulos 4", "?registro"}) << QStringList();
        // A save that cannot be written: a message naming the file, the contact still in the grid.
        QTest::newRow("grabación imposible")
            << L({"solo lectura", "abrir", "cmdNuevo", "teclear Nuevo", "caja Aceptar", "cmdAceptar", "?caja", "?vistos"})
            << QStringList{u"No se pudo grabar el fichero de contactos TLF/TELEFONO.DAT: el fichero es de solo "
                           "lectura.\n\nSu cambio sigue en la lista, sin grabar."_qs, todos + u",Nuevo"_qs};
        // Another phone book process saves first: this window is warned when its entry panel
        // opens, its save is refused with the message, and it then shows the other's contacts.
        QTest::newRow("otro proceso graba antes")
            << L({"abrir", "otro", "cmdNuevo", "?estado", "teclear Mío", "caja Aceptar", "cmdAceptar", "?caja",
                  "?vistos", "?disco"})
            << QStringList{u"GRABADO Otro0"_qs, u"LaEntrada FueModificado"_qs,
                           u"Fichero de contactos fué modificado.\n\nSu cambio no pudo grabarse."_qs,
                           todos + u",Otro0"_qs, todos + u",Otro0"_qs};
        // While active, a wheel turned anywhere over the window scrolls the grid a line a notch.
        QTest::newRow("rueda") << L({"muchos", "abrir", "rueda", "rueda", "?barra"}) << L({"2"});
    }
    void ventana()
    {
        QFETCH(QStringList, pasos);
        QPointer<Telefonos> t;
        QStringList visto;
        QString caja;
        ContactoElegido = u"antes"_qs;
        for (const QString &paso : pasos) {
            const QString orden = paso.section(u' ', 0, 0), resto = paso.section(u' ', 1);
            const int col = paso.section(u' ', -1).toInt();
            VisorRejilla *v = t ? telfs(t) : nullptr;
            QWidget *foco = QApplication::focusWidget();
            if (paso == u"sin agenda") {
                QFile::remove(RutaContactos());
                QDir(ruta(u"Telecopia"_qs)).removeRecursively();
            } else if (paso == u"solo lectura") {
                QFile::setPermissions(RutaContactos(), QFileDevice::ReadOwner);
            } else if (paso == u"muchos") {
                QStringList muchos = Agenda;
                for (int i = 0; i < 200; ++i)
                    muchos << u"Z%1|%1||"_qs.arg(i, 3, 10, QChar(u'0'));
                escribir(RutaContactos(), ficheroDe(muchos));
            } else if (orden == u"por") {
                EnviadoPor = resto;
            } else if (orden == u"abrir") {
                t = abrir();
            } else if (orden == u"clic" || orden == u"derecho" || orden == u"doble") {
                clicCelda(v, resto.section(u' ', 0, 0).toInt(), col, orden == u"derecho" ? Qt::RightButton : Qt::LeftButton);
                if (orden == u"doble")
                    QTest::mouseDClick(v->viewport(), Qt::LeftButton, {}, v->visualRect(v->currentIndex()).center());
            } else if (orden.endsWith(u"ítulos")) {
                const QPoint p(v->horizontalHeader()->sectionViewportPosition(col) + 5, 5);
                if (orden == u"títulos")
                    QTest::mouseClick(v->horizontalHeader()->viewport(), Qt::LeftButton, {}, p);
                else
                    QTest::mouseDClick(v->horizontalHeader()->viewport(), Qt::LeftButton, {}, p);
            } else if (orden == u"teclear") {
                teclear(foco, resto);
            } else if (orden == u"tecla") {
                QTest::keySequence(foco, QKeySequence(resto));
                QCoreApplication::processEvents();
            } else if (orden == u"caja") {
                responder(resto, &caja);
            } else if (orden == u"otro") {
                QProcess otro;
                otro.start(QStringLiteral(AGENDA_PROCESO), {u"agregar"_qs, u"1"_qs, u"Otro"_qs});
                QVERIFY(otro.waitForFinished(30000));
                visto << QString::fromUtf8(otro.readAllStandardOutput()).trimmed();
            } else if (orden == u"rueda") {
                QVERIFY(mostrarActiva(t));
                v->setFocus();
                QWidget *sobre = control(t, "NumeroTlf");
                QWheelEvent e(QPointF(5, 5), sobre->mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120), Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
                QApplication::sendEvent(sobre, &e);
            } else if (orden == u"?estado") {
                QStringList estado;
                for (const char *c : {"LaEntrada", "FueModificado", "Marco(1)", "cmdEditar", "cmdFax"})
                    if (control(t, c)->isVisible() && control(t, c)->isEnabled())
                        estado << QString::fromLatin1(c);
                visto << estado.join(u' ');
            } else if (orden == u"?foco") {
                visto << nombreDelFoco();
            } else if (orden == u"?disco") {
                visto << nombresEnDisco().join(u',');
            } else if (orden == u"?vistos") {
                visto << nombresVisibles(t).join(u',');
            } else if (orden == u"?caja") {
                visto << caja.replace(m_dir->path(), u"TLF"_qs);
            } else if (orden == u"?registro") {
                (void)QTest::qWaitFor([this] { return QFile::exists(m_registro); }, 3000);
                const QString r = QFile::exists(m_registro) ? QString::fromUtf8(leer(m_registro)) : QString();
                visto << r.split(u'\n', Qt::SkipEmptyParts).replaceInStrings(m_dir->path(), u"TLF"_qs);
            } else if (orden == u"?elegido") {
                QTRY_VERIFY(!t);
                visto << ContactoElegido;
            } else if (orden == u"?barra") {
                visto << QString::number(v->verticalScrollBar()->value());
            } else if (orden.startsWith(u'?')) {
                visto << control(t, orden.mid(1))->property("text").toString();
            } else if (auto *boton = control<QPushButton>(t, orden)) {
                pulsar(boton);
            } else {
                control(t, orden)->setFocus();
            }
        }
        QTEST(visto, "visto");
    }

    // Four processes saving at once: every save that was not refused is in the final file.
    void cuatroProcesos()
    {
        std::vector<std::unique_ptr<QProcess>> procesos;
        for (int p = 0; p < 4; ++p) {
            procesos.push_back(std::make_unique<QProcess>());
            procesos.back()->start(QStringLiteral(AGENDA_PROCESO), {u"agregar"_qs, u"50"_qs, u"P%1-"_qs.arg(p)});
        }
        QStringList grabados;
        for (auto &p : procesos) {
            QVERIFY(p->waitForFinished(120000));
            for (const QByteArray &linea : p->readAllStandardOutput().split('\n'))
                if (linea.startsWith("GRABADO "))
                    grabados << QString::fromUtf8(linea.mid(8));
        }
        const QStringList final = nombresEnDisco();
        QVERIFY(!grabados.isEmpty());
        for (const QString &g : grabados)
            QVERIFY2(final.contains(g), qPrintable(g));
        QCOMPARE(final.size(), Agenda.size() + grabados.size());
    }
};

QTEST_MAIN(TstTelefonos)
#include "tst_telefonos.moc"
