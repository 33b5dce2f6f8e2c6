// The printer dialog on the real CUPS queues that CI sets up (src/printer/colas_cups.sh): "PDF",
// portrait and the default destination, and "PDF_Apaisado", landscape by default; both cups-pdf
// queues, whose PDF files are read back with pdftotext.
#include "comun/pruebas.h"

#include <kvr/impresora.h>

#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QPlainTextEdit>
#include <QRegularExpression>

#include <cups/cups.h>
#include <pwd.h>
#include <unistd.h>

using namespace kvr;
using prueba::control;

namespace {

// Steps on the dialog: "+" ProponerApaisado, "v" Down in the list, "p" a click on the paper
// button, "a" Aceptar, "c" Cancelar, "e" Escape.
void recorrer(QWidget *d, const QString &pasos)
{
    for (QChar paso : pasos) {
        switch (paso.unicode()) {
        case u'+': qobject_cast<Impresora *>(d)->ProponerApaisado(); break;
        case u'v': QTest::keyClick(control(d, u"ListaImpresoras"), Qt::Key_Down); break;
        case u'p': prueba::pulsar(control(d, u"ModoPapel")); break;
        case u'a': prueba::pulsar(control(d, u"cmdAceptar")); break;
        case u'c': prueba::pulsar(control(d, u"cmdCancelar")); break;
        case u'e': QTest::keyClick(d, Qt::Key_Escape); break;
        }
    }
}

// Where Debian's cups-pdf writes a job: "PDF" in the home folder that the password file gives
// the job's owner, this test's user, whatever HOME says.
QString carpetaPdf()
{
    return QString::fromLocal8Bit(getpwuid(getuid())->pw_dir) + u"/PDF"_qs;
}

// How the tape came out of cups-pdf: "vertical", or
// "apaisada" when the first word's box is taller than wide, landscape text running up the
// portrait sheet cups-pdf writes; or what went wrong.
QString hojaImpresa(const QStringList &antes, const QString &cinta)
{
    QDir salida(carpetaPdf(), u"*.pdf"_qs, QDir::Name, QDir::Files);
    QString pdf;
    const bool escrito = QTest::qWaitFor([&] {
        salida.refresh();
        for (const QString &f : salida.entryList())
            if (!antes.contains(f))
                pdf = salida.filePath(f);
        return !pdf.isEmpty();
    }, 60000);
    QTest::qWait(500); // cups-pdf may still be writing it
    const QString texto = QString::fromUtf8(prueba::ejecutar(u"pdftotext"_qs, {u"-layout"_qs, pdf, u"-"_qs}));
    for (const QString &l : cinta.split(u'\n', Qt::SkipEmptyParts))
        if (!texto.simplified().contains(l.simplified()))
            return escrito ? l + u" no está en: "_qs + texto : u"ningún PDF en un minuto"_qs;
    const auto m = QRegularExpression(uR"re(xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)")re"_qs)
                       .match(QString::fromUtf8(prueba::ejecutar(u"pdftotext"_qs, {u"-bbox"_qs, pdf, u"-"_qs})));
    QFile::remove(pdf);
    const auto n = [&m](int i) { return m.captured(i).toDouble(); };
    return !m.hasMatch() ? u"sin palabras"_qs : n(4) - n(2) > n(3) - n(1) ? u"apaisada"_qs : u"vertical"_qs;
}

} // namespace

class TstImpresora : public QObject {
    Q_OBJECT
    QStringList m_colas;

private Q_SLOTS:
    void initTestCase()
    {
        qunsetenv("PRINTER"); // the queues' own default destination, whatever the caller's
        if (!prueba::ejecutar(u"lpstat"_qs, {u"-r"_qs}).contains("scheduler is running"))
            QSKIP("cupsd no responde: sin sistema de impresión no hay colas que probar "
                  "(src/printer/colas_cups.sh lo arranca)");
        m_colas = QString::fromUtf8(prueba::ejecutar(u"lpstat"_qs, {u"-e"_qs})).split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(QString::fromUtf8(prueba::ejecutar(u"lpstat"_qs, {u"-d"_qs})).section(u':', 1).trimmed(), u"PDF"_qs);
    }

    // "Imprimir cinta…" from the context menu of a tape, with the last choice "X|Horizontal",
    // on the default destination or, when "entorno" names one, on LPDEST's (for this process
    // only) or on a CUPS_SERVER that does not exist. What the dialog shows on opening: the entry
    // shown, its tip, the paper button's tip and picture, then the list's tip after the steps but
    // the last; the choice it leaves ("|cancelada" when ImpresoraCancelada); how the PDF came out.
    void imprimir_data()
    {
        QTest::addColumn<QString>("entorno");
        QTest::addColumn<QString>("pasos");
        QTest::addColumn<QString>("vistas");
        QTest::newRow("vertical") << "" << "a" << "PDF|PDF|Papel Vertical|Vertical|PDF > PDF|Vertical > vertical";
        QTest::newRow("propuesta") << "" << "+a" << "PDF|PDF|Papel Vertical|Vertical|PDF > PDF|Horizontal > apaisada";
        QTest::newRow("apaisada") << "LPDEST=PDF_Apaisado" << "a" << "PDF_Apaisado|PDF_Apaisado|Papel Horizontal"
            "|Horizontal|PDF_Apaisado > PDF_Apaisado|Horizontal > apaisada";
        // A portrait page on a queue that prints landscape by default once came out turned.
        QTest::newRow("vertical en la cola apaisada") << "" << "va"
            << "PDF|PDF|Papel Vertical|Vertical|PDF_Apaisado > PDF_Apaisado|Vertical > vertical";
        // Cancelar and Escape keep the last choice.
        QTest::newRow("cancelar") << "" << "pc" << "PDF|PDF|Papel Vertical|Vertical|PDF > X|Horizontal|cancelada";
        QTest::newRow("escape") << "" << "pe" << "PDF|PDF|Papel Vertical|Vertical|PDF > X|Horizontal|cancelada";
        // Nothing to choose: the list says so; Aceptar leaves no printer and a cancelled choice.
        QTest::newRow("sin impresoras") << "CUPS_SERVER=/tmp/kvr-sin-cups/cups.sock" << "a" << "|No hay ninguna "
            "impresora instalada||Incognita|No hay ninguna impresora instalada > |Horizontal|cancelada";
    }
    void imprimir()
    {
        QFETCH(QString, entorno);
        QFETCH(QString, pasos);
        qunsetenv("LPDEST");
        qunsetenv("CUPS_SERVER");
        if (!entorno.isEmpty())
            qputenv(entorno.section(u'=', 0, 0).toLatin1(), entorno.section(u'=', 1).toLocal8Bit());
        cupsSetServer(nullptr);
        ImpresoraElegida = u"X"_qs;
        OrientacionElegida = u"Horizontal"_qs;
        ImpresoraCancelada = !pasos.endsWith(u'a');
        QPlainTextEdit papel(u"Cinta de prueba\n     12,50 +\n      7,00 +\n     19,50 *\n"_qs);
        PonerMenuCinta(&papel);
        const QStringList antes = QDir(carpetaPdf()).entryList();
        QStringList entradas, vistas;
        // Inside the menu's own loop: "Imprimir cinta…", then the steps inside the dialog's.
        QTimer::singleShot(0, qApp, [&] {
            QWidget *menu = QApplication::activePopupWidget();
            prueba::alAbrirse([&](QWidget *w) {
                auto *lista = control<QComboBox>(w, u"ListaImpresoras");
                for (int i = 0; i < lista->count(); ++i)
                    entradas << lista->itemText(i);
                auto *modo = control<QPushButton>(w, u"ModoPapel");
                vistas << lista->currentText() << lista->toolTip() << modo->toolTip();
                auto *iconos = w->findChild<ListaIconos *>(u"MisIconos"_qs);
                for (const QString &k : iconos->Claves())
                    if (modo->icon().pixmap(36).toImage() == iconos->Icono(k).pixmap(36).toImage())
                        vistas << k;
                recorrer(w, pasos.chopped(1));
                vistas << lista->toolTip(); // follows the entry chosen
                recorrer(w, pasos.right(1));
            });
            QTest::keyClick(menu, Qt::Key_Down);
            QTest::keyClick(menu, Qt::Key_Return);
        });
        QContextMenuEvent menu(QContextMenuEvent::Mouse, QPoint(5, 5), papel.mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(papel.viewport(), &menu);
        QCOMPARE(entradas, entorno.startsWith(u"CUPS_SERVER") ? QStringList() : m_colas);
        QString visto = vistas.join(u'|') + u" > "_qs + ImpresoraElegida + u'|' + OrientacionElegida;
        visto += ImpresoraCancelada ? u"|cancelada"_qs : u" > "_qs + hojaImpresa(antes, papel.toPlainText());
        QTEST(visto, "vistas");
    }
};

QTEST_MAIN(TstImpresora)
#include "tst_impresora.moc"
