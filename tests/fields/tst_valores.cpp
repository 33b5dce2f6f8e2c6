#include "registro.h"

#include <kvr/error.h>
#include <kvr/valores.h>

#include <QtTest>

using namespace kvr;

class TstValores : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        FechaTrabajo = QDate(2026, 11, 21);
    }
    void cleanup()
    {
        QLocale::setDefault(QLocale::c());
    }

    void formatear_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("valor");
        QTest::addColumn<QString>("esperado");
        const QString es = u"es_ES"_qs, c = u"C"_qs;
        const QString N = u"T(N) L(12) A(D)"_qs;
        QTest::newRow("N es") << es << N << u"1234.5"_qs << u"1.234,50"_qs;
        QTest::newRow("N C") << c << N << u"1234.5"_qs << u"1,234.50"_qs;
        QTest::newRow("N en blanco queda vacío") << es << N << u"   "_qs << QString();
        QTest::newRow("N forma de pantalla se lee hasta la coma") << es << N << u"1.234,50"_qs << u"1,23"_qs;
        QTest::newRow("N D(0)") << es << u"T(N) L(9) A(D) D(0)"_qs << u"1234.5"_qs << u"1.235"_qs;
        QTest::newRow("N D negativo") << c << u"T(N) L(9) A(D) D(-1)"_qs << u"1234.4"_qs << u"1,234"_qs;
        QTest::newRow("n D(3)") << es << u"T(n) L(9) A(D) D(3)"_qs << u"0.5"_qs << u"0,500"_qs;
        QTest::newRow("n D vacío es 2") << c << u"T(n) L(9) A(D) D()"_qs << u"7"_qs << u"7.00"_qs;
        QTest::newRow("D ceros") << c << u"T(D) L(6) A(C)"_qs << u"45"_qs << u"000045"_qs;
        QTest::newRow("D izquierda") << c << u"T(D) L(6) A(I)"_qs << u"45"_qs << u"45    "_qs;
        QTest::newRow("D otro ajuste") << c << u"T(D) L(6) A(X)"_qs << u"45"_qs << QString();
        QTest::newRow("D derecha quita blancos") << c << u"T(D) L(6) A(D)"_qs << u"  45"_qs << u"    45"_qs;
        QTest::newRow("D ceros corta por la izquierda") << c << u"T(D) L(6) A(C)"_qs << u"1234567"_qs << u"234567"_qs;
        QTest::newRow("D vacío") << c << u"T(D) L(6) A(C)"_qs << u" "_qs << QString();
        QTest::newRow("F día") << es << u"T(F) L(10) A(I)"_qs << u"5"_qs << u"05 nov 2026"_qs;
        QTest::newRow("F seis cifras") << es << u"T(F) L(10) A(I)"_qs << u"120509"_qs << u"12 may 2009"_qs;
        QTest::newRow("F imposible") << es << u"T(F) L(10) A(I)"_qs << u"31/02"_qs << QString();
        QTest::newRow("F inglés") << c << u"T(F) L(10) A(I)"_qs << u"3/1/2010"_qs << u"03 Jan 2010"_qs;
        QTest::newRow("f sin año") << es << u"T(f) L(10) A(I)"_qs << u"12/05"_qs << u"12 mayo"_qs;
        QTest::newRow("X letra") << es << u"T(X) L(9) A(I)"_qs << u"12345678?"_qs << u"12345678Z"_qs;
        QTest::newRow("H relleno") << es << u"T(H) L(5) A(I)"_qs << u"9:5"_qs << u"09:05"_qs;
        QTest::newRow("H vacío") << es << u"T(H) L(5) A(I)"_qs << QString() << u"00:00"_qs;
        QTest::newRow("C cuenta") << es << u"T(C) L(8) A(I)"_qs << u"43.15"_qs << u"43000015"_qs;
        QTest::newRow("texto libre") << es << u"T(m) L(30) A(I)"_qs << u" Hola, ñandú "_qs << u" Hola, ñandú "_qs;
    }
    void formatear()
    {
        ServiciosGrabados servicios;
        QFETCH(QString, locale);
        QFETCH(QString, tag);
        QFETCH(QString, valor);
        QFETCH(QString, esperado);
        QLocale::setDefault(QLocale(locale));
        QCOMPARE(FormatearCampo(valor, tag), esperado);
        QVERIFY(servicios.mensajes.isEmpty());
    }

    void formatearErrores_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("valor");
        QTest::newRow("cuenta demasiado larga") << u"T(C) L(8) A(I)"_qs << u"123456789"_qs;
        QTest::newRow("longitud negativa") << u"T(D) L(-3) A(C)"_qs << u"45"_qs;
        QTest::newRow("longitud enorme") << u"T(D) L(99999999) A(C)"_qs << u"45"_qs;
        QTest::newRow("decimales enormes") << u"T(N) L(9) A(D) D(1e9)"_qs << u"4"_qs;
    }
    void formatearErrores()
    {
        QFETCH(QString, tag);
        QFETCH(QString, valor);
        QVERIFY_THROWS_EXCEPTION(ErrorEjecucion, FormatearCampo(valor, tag));
    }

    void edicion_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("valor");
        QTest::addColumn<QString>("esperado");
        const QString es = u"es_ES"_qs, c = u"C"_qs;
        const QString N = u"T(N) L(12) A(D)"_qs;
        QTest::newRow("es pantalla a edición") << es << N << u"1.234,50"_qs << u"1234.50"_qs;
        QTest::newRow("C pantalla a edición") << c << N << u"1,234.50"_qs << u"1234.50"_qs;
        QTest::newRow("es coma decimal") << es << N << u"0,5"_qs << u"0.50"_qs;
        QTest::newRow("es punto tecleado") << es << N << u"1234.5"_qs << u"1234.50"_qs;
        QTest::newRow("sin decimales") << es << u"T(N) L(9) A(D) D(0)"_qs << u"1.234"_qs << u"1234"_qs;
        QTest::newRow("vacío") << es << N << QString() << QString();
        QTest::newRow("no numérico") << es << N << u"abc"_qs << u"abc"_qs;
        QTest::newRow("negativo") << es << N << u"-1.234,5"_qs << u"-1234.50"_qs;
        QTest::newRow("fecha de pantalla") << es << u"T(F) L(10) A(I)"_qs << u"12 may 2009"_qs << u"12/05/2009"_qs;
        QTest::newRow("día y mes del año actual") << es << u"T(f) L(10) A(I)"_qs << u"12 mayo"_qs << u"12/05/2026"_qs;
        QTest::newRow("fecha no válida queda") << es << u"T(F) L(10) A(I)"_qs << u"xyz"_qs << u"xyz"_qs;
        QTest::newRow("mayúsculas tal cual") << es << u"T(M) L(8) A(I)"_qs << u"1,5"_qs << u"1,5"_qs;
    }
    void edicion()
    {
        ServiciosGrabados servicios;
        QFETCH(QString, locale);
        QFETCH(QString, tag);
        QFETCH(QString, valor);
        QFETCH(QString, esperado);
        QLocale::setDefault(QLocale(locale));
        QCOMPARE(TextoEdicion(valor, tag), esperado);
    }

    void completarFecha_data()
    {
        QTest::addColumn<QString>("valor");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("día") << u"5"_qs << u"5/11/2026"_qs;
        QTest::newRow("día y mes cuatro cifras") << u"1205"_qs << u"12/05/2026"_qs;
        QTest::newRow("día y mes tres cifras") << u"125"_qs << u"12/5/2026"_qs;
        QTest::newRow("seis cifras") << u"120509"_qs << u"12/05/09"_qs;
        QTest::newRow("día y barra") << u"12/"_qs << u"12/11/2026"_qs;
        QTest::newRow("día y mes") << u"12/05"_qs << u"12/05/2026"_qs;
        QTest::newRow("barra final") << u"12/05/"_qs << u"12/05/2026"_qs;
        QTest::newRow("tres barras") << u"1/2/3/4"_qs << QString();
        QTest::newRow("31 de febrero") << u"31/02"_qs << QString();
        QTest::newRow("vacío") << QString() << QString();
        QTest::newRow("día 32") << u"32"_qs << QString();
        QTest::newRow("cinco cifras") << u"12059"_qs << u"12/05/9"_qs;
    }
    void completarFecha()
    {
        ServiciosGrabados servicios;
        QFETCH(QString, valor);
        QFETCH(QString, esperado);
        QCOMPARE(CompletarFecha(valor), esperado);
    }

    void fechaTrabajoEsHoyAlPrincipio()
    {
        ServiciosGrabados servicios;
        servicios.hoy = QDate(2031, 2, 3);
        FechaTrabajo = QDate();
        QCOMPARE(HoyDMA(), u"03/02/2031"_qs);
        QCOMPARE(CompletarFecha(u"7"_qs), u"7/2/2031"_qs);
        QCOMPARE(FechaTrabajo, QDate(2031, 2, 3));
        servicios.hoy = QDate(2031, 5, 1); // kept for the life of the program
        QCOMPARE(CompletarFecha(u"7"_qs), u"7/2/2031"_qs);
    }

    void letraNIF_data()
    {
        QTest::addColumn<QString>("valor");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("resto 0") << u"23?"_qs << u"23T"_qs;
        QTest::newRow("sólo interrogación") << u"?"_qs << QString();
        QTest::newRow("cero") << u"0?"_qs << u"0"_qs;
        QTest::newRow("ceros") << u"0000?"_qs << u"0000"_qs;
        QTest::newRow("paréntesis") << u"ABC(?"_qs << u"ABC(?"_qs;
        QTest::newRow("ya tiene letra") << u"12345678Z"_qs << u"12345678Z"_qs;
        QTest::newRow("con decimales") << u"1.5?"_qs << u"1.5?"_qs;
        QTest::newRow("negativo") << u"-5?"_qs << u"-5"_qs;
    }
    void letraNIF()
    {
        QFETCH(QString, valor);
        QFETCH(QString, esperado);
        LetraNIF(valor);
        QCOMPARE(valor, esperado);
    }

    void completarCuenta_data()
    {
        QTest::addColumn<QString>("valor");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("punto grupo de dos") << u"43.15"_qs << u"43000015"_qs;
        QTest::newRow("sin punto grupo de tres") << u"57215"_qs << u"57200015"_qs;
        QTest::newRow("acreedores") << u"41.5"_qs << u"41000005"_qs;
        QTest::newRow("proveedores") << u"40123"_qs << u"40000123"_qs;
        QTest::newRow("ocho cifras") << u"12345678"_qs << u"12345678"_qs;
        QTest::newRow("dos cifras") << u"43"_qs << u"43000000"_qs;
        QTest::newRow("una cifra") << u"5"_qs << u"50000000"_qs;
        QTest::newRow("blancos") << u"  4315 "_qs << u"43000015"_qs;
        QTest::newRow("vacío") << u"   "_qs << QString();
        QTest::newRow("punto en la posición 9") << u"12345678.1"_qs << u"12345678"_qs;
        QTest::newRow("punto delante") << u".5"_qs << u"00000005"_qs;
    }
    void completarCuenta()
    {
        QFETCH(QString, valor);
        QFETCH(QString, esperado);
        CompletarCuenta(valor);
        QCOMPARE(valor, esperado);
    }

    void completarCuentaDemasiadoLarga_data()
    {
        QTest::addColumn<QString>("valor");
        QTest::newRow("nueve cifras") << u"123456789"_qs;
        QTest::newRow("punto en la posición 10") << u"123456789.1"_qs;
    }
    void completarCuentaDemasiadoLarga()
    {
        QFETCH(QString, valor);
        try {
            CompletarCuenta(valor);
            QFAIL("a code too long must raise an error");
        } catch (const ErrorEjecucion &e) {
            QCOMPARE(e.numero(), int(ErrorEjecucion::ArgumentoNoValido));
        }
    }
};

QTEST_GUILESS_MAIN(TstValores)
#include "tst_valores.moc"
