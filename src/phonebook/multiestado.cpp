// A CardDAV server's multistatus response read safely (see the header).
#include <kvr/multiestado.h>

#include <QXmlStreamReader>

namespace kvr {

namespace {

constexpr QStringView Dav = u"DAV:";
constexpr QStringView CardDav = u"urn:ietf:params:xml:ns:carddav";

// "HTTP/1.1 404 Not Found" gives 404; 0 when the line holds no status.
int codigo(const QString &linea)
{
    const QStringList partes = linea.simplified().split(u' ');
    bool ok = false;
    const int n = partes.value(1).toInt(&ok);
    return ok ? n : 0;
}

Multiestado fallo(const QString &problema)
{
    Multiestado m;
    m.problema = problema;
    return m;
}

} // namespace

Multiestado LeerMultiestado(QByteArrayView xml, qsizetype limite)
{
    if (xml.size() > limite)
        return fallo(QStringLiteral("la respuesta del servidor mide %1 bytes, más de los %2 que se leen").arg(xml.size()).arg(limite));
    if (xml.trimmed().isEmpty())
        return fallo(QStringLiteral("la respuesta del servidor está vacía"));
    Multiestado m;
    QXmlStreamReader x(xml.toByteArray());
    x.setNamespaceProcessing(true);
    bool raiz = false;
    RecursoDav recurso;
    bool enRecurso = false, enPropstat = false;
    int estadoPropstat = 0;
    QString etagPropstat;
    QByteArray vcardPropstat;
    int estadoRecurso = 0, estadoOtro = 0;
    while (!x.atEnd()) {
        const QXmlStreamReader::TokenType t = x.readNext();
        if (t == QXmlStreamReader::DTD)
            return fallo(QStringLiteral("la respuesta del servidor trae una declaración de tipo de documento, que no se lee"));
        if (t == QXmlStreamReader::EntityReference)
            return fallo(QStringLiteral("la respuesta del servidor usa una entidad que no es de XML"));
        if (t == QXmlStreamReader::StartElement) {
            const QStringView ns = x.namespaceUri(), n = x.name();
            if (!raiz) {
                if (ns != Dav || n != u"multistatus")
                    return fallo(QStringLiteral("la respuesta del servidor no es un multistatus de WebDAV (su raíz es «%1»)").arg(n));
                raiz = true;
                continue;
            }
            if (ns == Dav && n == u"response") {
                recurso = RecursoDav();
                enRecurso = true;
                estadoRecurso = estadoOtro = 0;
            } else if (ns == Dav && n == u"propstat" && enRecurso) {
                enPropstat = true;
                estadoPropstat = 0;
                etagPropstat.clear();
                vcardPropstat.clear();
            } else if (ns == Dav && n == u"href" && enRecurso && !enPropstat) {
                recurso.href = x.readElementText(QXmlStreamReader::SkipChildElements).trimmed();
            } else if (ns == Dav && n == u"status" && enRecurso) {
                const int c = codigo(x.readElementText(QXmlStreamReader::SkipChildElements));
                (enPropstat ? estadoPropstat : estadoRecurso) = c;
            } else if (ns == Dav && n == u"getetag" && enPropstat) {
                etagPropstat = x.readElementText(QXmlStreamReader::SkipChildElements).trimmed();
            } else if (ns == CardDav && n == u"address-data" && enPropstat) {
                vcardPropstat = x.readElementText(QXmlStreamReader::SkipChildElements).toUtf8();
            } else if (ns == Dav && n == u"sync-token" && !enRecurso) {
                m.testigo = x.readElementText(QXmlStreamReader::SkipChildElements).trimmed();
            }
        } else if (t == QXmlStreamReader::EndElement) {
            const QStringView ns = x.namespaceUri(), n = x.name();
            if (ns == Dav && n == u"propstat" && enPropstat) {
                enPropstat = false;
                // The properties found (200) are the resource's; a group the server did not have
                // (404) only gives the status when nothing else does.
                if (estadoPropstat == 200) {
                    recurso.estado = 200;
                    if (!etagPropstat.isEmpty())
                        recurso.etag = etagPropstat;
                    if (!vcardPropstat.isEmpty())
                        recurso.vcard = vcardPropstat;
                } else if (estadoOtro == 0) {
                    estadoOtro = estadoPropstat;
                }
            } else if (ns == Dav && n == u"response" && enRecurso) {
                enRecurso = false;
                if (estadoRecurso != 0)
                    recurso.estado = estadoRecurso;
                else if (recurso.estado == 0)
                    recurso.estado = estadoOtro;
                if (recurso.href.isEmpty())
                    return fallo(QStringLiteral("la respuesta del servidor tiene un recurso sin href"));
                m.recursos << recurso;
            }
        }
    }
    if (x.hasError())
        return fallo(QStringLiteral("la respuesta del servidor no es XML bien formado o está cortada (línea %1, columna %2)")
                         .arg(x.lineNumber())
                         .arg(x.columnNumber()));
    if (!raiz)
        return fallo(QStringLiteral("la respuesta del servidor está vacía"));
    return m;
}

} // namespace kvr
