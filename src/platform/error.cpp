#include <kvr/error.h>
#include <kvr/servicios.h>

namespace kvr {

QString ErrorEjecucion::DescripcionDe(int numero)
{
    switch (numero) {
    case ArgumentoNoValido: return QStringLiteral("Llamada a procedimiento o argumento no válidos");
    case Desbordamiento: return QStringLiteral("Desbordamiento");
    case SubindiceFueraDeIntervalo: return QStringLiteral("Subíndice fuera del intervalo");
    case DivisionPorCero: return QStringLiteral("División por cero");
    case TiposNoCoinciden: return QStringLiteral("No coinciden los tipos");
    case ArchivoNoEncontrado: return QStringLiteral("No se ha encontrado el archivo");
    case ErrorEntradaSalida: return QStringLiteral("Error de E/S en el dispositivo");
    case AccesoDenegado: return QStringLiteral("Error de acceso a la ruta o el archivo");
    default: return QStringLiteral("Error definido por la aplicación o el objeto");
    }
}

ErrorEjecucion::ErrorEjecucion(int numero, const QString &descripcion)
    : m_numero(numero)
    , m_descripcion(descripcion.isEmpty() ? DescripcionDe(numero) : descripcion)
    , m_utf8(QStringLiteral("Error %1: %2").arg(numero).arg(m_descripcion).toUtf8())
{
}

bool EjecutarManejador(const std::function<void()> &manejador, const std::function<void()> &alFallar)
{
    try {
        manejador();
        return true;
    } catch (const ErrorEjecucion &e) {
        if (alFallar)
            alFallar();
        Servicios &s = ServiciosActuales();
        s.Mensaje(QString::fromUtf8(e.what()), Critico, s.TituloAplicacion());
        return false;
    }
}

} // namespace kvr
