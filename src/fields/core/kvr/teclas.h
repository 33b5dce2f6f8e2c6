#pragma once
/// @file
/// The keystroke rules of data-entry fields: which characters a field accepts, which it changes
/// and when the focus moves on.
#include <kvr/kvr_core_export.h>

#include <QString>

namespace kvr {

/// What a field does with a typed character, decided from its tag, its text and its selection.
struct KVR_CORE_EXPORT DecisionTecla {
    /// What the field does besides delivering `codigo`.
    enum Accion { Ninguna, Tabulador, PorOmision };
    int codigo = 0;            ///< the character to deliver, 0 to swallow the key
    Accion accion = Ninguna;   ///< Tabulador: move to the next field; PorOmision: fill the "+" default
    bool tabTrasEntregar = false; ///< the delivered character fills the field: move on after it
};
/// `codigo` is the typed character (8 Backspace, 13 Enter, else a UTF-16 code unit);
/// `inicioSeleccion` the caret position or the start of the selection, `largoSeleccion` its length.
KVR_CORE_EXPORT DecisionTecla DecidirTecla(const QString &tag, const QString &texto,
                                           int inicioSeleccion,
                                           int largoSeleccion, int codigo);

} // namespace kvr
