// Random bytes as a contacts file: any bytes load (lines of any end, NUL bytes, TABs beyond the
// five cells), and what a load gives comes back from its own saved text exactly: load, write,
// load gives the same contacts, and writing again gives the same bytes, which end in CR LF and
// hold no line end inside a contact.
#include <kvr/contactos.h>
#include <kvr/rejilla.h>

#include <cstdint>
#include <cstdlib>

namespace {

bool iguales(const kvr::Rejilla &a, const kvr::Rejilla &b)
{
    if (a.Rows() != b.Rows() || a.Cols() != b.Cols())
        return false;
    for (int f = 0; f < a.Rows(); ++f)
        for (int c = 0; c < a.Cols(); ++c)
            if (a.CeldaUtf8(f, c) != b.CeldaUtf8(f, c))
                return false;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tam)
{
    kvr::Rejilla primera;
    kvr::ContactosDeTexto(QByteArrayView(reinterpret_cast<const char *>(datos), qsizetype(tam)), primera);
    const QByteArray texto = kvr::TextoContactos(primera);
    if (!texto.endsWith("\r\n") || texto.chopped(2).contains('\n') || primera.Rows() < 2)
        std::abort();
    kvr::Rejilla segunda;
    kvr::ContactosDeTexto(texto, segunda);
    // The header row is written from the column titles, so it is compared as written.
    if (!iguales(primera, segunda) || kvr::TextoContactos(segunda) != texto)
        std::abort();
    // The sort of a save keeps every contact.
    kvr::OrdenarContactos(segunda);
    if (segunda.Rows() != primera.Rows())
        std::abort();
    return 0;
}
