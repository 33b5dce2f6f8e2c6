#include <kvr/minihelp.h>
#include <kvr/utilidades.h>

#include <kvr/error.h>
#include <kvr/layout.h>
#include <kvr/rtfdocumento.h>
#include "tiraversion.h"
#include "ui_minihelp.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QEventLoop>
#include <QPointer>
#include <QTextCursor>
#include <QUrl>
#include <QVersionNumber>

#ifdef KVR_CON_WEBENGINE
#include <QWebEngineLoadingInfo>
#include <QWebEnginePage>
#include <QWebEngineSettings>
#include <QWebEngineView>
#include <unistd.h>
#endif

namespace kvr {

namespace {

#ifdef KVR_CON_WEBENGINE
// Chromium refuses to start as root with its sandbox on. A host running as root that set no
// flags of its own gets the ones that let the engine start; they must be in place before the
// first web view exists.
void PrepararMotorWeb()
{
    if (::geteuid() == 0 && qEnvironmentVariableIsEmpty("QTWEBENGINE_CHROMIUM_FLAGS"))
        qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--no-sandbox --disable-gpu");
}
#endif

} // namespace

QString MiniHelp::TextoVersion()
{
    const QVersionNumber v = QVersionNumber::fromString(QCoreApplication::applicationVersion());
    return QStringLiteral("Programa ") + QCoreApplication::applicationName()
           + QStringLiteral("  -  ") + QStringLiteral("Versión ")
           + QString::number(v.majorVersion()) + u'.' + QString::number(v.minorVersion()) + u'.'
           + QString::number(v.microVersion());
}

MiniHelp::MiniHelp(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::MiniHelp>())
{
    ui->setupUi(this);
#ifdef KVR_CON_WEBENGINE
    PrepararMotorWeb();
    // The web view takes the place, name and tag of the control of the design.
    auto *vista = new QWebEngineView(this);
    vista->setObjectName(ui->MiniWeb->objectName());
    vista->setProperty("tag", ui->MiniWeb->property("tag"));
    vista->setGeometry(ui->MiniWeb->geometry());
    vista->settings()->setAttribute(QWebEngineSettings::ErrorPageEnabled, false);
    vista->stackUnder(ui->cmdCerrar);
    delete ui->MiniWeb;
    ui->MiniWeb = nullptr;
    m_web = vista;
    connect(vista, &QWebEngineView::loadStarted, this, [this] { m_ocupado = true; });
    connect(vista->page(), &QWebEnginePage::loadingChanged, this,
            [this](const QWebEngineLoadingInfo &info) {
                switch (info.status()) {
                case QWebEngineLoadingInfo::LoadStartedStatus:
                    m_ocupado = true;
                    break;
                case QWebEngineLoadingInfo::LoadSucceededStatus:
                    // An HTTP error answer is a failed navigation too, as a page not found.
                    MiniWeb_Resultado(info.errorDomain() == QWebEngineLoadingInfo::HttpStatusCodeDomain
                                      && info.errorCode() >= 400);
                    break;
                case QWebEngineLoadingInfo::LoadStoppedStatus:
                case QWebEngineLoadingInfo::LoadFailedStatus:
                    MiniWeb_Resultado(true);
                    break;
                }
            });
#else
    m_web = ui->MiniWeb;
#endif
    m_web->hide();
    connect(ui->cmdCerrar, &QPushButton::clicked, this, Manejador(this, &MiniHelp::cmdCerrar_Click));
    Form_Load();
}

MiniHelp::~MiniHelp() = default;

void MiniHelp::Form_Load()
{
    PonerFuente(this);
    float a = 0, b = 0;
    Redimensionar(this, a, b, true);
    ui->MiVersion->hide();
}

void MiniHelp::cmdCerrar_Click()
{
    close();
}

void MiniHelp::closeEvent(QCloseEvent *evento)
{
#ifdef KVR_CON_WEBENGINE
    // Closing while a page loads ends the wait of MiExplorer.
    if (m_ocupado)
        static_cast<QWebEngineView *>(m_web)->stop();
#endif
    QDialog::closeEvent(evento);
}

void MiniHelp::MiniWeb_Resultado(bool error)
{
    if (error)
        m_errorNavegacion = true;
    m_ocupado = false;
}

void MiniHelp::CargarAyuda(const QString &Fichero)
{
    CargarRtf(Fichero, ui->TextoAyuda->document());
    ui->TextoAyuda->moveCursor(QTextCursor::Start);
}

void MiniHelp::MostrarVersion(const QString &Texto)
{
    ui->MiVersion->Dibujar(Texto.isEmpty() ? TextoVersion() : Texto);
    ui->MiVersion->show();
}

void MiniHelp::TituloMiniWeb(const QString &Titulo)
{
    ui->MiVersion->Limpiar();
    MostrarVersion(Titulo);
}

void MiniHelp::MiExplorer(const QString &URL, bool &Problema)
{
    // While a page loads the help text area is light blue.
    QPalette paleta = ui->TextoAyuda->palette();
    paleta.setColor(QPalette::Base, QColor(0x80, 0x80, 0xFF));
    ui->TextoAyuda->setPalette(paleta);

    const QUrl url = QUrl::fromUserInput(URL);
#ifdef KVR_CON_WEBENGINE
    QPointer<MiniHelp> yo(this);
    auto *vista = static_cast<QWebEngineView *>(m_web);
    // An address that names no page starts no navigation: nothing would end the wait.
    m_ocupado = url.isValid() && !url.isEmpty();
    if (m_ocupado)
        vista->load(url);
    else
        MiniWeb_Resultado(true);
    if (m_ocupado) {
        QEventLoop espera;
        const auto fin = [&espera, this] {
            if (!m_ocupado)
                espera.quit();
        };
        connect(vista->page(), &QWebEnginePage::loadingChanged, &espera, fin, Qt::QueuedConnection);
        connect(this, &QObject::destroyed, &espera, &QEventLoop::quit);
        espera.exec();
    }
    if (!yo) {  // the host deleted the window while the page was loading
        Problema = true;
        return;
    }
#else
    // No web view in this build: the desktop's browser shows the page, and the window says where.
    if (!url.isValid() || !QDesktopServices::openUrl(url))
        MiniWeb_Resultado(true);
    else
        static_cast<QLabel *>(m_web)->setText(
            QStringLiteral("La página <a href=\"%1\">%2</a> se ha abierto en el navegador.")
                .arg(QString::fromUtf8(url.toEncoded()).toHtmlEscaped(), URL.toHtmlEscaped()));
#endif
    Problema = m_errorNavegacion;
    if (m_errorNavegacion) {
        close();
        return;
    }
    if (m_web->isHidden())
        MostrarVersion(QString());
    m_web->show();
}

void MiniHelp::keyReleaseEvent(QKeyEvent *evento)
{
    TeclasGlobales(evento, this);
    QWidget::keyReleaseEvent(evento);
}

} // namespace kvr
