// The contacts file on real files: what a load puts in the grid, what a save puts on disk (code
// page 850 as glibc's iconv writes it), where the file lies, and the saves that must not happen:
// over a file somebody else saved, under another program's lock, into a folder that is not there
// or over a read-only file.
#include <kvr/contactos.h>
#include <kvr/error.h>
#include <kvr/mivisor.h>
#include <kvr/tablas.h>

#include "comun/ficheros.h"

#include <QDir>
#include <QLockFile>
#include <QProcess>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

using namespace kvr;
using namespace prueba;

namespace {

// The contacts as "name|phone|fax|e-mail", rows 1 on.
QStringList contactos(const Rejilla &g)
{
    QStringList r;
    for (int f = 1; f < g.Rows(); ++f) {
        QStringList celdas;
        for (int c = 1; c < 5; ++c)
            celdas << g.TextMatrix(f, c);
        r << celdas.join(u'|');
    }
    return r;
}

QByteArray iconvACp850(const QByteArray &utf8)
{
    QProcess p;
    p.start(QStringLiteral("iconv"), {QStringLiteral("-f"), QStringLiteral("UTF-8"), QStringLiteral("-t"), QStringLiteral("CP850")});
    p.write(utf8);
    p.closeWriteChannel();
    p.waitForFinished();
    return p.readAllStandardOutput();
}

const QByteArray Cabecera = "\tNombre\tTel\x82" "fono\tFax\teMail"; // as written, in CP850

} // namespace

class TstContactos : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString ruta(const QString &nombre = QStringLiteral("TELEFONO.DAT")) const { return m_dir.filePath(nombre); }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void cargar_data()
    {
        QTest::addColumn<QByteArray>("disco");
        QTest::addColumn<QStringList>("esperado");
        const QStringList dos = L({"ANA PEÑA|952 1|952 2|ana@x.es", "josé|3||"});
        QTest::newRow("CR") << QByteArray("cabecera\r\tjos\x82\t3\r\tANA PE\xA5" "A\t952 1\t952 2\tana@x.es\r\n") << dos;
        QTest::newRow("CR LF") << QByteArray("x\r\n\tjos\x82\t3\r\n\tANA PE\xA5" "A\t952 1\t952 2\tana@x.es\r\n") << dos;
        QTest::newRow("LF, sin final") << QByteArray("\n\tjos\x82\t3\n\tANA PE\xA5" "A\t952 1\t952 2\tana@x.es") << dos;
        QTest::newRow("lineas vacias") << QByteArray("x\r\r\n\tjos\x82\t3\r\r\tANA PE\xA5" "A\t952 1\t952 2\tana@x.es\r\n\r\n") << dos;
        QTest::newRow("solo cabecera") << QByteArray("\tNombre\r\n") << QStringList{u"|||"_qs};
        QTest::newRow("vacio") << QByteArray() << QStringList{u"|||"_qs};
        QTest::newRow("NUL como blanco, celdas de mas fuera")
            << QByteArray("c\r\tA\0B\t1\t2\t3\textra\r\n", 20) << L({"A B|1|2|3"});
    }
    void cargar()
    {
        QFETCH(QByteArray, disco);
        QFETCH(QStringList, esperado);
        escribir(ruta(), disco);
        Rejilla g;
        const SelloFichero s = LeerFicheroContactos(ruta(), g);
        QVERIFY(s.existe);
        QCOMPARE(s.tamano, disco.size());
        QCOMPARE(contactos(g), esperado);
        QCOMPARE(g.TextMatrix(0, 2), u"Teléfono"_qs);
        QCOMPARE(g.ColWidth(0), 0);
    }

    // Appended rows are saved sorted by name without regard to case; the text is what iconv
    // gives for the same UTF-8, rows joined by CR, the end CR LF; TAB or CR typed into a cell
    // cannot split the contact.
    void grabar()
    {
        Rejilla g;
        LeerFicheroContactos(ruta(u"nuevo.DAT"_qs), g);
        const QStringList filas = L({"zoe|1", "Íñigo Núñez|2||íñigo@x.es", "ana|3", "ÁLVARO|4", "bea|un\ttab"});
        for (int f = 0; f < filas.size(); ++f) {
            const QStringList c = filas[f].split(u'|');
            for (int i = 0; i < c.size(); ++i)
                PonerCelda(g, f + 1, i + 1, c[i]);
        }
        // What a save killed an hour ago left behind goes; a file of another name stays.
        for (const QString &resto : {u"nuevo.DAT.Ab12cD"_qs, u"nuevo.DAT.copia"_qs}) {
            escribir(ruta(resto), "x");
            QFile f(ruta(resto));
            f.open(QIODevice::ReadWrite);
            f.setFileTime(QDateTime::currentDateTime().addSecs(-3600), QFileDevice::FileModificationTime);
        }
        SelloFichero s;
        QCOMPARE(GrabarFicheroContactos(ruta(u"nuevo.DAT"_qs), g, s), ResultadoGrabacion::Grabado);
        QVERIFY(!QFile::exists(ruta(u"nuevo.DAT.Ab12cD"_qs)));
        QVERIFY(QFile::exists(ruta(u"nuevo.DAT.copia"_qs)));
        const QByteArray utf8 = QStringLiteral("\tNombre\tTeléfono\tFax\teMail\r\tÁLVARO\t4\t\t\r\tana\t3\t\t\r"
                                               "\tbea\tun tab\t\t\r\tÍñigo Núñez\t2\t\tíñigo@x.es\r\tzoe\t1\t\t\r\n").toUtf8();
        QCOMPARE(leer(ruta(u"nuevo.DAT"_qs)), iconvACp850(utf8));
        QVERIFY(s.existe);
        QCOMPARE(s, SelloDe(ruta(u"nuevo.DAT"_qs)));
    }

    void carpeta_data()
    {
        QTest::addColumn<QByteArray>("tlf");
        QTest::addColumn<QString>("carpeta");
        QTest::newRow("con barra") << QByteArray("/datos/agenda/") << u"/datos/agenda/"_qs;
        QTest::newRow("sin barra") << QByteArray("/datos/agenda") << u"/datos/agenda/"_qs;
        QTest::newRow("sin TLF") << QByteArray() << u"/tmp/xdg-prueba/kvr/"_qs;
    }
    void carpeta()
    {
        QFETCH(QByteArray, tlf);
        QFETCH(QString, carpeta);
        qputenv("XDG_DATA_HOME", "/tmp/xdg-prueba");
        if (tlf.isEmpty())
            qunsetenv("TLF");
        else
            qputenv("TLF", tlf);
        QCOMPARE(CarpetaContactos(), carpeta);
        QCOMPARE(RutaContactos(), carpeta + u"TELEFONO.DAT"_qs);
        qunsetenv("TLF");
    }

    // What a save finds on disk against the version it was given.
    void conflictos_data()
    {
        QTest::addColumn<QString>("cambio");
        QTest::addColumn<int>("resultado");
        QTest::newRow("nadie tocó") << u""_qs << int(ResultadoGrabacion::Grabado);
        QTest::newRow("otro grabó") << u"grabar"_qs << int(ResultadoGrabacion::Modificado);
        QTest::newRow("misma hora y tamaño, otro fichero") << u"mismaHora"_qs << int(ResultadoGrabacion::Modificado);
        QTest::newRow("borrado: se crea") << u"borrar"_qs << int(ResultadoGrabacion::Grabado);
        QTest::newRow("cerrojo de otro programa") << u"cerrojo"_qs << int(ResultadoGrabacion::Ocupado);
        QTest::newRow("cerrojo de un proceso muerto") << u"cerrojoMuerto"_qs << int(ResultadoGrabacion::Grabado);
    }
    void conflictos()
    {
        QFETCH(QString, cambio);
        QFETCH(int, resultado);
        const QString f = ruta(u"conflicto.DAT"_qs);
        const QByteArray original("c\r\tana\t1\t\t\r\n");
        escribir(f, original);
        Rejilla g;
        SelloFichero s = LeerFicheroContactos(f, g);
        PonerCelda(g, 2, 1, u"bea"_qs);

        QLockFile cerrojo(f + u".lock"_qs);
        QByteArray esperado = original;
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
            QFile::remove(f + u".viejo"_qs);
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
        }
        const auto r = GrabarFicheroContactos(f, g, s, 300);
        QCOMPARE(int(r), resultado);
        if (r == ResultadoGrabacion::Grabado)
            QCOMPARE(leer(f), Cabecera + "\r\tana\t1\t\t\r\tbea\t\t\t\r\n");
        else
            QCOMPARE(leer(f), esperado);
        cerrojo.unlock();
        QVERIFY(!QFile::exists(f + u".lock"_qs));
    }

    // Saves that cannot be written throw, naming the file, and leave it as it was.
    void errores_data()
    {
        QTest::addColumn<QString>("caso");
        QTest::addColumn<int>("numero");
        QTest::newRow("solo lectura") << u"lectura"_qs << int(ErrorEjecucion::AccesoDenegado);
        QTest::newRow("carpeta de TLF ausente") << u"carpeta"_qs << ErrorRutaNoEncontrada;
        QTest::newRow("disco lleno a medias") << u"lleno"_qs << int(ErrorEjecucion::ErrorEntradaSalida);
    }
    void errores()
    {
        QFETCH(QString, caso);
        QFETCH(int, numero);
        QString f = ruta(caso + u".DAT"_qs);
        escribir(f, "c\r\tana\r\n");
        if (caso == u"lectura")
            QFile::setPermissions(f, QFileDevice::ReadOwner | QFileDevice::ReadGroup);
        else if (caso == u"carpeta")
            f = ruta(u"no/existe/TELEFONO.DAT"_qs);
        qputenv("TLF", QFile::encodeName(QFileInfo(f).absolutePath()));
        Rejilla g;
        SelloFichero s = LeerFicheroContactos(f, g);
        PonerCelda(g, 1, 1, u"cambio"_qs);
        for (int i = 2; i < 200; ++i)
            PonerCelda(g, i, 1, u"contacto %1"_qs.arg(i));
        // A file size limit stands for a disk that fills half way through the write.
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit antes{}, corto{};
        getrlimit(RLIMIT_FSIZE, &antes);
        corto = antes;
        corto.rlim_cur = 256;
        if (caso == u"lleno")
            setrlimit(RLIMIT_FSIZE, &corto);
        int visto = 0;
        try {
            GrabarFicheroContactos(f, g, s);
        } catch (const ErrorEjecucion &e) {
            visto = e.numero();
            QVERIFY2(e.descripcion().contains(f), qPrintable(e.descripcion()));
        }
        setrlimit(RLIMIT_FSIZE, &antes);
        QCOMPARE(visto, numero);
        qunsetenv("TLF");
        if (caso == u"carpeta")
            QVERIFY(!QDir(ruta(u"no"_qs)).exists());
        else
            QCOMPARE(leer(f), QByteArray("c\r\tana\r\n"));
    }

    // Without TLF the user's own folder is made by the first save.
    void carpetaPorOmisionSeCrea()
    {
        qunsetenv("TLF");
        qputenv("XDG_DATA_HOME", QFile::encodeName(ruta(u"xdg"_qs)));
        Rejilla g;
        SelloFichero s = LeerFicheroContactos(RutaContactos(), g);
        PonerCelda(g, 1, 1, u"ana"_qs);
        QCOMPARE(GrabarFicheroContactos(RutaContactos(), g, s), ResultadoGrabacion::Grabado);
        QCOMPARE(RutaContactos(), ruta(u"xdg/kvr/TELEFONO.DAT"_qs));
        QVERIFY(QFile::exists(RutaContactos()));
    }
};

QTEST_GUILESS_MAIN(TstContactos)
#include "tst_contactos.moc"
