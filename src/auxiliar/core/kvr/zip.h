#pragma once
/// @file
/// ZIP backups: a list of files and folders into a standard ZIP archive, and an archive back into a
/// folder, through libzip. A restore never writes outside its folder and leaves no half-written
/// file; a backup never leaves a torn archive. Failures are told to the user in Spanish through the
/// services' message box and the function returns false.
#include <kvr/kvr_core_export.h>

#include <QString>
#include <QStringList>

#include <functional>

namespace kvr {

/// Called as the work goes on with the fraction done, from 0 to 1.
using AvisoProgreso = std::function<void(double fraccion)>;

/// A folder is stored under its own name with everything below it (empty
/// folders included, symbolic links followed); a file under its name.
KVR_CORE_EXPORT bool CrearZip(const QStringList &rutas, const QString &zip,
                              const AvisoProgreso &aviso = {});
/// Extracts `zip` into `carpeta` (made when missing). An entry with an absolute path, with "..",
/// or a symbolic link pointing out of the folder refuses the whole archive before anything is
/// written; a damaged archive (a CRC error, a size that is not the one declared) is reported and
/// what was being restored is taken back.
KVR_CORE_EXPORT bool ExtraerZip(const QString &zip, const QString &carpeta,
                                const AvisoProgreso &aviso = {});

} // namespace kvr
