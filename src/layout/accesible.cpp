// How the runtime's windows read to a screen reader where Qt's own accessible interfaces fall
// short:
// - a window built on a plain QWidget (calculator, phone book, table editor, progress, and a
//   host's forms built the same way) is a window with its title, where Qt would expose a nameless
//   client area ("filler"): a factory installed when the library loads answers for those classes,
//   which Qt's own does not know;
// - a label showing a live value (the calculator's display) reads as read-only text, so a reader
//   can move through it, and hears each new value from the text updates its window sends;
// - the caption strip a frameless box paints for itself is its title bar, not a label that
//   would make the reader say the title twice;
// - a drop-down list is named by its label, its choice is its value.
// Qt's factory answers for every QLabel and QComboBox before any installed later, so those
// interfaces are put in Qt's cache by hand, in place of any made before (setting a text makes one).
#include <kvr/accesible.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QComboBox>
#include <QFontMetrics>
#include <QLabel>
#include <QWidget>

namespace kvr {

namespace {

class ValorAccesible : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit ValorAccesible(QLabel *etiqueta) : QAccessibleWidget(etiqueta, QAccessible::EditableText) {}

    QString text(QAccessible::Text t) const override
    {
        return t == QAccessible::Value ? valor() : QAccessibleWidget::text(t);
    }
    QAccessible::State state() const override
    {
        QAccessible::State s = QAccessibleWidget::state();
        s.readOnly = true;
        s.editable = false;
        return s;
    }
    void *interface_cast(QAccessible::InterfaceType t) override
    {
        if (t == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface *>(this);
        return QAccessibleWidget::interface_cast(t);
    }

    // Read-only text with no selection; the caret sits after the last character.
    void selection(int, int *inicio, int *fin) const override { *inicio = *fin = 0; }
    int selectionCount() const override { return 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    int cursorPosition() const override { return int(valor().size()); }
    void setCursorPosition(int) override {}
    QString text(int inicio, int fin) const override { return valor().mid(inicio, fin - inicio); }
    int characterCount() const override { return int(valor().size()); }
    QRect characterRect(int posicion) const override
    {
        const QLabel *e = etiqueta();
        const QString v = valor();
        if (posicion < 0 || posicion >= v.size())
            return {};
        // The display's text is aligned to the right of its frame, less the label's margin.
        const QFontMetrics fm(e->font());
        const QRect area = e->contentsRect().adjusted(e->margin(), e->margin(), -e->margin(), -e->margin());
        const int x = area.right() + 1 - fm.horizontalAdvance(v) + fm.horizontalAdvance(v.left(posicion));
        const QRect r(x, area.center().y() - fm.height() / 2, fm.horizontalAdvance(v.at(posicion)), fm.height());
        return QRect(e->mapToGlobal(r.topLeft()), r.size());
    }
    int offsetAtPoint(const QPoint &punto) const override
    {
        for (int i = 0; i < characterCount(); ++i)
            if (characterRect(i).contains(punto))
                return i;
        return -1;
    }
    void scrollToSubstring(int, int) override {}
    QString attributes(int, int *inicio, int *fin) const override
    {
        *inicio = 0;
        *fin = characterCount();
        return {};
    }

private:
    QLabel *etiqueta() const { return static_cast<QLabel *>(widget()); }
    QString valor() const { return etiqueta()->text(); }
};

// The caption strip: the window's title bar says the title already, so the strip is kept from a
// reader (it is drawn, not read).
class FranjaAccesible : public QAccessibleWidget {
public:
    explicit FranjaAccesible(QLabel *franja) : QAccessibleWidget(franja, QAccessible::TitleBar) {}
    QString text(QAccessible::Text t) const override
    {
        return t == QAccessible::Name ? static_cast<QLabel *>(widget())->text() : QAccessibleWidget::text(t);
    }
    QAccessible::State state() const override
    {
        QAccessible::State s = QAccessibleWidget::state();
        s.invisible = true;
        return s;
    }
};

// A drop-down list named by its accessible name or its label, its choice being its value (on
// Linux Qt names a combo box by its current text). Its one child is the list of choices, which
// lives in the pop-up's own window.
class ListaAccesible : public QAccessibleWidget {
public:
    explicit ListaAccesible(QComboBox *lista) : QAccessibleWidget(lista, QAccessible::ComboBox) {}

    QString text(QAccessible::Text t) const override
    {
        return t == QAccessible::Value ? lista()->currentText() : QAccessibleWidget::text(t);
    }
    QAccessible::State state() const override
    {
        QAccessible::State s = QAccessibleWidget::state();
        s.expandable = true;
        s.expanded = lista()->view()->isVisible();
        return s;
    }
    int childCount() const override { return 1; }
    QAccessibleInterface *child(int indice) const override
    {
        return indice == 0 ? QAccessible::queryAccessibleInterface(lista()->view()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *hijo) const override
    {
        return hijo && hijo->object() == lista()->view() ? 0 : -1;
    }
    QStringList actionNames() const override
    {
        return QStringList{QAccessibleActionInterface::showMenuAction()} + QAccessibleWidget::actionNames();
    }
    void doAction(const QString &accion) override
    {
        if (accion == QAccessibleActionInterface::showMenuAction()
            || accion == QAccessibleActionInterface::pressAction())
            lista()->showPopup();
        else
            QAccessibleWidget::doAction(accion);
    }

private:
    QComboBox *lista() const { return static_cast<QComboBox *>(widget()); }
};

QAccessibleInterface *fabrica(const QString &clase, QObject *objeto)
{
    if (!objeto || !objeto->isWidgetType())
        return nullptr;
    auto *w = static_cast<QWidget *>(objeto);
    // Asked first by the most derived class: a window class right on top of QWidget (the
    // runtime's, or a host's form built the same way), which Qt's factory does not know.
    const QMetaObject *meta = w->metaObject();
    if (w->isWindow() && clase == QLatin1String(meta->className())
        && meta->superClass() == &QWidget::staticMetaObject)
        return new QAccessibleWidget(w, QAccessible::Window);
    return nullptr;
}

[[maybe_unused]] const bool g_instalada = (QAccessible::installFactory(fabrica), true);

void sustituir(QAccessibleInterface *nueva)
{
    if (QAccessibleInterface *vieja = QAccessible::queryAccessibleInterface(nueva->object()))
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(vieja));
    QAccessible::registerAccessibleInterface(nueva);
}

} // namespace

void AccesibleComoValor(QLabel *etiqueta)
{
    if (etiqueta)
        sustituir(new ValorAccesible(etiqueta));
}

void AnunciarValor(QLabel *etiqueta, const QString &antes)
{
    if (!etiqueta || !QAccessible::isActive() || etiqueta->text() == antes)
        return;
    QAccessibleTextUpdateEvent cambio(etiqueta, 0, antes, etiqueta->text());
    QAccessible::updateAccessibility(&cambio);
}

void AccesibleComoTitulo(QLabel *franja)
{
    if (franja)
        sustituir(new FranjaAccesible(franja));
}

void AccesibleComoLista(QComboBox *lista)
{
    if (lista)
        sustituir(new ListaAccesible(lista));
}

} // namespace kvr
