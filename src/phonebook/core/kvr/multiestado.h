#pragma once
/// @file
/// A WebDAV multistatus response (RFC 4918) as a CardDAV server sends it for an address book
/// (RFC 6352 addressbook-query, RFC 6578 sync-collection), read without widgets: for each
/// resource its href, its status, its ETag and its vCard text, and the collection's sync token.
///
/// Read safely: a response larger than the limit is not read at all; a document type declaration
/// (where entities would be declared) is refused, so no entity is ever expanded and nothing
/// outside the text is ever reached; a text that is not well-formed XML, or whose root is not a
/// DAV: multistatus, is refused. A caller acts on nothing of a response whose `problema` is set.
#include <kvr/kvr_core_export.h>

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

namespace kvr {

/// One resource of a multistatus response.
struct RecursoDav {
    QString href;      ///< as the server wrote it (relative or absolute, percent-encoded)
    int estado = 0;    ///< HTTP status: the response's own, else that of the properties read
    QString etag;      ///< DAV:getetag, quotes included, as the server wrote it
    QByteArray vcard;  ///< CardDAV address-data, as UTF-8
};

/// A multistatus response read: its resources in order and the sync token (RFC 6578) when it has
/// one; `problema` says why it was not read (then nothing else is to be used).
struct Multiestado {
    QList<RecursoDav> recursos;  ///< the resources, in order
    QString testigo;             ///< the sync token (DAV:sync-token); empty without one
    QString problema;            ///< why the response was refused; empty when it was read
};

/// Reads a multistatus response of at most `limite` bytes.
KVR_CORE_EXPORT Multiestado LeerMultiestado(QByteArrayView xml, qsizetype limite = qsizetype(64) * 1024 * 1024);

} // namespace kvr
