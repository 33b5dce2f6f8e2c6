// The field rules without widgets: descriptor tags, the keys a field accepts, and the display and
// editing forms of its value.
#include "comun/ficheros.h"
#include "registro.h"

#include <kvr/error.h>
#include <kvr/tags.h>
#include <kvr/teclas.h>
#include <kvr/valores.h>

#include <QtTest>

using namespace kvr;
using prueba::resultado;


class TstValores : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // The value of a key, "<nada>" when it is absent.
    void leerTag_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("clave");
        QTest::addColumn<QString>("delimitadores");
        QTest::addColumn<QString>("valor");
        const QString x;
        QTest::newRow("otro orden") << u"T(m) A(I) L(30)"_qs << u"L"_qs << x << u"30"_qs;
        QTest::newRow("valor vacío") << u"T(N) D()"_qs << u"D"_qs << x << QString();
        QTest::newRow("ausente no obligatoria") << u"T(N)"_qs << u"D"_qs << x << u"<nada>"_qs;
        QTest::newRow("mayúsculas cuentan") << u"t(M) T(X)"_qs << u"T"_qs << x << u"X"_qs;
        QTest::newRow("primera aparición") << u"T(M) T(N)"_qs << u"T"_qs << x << u"M"_qs;
        QTest::newRow("subcadena de otra clave") << u"XL(5) L(9)"_qs << u"L"_qs << x << u"5"_qs;
        QTest::newRow("valor con blancos") << u"+(LA CORUÑA) T(M)"_qs << u"+"_qs << x << u"LA CORUÑA"_qs;
        QTest::newRow("otros delimitadores") << u"T[M] L[15]"_qs << u"L"_qs << u"[]"_qs << u"15"_qs;
        QTest::newRow("tercer carácter ignorado") << u"T<M>"_qs << u"T"_qs << u"<>x"_qs << u"M"_qs;
        QTest::newRow("cierre de otra entrada") << u"T(M L(15)"_qs << u"T"_qs << x << u"M L(15"_qs;
        QTest::newRow("sin paréntesis de cierre") << u"T(M L"_qs << u"T"_qs << x << u"<error 5>"_qs;
        QTest::newRow("un solo delimitador") << u"T(M)"_qs << u"T"_qs << u"("_qs << u"<error 5>"_qs;
        QTest::newRow("delimitadores iguales") << u"T|M|"_qs << u"T"_qs << u"||"_qs << u"<error 5>"_qs;
    }
    void leerTag()
    {
        ServiciosGrabados servicios;
        QFETCH(QString, tag);
        QFETCH(QString, clave);
        QFETCH(QString, delimitadores);
        QFETCH(QString, valor);
        QCOMPARE(resultado([&] { return LeerTag(tag, clave, delimitadores).value_or(u"<nada>"_qs); }), valor);
        QVERIFY(servicios.mensajes.isEmpty());
    }

    // A missing T, L or A is reported with its name, every time it is read.
    void tagObligatorio()
    {
        ServiciosGrabados servicios;
        QVERIFY(!LeerTag(u"L(15) A(I)"_qs, u"T"_qs));
        QVERIFY(!LeerTag(u"T(M) A(I)"_qs, u"L"_qs));
        QVERIFY(!LeerTag(QString(), u"A"_qs));
        QVERIFY(!LeerTag(QString(), u"A"_qs));
        QCOMPARE(servicios.mensajes.size(), 4);
        QCOMPARE(servicios.mensajes[0].texto, u" No encontrado dato TAG obligatorio (T) Tipo en L(15) A(I)"_qs);
        QCOMPARE(servicios.mensajes[1].texto, u" No encontrado dato TAG obligatorio (L) Longitud en T(M) A(I)"_qs);
        QCOMPARE(servicios.mensajes[3].texto, u" No encontrado dato TAG obligatorio (A) Ajuste en "_qs);
        QCOMPARE(servicios.mensajes[0].botones, int(Critico));
        QCOMPARE(servicios.mensajes[0].titulo, servicios.TituloAplicacion());
    }

    void ponerTag_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("delimitadores");
        QTest::addColumn<QString>("esperado");
        const QString x;
        QTest::newRow("añade al final") << u"T(M) L(15) A(I)"_qs << x << u"T(M) L(15) A(I) P(9)"_qs;
        QTest::newRow("reemplaza") << u"T(M) P(1) L(15)"_qs << x << u"T(M) P(9) L(15)"_qs;
        QTest::newRow("tag vacío empieza con blanco") << QString() << x << u" P(9)"_qs;
        QTest::newRow("sólo la primera") << u"P(1) P(2)"_qs << x << u"P(9) P(2)"_qs;
        QTest::newRow("sin paréntesis de cierre") << u"P(1"_qs << x << u"<error 5>"_qs;
        QTest::newRow("un solo delimitador") << u"P(1)"_qs << u"("_qs << u"<error 5>"_qs;
    }
    void ponerTag()
    {
        QFETCH(QString, tag);
        QFETCH(QString, delimitadores);
        QFETCH(QString, esperado);
        QCOMPARE(resultado([&] { return PonerTag(tag, u"P"_qs, u"9"_qs, delimitadores); }), esperado);
    }

    void decidirTecla_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("texto");
        QTest::addColumn<int>("inicio");
        QTest::addColumn<int>("largo");
        QTest::addColumn<int>("tecla");
        QTest::addColumn<int>("entrega"); // 0: swallowed
        QTest::addColumn<int>("accion");
        QTest::addColumn<bool>("tabTras");

        const QString N = u"T(N) L(12) A(D)"_qs, n = u"T(n) L(12) A(D)"_qs, F = u"T(F) L(10) A(I)"_qs;
        const QString H = u"T(H) L(5) A(I)"_qs, X = u"T(X) L(9) A(I)"_qs, m = u"T(m) L(5) A(I)"_qs;
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
        fila("F barra tras barra", F, u"12/05/"_qs, 6, 0, u'/', nada);
        fila("F tercera barra", F, u"12/05/2009"_qs, 10, 0, u'/', nada);
        fila("F barra al principio", F, u"12"_qs, 0, 0, u'/', nada);
        fila("F guion es barra", F, u"12"_qs, 2, 0, u'-', u'/');
        fila("F letra", F, u"12"_qs, 2, 0, u'a', nada);
        fila("f admite letras", u"T(f) L(10) A(I)"_qs, u"12"_qs, 2, 0, u'a', u'a');
        fila("H punto es dos puntos", H, u"9"_qs, 1, 0, u'.', u':');
        fila("H segundos dos puntos", H, u"9:3"_qs, 3, 0, u':', nada);
        fila("M eñe mayúscula", u"T(M) L(9) A(I)"_qs, QString(), 0, 0, QChar(0xF1), QChar(0xD1));
        fila("X letra calculada", X, u"12345678"_qs, 8, 0, u'?', u'Z', no, true);
        fila("X interrogación en vacío", X, QString(), 0, 0, u'?', nada);
        fila("X interrogación tras ceros", X, u"0000"_qs, 4, 0, u'?', u'0');
        fila("largo: la tecla que llena pasa", m, u"abcd"_qs, 4, 0, u'e', u'e', no, true);
        fila("largo: campo lleno traga y pasa", m, u"abcde"_qs, 5, 0, u'f', nada, tab);
        fila("largo: con selección no limita", m, u"abcde"_qs, 0, 5, u'f', u'f');
        fila("largo: texto más largo no limita", m, u"abcdef"_qs, 6, 0, u'g', u'g');
        fila("largo: rechazada no pasa", u"T(D) L(5) A(I)"_qs, u"1234"_qs, 4, 0, u'x', nada);
        fila("largo: cursor no cuenta", m, u"abcd"_qs, 0, 0, u'e', u'e', no, true);
    }
    void decidirTecla()
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

    // What a field shows on leaving it (FormatearCampo, "<error n>" when it raises one) and what
    // it edits on entering it again (TextoEdicion of the shown text); a null edit form is the
    // shown text itself.
    void formas_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("valor");
        QTest::addColumn<QString>("pantalla");
        QTest::addColumn<QString>("edicion");
        auto fila = [](const char *nombre, const char *locale, const char *tag, const QString &valor,
                       const QString &pantalla, const QString &edicion = QString()) {
            QTest::newRow(nombre) << QString::fromLatin1(locale) << QString::fromLatin1(tag) << valor << pantalla
                                  << edicion;
        };
        const char *N = "T(N) L(12) A(D)", *F = "T(F) L(10) A(I)", *X = "T(X) L(9) A(I)", *C = "T(C) L(8) A(I)";
        const QString error5 = u"<error 5>"_qs;
        fila("N es", "es_ES", N, u"1234.5"_qs, u"1.234,50"_qs, u"1234.50"_qs);
        fila("N C", "C", N, u"1234.5"_qs, u"1,234.50"_qs, u"1234.50"_qs);
        fila("N sin entero", "es_ES", N, u"0.5"_qs, u"0,50"_qs, u"0.50"_qs);
        fila("N en blanco queda vacío", "es_ES", N, u"   "_qs, QString());
        fila("N D negativo sin decimales", "C", "T(N) L(9) A(D) D(-1)", u"1234.4"_qs, u"1,234"_qs, u"1234"_qs);
        fila("n D vacío es 2", "C", "T(n) L(9) A(D) D()", u"7"_qs, u"7.00"_qs);
        fila("D ceros corta por la izquierda", "C", "T(D) L(6) A(C)", u"1234567"_qs, u"234567"_qs);
        fila("D izquierda", "C", "T(D) L(6) A(I)", u"45"_qs, u"45    "_qs);
        fila("D derecha quita blancos", "C", "T(D) L(6) A(D)", u"  45"_qs, u"    45"_qs);
        fila("D otro ajuste", "C", "T(D) L(6) A(X)", u"45"_qs, QString());
        fila("D vacío", "C", "T(D) L(6) A(C)", u" "_qs, QString());
        fila("D longitud negativa", "C", "T(D) L(-3) A(C)", u"45"_qs, error5);
        fila("D longitud enorme", "C", "T(D) L(99999999) A(C)", u"45"_qs, u"<error 6>"_qs);
        // Dates typed short are completed from the working date: the first completion sets it to
        // the recorder's today, 21/11/2026.
        fila("F día", "es_ES", F, u"5"_qs, u"05 nov 2026"_qs, u"05/11/2026"_qs);
        fila("F día y mes tres cifras", "es_ES", F, u"125"_qs, u"12 may 2026"_qs, u"12/05/2026"_qs);
        fila("F día y mes cuatro cifras", "es_ES", F, u"0112"_qs, u"01 dic 2026"_qs, u"01/12/2026"_qs);
        fila("F seis cifras", "es_ES", F, u"120509"_qs, u"12 may 2009"_qs, u"12/05/2009"_qs);
        fila("F día y barra", "es_ES", F, u"12/"_qs, u"12 nov 2026"_qs, u"12/11/2026"_qs);
        fila("F barra final", "es_ES", F, u"12/05/"_qs, u"12 may 2026"_qs, u"12/05/2026"_qs);
        fila("F C", "C", F, u"3/1/2010"_qs, u"03 Jan 2010"_qs, u"03/01/2010"_qs);
        fila("F tres barras", "es_ES", F, u"1/2/3/4"_qs, QString());
        fila("F vacío", "es_ES", F, QString(), QString());
        fila("F día 32", "es_ES", F, u"32"_qs, QString());
        fila("F imposible", "es_ES", F, u"31/02"_qs, QString());
        fila("f sin año", "es_ES", "T(f) L(10) A(I)", u"12/05"_qs, u"12 mayo"_qs, u"12/05/2026"_qs);
        fila("H relleno", "C", "T(H) L(5) A(I)", u"9:5"_qs, u"09:05"_qs);
        fila("H vacío", "C", "T(H) L(5) A(I)", QString(), u"00:00"_qs);
        fila("M tal cual", "es_ES", "T(M) L(20) A(I)", u" Hola, 1,5 ñandú "_qs, u" Hola, 1,5 ñandú "_qs);
        // Identity letters: the remainder of 23 picks the letter.
        fila("X letra", "C", X, u"12345678?"_qs, u"12345678Z"_qs);
        fila("X resto 0", "C", X, u"23?"_qs, u"23T"_qs);
        fila("X sin número", "C", X, u"?"_qs, QString());
        fila("X ya tiene letra", "C", X, u"12345678Z"_qs, u"12345678Z"_qs);
        fila("X paréntesis", "C", X, u"ABC(?"_qs, u"ABC(?"_qs);
        fila("X con decimales", "C", X, u"1.5?"_qs, u"1.5?"_qs);
        // Account codes: eight digits, the group prefix 40, 41, 43 or 44 two digits long, else three.
        fila("C punto", "C", C, u"43.15"_qs, u"43000015"_qs);
        fila("C punto en la posición 9", "C", C, u"12345678.1"_qs, u"12345678"_qs);
        fila("C punto en la posición 10", "C", C, u"123456789.1"_qs, error5);
        fila("C punto delante", "C", C, u".5"_qs, u"00000005"_qs);
        fila("C grupo de tres", "C", C, u"57215"_qs, u"57200015"_qs);
        fila("C grupo de dos", "C", C, u"40123"_qs, u"40000123"_qs);
        fila("C blancos", "C", C, u"  4315 "_qs, u"43000015"_qs);
        fila("C ocho cifras", "C", C, u"12345678"_qs, u"12345678"_qs);
        fila("C nueve cifras", "C", C, u"123456789"_qs, error5);
        fila("C dos cifras", "C", C, u"43"_qs, u"43000000"_qs);
        fila("C vacío", "C", C, u"   "_qs, QString());
    }
    void formas()
    {
        ServiciosGrabados servicios;
        QFETCH(QString, locale);
        QFETCH(QString, tag);
        QFETCH(QString, valor);
        QFETCH(QString, pantalla);
        QFETCH(QString, edicion);
        QLocale::setDefault(QLocale(locale));
        QCOMPARE(resultado([&] { return FormatearCampo(valor, tag); }), pantalla);
        if (!pantalla.startsWith(u'<'))
            QCOMPARE(TextoEdicion(pantalla, tag), edicion.isNull() ? pantalla : edicion);
        QVERIFY(servicios.mensajes.isEmpty());
    }

    void fechaTrabajoEsHoyAlPrincipio()
    {
        ServiciosGrabados servicios;
        servicios.hoy = QDate(2031, 2, 3);
        FechaTrabajo = QDate();
        QCOMPARE(HoyDMA(), u"03/02/2031"_qs);
        QCOMPARE(CompletarFecha(u"7"_qs), u"7/2/2031"_qs);
        servicios.hoy = QDate(2031, 5, 1); // kept for the life of the program
        QCOMPARE(CompletarFecha(u"7"_qs), u"7/2/2031"_qs);
    }
};

QTEST_GUILESS_MAIN(TstValores)
#include "tst_valores.moc"
