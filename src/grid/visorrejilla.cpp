#include <kvr/visorrejilla.h>

#include <kvr/escala.h>
#include <kvr/numeros.h>

#include <QApplication>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace kvr {

namespace {

constexpr int AnchoPorOmision = 960; // twips of a column whose width was never set

Qt::Alignment alineacionQt(int alineacion, const QString &texto)
{
    if (alineacion < 0 || alineacion > AlinDerechaAbajo) { // general: numbers right, text left
        const bool numero = !texto.isEmpty() && EsNumeroRegional(texto);
        return (numero ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
    }
    static const Qt::Alignment horizontal[3] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
    static const Qt::Alignment vertical[3] = {Qt::AlignTop, Qt::AlignVCenter, Qt::AlignBottom};
    return horizontal[alineacion / 3] | vertical[alineacion % 3];
}

QFont negrita()
{
    QFont f = QApplication::font();
    f.setBold(true);
    return f;
}

} // namespace

// ---------------------------------------------------------------------------------------------
ModeloRejilla::ModeloRejilla(Rejilla &rejilla, QObject *parent)
    : QAbstractTableModel(parent), m_rejilla(rejilla)
{
    leerTamanos();
    m_rejilla.AgregarOyente(this);
}

ModeloRejilla::~ModeloRejilla()
{
    m_rejilla.QuitarOyente(this);
}

void ModeloRejilla::leerTamanos()
{
    m_filas = m_rejilla.Rows();
    m_cols = m_rejilla.Cols();
    m_cabecera = m_rejilla.FixedRows() >= 1 && m_filas >= 1 ? 1 : 0;
    // One pass over the grid gives the rows shown; with no row hidden there is no map at all.
    m_filtrada = m_rejilla.FilasMostradas(m_cabecera, m_vista)
                 && m_vista.size() != std::size_t(std::max(0, m_filas - m_cabecera));
    if (!m_filtrada)
        std::vector<int>().swap(m_vista);
    m_columnas.clear();
    for (int c = 0; c < m_cols; ++c)
        if (m_rejilla.ColWidth(c) != 0)
            m_columnas.push_back(c);
    m_colsFiltradas = m_columnas.size() != std::size_t(m_cols);
    if (!m_colsFiltradas)
        m_columnas.clear();
}

int ModeloRejilla::colRejilla(int colVista) const
{
    if (!m_colsFiltradas)
        return colVista;
    return colVista >= 0 && std::size_t(colVista) < m_columnas.size() ? m_columnas[std::size_t(colVista)] : -1;
}

int ModeloRejilla::colVista(int colRejilla) const
{
    if (!m_colsFiltradas)
        return colRejilla;
    const auto it = std::lower_bound(m_columnas.begin(), m_columnas.end(), colRejilla);
    return it != m_columnas.end() && *it == colRejilla ? int(it - m_columnas.begin()) : -1;
}

int ModeloRejilla::filaRejilla(int filaVista) const
{
    if (!m_filtrada)
        return filaVista + m_cabecera;
    return filaVista >= 0 && std::size_t(filaVista) < m_vista.size() ? m_vista[std::size_t(filaVista)] : -1;
}

int ModeloRejilla::filaVista(int filaRejilla) const
{
    if (!m_filtrada)
        return filaRejilla - m_cabecera;
    const auto it = std::lower_bound(m_vista.begin(), m_vista.end(), filaRejilla);
    return it != m_vista.end() && *it == filaRejilla ? int(it - m_vista.begin()) : -1;
}

bool ModeloRejilla::valida(int fila, int col) const
{
    return fila >= 0 && col >= 0 && fila < m_filas && col < m_cols && fila < m_rejilla.Rows()
           && col < m_rejilla.Cols();
}

int ModeloRejilla::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return m_filtrada ? int(m_vista.size()) : std::max(0, m_filas - m_cabecera);
}

int ModeloRejilla::columnCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return m_colsFiltradas ? int(m_columnas.size()) : m_cols;
}

QVariant ModeloRejilla::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const int fila = filaRejilla(index.row());
    const int col = colRejilla(index.column());
    if (!valida(fila, col))
        return {};
    const bool fija = fila < m_rejilla.FixedRows() || col < m_rejilla.FixedCols();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return m_rejilla.TextMatrix(fila, col);
    case Qt::TextAlignmentRole: {
        const int al = fija ? m_rejilla.FixedAlignment(col) : m_rejilla.ColAlignment(col);
        return QVariant::fromValue(alineacionQt(al, al == AlinGeneral ? m_rejilla.TextMatrix(fila, col) : QString()));
    }
    case Qt::FontRole:
        return m_rejilla.NegritaCelda(fila, col) ? QVariant(negrita()) : QVariant();
    case Qt::BackgroundRole:
        return fija ? QVariant(QApplication::palette().brush(QPalette::Button)) : QVariant();
    default:
        return {};
    }
}

QVariant ModeloRejilla::headerData(int seccion, Qt::Orientation orientacion, int role) const
{
    if (orientacion == Qt::Vertical)
        return role == Qt::DisplayRole ? QVariant(filaRejilla(seccion)) : QVariant();
    seccion = colRejilla(seccion);
    if (m_cabecera == 0 || !valida(0, seccion))
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return m_rejilla.TextMatrix(0, seccion);
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(alineacionQt(m_rejilla.FixedAlignment(seccion), m_rejilla.TextMatrix(0, seccion)));
    case Qt::FontRole:
        return m_rejilla.NegritaCelda(0, seccion) ? QVariant(negrita()) : QVariant();
    default:
        return {};
    }
}

void ModeloRejilla::antesDeReiniciar()
{
    beginResetModel();
}

void ModeloRejilla::reiniciada()
{
    leerTamanos();
    endResetModel();
    Q_EMIT rejillaReiniciada();
}

void ModeloRejilla::antesDeInsertarFilas(int primera, int ultima)
{
    // Rows that reach the title row change the header, and rows among hidden ones move the
    // map of shown rows: a reset says it plainly.
    m_reiniciando = m_filtrada || primera < m_cabecera || (m_cabecera == 0 && m_rejilla.FixedRows() >= 1);
    if (m_reiniciando)
        beginResetModel();
    else
        beginInsertRows({}, filaVista(primera), filaVista(ultima));
}

bool ModeloRejilla::acabarReinicio()
{
    leerTamanos();
    if (!m_reiniciando)
        return false;
    m_reiniciando = false;
    endResetModel();
    Q_EMIT rejillaReiniciada();
    return true;
}

void ModeloRejilla::filasInsertadas()
{
    if (!acabarReinicio())
        endInsertRows();
}

void ModeloRejilla::antesDeQuitarFilas(int primera, int ultima)
{
    m_reiniciando = m_filtrada || primera < m_cabecera;
    if (m_reiniciando)
        beginResetModel();
    else
        beginRemoveRows({}, filaVista(primera), filaVista(ultima));
}

void ModeloRejilla::filasQuitadas()
{
    if (!acabarReinicio())
        endRemoveRows();
}

// Columns come and go as themselves while all are shown; among hidden ones the map of shown
// columns moves, and a reset says it plainly.
void ModeloRejilla::antesDeInsertarColumnas(int primera, int ultima)
{
    m_reiniciando = m_colsFiltradas;
    if (m_reiniciando)
        beginResetModel();
    else
        beginInsertColumns({}, primera, ultima);
}

void ModeloRejilla::columnasInsertadas()
{
    if (!acabarReinicio())
        endInsertColumns();
}

void ModeloRejilla::antesDeQuitarColumnas(int primera, int ultima)
{
    m_reiniciando = m_colsFiltradas;
    if (m_reiniciando)
        beginResetModel();
    else
        beginRemoveColumns({}, primera, ultima);
}

void ModeloRejilla::columnasQuitadas()
{
    if (!acabarReinicio())
        endRemoveColumns();
}

void ModeloRejilla::celdasCambiadas(int fila0, int col0, int fila1, int col1)
{
    col1 = std::min(col1, m_cols - 1);
    if (m_colsFiltradas) { // the view columns of the shown grid columns from col0 to col1
        col0 = int(std::lower_bound(m_columnas.begin(), m_columnas.end(), col0) - m_columnas.begin());
        col1 = int(std::upper_bound(m_columnas.begin(), m_columnas.end(), col1) - m_columnas.begin()) - 1;
    }
    if (col0 > col1)
        return;
    if (fila0 < m_cabecera)
        Q_EMIT headerDataChanged(Qt::Horizontal, col0, col1);
    int v0 = std::max(0, fila0 - m_cabecera);
    int v1 = std::min(fila1 - m_cabecera, rowCount() - 1);
    if (m_filtrada) {
        v0 = int(std::lower_bound(m_vista.begin(), m_vista.end(), fila0) - m_vista.begin());
        v1 = int(std::upper_bound(m_vista.begin(), m_vista.end(), fila1) - m_vista.begin()) - 1;
    }
    if (v0 <= v1)
        Q_EMIT dataChanged(index(v0, col0), index(v1, col1));
}

void ModeloRejilla::columnaCambiada(int col)
{
    if (col >= m_cols)
        return;
    // A column hidden or shown by its width joins or leaves the model.
    if ((m_rejilla.ColWidth(col) == 0) != (colVista(col) < 0)) {
        beginResetModel();
        leerTamanos();
        endResetModel();
        Q_EMIT rejillaReiniciada();
        return;
    }
    const int v = colVista(col);
    if (v >= 0) {
        if (m_cabecera)
            Q_EMIT headerDataChanged(Qt::Horizontal, v, v);
        if (rowCount() > 0)
            Q_EMIT dataChanged(index(0, v), index(rowCount() - 1, v), {Qt::TextAlignmentRole});
    }
    Q_EMIT columnaModificada(col);
}

void ModeloRejilla::filaCambiada(int fila)
{
    if (fila >= m_cabecera && fila < m_filas && fila < m_rejilla.Rows()) {
        const bool oculta = m_rejilla.RowHeight(fila) == 0;
        const int v = filaVista(fila);
        if (oculta && v >= 0) {
            if (!m_filtrada) {
                m_vista.resize(std::size_t(m_filas - m_cabecera));
                for (std::size_t i = 0; i < m_vista.size(); ++i)
                    m_vista[i] = int(i) + m_cabecera;
            }
            beginRemoveRows({}, v, v);
            m_filtrada = true;
            m_vista.erase(m_vista.begin() + v);
            endRemoveRows();
        } else if (!oculta && v < 0) {
            const auto it = std::lower_bound(m_vista.begin(), m_vista.end(), fila);
            const int nueva = int(it - m_vista.begin());
            beginInsertRows({}, nueva, nueva);
            m_vista.insert(it, fila);
            if (m_vista.size() == std::size_t(m_filas - m_cabecera)) {
                m_filtrada = false;
                m_vista.clear();
            }
            endInsertRows();
        }
    }
    Q_EMIT filaModificada(fila);
}

void ModeloRejilla::celdaActualCambiada(int fila, int col)
{
    Q_EMIT celdaActualMovida(fila, col);
}

void ModeloRejilla::redrawCambiado(bool redraw)
{
    Q_EMIT redrawPuesto(redraw);
}

void ModeloRejilla::visibleCambiado(bool visible)
{
    Q_EMIT visiblePuesto(visible);
}

// ---------------------------------------------------------------------------------------------
VisorRejilla::VisorRejilla(QWidget *parent) : QTableView(parent)
{
    m_modelo = new ModeloRejilla(m_rejilla, this);
    setModel(m_modelo);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(pixeles(Rejilla::AltoFilaPorOmision));
    horizontalHeader()->setMinimumSectionSize(1);
    horizontalHeader()->setDefaultSectionSize(pixeles(AnchoPorOmision));
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(true);
    horizontalHeader()->viewport()->installEventFilter(this);

    connect(m_modelo, &ModeloRejilla::columnaModificada, this, &VisorRejilla::aplicarColumna);
    connect(m_modelo, &ModeloRejilla::filaModificada, this, &VisorRejilla::aplicarFila);
    connect(m_modelo, &ModeloRejilla::rejillaReiniciada, this, &VisorRejilla::aplicarTodo);
    connect(m_modelo, &QAbstractItemModel::columnsInserted, this, [this](const QModelIndex &, int a, int b) {
        for (int c = a; c <= b; ++c)
            aplicarColumna(m_modelo->colRejilla(c));
    });
    connect(m_modelo, &ModeloRejilla::celdaActualMovida, this, &VisorRejilla::seguirCeldaActual);
    connect(m_modelo, &ModeloRejilla::redrawPuesto, this, [this](bool r) { viewport()->setUpdatesEnabled(r); });
    connect(m_modelo, &ModeloRejilla::visiblePuesto, this, &VisorRejilla::seguirVisible);
    connect(this, &QObject::objectNameChanged, this, [this](const QString &n) { m_rejilla.PonerNombre(n); });
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int s) {
        m_filaRaton = 0;
        m_colRaton = m_modelo->colRejilla(s);
        Q_EMIT Click(0, m_colRaton);
    });
    aplicarTodo();
}

VisorRejilla::~VisorRejilla()
{
    // The model listens to the grid, which dies with this widget: let it go first.
    setModel(nullptr);
    delete m_modelo;
    m_modelo = nullptr;
}

int VisorRejilla::pixeles(int twips) const
{
    return int(std::lround(double(twips) * logicalDpiX() / double(TwipsPorPulgada)));
}

void VisorRejilla::EscalarColumnas()
{
    for (int c = 0; c < m_rejilla.Cols(); ++c) {
        const int ancho = m_rejilla.ColWidth(c);
        if (ancho > 0)
            m_rejilla.PonerColWidth(c, int(std::lround(EscalaX(float(ancho)))));
    }
}

void VisorRejilla::aplicarColumna(int col)
{
    const int v = m_modelo->colVista(col); // -1 for a hidden column, which the view does not have
    if (v < 0 || v >= m_modelo->columnCount() || col >= m_rejilla.Cols())
        return;
    const int ancho = m_rejilla.ColWidth(col);
    setColumnWidth(v, pixeles(ancho < 0 ? AnchoPorOmision : ancho));
}

void VisorRejilla::aplicarFila(int fila)
{
    const int v = m_modelo->filaVista(fila);
    if (v < 0 || v >= m_modelo->rowCount() || fila >= m_rejilla.Rows())
        return;
    const int alto = m_rejilla.RowHeight(fila);
    setRowHeight(v, alto > 0 ? pixeles(alto) : verticalHeader()->defaultSectionSize());
}

void VisorRejilla::aplicarTodo()
{
    horizontalHeader()->setVisible(m_modelo->filasEnCabecera() == 1);
    for (int c = 0; c < m_modelo->columnCount(); ++c)
        aplicarColumna(m_modelo->colRejilla(c));
    // Hidden rows (height 0) are not rows of the model: only rows of a height of their own are
    // looked up, and the grid is not walked at all when no row has one.
    for (const auto &[fila, alto] : m_rejilla.HayAltosPropios() ? m_rejilla.AltosEspeciales()
                                                                  : std::vector<std::pair<int, int>>()) {
        if (alto <= 0)
            continue;
        const int v = m_modelo->filaVista(fila);
        if (v >= 0 && v < m_modelo->rowCount())
            setRowHeight(v, pixeles(alto));
    }
    seguirCeldaActual(m_rejilla.Row(), m_rejilla.Col());
}

void VisorRejilla::seguirCeldaActual(int fila, int col)
{
    if (m_sincronizando)
        return;
    const int v = m_modelo->filaVista(fila);
    if (v < 0 || v >= m_modelo->rowCount() || col < 0)
        return;
    // A current cell in a hidden column shows on the first shown column after it (or before it).
    int c = -1;
    for (int g = col; g < m_rejilla.Cols() && c < 0; ++g)
        c = m_modelo->colVista(g);
    for (int g = col - 1; g >= 0 && c < 0; --g)
        c = m_modelo->colVista(g);
    if (c < 0 || c >= m_modelo->columnCount())
        return;
    m_sincronizando = true;
    setCurrentIndex(m_modelo->index(v, c));
    m_sincronizando = false;
}

void VisorRejilla::seguirVisible(bool visible)
{
    if (!visible) {
        if (isVisible()) {
            m_teniaFoco = hasFocus();
            m_ocultoPorRejilla = true;
            hide();
        }
    } else if (m_ocultoPorRejilla) {
        m_ocultoPorRejilla = false;
        show();
        if (m_teniaFoco)
            setFocus();
    }
}

void VisorRejilla::currentChanged(const QModelIndex &actual, const QModelIndex &anterior)
{
    // QTableView tells a screen reader that the new current cell has the focus even when the view
    // does not have it: a search typed in another field, which moves the current row, would
    // take the reader away from that field. Only a view that has the focus says so.
    if (hasFocus())
        QTableView::currentChanged(actual, anterior);
    else
        QAbstractItemView::currentChanged(actual, anterior); // NOLINT(bugprone-parent-virtual-call)
    if (!actual.isValid())
        return;
    const int fila = m_modelo->filaRejilla(actual.row());
    const int col = m_modelo->colRejilla(actual.column());
    if (!m_sincronizando && fila >= 0 && fila < m_rejilla.Rows() && col >= 0 && col < m_rejilla.Cols()) {
        m_sincronizando = true;
        m_rejilla.PonerRow(fila);
        m_rejilla.PonerCol(col);
        m_sincronizando = false;
    }
    Q_EMIT RowColChange();
}

void VisorRejilla::posicionRaton(const QPoint &p)
{
    const QModelIndex i = indexAt(p);
    m_filaRaton = i.isValid() ? m_modelo->filaRejilla(i.row()) : -1;
    m_colRaton = i.isValid() ? m_modelo->colRejilla(i.column()) : -1;
}

void VisorRejilla::mousePressEvent(QMouseEvent *e)
{
    posicionRaton(e->position().toPoint());
    if (e->button() == Qt::RightButton) {
        // A right click tells where it was, without moving the current cell.
        e->accept();
        Q_EMIT ClickDerecho(m_filaRaton, m_colRaton);
        return;
    }
    QTableView::mousePressEvent(e);
}

void VisorRejilla::mouseReleaseEvent(QMouseEvent *e)
{
    QTableView::mouseReleaseEvent(e);
    posicionRaton(e->position().toPoint());
    if (e->button() == Qt::LeftButton)
        Q_EMIT Click(m_filaRaton, m_colRaton);
}

void VisorRejilla::mouseDoubleClickEvent(QMouseEvent *e)
{
    QTableView::mouseDoubleClickEvent(e);
    posicionRaton(e->position().toPoint());
    if (e->button() == Qt::LeftButton)
        Q_EMIT DobleClick(m_filaRaton, m_colRaton);
}

bool VisorRejilla::eventFilter(QObject *objeto, QEvent *evento)
{
    if (objeto == horizontalHeader()->viewport()
        && (evento->type() == QEvent::MouseButtonPress || evento->type() == QEvent::MouseButtonDblClick)) {
        auto *e = static_cast<QMouseEvent *>(evento);
        const int col = horizontalHeader()->logicalIndexAt(e->position().toPoint());
        m_filaRaton = col >= 0 ? 0 : -1;
        m_colRaton = col;
        if (evento->type() == QEvent::MouseButtonPress && e->button() == Qt::RightButton) {
            Q_EMIT ClickDerecho(m_filaRaton, col);
            return true;
        }
        if (evento->type() == QEvent::MouseButtonDblClick && e->button() == Qt::LeftButton)
            Q_EMIT DobleClick(m_filaRaton, col);
    }
    return QTableView::eventFilter(objeto, evento);
}

} // namespace kvr
