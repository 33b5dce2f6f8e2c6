#pragma once
// INI files with the desktop's private-profile rules: sections and keys found without regard to
// case, the first match winning, blanks around "=" ignored, lines that begin with ";" kept as
// comments. Files written by the family's older programs (Windows-1252, CR LF) are read and
// written back compatibly: a write changes only its own line and keeps every other byte, and it
// is saved atomically.
#include <QString>

namespace kvr {

// The value of `clave` in `seccion`, blanks around it removed and one pair of surrounding quotes
// taken off; `porOmision` when the file, the section or the key is missing.
QString LeerIni(const QString &fichero, const QString &seccion, const QString &clave,
                const QString &porOmision = {});
// Sets `clave` in `seccion` to `valor`, adding the key at the end of its section, or the section
// at the end of the file, when missing. A section name holding "]", a key holding "=" or
// beginning with ";" or "[", a line break in any of them, or a name that a Windows-1252 file
// cannot hold: ErrorEjecucion 5 (in a value such characters become "?", as the desktop writes
// them). File errors: ErrorEjecucion 75 or 57.
void GrabarIni(const QString &fichero, const QString &seccion, const QString &clave,
               const QString &valor);
// Removes `clave` from `seccion`; with no key, the whole section. Nothing to remove does nothing.
void BorrarIni(const QString &fichero, const QString &seccion, const QString &clave = {});

// The notes file: "Notas.INI" in the contacts file's folder (CarpetaContactos()).
QString FicheroNotas();

} // namespace kvr
