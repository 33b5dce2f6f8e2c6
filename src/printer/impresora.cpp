#include <kvr/impresora.h>
#include "ui_impresora.h"

#include <kvr/accesible.h>
#include <kvr/error.h>
#include <kvr/layout.h>
#include <kvr/utilidades.h>

#include <QPrintEngine>
#include <QPrinter>
#include <QPrinterInfo>

namespace kvr {

QString ImpresoraElegida;
QString OrientacionElegida;
bool ImpresoraCancelada = false;

namespace {

const char *const kTag = "tag";
const QString kVertical = QStringLiteral("Vertical");
const QString kHorizontal = QStringLiteral("Horizontal");

// Qt's CUPS print engine takes extra job options, name and value in turn, under this key.
constexpr auto kOpcionesCups = QPrintEngine::PrintEnginePropertyKey(0xfe00);

} // namespace

ListaIconos::ListaIconos(QObject *parent) : QObject(parent)
{
    setObjectName(QStringLiteral("MisIconos"));
    for (const char *clave : {"Vertical", "Horizontal", "Incognita"}) {
        const QString k = QString::fromLatin1(clave);
        m_iconos.insert(k, QIcon(QStringLiteral(":/kvr/impresora/iconos/%1.png").arg(k.toLower())));
    }
}

Impresora::Impresora(QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::Impresora>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Impresora"));
    m_iconos = new ListaIconos(this);

    connect(ui->ModoPapel, &QPushButton::clicked, this, Manejador(this, &Impresora::ModoPapel_Click));
    AccesibleComoLista(ui->ListaImpresoras);
    connect(ui->ListaImpresoras, &QComboBox::activated, this, Manejador(this, &Impresora::ListaImpresoras_Click));
    connect(ui->cmdAceptar, &QPushButton::clicked, this, Manejador(this, &Impresora::cmdAceptar_Click));
    connect(ui->cmdCancelar, &QPushButton::clicked, this, Manejador(this, &Impresora::cmdCancelar_Click));

    EjecutarManejador([this] { Form_Load(); });
}

Impresora::~Impresora() = default;

void Impresora::Form_Load()
{
    PonerFuente(this);
    Redimensionar(this, true);
    Centrar(this);

    QComboBox *lista = ui->ListaImpresoras;
    lista->clear();
    const QList<QPrinterInfo> impresoras = QPrinterInfo::availablePrinters();
    if (impresoras.isEmpty()) {
        // Nothing to choose: the list says so, and the orientation stays unknown.
        lista->setPlaceholderText(QStringLiteral("No hay ninguna impresora instalada"));
        lista->setCurrentIndex(-1);
        lista->setEnabled(false);
        lista->setToolTip(lista->placeholderText());
        ui->ModoPapel->setEnabled(false);
        return;
    }
    for (const QPrinterInfo &p : impresoras)
        lista->addItem(p.printerName());
    const int indice = IndiceImpresora();
    lista->setCurrentIndex(indice);
    // The current printer is the default destination; without one, the first queue, where the
    // list stands.
    QString actual = QPrinterInfo::defaultPrinterName();
    if (actual.isEmpty())
        actual = lista->currentText();
    lista->setToolTip(actual);

    switch (OrientacionDeCola(actual)) {
    case 1: ui->ModoPapel->setProperty(kTag, kHorizontal); break;
    case 2: ui->ModoPapel->setProperty(kTag, kVertical); break;
    default: break;
    }
    // The click turns the tag over to the printer's own orientation and shows its picture.
    ModoPapel_Click();
}

void Impresora::ProponerApaisado()
{
    EjecutarManejador([this] { ModoPapel_Click(); });
}

void Impresora::ModoPapel_Click()
{
    QPushButton *modo = ui->ModoPapel;
    const QString tag = modo->property(kTag).toString();
    QString nuevo;
    if (tag == kHorizontal)
        nuevo = kVertical;
    else if (tag == kVertical)
        nuevo = kHorizontal;
    else
        return;
    modo->setIcon(m_iconos->Icono(nuevo));
    modo->setProperty(kTag, nuevo);
    modo->setToolTip(QStringLiteral("Papel ") + nuevo);
}

void Impresora::ListaImpresoras_Click()
{
    ui->ListaImpresoras->setToolTip(ui->ListaImpresoras->currentText());
}

void Impresora::cmdAceptar_Click()
{
    const QString elegida = ui->ListaImpresoras->currentText();
    if (elegida.isEmpty()) {
        // No printer to accept: the host sees no printer and a cancelled choice.
        ImpresoraElegida.clear();
        ImpresoraCancelada = true;
    } else {
        ImpresoraCancelada = false;
        ImpresoraElegida = elegida;
        OrientacionElegida = ui->ModoPapel->property(kTag).toString();
    }
    QDialog::accept();
    QCoreApplication::processEvents();
}

void Impresora::cmdCancelar_Click()
{
    reject();
    QCoreApplication::processEvents();
}

void Impresora::reject()
{
    // Escape and the window's close button cancel too, so that a host never reads a choice the
    // user did not make.
    ImpresoraCancelada = true;
    QDialog::reject();
}

void AplicarImpresora(QPrinter &impresora)
{
    if (!ImpresoraElegida.isEmpty())
        impresora.setPrinterName(ImpresoraElegida);
    QPageLayout::Orientation o;
    QByteArray cups;
    if (OrientacionElegida == kHorizontal) {
        o = QPageLayout::Landscape;
        cups = "4";
    } else if (OrientacionElegida == kVertical) {
        o = QPageLayout::Portrait;
        cups = "3";
    } else {
        return;
    }
    impresora.setPageOrientation(o);
    // The queue's own default orientation would otherwise turn the page once more.
    if (impresora.outputFormat() == QPrinter::NativeFormat) {
        QPrintEngine *motor = impresora.printEngine();
        QStringList opciones = motor->property(kOpcionesCups).toStringList();
        const qsizetype i = opciones.indexOf(QStringLiteral("orientation-requested"));
        if (i >= 0 && i % 2 == 0 && i + 1 < opciones.size())
            opciones[i + 1] = QString::fromLatin1(cups);
        else
            opciones << QStringLiteral("orientation-requested") << QString::fromLatin1(cups);
        motor->setProperty(kOpcionesCups, opciones);
    }
}

} // namespace kvr
