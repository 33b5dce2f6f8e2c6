#include "comun/pruebas.h"

#include <kvr/error.h>
#include <kvr/teclasnombre.h>

#include <QKeySequence>
#include <QLineEdit>
#include <QtTest>

using namespace kvr;

class TstEnviarTeclas : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // The key strokes of a send-keys text, each as "Modifiers+Key[text]" with control characters
    // written \xNN; a text with a syntax error raises error 5.
    void analizar_data()
    {
        QTest::addColumn<QString>("teclas");
        QTest::addColumn<QString>("pulsaciones");
        QTest::newRow("caracteres") << u"aB1ñ"_qs << u"A[a] Shift+B[B] 1[1] Ñ[ñ]"_qs;
        QTest::newRow("tilde es Intro") << u"~"_qs << u"Return[\\x0d]"_qs;
        QTest::newRow("nombres, sin mayúsculas") << u"{ENTER}{tab}{Esc}{bs}{DEL}{INS}{PgDn}{F16}"_qs
            << u"Return[\\x0d] Tab[\\x09] Esc[\\x1b] Backspace[\\x08] Del[\\x7f] Ins[] PgDown[] F16[]"_qs;
        QTest::newRow("repetición") << u"{TAB 3}{a 2}"_qs << u"Tab[\\x09] Tab[\\x09] Tab[\\x09] A[a] A[a]"_qs;
        QTest::newRow("mayúsculas y tabulador") << u"+{TAB}"_qs << u"Shift+Backtab[\\x09]"_qs;
        QTest::newRow("control y mayúsculas") << u"^+a"_qs << u"Ctrl+Shift+A[\\x01]"_qs;
        QTest::newRow("alt") << u"%{F4}"_qs << u"Alt+F4[]"_qs;
        QTest::newRow("grupo") << u"+(ab)c"_qs << u"Shift+A[A] Shift+B[B] C[c]"_qs;
        QTest::newRow("escapados") << u"{+}{^}{%}{~}{(}{)}{{}{}}"_qs << u"+[+] ^[^] %[%] ~[~] ([(] )[)] {[{] }[}]"_qs;
        QTest::newRow("texto literal") << TeclasLiterales(u"1+(2)%"_qs) << u"1[1] +[+] ([(] 2[2] )[)] %[%]"_qs;
        QTest::newRow("nombre desconocido") << u"ab{NADA}"_qs << u"error 5"_qs;
        QTest::newRow("llave sin cerrar") << u"a{TAB"_qs << u"error 5"_qs;
        QTest::newRow("grupo sin cerrar") << u"+(ab"_qs << u"error 5"_qs;
        QTest::newRow("paréntesis de más") << u"ab)"_qs << u"error 5"_qs;
        QTest::newRow("modificador sin tecla") << u"a^"_qs << u"error 5"_qs;
        QTest::newRow("cuenta excesiva") << u"{TAB 10000}"_qs << u"error 5"_qs;
    }
    void analizar()
    {
        QFETCH(QString, teclas);
        QFETCH(QString, pulsaciones);
        QStringList r;
        try {
            for (const PulsacionTecla &p : AnalizarTeclas(teclas)) {
                QString texto;
                for (QChar c : p.texto) {
                    const bool control = c.unicode() < 32 || c.unicode() == 127;
                    texto += control ? QStringLiteral("\\x%1").arg(int(c.unicode()), 2, 16, QChar(u'0')) : QString(c);
                }
                r << QKeySequence(QKeyCombination(p.modificadores, Qt::Key(p.tecla))).toString() + u'[' + texto + u']';
            }
        } catch (const ErrorEjecucion &e) {
            r << u"error "_qs + QString::number(e.numero());
        }
        QCOMPARE(r.join(u' '), pulsaciones);
    }

    // Keys arrive once the caller is back in the event loop and follow the focus as it moves;
    // with a target, they go there whatever has the focus. A syntax error sends nothing.
    void enviar()
    {
        QWidget ventana;
        QLineEdit uno(&ventana), dos(&ventana);
        QVERIFY(prueba::mostrarActiva(&ventana));
        uno.setFocus();
        EnviarTeclas(u"Año{TAB}dos+(x)"_qs);
        QCOMPARE(uno.text(), QString());
        QCoreApplication::processEvents();
        QCOMPARE(uno.text() + u'|' + dos.text(), u"Año|dosX"_qs);
        EnviarTeclas(u"{BS}{HOME}z"_qs, &uno);
        QVERIFY_THROWS_EXCEPTION(ErrorEjecucion, EnviarTeclas(u"ab{NADA}"_qs));
        QCoreApplication::processEvents();
        QCOMPARE(uno.text() + u'|' + dos.text(), u"zAñ|dosX"_qs);
    }
};

QTEST_MAIN(TstEnviarTeclas)
#include "tst_enviarteclas.moc"
