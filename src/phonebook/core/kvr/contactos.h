#pragma once
/// @file
/// The contacts file TELEFONO.DAT that every phone book of the family shares, without widgets:
/// where it lies, reading it into a grid, writing a grid back, and saving only over the version
/// of the file that was read.
///
/// Format: a header line (skipped whatever it holds), then one line per contact with its five
/// cells (spare, name, phone, fax, e-mail) joined by TAB. Lines are separated by CR alone and the
/// whole text ends in one CR LF; CR LF and LF alone are read too. The text is in the DOS code
/// page 850.
#include <kvr/kvr_core_export.h>
#include <kvr/ficheros.h>
#include <kvr/rejilla.h>

#include <QByteArrayView>
#include <QDateTime>
#include <QString>

namespace kvr {

/// The grid's columns: a hidden spare column, then name, phone, fax and e-mail.
inline const QString DescriptorContactos = QStringLiteral("#0;Nombre#34;Teléfono#18;Fax#18;eMail#25");
/// Columns of the contact's cells in the grid.
enum ColumnaContacto : int { ColNombre = 1, ColTelefono = 2, ColFax = 3, ColEmail = 4 };

/// CarpetaContactos() + "TELEFONO.DAT".
KVR_CORE_EXPORT QString RutaContactos();


/// Sets the grid's columns and fills it with the contacts of a file's bytes (the header line
/// skipped). A text with no contact leaves the header and one blank row, ready for a new contact.
/// `noRepresentable`, when given, receives why the grid cannot hold the text whole, so that a
/// save would lose part of it (a first line that is not the header, a line of more than five
/// cells), or stays empty.
KVR_CORE_EXPORT void ContactosDeTexto(QByteArrayView datos, Rejilla &grid,
                                      QString *noRepresentable = nullptr);
/// The file's bytes for a grid: every row, the header included, its cells joined by TAB, rows
/// by CR, CR LF at the end, in code page 850. A TAB, CR or LF inside a cell is written as a blank,
/// so that it cannot split the contact.
KVR_CORE_EXPORT QByteArray TextoContactos(const Rejilla &grid);
/// Sorts the contacts by name without regard to case (equal names keep their order).
KVR_CORE_EXPORT void OrdenarContactos(Rejilla &grid);

/// Loads the file into the grid, sorted, and returns the version read, taken from the open file
/// itself, so that a save by somebody else while reading cannot be mistaken for what was read.
/// A missing file empties the grid and returns existe false. A file that exists but cannot be
/// read, and a path that names a folder, a FIFO or a device, throw ErrorEjecucion naming it
/// (AccesoDenegado); nothing is opened that could block. `noRepresentable` as for
/// ContactosDeTexto.
KVR_CORE_EXPORT SelloFichero LeerFicheroContactos(const QString &ruta, Rejilla &grid,
                                                  QString *noRepresentable = nullptr);

/// How GrabarFicheroContactos ended.
enum class ResultadoGrabacion {
    Grabado,    ///< written; the version passed in is now the new file's
    Modificado, ///< the file is no longer the version passed in: nothing written
    Ocupado,    ///< another program of the runtime held the lock for the whole wait: nothing written
};
/// Sorts the grid and writes it over the file, only when the file on disk is still the version
/// `sello` (or there is none). Check and write happen under an advisory lock file beside the
/// contacts file ("TELEFONO.DAT.lock"), held by programs of this runtime only for that moment; a
/// lock left by a process that died is taken over. The write is atomic: the old file stays whole
/// until the new one is complete on disk. A folder from "TLF" that does not exist is not created;
/// the default folder is. A file that cannot be written (read-only file, missing folder, full
/// disk, a link out of its folder, not a regular file) throws ErrorEjecucion naming the file and
/// the cause in Spanish, with the file untouched. The write is GrabarFicheroAtomico's: a link is
/// followed only to the user's own file in the same folder, and only our own stale temporary
/// files are removed.
KVR_CORE_EXPORT ResultadoGrabacion GrabarFicheroContactos(const QString &ruta, Rejilla &grid,
                                                          SelloFichero &sello,
                                                          int esperaMs = 4000);

} // namespace kvr
