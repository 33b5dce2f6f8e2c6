#pragma once
// kvr telefonos --importar / --exportar: the phone book's contacts in and out of files, with no
// window: vCard (.vcf), CSV (.csv) or a TELEFONO.DAT from elsewhere, by the file's name.
#include <QString>

namespace kvr::orden {

// Exit status 0 when every contact went in (or out), 1 when some were refused (each said on
// standard error, by line or UID), 2 for a file or phone book that could not be used.
int ImportarContactos(const QString &fichero);
int ExportarContactos(const QString &fichero);

} // namespace kvr::orden
