#include <kvr/ficheros.h>

#include <kvr/error.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QStandardPaths>

#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kvr {

namespace {

// The runtime's number for a folder that does not exist (the table routines name it too).
constexpr int RutaNoEncontrada = 76;

SelloFichero selloDeStat(const struct stat &st)
{
    SelloFichero s;
    s.existe = true;
    s.nanosegundos = qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
    s.dispositivo = quint64(st.st_dev);
    s.inodo = quint64(st.st_ino);
    s.tamano = qint64(st.st_size);
    return s;
}

QString claseDeModo(mode_t modo)
{
    if (S_ISREG(modo))
        return {};
    if (S_ISDIR(modo))
        return QStringLiteral("una carpeta");
    if (S_ISFIFO(modo))
        return QStringLiteral("una tubería (FIFO)");
    if (S_ISCHR(modo) || S_ISBLK(modo))
        return QStringLiteral("un dispositivo");
    if (S_ISSOCK(modo))
        return QStringLiteral("un socket");
    return QStringLiteral("algo que no es un fichero");
}

FalloFichero noRegular(mode_t modo)
{
    return {ErrorEjecucion::AccesoDenegado, QStringLiteral("es %1, no un fichero").arg(claseDeModo(modo))};
}

// The number a failed call of the system gets among the runtime's errors.
int numeroDe(int e)
{
    switch (e) {
    case ENOENT: return ErrorEjecucion::ArchivoNoEncontrado;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ETXTBSY: return ErrorEjecucion::AccesoDenegado;
    default: return ErrorEjecucion::ErrorEntradaSalida;
    }
}

QString nativa(const QByteArray &ruta)
{
    return QDir::toNativeSeparators(QFile::decodeName(ruta));
}

// The folder part of a path (the path up to its last "/"; "." for a bare name).
QByteArray carpetaDe(const QByteArray &ruta)
{
    const qsizetype barra = ruta.lastIndexOf('/');
    if (barra < 0)
        return QByteArrayLiteral(".");
    return barra == 0 ? QByteArrayLiteral("/") : ruta.left(barra);
}

QByteArray caminoReal(const QByteArray &ruta)
{
    char *r = ::realpath(ruta.constData(), nullptr);
    if (!r)
        return {};
    QByteArray resultado(r);
    std::free(r);
    return resultado;
}

// Removes the temporary files of earlier saves of the same name that were killed before their
// rename: only names of our own pattern, regular files of this user, over a minute old (a save
// takes milliseconds, so none of them is one still being written).
void limpiarRestos(const QByteArray &carpeta, const QByteArray &patron)
{
    DIR *d = ::opendir(carpeta.constData());
    if (!d)
        return;
    const time_t limite = ::time(nullptr) - 60;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): this stream of the folder is the call's own
    while (const dirent *e = ::readdir(d)) {
        if (::fnmatch(patron.constData(), e->d_name, 0) != 0)
            continue;
        struct stat st {};
        const QByteArray ruta = carpeta + '/' + e->d_name;
        if (::lstat(ruta.constData(), &st) == 0 && S_ISREG(st.st_mode) && st.st_uid == ::geteuid()
            && st.st_mtim.tv_sec < limite)
            ::unlink(ruta.constData());
    }
    ::closedir(d);
}

// Writes everything, going on after a short write; false with errno set when the system
// refuses, `escritos` telling how much went in.
bool escribirTodo(int fd, QByteArrayView datos, qsizetype &escritos)
{
    escritos = 0;
    while (escritos < datos.size()) {
        const ssize_t n = ::write(fd, datos.data() + escritos, std::size_t(datos.size() - escritos));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        escritos += n;
    }
    return true;
}

} // namespace

QDateTime SelloFichero::fecha() const
{
    return existe ? QDateTime::fromMSecsSinceEpoch(nanosegundos / 1000000) : QDateTime();
}

SelloFichero SelloDe(const QString &ruta)
{
    struct stat st {};
    if (ruta.isEmpty() || ::stat(QFile::encodeName(ruta).constData(), &st) != 0 || !S_ISREG(st.st_mode))
        return {};
    return selloDeStat(st);
}

QString CausaDelSistema(int numero)
{
    switch (numero) {
    case 0: return QStringLiteral("error desconocido");
    case ENOENT: return QStringLiteral("no existe");
    case EACCES: return QStringLiteral("permiso denegado");
    case EPERM: return QStringLiteral("operación no permitida");
    case EROFS: return QStringLiteral("el disco es de solo lectura");
    case ENOSPC: return QStringLiteral("no queda sitio en el disco");
    case EDQUOT: return QStringLiteral("se ha superado la cuota de disco del usuario");
    case EFBIG: return QStringLiteral("el fichero supera el tamaño permitido");
    case EISDIR: return QStringLiteral("es una carpeta");
    case ENOTDIR: return QStringLiteral("una parte de la ruta no es una carpeta");
    case ELOOP: return QStringLiteral("demasiados enlaces simbólicos seguidos");
    case ENAMETOOLONG: return QStringLiteral("el nombre es demasiado largo");
    case EIO: return QStringLiteral("error de entrada/salida en el dispositivo");
    case EMFILE:
    case ENFILE: return QStringLiteral("hay demasiados ficheros abiertos");
    case EBUSY:
    case ETXTBSY: return QStringLiteral("el fichero está ocupado");
    case EEXIST: return QStringLiteral("ya existe");
    case EXDEV: return QStringLiteral("no se puede mover entre discos distintos");
    case ENXIO:
    case ENODEV: return QStringLiteral("no hay dispositivo");
    case ENOMEM: return QStringLiteral("no queda memoria");
    case EINVAL: return QStringLiteral("argumento no válido");
    case EAGAIN: return QStringLiteral("recurso no disponible por ahora");
    case ESTALE: return QStringLiteral("el fichero de red ya no es válido");
    case ETIMEDOUT: return QStringLiteral("se agotó el tiempo de espera");
    case EINTR: return QStringLiteral("llamada interrumpida");
    case ENOTEMPTY: return QStringLiteral("la carpeta no está vacía");
    case ENOTCONN:
    case EHOSTUNREACH:
    case ENETUNREACH: return QStringLiteral("no se llega al servidor de la red");
    default: return QStringLiteral("error del sistema número %1").arg(numero);
    }
}

QString CausaDeFichero(QFileDevice::FileError error, int numeroSistema)
{
    if (numeroSistema != 0)
        return CausaDelSistema(numeroSistema);
    switch (error) {
    case QFileDevice::NoError: return QStringLiteral("sin error");
    case QFileDevice::ReadError: return QStringLiteral("no se pudo leer");
    case QFileDevice::WriteError: return QStringLiteral("no se pudo escribir");
    case QFileDevice::FatalError: return QStringLiteral("error grave del sistema de ficheros");
    case QFileDevice::ResourceError: return QStringLiteral("faltan recursos del sistema (disco o memoria)");
    case QFileDevice::OpenError: return QStringLiteral("no se pudo abrir");
    case QFileDevice::AbortError: return QStringLiteral("la operación se interrumpió");
    case QFileDevice::TimeOutError: return QStringLiteral("se agotó el tiempo de espera");
    case QFileDevice::RemoveError: return QStringLiteral("no se pudo borrar");
    case QFileDevice::RenameError: return QStringLiteral("no se pudo cambiar el nombre");
    case QFileDevice::PositionError: return QStringLiteral("no se pudo situar en el fichero");
    case QFileDevice::ResizeError: return QStringLiteral("no se pudo cambiar el tamaño");
    case QFileDevice::PermissionsError: return QStringLiteral("no se pudieron cambiar los permisos");
    case QFileDevice::CopyError: return QStringLiteral("no se pudo copiar");
    case QFileDevice::UnspecifiedError: break;
    }
    return QStringLiteral("error desconocido");
}

QString ClaseNoRegular(const QString &ruta)
{
    struct stat st {};
    if (ruta.isEmpty() || ::stat(QFile::encodeName(ruta).constData(), &st) != 0)
        return {};
    return claseDeModo(st.st_mode);
}

std::optional<FalloFichero> LeerFicheroRegular(const QString &ruta, QByteArray &datos, SelloFichero *sello)
{
    datos.clear();
    const QByteArray nativo = QFile::encodeName(ruta);
    struct stat st {};
    // A FIFO or a device is told from the path before it is opened: opening a FIFO for reading
    // would wait for a writer.
    if (::stat(nativo.constData(), &st) != 0)
        return FalloFichero{numeroDe(errno), CausaDelSistema(errno)};
    if (!S_ISREG(st.st_mode))
        return noRegular(st.st_mode);
    // Non-blocking, so that a FIFO put in the file's place after the check cannot block either;
    // the open file is checked again.
    const int fd = ::open(nativo.constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd < 0)
        return FalloFichero{numeroDe(errno), CausaDelSistema(errno)};
    struct Cierre {
        int fd;
        ~Cierre() { ::close(fd); }
    } cierre{fd};
    if (::fstat(fd, &st) != 0)
        return FalloFichero{ErrorEjecucion::ErrorEntradaSalida, CausaDelSistema(errno)};
    if (!S_ISREG(st.st_mode))
        return noRegular(st.st_mode);
    if (sello)
        *sello = selloDeStat(st);
    // Room for the size the file has now; a file that grows meanwhile is read to its end.
    datos.resize(qsizetype(st.st_size));
    qsizetype leidos = 0;
    for (;;) {
        if (leidos == datos.size())
            datos.resize(leidos + 65536);
        const ssize_t n = ::read(fd, datos.data() + leidos, std::size_t(datos.size() - leidos));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            const int e = errno;
            datos.clear();
            return FalloFichero{ErrorEjecucion::ErrorEntradaSalida, CausaDelSistema(e)};
        }
        if (n == 0)
            break;
        leidos += n;
    }
    datos.truncate(leidos);
    return std::nullopt;
}

QByteArray LeerFicheroOVacio(const QString &ruta)
{
    QByteArray datos;
    if (const auto fallo = LeerFicheroRegular(ruta, datos); fallo && fallo->numero != ErrorEjecucion::ArchivoNoEncontrado)
        throw ErrorEjecucion(ErrorEjecucion::AccesoDenegado,
                             QStringLiteral("No se puede leer el fichero %1: %2").arg(ruta, fallo->causa));
    return datos;
}

void GrabarFicheroTexto(const QString &ruta, QByteArrayView datos)
{
    if (const auto fallo = GrabarFicheroAtomico(ruta, datos)) {
        if (fallo->numero == RutaNoEncontrada)
            throw ErrorEjecucion(RutaNoEncontrada, QStringLiteral("No se ha encontrado la ruta de acceso: %1").arg(ruta));
        const int numero = fallo->numero == ErrorEjecucion::ErrorEntradaSalida ? ErrorEjecucion::ErrorEntradaSalida
                                                                              : ErrorEjecucion::AccesoDenegado;
        throw ErrorEjecucion(numero, QStringLiteral("%1: %2").arg(ErrorEjecucion::DescripcionDe(numero), ruta));
    }
}

QString PatronTemporal(const QString &nombre)
{
    return u'.' + nombre + QStringLiteral(".kvr-??????.tmp");
}

std::optional<FalloFichero> GrabarFicheroAtomico(const QString &ruta, QByteArrayView datos)
{
    const QByteArray nativo = QFile::encodeName(QFileInfo(ruta).absoluteFilePath());
    QByteArray destino = nativo;
    std::optional<mode_t> modo; // the permission bits of the file replaced, when there is one

    struct stat st {};
    if (::lstat(nativo.constData(), &st) == 0) {
        if (S_ISLNK(st.st_mode)) {
            // Followed only to a regular file of this user in the link's own folder: in a shared
            // folder anybody can make a link to somebody else's file.
            destino = caminoReal(nativo);
            if (destino.isEmpty())
                return FalloFichero{ErrorEjecucion::AccesoDenegado,
                                    QStringLiteral("es un enlace simbólico a un fichero que no existe")};
            const QString aDonde = nativa(destino);
            if (::stat(destino.constData(), &st) != 0 || !S_ISREG(st.st_mode))
                return FalloFichero{ErrorEjecucion::AccesoDenegado,
                                    QStringLiteral("es un enlace simbólico a %1, que no es un fichero").arg(aDonde)};
            if (carpetaDe(destino) != caminoReal(carpetaDe(nativo)))
                return FalloFichero{ErrorEjecucion::AccesoDenegado,
                                    QStringLiteral("es un enlace simbólico a %1, fuera de su carpeta; "
                                                   "no se graba a través de él").arg(aDonde)};
            if (st.st_uid != ::geteuid())
                return FalloFichero{ErrorEjecucion::AccesoDenegado,
                                    QStringLiteral("es un enlace simbólico a %1, que es de otro usuario; "
                                                   "no se graba a través de él").arg(aDonde)};
        } else if (!S_ISREG(st.st_mode)) {
            return noRegular(st.st_mode);
        }
        // Replacing a file takes only the folder's permission: its own is asked for here, so that
        // a read-only file stays read-only (its owner's write bit too: the superuser may write
        // anything, yet a file marked read-only is not replaced).
        if (!(st.st_mode & S_IWUSR) || ::access(destino.constData(), W_OK) != 0)
            return FalloFichero{ErrorEjecucion::AccesoDenegado, QStringLiteral("el fichero es de solo lectura")};
        modo = st.st_mode & 07777;
    } else if (errno != ENOENT) {
        return FalloFichero{numeroDe(errno), CausaDelSistema(errno)};
    }

    const QByteArray carpeta = carpetaDe(destino);
    if (struct stat sc {}; ::stat(carpeta.constData(), &sc) != 0 || !S_ISDIR(sc.st_mode))
        return FalloFichero{RutaNoEncontrada, QStringLiteral("no existe la carpeta %1").arg(nativa(carpeta))};

    const QByteArray nombre = destino.mid(carpeta.size() + (carpeta.endsWith('/') ? 0 : 1));
    limpiarRestos(carpeta, QFile::encodeName(PatronTemporal(QFile::decodeName(nombre))));

    // A name of our own pattern that nobody has: six letters and digits at random, made with
    // O_EXCL so that a name somebody else made in between is never opened.
    static constexpr char letras[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    QByteArray temporal;
    int fd = -1;
    for (int intento = 0; fd < 0 && intento < 100; ++intento) {
        QByteArray azar(6, Qt::Uninitialized);
        for (char &c : azar)
            c = letras[QRandomGenerator::global()->bounded(int(sizeof letras - 1))];
        temporal = carpeta + "/." + nombre + ".kvr-" + azar + ".tmp";
        // 0666 less the umask, as any new file; a replaced file's own bits are put back below.
        fd = ::open(temporal.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
        if (fd < 0 && errno != EEXIST)
            break;
    }
    if (fd < 0) {
        const int e = errno;
        return FalloFichero{numeroDe(e) == ErrorEjecucion::ErrorEntradaSalida ? ErrorEjecucion::ErrorEntradaSalida
                                                                              : ErrorEjecucion::AccesoDenegado,
                            QStringLiteral("no se puede escribir en la carpeta %1: %2").arg(nativa(carpeta), CausaDelSistema(e))};
    }

    const auto abandonar = [&](int numero, const QString &causa) {
        ::close(fd);
        ::unlink(temporal.constData());
        return FalloFichero{numero, causa};
    };
    if (modo && ::fchmod(fd, *modo) != 0)
        return abandonar(ErrorEjecucion::AccesoDenegado, CausaDelSistema(errno));
    qsizetype escritos = 0;
    if (!escribirTodo(fd, datos, escritos)) {
        const int e = errno;
        // A write that the disk cut short part way says so; one refused outright keeps its cause.
        const bool lleno = escritos > 0 && (e == ENOSPC || e == EDQUOT || e == EFBIG);
        return abandonar(ErrorEjecucion::ErrorEntradaSalida,
                         lleno ? QStringLiteral("no cupo entero en el disco") : CausaDelSistema(e));
    }
    if (::fsync(fd) != 0)
        return abandonar(ErrorEjecucion::ErrorEntradaSalida, CausaDelSistema(errno));
    if (::close(fd) != 0) {
        const int e = errno;
        ::unlink(temporal.constData());
        return FalloFichero{ErrorEjecucion::ErrorEntradaSalida, CausaDelSistema(e)};
    }
    if (::rename(temporal.constData(), destino.constData()) != 0) {
        const int e = errno;
        ::unlink(temporal.constData());
        return FalloFichero{numeroDe(e), CausaDelSistema(e)};
    }
    // The rename itself reaches the disk with the folder.
    if (const int dfd = ::open(carpeta.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); dfd >= 0) {
        ::fsync(dfd);
        ::close(dfd);
    }
    return std::nullopt;
}

QString CarpetaContactos()
{
    QString carpeta = qEnvironmentVariable("TLF");
    if (carpeta.isEmpty()) {
        carpeta = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        if (carpeta.isEmpty())
            carpeta = QDir::homePath() + QStringLiteral("/.local/share");
        carpeta += QStringLiteral("/kvr");
    }
    if (!carpeta.endsWith(u'/'))
        carpeta += u'/';
    return carpeta;
}

bool CarpetaContactosDeTLF()
{
    return !qEnvironmentVariableIsEmpty("TLF");
}

} // namespace kvr
