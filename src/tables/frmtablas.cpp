#include <kvr/frmtablas.h>
#include "ui_frmtablas.h"

#include <kvr/campos.h>
#include <kvr/error.h>
#include <kvr/layout.h>
#include <kvr/mivisor.h>
#include <kvr/mybox.h>
#include <kvr/servicios.h>
#include <kvr/tablas.h>
#include <kvr/utilidades.h>
#include <kvr/visorrejilla.h>

#include <QCloseEvent>
#include <QKeyEvent>

#include <algorithm>
#include <cmath>

namespace kvr {

namespace {

[[maybe_unused]] const bool g_registrada =
    (RegistrarVentana(QStringLiteral("frmTablas"), [] { return new frmTablas; }), true);

// Twips a pixel of `w` stands for, horizontally and vertically.
double twipsX(const QWidget *w) { return TwipsPorPulgada / w->logicalDpiX(); }
double twipsY(const QWidget *w) { return TwipsPorPulgada / w->logicalDpiY(); }
int pixelesX(const QWidget *w, double twips) { return int(std::lround(twips / twipsX(w))); }

} // namespace

frmTablas::frmTablas(QWidget *parent)
    : QWidget(parent, Qt::Window)
    , ui(std::make_unique<Ui::frmTablas>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("frmTablas"));
    setWindowTitle(QStringLiteral("Edición de Tablas"));
    // Closing unloads the window: nothing of it survives.
    setAttribute(Qt::WA_DeleteOnClose);

    // Column 0 holds the elements, so it is an ordinary column that the load blanks and the
    // view paints as data.
    Rejilla &grid = ui->VisorTabla->rejilla();
    grid.PonerFixedCols(0);
    grid.PonerNombre(QStringLiteral("VisorTabla"));
    ui->VisorTabla->setEditTriggers(QAbstractItemView::NoEditTriggers);
    ui->VisorTabla->installEventFilter(this);

    PrepararCampo(ui->Elemento);
    connect(ui->VisorTabla, &VisorRejilla::Click, this,
            [elegir = Manejador(this, &frmTablas::VisorTabla_Click)](int fila, int) {
                // A click on the titles or outside the cells chooses nothing.
                if (fila >= 1)
                    elegir();
            });
    connect(ui->Elemento, &QLineEdit::textChanged, this, Manejador(this, &frmTablas::Elemento_Change));
    connect(ui->cmdAceptar, &QPushButton::clicked, this, Manejador(this, &frmTablas::cmdAceptar_Click));
    connect(ui->cmdGrabar, &QPushButton::clicked, this, Manejador(this, &frmTablas::cmdGrabar_Click));
    connect(ui->cmdSalir, &QPushButton::clicked, this, Manejador(this, &frmTablas::cmdSalir_Click));

    Form_Load();
}

frmTablas::~frmTablas() = default;

VisorRejilla *frmTablas::VisorTabla() const
{
    return ui->VisorTabla;
}

bool frmTablas::Modificado() const
{
    return ui->VisorTabla->rejilla().Tag() == MarcaModificado;
}

void frmTablas::ponerMarca(const QString &marca)
{
    ui->VisorTabla->rejilla().PonerTag(marca);
}

void frmTablas::posicionVisor(int &leftTwips, int &topTwips) const
{
    const QPoint p = ui->VisorTabla->mapToGlobal(QPoint(0, 0));
    leftTwips = int(std::lround(p.x() * twipsX(this)));
    topTwips = int(std::lround(p.y() * twipsY(this)));
}

void frmTablas::Dimensionar(QWidget *Formulario, const QString &TagFormulario,
                            const QString &TituloVisor, const QString &TagElemento, bool Cargar)
{
    PonerTagDe(this, TagFormulario);
    Rejilla &grid = ui->VisorTabla->rejilla();
    CargarVisor(grid, TituloVisor);

    // The grid is as wide as its column 0 plus room for the scroll bar; but never so narrow
    // that the three buttons under it would overlap.
    const int ancho0 = std::max(0, grid.Cols() > 0 ? grid.ColWidth(0) : 0);
    int anchoVisor = pixelesX(this, ancho0 + 320);
    const int separacion = pixelesX(this, 60);
    const int minimo = ui->cmdAceptar->width() + ui->cmdGrabar->width() + ui->cmdSalir->width()
        + 4 * separacion;
    anchoVisor = std::max(anchoVisor, minimo);
    ui->VisorTabla->resize(anchoVisor, ui->VisorTabla->height());

    const int anchoVentana = anchoVisor + pixelesX(this, 300);
    if (Formulario) {
        const QPoint esquina = Formulario->isWindow() ? Formulario->pos()
                                                      : Formulario->mapToGlobal(QPoint(0, 0));
        move(esquina);
    }
    resize(anchoVentana, height());

    ui->Marco->resize(anchoVentana - pixelesX(this, 160), ui->Marco->height());
    ui->Elemento->resize(anchoVisor, ui->Elemento->height());
    ui->cmdSalir->move(anchoVisor - ui->cmdSalir->width() + pixelesX(this, 60), ui->cmdSalir->y());
    ui->cmdGrabar->move(ui->Elemento->x() + (ui->Elemento->width() - ui->cmdGrabar->width()) / 2,
                        ui->cmdGrabar->y());

    PrepararCampo(ui->Elemento, TagElemento);

    if (Cargar)
        EjecutarManejador([&] { ficheroTabla(OperacionCargar); });
}

void frmTablas::Form_Load()
{
    PonerFuente(this);
    Redimensionar(this, true);
    m_filaEditada = 0;
    m_cargando = false;
}

void frmTablas::VisorTabla_Click()
{
    const Rejilla &grid = ui->VisorTabla->rejilla();
    const int fila = grid.Row();
    if (fila == 0)
        return;
    m_cargando = true;
    ui->Elemento->setText(LeerCelda(grid, fila, 0));
    // Setting the same text again announces no change: the flag must not outlive this call and
    // swallow the user's first key.
    m_cargando = false;
    m_filaEditada = fila;
    DevolverFoco(ui->Elemento);
}

void frmTablas::Elemento_Change()
{
    if (m_cargando) {
        m_cargando = false;
        return;
    }
    // The focus routines rewrite the text between its editing and display forms: that is not
    // the user's editing.
    if (CambiandoTexto)
        return;
    ponerMarca(MarcaModificado);
}

void frmTablas::cmdAceptar_Click()
{
    Rejilla &grid = ui->VisorTabla->rejilla();
    if (m_filaEditada <= 0)
        PonerCelda(grid, grid.Rows(), 0, ui->Elemento->text());
    else
        PonerCelda(grid, m_filaEditada, 0, ui->Elemento->text());
    ponerMarca(MarcaModificado);
    ui->Elemento->clear();
    m_filaEditada = 0;
    DevolverFoco(ui->Elemento);
}

void frmTablas::ficheroTabla(const QString &operacion)
{
    QString fichero = TagDe(this);
    int x = -1, y = -1;
    posicionVisor(x, y);
    FicheroTabla(operacion, fichero, ui->VisorTabla->rejilla(), x, y);
    ponerMarca(QString());
}

void frmTablas::cmdGrabar_Click()
{
    EjecutarManejador([this] { ficheroTabla(OperacionRegrabar); }); // also when a host calls it
}

bool frmTablas::puedeSalir()
{
    if (!Modificado())
        return true;
    const float r = MyMsgBox(TextoSalirSinGrabar,
                             QString(), IconoAdvertencia, 2, 2, -1, -1, this);
    // "Aceptar" leaves without saving; "Cancelar" stays, and so does a box closed with Escape
    // (no button, 0): backing out of the question must not throw the changes away.
    return r == 1;
}

void frmTablas::cmdSalir_Click()
{
    // A pending edit of the field is closed by its focus-out handling first.
    DevolverFoco(ui->Elemento);
    bool cerrar = false;
    EjecutarManejador([&] { cerrar = puedeSalir(); });
    if (!cerrar)
        return;
    m_saliendo = true;
    close();
}

void frmTablas::closeEvent(QCloseEvent *evento)
{
    // Closed from the title bar: the same question as "Salir", so nothing is lost unasked.
    if (!m_saliendo) {
        bool cerrar = true;
        EjecutarManejador([&] { cerrar = puedeSalir(); });
        if (!cerrar) {
            evento->ignore();
            return;
        }
    }
    m_saliendo = true;
    evento->accept();
}

void frmTablas::keyReleaseEvent(QKeyEvent *evento)
{
    TeclasGlobales(evento, this);
    QWidget::keyReleaseEvent(evento);
}

bool frmTablas::eventFilter(QObject *objeto, QEvent *evento)
{
    // Enter on the grid chooses the current row, as a click on it does.
    if (objeto == ui->VisorTabla && evento->type() == QEvent::KeyPress) {
        const int tecla = static_cast<QKeyEvent *>(evento)->key();
        if (tecla == Qt::Key_Return || tecla == Qt::Key_Enter) {
            VisorTabla_Click();
            return true;
        }
    }
    return QWidget::eventFilter(objeto, evento);
}

} // namespace kvr
