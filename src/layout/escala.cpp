#include <kvr/escala.h>

#include <cmath>

namespace kvr {

float FactorX = 0.0f;
float FactorY = 0.0f;
bool SinEscalar = false;

float EscalaX(float v)
{
    return (FactorX == 0.0f || SinEscalar) ? v : v * FactorX;
}

float EscalaY(float v)
{
    return (FactorY == 0.0f || SinEscalar) ? v : v * FactorY;
}

float EscalaFuente(float v)
{
    if (FactorX == 0.0f || FactorY == 0.0f || SinEscalar)
        return v;
    return v * (FactorX + FactorY) / 2.0f;
}

std::optional<float> FactorProporcional(float anchoVentana, float altoVentana, float anchoUtil,
                                        float altoUtil, float ancho, float alto,
                                        float twipsPorPixelX, float twipsPorPixelY)
{
    // Everything is reckoned in twips, as the work area is.
    const float ventanaX = anchoVentana * twipsPorPixelX;
    const float ventanaY = altoVentana * twipsPorPixelY;
    if (!(ventanaX > 0.0f) || !(ventanaY > 0.0f))
        return std::nullopt;
    const float objetivoX = ancho == 0.0f ? ventanaX + (anchoUtil - ventanaX) / 2.0f
                                          : ancho * twipsPorPixelX;
    const float objetivoY = alto == 0.0f ? ventanaY + (altoUtil - ventanaY) / 2.0f
                                         : alto * twipsPorPixelY;
    // The same operations in the same single precision as the desktop routine, so factors agree
    // to the last bit.
    float fx = objetivoX * 100.0f / ventanaX / 100.0f;
    float fy = objetivoY * 100.0f / ventanaY / 100.0f;
    if (fx <= fy)
        fy = fx;
    else
        fx = fy;
    if (!std::isfinite(fx) || !(fx > 0.0f))
        return std::nullopt;
    return fx;
}

bool CalcularFactores(float anchoVentana, float altoVentana, float anchoUtil, float altoUtil,
                      float ancho, float alto, float twipsPorPixelX, float twipsPorPixelY)
{
    const auto f = FactorProporcional(anchoVentana, altoVentana, anchoUtil, altoUtil, ancho,
                                      alto, twipsPorPixelX, twipsPorPixelY);
    if (!f)
        return false;
    FactorX = *f;
    FactorY = *f;
    return true;
}

float EscalaIzquierda(float izquierda, float twipsPorPixel)
{
    if (izquierda * twipsPorPixel < LimiteAparcado) {
        const float origen = OrigenAparcado / twipsPorPixel;
        return EscalaX(izquierda - origen) + origen;
    }
    return EscalaX(izquierda);
}

float PosicionCentrada(float util, float tamano, float twipsPorPixel)
{
    return ((util - tamano * twipsPorPixel) / 2.0f + 1.0f) / twipsPorPixel;
}

} // namespace kvr
