// Speed of the CP850 conversion against glibc's iconv program on the same file, in the same run.
// Both sides read the file, convert it and write the result to /dev/null; the figure that
// matters is the ratio (iconv time / our time), which includes iconv's process start-up.
#include <kvr/comunes.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>

namespace {

qint64 mejorDe(int veces, const std::function<void()> &trabajo)
{
    qint64 mejor = -1;
    for (int i = 0; i < veces; ++i) {
        QElapsedTimer t;
        t.start();
        trabajo();
        const qint64 ns = t.nsecsElapsed();
        if (mejor < 0 || ns < mejor)
            mejor = ns;
    }
    return mejor;
}

QByteArray leer(const QString &ruta)
{
    QFile f(ruta);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return f.readAll();
}

void escribirNulo(const QByteArray &datos)
{
    QFile f(QProcess::nullDevice());
    if (f.open(QIODevice::WriteOnly))
        f.write(datos);
}

bool iconv(const QString &desde, const QString &hacia, const QString &ruta)
{
    QProcess p;
    p.setStandardOutputFile(QProcess::nullDevice());
    p.start(QStringLiteral("iconv"), {QStringLiteral("-f"), desde, QStringLiteral("-t"), hacia, ruta});
    return p.waitForFinished(-1) && p.exitCode() == 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (QStandardPaths::findExecutable(QStringLiteral("iconv")).isEmpty()) {
        std::printf("iconv no está instalado: no hay referencia con la que comparar\n");
        return 0;
    }
    const qsizetype tamano = argc > 1 ? QByteArray(argv[1]).toLongLong() * 1024 * 1024 : 16 * 1024 * 1024;
    QTemporaryDir dir;
    const QString dos = dir.filePath(QStringLiteral("datos.850"));
    const QString utf8 = dir.filePath(QStringLiteral("datos.utf8"));
    {
        QByteArray b(tamano, Qt::Uninitialized);
        auto *r = QRandomGenerator::global();
        for (auto &c : b)
            c = char(1 + r->bounded(255)); // no NUL: both sides must produce the same text
        QFile f(dos);
        f.open(QIODevice::WriteOnly);
        f.write(b);
        QFile g(utf8);
        g.open(QIODevice::WriteOnly);
        g.write(kvr::TextoDeDos(b).toUtf8());
    }
    const int veces = 5;
    bool ok = true;

    const qint64 nuestroWin = mejorDe(veces, [&] { escribirNulo(kvr::TextoDeDos(leer(dos)).toUtf8()); });
    const qint64 iconvWin = mejorDe(veces, [&] { ok &= iconv(QStringLiteral("CP850"), QStringLiteral("UTF-8"), dos); });
    const qint64 nuestroDos = mejorDe(veces, [&] { escribirNulo(kvr::BytesDeDos(QString::fromUtf8(leer(utf8)))); });
    const qint64 iconvDos = mejorDe(veces, [&] { ok &= iconv(QStringLiteral("UTF-8"), QStringLiteral("CP850"), utf8); });
    if (!ok) {
        std::printf("iconv falló\n");
        return 1;
    }
    const double mb = double(tamano) / (1024.0 * 1024.0);
    std::printf("CP850 -> texto, %.0f MB: TextoDeDos %.1f ms, iconv %.1f ms, razón iconv/nuestro %.2f\n",
                mb, nuestroWin / 1e6, iconvWin / 1e6, double(iconvWin) / double(nuestroWin));
    std::printf("texto -> CP850, %.0f MB: BytesDeDos %.1f ms, iconv %.1f ms, razón iconv/nuestro %.2f\n",
                mb, nuestroDos / 1e6, iconvDos / 1e6, double(iconvDos) / double(nuestroDos));
    return 0;
}
