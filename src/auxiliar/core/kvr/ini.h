#pragma once
/// @file
/// INI files with the desktop's private-profile rules: sections and keys found without regard to
/// case, the first match winning, blanks around "=" ignored, lines that begin with ";" kept as
/// comments. Files written by the family's older programs (Windows-1252, CR LF) are read and
/// written back compatibly: a write changes only its own line and keeps every other byte, and it
/// is saved atomically.
#include <kvr/kvr_core_export.h>

#include <QByteArray>
#include <QString>

#include <optional>

namespace kvr {

/// The value of `clave` in `seccion`, blanks around it removed and one pair of surrounding quotes
/// taken off; `porOmision` when the file, the section or the key is missing.
KVR_CORE_EXPORT QString LeerIni(const QString &fichero, const QString &seccion,
                                const QString &clave,
                                const QString &porOmision = {});
/// Sets `clave` in `seccion` to `valor`, adding the key at the end of its section, or the section
/// at the end of the file, when missing. A section name holding "]", a key holding "=" or
/// beginning with ";" or "[", a line break in any of them, or a name that a Windows-1252 file
/// cannot hold: ErrorEjecucion 5 (in a value such characters become "?", as the desktop writes
/// them). File errors: ErrorEjecucion 75 or 57 (76 for a missing folder); a folder, FIFO or device
/// in the file's place, or a link out of its folder, is refused (75).
KVR_CORE_EXPORT void GrabarIni(const QString &fichero, const QString &seccion, const QString &clave,
                               const QString &valor);
/// Removes `clave` from `seccion`; with no key, the whole section. Nothing to remove does nothing.
KVR_CORE_EXPORT void BorrarIni(const QString &fichero, const QString &seccion,
                               const QString &clave = {});

/// The same three on a file's bytes, for a caller that keeps the text itself: the value read; the
/// bytes after the write (same errors); the bytes after the removal, none when nothing was removed.
/// A missing file is the empty text. The file routines above read and write through these.
///@{
KVR_CORE_EXPORT QString LeerIniDeTexto(const QByteArray &bytes, const QString &seccion,
                                       const QString &clave,
                                       const QString &porOmision = {});
KVR_CORE_EXPORT QByteArray GrabarIniEnTexto(const QByteArray &bytes, const QString &seccion,
                                            const QString &clave,
                                            const QString &valor);
KVR_CORE_EXPORT std::optional<QByteArray> BorrarIniDeTexto(const QByteArray &bytes,
                                                           const QString &seccion,
                                                           const QString &clave = {});
///@}

/// The notes file: "Notas.INI" in the contacts file's folder (CarpetaContactos()).
KVR_CORE_EXPORT QString FicheroNotas();

} // namespace kvr
