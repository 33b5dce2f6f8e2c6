#include "kvr/escala.h"

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

} // namespace kvr
