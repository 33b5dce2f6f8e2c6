// The progress window driven through BarraProgreso, with the seam's clock set by the test.
#include "comun/pruebas.h"
#include "registro.h"

#include <kvr/progreso.h>

#include <QProgressBar>

using namespace kvr;
using prueba::control;

namespace {

// The seam with a clock the test moves.
class Reloj : public ServiciosGrabados {
public:
    QDateTime Ahora() override { return QDateTime(hoy, hora); }
    QTime hora = QTime(10, 0);
};

QWidget *ventana()
{
    QWidget *encontrada = nullptr;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->objectName() == u"Progreso") {
            if (encontrada)
                return nullptr; // never two at a time
            encontrada = w;
        }
    return encontrada;
}

QString texto(const char *nombre)
{
    return control<QLabel>(ventana(), QString::fromLatin1(nombre))->text();
}

QProgressBar *barra()
{
    return control<QProgressBar>(ventana(), u"Barra");
}

} // namespace

class TstProgreso : public QObject {
    Q_OBJECT
    Reloj m_reloj;

private Q_SLOTS:
    void init()
    {
        QLocale::setDefault(QLocale::c());
        m_reloj.hora = QTime(10, 0);
    }
    void cleanup() { BarraProgreso(ProgresoCerrar); }

    // One start, the clock moved, one advance: the bar's maximum and position, then the
    // percentage, the elapsed and the estimated time.
    void avance_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<float>("minimo");
        QTest::addColumn<float>("maximo");
        QTest::addColumn<QTime>("inicio");
        QTest::addColumn<QTime>("ahora");
        QTest::addColumn<float>("valor");
        QTest::addColumn<QString>("vista");
        const QTime diez(10, 0);
        QTest::newRow("coma decimal") << "es_ES" << 0.f << 1000.f << diez << QTime(10, 0, 30) << 500.f
                                      << "1000|500|50,00 %|00:00:30|00:01:00";
        QTest::newRow("menos de un uno por ciento") << "C" << 0.f << 1000.f << diez << QTime(10, 0, 10) << 5.f
                                                    << "1000|5|.50 %|00:00:10|00:33:20";
        QTest::newRow("horas") << "C" << 0.f << 100.f << QTime(1, 0) << QTime(2, 2, 5) << 50.f
                               << "100|50|50.00 %|01:02:05|02:04:10";
        QTest::newRow("milisegundos") << "C" << 0.f << 10.f << QTime(9, 59, 59, 600) << QTime(10, 0, 1, 500) << 5.f
                                      << "10|5|50.00 %|00:00:01|00:00:03";
        // The percentage is of the maximum, not of the range above the minimum.
        QTest::newRow("minimo por encima de cero") << "C" << 10.f << 20.f << diez << QTime(10, 0, 30) << 15.f
                                                   << "20|15|75.00 %|00:00:30|00:00:40";
        QTest::newRow("maximo no mayor que el minimo") << "C" << 0.f << 0.f << diez << QTime(10, 0, 4) << 1.f
                                                       << "1|1|100.00 %|00:00:04|00:00:04";
        QTest::newRow("fuera del intervalo") << "C" << 0.f << 1000.f << diez << QTime(10, 0, 30) << 1500.f
                                             << "1000|0|150.00 %|00:00:30|00:00:20";
        QTest::newRow("valor cero sin estimacion") << "C" << 0.f << 1000.f << diez << QTime(10, 0, 30) << 0.f
                                                   << "1000|0|.00 %|00:00:30|mm:ss";
        QTest::newRow("cien horas estimadas") << "C" << 0.f << 1000.f << diez << QTime(10, 6) << 1.f
                                              << "1000|1|.10 %|00:06:00|00:00:00";
        // Past midnight the elapsed time is negative and shown as it comes.
        QTest::newRow("medianoche") << "C" << 0.f << 1000.f << QTime(23, 59, 50) << QTime(0, 0, 10) << 500.f
                                    << "1000|500|50.00 %|77:41:60|53:41:80";
    }
    void avance()
    {
        QFETCH(QString, locale);
        QFETCH(float, minimo);
        QFETCH(float, maximo);
        QFETCH(QTime, ahora);
        QFETCH(float, valor);
        QLocale::setDefault(QLocale(locale));
        QFETCH(QTime, inicio);
        m_reloj.hora = inicio;
        BarraProgreso(ProgresoIniciar, 0, false, minimo, maximo, QStringLiteral("Copiando"));
        QVERIFY(ventana() && ventana()->isVisible());
        QCOMPARE(texto("BarraTitulo") + barra()->property("tag").toString(), u"CopiandoINICIO"_qs);
        m_reloj.hora = ahora;
        BarraProgreso(ProgresoAvanzar, valor); // the first advance redraws without force
        const QStringList vista{QString::number(barra()->maximum()), QString::number(barra()->value()),
                                texto("BarraPor"), texto("BarraTra"), texto("BarraEst")};
        QTEST(vista.join(u'|'), "vista");
        QVERIFY(barra()->property("tag").toString().isEmpty());
    }

    // Advances of every value 1..maximo: how many of them redraw the texts.
    void redibujados_data()
    {
        QTest::addColumn<int>("maximo");
        QTest::addColumn<bool>("forzar");
        QTest::addColumn<int>("veces");
        // The first, then one every tenth call (1000 / 100), and the last at the maximum.
        QTest::newRow("mil") << 1000 << false << 101;
        QTest::newRow("mil forzados") << 1000 << true << 1000;
        QTest::newRow("menos de cien pasos") << 50 << false << 50;
    }
    void redibujados()
    {
        QFETCH(int, maximo);
        QFETCH(bool, forzar);
        BarraProgreso(ProgresoIniciar, 0, false, 0, float(maximo), QStringLiteral("Tarea"));
        int veces = 0;
        QString antes = texto("BarraPor");
        for (int i = 1; i <= maximo; ++i) {
            BarraProgreso(ProgresoAvanzar, float(i), forzar);
            veces += texto("BarraPor") != antes;
            antes = texto("BarraPor");
        }
        QTEST(veces, "veces");
        QCOMPARE(antes, u"100.00 %"_qs);
    }

    void ciclo()
    {
        BarraProgreso(ProgresoIniciar, 0, false, 0, 10, QStringLiteral("Uno"));
        QPointer<QWidget> w = ventana();
        QCOMPARE(texto("BarraLbl(0)") + texto("BarraLbl(1)") + texto("BarraLbl(2)"),
                 u"TranscurridoPorcentajeEstimado"_qs);
        QVERIFY(w->windowFlags() & Qt::FramelessWindowHint);
        BarraProgreso(ProgresoOcultar);
        QVERIFY(!w->isVisible());
        BarraProgreso(ProgresoAvanzar, 5); // a hidden window still follows the task
        QCOMPARE(texto("BarraPor"), u"50.00 %"_qs);
        BarraProgreso(ProgresoMostrar);
        BarraProgreso(9, 8, true); // no such operation
        QCOMPARE(texto("BarraPor"), u"50.00 %"_qs);
        QVERIFY(w->isVisible());

        // A new start reuses the window for the next task.
        BarraProgreso(ProgresoIniciar, 0, false, 0, 20, QStringLiteral("Dos"));
        QCOMPARE(ventana(), w.data());
        QCOMPARE(texto("BarraTitulo") + barra()->property("tag").toString(), u"DosINICIO"_qs);
        BarraProgreso(ProgresoAvanzar, 1);
        QCOMPARE(texto("BarraPor"), u"5.00 %"_qs);

        BarraProgreso(ProgresoCerrar);
        QVERIFY(w.isNull());
        BarraProgreso(ProgresoAvanzar, 2);
        BarraProgreso(ProgresoOcultar);
        QVERIFY(!ventana());
    }
};

QTEST_MAIN(TstProgreso)
#include "tst_progreso.moc"
