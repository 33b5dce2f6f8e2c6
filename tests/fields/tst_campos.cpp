// Fields on real widgets, driven by real key and focus events, under a comma-decimal and a
// point-decimal locale: what the filter adds to the rules of the logic suite (the focus moves,
// the editing colour, the texts rewritten on entering and leaving, the filter put and taken away).
#include "comun/pruebas.h"
#include "registro.h"

#include <kvr/campos.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace kvr;
using namespace prueba;

class TstCampos : public QObject {
    Q_OBJECT

    struct Ventana {
        QWidget w;
        QLineEdit *importe, *fecha, *codigo, *provincia, *nif, *libre, *ultimo; // ultimo: a plain line edit
        QCheckBox *activo;
        QComboBox *mes;

        // `foco`: the control that has the focus when the window opens.
        explicit Ventana(const char *foco = "ultimo")
        {
            auto *l = new QVBoxLayout(&w);
            auto poner = [&](auto *c, const char *nombre, const char *tag) {
                c->setObjectName(QString::fromLatin1(nombre));
                l->addWidget(c);
                if (tag)
                    PrepararCampo(c, QString::fromUtf8(tag));
                return c;
            };
            importe = poner(new QLineEdit(&w), "importe", "T(N) L(12) A(D)");
            fecha = poner(new QLineEdit(&w), "fecha", "T(F) L(10) A(I)");
            codigo = poner(new QLineEdit(&w), "codigo", "T(D) L(6) A(C)");
            provincia = poner(new QLineEdit(&w), "provincia", "T(M) L(5) A(I) +(ES)");
            nif = poner(new QLineEdit(&w), "nif", "T(X) L(9) A(I)");
            activo = poner(new QCheckBox(&w), "activo", "T(m) L(1) A(I) +(1)");
            mes = poner(new QComboBox(&w), "mes", "T(m) L(9) A(I) +(Marzo)");
            mes->addItems({u"Enero"_qs, u" Marzo "_qs, u"Mayo"_qs});
            libre = poner(new QLineEdit(&w), "libre", "T(m) L(20) A(I)");
            ultimo = poner(new QLineEdit(&w), "ultimo", nullptr);
            control(&w, foco)->setFocus();
            QVERIFY(mostrarActiva(&w));
        }
    };

    static bool enfocar(QWidget *campo)
    {
        campo->setFocus(Qt::TabFocusReason);
        return QTest::qWaitFor([&] { return campo->hasFocus(); }, 2000);
    }

private Q_SLOTS:
    void initTestCase_data() { localesData(); }
    void init() { ponerLocaleGlobal(); }

    // A walk through the window by keyboard. Enter moves on; a key the field changes arrives
    // changed; the key that completes an identity number moves on after it; "+" puts the default
    // value of a line edit, a check box or a list and moves on. Rewrites of the text are flagged,
    // and the field left is remembered unless told not to.
    void teclado()
    {
        ServiciosGrabados servicios;
        Ventana v;
        QList<bool> vistos;
        connect(v.importe, &QLineEdit::textChanged, [&] { vistos << CambiandoTexto; });
        v.importe->setText(u"5"_qs);
        QVERIFY(enfocar(v.importe)); // 5 -> 5.00: a rewrite
        teclear(v.importe, u"1,5"_qs); // the user's: 1, 1. and 1.5
        QTest::keyClick(v.importe, Qt::Key_Return);
        QTRY_VERIFY(v.fecha->hasFocus()); // 1.5 -> 1,50 or 1.50: a rewrite
        QCOMPARE(v.importe->text(), QLocale().decimalPoint() == u"," ? u"1,50"_qs : u"1.50"_qs);
        QCOMPARE(vistos, (QList<bool>{false, true, false, false, false, true}));
        QVERIFY(!CambiandoTexto);
        QCOMPARE(UltimoCampo.data(), v.importe);

        NoRecordarCampo = true;
        QTest::keyClick(v.fecha, Qt::Key_Enter);
        QTRY_VERIFY(v.codigo->hasFocus());
        QCOMPARE(UltimoCampo.data(), v.importe);
        NoRecordarCampo = false;
        QVERIFY(enfocar(v.provincia));
        QCOMPARE(UltimoCampo.data(), v.codigo);
        teclear(v.provincia, u"ab+"_qs);
        QTRY_VERIFY(v.nif->hasFocus());
        QCOMPARE(v.provincia->text(), u"ES"_qs);
        teclear(v.nif, u"12345678?"_qs);
        QTRY_VERIFY(v.activo->hasFocus());
        QCOMPARE(v.nif->text(), u"12345678Z"_qs);
        QTest::keyClick(v.activo, '+');
        QTRY_VERIFY(v.mes->hasFocus());
        QVERIFY(v.activo->isChecked());
        QTest::keyClick(v.mes, '+');
        QTRY_VERIFY(v.libre->hasFocus());
        QCOMPARE(v.mes->currentIndex(), 1); // " Marzo " matches "Marzo" trimmed
        QVERIFY(servicios.mensajes.isEmpty());
        teclear(v.libre, u"a+"_qs);
        QCOMPARE(v.libre->text(), QString()); // no default value: emptied
        // The window goes with its Tab still queued: the Tab finds no focused control.
    }

    // The field focused when its window opens is entered like any other; switching to another
    // window and back neither leaves nor enters it again. Leaving gives the field back the
    // colour it had, its own or the system's.
    void colores_y_ventanas()
    {
        ServiciosGrabados servicios;
        Ventana v("importe");
        const QColor edicion(192, 255, 255);
        QTRY_COMPARE(v.importe->palette().color(QPalette::Base), edicion);
        QVERIFY(TagDe(v.importe).contains(u"P(-2147483643)"_qs)); // the system window colour
        QWidget otra;
        QVERIFY(mostrarActiva(&otra));
        QVERIFY(UltimoCampo.isNull()); // not left
        QVERIFY(mostrarActiva(&v.w));
        QVERIFY(TagDe(v.importe).contains(u"P(-2147483643)"_qs)); // not entered again
        QVERIFY(enfocar(v.fecha));
        QVERIFY(!v.importe->palette().isBrushSet(QPalette::Active, QPalette::Base));

        QPalette amarillo = v.codigo->palette();
        amarillo.setColor(QPalette::Base, QColor(255, 255, 0));
        v.codigo->setPalette(amarillo);
        QVERIFY(enfocar(v.codigo));
        QVERIFY(enfocar(v.fecha));
        QCOMPARE(v.codigo->palette().color(QPalette::Base), QColor(255, 255, 0));
        QCOMPARE(TagDe(v.codigo), u"T(D) L(6) A(C) P(65535)"_qs);

        // A check box paints and restores its own background.
        QVERIFY(enfocar(v.activo));
        QCOMPARE(v.activo->palette().color(QPalette::Window), edicion);
        QVERIFY(enfocar(v.fecha));
        QVERIFY(!v.activo->palette().isBrushSet(QPalette::Active, QPalette::Window));
    }

    // The filter put on a field whose tag was set before, and taken away; a descriptor without a
    // type or without a closing bracket is reported without breaking the field.
    void filtro_y_descriptor_roto()
    {
        ServiciosGrabados servicios;
        Ventana v;
        PonerTagDe(v.ultimo, u"T(N) L(5) A(D)"_qs);
        QVERIFY(enfocar(v.ultimo));
        PrepararCampo(v.ultimo);
        teclear(v.ultimo, u"a,1"_qs);
        QCOMPARE(v.ultimo->text(), u".1"_qs);
        QuitarCampo(v.ultimo);
        teclear(v.ultimo, u"x"_qs);
        QCOMPARE(v.ultimo->text(), u".1x"_qs);

        PonerTagDe(v.libre, u"L(5) A(I)"_qs);
        QVERIFY(enfocar(v.libre));
        teclear(v.libre, u"ab"_qs);
        QCOMPARE(v.libre->text(), u"ab"_qs); // no type: free text
        QVERIFY(servicios.mensajes.value(0).texto.contains(u"obligatorio (T) Tipo en L(5) A(I)"_qs));
        servicios.mensajes.clear();
        PonerTagDe(v.libre, u"T(N L"_qs); // a run-time error, reported as every handler reports one, the key dropped
        teclear(v.libre, u"1"_qs);
        QCOMPARE(v.libre->text(), u"ab"_qs);
        QCOMPARE(servicios.mensajes.size(), 1);
        QCOMPARE(servicios.mensajes[0].texto, u"Error 5: Llamada a procedimiento o argumento no válidos"_qs);
        QVERIFY(enfocar(v.importe)); // leaving does not raise either
    }
};

QTEST_MAIN(TstCampos)
#include "tst_campos.moc"
