#pragma once
/// @file
/// Keys by name delivered as Qt key events, as if typed: the send-keys service of the desktop.
#include <kvr/kvr_export.h>
#include <kvr/analisisteclas.h>

class QWidget;

namespace kvr {

/// Delivers the keys as key press and release events, after the caller's event
/// handler returns, as typed keys would come: each to the widget that has the focus when it is
/// delivered (the active window when no control has it), or to `destino`. A syntax error throws
/// before anything is sent.
KVR_EXPORT void EnviarTeclas(const QString &teclas, QWidget *destino = nullptr);

} // namespace kvr
