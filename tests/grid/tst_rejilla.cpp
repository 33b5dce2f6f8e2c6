// The grid model and the MiVisor helpers over it: rows and cells, AddItem/RemoveItem/Clip, the
// sort modes and their stability, the change notices a view follows (deferred while Redraw is
// off); descriptor lines, cells and running totals, blanking and removing rows, the column search
// and its message, and the sorts by text, date and amount. Then the grid widget over its model,
// with the item-model tester attached: titles in the header, widths in twips, alignments, bold
// marks, hidden rows, real mouse clicks and the deferred redraw.
#include <kvr/error.h>
#include <kvr/escala.h>
#include <kvr/mivisor.h>
#include <kvr/rejilla.h>
#include <kvr/visorrejilla.h>

#include "comun/pruebas.h"
#include "registro.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QSignalSpy>
#include <QtTest>

#include <functional>

using namespace kvr;
using prueba::errorDe;

using Accion = std::function<void(Rejilla &)>;
Q_DECLARE_METATYPE(Accion)

namespace {

// A grid with one fixed title row and the data rows given as TAB-separated texts.
void llenar(Rejilla &r, int cols, const QStringList &filas)
{
    r.PonerFixedCols(0);
    r.PonerCols(cols);
    r.PonerRows(1);
    for (const QString &f : filas)
        r.AddItem(f);
}

// The data rows of a grid (or of one column) as one compact text: cells joined by "," and rows
// by "|".
QString datos(const Rejilla &r, int columna = -1)
{
    QStringList filas;
    for (int f = r.FixedRows(); f < r.Rows(); ++f) {
        QStringList celdas;
        for (int c = 0; c < r.Cols(); ++c)
            if (columna < 0 || c == columna)
                celdas << r.TextMatrix(f, c);
        filas << celdas.join(u',');
    }
    return filas.join(u'|');
}

struct Registro : OyenteRejilla {
    QStringList avisos;
    void antesDeReiniciar() override { avisos << u"antesReinicio"_qs; }
    void reiniciada() override { avisos << u"reinicio"_qs; }
    void antesDeInsertarFilas(int a, int b) override { avisos << u"insertar %1-%2"_qs.arg(a).arg(b); }
    void antesDeQuitarFilas(int a, int b) override { avisos << u"quitar %1-%2"_qs.arg(a).arg(b); }
    void celdasCambiadas(int f0, int c0, int f1, int c1) override
    {
        avisos << u"celdas %1,%2-%3,%4"_qs.arg(f0).arg(c0).arg(f1).arg(c1);
    }
};

// Sets the current cell and the selection's other corner.
void seleccionar(Rejilla &r, int fila, int col, int filaSel, int colSel)
{
    r.PonerRow(fila);
    r.PonerCol(col);
    r.PonerRowSel(filaSel);
    r.PonerColSel(colSel);
}

} // namespace

class TstRejilla : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        FactorX = FactorY = 0.0f;
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    }

    void ordenar_data()
    {
        // Column 0 is the key, column 1 the row's original position (to see stability).
        QTest::addColumn<int>("modo");
        QTest::addColumn<QStringList>("claves");
        QTest::addColumn<QString>("orden");
        const QStringList mayus{u"ana"_qs, u"Bea"_qs, u"Ana"_qs, u"bea"_qs, u"ANA"_qs};
        QTest::newRow("sin mayúsculas asc estable") << 5 << mayus << u"0|2|4|1|3"_qs;
        QTest::newRow("sin mayúsculas desc estable") << 6 << mayus << u"1|3|0|2|4"_qs;
        QTest::newRow("con mayúsculas: minúscula antes") << 7 << mayus << u"0|2|4|3|1"_qs;
        const QStringList acentos{u"Ñu"_qs, u"Oso"_qs, u"nube"_qs, u"Álvaro"_qs, u"alba"_qs, u"Zoe"_qs};
        QTest::newRow("ñ tras n, á con a") << 5 << acentos << u"4|3|2|0|1|5"_qs;
        const QStringList numeros{u"10"_qs, u"9"_qs, u"-2,5"_qs, u"abc"_qs, QString(), u"1.000"_qs};
        QTest::newRow("genérico: vacío, números, texto") << 1 << numeros << u"4|2|1|0|5|3"_qs;
        QTest::newRow("genérico desc") << 2 << numeros << u"3|5|0|1|2|4"_qs;
        QTest::newRow("numérico: texto vale 0") << 3 << numeros << u"2|3|4|1|0|5"_qs;
        QTest::newRow("numérico desc estable") << 4 << numeros << u"5|0|1|3|4|2"_qs;
        QTest::newRow("modo 0 no ordena") << 0 << mayus << u"0|1|2|3|4"_qs;
        const QStringList largos = u"García López, María|García López, Mario|garcía lópez, maría|García Lopez, Zoe"_qs
                                       .split(u'|');
        QTest::newRow("claves largas iguales") << 5 << largos << u"0|2|1|3"_qs;
    }
    void ordenar()
    {
        QFETCH(int, modo);
        QFETCH(QStringList, claves);
        QFETCH(QString, orden);
        Rejilla r;
        llenar(r, 2, {});
        for (int i = 0; i < claves.size(); ++i)
            r.AddItem(claves[i] + u'\t' + QString::number(i));
        r.PonerCol(0);
        r.Sort(modo);
        QCOMPARE(datos(r, 1), orden);
        QCOMPARE(r.Col(), 0); // the sort moves rows, not the current cell
    }

    // Several key columns, left to right whichever way the selection runs; the title row stays,
    // and a row's bold cells and height move with it.
    void ordenarVariasColumnas()
    {
        Rejilla r;
        llenar(r, 3, {u"b\t2\tx"_qs, u"a\t2\ty"_qs, u"b\t1\tz"_qs, u"a\t10\tw"_qs});
        r.PonerTextMatrix(0, 0, u"Título"_qs);
        r.PonerNegritaCelda(1, 2, true); // "x"
        r.PonerRowHeight(2, 0);          // "y" hidden
        seleccionar(r, 1, 0, 1, 1);
        r.Sort(OrdenGenericoAsc);
        QCOMPARE(datos(r), u"a,2,y|a,10,w|b,1,z|b,2,x"_qs);
        QCOMPARE(r.TextMatrix(0, 0), u"Título"_qs);
        QCOMPARE(r.RowHeight(1), 0);
        QVERIFY(r.NegritaCelda(4, 2));
        QVERIFY(!r.NegritaCelda(1, 2));
        seleccionar(r, 1, 1, 1, 0);
        r.Sort(OrdenGenericoDesc);
        QCOMPARE(datos(r), u"b,2,x|b,1,z|a,10,w|a,2,y"_qs);
    }

    void celdaReescrita()
    {
        // Longer and shorter texts, accents and characters outside the BMP keep their text.
        Rejilla r;
        llenar(r, 1, {u"corto"_qs});
        const QStringList textos{u"un texto bastante más largo"_qs, u"ñ"_qs, QString(),
                                 u"€ y 𝄞 música"_qs, u"x"_qs,
                                 QString(QChar(0xFEFF)) + QChar(0xFEFF) + u"a"_qs}; // leading marks kept
        for (const QString &t : textos) {
            r.PonerTextMatrix(1, 0, t);
            QCOMPARE(r.TextMatrix(1, 0), t);
        }
        // Many rewrites do not let the garbage grow without bound.
        for (int i = 0; i < 200000; ++i)
            r.PonerTextMatrix(1, 0, i % 2 ? u"ab"_qs : u"abcdefghijklmnop"_qs);
        QVERIFY(r.BytesOcupados() < 2 * 1024 * 1024);
        QCOMPARE(r.BytesTexto(), qint64(2)); // the last text written, "ab"
    }

    void errores_data()
    {
        QTest::addColumn<Accion>("accion");
        QTest::addColumn<int>("numero");
        QTest::newRow("fila fuera") << Accion([](Rejilla &r) { r.TextMatrix(9, 0); }) << int(ErrorFilaNoValida);
        QTest::newRow("columna fuera") << Accion([](Rejilla &r) { r.TextMatrix(1, 5); }) << int(ErrorColumnaNoValida);
        QTest::newRow("quitar la última fila de datos") << Accion([](Rejilla &r) { r.RemoveItem(1); })
                                                        << int(ErrorQuitarUltimaFila);
        QTest::newRow("menos filas que las fijas") << Accion([](Rejilla &r) { r.PonerRows(0); })
                                                   << int(ErrorFilaNoValida);
        QTest::newRow("AddItem más allá") << Accion([](Rejilla &r) { r.AddItem(u"x"_qs, 5); })
                                          << int(ErrorFilaNoValida);
    }
    void errores()
    {
        QFETCH(Accion, accion);
        QFETCH(int, numero);
        Rejilla r; // 2 x 2, one fixed row
        QCOMPARE(errorDe([&] { accion(r); }), numero);
    }

    // Clip gives the selected rectangle whichever way the selection runs; pasting fills the
    // selection from its corner and does not go past it.
    void portapapeles()
    {
        Rejilla r;
        llenar(r, 3, {u"1a\t1b\t1c"_qs, u"2a\t2b\t2c"_qs, u"3a\t3b\t3c"_qs});
        r.PonerTextMatrix(0, 2, u"C"_qs);
        seleccionar(r, 1, 0, 2, 1);
        QCOMPARE(r.Clip(), u"1a\t1b\r2a\t2b"_qs);
        seleccionar(r, 3, 2, 2, 1);
        const QString invertida = r.Clip();
        QCOMPARE(invertida, u"2b\t2c\r3b\t3c"_qs);
        r.Clear();
        r.PonerClip(invertida);
        QCOMPARE(datos(r), u",,|,2b,2c|,3b,3c"_qs);
        seleccionar(r, 1, 1, 2, 2);
        r.PonerClip(u"a\tb\tc\r\nd\te\tf\r\ng\th"_qs);
        QCOMPARE(datos(r), u",a,b|,d,e|,3b,3c"_qs);
    }

    // The notices a view follows: one per change with its rows; none while Redraw is off and one
    // reset when it comes back on, none for off and on without a change; none once removed.
    void avisos()
    {
        Rejilla r;
        llenar(r, 2, {u"b\t1"_qs, u"a\t2"_qs});
        Registro reg;
        r.AgregarOyente(&reg);
        r.AddItem(u"c\t3"_qs, 1);
        r.PonerTextMatrix(2, 1, u"x"_qs);
        r.RemoveItem(3);
        reg.avisos << u"|"_qs;
        r.PonerRedraw(false);
        for (int i = 0; i < 100; ++i)
            r.AddItem(u"z"_qs);
        r.PonerCol(0);
        r.Sort(OrdenTextoAsc);
        reg.avisos << u"Redraw:"_qs;
        r.PonerRedraw(true);
        reg.avisos << u"|"_qs;
        r.PonerRedraw(false);
        r.PonerRedraw(true);
        r.QuitarOyente(&reg);
        r.AddItem(u"w"_qs);
        QCOMPARE(reg.avisos.join(u' '),
                 u"insertar 1-1 celdas 2,1-2,1 quitar 3-3 | Redraw: antesReinicio reinicio |"_qs);
    }

    // Each column as "title width-in-twips title-alignment/cell-alignment" (1 left, 4 centre,
    // 7 right).
    void descriptores_data()
    {
        QTest::addColumn<QString>("linea");
        QTest::addColumn<QString>("columnas");
        QTest::newRow("; gana a |") << u"A|B;C"_qs << u"A|B 360 4/1, C 120 4/1"_qs;
        QTest::newRow("sólo |") << u"Uno|Dos#4"_qs << u"Uno 360 4/1, Dos 480 4/1"_qs;
        QTest::newRow("separador final") << u"Nombre;"_qs << u"Nombre 720 4/1"_qs;
        QTest::newRow("interrogación oculta") << u"?"_qs << u"? 0 4/1"_qs;
        QTest::newRow("título izquierda, celdas centro") << u"<Total#10="_qs << u"Total 1200 1/4"_qs;
        QTest::newRow("título derecha sin ancho") << u">Saldo>"_qs << u"Saldo 600 7/7"_qs;
        QTest::newRow("ancho sin número") << u"Nota#"_qs << u"Nota 0 4/1"_qs;
        QTest::newRow("vacía") << QString() << u" 0 4/1"_qs;
    }
    void descriptores()
    {
        QFETCH(QString, linea);
        QFETCH(QString, columnas);
        // Read by CargarVisor into a used grid, its old rows gone.
        QStringList cargadas;
        Rejilla r;
        r.PonerRows(7);
        r.PonerTextMatrix(1, 0, u"viejo"_qs);
        CargarVisor(r, linea);
        QCOMPARE(r.Rows(), 2);
        QCOMPARE(r.TextMatrix(1, 0), QString());
        QVERIFY(r.Redraw());
        for (int c = 0; c < r.Cols(); ++c)
            cargadas << u"%1 %2 %3/%4"_qs.arg(r.TextMatrix(0, c)).arg(r.ColWidth(c)).arg(r.FixedAlignment(c))
                            .arg(r.ColAlignment(c));
        QCOMPARE(cargadas.join(u", "_qs), columnas);
    }

    // Adding to a cell's amount, shown by the regional settings; a zero shown or left blank.
    void ponerCelda_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("antes");
        QTest::addColumn<QString>("texto");
        QTest::addColumn<bool>("formato");
        QTest::addColumn<QString>("despues");
        QTest::newRow("es suma agrupada") << u"es_ES"_qs << u"1.200,50"_qs << u"99,5"_qs << true << u"1.300,00"_qs;
        QTest::newRow("es suma a vacía") << u"es_ES"_qs << QString() << u"2,25"_qs << true << u"2,25"_qs;
        QTest::newRow("es suma cero sin ceros") << u"es_ES"_qs << u"5,00"_qs << u"-5"_qs << false << QString();
        QTest::newRow("es suma cero con ceros") << u"es_ES"_qs << u"5,00"_qs << u"-5"_qs << true << u"0,00"_qs;
        QTest::newRow("C suma agrupada") << u"C"_qs << u"1,200.50"_qs << u"99.5"_qs << true << u"1,300.00"_qs;
    }
    void ponerCelda()
    {
        QFETCH(QString, locale);
        QFETCH(QString, antes);
        QFETCH(QString, texto);
        QFETCH(bool, formato);
        QFETCH(QString, despues);
        QLocale::setDefault(QLocale(locale));
        Rejilla r;
        CargarVisor(r, u"Concepto;Importe"_qs);
        PonerCelda(r, 1, 1, antes);
        PonerCelda(r, 1, 1, texto, true, formato);
        QCOMPARE(LeerCelda(r, 1, 1), despues);
    }

    void limpiarYQuitar()
    {
        Rejilla r;
        CargarVisor(r, u"Clave;Valor"_qs); // one fixed column stays from the new grid
        r.PonerRows(1);
        r.AddItem(u"k1\tv1"_qs);
        r.AddItem(u"k2\tv2"_qs);
        LimpiarVisor(r);
        QCOMPARE(datos(r), u"k1,|k2,"_qs); // the fixed column untouched
        QCOMPARE(r.TextMatrix(0, 1), u"Valor"_qs);
        // Three rows: the row asked is removed. Two rows: row 1 is blanked, whatever was asked.
        QuitarFilaVisor(r, 1);
        QCOMPARE(datos(r), u"k2,"_qs);
        QuitarFilaVisor(r, 5);
        QCOMPARE(datos(r), u","_qs);
        QCOMPARE(r.TextMatrix(0, 0), u"Clave"_qs);
    }

    // The column's number, and the message shown when there is none.
    void buscarColumna_data()
    {
        QTest::addColumn<QString>("titulo");
        QTest::addColumn<bool>("silencioso");
        QTest::addColumn<QString>("visto");
        QTest::newRow("encontrada") << u"Teléfono"_qs << false << u"2"_qs;
        QTest::newRow("almohadilla sin buscar") << u"#7"_qs << false << u"7"_qs;
        QTest::newRow("título vacío es la primera") << QString() << false << u"0"_qs;
        QTest::newRow("mayúsculas cuentan") << u"nombre"_qs << true << u"-1"_qs;
        QTest::newRow("no encontrada con aviso") << u"Fax2"_qs << false
            << u"0 No encontrado ninguna columna con el título [Fax2] (Búsqueda en [Telfs], %1)"_qs.arg(int(Critico));
    }
    void buscarColumna()
    {
        QFETCH(QString, titulo);
        QFETCH(bool, silencioso);
        QFETCH(QString, visto);
        ServiciosGrabados grabados;
        Rejilla r;
        r.PonerNombre(u"Telfs"_qs);
        CargarVisor(r, u";Nombre#34;Teléfono#18;Fax#18;eMail#25"_qs);
        QString resultado = QString::number(BuscarColumnaVisor(r, titulo, silencioso));
        for (const auto &m : grabados.mensajes)
            resultado += u" %1 (%2, %3)"_qs.arg(m.texto, m.titulo).arg(m.botones);
        QCOMPARE(resultado, visto);
    }

    // The column's cells, "|" between them, sorted by the grid's tag.
    void ordenarVisor_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("celdas");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("tag corto: texto sin mayúsculas") << u"es_ES"_qs << u"F"_qs << u"bea|Ana|ana|Álvaro|Carlos"_qs
                                                         << u"Álvaro|Ana|ana|bea|Carlos"_qs;
        QTest::newRow("fechas") << u"C"_qs << u" F"_qs << u"02/01/2009|15/12/2008|no es fecha|1-2-09|"_qs
                                << u"||15/12/2008|02/01/2009|01/02/2009"_qs;
        QTest::newRow("C importes") << u"C"_qs << u" I"_qs << u"1,200.00|95.00|-3||1234.5"_qs
                                    << u"|-3.00|95.00|1,200.00|1,234.50"_qs;
        // Cells already written as the sort writes them are read without the regional reading;
        // shapes that only look so go the long way.
        QTest::newRow("fechas con forma escrita") << u"es_ES"_qs << u" F"_qs
            << u"29/02/2008|29/02/2009|01/01/1899|31/12/2999"_qs << u"|01/01/1899|29/02/2008|31/12/2999"_qs;
        QTest::newRow("es importes con forma escrita") << u"es_ES"_qs << u" I"_qs
            << u"-0,00|999.999.999.999,99|1234,50|01,00|1.23,00|-1.000,01|0,10"_qs
            << u"-1.000,01|0,00|0,10|1,00|123,00|1.234,50|999.999.999.999,99"_qs;
        QTest::newRow("es importe con texto al final") << u"es_ES"_qs << u" I"_qs << u"n/d|10|"_qs << u"|10,00|n/d"_qs;
    }
    void ordenarVisor()
    {
        QFETCH(QString, locale);
        QFETCH(QString, tag);
        QFETCH(QString, celdas);
        QFETCH(QString, esperado);
        QLocale::setDefault(QLocale(locale));
        Rejilla r;
        r.PonerFixedCols(0);
        CargarVisor(r, u"Id;Valor;Otro"_qs);
        r.PonerTag(tag);
        const QStringList valores = celdas.split(u'|');
        for (int i = 0; i < valores.size(); ++i) {
            PonerCelda(r, i + 1, 0, QString::number(i));
            PonerCelda(r, i + 1, 1, valores[i]);
        }
        r.PonerCol(2);
        r.PonerRedraw(false);
        OrdenarVisor(r, 1);
        QCOMPARE(datos(r, 1), esperado);
        QVERIFY(!r.Redraw());
        QCOMPARE(r.TextMatrix(0, 1), u"Valor"_qs);
    }

    void aspecto()
    {
        VisorRejilla v;
        QAbstractItemModelTester tester(v.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        Rejilla &r = v.rejilla();
        r.PonerFixedCols(0);
        CargarVisor(r, u";Nombre#34;Teléfono#18>;<Fax#8=;eMail#25"_qs);
        r.PonerRows(1);
        for (const char *fila : {"\tAna\t600111222\t\tana@ejemplo.es", "\tbea\t600333444\t91\tbea@ejemplo.es",
                                 "\tCarlos\t600555666\t\tcarlos@ejemplo.es"})
            r.AddItem(QString::fromUtf8(fila));
        v.resize(900, 300);
        v.show();
        QCoreApplication::processEvents();
        QAbstractItemModel *m = v.model();
        // The untitled first column has width 0: hidden, and no column of the model (a screen
        // reader is not told of it); model columns 0..3 are grid columns 1..4.
        QCOMPARE(m->columnCount(), 4);
        const auto vc = [&v](int col) { return v.modeloRejilla()->colVista(col); };
        QCOMPARE((QList<int>{vc(0), vc(1), vc(4), v.modeloRejilla()->colRejilla(0), v.modeloRejilla()->colRejilla(3)}),
                 (QList<int>{-1, 0, 3, 1, 4}));
        QCOMPARE(m->headerData(0, Qt::Horizontal).toString(), u"Nombre"_qs);
        // Widths: twips at the logical dpi.
        QCOMPARE(v.columnWidth(vc(1)), int(std::lround(34 * 120 * v.logicalDpiX() / 1440.0)));
        // Alignments of cells and titles, by grid column.
        const auto alin = [m, vc](int c) { return m->index(0, vc(c)).data(Qt::TextAlignmentRole).toInt(); };
        const auto alinTitulo = [m, vc](int c) {
            return m->headerData(vc(c), Qt::Horizontal, Qt::TextAlignmentRole).toInt();
        };
        const int centro = Qt::AlignVCenter;
        QCOMPARE((QList<int>{alin(1), alin(2), alin(3), alinTitulo(1), alinTitulo(3)}),
                 (QList<int>{Qt::AlignLeft | centro, Qt::AlignRight | centro, Qt::AlignHCenter | centro,
                             Qt::AlignHCenter | centro, Qt::AlignLeft | centro}));
        // Bold cells, and the sort's title mark: the sorted column's title (or another's) in bold,
        // the others plain, the current cell where it was.
        r.PonerNegritaCelda(2, 1, true);
        QVERIFY(m->index(1, vc(1)).data(Qt::FontRole).value<QFont>().bold());
        QVERIFY(!m->index(0, vc(1)).data(Qt::FontRole).isValid());
        const auto marcas = [&r] {
            QString t;
            for (int c = 0; c < r.Cols(); ++c)
                t += r.NegritaCelda(0, c) ? u'1' : u'0';
            return t + u" %1,%2"_qs.arg(r.Row()).arg(r.Col());
        };
        r.PonerRow(2);
        r.PonerCol(3);
        OrdenarVisor(r, 2, true);
        QCOMPARE(marcas(), u"00100 2,3"_qs);
        QVERIFY(m->headerData(vc(2), Qt::Horizontal, Qt::FontRole).value<QFont>().bold());
        QVERIFY(v.isVisible()); // shown again after the sort
        OrdenarVisor(r, 2, true, 4);
        QCOMPARE(marcas(), u"00001 2,3"_qs);
        OrdenarVisor(r, 2, false); // without the mark nothing is touched
        QCOMPARE(marcas(), u"00001 2,3"_qs);
        OrdenarVisor(r, -1, true); // the current column, Fax: empty cells first
        QCOMPARE(marcas(), u"00010 2,3"_qs);
        QCOMPARE(datos(r, 1), u"Ana|Carlos|bea"_qs);
        // Mouse gestures: the signals given, with the cell under the mouse and the current cell.
        QString visto;
        const auto anotar = [&](const char *nombre) {
            return [&visto, &v, &r, nombre](int f, int c) {
                visto += u"%1 %2,%3 ratón %4,%5 actual %6,%7 | "_qs.arg(QLatin1String(nombre)).arg(f).arg(c)
                             .arg(v.MouseRow()).arg(v.MouseCol()).arg(r.Row()).arg(r.Col());
            };
        };
        connect(&v, &VisorRejilla::Click, anotar("Click"));
        connect(&v, &VisorRejilla::ClickDerecho, anotar("ClickDerecho"));
        connect(&v, &VisorRejilla::DobleClick, anotar("DobleClick"));
        r.PonerRow(1);
        r.PonerCol(1);
        prueba::clicCelda(&v, 1, 2);
        QHeaderView *titulos = v.horizontalHeader();
        QTest::mouseClick(titulos->viewport(), Qt::LeftButton, {},
                          QPoint(titulos->sectionViewportPosition(vc(1)) + 5, titulos->height() / 2));
        prueba::clicCelda(&v, 2, 3, Qt::RightButton); // the right button does not move
        QTest::mouseDClick(v.viewport(), Qt::LeftButton, {}, v.visualRect(m->index(1, vc(1))).center());
        QCOMPARE(visto, u"Click 2,2 ratón 2,2 actual 2,2 | Click 0,1 ratón 0,1 actual 2,2 | "
                        "ClickDerecho 3,3 ratón 3,3 actual 2,2 | DobleClick 2,1 ratón 2,1 actual 2,1 | "_qs);
        // Changes under Redraw off reach the view as one reset when it comes back on; until then the
        // view keeps the rows it was told of, and a paint must not reach past them. With Redraw on,
        // structural changes reach it one by one.
        QSignalSpy reinicio(m, &QAbstractItemModel::modelReset);
        r.PonerRedraw(false);
        for (int i = 0; i < 500; ++i)
            r.AddItem(u"\tNombre %1"_qs.arg(i));
        r.RemoveItem(1);
        QCOMPARE(m->rowCount(), 3);
        QCoreApplication::processEvents();
        r.PonerRedraw(true);
        QCOMPARE(reinicio.size(), 1);
        QCOMPARE(m->rowCount(), 502);
        QCOMPARE(m->index(501, vc(1)).data().toString(), u"Nombre 499"_qs);
        r.AddItem(u"\tprimero"_qs, 1);
        r.PonerCols(6); // a column added beside a hidden one: the map moves, one reset
        r.PonerTextMatrix(0, 5, u"Nueva"_qs);
        QCOMPARE(m->headerData(vc(5), Qt::Horizontal).toString(), u"Nueva"_qs);
        QCOMPARE(m->index(0, vc(1)).data().toString(), u"primero"_qs);
        QCOMPARE(reinicio.size(), 2);
        // A column hidden by its width leaves the model, and comes back with a width.
        const auto cabeceras = [m] {
            QStringList t;
            for (int c = 0; c < m->columnCount(); ++c)
                t << m->headerData(c, Qt::Horizontal).toString();
            return t.join(u',');
        };
        r.PonerColWidth(3, 0);
        QCOMPARE(cabeceras(), u"Nombre,Teléfono,eMail,Nueva"_qs);
        r.PonerColWidth(3, 8 * 120);
        QCOMPARE(cabeceras(), u"Nombre,Teléfono,Fax,eMail,Nueva"_qs);
        QCOMPARE(v.columnWidth(vc(3)), v.pixeles(8 * 120));
        // Hidden rows follow RowHeight: a row of height 0 leaves the view, rows after it move up,
        // and it comes back in its place; under Redraw off the same comes with the one reset.
        const int filas = m->rowCount();
        r.PonerRowHeight(2, 0);
        QCOMPARE(m->rowCount(), filas - 1);
        QCOMPARE(v.modeloRejilla()->filaVista(2), -1);
        QCOMPARE(v.modeloRejilla()->filaRejilla(1), 3);
        r.PonerRowHeight(2, -1);
        QCOMPARE(m->rowCount(), filas);
        QCOMPARE(v.modeloRejilla()->filaRejilla(1), 2);
        r.PonerRedraw(false);
        r.PonerRowHeight(1, 0);
        r.PonerRowHeight(3, 0);
        QCOMPARE(m->rowCount(), filas);
        r.PonerRedraw(true);
        QCOMPARE(m->rowCount(), filas - 2);
        QCOMPARE(v.modeloRejilla()->filaRejilla(0), 2);
        r.PonerRowHeight(1, -1); // shown again while another row stays hidden
        QCOMPARE(v.modeloRejilla()->filaRejilla(0), 1);
        // All at once, as the phone book's search does: row 3 comes back at the default height,
        // row 4 keeps its own, rows 1 and 5 go; one reset, and the view follows.
        r.PonerRowHeight(4, 500);
        Registro registro;
        r.AgregarOyente(&registro);
        r.PonerFilasVisibles(1, {0, 1, 1, 1, 0});
        r.QuitarOyente(&registro);
        QCOMPARE(registro.avisos, QStringList({u"antesReinicio"_qs, u"reinicio"_qs}));
        QCOMPARE(QList<int>({r.RowHeight(1), r.RowHeight(2), r.RowHeight(3), r.RowHeight(4), r.RowHeight(5)}),
                 QList<int>({0, Rejilla::AltoFilaPorOmision, Rejilla::AltoFilaPorOmision, 500, 0}));
        QCOMPARE(m->rowCount(), filas - 2);
        QCOMPARE(v.modeloRejilla()->filaRejilla(0), 2);
        QCOMPARE(v.modeloRejilla()->filaRejilla(3), 6);
        std::vector<int> mostradas;
        QVERIFY(r.FilasMostradas(1, mostradas));
        QCOMPARE(mostradas.size(), std::size_t(filas - 2));
        QCOMPARE(mostradas.front(), 2);
        r.PonerFilasVisibles(1, std::vector<unsigned char>(std::size_t(filas), 1));
        QVERIFY(!r.FilasMostradas(1, mostradas));
        QCOMPARE(m->rowCount(), filas);
        // The layout's scaling through the invokable method.
        FactorX = FactorY = 2.0f;
        QVERIFY(QMetaObject::invokeMethod(&v, "EscalarColumnas"));
        QCOMPARE(r.ColWidth(1), 34 * 240);
        QCOMPARE(r.ColWidth(0), 0);
        QCOMPARE(v.columnWidth(vc(1)), v.pixeles(34 * 240));
    }

};

QTEST_MAIN(TstRejilla)
#include "tst_rejilla.moc"
