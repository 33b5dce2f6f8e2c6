// The runtime's modal box: message, buttons, icon, the input, range and list questions, the
// viewer grid and its colour swatch, the help button and dragging by the free surface.
#include <kvr/mybox.h>
#include "ui_mybox.h"

#include <kvr/accesible.h>
#include <kvr/campos.h>
#include <kvr/comunes.h>
#include <kvr/error.h>
#include <kvr/layout.h>
#include <kvr/minihelp.h>
#include <kvr/mivisor.h>
#include <kvr/servicios.h>
#include <kvr/utilidades.h>
#include <kvr/valores.h>
#include <kvr/visorrejilla.h>

#include <QApplication>
#include <QColorDialog>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QScrollArea>
#include <QScreen>
#include <QWindow>

#include <limits>

namespace kvr {

namespace {

// The pictures of NIconos, in the order of IconoCaja.
const char16_t *const kIconos[NumeroIconos] = {
    u":/kvr/mybox/iconos/01_informacion.png", u":/kvr/mybox/iconos/02_pregunta.png",
    u":/kvr/mybox/iconos/03_advertencia.png", u":/kvr/mybox/iconos/04_error.png",
    u":/kvr/mybox/iconos/05_impresora.png",   u":/kvr/mybox/iconos/06_grabar.png",
    u":/kvr/mybox/iconos/07_borrar.png",      u":/kvr/mybox/iconos/08_espera.png",
    u":/kvr/mybox/iconos/09_clave.png",       u":/kvr/mybox/iconos/10_buscar.png",
};

// The range box keeps its own fields out of UltimoCampo: one filter raises NoRecordarCampo
// before the field routines handle the leaving of the field, the other puts back what it was
// after them (filters run from the last installed to the first).
class AlrededorDeSalida : public QObject {
public:
    AlrededorDeSalida(QObject *padre, bool *guardado, bool apertura)
        : QObject(padre), m_guardado(guardado), m_apertura(apertura)
    {
    }

protected:
    bool eventFilter(QObject *, QEvent *evento) override
    {
        if (evento->type() == QEvent::FocusOut) {
            if (m_apertura) {
                *m_guardado = NoRecordarCampo;
                NoRecordarCampo = true;
            } else {
                NoRecordarCampo = *m_guardado;
            }
        }
        return false;
    }

private:
    bool *m_guardado;
    bool m_apertura;
};

// A rectangle in pixels as twips.
QRectF enTwips(const QRect &r)
{
    const double tx = TwipsPorPixelX(), ty = TwipsPorPixelY();
    return QRectF(r.x() * tx, r.y() * ty, r.width() * tx, r.height() * ty);
}

// The prompt labels the field it asks for (its buddy, and its name: a drop-down list is named
// by its current choice otherwise, and a long prompt in a scrolling area is not the field's
// sibling, where a buddy is looked for): a reader says it when the field takes the focus.
void rotular(QLabel *pregunta, QWidget *campo)
{
    pregunta->setBuddy(campo);
    campo->setAccessibleName(pregunta->text());
}

} // namespace

MyBox::MyBox(QWidget *parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint)
    , ui(std::make_unique<Ui::MyBox>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("MyBox"));
    setModal(true);

    // The design names the answer buttons "Boton(i)"; the form compiler turns that into
    // "Boton_i_", so the control array's names are put back here.
    for (int i = 0; i < 3; ++i) {
        m_botones[i] = findChild<QPushButton *>(QStringLiteral("Boton_%1_").arg(i));
        Q_ASSERT(m_botones[i]);
        m_botones[i]->setObjectName(QStringLiteral("Boton(%1)").arg(i));
        // Plain push buttons (a reader announces them as buttons); a click answers the box.
        connect(m_botones[i], &QPushButton::clicked, this, Manejador(this, &MyBox::Boton_Click, i));
        m_botones[i]->installEventFilter(this);
    }
    connect(ui->Ayuda, &QPushButton::clicked, this, Manejador(this, &MyBox::Ayuda_Click));

    // The viewer grid: Tab leaves it for the buttons, a chosen row shows as a whole.
    VisorRejilla *visor = ui->VisorMini;
    visor->setTabKeyNavigation(false);
    visor->setSelectionBehavior(QAbstractItemView::SelectRows);
    visor->installEventFilter(this);
    connect(visor, &VisorRejilla::Click, this, Manejador(this, &MyBox::VisorMini_Click));
    connect(visor, &VisorRejilla::DobleClick, this, Manejador(this, &MyBox::VisorMini_DblClick));
    connect(visor, &VisorRejilla::RowColChange, this, Manejador(this, &MyBox::VisorMini_RowColChange));
    ui->RGBText->installEventFilter(this);
    // The caption strip the frameless box paints is its title bar: a reader says the title once.
    AccesibleComoTitulo(ui->etiTitulo);

    // Tab order of the design: the question's controls, then the buttons left to right.
    m_ordenTab = {ui->CampoTexto, ui->CampoHasta, ui->cbxTabla, ui->VisorMini,
                  m_botones[2], m_botones[1], m_botones[0], ui->Ayuda};

    Form_Load();
}

MyBox::~MyBox() = default;

QPixmap MyBox::NIconos(int ElIcono)
{
    if (ElIcono < 1 || ElIcono > NumeroIconos)
        throw ErrorEjecucion(ErrorEjecucion::SubindiceFueraDeIntervalo,
                             QStringLiteral("Índice fuera de los límites (icono %1)").arg(ElIcono));
    return QPixmap(QString::fromUtf16(kIconos[ElIcono - 1]));
}

void MyBox::Form_Load()
{
    ui->Ayuda->hide();
    float ancho = 0, alto = 0;
    PonerFuente(this);
    Redimensionar(this, ancho, alto, true);
}

void MyBox::PonerMensaje(const QString &ElMensaje)
{
    QLabel *mensaje = ui->Mensaje;
    mensaje->setText(TextoMensaje(ElMensaje));
    // The design holds three lines. A longer text grows the box downwards (what lies below the
    // text moves with it) as far as the screen allows; past that the text scrolls.
    const int necesario = mensaje->heightForWidth(mensaje->width());
    if (necesario <= mensaje->height())
        return;
    const QScreen *pantalla = screen() ? screen() : QGuiApplication::primaryScreen();
    const int libre = pantalla ? pantalla->availableGeometry().height() : 768;
    const int marco = std::max(0, frameGeometry().height() - height());
    const int tope = std::max(mensaje->height(), libre - marco - (height() - mensaje->height()));
    const int alto = std::min(necesario, tope);
    const int crece = alto - mensaje->height();
    const int fondo = mensaje->y() + mensaje->height();
    QWidget *marcoTexto = mensaje->parentWidget();
    for (QWidget *w : marcoTexto->findChildren<QWidget *>(Qt::FindDirectChildrenOnly))
        if (w != mensaje && w->y() >= fondo)
            w->move(w->x(), w->y() + crece);
    // The frames that hold the text grow with it, up to the box itself.
    for (QWidget *w = marcoTexto; w && w != this; w = w->parentWidget())
        w->resize(w->width(), w->height() + crece);
    const QRect donde(mensaje->x(), mensaje->y(), mensaje->width(), alto);
    if (alto < necesario) {
        auto *desplazable = new QScrollArea(marcoTexto);
        desplazable->setObjectName(QStringLiteral("MensajeDesplazable"));
        desplazable->setFrameShape(QFrame::NoFrame);
        desplazable->setWidgetResizable(true);
        desplazable->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        desplazable->setGeometry(donde);
        desplazable->setWidget(mensaje); // the label, its name and its text stay as they are
        desplazable->setFocusPolicy(Qt::NoFocus);
        desplazable->show();
    } else {
        mensaje->setGeometry(donde);
    }
    setFixedHeight(height() + crece);
}

void MyBox::PonerTitulo(const QString &ElTitulo)
{
    setWindowTitle(ElTitulo);
    ui->etiTitulo->setText(ElTitulo);
}

void MyBox::PonerIcono(int ElIcono)
{
    ui->Imagen->setPixmap(NIconos(ElIcono));
}

void MyBox::DisponerBotones(int LosBotones, int BotonOmision, float &Top, float &Left,
                            QWidget *Formulario)
{
    if (const std::optional<JuegoBotones> juego = JuegoDeBotones(LosBotones, BotonOmision)) {
        for (int i = 0; i < 3; ++i) {
            const QString &titulo = juego->titulos[size_t(i)];
            m_botones[i]->setText(titulo);
            m_botones[i]->setVisible(!titulo.isEmpty());
        }
        PonerIndiceTab(m_botones[juego->foco], 0);
    }

    const QScreen *pantalla = QGuiApplication::primaryScreen();
    const QRect areaPantalla = pantalla ? pantalla->geometry() : QRect();
    std::optional<QRectF> sobre;
    if (Formulario) {
        const QRect g = Formulario->isWindow()
            ? Formulario->frameGeometry()
            : QRect(Formulario->mapToGlobal(QPoint(0, 0)), Formulario->size());
        sobre = enTwips(g);
    }
    const QRectF caja = enTwips(frameGeometry());
    PosicionCaja(Top, Left, caja.size(), enTwips(areaPantalla), sobre);
    move(qRound(Left / TwipsPorPixelX()), qRound(Top / TwipsPorPixelY()));
}

void MyBox::PrepararPregunta(const QString &TagDelCampo, const QString &DatoInicial)
{
    QLineEdit *desde = ui->CampoTexto;
    QLineEdit *hasta = ui->CampoHasta;
    switch (TipoDePregunta(TagDelCampo)) {
    case TipoPregunta::Valor:
        desde->show();
        PonerTagDe(desde, TagDelCampo);
        desde->setText(DatoInicial);
        PonerIndiceTab(desde, 0);
        PrepararCampo(desde);
        rotular(ui->Mensaje, desde);
        break;
    case TipoPregunta::Rango: {
        desde->resize(hasta->width(), desde->height());
        PonerTagDe(desde, TagDelCampo);
        PonerTagDe(hasta, TagDelCampo);
        PonerIndiceTab(desde, 0);
        PonerIndiceTab(hasta, 1);
        if (const auto partes = PartirRango(DatoInicial)) {
            desde->setText(FormatearCampo(partes->first, TagDe(desde)));
            hasta->setText(FormatearCampo(partes->second, TagDe(hasta)));
        }
        hasta->move(hasta->x(), desde->y());
        ui->etiDesde->show();
        ui->etiHasta->show();
        desde->setAccessibleName(ui->etiDesde->text()); // read out as "Desde", not as a value
        desde->show();
        hasta->show();
        // The leaving of either field is handled by the field routines with NoRecordarCampo
        // raised around it, so the range box's fields never become UltimoCampo.
        for (QLineEdit *campo : {desde, hasta}) {
            campo->installEventFilter(new AlrededorDeSalida(campo, &m_noRecordarAntes, false));
            PrepararCampo(campo);
            campo->installEventFilter(new AlrededorDeSalida(campo, &m_noRecordarAntes, true));
        }
        break;
    }
    case TipoPregunta::Lista:
        LlenarCombo(DatoInicial, ui->cbxTabla);
        ui->cbxTabla->setGeometry(desde->x(), desde->y(), desde->width(), ui->cbxTabla->height());
        ui->cbxTabla->show();
        PonerIndiceTab(ui->cbxTabla, 0);
        rotular(ui->Mensaje, ui->cbxTabla);
        AccesibleComoLista(ui->cbxTabla);
        break;
    }
}

void MyBox::PonerAyuda(const QString &FicheroAyuda)
{
    if (FicheroAyuda.isEmpty())
        return;
    if (Existe(FicheroAyuda)) {
        ui->Ayuda->show();
        PonerTagDe(ui->Ayuda, FicheroAyuda);
    }
}

void MyBox::PrepararVisor(const QString &Titulos, const QVector<QStringList> &Matriz)
{
    ui->Mensaje->hide();
    Rejilla &rejilla = ui->VisorMini->rejilla();
    CargarVisor(rejilla, Titulos);
    // One repaint for the whole table, however many rows it has.
    const bool redraw = rejilla.Redraw();
    rejilla.PonerRedraw(false);
    const int columnas = rejilla.Cols();
    // Every row is checked before any is placed, so that room is made once for all of them.
    for (int i = 1; i < Matriz.size(); ++i)
        if (Matriz.at(i).size() <= columnas) {
            rejilla.PonerRedraw(redraw);
            throw ErrorEjecucion(ErrorEjecucion::SubindiceFueraDeIntervalo,
                                 QStringLiteral("Subíndice fuera del intervalo (Matriz(%1, %2))").arg(i).arg(Matriz.at(i).size()));
        }
    if (Matriz.size() > rejilla.Rows())
        rejilla.PonerRows(int(std::min<qsizetype>(Matriz.size(), std::numeric_limits<int>::max())));
    for (int i = 1; i < Matriz.size(); ++i) {
        const QStringList &fila = Matriz.at(i);
        for (int j = 1; j <= columnas; ++j)
            PonerCelda(rejilla, i, j - 1, fila.at(j));
    }
    rejilla.PonerRedraw(redraw);
    // No row shows as chosen until the user chooses one.
    ui->VisorMini->clearSelection();
    ui->VisorMini->show();
}

void MyBox::PonerColumnaDevolver(const QString &ColumnaDevolver)
{
    if (!ColumnaDevolver.isEmpty())
        m_columnaDevolver = BuscarColumnaVisor(ui->VisorMini->rejilla(), ColumnaDevolver);
}

void MyBox::elegirFilaActual()
{
    const Rejilla &rejilla = ui->VisorMini->rejilla();
    m_texto = LeerCelda(rejilla, rejilla.Row(), m_columnaDevolver);
}

void MyBox::VisorMini_Click(int fila, int /*col*/)
{
    // Only a row of data counts: the title row and the space below the rows choose nothing.
    const Rejilla &rejilla = ui->VisorMini->rejilla();
    if (fila >= rejilla.FixedRows() && fila < rejilla.Rows())
        elegirFilaActual();
}

void MyBox::VisorMini_DblClick(int fila, int col)
{
    VisorMini_Click(fila, col);
    for (int i = 2; i >= 0; --i) {
        if (m_botones[i]->isVisibleTo(this)) {
            Boton_Click(i);
            return;
        }
    }
}

void MyBox::VisorMini_RowColChange()
{
    // Only a move made by a key chooses; the mouse chooses by its click, and the current cell
    // set while the grid is filled chooses nothing.
    if (!m_teclaEnVisor)
        return;
    m_teclaEnVisor = false;
    const Rejilla &rejilla = ui->VisorMini->rejilla();
    VisorMini_Click(rejilla.Row(), rejilla.Col());
}

void MyBox::RGBText_Click()
{
    QColorDialog dlgColores(this);
    dlgColores.setObjectName(QStringLiteral("dlgColores"));
    dlgColores.setCurrentColor(ui->RGBText->palette().color(QPalette::Window));
    // A cancel leaves the swatch and the field as they were.
    if (dlgColores.exec() != QDialog::Accepted)
        return;
    const QColor color = dlgColores.selectedColor();
    if (!color.isValid())
        return;
    QPalette paleta = ui->RGBText->palette();
    paleta.setColor(QPalette::Window, color);
    ui->RGBText->setPalette(paleta);
    const qint64 valor = qint64(color.red()) | qint64(color.green()) << 8 | qint64(color.blue()) << 16;
    ui->CampoTexto->setText(QString::number(valor));
}

bool MyBox::DesdeHastaOk()
{
    return RangoEnOrden(ui->CampoTexto->text(), ui->CampoHasta->text(), TagDe(ui->CampoTexto));
}

void MyBox::PonerIndiceTab(QWidget *control, int indice)
{
    if (!control)
        return;
    m_ordenTab.removeAll(control);
    m_ordenTab.insert(qBound(0, indice, int(m_ordenTab.size())), control);
}

void MyBox::aplicarOrdenTab()
{
    for (int i = 0; i + 1 < m_ordenTab.size(); ++i)
        QWidget::setTabOrder(m_ordenTab.at(i), m_ordenTab.at(i + 1));
    for (QWidget *w : std::as_const(m_ordenTab)) {
        if (w->isVisibleTo(this) && w->isEnabled() && (w->focusPolicy() & Qt::TabFocus)) {
            w->setFocus(Qt::OtherFocusReason);
            break;
        }
    }
}

void MyBox::showEvent(QShowEvent *evento)
{
    aplicarOrdenTab();
    QDialog::showEvent(evento);
}

void MyBox::Boton_Click(int Index)
{
    if (m_guardaClic || m_descargada)
        return;
    QPushButton *boton = m_botones[Index];

    if (const std::optional<int> codigo = CodigoDeBoton(boton->text()))
        m_codigo = float(*codigo);
    if (!TagDe(ui->CampoTexto).isEmpty())
        m_texto = ui->CampoTexto->text();
    m_texto2.clear();
    if (ui->CampoHasta->isVisibleTo(this)) {
        // "Aceptar" is refused while the range is out of order; the box stays as it is.
        if (!DesdeHastaOk() && m_codigo == float(CajaAceptar))
            return;
        m_texto2 = ui->CampoHasta->text();
    }
    if (ui->cbxTabla->isVisibleTo(this))
        m_texto = ui->cbxTabla->currentText();

    ui->Ayuda->hide();
    m_descargada = true;
    done(QDialog::Accepted);
    QCoreApplication::processEvents();
}

void MyBox::Boton_KeyPress(int Index, int &KeyAscii)
{
    if (KeyAscii == 13) {
        KeyAscii = 0;
        Boton_Click(Index);
    }
}

void MyBox::Ayuda_Click()
{
    EjecutarManejador([&] {
        MiniHelp ayuda(this);
        ayuda.CargarAyuda(TagDe(ui->Ayuda));
        ayuda.exec();
    });
    // The box is modal: a field of another window cannot take the focus while it is open (the
    // range box's fields are never remembered, so UltimoCampo may be the caller's field); the
    // box itself takes it back then.
    if (UltimoCampo && UltimoCampo->window() == this)
        DevolverFoco(UltimoCampo);
    else
        activateWindow();
}

void MyBox::reject()
{
    if (!m_descargada) {
        // A code left by an "Aceptar" that the range refused does not count: no button closed
        // the box.
        m_codigo = CajaSinBoton;
        m_texto.clear();
        m_texto2.clear();
    }
    QDialog::reject();
}

void MyBox::Form_MouseDown(const QPoint &global)
{
    // The window system moves the window when it can; otherwise the box follows the mouse
    // until the button is released.
    if (QWindow *ventana = windowHandle(); ventana && ventana->startSystemMove())
        return;
    m_arrastrando = true;
    m_desplazamiento = global - pos();
}

void MyBox::mousePressEvent(QMouseEvent *evento)
{
    // Presses on the background, the caption strip, the labels and the frame come here.
    if (evento->button() != Qt::LeftButton) {
        QDialog::mousePressEvent(evento);
        return;
    }
    evento->accept();
    Form_MouseDown(evento->globalPosition().toPoint());
}

void MyBox::mouseMoveEvent(QMouseEvent *evento)
{
    if (m_arrastrando && (evento->buttons() & Qt::LeftButton)) {
        move(evento->globalPosition().toPoint() - m_desplazamiento);
        evento->accept();
        return;
    }
    QDialog::mouseMoveEvent(evento);
}

void MyBox::mouseReleaseEvent(QMouseEvent *evento)
{
    m_arrastrando = false;
    QDialog::mouseReleaseEvent(evento);
}

bool MyBox::eventFilter(QObject *objeto, QEvent *evento)
{
    if (objeto == ui->RGBText) {
        // The swatch answers a left click; its press does not start dragging the box.
        if (evento->type() == QEvent::MouseButtonPress
            || evento->type() == QEvent::MouseButtonDblClick) {
            if (static_cast<QMouseEvent *>(evento)->button() == Qt::LeftButton)
                return true;
        } else if (evento->type() == QEvent::MouseButtonRelease) {
            const auto *m = static_cast<QMouseEvent *>(evento);
            if (m->button() == Qt::LeftButton) {
                if (ui->RGBText->rect().contains(m->position().toPoint()))
                    EjecutarManejador([&] { RGBText_Click(); });
                return true;
            }
        }
        return QDialog::eventFilter(objeto, evento);
    }
    if (objeto == ui->VisorMini) {
        if (evento->type() == QEvent::KeyPress) {
            const auto *k = static_cast<QKeyEvent *>(evento);
            if (k->key() == Qt::Key_Return || k->key() == Qt::Key_Enter) {
                // Enter confirms the current row as a double click on it would.
                const Rejilla &rejilla = ui->VisorMini->rejilla();
                EjecutarManejador([&] { VisorMini_DblClick(rejilla.Row(), rejilla.Col()); });
                return true;
            }
            m_teclaEnVisor = true;
        } else if (evento->type() == QEvent::KeyRelease || evento->type() == QEvent::FocusOut) {
            m_teclaEnVisor = false;
        }
        return QDialog::eventFilter(objeto, evento);
    }
    if (evento->type() == QEvent::KeyPress) {
        const auto *k = static_cast<QKeyEvent *>(evento);
        if (k->key() == Qt::Key_Return || k->key() == Qt::Key_Enter) {
            for (int i = 0; i < 3; ++i) {
                if (objeto == m_botones[i]) {
                    int codigo = 13;
                    EjecutarManejador([&] { Boton_KeyPress(i, codigo); });
                    return true;
                }
            }
        }
    }
    return QDialog::eventFilter(objeto, evento);
}

} // namespace kvr
