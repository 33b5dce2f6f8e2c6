// The box's rules without widgets: range order by field type, result codes by caption, the kind
// of question, range texts and the position of the box.
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
        for (const char *loc : {"es_ES", "C"}) {
            const bool es = QByteArray(loc) == "es_ES";
            auto fila = [&](const char *caso) -> QTestData & { return QTest::addRow("%s %s", loc, caso) << QString::fromLatin1(loc); };
            const char *f = "T(F) L(10) A(I) (/)";
            fila("fecha mostrada") << f << (es ? "01 feb 2009" : "01 Feb 2009") << (es ? "31 ene 2009" : "31 Jan 2009") << false;
            fila("fecha igual") << f << "01/02/2009" << (es ? "01 feb 2009" : "01 Feb 2009") << true;
            fila("fecha no por texto") << f << "9/1/2009" << "10/1/2009" << true;
            fila("desde en blanco") << f << "   " << "01/01/2000" << true;
            fila("hasta vacío") << f << "31/12/2009" << "" << true;
            const char *n = "T(N) L(10) A(D) (/)";
            fila("N por valor") << n << (es ? "9,00" : "9.00") << (es ? "10,00" : "10.00") << true;
            fila("N agrupado") << n << (es ? "1.000,00" : "1,000.00") << (es ? "999,50" : "999.50") << false;
            fila("n negativo") << "T(n) L(10) A(D) (/)" << "-5" << "-6" << false;
            // "D" reads the shown texts with "." as the decimal point, unconverted.
            fila("D rellenos") << "T(D) L(4) A(D) (/)" << "   9" << "  10" << true;
            fila("D con coma") << "T(D) L(6) A(D) (/)" << "1,5" << "1,2" << true;
            fila("texto b a") << "T(M) L(5) A(I) (/)" << "b" << "a" << false;
            fila("texto A a") << "T(M) L(5) A(I) (/)" << "A" << "a" << true;
            fila("texto por códigos") << "T(m) L(5) A(I) (/)" << "Z" << "Á" << true;
            fila("texto 9 10") << "T(m) L(5) A(I) (/)" << "9" << "10" << false;
        }
    }
    void rangoEnOrden()
    {
        QFETCH(QString, locale);
        QFETCH(QString, tag);
        QFETCH(QString, desde);
        QFETCH(QString, hasta);
        QFETCH(bool, enOrden);
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

    void codigos_data()
    {
        QTest::addColumn<QString>("titulo");
        QTest::addColumn<int>("codigo"); // -1: not a caption of the table
        QTest::newRow("Aceptar") << "Aceptar" << 1;
        QTest::newRow("Cancelar") << "Cancelar" << 2;
        QTest::newRow("Abortar") << "Abortar" << 3;
        QTest::newRow("Reintentar") << "Reintentar" << 4;
        QTest::newRow("Ignorar") << "Ignorar" << 5;
        QTest::newRow("Si") << "Si" << 6;
        QTest::newRow("No") << "No" << 7;
        QTest::newRow("Sí con tilde") << "Sí" << -1;
        QTest::newRow("minúsculas") << "aceptar" << -1;
        QTest::newRow("diseño") << "Boton1" << -1;
        QTest::newRow("vacío") << "" << -1;
    }
    void codigos()
    {
        QFETCH(QString, titulo);
        QFETCH(int, codigo);
        QCOMPARE(CodigoDeBoton(titulo).value_or(-1), codigo);
    }

    void preguntas_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<int>("tipo");
        QTest::newRow("TABLA") << "TABLA" << int(TipoPregunta::Lista);
        QTest::newRow("tabla en minúsculas") << "tabla" << int(TipoPregunta::Valor);
        QTest::newRow("TABLA con blanco") << "TABLA " << int(TipoPregunta::Valor);
        QTest::newRow("rango") << "T(F) L(10) A(I) (/)" << int(TipoPregunta::Rango);
        QTest::newRow("(/) en medio") << "T(F) (/) L(10)" << int(TipoPregunta::Valor);
        QTest::newRow("valor") << "T(N) L(10) A(D)" << int(TipoPregunta::Valor);
    }
    void preguntas()
    {
        QFETCH(QString, tag);
        QFETCH(int, tipo);
        QCOMPARE(int(TipoDePregunta(tag)), tipo);
    }

    // The first "ƒ" splits; the rest stays in the upper bound.
    void partirRango()
    {
        const QChar f(SeparadorRango);
        QCOMPARE(f.unicode(), char16_t(0x0192));
        QVERIFY(!PartirRango(QStringLiteral("01/01/2009")));
        const auto p = PartirRango(QStringLiteral("a") + f + QStringLiteral("b") + f + QStringLiteral("c"));
        QVERIFY(p);
        QCOMPARE(p->first, QStringLiteral("a"));
        QCOMPARE(p->second, QStringLiteral("b") + f + QStringLiteral("c"));
        const auto vacio = PartirRango(QString(f));
        QVERIFY(vacio && vacio->first.isEmpty() && vacio->second.isEmpty());
        QCOMPARE(UnirRango(QStringLiteral("1"), QString()), QStringLiteral("1") + f);
    }

    void posicion_data()
    {
        QTest::addColumn<float>("top");
        QTest::addColumn<float>("left");
        QTest::addColumn<bool>("sobre");
        QTest::addColumn<float>("topFinal");
        QTest::addColumn<float>("leftFinal");
        // Screen 12000 x 9000 twips from (1500, 0); box 7440 x 2100; window 6000 x 4500 at (3000, 1500).
        QTest::newRow("centrada") << -1.0f << -1.0f << false << 3450.0f << 3780.0f;
        QTest::newRow("solo vertical") << -1.0f << 200.0f << false << 3450.0f << 200.0f;
        QTest::newRow("solo horizontal") << 0.0f << -1.0f << false << 0.0f << 3780.0f;
        QTest::newRow("dada") << 10.0f << 20.0f << false << 10.0f << 20.0f;
        QTest::newRow("sobre ventana") << 10.0f << 20.0f << true << 2700.0f << 2280.0f;
        QTest::newRow("sobre ventana sin posición") << -1.0f << -1.0f << true << 2700.0f << 2280.0f;
    }
    void posicion()
    {
        QFETCH(float, top);
        QFETCH(float, left);
        QFETCH(bool, sobre);
        QFETCH(float, topFinal);
        QFETCH(float, leftFinal);
        const std::optional<QRectF> ventana = sobre ? std::optional<QRectF>(QRectF(3000, 1500, 6000, 4500)) : std::nullopt;
        PosicionCaja(top, left, QSizeF(7440, 2100), QRectF(1500, 0, 12000, 9000), ventana);
        QCOMPARE(top, topFinal);
        QCOMPARE(left, leftFinal);
    }
};

QTEST_GUILESS_MAIN(TstCajas)
#include "tst_cajas.moc"
