// The grid model: rows and cells, AddItem/RemoveItem/Clip, the sort modes and their stability,
// and the change notices a view follows (deferred while Redraw is off).
#include <kvr/error.h>
#include <kvr/rejilla.h>

#include <QtTest>

using namespace kvr;

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
    if (clase == u"cortas")
        return azar(3) == 0 ? QString() : QString(QChar(u'a' + azar(3)));
    if (clase == u"mezcla") {
        switch (azar(5)) {
        case 0: return QString();
        case 1: return QString::number(azar(200) - 100);
        case 2: return u"%1,%2"_qs.arg(azar(50)).arg(azar(100));
        case 3: return u"Ω%1 €"_qs.arg(azar(3)) + QString(QChar(0x4E00 + azar(3)));
        default: return apellidos[azar(8)].left(1 + azar(6));
        }
    }
    return {};
}

} // namespace

class TstRejilla : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain)); }

    void ordenar_data()
    {
        // Column 0 is the key, column 1 the row's original position (to see stability).
        QTest::addColumn<int>("modo");
        QTest::addColumn<QStringList>("claves");
        QTest::addColumn<QString>("orden");
        const QStringList mayus{u"ana"_qs, u"Bea"_qs, u"Ana"_qs, u"bea"_qs, u"ANA"_qs};
        QTest::newRow("sin mayúsculas asc estable") << 5 << mayus << u"0,2,4,1,3"_qs;
        QTest::newRow("con mayúsculas: minúscula antes") << 7 << mayus << u"0,2,4,3,1"_qs;
        const QStringList acentos{u"Ñu"_qs, u"Oso"_qs, u"nube"_qs, u"Álvaro"_qs, u"alba"_qs, u"Zoe"_qs};
        QTest::newRow("ñ tras n, á con a") << 5 << acentos << u"4,3,2,0,1,5"_qs;
        const QStringList tilde{u"José"_qs, u"Jose"_qs, u"Josefa"_qs, u"jose"_qs};
        const QStringList numeros{u"10"_qs, u"9"_qs, u"-2,5"_qs, u"abc"_qs, QString(), u"1.000"_qs};
        QTest::newRow("genérico: vacío, números, texto") << 1 << numeros << u"4,2,1,0,5,3"_qs;
        QTest::newRow("genérico desc") << 2 << numeros << u"3,5,0,1,2,4"_qs;
        QTest::newRow("numérico: texto vale 0") << 3 << numeros << u"2,3,4,1,0,5"_qs;
        QTest::newRow("modo 0 no ordena") << 0 << mayus << u"0,1,2,3,4"_qs;
        const QStringList largos{u"García López, María"_qs, u"García López, Mario"_qs,
                                 u"garcía lópez, maría"_qs, u"García Lopez, Zoe"_qs};
        QTest::newRow("claves largas iguales") << 5 << largos << u"0,2,1,3"_qs;
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
        QStringList vistos;
        for (int f = 1; f < r.Rows(); ++f)
            vistos << r.TextMatrix(f, 1);
        QCOMPARE(vistos.join(u','), orden);
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
        QTest::newRow("nombres sin mayúsculas asc") << 5 << u"nombres"_qs << 70000;
        QTest::newRow("nombres con mayúsculas desc") << 8 << u"nombres"_qs << 20000;
        QTest::newRow("todas iguales asc") << 5 << u"iguales"_qs << 70000;
        QTest::newRow("vacías y de una letra") << 6 << u"cortas"_qs << 20000;
        QTest::newRow("genérico mezclado asc") << 1 << u"mezcla"_qs << 20000;
        QTest::newRow("numérico desc") << 4 << u"mezcla"_qs << 20000;
        QTest::newRow("texto fuera de Latin-1") << 7 << u"mezcla"_qs << 20000;
    }
    void ordenarGrande()
    {
        QFETCH(int, modo);
        QFETCH(QString, clase);
        QFETCH(int, filas);
        // Columns: key, second key, order before the sort, a number to shuffle the rows by.
        Rejilla r;
        r.PonerFixedCols(0);
        r.PonerCols(4);
        r.PonerRows(1);
        r.PonerRedraw(false);
        Azar azar;
        for (int i = 0; i < filas; ++i)
            r.AddItem(claveGrande(clase, azar) + u'\t' + (azar(2) ? u"x"_qs : u"Y"_qs) + u"\t\t"_qs
                      + QString::number(azar(1000000)));
        // Shuffle, so that the rows' order is not the order they were stored in, and number them.
        r.PonerCol(3);
        r.Sort(OrdenNumericoAsc);
        for (int f = 1; f <= filas; ++f)
            r.PonerTextMatrix(f, 2, QString::number(f));
        const bool dosClaves = clase == u"mezcla" && modo <= 2;
        r.PonerCol(0);
        r.PonerColSel(dosClaves ? 1 : 0);
        r.Sort(modo);

        QList<bool> visto(filas + 1, false);
        for (int f = 1; f <= filas; ++f) {
            const int antes = r.TextMatrix(f, 2).toInt();
            QVERIFY2(antes >= 1 && antes <= filas && !visto[antes], qPrintable(u"fila %1"_qs.arg(f)));
            visto[antes] = true;
        }
        Rejilla par;
        par.PonerFixedCols(0);
        par.PonerCols(3);
        par.PonerRows(3);
        for (int f = 1; f < filas; ++f) {
            const int a = r.TextMatrix(f, 2).toInt(), b = r.TextMatrix(f + 1, 2).toInt();
            const int primera = a < b ? f : f + 1, segunda = a < b ? f + 1 : f;
            for (int c = 0; c < 3; ++c) {
                par.PonerTextMatrix(1, c, r.TextMatrix(primera, c));
                par.PonerTextMatrix(2, c, r.TextMatrix(segunda, c));
            }
            par.PonerCol(0);
            par.PonerColSel(dosClaves ? 1 : 0);
            par.Sort(modo);
            if (par.TextMatrix(1, 2).toInt() != a)
                QFAIL(qPrintable(u"filas %1 y %2 fuera de orden: «%3» «%4»"_qs.arg(f).arg(f + 1)
                                     .arg(r.TextMatrix(f, 0), r.TextMatrix(f + 1, 0))));
        }
        if (clase == u"iguales") // equal keys keep their order
            QCOMPARE(r.TextMatrix(filas, 2), QString::number(filas));
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
            else if (p[0] == u"row")
                r.PonerRow(p[1].toInt());
            else if (p[0] == u"rem")
                r.RemoveItem(p[1].toInt());
            else if (p[0] == u"rows")
                r.PonerRows(p[1].toInt());
            else if (p[0] == u"add")
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

};

QTEST_GUILESS_MAIN(TstRejilla)
#include "tst_rejilla.moc"
