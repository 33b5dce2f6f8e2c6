#include "registro.h"

#include <kvr/error.h>
#include <kvr/tags.h>

#include <QtTest>

using namespace kvr;

class TstTags : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void leer_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("clave");
        QTest::addColumn<QString>("delimitadores");
        QTest::addColumn<bool>("hay");
        QTest::addColumn<QString>("valor");
        QTest::newRow("otro orden") << u"T(m) A(I) L(30)"_qs << u"L"_qs << QString() << true << u"30"_qs;
        QTest::newRow("valor vacío") << u"T(N) D()"_qs << u"D"_qs << QString() << true << QString();
        QTest::newRow("ausente no obligatoria") << u"T(N)"_qs << u"D"_qs << QString() << false << QString();
        QTest::newRow("mayúsculas cuentan") << u"t(M) T(X)"_qs << u"T"_qs << QString() << true << u"X"_qs;
        QTest::newRow("primera aparición") << u"T(M) T(N)"_qs << u"T"_qs << QString() << true << u"M"_qs;
        QTest::newRow("subcadena de otra clave") << u"XL(5) L(9)"_qs << u"L"_qs << QString() << true << u"5"_qs;
        QTest::newRow("valor con blancos") << u"+(LA CORUÑA) T(M)"_qs << u"+"_qs << QString() << true << u"LA CORUÑA"_qs;
        QTest::newRow("otros delimitadores") << u"T[M] L[15]"_qs << u"L"_qs << u"[]"_qs << true << u"15"_qs;
        QTest::newRow("tercer carácter ignorado") << u"T<M>"_qs << u"T"_qs << u"<>x"_qs << true << u"M"_qs;
        QTest::newRow("cierre de otra entrada") << u"T(M L(15)"_qs << u"T"_qs << QString() << true << u"M L(15"_qs;
    }
    void leer()
    {
        ServiciosGrabados servicios;
        QFETCH(QString, tag);
        QFETCH(QString, clave);
        QFETCH(QString, delimitadores);
        QFETCH(bool, hay);
        QFETCH(QString, valor);
        const auto v = LeerTag(tag, clave, delimitadores);
        QCOMPARE(v.has_value(), hay);
        if (hay)
            QCOMPARE(*v, valor);
        QVERIFY(servicios.mensajes.isEmpty());
    }

    void obligatorias_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("clave");
        QTest::addColumn<QString>("mensaje");
        QTest::newRow("ajuste") << u"T(M) L(15)"_qs << u"A"_qs
                                << u" No encontrado dato TAG obligatorio (A) Ajuste en T(M) L(15)"_qs;
        QTest::newRow("tipo") << u"L(15) A(I)"_qs << u"T"_qs
                              << u" No encontrado dato TAG obligatorio (T) Tipo en L(15) A(I)"_qs;
        QTest::newRow("minúscula no es tipo") << u"t(M)"_qs << u"T"_qs
                                              << u" No encontrado dato TAG obligatorio (T) Tipo en t(M)"_qs;
        QTest::newRow("tag vacío") << QString() << u"A"_qs
                                   << u" No encontrado dato TAG obligatorio (A) Ajuste en "_qs;
    }
    void obligatorias()
    {
        ServiciosGrabados servicios;
        QFETCH(QString, tag);
        QFETCH(QString, clave);
        QFETCH(QString, mensaje);
        QVERIFY(!LeerTag(tag, clave).has_value());
        QCOMPARE(servicios.mensajes.size(), 1);
        QCOMPARE(servicios.mensajes[0].texto, mensaje);
        QCOMPARE(servicios.mensajes[0].botones, int(Critico));
        QCOMPARE(servicios.mensajes[0].titulo, u"Aplicación de prueba"_qs);
        // Reported every time it is read.
        LeerTag(tag, clave);
        QCOMPARE(servicios.mensajes.size(), 2);
    }

    void poner_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("clave");
        QTest::addColumn<QString>("valor");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("añade al final") << u"T(M) L(15) A(I)"_qs << u"P"_qs << u"16777215"_qs
                                        << u"T(M) L(15) A(I) P(16777215)"_qs;
        QTest::newRow("reemplaza") << u"T(M) P(1) L(15)"_qs << u"P"_qs << u"-2147483643"_qs
                                   << u"T(M) P(-2147483643) L(15)"_qs;
        QTest::newRow("tag vacío empieza con blanco") << QString() << u"P"_qs << u"5"_qs << u" P(5)"_qs;
        QTest::newRow("sólo la primera") << u"P(1) P(2)"_qs << u"P"_qs << u"9"_qs << u"P(9) P(2)"_qs;
    }
    void poner()
    {
        QFETCH(QString, tag);
        QFETCH(QString, clave);
        QFETCH(QString, valor);
        QFETCH(QString, esperado);
        const QString r = PonerTag(tag, clave, valor);
        QCOMPARE(r, esperado);
        QCOMPARE(LeerTag(r, clave).value_or(u"<nada>"_qs), valor);
    }

    void sinCierre_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("delimitadores");
        QTest::newRow("sin paréntesis de cierre") << u"T(M L"_qs << QString();
        QTest::newRow("un solo delimitador") << u"T(M)"_qs << u"("_qs;
        QTest::newRow("delimitadores iguales") << u"T|M|"_qs << u"||"_qs;
    }
    void sinCierre()
    {
        QFETCH(QString, tag);
        QFETCH(QString, delimitadores);
        try {
            LeerTag(tag, u"T"_qs, delimitadores);
            QFAIL("LeerTag should raise an argument error");
        } catch (const ErrorEjecucion &e) {
            QCOMPARE(e.numero(), int(ErrorEjecucion::ArgumentoNoValido));
        }
        if (delimitadores != u"||")
            QVERIFY_THROWS_EXCEPTION(ErrorEjecucion, PonerTag(tag, u"T"_qs, u"X"_qs, delimitadores));
    }
};

QTEST_GUILESS_MAIN(TstTags)
#include "tst_tags.moc"
