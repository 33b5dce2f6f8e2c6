#pragma once
/// @file
/// Whole-file reads and atomic writes for the files the runtime shares with other users (the
/// contacts file, table files, lists): what is not a regular file is refused before it can block
/// or be written through, a symbolic link is never followed for writing outside its own folder,
/// and every cause the user sees is Spanish.
#include <kvr/kvr_core_export.h>

#include <QByteArray>
#include <QByteArrayView>
#include <QDateTime>
#include <QFileDevice>
#include <QString>

#include <optional>

namespace kvr {

/// One version of a file on disk: modification time to the nanosecond, the file's identity
/// (device and inode: an atomic save puts a new inode in place) and its size. Two versions
/// written within the file system's time resolution still differ in inode or size.
struct KVR_CORE_EXPORT SelloFichero {
    bool existe = false;     ///< false: there was no file (the other fields are 0)
    qint64 nanosegundos = 0; ///< modification time, nanoseconds since 1970
    quint64 dispositivo = 0; ///< the file system's device
    quint64 inodo = 0;       ///< the file's inode
    qint64 tamano = 0;       ///< bytes

    /// The modification time as a date-time (to the millisecond); invalid when there is no file.
    ///@{
    QDateTime fecha() const;
    bool operator==(const SelloFichero &) const = default;
    ///@}
};
/// The version of the regular file at `ruta` now (existe false when there is none, or when the
/// path names something that is not a regular file).
KVR_CORE_EXPORT SelloFichero SelloDe(const QString &ruta);

/// The Spanish text of a system error number (errno): "permiso denegado", "no queda sitio en el
/// disco"... An unknown number gives "error del sistema número N".
KVR_CORE_EXPORT QString CausaDelSistema(int numero);
/// The Spanish cause of a failed Qt file operation: the system's cause when the failure left one
/// (`numeroSistema`, errno read right after the call), otherwise one for Qt's error kind.
KVR_CORE_EXPORT QString CausaDeFichero(QFileDevice::FileError error, int numeroSistema = 0);

/// What a path names when it is not a regular file, in Spanish ("una carpeta", "una tubería
/// (FIFO)", "un dispositivo", "un socket"); empty for a regular file or nothing at all. Links are
/// followed.
KVR_CORE_EXPORT QString ClaseNoRegular(const QString &ruta);

/// Why a file operation failed: the runtime's error number (ErrorEjecucion's numbering, 76 for a
/// missing folder) and the Spanish cause, without the path.
struct KVR_CORE_EXPORT FalloFichero {
    int numero = 0;  ///< ErrorEjecucion's number
    QString causa;   ///< the cause in Spanish
};

/// Reads a whole regular file. A path that names a folder, a FIFO, a device or a socket is
/// refused at once (never opened for reading, so a FIFO cannot block); a missing or unreadable
/// file too. `sello`, when given, receives the version of the very file that was read.
KVR_CORE_EXPORT std::optional<FalloFichero> LeerFicheroRegular(const QString &ruta,
                                                               QByteArray &datos,
                                                               SelloFichero *sello = nullptr);

/// The bytes of a regular file for the runtime's text files (tables, lists, INI files): empty when
/// there is no file; anything else that cannot be read throws ErrorEjecucion 75 "No se puede leer
/// el fichero <ruta>: <cause>".
KVR_CORE_EXPORT QByteArray LeerFicheroOVacio(const QString &ruta);

/// Writes `datos` over the file at `ruta` atomically: into a temporary file of the same folder,
/// synced, then renamed over the old one, which stays whole until then. The new file keeps the old
/// one's permission bits (a new file gets the usual ones less the umask).
///
/// A symbolic link at `ruta` is followed only to a regular file that lies in the link's own
/// folder and belongs to the user; the link stays and its target is replaced. Any other link, and
/// anything at `ruta` that is not a regular file, is refused with nothing written.
///
/// The temporary file is named ".<name>.kvr-XXXXXX.tmp" (six random characters). Such files of the
/// same name left by a save that was killed, when they belong to the user and are over a minute
/// old, are removed by the next save; no other file is ever removed.
KVR_CORE_EXPORT std::optional<FalloFichero> GrabarFicheroAtomico(const QString &ruta,
                                                                 QByteArrayView datos);

/// GrabarFicheroAtomico for the runtime's text files: a failure throws the runtime's own error for
/// the path, as a failed write of the desktop runtime does: 76 "No se ha encontrado la ruta de
/// acceso: <ruta>" for a missing folder, otherwise 57 or 75 "<their description>: <ruta>".
KVR_CORE_EXPORT void GrabarFicheroTexto(const QString &ruta, QByteArrayView datos);

/// The pattern of the temporary files GrabarFicheroAtomico makes for a file name.
KVR_CORE_EXPORT QString PatronTemporal(const QString &nombre);

/// The folder of the files every application of the family shares (the contacts file, the notes
/// INI file), with a final "/": the environment variable "TLF" when it is set
/// and not empty (with or without its final "/"); otherwise the user's data folder that every
/// application of the family shares, $XDG_DATA_HOME/kvr/ (by default ~/.local/share/kvr/).
KVR_CORE_EXPORT QString CarpetaContactos();
/// True when the folder comes from "TLF" (then it is never created by us).
KVR_CORE_EXPORT bool CarpetaContactosDeTLF();

} // namespace kvr
