#pragma once
/// @file
/// Table files: a small one-column table kept in a plain text file, one element a line, moved
/// between the file and column 0 of a grid (rows 1 and on; row 0 holds the titles).
///
/// On disk:
///  - Lines end with CR LF. Blank elements (empty or only blanks) are not written, so gaps close
///    up; an element is written as it stands, blanks included (" A " stays " A ").
///  - Character set: files written by the family's older programs are Windows-1252, newer ones
///    may be UTF-8. A file is read as UTF-8 when its bytes are valid UTF-8 (a leading UTF-8 byte
///    order mark is skipped) and as Windows-1252 otherwise, so both kinds load without loss.
///    Files are written in UTF-8 without a byte order mark, the convention of the system, so
///    that every character typed is kept.
///  - A save is atomic: the new text goes to a temporary file that replaces the old one only
///    when it is complete. A save that fails leaves the old file as it was.
///
/// Errors of the file system throw kvr::ErrorEjecucion: 75 "Error de acceso a la ruta o el
/// archivo" (a file or folder that cannot be read or written), 76 "No se ha encontrado la ruta
/// de acceso" (the folder does not exist), 57 "Error de E/S en el dispositivo" (writing failed
/// on the way, e.g. a full disk).
#include <kvr/kvr_core_export.h>
#include <kvr/rejilla.h>

#include <QString>
#include <QStringList>

namespace kvr {

/// Operations of FicheroTabla.
///@{
inline const QString OperacionCargar = QStringLiteral("CARGAR");
inline const QString OperacionGrabar = QStringLiteral("GRABAR");
inline const QString OperacionRegrabar = QStringLiteral("REGRABAR");
///@}

/// Error number of a missing folder on the way to a file.
constexpr int ErrorRutaNoEncontrada = 76;

/// Moves the table between the file `Fichero` and column 0 of `Grid`:
///  - "CARGAR": blanks the grid's data cells (the number of rows stays), then puts line n of the
///    file into cell (n, 0), growing the grid as needed. A file that does not exist leaves the
///    grid blanked, without a message.
///  - "GRABAR": when the file exists, asks first through the message box of the OS seam,
///    "Fichero <Fichero> existe en disco. Se Sobreescribirá." with OK / Cancel and the
///    exclamation icon; Cancel writes nothing. Then writes every non-blank cell of column 0.
///  - "REGRABAR": writes the same way without asking.
///  - any other operation does nothing.
/// When `Fichero` is empty the user is asked first through the seam's input box (caption
/// "Editor de Tablas de PQD", question "Path y Nombre del fichero a " + Operacion, top-left corner
/// at LeftTwips, TopTwips on the screen, -1 centred); the answer is written back into `Fichero`,
/// and an empty answer (cancelled or nothing typed) does nothing more.
KVR_CORE_EXPORT void FicheroTabla(const QString &Operacion, QString &Fichero, Rejilla &Grid,
                                  int LeftTwips,
                                  int TopTwips);
/// The same with the prompt centred on the screen.
KVR_CORE_EXPORT void FicheroTabla(const QString &Operacion, QString &Fichero, Rejilla &Grid);

/// The text of a table file as it is written: the elements that are not empty or all blanks,
/// each followed by CR LF, in UTF-8.
KVR_CORE_EXPORT QByteArray TextoTabla(const QStringList &elementos);
/// Fills a grid's column 0 from a table file's bytes, as a load does: the grid's rows blanked
/// first, then one element a line from row 1 (the grid grows when the file has more).
KVR_CORE_EXPORT void TablaDeTexto(const QByteArray &bytes, Rejilla &Grid);
/// The elements in column 0 of a grid's data rows (rows 1 and on), blanks included.
KVR_CORE_EXPORT QStringList ElementosTabla(const Rejilla &Grid);

} // namespace kvr
