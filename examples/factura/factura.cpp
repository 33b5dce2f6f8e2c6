#include "factura.h"
#include "ui_factura.h"

#include <kvr/campos.h>
#include <kvr/error.h>
#include <kvr/fechas.h>
#include <kvr/impresora.h>
#include <kvr/layout.h>
#include <kvr/mybox.h>
#include <kvr/progreso.h>
#include <kvr/utilidades.h>
#include <kvr/valores.h>

#include <QCloseEvent>
#include <QFile>
#include <QKeyEvent>
#include <QPainter>
#include <QPrinter>
#include <QSaveFile>
#include <QTextStream>

namespace {

const QString kTitulo = QStringLiteral("Facturas");

// The customers a real host would read from its database: code, name, NIF.
struct Cliente {
    const char *codigo, *nombre, *nif;
};
const Cliente kClientes[] = {
    {"000101", "Ferretería Ibáñez, S.L.", "B50123457"},
    {"000102", "Construcciones Muñoz", "12345678Z"},
    {"000103", "Librería Cervantes", "50333444F"},
    {"000104", "Talleres Peñalver", "71222333X"},
};

// The value of a field as the user typed it (its editing form: a date as "dd/mm/yyyy", an
// amount with a point), whatever form it shows now.
QString Valor(const QLineEdit *campo)
{
    return kvr::TextoEdicion(campo->text(), kvr::TagDe(campo)).trimmed();
}

} // namespace

Factura::Factura(const QString &fichero, QWidget *parent)
    : QWidget(parent), ui(std::make_unique<Ui::Factura>()), m_fichero(fichero)
{
    ui->setupUi(this);
    // Every field with a "tag" gets its behaviour: key filter, editing colour, display form,
    // Enter as Tab, "+" for the default.
    kvr::PrepararCampos(this);
    using kvr::Manejador;
    connect(ui->cmdCliente, &QPushButton::clicked, this, Manejador(this, &Factura::cmdCliente_Click));
    connect(ui->cmdGrabar, &QPushButton::clicked, this, Manejador(this, &Factura::cmdGrabar_Click));
    connect(ui->cmdListado, &QPushButton::clicked, this, Manejador(this, &Factura::cmdListado_Click));
    connect(ui->cmdSalir, &QPushButton::clicked, this, Manejador(this, &Factura::cmdSalir_Click));
    for (QLineEdit *campo : {ui->txtCliente, ui->txtNIF, ui->txtFecha, ui->txtImporte})
        connect(campo, &QLineEdit::textChanged, this, Manejador(this, &Factura::Campo_Change));
    Form_Load();
}

Factura::~Factura() = default;

void Factura::Form_Load()
{
    // The window in proportion to the screen, by the factor the program computed from its first
    // window (nothing happens before that).
    kvr::PonerFuente(this);
    kvr::Redimensionar(this);
}

void Factura::Campo_Change()
{
    // The runtime rewrites a field when it takes or leaves the focus: that is not a change.
    if (!kvr::CambiandoTexto)
        m_cambios = true;
}

void Factura::cmdCliente_Click()
{
    // Row and column 0 are not shown: the table starts at [1][1].
    QVector<QStringList> tabla{{}};
    for (const Cliente &c : kClientes)
        tabla.append({QString(), QString::fromUtf8(c.codigo), QString::fromUtf8(c.nombre), QString::fromUtf8(c.nif)});
    const QString codigo = kvr::MyVisorBox(QStringLiteral("Clientes"),
                                           QStringLiteral("Código#7;Nombre#26;NIF#10"), tabla,
                                           kvr::IconoBuscar, QStringLiteral("Código"), -1, -1, this);
    if (codigo.isEmpty())
        return;
    for (const Cliente &c : kClientes) {
        if (codigo == QString::fromUtf8(c.codigo)) {
            ui->txtCliente->setText(codigo);
            ui->lblNombre->setText(QString::fromUtf8(c.nombre));
            ui->txtNIF->setText(QString::fromUtf8(c.nif));
        }
    }
    ui->txtFecha->setFocus();
}

void Factura::cmdGrabar_Click()
{
    Grabar();
}

bool Factura::Grabar()
{
    const QString cliente = Valor(ui->txtCliente), fecha = Valor(ui->txtFecha), importe = Valor(ui->txtImporte);
    if (cliente.isEmpty() || fecha.isEmpty() || importe.isEmpty()) {
        kvr::MyMsgBox(QStringLiteral("Faltan datos:;el cliente, la fecha y el importe son obligatorios."), kTitulo,
                      kvr::IconoAdvertencia, 1, 1, -1, -1, this);
        return false;
    }
    // The whole file is written again beside itself and put in place in one step, so a failed
    // save never leaves half a file.
    QByteArray antes;
    if (QFile viejo(m_fichero); viejo.open(QIODevice::ReadOnly))
        antes = viejo.readAll();
    QSaveFile fichero(m_fichero);
    if (fichero.open(QIODevice::WriteOnly)) {
        fichero.write(antes);
        fichero.write(QStringList{cliente, Valor(ui->txtNIF), fecha, importe}.join(u'\t').toUtf8() + '\n');
    }
    if (!fichero.commit()) {
        kvr::MyMsgBox(QStringLiteral("No se pudo grabar la factura en;") + m_fichero, kTitulo, kvr::IconoError, 1, 1,
                      -1, -1, this);
        return false;
    }
    for (QLineEdit *campo : {ui->txtCliente, ui->txtNIF, ui->txtFecha, ui->txtImporte})
        campo->clear();
    ui->lblNombre->clear();
    m_cambios = false;
    ui->txtCliente->setFocus();
    return true;
}

QStringList Factura::Listado(const QString &desde, const QString &hasta) const
{
    const QDate inicio = kvr::LeerFecha(desde).value_or(QDate()), fin = kvr::LeerFecha(hasta).value_or(QDate());
    QStringList lineas;
    QFile fichero(m_fichero);
    if (!fichero.open(QIODevice::ReadOnly))
        return lineas;
    QTextStream entrada(&fichero);
    for (QString linea; entrada.readLineInto(&linea);) {
        const QStringList c = linea.split(u'\t');
        if (c.size() < 4)
            continue;
        const std::optional<QDate> fecha = kvr::LeerFecha(c[2]);
        if (fecha && *fecha >= inicio && *fecha <= fin)
            lineas.append(QStringLiteral("%1  %2  %3  %4").arg(c[2], c[0], c[1].leftJustified(9),
                                                                kvr::FormatearCampo(c[3], QStringLiteral("T(N) L(12) A(D) D(2)"))));
    }
    return lineas;
}

void Factura::cmdListado_Click()
{
    // A range question: two date fields in one box; the answer is "desde" + "ƒ" + "hasta".
    const int anio = QDate::currentDate().year();
    const QString rango = kvr::MyInputBox(QStringLiteral("Fechas de las facturas que se listan"), kTitulo,
                                          kvr::IconoImpresora, QStringLiteral("T(F) L(10) A(I) (/)"),
                                          QStringLiteral("01/01/%1ƒ31/12/%1").arg(anio), -1, -1, this);
    if (rango.isEmpty())
        return;
    const QStringList fechas = rango.split(QChar(0x0192));
    const QStringList lineas = Listado(fechas.value(0), fechas.value(1));
    if (lineas.isEmpty()) {
        kvr::MyMsgBox(QStringLiteral("No hay facturas en esas fechas."), kTitulo, kvr::IconoInformacion, 1, 1, -1, -1,
                      this);
        return;
    }
    // The printer and the orientation, chosen by the user; then the printout with its progress.
    kvr::Impresora dialogo(this);
    dialogo.exec();
    if (kvr::ImpresoraCancelada)
        return;
    Imprimir(lineas, QStringLiteral("Facturas del %1 al %2").arg(fechas.value(0), fechas.value(1)));
}

void Factura::Imprimir(const QStringList &lineas, const QString &titulo)
{
    QPrinter impresora;
    kvr::AplicarImpresora(impresora);
    impresora.setDocName(titulo);
    QPainter papel;
    if (!papel.begin(&impresora)) {
        kvr::MyMsgBox(QStringLiteral("La impresora no acepta el trabajo."), kTitulo, kvr::IconoError, 1, 1, -1, -1, this);
        return;
    }
    papel.setFont(QFont(QStringLiteral("Monospace"), 10));
    const int alto = papel.fontMetrics().height();
    const int pagina = papel.viewport().height();
    int y = alto;
    papel.drawText(0, y, titulo);
    y += 2 * alto;
    kvr::BarraProgreso(kvr::ProgresoIniciar, 0, false, 0, float(lineas.size()), QStringLiteral("Imprimiendo…"));
    for (int i = 0; i < lineas.size(); ++i) {
        if (y + alto > pagina) {
            impresora.newPage();
            y = alto;
        }
        papel.drawText(0, y, lineas[i]);
        y += alto;
        kvr::BarraProgreso(kvr::ProgresoAvanzar, float(i + 1));
    }
    papel.end();
    kvr::BarraProgreso(kvr::ProgresoCerrar);
}

void Factura::cmdSalir_Click()
{
    close();
}

void Factura::keyPressEvent(QKeyEvent *evento)
{
    // F2 looks for the customer from any field, as the tooltip says.
    if (evento->key() == Qt::Key_F2) {
        kvr::EjecutarManejador([this] { cmdCliente_Click(); });
        return;
    }
    QWidget::keyPressEvent(evento);
}

void Factura::keyReleaseEvent(QKeyEvent *evento)
{
    // F4 opens the calculator and F8 the phone book, from this window as from any other.
    kvr::TeclasGlobales(evento, this);
    QWidget::keyReleaseEvent(evento);
}

void Factura::closeEvent(QCloseEvent *evento)
{
    if (!m_cambios) {
        evento->accept();
        return;
    }
    const int r = int(kvr::MyMsgBox(QStringLiteral("La factura no está grabada.;¿Grabarla antes de salir?"), kTitulo,
                                  kvr::IconoPregunta, 4, 1, -1, -1, this));
    if (r == kvr::RespSi && !Grabar())
        evento->ignore();
    else if (r == kvr::RespSi || r == kvr::RespNo)
        evento->accept();
    else
        evento->ignore(); // "Cancelar" or Escape: the user stays on the form
}
