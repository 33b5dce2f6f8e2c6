#include "comun/ficheros.h"

#include <kvr/error.h>
#include <kvr/ini.h>

#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;

namespace {

// A file as an older program leaves it: Windows-1252, CR LF, comments, odd spacing, a key twice,
// a section twice under another case, a line with no "=", and no line end at the end.
const QByteArray kViejo =
    "; Notas de la aplicaci\xf3n\r\n"
    "[General]\r\n"
    "Usuario = Pepe P\xe9rez \r\n"
    "  Ruta=C:\\DATOS\r\n"
    "usuario=segundo\r\n"
    "Vac\xed" "a=\r\n"
    "Comillas = \"  hola  \"\r\n"
    "\r\n"
    "[general]\r\n"
    "Usuario=otra secci\xf3n\r\n"
    "[A\xf1o 2026]\r\n"
    "Importe=1.234,56 \x80\r\n"
    ";Clave=comentario\r\n"
    "SinIgual\r\n"
    "\xdaltima=s\xed";

QByteArray cambiado(QByteArray b, const QByteArray &antes, const QByteArray &despues)
{
    return b.replace(antes, despues);
}

} // namespace

class TstIni : public QObject {
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    QString fichero() const { return m_dir.filePath(u"prueba.ini"_qs); }

private Q_SLOTS:
    void leer_data()
    {
        QTest::addColumn<QString>("seccion");
        QTest::addColumn<QString>("clave");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("blancos y mayúsculas") << u"general"_qs << u"USUARIO"_qs << u"Pepe Pérez"_qs;
        QTest::newRow("la primera sección gana") << u"General"_qs << u"usuario"_qs << u"Pepe Pérez"_qs;
        QTest::newRow("sangría") << u"GENERAL"_qs << u"ruta"_qs << u"C:\\DATOS"_qs;
        QTest::newRow("vacía no es la omisión") << u"General"_qs << u"vacía"_qs << QString();
        QTest::newRow("comillas") << u"General"_qs << u"Comillas"_qs << u"  hola  "_qs;
        QTest::newRow("sección con eñe") << u"AÑO 2026"_qs << u"importe"_qs << u"1.234,56 €"_qs;
        QTest::newRow("última línea sin fin") << u"año 2026"_qs << u"ÚLTIMA"_qs << u"sí"_qs;
        QTest::newRow("comentario no es clave") << u"Año 2026"_qs << u";Clave"_qs << u"omisión"_qs;
        QTest::newRow("línea sin igual") << u"Año 2026"_qs << u"SinIgual"_qs << u"omisión"_qs;
        QTest::newRow("clave de otra sección") << u"Año 2026"_qs << u"Usuario"_qs << u"omisión"_qs;
        QTest::newRow("sin sección") << u"Falta"_qs << u"Usuario"_qs << u"omisión"_qs;
    }
    void leer()
    {
        QFETCH(QString, seccion);
        QFETCH(QString, clave);
        QFETCH(QString, esperado);
        prueba::escribir(fichero(), kViejo);
        QCOMPARE(LeerIni(fichero(), seccion, clave, u"omisión"_qs), esperado);
    }

    void leerUtf8()
    {
        prueba::escribir(fichero(), "\xEF\xBB\xBF[Se\xc3\xb1or]\nNombre=Mu\xc3\xb1oz \xe2\x82\xac\n");
        QCOMPARE(LeerIni(fichero(), u"SEÑOR"_qs, u"nombre"_qs), u"Muñoz €"_qs);
        QCOMPARE(LeerIni(m_dir.filePath(u"no existe.ini"_qs), u"a"_qs, u"b"_qs, u"x"_qs), u"x"_qs);
    }

    // Each change against the bytes it must leave: only its own line differs.
    void cambiar_data()
    {
        QTest::addColumn<QByteArray>("antes");
        QTest::addColumn<std::function<void(const QString &)>>("cambio");
        QTest::addColumn<QByteArray>("despues");
        using F = std::function<void(const QString &)>;
        QTest::newRow("valor de una clave") << kViejo
            << F([](const QString &f) { GrabarIni(f, u"general"_qs, u"USUARIO"_qs, u"Ana Núñez"_qs); })
            << cambiado(kViejo, "Usuario = Pepe P\xe9rez \r\n", "Usuario = Ana N\xfa\xf1" "ez\r\n");
        QTest::newRow("clave nueva tras la última de su sección") << kViejo
            << F([](const QString &f) { GrabarIni(f, u"General"_qs, u"Nueva"_qs, u"1"_qs); })
            << cambiado(kViejo, "hola  \"\r\n", "hola  \"\r\nNueva=1\r\n");
        QTest::newRow("clave nueva tras una última línea sin fin") << kViejo
            << F([](const QString &f) { GrabarIni(f, u"año 2026"_qs, u"Otra"_qs, u"x"_qs); })
            << kViejo + "\r\nOtra=x\r\n";
        QTest::newRow("sección nueva") << kViejo
            << F([](const QString &f) { GrabarIni(f, u"Nueva"_qs, u"k"_qs, u"v"_qs); })
            << kViejo + "\r\n\r\n[Nueva]\r\nk=v\r\n";
        QTest::newRow("carácter que Windows-1252 no tiene") << kViejo
            << F([](const QString &f) { GrabarIni(f, u"General"_qs, u"Ruta"_qs, u"Łódź"_qs); })
            << cambiado(kViejo, "Ruta=C:\\DATOS", "Ruta=?\xf3" "d?");
        QTest::newRow("borrar clave") << kViejo
            << F([](const QString &f) { BorrarIni(f, u"GENERAL"_qs, u"ruta"_qs); })
            << cambiado(kViejo, "  Ruta=C:\\DATOS\r\n", "");
        QTest::newRow("borrar clave que falta") << kViejo
            << F([](const QString &f) { BorrarIni(f, u"General"_qs, u"Falta"_qs); }) << kViejo;
        QTest::newRow("borrar sección y su línea en blanco") << kViejo
            << F([](const QString &f) { BorrarIni(f, u"general"_qs); })
            << kViejo.mid(kViejo.indexOf("[general]")).prepend("; Notas de la aplicaci\xf3n\r\n");
        QTest::newRow("borrar la última sección") << kViejo
            << F([](const QString &f) { BorrarIni(f, u"Año 2026"_qs); })
            << kViejo.left(kViejo.indexOf("[A\xf1o"));
        QTest::newRow("fichero nuevo en Windows-1252") << QByteArray()
            << F([](const QString &f) { GrabarIni(f, u"Notas"_qs, u"Día"_qs, u"café"_qs); })
            << QByteArray("[Notas]\r\nD\xed" "a=caf\xe9\r\n");
        QTest::newRow("fichero nuevo en UTF-8 si hace falta") << QByteArray()
            << F([](const QString &f) { GrabarIni(f, u"Notas"_qs, u"k"_qs, u"Łódź"_qs); })
            << QByteArray("[Notas]\r\nk=\xc5\x81\xc3\xb3" "d\xc5\xba\r\n");
        QTest::newRow("UTF-8 sigue en UTF-8 y LF") << QByteArray("[S]\nk=a\xc3\xb1o\n")
            << F([](const QString &f) { GrabarIni(f, u"S"_qs, u"j"_qs, u"é"_qs); })
            << QByteArray("[S]\nk=a\xc3\xb1o\nj=\xc3\xa9\n");
    }
    void cambiar()
    {
        QFETCH(QByteArray, antes);
        QFETCH(std::function<void(const QString &)>, cambio);
        QFETCH(QByteArray, despues);
        QFile::remove(fichero());
        if (!antes.isEmpty())
            prueba::escribir(fichero(), antes);
        cambio(fichero());
        QCOMPARE(prueba::leer(fichero()), despues);
    }

    // The notes file follows the phone book's "TLF" folder, written with or without its "/".
    void ficheroNotas()
    {
        for (const QString &tlf : {m_dir.path() + u'/', m_dir.path()}) {
            qputenv("TLF", QFile::encodeName(tlf));
            QCOMPARE(FicheroNotas(), m_dir.path() + u"/Notas.INI"_qs);
        }
        qunsetenv("TLF");
    }

    void errores_data()
    {
        QTest::addColumn<QString>("seccion");
        QTest::addColumn<QString>("clave");
        QTest::addColumn<QString>("valor");
        QTest::addColumn<bool>("carpeta");
        QTest::addColumn<int>("numero");
        QTest::newRow("sección con corchete") << u"a]b"_qs << u"k"_qs << u"v"_qs << false << 5;
        QTest::newRow("clave con igual") << u"s"_qs << u"k=1"_qs << u"v"_qs << false << 5;
        QTest::newRow("valor con salto") << u"s"_qs << u"k"_qs << u"v\r\nw=1"_qs << false << 5;
        QTest::newRow("clave que sería comentario") << u"s"_qs << u";k"_qs << u"v"_qs << false << 5;
        QTest::newRow("nombre que Windows-1252 no tiene") << u"Łódź"_qs << u"k"_qs << u"v"_qs << false << 5;
        QTest::newRow("el fichero es una carpeta") << u"s"_qs << u"k"_qs << u"v"_qs << true << 75;
    }
    void errores()
    {
        QFETCH(QString, seccion);
        QFETCH(QString, clave);
        QFETCH(QString, valor);
        QFETCH(bool, carpeta);
        QFETCH(int, numero);
        const QString f = carpeta ? m_dir.path() : fichero();
        prueba::escribir(fichero(), kViejo);
        try {
            GrabarIni(f, seccion, clave, valor);
            QFAIL("no error");
        } catch (const ErrorEjecucion &e) {
            QCOMPARE(e.numero(), numero);
        }
        QCOMPARE(prueba::leer(fichero()), kViejo);
    }
};

QTEST_GUILESS_MAIN(TstIni)
#include "tst_ini.moc"
