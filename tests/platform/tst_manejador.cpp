// The shared dispatcher of window handlers, once per kind of error: a file error while saving a
// table and an arithmetic error in the calculator are shown as "Error <n>: <text>" with the
// critical icon under the application's title, and the window goes on working.
#include "comun/pruebas.h"
#include "registro.h"

#include <kvr/frmtablas.h>
#include <kvr/micalc.h>
#include <kvr/mivisor.h>
#include <kvr/utilidades.h>
#include <kvr/visorrejilla.h>

#include <QDir>
#include <QLineEdit>
#include <QTemporaryDir>

using namespace kvr;
using namespace prueba;

class TstManejador : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { QLocale::setDefault(QLocale::c()); }

    void errorMostrado_data()
    {
        QTest::addColumn<QString>("ventana");
        QTest::addColumn<QString>("mensaje"); // %1: the file's path
        QTest::newRow("fichero al grabar (frmTablas)")
            << u"frmTablas"_qs << u"Error 75: Error de acceso a la ruta o el archivo: %1"_qs;
        QTest::newRow("aritmético (MiCalc)") << u"MiCalc"_qs << u"Error 11: División por cero"_qs;
    }
    void errorMostrado()
    {
        QFETCH(QString, ventana);
        QFETCH(QString, mensaje);
        ServiciosGrabados s;
        QTemporaryDir dir;
        // A folder where the table's file should be: the save cannot replace it.
        const QString carpeta = dir.filePath(u"tabla"_qs);
        QDir().mkpath(carpeta);
        QPointer<QWidget> w;
        if (ventana == u"frmTablas") {
            auto *t = new frmTablas;
            w = t;
            t->Dimensionar(nullptr, carpeta, u"Provincia#25"_qs, u"T(M) L(15) A(I)"_qs, false);
            QVERIFY(mostrarActiva(t));
            auto *elemento = control<QLineEdit>(t, "Elemento");
            DevolverFoco(elemento);
            QTest::keyClicks(elemento, u"lugo"_qs);
            pulsar(control(t, "cmdAceptar"));
            pulsar(control(t, "cmdGrabar"));
            QVERIFY(t->Modificado());
            QVERIFY(QFileInfo(carpeta).isDir());
            // Still usable: another element goes in after the one not saved.
            QTest::keyClicks(elemento, u"leon"_qs);
            pulsar(control(t, "cmdAceptar"));
            const Rejilla &g = t->VisorTabla()->rejilla();
            QCOMPARE(LeerCelda(g, g.Rows() - 1, 0), u"LEON"_qs);
            QCOMPARE(LeerCelda(g, g.Rows() - 2, 0), u"LUGO"_qs);
        } else {
            auto *calc = new MiCalc;
            w = calc;
            QVERIFY(mostrarActiva(calc));
            // A tax rate of -100 % leaves no net amount to divide by.
            QTest::keyClicks(QApplication::focusWidget(), u"5is100"_qs);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            QCOMPARE(control<QLabel>(calc, "Pantalla")->text(), u"-100.00 ="_qs);
            QTest::keyClicks(QApplication::focusWidget(), u"c2+2"_qs);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            QCOMPARE(control<QLabel>(calc, "Pantalla")->text(), u"4.00 ="_qs);
        }
        QCOMPARE(s.mensajes.size(), 1);
        QCOMPARE(s.mensajes[0].texto, mensaje.contains(u"%1"_qs) ? mensaje.arg(carpeta) : mensaje);
        QCOMPARE(s.mensajes[0].botones & 0x70, int(Critico));
        QCOMPARE(s.mensajes[0].titulo, s.TituloAplicacion());
        QVERIFY(w && w->isVisible());
        delete w;
    }
};

QTEST_MAIN(TstManejador)
#include "tst_manejador.moc"
