// Numbers and dates read and written the way the runtime does, under a comma-decimal and a
// point-decimal locale.
#include "comun/ficheros.h"
#include "registro.h"

#include <kvr/error.h>
#include <kvr/fechas.h>
#include <kvr/numeros.h>

#include <QtTest>

using namespace kvr;
using prueba::errorDe;


class TstConversiones : public QObject {
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
        QCOMPARE(errorDe([] { Val(u"1e400"_qs); }), int(ErrorEjecucion::Desbordamiento));
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
        QTest::newRow("es texto") << u"es_ES"_qs << u"abc"_qs << false << 0.0;
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
        QCOMPARE(ValorRegional(texto, &leido, QLocale(locale)), esperado);
        QCOMPARE(leido, ok);
        QCOMPARE(EsNumeroRegional(texto, QLocale(locale)), ok);
    }

    void formato_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<double>("valor");
        QTest::addColumn<QString>("patron");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("es miles") << u"es_ES"_qs << -1234.5 << u"#,##0.00"_qs << u"-1.234,50"_qs;
        QTest::newRow("es cero sin entero") << u"es_ES"_qs << 0.5 << u"#.00"_qs << u",50"_qs;
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

    // Rounded half to even; an overflow outside -32768..32767.
    void enteroCorto()
    {
        const int desborda = ErrorEjecucion::Desbordamiento;
        QCOMPARE(EnteroCorto(2.5), 2);
        QCOMPARE(EnteroCorto(3.5), 4);
        QCOMPARE(EnteroCorto(32767.0), 32767);
        QCOMPARE(errorDe([] { EnteroCorto(32768.0); }), desborda);
        QCOMPARE(errorDe([] { EnteroCorto(-32769.0); }), desborda);
    }

    // Under a comma-decimal locale; the month names of the point-decimal one are the field suite's.
    void leerFecha_data()
    {
        QTest::addColumn<QString>("texto");
        QTest::addColumn<QDate>("esperada"); // null: not a date
        QTest::newRow("29 de febrero bisiesto") << u"29/02/2024"_qs << QDate(2024, 2, 29);
        QTest::newRow("29 de febrero no bisiesto") << u"29/02/2023"_qs << QDate();
        QTest::newRow("año 29") << u"1/1/29"_qs << QDate(2029, 1, 1);
        QTest::newRow("año 30") << u"1/1/30"_qs << QDate(1930, 1, 1);
        QTest::newRow("año de cinco cifras") << u"1/1/20091"_qs << QDate();
        QTest::newRow("guiones") << u"12-05-2009"_qs << QDate(2009, 5, 12);
        QTest::newRow("dos partes: año actual") << u"12/05"_qs << QDate(2026, 5, 12);
        QTest::newRow("mes abreviado sept") << u"01 sept 2009"_qs << QDate(2009, 9, 1);
        QTest::newRow("mes abreviado sep") << u"01 sep 2009"_qs << QDate(2009, 9, 1);
        QTest::newRow("mes desconocido") << u"3 foo 2010"_qs << QDate();
        QTest::newRow("barra final") << u"12/05/"_qs << QDate();
        QTest::newRow("barras dobles") << u"12//05/2009"_qs << QDate();
        QTest::newRow("vacío") << QString() << QDate();
        QTest::newRow("día cero") << u"0/05/2009"_qs << QDate();
        QTest::newRow("número enorme") << u"99999999999999999999/1/2000"_qs << QDate();
    }
    void leerFecha()
    {
        ServiciosGrabados servicios; // today: 21/11/2026
        QFETCH(QString, texto);
        QFETCH(QDate, esperada);
        QCOMPARE(LeerFecha(texto, QLocale(u"es_ES"_qs)).value_or(QDate()), esperada);
    }

    // The month names and the dd/mm/yyyy and dd mmm yyyy forms are the field suite's; here the
    // full month name against the abbreviated one, and the short forms.
    void formatoFecha()
    {
        const QDate d(2009, 9, 1);
        QCOMPARE(FormatoFecha(d, u"dd mmmm"_qs, QLocale(u"es_ES"_qs)), u"01 septiembre"_qs);
        QCOMPARE(FormatoFecha(d, u"d/m/yy"_qs, QLocale::c()), u"1/9/09"_qs);
    }

    // Days since 30/12/1899, both ways.
    void serie()
    {
        QCOMPARE(SerieFecha(QDate(1899, 12, 30)), 0);
        QCOMPARE(FechaDeSerie(0), QDate(1899, 12, 30));
        QCOMPARE(SerieFecha(QDate(1899, 12, 29)), -1);
        QCOMPARE(FechaDeSerie(-1), QDate(1899, 12, 29));
    }
};

QTEST_GUILESS_MAIN(TstConversiones)
#include "tst_conversiones.moc"
