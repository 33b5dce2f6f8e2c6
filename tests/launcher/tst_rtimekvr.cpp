// The start-up window: the notice is shown exactly once, with the real message box, and nothing
// is left open afterwards.
#include <kvr/rtimekvr.h>

#include <QtTest>
#include <QAbstractButton>
#include <QGroupBox>
#include <QMessageBox>

using namespace kvr;

class TstRTimeKVR : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aviso_una_vez_y_termina()
    {
        struct Visto { QString titulo, texto; QMessageBox::Icon icono; int botones; };
        QList<Visto> vistos;
        // Answer every box that opens, recording it; the form loads synchronously.
        QTimer vigia;
        connect(&vigia, &QTimer::timeout, [&] {
            auto *caja = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!caja)
                return;
            vistos.append({caja->windowTitle(), caja->text(), caja->icon(), int(caja->buttons().size())});
            QTest::keyClick(caja, Qt::Key_Return);
        });
        vigia.start(20);
        QCOMPARE(EjecutarRTimeKVR(), 0);
        vigia.stop();

        QCOMPARE(vistos.size(), 1);
        QCOMPARE(vistos[0].titulo, u"Aviso de Runtime KVR"_qs);
        QCOMPARE(vistos[0].texto, u"Programa no ejecutable. Instalador de Runtime."_qs);
        QCOMPARE(vistos[0].icono, QMessageBox::Critical);
        QCOMPARE(vistos[0].botones, 1);
        QCoreApplication::processEvents();
        for (QWidget *w : QApplication::topLevelWidgets())
            QVERIFY2(!w->isVisible(), qPrintable(w->objectName()));
    }

    void objetos_comunes()
    {
        RTimeKVR form;
        auto *marco = form.findChild<QGroupBox *>(u"Frame1"_qs);
        QVERIFY(marco);
        QCOMPARE(marco->title(), u"Objetos Comunes"_qs);
        const QStringList nombres = form.ObjetosComunes();
        QStringList esperados = {u"RichTextBox1"_qs, u"UpDown1"_qs, u"DTPicker1"_qs, u"ProgressBar1"_qs,
                                 u"TreeView1"_qs, u"ImageList1"_qs, u"Toolbar1"_qs, u"StatusBar1"_qs,
                                 u"MSFlexGrid1"_qs, u"SSTab1"_qs, u"CommonDialog1"_qs, u"Picture1"_qs,
                                 u"Text1"_qs, u"Timer1"_qs, u"Command1"_qs, u"Check1"_qs, u"Option1"_qs,
                                 u"Combo1"_qs, u"List1"_qs, u"Drive1"_qs, u"Dir1"_qs, u"File1"_qs,
                                 u"Label1"_qs, u"Image1"_qs};
#ifdef KVR_CON_WEBENGINE
        esperados << u"WebBrowser1"_qs;
#endif
        for (const QString &n : esperados)
            QVERIFY2(nombres.contains(n), qPrintable(n));
        QCOMPARE(nombres.size(), esperados.size());
        QVERIFY(!form.isVisible());
    }
};

QTEST_MAIN(TstRTimeKVR)
#include "tst_rtimekvr.moc"
