#include <kvr/bandeja.h>

#include <QApplication>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QtTest>

using namespace kvr;

class TstBandeja : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // Offscreen there is no notification area: the call says so and puts up nothing.
    void sinBandeja()
    {
        QVERIFY(!IconoBandeja(u"Contabilidad"_qs));
        QVERIFY(qApp->findChildren<QSystemTrayIcon *>().isEmpty());
    }

    void menu_data()
    {
        QTest::addColumn<int>("indice");
        QTest::addColumn<QString>("ventana");
        QTest::newRow("Calculadora") << 0 << u"MiCalc"_qs;
        QTest::newRow("Teléfonos") << 1 << u"Telefonos"_qs;
    }
    void menu()
    {
        QFETCH(int, indice);
        QFETCH(QString, ventana);
        std::unique_ptr<QMenu> m(MenuBandeja());
        QStringList textos;
        for (QAction *a : m->actions())
            if (!a->isSeparator())
                textos << a->text();
        QCOMPARE(textos, (QStringList{u"Calculadora"_qs, u"Teléfonos"_qs, u"Salir"_qs}));
        m->actions().at(indice)->trigger();
        QWidget *abierta = nullptr;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == ventana && w->isVisible())
                abierta = w;
        QVERIFY(abierta);
        abierta->close();
    }

    void salirTerminaLaAplicacion()
    {
        std::unique_ptr<QMenu> m(MenuBandeja());
        QAction *salir = m->actions().last();
        QCOMPARE(salir->text(), u"Salir"_qs);
        QTimer::singleShot(0, salir, &QAction::trigger);
        QTimer::singleShot(5000, qApp, [] { QCoreApplication::exit(1); }); // a failure, not a hang
        QCOMPARE(QCoreApplication::exec(), 0);
    }
};

QTEST_MAIN(TstBandeja)
#include "tst_bandeja.moc"
