// The calculator started with the command line "+2": the layout doubles the design size, the
// tape's margin with it, and the always-on-top toggle is offered.
#include <kvr/micalc.h>

#include <QApplication>
#include <QCheckBox>
#include <QtTest>

#include <vector>

using namespace kvr;

class TstMiCalcFactor : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void dobleTamano()
    {
        QPointer<MiCalc> calc = new MiCalc;
        calc->show();
        QCoreApplication::processEvents();
        QCOMPARE(calc->size(), QSize(920, 488));
        QCOMPARE(calc->findChild<QWidget *>(u"Panel"_qs)->geometry(), QRect(8, 192, 488, 280));
        QVERIFY(!calc->findChild<QCheckBox *>(u"FijarUp"_qs)->isHidden());
        // 120 twips are 8 pixels at 96 dpi, 16 at factor 2.
        calc->VerPapel_Click();
        QCOMPARE(calc->width(), 16 + 488);
        calc->VerPapel_Click();
        QCOMPARE(calc->width(), 16 + 488 + 400 + 16);
        calc->close();
    }
};

int main(int argc, char *argv[])
{
    // The application sees "+2" on its command line; Qt Test sees only its own arguments.
    std::vector<char *> argumentos(argv, argv + argc);
    char factor[] = "+2";
    argumentos.push_back(factor);
    int n = int(argumentos.size());
    QApplication app(n, argumentos.data());
    TstMiCalcFactor prueba;
    return QTest::qExec(&prueba, argc, argv);
}
#include "tst_micalc_factor.moc"
