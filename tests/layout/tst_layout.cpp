// The proportional layout on real widgets, offscreen, on a work area of 800 x 600 pixels at 96
// dpi (12000 x 9000 twips, 15 twips a pixel); then the shared routines on real widgets: windows
// shown by name, the focus given back and the mouse-wheel redirection.
#include <kvr/campos.h>
#include <kvr/escala.h>
#include <kvr/layout.h>
#include <kvr/utilidades.h>

#include "comun/pruebas.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QTableWidget>

#include <memory>

using namespace kvr;
using prueba::control;

// A grid that scales its own columns, as the runtime's grid widget does.
class GridPropio : public QWidget {
    Q_OBJECT
public:
    using QWidget::QWidget;
    int llamadas = 0;
    Q_INVOKABLE void EscalarColumnas() { ++llamadas; }
};

namespace {

template<class W = QLabel>
W *nuevo(QWidget *padre, const char *nombre, QRect g, const char *familia = nullptr, int puntos = 0,
         bool negrita = false)
{
    auto *w = new W(padre);
    w->setObjectName(QString::fromLatin1(nombre));
    w->setGeometry(g);
    if (familia)
        w->setFont(QFont(QString::fromLatin1(familia), puntos, negrita ? QFont::Bold : QFont::Normal));
    return w;
}

// A window as its design gives it: 400 x 200 pixels (6000 x 3000 twips) at (50, 60).
std::unique_ptr<QWidget> formulario()
{
    auto form = std::make_unique<QWidget>();
    form->setFont(QFont(QStringLiteral("DejaVu Serif"), 8));
    form->setGeometry(50, 60, 400, 200);
    nuevo(form.get(), "etiNombre", {10, 10, 100, 20}, "DejaVu Serif", 8, true);
    PonerTagDe(nuevo(form.get(), "etiFija", {10, 40, 100, 20}, "DejaVu Sans Mono", 10), u"L(10) (FF)"_qs);
    PonerTagDe(nuevo(form.get(), "etiHeredada", {10, 70, 100, 20}), u"(FF)"_qs); // inherits its family
    nuevo<QPushButton>(form.get(), "cmdAparcado", {-4000, 10, 50, 20});   // -60000 twips
    nuevo<QPushButton>(form.get(), "cmdCerca", {-2666, 10, 50, 20});      // about -40000 twips
    nuevo(nuevo<QFrame>(form.get(), "Marco", {200, 10, 150, 80}), "etiDentro", {10, 10, 80, 20});
    auto *grid = nuevo<QTableWidget>(form.get(), "Grid", {10, 100, 180, 60});
    grid->setColumnCount(2);
    grid->horizontalHeader()->setStretchLastSection(false);
    grid->setColumnWidth(0, 100);
    grid->setColumnWidth(1, 50);
    nuevo<GridPropio>(form.get(), "GridPropio", {200, 100, 100, 60});
    return form;
}

// "x,y wxh size" of the window and of the controls named, "|" between; then the grid's column
// widths and how often the grid that scales itself was asked to.
QString medidas(QWidget *form, std::initializer_list<const char *> nombres)
{
    const auto de = [](const QWidget *w) {
        const QRect g = w->geometry();
        return QStringLiteral("%1,%2 %3x%4 %5").arg(g.x()).arg(g.y()).arg(g.width()).arg(g.height())
            .arg(w->font().pointSizeF());
    };
    QStringList r{de(form)};
    for (const char *n : nombres)
        r << de(control(form, n));
    auto *grid = control<QTableWidget>(form, "Grid");
    r << QStringLiteral("columnas %1 %2 propio %3").arg(grid->columnWidth(0)).arg(grid->columnWidth(1))
             .arg(control<GridPropio>(form, "GridPropio")->llamadas);
    return r.join(u'|');
}

} // namespace

class TestLayout : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        FactorX = FactorY = 0.0f;
        SinEscalar = false;
        SimularPantalla(QRect(0, 0, 800, 600));
    }
    void cleanupTestCase() { QuitarPantallaSimulada(); }

    // 6000 twips on 12000 aim at 9000: 1.5 for every position, size, font and column, and the
    // limits of a fixed-size window. A parked control stays parked, one near the limit scales.
    // The dialog font's family goes to every control but the "(FF)" ones, which keep theirs, set
    // or inherited; their size still scales.
    void escalado()
    {
        auto form = formulario();
        form->setFixedSize(400, 200);
        PonerFuente(form.get());
        Redimensionar(form.get(), false);
        QCOMPARE(FactorY, 1.5f);
        QCOMPARE(medidas(form.get(), {"etiNombre", "Marco", "etiDentro", "cmdCerca", "cmdAparcado", "etiFija"}),
                 u"0,0 600x300 8|15,15 150x30 12|300,15 225x120 12|15,15 120x30 12|-3999,15 75x30 12|"
                 "-3500,15 75x30 12|15,60 150x30 15|columnas 150 75 propio 1"_qs);
        QCOMPARE(form->minimumSize(), QSize(600, 300));
        QCOMPARE(form->maximumSize(), QSize(600, 300));
        QVERIFY(control(form.get(), "etiNombre")->font().bold());
        // Qt's own parts of the grid are left to the grid.
        QCOMPARE(control<QTableWidget>(form.get(), "Grid")->viewport()->font().pointSizeF(), 12.0);
        const QString dialogo = FuenteDialogo();
        QVERIFY(dialogo != u"DejaVu Serif");
        QStringList familias;
        for (const char *n : {"etiNombre", "etiDentro", "Grid", "etiFija", "etiHeredada"})
            familias << control(form.get(), n)->font().family().replace(dialogo, u"diálogo"_qs);
        QCOMPARE(familias.join(u'|'), u"diálogo|diálogo|diálogo|DejaVu Sans Mono|DejaVu Serif"_qs);
    }

    // With SinEscalar a reused factor changes nothing and reports nothing; a new one is worked out
    // and the window goes to the corner at its design size (a grid that scales itself is asked).
    void sinEscalar()
    {
        FactorX = FactorY = 1.5f;
        SinEscalar = true;
        auto form = formulario();
        float ancho = 7, alto = 9;
        Redimensionar(form.get(), ancho, alto, true);
        QCOMPARE(medidas(form.get(), {"etiNombre"}), u"50,60 400x200 8|10,10 100x20 8|columnas 100 50 propio 0"_qs);
        QCOMPARE(QSizeF(ancho, alto), QSizeF(7, 9));
        FactorX = FactorY = 0.0f;
        Redimensionar(form.get(), false);
        QCOMPARE(FactorX, 1.5f);
        QCOMPARE(medidas(form.get(), {"etiNombre"}), u"0,0 400x200 8|10,10 100x20 8|columnas 100 50 propio 1"_qs);
    }

    // A window built in code without names: its widgets are controls too (their font and
    // geometry set: "fg"), but not the inner parts of composite widgets ("--").
    void sinNombre()
    {
        QWidget form;
        form.resize(400, 200);
        auto *area = new QScrollArea(&form);
        area->setWidget(new QLabel(QStringLiteral("x")));
        auto *combo = new QComboBox(&form);
        combo->setEditable(true);
        const QList<std::pair<QString, QWidget *>> partes{
            {u"dentro"_qs, new QLabel(new QFrame(&form))},
            {u"contenido"_qs, area->widget()},
            {u"combo"_qs, combo},
            {u"editorCombo"_qs, combo->lineEdit()},
            {u"editorSpin"_qs, (new QSpinBox(&form))->findChild<QLineEdit *>()},
            {u"cabecera"_qs, (new QTableWidget(2, 2, &form))->horizontalHeader()},
            {u"barra"_qs, area->verticalScrollBar()},
            {u"viewport"_qs, area->viewport()}};
        for (const auto &[nombre, w] : partes)
            w->setGeometry(10, 10, 40, 20);
        PonerFuente(&form);
        Redimensionar(&form, false);
        QStringList vistos;
        for (const auto &[nombre, w] : partes)
            vistos << nombre + u':' + (w->testAttribute(Qt::WA_SetFont) ? u'f' : u'-')
                          + (w->geometry() == QRect(15, 15, 60, 30) ? u'g' : u'-');
        QCOMPARE(vistos.join(u' '), u"dentro:fg contenido:fg combo:fg editorCombo:-- editorSpin:-- cabecera:-- "
                                    "barra:-- viewport:--"_qs);
    }

    // The second time the window already loaded is shown and brought forward; a name nobody
    // registered opens nothing.
    void mostrarUnaSolaVez()
    {
        static int creadas = 0;
        RegistrarVentana(u"VentanaPrueba"_qs, [] {
            ++creadas;
            return new QWidget;
        });
        std::unique_ptr<QWidget> w(AbrirVentana(u"VentanaPrueba"_qs));
        QVERIFY(w && w->isVisible());
        QWidget otra;
        QVERIFY(prueba::mostrarActiva(&otra));
        w->hide();
        QCOMPARE(AbrirVentana(u"VentanaPrueba"_qs), w.get());
        QVERIFY(QTest::qWaitForWindowActive(w.get()));
        QCOMPARE(creadas, 1);
        QCOMPARE(AbrirVentana(u"NoExiste"_qs), nullptr);
    }

    void devolverFoco()
    {
        QWidget w;
        auto *a = new QLineEdit(&w);
        auto *b = new QLineEdit(&w);
        auto *apagado = new QLineEdit(&w);
        apagado->setEnabled(false);
        QVERIFY(prueba::mostrarActiva(&w));
        b->setFocus();
        DevolverFoco(a);
        DevolverFoco(apagado);
        DevolverFoco(nullptr); // an empty reference is ignored
        QVERIFY(a->hasFocus());
    }

    // A wheel over another control scrolls the grid that has the focus, once; with the focus on a
    // plain field there is nothing to redirect to. Activation does not stack: one deactivation
    // undoes any number of them, and a further one is harmless.
    void ruedaRedirigida()
    {
        QWidget ventana;
        ventana.resize(300, 300);
        auto *campo = new QLineEdit(&ventana);
        auto *grid = new QTableWidget(200, 2, &ventana);
        grid->setGeometry(10, 40, 280, 200);
        QVERIFY(prueba::mostrarActiva(&ventana));
        grid->setFocus();
        // Where the grid stands after one wheel notch down over `sobre`.
        const auto bajar = [grid](QWidget *sobre) {
            QWheelEvent e(QPointF(5, 5), sobre->mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, -120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(sobre, &e);
            return grid->verticalScrollBar()->value();
        };
        QCOMPARE(bajar(campo), 0);
        Subclasificar(&ventana);
        Subclasificar(&ventana);
        QVERIFY(Subclasificada(&ventana));
        const int unPaso = bajar(campo);
        QVERIFY(unPaso > 0);
        QCOMPARE(bajar(grid->viewport()), 2 * unPaso);
        campo->setFocus();
        QCOMPARE(bajar(campo), 2 * unPaso);
        grid->setFocus();
        Desclasificar(&ventana);
        QVERIFY(!Subclasificada(&ventana));
        Desclasificar(&ventana);
        QCOMPARE(bajar(campo), 2 * unPaso);
    }
};

QTEST_MAIN(TestLayout)
#include "tst_layout.moc"
