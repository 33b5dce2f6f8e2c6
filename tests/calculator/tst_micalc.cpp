// The calculator window offscreen: real clicks, real key events, the real clipboard. The key rules
// themselves are the engine's suite; here only what the window adds to them.
#include "comun/pruebas.h"

#include <kvr/micalc.h>
#include <kvr/utilidades.h>

#include <QCheckBox>
#include <QClipboard>
#include <QPlainTextEdit>

using namespace kvr;
using prueba::control;

namespace {

QPushButton *tecla(QWidget *calc, int i)
{
    return control<QPushButton>(calc, QStringLiteral("tecla(%1)").arg(i));
}

MiCalc *abrir()
{
    auto *calc = new MiCalc;
    calc->show();
    QCoreApplication::processEvents();
    return calc;
}

void cerrar(QPointer<MiCalc> &calc)
{
    if (calc)
        calc->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// The display, then the tape: "8.00 =|5.00 +\n3.00 =\n8.00 =\n".
QString vista(QWidget *calc)
{
    return control<QLabel>(calc, "Pantalla")->text() + u'|' + control<QPlainTextEdit>(calc, "Papel")->toPlainText();
}

} // namespace

class TstMiCalc : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        // F8 would open the phone book; these tests watch only the calculator.
        RegistrarVentana(QStringLiteral("Telefonos"), {});
    }

    void diseno()
    {
        QPointer<MiCalc> calc = abrir();
        QCOMPARE(calc->objectName(), u"MiCalc"_qs);
        QVERIFY(calc->windowFlags() & Qt::FramelessWindowHint);
        QCOMPARE(calc->size(), QSize(460, 244));
        for (int i = 0; i < 24; ++i)
            QCOMPARE(tecla(calc, i)->toolTip(), MotorCalculadora::AyudaDe(i));
        QCOMPARE(tecla(calc, 12)->property("tag").toString(), u"(FF)"_qs);
        QCOMPARE(tecla(calc, 12)->font().family(), u"Arial"_qs);
        QCOMPARE(control<QPlainTextEdit>(calc, "Papel")->property("tag").toString(), u"(FF)"_qs);
        QCOMPARE(control<QLabel>(calc, "Pantalla")->toolTip(), u"0.00  "_qs);
        // Not started as "Residente" nor with "+": the toggle is hidden.
        QVERIFY(control<QCheckBox>(calc, "FijarUp")->isHidden());
        QString expresion = u"2+2"_qs;
        QCOMPARE(calc->Evaluar(expresion) + expresion, u"2+2"_qs);
        cerrar(calc);
    }

    // The same sequence clicked on the keys and typed (Enter, Backspace, letters without a key,
    // the tape holding the focus) gives the same display and tape; the focus ends on the key pad.
    void clicYTeclado()
    {
        const QString esperado = u"4.00 =|1.00 +\n3.00 =\n4.00 =\n"_qs;
        QPointer<MiCalc> a = abrir();
        for (const QChar c : u"12<+3="_qs)
            QTest::mouseClick(tecla(a, int(MotorCalculadora::Teclas().indexOf(c))), Qt::LeftButton);
        QCOMPARE(vista(a), esperado);
        QCOMPARE(prueba::nombreDelFoco(), u"Panel"_qs);
        cerrar(a);

        QPointer<MiCalc> b = abrir();
        prueba::teclear(b, u"12\b+xdz"_qs);
        auto *papel = control<QPlainTextEdit>(b, "Papel");
        papel->setFocus();
        QTest::keyClick(papel, '3');
        QTest::keyClick(papel, Qt::Key_Return);
        QCOMPARE(vista(b), esperado);
        cerrar(b);
    }

    // The clipboard's text typed as keys: with a decimal comma its points are dropped, without
    // one they stay; the result of an operation goes back to the clipboard.
    void pegar_data()
    {
        QTest::addColumn<QString>("previo");
        QTest::addColumn<QString>("portapapeles");
        QTest::addColumn<bool>("botonDerecho"); // on the display, else the "Pegar" button
        QTest::addColumn<QString>("visto");     // display|tape|clipboard
        QTest::newRow("coma decimal") << u""_qs << u"1.234,56"_qs << false << u"1,234.56  ||1.234,56"_qs;
        QTest::newRow("punto, letras, botón derecho") << u"5+"_qs << u"c2.5*2="_qs << true
                                                    << u"5.00 =|2.50 *\n2.00 =\n5.00 =\n|5.00"_qs;
    }
    void pegar()
    {
        QFETCH(QString, previo); QFETCH(QString, portapapeles);
        QFETCH(bool, botonDerecho); QFETCH(QString, visto);
        QPointer<MiCalc> calc = abrir();
        prueba::teclear(calc, previo);
        QGuiApplication::clipboard()->setText(portapapeles);
        if (botonDerecho)
            QTest::mouseClick(control<QLabel>(calc, "Pantalla"), Qt::RightButton);
        else
            QTest::mouseClick(control<QPushButton>(calc, "Pegar"), Qt::LeftButton);
        QCoreApplication::processEvents();
        QCOMPARE(vista(calc) + u'|' + QGuiApplication::clipboard()->text(), visto);
        cerrar(calc);
    }

    void decimalesBoton()
    {
        QPointer<MiCalc> calc = abrir();
        auto *boton = control<QPushButton>(calc, "decimales");
        prueba::teclear(calc, u"1.23456"_qs);
        QStringList vistos;
        for (int i = 0; i < 4; ++i) {
            QTest::mouseClick(boton, Qt::LeftButton);
            vistos << boton->text() + u' ' + control<QLabel>(calc, "Pantalla")->text();
        }
        QCOMPARE(vistos.join(u'|'), u"3d 1.235  |4d 1.2346  |5d 1.23456  |2d 1.23  "_qs);
        cerrar(calc);
    }

    void f8FijaArriba()
    {
        QPointer<MiCalc> calc = abrir();
        auto *fijar = control<QCheckBox>(calc, "FijarUp");
        const QRect antes = calc->geometry();
        const auto arriba = [&] { return bool(calc->windowHandle()->flags() & Qt::WindowStaysOnTopHint); };
        QTest::keyClick(calc, Qt::Key_F8);
        QVERIFY(fijar->isChecked() && arriba());
        QTest::keyClick(calc, Qt::Key_F8); // F8 never unticks
        QVERIFY(fijar->isChecked());
        QCOMPARE(fijar->text(), u"Siempre visible SI"_qs);
        QCOMPARE(calc->geometry(), antes);
        fijar->click();
        QVERIFY(!fijar->isChecked() && !arriba());
        QCOMPARE(fijar->text(), u"Siempre visible NO"_qs);
        cerrar(calc);
    }

    // A click on the display hides the tape, its button shows it again: the window narrows to the
    // key pad and its margin, and widens back to what it was.
    void verPapel()
    {
        QPointer<MiCalc> calc = abrir();
        auto *papel = control<QPlainTextEdit>(calc, "Papel");
        prueba::teclear(calc, u"5+3\r"_qs);
        const QRect antes = calc->geometry();
        QTest::mouseClick(control<QLabel>(calc, "Pantalla"), Qt::LeftButton);
        QVERIFY(papel->isHidden());
        QCOMPARE(calc->geometry(), QRect(antes.topLeft(), QSize(8 + 244, antes.height())));
        QTest::mouseClick(control<QPushButton>(calc, "VerPapel"), Qt::LeftButton);
        QVERIFY(!papel->isHidden());
        QCOMPARE(calc->geometry(), antes);
        QCOMPARE(vista(calc), u"8.00 =|5.00 +\n3.00 =\n8.00 =\n"_qs);
        QCOMPARE(prueba::nombreDelFoco(), u"Panel"_qs);
        cerrar(calc);
    }

    // Escape and the "Salir" button unload the form.
    void escapeYSalir()
    {
        QPointer<MiCalc> calc = abrir();
        prueba::teclear(calc, u"5+"_qs);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(calc.isNull());
        QPointer<MiCalc> otra = abrir();
        QTest::mouseClick(control<QPushButton>(otra, "Salir"), Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(otra.isNull());
    }

    // F4 opens the calculator from another window, never a second one from the calculator.
    void f4()
    {
        const auto abiertas = [] {
            QList<MiCalc *> r;
            for (QWidget *w : QApplication::topLevelWidgets())
                if (auto *c = qobject_cast<MiCalc *>(w); c && c->isVisible())
                    r << c;
            return r;
        };
        QVERIFY(abiertas().isEmpty());
        TeclasGlobales(TeclaF4, 0, u"OtraVentana"_qs);
        QCOMPARE(abiertas().size(), 1);
        QPointer<MiCalc> calc = abiertas().value(0);
        QTest::keyClick(calc, Qt::Key_F4);
        QCOMPARE(abiertas().size(), 1);
        cerrar(calc);
    }
};

QTEST_MAIN(TstMiCalc)
#include "tst_micalc.moc"
