#include <kvr/tablas.h>

#include <kvr/error.h>
#include <kvr/ficheros.h>
#include <kvr/mivisor.h>
#include <kvr/servicios.h>
#include <kvr/comunes.h>

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace kvr {

namespace {

void cargar(const QString &ruta, Rejilla &grid)
{
    // A missing file is an empty table; one that cannot be read (a folder, a FIFO, no permission)
    // throws the access error. Either way the grid is emptied first.
    QByteArray bytes;
    try {
        bytes = LeerFicheroOVacio(ruta);
    } catch (const ErrorEjecucion &) {
        TablaDeTexto({}, grid);
        throw;
    }
    TablaDeTexto(bytes, grid);
}

void grabar(const QString &ruta, const Rejilla &grid)
{
    // Written whole or not at all; a folder, a FIFO or a link out of the table's folder in the
    // file's place is refused.
    GrabarFicheroTexto(ruta, TextoTabla(ElementosTabla(grid)));
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
