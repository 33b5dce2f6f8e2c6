// Shared routines on widgets: focus, global keys, runtime windows by name, the printer index,
// the mouse-wheel redirection and drop-down lists filled from list texts.
#include <kvr/utilidades.h>
#include <kvr/comunes.h>

#include <QAbstractScrollArea>
#include <QApplication>
#include <QComboBox>
#include <QHash>
#include <QKeyEvent>
#include <QPointer>
#include <QPrinterInfo>
#include <QWheelEvent>
#include <QWidget>

namespace kvr {

namespace {

// Function-local, so a window's static initializer in any translation unit finds it built.
QHash<QString, std::function<QWidget *()>> &fabricas()
{
    static QHash<QString, std::function<QWidget *()>> f;
    return f;
}

void traerAlFrente(QWidget *w)
{
    if (w->isMinimized())
        w->showNormal();
    else
        w->show();
    w->raise();
    w->activateWindow();
}

// One application-wide event filter serves every window with the redirection: wheel events go
// to the widget under the mouse, so only a filter on the application sees them all.
class RedireccionRueda : public QObject {
public:
    struct Ventana {
        QPointer<QWidget> ventana;
        QMetaObject::Connection alDestruir;
    };
    QList<Ventana> ventanas;

    bool tiene(const QWidget *v) const
    {
        for (const auto &p : ventanas)
            if (p.ventana == v)
                return true;
        return false;
    }

    bool eventFilter(QObject *objeto, QEvent *evento) override
    {
        if (evento->type() != QEvent::Wheel || !objeto->isWidgetType())
            return false;
        auto *w = static_cast<QWidget *>(objeto);
        QWidget *ventana = w->window();
        if (!tiene(ventana))
            return false;
        QAbstractScrollArea *destino = controlActivo(ventana);
        if (!destino || destino == w || destino->isAncestorOf(w))
            return false;
        const auto *rueda = static_cast<QWheelEvent *>(evento);
        QWidget *vista = destino->viewport();
        const QPointF centro = QRectF(vista->rect()).center();
        QWheelEvent copia(centro, QPointF(vista->mapToGlobal(centro.toPoint())),
                          rueda->pixelDelta(), rueda->angleDelta(), rueda->buttons(),
                          rueda->modifiers(), rueda->phase(), rueda->inverted(), rueda->source(),
                          rueda->pointingDevice());
        QCoreApplication::sendEvent(vista, &copia);
        return true;
    }

    // The list or grid that has (or holds) the window's focus.
    static QAbstractScrollArea *controlActivo(QWidget *ventana)
    {
        for (QWidget *f = ventana->focusWidget(); f && f != ventana; f = f->parentWidget()) {
            if (auto *area = qobject_cast<QAbstractScrollArea *>(f))
                return area;
        }
        return nullptr;
    }
};

RedireccionRueda *&redireccion()
{
    static RedireccionRueda *r = nullptr;
    return r;
}

void quitarVentana(const QWidget *ventana)
{
    RedireccionRueda *r = redireccion();
    if (!r)
        return;
    r->ventanas.removeIf([ventana](const RedireccionRueda::Ventana &v) {
        if (v.ventana && v.ventana != ventana)
            return false;
        QObject::disconnect(v.alDestruir);
        return true;
    });
    if (r->ventanas.isEmpty()) {
        // Nothing is left to redirect: the filter goes, so the application runs without it.
        if (qApp)
            qApp->removeEventFilter(r);
        r->deleteLater();
        redireccion() = nullptr;
    }
}

} // namespace

void DevolverFoco(QWidget *control)
{
    if (!control || !control->isVisible() || !control->isEnabled()
        || control->focusPolicy() == Qt::NoFocus)
        return;
    QWidget *ventana = control->window();
    if (!ventana->isActiveWindow())
        ventana->activateWindow();
    control->setFocus(Qt::OtherFocusReason);
}

void TeclasGlobales(int keyCode, int shift, const QString &nombreVentana)
{
    Q_UNUSED(shift);
    if (keyCode == TeclaF4) {
        if (nombreVentana != u"MiCalc")
            MostrarVentana(QStringLiteral("MiCalc"));
    } else if (keyCode == TeclaF8) {
        MostrarVentana(QStringLiteral("Telefonos"));
    }
}

void TeclasGlobales(const QKeyEvent *evento, const QWidget *ventana)
{
    if (!evento)
        return;
    TeclasGlobales(CodigoTecla(evento->key()), CodigoShift(int(evento->modifiers())),
                   ventana ? ventana->objectName() : QString());
}

int CodigoTecla(int teclaQt)
{
    if (teclaQt >= Qt::Key_F1 && teclaQt <= Qt::Key_F24)
        return 112 + (teclaQt - Qt::Key_F1);
    if ((teclaQt >= Qt::Key_A && teclaQt <= Qt::Key_Z) || (teclaQt >= Qt::Key_0 && teclaQt <= Qt::Key_9))
        return teclaQt; // the desktop codes of letters and digits are their ASCII capitals
    switch (teclaQt) {
    case Qt::Key_Backspace: return 8;
    case Qt::Key_Tab:
    case Qt::Key_Backtab: return 9;
    case Qt::Key_Return:
    case Qt::Key_Enter: return 13;
    case Qt::Key_Shift: return 16;
    case Qt::Key_Control: return 17;
    case Qt::Key_Alt: return 18;
    case Qt::Key_Pause: return 19;
    case Qt::Key_CapsLock: return 20;
    case Qt::Key_Escape: return 27;
    case Qt::Key_Space: return 32;
    case Qt::Key_PageUp: return 33;
    case Qt::Key_PageDown: return 34;
    case Qt::Key_End: return 35;
    case Qt::Key_Home: return 36;
    case Qt::Key_Left: return 37;
    case Qt::Key_Up: return 38;
    case Qt::Key_Right: return 39;
    case Qt::Key_Down: return 40;
    case Qt::Key_Insert: return 45;
    case Qt::Key_Delete: return 46;
    default: return 0;
    }
}

int CodigoShift(int modificadoresQt)
{
    int s = 0;
    if (modificadoresQt & Qt::ShiftModifier)
        s |= ShiftMayusculas;
    if (modificadoresQt & Qt::ControlModifier)
        s |= ShiftControl;
    if (modificadoresQt & Qt::AltModifier)
        s |= ShiftAlt;
    return s;
}

void RegistrarVentana(const QString &nombre, const std::function<QWidget *()> &fabrica)
{
    if (fabrica)
        fabricas().insert(nombre, fabrica);
    else
        fabricas().remove(nombre);
}

void MostrarVentana(const QString &nombre)
{
    AbrirVentana(nombre);
}

QWidget *AbrirVentana(const QString &nombre)
{
    if (nombre.isEmpty())
        return nullptr;
    const QWidgetList abiertas = QApplication::topLevelWidgets();
    for (QWidget *w : abiertas) {
        if (w->objectName() == nombre) {
            traerAlFrente(w);
            return w;
        }
    }
    const auto it = fabricas().constFind(nombre);
    if (it == fabricas().constEnd())
        return nullptr;
    QWidget *w = (*it)();
    if (!w)
        return nullptr;
    // The name is what finds it next time: one window of each name.
    w->setObjectName(nombre);
    traerAlFrente(w);
    return w;
}

int IndiceImpresora()
{
    QStringList nombres;
    for (const QPrinterInfo &p : QPrinterInfo::availablePrinters())
        nombres.append(p.printerName());
    return IndiceEnLista(nombres, QPrinterInfo::defaultPrinterName());
}

void Subclasificar(QWidget *ventana)
{
    if (!ventana || !qApp)
        return;
    RedireccionRueda *&r = redireccion();
    if (!r) {
        r = new RedireccionRueda;
        qApp->installEventFilter(r);
    }
    if (r->tiene(ventana))
        return;
    const auto conexion = QObject::connect(ventana, &QObject::destroyed, r,
                                           [ventana] { quitarVentana(ventana); });
    r->ventanas.append({ventana, conexion});
}

void Desclasificar(QWidget *ventana)
{
    if (ventana)
        quitarVentana(ventana);
}

bool Subclasificada(const QWidget *ventana)
{
    const RedireccionRueda *r = redireccion();
    return ventana && r && r->tiene(ventana);
}

void LlenarCombo(const QString &lista, QComboBox *control)
{
    if (!control)
        return;
    control->clear();
    control->addItems(EntradasDeLista(lista));
}

} // namespace kvr
