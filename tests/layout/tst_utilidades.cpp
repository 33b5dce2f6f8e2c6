// Shared routines on real widgets: showing windows by name, giving the focus back and the
// mouse-wheel redirection.
#include <kvr/utilidades.h>

#include "comun/ficheros.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QTableWidget>
#include <QTest>

using namespace kvr;

namespace {

// How many windows each factory has made.
QHash<QString, int> g_creadas;

void registrar(const QString &nombre)
{
    RegistrarVentana(nombre, [nombre] {
        ++g_creadas[nombre];
        auto *w = new QWidget;
        w->setObjectName(nombre);
        w->setAttribute(Qt::WA_DeleteOnClose);
        w->resize(200, 100);
        return w;
    });
}

// A host window whose KeyUp handler calls the global keys.
class VentanaHost : public QWidget {
public:
    explicit VentanaHost(const QString &nombre) { setObjectName(nombre); resize(200, 100); }
protected:
    void keyReleaseEvent(QKeyEvent *e) override { TeclasGlobales(e, this); }
};

void rueda(QWidget *w, int pasos)
{
    const QPointF pos(5, 5);
    QWheelEvent e(pos, w->mapToGlobal(pos), QPoint(), QPoint(0, -120 * pasos), Qt::NoButton,
                  Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(w, &e);
}

// A window with a text field and a long grid below it.
struct VentanaConGrid {
    QWidget ventana;
    QLineEdit *campo;
    QTableWidget *grid;
    VentanaConGrid()
    {
        ventana.setObjectName(QStringLiteral("Telefonos"));
        ventana.resize(300, 300);
        campo = new QLineEdit(&ventana);
        campo->setObjectName(QStringLiteral("CampoBuscar"));
        campo->setGeometry(10, 10, 200, 24);
        grid = new QTableWidget(200, 2, &ventana);
        grid->setObjectName(QStringLiteral("Telfs"));
        grid->setGeometry(10, 40, 280, 200);
        ventana.show();
        QVERIFY(QTest::qWaitForWindowExposed(&ventana));
        grid->setFocus();
        QApplication::processEvents();
    }
};

} // namespace

class TestUtilidades : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        registrar(QStringLiteral("MiCalc"));
        registrar(QStringLiteral("Telefonos"));
        registrar(QStringLiteral("VentanaPrueba"));
    }
    void cleanup()
    {
        for (QWidget *w : QApplication::topLevelWidgets())
            if (g_creadas.contains(w->objectName()))
                delete w;
        g_creadas.clear();
    }

    void mostrarUnaSolaVez()
    {
        QWidget *w = AbrirVentana(QStringLiteral("VentanaPrueba"));
        QVERIFY(w);
        QVERIFY(w->isVisible());
        QCOMPARE(g_creadas.value(QStringLiteral("VentanaPrueba")), 1);

        VentanaHost otra(QStringLiteral("Otra"));
        otra.show();
        otra.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&otra));
        w->hide();

        // The second time the window already loaded is shown and brought forward.
        QCOMPARE(AbrirVentana(QStringLiteral("VentanaPrueba")), w);
        QVERIFY(QTest::qWaitForWindowActive(w));
        QVERIFY(w->isVisible());
        QCOMPARE(g_creadas.value(QStringLiteral("VentanaPrueba")), 1);
        // A name nobody registered opens nothing.
        QCOMPARE(AbrirVentana(QStringLiteral("NoExiste")), nullptr);
    }

    void devolverFoco()
    {
        QWidget w;
        auto *a = new QLineEdit(&w);
        auto *b = new QLineEdit(&w);
        auto *apagado = new QLineEdit(&w);
        apagado->setEnabled(false);
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        b->setFocus();
        DevolverFoco(a);
        QVERIFY(a->hasFocus());
        DevolverFoco(apagado);
        QVERIFY(a->hasFocus());
        DevolverFoco(nullptr); // an empty reference is ignored
        QVERIFY(a->hasFocus());
    }

    void ruedaRedirigida()
    {
        VentanaConGrid v;
        QScrollBar *barra = v.grid->verticalScrollBar();
        QVERIFY(barra->maximum() > 0);
        QVERIFY(v.grid->hasFocus());

        // Without the redirection a wheel over the text field does not move the grid.
        rueda(v.campo, 1);
        QCOMPARE(barra->value(), 0);

        Subclasificar(&v.ventana);
        QVERIFY(Subclasificada(&v.ventana));
        rueda(v.campo, 1);
        const int unPaso = barra->value();
        QVERIFY(unPaso > 0);

        // Over the grid itself the wheel scrolls it once, not twice.
        rueda(v.grid->viewport(), 1);
        QCOMPARE(barra->value(), 2 * unPaso);

        // The focus on a plain field: nothing to redirect to.
        v.campo->setFocus();
        rueda(v.campo, 1);
        QCOMPARE(barra->value(), 2 * unPaso);
        Desclasificar(&v.ventana);
        QVERIFY(!Subclasificada(&v.ventana));
    }

    void subclasificarNoSeApila()
    {
        VentanaConGrid v;
        QScrollBar *barra = v.grid->verticalScrollBar();
        Subclasificar(&v.ventana);
        Subclasificar(&v.ventana);
        Desclasificar(&v.ventana);
        QVERIFY(!Subclasificada(&v.ventana));
        rueda(v.campo, 1);
        QCOMPARE(barra->value(), 0);
        // Repeated activation and deactivation always ends as it began.
        for (int i = 0; i < 3; ++i) {
            Subclasificar(&v.ventana);
            Desclasificar(&v.ventana);
        }
        Desclasificar(&v.ventana);
        rueda(v.campo, 1);
        QCOMPARE(barra->value(), 0);
    }

    void ventanaDestruida()
    {
        auto *v = new VentanaConGrid;
        Subclasificar(&v->ventana);
        const QWidget *direccion = &v->ventana;
        delete v;
        QVERIFY(!Subclasificada(direccion));
        // A new window works normally afterwards.
        VentanaConGrid nueva;
        Subclasificar(&nueva.ventana);
        rueda(nueva.campo, 1);
        QVERIFY(nueva.grid->verticalScrollBar()->value() > 0);
        Desclasificar(&nueva.ventana);
    }
};

QTEST_MAIN(TestUtilidades)
#include "tst_utilidades.moc"
