// The grid widget over its model, with the item-model tester attached: titles in the header,
// widths in twips, alignments, bold marks, hidden rows, real mouse clicks and the deferred redraw.
#include <kvr/escala.h>
#include <kvr/mivisor.h>
#include <kvr/visorrejilla.h>

#include "comun/pruebas.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QSignalSpy>
#include <QtTest>

using namespace kvr;

namespace {

void cargarAgenda(VisorRejilla &v)
{
    CargarVisor(v.rejilla(), u";Nombre#34;Teléfono#18>;<Fax#8=;eMail#25"_qs);
    const QStringList filas{u"\tAna\t600111222\t\tana@ejemplo.es"_qs, u"\tbea\t600333444\t91\tbea@ejemplo.es"_qs,
                            u"\tCarlos\t600555666\t\tcarlos@ejemplo.es"_qs};
    for (int i = 0; i < filas.size(); ++i) {
        const QStringList celdas = filas[i].split(u'\t');
        for (int c = 0; c < celdas.size(); ++c)
            PonerCelda(v.rejilla(), i + 1, c, celdas[c]);
    }
}

} // namespace

class TstVisorRejilla : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        FactorX = FactorY = 0.0f;
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    }

    void aspecto()
    {
        VisorRejilla v;
        QAbstractItemModelTester tester(v.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        v.rejilla().PonerFixedCols(0);
        cargarAgenda(v);
        v.resize(800, 300);
        v.show();
        QCoreApplication::processEvents();
        QAbstractItemModel *m = v.model();
        QCOMPARE(m->rowCount(), 3);
        QCOMPARE(m->columnCount(), 5);
        QCOMPARE(m->headerData(1, Qt::Horizontal).toString(), u"Nombre"_qs);
        QCOMPARE(m->index(1, 1).data().toString(), u"bea"_qs);
        // Widths: twips at the logical dpi; the untitled first column is hidden.
        QVERIFY(v.isColumnHidden(0));
        QCOMPARE(v.columnWidth(1), int(std::lround(34 * 120 * v.logicalDpiX() / 1440.0)));
        QCOMPARE(v.columnWidth(4), v.pixeles(25 * 120));
        // Alignments of cells and titles.
        const auto alin = [&](int f, int c) { return m->index(f, c).data(Qt::TextAlignmentRole).value<Qt::Alignment>(); };
        const auto alinTitulo = [&](int c) { return m->headerData(c, Qt::Horizontal, Qt::TextAlignmentRole).value<Qt::Alignment>(); };
        QCOMPARE(alin(0, 1), Qt::AlignLeft | Qt::AlignVCenter);
        QCOMPARE(alin(0, 2), Qt::AlignRight | Qt::AlignVCenter);
        QCOMPARE(alin(0, 3), Qt::AlignHCenter | Qt::AlignVCenter);
        QCOMPARE(alinTitulo(1), Qt::AlignHCenter | Qt::AlignVCenter);
        QCOMPARE(alinTitulo(3), Qt::AlignLeft | Qt::AlignVCenter);
        // Bold cells and the sort's title mark.
        v.rejilla().PonerNegritaCelda(2, 1, true);
        QVERIFY(m->index(1, 1).data(Qt::FontRole).value<QFont>().bold());
        QVERIFY(!m->index(0, 1).data(Qt::FontRole).isValid());
        OrdenarVisor(v.rejilla(), 2, true);
        QVERIFY(m->headerData(2, Qt::Horizontal, Qt::FontRole).value<QFont>().bold());
        QVERIFY(!m->headerData(1, Qt::Horizontal, Qt::FontRole).value<QFont>().bold());
        QVERIFY(v.isVisible()); // shown again after the sort
        // Hidden rows follow RowHeight: a row of height 0 leaves the view, rows after it move up,
        // and it comes back in its place; under Redraw off the same comes with the one reset.
        const int filas = m->rowCount();
        v.rejilla().PonerRowHeight(2, 0);
        QCOMPARE(m->rowCount(), filas - 1);
        QCOMPARE(v.modeloRejilla()->filaVista(2), -1);
        QCOMPARE(v.modeloRejilla()->filaRejilla(1), 3);
        v.rejilla().PonerRowHeight(2, -1);
        QCOMPARE(m->rowCount(), filas);
        QCOMPARE(v.modeloRejilla()->filaRejilla(1), 2);
        v.rejilla().PonerRedraw(false);
        v.rejilla().PonerRowHeight(1, 0);
        v.rejilla().PonerRowHeight(3, 0);
        QCOMPARE(m->rowCount(), filas);
        v.rejilla().PonerRedraw(true);
        QCOMPARE(m->rowCount(), filas - 2);
        QCOMPARE(v.modeloRejilla()->filaRejilla(0), 2);
        v.rejilla().PonerRowHeight(1, -1);
        v.rejilla().PonerRowHeight(3, -1);
        // The layout's scaling through the invokable method.
        FactorX = FactorY = 2.0f;
        QVERIFY(QMetaObject::invokeMethod(&v, "EscalarColumnas"));
        QCOMPARE(v.rejilla().ColWidth(1), 34 * 240);
        QCOMPARE(v.rejilla().ColWidth(0), 0);
        QCOMPARE(v.columnWidth(1), v.pixeles(34 * 240));
    }

    // The signals a gesture gives, in order, then the cell under the mouse and the current cell.
    void raton_data()
    {
        QTest::addColumn<QString>("gesto");
        QTest::addColumn<int>("filaVista"); // -1: the header
        QTest::addColumn<int>("col");
        QTest::addColumn<QString>("visto");
        QTest::newRow("clic en celda") << u"clic"_qs << 1 << 2 << u"Click 2,2 | ratón 2,2 actual 2,2"_qs;
        QTest::newRow("clic en título") << u"clic"_qs << -1 << 1 << u"Click 0,1 | ratón 0,1 actual 1,1"_qs;
        QTest::newRow("derecho no mueve") << u"derecho"_qs << 2 << 3
                                          << u"ClickDerecho 3,3 | ratón 3,3 actual 1,1"_qs;
        QTest::newRow("doble clic") << u"doble"_qs << 1 << 1 << u"DobleClick 2,1 | ratón 2,1 actual 2,1"_qs;
    }
    void raton()
    {
        QFETCH(QString, gesto);
        QFETCH(int, filaVista);
        QFETCH(int, col);
        QFETCH(QString, visto);
        VisorRejilla v;
        v.rejilla().PonerFixedCols(0);
        cargarAgenda(v);
        v.resize(900, 300);
        v.show();
        QCoreApplication::processEvents();
        v.rejilla().PonerRow(1);
        v.rejilla().PonerCol(1);
        QStringList senales;
        const auto anotar = [&](const char *nombre) {
            return [&senales, nombre](int f, int c) { senales << u"%1 %2,%3"_qs.arg(QLatin1String(nombre)).arg(f).arg(c); };
        };
        connect(&v, &VisorRejilla::Click, anotar("Click"));
        connect(&v, &VisorRejilla::ClickDerecho, anotar("ClickDerecho"));
        connect(&v, &VisorRejilla::DobleClick, anotar("DobleClick"));
        QHeaderView *titulos = v.horizontalHeader();
        if (filaVista < 0)
            QTest::mouseClick(titulos->viewport(), Qt::LeftButton, {},
                              QPoint(titulos->sectionViewportPosition(col) + 5, titulos->height() / 2));
        else if (gesto == u"doble")
            QTest::mouseDClick(v.viewport(), Qt::LeftButton, {}, v.visualRect(v.model()->index(filaVista, col)).center());
        else
            prueba::clicCelda(&v, filaVista, col, gesto == u"derecho" ? Qt::RightButton : Qt::LeftButton);
        QCOMPARE(senales.join(u' ') + u" | ratón %1,%2 actual %3,%4"_qs.arg(v.MouseRow()).arg(v.MouseCol())
                     .arg(v.rejilla().Row()).arg(v.rejilla().Col()), visto);
    }

    void redrawAplazado()
    {
        VisorRejilla v;
        QAbstractItemModelTester tester(v.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        cargarAgenda(v);
        v.show();
        QCoreApplication::processEvents();
        QSignalSpy reinicio(v.model(), &QAbstractItemModel::modelReset);
        Rejilla &r = v.rejilla();
        r.PonerRedraw(false);
        for (int i = 0; i < 500; ++i)
            r.AddItem(u"\tNombre %1"_qs.arg(i));
        r.RemoveItem(1);
        QCOMPARE(v.model()->rowCount(), 3); // what the view was told
        QCoreApplication::processEvents();  // a paint now must not reach past the told rows
        r.PonerRedraw(true);
        QCOMPARE(reinicio.size(), 1);
        QCOMPARE(v.model()->rowCount(), 502);
        QCOMPARE(v.model()->index(501, 1).data().toString(), u"Nombre 499"_qs);
        // Structural changes with Redraw on reach the view one by one.
        r.AddItem(u"\tprimero"_qs, 1);
        r.PonerCols(6);
        r.PonerTextMatrix(0, 5, u"Nueva"_qs);
        QCOMPARE(v.model()->headerData(5, Qt::Horizontal).toString(), u"Nueva"_qs);
        QCOMPARE(v.model()->index(0, 1).data().toString(), u"primero"_qs);
        QCOMPARE(reinicio.size(), 1);
    }

};

QTEST_MAIN(TstVisorRejilla)
#include "tst_visorrejilla.moc"
