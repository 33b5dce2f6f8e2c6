// Random command lines for kvr (words separated by NUL bytes) read against an order that takes
// options with and without values and one or two positional words, and each word as an amount
// and as --timeout's seconds. What is read must keep the order's rules: the positional words in
// their count, only the order's own options, flags without values; an amount read back from its
// plain decimal form gives the same amount; seconds stay within a day.
#include "linea.h"

#include <QByteArray>
#include <QList>

#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace kvr::orden;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t tam)
{
    static const ReglasOrden e{QStringLiteral("entrada"),
                                  {QStringLiteral("tag"), QStringLiteral("lista"), QStringLiteral("titulo")},
                                  {QStringLiteral("numero")}, 1, 2, true};
    QStringList palabras;
    for (const QByteArray &p : QByteArray(reinterpret_cast<const char *>(datos), qsizetype(tam)).split('\0'))
        palabras << QString::fromUtf8(p);
    const Lectura l = LeerLinea(palabras, e);
    if (!l.ayuda && l.error.isEmpty()) {
        const Argumentos &a = l.argumentos;
        if (a.posicionales.size() < e.minimo || a.posicionales.size() > e.maximo)
            std::abort();
        for (const auto &[nombre, valor] : a.opciones) {
            const bool bandera = e.banderas.contains(nombre);
            if (!bandera && !e.conValor.contains(nombre) && nombre != u"timeout")
                std::abort();
            if (bandera && !valor.isEmpty())
                std::abort();
        }
    }
    for (const QString &p : std::as_const(palabras)) {
        QString problema;
        if (const auto v = LeerCantidad(p, problema)) {
            if (!std::isfinite(*v) || !problema.isEmpty())
                std::abort();
            // Six decimals after a point: one mark, not three digits, so never ambiguous.
            if (std::fabs(*v) < 1e15) {
                const auto otra = LeerCantidad(QString::number(*v, 'f', 6), problema);
                if (!otra || std::fabs(*otra - *v) > 1e-6 * std::max(1.0, std::fabs(*v)))
                    std::abort();
            }
        }
        if (const auto ms = LeerSegundos(p); ms && (*ms < 0 || *ms > 86400000))
            std::abort();
    }
    return 0;
}
