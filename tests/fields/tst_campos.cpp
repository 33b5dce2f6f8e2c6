// Field behaviour on real widgets, driven by real key and focus events, under a comma-decimal
// and a point-decimal locale (every test runs once for each).
#include "comun/pruebas.h"
#include "registro.h"

#include <kvr/campos.h>
#include <kvr/valores.h>

#include <QtTest>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace kvr;
using prueba::teclear;

class TstCampos : public QObject {
    Q_OBJECT

    struct Ventana {
        QWidget w;
        QLineEdit *importe, *fecha, *codigo, *provincia, *nif, *libre;
        QCheckBox *activo;
        QComboBox *mes;
        QLineEdit *ultimo; // no field behaviour

        Ventana()
        {
            auto *l = new QVBoxLayout(&w);
            auto edit = [&](const char *nombre, const char *tag) {
                auto *e = new QLineEdit(&w);
                e->setObjectName(QString::fromLatin1(nombre));
                l->addWidget(e);
                if (tag)
                    PrepararCampo(e, QString::fromUtf8(tag));
                return e;
            };
            importe = edit("importe", "T(N) L(12) A(D) +(1000)");
            fecha = edit("fecha", "T(F) L(10) A(I)");
            codigo = edit("codigo", "T(D) L(6) A(C)");
            provincia = edit("provincia", "T(M) L(5) A(I) +(ES)");
            nif = edit("nif", "T(X) L(9) A(I)");
            activo = new QCheckBox(&w);
            l->addWidget(activo);
            PrepararCampo(activo, u"T(m) L(1) A(I) +(1)"_qs);
            mes = new QComboBox(&w);
            mes->addItems({u"Enero"_qs, u" Marzo "_qs, u"Mayo"_qs});
            l->addWidget(mes);
            PrepararCampo(mes, u"T(m) L(9) A(I) +(Marzo)"_qs);
            libre = edit("libre", "T(m) L(20) A(I)");
            ultimo = edit("ultimo", nullptr);
            ultimo->setFocus(); // the tests enter the fields themselves
            w.show();
            w.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&w));
        }
    };

    static bool enfocar(QWidget *campo)
    {
        campo->setFocus(Qt::TabFocusReason);
        return QTest::qWaitFor([&] { return campo->hasFocus(); }, 2000);
    }
    static bool esComa() { return QLocale().decimalPoint() == u","; }

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::newRow("es_ES") << u"es_ES"_qs;
        QTest::newRow("C") << u"C"_qs;
    }
    void init()
    {
        QFETCH_GLOBAL(QString, locale);
        QLocale::setDefault(QLocale(locale));
        FechaTrabajo = QDate(2026, 11, 21);
        NoRecordarCampo = false;
        UltimoCampo = nullptr;
    }

    void teclasFiltradas_data()
    {
        QTest::addColumn<QString>("campo");
        QTest::addColumn<QString>("teclas");
        QTest::addColumn<QString>("texto");
        QTest::newRow("coma decimal es punto") << u"importe"_qs << u"1,5"_qs << u"1.5"_qs;
        QTest::newRow("mayúsculas con eñe") << u"provincia"_qs << u"coruñ"_qs << u"CORUÑ"_qs;
        QTest::newRow("letra del NIF") << u"nif"_qs << u"12345678?"_qs << u"12345678Z"_qs;
        QTest::newRow("más sin valor vacía") << u"libre"_qs << u"a+"_qs << QString();
    }
    void teclasFiltradas()
    {
        ServiciosGrabados servicios;
        Ventana v;
        QFETCH(QString, campo);
        QFETCH(QString, teclas);
        QFETCH(QString, texto);
        auto *e = v.w.findChild<QLineEdit *>(campo);
        QVERIFY(enfocar(e));
        teclear(e, teclas);
        QCOMPARE(e->text(), texto);
        QVERIFY(servicios.mensajes.isEmpty());
    }

    void intro_pasa_al_siguiente()
    {
        ServiciosGrabados servicios;
        Ventana v;
        QVERIFY(enfocar(v.importe));
        teclear(v.importe, u"12"_qs);
        QTest::keyClick(v.importe, Qt::Key_Return);
        QTRY_VERIFY(v.fecha->hasFocus());
        QCOMPARE(v.importe->text(), esComa() ? u"12,00"_qs : u"12.00"_qs);
        QTest::keyClick(v.fecha, Qt::Key_Enter);
        QTRY_VERIFY(v.codigo->hasFocus());
    }

    void mas_pone_el_valor_y_pasa()
    {
        ServiciosGrabados servicios;
        Ventana v;
        QVERIFY(enfocar(v.provincia));
        teclear(v.provincia, u"ab"_qs);
        QTest::keyClick(v.provincia, '+');
        QTRY_VERIFY(v.nif->hasFocus());
        QCOMPARE(v.provincia->text(), u"ES"_qs);

        QVERIFY(enfocar(v.activo));
        QTest::keyClick(v.activo, '+');
        QTRY_VERIFY(v.mes->hasFocus());
        QVERIFY(v.activo->isChecked());

        QTest::keyClick(v.mes, '+');
        QTRY_VERIFY(v.libre->hasFocus());
        QCOMPARE(v.mes->currentIndex(), 1); // " Marzo " matches "Marzo" trimmed
    }

    void color_de_edicion_y_vuelta()
    {
        ServiciosGrabados servicios;
        Ventana v;
        const QColor base = v.importe->palette().color(QPalette::Base);
        QVERIFY(!v.importe->palette().isBrushSet(QPalette::Active, QPalette::Base));
        QVERIFY(enfocar(v.importe));
        QCOMPARE(v.importe->palette().color(QPalette::Base), QColor(192, 255, 255));
        QVERIFY(TagDe(v.importe).contains(u"P(-2147483643)"_qs)); // the system window colour
        QVERIFY(enfocar(v.fecha));
        QVERIFY(!v.importe->palette().isBrushSet(QPalette::Active, QPalette::Base));
        QCOMPARE(v.importe->palette().color(QPalette::Base), base);

        // An own colour comes back as it was, and the saved entry is overwritten, not repeated.
        QPalette amarillo = v.codigo->palette();
        amarillo.setColor(QPalette::Base, QColor(255, 255, 0));
        v.codigo->setPalette(amarillo);
        QVERIFY(enfocar(v.codigo));
        QVERIFY(enfocar(v.fecha));
        QVERIFY(enfocar(v.codigo));
        QVERIFY(enfocar(v.fecha));
        QCOMPARE(v.codigo->palette().color(QPalette::Base), QColor(255, 255, 0));
        QCOMPARE(TagDe(v.codigo).count(u"P("_qs), 1);
        QVERIFY(TagDe(v.codigo).contains(u"P(65535)"_qs));

        // A check box paints and restores its own background too.
        QVERIFY(enfocar(v.activo));
        QCOMPARE(v.activo->palette().color(QPalette::Window), QColor(192, 255, 255));
        QVERIFY(enfocar(v.fecha));
        QVERIFY(!v.activo->palette().isBrushSet(QPalette::Active, QPalette::Window));
    }

    void primer_campo_de_una_ventana_nueva()
    {
        // The field that has the focus when its window opens is entered like any other, and
        // switching to another window and back neither leaves nor re-enters it.
        ServiciosGrabados servicios;
        QWidget w;
        auto *l = new QVBoxLayout(&w);
        auto *a = new QLineEdit(&w);
        auto *b = new QLineEdit(&w);
        l->addWidget(a);
        l->addWidget(b);
        PrepararCampo(a, u"T(N) L(9) A(D)"_qs);
        a->setText(u"7"_qs);
        a->setFocus();
        w.show();
        w.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        QTRY_VERIFY(a->hasFocus());
        QCOMPARE(a->text(), u"7.00"_qs);
        QCOMPARE(a->palette().color(QPalette::Base), QColor(192, 255, 255));

        QWidget otra;
        otra.show();
        otra.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&otra));
        QCOMPARE(a->palette().color(QPalette::Base), QColor(192, 255, 255));
        QVERIFY(UltimoCampo.isNull());
        w.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        QCOMPARE(TagDe(a).count(u"P("_qs), 1);
        QVERIFY(TagDe(a).contains(u"P(-2147483643)"_qs));
    }

    void cambiando_texto_y_ultimo_campo()
    {
        ServiciosGrabados servicios;
        Ventana v;
        QList<bool> vistos;
        connect(v.importe, &QLineEdit::textChanged, [&] { vistos << CambiandoTexto; });
        v.importe->setText(u"5"_qs);
        QVERIFY(enfocar(v.importe));  // 5 -> 5.00: a rewrite
        teclear(v.importe, u"7"_qs);  // the user's
        QVERIFY(enfocar(v.fecha));    // 7 -> 7,00 / 7.00: a rewrite
        QCOMPARE(vistos, (QList<bool>{false, true, false, true}));
        QVERIFY(!CambiandoTexto);
        QCOMPARE(UltimoCampo.data(), v.importe);

        NoRecordarCampo = true;
        QVERIFY(enfocar(v.codigo));
        QCOMPARE(UltimoCampo.data(), v.importe);
        NoRecordarCampo = false;
        QVERIFY(enfocar(v.provincia));
        QCOMPARE(UltimoCampo.data(), v.codigo);
    }

    void descriptor_incompleto_avisa_sin_romper()
    {
        ServiciosGrabados servicios;
        Ventana v;
        PonerTagDe(v.libre, u"L(5) A(I)"_qs);
        QVERIFY(enfocar(v.libre));
        teclear(v.libre, u"ab"_qs);
        QCOMPARE(v.libre->text(), u"ab"_qs); // no type: free text
        QVERIFY(!servicios.mensajes.isEmpty());
        QVERIFY(servicios.mensajes.first().texto.startsWith(u" No encontrado dato TAG obligatorio (T) Tipo en L(5) A(I)"_qs));

        servicios.mensajes.clear();
        PonerTagDe(v.libre, u"T(N L"_qs); // no closing bracket: a run-time error, reported, key dropped
        teclear(v.libre, u"1"_qs);
        QCOMPARE(v.libre->text(), u"ab"_qs);
        QCOMPARE(servicios.mensajes.size(), 1);
        QCOMPARE(servicios.mensajes[0].texto, u"Llamada a procedimiento o argumento no válidos"_qs);
        QVERIFY(enfocar(v.importe)); // leaving does not raise either
    }

    void antes_y_despues_de_preparar()
    {
        ServiciosGrabados servicios;
        Ventana v;
        PonerTagDe(v.ultimo, u"T(N) L(5) A(D)"_qs);
        QVERIFY(enfocar(v.ultimo));
        teclear(v.ultimo, u"a,1"_qs);
        QCOMPARE(v.ultimo->text(), u"a,1"_qs); // not prepared: a plain line edit
        v.ultimo->clear();
        PrepararCampo(v.ultimo);
        teclear(v.ultimo, u"a,1"_qs);
        QCOMPARE(v.ultimo->text(), u".1"_qs);
        QuitarCampo(v.ultimo);
        teclear(v.ultimo, u"x"_qs);
        QCOMPARE(v.ultimo->text(), u".1x"_qs);
    }
};

QTEST_MAIN(TstCampos)
#include "tst_campos.moc"
