#pragma once
// The proportional layout's scale factors and the pure scaling maths (no widgets).
namespace kvr {

// Horizontal and vertical scale factors; 0 means not computed yet. After a computation both
// hold the same value.
extern float FactorX;
extern float FactorY;
// While true, no scaling is applied anywhere.
extern bool SinEscalar;

// v scaled by FactorX / FactorY; unchanged when the factor is 0 or SinEscalar is raised.
float EscalaX(float v);
float EscalaY(float v);
// v times the mean of both factors; unchanged when either factor is 0 or SinEscalar is raised.
float EscalaFuente(float v);

} // namespace kvr
