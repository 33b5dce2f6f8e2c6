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

// The progress window, when there is exactly one: never two at a time.
QWidget *ventana()
{
    QWidgetList r;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->objectName() == u"Progreso")
            r << w;
    return r.size() == 1 ? r.first() : nullptr;
}

// What the window shows: the bar's maximum, position and tag, the percentage, the elapsed and
// the estimated time, "|" between.
QString vista()
{
    auto *barra = control<QProgressBar>(ventana(), u"Barra");
    QStringList r{QString::number(barra->maximum()), QString::number(barra->value()),
                  barra->property("tag").toString()};
    for (const char *c : {"BarraPor", "BarraTra", "BarraEst"})
        r << control<QLabel>(ventana(), QString::fromLatin1(c))->text();
    return r.join(u'|');
}

} // namespace

class TstProgreso : public QObject {
    Q_OBJECT
    Reloj m_reloj;

private Q_SLOTS:
    void init() { QLocale::setDefault(QLocale::c()); }
    void cleanup() { BarraProgreso(ProgresoCerrar); }

    // One start at a time of the clock ("minimo maximo inicio ahora valor"), the clock moved,
    // one advance, which redraws without force: what the window shows.
    void avance_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("entrada");
        QTest::addColumn<QString>("vista");
        QTest::newRow("coma") << "es_ES" << "0 1000 10:00 10:00:30 500" << "1000|500||50,00 %|00:00:30|00:01:00";
        QTest::newRow("menos de 1 %") << "C" << "0 1000 10:00 10:00:10 5" << "1000|5||.50 %|00:00:10|00:33:20";
        QTest::newRow("horas") << "C" << "0 100 01:00 02:02:05 50" << "100|50||50.00 %|01:02:05|02:04:10";
        QTest::newRow("milisegundos") << "C" << "0 10 09:59:59.600 10:00:01.500 5" << "10|5||50.00 %|00:00:01|00:00:03";
        // The percentage is of the maximum, not of the range above the minimum.
        QTest::newRow("minimo no cero") << "C" << "10 20 10:00 10:00:30 15" << "20|15||75.00 %|00:00:30|00:00:40";
        QTest::newRow("maximo <= minimo") << "C" << "0 0 10:00 10:00:04 1" << "1|1||100.00 %|00:00:04|00:00:04";
        QTest::newRow("fuera de rango") << "C" << "0 1000 10:00 10:00:30 1500" << "1000|0||150.00 %|00:00:30|00:00:20";
        QTest::newRow("valor cero") << "C" << "0 1000 10:00 10:00:30 0" << "1000|0||.00 %|00:00:30|mm:ss";
        QTest::newRow("100 horas estimadas") << "C" << "0 1000 10:00 10:06 1" << "1000|1||.10 %|00:06:00|00:00:00";
        // Past midnight the elapsed time is negative and shown as it comes.
        QTest::newRow("medianoche") << "C" << "0 1000 23:59:50 00:00:10 500" << "1000|500||50.00 %|77:41:60|53:41:80";
    }
    void avance()
    {
        QFETCH(QString, locale);
        QFETCH(QString, entrada);
        QLocale::setDefault(QLocale(locale));
        const QStringList e = entrada.split(u' ');
        m_reloj.hora = QTime::fromString(e[2], Qt::ISODateWithMs);
        BarraProgreso(ProgresoIniciar, 0, false, e[0].toFloat(), e[1].toFloat(), u"T"_qs);
        m_reloj.hora = QTime::fromString(e[3], Qt::ISODateWithMs);
        BarraProgreso(ProgresoAvanzar, e[4].toFloat());
        QCOMPARE(control<QLabel>(ventana(), u"BarraTitulo")->text(), u"T"_qs);
        QTEST(vista(), "vista");
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
        QString antes = vista();
        for (int i = 1; i <= maximo; ++i) {
            BarraProgreso(ProgresoAvanzar, float(i), forzar);
            veces += vista().section(u'|', 3, 3) != antes.section(u'|', 3, 3);
            antes = vista();
        }
        QTEST(veces, "veces");
        QCOMPARE(antes.section(u'|', 3, 3), u"100.00 %"_qs);
    }

    // Hidden, shown, an operation that does not exist, a new start, closed.
    void ciclo()
    {
        BarraProgreso(ProgresoIniciar, 0, false, 0, 10, QStringLiteral("Uno"));
        QPointer<QWidget> w = ventana();
        QCOMPARE(control<QLabel>(w, u"BarraLbl(0)")->text() + control<QLabel>(w, u"BarraLbl(1)")->text()
                     + control<QLabel>(w, u"BarraLbl(2)")->text(), u"TranscurridoPorcentajeEstimado"_qs);
        QVERIFY(w->isVisible() && (w->windowFlags() & Qt::FramelessWindowHint));
        BarraProgreso(ProgresoOcultar);
        QVERIFY(!w->isVisible());
        BarraProgreso(ProgresoAvanzar, 5); // a hidden window still follows the task
        BarraProgreso(ProgresoMostrar);
        BarraProgreso(9, 8, true);
        QVERIFY(w->isVisible());
        QCOMPARE(vista(), u"10|5||50.00 %|00:00:00|00:00:00"_qs);
        // A new start reuses the window for the next task.
        BarraProgreso(ProgresoIniciar, 0, false, 0, 20, QStringLiteral("Dos"));
        QCOMPARE(ventana(), w.data());
        QCOMPARE(control<QLabel>(w, u"BarraTitulo")->text() + vista(), u"Dos20|0|INICIO|50.00 %|00:00:00|00:00:00"_qs);
        BarraProgreso(ProgresoAvanzar, 1);
        QCOMPARE(vista(), u"20|1||5.00 %|00:00:00|00:00:00"_qs);
        BarraProgreso(ProgresoCerrar);
        QVERIFY(w.isNull());
        BarraProgreso(ProgresoAvanzar, 2);
        BarraProgreso(ProgresoOcultar);
        QVERIFY(!ventana());
    }
};

QTEST_MAIN(TstProgreso)
#include "tst_progreso.moc"
