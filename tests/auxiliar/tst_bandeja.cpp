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

    // Each entry opens its window; the last one ends the application.
    void menu()
    {
        std::unique_ptr<QMenu> m(MenuBandeja());
        QStringList hechos;
        for (QAction *a : m->actions().first(2)) {
            a->trigger();
            for (QWidget *w : QApplication::topLevelWidgets())
                if (w->isVisible()) {
                    hechos << a->text() + u'>' + w->objectName();
                    w->close();
                }
        }
        QCOMPARE(hechos, (QStringList{u"Calculadora>MiCalc"_qs, u"Teléfonos>Telefonos"_qs}));
        QCOMPARE(m->actions().last()->text(), u"Salir"_qs);
        QTimer::singleShot(0, m->actions().last(), &QAction::trigger);
        QTimer::singleShot(5000, qApp, [] { QCoreApplication::exit(1); }); // a failure, not a hang
        QCOMPARE(QCoreApplication::exec(), 0);
    }
};

QTEST_MAIN(TstBandeja)
#include "tst_bandeja.moc"
