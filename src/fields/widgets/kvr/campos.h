#pragma once
/// @file
/// Field behaviour on real widgets. A host gives a QLineEdit, QCheckBox or QComboBox its
/// behaviour with one call, PrepararCampo; from then on focus in, key presses and focus out run
/// CampoGotFocus, CampoKeyPress and CampoLostFocus. The tag text of any widget is its dynamic
/// property "tag" (a QString).
#include <kvr/kvr_export.h>

#include <QPointer>
#include <QString>
#include <QWidget>

class QComboBox;

namespace kvr {

/// True only while CampoGotFocus or CampoLostFocus rewrite a field's text: a host's textChanged
/// handler reads it to ignore changes that are not the user's.
extern KVR_EXPORT bool CambiandoTexto;
/// The last data-entry field that lost the focus (to give the focus back to it).
extern KVR_EXPORT QPointer<QWidget> UltimoCampo;
/// While true, CampoLostFocus leaves UltimoCampo alone.
extern KVR_EXPORT bool NoRecordarCampo;

/// A colour as the desktop's 32-bit colour value: red + green*256 + blue*65536.
constexpr int ValorRGB(int rojo, int verde, int azul) { return rojo + verde * 256 + azul * 65536; }
/// The light-cyan editing colour (16777152).
constexpr int ColorEdicion = ValorRGB(192, 255, 255);

/// The widget's tag text (its "tag" property) and a setter.
///@{
KVR_EXPORT QString TagDe(const QObject *campo);
KVR_EXPORT void PonerTagDe(QObject *campo, const QString &tag);
///@}

/// Gives `campo` the field behaviour. A non-empty `tag` becomes its tag text first. Calling it
/// twice is harmless.
KVR_EXPORT void PrepararCampo(QWidget *campo, const QString &tag = {});
/// PrepararCampo for every QLineEdit, QCheckBox and QComboBox inside `ventana` whose tag holds a
/// type entry "T(".
KVR_EXPORT void PrepararCampos(QWidget *ventana);
/// Takes the behaviour away again.
KVR_EXPORT void QuitarCampo(QWidget *campo);

/// Decides a typed character by the field's tag: on return `keyAscii` is the character to
/// deliver, or 0 when the keystroke is swallowed. Enter moves to the next field, "+" fills the
/// field's default and moves on, a field that reaches its length passes the focus on.
KVR_EXPORT void CampoKeyPress(QWidget *campo, int &keyAscii);
/// Saves the background colour in the tag (key P), paints the field light cyan, puts the editing
/// form in and selects it all.
KVR_EXPORT void CampoGotFocus(QWidget *campo);
/// Restores the saved colour, puts the display form in and remembers the field in UltimoCampo.
KVR_EXPORT void CampoLostFocus(QWidget *campo);
/// Selects the whole text of the field.
KVR_EXPORT void SeleccionarTodo(QWidget *campo);

/// Moves the focus on as a Tab keystroke would (posted, so it comes after the key being handled).
KVR_EXPORT void PulsarTab();
/// Fills the field with its tag's "+" default and moves on.
KVR_EXPORT void ValorPorOmision(QWidget *campo);
/// Selects the entry of a list whose trimmed text equals the trimmed value; nothing if none does.
KVR_EXPORT void SeleccionarEnCombo(QComboBox *combo, const QString &valor);

/// A colour as the desktop's 32-bit colour value (ValorRGB) and back.
///@{
KVR_EXPORT int ValorColor(const QColor &color);
KVR_EXPORT QColor ColorDeValor(int valor);
///@}

} // namespace kvr
