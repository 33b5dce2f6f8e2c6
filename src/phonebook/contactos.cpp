#include <kvr/contactos.h>

#include "platform/palabras.h"

#include <kvr/comunes.h>
#include <kvr/error.h>
#include <kvr/mivisor.h>
#include <kvr/tablas.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>

#include <cstring>
#include <string>
#include <vector>
#include <string_view>

namespace kvr {

namespace {

constexpr int Columnas = 5;

QString textoError(const QString &ruta, const QString &causa)
{
    return QStringLiteral("No se pudo grabar el fichero de contactos %1: %2").arg(QDir::toNativeSeparators(ruta), causa);
}

[[noreturn]] void fallo(int numero, const QString &ruta, const QString &causa)
{
    throw ErrorEjecucion(numero, textoError(ruta, causa));
}

// Whether [p, fin) holds a control character (below 0x20), eight bytes at a time: a TAB, CR or
// LF typed into a cell must not split the contact, and cells almost never hold one.
bool hayControl(const char *p, const char *const fin)
{
    for (; fin - p >= 8; p += 8)
        if (palabras::HayMenorQue(palabras::Palabra(p), 0x20))
            return true;
    for (; p < fin; ++p)
        if (static_cast<unsigned char>(*p) < 0x20)
            return true;
    return false;
}

// The header line every program of the family writes: the grid's titles in code page 850.
constexpr std::string_view CabeceraDos = "\tNombre\tTel\x82" "fono\tFax\teMail";

} // namespace

QString RutaContactos()
{
    return CarpetaContactos() + QStringLiteral("TELEFONO.DAT");
}

void ContactosDeTexto(QByteArrayView datos, Rejilla &grid, QString *noRepresentable)
{
    CargarVisor(grid, DescriptorContactos);
    const char *p = datos.data();
    const char *const fin = p + datos.size();
    // The header line goes, whatever it holds; but a save writes the grid's own, so a file whose
    // first line is something else would lose it.
    while (p < fin && *p != '\r' && *p != '\n')
        ++p;
    QString motivo;
    if (p != datos.data() && std::string_view(datos.data(), std::size_t(p - datos.data())) != CabeceraDos)
        motivo = QStringLiteral("su primera línea no es la cabecera de la agenda");
    qsizetype numeroLinea = 1;

    // One row for each line end, at most: room is made once.
    qsizetype lineas = 0;
    for (const char fin_de_linea : {'\r', '\n'})
        for (const char *q = p; q < fin && (q = static_cast<const char *>(std::memchr(q, fin_de_linea, std::size_t(fin - q)))); ++q)
            ++lineas;
    // Where the next CR and the next LF are, each looked for again only once passed, so that a
    // file without one of them is not scanned to its end at every line.
    const char *siguienteCR = p, *siguienteLF = p;
    const auto finDeLinea = [&](const char *desde) {
        if (desde >= fin)
            return fin;
        if (siguienteCR && siguienteCR < desde)
            siguienteCR = static_cast<const char *>(std::memchr(desde, '\r', std::size_t(fin - desde)));
        if (siguienteLF && siguienteLF < desde)
            siguienteLF = static_cast<const char *>(std::memchr(desde, '\n', std::size_t(fin - desde)));
        const char *r = siguienteCR ? siguienteCR : fin;
        if (siguienteLF && siguienteLF < r)
            r = siguienteLF;
        return r;
    };
    const bool redraw = grid.Redraw();
    grid.PonerRedraw(false);
    grid.Reservar(int(std::min<qsizetype>(lineas, 1 << 30)));

    // Each line is decoded into one buffer, sized for the longest line seen (3 UTF-8 bytes at
    // most a CP850 byte), and its cells go from there into the grid's columns.
    std::vector<char> linea;
    std::string_view celdas[Columnas];
    while (p < fin) {
        // Past the line end: CR LF is one end; CR or LF alone is one too.
        if (*p == '\r' && p + 1 < fin && p[1] == '\n')
            p += 2;
        else
            ++p;
        ++numeroLinea;
        const char *inicio = p;
        p = finDeLinea(p);
        if (p == inicio)
            continue; // an empty line holds no contact
        const std::size_t largo = std::size_t(p - inicio);
        if (linea.size() < largo * 3)
            linea.resize(largo * 3);
        const char *const d = linea.data();
        const char *const e = Utf8DeDos(std::string_view(inicio, largo), linea.data());
        int n = 0;
        const char *c = d;
        for (;;) {
            const char *tab = static_cast<const char *>(std::memchr(c, '\t', std::size_t(e - c)));
            celdas[n++] = std::string_view(c, std::size_t((tab ? tab : e) - c));
            if (!tab)
                break;
            if (n == Columnas) {
                // The grid has no place for the cells after the fifth.
                if (motivo.isEmpty())
                    motivo = QStringLiteral("la línea %1 tiene más de cinco columnas").arg(numeroLinea);
                break;
            }
            c = tab + 1;
        }
        grid.AgregarFilaUtf8(celdas, n);
    }
    // The blank row the column set-up left goes once contacts came after it.
    if (grid.Rows() > 2)
        grid.RemoveItem(1);
    grid.PonerRedraw(redraw);
    if (noRepresentable)
        *noRepresentable = motivo;
}

QByteArray TextoContactos(const Rejilla &grid)
{
    // A CP850 text is never longer than its UTF-8: room for every cell, separator and the end.
    QByteArray datos(qsizetype(grid.BytesTexto()) + qsizetype(grid.Rows()) * grid.Cols() + 2, Qt::Uninitialized);
    char *d = datos.data();
    for (int fila = 0; fila < grid.Rows(); ++fila) {
        grid.Precargar(fila + 16, false);
        grid.Precargar(fila + 8, true);
        if (fila > 0)
            *d++ = '\r';
        for (int col = 0; col < grid.Cols(); ++col) {
            if (col > 0)
                *d++ = '\t';
            char *const inicio = d;
            d = DosDeUtf8(grid.CeldaUtf8(fila, col), d);
            if (hayControl(inicio, d))
                for (char *q = inicio; q < d; ++q)
                    if (*q == '\t' || *q == '\r' || *q == '\n')
                        *q = ' ';
        }
    }
    *d++ = '\r';
    *d++ = '\n';
    datos.truncate(qsizetype(d - datos.data()));
    return datos;
}

void OrdenarContactos(Rejilla &grid)
{
    OrdenarVisor(grid, ColNombre, false, ColNombre);
}

SelloFichero LeerFicheroContactos(const QString &ruta, Rejilla &grid, QString *noRepresentable)
{
    QByteArray datos;
    // The version is the one of the file read: a save that replaces the file meanwhile puts a
    // new inode in place and leaves this one as it was.
    SelloFichero sello;
    if (const auto fallo = LeerFicheroRegular(ruta, datos, &sello)) {
        if (fallo->numero == ErrorEjecucion::ArchivoNoEncontrado) {
            CargarVisor(grid, DescriptorContactos);
            if (noRepresentable)
                noRepresentable->clear();
            return {};
        }
        throw ErrorEjecucion(ErrorEjecucion::AccesoDenegado,
                             QStringLiteral("No se pudo leer el fichero de contactos %1: %2")
                                 .arg(QDir::toNativeSeparators(ruta), fallo->causa));
    }
    ContactosDeTexto(datos, grid, noRepresentable);
    datos = QByteArray();
    OrdenarContactos(grid);
    return sello;
}

ResultadoGrabacion GrabarFicheroContactos(const QString &ruta, Rejilla &grid, SelloFichero &sello, int esperaMs)
{
    const QFileInfo info(ruta);
    const QString carpeta = info.absolutePath();
    if (!QFileInfo(carpeta).isDir()) {
        // The user's own default folder is made on the first save; a folder named by TLF (a
        // network folder that is not mounted, a typing slip) is reported instead.
        if (CarpetaContactosDeTLF() || QDir::cleanPath(carpeta + u'/') != QDir::cleanPath(CarpetaContactos())
            || !QDir().mkpath(carpeta))
            fallo(ErrorRutaNoEncontrada, ruta, QStringLiteral("no existe la carpeta %1").arg(QDir::toNativeSeparators(carpeta)));
    }
    QLockFile cerrojo(ruta + QStringLiteral(".lock"));
    // A lock older than this is taken as left behind (a program on another computer that
    // stopped); one of a process of this computer that no longer runs is taken over at once.
    cerrojo.setStaleLockTime(15000);
    if (!cerrojo.tryLock(esperaMs)) {
        if (cerrojo.error() == QLockFile::LockFailedError)
            return ResultadoGrabacion::Ocupado;
        fallo(ErrorEjecucion::AccesoDenegado, ruta,
              QStringLiteral("no se puede escribir en la carpeta %1").arg(QDir::toNativeSeparators(carpeta)));
    }

    const SelloFichero actual = SelloDe(ruta);
    if (actual.existe && actual != sello)
        return ResultadoGrabacion::Modificado;

    OrdenarContactos(grid);
    if (const auto f = GrabarFicheroAtomico(ruta, TextoContactos(grid)))
        fallo(f->numero, ruta, f->causa);
    sello = SelloDe(ruta);
    return ResultadoGrabacion::Grabado;
}

} // namespace kvr
