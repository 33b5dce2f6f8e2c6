#pragma once
/// @file
/// The proportional layout's scale factors and the pure scaling maths (no widgets). Windows are
/// designed at one size and shown larger on larger screens: one factor, the same for both
/// directions, scales a window, its controls, their fonts and grid columns.
#include <kvr/kvr_core_export.h>
#include <kvr/servicios.h>

#include <optional>

namespace kvr {

/// Horizontal and vertical scale factors; 0 means not computed yet. After a computation both
/// hold the same value.
///@{
extern KVR_CORE_EXPORT float FactorX;
extern KVR_CORE_EXPORT float FactorY;
///@}
/// While true, no scaling is applied anywhere.
extern KVR_CORE_EXPORT bool SinEscalar;

/// v scaled by FactorX / FactorY; unchanged when the factor is 0 or SinEscalar is raised.
///@{
KVR_CORE_EXPORT float EscalaX(float v);
KVR_CORE_EXPORT float EscalaY(float v);
///@}
/// v times the mean of both factors; unchanged when either factor is 0 or SinEscalar is raised.
KVR_CORE_EXPORT float EscalaFuente(float v);

/// Twips per pixel = TwipsPorPulgada (<kvr/servicios.h>) / logical dpi.
/// A control whose left edge (in twips) lies below this is parked out of sight.
constexpr float LimiteAparcado = -50000.0f;
/// Parked controls are scaled about this left edge (in twips) so that they stay out of sight.
constexpr float OrigenAparcado = -75000.0f;

/// The common factor for a window of `anchoVentana` x `altoVentana` pixels on a work area of
/// `anchoUtil` x `altoUtil` twips. `ancho` / `alto` 0 aim halfway between the window and the
/// work area; otherwise they are the wanted size in pixels. The smaller of the horizontal and
/// vertical factors is returned. nullopt when the window has no size or the result is not a
/// positive finite number (there is nothing to scale from).
KVR_CORE_EXPORT std::optional<float> FactorProporcional(float anchoVentana, float altoVentana,
                                                        float anchoUtil,
                                                        float altoUtil, float ancho, float alto,
                                                        float twipsPorPixelX, float twipsPorPixelY);
/// FactorProporcional stored in FactorX and FactorY. Returns false (factors unchanged) when no
/// factor can be computed.
KVR_CORE_EXPORT bool CalcularFactores(float anchoVentana, float altoVentana, float anchoUtil,
                                      float altoUtil,
                                      float ancho, float alto, float twipsPorPixelX, float twipsPorPixelY);

/// A control's scaled left edge, in the window's unit (`twipsPorPixel` 1 when it is twips).
/// A control parked below LimiteAparcado twips is scaled about OrigenAparcado, so it stays parked.
KVR_CORE_EXPORT float EscalaIzquierda(float izquierda, float twipsPorPixel = 1.0f);

/// Left (or top) edge, in pixels, that centres a window `tamano` pixels wide on a work area
/// `util` twips wide: (util - tamano) / 2 + 1 twip, measured from the work area's edge.
KVR_CORE_EXPORT float PosicionCentrada(float util, float tamano, float twipsPorPixel);

} // namespace kvr
