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
        QVERIFY(calc->windowFlags() & Qt::FramelessWindowHint);
        QCOMPARE(calc->size(), QSize(460, 244));
        for (int i = 0; i < 24; ++i)
            QCOMPARE(tecla(calc, i)->toolTip(), MotorCalculadora::AyudaDe(i));
        QCOMPARE(tecla(calc, 12)->font().family(), u"Arial"_qs);
        QCOMPARE(control<QLabel>(calc, "Pantalla")->toolTip(), u"0.00  "_qs);
        // Not started as "Residente" nor with "+": the toggle is hidden.
        QVERIFY(control<QCheckBox>(calc, "FijarUp")->isHidden());
        QString expresion = u"2+2"_qs;
        QCOMPARE(calc->Evaluar(expresion) + expresion, u"2+2"_qs);
        cerrar(calc);
    }

    // The same sequence clicked on the keys and typed (Enter, Backspace, letters without a key,
    // the tape holding the focus) gives the same display and tape; the focus ends on the key pad.
    // The decimals button shows the next count. A click on the display hides the tape, its button
    // shows it again: the window narrows to the key pad and its margin, and widens back.
    void clicYTeclado()
    {
        const QString esperado = u"4.00 =|1.00 +\n3.00 =\n4.00 =\n"_qs;
        QPointer<MiCalc> a = abrir();
        for (const QChar c : u"12<+3="_qs)
            QTest::mouseClick(tecla(a, int(MotorCalculadora::Teclas().indexOf(c))), Qt::LeftButton);
        QCOMPARE(vista(a), esperado);
        auto *decimales = control<QPushButton>(a, "decimales");
        QTest::mouseClick(decimales, Qt::LeftButton);
        QCOMPARE(decimales->text() + u' ' + vista(a).section(u'|', 0, 0), u"3d 4.000 ="_qs);
        cerrar(a);

        QPointer<MiCalc> b = abrir();
        prueba::teclear(b, u"12\b+xdz"_qs);
        auto *papel = control<QPlainTextEdit>(b, "Papel");
        papel->setFocus();
        QTest::keyClick(papel, '3');
        QTest::keyClick(papel, Qt::Key_Return);
        QCOMPARE(vista(b), esperado);
        const QRect antes = b->geometry();
        QTest::mouseClick(control<QLabel>(b, "Pantalla"), Qt::LeftButton);
        QVERIFY(papel->isHidden());
        QCOMPARE(b->geometry(), QRect(antes.topLeft(), QSize(8 + 244, antes.height())));
        QTest::mouseClick(control<QPushButton>(b, "VerPapel"), Qt::LeftButton);
        QVERIFY(!papel->isHidden());
        QCOMPARE(b->geometry(), antes);
        QCOMPARE(vista(b), esperado);
        QCOMPARE(prueba::nombreDelFoco(), u"Panel"_qs);
        cerrar(b);
    }

    // The clipboard's text typed as keys, by the "Pegar" button or a right click on the display:
    // with a decimal comma its points are dropped, without one they stay; letters act as keys.
    // The result of an operation goes back to the clipboard. "Salir" unloads the form.
    void pegarYSalir()
    {
        QPointer<MiCalc> calc = abrir();
        QGuiApplication::clipboard()->setText(u"1.234,56"_qs);
        prueba::pulsar(control<QPushButton>(calc, "Pegar"));
        QCOMPARE(vista(calc) + u'|' + QGuiApplication::clipboard()->text(), u"1,234.56  ||1.234,56"_qs);
        QGuiApplication::clipboard()->setText(u"c2.5*2="_qs);
        QTest::mouseClick(control<QLabel>(calc, "Pantalla"), Qt::RightButton);
        QCoreApplication::processEvents();
        QCOMPARE(vista(calc) + u'|' + QGuiApplication::clipboard()->text(),
                 u"5.00 =|2.50 *\n2.00 =\n5.00 =\n|5.00"_qs);
        prueba::pulsar(control<QPushButton>(calc, "Salir"));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(calc.isNull());
    }

    void f8FijaArriba()
    {
        QPointer<MiCalc> calc = abrir();
        auto *fijar = control<QCheckBox>(calc, "FijarUp");
        const QRect antes = calc->geometry();
        const auto arriba = [&] { return bool(calc->windowHandle()->flags() & Qt::WindowStaysOnTopHint); };
        QTest::keyClick(calc, Qt::Key_F8);
        QTest::keyClick(calc, Qt::Key_F8); // F8 never unticks
        QVERIFY(fijar->isChecked() && arriba());
        QCOMPARE(fijar->text(), u"Siempre visible SI"_qs);
        QCOMPARE(calc->geometry(), antes);
        fijar->click();
        QVERIFY(!fijar->isChecked() && !arriba());
        QCOMPARE(fijar->text(), u"Siempre visible NO"_qs);
        cerrar(calc);
    }

    // F4 opens the calculator from another window, never a second one from the calculator;
    // Escape unloads it.
    void f4YEscape()
    {
        const auto abiertas = [] {
            QList<QWidget *> r = QApplication::topLevelWidgets();
            r.removeIf([](QWidget *w) { return !qobject_cast<MiCalc *>(w) || !w->isVisible(); });
            return r;
        };
        TeclasGlobales(TeclaF4, 0, u"OtraVentana"_qs);
        QCOMPARE(abiertas().size(), 1);
        QPointer<QWidget> calc = abiertas().value(0);
        QTest::keyClick(calc, Qt::Key_F4);
        QCOMPARE(abiertas().size(), 1);
        QTest::keyClick(calc, Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(calc.isNull());
    }
};

QTEST_MAIN(TstMiCalc)
#include "tst_micalc.moc"
