// The layout maths without widgets: factors from the window and the work area, the parked-control
// rule and the centring position.
#include <kvr/escala.h>

#include <QTest>

using namespace kvr;

class TestEscala : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        FactorX = FactorY = 0.0f;
        SinEscalar = false;
    }

    void factor_data()
    {
        QTest::addColumn<float>("anchoVentana");
        QTest::addColumn<float>("altoVentana");
        QTest::addColumn<float>("anchoUtil");
        QTest::addColumn<float>("altoUtil");
        QTest::addColumn<float>("ancho");
        QTest::addColumn<float>("alto");
        QTest::addColumn<float>("tpp");
        QTest::addColumn<float>("esperado");
        // 6000 twips on 12000: target 9000, factor 1.5; the height would allow 2.0.
        QTest::newRow("ancho manda") << 400.f << 200.f << 12000.f << 9000.f << 0.f << 0.f << 15.f << 1.5f;
        // Same width, but 6000 twips high on 9000: target 7500, 1.25 applies to both.
        QTest::newRow("alto manda") << 400.f << 400.f << 12000.f << 9000.f << 0.f << 0.f << 15.f << 1.25f;
        QTest::newRow("ventana del tamaño del área") << 800.f << 600.f << 12000.f << 9000.f << 0.f << 0.f << 15.f << 1.0f;
        QTest::newRow("ventana mayor que el área encoge") << 1000.f << 600.f << 12000.f << 9000.f << 0.f << 0.f << 15.f << 0.9f;
        QTest::newRow("ancho pedido en pixeles") << 400.f << 200.f << 12000.f << 9000.f << 800.f << 0.f << 15.f << 2.0f;
        QTest::newRow("alto pedido en pixeles") << 400.f << 200.f << 12000.f << 9000.f << 0.f << 100.f << 15.f << 0.5f;
        // At 120 dpi a pixel is 12 twips: 400 px are 4800 twips, target 8400 on 12000.
        QTest::newRow("120 dpi") << 400.f << 200.f << 12000.f << 12000.f << 0.f << 0.f << 12.f << 1.75f;
    }
    void factor()
    {
        QFETCH(float, anchoVentana); QFETCH(float, altoVentana);
        QFETCH(float, anchoUtil); QFETCH(float, altoUtil);
        QFETCH(float, ancho); QFETCH(float, alto); QFETCH(float, tpp); QFETCH(float, esperado);
        const auto f = FactorProporcional(anchoVentana, altoVentana, anchoUtil, altoUtil, ancho, alto, tpp, tpp);
        QVERIFY(f.has_value());
        QCOMPARE(*f, esperado);
        QVERIFY(CalcularFactores(anchoVentana, altoVentana, anchoUtil, altoUtil, ancho, alto, tpp, tpp));
        QCOMPARE(FactorX, esperado);
        QCOMPARE(FactorY, esperado);
    }

    void sinFactor_data()
    {
        QTest::addColumn<float>("anchoVentana");
        QTest::addColumn<float>("altoVentana");
        QTest::addColumn<float>("ancho");
        QTest::newRow("sin ancho") << 0.f << 200.f << 0.f;
        QTest::newRow("sin alto") << 400.f << 0.f << 0.f;
        QTest::newRow("ancho pedido negativo") << 400.f << 200.f << -10.f;
    }
    void sinFactor()
    {
        QFETCH(float, anchoVentana); QFETCH(float, altoVentana); QFETCH(float, ancho);
        FactorX = FactorY = 1.2f;
        QVERIFY(!FactorProporcional(anchoVentana, altoVentana, 12000, 9000, ancho, 0, 15, 15));
        QVERIFY(!CalcularFactores(anchoVentana, altoVentana, 12000, 9000, ancho, 0, 15, 15));
        QCOMPARE(FactorX, 1.2f); // an earlier factor survives
        QCOMPARE(FactorY, 1.2f);
    }

    void escalas_data()
    {
        QTest::addColumn<float>("factor");
        QTest::addColumn<bool>("sinEscalar");
        QTest::addColumn<float>("x");
        QTest::addColumn<float>("fuente");
        QTest::newRow("sin factor") << 0.f << false << 100.f << 8.f;
        QTest::newRow("factor 1.5") << 1.5f << false << 150.f << 12.f;
        QTest::newRow("SinEscalar") << 1.5f << true << 100.f << 8.f;
    }
    void escalas()
    {
        QFETCH(float, factor); QFETCH(bool, sinEscalar); QFETCH(float, x); QFETCH(float, fuente);
        FactorX = FactorY = factor;
        SinEscalar = sinEscalar;
        QCOMPARE(EscalaX(100.f), x);
        QCOMPARE(EscalaY(100.f), x);
        QCOMPARE(EscalaFuente(8.f), fuente);
    }

    void fuenteConUnFactorACero()
    {
        FactorX = 2.0f;
        FactorY = 0.0f;
        QCOMPARE(EscalaFuente(8.f), 8.f);
        FactorY = 1.0f;
        QCOMPARE(EscalaFuente(8.f), 12.f); // the mean of both factors
    }

    void izquierda_data()
    {
        QTest::addColumn<float>("izquierda");
        QTest::addColumn<float>("tpp");
        QTest::addColumn<float>("esperado");
        QTest::newRow("aparcado en twips") << -60000.f << 1.f << -52500.f;
        QTest::newRow("aparcado en pixeles") << -4000.f << 15.f << -3500.f;
        QTest::newRow("-40000 twips se escala") << -40000.f << 1.f << -60000.f;
        QTest::newRow("justo en el límite") << -50000.f << 1.f << -75000.f;
        QTest::newRow("positivo") << 100.f << 15.f << 150.f;
    }
    void izquierda()
    {
        QFETCH(float, izquierda); QFETCH(float, tpp); QFETCH(float, esperado);
        FactorX = FactorY = 1.5f;
        const float r = EscalaIzquierda(izquierda, tpp);
        QCOMPARE(r, esperado);
        if (izquierda * tpp < LimiteAparcado)
            QVERIFY(r * tpp < LimiteAparcado); // still out of sight
    }

    void centrada()
    {
        // 800 px work area (12000 twips), window 400 px: 200 px plus one twip.
        QCOMPARE(PosicionCentrada(12000.f, 400.f, 15.f), 200.f + 1.f / 15.f);
        QCOMPARE(PosicionCentrada(6000.f, 600.f, 1.f), 2701.f);
        // A window larger than the work area goes above and left of it, as the formula says.
        QCOMPARE(PosicionCentrada(12000.f, 1000.f, 15.f), -100.f + 1.f / 15.f);
    }
};

QTEST_APPLESS_MAIN(TestEscala)
#include "tst_escala.moc"
