#pragma once
/// @file
/// The proportional layout on real windows. A window's load handler calls PonerFuente(this) and
/// then Redimensionar(this, ancho, alto, true) with ancho = alto = 0; a host computes the factor
/// once, before its first window, with Redimensionar(ventana, ancho, alto, false).
///
/// Lengths are in the window's own unit, pixels, unless the name says twips. The work area is the
/// primary screen's available geometry; twips per pixel = 1440 / the screen's logical dpi.
///
/// Which children are controls: every widget inside the window that is not a window itself and
/// whose objectName is set and does not begin with "qt_" (Qt's own parts of composite widgets,
/// such as a scroll area's viewport, are left to their owner). Controls managed by a QLayout keep
/// the layout's geometry; their fonts are still scaled.
#include <kvr/kvr_export.h>

#include <QRect>
#include <QString>

class QWidget;

namespace kvr {

/// The family that stands for the desktop's dialog font ("MS Shell Dlg 2"): the platform's
/// general system font (QFontDatabase::systemFont(GeneralFont)), e.g. "Sans Serif" under
/// fontconfig, the desktop's own choice under GNOME or KDE.
KVR_EXPORT QString FuenteDialogo();

/// Gives every control of `form`, and the window itself, the dialog font's family. A control
/// whose tag text holds "(FF)" keeps the family it was designed with (its size is still scaled
/// by Redimensionar).
KVR_EXPORT void PonerFuente(QWidget *form);

/// With `reutilizar` true: applies the factors already computed (nothing at all happens while
/// they are 0 or SinEscalar is raised) and reports the window's scaled size in `ancho` / `alto`.
/// With `reutilizar` false: first computes the factors from the window's size and the work area
/// (`ancho` / `alto` 0) or the wanted size in pixels. Then the window goes to the top-left corner,
/// takes its scaled size, and every control's geometry, font size and grid column widths are
/// scaled. A control parked below -50000 twips to the left stays out of sight. A grid is any
/// control with an invokable method "EscalarColumnas()" (called), or a QTableView / QTreeView
/// (its horizontal header's sections are scaled). Errors of single controls are ignored.
KVR_EXPORT void Redimensionar(QWidget *form, float &ancho, float &alto, bool reutilizar);
/// For callers that do not need the sizes back.
KVR_EXPORT void Redimensionar(QWidget *form, bool reutilizar = true);

/// Centres `form` in the work area, one twip right of and below the exact centre.
KVR_EXPORT void Centrar(QWidget *form);

/// Width and height of the work area in twips (whole numbers).
///@{
KVR_EXPORT int AnchoUtil();
KVR_EXPORT int AltoUtil();
///@}
/// Twips per pixel of the primary screen, horizontally and vertically.
///@{
KVR_EXPORT double TwipsPorPixelX();
KVR_EXPORT double TwipsPorPixelY();
///@}

/// For tests: a work area (in pixels, screen coordinates) and logical dpi to use instead of the
/// primary screen's. QuitarPantallaSimulada goes back to the real screen.
///@{
KVR_EXPORT void SimularPantalla(const QRect &areaUtil, double dpiX = 96.0, double dpiY = 96.0);
KVR_EXPORT void QuitarPantallaSimulada();
///@}

} // namespace kvr
