#include <kvr/micalc.h>
#include "ui_micalc.h"

#include <kvr/accesible.h>
#include <kvr/error.h>
#include <kvr/escala.h>
#include <kvr/impresora.h>
#include <kvr/layout.h>
#include <kvr/servicios.h>
#include <kvr/teclasnombre.h>
#include <kvr/utilidades.h>

#include <QApplication>
#include <QClipboard>
#include <QFileInfo>
#include <QScreen>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWindow>

namespace kvr {

namespace {

// F4 from any runtime window opens the calculator by this name.
[[maybe_unused]] const bool g_registrada =
    (RegistrarVentana(QStringLiteral("MiCalc"), [] { return new MiCalc; }), true);

// The character code a key press stands for: Enter, Backspace and Escape by their key, the rest
// by the text typed.
int codigoAscii(const QKeyEvent *k)
{
    switch (k->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: return 13;
    case Qt::Key_Backspace: return 8;
    case Qt::Key_Escape: return 27;
    default: break;
    }
    const QString t = k->text();
    return t.isEmpty() ? 0 : int(t.at(0).unicode());
}

// Keys that are no calculator key and belong to the control that has the focus: the arrows and
// page keys move through the tape line by line, the space bar ticks the toggle.
bool esDeNavegacion(const QObject *objeto, const QKeyEvent *k, const QObject *papel, const QObject *fijar)
{
    if (objeto == papel) {
        switch (k->key()) {
        case Qt::Key_Up: case Qt::Key_Down: case Qt::Key_Left: case Qt::Key_Right:
        case Qt::Key_PageUp: case Qt::Key_PageDown: case Qt::Key_Home: case Qt::Key_End:
            return true;
        default:
            return false;
        }
    }
    return objeto == fijar && k->key() == Qt::Key_Space;
}

} // namespace

MiCalc::MiCalc(QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint)
    , ui(std::make_unique<Ui::MiCalc>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("MiCalc"));
    setWindowTitle(QStringLiteral("Calculadora"));
    // Closing unloads the form: a new one starts blank.
    setAttribute(Qt::WA_DeleteOnClose);

    for (int i = 0; i < 24; ++i) {
        // The design names the keys "tecla(i)"; the form compiler turns that into "tecla_i_",
        // so the control array's names are put back here.
        m_teclas[i] = findChild<QPushButton *>(QStringLiteral("tecla_%1_").arg(i));
        m_teclas[i]->setObjectName(QStringLiteral("tecla(%1)").arg(i));
        Q_ASSERT(m_teclas[i] && m_teclas[i]->text() == MotorCalculadora::TeclaDe(i));
        connect(m_teclas[i], &QPushButton::clicked, this, Manejador(this, &MiCalc::tecla_Click, i));
    }
    connect(ui->decimales, &QPushButton::clicked, this, Manejador(this, &MiCalc::decimales_Click));
    connect(ui->Pegar, &QPushButton::clicked, this, Manejador(this, &MiCalc::Pegar_Click));
    connect(ui->VerPapel, &QPushButton::clicked, this, Manejador(this, &MiCalc::VerPapel_Click));
    connect(ui->Salir, &QPushButton::clicked, this, Manejador(this, &MiCalc::Salir_Click));
    // As on the desktop, the toggle's handler runs whenever its value changes, by click or by F8.
    connect(ui->FijarUp, &QCheckBox::toggled, this, Manejador(this, &MiCalc::FijarUp_Click));

    m_motor.AlAnotar = [this](const QString &linea) {
        QPlainTextEdit *papel = ui->Papel;
        papel->moveCursor(QTextCursor::End);
        papel->insertPlainText(linea + QStringLiteral("\r\n"));
        papel->moveCursor(QTextCursor::End);
        papel->ensureCursorVisible();
        ui->Panel->setFocus();
    };
    m_motor.AlBorrarPapel = [this] { ui->Papel->clear(); };
    // The tape's context menu prints it or saves it to a file.
    PonerMenuCinta(ui->Papel);
    m_motor.AlCopiar = [](const QString &texto) {
        QClipboard *portapapeles = QGuiApplication::clipboard();
        portapapeles->clear();
        portapapeles->setText(texto);
    };

    // A screen reader's view: the display reads as text named by its purpose and announces each
    // new value; the key pad, which holds the focus after every action, carries the value as its
    // description; the toggle is named by what it does, its tick is its state. Tab goes round the
    // key pad, the display, the tape and the toggle (when shown); every key still acts on the
    // calculator wherever the focus is.
    ui->Pantalla->setAccessibleName(QStringLiteral("Resultado"));
    AccesibleComoValor(ui->Pantalla);
    setFocusPolicy(Qt::ClickFocus);
    ui->Pantalla->setFocusPolicy(Qt::TabFocus);
    ui->Papel->setFocusPolicy(Qt::StrongFocus);
    ui->Papel->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    ui->FijarUp->setFocusPolicy(Qt::TabFocus);
    ui->FijarUp->setAccessibleName(QStringLiteral("Siempre visible"));
    ui->Panel->setAccessibleDescription(ui->Pantalla->text());
    setTabOrder(ui->Panel, ui->Pantalla);
    setTabOrder(ui->Pantalla, ui->Papel);
    setTabOrder(ui->Papel, ui->FijarUp);

    // The form sees every key first, whichever control has the focus.
    vigilar(this);
    for (QWidget *w : findChildren<QWidget *>())
        vigilar(w);

    Form_Load();
}

MiCalc::~MiCalc() = default;

QString MiCalc::Evaluar(QString &Expresion)
{
    Q_UNUSED(Expresion);
    return QString();
}

void MiCalc::vigilar(QWidget *w)
{
    w->installEventFilter(this);
}

void MiCalc::mostrar()
{
    const QString antes = ui->Pantalla->text();
    const QString ahora = m_motor.Pantalla();
    ui->Pantalla->setText(ahora);
    if (ahora != antes) {
        ui->Panel->setAccessibleDescription(ahora);
        AnunciarValor(ui->Pantalla, antes);
    }
    ui->Pantalla->setToolTip(m_motor.LineaPantalla());
    ui->decimales->setText(m_motor.TextoDecimales());
}

void MiCalc::Form_Load()
{
    const QString linea = QCoreApplication::arguments().mid(1).join(u' ');
    double factor = 1.0;
    if (FactorDeLineaComandos(linea, factor)) {
        // Bounded by the screen: a thousand times the design size would take gigabytes for its
        // pixels and could never be seen. Up to twice the screen's size is allowed, so that "+2"
        // gives twice the design size on any screen of at least the design size.
        if (const QScreen *pantalla = screen(); pantalla && width() > 0 && height() > 0) {
            const QRect libre = pantalla->availableGeometry();
            factor = std::min(factor, std::max(1.0, std::min(2.0 * libre.width() / width(),
                                                             2.0 * libre.height() / height())));
        }
        // The design size (in pixels) times the factor becomes the wanted size.
        float ancho = float(width() * factor);
        float alto = float(height() * factor);
        PonerFuente(this);
        Redimensionar(this, ancho, alto, false);
        ui->FijarUp->setVisible(true);
    } else if (QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName()
               != u"Residente") {
        float ancho = 0, alto = 0;
        PonerFuente(this);
        Redimensionar(this, ancho, alto, true);
        ui->FijarUp->setVisible(false);
    } else {
        // Run as a resident tool: the design size as it is, with the toggle at hand.
        ui->FijarUp->setVisible(true);
    }
    Centrar(this);
}

void MiCalc::Form_KeyPress(int &KeyAscii)
{
    const int indice = IndiceDeTecla(KeyAscii);
    if (indice >= 0)
        tecla_Click(indice);
    if (KeyAscii == 27) {
        KeyAscii = 0;
        Salir_Click();
        return;
    }
    KeyAscii = 0;
}

void MiCalc::Form_KeyUp(int KeyCode, int Shift)
{
    if (!ui->FijarUp->isChecked() && KeyCode == TeclaF8)
        ui->FijarUp->setChecked(true);
    TeclasGlobales(KeyCode, Shift, QStringLiteral("MiCalc"));
}

void MiCalc::Form_MouseDown()
{
    if (QWindow *ventana = windowHandle())
        ventana->startSystemMove();
}

void MiCalc::Pantalla_MouseDown(Qt::MouseButton Button)
{
    if (Button == Qt::LeftButton)
        VerPapel_Click();
    else
        Pegar_Click();
}

void MiCalc::tecla_Click(int Index)
{
    ui->Panel->setFocus();
    // An arithmetic error ends the key; what the key had already changed stays shown.
    EjecutarManejador([&] { m_motor.Tecla(Index); }, [this] { mostrar(); });
    mostrar();
}

void MiCalc::decimales_Click()
{
    EjecutarManejador([&] { m_motor.CambiarDecimales(); });
    mostrar();
    ui->Panel->setFocus();
}

void MiCalc::Pegar_Click()
{
    const QString texto = TextoParaPegar(QGuiApplication::clipboard()->text());
    // Typed into the form, one key per character, after the click that asked for it.
    EnviarTeclas(TeclasLiterales(texto), this);
    ui->Panel->setFocus();
}

void MiCalc::VerPapel_Click()
{
    const int m = qRound(EscalaX(float(120.0 / TwipsPorPixelX())));
    QWidget *panel = ui->Panel;
    QWidget *papel = ui->Papel;
    if (!papel->isHidden()) {
        resize(m + panel->width(), height());
        papel->hide();
    } else {
        resize(m + panel->width() + papel->width() + m, height());
        papel->show();
    }
    panel->setFocus();
}

void MiCalc::FijarUp_Click()
{
    ui->Panel->setFocus();
    const bool arriba = ui->FijarUp->isChecked();
    // Only the stacking changes: no move, no resize, no hiding and showing of the window.
    Qt::WindowFlags banderas = windowFlags();
    banderas.setFlag(Qt::WindowStaysOnTopHint, arriba);
    banderas.setFlag(Qt::WindowStaysOnBottomHint, false);
    overrideWindowFlags(banderas);
    if (QWindow *ventana = windowHandle())
        ventana->setFlags(banderas);
    ui->FijarUp->setText(arriba ? QStringLiteral("Siempre visible SI")
                                : QStringLiteral("Siempre visible NO"));
}

void MiCalc::Salir_Click()
{
    close();
}

void MiCalc::mousePressEvent(QMouseEvent *evento)
{
    // Presses on the background (and on the key pad's, which passes them up) drag the window.
    evento->accept();
    Form_MouseDown();
}

bool MiCalc::eventFilter(QObject *objeto, QEvent *evento)
{
    switch (evento->type()) {
    case QEvent::ChildAdded:
        if (auto *hijo = static_cast<QChildEvent *>(evento)->child(); hijo->isWidgetType())
            vigilar(static_cast<QWidget *>(hijo));
        return false;
    case QEvent::KeyPress: {
        const auto *k = static_cast<QKeyEvent *>(evento);
        if (esDeNavegacion(objeto, k, ui->Papel, ui->FijarUp))
            return false;
        if ((k->key() == Qt::Key_Tab || k->key() == Qt::Key_Backtab)
            && !(k->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
            focusNextPrevChild(k->key() == Qt::Key_Tab && !(k->modifiers() & Qt::ShiftModifier));
            return true;
        }
        int codigo = codigoAscii(k);
        Form_KeyPress(codigo);
        return true; // every key is the calculator's: no control receives it
    }
    case QEvent::KeyRelease: {
        const auto *k = static_cast<QKeyEvent *>(evento);
        if (!k->isAutoRepeat())
            Form_KeyUp(CodigoTecla(k->key()), CodigoShift(int(k->modifiers())));
        return true;
    }
    case QEvent::ShortcutOverride:
        if (esDeNavegacion(objeto, static_cast<QKeyEvent *>(evento), ui->Papel, ui->FijarUp))
            return false;
        // Keys that a control would claim as shortcuts (Escape, Backspace) come as key presses.
        evento->accept();
        return true;
    case QEvent::MouseButtonPress:
        if (objeto == ui->Pantalla) {
            Pantalla_MouseDown(static_cast<QMouseEvent *>(evento)->button());
            return true;
        }
        return false;
    default:
        return false;
    }
}

} // namespace kvr
