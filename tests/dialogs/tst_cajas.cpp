// The order of a range, by the type of its fields, without widgets. (The button sets, codes,
// question kinds and positions are checked on the box itself.)
#include <kvr/cajas.h>
#include <kvr/error.h>

#include "registro.h"

#include <QtTest>

using namespace kvr;

class TstCajas : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void rangoEnOrden_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("desde");
        QTest::addColumn<QString>("hasta");
        QTest::addColumn<bool>("enOrden");
        // Dates and amounts are read by the locale's rules, in both.
        for (const char *loc : {"es_ES", "C"}) {
            const bool es = QByteArray(loc) == "es_ES";
            auto fila = [&](const char *caso) -> QTestData & { return QTest::addRow("%s %s", loc, caso) << QString::fromLatin1(loc); };
            const char *f = "T(F) L(10) A(I) (/)";
            fila("fecha mostrada") << f << (es ? "01 feb 2009" : "01 Feb 2009") << (es ? "31 ene 2009" : "31 Jan 2009") << false;
            const char *n = "T(N) L(10) A(D) (/)";
            if (es)
                fila("fecha igual") << f << "01/02/2009" << "01 feb 2009" << true;
            fila("N por valor") << n << (es ? "9,00" : "9.00") << (es ? "10,00" : "10.00") << true;
            fila("N agrupado") << n << (es ? "1.000,00" : "1,000.00") << (es ? "999,50" : "999.50") << false;
        }
        const auto es = [](const char *caso) -> QTestData & { return QTest::newRow(caso) << u"es_ES"_qs; };
        const char *f = "T(F) L(10) A(I) (/)";
        es("desde en blanco") << f << "   " << "01/01/2000" << true;
        es("hasta vacío") << f << "31/12/2009" << "" << true;
        es("n negativo") << "T(n) L(10) A(D) (/)" << "-5" << "-6" << false;
        // "D" reads the shown texts with "." as the decimal point, unconverted.
        es("D con coma") << "T(D) L(6) A(D) (/)" << "1,5" << "1,2" << true;
        es("D al revés por valor, no por texto") << "T(D) L(4) A(D) (/)" << "  12" << "   3" << false;
        es("texto A a") << "T(M) L(5) A(I) (/)" << "A" << "a" << true;
        es("texto por códigos") << "T(m) L(5) A(I) (/)" << "Z" << "Á" << true;
    }
    void rangoEnOrden()
    {
        QFETCH(QString, locale); QFETCH(QString, tag); QFETCH(QString, desde);
        QFETCH(QString, hasta); QFETCH(bool, enOrden);
        QLocale::setDefault(QLocale(locale));
        ServiciosGrabados grabados;
        QCOMPARE(RangoEnOrden(desde, hasta, tag), enOrden);
        QVERIFY(grabados.mensajes.isEmpty());
    }

    // A date that cannot be read stops the check with a run-time error.
    void fechaIlegible()
    {
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
        QVERIFY_THROWS_EXCEPTION(ErrorEjecucion, RangoEnOrden(QStringLiteral("31/02/2009"), QStringLiteral("01/03/2009"), QStringLiteral("T(F) L(10) A(I) (/)")));
    }
};

QTEST_GUILESS_MAIN(TstCajas)
#include "tst_cajas.moc"
