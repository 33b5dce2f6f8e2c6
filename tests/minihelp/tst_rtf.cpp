// The RTF reader on hand-written corner cases. Files written by a real word processor are read
// through the help window (tst_minihelp).
#include <kvr/rtf.h>

#include <QTest>

using namespace kvr;

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

class TestRtf : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void texto_data();
    void texto();
    void formato_data();
    void formato();
    void anidamientoProfundo_data();
    void anidamientoProfundo();
    void tablas();
    void parrafos();
};

void TestRtf::texto_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<QString>("esperado");
    QTest::addColumn<bool>("completo");

    QTest::newRow("hex en 850") << QByteArray("{\\rtf1\\pca \\'a4\\'a5}") << u"ñÑ"_qs << true;
    QTest::newRow("hex multibyte 932") << QByteArray("{\\rtf1\\ansicpg932 \\'82\\'a0}") << u"あ"_qs << true;
    QTest::newRow("hex por juego de la fuente")
        << QByteArray("{\\rtf1{\\fonttbl{\\f0\\fcharset0 A;}{\\f1\\fcharset204 B;}}\\f0 \\'e0{\\f1 \\'e0}}")
        << u"àа"_qs << true;
    QTest::newRow("pagina desconocida") << QByteArray("{\\rtf1\\ansicpg99999 \\'f1}") << u"ñ"_qs << true;
    QTest::newRow("byte de 8 bits") << QByteArray("{\\rtf1 a\xf1o}") << u"año"_qs << true;
    QTest::newRow("hex cortado") << QByteArray("{\\rtf1 a\\'zb}") << u"azb"_qs << true;
    QTest::newRow("u negativo") << QByteArray("{\\rtf1 \\u-3913?}") << QString(QChar(0xF0B7)) << true;
    QTest::newRow("uc2") << QByteArray("{\\rtf1\\uc2 \\u8364\\'80\\'80x}") << u"€x"_qs << true;
    QTest::newRow("alternativa palabra") << QByteArray("{\\rtf1 \\u8364\\bullet x}") << u"€x"_qs << true;
    QTest::newRow("uc dentro del grupo")
        << QByteArray("{\\rtf1 {\\uc2 \\u8364\\'80\\'80}\\u8364\\'80x}") << u"€€x"_qs << true;
    QTest::newRow("alternativa cortada por grupo")
        << QByteArray("{\\rtf1 {\\uc3\\u8364 a}bc}") << u"€bc"_qs << true;
    QTest::newRow("destino desconocido") << QByteArray("{\\rtf1 a{\\*\\nuevo oculto{x}}b}") << u"ab"_qs << true;
    QTest::newRow("destino conocido oculto")
        << QByteArray("{\\rtf1 {\\info{\\title T}{\\author Ana}}{\\stylesheet{\\s0 Normal;}}x}") << u"x"_qs << true;
    QTest::newRow("simbolos escapados") << QByteArray("{\\rtf1 \\{x\\}\\\\}") << u"{x}\\"_qs << true;
    QTest::newRow("simbolos especiales")
        << QByteArray("{\\rtf1 a\\~b\\_c\\emdash\\lquote q\\rquote}") << u"a\u00A0b\u2011c—‘q’"_qs << true;
    QTest::newRow("campo muestra resultado")
        << QByteArray("{\\rtf1 {\\field{\\*\\fldinst HYPERLINK \"http://x\"}{\\fldrslt enlace}}}") << u"enlace"_qs << true;
    QTest::newRow("upr usa ud")
        << QByteArray("{\\rtf1 {\\upr{a\\'3f}{\\*\\ud{a\\u8364 ?}}}}") << u"a€"_qs << true;
    QTest::newRow("bin no es texto") << QByteArray("{\\rtf1 a\\bin3 }{}b}") << u"ab"_qs << true;
    QTest::newRow("bin mas largo que el fichero") << QByteArray("{\\rtf1 a\\bin999 xyz") << u"a"_qs << false;
    QTest::newRow("saltos ignorados") << QByteArray("{\\rtf1 a\r\nb\nc}") << u"abc"_qs << true;
    QTest::newRow("barra y salto es parrafo") << QByteArray("{\\rtf1 a\\\nb}") << u"a\nb"_qs << true;
    QTest::newRow("parrafo vacio") << QByteArray("{\\rtf1 uno\\par\\par dos}") << u"uno\n\ndos"_qs << true;
    QTest::newRow("salto de linea") << QByteArray("{\\rtf1 uno\\line dos}") << u"uno\u2028dos"_qs << true;
    QTest::newRow("tabuladores") << QByteArray("{\\rtf1 a\\tab b\tc}") << u"a\tb\tc"_qs << true;
    QTest::newRow("truncado en texto") << QByteArray("{\\rtf1 {\\b hola") << u"hola"_qs << false;
    QTest::newRow("truncado en hex") << QByteArray("{\\rtf1 ab\\'f") << u"ab"_qs << false;
    QTest::newRow("truncado en tabla de fuentes") << QByteArray("{\\rtf1{\\fonttbl{\\f0 Ari") << QString() << false;
    QTest::newRow("llave de mas al final") << QByteArray("{\\rtf1 a}}") << u"a"_qs << false;
    QTest::newRow("llave de mas en medio") << QByteArray("{\\rtf1 a}b}") << u"a"_qs << false;
    QTest::newRow("blancos tras el cierre") << QByteArray("{\\rtf1 a}\r\n\0", 12) << u"a"_qs << true;
    QTest::newRow("parametro enorme") << QByteArray("{\\rtf1\\fs99999999999999999999 a\\u99999999999 ?b}") << u"a?b"_qs << true;
    QTest::newRow("no es rtf") << QByteArray("hola\r\nmundo\r\n") << u"hola\nmundo"_qs << false;
    QTest::newRow("no es rtf en 1252") << QByteArray("a\xf1o") << u"año"_qs << false;
    QTest::newRow("vacio") << QByteArray() << QString() << false;
}

void TestRtf::texto()
{
    QFETCH(QByteArray, rtf); QFETCH(QString, esperado); QFETCH(bool, completo);
    const DocumentoRtf doc = LeerRtf(rtf);
    QCOMPARE(doc.Texto(), esperado);
    QCOMPARE(doc.completo, completo);
}

void TestRtf::formato_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<QString>("tramos");

    QTest::newRow("grupos restauran") << QByteArray("{\\rtf1 a{\\b b{\\i c}d}e}") << u"a|b[b]|c[bi]|d[b]|e"_qs;
    QTest::newRow("plain restablece") << QByteArray("{\\rtf1\\b\\fs40\\cf2 a\\plain b}") << u"a[bfs40c2]|b"_qs;
    QTest::newRow("subrayados") << QByteArray("{\\rtf1 \\ul a\\ulnone b\\uldb c\\ul0 d\\ulw e}") << u"a[u]|b|c[u]|d|e[u]"_qs;
    QTest::newRow("color del subrayado no subraya") << QByteArray("{\\rtf1 \\ulc2 a}") << u"a"_qs;
    QTest::newRow("tachado y superindice") << QByteArray("{\\rtf1 \\strike a\\strike0\\super b\\nosupersub c}") << u"a[s]|b[^]|c"_qs;
    QTest::newRow("tamano y fuente") << QByteArray("{\\rtf1 \\f2\\fs36 a}") << u"a[fs36f2]"_qs;
    QTest::newRow("fs0 no cambia") << QByteArray("{\\rtf1 \\fs0 a}") << u"a"_qs;
    QTest::newRow("grupos vacios se unen") << QByteArray("{\\rtf1 a{}b{\\b}c}") << u"abc"_qs;
    QTest::newRow("formato por parrafo") << QByteArray("{\\rtf1 \\i a\\par b}") << u"a[i]/b[i]"_qs;
    QTest::newRow("fin de grupo en hex") << QByteArray("{\\rtf1 {\\b \\'e1}\\'e9}") << u"á[b]|é"_qs;
}

void TestRtf::formato()
{
    QFETCH(QByteArray, rtf); QFETCH(QString, tramos);
    QCOMPARE(Tramos(LeerRtf(rtf)), tramos);
}

void TestRtf::anidamientoProfundo_data()
{
    QTest::addColumn<int>("grupos");
    QTest::addColumn<bool>("cerrados");

    QTest::newRow("dentro del limite") << LimiteGruposRtf - 2 << true;
    QTest::newRow("cien mil cerrados") << 100000 << true;
    QTest::newRow("cien mil abiertos") << 100000 << false;
}

void TestRtf::anidamientoProfundo()
{
    QFETCH(int, grupos); QFETCH(bool, cerrados);
    QByteArray rtf = "{\\rtf1 " + QByteArray(grupos, '{') + "\\b x";
    if (cerrados)
        rtf += QByteArray(grupos, '}') + "y}";
    const DocumentoRtf doc = LeerRtf(rtf);
    QCOMPARE(doc.completo, cerrados);
    // Bold set in the innermost group ends with it, however deep the nesting was.
    QCOMPARE(Tramos(doc), cerrados ? u"x[b]|y"_qs : u"x[b]"_qs);
}

void TestRtf::tablas()
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

void TestRtf::parrafos()
{
    const DocumentoRtf doc = LeerRtf(
        "{\\rtf1 \\qc\\li720\\fi-360\\sb120\\sa240 uno\\par \\tqr\\tx2880\\tx4320 dos\\par\\pard tres}");
    QCOMPARE(doc.parrafos.size(), 3);
    const ParrafoRtf &uno = doc.parrafos[0];
    QCOMPARE(uno.alineacion, AlineacionRtf::Centro);
    QCOMPARE(uno.sangriaIzquierda, 720);
    QCOMPARE(uno.sangriaPrimera, -360);
    QCOMPARE(uno.espacioAntes, 120);
    QCOMPARE(uno.espacioDespues, 240);
    const QList<TabuladorRtf> tabs{{2880, TabuladorRtf::Derecho}, {4320, TabuladorRtf::Izquierdo}};
    QCOMPARE(doc.parrafos[1].tabuladores, tabs);
    QCOMPARE(doc.parrafos[1].alineacion, AlineacionRtf::Centro);  // kept until \pard
    QCOMPARE(doc.parrafos[2].alineacion, AlineacionRtf::Izquierda);
    QVERIFY(doc.parrafos[2].tabuladores.isEmpty());
}

QTEST_GUILESS_MAIN(TestRtf)
#include "tst_rtf.moc"
