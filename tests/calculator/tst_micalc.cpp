// The calculator window offscreen: real clicks, real key events, the real clipboard.
#include "comun/pruebas.h"

#include <kvr/micalc.h>
#include <kvr/utilidades.h>

#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

using namespace kvr;
using prueba::control;

namespace {

QPushButton *tecla(QWidget *calc, int i)
{
    return calc->findChild<QPushButton *>(QStringLiteral("tecla(%1)").arg(i));
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

// Types a sequence as keys to the widget that has the focus: "\r" is Enter, "\b" Backspace.
void teclear(QWidget *calc, const QString &teclas)
{
    for (const QChar c : teclas) {
        QWidget *destino = QApplication::focusWidget() ? QApplication::focusWidget() : calc;
        if (c == u'\r')
            QTest::keyClick(destino, Qt::Key_Return);
        else if (c == u'\b')
            QTest::keyClick(destino, Qt::Key_Backspace);
        else
            QTest::keyClick(destino, char(c.unicode()));
    }
}

int calculadorasAbiertas()
{
    int n = 0;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->objectName() == u"MiCalc" && w->isVisible())
            ++n;
    return n;
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
    void init() { QLocale::setDefault(QLocale::c()); }

    void diseno()
    {
        QPointer<MiCalc> calc = abrir();
        QCOMPARE(calc->objectName(), u"MiCalc"_qs);
        QVERIFY(calc->windowFlags() & Qt::FramelessWindowHint);
        QCOMPARE(calc->size(), QSize(460, 244));
        for (int i = 0; i < 24; ++i) {
            QCOMPARE(tecla(calc, i)->text(), MotorCalculadora::TeclaDe(i));
            QCOMPARE(tecla(calc, i)->toolTip(), MotorCalculadora::AyudaDe(i));
        }
        QCOMPARE(tecla(calc, 12)->property("tag").toString(), u"(FF)"_qs);
        QCOMPARE(tecla(calc, 12)->font().family(), u"Arial"_qs);
        QCOMPARE(control<QPlainTextEdit>(calc, "Papel")->property("tag").toString(), u"(FF)"_qs);
        QCOMPARE(control<QLabel>(calc, "Pantalla")->toolTip(), u"0.00  "_qs);
        // Not started as "Residente" nor with "+": the toggle is hidden.
        QVERIFY(control<QCheckBox>(calc, "FijarUp")->isHidden());
        QString expresion = u"2+2"_qs;
        QCOMPARE(calc->Evaluar(expresion), QString());
        QCOMPARE(expresion, u"2+2"_qs);
        cerrar(calc);
    }

    // The same sequence clicked on the keys and typed at the keyboard gives the same display and
    // tape; the focus ends on the key pad.
    void clicYTeclado_data()
    {
        QTest::addColumn<QString>("teclas");
        QTest::addColumn<QString>("tecleado");
        QTest::addColumn<QString>("pantalla");
        QTest::newRow("suma con Intro") << u"5+3="_qs << u"5+3\r"_qs << u"8.00 ="_qs;
        QTest::newRow("retroceso") << u"12<"_qs << u"12\b"_qs << u"1.00  "_qs;
        QTest::newRow("p minúscula") << u"1P"_qs << u"1p"_qs << u"166.39 P"_qs;
        QTest::newRow("letras sin tecla") << u"7"_qs << u"7xdz"_qs << u"7.00  "_qs;
    }
    void clicYTeclado()
    {
        QFETCH(QString, teclas); QFETCH(QString, tecleado); QFETCH(QString, pantalla);
        QPointer<MiCalc> a = abrir();
        for (const QChar c : teclas)
            QTest::mouseClick(tecla(a, int(MotorCalculadora::Teclas().indexOf(c))), Qt::LeftButton);
        QCOMPARE(control<QLabel>(a, "Pantalla")->text(), pantalla);
        QCOMPARE(QApplication::focusWidget(), control<QWidget>(a, "Panel"));
        const QString papel = control<QPlainTextEdit>(a, "Papel")->toPlainText();
        QCOMPARE(papel, a->Motor().LineasPapel().join(u'\n') + (papel.isEmpty() ? u""_qs : u"\n"_qs));
        cerrar(a);

        QPointer<MiCalc> b = abrir();
        teclear(b, tecleado);
        QCOMPARE(control<QLabel>(b, "Pantalla")->text(), pantalla);
        QCOMPARE(control<QPlainTextEdit>(b, "Papel")->toPlainText(), papel);
        cerrar(b);
    }

    // Keys typed while the tape has the focus still reach the calculator, not the tape.
    void teclasConFocoEnPapel()
    {
        QPointer<MiCalc> calc = abrir();
        auto *papel = control<QPlainTextEdit>(calc, "Papel");
        teclear(calc, u"5+"_qs);
        papel->setFocus();
        QTest::keyClicks(papel, u"3="_qs);
        QCOMPARE(control<QLabel>(calc, "Pantalla")->text(), u"8.00 ="_qs);
        QCOMPARE(papel->toPlainText(), u"5.00 +\n3.00 =\n8.00 =\n"_qs);
        cerrar(calc);
    }

    void pegar_data()
    {
        QTest::addColumn<QString>("previo");
        QTest::addColumn<QString>("portapapeles");
        QTest::addColumn<QString>("entrada");
        QTest::addColumn<QString>("pantalla");
        QTest::addColumn<QString>("papel");
        QTest::addColumn<bool>("botonDerecho"); // on the display, else the "Pegar" button
        QTest::newRow("coma decimal") << u""_qs << u"1.234,56"_qs << u"1234.56"_qs << u"1,234.56  "_qs << u""_qs << false;
        QTest::newRow("letras actúan") << u"5+"_qs << u"c12"_qs << u"12"_qs << u"12.00  "_qs << u""_qs << false;
        QTest::newRow("operación entera") << u""_qs << u"2*3="_qs << u""_qs << u"6.00 ="_qs
                                          << u"2.00 *\n3.00 =\n6.00 =\n"_qs << false;
        QTest::newRow("botón derecho en la pantalla") << u""_qs << u"42"_qs << u"42"_qs << u"42.00  "_qs << u""_qs << true;
    }
    void pegar()
    {
        QFETCH(QString, previo); QFETCH(QString, portapapeles); QFETCH(QString, entrada);
        QFETCH(QString, pantalla); QFETCH(QString, papel); QFETCH(bool, botonDerecho);
        QPointer<MiCalc> calc = abrir();
        teclear(calc, previo);
        QGuiApplication::clipboard()->setText(portapapeles);
        if (botonDerecho)
            QTest::mouseClick(control<QLabel>(calc, "Pantalla"), Qt::RightButton);
        else
            QTest::mouseClick(control<QPushButton>(calc, "Pegar"), Qt::LeftButton);
        QCoreApplication::processEvents();
        QCOMPARE(calc->Motor().Entrada, entrada);
        QCOMPARE(control<QLabel>(calc, "Pantalla")->text(), pantalla);
        QCOMPARE(control<QPlainTextEdit>(calc, "Papel")->toPlainText(), papel);
        cerrar(calc);
    }

    void portapapeles_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("teclas");
        QTest::addColumn<QString>("copiado");
        QTest::newRow("C") << u"C"_qs << u"1234*2\r"_qs << u"2,468.00"_qs;
        QTest::newRow("es") << u"es_ES"_qs << u"1234*2\r"_qs << u"2.468,00"_qs;
        QTest::newRow("es tres decimales") << u"es_ES"_qs << u"d1/8="_qs << u"0,125"_qs;
    }
    void portapapeles()
    {
        QFETCH(QString, locale); QFETCH(QString, teclas); QFETCH(QString, copiado);
        QLocale::setDefault(QLocale(locale));
        QPointer<MiCalc> calc = abrir();
        QGuiApplication::clipboard()->setText(u"otra cosa"_qs);
        for (const QChar c : teclas) {
            if (c == u'd')
                QTest::mouseClick(control<QPushButton>(calc, "decimales"), Qt::LeftButton);
            else
                teclear(calc, QString(c));
        }
        QCOMPARE(QGuiApplication::clipboard()->text(), copiado);
        cerrar(calc);
    }

    void decimalesBoton()
    {
        QPointer<MiCalc> calc = abrir();
        auto *boton = control<QPushButton>(calc, "decimales");
        teclear(calc, u"1.23456"_qs);
        const QStringList captions{u"3d"_qs, u"4d"_qs, u"5d"_qs, u"2d"_qs};
        const QStringList pantallas{u"1.235  "_qs, u"1.2346  "_qs, u"1.23456  "_qs, u"1.23  "_qs};
        for (int i = 0; i < 4; ++i) {
            QTest::mouseClick(boton, Qt::LeftButton);
            QCOMPARE(boton->text(), captions[i]);
            QCOMPARE(control<QLabel>(calc, "Pantalla")->text(), pantallas[i]);
        }
        cerrar(calc);
    }

    void f8FijaArriba()
    {
        QPointer<MiCalc> calc = abrir();
        auto *fijar = control<QCheckBox>(calc, "FijarUp");
        const QRect antes = calc->geometry();
        QTest::keyClick(calc, Qt::Key_F8);
        QVERIFY(fijar->isChecked());
        QVERIFY(calc->windowHandle()->flags() & Qt::WindowStaysOnTopHint);
        QCOMPARE(fijar->text(), u"Siempre visible SI"_qs);
        QCOMPARE(calc->geometry(), antes);
        // F8 never unticks.
        QTest::keyClick(calc, Qt::Key_F8);
        QVERIFY(fijar->isChecked());
        fijar->click();
        QVERIFY(!fijar->isChecked());
        QVERIFY(!(calc->windowHandle()->flags() & Qt::WindowStaysOnTopHint));
        QCOMPARE(fijar->text(), u"Siempre visible NO"_qs);
        cerrar(calc);
    }

    void verPapel_data()
    {
        QTest::addColumn<bool>("porPantalla");
        QTest::newRow("botón") << false;
        QTest::newRow("clic en la pantalla") << true;
    }
    void verPapel()
    {
        QFETCH(bool, porPantalla);
        QPointer<MiCalc> calc = abrir();
        auto *papel = control<QPlainTextEdit>(calc, "Papel");
        teclear(calc, u"5+3="_qs);
        const QString texto = papel->toPlainText();
        const QRect antes = calc->geometry();
        auto pulsar = [&] {
            if (porPantalla)
                QTest::mouseClick(control<QLabel>(calc, "Pantalla"), Qt::LeftButton);
            else
                QTest::mouseClick(control<QPushButton>(calc, "VerPapel"), Qt::LeftButton);
        };
        pulsar();
        QVERIFY(papel->isHidden());
        QCOMPARE(calc->geometry(), QRect(antes.topLeft(), QSize(8 + 244, antes.height())));
        pulsar();
        QVERIFY(!papel->isHidden());
        QCOMPARE(calc->geometry(), antes);
        QCOMPARE(papel->toPlainText(), texto);
        QCOMPARE(QApplication::focusWidget(), control<QWidget>(calc, "Panel"));
        cerrar(calc);
    }

    void escapeCierra()
    {
        QPointer<MiCalc> calc = abrir();
        teclear(calc, u"5+"_qs);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QVERIFY(!calc || !calc->isVisible());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(calc.isNull());
        // A new calculator starts blank.
        QPointer<MiCalc> otra = abrir();
        QCOMPARE(otra->Motor().Pendiente, QString());
        QCOMPARE(control<QPlainTextEdit>(otra, "Papel")->toPlainText(), QString());
        QTest::mouseClick(control<QPushButton>(otra, "Salir"), Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(otra.isNull());
    }

    // F4 opens the calculator from another window, never a second one from the calculator.
    void f4()
    {
        QCOMPARE(calculadorasAbiertas(), 0);
        QWidget otra;
        otra.setObjectName(u"OtraVentana"_qs);
        TeclasGlobales(TeclaF4, 0, otra.objectName());
        QCOMPARE(calculadorasAbiertas(), 1);
        QPointer<MiCalc> calc;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (auto *c = qobject_cast<MiCalc *>(w))
                calc = c;
        QVERIFY(calc);
        QTest::keyClick(calc, Qt::Key_F4);
        QCOMPARE(calculadorasAbiertas(), 1);
        cerrar(calc);
    }
};

QTEST_MAIN(TstMiCalc)
#include "tst_micalc.moc"
