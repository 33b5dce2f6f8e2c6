#pragma once
/// @file
/// VisorRejilla: the grid control on screen, a QTableView over a kvr::Rejilla that it owns.
///
/// Row 0 (the title row) is shown as the horizontal header, so the titles stay in place while the
/// data scroll; the header takes the titles' alignment (FixedAlignment) and bold marks. Any
/// further fixed rows and the fixed columns are shown as ordinary cells painted in the header's
/// colour. A row of height 0 is hidden, a column of width 0 too: neither is part of the model. Widths are ColWidth twips at the
/// screen's logical dpi (1440 twips an inch). Row heights are uniform and nothing is done per row
/// when the view is shown, so a grid of a million rows opens at once.
///
/// The grid's Row and Col follow the current cell and the other way round. Click, ClickDerecho
/// and DobleClick give the grid row and column under the pointer (row 0 for the title row).
#include <kvr/kvr_export.h>
#include <kvr/rejilla.h>

#include <QAbstractTableModel>
#include <QTableView>

namespace kvr {

/// The item model a view uses to show a Rejilla. It reports the row and column counts it has
/// announced, so a view never sees the grid change under it while Redraw is off.
class KVR_EXPORT ModeloRejilla : public QAbstractTableModel, private OyenteRejilla {
    Q_OBJECT
public:
    /// A model of `rejilla`, which must outlive it; it observes the grid from now on.
    explicit ModeloRejilla(Rejilla &rejilla, QObject *parent = nullptr);
    ~ModeloRejilla() override;

    /// QAbstractTableModel's interface: the rows shown (hidden rows left out, the title row in
    /// the header), the columns, the cells' texts, alignments, bold fonts and the fixed cells'
    /// colour, and the titles.
    ///@{
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int seccion, Qt::Orientation orientacion, int role = Qt::DisplayRole) const override;
    ///@}

    /// Grid rows shown in the header (1 when the grid has a fixed row, else 0).
    int filasEnCabecera() const { return m_cabecera; }
    /// The grid row of a view row, and the view row of a grid row (-1 for a hidden row).
    /// Rows of height 0 are not rows of the model at all: hiding most of a large grid (a search)
    /// is one reset, where hiding view rows one by one would cost a header update each.
    ///@{
    int filaRejilla(int filaVista) const;
    int filaVista(int filaRejilla) const;
    ///@}
    /// The grid column of a view column, and the view column of a grid column (-1 for a hidden
    /// column). Columns of width 0 are not columns of the model either: a screen reader, which
    /// reads the model, is not told of columns nobody sees.
    ///@{
    int colRejilla(int colVista) const;
    int colVista(int colRejilla) const;
    ///@}

Q_SIGNALS:
    /// The grid's changes the view follows: a column's width or alignment, a row's height, the
    /// current cell, Redraw, Visible, and a reset of the whole grid.
    ///@{
    void columnaModificada(int col);
    void filaModificada(int fila);
    void celdaActualMovida(int fila, int col);
    void redrawPuesto(bool redraw);
    void visiblePuesto(bool visible);
    void rejillaReiniciada();
    ///@}

private:
    void antesDeReiniciar() override;
    void reiniciada() override;
    void antesDeInsertarFilas(int primera, int ultima) override;
    void filasInsertadas() override;
    void antesDeQuitarFilas(int primera, int ultima) override;
    void filasQuitadas() override;
    void antesDeInsertarColumnas(int primera, int ultima) override;
    void columnasInsertadas() override;
    void antesDeQuitarColumnas(int primera, int ultima) override;
    void columnasQuitadas() override;
    void celdasCambiadas(int fila0, int col0, int fila1, int col1) override;
    void columnaCambiada(int col) override;
    void filaCambiada(int fila) override;
    void celdaActualCambiada(int fila, int col) override;
    void redrawCambiado(bool redraw) override;
    void visibleCambiado(bool visible) override;
    void leerTamanos();
    /// Ends a row change that had to become a reset; false when it was an ordinary one.
    bool acabarReinicio();
    bool valida(int fila, int col) const;

    Rejilla &m_rejilla;
    int m_filas = 0;    ///< grid rows announced
    int m_cols = 0;
    int m_cabecera = 0;
    bool m_reiniciando = false; ///< a structural change became a reset
    /// When some rows are hidden: the grid rows shown, in order (else empty, every row shown).
    std::vector<int> m_vista;
    bool m_filtrada = false;
    /// When some column is hidden: the grid columns shown, in order (else empty, all shown).
    std::vector<int> m_columnas;
    bool m_colsFiltradas = false;
};

/// The grid control on screen: a QTableView showing the Rejilla it owns (see the file's
/// description).
class KVR_EXPORT VisorRejilla : public QTableView {
    Q_OBJECT
public:
    /// An empty grid like a new grid control (2 x 2, one fixed row and column).
    explicit VisorRejilla(QWidget *parent = nullptr);
    ~VisorRejilla() override;

    /// The grid shown, to read and change; the view follows its changes.
    ///@{
    Rejilla &rejilla() { return m_rejilla; }
    const Rejilla &rejilla() const { return m_rejilla; }
    ///@}
    /// The item model over the grid.
    ModeloRejilla *modeloRejilla() const { return m_modelo; }

    /// Grid row and column under the pointer at the last mouse event (-1 outside the cells).
    ///@{
    int MouseRow() const { return m_filaRaton; }
    int MouseCol() const { return m_colRaton; }
    ///@}

    /// Scales every column width by the proportional layout: ColWidth(c) = EscalaX(ColWidth(c)).
    Q_INVOKABLE void EscalarColumnas();

    /// Twips to pixels at this widget's logical dpi.
    int pixeles(int twips) const;

Q_SIGNALS:
    /// A click, a right click and a double click on the grid row and column `fila`, `col` (row 0
    /// for the title row).
    ///@{
    void Click(int fila, int col);
    void ClickDerecho(int fila, int col);
    void DobleClick(int fila, int col);
    ///@}
    /// The current cell changed (Row or Col), by the user or by the program.
    void RowColChange();

protected:
    /// QTableView's events, reimplemented to report the grid's row and column under the pointer
    /// and to keep the grid's current cell and the view's in step.
    ///@{
    void mousePressEvent(QMouseEvent *e) override;
    void mouseReleaseEvent(QMouseEvent *e) override;
    void mouseDoubleClickEvent(QMouseEvent *e) override;
    void currentChanged(const QModelIndex &actual, const QModelIndex &anterior) override;
    bool eventFilter(QObject *objeto, QEvent *evento) override;
    ///@}

private:
    void posicionRaton(const QPoint &p);
    void aplicarColumna(int col);
    void aplicarFila(int fila);
    void aplicarTodo();
    void seguirCeldaActual(int fila, int col);
    void seguirVisible(bool visible);

    Rejilla m_rejilla;
    ModeloRejilla *m_modelo = nullptr;
    int m_filaRaton = -1;
    int m_colRaton = -1;
    bool m_sincronizando = false;
    bool m_ocultoPorRejilla = false;
    bool m_teniaFoco = false;
};

} // namespace kvr
