// The printer dialog on the real CUPS queues that CI sets up (src/printer/colas_cups.sh): "PDF",
// portrait and the default destination, and "PDF_Apaisado", landscape by default; both cups-pdf
// queues, whose PDF files are read back with pdftotext.
#include "comun/pruebas.h"

#include <kvr/impresora.h>
#include <kvr/micalc.h>

#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QPlainTextEdit>
#include <QProcess>
#include <QRegularExpression>

#include <cups/cups.h>

using namespace kvr;
using prueba::control;

namespace {

QString textoDe(const QString &programa, const QStringList &argumentos)
{
    return QString::fromUtf8(prueba::ejecutar(programa, argumentos));
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

// The folder cups-pdf writes to: its "Out" setting, ${HOME} the user's home.
QDir salidaPdf()
{
    QString carpeta = u"${HOME}/PDF"_qs;
    for (const QString &l : QString::fromUtf8(prueba::leer(u"/etc/cups/cups-pdf.conf"_qs)).split(u'\n'))
        if (l.startsWith(u"Out "))
            carpeta = l.mid(4).trimmed();
    return QDir(carpeta.replace(u"${HOME}"_qs, QDir::homePath()), u"*.pdf"_qs, QDir::Name, QDir::Files);
}

} // namespace

class TstImpresora : public QObject {
    Q_OBJECT
    QStringList m_colas;

private Q_SLOTS:
    void initTestCase()
    {
        qunsetenv("LPDEST"); // the queues' own default destination, whatever the caller's
        qunsetenv("PRINTER");
        if (!textoDe(u"lpstat"_qs, {u"-r"_qs}).contains(u"scheduler is running"))
            QSKIP("cupsd no responde: sin sistema de impresión no hay colas que probar "
                  "(src/printer/colas_cups.sh lo arranca)");
        m_colas = textoDe(u"lpstat"_qs, {u"-e"_qs}).split(u'\n', Qt::SkipEmptyParts);
        QVERIFY2(m_colas.contains(u"PDF") && m_colas.contains(u"PDF_Apaisado"),
                 "faltan las colas PDF y PDF_Apaisado: src/printer/colas_cups.sh las crea");
        QCOMPARE(textoDe(u"lpstat"_qs, {u"-d"_qs}).section(u':', 1).trimmed(), u"PDF"_qs);
    }
    void init() { QLocale::setDefault(QLocale::c()); }
    void cleanup()
    {
        qunsetenv("LPDEST");
        qunsetenv("CUPS_SERVER");
        cupsSetServer(nullptr);
    }

    // The dialog on the default destination (LPDEST chooses it for this process only) or on
    // another: the entries of its list, and on opening (after ProponerApaisado when asked, "+")
    // the entry shown, its tip, the orientation and the paper button's tip, then the tip after
    // the steps but the last; the globals before and after ("|cancelada" when ImpresoraCancelada).
    void dialogo_data()
    {
        QTest::addColumn<QString>("destino");
        QTest::addColumn<QString>("pasos");
        QTest::addColumn<QString>("antes");
        QTest::addColumn<QString>("vistas");
        QTest::addColumn<QString>("despues");
        QTest::newRow("vertical") << "" << "a" << "X|Horizontal"
            << "PDF|PDF|Vertical|Papel Vertical|PDF" << "PDF|Vertical";
        QTest::newRow("vertical, propuesta apaisada") << "+" << "a" << "X|Vertical"
            << "PDF|PDF|Horizontal|Papel Horizontal|PDF" << "PDF|Horizontal";
        QTest::newRow("apaisada") << "PDF_Apaisado" << "a" << "X|Vertical"
            << "PDF_Apaisado|PDF_Apaisado|Horizontal|Papel Horizontal|PDF_Apaisado" << "PDF_Apaisado|Horizontal";
        QTest::newRow("apaisada, propuesta vertical") << "PDF_Apaisado+" << "a" << "X|Horizontal"
            << "PDF_Apaisado|PDF_Apaisado|Vertical|Papel Vertical|PDF_Apaisado" << "PDF_Apaisado|Vertical";
        QTest::newRow("otra cola, girada") << "" << "vpa" << "X|Vertical"
            << "PDF|PDF|Vertical|Papel Vertical|PDF_Apaisado" << "PDF_Apaisado|Horizontal";
        QTest::newRow("cancelar conserva lo aceptado") << "" << "pc" << "PDF_Apaisado|Vertical"
            << "PDF|PDF|Vertical|Papel Vertical|PDF" << "PDF_Apaisado|Vertical|cancelada";
        QTest::newRow("escape cancela") << "" << "vpe" << "PDF|Vertical"
            << "PDF|PDF|Vertical|Papel Vertical|PDF_Apaisado" << "PDF|Vertical|cancelada";
        // Nothing to choose: the list says so; Aceptar leaves no printer and a cancelled choice.
        QTest::newRow("sin impresoras") << "sin servidor" << "a" << "PDF|Vertical"
            << "|No hay ninguna impresora instalada|||No hay ninguna impresora instalada" << "|Vertical|cancelada";
    }
    void dialogo()
    {
        QFETCH(QString, destino);
        QFETCH(QString, pasos);
        QFETCH(QString, antes);
        const bool proponer = destino.endsWith(u'+');
        if (destino == u"sin servidor") {
            // A server that does not exist: no queue at all, while the real ones stay for the rest.
            qputenv("CUPS_SERVER", QDir::temp().filePath(u"kvr-sin-cups/cups.sock"_qs).toLocal8Bit());
            cupsSetServer(nullptr);
        } else if (!destino.isEmpty() && destino != u"+") {
            qputenv("LPDEST", destino.remove(u'+').toLatin1());
        }
        ImpresoraElegida = antes.section(u'|', 0, 0);
        OrientacionElegida = antes.section(u'|', 1);
        ImpresoraCancelada = !pasos.endsWith(u'a');
        Impresora d;
        if (proponer)
            d.ProponerApaisado();
        QStringList entradas, vistas;
        prueba::alAbrirse([&](QWidget *w) {
            auto *lista = control<QComboBox>(w, u"ListaImpresoras");
            for (int i = 0; i < lista->count(); ++i)
                entradas << lista->itemText(i);
            auto *modo = control<QPushButton>(w, u"ModoPapel");
            const QString tag = modo->property("tag").toString();
            vistas << lista->currentText() << lista->toolTip() << tag << modo->toolTip();
            const QIcon icono = d.findChild<ListaIconos *>(u"MisIconos"_qs)->Icono(tag);
            if (!tag.isEmpty() && modo->icon().pixmap(36).toImage() != icono.pixmap(36).toImage())
                vistas << u"otro dibujo"_qs;
            recorrer(w, pasos.chopped(1));
            vistas << lista->toolTip(); // follows the entry chosen
            recorrer(w, pasos.right(1));
        });
        d.exec();
        QCOMPARE(entradas, destino == u"sin servidor" ? QStringList() : m_colas);
        QTEST(vistas.join(u'|'), "vistas");
        QTEST(ImpresoraElegida + u'|' + OrientacionElegida + (ImpresoraCancelada ? u"|cancelada"_qs : QString()),
              "despues");
    }

    // The calculator's tape printed from its context menu: a PDF comes out of cups-pdf holding
    // the tape's lines, on a page turned as chosen (landscape text runs up the portrait sheet
    // cups-pdf writes), whatever the queue's own default.
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
        QPointer<MiCalc> calc = new MiCalc;
        calc->show();
        QCoreApplication::processEvents();
        QTest::keyClicks(calc, u"12.5+7+=3*4="_qs);
        auto *papel = control<QPlainTextEdit>(calc, u"Papel");
        const QStringList lineas = papel->toPlainText().split(u'\n', Qt::SkipEmptyParts);
        QVERIFY(lineas.size() >= 4);

        QDir salida = salidaPdf();
        const QStringList antes = salida.entryList();
        // Inside the menu's own loop: "Imprimir cinta…", then the steps inside the dialog's.
        QTimer::singleShot(0, qApp, [pasos] {
            QWidget *menu = QApplication::activePopupWidget();
            prueba::alAbrirse([pasos](QWidget *d) { recorrer(d, pasos); });
            QTest::keyClick(menu, Qt::Key_Down);
            QTest::keyClick(menu, Qt::Key_Return);
        });
        QContextMenuEvent menu(QContextMenuEvent::Mouse, QPoint(5, 5), papel->mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(papel->viewport(), &menu);
        calc->close();

        QString nuevo;
        QVERIFY2(QTest::qWaitFor([&] {
            salida.refresh();
            for (const QString &f : salida.entryList())
                if (!antes.contains(f))
                    nuevo = salida.filePath(f);
            return !nuevo.isEmpty();
        }, 60000), "cups-pdf no ha escrito ningún PDF en un minuto");
        QTest::qWait(500); // cups-pdf may still be writing it
        const QString texto = textoDe(u"pdftotext"_qs, {u"-layout"_qs, nuevo, u"-"_qs}).simplified();
        for (const QString &l : lineas)
            QVERIFY2(texto.contains(l.simplified()), qPrintable(l + u" no está en: "_qs + texto));
        // The first word's box: taller than wide when the text runs up the sheet.
        const auto m = QRegularExpression(uR"re(xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)")re"_qs)
                           .match(textoDe(u"pdftotext"_qs, {u"-bbox"_qs, nuevo, u"-"_qs}));
        QVERIFY(m.hasMatch());
        QTEST(m.captured(4).toDouble() - m.captured(2).toDouble() > m.captured(3).toDouble() - m.captured(1).toDouble(),
              "apaisada");
        QFile::remove(nuevo);
    }
};

QTEST_MAIN(TstImpresora)
#include "tst_impresora.moc"
