#pragma once
/// @file
/// MiVisor: the helpers every grid-showing window uses on its grid (a kvr::Rejilla): preparing
/// the columns from a column descriptor line, reading and writing cells, blanking the data area,
/// removing rows while keeping one data row, finding a column by its title, and sorting by a
/// column by its kind (dates, amounts, text).
///
/// Column descriptor line: descriptors separated by ";" (or by "|" when the line holds no ";"),
/// one trailing separator ignored, e.g. ";Nombre#34;Teléfono#18;Fax#18;eMail#25". A descriptor is
/// `[<|>]title[#chars][=|>]`: "<" or ">" first aligns the title left or right (centred otherwise);
/// "=" or ">" last centres or right-aligns the cells (left otherwise); "#n" gives n characters of
/// 120 twips each, otherwise the title's own length does, and a title "?" alone is 0 wide.
#include <kvr/kvr_core_export.h>
#include <kvr/rejilla.h>

#include <QList>
#include <QString>

namespace kvr {

/// One column of a descriptor line as read, its width in twips before scaling.
struct KVR_CORE_EXPORT ColumnaVisor {
    QString titulo;                    ///< the title, without its marks
    int ancho = 0;                     ///< twips, before scaling
    int alineacionTitulo = AlinCentro; ///< of the title (an AlineacionRejilla value)
    int alineacion = AlinIzquierda;    ///< of the cells
    bool operator==(const ColumnaVisor &) const = default; ///< the same in every respect
};
/// The columns of a descriptor line, in order.
KVR_CORE_EXPORT QList<ColumnaVisor> LeerDescriptores(const QString &linea);

/// Prepares the grid's columns from a descriptor line: the grid is cleared and left with its
/// fixed rows and one empty data row; titles go into row 0, widths (scaled by the proportional
/// layout, EscalaX) and alignments into the columns. Redrawing is off meanwhile and the grid
/// repaints once.
KVR_CORE_EXPORT void CargarVisor(Rejilla &visor, const QString &descriptores);

/// The text of a cell, as Rejilla::TextMatrix reads it (a row or column outside the grid is an
/// error).
KVR_CORE_EXPORT QString LeerCelda(const Rejilla &visor, int fila, int col);
/// Writes a cell, growing Rows when `fila` lies beyond the last row. With `sumar` the number in
/// the cell and the number in `texto` (both read by the regional settings, an empty cell being 0)
/// are added and the sum written through FormatoImporte with `conFormato` as its conCeros option
/// (so a zero total with `conFormato` false leaves the cell empty).
KVR_CORE_EXPORT void PonerCelda(Rejilla &visor, int fila, int col, const QString &texto,
                                bool sumar = false,
                                bool conFormato = false);
/// Empties the cells below the fixed rows and right of the fixed columns; sizes are kept.
KVR_CORE_EXPORT void LimpiarVisor(Rejilla &visor);
/// Removes a row; a grid of exactly two rows keeps its data row, blanked instead.
KVR_CORE_EXPORT void QuitarFilaVisor(Rejilla &visor, int fila);
/// The column whose title (row 0) equals `titulo` exactly, or the number after a leading "#"
/// without searching. Not found: with `silencioso` -1; otherwise the critical message
/// "No encontrado ninguna columna con el título [titulo]" under "Búsqueda en [name]" is shown and
/// the result is 0.
KVR_CORE_EXPORT int BuscarColumnaVisor(const Rejilla &visor, const QString &titulo,
                                       bool silencioso = false);
/// Sorts the data rows ascending by a column (-1: the current column). The grid's tag text holds
/// one kind letter per column (character c + 1 for column c): "F" dates, rewritten as
/// "dd/mm/yyyy" and sorted by date (a cell that is not a date becomes empty and sorts first);
/// "I" amounts, rewritten as "#,##0.00" and sorted by value; anything else text without regard
/// to case. With `marcarTitulo` the title of `columnaMarcada` (-1: the sort column) becomes bold
/// and the other titles plain. Col, Redraw and Visible are the same afterwards.
KVR_CORE_EXPORT void OrdenarVisor(Rejilla &visor, int columna = -1, bool marcarTitulo = false,
                                  int columnaMarcada = -1);

} // namespace kvr
