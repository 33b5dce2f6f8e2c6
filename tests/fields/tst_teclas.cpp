#include "registro.h"

#include <kvr/valores.h>

#include <QtTest>

using namespace kvr;

class TstTeclas : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void decidir_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("texto");
        QTest::addColumn<int>("inicio");
        QTest::addColumn<int>("largo");
        QTest::addColumn<int>("tecla");
        QTest::addColumn<int>("entrega"); // 0: swallowed
        QTest::addColumn<int>("accion");
        QTest::addColumn<bool>("tabTras");

        const QString N = u"T(N) L(12) A(D)"_qs, n = u"T(n) L(12) A(D)"_qs;
        const int no = DecisionTecla::Ninguna, tab = DecisionTecla::Tabulador,
                  omision = DecisionTecla::PorOmision;
        auto fila = [](const char *nombre, const QString &tag, const QString &texto, int inicio, int largo,
                       QChar tecla, QChar entrega, int accion = DecisionTecla::Ninguna, bool tabTras = false) {
            QTest::newRow(nombre) << tag << texto << inicio << largo << int(tecla.unicode())
                                  << int(entrega.unicode()) << accion << tabTras;
        };
        const QChar nada(u'\0');
        fila("retroceso pasa", N, u"12"_qs, 2, 0, QChar(8), QChar(8));
        fila("intro pasa al siguiente", N, u"12"_qs, 2, 0, QChar(13), nada, tab);
        fila("más pone el valor por omisión", u"T(M) L(5) A(I) +(ES)"_qs, QString(), 0, 0, u'+', nada, omision);
        fila("N coma es punto", N, u"1"_qs, 1, 0, u',', u'.');
        fila("N segundo punto", N, u"1.5"_qs, 3, 0, u'.', nada);
        fila("N menos al principio", N, QString(), 0, 0, u'-', u'-');
        fila("N menos en medio", N, u"12"_qs, 1, 0, u'-', nada);
        fila("n menos al principio", n, QString(), 0, 0, u'-', nada);
        fila("N letra", N, u"12"_qs, 2, 0, u'a', nada);
        fila("N D negativo punto", u"T(N) L(9) A(D) D(-2)"_qs, u"12"_qs, 2, 0, u'.', nada);
        fila("N decimales llenos al final", N, u"12.34"_qs, 5, 0, u'5', nada);
        fila("N decimales llenos tras el punto", N, u"12.34"_qs, 3, 0, u'5', u'5');
        fila("N decimales de más no se rechazan", N, u"12.345"_qs, 6, 0, u'5', u'5');
        fila("C sin decimales admite punto", u"T(C) L(8) A(I)"_qs, u"43"_qs, 2, 0, u'.', u'.');
        fila("D punto", u"T(D) L(6) A(C)"_qs, u"4"_qs, 1, 0, u'.', nada);
        fila("F barra tras barra", u"T(F) L(10) A(I)"_qs, u"12/05/"_qs, 6, 0, u'/', nada);
        fila("F tercera barra", u"T(F) L(10) A(I)"_qs, u"12/05/2009"_qs, 10, 0, u'/', nada);
        fila("F barra al principio", u"T(F) L(10) A(I)"_qs, u"12"_qs, 0, 0, u'/', nada);
        fila("F guion es barra", u"T(F) L(10) A(I)"_qs, u"12"_qs, 2, 0, u'-', u'/');
        fila("F letra", u"T(F) L(10) A(I)"_qs, u"12"_qs, 2, 0, u'a', nada);
        fila("f admite letras", u"T(f) L(10) A(I)"_qs, u"12"_qs, 2, 0, u'a', u'a');
        fila("H punto es dos puntos", u"T(H) L(5) A(I)"_qs, u"9"_qs, 1, 0, u'.', u':');
        fila("H segundos dos puntos", u"T(H) L(5) A(I)"_qs, u"9:3"_qs, 3, 0, u':', nada);
        fila("M mayúscula", u"T(M) L(9) A(I)"_qs, QString(), 0, 0, u'a', u'A');
        fila("M eñe", u"T(M) L(9) A(I)"_qs, QString(), 0, 0, QChar(0xF1), QChar(0xD1));
        fila("X letra calculada", u"T(X) L(9) A(I)"_qs, u"12345678"_qs, 8, 0, u'?', u'Z', no, true);
        fila("X interrogación en vacío", u"T(X) L(9) A(I)"_qs, QString(), 0, 0, u'?', nada);
        fila("X interrogación tras ceros", u"T(X) L(9) A(I)"_qs, u"0000"_qs, 4, 0, u'?', u'0');
        fila("X minúscula", u"T(X) L(9) A(I)"_qs, u"1"_qs, 1, 0, u'z', u'Z');
        fila("largo: la tecla que llena pasa", u"T(m) L(5) A(I)"_qs, u"abcd"_qs, 4, 0, u'e', u'e', no, true);
        fila("largo: campo lleno traga y pasa", u"T(m) L(5) A(I)"_qs, u"abcde"_qs, 5, 0, u'f', nada, tab);
        fila("largo: con selección no limita", u"T(m) L(5) A(I)"_qs, u"abcde"_qs, 0, 5, u'f', u'f');
        fila("largo: texto más largo no limita", u"T(m) L(5) A(I)"_qs, u"abcdef"_qs, 6, 0, u'g', u'g');
        fila("largo: rechazada no pasa", u"T(D) L(5) A(I)"_qs, u"1234"_qs, 4, 0, u'x', nada);
        fila("largo: cursor no cuenta", u"T(m) L(5) A(I)"_qs, u"abcd"_qs, 0, 0, u'e', u'e', no, true);
    }
    void decidir()
    {
        ServiciosGrabados servicios;
        QFETCH(QString, tag);
        QFETCH(QString, texto);
        QFETCH(int, inicio);
        QFETCH(int, largo);
        QFETCH(int, tecla);
        QFETCH(int, entrega);
        QFETCH(int, accion);
        QFETCH(bool, tabTras);
        const DecisionTecla d = DecidirTecla(tag, texto, inicio, largo, tecla);
        QCOMPARE(d.codigo, entrega);
        QCOMPARE(int(d.accion), accion);
        QCOMPARE(d.tabTrasEntregar, tabTras);
        QVERIFY(servicios.mensajes.isEmpty());
    }

};

QTEST_GUILESS_MAIN(TstTeclas)
#include "tst_teclas.moc"
