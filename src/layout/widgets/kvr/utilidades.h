#pragma once
/// @file
/// Shared routines on widgets: giving the focus back, the global keys F4 (calculator) and F8
/// (phone book), showing a runtime window by name, the current printer's index, the mouse-wheel
/// redirection of the phone book and filling a drop-down list from a list text.
#include <kvr/kvr_export.h>

#include <QString>
#include <functional>

class QComboBox;
class QKeyEvent;
class QWidget;

namespace kvr {

/// Desktop virtual-key codes of the keys the runtime handles.
enum CodigoTeclaEscritorio : int { TeclaF4 = 115, TeclaF8 = 119 };
/// Desktop shift-state bits of a KeyUp handler.
enum EstadoShift : int { ShiftMayusculas = 1, ShiftControl = 2, ShiftAlt = 4 };

/// Gives the focus to `control` and activates its window; a null, hidden or disabled control, or
/// one that takes no focus, is ignored.
KVR_EXPORT void DevolverFoco(QWidget *control);

/// The global keys, from a window's KeyUp handler: F4 (115) opens "MiCalc" except from "MiCalc"
/// itself; F8 (119) opens "Telefonos" from any window. Other keys do nothing.
KVR_EXPORT void TeclasGlobales(int keyCode, int shift, const QString &nombreVentana);
/// The same from a key event (a keyReleaseEvent): the window's name is `ventana`'s objectName.
KVR_EXPORT void TeclasGlobales(const QKeyEvent *evento, const QWidget *ventana);
/// The desktop virtual-key code of a Qt key (F1-F24, letters, digits, Enter, Escape and the other
/// usual keys); 0 for keys without one.
KVR_EXPORT int CodigoTecla(int teclaQt);
/// The desktop shift state (ShiftMayusculas | ShiftControl | ShiftAlt) of Qt's modifiers.
KVR_EXPORT int CodigoShift(int modificadoresQt);

/// Registers the factory of a runtime window under its name (the window's source file does it
/// from a static initializer). A later registration under the same name replaces the earlier; an
/// empty factory removes it.
KVR_EXPORT void RegistrarVentana(const QString &nombre, const std::function<QWidget *()> &fabrica);
/// Shows the window named `nombre`: a top-level window of that objectName already loaded (the
/// first in QApplication::topLevelWidgets()) is shown and brought forward; otherwise its
/// registered factory makes one, which takes the name and is shown. A name without window nor
/// factory does nothing.
KVR_EXPORT void MostrarVentana(const QString &nombre);
/// MostrarVentana that also returns the window shown, or nullptr when there is none of that name.
KVR_EXPORT QWidget *AbrirVentana(const QString &nombre);

/// Index, from 0, of the default printer among the available printers; 0 when none matches.
KVR_EXPORT int IndiceImpresora();

/// Installs on `ventana` the mouse-wheel redirection: a wheel turned anywhere over the window
/// scrolls its active list or grid (the focused QAbstractScrollArea, such as a QTableView or
/// QListWidget) when the mouse is not over that control already. Installing twice is the same as
/// once; Desclasificar removes it whatever the number of installs. A window that is destroyed
/// loses it by itself.
///@{
KVR_EXPORT void Subclasificar(QWidget *ventana);
KVR_EXPORT void Desclasificar(QWidget *ventana);
///@}
/// True while `ventana` has the redirection.
KVR_EXPORT bool Subclasificada(const QWidget *ventana);

/// Fills a drop-down list from a list text: "@path" adds the lines of that file; otherwise the
/// text is cut at ";" (or at "<<" when it holds no ";"). See EntradasDeLista.
KVR_EXPORT void LlenarCombo(const QString &lista, QComboBox *control);

} // namespace kvr
