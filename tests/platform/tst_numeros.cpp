#include <kvr/error.h>
#include <kvr/numeros.h>

#include <QtTest>

using namespace kvr;

class TstNumeros : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void val_data()
    {
        QTest::addColumn<QString>("texto");
        QTest::addColumn<double>("esperado");
        QTest::newRow("vacío") << QString() << 0.0;
        QTest::newRow("se para en la coma") << u"1.234,50"_qs << 1.234;
        QTest::newRow("signo y blanco") << u"- 5.5"_qs << -5.5;
        QTest::newRow("segundo punto corta") << u"1.2.3"_qs << 1.2;
        QTest::newRow("exponente D") << u"2D2"_qs << 200.0;
        QTest::newRow("más delante") << u"+7"_qs << 7.0;
        QTest::newRow("subdesbordamiento") << u"1e-400"_qs << 0.0;
    }
    void val()
    {
        QFETCH(QString, texto);
        QFETCH(double, esperado);
        QCOMPARE(Val(texto), esperado);
    }

    void valDesborda()
    {
        int numero = 0;
        try {
            Val(u"1e400"_qs);
        } catch (const ErrorEjecucion &e) {
            numero = e.numero();
        }
        QCOMPARE(numero, int(ErrorEjecucion::Desbordamiento));
    }

    void regional_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("texto");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<double>("esperado");
        QTest::newRow("es millones") << u"es_ES"_qs << u"1.234.567,5"_qs << true << 1234567.5;
        QTest::newRow("es blancos") << u"es_ES"_qs << u"  12  "_qs << true << 12.0;
        QTest::newRow("es punto como decimal") << u"es_ES"_qs << u"1234.50"_qs << true << 1234.5;
        QTest::newRow("es punto de miles") << u"es_ES"_qs << u"1.234"_qs << true << 1234.0;
        QTest::newRow("es negativo") << u"es_ES"_qs << u"-0,5"_qs << true << -0.5;
        QTest::newRow("es texto") << u"es_ES"_qs << u"abc"_qs << false << 0.0;
        QTest::newRow("C agrupado") << u"C"_qs << u"1,234.50"_qs << true << 1234.5;
        QTest::newRow("C coma como decimal") << u"C"_qs << u"1,5"_qs << true << 1.5;
        QTest::newRow("C exponente") << u"C"_qs << u"2.5E2"_qs << true << 250.0;
    }
    void regional()
    {
        QFETCH(QString, locale);
        QFETCH(QString, texto);
        QFETCH(bool, ok);
        QFETCH(double, esperado);
        bool leido = !ok;
        const double v = ValorRegional(texto, &leido, QLocale(locale));
        QCOMPARE(leido, ok);
        QCOMPARE(v, esperado);
        QCOMPARE(EsNumeroRegional(texto, QLocale(locale)), ok);
    }

    void formato_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<double>("valor");
        QTest::addColumn<QString>("patron");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("es miles") << u"es_ES"_qs << 1234.5 << u"#,##0.00"_qs << u"1.234,50"_qs;
        QTest::newRow("es cero sin entero") << u"es_ES"_qs << 0.5 << u"#.00"_qs << u",50"_qs;
        QTest::newRow("es negativo") << u"es_ES"_qs << -1234.5 << u"#,##0.00"_qs << u"-1.234,50"_qs;
        QTest::newRow("C miles") << u"C"_qs << 1234.5 << u"#,##0.00"_qs << u"1,234.50"_qs;
        QTest::newRow("C tres cifras no agrupa") << u"C"_qs << 999.0 << u"#,##0"_qs << u"999"_qs;
        QTest::newRow("C redondeo medio arriba") << u"C"_qs << 2.675 << u"0.00"_qs << u"2.68"_qs;
        QTest::newRow("C redondeo negativo") << u"C"_qs << -0.125 << u"0.00"_qs << u"-0.13"_qs;
        QTest::newRow("C acarreo") << u"C"_qs << 999.996 << u"#,##0.00"_qs << u"1,000.00"_qs;
        QTest::newRow("C menos cero desaparece") << u"C"_qs << -0.001 << u"0.00"_qs << u"0.00"_qs;
        QTest::newRow("C decimales opcionales") << u"C"_qs << 1.5 << u"0.##"_qs << u"1.5"_qs;
        QTest::newRow("C grande") << u"C"_qs << 1e20 << u"#,##0"_qs << u"100,000,000,000,000,000,000"_qs;
        QTest::newRow("C sección negativa") << u"C"_qs << -5.0 << u"0.00;(0.00)"_qs << u"(5.00)"_qs;
        QTest::newRow("C sección cero") << u"C"_qs << 0.0 << u"0.00;-0.00;cero"_qs << u"cero"_qs;
    }
    void formato()
    {
        QFETCH(QString, locale);
        QFETCH(double, valor);
        QFETCH(QString, patron);
        QFETCH(QString, esperado);
        QCOMPARE(Formato(valor, patron, QLocale(locale)), esperado);
    }

    void enteroCorto_data()
    {
        QTest::addColumn<double>("valor");
        QTest::addColumn<int>("esperado");
        QTest::addColumn<bool>("desborda");
        QTest::newRow("medio a par abajo") << 2.5 << 2 << false;
        QTest::newRow("medio a par arriba") << 3.5 << 4 << false;
        QTest::newRow("límite") << 32767.0 << 32767 << false;
        QTest::newRow("fuera") << 32768.0 << 0 << true;
        QTest::newRow("negativo fuera") << -32769.0 << 0 << true;
    }
    void enteroCorto()
    {
        QFETCH(double, valor);
        QFETCH(int, esperado);
        QFETCH(bool, desborda);
        if (desborda)
            QVERIFY_THROWS_EXCEPTION(ErrorEjecucion, EnteroCorto(valor));
        else
            QCOMPARE(EnteroCorto(valor), esperado);
    }
};

QTEST_GUILESS_MAIN(TstNumeros)
#include "tst_numeros.moc"
