#pragma once
// Keys by name: the desktop's send-keys syntax ("Hola~", "{TAB 3}", "+{F4}", "^(ac)") turned into
// key strokes and delivered as Qt key events.
#include <QList>
#include <QString>
#include <Qt>

class QWidget;

namespace kvr {

struct PulsacionTecla {
    int tecla = 0;                                   // Qt::Key
    Qt::KeyboardModifiers modificadores = Qt::NoModifier;
    QString texto;                                   // the event's text
    bool operator==(const PulsacionTecla &) const = default;
};

// The key strokes of a send-keys text (kvr_core): plain characters; "~" Enter; {ENTER} {TAB}
// {ESC} {BS} {DEL} {INS} {HOME} {END} {PGUP} {PGDN} {UP} {DOWN} {LEFT} {RIGHT} {F1}..{F16} and a
// few others, without regard to case; a repeat count ({TAB 3}); "+" Shift, "^" Ctrl, "%" Alt for
// the next key or group in parentheses; and the escaped {+} {^} {%} {~} {(} {)} {{} {}} {[} {]}.
// A name not known, an unclosed brace or parenthesis, a modifier with no key after it, a count
// above 9999 or groups nested more than 100 deep: ErrorEjecucion 5.
QList<PulsacionTecla> AnalizarTeclas(const QString &teclas);
// A text with the send-keys special characters escaped, so that EnviarTeclas types it as it is.
QString TeclasLiterales(const QString &texto);

// Delivers the keys (widget library) as key press and release events, after the caller's event
// handler returns, as typed keys would come: each to the widget that has the focus when it is
// delivered (the active window when no control has it), or to `destino`. A syntax error throws
// before anything is sent.
void EnviarTeclas(const QString &teclas, QWidget *destino = nullptr);

} // namespace kvr
