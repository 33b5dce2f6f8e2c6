// The calculator tape on paper and on disk: the context menu of the tape, its printing on the
// queue and orientation chosen with the printer dialog, and its saving as a text file.
#include <kvr/impresora.h>

#include <kvr/error.h>
#include <kvr/mybox.h>

#include <QFileDialog>
#include <QFontDatabase>
#include <QMenu>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPrinter>
#include <QSaveFile>

namespace kvr {

namespace {

// The tape's lines without the empty ones its last line end leaves.
QStringList lineasDe(const QString &texto)
{
    QStringList lineas = QString(texto).remove(u'\r').split(u'\n');
    while (!lineas.isEmpty() && lineas.constLast().trimmed().isEmpty())
        lineas.removeLast();
    return lineas;
}

void guardarCinta(const QString &texto, QWidget *padre)
{
    const QString ruta = QFileDialog::getSaveFileName(padre, QStringLiteral("Guardar cinta"),
                                                      QStringLiteral("cinta.txt"),
                                                      QStringLiteral("Texto (*.txt);;Todos (*)"));
    if (ruta.isEmpty())
        return;
    const QByteArray datos = (lineasDe(texto).join(u'\n') + u'\n').toUtf8();
    QSaveFile fichero(ruta);
    // Unbuffered, so that a write cut short is seen here and the old file is left as it was.
    if (!fichero.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        throw ErrorEjecucion(ErrorEjecucion::AccesoDenegado,
                             QStringLiteral("Permiso denegado: %1").arg(ruta));
    if (fichero.write(datos) != datos.size() || !fichero.commit()) {
        fichero.cancelWriting();
        throw ErrorEjecucion(ErrorEjecucion::ErrorEntradaSalida,
                             QStringLiteral("Error de entrada/salida: %1").arg(ruta));
    }
}

void imprimirConDialogo(const QString &texto)
{
    Impresora dialogo;
    dialogo.exec();
    if (ImpresoraCancelada)
        return;
    if (!ImprimirCinta(texto, QStringLiteral("Cinta de la calculadora")))
        MyMsgBox(QStringLiteral("No se ha podido imprimir la cinta en ") + ImpresoraElegida + u'.',
                 QStringLiteral("Imprimir cinta"), IconoImpresora, 1, 1);
}

} // namespace

bool ImprimirCinta(const QString &lineas, const QString &titulo)
{
    if (ImpresoraElegida.isEmpty())
        return false;
    QPrinter impresora(QPrinter::HighResolution);
    AplicarImpresora(impresora);
    impresora.setDocName(titulo);
    impresora.setFullPage(false);

    QPainter pintor;
    if (!pintor.begin(&impresora))
        return false;
    QFont fuente = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fuente.setStyleHint(QFont::TypeWriter);
    fuente.setPointSize(10);
    pintor.setFont(QFont(fuente, pintor.device()));
    const QFontMetrics medidas = pintor.fontMetrics();
    // The painter starts at the printable area's corner.
    const int altoPagina = impresora.pageLayout().paintRectPixels(impresora.resolution()).height();
    const int alto = medidas.lineSpacing();
    int y = medidas.ascent();
    for (const QString &linea : lineasDe(lineas)) {
        if (y > altoPagina - medidas.descent() && y > medidas.ascent()) {
            impresora.newPage();
            y = medidas.ascent();
        }
        pintor.drawText(0, y, linea);
        y += alto;
    }
    const bool bien = pintor.end();
    return bien && impresora.printerState() != QPrinter::Error;
}

void PonerMenuCinta(QPlainTextEdit *papel)
{
    if (!papel)
        return;
    papel->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(papel, &QWidget::customContextMenuRequested, papel, [papel](const QPoint &pos) {
        // A menu of its own, without a parent: the calculator claims every key of its children.
        QMenu menu;
        QAction *imprimir = menu.addAction(QStringLiteral("Imprimir cinta…"));
        QAction *guardar = menu.addAction(QStringLiteral("Guardar cinta…"));
        const bool vacia = lineasDe(papel->toPlainText()).isEmpty();
        imprimir->setEnabled(!vacia);
        guardar->setEnabled(!vacia);
        QAction *elegida = menu.exec(papel->viewport()->mapToGlobal(pos));
        const QString texto = papel->toPlainText();
        if (elegida == imprimir)
            EjecutarManejador([&] { imprimirConDialogo(texto); });
        else if (elegida == guardar)
            EjecutarManejador([&] { guardarCinta(texto, nullptr); });
    });
}

} // namespace kvr
