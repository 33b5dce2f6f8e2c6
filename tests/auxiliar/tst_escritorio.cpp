// The desktop side of the auxiliary modules: keys delivered to widgets and the tray icon.
#include "comun/pruebas.h"

#include <kvr/bandeja.h>
#include <kvr/error.h>
#include <kvr/teclasnombre.h>

#include <QLineEdit>
#include <QMenu>
#include <QSystemTrayIcon>

using namespace kvr;

class TstEscritorio : public QObject {
    Q_OBJECT
private Q_SLOTS:
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

    // Offscreen there is no notification area: the call says so and puts up nothing. The menu's
    // entries open their windows; the last one ends the application.
    void bandeja()
    {
        QVERIFY(!IconoBandeja(u"Contabilidad"_qs));
        QVERIFY(qApp->findChildren<QSystemTrayIcon *>().isEmpty());
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

QTEST_MAIN(TstEscritorio)
#include "tst_escritorio.moc"
