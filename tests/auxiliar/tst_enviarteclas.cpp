#include <kvr/error.h>
#include <kvr/teclasnombre.h>

#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QVBoxLayout>
#include <QtTest>

using namespace kvr;

namespace {

// Records the key presses a widget receives, each as "Modifiers+Key[text]".
class Grabadora : public QObject {
public:
    QStringList pulsaciones;

protected:
    bool eventFilter(QObject *, QEvent *e) override
    {
        if (e->type() == QEvent::KeyPress) {
            const auto *k = static_cast<QKeyEvent *>(e);
            QString texto;
            for (QChar c : k->text())
                texto += c.unicode() < 32 || c.unicode() == 127 ? QStringLiteral("\\x%1").arg(int(c.unicode()), 2, 16, QChar(u'0')) : QString(c);
            pulsaciones << QKeySequence(k->keyCombination()).toString() + u'[' + texto + u']';
        }
        return false;
    }
};

} // namespace

class TstEnviarTeclas : public QObject {
    Q_OBJECT
private:
    QWidget m_ventana;
    QLineEdit *m_uno = nullptr, *m_dos = nullptr;

private Q_SLOTS:
    void initTestCase()
    {
        auto *capa = new QVBoxLayout(&m_ventana);
        capa->addWidget(m_uno = new QLineEdit);
        capa->addWidget(m_dos = new QLineEdit);
        m_ventana.show();
        QVERIFY(QTest::qWaitForWindowActive(&m_ventana));
    }
    void init()
    {
        m_uno->clear();
        m_dos->clear();
        m_uno->setFocus();
    }

    void eventos_data()
    {
        QTest::addColumn<QString>("teclas");
        QTest::addColumn<QString>("recibidas");
        QTest::newRow("caracteres") << u"aB1"_qs << u"A[a] Shift+B[B] 1[1]"_qs;
        QTest::newRow("eñe") << u"ñ"_qs << u"Ñ[ñ]"_qs;
        QTest::newRow("tilde es Intro") << u"~"_qs << u"Return[\\x0d]"_qs;
        QTest::newRow("nombres sin mayúsculas") << u"{ENTER}{tab}{Esc}"_qs << u"Return[\\x0d] Tab[\\x09] Esc[\\x1b]"_qs;
        QTest::newRow("borrar e insertar") << u"{BS}{DEL}{INS}"_qs << u"Backspace[\\x08] Del[\\x7f] Ins[]"_qs;
        QTest::newRow("desplazamiento") << u"{HOME}{END}{PGUP}{PGDN}"_qs << u"Home[] End[] PgUp[] PgDown[]"_qs;
        QTest::newRow("flechas") << u"{UP}{DOWN}{LEFT}{RIGHT}"_qs << u"Up[] Down[] Left[] Right[]"_qs;
        QTest::newRow("funciones") << u"{F1}{F16}"_qs << u"F1[] F16[]"_qs;
        QTest::newRow("repetición") << u"{TAB 3}{a 2}"_qs << u"Tab[\\x09] Tab[\\x09] Tab[\\x09] A[a] A[a]"_qs;
        QTest::newRow("mayúsculas y tabulador") << u"+{TAB}"_qs << u"Shift+Backtab[\\x09]"_qs;
        QTest::newRow("control") << u"^c"_qs << u"Ctrl+C[\\x03]"_qs;
        QTest::newRow("alt") << u"%{F4}"_qs << u"Alt+F4[]"_qs;
        QTest::newRow("dos modificadores") << u"^+a"_qs << u"Ctrl+Shift+A[\\x01]"_qs;
        QTest::newRow("grupo") << u"+(ab)c"_qs << u"Shift+A[A] Shift+B[B] C[c]"_qs;
        QTest::newRow("escapados") << u"{+}{^}{%}{~}{(}{)}{{}{}}"_qs << u"+[+] ^[^] %[%] ~[~] ([(] )[)] {[{] }[}]"_qs;
        QTest::newRow("texto literal") << TeclasLiterales(u"1+(2)%"_qs) << u"1[1] +[+] ([(] 2[2] )[)] %[%]"_qs;
    }
    void eventos()
    {
        QFETCH(QString, teclas);
        QFETCH(QString, recibidas);
        // A widget alone in its window, so that a Tab leaves the focus where it is.
        QWidget solo;
        solo.setFocusPolicy(Qt::StrongFocus);
        Grabadora g;
        solo.installEventFilter(&g);
        solo.show();
        QVERIFY(QTest::qWaitForWindowActive(&solo));
        solo.setFocus();
        EnviarTeclas(teclas);
        QVERIFY(g.pulsaciones.isEmpty()); // delivered after the caller returns to the event loop
        QCoreApplication::processEvents();
        QCOMPARE(g.pulsaciones.join(u' '), recibidas);
    }

    // Keys follow the focus as it moves; with a target, they go there whatever has the focus.
    void foco()
    {
        m_ventana.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&m_ventana));
        m_uno->setFocus();
        EnviarTeclas(u"Año{TAB}dos+(x)"_qs);
        QCoreApplication::processEvents();
        QCOMPARE(m_uno->text(), u"Año"_qs);
        QCOMPARE(m_dos->text(), u"dosX"_qs);
        EnviarTeclas(u"{BS}{HOME}z"_qs, m_uno);
        QCoreApplication::processEvents();
        QCOMPARE(m_uno->text(), u"zAñ"_qs);
        QCOMPARE(m_dos->text(), u"dosX"_qs);
    }

    void errores_data()
    {
        QTest::addColumn<QString>("teclas");
        QTest::newRow("nombre desconocido") << u"ab{NADA}"_qs;
        QTest::newRow("llave sin cerrar") << u"a{TAB"_qs;
        QTest::newRow("grupo sin cerrar") << u"+(ab"_qs;
        QTest::newRow("paréntesis de más") << u"ab)"_qs;
        QTest::newRow("modificador sin tecla") << u"a^"_qs;
        QTest::newRow("cuenta excesiva") << u"{TAB 10000}"_qs;
    }
    void errores()
    {
        QFETCH(QString, teclas);
        try {
            EnviarTeclas(teclas);
            QFAIL("no error");
        } catch (const ErrorEjecucion &e) {
            QCOMPARE(e.numero(), 5);
        }
        QCoreApplication::processEvents();
        QCOMPARE(m_uno->text(), QString()); // nothing was sent
    }
};

QTEST_MAIN(TstEnviarTeclas)
#include "tst_enviarteclas.moc"
