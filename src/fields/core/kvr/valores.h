#pragma once
/// @file
/// Editing and display forms of field values, date completion, identity letters and account
/// codes: the rules every data-entry field follows, without widgets.
#include <kvr/kvr_core_export.h>

#include <QDate>
#include <QString>

namespace kvr {

/// The working date from which dates typed without month or year are completed. Null until the
/// first completion, which sets it to today.
extern KVR_CORE_EXPORT QDate FechaTrabajo;

/// The display form of a value, by the field's descriptor (grouped numbers, "dd mmm yyyy" dates,
/// padded digit codes, "hh:mm" times, completed identity letters and account codes).
KVR_CORE_EXPORT QString FormatearCampo(const QString &valor, const QString &tag);
/// The editing form: plain numbers with "." and the field's decimals, dates as "dd/mm/yyyy".
KVR_CORE_EXPORT QString TextoEdicion(const QString &valor, const QString &tag);
/// Completes a date typed short ("5", "1205", "12/05", "12/") from the working date; an empty
/// text when the result is not a date.
KVR_CORE_EXPORT QString CompletarFecha(const QString &valor);
/// Today as "dd/mm/yyyy" (from the services' clock).
KVR_CORE_EXPORT QString HoyDMA();

/// Identity number: a value ending in "?" gets its check letter in place of the "?".
KVR_CORE_EXPORT void LetraNIF(QString &s);
/// Account code: a short code ("43.15", "4315", "43") expanded to eight digits. A code too long
/// for eight digits throws ErrorEjecucion.
KVR_CORE_EXPORT void CompletarCuenta(QString &s);

} // namespace kvr
