#include <kvr/tags.h>
#include <kvr/error.h>
#include <kvr/servicios.h>

namespace kvr {

namespace {

struct Delimitadores { QString abre, cierra; };

Delimitadores delimitadores(const QString &d)
{
    const QString pareja = d.isEmpty() ? QStringLiteral("()") : d;
    // A one-character pair has no closing delimiter; reading with it is an argument error.
    return {pareja.mid(0, 1), pareja.mid(1, 1)};
}

// Position (0-based) of the closing delimiter searched from the key's position, as the value's
// end; throws when there is none, as the string extraction would.
qsizetype finDeValor(const QString &tag, qsizetype posClave, qsizetype inicioValor, const QString &cierra)
{
    const qsizetype q = cierra.isEmpty() ? posClave : tag.indexOf(cierra, posClave);
    if (q < 0 || q < inicioValor)
        throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido);
    return q;
}

QString nombreDato(const QString &clave)
{
    if (clave == u"A") return QStringLiteral("(A) Ajuste");
    if (clave == u"T") return QStringLiteral("(T) Tipo");
    if (clave == u"L") return QStringLiteral("(L) Longitud");
    return {};
}

} // namespace

std::optional<QString> LeerTag(const QString &tag, const QString &clave, const QString &delims)
{
    const Delimitadores d = delimitadores(delims);
    const qsizetype p = tag.indexOf(clave + d.abre);
    if (p < 0) {
        const QString dato = nombreDato(clave);
        if (!dato.isEmpty()) {
            Servicios &s = ServiciosActuales();
            s.Mensaje(QStringLiteral(" No encontrado dato TAG obligatorio ") + dato + QStringLiteral(" en ") + tag,
                      Critico, s.TituloAplicacion());
        }
        return std::nullopt;
    }
    const qsizetype inicio = p + clave.size() + d.abre.size();
    const qsizetype q = finDeValor(tag, p, inicio, d.cierra);
    return tag.mid(inicio, q - inicio);
}

QString PonerTag(const QString &tag, const QString &clave, const QString &valor, const QString &delims)
{
    const Delimitadores d = delimitadores(delims);
    const qsizetype p = tag.indexOf(clave + d.abre);
    if (p < 0)
        return tag + u' ' + clave + d.abre + valor + d.cierra;
    const qsizetype inicio = p + clave.size() + d.abre.size();
    const qsizetype q = d.cierra.isEmpty() ? -1 : tag.indexOf(d.cierra, p);
    if (q < 0)
        throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido);
    return tag.left(inicio) + valor + tag.mid(q);
}

} // namespace kvr
