#pragma once
/// @file
/// Spanish tax identifiers: tells a DNI, NIE, NIF of other persons (K, L, M) or CIF apart and
/// checks its control character. Where LetraNIF only computes the letter of a number, this
/// validates a whole identifier as a customer form receives it.
#include <kvr/kvr_core_export.h>

#include <QChar>
#include <QString>

namespace kvr {

/// The kind of an identifier: a person's DNI, a foreigner's NIE, the NIF of other persons (K, L,
/// M), an organisation's CIF, or none of them.
enum class TipoIdentificacion { Desconocido, DNI, NIE, NIFEspecial, CIF };

/// What ValidarIdentificacionFiscal found in a text.
struct KVR_CORE_EXPORT Identificacion {
    TipoIdentificacion tipo = TipoIdentificacion::Desconocido; ///< the kind, from the shape
    bool valida = false; ///< the kind is known and the control character is the right one
    /// Upper case, without blanks, dots, hyphens or the "ES" prefix of a VAT number.
    QString normalizada;
    /// The control character the identifier should have (null when the kind is unknown).
    QChar control;
};

/// DNI: 8 digits and the mod-23 letter. NIE: X, Y or Z, 7 digits and the letter of the number with
/// X = 0, Y = 1, Z = 2 in front. NIF of K, L, M: the letter of the 7 digits. CIF: an organisation
/// letter, 7 digits and a control that is a digit (A, B, E, H), a letter (K to M, N, P, Q, R, S, W)
/// or either (C, D, F, G, J, U, V).
KVR_CORE_EXPORT Identificacion ValidarIdentificacionFiscal(const QString &texto);

} // namespace kvr
