// Speed of the ZIP backup against Info-ZIP's `zip -r -q` on the same tree, in the same run, and of
// the restore against `unzip -q`. The tree stands for a business application's data folder: a
// 50 MB data file of records, some thousand small text files under accented folder names, and a
// few already-compressed documents. Both sides deflate at level 6 and write to the same disk;
// each figure is the best of three rounds. Goal: the backup takes at most 1.2 times zip's time.
#include <kvr/zip.h>
#include <kvr/servicios.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>

namespace {

qint64 mejorDe(int veces, const std::function<bool()> &trabajo)
{
    qint64 mejor = -1;
    for (int i = 0; i < veces; ++i) {
        QElapsedTimer t;
        t.start();
        if (!trabajo())
            return -1;
        const qint64 ns = t.nsecsElapsed();
        if (mejor < 0 || ns < mejor)
            mejor = ns;
    }
    return mejor;
}

bool ejecutar(const QString &carpeta, const QString &programa, const QStringList &args)
{
    QProcess p;
    p.setWorkingDirectory(carpeta);
    p.start(programa, args);
    return p.waitForFinished(-1) && p.exitCode() == 0;
}

void escribir(const QString &ruta, const QByteArray &datos)
{
    QFile f(ruta);
    if (f.open(QIODevice::WriteOnly))
        f.write(datos);
}

QByteArray registros(QRandomGenerator &azar, qsizetype tamano)
{
    static const char *const nombres[] = {"García", "Fernández", "López", "Martínez", "Sánchez",
                                          "Pérez", "Gómez", "Martín", "Jiménez", "Ruiz"};
    QByteArray b;
    b.reserve(tamano + 128);
    while (b.size() < tamano) {
        b += QByteArray::number(azar.bounded(100000)).rightJustified(6, '0') + ';';
        b += QByteArray(nombres[azar.bounded(10)]) + ' ' + nombres[azar.bounded(10)] + ';';
        b += QByteArray::number(azar.bounded(1, 29)) + '/' + QByteArray::number(azar.bounded(1, 13)) + "/2026;";
        b += QByteArray::number(azar.bounded(1000000) / 100.0, 'f', 2) + ";EUR\r\n";
    }
    b.truncate(tamano);
    return b;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (QStandardPaths::findExecutable(QStringLiteral("zip")).isEmpty()
        || QStandardPaths::findExecutable(QStringLiteral("unzip")).isEmpty()) {
        std::printf("zip o unzip no están instalados: no hay referencia con la que comparar\n");
        return 0;
    }
    QTemporaryDir dir;
    const QString raiz = dir.filePath(QStringLiteral("origen"));
    const QString datos = raiz + QStringLiteral("/Datos");
    QRandomGenerator azar(2026);
    qint64 bytes = 0;
    {
        QDir().mkpath(datos);
        const QByteArray grande = registros(azar, 50 << 20);
        escribir(datos + QStringLiteral("/Diario.dat"), grande);
        bytes += grande.size();
        for (int c = 0; c < 20; ++c) {
            const QString carpeta = datos + QStringLiteral("/Año %1/Facturación").arg(2006 + c);
            QDir().mkpath(carpeta);
            for (int f = 0; f < 60; ++f) {
                const QByteArray t = registros(azar, azar.bounded(1000, 20000));
                escribir(carpeta + QStringLiteral("/Factura %1.txt").arg(f), t);
                bytes += t.size();
            }
        }
        QDir().mkpath(datos + QStringLiteral("/Documentos"));
        for (int f = 0; f < 20; ++f) {
            QByteArray d(200 << 10, Qt::Uninitialized);
            azar.fillRange(reinterpret_cast<quint32 *>(d.data()), d.size() / 4);
            escribir(datos + QStringLiteral("/Documentos/Escaneo %1.pdf").arg(f), d);
            bytes += d.size();
        }
    }
    const QString nuestro = dir.filePath(QStringLiteral("nuestro.zip"));
    const QString suyo = dir.filePath(QStringLiteral("suyo.zip"));

    const qint64 tZip = mejorDe(3, [&] {
        QFile::remove(suyo);
        return ejecutar(raiz, QStringLiteral("zip"), {QStringLiteral("-r"), QStringLiteral("-q"), suyo, QStringLiteral("Datos")});
    });
    const qint64 tNuestro = mejorDe(3, [&] { return kvr::CrearZip({datos}, nuestro); });
    const qint64 tUnzip = mejorDe(3, [&] {
        QDir(dir.filePath(QStringLiteral("u"))).removeRecursively();
        return ejecutar(dir.path(), QStringLiteral("unzip"), {QStringLiteral("-q"), suyo, QStringLiteral("-d"), dir.filePath(QStringLiteral("u"))});
    });
    const qint64 tRestaurar = mejorDe(3, [&] {
        QDir(dir.filePath(QStringLiteral("r"))).removeRecursively();
        return kvr::ExtraerZip(suyo, dir.filePath(QStringLiteral("r")));
    });
    if (tZip < 0 || tNuestro < 0 || tUnzip < 0 || tRestaurar < 0) {
        std::printf("una de las pasadas ha fallado\n");
        return 1;
    }

    const double mb = double(bytes) / (1 << 20);
    std::printf("Árbol: %.1f MB en %d ficheros\n", mb, 1 + 20 * 60 + 20);
    std::printf("Copia:     zip -r -q %7.3f s   CrearZip %7.3f s   (%lld / %lld bytes)   razón %.2f\n",
                tZip / 1e9, tNuestro / 1e9, qlonglong(QFile(suyo).size()), qlonglong(QFile(nuestro).size()),
                double(tNuestro) / double(tZip));
    std::printf("Restaurar: unzip -q  %7.3f s   ExtraerZip %7.3f s   razón %.2f (informativa)\n",
                tUnzip / 1e9, tRestaurar / 1e9, double(tRestaurar) / double(tUnzip));
    const bool cumple = double(tNuestro) <= 1.2 * double(tZip);
    std::printf("%s: copia de seguridad en no más de 1,2 veces el tiempo de zip -r -q (%.2f)\n",
                cumple ? "MET" : "NOT MET", double(tNuestro) / double(tZip));
    return 0;
}
