#include "registro.h"

#include <kvr/fechas.h>

#include <QtTest>

using namespace kvr;

class TstFechas : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void leer_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("texto");
        QTest::addColumn<QDate>("esperada"); // null: not a date
        const QString es = u"es_ES"_qs, c = u"C"_qs;
        QTest::newRow("31 de febrero") << es << u"31/02/2009"_qs << QDate();
        QTest::newRow("29 de febrero bisiesto") << es << u"29/02/2024"_qs << QDate(2024, 2, 29);
        QTest::newRow("29 de febrero no bisiesto") << es << u"29/02/2023"_qs << QDate();
        QTest::newRow("año 09") << es << u"12/05/09"_qs << QDate(2009, 5, 12);
        QTest::newRow("año 29") << es << u"1/1/29"_qs << QDate(2029, 1, 1);
        QTest::newRow("año 30") << es << u"1/1/30"_qs << QDate(1930, 1, 1);
        QTest::newRow("año de cinco cifras") << es << u"1/1/20091"_qs << QDate();
        QTest::newRow("guiones") << es << u"12-05-2009"_qs << QDate(2009, 5, 12);
        QTest::newRow("dos partes: año actual") << es << u"12/05"_qs << QDate(2026, 5, 12);
        QTest::newRow("mes abreviado") << es << u"12 may 2009"_qs << QDate(2009, 5, 12);
        QTest::newRow("mes abreviado sept") << es << u"01 sept 2009"_qs << QDate(2009, 9, 1);
        QTest::newRow("mes abreviado sep") << es << u"01 sep 2009"_qs << QDate(2009, 9, 1);
        QTest::newRow("mes completo sin año") << es << u"12 mayo"_qs << QDate(2026, 5, 12);
        QTest::newRow("mes inglés en C") << c << u"3 Jan 2010"_qs << QDate(2010, 1, 3);
        QTest::newRow("mes desconocido") << es << u"3 foo 2010"_qs << QDate();
        QTest::newRow("barra final") << es << u"12/05/"_qs << QDate();
        QTest::newRow("barras dobles") << es << u"12//05/2009"_qs << QDate();
        QTest::newRow("vacío") << es << QString() << QDate();
        QTest::newRow("sólo barras") << es << u"//"_qs << QDate();
        QTest::newRow("día cero") << es << u"0/05/2009"_qs << QDate();
        QTest::newRow("número enorme") << es << u"99999999999999999999/1/2000"_qs << QDate();
    }
    void leer()
    {
        ServiciosGrabados servicios; // today: 21/11/2026
        QFETCH(QString, locale);
        QFETCH(QString, texto);
        QFETCH(QDate, esperada);
        const auto f = LeerFecha(texto, QLocale(locale));
        if (esperada.isNull()) {
            QVERIFY2(!f.has_value(), qPrintable(f ? f->toString() : QString()));
        } else {
            QVERIFY(f.has_value());
            QCOMPARE(*f, esperada);
        }
    }

    void formato_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QDate>("fecha");
        QTest::addColumn<QString>("patron");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("edición") << u"es_ES"_qs << QDate(2009, 5, 2) << u"dd/mm/yyyy"_qs << u"02/05/2009"_qs;
        QTest::newRow("mes abreviado") << u"es_ES"_qs << QDate(2009, 5, 12) << u"dd mmm yyyy"_qs << u"12 may 2009"_qs;
        QTest::newRow("mes completo") << u"es_ES"_qs << QDate(2009, 9, 1) << u"dd mmmm"_qs << u"01 septiembre"_qs;
        QTest::newRow("inglés") << u"C"_qs << QDate(2009, 1, 12) << u"dd mmm yyyy"_qs << u"12 Jan 2009"_qs;
        QTest::newRow("año corto") << u"C"_qs << QDate(2009, 1, 2) << u"d/m/yy"_qs << u"2/1/09"_qs;
    }
    void formato()
    {
        QFETCH(QString, locale);
        QFETCH(QDate, fecha);
        QFETCH(QString, patron);
        QFETCH(QString, esperado);
        QCOMPARE(FormatoFecha(fecha, patron, QLocale(locale)), esperado);
    }

    void serie_data()
    {
        QTest::addColumn<QDate>("fecha");
        QTest::addColumn<qint64>("serie");
        QTest::newRow("origen") << QDate(1899, 12, 30) << qint64(0);
        QTest::newRow("antes del origen") << QDate(1899, 12, 29) << qint64(-1);
    }
    void serie()
    {
        QFETCH(QDate, fecha);
        QFETCH(qint64, serie);
        QCOMPARE(SerieFecha(fecha), serie);
        QCOMPARE(FechaDeSerie(serie), fecha);
    }
};

QTEST_GUILESS_MAIN(TstFechas)
#include "tst_fechas.moc"
