// Random bytes as a table file: the load must take any file (UTF-8, Windows-1252, stray CR,
// NUL bytes), and once saved, a table must come back from its file exactly, so that saving
// again writes the very same bytes: every line ends in CR LF, no line is blank, and what a
// save wrote is valid UTF-8.
#include <kvr/error.h>
#include <kvr/mivisor.h>
#include <kvr/rejilla.h>
#include <kvr/tablas.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStringDecoder>

#include <cstdint>
#include <cstdlib>

namespace {

QString carpeta()
{
    static const QString c = [] {
        QString d = QDir::tempPath() + QStringLiteral("/fuzz_tablas_%1").arg(QCoreApplication::applicationPid());
        QDir().mkpath(d);
        return d;
    }();
    return c;
}

QByteArray leer(const QString &ruta)
{
    QFile f(ruta);
    if (!f.open(QIODevice::ReadOnly))
        std::abort();
    return f.readAll();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tam)
{
    QString entrada = carpeta() + QStringLiteral("/entrada.txt");
    QString salida = carpeta() + QStringLiteral("/salida.txt");
    {
        QFile f(entrada);
        if (!f.open(QIODevice::WriteOnly))
            std::abort();
        f.write(reinterpret_cast<const char *>(datos), qint64(tam));
    }
    kvr::Rejilla g;
    g.PonerFixedCols(0);
    kvr::CargarVisor(g, QStringLiteral("Elemento#20"));
    kvr::FicheroTabla(kvr::OperacionCargar, entrada, g);
    kvr::FicheroTabla(kvr::OperacionRegrabar, salida, g);
    const QByteArray primera = leer(salida);

    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    // The decoder works when its result is taken as a string, not when the call is made.
    const QString decodificado = utf8.decode(primera);
    if (utf8.hasError())
        std::abort();
    if (!primera.isEmpty() && !primera.endsWith("\r\n"))
        std::abort();
    if (primera.startsWith("\r\n") || primera.contains("\r\n\r\n"))
        std::abort();

    kvr::Rejilla h;
    h.PonerFixedCols(0);
    kvr::CargarVisor(h, QStringLiteral("Elemento#20"));
    kvr::FicheroTabla(kvr::OperacionCargar, salida, h);
    kvr::FicheroTabla(kvr::OperacionRegrabar, salida, h);
    if (leer(salida) != primera)
        std::abort();
    return 0;
}
