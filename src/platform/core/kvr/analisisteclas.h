#pragma once
/// @file
/// Keys by name: the desktop's send-keys syntax ("Hola~", "{TAB 3}", "+{F4}", "^(ac)") turned into
/// key strokes, without widgets. <kvr/teclasnombre.h> delivers them.
#include <kvr/kvr_core_export.h>

#include <QList>
#include <QString>
#include <Qt>

namespace kvr {

/// One key stroke: the key, the modifiers held, and the text it types.
struct KVR_CORE_EXPORT PulsacionTecla {
    int tecla = 0;                                   ///< Qt::Key
    Qt::KeyboardModifiers modificadores = Qt::NoModifier; ///< Shift, Control, Alt held
    QString texto;                                   ///< the event's text
    bool operator==(const PulsacionTecla &) const = default; ///< the same stroke
};

/// The key strokes of a send-keys text: plain characters; "~" Enter; {ENTER} {TAB}
/// {ESC} {BS} {DEL} {INS} {HOME} {END} {PGUP} {PGDN} {UP} {DOWN} {LEFT} {RIGHT} {F1}..{F16} and a
/// few others, without regard to case; a repeat count ({TAB 3}); "+" Shift, "^" Ctrl, "%" Alt for
/// the next key or group in parentheses; and the escaped {+} {^} {%} {~} {(} {)} {{} {}} {[} {]}.
/// A name not known, an unclosed brace or parenthesis, a modifier with no key after it, a count
/// above 9999 or groups nested more than 100 deep: ErrorEjecucion 5.
KVR_CORE_EXPORT QList<PulsacionTecla> AnalizarTeclas(const QString &teclas);
/// A text with the send-keys special characters escaped, so that EnviarTeclas types it as it is.
KVR_CORE_EXPORT QString TeclasLiterales(const QString &texto);

} // namespace kvr
