#pragma once
/// @file
/// Contacts as vCards, without widgets: reading vCard 2.1, 3.0 and 4.0 (RFC 2426, RFC 6350),
/// writing 3.0, and the four values the phone book shows. A contact edited through the phone book
/// keeps every property the phone book does not show (addresses, notes, photos, other numbers,
/// groups, unknown X- properties): only the four values change.
///
/// Read: lines folded by CR LF (or LF) and a blank or TAB are joined; escaped "\,", "\;", "\\" and
/// "\n" are kept in the value as written and undone by TextoDeVCard; a parameter TYPE may come as
/// "TYPE=work,fax", "TYPE=work;TYPE=fax", "TYPE=\"work,fax\"" or, in 2.1, bare ("TEL;FAX;WORK:");
/// 2.1's ENCODING=QUOTED-PRINTABLE (with its soft line breaks) and CHARSET= are decoded. Text
/// without CHARSET is UTF-8. Written: 3.0 in UTF-8, lines ended by CR LF and folded at 75 octets
/// (never inside a character).
#include <kvr/kvr_core_export.h>

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

namespace kvr {

/// One property of a vCard: its group ("item1" in "item1.TEL"), its name in upper case, its
/// parameters (names in upper case, values as written but unquoted; a bare 2.1 value such as
/// "FAX" is a TYPE), and its value unfolded and decoded to text but still escaped as written.
struct PropiedadVCard {
    QString grupo;                              ///< the group, or empty
    QString nombre;                             ///< the name, in upper case
    QList<QPair<QString, QString>> parametros;  ///< (name, value) pairs, in order
    QString valor;                              ///< the value, decoded but still escaped
};

/// One vCard: its version as written ("2.1", "3.0", "4.0") and its properties in order, without
/// BEGIN, VERSION and END.
struct VCard {
    QString version;                    ///< as written ("2.1", "3.0", "4.0")
    QList<PropiedadVCard> propiedades;  ///< the properties, in order
};

/// What LeerVCards found: the vCards read whole, and why the text was not read whole (empty when
/// it was). A caller that must not act on part of a text checks `problema` first.
struct LecturaVCards {
    QList<VCard> tarjetas;  ///< the vCards read whole, in order
    QString problema;       ///< why the text was not read whole; empty when it was
};

/// The vCards of a text (a .vcf file, a server's response), in order.
KVR_CORE_EXPORT LecturaVCards LeerVCards(QByteArrayView datos);
/// The vCard as version 3.0: BEGIN, VERSION:3.0, its properties, END, each line ended by CR LF
/// and folded at 75 octets. Parameters only 2.1 has (ENCODING, CHARSET) are left out, as the
/// value is already decoded; a bare 2.1 type is written as TYPE=.
KVR_CORE_EXPORT QByteArray EscribirVCard(const VCard &tarjeta);

/// A value as written with its escapes undone ("\n" and "\N" a line break, as are a CR LF or a
/// CR decoded from quoted-printable; "\," "\;" "\\" the character), and the other way round.
///@{
KVR_CORE_EXPORT QString TextoDeVCard(const QString &escrito);
KVR_CORE_EXPORT QString EscaparVCard(const QString &texto);
///@}
/// The values of TYPE parameters of a property, in lower case, one per value ("work,fax" gives
/// two).
KVR_CORE_EXPORT QStringList TiposVCard(const PropiedadVCard &propiedad);

/// The four values the phone book shows of a contact.
struct ContactoVCard {
    QString nombre;   ///< FN; without it the name built from N, or else the first e-mail
    QString telefono; ///< the first TEL whose type does not include fax
    QString fax;      ///< the first TEL whose type includes fax
    QString email;    ///< the first EMAIL
};
/// The phone book's values of a vCard (escapes undone, "tel:" of a 4.0 number left out).
KVR_CORE_EXPORT ContactoVCard ContactoDeVCard(const VCard &tarjeta);
/// Puts the phone book's four values into `tarjeta`, changing only those: FN (and N, derived
/// from the name, when the name changed or N is missing), the first non-fax TEL, the first fax
/// TEL and the first EMAIL, each replaced in place, added when missing, removed when emptied. A
/// vCard without UID gets one ("urn:uuid:..."); the version becomes 3.0.
KVR_CORE_EXPORT void PonerContactoEnVCard(VCard &tarjeta, const ContactoVCard &contacto);
/// N for a name: "APELLIDOS, NOMBRE" gives family "APELLIDOS" and given "NOMBRE"; otherwise the
/// last word is the family name and the words before it the given names. Escaped, five fields.
KVR_CORE_EXPORT QString NDeNombre(const QString &nombre);

} // namespace kvr
