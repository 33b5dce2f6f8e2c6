// The printer dialog on the real CUPS queues that CI sets up (src/printer/colas_cups.sh): "PDF",
// portrait and the default destination, and "PDF_Apaisado", landscape by default; both cups-pdf
// queues, whose PDF files are read back with pdftotext.
#include "comun/pruebas.h"

#include <kvr/impresora.h>
#include <kvr/micalc.h>

#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QPlainTextEdit>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cups/cups.h>

using namespace kvr;
using prueba::control;

namespace {

QString ejecutar(const QString &programa, const QStringList &argumentos)
{
    QProcess p;
    p.start(programa, argumentos);
    if (!p.waitForFinished(30000))
        return {};
    return QString::fromUtf8(p.readAllStandardOutput());
}

QStringList colasDeLpstat()
{
    return ejecutar(u"lpstat"_qs, {u"-e"_qs}).split(u'\n', Qt::SkipEmptyParts);
}

QString destinoDeLpstat()
{
    return ejecutar(u"lpstat"_qs, {u"-d"_qs}).section(u':', 1).trimmed();
}

QImage imagen(const QIcon &icono)
{
    return icono.pixmap(QSize(36, 36)).toImage();
}

// Runs `accion` once `buscar` finds its window (a modal dialog, a pop-up menu), polling the event
// loops that run meanwhile; gives up after ten seconds.
void cuandoAparezca(std::function<QWidget *()> buscar, std::function<void(QWidget *)> accion)
{
    auto *t = new QTimer(qApp);
    auto *reloj = new QElapsedTimer;
    reloj->start();
    QObject::connect(t, &QTimer::timeout, qApp, [=] {
        QWidget *w = buscar();
        const bool listo = w && w->isVisible();
        if (listo || reloj->elapsed() > 10000) {
            t->stop();
            t->deleteLater();
            delete reloj;
            if (listo)
                accion(w);
        }
    });
    t->start(20);
}

QWidget *dialogoAbierto()
{
    QWidget *w = QApplication::activeModalWidget();
    return w && w->objectName() == u"Impresora" ? w : nullptr;
}

// Steps on the dialog: "v" Down in the list, "p" a click on the paper button, "a" Aceptar,
// "c" Cancelar, "e" Escape.
void recorrer(QWidget *d, const QString &pasos)
{
    for (QChar paso : pasos) {
        switch (paso.unicode()) {
        case u'v': QTest::keyClick(control(d, u"ListaImpresoras"), Qt::Key_Down); break;
        case u'p': prueba::pulsar(control(d, u"ModoPapel")); break;
        case u'a': prueba::pulsar(control(d, u"cmdAceptar")); break;
        case u'c': prueba::pulsar(control(d, u"cmdCancelar")); break;
        case u'e': QTest::keyClick(d, Qt::Key_Escape); break;
        }
    }
}

// The folders cups-pdf writes to: its "Out" setting (with ${HOME} the user's home) and the
// anonymous spool.
QStringList carpetasPdf()
{
    QString salida = u"${HOME}/PDF"_qs;
    const QStringList conf = QString::fromUtf8(prueba::leer(u"/etc/cups/cups-pdf.conf"_qs)).split(u'\n');
    for (const QString &l : conf)
        if (l.startsWith(u"Out "))
            salida = l.mid(4).trimmed();
    salida.replace(u"${HOME}"_qs, QDir::homePath());
    return {salida, u"/var/spool/cups-pdf/ANONYMOUS"_qs};
}

QStringList pdfs()
{
    QStringList r;
    for (const QString &c : carpetasPdf())
        for (const QString &f : QDir(c).entryList({u"*.pdf"_qs}, QDir::Files))
            r << QDir(c).filePath(f);
    return r;
}

} // namespace

class TstImpresora : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        if (!ejecutar(u"lpstat"_qs, {u"-r"_qs}).contains(u"scheduler is running"))
            QSKIP("cupsd no responde: sin sistema de impresión no hay colas que probar "
                  "(src/printer/colas_cups.sh lo arranca)");
        QVERIFY2(colasDeLpstat().contains(u"PDF") && colasDeLpstat().contains(u"PDF_Apaisado"),
                 "faltan las colas PDF y PDF_Apaisado: src/printer/colas_cups.sh las crea");
        QCOMPARE(destinoDeLpstat(), u"PDF"_qs);
    }
    void init() { QLocale::setDefault(QLocale::c()); }
    void cleanup() { qunsetenv("LPDEST"); }

    // The dialog opened on the default destination (LPDEST chooses it for this process only).
    void apertura_data()
    {
        QTest::addColumn<QByteArray>("destino");
        QTest::addColumn<QString>("orientacion");
        QTest::addColumn<QString>("propuesta");
        QTest::newRow("cola vertical") << QByteArray() << "Vertical" << "Horizontal";
        QTest::newRow("cola apaisada") << QByteArray("PDF_Apaisado") << "Horizontal" << "Vertical";
    }
    void apertura()
    {
        QFETCH(QByteArray, destino);
        QFETCH(QString, orientacion);
        QFETCH(QString, propuesta);
        if (!destino.isEmpty())
            qputenv("LPDEST", destino);
        Impresora d;
        d.show();
        QCoreApplication::processEvents();
        auto *lista = control<QComboBox>(&d, u"ListaImpresoras");
        QStringList entradas;
        for (int i = 0; i < lista->count(); ++i)
            entradas << lista->itemText(i);
        QCOMPARE(entradas, colasDeLpstat());
        QCOMPARE(lista->currentText(), destinoDeLpstat());
        QCOMPARE(lista->toolTip(), destinoDeLpstat());

        auto *modo = control<QPushButton>(&d, u"ModoPapel");
        auto *iconos = d.findChild<ListaIconos *>(u"MisIconos"_qs);
        QVERIFY(iconos);
        for (const QString &esperada : {orientacion, propuesta}) {
            QCOMPARE(modo->property("tag").toString(), esperada);
            QCOMPARE(modo->toolTip(), u"Papel "_qs + esperada);
            QCOMPARE(imagen(modo->icon()), imagen(iconos->Icono(esperada)));
            d.ProponerApaisado();
        }
    }

    void eleccion_data()
    {
        QTest::addColumn<QString>("antesImpresora");
        QTest::addColumn<QString>("antesOrientacion");
        QTest::addColumn<QString>("pasos");
        QTest::addColumn<QString>("impresora");
        QTest::addColumn<QString>("orientacion");
        QTest::addColumn<bool>("cancelada");
        QTest::newRow("aceptar lo propuesto") << "X" << "Horizontal" << "a"
            << "PDF" << "Vertical" << false;
        QTest::newRow("otra cola, apaisado") << "X" << "Vertical" << "vpa"
            << "PDF_Apaisado" << "Horizontal" << false;
        QTest::newRow("cancelar conserva lo aceptado") << "PDF_Apaisado" << "Horizontal" << "pc"
            << "PDF_Apaisado" << "Horizontal" << true;
        QTest::newRow("escape cancela") << "PDF" << "Vertical" << "vpe"
            << "PDF" << "Vertical" << true;
    }
    void eleccion()
    {
        QFETCH(QString, antesImpresora);
        QFETCH(QString, antesOrientacion);
        QFETCH(QString, pasos);
        ImpresoraElegida = antesImpresora;
        OrientacionElegida = antesOrientacion;
        ImpresoraCancelada = !ImpresoraCancelada;
        QString pista;
        Impresora d;
        prueba::alAbrirse([&](QWidget *w) {
            recorrer(w, pasos.chopped(1));
            pista = control(w, u"ListaImpresoras")->toolTip();
            recorrer(w, pasos.right(1));
        });
        d.exec();
        QTEST(ImpresoraElegida, "impresora");
        QTEST(OrientacionElegida, "orientacion");
        QTEST(ImpresoraCancelada, "cancelada");
        // The list's tool tip follows the entry chosen.
        QCOMPARE(pista, pasos.contains(u'v') ? u"PDF_Apaisado"_qs : u"PDF"_qs);
    }

    // The calculator's tape printed from its context menu: a PDF comes out of cups-pdf holding
    // the tape's lines, on a page turned as chosen (landscape text runs up the portrait sheet
    // cups-pdf writes).
    void cinta_data()
    {
        QTest::addColumn<QString>("pasos");
        QTest::addColumn<bool>("apaisada");
        QTest::newRow("vertical en PDF") << "a" << false;
        QTest::newRow("apaisada en PDF") << "pa" << true;
        QTest::newRow("vertical en la cola apaisada") << "va" << false;
    }
    void cinta()
    {
        QFETCH(QString, pasos);
        QFETCH(bool, apaisada);
        QPointer<MiCalc> calc = new MiCalc;
        calc->show();
        QCoreApplication::processEvents();
        for (const char *t : {"12.5", "+", "7", "+", "=", "3", "*", "4", "="})
            QTest::keyClicks(calc, QString::fromLatin1(t));
        auto *papel = control<QPlainTextEdit>(calc, u"Papel");
        QStringList lineas = papel->toPlainText().split(u'\n', Qt::SkipEmptyParts);
        for (QString &l : lineas)
            l = l.simplified();
        lineas.removeAll(QString());
        QVERIFY(lineas.size() >= 4);

        const QStringList antes = pdfs();
        cuandoAparezca([] { return QApplication::activePopupWidget(); }, [](QWidget *menu) {
            QTest::keyClick(menu, Qt::Key_Down);
            QTest::keyClick(menu, Qt::Key_Return);
        });
        cuandoAparezca(dialogoAbierto, [pasos](QWidget *d) { recorrer(d, pasos); });
        QWidget *vista = papel->viewport();
        QContextMenuEvent menu(QContextMenuEvent::Mouse, QPoint(5, 5), vista->mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(vista, &menu);
        calc->close();

        QString nuevo;
        QVERIFY2(QTest::qWaitFor([&] {
            const QStringList ahora = pdfs();
            for (const QString &f : ahora)
                if (!antes.contains(f))
                    nuevo = f;
            return !nuevo.isEmpty();
        }, 60000), "cups-pdf no ha escrito ningún PDF en un minuto");
        QTest::qWait(500); // cups-pdf writes the file in place
        const QString texto = ejecutar(u"pdftotext"_qs, {u"-layout"_qs, nuevo, u"-"_qs}).simplified();
        for (const QString &l : lineas)
            QVERIFY2(texto.contains(l), qPrintable(l + u" no está en: "_qs + texto));
        // The first word's box: taller than wide when the text runs up the sheet.
        const QRegularExpression caja(uR"re(xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)")re"_qs);
        const auto m = caja.match(ejecutar(u"pdftotext"_qs, {u"-bbox"_qs, nuevo, u"-"_qs}));
        QVERIFY(m.hasMatch());
        const double ancho = m.captured(3).toDouble() - m.captured(1).toDouble();
        const double alto = m.captured(4).toDouble() - m.captured(2).toDouble();
        QCOMPARE(alto > ancho, apaisada);
        QFile::remove(nuevo);
    }

    void guardarCinta()
    {
        QTemporaryDir dir;
        const QString ruta = dir.filePath(u"cinta.txt"_qs);
        QPointer<MiCalc> calc = new MiCalc;
        calc->show();
        QCoreApplication::processEvents();
        QTest::keyClicks(calc, u"2+3="_qs);
        auto *papel = control<QPlainTextEdit>(calc, u"Papel");
        const QString esperado = papel->toPlainText().remove(u'\r').trimmed() + u'\n';
        cuandoAparezca([] { return QApplication::activePopupWidget(); }, [](QWidget *menu) {
            QTest::keyClick(menu, Qt::Key_Down);
            QTest::keyClick(menu, Qt::Key_Down);
            QTest::keyClick(menu, Qt::Key_Return);
        });
        cuandoAparezca([] { return qobject_cast<QFileDialog *>(QApplication::activeModalWidget()); },
                       [ruta](QWidget *w) {
                           auto *f = static_cast<QFileDialog *>(w);
                           f->selectFile(ruta);
                           QMetaObject::invokeMethod(f, "accept");
                       });
        QWidget *vista = papel->viewport();
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, QPoint(5, 5), vista->mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(vista, &menu);
        calc->close();
        QCOMPARE(QString::fromUtf8(prueba::leer(ruta)), esperado);
    }

    void sinImpresoras()
    {
        // A server that does not exist: no queue at all, while the real ones stay for the rest.
        qputenv("CUPS_SERVER", QDir::temp().filePath(u"kvr-sin-cups/cups.sock"_qs).toLocal8Bit());
        cupsSetServer(nullptr);
        const auto volver = qScopeGuard([] {
            qunsetenv("CUPS_SERVER");
            cupsSetServer(nullptr);
        });
        ImpresoraElegida = u"PDF"_qs;
        OrientacionElegida = u"Vertical"_qs;
        ImpresoraCancelada = false;
        Impresora d;
        d.show();
        QCoreApplication::processEvents();
        auto *lista = control<QComboBox>(&d, u"ListaImpresoras");
        QCOMPARE(lista->count(), 0);
        QCOMPARE(lista->placeholderText(), u"No hay ninguna impresora instalada"_qs);
        prueba::pulsar(control(&d, u"ModoPapel"));
        QCOMPARE(control(&d, u"ModoPapel")->property("tag").toString(), QString());
        prueba::pulsar(control(&d, u"cmdAceptar"));
        QVERIFY(!d.isVisible());
        QCOMPARE(ImpresoraElegida, QString());
        QVERIFY(ImpresoraCancelada);
    }
};

QTEST_MAIN(TstImpresora)
#include "tst_impresora.moc"
