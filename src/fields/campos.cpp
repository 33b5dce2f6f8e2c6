// The widget side of the field routines: one event filter turns focus in, key presses and focus
// out of QLineEdit, QComboBox and QCheckBox into CampoGotFocus, CampoKeyPress and
// CampoLostFocus. The decisions themselves are made by the logic library.
#include <kvr/campos.h>
#include <kvr/error.h>
#include <kvr/numeros.h>
#include <kvr/servicios.h>
#include <kvr/tags.h>
#include <kvr/teclas.h>
#include <kvr/teclasnombre.h>
#include <kvr/valores.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>

namespace kvr {

bool CambiandoTexto = false;
QPointer<QWidget> UltimoCampo;
bool NoRecordarCampo = false;

namespace {

constexpr int kSistemaFondoVentana = int(0x80000005u); // the desktop's window background colour
constexpr int kSistemaCaraBoton = int(0x8000000Fu);    // the desktop's button face colour

QLineEdit *editorDe(QWidget *campo)
{
    if (auto *le = qobject_cast<QLineEdit *>(campo))
        return le;
    if (auto *cb = qobject_cast<QComboBox *>(campo))
        return cb->isEditable() ? cb->lineEdit() : nullptr;
    return nullptr;
}

QString textoDe(QWidget *campo)
{
    if (QLineEdit *le = editorDe(campo))
        return le->text();
    if (auto *cb = qobject_cast<QComboBox *>(campo))
        return cb->currentText();
    return QString();
}

void seleccionDe(QWidget *campo, int &inicio, int &largo)
{
    inicio = largo = 0;
    if (QLineEdit *le = editorDe(campo)) {
        if (le->hasSelectedText()) {
            inicio = le->selectionStart();
            largo = int(le->selectedText().size());
        } else {
            inicio = le->cursorPosition();
        }
    }
}

void ponerTexto(QWidget *campo, const QString &texto)
{
    if (auto *le = qobject_cast<QLineEdit *>(campo)) {
        if (le->text() != texto)
            le->setText(texto);
    } else if (auto *cb = qobject_cast<QComboBox *>(campo)) {
        if (cb->isEditable() && cb->currentText() != texto)
            cb->setEditText(texto);
    }
}

// The palette role that paints the field's background, and the desktop system colour that
// stands for "not set" in that role.
QPalette::ColorRole rolFondo(QWidget *campo)
{
    if (qobject_cast<QCheckBox *>(campo))
        return QPalette::Window;
    if (auto *cb = qobject_cast<QComboBox *>(campo); cb && !cb->isEditable())
        return QPalette::Button;
    return QPalette::Base;
}

int colorSistemaDe(QPalette::ColorRole rol)
{
    return rol == QPalette::Base ? kSistemaFondoVentana : kSistemaCaraBoton;
}

int fondoActual(QWidget *campo)
{
    const QPalette::ColorRole rol = rolFondo(campo);
    const QPalette pal = campo->palette();
    if (!pal.isBrushSet(QPalette::Active, rol))
        return colorSistemaDe(rol);
    return ValorColor(pal.color(QPalette::Active, rol));
}

void pintarFondo(QWidget *campo, const QColor &color)
{
    const QPalette::ColorRole rol = rolFondo(campo);
    QPalette pal = campo->palette();
    pal.setColor(rol, color);
    campo->setPalette(pal);
    if (rol == QPalette::Window)
        campo->setAutoFillBackground(true);
}

// Takes the field's own brush for its background role away, so that it shows the system colour
// again; every other role the field had set is kept.
void quitarFondo(QWidget *campo)
{
    const QPalette::ColorRole rol = rolFondo(campo);
    const QPalette viejo = campo->palette();
    QPalette nuevo;
    nuevo.setResolveMask(0);
    for (int g = 0; g < int(QPalette::NColorGroups); ++g) {
        const auto grupo = QPalette::ColorGroup(g);
        for (int r = 0; r < int(QPalette::NColorRoles); ++r) {
            const auto role = QPalette::ColorRole(r);
            if (role != rol && viejo.isBrushSet(grupo, role))
                nuevo.setBrush(grupo, role, viejo.brush(grupo, role));
        }
    }
    campo->setPalette(nuevo);
    if (rol == QPalette::Window)
        campo->setAutoFillBackground(false);
}

void enviarTab()
{
    // As a keyboard event would: it reaches whichever widget has the focus when it is handled.
    QMetaObject::invokeMethod(qApp, [] {
        QWidget *w = QApplication::focusWidget();
        if (!w)
            return;
        QKeyEvent abajo(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier, QStringLiteral("\t"));
        QCoreApplication::sendEvent(w, &abajo);
        if (QWidget *ahora = QApplication::focusWidget()) {
            QKeyEvent arriba(QEvent::KeyRelease, Qt::Key_Tab, Qt::NoModifier, QStringLiteral("\t"));
            QCoreApplication::sendEvent(ahora, &arriba);
        }
    }, Qt::QueuedConnection);
}

// Dynamic property marking the field that is current in its window (entered, not yet left).
constexpr const char *kDentro = "_kvr_dentro";

class FiltroCampo : public QObject {
public:
    static FiltroCampo *instancia()
    {
        static QPointer<FiltroCampo> f;
        if (!f)
            f = new FiltroCampo(qApp);
        return f;
    }

protected:
    bool eventFilter(QObject *objeto, QEvent *evento) override
    {
        auto *campo = qobject_cast<QWidget *>(objeto);
        if (!campo)
            return false;
        switch (evento->type()) {
        case QEvent::FocusIn:
            // The field becomes the window's current field; coming back from another window to
            // the field that was current is not entering it again.
            if (!campo->property(kDentro).toBool()) {
                campo->setProperty(kDentro, true);
                CampoGotFocus(campo);
            }
            return false;
        case QEvent::FocusOut: {
            // Switching windows or opening a popup is not leaving the field.
            const auto razon = static_cast<QFocusEvent *>(evento)->reason();
            if (razon == Qt::ActiveWindowFocusReason || razon == Qt::PopupFocusReason)
                return false;
            if (campo->property(kDentro).toBool()) {
                campo->setProperty(kDentro, false);
                CampoLostFocus(campo);
            }
            return false;
        }
        case QEvent::KeyPress:
            return teclaPulsada(campo, static_cast<QKeyEvent *>(evento));
        default:
            return false;
        }
    }

private:
    using QObject::QObject;

    bool teclaPulsada(QWidget *campo, QKeyEvent *ke)
    {
        if (m_entregando)
            return false;
        if (ke->modifiers() & (Qt::ControlModifier | Qt::MetaModifier))
            return false;
        const QString t = ke->text();
        if (ke->key() == Qt::Key_Backspace)
            return false;
        int codigo = 0;
        if (ke->key() == Qt::Key_Return || ke->key() == Qt::Key_Enter)
            codigo = 13;
        else if ((t.size() == 1 && t.at(0).isPrint()) || (t.size() == 2 && t.at(0).isHighSurrogate()))
            codigo = t.at(0).unicode();
        else
            return false;
        const int original = codigo;
        if (!EjecutarManejador([&] { CampoKeyPress(campo, codigo); }))
            return true;
        if (codigo == 0)
            return true;
        if (codigo == original)
            return false;
        QKeyEvent cambiada(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(QChar(char16_t(codigo))));
        m_entregando = true;
        QCoreApplication::sendEvent(campo, &cambiada);
        m_entregando = false;
        return true;
    }

    bool m_entregando = false;
};

} // namespace

QString TagDe(const QObject *campo)
{
    return campo ? campo->property("tag").toString() : QString();
}

void PonerTagDe(QObject *campo, const QString &tag)
{
    if (campo)
        campo->setProperty("tag", tag);
}

void PrepararCampo(QWidget *campo, const QString &tag)
{
    if (!campo)
        return;
    if (!tag.isEmpty())
        PonerTagDe(campo, tag);
    campo->installEventFilter(FiltroCampo::instancia());
}

void PrepararCampos(QWidget *ventana)
{
    if (!ventana)
        return;
    const auto hijos = ventana->findChildren<QWidget *>();
    for (QWidget *w : hijos) {
        const bool clase = qobject_cast<QLineEdit *>(w) || qobject_cast<QCheckBox *>(w)
            || qobject_cast<QComboBox *>(w);
        if (clase && TagDe(w).contains(QStringLiteral("T(")))
            PrepararCampo(w);
    }
}

void QuitarCampo(QWidget *campo)
{
    if (campo)
        campo->removeEventFilter(FiltroCampo::instancia());
}

void CampoKeyPress(QWidget *campo, int &keyAscii)
{
    int inicio = 0, largo = 0;
    seleccionDe(campo, inicio, largo);
    const DecisionTecla d = DecidirTecla(TagDe(campo), textoDe(campo), inicio, largo, keyAscii);
    keyAscii = d.codigo;
    if (d.accion == DecisionTecla::Tabulador)
        EnviarTeclas(QStringLiteral("{Tab}")); // Enter moves on through the send-keys service
    else if (d.accion == DecisionTecla::PorOmision)
        ValorPorOmision(campo);
    if (d.tabTrasEntregar)
        PulsarTab();
}

void CampoGotFocus(QWidget *campo)
{
    if (!campo)
        return;
    // A failure half-way leaves the field as it stands, without a message.
    try {
        PonerTagDe(campo, PonerTag(TagDe(campo), QStringLiteral("P"), QString::number(fondoActual(campo))));
        pintarFondo(campo, ColorDeValor(ColorEdicion));
        if (!editorDe(campo))
            return;
        CambiandoTexto = true;
        ponerTexto(campo, TextoEdicion(textoDe(campo), TagDe(campo)).trimmed());
        CambiandoTexto = false;
        SeleccionarTodo(campo);
    } catch (const ErrorEjecucion &) {
        CambiandoTexto = false;
    }
}

void CampoLostFocus(QWidget *campo)
{
    if (!campo)
        return;
    // Each step goes on whatever the one before it did.
    try {
        const QString p = LeerTag(TagDe(campo), QStringLiteral("P")).value_or(QString());
        if (!p.isEmpty()) {
            const double v = Val(p);
            if (v < 0 && int(v) == int(colorSistemaDe(rolFondo(campo))))
                quitarFondo(campo);
            else
                pintarFondo(campo, ColorDeValor(int(qint64(v))));
        }
    } catch (const ErrorEjecucion &) {
    }
    try {
        if (editorDe(campo)) {
            CambiandoTexto = true;
            ponerTexto(campo, FormatearCampo(textoDe(campo), TagDe(campo)));
        }
    } catch (const ErrorEjecucion &) {
    }
    CambiandoTexto = false;
    if (!NoRecordarCampo)
        UltimoCampo = campo;
}

void SeleccionarTodo(QWidget *campo)
{
    if (QLineEdit *le = editorDe(campo))
        le->setSelection(0, int(le->text().size()));
}

void PulsarTab()
{
    enviarTab();
}

void ValorPorOmision(QWidget *campo)
{
    const QString v = LeerTag(TagDe(campo), QStringLiteral("+")).value_or(QString());
    if (auto *le = qobject_cast<QLineEdit *>(campo)) {
        le->setText(v);
    } else if (auto *cb = qobject_cast<QCheckBox *>(campo)) {
        const double n = Val(v);
        cb->setCheckState(n == 1 ? Qt::Checked : n == 2 ? Qt::PartiallyChecked : Qt::Unchecked);
    } else if (auto *combo = qobject_cast<QComboBox *>(campo)) {
        if (!combo->isEditable())
            SeleccionarEnCombo(combo, v);
        else
            combo->setEditText(v);
    }
    PulsarTab();
}

void SeleccionarEnCombo(QComboBox *combo, const QString &valor)
{
    if (!combo)
        return;
    const QString buscado = valor.trimmed();
    for (int i = 0; i < combo->count(); ++i) {
        if (combo->itemText(i).trimmed() == buscado) {
            combo->setCurrentIndex(i);
            return;
        }
    }
}

int ValorColor(const QColor &color)
{
    return ValorRGB(color.red(), color.green(), color.blue());
}

QColor ColorDeValor(int valor)
{
    if (valor < 0) {
        // A desktop system colour: the palette colour that plays its part.
        const QPalette pal = QApplication::palette();
        switch (valor & 0xFF) {
        case 5: return pal.color(QPalette::Base);
        case 8: return pal.color(QPalette::Text);
        case 15: return pal.color(QPalette::Button);
        case 18: return pal.color(QPalette::ButtonText);
        default: return pal.color(QPalette::Window);
        }
    }
    return QColor(valor & 0xFF, (valor >> 8) & 0xFF, (valor >> 16) & 0xFF);
}

} // namespace kvr
