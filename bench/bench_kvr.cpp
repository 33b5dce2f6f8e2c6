// The kvr command on large input, run as a script runs it (a real process, offscreen), beside a
// reference command on the same file in the same run; best of three rounds each.
//  - kvr visor with 1 000 000 rows, shown and closed by --timeout 0, beside sort -f on the rows.
//    Goal: under 2 s.
//  - kvr progreso fed 1 000 000 lines, beside the same command fed one line (its start-up and
//    window) and wc -l on the lines. Goal: the million lines cost at most 1 s past the start-up.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

namespace {

// Milliseconds a command takes with `entrada` on its standard input (best of three), or -1 when
// it could not run or ended with a status other than `estado`.
double medir(const QString &programa, const QStringList &argumentos, const QString &entrada, int estado = 0)
{
    double mejor = -1;
    for (int ronda = 0; ronda < 3; ++ronda) {
        QProcess p;
        QProcessEnvironment entorno = QProcessEnvironment::systemEnvironment();
        entorno.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        p.setProcessEnvironment(entorno);
        p.setStandardInputFile(entrada);
        p.setStandardOutputFile(QProcess::nullDevice());
        QElapsedTimer t;
        t.start();
        p.start(programa, argumentos);
        if (!p.waitForFinished(120000) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != estado) {
            std::fprintf(stderr, "%s %s: %s, estado %d\n", qPrintable(programa), qPrintable(argumentos.join(u' ')),
                         qPrintable(p.errorString()), p.exitCode());
            return -1;
        }
        const double ms = double(t.nsecsElapsed()) / 1e6;
        if (mejor < 0 || ms < mejor)
            mejor = ms;
    }
    return mejor;
}

void escribirLineas(const QString &ruta, int n, bool filas)
{
    QFile f(ruta);
    if (!f.open(QIODevice::WriteOnly))
        return;
    QByteArray b;
    for (int i = 1; i <= n; ++i) {
        b += filas ? QByteArray::number(1000000 + i) + "\tCliente " + QByteArray::number(i * 7919 % n) + "\tCiudad "
                         + QByteArray::number(i % 50) + '\n'
                   : QByteArray::number(i) + '\n';
        if (b.size() > (1 << 20)) {
            f.write(b);
            b.clear();
        }
    }
    f.write(b);
}

void meta(bool cumplida, const char *texto)
{
    std::printf("  %-8s %s\n", cumplida ? "MET" : "NOT MET", texto);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QString kvr = QStringLiteral(KVR_ORDEN);
    const int n = 1000000;
    QTemporaryDir dir;
    const QString filas = dir.filePath(QStringLiteral("filas.txt")), numeros = dir.filePath(QStringLiteral("numeros.txt")),
                  una = dir.filePath(QStringLiteral("una.txt"));
    escribirLineas(filas, n, true);
    escribirLineas(numeros, n, false);
    escribirLineas(una, 1, false);

    const double visor = medir(kvr, {QStringLiteral("visor"), QStringLiteral("--titulos"),
                                     QStringLiteral("Código#8;Nombre#20;Ciudad#10"), QStringLiteral("--timeout"),
                                     QStringLiteral("0")}, filas, 5);
    const double sort = medir(QStringLiteral("sort"), {QStringLiteral("-f")}, filas);
    std::printf("kvr visor, %d filas: %.0f ms; sort -f de las mismas: %.0f ms (razón %.2f)\n", n, visor, sort,
                visor / sort);
    meta(visor >= 0 && visor < 2000, "kvr visor con un millón de filas en menos de 2 s");

    const double progreso = medir(kvr, {QStringLiteral("progreso"), QStringLiteral("--total"), QString::number(n)}, numeros);
    const double arranque = medir(kvr, {QStringLiteral("progreso"), QStringLiteral("--total"), QString::number(n)}, una);
    const double wc = medir(QStringLiteral("wc"), {QStringLiteral("-l")}, numeros);
    std::printf("kvr progreso, %d líneas: %.0f ms; con una línea (arranque): %.0f ms; wc -l: %.0f ms\n", n, progreso,
                arranque, wc);
    meta(progreso >= 0 && arranque >= 0 && progreso - arranque <= 1000,
         "un millón de líneas de progreso cuestan a lo sumo 1 s más que el arranque");
    return 0;
}
