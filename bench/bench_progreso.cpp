// Cost of BarraProgreso's advance against the work it must do at every call anyway: one million
// advances of a task of one million steps beside one million bare QCoreApplication::processEvents()
// calls, in the same run and on the same window system. Goal: the advances take at most 1.5 times
// the bare calls. Best of several rounds, the two measured in turn, as the machine is shared.
#include <kvr/progreso.h>

#include <QApplication>
#include <QElapsedTimer>

#include <cstdio>
#include <functional>

namespace {

qint64 medir(const std::function<void()> &trabajo)
{
    QElapsedTimer t;
    t.start();
    trabajo();
    return t.nsecsElapsed();
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int n = argc > 1 ? QByteArray(argv[1]).toInt() : 1000000;
    const int rondas = 5;

    qint64 mejorAvance = -1, mejorEventos = -1;
    for (int r = 0; r < rondas; ++r) {
        kvr::BarraProgreso(kvr::ProgresoIniciar, 0, false, 1, float(n), QStringLiteral("Prueba"));
        const qint64 avance = medir([&] {
            for (int i = 1; i <= n; ++i)
                kvr::BarraProgreso(kvr::ProgresoAvanzar, float(i));
        });
        kvr::BarraProgreso(kvr::ProgresoCerrar);
        const qint64 eventos = medir([&] {
            for (int i = 1; i <= n; ++i)
                QCoreApplication::processEvents();
        });
        if (mejorAvance < 0 || avance < mejorAvance)
            mejorAvance = avance;
        if (mejorEventos < 0 || eventos < mejorEventos)
            mejorEventos = eventos;
    }
    const double razon = double(mejorAvance) / double(mejorEventos);
    std::printf("%d avances de BarraProgreso: %.1f ms (%.0f ns cada uno)\n", n, mejorAvance / 1e6,
                double(mejorAvance) / n);
    std::printf("%d llamadas a QCoreApplication::processEvents(): %.1f ms (%.0f ns cada una)\n", n,
                mejorEventos / 1e6, double(mejorEventos) / n);
    std::printf("razón avances / processEvents: %.2f (mejor de %d rondas)\n", razon, rondas);
    std::printf("  %-8s avances a lo sumo 1,5 veces processEvents\n", razon <= 1.5 ? "MET" : "NOT MET");
    return 0;
}
