// The progress window driven through BarraProgreso, with the seam's clock set by the test.
#include "comun/pruebas.h"
#include "registro.h"

#include <kvr/progreso.h>

#include <QProgressBar>

using namespace kvr;
using prueba::control;

namespace {

// The seam with a clock the test moves.
struct Reloj : ServiciosGrabados {
    QDateTime Ahora() override { return QDateTime(hoy, hora); }
    QTime hora = QTime(10, 0);
};

// The progress window, when there is exactly one: never two at a time, and none once closed.
QWidget *ventana()
{
    QWidgetList r;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (qobject_cast<Progreso *>(w))
            r << w;
    return r.size() == 1 ? r.first() : nullptr;
}

// What the window shows: the title, the bar's maximum, position and tag, the percentage, the
// elapsed and the estimated time, "|" between, and "|oculta" when it is hidden; "" without one.
QString vista()
{
    QWidget *w = ventana();
    if (!w)
        return QString();
    auto *barra = control<QProgressBar>(w, u"Barra");
    QStringList r{control<QLabel>(w, u"BarraTitulo")->text(), QString::number(barra->maximum()),
                  QString::number(barra->value()), barra->property("tag").toString()};
    for (const char *c : {"BarraPor", "BarraTra", "BarraEst"})
        r << control<QLabel>(w, QString::fromLatin1(c))->text();
    return r.join(u'|') + (w->isVisible() ? QString() : u"|oculta"_qs);
}

} // namespace

class TstProgreso : public QObject {
    Q_OBJECT
    Reloj m_reloj;

private Q_SLOTS:
    void init() { QLocale::setDefault(QLocale::c()); }
    void cleanup() { BarraProgreso(ProgresoCerrar); }

    // A start at one time of the clock ("locale minimo maximo inicio ahora valor"), the clock
    // moved, one advance, which redraws without force: what the window shows.
    void avance_data()
    {
        QTest::addColumn<QString>("entrada");
        QTest::addColumn<QString>("vista");
        // The percentage is of the maximum, not of the range above the minimum.
        QTest::newRow("coma") << "es_ES 10 20 10:00 10:00:30 15" << "T|20|15||75,00 %|00:00:30|00:00:40";
        // Whole seconds cut, not rounded; an estimate of 103 hours shows the last two digits.
        QTest::newRow("horas") << "C 0 100 00:59:59.500 02:02:05 1" << "T|100|1||1.00 %|01:02:05|03:29:10";
        // A maximum not above the minimum is the minimum plus one; a value past it leaves the bar.
        QTest::newRow("maximo <= minimo") << "C 0 0 10:00 10:00:04 2" << "T|1|0||200.00 %|00:00:04|00:00:02";
        QTest::newRow("valor cero") << "C 0 1000 10:00 10:00:30 0" << "T|1000|0||.00 %|00:00:30|mm:ss";
        // Past midnight the elapsed time is negative and shown as it comes.
        QTest::newRow("medianoche") << "C 0 1000 23:59:50 00:00:10 500" << "T|1000|500||50.00 %|77:41:60|53:41:80";
    }
    void avance()
    {
        QFETCH(QString, entrada);
        const QStringList e = entrada.split(u' ');
        QLocale::setDefault(QLocale(e[0]));
        m_reloj.hora = QTime::fromString(e[3], Qt::ISODateWithMs);
        BarraProgreso(ProgresoIniciar, 0, false, e[1].toFloat(), e[2].toFloat(), u"T"_qs);
        m_reloj.hora = QTime::fromString(e[4], Qt::ISODateWithMs);
        BarraProgreso(ProgresoAvanzar, e[5].toFloat());
        QTEST(vista(), "vista");
    }

    // Advances of every value 1..1000: the first redraws, then one every tenth call (1000 / 100)
    // and the last at the maximum; every one when forced.
    void redibujados()
    {
        QStringList veces;
        for (bool forzar : {false, true}) {
            BarraProgreso(ProgresoIniciar, 0, false, 0, 1000, u"Tarea"_qs);
            int n = 0;
            for (int i = 1; i <= 1000; ++i) {
                const QString antes = vista();
                BarraProgreso(ProgresoAvanzar, float(i), forzar);
                n += vista() != antes;
            }
            veces << QString::number(n);
        }
        QCOMPARE(veces.join(u' '), u"101 1000"_qs);
    }

    // Hidden, shown, an operation that does not exist, a new start in the same window, closed.
    void ciclo()
    {
        BarraProgreso(ProgresoIniciar, 0, false, 0, 10, u"Uno"_qs);
        QCOMPARE(control<QLabel>(ventana(), u"BarraLbl(0)")->text() + control<QLabel>(ventana(), u"BarraLbl(1)")->text()
                     + control<QLabel>(ventana(), u"BarraLbl(2)")->text(), u"TranscurridoPorcentajeEstimado"_qs);
        BarraProgreso(ProgresoOcultar);
        BarraProgreso(ProgresoAvanzar, 5); // a hidden window still follows the task
        QCOMPARE(vista(), u"Uno|10|5||50.00 %|00:00:00|00:00:00|oculta"_qs);
        BarraProgreso(ProgresoMostrar);
        BarraProgreso(9, 8, true);
        QCOMPARE(vista(), u"Uno|10|5||50.00 %|00:00:00|00:00:00"_qs);
        BarraProgreso(ProgresoIniciar, 0, false, 0, 20, u"Dos"_qs); // the same window, not a second
        QCOMPARE(vista(), u"Dos|20|0|INICIO|50.00 %|00:00:00|00:00:00"_qs);
        BarraProgreso(ProgresoCerrar);
        BarraProgreso(ProgresoAvanzar, 2); // makes no window
        QCOMPARE(vista(), QString());
    }
};

QTEST_MAIN(TstProgreso)
#include "tst_progreso.moc"
