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

    // Each entry opens its window.
    void menu()
    {
        std::unique_ptr<QMenu> m(MenuBandeja());
        QStringList hechos;
        for (QAction *a : m->actions()) {
            if (a->isSeparator() || a->text() == u"Salir")
                continue;
            a->trigger();
            for (QWidget *w : QApplication::topLevelWidgets())
                if (w->isVisible()) {
                    hechos << a->text() + u'>' + w->objectName();
                    w->close();
                }
        }
        QCOMPARE(hechos, (QStringList{u"Calculadora>MiCalc"_qs, u"Teléfonos>Telefonos"_qs}));
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
