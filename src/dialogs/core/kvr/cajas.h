#pragma once
/// @file
/// The rules of the runtime's message, input and range box (MyBox), without widgets: the lines of
/// a message, the button sets, the result codes, the kind of question a field descriptor asks,
/// range texts and their order, and where the box stands on the screen.
#include <kvr/kvr_core_export.h>
#include <kvr/servicios.h>

#include <QRectF>
#include <QSizeF>
#include <QString>

#include <array>
#include <optional>
#include <utility>

namespace kvr {

/// Result codes of the box, decided by the caption of the button pressed: the answers of the
/// desktop's message box (RespuestaMensaje), and 0 for no button.
enum CodigoCaja : int {
    CajaSinBoton = 0, CajaAceptar = RespAceptar, CajaCancelar = RespCancelar, CajaAbortar = RespAbortar,
    CajaReintentar = RespReintentar, CajaIgnorar = RespIgnorar, CajaSi = RespSi, CajaNo = RespNo,
};

/// The question a window asks before it closes over changes that are not saved.
inline const QString TextoSalirSinGrabar = QStringLiteral("Datos han sido modificados.;;¿ Desea salir sin grabar ?");

/// The character between the lower and the upper bound of a range text ("ƒ", U+0192: the byte
/// 131 of the Windows Western code page).
inline constexpr char16_t SeparadorRango = u'\u0192';

/// The message as the box shows it: every ";" is a line break, so "A;;B" gives the three lines
/// A, an empty line and B. The lines are joined with "\n", the line break of a Qt label.
KVR_CORE_EXPORT QString TextoMensaje(const QString &ElMensaje);

/// A button set: the captions of Boton(0), Boton(1) and Boton(2) (an empty caption: the button
/// is hidden) and the index of the button that takes the first place in the tab order.
struct KVR_CORE_EXPORT JuegoBotones {
    std::array<QString, 3> titulos; ///< captions of Boton(0), Boton(1), Boton(2)
    int foco = 0;                   ///< the button first in the tab order
};
/// The set for LosBotones 1 to 6 with the initial focus chosen by BotonOmision (1: the leftmost
/// button of the set, 2: the second, anything else: the rightmost). nullopt for any other
/// number: the buttons keep their design captions and no focus is given.
KVR_CORE_EXPORT std::optional<JuegoBotones> JuegoDeBotones(int LosBotones, int BotonOmision);

/// The result code of a button caption; nullopt for a caption that is none of the seven.
KVR_CORE_EXPORT std::optional<int> CodigoDeBoton(const QString &titulo);

/// What MyInputBox asks for, by TagDelCampo: exactly "TABLA" a choice from a list, a descriptor
/// ending in "(/)" a range, anything else a single value.
///@{
enum class TipoPregunta { Valor, Rango, Lista };
KVR_CORE_EXPORT TipoPregunta TipoDePregunta(const QString &TagDelCampo);
///@}

/// A range text cut at its first "ƒ": the lower and the upper bound; nullopt without one.
KVR_CORE_EXPORT std::optional<std::pair<QString, QString>> PartirRango(const QString &texto);
/// The lower bound, "ƒ" and the upper bound.
KVR_CORE_EXPORT QString UnirRango(const QString &desde, const QString &hasta);

/// Whether the range from `desde` to `hasta` (the texts of two fields described by `tag`) is in
/// order. An empty (or all-blank) bound leaves the range open: true. By the type letter T:
/// "F" compares the two dates, "D" the numbers at the start of the texts as they stand, "N" and
/// "n" the numbers of their editing forms, any other type the texts by character codes. A date
/// that cannot be read throws ErrorEjecucion(TiposNoCoinciden).
KVR_CORE_EXPORT bool RangoEnOrden(const QString &desde, const QString &hasta, const QString &tag);

/// Where the box goes, in twips. `Top` and `Left` come in as the caller gave them and go out as
/// computed: -1 centres the box on `pantalla` in that direction; a `formulario` rectangle centres
/// it over that window whatever `Top` and `Left` were.
KVR_CORE_EXPORT void PosicionCaja(float &Top, float &Left, const QSizeF &caja,
                                  const QRectF &pantalla,
                                  const std::optional<QRectF> &formulario);

} // namespace kvr
