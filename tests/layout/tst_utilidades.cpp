// Shared routines on real widgets: showing windows by name, the global keys, giving the focus
// back, filling drop-down lists and the mouse-wheel redirection.
#include <kvr/utilidades.h>

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QPrinterInfo>
#include <QScrollBar>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>

using namespace kvr;

namespace {

// How many windows each factory has made.
QHash<QString, int> g_creadas;

void registrar(const QString &nombre)
{
    RegistrarVentana(nombre, [nombre] {
        ++g_creadas[nombre];
        auto *w = new QWidget;
        w->setObjectName(nombre);
        w->setAttribute(Qt::WA_DeleteOnClose);
        w->resize(200, 100);
        return w;
    });
}

QWidget *abierta(const QString &nombre)
{
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->objectName() == nombre && w->isVisible())
            return w;
    return nullptr;
}

// A host window whose KeyUp handler calls the global keys.
class VentanaHost : public QWidget {
public:
    explicit VentanaHost(const QString &nombre) { setObjectName(nombre); resize(200, 100); }
protected:
    void keyReleaseEvent(QKeyEvent *e) override { TeclasGlobales(e, this); }
};

QStringList L(std::initializer_list<const char *> textos)
{
    QStringList r;
    for (const char *t : textos)
        r << QString::fromUtf8(t);
    return r;
}

QStringList entradas(const QComboBox &c)
{
    QStringList r;
    for (int i = 0; i < c.count(); ++i)
        r << c.itemText(i);
    return r;
}

void rueda(QWidget *w, int pasos)
{
    const QPointF pos(5, 5);
    QWheelEvent e(pos, w->mapToGlobal(pos), QPoint(), QPoint(0, -120 * pasos), Qt::NoButton,
                  Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(w, &e);
}

// A window with a text field and a long grid below it.
struct VentanaConGrid {
    QWidget ventana;
    QLineEdit *campo;
    QTableWidget *grid;
    VentanaConGrid()
    {
        ventana.setObjectName(QStringLiteral("Telefonos"));
        ventana.resize(300, 300);
        campo = new QLineEdit(&ventana);
        campo->setObjectName(QStringLiteral("CampoBuscar"));
        campo->setGeometry(10, 10, 200, 24);
        grid = new QTableWidget(200, 2, &ventana);
        grid->setObjectName(QStringLiteral("Telfs"));
        grid->setGeometry(10, 40, 280, 200);
        ventana.show();
        QVERIFY(QTest::qWaitForWindowExposed(&ventana));
        grid->setFocus();
        QApplication::processEvents();
    }
};

} // namespace

class TestUtilidades : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        registrar(QStringLiteral("MiCalc"));
        registrar(QStringLiteral("Telefonos"));
        registrar(QStringLiteral("VentanaPrueba"));
    }
    void cleanup()
    {
        for (QWidget *w : QApplication::topLevelWidgets())
            if (g_creadas.contains(w->objectName()))
                delete w;
        g_creadas.clear();
    }

    void mostrarUnaSolaVez()
    {
        QWidget *w = MostrarVentana(QStringLiteral("VentanaPrueba"));
        QVERIFY(w);
        QVERIFY(w->isVisible());
        QCOMPARE(g_creadas.value(QStringLiteral("VentanaPrueba")), 1);

        VentanaHost otra(QStringLiteral("Otra"));
        otra.show();
        otra.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&otra));
        w->hide();

        // The second time the window already loaded is shown and brought forward.
        QCOMPARE(MostrarVentana(QStringLiteral("VentanaPrueba")), w);
        QVERIFY(QTest::qWaitForWindowActive(w));
        QVERIFY(w->isVisible());
        QCOMPARE(g_creadas.value(QStringLiteral("VentanaPrueba")), 1);
    }

    void mostrarSinVentana()
    {
        const int antes = int(QApplication::topLevelWidgets().size());
        QCOMPARE(MostrarVentana(QStringLiteral("NoExiste")), nullptr);
        QCOMPARE(MostrarVentana(QString()), nullptr);
        QCOMPARE(int(QApplication::topLevelWidgets().size()), antes);
    }

    void registroSeQuita()
    {
        RegistrarVentana(QStringLiteral("Efimera"), [] { return new QWidget; });
        RegistrarVentana(QStringLiteral("Efimera"), nullptr);
        QCOMPARE(MostrarVentana(QStringLiteral("Efimera")), nullptr);
    }

    void teclasGlobales_data()
    {
        QTest::addColumn<int>("tecla");
        QTest::addColumn<QString>("ventana");
        QTest::addColumn<QStringList>("abiertas");
        QTest::newRow("F4 desde un formulario") << 115 << "frmFacturas" << L({"MiCalc"});
        QTest::newRow("F4 desde la calculadora") << 115 << "MiCalc" << QStringList();
        QTest::newRow("F8 desde un formulario") << 119 << "frmFacturas" << L({"Telefonos"});
        QTest::newRow("F8 desde la calculadora") << 119 << "MiCalc" << L({"Telefonos"});
        QTest::newRow("F8 desde la agenda") << 119 << "Telefonos" << L({"Telefonos"});
        QTest::newRow("F5 nada") << 116 << "frmFacturas" << QStringList();
        QTest::newRow("F4 mayúsculas no es otra tecla") << 115 << "micalc" << L({"MiCalc"});
    }
    void teclasGlobales()
    {
        QFETCH(int, tecla); QFETCH(QString, ventana); QFETCH(QStringList, abiertas);
        TeclasGlobales(tecla, 0, ventana);
        QStringList vistas;
        for (const QString &n : {QStringLiteral("MiCalc"), QStringLiteral("Telefonos")})
            if (abierta(n))
                vistas << n;
        QCOMPARE(vistas, abiertas);
        for (const QString &n : abiertas)
            QCOMPARE(g_creadas.value(n), 1);
    }

    void teclasDesdeUnaVentana_data()
    {
        QTest::addColumn<QString>("ventana");
        QTest::addColumn<int>("tecla");
        QTest::addColumn<int>("creadasCalc");
        QTest::addColumn<int>("creadasAgenda");
        QTest::newRow("F4 en un formulario") << "frmFacturas" << int(Qt::Key_F4) << 1 << 0;
        QTest::newRow("F4 en MiCalc") << "MiCalc" << int(Qt::Key_F4) << 0 << 0;
        QTest::newRow("F8 en MiCalc") << "MiCalc" << int(Qt::Key_F8) << 0 << 1;
        QTest::newRow("Escape") << "frmFacturas" << int(Qt::Key_Escape) << 0 << 0;
    }
    void teclasDesdeUnaVentana()
    {
        QFETCH(QString, ventana); QFETCH(int, tecla); QFETCH(int, creadasCalc); QFETCH(int, creadasAgenda);
        VentanaHost host(ventana);
        host.show();
        QVERIFY(QTest::qWaitForWindowActive(&host));
        // Twice: the second F4 / F8 finds the window already open.
        QTest::keyClick(&host, Qt::Key(tecla));
        QTest::keyClick(&host, Qt::Key(tecla));
        QCOMPARE(g_creadas.value(QStringLiteral("MiCalc")), creadasCalc);
        QCOMPARE(g_creadas.value(QStringLiteral("Telefonos")), creadasAgenda);
    }

    void codigos_data()
    {
        QTest::addColumn<int>("teclaQt");
        QTest::addColumn<int>("codigo");
        QTest::newRow("F1") << int(Qt::Key_F1) << 112;
        QTest::newRow("F4") << int(Qt::Key_F4) << 115;
        QTest::newRow("F8") << int(Qt::Key_F8) << 119;
        QTest::newRow("A") << int(Qt::Key_A) << 65;
        QTest::newRow("7") << int(Qt::Key_7) << 55;
        QTest::newRow("Intro") << int(Qt::Key_Return) << 13;
        QTest::newRow("Intro del teclado numérico") << int(Qt::Key_Enter) << 13;
        QTest::newRow("Suprimir") << int(Qt::Key_Delete) << 46;
        QTest::newRow("sin código") << int(Qt::Key_Launch0) << 0;
    }
    void codigos()
    {
        QFETCH(int, teclaQt); QFETCH(int, codigo);
        QCOMPARE(CodigoTecla(teclaQt), codigo);
    }

    void shift()
    {
        QCOMPARE(CodigoShift(int(Qt::ShiftModifier | Qt::AltModifier)), ShiftMayusculas | ShiftAlt);
        QCOMPARE(CodigoShift(int(Qt::ControlModifier | Qt::KeypadModifier)), int(ShiftControl));
    }

    void devolverFoco()
    {
        QWidget w;
        auto *a = new QLineEdit(&w);
        auto *b = new QLineEdit(&w);
        auto *apagado = new QLineEdit(&w);
        apagado->setEnabled(false);
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        b->setFocus();
        DevolverFoco(a);
        QVERIFY(a->hasFocus());
        DevolverFoco(apagado);
        QVERIFY(a->hasFocus());
        DevolverFoco(nullptr);
        QPointer<QWidget> borrado = new QLineEdit(&w);
        delete borrado.data();
        DevolverFoco(borrado); // an empty reference is ignored
        QVERIFY(a->hasFocus());
    }

    void llenarCombo_data()
    {
        QTest::addColumn<QString>("lista");
        QTest::addColumn<QStringList>("esperado");
        QTest::newRow("a;b;c") << "a;b;c" << L({"a", "b", "c"});
        QTest::newRow("a;b;") << "a;b;" << L({"a", "b"});
        QTest::newRow("a;;b") << "a;;b" << L({"a", "", "b"});
        QTest::newRow("vacío") << "" << L({""});
        QTest::newRow("Sí<<No;Quizá") << QStringLiteral("Sí<<No;Quizá") << L({"Sí<<No", "Quizá"});
        QTest::newRow("<<") << "Uno<<Dos" << L({"Uno", "Dos"});
        QTest::newRow("fichero que falta") << "@/no/existe.txt" << QStringList();
    }
    void llenarCombo()
    {
        QFETCH(QString, lista); QFETCH(QStringList, esperado);
        QComboBox c;
        c.addItems(L({"viejo1", "viejo2"}));
        LlenarCombo(lista, &c);
        QCOMPARE(entradas(c), esperado);
    }

    void llenarComboDeFichero()
    {
        QTemporaryDir dir;
        const QString ruta = dir.filePath(QStringLiteral("provincias.txt"));
        QFile f(ruta);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("Álava\r\nCádiz\r\nLeón\r\n");
        f.close();
        QComboBox c;
        LlenarCombo(QLatin1Char('@') + ruta, &c);
        QCOMPARE(entradas(c), L({"Álava", "Cádiz", "León"}));
    }

    void ruedaRedirigida()
    {
        VentanaConGrid v;
        QScrollBar *barra = v.grid->verticalScrollBar();
        QVERIFY(barra->maximum() > 0);
        QVERIFY(v.grid->hasFocus());

        // Without the redirection a wheel over the text field does not move the grid.
        rueda(v.campo, 1);
        QCOMPARE(barra->value(), 0);

        Subclasificar(&v.ventana);
        QVERIFY(Subclasificada(&v.ventana));
        rueda(v.campo, 1);
        const int unPaso = barra->value();
        QVERIFY(unPaso > 0);

        // Over the grid itself the wheel scrolls it once, not twice.
        rueda(v.grid->viewport(), 1);
        QCOMPARE(barra->value(), 2 * unPaso);

        // The focus on a plain field: nothing to redirect to.
        v.campo->setFocus();
        rueda(v.campo, 1);
        QCOMPARE(barra->value(), 2 * unPaso);
        Desclasificar(&v.ventana);
        QVERIFY(!Subclasificada(&v.ventana));
    }

    void subclasificarNoSeApila()
    {
        VentanaConGrid v;
        QScrollBar *barra = v.grid->verticalScrollBar();
        Subclasificar(&v.ventana);
        Subclasificar(&v.ventana);
        Desclasificar(&v.ventana);
        QVERIFY(!Subclasificada(&v.ventana));
        rueda(v.campo, 1);
        QCOMPARE(barra->value(), 0);
        // Repeated activation and deactivation always ends as it began.
        for (int i = 0; i < 3; ++i) {
            Subclasificar(&v.ventana);
            Desclasificar(&v.ventana);
        }
        Desclasificar(&v.ventana);
        rueda(v.campo, 1);
        QCOMPARE(barra->value(), 0);
    }

    void otraVentanaNoSeAfecta()
    {
        VentanaConGrid agenda, otra;
        Subclasificar(&agenda.ventana);
        rueda(otra.campo, 1);
        QCOMPARE(otra.grid->verticalScrollBar()->value(), 0);
        QCOMPARE(agenda.grid->verticalScrollBar()->value(), 0);
        Desclasificar(&agenda.ventana);
    }

    void ventanaDestruida()
    {
        auto *v = new VentanaConGrid;
        Subclasificar(&v->ventana);
        const QWidget *direccion = &v->ventana;
        delete v;
        QVERIFY(!Subclasificada(direccion));
        // A new window works normally afterwards.
        VentanaConGrid nueva;
        Subclasificar(&nueva.ventana);
        rueda(nueva.campo, 1);
        QVERIFY(nueva.grid->verticalScrollBar()->value() > 0);
        Desclasificar(&nueva.ventana);
    }

    void indiceImpresora()
    {
        const int n = int(QPrinterInfo::availablePrinters().size());
        const int i = IndiceImpresora();
        QVERIFY(i >= 0 && i < qMax(1, n));
        if (n > 0 && !QPrinterInfo::defaultPrinterName().isEmpty())
            QCOMPARE(QPrinterInfo::availablePrinters().at(i).printerName(), QPrinterInfo::defaultPrinterName());
    }
};

QTEST_MAIN(TestUtilidades)
#include "tst_utilidades.moc"
