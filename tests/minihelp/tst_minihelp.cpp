// The mini help window: the title strip and help files shown in it; and the QTextDocument built
// from word-processor RTF files.
//
// The files in tests/data/rtf were made once from the sources beside them with LibreOffice 7.4:
//   soffice --headless --convert-to rtf ayuda_formatos.fodt
//   soffice --headless --infilter="HTML (StarWriter)" --convert-to rtf ayuda_simbolos.html
// The tests read only the .rtf files; LibreOffice is not needed to run them.
#include <kvr/error.h>
#include <kvr/minihelp.h>
#include <kvr/rtfdocumento.h>

#include "comun/pruebas.h"

#include <QFile>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>

using namespace kvr;
using namespace prueba;

namespace {

QString Ruta(const char *nombre)
{
    return QStringLiteral(KVR_DATOS_RTF "/") + QLatin1String(nombre);
}

// The format of the first fragment whose text is `texto`, and its block.
bool Fragmento(const QTextDocument &doc, const QString &texto, QTextCharFormat *f, QTextBlock *b = nullptr)
{
    for (QTextBlock bloque = doc.begin(); bloque.isValid(); bloque = bloque.next())
        for (auto it = bloque.begin(); !it.atEnd(); ++it)
            if (it.fragment().text().trimmed() == texto) {
                *f = it.fragment().charFormat();
                if (b)
                    *b = bloque;
                return true;
            }
    return false;
}

} // namespace

class TestMiniHelp : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void textoVersion_data();
    void textoVersion();
    void tituloMiniWeb_data();
    void tituloMiniWeb();
    void documentoDeFichero_data();
    void documentoDeFichero();
    void cargarAyuda_data();
    void cargarAyuda();
    void cargarAyudaSinFichero();
};

void TestMiniHelp::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
}

void TestMiniHelp::textoVersion_data()
{
    QTest::addColumn<QString>("nombre");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("esperado");
    QTest::newRow("tres partes") << u"VENTAS"_qs << u"2.1.34"_qs << u"Programa VENTAS  -  Versión 2.1.34"_qs;
    QTest::newRow("sin version") << u"Nóminas"_qs << QString() << u"Programa Nóminas  -  Versión 0.0.0"_qs;
    QTest::newRow("cuatro partes") << u"VENTAS"_qs << u"2.1.34.7"_qs << u"Programa VENTAS  -  Versión 2.1.34"_qs;
}

void TestMiniHelp::textoVersion()
{
    QFETCH(QString, nombre); QFETCH(QString, version); QFETCH(QString, esperado);
    const QString nombreAntes = QCoreApplication::applicationName();
    const QString versionAntes = QCoreApplication::applicationVersion();
    QCoreApplication::setApplicationName(nombre);
    QCoreApplication::setApplicationVersion(version);
    MiniHelp v;
    v.TituloMiniWeb(QString());
    const QString visto = control(&v, "MiVersion")->property("texto").toString();
    QCoreApplication::setApplicationName(nombreAntes);
    QCoreApplication::setApplicationVersion(versionAntes);
    QCOMPARE(visto, esperado);
}

void TestMiniHelp::tituloMiniWeb_data()
{
    QTest::addColumn<QStringList>("titulos");
    QTest::addColumn<QString>("esperado");
    QTest::addColumn<int>("dibujos");
    QTest::newRow("vacio da la version") << QStringList{QString()} << MiniHelp::TextoVersion() << 1;
    QTest::newRow("el ultimo manda") << QStringList{u"Uno"_qs, u"Dos"_qs} << u"Dos"_qs << 2;
    QTest::newRow("vuelta a la version") << QStringList{u"Uno"_qs, QString()} << MiniHelp::TextoVersion() << 2;
}

void TestMiniHelp::tituloMiniWeb()
{
    QFETCH(QStringList, titulos); QFETCH(QString, esperado); QFETCH(int, dibujos);
    MiniHelp v;
    v.show();
    QApplication::processEvents();
    for (const QString &t : titulos)
        v.TituloMiniWeb(t);
    QWidget *tira = control(&v, "MiVersion");
    QCOMPARE(tira->property("texto").toString(), esperado);
    QCOMPARE(tira->property("dibujos").toInt(), dibujos);
    QVERIFY(tira->isVisible());
}

void TestMiniHelp::documentoDeFichero_data()
{
    // A fragment of the word-processor file and how it must look in the document.
    QTest::addColumn<QString>("fragmento");
    QTest::addColumn<QString>("aspecto");
    QTest::newRow("titulo") << u"Ayuda de Facturación"_qs << u"b 18 DejaVu Serif centro"_qs;
    QTest::newRow("fuente por omision") << u"y pulse Intro."_qs << u"12 DejaVu Serif der"_qs;
}

void TestMiniHelp::documentoDeFichero()
{
    QFETCH(QString, fragmento); QFETCH(QString, aspecto);
    QTextDocument doc;
    QVERIFY(CargarRtf(Ruta("ayuda_formatos.rtf"), &doc));
    QCOMPARE(doc.blockCount(), 8);
    QCOMPARE(doc.findBlockByNumber(4).text(), u"Código\tDescripción\tImporte"_qs);
    QCOMPARE(doc.findBlockByNumber(6).text(), u"Primera línea\u2028segunda línea del mismo párrafo."_qs);

    QTextCharFormat f;
    QTextBlock b;
    QVERIFY(Fragmento(doc, fragmento, &f, &b));
    QStringList visto;
    if (f.fontWeight() == QFont::Bold) visto << u"b"_qs;
    if (f.fontItalic()) visto << u"i"_qs;
    if (f.fontUnderline()) visto << u"u"_qs;
    if (f.foreground().style() != Qt::NoBrush) visto << f.foreground().color().name();
    visto << QString::number(f.fontPointSize()) << f.fontFamilies().toStringList().join(u',');
    const Qt::Alignment a = b.blockFormat().alignment() & Qt::AlignHorizontal_Mask;
    visto << (a == Qt::AlignHCenter ? u"centro"_qs : a == Qt::AlignRight ? u"der"_qs : u"izq"_qs);
    QCOMPARE(visto.join(u' '), aspecto);
}

void TestMiniHelp::cargarAyuda_data()
{
    QTest::addColumn<QByteArray>("contenido");
    QTest::addColumn<QString>("primeraLinea");
    QTest::addColumn<QString>("ultimaLinea");

    QFile f(Ruta("ayuda_simbolos.rtf"));
    QVERIFY(f.open(QIODevice::ReadOnly));
    const QByteArray rtf = f.readAll();
    QTest::newRow("fichero rtf") << rtf << u"¿Cómo se añade un cliente? ¡Muy fácil!"_qs
                                 << u"Letra pequeña y letra grande."_qs;
    // A file cut right after the third paragraph shows the paragraphs before the cut.
    const qsizetype corte = rtf.indexOf("comillas");
    QTest::newRow("fichero cortado") << rtf.left(corte) << u"¿Cómo se añade un cliente? ¡Muy fácil!"_qs
                                     << u"Moneda: 25 € — el guion largo y las «"_qs;
    QTest::newRow("texto sin formato") << QByteArray("Línea uno\r\nLínea dos\r\n")
                                       << u"Línea uno"_qs << u"Línea dos"_qs;
}

void TestMiniHelp::cargarAyuda()
{
    QFETCH(QByteArray, contenido); QFETCH(QString, primeraLinea); QFETCH(QString, ultimaLinea);
    QTemporaryDir dir;
    const QString ruta = dir.filePath(u"AYUDA.RTF"_qs);
    QFile f(ruta);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(contenido);
    f.close();

    MiniHelp v;
    v.CargarAyuda(ruta);
    auto *texto = qobject_cast<QTextEdit *>(control(&v, "TextoAyuda"));
    const QStringList lineas = texto->toPlainText().split(u'\n');
    QCOMPARE(lineas.first(), primeraLinea);
    QCOMPARE(lineas.last(), ultimaLinea);
    QCOMPARE(texto->textCursor().position(), 0);
}

void TestMiniHelp::cargarAyudaSinFichero()
{
    MiniHelp v;
    int numero = 0;
    try {
        v.CargarAyuda(u"/no/existe/AYUDA.RTF"_qs);
    } catch (const ErrorEjecucion &e) {
        numero = e.numero();
    }
    QCOMPARE(numero, int(ErrorEjecucion::ArchivoNoEncontrado));
}

QTEST_MAIN(TestMiniHelp)
#include "tst_minihelp.moc"
