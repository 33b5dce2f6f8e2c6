#include <kvr/telefonos.h>
#include "ui_telefonos.h"

#include <kvr/buscador.h>
#include <kvr/campos.h>
#include <kvr/comunes.h>
#include <kvr/error.h>
#include <kvr/layout.h>
#include <kvr/mivisor.h>
#include <kvr/mybox.h>
#include <kvr/servicios.h>
#include <kvr/utilidades.h>
#include <kvr/visorrejilla.h>

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>
#include <QTimer>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

namespace kvr {

QString ContactoElegido;
QString EnviadoPor;

namespace {

[[maybe_unused]] const bool g_registrada =
    (RegistrarVentana(QStringLiteral("Telefonos"), [] { return new Telefonos; }), true);

const QString TextoModificado = QStringLiteral("Fichero de contactos fué modificado.;;Su cambio no pudo grabarse.");
const QString TextoOcupado = QStringLiteral(
    "El fichero de contactos lo está grabando otro programa.;;Su cambio sigue en la lista y se grabará con el próximo.");
const QString TextoBorrar = QStringLiteral("¿ Confirma que desea ELIMINAR el contacto seleccionado ?");
const QString TextoFila1 = QStringLiteral(
    "La primera fila de la lista tiene datos, aunque no tiene nombre.;;¿ Desea escribir el contacto nuevo "
    "sobre ella ?;;(No: se añade como contacto nuevo.)");
const QString TituloVentana = QStringLiteral("Teléfonos");

// A screen reader hears how many contacts a search left from the list's description, which
// changes with each search, while the focus stays in the search field.
void anunciarEncontrados(QWidget *lista, std::size_t n)
{
    lista->setAccessibleDescription(n == 0   ? QStringLiteral("Ningún contacto")
                                    : n == 1 ? QStringLiteral("1 contacto")
                                             : QStringLiteral("%1 contactos").arg(n));
}

// Rows hold the contact's four cells run together for the search.
const std::vector<int> ColumnasBusqueda = {ColNombre, ColTelefono, ColFax, ColEmail};

} // namespace

// The search text of the grid's rows, built once after the contacts change and kept while only
// the rows' heights change (which is what a search itself does).
class Telefonos::Indice final : public OyenteRejilla {
public:
    explicit Indice(Rejilla &grid) : m_grid(grid) { m_grid.AgregarOyente(this); }
    ~Indice() override { m_grid.QuitarOyente(this); }

    const IndiceBusqueda &actual()
    {
        if (m_sucio || m_datos.Filas() != m_grid.Rows() - 1) {
            m_datos.Construir(m_grid, ColumnasBusqueda);
            m_sucio = false;
            m_buscado.reset(); // no search to build on
        }
        return m_datos;
    }
    // Shows the rows that hold `texto` and hides the others. Text that extends the last one
    // searched (one more letter typed) is looked for only in the rows that held the last one;
    // the grid touches only the rows whose state changes.
    // Returns how many contacts hold it.
    std::size_t buscar(const QString &texto)
    {
        const IndiceBusqueda &indice = actual();
        std::vector<unsigned char> dentro = m_buscado && !m_buscado->isEmpty() && texto.startsWith(*m_buscado)
                                                ? indice.Buscar(texto, m_dentro)
                                                : indice.Buscar(texto);
        sinCambioDeTexto([&] { m_grid.PonerFilasVisibles(1, dentro); });
        m_dentro = std::move(dentro);
        m_buscado = texto;
        return std::size_t(std::count(m_dentro.begin(), m_dentro.end(), 1));
    }
    // Changes made inside `cambio` leave the texts as they were.
    template <typename F> void sinCambioDeTexto(F &&cambio)
    {
        m_ignorar = true;
        cambio();
        m_ignorar = false;
    }

private:
    void ensuciar()
    {
        if (!m_ignorar)
            m_sucio = true;
    }
    void reiniciada() override { ensuciar(); }
    void filasInsertadas() override { ensuciar(); }
    void filasQuitadas() override { ensuciar(); }
    void columnasInsertadas() override { ensuciar(); }
    void columnasQuitadas() override { ensuciar(); }
    void celdasCambiadas(int, int, int, int) override { ensuciar(); }

    Rejilla &m_grid;
    IndiceBusqueda m_datos;
    bool m_sucio = true;
    bool m_ignorar = false;
    std::vector<unsigned char> m_dentro;   ///< per index row: held the last text searched
    std::optional<QString> m_buscado;      ///< the last text searched
};

Telefonos::Telefonos(QWidget *parent)
    : QWidget(parent, Qt::Window)
    , ui(std::make_unique<Ui::Telefonos>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Telefonos"));
    setWindowTitle(TituloVentana);
    setAttribute(Qt::WA_DeleteOnClose);

    // The design names the control arrays "Tlf(i)", "Label1(i)" and "Marco(i)"; the form
    // compiler turns those into "Tlf_i_" and so on, and the runtime's names are put back here.
    QLineEdit *const tlf[] = {ui->Tlf_0_, ui->Tlf_1_, ui->Tlf_2_, ui->Tlf_3_};
    QLabel *const etiquetas[] = {ui->Label1_0_, ui->Label1_1_, ui->Label1_2_, ui->Label1_3_};
    for (int i = 0; i < 4; ++i) {
        tlf[i]->setObjectName(QStringLiteral("Tlf(%1)").arg(i));
        etiquetas[i]->setObjectName(QStringLiteral("Label1(%1)").arg(i));
        etiquetas[i]->setBuddy(tlf[i]);
    }
    ui->Marco_0_->setObjectName(QStringLiteral("Marco(0)"));
    ui->Marco_1_->setObjectName(QStringLiteral("Marco(1)"));
    ui->Marco_2_->setObjectName(QStringLiteral("Marco(2)"));
    ui->Telfs->rejilla().PonerNombre(QStringLiteral("Telfs"));
    ui->Indice->hide();
    ui->Telfs->viewport()->installEventFilter(this);
    m_indice = std::make_unique<Indice>(ui->Telfs->rejilla());

    // Every handler runs through the shared dispatcher: a run-time error is shown and the
    // window goes on.
    connect(ui->BuscoTLF, &QLineEdit::textChanged, this, Manejador(this, &Telefonos::BuscoTLF_Change));
    connect(ui->Telfs, &VisorRejilla::Click, this, Manejador(this, &Telefonos::Telfs_Click));
    connect(ui->Telfs, &VisorRejilla::RowColChange, this, Manejador(this, &Telefonos::Telfs_RowColChange));
    connect(ui->Telfs, &VisorRejilla::ClickDerecho, this, Manejador(this, &Telefonos::Telfs_MouseDown));
    connect(ui->Telfs, &VisorRejilla::DobleClick, this, Manejador(this, &Telefonos::Telfs_DblClick));
    const std::pair<QPushButton *, void (Telefonos::*)()> botones[] = {
        {ui->cmdNuevo, &Telefonos::cmdNuevo_Click},     {ui->cmdEditar, &Telefonos::cmdEditar_Click},
        {ui->cmdBorrar, &Telefonos::cmdBorrar_Click},   {ui->cmdAceptar, &Telefonos::cmdAceptar_Click},
        {ui->cmdCancelar, &Telefonos::cmdCancelar_Click}, {ui->cmdEmail, &Telefonos::cmdEmail_Click},
        {ui->cmdFax, &Telefonos::cmdFax_Click},         {ui->cmdSalir, &Telefonos::cmdSalir_Click},
    };
    for (const auto &[boton, metodo] : botones)
        connect(boton, &QPushButton::clicked, this, Manejador(this, metodo));

    // A file that cannot be loaded (a folder or a FIFO in its place) leaves no half-built window:
    // the error is shown and the window is never shown.
    m_cargada = EjecutarManejador([this] { Form_Load(); });
}

void Telefonos::setVisible(bool visible)
{
    if (visible && !m_cargada) {
        deleteLater();
        return;
    }
    QWidget::setVisible(visible);
}

void Telefonos::closeEvent(QCloseEvent *evento)
{
    // A contact typed while the file could not be written (busy, read-only, full disk) is only in
    // this window: leaving would lose it, so the user is asked, "No" first.
    if (m_sinGrabar && int(MyMsgBox(TextoSalirSinGrabar, QString(), IconoPregunta, 3, 2)) != CajaSi) {
        evento->ignore();
        return;
    }
    QWidget::closeEvent(evento);
}

Telefonos::~Telefonos()
{
    // The index listens to the grid, which goes with the form.
    m_indice.reset();
}

Rejilla &Telefonos::grid()
{
    return ui->Telfs->rejilla();
}

void Telefonos::Form_Load()
{
    // Under the resident program ("Residente") the layout factors are computed anew from this
    // window; any other program reuses the ones its first window computed.
    const bool residente =
        QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName() == u"Residente";
    float ancho = 0, alto = 0;
    PonerFuente(this);
    Redimensionar(this, ancho, alto, !residente);
    PrepararCampos(this);
    ui->LaEntrada->hide();

    m_fichero = RutaContactos();
    CargarContactos();
    m_programaFax = CarpetaContactos() + QStringLiteral("Telecopia/Telecopia");
    ui->cmdFax->setEnabled(Existe(m_programaFax, false));
    Centrar(this);
}

void Telefonos::CargarContactos()
{
    m_cargando = true;
    struct Fin {
        Telefonos *t;
        ~Fin() { t->m_cargando = false; }
    } fin{this};
    const SelloFichero leido = LeerFicheroContactos(m_fichero, grid(), &m_soloConsulta);
    m_sinGrabar = false;
    // A missing file leaves the grid empty and the remembered version as it was.
    if (leido.existe)
        m_sello = leido;
    // A file the grid cannot hold whole is shown for consulting only: a save would lose the rest.
    ui->cmdNuevo->setEnabled(m_soloConsulta.isEmpty());
    setWindowTitle(m_soloConsulta.isEmpty() ? TituloVentana : TituloVentana + QStringLiteral(" (solo consulta)"));
    modoConsulta();
    ui->BuscoTLF->clear();
    anunciarEncontrados(ui->Telfs, std::size_t(std::max(0, grid().Rows() - 1)));
    grid().PonerRow(grid().Rows() > 1 ? 1 : 0);
    grid().PonerCol(ColNombre);
    // The search text is made once the window is idle, so that the first keystroke finds it.
    QTimer::singleShot(0, this, [this] { m_indice->actual(); });
    if (!m_soloConsulta.isEmpty())
        MyMsgBox(QStringLiteral("El fichero de contactos %1 se abre solo para consulta: %2.;;Al grabarlo se perdería "
                                "lo que la agenda no puede mostrar.")
                     .arg(QDir::toNativeSeparators(m_fichero), m_soloConsulta),
                 QString(), IconoAdvertencia, 1, 1);
}

void Telefonos::modoConsulta()
{
    ui->cmdBorrar->setEnabled(false);
    ui->cmdEditar->setEnabled(false);
    ui->NumeroTlf->clear();
    ui->NumeroFax->clear();
}

bool Telefonos::ficheroCambiado() const
{
    const SelloFichero ahora = SelloDe(m_fichero);
    return ahora.existe && ahora != m_sello;
}

void Telefonos::mensajeError(const QString &texto)
{
    MyMsgBox(texto, QString(), IconoError, 1, 1);
}

void Telefonos::GrabarContactos()
{
    if (!m_soloConsulta.isEmpty())
        return;
    ResultadoGrabacion r;
    m_sinGrabar = true;
    try {
        r = GrabarFicheroContactos(m_fichero, grid(), m_sello);
    } catch (const ErrorEjecucion &e) {
        // Nothing was written and the contact stays in the grid: the user can try again.
        mensajeError(e.descripcion() + QStringLiteral(".;;Su cambio sigue en la lista, sin grabar."));
        return;
    }
    m_sinGrabar = r == ResultadoGrabacion::Ocupado;
    if (r == ResultadoGrabacion::Modificado) {
        MyMsgBox(TextoModificado, QString(), IconoAdvertencia, 1, 1);
        CargarContactos();
    } else if (r == ResultadoGrabacion::Ocupado) {
        MyMsgBox(TextoOcupado, QString(), IconoEspera, 1, 1);
    }
}

void Telefonos::EnviarCorreo(bool ConContacto)
{
    QString destino = QStringLiteral("mailto:");
    if (ConContacto)
        destino += LeerCelda(grid(), grid().Row(), ColEmail);
    // Not encoded here: the subject goes as it stands, and "Envio" without its accent.
    if (!EnviadoPor.isEmpty())
        destino += QStringLiteral("?Subject=") + QStringLiteral("Envio realizado por ") + EnviadoPor;
    ServiciosActuales().AbrirDocumento(destino);
}

void Telefonos::EnviarFax(bool ConContacto)
{
    QString parametros;
    if (ConContacto)
        parametros = QStringLiteral("E(") + LeerCelda(grid(), grid().Row(), ColNombre) + QStringLiteral(") ")
                     + QStringLiteral("F(") + LeerCelda(grid(), grid().Row(), ColFax) + QStringLiteral(") ");
    ServiciosActuales().EjecutarPrograma(m_programaFax, parametros.isEmpty() ? QStringList() : QStringList{parametros},
                                         CarpetaContactos() + QStringLiteral("Telecopia/"));
}

// Marks the window's own changes of the grid while it lives.
struct Telefonos::Moviendo {
    bool &marca;
    explicit Moviendo(bool &m) : marca(m) { marca = true; }
    ~Moviendo() { marca = false; }
};

void Telefonos::BuscoTLF_Change()
{
    if (m_cargando || !Existe(m_fichero, false))
        return;
    Moviendo moviendo(m_moviendo);
    anunciarEncontrados(ui->Telfs, m_indice->buscar(ui->BuscoTLF->text()));
}

void Telefonos::elegirFila(int fila, int col)
{
    if (fila < 1 || fila >= grid().Rows() || LeerCelda(grid(), fila, ColNombre).isEmpty())
        return;
    if (col == ColEmail)
        ContactoElegido = LeerCelda(grid(), fila, ColEmail).trimmed();
    ui->cmdEditar->setEnabled(m_soloConsulta.isEmpty());
    ui->cmdBorrar->setEnabled(m_soloConsulta.isEmpty());
    ui->NumeroTlf->setText(LeerCelda(grid(), fila, ColTelefono));
    ui->NumeroFax->setText(LeerCelda(grid(), fila, ColFax));
}

void Telefonos::Telfs_Click(int fila, int col)
{
    if (!m_cargando)
        elegirFila(fila, col);
}

void Telefonos::Telfs_RowColChange()
{
    // The window's own moves of the current cell (a row removed, the sort of a save) choose
    // nothing: only the user's do.
    if (!m_cargando && !m_moviendo)
        elegirFila(grid().Row(), grid().Col());
}

void Telefonos::Telfs_MouseDown(int fila, int col)
{
    if (m_cargando)
        return;
    if (fila >= 1 && fila < grid().Rows() && col == ColEmail && !LeerCelda(grid(), fila, ColNombre).isEmpty())
        ContactoElegido = LeerCelda(grid(), fila, ColEmail).trimmed();
    QCoreApplication::processEvents();
    close();
}

void Telefonos::Telfs_DblClick(int fila, int col)
{
    if (m_cargando || fila < 1)
        return;
    if (col == ColEmail)
        EnviarCorreo(true);
    else if (col == ColFax)
        EnviarFax(true);
}

void Telefonos::cmdNuevo_Click()
{
    for (int i = 0; i < 4; ++i)
        findChild<QLineEdit *>(QStringLiteral("Tlf(%1)").arg(i))->clear();
    // The new contact goes after the last row; but when the last row has no name (the blank
    // row of an empty phone book) it goes into row 1.
    int indice = grid().Rows();
    if (LeerCelda(grid(), grid().Rows() - 1, ColNombre).isEmpty()) {
        indice = 1;
        // Row 1 is overwritten only when it is the blank row of an empty phone book, or when the
        // user says so.
        bool conDatos = false;
        for (int c = 0; c < grid().Cols(); ++c)
            conDatos = conDatos || !LeerCelda(grid(), 1, c).isEmpty();
        if (conDatos && int(MyMsgBox(TextoFila1, QString(), IconoPregunta, 3, 2)) != CajaSi)
            indice = grid().Rows();
    }
    ui->Indice->setText(QString::number(indice));
    AbrirEntrada();
}

void Telefonos::cmdEditar_Click()
{
    const int fila = grid().Row();
    if (fila < 1)
        return;
    for (int i = 0; i < 4; ++i)
        findChild<QLineEdit *>(QStringLiteral("Tlf(%1)").arg(i))->setText(LeerCelda(grid(), fila, ColNombre + i));
    ui->Indice->setText(QString::number(fila));
    AbrirEntrada();
}

void Telefonos::AbrirEntrada()
{
    ui->LaEntrada->show();
    ui->LaEntrada->raise();
    ui->Marco_0_->setEnabled(false);
    ui->Marco_1_->setEnabled(false);
    ui->Marco_2_->setEnabled(false);
    ui->Telfs->setEnabled(false);
    // Warned before typing: a save over a file somebody else changed will be refused.
    ui->FueModificado->setVisible(ficheroCambiado());
    DevolverFoco(findChild<QLineEdit *>(QStringLiteral("Tlf(0)")));
}

void Telefonos::cmdAceptar_Click()
{
    QLineEdit *nombre = findChild<QLineEdit *>(QStringLiteral("Tlf(0)"));
    if (nombre->text().isEmpty()) {
        DevolverFoco(nombre);
        return;
    }
    Moviendo moviendo(m_moviendo);
    const int fila = ui->Indice->text().toInt();
    for (int i = 0; i < 4; ++i)
        PonerCelda(grid(), fila, ColNombre + i, findChild<QLineEdit *>(QStringLiteral("Tlf(%1)").arg(i))->text());
    grid().PonerCol(0);
    GrabarContactos();
    modoConsulta();
    ui->LaEntrada->hide();
    cmdCancelar_Click();
}

void Telefonos::cmdCancelar_Click()
{
    ui->LaEntrada->hide();
    ui->Telfs->setEnabled(true);
    ui->Marco_0_->setEnabled(true);
    ui->Marco_1_->setEnabled(true);
    ui->Marco_2_->setEnabled(true);
    ui->Telfs->setFocus();
}

void Telefonos::cmdBorrar_Click()
{
    // "No" is the initial button: a slip of Enter deletes nothing.
    if (int(MyMsgBox(TextoBorrar, QString(), IconoPregunta, 3, 2)) != CajaSi)
        return;
    Moviendo moviendo(m_moviendo);
    QuitarFilaVisor(grid(), grid().Row());
    modoConsulta();
    ui->Telfs->setFocus();
    GrabarContactos();
}

void Telefonos::cmdEmail_Click()
{
    EnviarCorreo(false);
}

void Telefonos::cmdFax_Click()
{
    EnviarFax(false);
}

void Telefonos::cmdSalir_Click()
{
    close();
}

bool Telefonos::event(QEvent *evento)
{
    // While active, the wheel turned anywhere over the window scrolls the grid (or the list
    // that has the focus).
    if (evento->type() == QEvent::WindowActivate)
        Subclasificar(this);
    else if (evento->type() == QEvent::WindowDeactivate)
        Desclasificar(this);
    return QWidget::event(evento);
}

bool Telefonos::eventFilter(QObject *objeto, QEvent *evento)
{
    // One line of the grid per notch of the wheel, whether turned over the grid or sent to it
    // from elsewhere in the window; a notch is 120 eighths of a degree.
    if (objeto == ui->Telfs->viewport() && evento->type() == QEvent::Wheel) {
        const int giro = static_cast<QWheelEvent *>(evento)->angleDelta().y();
        const int muescas = std::max(1, std::abs(giro) / 120);
        for (int i = 0; giro != 0 && i < muescas; ++i)
            ui->Telfs->verticalScrollBar()->triggerAction(giro > 0 ? QAbstractSlider::SliderSingleStepSub
                                                                   : QAbstractSlider::SliderSingleStepAdd);
        return true;
    }
    return QWidget::eventFilter(objeto, evento);
}

void Telefonos::keyReleaseEvent(QKeyEvent *evento)
{
    TeclasGlobales(evento, this);
    QWidget::keyReleaseEvent(evento);
}

} // namespace kvr
