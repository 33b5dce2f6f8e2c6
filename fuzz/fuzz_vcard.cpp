// Random bytes as vCards (a .vcf file, a server's answer): any bytes are read without a fault,
// and every vCard read whole comes back from its own 3.0 text: written and read again it is one
// vCard with the same four values and the same properties, and writing it again gives the same
// bytes, each line ended by CR LF and at most 75 octets long.
#include <kvr/vcard.h>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tam)
{
    const kvr::LecturaVCards l = kvr::LeerVCards(QByteArrayView(reinterpret_cast<const char *>(datos), qsizetype(tam)));
    for (const kvr::VCard &t : l.tarjetas) {
        const QByteArray escrito = kvr::EscribirVCard(t);
        const kvr::LecturaVCards otra = kvr::LeerVCards(escrito);
        if (!otra.problema.isEmpty() || otra.tarjetas.size() != 1)
            std::abort();
        const kvr::ContactoVCard a = kvr::ContactoDeVCard(t), b = kvr::ContactoDeVCard(otra.tarjetas[0]);
        if (a.nombre != b.nombre || a.telefono != b.telefono || a.fax != b.fax || a.email != b.email)
            std::abort();
        if (otra.tarjetas[0].propiedades.size() != t.propiedades.size() || kvr::EscribirVCard(otra.tarjetas[0]) != escrito)
            std::abort();
        for (const QByteArray &linea : escrito.split('\n'))
            if (linea.size() > 76 || (!linea.isEmpty() && !linea.endsWith('\r')))
                std::abort();
    }
    return 0;
}
