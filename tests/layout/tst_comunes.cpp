// Shared routines without widgets: DOS code page against iconv, file existence, the number
// formatters under both kinds of regional settings, reading lines and list texts.
#include <kvr/comunes.h>
#include <kvr/error.h>

#include "comun/ficheros.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace kvr;
using namespace prueba;

namespace {

QByteArray todosLosBytes()
{
    QByteArray b;
    for (int i = 0; i < 256; ++i)
        b.append(char(i));
    return b;
}

// Runs iconv on `entrada`; empty optional-like null result when iconv fails.
QByteArray iconv(const QStringList &args, const QByteArray &entrada, bool *ok)
{
    QProcess p;
    p.start(QStringLiteral("iconv"), args);
    *ok = p.waitForStarted();
    if (!*ok)
        return {};
    p.write(entrada);
    p.closeWriteChannel();
    *ok = p.waitForFinished() && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    return p.readAllStandardOutput();
}

} // namespace

class TestComunes : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { SinConvertirJuego = false; }
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void convertirComoIconv()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("iconv")).isEmpty())
            QSKIP("iconv no está instalado: no hay con qué comparar la conversión CP850");
        const QByteArray bytes = todosLosBytes();
        bool ok = false;
        const QByteArray utf8 = iconv({QStringLiteral("-f"), QStringLiteral("CP850"), QStringLiteral("-t"), QStringLiteral("UTF-8")}, bytes, &ok);
        QVERIFY2(ok, "iconv -f CP850 -t UTF-8 falló");
        QString esperado = QString::fromUtf8(utf8);
        QCOMPARE(esperado.size(), 256);
        esperado[0] = u' '; // NUL becomes a blank in every case

        const QString win = ConvertirJuego(QString::fromLatin1(bytes), QStringLiteral("win"));
        for (int i = 0; i < 256; ++i)
            QVERIFY2(win[i] == esperado[i], qPrintable(QStringLiteral("byte %1").arg(i, 2, 16)));
        QCOMPARE(TextoDeDos(bytes), esperado);

        // Back: the text of all 256 characters to CP850, against iconv -t CP850.
        const QString texto = QString::fromUtf8(utf8);
        const QByteArray dos = iconv({QStringLiteral("-f"), QStringLiteral("UTF-8"), QStringLiteral("-t"), QStringLiteral("CP850")}, texto.toUtf8(), &ok);
        QVERIFY2(ok, "iconv -f UTF-8 -t CP850 falló");
        QCOMPARE(dos, bytes);
        QByteArray esperadoDos = dos;
        esperadoDos[0] = ' ';
        QCOMPARE(ConvertirJuego(texto, QStringLiteral("dos")).toLatin1(), esperadoDos);
        QCOMPARE(BytesDeDos(texto), esperadoDos);
    }

    // Both directions of all 256 bytes, NUL included, are checked against iconv above; here the
    // direction's spelling and what has no equivalent.
    void convertir_data()
    {
        QTest::addColumn<QString>("texto");
        QTest::addColumn<QString>("sentido");
        QTest::addColumn<QString>("esperado");
        const QString dosEnie = QString(QChar(0xA4)) + QChar(0xA2); // CP850 bytes of "ñó"
        QTest::newRow("Win") << dosEnie << "Win" << QStringLiteral("ñó");
        QTest::newRow("sin sentido") << dosEnie << "" << dosEnie;
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
        QVERIFY(dir.isValid());
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
        QTest::newRow("es agrupado") << "es_ES" << "1234567.5" << "" << true << "1.234.567,50";
        QTest::newRow("es número al principio") << "es_ES" << "12.5 euros" << "" << false << "12,50";
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
        QTest::newRow("sin ancho") << "es_ES" << 1234.5 << 0 << "" << "1234.50";
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

    void leerLineas_data()
    {
        QTest::addColumn<QByteArray>("contenido");
        QTest::addColumn<QStringList>("esperado");
        QTest::newRow("LF sin final") << QByteArray("uno\ndos") << L({"uno", "dos"});
        QTest::newRow("línea vacía en medio y al final") << QByteArray("a\r\n\r\nb\r\n\r\n") << L({"a", "", "b", ""});
        QTest::newRow("UTF-8 con BOM") << QByteArray("\xEF\xBB\xBFSí\n") << L({"Sí"});
        QTest::newRow("windows-1252") << QByteArray("Tel\xE9" "fono\r\n\x80 5\r\n") << L({"Teléfono", "€ 5"});
        QStringList muchas;
        QByteArray grande;
        for (int i = 1; i <= 250; ++i) {
            muchas << QString::number(i);
            grande += QByteArray::number(i) + "\r\n";
        }
        QTest::newRow("más de cien líneas") << grande << muchas;
    }
    void leerLineas()
    {
        QFETCH(QByteArray, contenido); QFETCH(QStringList, esperado);
        QTemporaryDir dir;
        const QString ruta = dir.filePath(QStringLiteral("tabla.txt"));
        escribir(ruta, contenido);
        QCOMPARE(LeerLineas(ruta), esperado);
    }

    void entradas_data()
    {
        QTest::addColumn<QString>("lista");
        QTest::addColumn<QStringList>("esperado");
        QTest::newRow("punto y coma") << "a;b;c" << L({"a", "b", "c"});
        QTest::newRow("texto vacío") << "" << L({""});
        QTest::newRow("doble menor") << "Uno<<Dos<<" << L({"Uno", "Dos"});
        QTest::newRow("gana el punto y coma") << QStringLiteral("Sí<<No;Quizá") << L({"Sí<<No", "Quizá"});
        QTest::newRow("fichero que falta") << "@/no/existe/lista.txt" << QStringList{};
    }
    void entradas()
    {
        QFETCH(QString, lista); QFETCH(QStringList, esperado);
        QCOMPARE(EntradasDeLista(lista), esperado);
    }

};

QTEST_GUILESS_MAIN(TestComunes)
#include "tst_comunes.moc"
