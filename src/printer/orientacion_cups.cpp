// The default orientation of a print queue, which Qt's printer information does not carry: the
// queue's "orientation-requested" option as libcups reports it (the administrator's
// orientation-requested-default, or the user's own lpoptions): 4 (and 5, reversed) landscape,
// 3 (and 6) or none portrait.
#include <kvr/impresora.h>

#include <cups/cups.h>

#include <cstdlib>

namespace kvr {

int OrientacionDeCola(const QString &cola)
{
    if (cola.isEmpty())
        return 0;
    cups_dest_t *destinos = nullptr;
    const int n = cupsGetDests2(CUPS_HTTP_DEFAULT, &destinos);
    int orientacion = 0;
    // A queue name may carry an instance after "/" (PDF/borrador).
    const QByteArray nombre = cola.section(u'/', 0, 0).toUtf8();
    const QByteArray instancia = cola.section(u'/', 1).toUtf8();
    if (cups_dest_t *d = cupsGetDest(nombre.constData(),
                                     instancia.isEmpty() ? nullptr : instancia.constData(), n,
                                     destinos)) {
        const char *valor = cupsGetOption("orientation-requested", d->num_options, d->options);
        const long v = valor ? std::strtol(valor, nullptr, 10) : 3;
        orientacion = v == 4 || v == 5 ? 2 : 1; // 5 is landscape turned the other way
    }
    cupsFreeDests(n, destinos);
    return orientacion;
}

} // namespace kvr
