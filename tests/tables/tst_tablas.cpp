// Table files on real files in a temporary folder: what a save puts on disk byte for byte, what
// a load puts in the grid, the overwrite question and the file-name prompt through the recorder,
// and file errors that must leave the old file as it was.
#include <kvr/error.h>
#include <kvr/mivisor.h>
#include <kvr/rejilla.h>
#include <kvr/tablas.h>

#include "comun/ficheros.h"
#include "registro.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>

using namespace kvr;
using namespace prueba;

namespace {

// A one-column table grid as the editor has it: titles in row 0, elements from row 1.
void llenar(Rejilla &g, const QStringList &elementos)
{
    g.PonerFixedCols(0);
    CargarVisor(g, u"Provincia#25"_qs);
    for (int i = 0; i < elementos.size(); ++i)
        PonerCelda(g, i + 1, 0, elementos[i]);
}

QStringList filas(const Rejilla &g)
{
    QStringList r;
    for (int f = 1; f < g.Rows(); ++f)
        r.append(g.TextMatrix(f, 0));
    return r;
}

} // namespace

class TstTablas : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString ruta(const QString &nombre) const { return m_dir.filePath(nombre); }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void grabar_data()
    {
        QTest::addColumn<QStringList>("elementos");
        QTest::addColumn<QByteArray>("disco");
        QTest::newRow("huecos en 3 y 5 se cierran")
            << QStringList{u"ALAVA"_qs, u"ALBACETE"_qs, QString(), u"ALICANTE"_qs, QString(), u"ALMERIA"_qs}
            << QByteArray("ALAVA\r\nALBACETE\r\nALICANTE\r\nALMERIA\r\n");
        QTest::newRow("solo blancos fuera, blancos alrededor se quedan")
            << QStringList{u"   "_qs, u" A "_qs, u" "_qs}
            << QByteArray(" A \r\n");
        QTest::newRow("un tabulador no es un blanco") << QStringList{u"\t"_qs} << QByteArray("\t\r\n");
        QTest::newRow("acentos, eñe y euro en UTF-8")
            << QStringList{u"CÁCERES"_qs, u"A CORUÑA"_qs, u"5 €"_qs}
            << QByteArray("C\xc3\x81" "CERES\r\nA CORU\xc3\x91" "A\r\n5 \xe2\x82\xac\r\n");
        QTest::newRow("primer elemento con marca de orden: el fichero lleva la suya")
            << QStringList{QString(QChar(0xFEFF)) + u"A"_qs} << QByteArray("\xef\xbb\xbf\xef\xbb\xbf" "A\r\n");
    }
    void grabar()
    {
        QFETCH(QStringList, elementos); QFETCH(QByteArray, disco);
        ServiciosGrabados s;
        Rejilla g;
        llenar(g, elementos);
        QString fichero = ruta(u"grabar.txt"_qs);
        QFile::remove(fichero);
        FicheroTabla(u"REGRABAR"_qs, fichero, g);
        QCOMPARE(leer(fichero), disco);
        QVERIFY(s.mensajes.isEmpty());
        // The title row is never written and the grid is left as it was.
        QCOMPARE(g.TextMatrix(0, 0), u"Provincia"_qs);
        QCOMPARE(filas(g).mid(0, elementos.size()), elementos);
    }

    void cargar_data()
    {
        QTest::addColumn<QByteArray>("disco");
        QTest::addColumn<QStringList>("antes");
        QTest::addColumn<QStringList>("despues");
        const QStringList cinco{u"a"_qs, u"b"_qs, u"c"_qs, u"d"_qs, u"e"_qs};
        QTest::newRow("blancos tal cual, línea vacía en medio")
            << QByteArray(" A \r\n\r\nB  \r\n") << QStringList{} << QStringList{u" A "_qs, QString(), u"B  "_qs};
        QTest::newRow("Windows-1252") << QByteArray("C\xe1" "ceres\r\nA Coru\xf1" "a\r\n\x80 5\r\n")
                                      << QStringList{} << QStringList{u"Cáceres"_qs, u"A Coruña"_qs, u"€ 5"_qs};
        QTest::newRow("más líneas que filas: la rejilla crece")
            << QByteArray("1\r\n2\r\n3\r\n4\r\n") << QStringList{u"x"_qs} << QStringList{u"1"_qs, u"2"_qs, u"3"_qs, u"4"_qs};
        QTest::newRow("menos líneas: el resto en blanco, las filas se quedan")
            << QByteArray("NUEVO\r\n") << cinco << QStringList{u"NUEVO"_qs, QString(), QString(), QString(), QString()};
        QTest::newRow("marca de orden del fichero fuera, la del texto se queda")
            << QByteArray("\xef\xbb\xbf\xef\xbb\xbf" "A\r\n\xef\xbb\xbf" "B\r\n") << QStringList{}
            << QStringList{QString(QChar(0xFEFF)) + u"A"_qs, QString(QChar(0xFEFF)) + u"B"_qs};
        QTest::newRow("fichero que no existe") << QByteArray("<ninguno>") << cinco << QStringList(5);
    }
    void cargar()
    {
        QFETCH(QByteArray, disco); QFETCH(QStringList, antes); QFETCH(QStringList, despues);
        ServiciosGrabados s;
        Rejilla g;
        llenar(g, antes);
        QString fichero = ruta(u"cargar.txt"_qs);
        QFile::remove(fichero);
        if (disco != "<ninguno>")
            escribir(fichero, disco);
        FicheroTabla(u"CARGAR"_qs, fichero, g);
        QCOMPARE(filas(g), despues);
        QCOMPARE(QFile::exists(fichero), disco != "<ninguno>");
        QCOMPARE(g.TextMatrix(0, 0), u"Provincia"_qs);
        QVERIFY(s.mensajes.isEmpty());
    }

    // A grid whose column 0 is fixed still gets the old elements cleared.
    void cargarConColumnaFija()
    {
        Rejilla g; // one fixed column, as a new grid
        CargarVisor(g, u"Provincia#25"_qs);
        QCOMPARE(g.FixedCols(), 1);
        for (int f = 1; f <= 3; ++f)
            PonerCelda(g, f, 0, u"viejo"_qs);
        QString fichero = ruta(u"fija.txt"_qs);
        escribir(fichero, "nuevo\r\n");
        FicheroTabla(u"CARGAR"_qs, fichero, g);
        QCOMPARE(filas(g), (QStringList{u"nuevo"_qs, QString(), QString()}));
    }

    void sobreescribir_data()
    {
        QTest::addColumn<QString>("operacion");
        QTest::addColumn<bool>("existe");
        QTest::addColumn<int>("respuesta");
        QTest::addColumn<int>("preguntas");
        QTest::addColumn<bool>("escrito");
        QTest::newRow("GRABAR existente, Aceptar") << u"GRABAR"_qs << true << int(RespAceptar) << 1 << true;
        QTest::newRow("GRABAR existente, Cancelar") << u"GRABAR"_qs << true << int(RespCancelar) << 1 << false;
        QTest::newRow("GRABAR nuevo no pregunta") << u"GRABAR"_qs << false << int(RespCancelar) << 0 << true;
        QTest::newRow("REGRABAR existente no pregunta") << u"REGRABAR"_qs << true << int(RespCancelar) << 0 << true;
        QTest::newRow("operación desconocida") << u"BORRAR"_qs << true << int(RespAceptar) << 0 << false;
    }
    void sobreescribir()
    {
        QFETCH(QString, operacion); QFETCH(bool, existe); QFETCH(int, respuesta);
        QFETCH(int, preguntas); QFETCH(bool, escrito);
        ServiciosGrabados s;
        s.respuesta = respuesta;
        const QString fichero = ruta(u"sobre.txt"_qs);
        QFile::remove(fichero);
        const QByteArray viejo("VIEJO\r\nCON\xe1" "CENTO\r\n"); // an older program's file
        if (existe)
            escribir(fichero, viejo);
        Rejilla g;
        llenar(g, {u"NUEVO"_qs});
        QString f = fichero;
        FicheroTabla(operacion, f, g);
        QCOMPARE(s.mensajes.size(), preguntas);
        if (preguntas) {
            QCOMPARE(s.mensajes[0].texto, u"Fichero "_qs + fichero + u" existe en disco. Se Sobreescribirá."_qs);
            QCOMPARE(s.mensajes[0].botones, 49);
            QCOMPARE(s.mensajes[0].titulo, QString());
        }
        if (escrito)
            QCOMPARE(leer(fichero), QByteArray("NUEVO\r\n"));
        else if (existe)
            QCOMPARE(leer(fichero), viejo);
        else
            QVERIFY(!QFile::exists(fichero));
        QCOMPARE(f, fichero);
        QVERIFY(s.entradas.isEmpty());
    }

    void errores_data()
    {
        QTest::addColumn<QString>("operacion");
        QTest::addColumn<QString>("nombre");
        QTest::addColumn<int>("numero");
        QTest::newRow("cargar una carpeta") << u"CARGAR"_qs << u"carpeta"_qs << 75;
        QTest::newRow("grabar sobre una carpeta") << u"REGRABAR"_qs << u"carpeta"_qs << 75;
        QTest::newRow("grabar en carpeta que no existe") << u"REGRABAR"_qs << u"falta/tabla.txt"_qs << 76;
    }
    void errores()
    {
        QFETCH(QString, operacion); QFETCH(QString, nombre); QFETCH(int, numero);
        QDir(m_dir.path()).mkpath(u"carpeta"_qs);
        escribir(ruta(u"viejo.txt"_qs), "VIEJO\r\n");
        ServiciosGrabados s;
        Rejilla g;
        llenar(g, {u"NUEVO"_qs});
        QString fichero = ruta(nombre);
        int visto = 0;
        QString descripcion;
        try {
            FicheroTabla(operacion, fichero, g);
        } catch (const ErrorEjecucion &e) {
            visto = e.numero();
            descripcion = e.descripcion();
        }
        QCOMPARE(visto, numero);
        QVERIFY2(descripcion.contains(fichero), qPrintable(descripcion));
        QCOMPARE(leer(ruta(u"viejo.txt"_qs)), QByteArray("VIEJO\r\n"));
        QVERIFY(QFileInfo(ruta(u"carpeta"_qs)).isDir());
        QVERIFY(!QFile::exists(ruta(u"falta"_qs)));
    }

    // A write that fails half way (the process may not write files beyond 64 bytes) raises the
    // error and leaves the old file whole, with no temporary file left beside it.
    void escrituraInterrumpida()
    {
        const QString carpeta = ruta(u"corta"_qs);
        QDir(m_dir.path()).mkpath(u"corta"_qs);
        const QString fichero = carpeta + u"/tabla.txt"_qs;
        escribir(fichero, "ANTES\r\n");
        Rejilla g;
        QStringList muchos;
        for (int i = 0; i < 100; ++i)
            muchos.append(u"ELEMENTO %1"_qs.arg(i));
        llenar(g, muchos);

        std::signal(SIGXFSZ, SIG_IGN);
        rlimit antes{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &antes), 0);
        rlimit corto = antes;
        corto.rlim_cur = 64;
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &corto), 0);
        int visto = 0;
        try {
            QString f = fichero;
            FicheroTabla(u"REGRABAR"_qs, f, g);
        } catch (const ErrorEjecucion &e) {
            visto = e.numero();
        }
        setrlimit(RLIMIT_FSIZE, &antes);
        QCOMPARE(visto, 57);
        QCOMPARE(leer(fichero), QByteArray("ANTES\r\n"));
        QCOMPARE(QDir(carpeta).entryList(QDir::Files), QStringList{u"tabla.txt"_qs});
    }
};

QTEST_GUILESS_MAIN(TstTablas)
#include "tst_tablas.moc"
