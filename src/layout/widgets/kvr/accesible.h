#pragma once
/// @file
/// How a window's controls read to a screen reader (over AT-SPI on Linux) where a plain Qt
/// widget does not say enough. Once the library is loaded, a window class built right on QWidget
/// (the runtime's and a host's alike) is exposed as a window with its title, where Qt would
/// expose a nameless client area; these routines are for the controls a window marks itself, and
/// a host may use them on its own forms too.
#include <kvr/kvr_export.h>

#include <QString>

class QComboBox;
class QLabel;

namespace kvr {

/// Makes `etiqueta`, a label that shows a changing value (a calculator's display, a running
/// total), read as read-only text: a reader can move through it, and hears each new value when
/// AnunciarValor is called after the label's text changes.
KVR_EXPORT void AccesibleComoValor(QLabel *etiqueta);
/// Tells a screen reader that the text of `etiqueta` (made a value by AccesibleComoValor)
/// changed from `antes` to what it shows now; nothing when they are the same or no reader listens.
KVR_EXPORT void AnunciarValor(QLabel *etiqueta, const QString &antes);
/// Makes `franja`, the caption strip a frameless window paints for itself, read as the window's
/// title bar rather than as a label, so that a reader says the title once.
KVR_EXPORT void AccesibleComoTitulo(QLabel *franja);
/// Makes `lista`, a drop-down list, read by its accessible name or its label (its buddy) with its
/// current choice as its value: on Linux Qt names a drop-down list by its current choice, so a
/// reader would not say what it is for.
KVR_EXPORT void AccesibleComoLista(QComboBox *lista);

} // namespace kvr
