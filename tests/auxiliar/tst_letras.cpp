#include <kvr/error.h>
#include <kvr/letras.h>

#include <QtTest>

using namespace kvr;

class TstLetras : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void numero_data()
    {
        QTest::addColumn<qint64>("n");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("cero") << 0LL << u"cero"_qs;
        QTest::newRow("uno sin apócope") << 1LL << u"uno"_qs;
        QTest::newRow("dieciséis") << 16LL << u"dieciséis"_qs;
        QTest::newRow("veintidós") << 22LL << u"veintidós"_qs;
        QTest::newRow("treinta y uno") << 31LL << u"treinta y uno"_qs;
        QTest::newRow("cien") << 100LL << u"cien"_qs;
        QTest::newRow("ciento uno") << 101LL << u"ciento uno"_qs;
        QTest::newRow("quinientos") << 500LL << u"quinientos"_qs;
        QTest::newRow("mil") << 1000LL << u"mil"_qs;
        QTest::newRow("dos mil") << 2000LL << u"dos mil"_qs;
        QTest::newRow("veintiún mil") << 21000LL << u"veintiún mil"_qs;
        QTest::newRow("un millón") << 1000000LL << u"un millón"_qs;
        QTest::newRow("dos millones") << 2000000LL << u"dos millones"_qs;
        QTest::newRow("mil millones") << 1000000000LL << u"mil millones"_qs;
        QTest::newRow("mil un millones") << 1001000000LL << u"mil un millones"_qs;
        QTest::newRow("máximo") << 999999999999LL
            << u"novecientos noventa y nueve mil novecientos noventa y nueve millones novecientos "
               "noventa y nueve mil novecientos noventa y nueve"_qs;
        QTest::newRow("negativo") << -21LL << u"menos veintiuno"_qs;
    }
    void numero()
    {
        QFETCH(qint64, n);
        QFETCH(QString, esperado);
        QCOMPARE(NumeroEnLetras(n), esperado);
    }

    void importe_data()
    {
        QTest::addColumn<double>("importe");
        QTest::addColumn<QString>("moneda");
        QTest::addColumn<QString>("esperado");
        const QString E = u"EUR"_qs, P = u"ESP"_qs;
        QTest::newRow("un euro") << 1.0 << E << u"un euro"_qs;
        QTest::newRow("veintiún euros") << 21.0 << E << u"veintiún euros"_qs;
        QTest::newRow("de tras millón") << 1e6 << E << u"un millón de euros"_qs;
        QTest::newRow("de tras mil millones") << 1e9 << E << u"mil millones de euros"_qs;
        QTest::newRow("sin de tras mil") << 200000.0 << E << u"doscientos mil euros"_qs;
        QTest::newRow("céntimos") << 1234.56 << E
            << u"mil doscientos treinta y cuatro euros con cincuenta y seis céntimos"_qs;
        QTest::newRow("cero con céntimos") << 0.05 << E << u"cero euros con cinco céntimos"_qs;
        QTest::newRow("un céntimo apocopado") << 2.01 << E << u"dos euros con un céntimo"_qs;
        QTest::newRow("sin cero céntimos") << 7.0 << E << u"siete euros"_qs;
        QTest::newRow("redondeo a la mitad hacia arriba") << 1.005 << E << u"un euro con un céntimo"_qs;
        QTest::newRow("redondeo por debajo") << 1.004 << E << u"un euro"_qs;
        QTest::newRow("negativo") << -1.5 << E << u"menos un euro con cincuenta céntimos"_qs;
        QTest::newRow("negativo se aleja de cero") << -0.005 << E << u"menos cero euros con un céntimo"_qs;
        QTest::newRow("negativo que redondea a cero") << -0.004 << E << u"cero euros"_qs;
        QTest::newRow("máximo") << 999999999999.99 << E
            << u"novecientos noventa y nueve mil novecientos noventa y nueve millones novecientos "
               "noventa y nueve mil novecientos noventa y nueve euros con noventa y nueve céntimos"_qs;
        QTest::newRow("una peseta") << 1.0 << P << u"una peseta"_qs;
        QTest::newRow("veintiuna pesetas") << 21.0 << P << u"veintiuna pesetas"_qs;
        QTest::newRow("doscientas pesetas") << 200.0 << P << u"doscientas pesetas"_qs;
        QTest::newRow("miles femeninos") << 221000.0 << P << u"doscientas veintiuna mil pesetas"_qs;
        QTest::newRow("millones masculinos") << 200000000.0 << P << u"doscientos millones de pesetas"_qs;
        QTest::newRow("un millón doscientas mil") << 1200000.0 << P << u"un millón doscientas mil pesetas"_qs;
        QTest::newRow("pesetas sin céntimos") << 166.386 << P << u"ciento sesenta y seis pesetas"_qs;
        QTest::newRow("pesetas redondeo") << 2.5 << P << u"tres pesetas"_qs;
        QTest::newRow("pesetas sin doble redondeo") << 0.495 << P << u"cero pesetas"_qs;
    }
    void importe()
    {
        QFETCH(double, importe);
        QFETCH(QString, moneda);
        QFETCH(QString, esperado);
        QCOMPARE(ImporteEnLetras(importe, moneda), esperado);
    }

    void errores_data()
    {
        QTest::addColumn<int>("numero");
        QTest::addColumn<std::function<void()>>("llamada");
        QTest::newRow("número sobre el máximo") << 6 << std::function<void()>([] { NumeroEnLetras(1000000000000LL); });
        QTest::newRow("número bajo el mínimo") << 6 << std::function<void()>([] { NumeroEnLetras(-1000000000000LL); });
        QTest::newRow("importe que redondea al billón") << 6 << std::function<void()>([] { ImporteEnLetras(999999999999.995); });
        QTest::newRow("importe infinito") << 6 << std::function<void()>([] { ImporteEnLetras(qInf()); });
        QTest::newRow("otra moneda") << 5 << std::function<void()>([] { ImporteEnLetras(1, u"USD"_qs); });
    }
    void errores()
    {
        QFETCH(int, numero);
        QFETCH(std::function<void()>, llamada);
        try {
            llamada();
            QFAIL("no error");
        } catch (const ErrorEjecucion &e) {
            QCOMPARE(e.numero(), numero);
        }
    }
};

QTEST_GUILESS_MAIN(TstLetras)
#include "tst_letras.moc"
