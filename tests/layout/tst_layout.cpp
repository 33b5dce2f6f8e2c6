// The proportional layout on real widgets, offscreen, on a work area of 800 x 600 pixels at 96
// dpi (12000 x 9000 twips, 15 twips a pixel).
#include <kvr/campos.h>
#include <kvr/escala.h>
#include <kvr/layout.h>

#include <QFrame>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QComboBox>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QTableWidget>
#include <QTest>

#include <memory>

using namespace kvr;

// A grid that scales its own columns, as the runtime's grid widget does.
class GridPropio : public QWidget {
    Q_OBJECT
public:
    using QWidget::QWidget;
    int llamadas = 0;
    Q_INVOKABLE void EscalarColumnas() { ++llamadas; }
};

namespace {

QFont fuente(const QString &familia, qreal puntos, bool negrita = false)
{
    QFont f(familia);
    f.setPointSizeF(puntos);
    f.setBold(negrita);
    return f;
}

template<class W>
W *control(QWidget *padre, const char *nombre, QRect g)
{
    auto *w = new W(padre);
    w->setObjectName(QString::fromLatin1(nombre));
    w->setGeometry(g);
    return w;
}

// A window as its design gives it: 400 pixels (6000 twips) wide.
std::unique_ptr<QWidget> formulario(int alto)
{
    auto form = std::make_unique<QWidget>();
    form->setObjectName(QStringLiteral("frmPrueba"));
    form->setFont(fuente(QStringLiteral("DejaVu Sans"), 8));
    form->resize(400, alto);
    form->move(50, 60);
    control<QLabel>(form.get(), "etiNombre", {10, 10, 100, 20})->setFont(fuente(QStringLiteral("DejaVu Sans"), 8, true));
    auto *fija = control<QLabel>(form.get(), "etiFija", {10, 40, 100, 20});
    fija->setFont(fuente(QStringLiteral("DejaVu Serif"), 10));
    PonerTagDe(fija, QStringLiteral("L(10) (FF)"));
    control<QPushButton>(form.get(), "cmdAparcado", {-4000, 10, 50, 20});   // -60000 twips
    control<QPushButton>(form.get(), "cmdCerca", {-2666, 10, 50, 20});      // about -40000 twips
    auto *marco = control<QFrame>(form.get(), "Marco", {200, 10, 150, 80});
    control<QLabel>(marco, "etiDentro", {10, 10, 80, 20});                  // inherits its font
    auto *grid = control<QTableWidget>(form.get(), "Grid", {10, 100, 180, 60});
    grid->setColumnCount(2);
    grid->horizontalHeader()->setStretchLastSection(false);
    grid->setColumnWidth(0, 100);
    grid->setColumnWidth(1, 50);
    control<GridPropio>(form.get(), "GridPropio", {200, 100, 100, 60});
    return form;
}

template<class W = QWidget>
W *hijo(QWidget *form, const char *nombre)
{
    return form->findChild<W *>(QString::fromLatin1(nombre));
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

    void sinFactorNadaCambia_data()
    {
        QTest::addColumn<float>("factor");
        QTest::addColumn<bool>("sinEscalar");
        QTest::newRow("antes de calcular") << 0.0f << false;
        QTest::newRow("SinEscalar levantado") << 1.5f << true;
    }
    void sinFactorNadaCambia()
    {
        QFETCH(float, factor); QFETCH(bool, sinEscalar);
        FactorX = FactorY = factor;
        SinEscalar = sinEscalar;
        auto form = formulario(200);
        float ancho = 7, alto = 9;
        Redimensionar(form.get(), ancho, alto, true);
        QCOMPARE(form->geometry(), QRect(50, 60, 400, 200));
        QCOMPARE(hijo(form.get(), "etiNombre")->geometry(), QRect(10, 10, 100, 20));
        QCOMPARE(hijo(form.get(), "etiNombre")->font().pointSizeF(), 8.0);
        QCOMPARE(hijo<QTableWidget>(form.get(), "Grid")->columnWidth(0), 100);
        QCOMPARE(hijo<GridPropio>(form.get(), "GridPropio")->llamadas, 0);
        QCOMPARE(ancho, 7.0f); // nothing reported either
        QCOMPARE(alto, 9.0f);
    }

    // 6000 twips on 12000 aim at 9000: 1.5 for every position, size, font and column.
    void escalado()
    {
        auto form = formulario(200);
        float a = 0, h = 0;
        Redimensionar(form.get(), a, h, false);
        QCOMPARE(FactorX, 1.5f);
        QCOMPARE(FactorY, 1.5f);
        QCOMPARE(form->geometry(), QRect(0, 0, 600, 300));
        QCOMPARE(hijo(form.get(), "etiNombre")->geometry(), QRect(15, 15, 150, 30));
        QCOMPARE(hijo(form.get(), "etiDentro")->geometry(), QRect(15, 15, 120, 30));
        QCOMPARE(hijo(form.get(), "cmdCerca")->x(), -3999);
        // Parked out of sight below -50000 twips, it stays there: (-4000 + 5000) * 1.5 - 5000.
        QCOMPARE(hijo(form.get(), "cmdAparcado")->x(), -3500);

        const QFont negrita = hijo(form.get(), "etiNombre")->font();
        QCOMPARE(negrita.pointSizeF(), 12.0);
        QVERIFY(negrita.bold());
        // Scaled once, although its frame's font was scaled too.
        QCOMPARE(hijo(form.get(), "etiDentro")->font().pointSizeF(), 12.0);
        QCOMPARE(hijo(form.get(), "Marco")->font().pointSizeF(), 12.0);

        auto *grid = hijo<QTableWidget>(form.get(), "Grid");
        QCOMPARE(grid->columnWidth(0), 150);
        QCOMPARE(grid->columnWidth(1), 75);
        QCOMPARE(hijo<GridPropio>(form.get(), "GridPropio")->llamadas, 1);
        // Qt's own parts of the grid are left to the grid.
        QCOMPARE(grid->viewport()->font().pointSizeF(), 12.0);
    }

    void sinEscalarCalculaYMueve()
    {
        SinEscalar = true;
        auto form = formulario(200);
        Redimensionar(form.get(), false);
        QCOMPARE(FactorX, 1.5f);
        QCOMPARE(form->geometry(), QRect(0, 0, 400, 200));
        QCOMPARE(hijo(form.get(), "etiNombre")->geometry(), QRect(10, 10, 100, 20));
        QCOMPARE(hijo(form.get(), "etiNombre")->font().pointSizeF(), 8.0);
    }

    void ponerFuente()
    {
        auto form = formulario(200);
        PonerFuente(form.get());
        const QString dialogo = FuenteDialogo();
        QVERIFY(!dialogo.isEmpty());
        QCOMPARE(hijo(form.get(), "etiNombre")->font().family(), dialogo);
        QCOMPARE(hijo(form.get(), "etiDentro")->font().family(), dialogo);
        QCOMPARE(hijo(form.get(), "Grid")->font().family(), dialogo);
        QCOMPARE(hijo(form.get(), "etiFija")->font().family(), QStringLiteral("DejaVu Serif"));
        QVERIFY(hijo(form.get(), "etiNombre")->font().bold());

        Redimensionar(form.get(), false);
        const QFont fija = hijo(form.get(), "etiFija")->font();
        QCOMPARE(fija.family(), QStringLiteral("DejaVu Serif"));
        QCOMPARE(fija.pointSizeF(), 15.0);
        QCOMPARE(hijo(form.get(), "etiFija")->geometry(), QRect(15, 60, 150, 30));
    }

    void fijaConservaFamiliaHeredada()
    {
        // A "(FF)" control that only inherits its family keeps it when the window's font changes.
        QWidget form;
        form.setFont(fuente(QStringLiteral("DejaVu Serif"), 9));
        auto *eti = control<QLabel>(&form, "etiHeredada", {0, 0, 50, 20});
        PonerTagDe(eti, QStringLiteral("(FF)"));
        PonerFuente(&form);
        QCOMPARE(form.font().family(), FuenteDialogo());
        QCOMPARE(eti->font().family(), QStringLiteral("DejaVu Serif"));
    }

    // A window built in code without names: its widgets are controls too, but not the inner
    // parts of composite widgets.
    void sinNombre_data()
    {
        QTest::addColumn<QString>("parte");
        QTest::addColumn<bool>("control");
        QTest::newRow("etiqueta") << QStringLiteral("etiqueta") << true;
        QTest::newRow("dentro de un marco") << QStringLiteral("dentro") << true;
        QTest::newRow("contenido de un área") << QStringLiteral("contenido") << true;
        QTest::newRow("combo") << QStringLiteral("combo") << true;
        QTest::newRow("editor del combo") << QStringLiteral("editorCombo") << false;
        QTest::newRow("editor del spin box") << QStringLiteral("editorSpin") << false;
        QTest::newRow("cabecera de tabla") << QStringLiteral("cabecera") << false;
        QTest::newRow("barra del área") << QStringLiteral("barra") << false;
        QTest::newRow("viewport del área") << QStringLiteral("viewport") << false;
    }
    void sinNombre()
    {
        QFETCH(QString, parte); QFETCH(bool, control);
        QWidget form;
        form.setFont(fuente(QStringLiteral("DejaVu Serif"), 8));
        form.resize(400, 200);
        auto *marco = new QFrame(&form);
        marco->setGeometry(200, 10, 150, 80);
        auto *area = new QScrollArea(&form);
        area->setGeometry(10, 100, 100, 60);
        area->setWidget(new QLabel(QStringLiteral("x")));
        auto *combo = new QComboBox(&form);
        combo->setEditable(true);
        combo->setGeometry(120, 100, 60, 20);
        auto *tabla = new QTableWidget(2, 2, &form);
        const QMap<QString, QWidget *> partes{
            {QStringLiteral("etiqueta"), new QLabel(&form)},
            {QStringLiteral("dentro"), new QLabel(marco)},
            {QStringLiteral("contenido"), area->widget()},
            {QStringLiteral("combo"), combo},
            {QStringLiteral("editorCombo"), combo->lineEdit()},
            {QStringLiteral("editorSpin"), (new QSpinBox(&form))->findChild<QLineEdit *>()},
            {QStringLiteral("cabecera"), tabla->horizontalHeader()},
            {QStringLiteral("barra"), area->verticalScrollBar()},
            {QStringLiteral("viewport"), area->viewport()}};
        QWidget *w = partes.value(parte);
        QVERIFY(w);
        w->setGeometry(10, 10, 40, 20);
        PonerFuente(&form);
        QCOMPARE(w->testAttribute(Qt::WA_SetFont), control);
        Redimensionar(&form, false);
        QCOMPARE(w->geometry() == QRect(15, 15, 60, 30), control);
    }

    void tamanoFijo()
    {
        auto form = formulario(200);
        form->setFixedSize(400, 200);
        Redimensionar(form.get(), false);
        QCOMPARE(form->size(), QSize(600, 300));
        QCOMPARE(form->minimumSize(), QSize(600, 300));
        QCOMPARE(form->maximumSize(), QSize(600, 300));
    }

};

QTEST_MAIN(TestLayout)
#include "tst_layout.moc"
