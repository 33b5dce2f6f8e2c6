// Random bytes as a table file: the load must take any file (UTF-8, Windows-1252, stray CR,
// NUL bytes), and once saved, a table must come back from its file exactly, so that saving
// again writes the very same bytes: every line ends in CR LF, no line is blank, and what a
// save wrote is valid UTF-8.
#include <kvr/error.h>
#include <kvr/mivisor.h>
#include <kvr/rejilla.h>
#include <kvr/tablas.h>

#include <QStringDecoder>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tam)
{
    // The load and the save read and write through these, worked on in memory here.
    kvr::Rejilla g;
    g.PonerFixedCols(0);
    kvr::CargarVisor(g, QStringLiteral("Elemento#20"));
    kvr::TablaDeTexto(QByteArray(reinterpret_cast<const char *>(datos), qsizetype(tam)), g);
    const QByteArray primera = kvr::TextoTabla(kvr::ElementosTabla(g));

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
    kvr::TablaDeTexto(primera, h);
    if (kvr::TextoTabla(kvr::ElementosTabla(h)) != primera)
        std::abort();
    return 0;
}
