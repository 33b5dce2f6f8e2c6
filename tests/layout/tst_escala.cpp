// The layout maths without widgets: the factor from the window and the work area (15 twips a
// pixel unless said) and the parked-control rule.
#include <kvr/escala.h>

#include <QTest>

using namespace kvr;

class TestEscala : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void factor_data()
    {
        QTest::addColumn<QSizeF>("ventana");   // pixels
        QTest::addColumn<QSizeF>("util");      // twips
        QTest::addColumn<QSizeF>("pedido");    // ancho, alto in pixels (0: halfway)
        QTest::addColumn<float>("tpp");
        QTest::addColumn<float>("esperado");   // 0: no factor, an earlier one survives
        const QSizeF area(12000, 9000), mitad(0, 0);
        // 6000 twips on 12000: target 9000, 1.5; the height alone would allow 2.0.
        QTest::newRow("ancho manda") << QSizeF(400, 200) << area << mitad << 15.f << 1.5f;
        // 6000 twips high on 9000: target 7500, 1.25 applies to both directions.
        QTest::newRow("alto manda") << QSizeF(400, 400) << area << mitad << 15.f << 1.25f;
        QTest::newRow("mayor que el área encoge") << QSizeF(1000, 600) << area << mitad << 15.f << 0.9f;
        QTest::newRow("alto pedido") << QSizeF(400, 200) << area << QSizeF(0, 100) << 15.f << 0.5f;
        // At 120 dpi a pixel is 12 twips: 4800 twips aiming at 8400.
        QTest::newRow("120 dpi") << QSizeF(400, 200) << QSizeF(12000, 12000) << mitad << 12.f << 1.75f;
        QTest::newRow("ventana sin ancho") << QSizeF(0, 200) << area << mitad << 15.f << 0.f;
        QTest::newRow("ancho negativo") << QSizeF(400, 200) << area << QSizeF(-10, 0) << 15.f << 0.f;
    }
    void factor()
    {
        QFETCH(QSizeF, ventana); QFETCH(QSizeF, util); QFETCH(QSizeF, pedido);
        QFETCH(float, tpp); QFETCH(float, esperado);
        FactorX = FactorY = 3.0f;
        const bool hecho = CalcularFactores(float(ventana.width()), float(ventana.height()),
                                            float(util.width()), float(util.height()),
                                            float(pedido.width()), float(pedido.height()), tpp, tpp);
        QCOMPARE(hecho, esperado != 0.f);
        QCOMPARE(FactorX, hecho ? esperado : 3.0f);
        QCOMPARE(FactorY, FactorX);
    }

    void izquierda_data()
    {
        QTest::addColumn<float>("izquierda");
        QTest::addColumn<float>("tpp");
        QTest::addColumn<float>("esperado");
        QTest::newRow("aparcado en twips") << -60000.f << 1.f << -52500.f;
        QTest::newRow("-40000 twips se escala") << -40000.f << 1.f << -60000.f;
        QTest::newRow("justo en el límite") << -50000.f << 1.f << -75000.f;
    }
    void izquierda()
    {
        QFETCH(float, izquierda); QFETCH(float, tpp); QFETCH(float, esperado);
        FactorX = FactorY = 1.5f;
        QCOMPARE(EscalaIzquierda(izquierda, tpp), esperado);
    }
};

QTEST_APPLESS_MAIN(TestEscala)
#include "tst_escala.moc"
