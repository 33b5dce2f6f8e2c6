// Whole-file reads and atomic writes against what a shared folder may hold in a file's place:
// links, folders, FIFOs, devices, read-only files and the leftovers of killed saves. Each row
// compares the outcome and everything the folder holds afterwards.
#include <kvr/ficheros.h>

#include "comun/ficheros.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace kvr;
using namespace prueba;

namespace {

constexpr uid_t Nadie = 65534;

// Every entry of the folder and of its subfolder "otra": a link as "name -> target", a regular file
// as "name mode content", a folder as "name/".
QString contenido(const QString &carpeta)
{
    QStringList r;
    for (const QString &sub : {QString(), u"otra/"_qs}) {
        QDir d(carpeta + u'/' + sub);
        for (const QFileInfo &i : d.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                                  QDir::Name)) {
            struct stat st {};
            ::lstat(QFile::encodeName(i.filePath()).constData(), &st);
            const QString nombre = sub + i.fileName();
            if (S_ISLNK(st.st_mode))
                r << nombre + u" -> "_qs + i.symLinkTarget().replace(carpeta, u"D"_qs);
            else if (S_ISREG(st.st_mode))
                r << nombre + u' ' + QString::number(st.st_mode & 0777, 8) + u' ' + QString::fromUtf8(leer(i.filePath()));
            else if (S_ISDIR(st.st_mode) && nombre != u"otra")
                r << nombre + u'/';
            else if (S_ISFIFO(st.st_mode))
                r << nombre + u" fifo"_qs;
        }
    }
    return r.join(u" | "_qs);
}

void envejecer(const QString &ruta)
{
    const struct timespec hace[2] = {{::time(nullptr) - 3600, 0}, {::time(nullptr) - 3600, 0}};
    ::utimensat(AT_FDCWD, QFile::encodeName(ruta).constData(), hace, AT_SYMLINK_NOFOLLOW);
}

} // namespace

class TstFicheros : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { ::umask(022); }

    // What lies at "f.txt" before a save of "nuevo" over it, and what the folder holds after.
    void grabar_data()
    {
        QTest::addColumn<QString>("antes");
        QTest::addColumn<QString>("despues"); // outcome, then the folder; D is the folder's path
        QTest::newRow("fichero") << u"fichero 640"_qs << u"grabado | f.txt 640 nuevo"_qs;
        QTest::newRow("nada") << QString() << u"grabado | f.txt 644 nuevo"_qs;
        QTest::newRow("enlace propio en la carpeta")
            << u"enlace real.txt"_qs << u"grabado | f.txt -> D/real.txt | real.txt 600 nuevo"_qs;
        QTest::newRow("enlace fuera de la carpeta")
            << u"enlace otra/real.txt"_qs
            << u"75 es un enlace simbólico a D/otra/real.txt, fuera de su carpeta; no se graba a través de él"
               u" | f.txt -> D/otra/real.txt | otra/real.txt 600 viejo"_qs;
        QTest::newRow("enlace a fichero ajeno")
            << u"enlace ajeno real.txt"_qs
            << u"75 es un enlace simbólico a D/real.txt, que es de otro usuario; no se graba a través de él"
               u" | f.txt -> D/real.txt | real.txt 600 viejo"_qs;
        QTest::newRow("enlace roto")
            << u"enlace roto"_qs << u"75 es un enlace simbólico a un fichero que no existe | f.txt -> D/roto"_qs;
        QTest::newRow("enlace a carpeta")
            << u"enlace otra"_qs << u"75 es un enlace simbólico a D/otra, que no es un fichero | f.txt -> D/otra"_qs;
        QTest::newRow("carpeta") << u"carpeta"_qs << u"75 es una carpeta, no un fichero | f.txt/"_qs;
        QTest::newRow("fifo") << u"fifo"_qs << u"75 es una tubería (FIFO), no un fichero | f.txt fifo"_qs;
        QTest::newRow("solo lectura") << u"fichero 444"_qs << u"75 el fichero es de solo lectura | f.txt 444 viejo"_qs;
        QTest::newRow("carpeta que no existe") << u"sin carpeta"_qs << u"76 no existe la carpeta D/falta"_qs;
        // Only our own temporary files of this name, this user's and over a minute old, go.
        QTest::newRow("restos")
            << u"restos"_qs
            << u"grabado | .f.txt.kvr-Nuevo1.tmp 644 x | .f.txt.kvr-Otro11.tmp 644 x | .g.txt.kvr-Ab12cD.tmp 644 x"
               u" | f.txt 644 nuevo | f.txt.Ab12cD 644 x | f.txt.backup 644 x | f.txt.kvr-Ab12cD 644 x"_qs;
    }
    void grabar()
    {
        QFETCH(QString, antes);
        QTemporaryDir tmp;
        const QString d = tmp.path();
        const auto f = [&](const QString &n) { return d + u'/' + n; };
        QDir(d).mkdir(u"otra"_qs);
        QString destino = f(u"f.txt"_qs);
        const bool ajeno = antes.contains(u"ajeno"_qs);
        if (ajeno && ::geteuid() != 0)
            QSKIP("another user's file can only be made by the superuser");
        if (antes.startsWith(u"fichero"_qs)) {
            escribir(destino, "viejo");
            ::chmod(QFile::encodeName(destino).constData(), mode_t(antes.section(u' ', 1).toInt(nullptr, 8)));
        } else if (antes.startsWith(u"enlace"_qs)) {
            const QString objetivo = antes.section(u' ', -1);
            if (objetivo.endsWith(u".txt"_qs)) {
                escribir(f(objetivo), "viejo");
                ::chmod(QFile::encodeName(f(objetivo)).constData(), 0600);
                if (ajeno)
                    QVERIFY(::chown(QFile::encodeName(f(objetivo)).constData(), Nadie, Nadie) == 0);
            }
            QVERIFY(QFile::link(f(objetivo), destino));
        } else if (antes == u"carpeta") {
            QDir(d).mkdir(u"f.txt"_qs);
        } else if (antes == u"fifo") {
            QVERIFY(::mkfifo(QFile::encodeName(destino).constData(), 0644) == 0);
        } else if (antes == u"sin carpeta") {
            destino = f(u"falta/f.txt"_qs);
        } else if (antes == u"restos") {
            for (const char *n : {".f.txt.kvr-Viejo1.tmp", ".f.txt.kvr-Nuevo1.tmp", ".f.txt.kvr-Otro11.tmp",
                                  ".g.txt.kvr-Ab12cD.tmp", "f.txt.Ab12cD", "f.txt.backup", "f.txt.kvr-Ab12cD"}) {
                escribir(f(QString::fromLatin1(n)), "x");
                if (!QByteArray(n).contains("Nuevo"))
                    envejecer(f(QString::fromLatin1(n)));
            }
            // Another user's leftover stays; without the superuser it is left out of the row.
            if (::geteuid() == 0)
                QVERIFY(::chown(QFile::encodeName(f(u".f.txt.kvr-Otro11.tmp"_qs)).constData(), Nadie, Nadie) == 0);
            else
                QFile::remove(f(u".f.txt.kvr-Otro11.tmp"_qs));
        }
        const auto fallo = GrabarFicheroAtomico(destino, "nuevo");
        QString visto = fallo ? QString::number(fallo->numero) + u' ' + fallo->causa : u"grabado"_qs;
        if (const QString c = contenido(d); !c.isEmpty())
            visto += u" | "_qs + c;
        visto.replace(d, u"D"_qs);
        QFETCH(QString, despues);
        if (antes == u"restos" && ::geteuid() != 0)
            despues.remove(u" | .f.txt.kvr-Otro11.tmp 644 x"_qs);
        QCOMPARE(visto, despues);
    }

    // What a read meets in the file's place: the file's bytes, or the refusal, at once (a FIFO
    // without a writer would block an ordinary open for ever).
    void leer_data()
    {
        QTest::addColumn<QString>("lugar");
        QTest::addColumn<QString>("visto");
        QTest::newRow("fichero") << u"fichero"_qs << u"hola\r\n"_qs;
        QTest::newRow("fifo") << u"fifo"_qs << u"75 es una tubería (FIFO), no un fichero"_qs;
        QTest::newRow("carpeta") << u"carpeta"_qs << u"75 es una carpeta, no un fichero"_qs;
        QTest::newRow("dispositivo") << u"/dev/zero"_qs << u"75 es un dispositivo, no un fichero"_qs;
        QTest::newRow("no existe") << u"nada"_qs << u"53 no existe"_qs;
    }
    void leer()
    {
        QFETCH(QString, lugar);
        QTemporaryDir tmp;
        QString ruta = tmp.filePath(u"f.txt"_qs);
        if (lugar == u"fichero")
            escribir(ruta, "hola\r\n");
        else if (lugar == u"fifo")
            QVERIFY(::mkfifo(QFile::encodeName(ruta).constData(), 0644) == 0);
        else if (lugar == u"carpeta")
            QDir().mkdir(ruta);
        else if (lugar.startsWith(u'/'))
            ruta = lugar;
        QByteArray datos;
        SelloFichero sello;
        const auto fallo = LeerFicheroRegular(ruta, datos, &sello);
        QTEST(fallo ? QString::number(fallo->numero) + u' ' + fallo->causa : QString::fromUtf8(datos), "visto");
        QCOMPARE(sello.existe, !fallo);
    }
};

QTEST_GUILESS_MAIN(TstFicheros)
#include "tst_ficheros.moc"
