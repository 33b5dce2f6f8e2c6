// Random bytes into the RTF reader: it must end, stay within memory and never crash, and what it
// returns must be consistent (every run inside a paragraph, text no longer than the input allows).
#include <kvr/rtf.h>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tamano)
{
    const QByteArrayView entrada(reinterpret_cast<const char *>(datos), qsizetype(tamano));
    const kvr::DocumentoRtf doc = kvr::LeerRtf(entrada);
    qsizetype caracteres = 0;
    for (const kvr::ParrafoRtf &p : doc.parrafos)
        for (const kvr::TramoRtf &t : p.tramos)
            caracteres += t.texto.size();
    // Each input byte gives at most one character (a control word at most a few).
    if (caracteres > qsizetype(tamano) + 16)
        std::abort();
    if (doc.parrafos.size() > qsizetype(tamano) + 1)
        std::abort();
    return 0;
}
