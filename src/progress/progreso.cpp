#include <kvr/progreso.h>
#include "ui_progreso.h"

#include <kvr/layout.h>
#include <kvr/numeros.h>
#include <kvr/servicios.h>

#include <QApplication>
#include <QCloseEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QWindow>

#include <cmath>
#include <limits>

namespace kvr {

namespace {

const char *const kTag = "tag";

// The window in use. Found once by its name among the top-level widgets and then kept, so that
// an advance does not walk every window of the application.
QPointer<Progreso> &ventanaActual()
{
    static QPointer<Progreso> ventana;
    return ventana;
}

Progreso *buscarVentana()
{
    QPointer<Progreso> &actual = ventanaActual();
    if (actual && actual->objectName() == u"Progreso")
        return actual;
    actual = nullptr;
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (w->objectName() == u"Progreso") {
            if (auto *p = qobject_cast<Progreso *>(w)) {
                actual = p;
                break;
            }
        }
    }
    return actual;
}

// The seam's clock as seconds since midnight, with milliseconds.
double segundosDelDia()
{
    return ServiciosActuales().Ahora().time().msecsSinceStartOfDay() / 1000.0;
}

// A value of the host as a position of the QProgressBar, which counts in whole numbers.
int entero(float v)
{
    constexpr int mitad = std::numeric_limits<int>::max() / 2;
    constexpr float tope = float(mitad);
    if (std::isnan(v))
        return 0;
    return int(std::lround(std::clamp(v, -tope, tope)));
}

// The last two digits of a part of a time text: 7 gives "07", 107 gives "07" too.
QString dosCifras(long long n)
{
    return QString::number(n + 100).right(2);
}

} // namespace

Progreso::Progreso(QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint)
    , ui(std::make_unique<Ui::Progreso>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Progreso"));
    setAttribute(Qt::WA_DeleteOnClose);
    // The design names the captions "BarraLbl(i)"; the form compiler turns that into
    // "BarraLbl_i_", so the control array's names are put back here.
    for (int i = 0; i < 3; ++i) {
        if (auto *l = findChild<QLabel *>(QStringLiteral("BarraLbl_%1_").arg(i)))
            l->setObjectName(QStringLiteral("BarraLbl(%1)").arg(i));
    }
    // Presses on the labels and the pictures drag the window like its background.
    for (QWidget *w : findChildren<QLabel *>())
        w->setAttribute(Qt::WA_TransparentForMouseEvents);
    Form_Load();
}

Progreso::~Progreso() = default;

void Progreso::Form_Load()
{
    PonerFuente(this);
    Redimensionar(this, true);
    Centrar(this);
}

void Progreso::Iniciar(float minimo, float maximo, const QString &titulo)
{
    QProgressBar *barra = ui->Barra;
    // The minimum first goes to 0, so that the new maximum never meets a minimum above it.
    m_minimo = 0;
    m_maximo = maximo > minimo ? maximo : minimo + 1;
    m_minimo = minimo;
    barra->setRange(entero(m_minimo), std::max(entero(m_minimo), entero(m_maximo)));
    barra->setValue(barra->minimum());
    // The start time is kept as text in the window's own tag and read back at every redraw.
    setProperty(kTag, QString::number(segundosDelDia(), 'f', 3));
    barra->setProperty(kTag, QStringLiteral("INICIO"));
    m_inicio = true;
    ui->BarraTitulo->setText(titulo);
    // The layout was applied when the window was made; a second pass would scale it again.
    show();
}

void Progreso::Avanzar(float valor, bool forzar)
{
    if (m_inicio) {
        // The first advance after a start always redraws.
        m_pasos = m_maximo;
        m_inicio = false;
        ui->Barra->setProperty(kTag, QString());
    }
    m_pasos += 1;
    if (m_pasos >= m_maximo / 100 || m_maximo == valor || forzar)
        redibujar(valor);
}

void Progreso::redibujar(float valor)
{
    if (m_minimo <= valor && valor <= m_maximo)
        ui->Barra->setValue(std::clamp(entero(valor), ui->Barra->minimum(), ui->Barra->maximum()));
    ui->BarraPor->setText(Formato(double(valor) * 100.0 / double(m_maximo), QStringLiteral("#.00 "))
                          + u'%');
    m_pasos = 0;
    const double inicio = property(kTag).toString().toDouble();
    m_transcurrido = float(segundosDelDia() - inicio);
    ui->BarraTra->setText(TextoTiempo(m_transcurrido));
    // The estimate is of the whole task's duration, not of the time still to go.
    if (valor > 0)
        ui->BarraEst->setText(TextoTiempo(float(double(m_maximo) * m_transcurrido / valor)));
}

QString Progreso::TextoTiempo(float segundos)
{
    if (!std::isfinite(segundos))
        segundos = 0;
    constexpr long long mitad = std::numeric_limits<long long>::max() / 2;
    const double maximo = double(mitad);
    const long long s = (long long)std::clamp(std::floor(double(segundos)), -maximo, maximo);
    const long long h = s / 3600;
    const long long resto = s - h * 3600;
    return dosCifras(h) + u':' + dosCifras(resto / 60) + u':' + dosCifras(resto % 60);
}

void Progreso::Form_MouseDown()
{
    if (QWindow *ventana = windowHandle())
        ventana->startSystemMove();
}

void Progreso::mousePressEvent(QMouseEvent *evento)
{
    evento->accept();
    Form_MouseDown();
}

void Progreso::closeEvent(QCloseEvent *evento)
{
    // Closed is unloaded: the name goes, so that the next start makes a new window.
    setObjectName(QString());
    if (ventanaActual() == this)
        ventanaActual() = nullptr;
    QWidget::closeEvent(evento);
}

void BarraProgreso(int operacion, float valor, bool forzar, float minimo, float maximo,
                   const QString &titulo)
{
    if (operacion < ProgresoIniciar || operacion > ProgresoMostrar)
        return;
    Progreso *ventana = buscarVentana();
    if (!ventana && (operacion == ProgresoIniciar || operacion == ProgresoMostrar)) {
        ventana = new Progreso;
        ventanaActual() = ventana;
    }
    if (ventana) {
        switch (operacion) {
        case ProgresoIniciar: ventana->Iniciar(minimo, maximo, titulo); break;
        case ProgresoCerrar:
            ventana->close();
            delete ventana; // unloaded now, not at the next turn of the event loop
            break;
        case ProgresoAvanzar: ventana->Avanzar(valor, forzar); break;
        case ProgresoOcultar: ventana->hide(); break;
        case ProgresoMostrar:
            ventana->show();
            break;
        }
    }
    // The host's windows stay responsive during its loop.
    QCoreApplication::processEvents();
}

} // namespace kvr
