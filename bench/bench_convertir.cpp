// Speed of the CP850 conversion against glibc's iconv program on the same file, in the same run.
// Both sides read the file, convert it and write the result to /dev/null; the figure that
// matters is the ratio (iconv time / our time), which includes iconv's process start-up. Two
// files of the same size: contacts text (mostly ASCII, as a TELEFONO.DAT is) and text made only
// of bytes above 127. The routines measured are the bulk ones the contacts file is read and
// written with (Utf8DeDos, DosDeUtf8); the QString ones (TextoDeDos, BytesDeDos) are shown too.
//
//   bench_convertir [MB]      (default 16)
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
#include <string>
#include <vector>

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

// Contacts lines in CP850: names with accents, some in capitals, phones, e-mails.
QByteArray contactos(qsizetype tamano)
{
    static const char *const nombres[] = {"García", "Muñoz", "Peña", "Íñigo", "José Luis", "Begoña", "Ramírez",
                                          "López", "Martín", "Núñez", "Álvarez", "Ana", "Carlos", "Elena"};
    QRandomGenerator azar(850);
    QString texto;
    texto.reserve(tamano);
    for (int i = 0; texto.size() < tamano; ++i) {
        QString nombre = QString::fromUtf8(nombres[azar.bounded(14)]) + u' ' + QString::fromUtf8(nombres[azar.bounded(14)])
                         + QStringLiteral(", ") + QString::fromUtf8(nombres[azar.bounded(14)]);
        if (azar.bounded(4) == 0)
            nombre = nombre.toUpper();
        texto += QStringLiteral("\r\t%1\t%2\t\tc%3@ejemplo.es").arg(nombre).arg(600000000 + azar.bounded(400000000)).arg(i);
    }
    texto.truncate(tamano);
    return kvr::BytesDeDos(texto);
}

QByteArray altos(qsizetype tamano)
{
    QByteArray b(tamano, Qt::Uninitialized);
    auto *r = QRandomGenerator::global();
    for (auto &c : b)
        c = char(128 + r->bounded(128));
    return b;
}

void escribir(const QString &ruta, const QByteArray &datos)
{
    QFile f(ruta);
    if (f.open(QIODevice::WriteOnly))
        f.write(datos);
}

std::string_view vista(const QByteArray &b) { return {b.constData(), std::size_t(b.size())}; }

struct Razones {
    double decodifica = 0, codifica = 0;
};

Razones medir(const char *nombre, const QByteArray &dos, const QString &dir, double mb, bool &ok)
{
    const QString rutaDos = dir + QStringLiteral("/datos.850");
    const QString rutaUtf8 = dir + QStringLiteral("/datos.utf8");
    escribir(rutaDos, dos);
    std::string utf8;
    kvr::Utf8DeDos(vista(dos), utf8);
    escribir(rutaUtf8, QByteArray::fromStdString(utf8));
    const int veces = 7;
    // Our side works as a converter program does, and as iconv itself does: the file is mapped,
    // converted a piece at a time into one buffer, and each piece written out.
    constexpr qsizetype Trozo = 1 << 20;
    std::vector<char> salida(std::size_t(Trozo) * 3);
    const auto convertir = [&](const QString &ruta, const auto &trozo) {
        QFile entrada(ruta), nulo(QProcess::nullDevice());
        if (!entrada.open(QIODevice::ReadOnly) || !nulo.open(QIODevice::WriteOnly))
            return;
        const uchar *datos = entrada.map(0, entrada.size());
        for (qsizetype i = 0; i < entrada.size();) {
            qsizetype n = std::min(Trozo, entrada.size() - i);
            // A UTF-8 piece ends on a character's first byte, never inside one.
            while (i + n < entrada.size() && (datos[i + n] & 0xC0) == 0x80)
                --n;
            const std::string_view pieza(reinterpret_cast<const char *>(datos) + i, std::size_t(n));
            nulo.write(salida.data(), trozo(pieza, salida.data()) - salida.data());
            i += n;
        }
    };
    const qint64 nuestroUtf8 = mejorDe(veces, [&] {
        convertir(rutaDos, [](std::string_view v, char *d) { return kvr::Utf8DeDos(v, d); });
    });
    const qint64 iconvUtf8 = mejorDe(veces, [&] { ok &= iconv(QStringLiteral("CP850"), QStringLiteral("UTF-8"), rutaDos); });
    const qint64 nuestroDos = mejorDe(veces, [&] {
        convertir(rutaUtf8, [](std::string_view v, char *d) { return kvr::DosDeUtf8(v, d); });
    });
    const qint64 iconvDos = mejorDe(veces, [&] { ok &= iconv(QStringLiteral("UTF-8"), QStringLiteral("CP850"), rutaUtf8); });
    const qint64 texto = mejorDe(veces, [&] { escribirNulo(kvr::TextoDeDos(leer(rutaDos)).toUtf8()); });
    const qint64 bytes = mejorDe(veces, [&] { escribirNulo(kvr::BytesDeDos(QString::fromUtf8(leer(rutaUtf8)))); });
    std::printf("%s, %.0f MB:\n", nombre, mb);
    std::printf("  CP850 -> UTF-8: Utf8DeDos %6.1f ms (%5.0f MB/s), iconv %6.1f ms, razón iconv/nuestro %5.2f"
                " | TextoDeDos + toUtf8 %6.1f ms\n",
                nuestroUtf8 / 1e6, mb / (nuestroUtf8 / 1e9), iconvUtf8 / 1e6, double(iconvUtf8) / double(nuestroUtf8),
                texto / 1e6);
    std::printf("  UTF-8 -> CP850: DosDeUtf8 %6.1f ms (%5.0f MB/s), iconv %6.1f ms, razón iconv/nuestro %5.2f"
                " | fromUtf8 + BytesDeDos %6.1f ms\n",
                nuestroDos / 1e6, mb / (nuestroDos / 1e9), iconvDos / 1e6, double(iconvDos) / double(nuestroDos),
                bytes / 1e6);
    return {double(iconvUtf8) / double(nuestroUtf8), double(iconvDos) / double(nuestroDos)};
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
    const double mb = double(tamano) / (1024.0 * 1024.0);
    QTemporaryDir dir;
    bool ok = true;
    const Razones texto = medir("Texto de contactos (casi todo ASCII)", contactos(tamano), dir.path(), mb, ok);
    const Razones altos128 = medir("Sólo bytes por encima de 127", altos(tamano), dir.path(), mb, ok);
    if (!ok) {
        std::printf("iconv falló\n");
        return 1;
    }
    bool todo = true;
    const auto meta = [&](bool cumple, const char *texto, double razon) {
        std::printf("%s: %s (razón %.2f)\n", cumple ? "MET" : "NOT MET", texto, razon);
        todo = todo && cumple;
    };
    meta(texto.decodifica >= 5, "CP850 -> UTF-8 de texto de contactos ≥ 5 × iconv", texto.decodifica);
    meta(texto.codifica >= 5, "UTF-8 -> CP850 de texto de contactos ≥ 5 × iconv", texto.codifica);
    meta(altos128.decodifica >= 1, "CP850 -> UTF-8 de bytes altos ≥ iconv", altos128.decodifica);
    meta(altos128.codifica >= 1, "UTF-8 -> CP850 de bytes altos ≥ iconv", altos128.codifica);
    return todo ? 0 : 1;
}
