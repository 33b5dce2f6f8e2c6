// The grid model and the MiVisor helpers over it: rows and cells, AddItem/RemoveItem/Clip, the
// sort modes and their stability, the change notices a view follows (deferred while Redraw is
// off); descriptor lines, cells and running totals, blanking and removing rows, the column search
// and its message, and the sorts by text, date and amount.
#include <kvr/error.h>
#include <kvr/escala.h>
#include <kvr/mivisor.h>
#include <kvr/rejilla.h>

#include "registro.h"

#include <QtTest>

using namespace kvr;

Q_DECLARE_METATYPE(QList<ColumnaVisor>)

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

// The data rows of a grid as one compact text: cells joined by "," and rows by "|".
QString datos(const Rejilla &r)
{
    QStringList filas;
    for (int f = r.FixedRows(); f < r.Rows(); ++f) {
        QStringList celdas;
        for (int c = 0; c < r.Cols(); ++c)
            celdas << r.TextMatrix(f, c);
        filas << celdas.join(u',');
    }
    return filas.join(u'|');
}

// One column's data cells, joined by "|".
QString columna(const Rejilla &r, int c)
{
    QStringList t;
    for (int f = 1; f < r.Rows(); ++f)
        t << r.TextMatrix(f, c);
    return t.join(u'|');
}

ColumnaVisor col(const QString &t, int caracteres, int alinTitulo = AlinCentro, int alin = AlinIzquierda)
{
    return {t, caracteres * 120, alinTitulo, alin};
}

QString texto(const ColumnaVisor &c)
{
    return u"%1 %2 %3 %4"_qs.arg(c.titulo).arg(c.ancho).arg(c.alineacionTitulo).arg(c.alineacion);
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

// Deterministic generator (64-bit LCG), so every run builds the same large grids.
struct Azar {
    quint64 estado = 0x9E3779B97F4A7C15ULL;
    int operator()(int tope)
    {
        estado = estado * 6364136223846793005ULL + 1442695040888963407ULL;
        return int((estado >> 33) % quint64(tope));
    }
};

// Key texts for the large sorts: many repeated keys longer than 16 bytes that share long
// beginnings, accents and capitals, empty cells, numbers, and characters beyond Latin-1 (whose
// key bytes hold zeros).
QString claveGrande(const QString &clase, Azar &azar)
{
    static const QStringList apellidos{u"García"_qs, u"Garrido"_qs, u"González"_qs, u"Gómez"_qs,
                                       u"Martínez"_qs, u"Martín"_qs, u"Muñoz"_qs, u"Núñez"_qs};
    static const QStringList nombres{u"Ana"_qs, u"Ángel"_qs, u"María José"_qs, u"María"_qs,
                                     u"Íñigo"_qs, u"ana"_qs};
    if (clase == u"iguales")
        return u"Martínez Fernández de la Torre, María José"_qs;
    if (clase == u"nombres") {
        QString t = apellidos[azar(8)] + u' ' + apellidos[azar(8)] + u", "_qs + nombres[azar(6)];
        return azar(4) == 0 ? t.toUpper() : t;
    }
    switch (azar(5)) {
    case 0: return QString();
    case 1: return QString::number(azar(200) - 100);
    case 2: return u"%1,%2"_qs.arg(azar(50)).arg(azar(100));
    case 3: return u"Ω%1 €"_qs.arg(azar(3)) + QString(QChar(0x4E00 + azar(3)));
    default: return apellidos[azar(8)].left(1 + azar(6));
    }
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
        const QStringList largos{u"García López, María"_qs, u"García López, Mario"_qs,
                                 u"garcía lópez, maría"_qs, u"García Lopez, Zoe"_qs};
        QTest::newRow("claves largas iguales") << 5 << largos << u"0|2|1|3"_qs;
    }
    void ordenar()
    {
        QFETCH(int, modo);
        QFETCH(QStringList, claves);
        QFETCH(QString, orden);
        Rejilla r;
        QStringList filas;
        for (int i = 0; i < claves.size(); ++i)
            filas << claves[i] + u'\t' + QString::number(i);
        llenar(r, 2, filas);
        r.PonerCol(0);
        r.Sort(modo);
        QCOMPARE(columna(r, 1), orden);
        QCOMPARE(r.Col(), 0); // the sort moves rows, not the current cell
    }

    // Large sorts go through passes that a handful of rows never reach. Each is checked against
    // the sort of two rows alone: every pair of neighbours in the result, sorted by itself from
    // the order it had before, must come out in the same order; and every row must be there once.
    void ordenarGrande_data()
    {
        QTest::addColumn<int>("modo");
        QTest::addColumn<QString>("clase");
        QTest::addColumn<int>("filas");
        QTest::newRow("nombres con mayúsculas desc") << 8 << u"nombres"_qs << 20000;
        QTest::newRow("todas iguales asc") << 5 << u"iguales"_qs << 70000;
        QTest::newRow("texto fuera de Latin-1") << 7 << u"mezcla"_qs << 20000;
    }
    void ordenarGrande()
    {
        QFETCH(int, modo);
        QFETCH(QString, clase);
        QFETCH(int, filas);
        // Columns: key, order before the sort, a number to shuffle the rows by.
        Rejilla r;
        r.PonerFixedCols(0);
        r.PonerCols(3);
        r.PonerRows(1);
        r.PonerRedraw(false);
        Azar azar;
        for (int i = 0; i < filas; ++i)
            r.AddItem(claveGrande(clase, azar) + u"\t\t"_qs + QString::number(azar(1000000)));
        // Shuffle, so that the rows' order is not the order they were stored in, and number them.
        r.PonerCol(2);
        r.Sort(OrdenNumericoAsc);
        for (int f = 1; f <= filas; ++f)
            r.PonerTextMatrix(f, 1, QString::number(f));
        r.PonerCol(0);
        r.Sort(modo);

        QList<bool> visto(filas + 1, false);
        for (int f = 1; f <= filas; ++f) {
            const int antes = r.TextMatrix(f, 1).toInt();
            QVERIFY2(antes >= 1 && antes <= filas && !visto[antes], qPrintable(u"fila %1"_qs.arg(f)));
            visto[antes] = true;
        }
        Rejilla par;
        par.PonerFixedCols(0);
        par.PonerCols(2);
        par.PonerRows(3);
        for (int f = 1; f < filas; ++f) {
            const int a = r.TextMatrix(f, 1).toInt(), b = r.TextMatrix(f + 1, 1).toInt();
            const int primera = a < b ? f : f + 1, segunda = a < b ? f + 1 : f;
            for (int c = 0; c < 2; ++c) {
                par.PonerTextMatrix(1, c, r.TextMatrix(primera, c));
                par.PonerTextMatrix(2, c, r.TextMatrix(segunda, c));
            }
            par.PonerCol(0);
            par.Sort(modo);
            if (par.TextMatrix(1, 1).toInt() != a)
                QFAIL(qPrintable(u"filas %1 y %2 fuera de orden: «%3» «%4»"_qs.arg(f).arg(f + 1)
                                     .arg(r.TextMatrix(f, 0), r.TextMatrix(f + 1, 0))));
        }
        if (clase == u"iguales") // equal keys keep their order
            QCOMPARE(r.TextMatrix(filas, 1), QString::number(filas));
    }

    void ordenarVariasColumnas()
    {
        Rejilla r;
        llenar(r, 3, {u"b\t2\tx"_qs, u"a\t2\ty"_qs, u"b\t1\tz"_qs, u"a\t10\tw"_qs});
        r.PonerCol(0);
        r.PonerColSel(1);
        r.Sort(OrdenGenericoAsc);
        QCOMPARE(datos(r), u"a,2,y|a,10,w|b,1,z|b,2,x"_qs);
        // The selection may run right to left: the keys still go left to right.
        r.PonerCol(1);
        r.PonerColSel(0);
        r.Sort(OrdenGenericoDesc);
        QCOMPARE(datos(r), u"b,2,x|b,1,z|a,10,w|a,2,y"_qs);
    }

    void ordenarDejaFijasYAtributos()
    {
        Rejilla r;
        llenar(r, 1, {u"c"_qs, u"a"_qs, u"b"_qs});
        r.PonerTextMatrix(0, 0, u"Título"_qs);
        r.PonerNegritaCelda(1, 0, true);   // "c"
        r.PonerRowHeight(2, 0);            // "a" hidden
        r.PonerCol(0);
        r.Sort(OrdenTextoSinMayAsc);
        QCOMPARE(r.TextMatrix(0, 0), u"Título"_qs);
        QCOMPARE(datos(r), u"a|b|c"_qs);
        QCOMPARE(r.RowHeight(1), 0);       // the hidden row moved with its text
        QVERIFY(r.NegritaCelda(3, 0));
        QVERIFY(!r.NegritaCelda(1, 0));
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
        QTest::addColumn<QString>("accion");
        QTest::addColumn<int>("numero");
        QTest::newRow("fila fuera") << u"tm 9 0"_qs << int(ErrorFilaNoValida);
        QTest::newRow("columna fuera") << u"tm 1 5"_qs << int(ErrorColumnaNoValida);
        QTest::newRow("quitar la última fila de datos") << u"rem 1"_qs << int(ErrorQuitarUltimaFila);
        QTest::newRow("menos filas que las fijas") << u"rows 0"_qs << int(ErrorFilaNoValida);
        QTest::newRow("AddItem más allá") << u"add 5"_qs << int(ErrorFilaNoValida);
    }
    void errores()
    {
        QFETCH(QString, accion);
        QFETCH(int, numero);
        Rejilla r; // 2 x 2, one fixed row
        const QStringList p = accion.split(u' ');
        try {
            if (p[0] == u"tm")
                r.TextMatrix(p[1].toInt(), p[2].toInt());
            else if (p[0] == u"rem")
                r.RemoveItem(p[1].toInt());
            else if (p[0] == u"rows")
                r.PonerRows(p[1].toInt());
            else
                r.AddItem(u"x"_qs, p[1].toInt());
            QFAIL("no error raised");
        } catch (const ErrorEjecucion &e) {
            QCOMPARE(e.numero(), numero);
        }
    }

    void clip_data()
    {
        QTest::addColumn<int>("fila");
        QTest::addColumn<int>("col");
        QTest::addColumn<int>("filaSel");
        QTest::addColumn<int>("colSel");
        QTest::addColumn<QString>("clip");
        QTest::newRow("rectángulo") << 1 << 0 << 2 << 1 << u"1a\t1b\r2a\t2b"_qs;
        QTest::newRow("selección invertida") << 3 << 2 << 2 << 1 << u"2b\t2c\r3b\t3c"_qs;
    }
    void clip()
    {
        QFETCH(int, fila);
        QFETCH(int, col);
        QFETCH(int, filaSel);
        QFETCH(int, colSel);
        QFETCH(QString, clip);
        Rejilla r;
        llenar(r, 3, {u"1a\t1b\t1c"_qs, u"2a\t2b\t2c"_qs, u"3a\t3b\t3c"_qs});
        r.PonerTextMatrix(0, 2, u"C"_qs);
        r.PonerRow(fila);
        r.PonerCol(col);
        r.PonerRowSel(filaSel);
        r.PonerColSel(colSel);
        QCOMPARE(r.Clip(), clip);
        // Pasting the text back into a cleared grid restores the same rectangle.
        r.Clear();
        r.PonerClip(clip);
        QCOMPARE(r.Clip(), clip);
    }

    void pegarNoSaleDeLaSeleccion()
    {
        Rejilla r;
        llenar(r, 3, {u"\t\t"_qs, u"\t\t"_qs, u"\t\t"_qs});
        r.PonerRow(1);
        r.PonerCol(1);
        r.PonerRowSel(2);
        r.PonerColSel(2);
        r.PonerClip(u"a\tb\tc\r\nd\te\tf\r\ng\th"_qs);
        QCOMPARE(datos(r), u",a,b|,d,e|,,"_qs);
    }

    void avisos()
    {
        Rejilla r;
        llenar(r, 2, {u"b\t1"_qs, u"a\t2"_qs});
        Registro reg;
        r.AgregarOyente(&reg);
        r.AddItem(u"c\t3"_qs, 1);
        r.PonerTextMatrix(2, 1, u"x"_qs);
        r.RemoveItem(3);
        QCOMPARE(reg.avisos, (QStringList{u"insertar 1-1"_qs, u"celdas 2,1-2,1"_qs, u"quitar 3-3"_qs}));
        // With Redraw off nothing is said; turning it back on gives one reset.
        reg.avisos.clear();
        r.PonerRedraw(false);
        for (int i = 0; i < 100; ++i)
            r.AddItem(u"z"_qs);
        r.PonerCol(0);
        r.Sort(OrdenTextoAsc);
        QVERIFY(reg.avisos.isEmpty());
        r.PonerRedraw(true);
        QCOMPARE(reg.avisos, (QStringList{u"antesReinicio"_qs, u"reinicio"_qs}));
        // Redraw off and on without a change says nothing.
        reg.avisos.clear();
        r.PonerRedraw(false);
        r.PonerRedraw(true);
        QVERIFY(reg.avisos.isEmpty());
        r.QuitarOyente(&reg);
        r.AddItem(u"w"_qs);
        QVERIFY(reg.avisos.isEmpty());
    }

    void descriptores_data()
    {
        QTest::addColumn<QString>("linea");
        QTest::addColumn<QList<ColumnaVisor>>("columnas");
        QTest::newRow("; gana a |") << u"A|B;C"_qs
            << QList<ColumnaVisor>{col(u"A|B"_qs, 3), col(u"C"_qs, 1)};
        QTest::newRow("sólo |") << u"Uno|Dos#4"_qs
            << QList<ColumnaVisor>{col(u"Uno"_qs, 3), col(u"Dos"_qs, 4)};
        QTest::newRow("separador final") << u"Nombre;"_qs << QList<ColumnaVisor>{col(u"Nombre"_qs, 6)};
        QTest::newRow("interrogación oculta") << u"?"_qs << QList<ColumnaVisor>{col(u"?"_qs, 0)};
        QTest::newRow("título izquierda, celdas centro") << u"<Total#10="_qs
            << QList<ColumnaVisor>{col(u"Total"_qs, 10, AlinIzquierda, AlinCentro)};
        QTest::newRow("título derecha sin ancho") << u">Saldo>"_qs
            << QList<ColumnaVisor>{col(u"Saldo"_qs, 5, AlinDerecha, AlinDerecha)};
        QTest::newRow("ancho sin número") << u"Nota#"_qs << QList<ColumnaVisor>{col(u"Nota"_qs, 0)};
        QTest::newRow("vacía") << QString() << QList<ColumnaVisor>{col({}, 0)};
    }
    void descriptores()
    {
        QFETCH(QString, linea);
        QFETCH(QList<ColumnaVisor>, columnas);
        QStringList esperadas, leidas, cargadas;
        for (const ColumnaVisor &c : columnas)
            esperadas << texto(c);
        for (const ColumnaVisor &c : LeerDescriptores(linea))
            leidas << texto(c);
        QCOMPARE(leidas, esperadas);
        // CargarVisor puts the same into a used grid, its old rows gone.
        Rejilla r;
        r.PonerRows(7);
        r.PonerTextMatrix(1, 0, u"viejo"_qs);
        CargarVisor(r, linea);
        QCOMPARE(r.Rows(), 2);
        QCOMPARE(r.TextMatrix(1, 0), QString());
        QVERIFY(r.Redraw());
        for (int c = 0; c < r.Cols(); ++c)
            cargadas << texto({r.TextMatrix(0, c), r.ColWidth(c), r.FixedAlignment(c), r.ColAlignment(c)});
        QCOMPARE(cargadas, esperadas);
    }

    void ponerCelda_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("antes");
        QTest::addColumn<QString>("texto");
        QTest::addColumn<bool>("sumar");
        QTest::addColumn<bool>("formato");
        QTest::addColumn<QString>("despues");
        QTest::newRow("es suma agrupada") << u"es_ES"_qs << u"1.200,50"_qs << u"99,5"_qs << true << true << u"1.300,00"_qs;
        QTest::newRow("es suma a vacía") << u"es_ES"_qs << QString() << u"2,25"_qs << true << true << u"2,25"_qs;
        QTest::newRow("es suma cero sin ceros") << u"es_ES"_qs << u"5,00"_qs << u"-5"_qs << true << false << QString();
        QTest::newRow("es suma cero con ceros") << u"es_ES"_qs << u"5,00"_qs << u"-5"_qs << true << true << u"0,00"_qs;
        QTest::newRow("C suma agrupada") << u"C"_qs << u"1,200.50"_qs << u"99.5"_qs << true << true << u"1,300.00"_qs;
    }
    void ponerCelda()
    {
        QFETCH(QString, locale);
        QFETCH(QString, antes);
        QFETCH(QString, texto);
        QFETCH(bool, sumar);
        QFETCH(bool, formato);
        QFETCH(QString, despues);
        QLocale::setDefault(QLocale(locale));
        Rejilla r;
        CargarVisor(r, u"Concepto;Importe"_qs);
        PonerCelda(r, 1, 1, antes);
        PonerCelda(r, 1, 1, texto, sumar, formato);
        QCOMPARE(LeerCelda(r, 1, 1), despues);
    }

    void limpiarYQuitar()
    {
        Rejilla r;
        CargarVisor(r, u"Clave;Valor"_qs); // one fixed column stays from the new grid
        PonerCelda(r, 1, 0, u"k1"_qs);
        PonerCelda(r, 1, 1, u"v1"_qs);
        PonerCelda(r, 2, 0, u"k2"_qs);
        PonerCelda(r, 2, 1, u"v2"_qs);
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

    void buscarColumna_data()
    {
        QTest::addColumn<QString>("titulo");
        QTest::addColumn<bool>("silencioso");
        QTest::addColumn<int>("esperado");
        QTest::addColumn<QString>("mensaje");
        QTest::newRow("encontrada") << u"Teléfono"_qs << false << 2 << QString();
        QTest::newRow("almohadilla sin buscar") << u"#7"_qs << false << 7 << QString();
        QTest::newRow("título vacío es la primera") << QString() << false << 0 << QString();
        QTest::newRow("mayúsculas cuentan") << u"nombre"_qs << true << -1 << QString();
        QTest::newRow("no encontrada con aviso") << u"Fax2"_qs << false << 0
            << u"No encontrado ninguna columna con el título [Fax2]"_qs;
    }
    void buscarColumna()
    {
        QFETCH(QString, titulo);
        QFETCH(bool, silencioso);
        QFETCH(int, esperado);
        QFETCH(QString, mensaje);
        ServiciosGrabados grabados;
        Rejilla r;
        r.PonerNombre(u"Telfs"_qs);
        CargarVisor(r, u";Nombre#34;Teléfono#18;Fax#18;eMail#25"_qs);
        QCOMPARE(BuscarColumnaVisor(r, titulo, silencioso), esperado);
        QStringList vistos;
        for (const auto &m : grabados.mensajes)
            vistos << u"%1 (%2, %3)"_qs.arg(m.texto, m.titulo).arg(m.botones);
        QCOMPARE(vistos.join(u'|'),
                 mensaje.isEmpty() ? QString() : mensaje + u" (Búsqueda en [Telfs], %1)"_qs.arg(int(Critico)));
    }

    void ordenarVisor_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QStringList>("celdas");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("tag corto: texto sin mayúsculas") << u"es_ES"_qs << u"F"_qs
            << QStringList{u"bea"_qs, u"Ana"_qs, u"ana"_qs, u"Álvaro"_qs, u"Carlos"_qs}
            << u"Álvaro|Ana|ana|bea|Carlos"_qs;
        QTest::newRow("fechas") << u"C"_qs << u" F"_qs
            << QStringList{u"02/01/2009"_qs, u"15/12/2008"_qs, u"no es fecha"_qs, u"1-2-09"_qs, QString()}
            << u"||15/12/2008|02/01/2009|01/02/2009"_qs;
        QTest::newRow("C importes") << u"C"_qs << u" I"_qs
            << QStringList{u"1,200.00"_qs, u"95.00"_qs, u"-3"_qs, QString(), u"1234.5"_qs}
            << u"|-3.00|95.00|1,200.00|1,234.50"_qs;
        // Cells already written as the sort writes them are read without the regional reading;
        // shapes that only look so go the long way.
        QTest::newRow("fechas con forma escrita") << u"es_ES"_qs << u" F"_qs
            << QStringList{u"29/02/2008"_qs, u"29/02/2009"_qs, u"01/01/1899"_qs, u"31/12/2999"_qs}
            << u"|01/01/1899|29/02/2008|31/12/2999"_qs;
        QTest::newRow("es importes con forma escrita") << u"es_ES"_qs << u" I"_qs
            << QStringList{u"-0,00"_qs, u"999.999.999.999,99"_qs, u"1234,50"_qs, u"01,00"_qs, u"1.23,00"_qs,
                           u"-1.000,01"_qs, u"0,10"_qs}
            << u"-1.000,01|0,00|0,10|1,00|123,00|1.234,50|999.999.999.999,99"_qs;
        QTest::newRow("es importe con texto al final") << u"es_ES"_qs << u" I"_qs
            << QStringList{u"n/d"_qs, u"10"_qs, QString()} << u"|10,00|n/d"_qs;
    }
    void ordenarVisor()
    {
        QFETCH(QString, locale);
        QFETCH(QString, tag);
        QFETCH(QStringList, celdas);
        QFETCH(QString, esperado);
        QLocale::setDefault(QLocale(locale));
        Rejilla r;
        r.PonerFixedCols(0);
        CargarVisor(r, u"Id;Valor;Otro"_qs);
        r.PonerTag(tag);
        for (int i = 0; i < celdas.size(); ++i) {
            PonerCelda(r, i + 1, 0, QString::number(i));
            PonerCelda(r, i + 1, 1, celdas[i]);
        }
        r.PonerCol(2);
        r.PonerRedraw(false);
        OrdenarVisor(r, 1);
        QCOMPARE(columna(r, 1), esperado);
        QCOMPARE(r.Col(), 2);
        QVERIFY(!r.Redraw());
        QVERIFY(r.Visible());
        QCOMPARE(r.TextMatrix(0, 1), u"Valor"_qs);
    }

    // The title mark: the sorted column's title (or another's) in bold, the others plain.
    void ordenarMarcaTitulo_data()
    {
        QTest::addColumn<int>("colOrden");
        QTest::addColumn<bool>("marcar");
        QTest::addColumn<int>("marcada");
        QTest::addColumn<QString>("negritas");
        QTest::newRow("marca otra") << 1 << true << 2 << u"001"_qs;
        QTest::newRow("columna actual") << -1 << true << -1 << u"100"_qs;
        QTest::newRow("sin marcar no toca") << 1 << false << -1 << u"101"_qs;
    }
    void ordenarMarcaTitulo()
    {
        QFETCH(int, colOrden);
        QFETCH(bool, marcar);
        QFETCH(int, marcada);
        QFETCH(QString, negritas);
        Rejilla r;
        r.PonerFixedCols(0);
        CargarVisor(r, u"A;B;C"_qs);
        PonerCelda(r, 1, 0, u"b"_qs);
        PonerCelda(r, 2, 0, u"a"_qs);
        r.PonerNegritaCelda(0, 0, true);
        r.PonerNegritaCelda(0, 2, true);
        r.PonerRow(2);
        r.PonerCol(0);
        OrdenarVisor(r, colOrden, marcar, marcada);
        QString vistas;
        for (int c = 0; c < 3; ++c)
            vistas += r.NegritaCelda(0, c) ? u'1' : u'0';
        QCOMPARE(vistas, negritas);
        QCOMPARE(r.Row(), 2);
        QCOMPARE(r.Col(), 0);
        if (colOrden == -1)
            QCOMPARE(columna(r, 0), u"a|b"_qs);
    }
};

QTEST_GUILESS_MAIN(TstRejilla)
#include "tst_rejilla.moc"
