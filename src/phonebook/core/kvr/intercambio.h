#pragma once
/// @file
/// Contacts in and out of the phone book as files other programs read, without widgets: CSV as
/// spreadsheets and address books write it, and the formats a file's name asks for.
///
/// CSV written: UTF-8 with a byte-order mark, ";" between fields, the header
/// "Nombre;Teléfono;Fax;eMail", fields quoted as RFC 4180 says (a field holding ";", a double
/// quote or a line break goes between double quotes, its quotes doubled), lines ended by CR LF:
/// a spreadsheet in a Spanish locale opens it in four columns. CSV read: "," or ";" (the one the
/// header line uses), with or without the mark, UTF-8 (or Windows-1252 when the text is not
/// UTF-8), and the header names common address-book exports use (see CamposCsv).
#include <kvr/kvr_core_export.h>
#include <kvr/vcard.h>

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace kvr {

/// The formats of a contacts file, by its name: ".vcf" (vCard, several contacts in one file),
/// ".csv", and any other name a TELEFONO.DAT in code page 850.
enum class FormatoContactos { VCard, Csv, Dat };
/// The format of the contacts file `ruta` by its name (".vcf" or ".vcard", ".csv", else DAT).
KVR_CORE_EXPORT FormatoContactos FormatoDeFichero(const QString &ruta);

/// One contact read from a file: its four values, its vCard UID (empty for other formats) and
/// where it was (the line of a CSV file, the position of a vCard).
struct ContactoLeido {
    ContactoVCard contacto;  ///< the four values
    QString uid;             ///< the vCard's UID; empty for other formats
    int donde = 0;           ///< the CSV line, or the vCard's position (from 1)
};

/// The contacts of a CSV text. `problema` says why nothing could be read (no header line, no
/// column of a name, a phone, a fax or an e-mail); `rechazados` the lines skipped and why (a line
/// with none of the four values).
struct LecturaCsv {
    QList<ContactoLeido> contactos;  ///< the contacts read, in order
    QStringList rechazados;          ///< the lines skipped, each with its reason
    QString problema;                ///< why nothing could be read; empty otherwise
};
/// Reads the contacts of a CSV text (see the file's description and LecturaCsv).
KVR_CORE_EXPORT LecturaCsv LeerCsvContactos(QByteArrayView datos);
/// The CSV text of contacts (see the file's description).
KVR_CORE_EXPORT QByteArray CsvDeContactos(const QList<ContactoVCard> &contactos);

/// The header names each of the four values is read from, in lower case and without accents, as
/// Spanish and English address books export them; "Nombre" may also be made of a first and a last
/// name ("first name" + "last name", "nombre" + "apellidos"). Listed in the README.
KVR_CORE_EXPORT QList<QStringList> CamposCsv();

} // namespace kvr
