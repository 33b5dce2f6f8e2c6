#pragma once
/// @file
/// The runtime's icon in the desktop's notification area (the tray).
#include <kvr/kvr_export.h>

#include <QString>

class QMenu;
class QWidget;

namespace kvr {

/// Shows the runtime's icon in the tray with `consejo` as its tool tip and the menu of MenuBandeja;
/// a second call changes the tool tip. False, and nothing shown, where the desktop has no tray.
KVR_EXPORT bool IconoBandeja(const QString &consejo);
/// The tray's menu: "Calculadora" and "Teléfonos" open those windows (MostrarVentana), "Salir"
/// takes the icon away and ends the application. A host without a tray may put it in a window.
KVR_EXPORT QMenu *MenuBandeja(QWidget *padre = nullptr);

} // namespace kvr
