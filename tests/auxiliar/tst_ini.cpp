#include "comun/ficheros.h"

#include <kvr/error.h>
#include <kvr/ini.h>

#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;

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

class TstIni : public QObject {
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    QString fichero() const { return m_dir.filePath(u"prueba.ini"_qs); }

private Q_SLOTS:
    void leer_data()
    {
        QTest::addColumn<QString>("seccionYClave");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("blancos y mayúsculas") << u"general|USUARIO"_qs << u"Pepe Pérez"_qs;
        QTest::newRow("vacía no es la omisión") << u"General|vacía"_qs << QString();
        QTest::newRow("comillas") << u"General|Comillas"_qs << u"  hola  "_qs;
        QTest::newRow("sección con eñe") << u"AÑO 2026|importe"_qs << u"1.234,56 €"_qs;
        QTest::newRow("última línea sin fin") << u"año 2026|ÚLTIMA"_qs << u"sí"_qs;
        QTest::newRow("comentario no es clave") << u"Año 2026|;Clave"_qs << u"omisión"_qs;
        QTest::newRow("línea sin igual") << u"Año 2026|SinIgual"_qs << u"omisión"_qs;
        QTest::newRow("clave de otra sección") << u"Año 2026|Usuario"_qs << u"omisión"_qs;
        QTest::newRow("sin sección") << u"Falta|Usuario"_qs << u"omisión"_qs;
    }
    void leer()
    {
        QFETCH(QString, seccionYClave);
        QFETCH(QString, esperado);
        prueba::escribir(fichero(), kViejo);
        const QStringList sc = seccionYClave.split(u'|');
        QCOMPARE(LeerIni(fichero(), sc[0], sc[1], u"omisión"_qs), esperado);
    }

    void leerUtf8()
    {
        prueba::escribir(fichero(), "\xEF\xBB\xBF[Se\xc3\xb1or]\nNombre=Mu\xc3\xb1oz \xe2\x82\xac\n");
        QCOMPARE(LeerIni(fichero(), u"SEÑOR"_qs, u"nombre"_qs), u"Muñoz €"_qs);
        QCOMPARE(LeerIni(m_dir.filePath(u"no existe.ini"_qs), u"a"_qs, u"b"_qs, u"x"_qs), u"x"_qs);
    }

    // Each write or delete against the bytes it must leave: only its own lines differ. The order
    // is "section|key|value" to write, "section|key" to delete a key, "section" to delete it all;
    // a refused one (error) leaves the file as it was.
    void cambiar_data()
    {
        QTest::addColumn<QByteArray>("antes");
        QTest::addColumn<QString>("orden");
        QTest::addColumn<QByteArray>("despues");
        QTest::addColumn<int>("error");
        const QByteArray &V = kViejo;
        QTest::newRow("valor de una clave") << V << u"general|USUARIO|Ana Núñez"_qs
            << QByteArray(V).replace("Usuario = Pepe P\xe9rez \r\n", "Usuario = Ana N\xfa\xf1" "ez\r\n") << 0;
        QTest::newRow("clave nueva tras la última de su sección") << V << u"General|Nueva|1"_qs
            << QByteArray(V).replace("hola  \"\r\n", "hola  \"\r\nNueva=1\r\n") << 0;
        // The last line has no line end: it gets one.
        QTest::newRow("sección nueva") << V << u"Nueva|k|v"_qs << V + "\r\n\r\n[Nueva]\r\nk=v\r\n" << 0;
        QTest::newRow("carácter que Windows-1252 no tiene") << V << u"General|Ruta|Łódź"_qs
            << QByteArray(V).replace("Ruta=C:\\DATOS", "Ruta=?\xf3" "d?") << 0;
        QTest::newRow("borrar clave") << V << u"GENERAL|ruta"_qs
            << QByteArray(V).replace("  Ruta=C:\\DATOS\r\n", "") << 0;
        QTest::newRow("borrar clave que falta") << V << u"General|Falta"_qs << V << 0;
        QTest::newRow("borrar sección y su línea en blanco") << V << u"general"_qs
            << V.mid(V.indexOf("[general]")).prepend("; Notas de la aplicaci\xf3n\r\n") << 0;
        QTest::newRow("borrar la última sección") << V << u"Año 2026"_qs << V.left(V.indexOf("[A\xf1o")) << 0;
        QTest::newRow("fichero nuevo en Windows-1252") << QByteArray() << u"Notas|Día|café"_qs
            << QByteArray("[Notas]\r\nD\xed" "a=caf\xe9\r\n") << 0;
        QTest::newRow("fichero nuevo en UTF-8 si hace falta") << QByteArray() << u"Notas|k|Łódź"_qs
            << QByteArray("[Notas]\r\nk=\xc5\x81\xc3\xb3" "d\xc5\xba\r\n") << 0;
        QTest::newRow("UTF-8 sigue en UTF-8 y LF") << QByteArray("[S]\nk=a\xc3\xb1o\n") << u"S|j|é"_qs
            << QByteArray("[S]\nk=a\xc3\xb1o\nj=\xc3\xa9\n") << 0;
        // Found by the fuzzer: a mark at the start of a key is part of its name, not dropped.
        QTest::newRow("marca al principio de clave") << QByteArray("[S]\r\n\xEF\xBB\xBFk=1\r\n") << u"S|\uFEFFk|2"_qs
            << QByteArray("[S]\r\n\xEF\xBB\xBFk=2\r\n") << 0;
        QTest::newRow("sección con corchete") << V << u"a]b|k|v"_qs << V << 5;
        QTest::newRow("clave con igual") << V << u"s|k=1|v"_qs << V << 5;
        QTest::newRow("valor con salto") << V << u"s|k|v\r\nw=1"_qs << V << 5;
        QTest::newRow("clave que sería comentario") << V << u"s|;k|v"_qs << V << 5;
        QTest::newRow("nombre que Windows-1252 no tiene") << V << u"Łódź|k|v"_qs << V << 5;
        QTest::newRow("el fichero es una carpeta") << V << u"s|k|v"_qs << V << 75;
    }
    void cambiar()
    {
        QFETCH(QByteArray, antes);
        QFETCH(QString, orden);
        QFETCH(QByteArray, despues);
        QFETCH(int, error);
        QFile::remove(fichero());
        if (!antes.isEmpty())
            prueba::escribir(fichero(), antes);
        const QString f = error == 75 ? m_dir.path() : fichero(); // 75: the file is a folder
        const QStringList o = orden.split(u'|');
        int hubo = 0;
        try {
            if (o.size() == 3)
                GrabarIni(f, o[0], o[1], o[2]);
            else
                BorrarIni(f, o[0], o.value(1));
        } catch (const ErrorEjecucion &e) {
            hubo = e.numero();
        }
        QCOMPARE(hubo, error);
        QCOMPARE(prueba::leer(fichero()), despues);
    }

    // The notes file is in the phone book's "TLF" folder.
    void ficheroNotas()
    {
        qputenv("TLF", QFile::encodeName(m_dir.path()));
        QCOMPARE(FicheroNotas(), m_dir.path() + u"/Notas.INI"_qs);
        qunsetenv("TLF");
    }
};

QTEST_GUILESS_MAIN(TstIni)
#include "tst_ini.moc"
