// The proportional layout on real widgets: the window, its controls' geometry, fonts and grid
// columns, scaled by the factors of escala.cpp.
#include <kvr/layout.h>
#include <kvr/campos.h>
#include <kvr/escala.h>

#include <QCalendarWidget>
#include <QComboBox>
#include <QFocusFrame>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLayout>
#include <QLineEdit>
#include <QMenuBar>
#include <QMetaMethod>
#include <QRubberBand>
#include <QScreen>
#include <QScrollArea>
#include <QSizeGrip>
#include <QSpinBox>
#include <QSplitter>
#include <QTabBar>
#include <QTableView>
#include <QToolBar>
#include <QTreeView>
#include <QWidget>

#include <cmath>

namespace kvr {

namespace {

struct PantallaSimulada {
    bool activa = false;
    QRect area;
    double dpiX = 96.0;
    double dpiY = 96.0;
};

PantallaSimulada &simulada()
{
    static PantallaSimulada p;
    return p;
}

QRect areaUtilPixeles()
{
    if (simulada().activa)
        return simulada().area;
    if (QScreen *s = QGuiApplication::primaryScreen())
        return s->availableGeometry();
    return QRect(0, 0, 800, 600);
}

double twipsPorPixel(bool horizontal)
{
    double dpi = 0.0;
    if (simulada().activa)
        dpi = horizontal ? simulada().dpiX : simulada().dpiY;
    else if (QScreen *s = QGuiApplication::primaryScreen())
        dpi = horizontal ? s->logicalDotsPerInchX() : s->logicalDotsPerInchY();
    return dpi > 0.0 ? double(TwipsPorPulgada) / dpi : 15.0;
}

// Widgets that build themselves out of other widgets: what they hold are their own parts (a scroll
// area's viewport and bars, a table's headers, a combo box's or spin box's editor, a line edit's
// buttons), laid out by them, not controls of the window.
bool esCompuesto(const QWidget *w)
{
    return qobject_cast<const QAbstractScrollArea *>(w) || qobject_cast<const QComboBox *>(w)
        || qobject_cast<const QAbstractSpinBox *>(w) || qobject_cast<const QLineEdit *>(w)
        || qobject_cast<const QTabBar *>(w) || qobject_cast<const QCalendarWidget *>(w)
        || qobject_cast<const QToolBar *>(w) || qobject_cast<const QMenuBar *>(w)
        || w->inherits("QWebEngineView");
}

// Parts that Qt adds by itself wherever they appear.
bool esPieza(const QWidget *w)
{
    return w->objectName().startsWith(u"qt_") || qobject_cast<const QSplitterHandle *>(w)
        || qobject_cast<const QSizeGrip *>(w) || qobject_cast<const QFocusFrame *>(w)
        || qobject_cast<const QRubberBand *>(w);
}

// The controls of a window: every widget at any depth, named or not, but for Qt's own parts and
// what lies inside a composite widget, where only widgets given a name count (a scroll area's
// own content is the window's again). Other windows are not crossed into.
void reunirControles(QWidget *padre, QList<QWidget *> &controles, bool dentroCompuesto)
{
    for (QObject *o : padre->children()) {
        if (!o->isWidgetType())
            continue;
        auto *w = static_cast<QWidget *>(o);
        if (w->isWindow())
            continue;
        const auto *area = qobject_cast<const QScrollArea *>(w->parentWidget() ? w->parentWidget()->parentWidget() : nullptr);
        const bool dentro = dentroCompuesto && !(area && area->widget() == w);
        const bool pieza = esPieza(w);
        if (!pieza && (!dentro || !w->objectName().isEmpty()))
            controles.append(w);
        reunirControles(w, controles, dentro || esCompuesto(w));
    }
}

QList<QWidget *> controlesDe(QWidget *form)
{
    QList<QWidget *> c;
    reunirControles(form, c, false);
    return c;
}

bool contiene(const QLayout *layout, const QWidget *w)
{
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem *item = layout->itemAt(i);
        if (item->widget() == w)
            return true;
        if (item->layout() && contiene(item->layout(), w))
            return true;
    }
    return false;
}

bool enLayout(const QWidget *w)
{
    const QWidget *p = w->parentWidget();
    return p && p->layout() && contiene(p->layout(), w);
}

int redondo(float v)
{
    return int(std::lround(v));
}

// Minimum and maximum sizes follow the scale, so a fixed-size design stays fixed at its new size.
void escalarLimites(QWidget *w)
{
    const QSize min = w->minimumSize();
    const QSize max = w->maximumSize();
    auto escalar = [](int v, bool horizontal, int neutro) {
        if (v == neutro)
            return v;
        return redondo(horizontal ? EscalaX(float(v)) : EscalaY(float(v)));
    };
    w->setMinimumSize(escalar(min.width(), true, 0), escalar(min.height(), false, 0));
    w->setMaximumSize(escalar(max.width(), true, QWIDGETSIZE_MAX),
                      escalar(max.height(), false, QWIDGETSIZE_MAX));
}

QFont fuenteEscalada(const QWidget *w)
{
    QFont f = w->font();
    const bool negrita = f.bold();
    f.setBold(false);
    if (f.pointSizeF() > 0)
        f.setPointSizeF(double(EscalaFuente(float(f.pointSizeF()))));
    else if (f.pixelSize() > 0)
        f.setPixelSize(std::max(1, redondo(EscalaFuente(float(f.pixelSize())))));
    f.setBold(negrita);
    return f;
}

void escalarColumnas(QWidget *w)
{
    const QMetaObject *mo = w->metaObject();
    const int i = mo->indexOfMethod("EscalarColumnas()");
    if (i >= 0) {
        mo->method(i).invoke(w, Qt::DirectConnection);
        return;
    }
    QHeaderView *cabecera = nullptr;
    if (auto *tabla = qobject_cast<QTableView *>(w))
        cabecera = tabla->horizontalHeader();
    else if (auto *arbol = qobject_cast<QTreeView *>(w))
        cabecera = arbol->header();
    if (!cabecera)
        return;
    for (int c = 0; c < cabecera->count(); ++c) {
        if (!cabecera->isSectionHidden(c))
            cabecera->resizeSection(c, redondo(EscalaX(float(cabecera->sectionSize(c)))));
    }
}

} // namespace

QString FuenteDialogo()
{
    return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
}

void PonerFuente(QWidget *form)
{
    if (!form)
        return;
    const QString familia = FuenteDialogo();
    const QList<QWidget *> controles = controlesDe(form);
    auto fija = [](const QWidget *w) { return TagDe(w).contains(u"(FF)"); };
    // Controls that keep their family get it pinned first, before the window's font changes
    // what they would inherit.
    for (QWidget *w : controles) {
        if (fija(w)) {
            QFont f = w->font();
            f.setFamily(f.family());
            w->setFont(f);
        }
    }
    if (!fija(form)) {
        QFont f = form->font();
        f.setFamily(familia);
        form->setFont(f);
    }
    for (QWidget *w : controles) {
        if (!fija(w)) {
            QFont f = w->font();
            f.setFamily(familia);
            w->setFont(f);
        }
    }
}

void Redimensionar(QWidget *form, float &ancho, float &alto, bool reutilizar)
{
    if (!form)
        return;
    const float tppX = float(TwipsPorPixelX());
    const float tppY = float(TwipsPorPixelY());
    if (reutilizar) {
        if (FactorX == 0.0f || FactorY == 0.0f || SinEscalar)
            return;
        ancho = EscalaX(float(form->width()));
        alto = EscalaY(float(form->height()));
    } else {
        CalcularFactores(float(form->width()), float(form->height()), float(AnchoUtil()),
                         float(AltoUtil()), ancho, alto, tppX, tppY);
    }

    const bool visible = form->isVisible();
    if (visible)
        form->hide();

    const QSize tamano(redondo(EscalaX(float(form->width()))),
                       redondo(EscalaY(float(form->height()))));
    escalarLimites(form);
    form->move(0, 0);
    form->resize(tamano);

    // New fonts are worked out from the fonts as they stand, before any is set, so a control
    // that inherits its font from a scaled container is not scaled twice.
    const QList<QWidget *> controles = controlesDe(form);
    QList<QFont> fuentes;
    fuentes.reserve(controles.size());
    for (QWidget *w : controles)
        fuentes.append(fuenteEscalada(w));

    for (qsizetype i = 0; i < controles.size(); ++i) {
        QWidget *w = controles[i];
        try {
            if (!enLayout(w)) {
                const QRect g = w->geometry();
                escalarLimites(w);
                w->setGeometry(redondo(EscalaIzquierda(float(g.x()), tppX)),
                               redondo(EscalaY(float(g.y()))),
                               redondo(EscalaX(float(g.width()))),
                               redondo(EscalaY(float(g.height()))));
            }
            w->setFont(fuentes[i]);
            escalarColumnas(w);
        } catch (...) {
            // A control that cannot be scaled keeps its design; the window still loads.
        }
    }

    if (visible)
        form->show();
    form->update();
}

void Redimensionar(QWidget *form, bool reutilizar)
{
    float ancho = 0.0f;
    float alto = 0.0f;
    Redimensionar(form, ancho, alto, reutilizar);
}

void Centrar(QWidget *form)
{
    if (!form)
        return;
    const QRect area = areaUtilPixeles();
    const QSize marco = form->isWindow() ? form->frameGeometry().size() : form->size();
    const float izquierda = PosicionCentrada(float(AnchoUtil()), float(marco.width()),
                                             float(TwipsPorPixelX()));
    const float arriba = PosicionCentrada(float(AltoUtil()), float(marco.height()),
                                          float(TwipsPorPixelY()));
    // Measured from the work area's own corner, so a task bar on the left or at the top does
    // not push the window off centre.
    form->move(area.x() + redondo(izquierda), area.y() + redondo(arriba));
}

int AnchoUtil()
{
    return int(std::lround(areaUtilPixeles().width() * TwipsPorPixelX()));
}

int AltoUtil()
{
    return int(std::lround(areaUtilPixeles().height() * TwipsPorPixelY()));
}

double TwipsPorPixelX()
{
    return twipsPorPixel(true);
}

double TwipsPorPixelY()
{
    return twipsPorPixel(false);
}

void SimularPantalla(const QRect &areaUtil, double dpiX, double dpiY)
{
    simulada() = PantallaSimulada{true, areaUtil, dpiX, dpiY};
}

void QuitarPantallaSimulada()
{
    simulada() = PantallaSimulada{};
}

} // namespace kvr
