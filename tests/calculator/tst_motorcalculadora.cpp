// The calculator engine driven by key sequences. Every expected display, tape and state below was
// worked out by hand from the key rules; a sequence is a string of key captions, "d" standing
// for a click on the decimals button.
#include "comun/ficheros.h"

#include <kvr/error.h>
#include <kvr/motorcalculadora.h>

#include <QtTest>

using namespace kvr;
using prueba::errorDe;

namespace {

void pulsar(MotorCalculadora &m, const QString &teclas)
{
    for (const QChar c : teclas) {
        if (c == u'd')
            m.CambiarDecimales();
        else
            QVERIFY2(m.TeclaTexto(c), qPrintable(QStringLiteral("sin tecla ") + c));
    }
}

} // namespace

class TstMotorCalculadora : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void secuencias_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<int>("error");       // the run-time error a key raised, 0 for none
        QTest::addColumn<QString>("teclas");
        QTest::addColumn<QString>("pantalla"); // null: not checked
        QTest::addColumn<QString>("tape");     // null: not checked
        QTest::addColumn<QString>("estado");   // Entrada|Pendiente|Operando|Resultado|UltimoValor
        const auto c = [](const char *caso) -> QTestData & { return QTest::newRow(caso) << u"C"_qs << 0; };
        const auto es = [](const char *caso) -> QTestData & { return QTest::newRow(caso) << u"es_ES"_qs << 0; };

        c("segundo punto ignorado") << u"1..5"_qs << u"1.50  "_qs << u""_qs << u"1.5||||"_qs;
        c("cero sobre cero ignorado") << u"00"_qs << u"0.00  "_qs << u""_qs << u"0||||"_qs;
        c("doble signo") << u"SS"_qs << u"0.00  "_qs << u""_qs << u"||||"_qs;
        c("borrar vacío") << u"<"_qs << u"0.00  "_qs << u""_qs << u"||||"_qs;
        c("por ciento sin pendiente") << u"5%"_qs << u"5.00  "_qs << u""_qs << u"5||||"_qs;
        c("por ciento sin entrada") << u"5+%"_qs << u"5.00 +"_qs << u"5.00 +"_qs << u"|5 +|||5"_qs;
        c("operador sin nada") << u"+"_qs << u"0.00  "_qs << u""_qs << u"||||"_qs;
        c("igual sin operando") << u"5+="_qs << u"5.00 ="_qs << u"5.00 +|5.00 ="_qs << u"|| =|5 =|5"_qs;
        c("igual repetido") << u"5+3=="_qs << u"8.00 ="_qs << u"5.00 +|3.00 =|8.00 ="_qs << u"||3 =|8 =|8"_qs;
        c("mismo operador repite") << u"5+3++"_qs << u"11.00 +"_qs << u"5.00 +|3.00 +|3.00 +"_qs
            << u"|11 +|3 +|11 +|3"_qs;
        c("operador tras resultado") << u"5+3=*"_qs << u"8.00 *"_qs << u"5.00 +|3.00 =|8.00 =|8.00 *"_qs
            << u"|8 *|3 =|8 *|8"_qs;
        c("división por cero a 3 decimales") << u"d8/0="_qs << u"0.000 ="_qs << u"8.000 /|0.000 =|0.000 ="_qs
            << u"||0 =|0.00 =|0.00"_qs;
        c("más por ciento") << u"200+10%"_qs << u"220.00 ="_qs << u"200.00 +|10.00 %|220.00 ="_qs
            << u"||20 =|220 =|220"_qs;
        c("menos por ciento") << u"200-10%"_qs << u"180.00 ="_qs << u"200.00 -|10.00 %|180.00 ="_qs
            << u"||20 =|180 =|180"_qs;
        c("por por ciento") << u"200*10%"_qs << u"20.00 ="_qs << u"200.00 *|10.00 %|20.00 ="_qs
            << u"||10 %|20 =|20"_qs;
        c("entre por ciento") << u"200/10%"_qs << u"20.00 %"_qs << u"200.00 /|10.00 %|20.00 %"_qs
            << u"||10 %|20 %|20"_qs;
        c("neto contenido") << u"121N21="_qs << u"100.00 ="_qs << u"121.00 N|21.00 =|100.00 ="_qs
            << u"||21 =|100 =|100"_qs;
        c("pesetas a euros") << u"166.386E"_qs << u"1.00 E"_qs << u"166.39 E|1.00 E"_qs << u"|||1 E|1"_qs;
        // After a conversion the Operando left by "5+3+" still says "+", but the pending value is
        // unknown: "=" gives the conversion's result.
        c("conversión deja pendiente desconocido") << u"5+3+1P2="_qs << u"166.39 ="_qs
            << u"5.00 +|3.00 +|1.00 P|2.00 =|166.39 ="_qs << u"||2 =|166.386 =|166.386"_qs;
        c("operador tras borrar reutiliza") << u"5+3=C+"_qs << u"8.00 +"_qs << u"8.00 +"_qs << u"|8 +|||8"_qs;
        c("decimales rehacen la pantalla, no el papel") << u"5+d"_qs << u"5.000 +"_qs << u"5.00 +"_qs
            << u"|5 +|||5"_qs;
        c("decimales vuelven a dos") << u"1.23456dddd"_qs << u"1.23  "_qs << u""_qs << u"1.23456||||"_qs;

        // Under a comma-decimal locale: entries, results and tape; the state keeps its "." texts.
        es("es miles") << u"1234567*1000="_qs << u"1.234.567.000,00 ="_qs
            << u"1.234.567,00 *|1.000,00 =|1.234.567.000,00 ="_qs << u"||1000 =|1234567000 =|1234567000"_qs;
        es("es decimales") << u"2.5/4="_qs << u"0,63 ="_qs << u"2,50 /|4,00 =|0,63 ="_qs << u"||4 =|0.625 =|0.625"_qs;
        // Arithmetic errors end the key; the state keeps what the key had changed before.
        const QString e300 = u"1"_qs + QString(300, u'0');
        QTest::newRow("impuesto al -100") << u"C"_qs << 11 << u"5IS100="_qs << u"-100.00 ="_qs
            << u"5.00 I|-100.00 ="_qs << u"|5 I|-100 =||-100"_qs;
        QTest::newRow("cero impuesto al -100") << u"C"_qs << 6 << u"0IS100="_qs << u"-100.00 ="_qs
            << u"0.00 I|-100.00 ="_qs << u"|0 I|-100 =||-100"_qs;
        QTest::newRow("producto desbordado") << u"C"_qs << 6 << e300 + u"*"_qs + e300 + u"="_qs << QString()
            << QString() << u"|"_qs + e300 + u" *|"_qs + e300 + u" =||"_qs + e300;
        QTest::newRow("entrada demasiado larga") << u"C"_qs << 6 << u"1"_qs + QString(309, u'0') << QString()
            << u""_qs << u"1"_qs + QString(309, u'0') + u"||||"_qs;
    }
    void secuencias()
    {
        QFETCH(QString, locale); QFETCH(int, error); QFETCH(QString, teclas);
        QFETCH(QString, pantalla); QFETCH(QString, tape); QFETCH(QString, estado);
        QLocale::setDefault(QLocale(locale));
        MotorCalculadora m;
        QCOMPARE(errorDe([&] { pulsar(m, teclas); }), error);
        if (!pantalla.isNull())
            QCOMPARE(m.Pantalla(), pantalla);
        if (!tape.isNull())
            QCOMPARE(m.LineasPapel().join(u'|'), tape);
        QCOMPARE(QStringList({m.Entrada, m.Pendiente, m.Operando, m.Resultado, m.UltimoValor}).join(u'|'), estado);
        if (error) {
            // The calculator goes on working after the error.
            pulsar(m, u"C2+3="_qs);
            QCOMPARE(m.Pantalla(), u"5.00 ="_qs);
        }
    }

    // A line's operator goes only after a blank (and an empty line has none); what is left reads
    // as a number, an exponent too.
    void sinOperador()
    {
        QStringList vistos;
        for (const QString &linea : {u"5 +"_qs, u"5+"_qs, u""_qs, u"1E+20 ="_qs})
            vistos << SinOperador(linea) + u'=' + QString::number(LeerNumero(SinOperador(linea)));
        QCOMPARE(vistos.join(u' '), u"5=5 5+=5 =0 1E+20=1e+20"_qs);
    }

    // Key codes typed at the keyboard and the key each one stands for (-1: none): Enter and
    // Backspace, the letters in lower case, a capital as it is, a comma and a null.
    void teclado()
    {
        QStringList vistos;
        for (const QChar c : u"\r\bnicsepI,"_qs + QChar(0))
            vistos << QString::number(IndiceDeTecla(c.unicode()));
        QCOMPARE(vistos.join(u' '), u"18 12 19 20 21 16 22 23 20 -1 -1"_qs);
    }

    // The command line's factor: none without "+", 1 for zero or less.
    void lineaComandos()
    {
        QStringList vistos;
        for (const QString &linea : {u""_qs, u"+2"_qs, u"+0"_qs, u"+-2"_qs}) {
            double factor = 0.0;
            vistos << (FactorDeLineaComandos(linea, factor) ? QString::number(factor) : u"no"_qs);
        }
        QCOMPARE(vistos.join(u' '), u"no 2 1 1"_qs);
    }
};

QTEST_GUILESS_MAIN(TstMotorCalculadora)
#include "tst_motorcalculadora.moc"
