#include "comun/ficheros.h"
#include "registro.h"

#include <kvr/copias.h>

#include <QDirIterator>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>

using namespace kvr;

namespace {

// Every file and folder below `raiz`, by relative path: a folder as "<carpeta>", a link as
// "-> target", a file by its bytes.
QMap<QString, QByteArray> arbol(const QString &raiz)
{
    QMap<QString, QByteArray> r;
    QDirIterator it(raiz, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo f(it.next());
        const QString rel = QDir(raiz).relativeFilePath(f.filePath());
        r[rel] = f.isSymLink() ? "-> " + QFile::encodeName(f.symLinkTarget())
            : f.isDir()        ? QByteArray("<carpeta>")
                               : prueba::leer(f.filePath());
    }
    return r;
}

quint32 crc32(const QByteArray &d)
{
    quint32 c = 0xFFFFFFFF;
    for (char b : d) {
        c ^= uchar(b);
        for (int k = 0; k < 8; ++k)
            c = (c >> 1) ^ (0xEDB88320 & (0 - (c & 1)));
    }
    return ~c;
}

// One entry of a hand-made archive: what a hostile archive can say that no honest tool writes.
struct Cruda {
    QByteArray nombre;
    QByteArray datos;                // uncompressed
    bool enlace = false;             // a Unix symbolic link whose target is `datos`
    bool crcMalo = false;
    qint64 tamanoDeclarado = -1;     // a size other than the real one
};

QByteArray zipCrudo(const QList<Cruda> &entradas)
{
    QByteArray zip, central;
    const auto u16 = [](QByteArray &b, quint16 v) { b.append(char(v & 0xFF)).append(char(v >> 8)); };
    const auto u32 = [&](QByteArray &b, quint32 v) { u16(b, quint16(v)); u16(b, quint16(v >> 16)); };
    for (const Cruda &e : entradas) {
        const bool deflate = e.datos.size() > 64;
        const QByteArray comprimidos = deflate ? qCompress(e.datos).mid(6).chopped(4) : e.datos;
        const quint32 crc = crc32(e.datos) ^ (e.crcMalo ? 1u : 0u);
        const auto tamano = quint32(e.tamanoDeclarado >= 0 ? e.tamanoDeclarado : e.datos.size());
        const quint32 desplazamiento = quint32(zip.size());
        const auto cabecera = [&](QByteArray &b) {
            u16(b, 20); u16(b, 0x0800); u16(b, deflate ? 8 : 0); u16(b, 0); u16(b, (46 << 9) | (1 << 5) | 1);
            u32(b, crc); u32(b, quint32(comprimidos.size())); u32(b, tamano);
            u16(b, quint16(e.nombre.size())); u16(b, 0);
        };
        u32(zip, 0x04034b50);
        cabecera(zip);
        zip += e.nombre + comprimidos;
        u32(central, 0x02014b50);
        u16(central, (3 << 8) | 20);
        cabecera(central);
        u16(central, 0); u16(central, 0); u16(central, 0);
        u32(central, (e.enlace ? 0120777u : 0100644u) << 16);
        u32(central, desplazamiento);
        central += e.nombre;
    }
    const quint32 inicio = quint32(zip.size());
    zip += central;
    u32(zip, 0x06054b50); u16(zip, 0); u16(zip, 0);
    u16(zip, quint16(entradas.size())); u16(zip, quint16(entradas.size()));
    u32(zip, quint32(central.size())); u32(zip, inicio); u16(zip, 0);
    return zip;
}

int ejecutar(const QString &carpeta, const QString &programa, const QStringList &args)
{
    QProcess p;
    p.setWorkingDirectory(carpeta);
    p.start(programa, args);
    return p.waitForFinished(120000) ? p.exitCode() : -1;
}

// While alive, no file of this process can grow beyond `bytes`: a full disk, made to order.
class LimiteFichero {
public:
    explicit LimiteFichero(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_antes);
        rlimit nuevo = m_antes;
        nuevo.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &nuevo);
    }
    ~LimiteFichero() { setrlimit(RLIMIT_FSIZE, &m_antes); }

private:
    rlimit m_antes {};
};

} // namespace

class TstCopias : public QObject {
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    QString m_origen;      // holds "datos" (the tree) and "Notas.INI"
    QMap<QString, QByteArray> m_esperado;
    QString m_deZip;

    QString ruta(const QString &r) const { return m_dir.filePath(r); }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_origen = ruta(u"origen"_qs);
        const QString d = m_origen + u"/datos"_qs;
        QVERIFY(QDir().mkpath(d + u"/Año 2026/Facturación"_qs));
        QVERIFY(QDir().mkpath(d + u"/vacía"_qs));
        QVERIFY(QDir().mkpath(d + u"/ñandú/más vacía"_qs));
        prueba::escribir(d + u"/Año 2026/Facturación/café €.txt"_qs, "Caf\xc3\xa9 con leche\r\n");
        prueba::escribir(d + u"/Año 2026/vacío.txt"_qs, QByteArray());
        prueba::escribir(d + u"/.oculto"_qs, "oculto");
        // 50 MB: 48 of text repeating within deflate's window (quick to pack), then 2 of noise.
        QByteArray bloque;
        for (int i = 0; bloque.size() < (1 << 14); ++i)
            bloque += "Apunte " + QByteArray::number(i) + ";" + QByteArray::number(i * 7919 % 100003) + ";EUR\n";
        QByteArray grande = bloque.repeated((48 << 20) / bloque.size() + 1).left(48 << 20);
        QByteArray ruido(2 << 20, Qt::Uninitialized);
        QRandomGenerator(9).fillRange(reinterpret_cast<quint32 *>(ruido.data()), ruido.size() / 4);
        grande += ruido;
        prueba::escribir(d + u"/ñandú/grande.bin"_qs, grande);
        prueba::escribir(m_origen + u"/Notas.INI"_qs, "[General]\r\nClave=1\r\n");
        m_esperado = arbol(m_origen);
        QCOMPARE(m_esperado.size(), 11);
        // Info-ZIP's archive of the tree, restored by several tests.
        m_deZip = ruta(u"de zip.zip"_qs);
        QCOMPARE(ejecutar(m_origen, u"zip"_qs, {u"-r"_qs, u"-q"_qs, m_deZip, u"datos"_qs, u"Notas.INI"_qs}), 0);
    }

    // Ours made, Info-ZIP's unzip extracts it; Info-ZIP's zip made, ours restores it.
    void idaYVuelta_data()
    {
        QTest::addColumn<bool>("nuestraCopia");
        QTest::newRow("copia nuestra, unzip") << true;
        QTest::newRow("copia de zip, restaurada aquí") << false;
    }
    // The progress reported on the way rises to 1.
    void idaYVuelta()
    {
        QFETCH(bool, nuestraCopia);
        ServiciosGrabados servicios;
        const QString zip = ruta(u"ida.zip"_qs), destino = ruta(u"vuelta"_qs);
        QDir(destino).removeRecursively();
        QList<double> avisos;
        const AvisoProgreso aviso = [&](double f) { avisos << f; };
        if (nuestraCopia) {
            QVERIFY(CrearZip({m_origen + u"/datos/"_qs, m_origen + u"/Notas.INI"_qs}, zip, aviso));
            QCOMPARE(ejecutar(m_dir.path(), u"unzip"_qs, {u"-q"_qs, zip, u"-d"_qs, destino}), 0);
        } else {
            QVERIFY(ExtraerZip(m_deZip, destino, aviso));
        }
        QVERIFY(servicios.mensajes.isEmpty());
        QVERIFY(arbol(destino) == m_esperado);
        QVERIFY(avisos.size() > 10);
        QVERIFY(std::is_sorted(avisos.begin(), avisos.end()));
        QCOMPARE(avisos.back(), 1.0);
    }

    // Each refused with a message, nothing written in the folder or outside it, no file left
    // half-written (a good file before the bad one is taken back too).
    void hostiles_data()
    {
        QTest::addColumn<QByteArray>("archivo");
        QTest::addColumn<QString>("mensaje");
        const QByteArray fuera = QFile::encodeName(ruta(u"fuera.txt"_qs));
        const Cruda bien{"bien.txt", "1"};
        QTest::newRow("ruta absoluta") << zipCrudo({bien, {fuera, "x"}}) << u"quedaría fuera"_qs;
        QTest::newRow("punto punto") << zipCrudo({bien, {"../fuera.txt", "x"}}) << u"quedaría fuera"_qs;
        QTest::newRow("punto punto escondido") << zipCrudo({{"a/b/../../../fuera.txt", "x"}}) << u"quedaría fuera"_qs;
        QTest::newRow("barra invertida") << zipCrudo({{"..\\fuera.txt", "x"}}) << u"quedaría fuera"_qs;
        QTest::newRow("unidad") << zipCrudo({{"C:/fuera.txt", "x"}}) << u"quedaría fuera"_qs;
        QTest::newRow("enlace absoluto") << zipCrudo({bien, {"enlace", "/etc", true}}) << u"apunta fuera"_qs;
        QTest::newRow("enlace relativo fuera") << zipCrudo({{"sub/enlace", "../../fuera.txt", true}}) << u"apunta fuera"_qs;
        QTest::newRow("enlace por un enlace que ya estaba") << zipCrudo({{"aqui/enlace", "../fuera.txt", true}})
            << u"apunta fuera"_qs;
        QTest::newRow("escribir a través de un enlace") << zipCrudo({{"enlace", "sub", true}, {"enlace/x.txt", "x"}})
            << u"dentro de un enlace"_qs;
        QTest::newRow("CRC") << zipCrudo({bien, {"malo.txt", QByteArray(1000, 'a'), false, true}}) << u"CRC"_qs;
        QTest::newRow("bomba que declara poco") << zipCrudo({bien, {"bomba", QByteArray(20 << 20, '\0'), false, false, 1000}})
            << u"dañada"_qs;
        QTest::newRow("tamaño mayor del declarado") << zipCrudo({{"corto", QByteArray(100, 'b'), false, false, 101}})
            << u"dañada"_qs;
        QTest::newRow("truncada") << zipCrudo({bien, {"otro.txt", QByteArray(1000, 'c')}}).chopped(30)
            << u"no es un archivo ZIP"_qs;
    }
    void hostiles()
    {
        QFETCH(QByteArray, archivo);
        QFETCH(QString, mensaje);
        QTemporaryDir dir;
        const QString zip = dir.filePath(u"hostil.zip"_qs), destino = dir.filePath(u"destino/dentro"_qs);
        prueba::escribir(zip, archivo);
        // A link already in the folder to the folder itself, which an entry can go through.
        QVERIFY(QDir().mkpath(destino) && QFile::link(u"."_qs, destino + u"/aqui"_qs));
        ServiciosGrabados servicios;
        QVERIFY(!RestaurarCopia(zip, destino));
        QCOMPARE(servicios.mensajes.size(), 1);
        QVERIFY2(servicios.mensajes[0].texto.contains(mensaje), qPrintable(servicios.mensajes[0].texto));
        QVERIFY(servicios.mensajes[0].texto.contains(u"No se ha restaurado nada."_qs));
        QCOMPARE(arbol(dir.path()).keys(),
                 (QStringList{u"destino"_qs, u"destino/dentro"_qs, u"destino/dentro/aqui"_qs, u"hostil.zip"_qs}));
        QVERIFY(!QFileInfo::exists(ruta(u"fuera.txt"_qs)));
    }

    // A disk that fills up half way: the restore takes back what it wrote (the files before the
    // big one included) and the backup leaves no archive; an older archive stays as it was.
    void discoLleno()
    {
        const QString zip = ruta(u"lleno.zip"_qs), destino = ruta(u"lleno"_qs);
        QVERIFY(QFile::copy(m_deZip, zip));
        ServiciosGrabados servicios;
        {
            LimiteFichero limite(1 << 20);
            QVERIFY(!RestaurarCopia(zip, destino, true));
            QVERIFY(!QFileInfo::exists(destino));
            const QByteArray viejo = prueba::leer(zip);
            QVERIFY(!CopiaSeguridad({m_origen + u"/datos"_qs}, zip, true));
            QVERIFY(prueba::leer(zip) == viejo);
            QVERIFY(!CopiaSeguridad({m_origen + u"/datos"_qs}, ruta(u"nueva.zip"_qs)));
        }
        QCOMPARE(servicios.mensajes.size(), 3);
        QVERIFY2(servicios.mensajes[0].texto.startsWith(u"No se puede escribir"_qs), qPrintable(servicios.mensajes[0].texto));
        QVERIFY2(servicios.mensajes[1].texto.contains(u"error de escritura"_qs), qPrintable(servicios.mensajes[1].texto));
        const QStringList quedan = QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden);
        QVERIFY2(!quedan.contains(u"nueva.zip"_qs) && quedan.filter(u"lleno.zip."_qs).isEmpty(), qPrintable(quedan.join(u' ')));
    }
};

QTEST_MAIN(TstCopias)
#include "tst_copias.moc"
