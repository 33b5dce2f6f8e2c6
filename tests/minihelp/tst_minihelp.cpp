// The RTF reader on hand-written corner cases; the mini help window: its title strip, and help
// files shown in it as a QTextDocument built from word-processor RTF.
//
// The files in tests/data/rtf were made once from the sources beside them with LibreOffice 7.4:
//   soffice --headless --convert-to rtf ayuda_formatos.fodt
//   soffice --headless --infilter="HTML (StarWriter)" --convert-to rtf ayuda_simbolos.html
// The tests read only the .rtf files; LibreOffice is not needed to run them.
#include <kvr/error.h>
#include <kvr/minihelp.h>
#include <kvr/rtf.h>
#include <kvr/rtfdocumento.h>

#include "comun/pruebas.h"

#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>

using namespace kvr;
using namespace prueba;

namespace {

// The runs of a document as one compact line: paragraphs split by "/", runs by "|", each run's
// formatting in brackets when it differs from the default ("b" bold, "i" italic, "u" underline,
// "s" strike-out, "fsN" size, "fN" font, "cN" colour, "^" raised).
QString Tramos(const DocumentoRtf &doc)
{
    QStringList parrafos;
    for (const ParrafoRtf &p : doc.parrafos) {
        QStringList tramos;
        for (const TramoRtf &t : p.tramos) {
            QString marca;
            const FormatoRtf &f = t.formato;
            if (f.negrita) marca += u'b';
            if (f.cursiva) marca += u'i';
            if (f.subrayado) marca += u'u';
            if (f.tachado) marca += u's';
            if (f.medioPuntos != 24) marca += QStringLiteral("fs%1").arg(f.medioPuntos);
            if (f.fuente >= 0) marca += QStringLiteral("f%1").arg(f.fuente);
            if (f.color != 0) marca += QStringLiteral("c%1").arg(f.color);
            if (f.vertical > 0) marca += u'^';
            tramos.append(marca.isEmpty() ? t.texto : t.texto + u'[' + marca + u']');
        }
        parrafos.append(tramos.join(u'|'));
    }
    return parrafos.join(u'/');
}

} // namespace

class TestMiniHelp : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void texto_data()
    {
        QTest::addColumn<QByteArray>("rtf");
        QTest::addColumn<QString>("esperado");
        QTest::addColumn<bool>("completo");
        const auto fila = [](const char *caso, const QByteArray &rtf, const char *texto, bool completo) {
            QTest::newRow(caso) << rtf << QString::fromUtf8(texto) << completo;
        };
        fila("hex en 850", "{\\rtf1\\pca \\'a4\\'a5}", "ñÑ", true);
        fila("hex multibyte 932", "{\\rtf1\\ansicpg932 \\'82\\'a0}", "あ", true);
        fila("hex por juego de la fuente",
             "{\\rtf1{\\fonttbl{\\f0\\fcharset0 A;}{\\f1\\fcharset204 B;}}\\f0 \\'e0{\\f1 \\'e0}}", "àа", true);
        fila("pagina desconocida", "{\\rtf1\\ansicpg99999 \\'f1}", "ñ", true);
        fila("byte de 8 bits", "{\\rtf1 a\xf1o}", "año", true);
        fila("hex cortado", "{\\rtf1 a\\'zb}", "azb", true);
        fila("u y su alternativa", "{\\rtf1 \\u8364\\bullet x\\u-3913?}", "€x\uF0B7", true);
        fila("uc por grupo", "{\\rtf1 {\\uc2 \\u8364\\'80\\'80}\\u8364\\'80x{\\uc3\\u8364 a}bc}", "€€x€bc", true);
        // Destinations other than text are hidden; of a field, its result shows.
        fila("destinos", "{\\rtf1 a{\\*\\nuevo oculto{x}}{\\info{\\title T}}{\\stylesheet{\\s0 Normal;}}b"
                         "{\\field{\\*\\fldinst HYPERLINK \"http://x\"}{\\fldrslt enlace}}}", "abenlace", true);
        fila("simbolos", "{\\rtf1 \\{x\\}\\\\a\\~b\\_c\\emdash\\lquote q\\rquote}", "{x}\\a\u00A0b\u2011c—‘q’", true);
        fila("upr usa ud", "{\\rtf1 {\\upr{a\\'3f}{\\*\\ud{a\\u8364 ?}}}}", "a€", true);
        fila("bin no es texto", "{\\rtf1 a\\bin3 }{}b}", "ab", true);
        fila("bin mas largo que el fichero", "{\\rtf1 a\\bin999 xyz", "a", false);
        fila("saltos de linea del fichero", "{\\rtf1 a\r\nb\nc\\\nd}", "abc\nd", true); // "\\" and a break: \\par
        fila("separadores", "{\\rtf1 uno\\par\\par dos\\line tres\\tab a\tb}", "uno\n\ndos\u2028tres\ta\tb", true);
        fila("truncado en hex", "{\\rtf1 ab\\'f", "ab", false);
        fila("llave de mas", "{\\rtf1 a}b}", "a", false);
        fila("blancos tras el cierre", QByteArray("{\\rtf1 a}\r\n\0", 12), "a", true);
        fila("parametro enorme", "{\\rtf1\\fs99999999999999999999 a\\u99999999999 ?b}", "a?b", true);
        fila("no es rtf: texto en 1252", "hola\r\na\xf1o\r\n", "hola\naño", false);
        fila("vacio", QByteArray(), "", false);
    }
    void texto()
    {
        QFETCH(QByteArray, rtf); QFETCH(QString, esperado); QFETCH(bool, completo);
        const DocumentoRtf doc = LeerRtf(rtf);
        QCOMPARE(doc.Texto(), esperado);
        QCOMPARE(doc.completo, completo);
    }

    void formato_data()
    {
        QTest::addColumn<QByteArray>("rtf");
        QTest::addColumn<QString>("tramos");
        QTest::newRow("grupos restauran") << QByteArray("{\\rtf1 a{\\b b{\\i c}d}e{}f{\\b}g}")
                                          << u"a|b[b]|c[bi]|d[b]|efg"_qs; // empty groups leave one run
        QTest::newRow("plain restablece") << QByteArray("{\\rtf1\\b\\fs40\\cf2 a\\plain b}") << u"a[bfs40c2]|b"_qs;
        // \\ulc is the underline's colour, not an underline.
        QTest::newRow("subrayados") << QByteArray("{\\rtf1 \\ul a\\ulnone b\\uldb c\\ul0 d\\ulw e\\ulnone\\ulc2 f}")
                                    << u"a[u]|b|c[u]|d|e[u]|f"_qs;
        QTest::newRow("tachado y superindice") << QByteArray("{\\rtf1 \\strike a\\strike0\\super b\\nosupersub c}")
                                               << u"a[s]|b[^]|c"_qs;
        QTest::newRow("fs0 no cambia el tamano") << QByteArray("{\\rtf1 \\f2\\fs36 a\\fs0 b}") << u"ab[fs36f2]"_qs;
        QTest::newRow("formato por parrafo") << QByteArray("{\\rtf1 \\i a\\par b}") << u"a[i]/b[i]"_qs;
        QTest::newRow("fin de grupo en hex") << QByteArray("{\\rtf1 {\\b \\'e1}\\'e9}") << u"á[b]|é"_qs;
        // Bold set in the innermost group ends with it, however deep the nesting was; a document
        // cut short shows as "(incompleto)".
        const auto anidado = [](int grupos, bool cerrados) {
            const QByteArray cierre = cerrados ? QByteArray(grupos, '}') + "y}" : QByteArray();
            return "{\\rtf1 " + QByteArray(grupos, '{') + "\\b x" + cierre;
        };
        QTest::newRow("anidado hasta el limite") << anidado(LimiteGruposRtf - 2, true) << u"x[b]|y"_qs;
        QTest::newRow("anidado cien mil") << anidado(100000, true) << u"x[b]|y"_qs;
        QTest::newRow("anidado cien mil sin cerrar") << anidado(100000, false) << u"x[b] (incompleto)"_qs;
    }
    void formato()
    {
        QFETCH(QByteArray, rtf); QFETCH(QString, tramos);
        const DocumentoRtf doc = LeerRtf(rtf);
        QCOMPARE(Tramos(doc) + (doc.completo ? u""_qs : u" (incompleto)"_qs), tramos);
    }

    void tablas()
    {
        const DocumentoRtf doc = LeerRtf(
            "{\\rtf1\\ansi\\deff1{\\fonttbl{\\f0\\fswiss Arial{\\*\\falt Helvetica};}"
            "{\\f1\\froman\\fcharset0 Times New Roman;}{\\f2 Se\\'f1al;}\\f3 Sin Llaves;}"
            "{\\colortbl;\\red255\\green0\\blue0;;\\red0\\green0\\blue300;}x}");
        QCOMPARE(doc.fuentePorOmision, 1);
        const QMap<int, QString> fuentes{{0, u"Arial"_qs}, {1, u"Times New Roman"_qs},
                                         {2, u"Señal"_qs}, {3, u"Sin Llaves"_qs}};
        QCOMPARE(doc.fuentes, fuentes);
        const QList<ColorRtf> colores{ColorRtf{}, ColorRtf{255, 0, 0, false}, ColorRtf{},
                                      ColorRtf{0, 0, 255, false}};
        QCOMPARE(doc.colores, colores);
        QCOMPARE(doc.Texto(), u"x"_qs);
    }

    void parrafos()
    {
        const DocumentoRtf doc = LeerRtf(
            "{\\rtf1 \\qc\\li720\\fi-360\\sb120\\sa240 uno\\par \\tqr\\tx2880\\tx4320 dos\\par\\pard tres}");
        QCOMPARE(doc.parrafos.size(), 3);
        const ParrafoRtf &uno = doc.parrafos[0];
        QCOMPARE(uno.alineacion, AlineacionRtf::Centro);
        const QList<int> medidas{uno.sangriaIzquierda, uno.sangriaPrimera, uno.espacioAntes, uno.espacioDespues};
        QCOMPARE(medidas, QList<int>({720, -360, 120, 240}));
        const QList<TabuladorRtf> tabs{{2880, TabuladorRtf::Derecho}, {4320, TabuladorRtf::Izquierdo}};
        QCOMPARE(doc.parrafos[1].tabuladores, tabs);
        QCOMPARE(doc.parrafos[1].alineacion, AlineacionRtf::Centro); // kept until \pard
        QCOMPARE(doc.parrafos[2].alineacion, AlineacionRtf::Izquierda);
        QVERIFY(doc.parrafos[2].tabuladores.isEmpty());
    }

    void tiraVersion_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QStringList>("titulos");
        QTest::addColumn<QString>("esperado");
        QTest::addColumn<int>("dibujos");
        const QString programa = u"Programa Nóminas  -  Versión "_qs;
        QTest::newRow("cuatro partes") << u"2.1.34.7"_qs << QStringList{QString()} << programa + u"2.1.34"_qs << 1;
        QTest::newRow("el ultimo manda") << u"1.0"_qs << L({"Uno", "Dos"}) << u"Dos"_qs << 2;
        QTest::newRow("vuelta a la version") << u"1.0"_qs << L({"Uno", ""}) << programa + u"1.0.0"_qs << 2;
    }
    // The strip shows the last title given, the program's name and version for none; each title
    // is drawn once.
    void tiraVersion()
    {
        QFETCH(QString, version); QFETCH(QStringList, titulos); QFETCH(QString, esperado);
        QFETCH(int, dibujos);
        QCoreApplication::setApplicationName(u"Nóminas"_qs);
        QCoreApplication::setApplicationVersion(version);
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

    // The word-processor file's paragraphs, and how a fragment of it looks in the document.
    void documentoDeFichero()
    {
        QTextDocument doc;
        QVERIFY(CargarRtf(QStringLiteral(KVR_DATOS_RTF "/ayuda_formatos.rtf"), &doc));
        QCOMPARE(doc.blockCount(), 8);
        QCOMPARE(doc.findBlockByNumber(4).text(), u"Código\tDescripción\tImporte"_qs);
        QCOMPARE(doc.findBlockByNumber(6).text(), u"Primera línea\u2028segunda línea del mismo párrafo."_qs);
        const auto aspecto = [&doc](const QString &fragmento) {
            const QTextCursor c = doc.find(fragmento);
            const QTextCharFormat f = c.charFormat();
            QStringList visto;
            if (f.fontWeight() == QFont::Bold) visto << u"b"_qs;
            visto << QString::number(f.fontPointSize()) << f.fontFamilies().toStringList().join(u',');
            const Qt::Alignment a = c.block().blockFormat().alignment() & Qt::AlignHorizontal_Mask;
            visto << (a == Qt::AlignHCenter ? u"centro"_qs : a == Qt::AlignRight ? u"der"_qs : u"izq"_qs);
            return visto.join(u' ');
        };
        QCOMPARE(aspecto(u"Ayuda de Facturación"_qs), u"b 18 DejaVu Serif centro"_qs);
        QCOMPARE(aspecto(u"y pulse Intro."_qs), u"12 DejaVu Serif der"_qs); // the file's default font
    }

    void cargarAyuda_data()
    {
        QTest::addColumn<QByteArray>("contenido");
        QTest::addColumn<QString>("primeraLinea");
        QTest::addColumn<QString>("ultimaLinea");
        const QByteArray rtf = leer(QStringLiteral(KVR_DATOS_RTF "/ayuda_simbolos.rtf"));
        // A file cut right after the third paragraph shows the paragraphs before the cut.
        QTest::newRow("fichero cortado") << rtf.left(rtf.indexOf("comillas"))
                                         << u"¿Cómo se añade un cliente? ¡Muy fácil!"_qs
                                         << u"Moneda: 25 € — el guion largo y las «"_qs;
        QTest::newRow("texto sin formato")
            << QByteArray("Línea uno\r\nLínea dos\r\n") << u"Línea uno"_qs << u"Línea dos"_qs;
    }
    // The help text shows from its start.
    void cargarAyuda()
    {
        QFETCH(QByteArray, contenido); QFETCH(QString, primeraLinea); QFETCH(QString, ultimaLinea);
        QTemporaryDir dir;
        const QString ruta = dir.filePath(u"AYUDA.RTF"_qs);
        escribir(ruta, contenido);
        MiniHelp v;
        v.CargarAyuda(ruta);
        auto *texto = control<QTextEdit>(&v, "TextoAyuda");
        const QStringList lineas = texto->toPlainText().split(u'\n');
        QCOMPARE(lineas.first(), primeraLinea);
        QCOMPARE(lineas.last(), ultimaLinea);
        QCOMPARE(texto->textCursor().position(), 0);
    }

    void cargarAyudaSinFichero()
    {
        MiniHelp v;
        QCOMPARE(errorDe([&] { v.CargarAyuda(u"/no/existe/AYUDA.RTF"_qs); }), int(ErrorEjecucion::ArchivoNoEncontrado));
    }
};

QTEST_MAIN(TestMiniHelp)
#include "tst_minihelp.moc"
