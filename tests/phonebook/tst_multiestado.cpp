// A CardDAV server's multistatus responses as servers write them (prefixes of their own, a
// resource-level status for a deleted contact, a property group the server did not have, the sync
// token), and the answers that must not be used: not XML, cut, another root, a document type
// declaration (entities: "billion laughs", an external file), a response over the limit.
#include <kvr/multiestado.h>

#include <QTest>

using namespace kvr;

namespace {

QString resumen(const Multiestado &m)
{
    if (!m.problema.isEmpty())
        return m.problema;
    QStringList r;
    for (const RecursoDav &d : m.recursos)
        r << QStringLiteral("%1 %2 %3 %4").arg(d.href).arg(d.estado).arg(d.etag, QString::fromUtf8(d.vcard).simplified());
    return r.join(u" | "_qs) + u" @"_qs + m.testigo;
}

} // namespace

class TstMultiestado : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void lectura_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("consulta, prefijos propios")
            << R"(<?xml version="1.0" encoding="utf-8"?>
<multistatus xmlns="DAV:" xmlns:C="urn:ietf:params:xml:ns:carddav">
 <response><href>/ana/libreta/a.vcf</href>
  <propstat><prop><getetag>"e1"</getetag><C:address-data>BEGIN:VCARD&#13;
FN:Ana Pérez &amp; Cía&#13;
END:VCARD&#13;
</C:address-data></prop><status>HTTP/1.1 200 OK</status></propstat>
 </response>
 <response><href>/ana/libreta/b.vcf</href>
  <propstat><prop><getetag>"e2"</getetag></prop><status>HTTP/1.1 200 OK</status></propstat>
  <propstat><prop><C:address-data/></prop><status>HTTP/1.1 404 Not Found</status></propstat>
 </response>
</multistatus>)"_qba
            << u"/ana/libreta/a.vcf 200 \"e1\" BEGIN:VCARD FN:Ana Pérez & Cía END:VCARD | /ana/libreta/b.vcf 200 \"e2\"  @"_qs;
        QTest::newRow("sincronización con un borrado")
            << R"(<d:multistatus xmlns:d="DAV:"><d:response><d:href>/l/x.vcf</d:href><d:status>HTTP/1.1 404 Not Found</d:status></d:response>
<d:response><d:href>/l/y.vcf</d:href><d:propstat><d:prop><d:getetag>W/"7"</d:getetag></d:prop><d:status>HTTP/1.1 200 OK</d:status></d:propstat></d:response>
<d:sync-token>http://radicale.org/ns/sync/abc</d:sync-token></d:multistatus>)"_qba
            << u"/l/x.vcf 404   | /l/y.vcf 200 W/\"7\"  @http://radicale.org/ns/sync/abc"_qs;
        QTest::newRow("vacío") << QByteArray() << u"la respuesta del servidor está vacía"_qs;
        QTest::newRow("HTML") << "<html><body>Error 502</body></html>"_qba
                              << u"la respuesta del servidor no es un multistatus de WebDAV (su raíz es «html»)"_qs;
        QTest::newRow("cortada") << R"(<multistatus xmlns="DAV:"><response><href>/a</href>)"_qba
                                 << u"la respuesta del servidor no es XML bien formado o está cortada (línea 1, columna 51)"_qs;
        QTest::newRow("entidades que crecen")
            << R"(<?xml version="1.0"?><!DOCTYPE m [<!ENTITY a "aaaaaaaaaa"><!ENTITY b "&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;">]>
<multistatus xmlns="DAV:"><response><href>&b;</href></response></multistatus>)"_qba
            << u"la respuesta del servidor trae una declaración de tipo de documento, que no se lee"_qs;
        QTest::newRow("entidad de un fichero")
            << R"(<?xml version="1.0"?><!DOCTYPE m [<!ENTITY x SYSTEM "file:///etc/passwd">]><multistatus xmlns="DAV:">&x;</multistatus>)"_qba
            << u"la respuesta del servidor trae una declaración de tipo de documento, que no se lee"_qs;
        QTest::newRow("recurso sin href") << R"(<multistatus xmlns="DAV:"><response/></multistatus>)"_qba
                                          << u"la respuesta del servidor tiene un recurso sin href"_qs;
    }
    void lectura()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, esperado);
        QCOMPARE(resumen(LeerMultiestado(xml)), esperado);
    }

    // Memory is bounded: a response over the limit is not even parsed.
    void limite()
    {
        const QByteArray grande = "<multistatus xmlns=\"DAV:\">" + QByteArray(2000, ' ') + "</multistatus>";
        QCOMPARE(LeerMultiestado(grande, 1000).problema,
                 u"la respuesta del servidor mide 2040 bytes, más de los 1000 que se leen"_qs);
        QCOMPARE(LeerMultiestado(grande, 4000).problema, QString());
    }
};

QTEST_MAIN(TstMultiestado)
#include "tst_multiestado.moc"
