// Random text through the send-keys parser: any text either parses or raises run-time error 5,
// and any text made literal parses into exactly one key per character, typing that character.
#include <kvr/error.h>
#include <kvr/analisisteclas.h>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tam)
{
    const QString texto = QString::fromUtf8(reinterpret_cast<const char *>(datos), qsizetype(tam));
    try {
        (void)kvr::AnalizarTeclas(texto);
    } catch (const kvr::ErrorEjecucion &e) {
        if (e.numero() != 5)
            std::abort();
    }
    const QList<kvr::PulsacionTecla> teclas = kvr::AnalizarTeclas(kvr::TeclasLiterales(texto));
    if (teclas.size() != texto.size())
        std::abort();
    for (qsizetype i = 0; i < texto.size(); ++i) {
        const QChar c = texto[i];
        const bool control = c == u'\r' || c == u'\n' || c == u'\t' || c == u'\b' || c.unicode() == 27;
        if (!control && teclas[i].texto != QString(c))
            std::abort();
    }
    return 0;
}
