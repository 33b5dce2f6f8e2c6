// Random bytes as a CardDAV server's multistatus response: read without a fault, in memory
// bounded by the text (nothing read grows past it: no entity is expanded), and a response that
// was refused gives nothing to act on.
#include <kvr/multiestado.h>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tam)
{
    const QByteArrayView xml(reinterpret_cast<const char *>(datos), qsizetype(tam));
    const kvr::Multiestado m = kvr::LeerMultiestado(xml, 1 << 20);
    if (!m.problema.isEmpty() && (!m.recursos.isEmpty() || !m.testigo.isEmpty()))
        std::abort();
    qsizetype total = m.testigo.size();
    for (const kvr::RecursoDav &r : m.recursos)
        total += r.href.size() + r.etag.size() + r.vcard.size();
    if (total > qsizetype(tam))
        std::abort();
    return 0;
}
