// The start-up window: the notice is shown exactly once, with the real message box, and nothing
// is left open afterwards.
#include <kvr/rtimekvr.h>

#include <QtTest>
#include <QGroupBox>
#include <QMessageBox>

using namespace kvr;

class TstRTimeKVR : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aviso_una_vez_y_termina()
    {
        QStringList vistos;
        // Answer every box that opens, recording it; the form loads synchronously.
        QTimer vigia;
        connect(&vigia, &QTimer::timeout, [&] {
            auto *caja = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!caja)
                return;
            vistos << QStringLiteral("%1|%2|%3|%4").arg(caja->windowTitle(), caja->text())
                          .arg(int(caja->icon())).arg(caja->buttons().size());
            QTest::keyClick(caja, Qt::Key_Return);
        });
        vigia.start(20);
        QCOMPARE(EjecutarRTimeKVR(), 0);
        vigia.stop();
        QCOMPARE(vistos, QStringList{u"Aviso de Runtime KVR|Programa no ejecutable. Instalador de Runtime.|%1|1"_qs
                                         .arg(int(QMessageBox::Critical))});
        QCoreApplication::processEvents();
        for (QWidget *w : QApplication::topLevelWidgets())
            QVERIFY2(!w->isVisible(), qPrintable(w->objectName()));
    }

    void objetos_comunes()
    {
        RTimeKVR form;
        QCOMPARE(form.findChild<QGroupBox *>(u"Frame1"_qs)->title(), u"Objetos Comunes"_qs);
        QStringList nombres = form.ObjetosComunes();
        nombres.sort();
        QString esperados = u"Check1 Combo1 Command1 CommonDialog1 DTPicker1 Dir1 Drive1 File1 Image1 ImageList1 "
                            "Label1 List1 MSFlexGrid1 Option1 Picture1 ProgressBar1 RichTextBox1 SSTab1 StatusBar1 "
                            "Text1 Timer1 Toolbar1 TreeView1 UpDown1"_qs;
#ifdef KVR_CON_WEBENGINE
        esperados += u" WebBrowser1"_qs;
#endif
        QCOMPARE(nombres.join(u' '), esperados);
        QVERIFY(!form.isVisible());
    }
};

QTEST_MAIN(TstRTimeKVR)
#include "tst_rtimekvr.moc"
