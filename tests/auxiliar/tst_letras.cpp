#include <kvr/error.h>
#include <kvr/letras.h>

#include <QtTest>

using namespace kvr;

class TstLetras : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // One row a rule. No currency: NumeroEnLetras; "error N": the run-time error it raises.
    void enLetras_data()
    {
        QTest::addColumn<double>("cifra");
        QTest::addColumn<QString>("moneda");
        QTest::addColumn<QString>("esperado");
        const QString N, E = u"EUR"_qs, P = u"ESP"_qs;
        const QString maximo = u"novecientos noventa y nueve mil novecientos noventa y nueve millones "
                               "novecientos noventa y nueve mil novecientos noventa y nueve"_qs;
        QTest::newRow("cien") << 100.0 << N << u"cien"_qs;
        QTest::newRow("veintiún mil uno") << 21001.0 << N << u"veintiún mil uno"_qs;
        QTest::newRow("mil un millones") << 1001000000.0 << N << u"mil un millones"_qs;
        QTest::newRow("negativo, uno sin apócope") << -121.0 << N << u"menos ciento veintiuno"_qs;
        QTest::newRow("máximo") << 999999999999.0 << N << maximo;
        QTest::newRow("sobre el máximo") << 1e12 << N << u"error 6"_qs;
        QTest::newRow("bajo el mínimo") << -1e12 << N << u"error 6"_qs;
        QTest::newRow("veintiún euros") << 21.0 << E << u"veintiún euros"_qs;
        QTest::newRow("de tras millones") << 1e6 << E << u"un millón de euros"_qs;
        QTest::newRow("redondeo de lo escrito") << 1.005 << E << u"un euro con un céntimo"_qs;
        QTest::newRow("negativo") << -1.5 << E << u"menos un euro con cincuenta céntimos"_qs;
        QTest::newRow("negativo se aleja de cero") << -0.005 << E << u"menos cero euros con un céntimo"_qs;
        QTest::newRow("negativo que redondea a cero") << -0.004 << E << u"cero euros"_qs;
        QTest::newRow("importe máximo") << 999999999999.99 << E
                                        << maximo + u" euros con noventa y nueve céntimos"_qs;
        QTest::newRow("redondea al billón") << 999999999999.995 << E << u"error 6"_qs;
        QTest::newRow("infinito") << qInf() << E << u"error 6"_qs;
        QTest::newRow("otra moneda") << 1.0 << u"USD"_qs << u"error 5"_qs;
        QTest::newRow("una peseta") << 1.0 << P << u"una peseta"_qs;
        QTest::newRow("miles femeninos") << 221000.0 << P << u"doscientas veintiuna mil pesetas"_qs;
        QTest::newRow("millones masculinos") << 2e8 << P << u"doscientos millones de pesetas"_qs;
        QTest::newRow("pesetas enteras") << 2.5 << P << u"tres pesetas"_qs;
        QTest::newRow("pesetas sin doble redondeo") << 0.495 << P << u"cero pesetas"_qs;
    }
    void enLetras()
    {
        QFETCH(double, cifra);
        QFETCH(QString, moneda);
        QFETCH(QString, esperado);
        QString texto;
        try {
            texto = moneda.isNull() ? NumeroEnLetras(qint64(cifra)) : ImporteEnLetras(cifra, moneda);
        } catch (const ErrorEjecucion &e) {
            texto = u"error "_qs + QString::number(e.numero());
        }
        QCOMPARE(texto, esperado);
    }
};

QTEST_GUILESS_MAIN(TstLetras)
#include "tst_letras.moc"
