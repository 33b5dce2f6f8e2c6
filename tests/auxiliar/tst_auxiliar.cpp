// The auxiliary modules that work with windows: ZIP backups (with their progress window), keys
// delivered to widgets and the tray icon. Their logic is in tst_auxiliar_logica.cpp.
#include "comun/pruebas.h"
#include "registro.h"

#include <kvr/bandeja.h>
#include <kvr/copias.h>
#include <kvr/teclasnombre.h>

#include <QLineEdit>
#include <QMenu>
#include <QSystemTrayIcon>

#include <zlib.h>

using namespace kvr;

namespace {

// One entry of a hand-made archive: what a hostile archive can say that no honest tool writes.
struct Cruda {
    QByteArray nombre;
    QByteArray datos;                // uncompressed
    bool enlace = false;             // a Unix symbolic link whose target is `datos`
    qint64 tamanoDeclarado = -1;     // a size other than the real one
};

QByteArray zipCrudo(const QList<Cruda> &entradas)
{
    QByteArray zip, central;
    QDataStream z(&zip, QIODevice::WriteOnly), c(&central, QIODevice::WriteOnly);
    z.setByteOrder(QDataStream::LittleEndian);
    c.setByteOrder(QDataStream::LittleEndian);
    for (const Cruda &e : entradas) {
        const bool deflate = e.datos.size() > 64;
        const QByteArray comprimidos = deflate ? qCompress(e.datos).mid(6).chopped(4) : e.datos;
        const auto crc = crc32(0, reinterpret_cast<const Bytef *>(e.datos.data()), uInt(e.datos.size()));
        const auto tamano = quint32(e.tamanoDeclarado >= 0 ? e.tamanoDeclarado : e.datos.size());
        const auto desplazamiento = quint32(zip.size());
        // Version 2.0, UTF-8 name, the method, a fixed date, the CRC, both sizes, the name's length.
        const auto cabecera = [&](QDataStream &s) {
            s << quint16(20) << quint16(0x0800) << quint16(deflate ? 8 : 0) << quint32(0x5C210000)
              << quint32(crc) << quint32(comprimidos.size()) << tamano << quint16(e.nombre.size()) << quint16(0);
        };
        z << quint32(0x04034b50);
        cabecera(z);
        z.writeRawData(e.nombre.constData(), int(e.nombre.size()));
        z.writeRawData(comprimidos.constData(), int(comprimidos.size()));
        c << quint32(0x02014b50) << quint16((3 << 8) | 20); // made on Unix
        cabecera(c);
        c << quint16(0) << quint16(0) << quint16(0) << quint32((e.enlace ? 0120777u : 0100644u) << 16)
          << desplazamiento;
        c.writeRawData(e.nombre.constData(), int(e.nombre.size()));
    }
    const auto inicio = quint32(zip.size());
    z.writeRawData(central.constData(), int(central.size()));
    z << quint32(0x06054b50) << quint32(0) << quint16(entradas.size()) << quint16(entradas.size())
      << quint32(central.size()) << inicio << quint16(0);
    return zip;
}

// Every entry's permission bits below a folder, sorted, as find(1) lists them.
QByteArrayList modos(const QString &carpeta)
{
    QByteArrayList r = prueba::ejecutar(u"find"_qs, {carpeta, u"-mindepth"_qs, u"1"_qs, u"-printf"_qs, u"%P %m\\n"_qs})
                           .split('\n');
    std::sort(r.begin(), r.end());
    return r;
}

} // namespace

class TstAuxiliar : public QObject {
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    const QString m_origen = m_dir.filePath(u"origen"_qs); // holds "datos" (the tree) and "Notas.INI"
    const QString m_deZip = m_dir.filePath(u"de zip.zip"_qs); // Info-ZIP's archive of the tree

    QString ruta(const QString &r) const { return m_dir.filePath(r); }

private Q_SLOTS:
    void initTestCase()
    {
        const QString d = m_origen + u"/datos"_qs;
        QVERIFY(QDir().mkpath(d + u"/Año 2026/Facturación"_qs));
        QVERIFY(QDir().mkpath(d + u"/ñandú/más vacía"_qs));
        prueba::escribir(d + u"/Año 2026/Facturación/café €.txt"_qs, "Caf\xc3\xa9 con leche\r\n");
        prueba::escribir(d + u"/Año 2026/vacío.txt"_qs, QByteArray());
        prueba::escribir(d + u"/.oculto"_qs, "oculto");
        // Read and written in many pieces, and more than the full disk below lets through packed.
        QByteArray ruido(2 << 20, Qt::Uninitialized);
        QRandomGenerator(9).fillRange(reinterpret_cast<quint32 *>(ruido.data()), ruido.size() / 4);
        prueba::escribir(d + u"/ñandú/grande.bin"_qs, QByteArray("Apunte;EUR\n").repeated(1 << 17) + ruido);
        prueba::escribir(m_origen + u"/Notas.INI"_qs, "[General]\r\nClave=1\r\n");
        // Private and executable files keep their permission bits both ways.
        QFile::setPermissions(m_origen + u"/Notas.INI"_qs, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        QFile::setPermissions(d + u"/.oculto"_qs, QFileDevice::Permissions(0x7755));
        QVERIFY(QDir::setCurrent(m_origen));
        QCOMPARE(QProcess::execute(u"zip"_qs, {u"-r"_qs, u"-q"_qs, m_deZip, u"datos"_qs, u"Notas.INI"_qs}), 0);
    }

    // Ours made, Info-ZIP's unzip extracts it; Info-ZIP's zip made, ours restores it. The
    // progress reported on the way rises to 1.
    void idaYVuelta_data()
    {
        QTest::addColumn<bool>("nuestraCopia");
        QTest::newRow("copia nuestra, unzip") << true;
        QTest::newRow("copia de zip, restaurada aquí") << false;
    }
    void idaYVuelta()
    {
        QFETCH(bool, nuestraCopia);
        ServiciosGrabados servicios;
        const QString zip = ruta(u"ida.zip"_qs), destino = ruta(QString::fromUtf8(QTest::currentDataTag()));
        QList<double> avisos;
        const AvisoProgreso aviso = [&](double f) { avisos << f; };
        if (nuestraCopia) {
            QVERIFY(CrearZip({m_origen + u"/datos/"_qs, m_origen + u"/Notas.INI"_qs}, zip, aviso));
            QCOMPARE(QProcess::execute(u"unzip"_qs, {u"-q"_qs, zip, u"-d"_qs, destino}), 0);
        } else {
            QVERIFY(ExtraerZip(m_deZip, destino, aviso));
        }
        QCOMPARE(QProcess::execute(u"diff"_qs, {u"-r"_qs, u"--no-dereference"_qs, m_origen, destino}), 0);
        QCOMPARE(modos(destino), modos(m_origen));
        QVERIFY(avisos.size() > 5 && std::is_sorted(avisos.begin(), avisos.end()));
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
        const QString quedaFuera = u"quedaría fuera"_qs, apuntaFuera = u"apunta fuera"_qs, danada = u"dañada"_qs;
        QTest::newRow("ruta absoluta") << zipCrudo({bien, {fuera, "x"}}) << quedaFuera;
        // With Windows' separators, and behind a folder.
        QTest::newRow("punto punto") << zipCrudo({bien, {"a\\..\\..\\fuera.txt", "x"}}) << quedaFuera;
        QTest::newRow("unidad") << zipCrudo({{"C:/fuera.txt", "x"}}) << quedaFuera;
        QTest::newRow("enlace absoluto") << zipCrudo({bien, {"enlace", "/etc", true}}) << apuntaFuera;
        QTest::newRow("enlace relativo fuera") << zipCrudo({{"sub/enlace", "../../fuera.txt", true}}) << apuntaFuera;
        // Through the link to the folder itself that the folder already holds.
        QTest::newRow("enlace por otro ya puesto") << zipCrudo({{"aqui/enlace", "../fuera.txt", true}}) << apuntaFuera;
        QTest::newRow("escribir a través de un enlace") << zipCrudo({{"enlace", "sub", true}, {"enlace/x.txt", "x"}})
                                                        << u"dentro de un enlace"_qs;
        QTest::newRow("CRC") << zipCrudo({bien, {"malo.txt", "datos"}}).replace("datos", "datoS") << u"CRC"_qs;
        // A bomb: 1 MB that says it is 1000 bytes.
        QTest::newRow("declara de menos") << zipCrudo({bien, {"bomba", QByteArray(1 << 20, 0), false, 1000}}) << danada;
        QTest::newRow("declara de más") << zipCrudo({{"corto", QByteArray(100, 'b'), false, 101}}) << danada;
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
        const QString texto = servicios.mensajes[0].texto;
        QVERIFY2(texto.contains(mensaje) && texto.contains(u"No se ha restaurado nada."_qs), qPrintable(texto));
        const auto lista = [](const QString &carpeta) {
            return QDir(carpeta).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
        };
        QCOMPARE(lista(dir.path()) + lista(destino + u"/.."_qs) + lista(destino),
                 (QStringList{u"destino"_qs, u"hostil.zip"_qs, u"dentro"_qs, u"aqui"_qs}));
        QVERIFY(!QFileInfo::exists(ruta(u"fuera.txt"_qs)));
    }

    // A disk that fills up half way: the restore takes back what it wrote (the files before the
    // big one included) and the backup leaves no archive; an older archive stays as it was.
    void discoLleno()
    {
        const QString destino = ruta(u"lleno"_qs);
        const QByteArray viejo = prueba::leer(m_deZip);
        ServiciosGrabados servicios;
        auto lleno = std::make_unique<prueba::DiscoLleno>(1 << 20);
        const bool restaurada = RestaurarCopia(m_deZip, destino, true);
        const bool sobreLaVieja = CopiaSeguridad({m_origen + u"/datos"_qs}, m_deZip, true);
        const bool nueva = CopiaSeguridad({m_origen + u"/datos"_qs}, ruta(u"nueva.zip"_qs));
        lleno.reset();
        QVERIFY(!restaurada && !sobreLaVieja && !nueva);
        QVERIFY(prueba::leer(m_deZip) == viejo);
        QCOMPARE(servicios.mensajes.size(), 3);
        const QString textos = servicios.mensajes[0].texto + u'|' + servicios.mensajes[1].texto;
        QVERIFY2(textos.startsWith(u"No se puede escribir"_qs) && textos.contains(u"error de escritura"_qs),
                 qPrintable(textos));
        // No folder restored, no new archive, no temporary file beside the old one.
        const QStringList quedan = QDir(m_dir.path()).entryList({u"lleno"_qs, u"nueva.zip"_qs, u"*de zip.zip?*"_qs},
                                                                QDir::AllEntries | QDir::Hidden);
        QVERIFY2(quedan.isEmpty(), qPrintable(quedan.join(u' ')));
    }

    // Keys arrive once the caller is back in the event loop and follow the focus as it moves;
    // with a target, they go there whatever has the focus. A syntax error sends nothing.
    void enviar()
    {
        QWidget ventana;
        QLineEdit uno(&ventana), dos(&ventana);
        QVERIFY(prueba::mostrarActiva(&ventana));
        uno.setFocus();
        EnviarTeclas(u"Año{TAB}dos+(x)"_qs);
        QCOMPARE(uno.text(), QString());
        QCoreApplication::processEvents();
        QCOMPARE(uno.text() + u'|' + dos.text(), u"Año|dosX"_qs);
        EnviarTeclas(u"{BS}{HOME}z"_qs, &uno);
        QVERIFY_THROWS_EXCEPTION(ErrorEjecucion, EnviarTeclas(u"ab{NADA}"_qs));
        QCoreApplication::processEvents();
        QCOMPARE(uno.text() + u'|' + dos.text(), u"zAñ|dosX"_qs);
    }

    // Offscreen there is no notification area: the call says so and puts up nothing. The menu's
    // entries open their windows; the last one ends the application.
    void bandeja()
    {
        QVERIFY(!IconoBandeja(u"Contabilidad"_qs));
        QVERIFY(qApp->findChildren<QSystemTrayIcon *>().isEmpty());
        std::unique_ptr<QMenu> m(MenuBandeja());
        QStringList hechos;
        for (QAction *a : m->actions().first(2)) {
            a->trigger();
            for (QWidget *w : QApplication::topLevelWidgets())
                if (w->isVisible()) {
                    hechos << a->text() + u'>' + w->objectName();
                    w->close();
                }
        }
        QCOMPARE(hechos, (QStringList{u"Calculadora>MiCalc"_qs, u"Teléfonos>Telefonos"_qs}));
        QTimer::singleShot(0, m->actions().last(), &QAction::trigger);
        QTimer::singleShot(5000, qApp, [] { QCoreApplication::exit(1); }); // a failure, not a hang
        QCOMPARE(QCoreApplication::exec(), 0);
    }
};

QTEST_MAIN(TstAuxiliar)
#include "tst_auxiliar.moc"
