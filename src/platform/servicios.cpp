#include <kvr/servicios.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <cstdio>
#include <utility>

namespace kvr {

namespace {
Servicios *g_actuales = nullptr;
Servicios *g_porOmision = nullptr;
} // namespace

Servicios::~Servicios() = default;

int Servicios::Mensaje(const QString &texto, int botones, const QString &titulo)
{
    // Without a window system there is nobody to ask: the message goes to the error output and
    // the first button of the set counts as pressed.
    (void)std::fprintf(stderr, "%s: %s\n", qPrintable(titulo.isEmpty() ? TituloAplicacion() : titulo),
                 qPrintable(texto));
    switch (botones & 7) {
    case AbortarReintentarIgnorar: return RespAbortar;
    case SiNoCancelar:
    case SiNo: return RespSi;
    case ReintentarCancelar: return RespReintentar;
    default: return RespAceptar;
    }
}

QString Servicios::Entrada(const QString &pregunta, const QString &titulo,
                           const QString &porOmision, int xTwips, int yTwips, bool *aceptado)
{
    Q_UNUSED(pregunta);
    Q_UNUSED(titulo);
    Q_UNUSED(porOmision);
    Q_UNUSED(xTwips);
    Q_UNUSED(yTwips);
    if (aceptado)
        *aceptado = false;
    return QString();
}

QString Servicios::TituloAplicacion()
{
    QString t = QCoreApplication::applicationName();
    if (t.isEmpty() && QCoreApplication::instance())
        t = QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName();
    return t;
}

QDate Servicios::Hoy()
{
    return QDate::currentDate();
}

QDateTime Servicios::Ahora()
{
    return QDateTime::currentDateTime();
}

namespace {
constexpr std::pair<int, const char16_t *> TitulosRespuesta[] = {
    {RespAceptar, u"Aceptar"}, {RespCancelar, u"Cancelar"}, {RespAbortar, u"Abortar"},
    {RespReintentar, u"Reintentar"}, {RespIgnorar, u"Ignorar"}, {RespSi, u"Si"}, {RespNo, u"No"},
};
} // namespace

QString TituloRespuesta(int respuesta)
{
    for (const auto &[r, titulo] : TitulosRespuesta)
        if (r == respuesta)
            return QString::fromUtf16(titulo);
    return {};
}

int RespuestaDeTitulo(QStringView titulo)
{
    for (const auto &[r, texto] : TitulosRespuesta)
        if (titulo == QStringView(texto))
            return r;
    return 0;
}

Servicios &ServiciosActuales()
{
    static Servicios basicos;
    if (g_actuales)
        return *g_actuales;
    if (g_porOmision)
        return *g_porOmision;
    return basicos;
}

Servicios *PonerServicios(Servicios *nuevos)
{
    Servicios *antes = g_actuales;
    g_actuales = nuevos;
    return antes;
}

void PonerServiciosPorOmision(Servicios *porOmision)
{
    g_porOmision = porOmision;
}

bool Servicios::AbrirDocumento(const QString &destino)
{
    // Without a window system's own opener, the freedesktop one, given the target untouched.
    return QProcess::startDetached(QStringLiteral("xdg-open"), {destino});
}

bool Servicios::EjecutarPrograma(const QString &programa, const QStringList &argumentos,
                                 const QString &carpeta)
{
    return QProcess::startDetached(programa, argumentos, carpeta);
}

} // namespace kvr
