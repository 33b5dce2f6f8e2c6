#pragma once
/// @file
/// Rejilla: the flexible grid that the runtime's windows and the MiVisor helpers work on, as a
/// matrix of cell texts without widgets. Rows and columns count from 0; the first FixedRows rows
/// and FixedCols columns are the fixed (title) area, row 0 holds the titles.
///
/// Storage is compact so that a grid of a million rows stays small: the text of every column
/// lives in one UTF-8 buffer, a cell is an 8-byte reference (offset and length) into it, and the
/// visible order of the rows is a permutation of row slots, so that a sort or an insertion moves
/// 4-byte indices instead of strings. Bold cells are a sparse set and row heights a table made
/// when a row first gets a height of its own, both keyed by the row slot, so that they follow
/// their row through sorts.
///
/// A view follows the grid through OyenteRejilla. While Redraw is false, no change is
/// announced; when Redraw becomes true again, one reset stands for all the changes made since.
#include <kvr/kvr_core_export.h>

#include <QString>

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kvr {

/// Alignment values of the grid's columns and titles.
enum AlineacionRejilla : int {
    AlinIzquierdaArriba = 0, AlinIzquierda = 1, AlinIzquierdaAbajo = 2,
    AlinCentroArriba = 3, AlinCentro = 4, AlinCentroAbajo = 5,
    AlinDerechaArriba = 6, AlinDerecha = 7, AlinDerechaAbajo = 8,
    AlinGeneral = 9, ///< texts left, numbers right
};

/// Sort modes accepted by Rejilla::Sort.
enum OrdenRejilla : int {
    OrdenNinguno = 0,
    OrdenGenericoAsc = 1, OrdenGenericoDesc = 2,     ///< numbers as numbers, other text as text
    OrdenNumericoAsc = 3, OrdenNumericoDesc = 4,     ///< every cell read as a number
    OrdenTextoSinMayAsc = 5, OrdenTextoSinMayDesc = 6, ///< text, without regard to case
    OrdenTextoAsc = 7, OrdenTextoDesc = 8,           ///< text, case counts (lower case first)
};

/// Error numbers the grid raises (as kvr::ErrorEjecucion), with the grid control's numbering.
enum ErrorRejilla : int {
    ErrorFilaNoValida = 30009,
    ErrorColumnaNoValida = 30010,
    ErrorQuitarUltimaFila = 30015,
};

/// Receives the grid's changes. Every method has an empty default. Structural changes come in
/// pairs (antes..., then the change, then the ...Hecho call), so that an item model can wrap them.
class KVR_CORE_EXPORT OyenteRejilla {
public:
    virtual ~OyenteRejilla();
    /// The whole grid is about to change (a sort, a clear, new sizes), and has changed.
    ///@{
    virtual void antesDeReiniciar() {}
    virtual void reiniciada() {}
    ///@}
    /// Rows `primera` to `ultima` are about to be inserted, and were inserted.
    ///@{
    virtual void antesDeInsertarFilas(int /*primera*/, int /*ultima*/) {}
    virtual void filasInsertadas() {}
    ///@}
    /// Rows `primera` to `ultima` are about to be removed, and were removed.
    ///@{
    virtual void antesDeQuitarFilas(int /*primera*/, int /*ultima*/) {}
    virtual void filasQuitadas() {}
    ///@}
    /// Columns `primera` to `ultima` are about to be inserted, and were inserted.
    ///@{
    virtual void antesDeInsertarColumnas(int /*primera*/, int /*ultima*/) {}
    virtual void columnasInsertadas() {}
    ///@}
    /// Columns `primera` to `ultima` are about to be removed, and were removed.
    ///@{
    virtual void antesDeQuitarColumnas(int /*primera*/, int /*ultima*/) {}
    virtual void columnasQuitadas() {}
    ///@}
    /// Texts or bold attributes of the cells in the rectangle changed.
    virtual void celdasCambiadas(int /*fila0*/, int /*col0*/, int /*fila1*/, int /*col1*/) {}
    /// Width or alignments of a column.
    virtual void columnaCambiada(int /*col*/) {}
    /// Height (hidden or shown) of a row.
    virtual void filaCambiada(int /*fila*/) {}
    /// The current cell moved to (`fila`, `col`).
    virtual void celdaActualCambiada(int /*fila*/, int /*col*/) {}
    /// Redraw was turned on or off.
    virtual void redrawCambiado(bool /*redraw*/) {}
    /// The grid was shown or hidden.
    virtual void visibleCambiado(bool /*visible*/) {}
};

/// The grid's data without widgets, as the family's grid control holds it: rows and columns of
/// text cells (the first ones fixed, as titles), the current cell and selection, widths, heights,
/// alignments and bold cells. VisorRejilla shows one; the MiVisor helpers work on one. Cells are
/// kept as UTF-8 in one buffer per column, so a grid of a million rows stays compact.
class KVR_CORE_EXPORT Rejilla {
public:
    /// A grid like a new grid control: 2 rows, 2 columns, one fixed row and one fixed column.
    Rejilla();
    Rejilla(const Rejilla &) = delete;
    Rejilla &operator=(const Rejilla &) = delete;
    ~Rejilla();

    /// Observers; the grid does not own them.
    ///@{
    void AgregarOyente(OyenteRejilla *oyente);
    void QuitarOyente(OyenteRejilla *oyente);
    ///@}

    /// Number of rows; PonerRows grows the grid with empty rows or drops rows from the end.
    /// Fewer rows than FixedRows is an error.
    ///@{
    int Rows() const { return int(m_orden.size()); }
    void PonerRows(int filas);
    ///@}
    /// Number of columns; PonerCols adds empty columns or drops them from the right.
    ///@{
    int Cols() const { return int(m_columnas.size()); }
    void PonerCols(int columnas);
    ///@}
    /// Number of fixed rows (titles) at the top and fixed columns at the left.
    ///@{
    int FixedRows() const { return m_filasFijas; }
    void PonerFixedRows(int filas);
    int FixedCols() const { return m_colsFijas; }
    void PonerFixedCols(int columnas);
    ///@}

    /// Current cell. Setting Row (Col) also sets RowSel (ColSel) to the same value.
    ///@{
    int Row() const { return m_fila; }
    void PonerRow(int fila);
    int Col() const { return m_col; }
    void PonerCol(int col);
    ///@}
    /// The other corner of the selection, which starts at the current cell.
    ///@{
    int RowSel() const { return m_filaSel; }
    void PonerRowSel(int fila);
    int ColSel() const { return m_colSel; }
    void PonerColSel(int col);
    ///@}

    /// Text of the cell at (`fila`, `col`); a row or column outside the grid is an error.
    ///@{
    QString TextMatrix(int fila, int col) const;
    void PonerTextMatrix(int fila, int col, const QString &texto);
    ///@}
    /// Text of the current cell.
    ///@{
    QString Text() const { return TextMatrix(m_fila, m_col); }
    void PonerText(const QString &texto) { PonerTextMatrix(m_fila, m_col, texto); }
    ///@}

    /// Column width in twips; -1 is the default width.
    ///@{
    int ColWidth(int col) const;
    void PonerColWidth(int col, int twips);
    ///@}
    /// Alignment of the column's cells (an AlineacionRejilla value).
    ///@{
    int ColAlignment(int col) const;
    void PonerColAlignment(int col, int alineacion);
    ///@}
    /// Alignment of the column's fixed cells (its title).
    ///@{
    int FixedAlignment(int col) const;
    void PonerFixedAlignment(int col, int alineacion);
    ///@}

    /// Row height in twips: 0 hides the row, -1 gives back the default height.
    ///@{
    static constexpr int AltoFilaPorOmision = 240;
    int RowHeight(int fila) const;
    void PonerRowHeight(int fila, int twips);
    ///@}

    /// Rows whose height is not the default, as (row, height) pairs in row order; empty at once
    /// when no row has one.
    std::vector<std::pair<int, int>> AltosEspeciales() const;
    /// Rows of height 0 (hidden), in row order; empty at once when no row is hidden.
    std::vector<int> FilasOcultas() const;
    /// The rows from `desde` on that are shown (height not 0), in order, into `filas` (its room
    /// is reused). False, with `filas` left empty, at once when no row is hidden.
    bool FilasMostradas(int desde, std::vector<int> &filas) const;
    /// Whether some row has a height of its own other than 0 (hidden rows do not count).
    bool HayAltosPropios() const { return m_altosEspeciales > m_ocultas; }
    /// Shows or hides the rows from `primera` on at once, one flag per row (`visibles[i]` for row
    /// `primera` + i): a row flagged 0 is hidden; a hidden row flagged 1 is shown at the default
    /// height; a shown row flagged 1 keeps its height. The same as PonerRowHeight on each row that
    /// changes, announced as one reset (a search that hides most of a large grid costs one pass).
    void PonerFilasVisibles(int primera, const std::vector<unsigned char> &visibles);

    /// Bold attribute of the current cell, and of any cell.
    ///@{
    bool CellFontBold() const { return NegritaCelda(m_fila, m_col); }
    void PonerCellFontBold(bool negrita) { PonerNegritaCelda(m_fila, m_col, negrita); }
    bool NegritaCelda(int fila, int col) const;
    void PonerNegritaCelda(int fila, int col, bool negrita);
    ///@}

    /// Whether changes are announced to the observers as they happen. While it is false nothing
    /// is announced; turning it on again announces one reset if anything changed meanwhile.
    ///@{
    bool Redraw() const { return m_redraw; }
    void PonerRedraw(bool redraw);
    ///@}
    /// Whether the grid is shown.
    ///@{
    bool Visible() const { return m_visible; }
    void PonerVisible(bool visible);
    ///@}

    /// The control's tag text (the sort kinds of OrdenarVisor live here).
    ///@{
    QString Tag() const { return m_tag; }
    void PonerTag(const QString &tag) { m_tag = tag; }
    ///@}
    /// The control's name, for messages.
    ///@{
    QString Nombre() const { return m_nombre; }
    void PonerNombre(const QString &nombre) { m_nombre = nombre; }
    ///@}

    /// Empties every cell (fixed ones too) and takes away the bold attributes; the numbers of
    /// rows and columns, widths, alignments and row heights stay.
    void Clear();
    /// Adds a row whose cells are the TAB-separated pieces of `texto`, at `posicion`
    /// (0..Rows) or at the end when -1.
    void AddItem(const QString &texto, int posicion = -1);
    /// Adds a row at the end from cells already in UTF-8 (`celdas[i]` fills column i; missing
    /// cells stay empty, extra ones are dropped). The fast path of bulk loads: no UTF-16 on the way.
    /// A cell whose bytes are not well-formed UTF-8 is stored with U+FFFD for each bad sequence.
    void AgregarFilaUtf8(const std::string_view *celdas, int numero);
    /// Makes room for `filas` more rows and `bytes` more bytes of text in each listed column
    /// (`bytes[c]` for column c), so that a bulk load grows each buffer once.
    void Reservar(int filas, const std::vector<std::size_t> &bytes = {});
    /// The UTF-8 bytes of a cell, valid until the grid next changes.
    std::string_view CeldaUtf8(int fila, int col) const;
    /// A hint for a pass over the rows in their order, whose cells lie all over memory once the
    /// rows were sorted: asks the processor for a row's cell references (`textos` false) or for
    /// the texts they point at (`textos` true, once the references are at hand). Nothing changes.
    void Precargar(int fila, bool textos) const;
    /// Removes a row. A fixed row, or the last row below the fixed ones, cannot be removed.
    void RemoveItem(int fila);

    /// The selection Row..RowSel x Col..ColSel as text: cells joined by TAB, rows by CR.
    QString Clip() const;
    /// Pastes such a text into the selection from its top-left cell, within its bounds.
    void PonerClip(const QString &texto);

    /// Sorts the rows below the fixed ones by the columns Col..ColSel with one of the OrdenRejilla
    /// modes. Rows with equal keys keep their order. Other values do nothing.
    void Sort(int modo);
    /// Sorts the rows below the fixed ones by one number per row, as the generic sort orders
    /// them (valores[i] belongs to row FixedRows + i). A row without a number sorts first, as an
    /// empty cell does; but when `colTexto` is a column and the row's cell there holds text, the
    /// row sorts after the numbers by that text, as a text cell does. Stable.
    void OrdenarPorValores(const std::vector<std::optional<double>> &valores, bool descendente,
                           int colTexto = -1);

    /// Memory accounting: UTF-8 bytes of all cell texts, and bytes held by the grid.
    ///@{
    qint64 BytesTexto() const;
    qint64 BytesOcupados() const;
    ///@}

private:
    struct Columna {
        std::vector<char> bytes;      ///< UTF-8 texts of the column's cells
        std::vector<uint64_t> refs;   ///< per row slot: offset << 24 | length
        std::size_t basura = 0;       ///< bytes no longer referenced
        int ancho = -1;
        int alineacion = AlinGeneral;
        int alineacionFija = AlinGeneral;
    };

    uint32_t ranura(int fila) const { return m_orden[std::size_t(fila)]; }
    void comprobarFila(int fila) const;
    void comprobarCol(int col) const;
    void escribir(Columna &c, uint32_t ranura, const char *datos, std::size_t largo);
    void escribirTexto(Columna &c, uint32_t ranura, QStringView texto);
    void compactar(Columna &c);
    uint32_t nuevaRanura();
    void liberarRanura(uint32_t r);
    void ponerAltoRanura(uint32_t r, int32_t twips);
    void ajustarActual();
    /// Sorts the rows below the fixed ones by their keys (claves[inicios[k]..inicios[k+1]) is
    /// the key of the row at position posiciones[k]); works on the buffers it is given.
    void ordenarClaves(std::vector<char> &claves, std::vector<uint32_t> &inicios, bool descendente,
                       std::vector<uint32_t> &posiciones);

    /// Announcing changes (nothing while Redraw is false, only a pending reset).
    bool avisar();
    template <typename F> void paraOyentes(F f)
    {
        const auto copia = m_oyentes; // an observer may leave while being told
        for (OyenteRejilla *o : copia)
            f(o);
    }

    std::vector<Columna> m_columnas;
    std::vector<uint32_t> m_orden;    ///< visible row -> row slot
    std::vector<uint32_t> m_libres;   ///< free row slots
    uint32_t m_ranuras = 0;           ///< row slots allocated in every column
    /// Row slot -> height (-1 the default). Empty until a row gets a height of its own; dense
    /// afterwards, since a search hides or shows every row at once.
    std::vector<int32_t> m_altos;
    std::size_t m_altosEspeciales = 0;            ///< slots whose height is not the default
    std::size_t m_ocultas = 0;                    ///< slots of height 0
    std::unordered_set<uint64_t> m_negritas;       ///< row slot << 32 | column
    int m_filasFijas = 1;
    int m_colsFijas = 1;
    int m_fila = 1, m_col = 1, m_filaSel = 1, m_colSel = 1;
    bool m_redraw = true;
    bool m_pendiente = false;
    bool m_visible = true;
    QString m_tag;
    QString m_nombre;
    std::vector<OyenteRejilla *> m_oyentes;
};

} // namespace kvr
