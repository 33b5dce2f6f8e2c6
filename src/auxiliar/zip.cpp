#include <kvr/zip.h>
#include <kvr/ficheros.h>

#include <kvr/servicios.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryFile>

#include <zip.h>

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>

namespace kvr {

namespace {

constexpr int kNivelDeflate = 6; // Info-ZIP zip's own default level

void avisar(const QString &texto)
{
    Servicios &s = ServiciosActuales();
    s.Mensaje(texto, Critico, s.TituloAplicacion());
}

QByteArray local(const QString &ruta)
{
    return QFile::encodeName(ruta);
}

// libzip's error numbers said in Spanish.
QString motivo(int codigo)
{
    switch (codigo) {
    case ZIP_ER_NOZIP: return QStringLiteral("no es un archivo ZIP");
    case ZIP_ER_INCONS:
    case ZIP_ER_EOF:
    case ZIP_ER_COMPRESSED_DATA:
    case ZIP_ER_ZLIB: return QStringLiteral("el archivo está dañado");
    case ZIP_ER_CRC: return QStringLiteral("error de CRC: los datos están dañados");
    case ZIP_ER_MULTIDISK: return QStringLiteral("las copias en varios discos no se admiten");
    case ZIP_ER_COMPNOTSUPP: return QStringLiteral("método de compresión no admitido");
    case ZIP_ER_ENCRNOTSUPP:
    case ZIP_ER_NOPASSWD:
    case ZIP_ER_WRONGPASSWD: return QStringLiteral("la entrada está cifrada");
    case ZIP_ER_NOENT: return QStringLiteral("no existe");
    case ZIP_ER_OPEN: return QStringLiteral("no se puede abrir");
    case ZIP_ER_READ: return QStringLiteral("error de lectura");
    case ZIP_ER_WRITE: return QStringLiteral("error de escritura (¿disco lleno?)");
    case ZIP_ER_TMPOPEN: return QStringLiteral("no se puede crear el fichero temporal");
    case ZIP_ER_RENAME: return QStringLiteral("no se puede renombrar el fichero temporal");
    case ZIP_ER_MEMORY: return QStringLiteral("memoria insuficiente");
    default: return QStringLiteral("error %1 de la biblioteca ZIP").arg(codigo);
    }
}

struct CierraZip {
    void operator()(zip_t *z) const { zip_discard(z); }
};
using Zip = std::unique_ptr<zip_t, CierraZip>;

// ---- Backup ----

struct Elemento {
    QString nombre;   // in the archive; a folder's ends in "/"
    QFileInfo info;
};

// A folder and everything below it, sorted by name. Symbolic links are followed, as zip does;
// a folder reached twice (a link to a folder above) is stored once.
void recorrer(const QFileInfo &carpeta, const QString &nombre, const QString &archivo,
              QSet<QString> &vistas, QList<Elemento> &lista)
{
    if (!nombre.isEmpty()) // the root folder has no entry of its own
        lista.append({nombre + u'/', carpeta});
    if (vistas.contains(carpeta.canonicalFilePath()))
        return;
    vistas.insert(carpeta.canonicalFilePath());
    const QFileInfoList hijos = QDir(carpeta.absoluteFilePath())
        .entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                       QDir::Name);
    for (const QFileInfo &h : hijos) {
        if (!h.exists() || h.absoluteFilePath() == archivo)
            continue; // a broken link; the archive being written
        const QString n = nombre.isEmpty() ? h.fileName() : nombre + u'/' + h.fileName();
        if (h.isDir())
            recorrer(h, n, archivo, vistas, lista);
        else if (h.isFile())
            lista.append({n, h});
    }
}

quint32 atributos(const QFileInfo &info, bool carpeta)
{
    quint32 modo = carpeta ? S_IFDIR : S_IFREG;
    const QFileDevice::Permissions p = info.permissions();
    const std::pair<QFileDevice::Permission, quint32> bits[] = {
        {QFileDevice::ReadOwner, 0400}, {QFileDevice::WriteOwner, 0200}, {QFileDevice::ExeOwner, 0100},
        {QFileDevice::ReadGroup, 0040}, {QFileDevice::WriteGroup, 0020}, {QFileDevice::ExeGroup, 0010},
        {QFileDevice::ReadOther, 0004}, {QFileDevice::WriteOther, 0002}, {QFileDevice::ExeOther, 0001}};
    for (const auto &[permiso, bit] : bits)
        if (p & permiso)
            modo |= bit;
    // The upper half is the Unix mode; 0x10 is the MS-DOS folder attribute.
    return (modo << 16) | (carpeta ? 0x10 : 0);
}

// ---- Restore ----

enum class Clase { Carpeta, Fichero, Enlace };

struct Entrada {
    zip_uint64_t indice = 0;
    QString nombre;          // relative, with "/" separators, without "." parts
    Clase clase = Clase::Fichero;
    zip_uint64_t tamano = 0;
    time_t fecha = 0;
    quint32 modo = 0;        // Unix permission bits, 0 when the archive holds none
    QByteArray destinoEnlace;
};

// The entry's name made relative and clean (empty for the folder itself); nothing when it would
// leave the folder (an absolute path, a drive letter, a ".." part).
std::optional<QString> nombreSeguro(const QString &crudo)
{
    QString n = crudo;
    n.replace(u'\\', u'/');
    if (n.startsWith(u'/') || (n.size() >= 2 && n[1] == u':'))
        return std::nullopt;
    QStringList partes;
    for (const QString &p : n.split(u'/', Qt::SkipEmptyParts)) {
        if (p == u"..")
            return std::nullopt;
        if (p != u".")
            partes << p;
    }
    return partes.join(u'/');
}

// Whether a link at `nombre` (relative to the folder) pointing at `destino` stays inside it, as
// written; Restauracion checks it again on disk once the link's folder exists.
bool enlaceDentro(const QString &nombre, const QByteArray &destino)
{
    const QString d = QFile::decodeName(destino);
    if (d.isEmpty() || d.startsWith(u'/'))
        return false;
    const QString carpeta = QFileInfo(nombre).path();
    const QString limpio = QDir::cleanPath(carpeta + u'/' + d);
    return limpio != u".." && !limpio.startsWith(u"../");
}

class Restauracion {
public:
    Restauracion(const QString &zip, const QString &carpeta, const AvisoProgreso &aviso)
        : m_zip(zip), m_carpeta(QDir::cleanPath(QFileInfo(carpeta).absoluteFilePath())), m_aviso(aviso)
    {
    }
    ~Restauracion() { deshacer(); }

    bool ejecutar();

private:
    QString m_zip, m_carpeta, m_canonica;
    const AvisoProgreso &m_aviso;
    Zip m_archivo;
    QList<Entrada> m_entradas;
    QStringList m_creadas;                          // folders made here, outermost first
    QList<std::pair<QString, QString>> m_temporales; // temporary file, final name
    bool m_hecho = false;

    bool fallo(const QString &texto)
    {
        avisar(texto + QStringLiteral(" No se ha restaurado nada."));
        return false;
    }
    bool leerIndice();
    bool carpetas(const QString &relativa);
    bool extraer(const Entrada &e, qint64 &hecho, qint64 total);
    void deshacer();
};

bool Restauracion::leerIndice()
{
    int error = 0;
    m_archivo.reset(zip_open(local(m_zip).constData(), ZIP_RDONLY | ZIP_CHECKCONS, &error));
    if (!m_archivo)
        return fallo(QStringLiteral("No se puede leer la copia %1: %2.").arg(m_zip, motivo(error)));
    const zip_int64_t n = zip_get_num_entries(m_archivo.get(), 0);
    QSet<QString> enlaces;
    for (zip_int64_t i = 0; i < n; ++i) {
        zip_stat_t st;
        zip_stat_init(&st);
        const char *crudo = zip_get_name(m_archivo.get(), zip_uint64_t(i), ZIP_FL_ENC_GUESS);
        if (!crudo || zip_stat_index(m_archivo.get(), zip_uint64_t(i), 0, &st) != 0)
            return fallo(QStringLiteral("La copia %1 está dañada.").arg(m_zip));
        const QString original = QString::fromUtf8(crudo);
        Entrada e;
        e.indice = zip_uint64_t(i);
        const std::optional<QString> seguro = nombreSeguro(original);
        if (!seguro)
            return fallo(QStringLiteral("La copia %1 tiene la entrada «%2», que quedaría fuera de "
                                        "la carpeta %3.").arg(m_zip, original, m_carpeta));
        if (seguro->isEmpty())
            continue; // "./": the folder itself
        e.nombre = *seguro;
        e.tamano = (st.valid & ZIP_STAT_SIZE) ? st.size : 0;
        e.fecha = (st.valid & ZIP_STAT_MTIME) ? st.mtime : 0;
        zip_uint8_t sistema = 0;
        zip_uint32_t atributos = 0;
        zip_file_get_external_attributes(m_archivo.get(), e.indice, 0, &sistema, &atributos);
        const quint32 modo = atributos >> 16;
        if (sistema == ZIP_OPSYS_UNIX)
            e.modo = modo & 0777;
        if (original.endsWith(u'/') || original.endsWith(u'\\')) {
            e.clase = Clase::Carpeta;
        } else if (sistema == ZIP_OPSYS_UNIX && (modo & S_IFMT) == S_IFLNK) {
            e.clase = Clase::Enlace;
            // The target is the entry's data: a short path.
            zip_file_t *f = zip_fopen_index(m_archivo.get(), e.indice, 0);
            char buf[4097];
            const zip_int64_t leidos = f ? zip_fread(f, buf, sizeof buf) : -1;
            if (f)
                zip_fclose(f);
            if (leidos < 0 || leidos >= zip_int64_t(sizeof buf))
                return fallo(QStringLiteral("La copia %1 está dañada: el enlace «%2» no se puede "
                                            "leer.").arg(m_zip, original));
            e.destinoEnlace = QByteArray(buf, int(leidos));
            if (!enlaceDentro(e.nombre, e.destinoEnlace))
                return fallo(QStringLiteral("La copia %1 tiene un enlace simbólico, «%2», que apunta "
                                            "fuera de la carpeta %3.").arg(m_zip, original, m_carpeta));
            enlaces.insert(e.nombre);
        }
        m_entradas.append(e);
    }
    // A link used as a folder by a later entry would send its files wherever the link points.
    for (const Entrada &e : std::as_const(m_entradas)) {
        const QStringList partes = e.nombre.split(u'/');
        for (qsizetype k = 1; k < partes.size(); ++k)
            if (enlaces.contains(partes.mid(0, k).join(u'/')))
                return fallo(QStringLiteral("La copia %1 tiene la entrada «%2» dentro de un enlace "
                                            "simbólico.").arg(m_zip, e.nombre));
    }
    return true;
}

// Makes the folders of `relativa` below the target, each checked to be a real folder inside it
// (a link already there that points out is not followed).
bool Restauracion::carpetas(const QString &relativa)
{
    QString ruta = m_carpeta;
    for (const QString &parte : relativa.split(u'/', Qt::SkipEmptyParts)) {
        ruta += u'/' + parte;
        const QFileInfo info(ruta);
        if (!info.exists() && !info.isSymLink()) {
            if (!QDir().mkdir(ruta))
                return fallo(QStringLiteral("No se puede crear la carpeta %1.").arg(ruta));
            m_creadas.append(ruta);
        } else if (!info.isDir()) {
            return fallo(QStringLiteral("%1 existe y no es una carpeta.").arg(ruta));
        } else {
            const QString c = info.canonicalFilePath();
            if (c != m_canonica && !c.startsWith(m_canonica + u'/'))
                return fallo(QStringLiteral("La carpeta %1 lleva fuera de %2.").arg(ruta, m_carpeta));
        }
    }
    return true;
}

bool Restauracion::extraer(const Entrada &e, qint64 &hecho, qint64 total)
{
    const QString destino = m_carpeta + u'/' + e.nombre;
    if (QFileInfo(destino).isDir() && !QFileInfo(destino).isSymLink())
        return fallo(QStringLiteral("%1 existe y es una carpeta.").arg(destino));
    // Written under a temporary name beside its place and renamed only when the whole archive
    // has been read back correctly.
    QTemporaryFile tmp(QFileInfo(destino).path() + QStringLiteral("/.kvr-restaurando-XXXXXX"));
    if (!tmp.open())
        return fallo(QStringLiteral("No se puede escribir en la carpeta %1.").arg(QFileInfo(destino).path()));
    tmp.setAutoRemove(false);
    m_temporales.append({tmp.fileName(), destino});

    zip_file_t *f = zip_fopen_index(m_archivo.get(), e.indice, 0);
    if (!f)
        return fallo(QStringLiteral("La copia %1 no se puede leer en «%2»: %3.")
                         .arg(m_zip, e.nombre, motivo(zip_error_code_zip(zip_get_error(m_archivo.get())))));
    QByteArray buf(1 << 18, Qt::Uninitialized);
    zip_uint64_t leido = 0;
    int error = ZIP_ER_OK;
    for (;;) {
        const zip_int64_t n = zip_fread(f, buf.data(), zip_uint64_t(buf.size()));
        if (n < 0) {
            error = zip_error_code_zip(zip_file_get_error(f));
            break;
        }
        if (n == 0)
            break;
        leido += zip_uint64_t(n);
        // Never more than the entry declares: a "bomb" that inflates beyond it stops here.
        if (leido > e.tamano) {
            error = ZIP_ER_INCONS;
            break;
        }
        if (tmp.write(buf.constData(), n) != n) {
            zip_fclose(f);
            return fallo(QStringLiteral("No se puede escribir %1: %2.").arg(destino, CausaDeFichero(tmp.error(), errno)));
        }
        hecho += n;
        if (m_aviso && total > 0)
            m_aviso(double(hecho) / double(total));
    }
    const int alCerrar = zip_fclose(f);
    if (error == ZIP_ER_OK && alCerrar != 0)
        error = alCerrar;
    if (error == ZIP_ER_OK && leido != e.tamano)
        error = ZIP_ER_INCONS;
    if (error != ZIP_ER_OK)
        return fallo(QStringLiteral("La copia %1 está dañada en «%2»: %3.").arg(m_zip, e.nombre, motivo(error)));
    if (!tmp.flush())
        return fallo(QStringLiteral("No se puede escribir %1: %2.").arg(destino, CausaDeFichero(tmp.error(), errno)));
    if (e.modo)
        tmp.setPermissions(QFileDevice::Permissions::fromInt(
            ((e.modo & 0700) << 6) | ((e.modo & 0700) << 2) | ((e.modo & 070) << 1) | (e.modo & 07)));
    if (e.fecha)
        tmp.setFileTime(QDateTime::fromSecsSinceEpoch(e.fecha), QFileDevice::FileModificationTime);
    tmp.close();
    return true;
}

bool Restauracion::ejecutar()
{
    if (!leerIndice())
        return false;
    // The target folder and those above it that are missing, outermost first.
    QStringList faltan;
    for (QString c = m_carpeta; !QFileInfo::exists(c) && c != QFileInfo(c).path(); c = QFileInfo(c).path())
        faltan.prepend(c);
    for (const QString &c : std::as_const(faltan)) {
        if (!QDir().mkdir(c))
            return fallo(QStringLiteral("No se puede crear la carpeta %1.").arg(c));
        m_creadas.append(c);
    }
    if (!QFileInfo(m_carpeta).isDir())
        return fallo(QStringLiteral("%1 no es una carpeta.").arg(m_carpeta));
    m_canonica = QFileInfo(m_carpeta).canonicalFilePath();

    qint64 total = 0, hecho = 0;
    for (const Entrada &e : std::as_const(m_entradas))
        if (e.clase == Clase::Fichero)
            total += qint64(e.tamano);
    for (const Entrada &e : std::as_const(m_entradas)) {
        const QString dentro = e.clase == Clase::Carpeta ? e.nombre : QFileInfo(e.nombre).path();
        if (dentro != u"." && !carpetas(dentro))
            return false;
        // The link's folder as it is on disk (a folder already there may itself be a link).
        if (e.clase == Clase::Enlace) {
            const QString donde = QDir::cleanPath(QFileInfo(m_carpeta + u'/' + dentro).canonicalFilePath()
                                                  + u'/' + QFile::decodeName(e.destinoEnlace));
            if (donde != m_canonica && !donde.startsWith(m_canonica + u'/'))
                return fallo(QStringLiteral("La copia %1 tiene un enlace simbólico, «%2», que apunta "
                                            "fuera de la carpeta %3.").arg(m_zip, e.nombre, m_carpeta));
        }
        if (e.clase == Clase::Fichero && !extraer(e, hecho, total))
            return false;
    }
    // Everything was read back: the files take their names, then the links are made.
    for (qsizetype i = 0; i < m_temporales.size(); ++i) {
        const auto &[tmp, destino] = m_temporales[i];
        if (std::rename(local(tmp).constData(), local(destino).constData()) != 0) {
            m_temporales.remove(0, i); // the ones renamed are whole files in their place
            m_creadas.clear();
            avisar(QStringLiteral("No se puede poner %1 en su sitio: la copia %2 se ha restaurado "
                                  "en parte.").arg(destino, m_zip));
            return false;
        }
    }
    m_temporales.clear();
    for (const Entrada &e : std::as_const(m_entradas)) {
        if (e.clase != Clase::Enlace)
            continue;
        const QString ruta = m_carpeta + u'/' + e.nombre;
        const QFileInfo antes(ruta);
        if (antes.isSymLink() || antes.isFile())
            QFile::remove(ruta);
        if (!QFile::link(QFile::decodeName(e.destinoEnlace), ruta)) {
            m_creadas.clear();
            avisar(QStringLiteral("No se puede crear el enlace %1: la copia %2 se ha restaurado en "
                                  "parte.").arg(ruta, m_zip));
            return false;
        }
    }
    if (m_aviso)
        m_aviso(1.0);
    m_creadas.clear();
    m_hecho = true;
    return true;
}

// After a failure: the temporary files go, and the folders made here if they are still empty.
void Restauracion::deshacer()
{
    if (m_hecho)
        return;
    for (const auto &[tmp, destino] : std::as_const(m_temporales))
        QFile::remove(tmp);
    for (qsizetype i = m_creadas.size() - 1; i >= 0; --i)
        QDir().rmdir(m_creadas[i]);
}

} // namespace

bool CrearZip(const QStringList &rutas, const QString &zip, const AvisoProgreso &aviso)
{
    const QString titulo = QStringLiteral("No se ha podido crear la copia de seguridad %1: ").arg(zip);
    if (rutas.isEmpty()) {
        avisar(titulo + QStringLiteral("no hay nada que copiar."));
        return false;
    }
    const QString archivo = QFileInfo(zip).absoluteFilePath();
    QList<Elemento> lista;
    QSet<QString> vistas;
    for (const QString &r : rutas) {
        // "datos/" and "datos/." are stored as "datos" too.
        const QFileInfo info(QDir::cleanPath(QFileInfo(r).absoluteFilePath()));
        if (!QFileInfo::exists(r)) {
            avisar(titulo + QStringLiteral("no existe %1.").arg(r));
            return false;
        }
        if (info.isDir())
            recorrer(info, info.fileName(), archivo, vistas, lista);
        else
            lista.append({info.fileName(), info});
    }

    int error = 0;
    // libzip writes to a temporary file beside the archive and renames it only at a successful
    // close, so an old archive stays whole and a failed one leaves nothing.
    Zip z(zip_open(local(zip).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error));
    if (!z) {
        avisar(titulo + motivo(error) + u'.');
        return false;
    }
    QSet<QString> nombres;
    for (const Elemento &e : std::as_const(lista)) {
        if (nombres.contains(e.nombre)) {
            avisar(titulo + QStringLiteral("dos elementos se llaman %1.").arg(e.nombre));
            return false;
        }
        nombres.insert(e.nombre);
        const QByteArray nombre = e.nombre.toUtf8();
        const bool carpeta = e.nombre.endsWith(u'/');
        zip_int64_t i = -1;
        if (carpeta) {
            i = zip_dir_add(z.get(), nombre.constData(), ZIP_FL_ENC_UTF_8);
        } else if (zip_source_t *fuente = zip_source_file(z.get(), local(e.info.absoluteFilePath()).constData(), 0, -1)) {
            i = zip_file_add(z.get(), nombre.constData(), fuente, ZIP_FL_ENC_UTF_8);
            if (i < 0)
                zip_source_free(fuente);
        }
        if (i < 0) {
            avisar(titulo + QStringLiteral("%1: %2.").arg(e.info.filePath(),
                                                        motivo(zip_error_code_zip(zip_get_error(z.get())))));
            return false;
        }
        const auto indice = zip_uint64_t(i);
        zip_file_set_external_attributes(z.get(), indice, 0, ZIP_OPSYS_UNIX, atributos(e.info, carpeta));
        zip_file_set_mtime(z.get(), indice, time_t(e.info.lastModified().toSecsSinceEpoch()), 0);
        if (!carpeta)
            zip_set_file_compression(z.get(), indice, ZIP_CM_DEFLATE, kNivelDeflate);
    }
    if (aviso)
        zip_register_progress_callback_with_state(
            z.get(), 0.001, [](zip_t *, double f, void *a) { (*static_cast<const AvisoProgreso *>(a))(f); },
            nullptr, const_cast<AvisoProgreso *>(&aviso));
    if (zip_close(z.get()) != 0) {
        avisar(titulo + motivo(zip_error_code_zip(zip_get_error(z.get()))) + u'.');
        return false; // zip_discard, through `z`, takes the temporary file away
    }
    (void)z.release();
    return true;
}

bool ExtraerZip(const QString &zip, const QString &carpeta, const AvisoProgreso &aviso)
{
    Restauracion r(zip, carpeta, aviso);
    return r.ejecutar();
}

} // namespace kvr
