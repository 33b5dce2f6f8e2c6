// The MiVisor helpers: descriptor lines, cells and running totals, blanking and removing rows,
// the column search and its message, and the sorts by text, date and amount.
#include <kvr/escala.h>
#include <kvr/mivisor.h>

#include "registro.h"

#include <QtTest>

using namespace kvr;

Q_DECLARE_METATYPE(QList<ColumnaVisor>)

namespace {

ColumnaVisor col(const QString &t, int caracteres, int alinTitulo = AlinCentro, int alin = AlinIzquierda)
{
    return {t, caracteres * 120, alinTitulo, alin};
}

QString columna(const Rejilla &r, int c)
{
    QStringList t;
    for (int f = 1; f < r.Rows(); ++f)
        t << r.TextMatrix(f, c);
    return t.join(u'|');
}

} // namespace

class TstMiVisor : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        FactorX = FactorY = 0.0f;
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    }

    void descriptores_data()
    {
        QTest::addColumn<QString>("linea");
        QTest::addColumn<QList<ColumnaVisor>>("columnas");
        QTest::newRow("agenda") << u";Nombre#34;Teléfono#18;Fax#18;eMail#25"_qs
            << QList<ColumnaVisor>{col({}, 0), col(u"Nombre"_qs, 34), col(u"Teléfono"_qs, 18),
                                   col(u"Fax"_qs, 18), col(u"eMail"_qs, 25)};
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
        const QList<ColumnaVisor> leidas = LeerDescriptores(linea);
        QCOMPARE(leidas.size(), columnas.size());
        for (int i = 0; i < leidas.size(); ++i) {
            QCOMPARE(leidas[i].titulo, columnas[i].titulo);
            QCOMPARE(leidas[i].ancho, columnas[i].ancho);
            QCOMPARE(leidas[i].alineacionTitulo, columnas[i].alineacionTitulo);
            QCOMPARE(leidas[i].alineacion, columnas[i].alineacion);
        }
        // CargarVisor puts the same into a used grid.
        Rejilla r;
        r.PonerRows(7);
        r.PonerTextMatrix(5, 1, u"viejo"_qs);
        CargarVisor(r, linea);
        QCOMPARE(r.Cols(), int(columnas.size()));
        QCOMPARE(r.Rows(), 2);
        QVERIFY(r.Redraw());
        for (int c = 0; c < r.Cols(); ++c) {
            QCOMPARE(r.TextMatrix(0, c), columnas[c].titulo);
            QCOMPARE(r.TextMatrix(1, c), QString());
            QCOMPARE(r.ColWidth(c), columnas[c].ancho);
            QCOMPARE(r.FixedAlignment(c), columnas[c].alineacionTitulo);
            QCOMPARE(r.ColAlignment(c), columnas[c].alineacion);
        }
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
        QCOMPARE(r.Rows(), 3);
        QCOMPARE(columna(r, 0), u"k1|k2"_qs); // fixed column untouched
        QCOMPARE(columna(r, 1), u"|"_qs);
        QCOMPARE(r.TextMatrix(0, 1), u"Valor"_qs);
        // Three rows: the row asked is removed. Two rows: row 1 is blanked, whatever was asked.
        QuitarFilaVisor(r, 1);
        QCOMPARE(r.Rows(), 2);
        QCOMPARE(columna(r, 0), u"k2"_qs);
        QuitarFilaVisor(r, 5);
        QCOMPARE(r.Rows(), 2);
        QCOMPARE(columna(r, 0), QString());
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
        if (mensaje.isEmpty()) {
            QVERIFY(grabados.mensajes.isEmpty());
        } else {
            QCOMPARE(grabados.mensajes.size(), 1);
            QCOMPARE(grabados.mensajes[0].texto, mensaje);
            QCOMPARE(grabados.mensajes[0].titulo, u"Búsqueda en [Telfs]"_qs);
            QCOMPARE(grabados.mensajes[0].botones, int(Critico));
        }
    }

    void ordenar_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QStringList>("celdas");
        QTest::addColumn<QString>("esperado");
        const QStringList nombres{u"bea"_qs, u"Ana"_qs, u"ana"_qs, u"Álvaro"_qs, u"Carlos"_qs};
        QTest::newRow("texto sin mayúsculas") << u"es_ES"_qs << u"  "_qs << nombres
                                              << u"Álvaro|Ana|ana|bea|Carlos"_qs;
        QTest::newRow("fechas") << u"C"_qs << u" F"_qs
            << QStringList{u"02/01/2009"_qs, u"15/12/2008"_qs, u"no es fecha"_qs, u"1-2-09"_qs, QString()}
            << u"||15/12/2008|02/01/2009|01/02/2009"_qs;
        QTest::newRow("es importes") << u"es_ES"_qs << u" I"_qs
            << QStringList{u"1.200,00"_qs, u"95,00"_qs, u"-3"_qs, QString(), u"1234,5"_qs}
            << u"|-3,00|95,00|1.200,00|1.234,50"_qs;
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
        QTest::newRow("tag corto: texto") << u"es_ES"_qs << u"F"_qs
            << QStringList{u"2"_qs, u"10"_qs, u"1"_qs} << u"1|10|2"_qs;
    }
    void ordenar()
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

    void ordenarMarcaTitulo_data()
    {
        QTest::addColumn<int>("colOrden");
        QTest::addColumn<bool>("marcar");
        QTest::addColumn<int>("marcada");
        QTest::addColumn<QString>("negritas");
        QTest::newRow("marca la de ordenar") << 1 << true << -1 << u"010"_qs;
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

QTEST_GUILESS_MAIN(TstMiVisor)
#include "tst_mivisor.moc"
