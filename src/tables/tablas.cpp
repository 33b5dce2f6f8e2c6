#include "kvr/tablas.h"

#include "kvr/error.h"
#include "kvr/ficheros.h"
#include "kvr/mivisor.h"
#include "kvr/servicios.h"
#include "kvr/comunes.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace kvr {

namespace {

QString conRuta(int numero, const QString &ruta)
{
    return QStringLiteral("%1: %2").arg(ErrorEjecucion::DescripcionDe(numero), ruta);
}

void cargar(const QString &ruta, Rejilla &grid)
{
    // Throws the access error for a path that exists but cannot be read (a folder, a FIFO, no
    // permission); a missing file is an empty table. Either way the grid is emptied first.
    QByteArray bytes;
    const auto fallo = LeerFicheroRegular(ruta, bytes);
    if (fallo && fallo->numero != ErrorEjecucion::ArchivoNoEncontrado) {
        TablaDeTexto({}, grid);
        throw ErrorEjecucion(ErrorEjecucion::AccesoDenegado,
                             QStringLiteral("No se puede leer el fichero %1: %2").arg(ruta, fallo->causa));
    }
    TablaDeTexto(bytes, grid);
}

void grabar(const QString &ruta, const Rejilla &grid)
{
    const QByteArray datos = TextoTabla(ElementosTabla(grid));
    // Written whole or not at all; a folder, a FIFO or a link out of the table's folder in the
    // file's place is refused. The caller gets the runtime's own error for the path.
    if (const auto fallo = GrabarFicheroAtomico(ruta, datos)) {
        if (fallo->numero == ErrorRutaNoEncontrada)
            throw ErrorEjecucion(ErrorRutaNoEncontrada,
                                 QStringLiteral("No se ha encontrado la ruta de acceso: %1").arg(ruta));
        const int numero = fallo->numero == ErrorEjecucion::ErrorEntradaSalida ? ErrorEjecucion::ErrorEntradaSalida
                                                                              : ErrorEjecucion::AccesoDenegado;
        throw ErrorEjecucion(numero, conRuta(numero, ruta));
    }
}

} // namespace

void TablaDeTexto(const QByteArray &bytes, Rejilla &grid)
{
    LimpiarVisor(grid);
    // The table's own column is blanked too when the grid shows it as a fixed column, so that
    // no element of an earlier table is left below the new ones.
    if (grid.FixedCols() > 0 && grid.Cols() > 0)
        for (int fila = grid.FixedRows(); fila < grid.Rows(); ++fila)
            grid.PonerTextMatrix(fila, 0, QString());
    const QStringList lineas = LineasDeTexto(bytes);
    // Grow once for the whole file rather than a row at a time: the same grid in the end.
    if (lineas.size() + 1 > grid.Rows())
        grid.PonerRows(int(lineas.size()) + 1);
    for (qsizetype i = 0; i < lineas.size(); ++i)
        PonerCelda(grid, int(i) + 1, 0, lineas[i]);
}

QStringList ElementosTabla(const Rejilla &Grid)
{
    QStringList elementos;
    for (int fila = 1; fila < Grid.Rows(); ++fila)
        elementos.append(LeerCelda(Grid, fila, 0));
    return elementos;
}

QByteArray TextoTabla(const QStringList &elementos)
{
    QByteArray datos;
    for (const QString &e : elementos) {
        // Only blanks make an element blank; any other character is the user's text.
        if (std::all_of(e.begin(), e.end(), [](QChar c) { return c == u' '; }))
            continue;
        datos += e.toUtf8();
        datos += "\r\n";
    }
    // A first element that itself begins with a byte-order mark would be read back as the file's
    // mark and lose it: the file then gets a mark of its own in front.
    if (datos.startsWith("\xEF\xBB\xBF"))
        datos.prepend("\xEF\xBB\xBF");
    return datos;
}

void FicheroTabla(const QString &Operacion, QString &Fichero, Rejilla &Grid, int LeftTwips,
                  int TopTwips)
{
    if (Fichero.isEmpty()) {
        bool aceptado = false;
        Fichero = ServiciosActuales().Entrada(QStringLiteral("Path y Nombre del fichero a ") + Operacion,
                                              QStringLiteral("Editor de Tablas de PQD"), QString(),
                                              LeftTwips, TopTwips, &aceptado);
        if (!aceptado)
            Fichero.clear();
        if (Fichero.isEmpty())
            return;
    }

    if (Operacion == OperacionCargar) {
        cargar(Fichero, Grid);
    } else if (Operacion == OperacionGrabar || Operacion == OperacionRegrabar) {
        if (Operacion == OperacionGrabar && Existe(Fichero, false)) {
            const int r = ServiciosActuales().Mensaje(
                QStringLiteral("Fichero ") + Fichero + QStringLiteral(" existe en disco. Se Sobreescribirá."),
                AceptarCancelar + Exclamacion, QString());
            if (r == RespCancelar)
                return;
        }
        grabar(Fichero, Grid);
    }
}

void FicheroTabla(const QString &Operacion, QString &Fichero, Rejilla &Grid)
{
    FicheroTabla(Operacion, Fichero, Grid, -1, -1);
}

} // namespace kvr
