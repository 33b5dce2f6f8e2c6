#pragma once
// Whether kvr can open a window, asked before Qt starts: Qt aborts when there is no display.
#include <QString>

namespace kvr::orden {

// True when a window can be opened (a Wayland display, a platform chosen through QT_QPA_PLATFORM,
// or an X server that accepts a connection); otherwise false with the reason in `motivo`.
bool HayPantalla(QString &motivo);
// Closes the connection HayPantalla left open to the X server; called once Qt has its own.
void CerrarSondaPantalla();

} // namespace kvr::orden
