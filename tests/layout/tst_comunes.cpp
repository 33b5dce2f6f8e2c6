// Shared routines without widgets: DOS code page against iconv, file existence, the number
// formatters under both kinds of regional settings, reading lines and list texts, and the layout
// maths (the factor from the window and the work area, 15 twips a pixel unless said, and the
// parked-control rule).
#include <kvr/comunes.h>
#include <kvr/escala.h>

#include "comun/ficheros.h"

#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace kvr;
using namespace prueba;

namespace {

// What iconv makes of `entrada` between code page 850 and UTF-8; a failure fails the test.
QByteArray iconv(const char *desde, const char *hacia, const QByteArray &entrada)
{
    return prueba::ejecutar(u"iconv"_qs, {u"-f"_qs, QString::fromLatin1(desde), u"-t"_qs, QString::fromLatin1(hacia)},
                            entrada);
}

} // namespace

class TestComunes : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void convertirComoIconv()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("iconv")).isEmpty())
            QSKIP("iconv no está instalado: no hay con qué comparar la conversión CP850");
        QByteArray bytes;
        for (int i = 0; i < 256; ++i)
            bytes.append(char(i));
        const QString texto = QString::fromUtf8(iconv("CP850", "UTF-8", bytes));
        QCOMPARE(iconv("UTF-8", "CP850", texto.toUtf8()), bytes);
        // NUL becomes a blank in every case.
        const QString esperado = u' ' + texto.mid(1);
        QCOMPARE(ConvertirJuego(QString::fromLatin1(bytes), QStringLiteral("win")), esperado);
        QCOMPARE(TextoDeDos(bytes), esperado);
        const QByteArray esperadoDos = ' ' + bytes.mid(1);
        QCOMPARE(ConvertirJuego(texto, QStringLiteral("dos")).toLatin1(), esperadoDos);
        QCOMPARE(BytesDeDos(texto), esperadoDos);
    }

    // Mostly-ASCII text with accented letters and NULs here and there, as a contacts file is, cut
    // at every offset and length within a word or two: the eight-byte steps and the byte-by-byte
    // rest must meet wherever the other bytes fall. iconv reads the whole text once.
    void convertirTrozosComoIconv()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("iconv")).isEmpty())
            QSKIP("iconv no está instalado: no hay con qué comparar la conversión CP850");
        QByteArray dos;
        QRandomGenerator azar(850);
        while (dos.size() < 4096) {
            const int tramo = int(azar.bounded(24));
            for (int i = 0; i < tramo; ++i)
                dos.append(char(' ' + azar.bounded(95)));
            const int raro = int(azar.bounded(3));
            for (int i = 0; i < raro; ++i)
                dos.append(azar.bounded(8) == 0 ? '\0' : char(0x80 + azar.bounded(128)));
        }
        QString texto = QString::fromUtf8(iconv("CP850", "UTF-8", dos));
        QCOMPARE(texto.size(), dos.size());
        texto.replace(QChar(u'\0'), QChar(u' '));
        QByteArray sinNulos = dos;
        sinNulos.replace('\0', ' ');
        for (int desde = 0; desde < 600; desde += 1 + int(azar.bounded(5))) {
            const int largo = int(azar.bounded(40));
            const QByteArray trozo = dos.mid(desde, largo);
            const QString esperado = texto.mid(desde, largo);
            QCOMPARE(TextoDeDos(trozo), esperado);
            std::string utf8;
            Utf8DeDos(std::string_view(trozo.constData(), std::size_t(trozo.size())), utf8);
            QCOMPARE(QString::fromStdString(utf8), esperado);
            QCOMPARE(BytesDeDos(esperado), sinNulos.mid(desde, largo));
            const QByteArray deUtf8 = esperado.toUtf8();
            QByteArray vuelta;
            DosDeUtf8(std::string_view(deUtf8.constData(), std::size_t(deUtf8.size())), vuelta);
            QCOMPARE(vuelta, sinNulos.mid(desde, largo));
        }
    }

    // Both directions of all 256 bytes are checked against iconv above; here the direction's
    // spelling and what has no equivalent.
    void convertir_data()
    {
        QTest::addColumn<QString>("texto");
        QTest::addColumn<QString>("sentido");
        QTest::addColumn<QString>("esperado");
        const QString dosEnie = QString(QChar(0xA4)) + QChar(0xA2); // CP850 bytes of "ñó"
        QTest::newRow("Win") << dosEnie << "Win" << QStringLiteral("ñó");
        QTest::newRow("sentido desconocido") << dosEnie << "ansi" << dosEnie;
        QTest::newRow("dos sin equivalente") << QStringLiteral("1€ Ж") << "dos" << QStringLiteral("1? ?");
        QTest::newRow("win deja lo que no es byte") << QStringLiteral("Ж") << "win" << QStringLiteral("Ж");
    }
    void convertir()
    {
        QFETCH(QString, texto); QFETCH(QString, sentido); QFETCH(QString, esperado);
        QCOMPARE(ConvertirJuego(texto, sentido), esperado);
    }

    void existe_data()
    {
        QTest::addColumn<QString>("nombre");
        QTest::addColumn<bool>("carpeta");
        QTest::addColumn<bool>("esperado");
        QTest::newRow("fichero") << "f.txt" << false << true;
        QTest::newRow("fichero pedido como carpeta") << "f.txt" << true << false;
        QTest::newRow("carpeta pedida como carpeta") << "sub" << true << true;
        QTest::newRow("no existe") << "nada.txt" << false << false;
        QTest::newRow("ruta vacía") << "" << false << false;
    }
    void existe()
    {
        QFETCH(QString, nombre); QFETCH(bool, carpeta); QFETCH(bool, esperado);
        QTemporaryDir dir;
        escribir(dir.filePath(QStringLiteral("f.txt")), "x");
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("sub")));
        QCOMPARE(Existe(nombre.isEmpty() ? QString() : dir.filePath(nombre), carpeta), esperado);
    }

    void formatoImporte_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("valor");
        QTest::addColumn<QString>("formato");
        QTest::addColumn<bool>("conCeros");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("es cero sin ceros") << "es_ES" << "0" << "" << false << "";
        QTest::newRow("es número al principio") << "es_ES" << "1234.5 euros" << "" << false << "1.234,50";
        QTest::newRow("es formato propio") << "es_ES" << "-3.456" << "0.0" << true << "-3,5";
        QTest::newRow("C sin ceros") << "C" << "0.001" << "" << false << "0.00";
    }
    void formatoImporte()
    {
        QFETCH(QString, locale); QFETCH(QString, valor); QFETCH(QString, formato);
        QFETCH(bool, conCeros); QFETCH(QString, esperado);
        QLocale::setDefault(QLocale(locale));
        QCOMPARE(FormatoImporte(valor, formato, conCeros), esperado);
    }

    void formatoFijo_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<double>("valor");
        QTest::addColumn<int>("ancho");
        QTest::addColumn<QString>("formato");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("recortado") << "es_ES" << 1234.5 << 4 << "" << "4.50";
        QTest::newRow("entero") << "es_ES" << 7.0 << 3 << "0" << "  7";
        // With a grouped format only the first "," becomes ".", whichever it is.
        QTest::newRow("es agrupado") << "es_ES" << 1234567.25 << 0 << "#,##0.00" << "1.234.567.25";
        QTest::newRow("C agrupado") << "C" << 1234567.25 << 0 << "#,##0.00" << "1.234,567.25";
    }
    void formatoFijo()
    {
        QFETCH(QString, locale); QFETCH(double, valor); QFETCH(int, ancho);
        QFETCH(QString, formato); QFETCH(QString, esperado);
        QLocale::setDefault(QLocale(locale));
        QCOMPARE(FormatoFijo(valor, ancho, formato), esperado);
    }

    // A list from its text, or from a file after "@": the separators, then the file's line ends
    // and encodings.
    void entradas_data()
    {
        QTest::addColumn<QString>("lista");
        QTest::addColumn<QByteArray>("fichero"); // written where a lone "@" reads
        QTest::addColumn<QStringList>("esperado");
        const QByteArray nada;
        QTest::newRow("texto vacío") << "" << nada << L({""});
        QTest::newRow("doble menor") << "Uno<<Dos<<" << nada << L({"Uno", "Dos"});
        QTest::newRow("gana el punto y coma") << QStringLiteral("Sí<<No;Quizá") << nada << L({"Sí<<No", "Quizá"});
        QTest::newRow("fichero que falta") << "@/no/existe/lista.txt" << nada << QStringList{};
        QTest::newRow("LF sin final") << "@" << QByteArray("uno\ndos") << L({"uno", "dos"});
        QTest::newRow("línea vacía en medio y al final") << "@" << QByteArray("a\r\n\r\nb\r\n\r\n")
                                                         << L({"a", "", "b", ""});
        QTest::newRow("UTF-8 con BOM") << "@" << QByteArray("\xEF\xBB\xBFSí\n") << L({"Sí"});
        QTest::newRow("windows-1252") << "@" << QByteArray("Tel\xE9" "fono\r\n\x80 5\r\n") << L({"Teléfono", "€ 5"});
    }
    void entradas()
    {
        QFETCH(QString, lista); QFETCH(QByteArray, fichero); QFETCH(QStringList, esperado);
        QTemporaryDir dir;
        if (lista == u"@") {
            lista += dir.filePath(QStringLiteral("tabla.txt"));
            escribir(lista.mid(1), fichero);
        }
        QCOMPARE(EntradasDeLista(lista), esperado);
    }

    void factor_data()
    {
        QTest::addColumn<QSizeF>("ventana");   // pixels
        QTest::addColumn<QSizeF>("util");      // twips
        QTest::addColumn<QSizeF>("pedido");    // ancho, alto in pixels (0: halfway)
        QTest::addColumn<float>("tpp");
        QTest::addColumn<float>("esperado");   // 0: no factor, an earlier one survives
        const QSizeF area(12000, 9000), mitad(0, 0);
        // 6000 twips on 12000: target 9000, 1.5; the height alone would allow 2.0.
        QTest::newRow("ancho manda") << QSizeF(400, 200) << area << mitad << 15.f << 1.5f;
        // 6000 twips high on 9000: target 7500, 1.25 applies to both directions.
        QTest::newRow("alto manda") << QSizeF(400, 400) << area << mitad << 15.f << 1.25f;
        QTest::newRow("alto pedido") << QSizeF(400, 200) << area << QSizeF(0, 100) << 15.f << 0.5f;
        // At 120 dpi a pixel is 12 twips: 4800 twips aiming at 8400.
        QTest::newRow("120 dpi") << QSizeF(400, 200) << QSizeF(12000, 12000) << mitad << 12.f << 1.75f;
        QTest::newRow("ventana sin ancho") << QSizeF(0, 200) << area << mitad << 15.f << 0.f;
        QTest::newRow("ancho negativo") << QSizeF(400, 200) << area << QSizeF(-10, 0) << 15.f << 0.f;
    }
    void factor()
    {
        QFETCH(QSizeF, ventana); QFETCH(QSizeF, util); QFETCH(QSizeF, pedido);
        QFETCH(float, tpp); QFETCH(float, esperado);
        FactorX = FactorY = 3.0f;
        const bool hecho = CalcularFactores(float(ventana.width()), float(ventana.height()),
                                            float(util.width()), float(util.height()),
                                            float(pedido.width()), float(pedido.height()), tpp, tpp);
        QCOMPARE(hecho, esperado != 0.f);
        QCOMPARE(FactorX, hecho ? esperado : 3.0f);
        QCOMPARE(FactorY, FactorX);
    }

    // A control parked beyond -50000 twips keeps its distance from there; one exactly at the limit
    // is scaled as any other (the window suite sees both sides of it).
    void izquierdaEnElLimite()
    {
        FactorX = FactorY = 1.5f;
        QCOMPARE(EscalaIzquierda(-50000.f, 1.f), -75000.f);
    }
};

QTEST_GUILESS_MAIN(TestComunes)
#include "tst_comunes.moc"
