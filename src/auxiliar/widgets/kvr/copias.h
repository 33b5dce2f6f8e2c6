#pragma once
/// @file
/// ZIP backups for hosts: the archive logic of <kvr/zip.h>, with the progress window on request.
#include <kvr/kvr_export.h>
#include <kvr/zip.h>

namespace kvr {

/// The same for hosts: with `conProgreso`, the progress window shows the work.
///@{
KVR_EXPORT bool CopiaSeguridad(const QStringList &rutas, const QString &zip,
                               bool conProgreso = false);
KVR_EXPORT bool RestaurarCopia(const QString &zip, const QString &carpeta,
                               bool conProgreso = false);
///@}

} // namespace kvr
