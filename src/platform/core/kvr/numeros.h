#pragma once
/// @file
/// Number reading and the Format patterns of the runtime, independent of widgets.
#include <kvr/kvr_core_export.h>

#include <QLocale>
#include <QString>

namespace kvr {

/// Lenient reading: blanks anywhere are skipped, then an optional sign, digits, one "." and an
/// optional exponent are read up to the first character that cannot continue the number.
/// "." is always the decimal point; an empty or non-numeric text gives 0. "1.234,50" gives 1.234.
KVR_CORE_EXPORT double Val(const QString &texto);

/// Reading by the regional settings: "1.234,50" is 1234.5 under a comma-decimal locale and
/// "1,234.50" under a point-decimal one. Leading and trailing blanks and the group separator are
/// allowed. Returns false in *ok (and 0) when the text is not a number under the locale.
///@{
KVR_CORE_EXPORT double ValorRegional(const QString &texto, bool *ok = nullptr,
                                     const QLocale &locale = QLocale());
KVR_CORE_EXPORT bool EsNumeroRegional(const QString &texto, const QLocale &locale = QLocale());
///@}

/// Formats a number with a pattern made of "#", "0", "," (grouping) and "." (decimal point):
/// "#,##0", "#,##0.00", "#.00", "0.00", "#,##0." and the like. The output uses the locale's
/// decimal and group characters and groups every three digits. Rounding is half away from zero
/// on the number's 15-significant-digit decimal form, as the desktop runtime rounds.
KVR_CORE_EXPORT QString Formato(double valor, const QString &patron,
                                const QLocale &locale = QLocale());

/// The runtime's default number-to-text conversion: up to 15 significant digits, no grouping,
/// "." as decimal point (independent of the locale), exponent form for very large or small values.
KVR_CORE_EXPORT QString TextoNumero(double valor);

/// A whole number as the runtime's 16-bit integer conversion makes it: rounded half to even,
/// ErrorEjecucion(Desbordamiento) outside -32768..32767.
KVR_CORE_EXPORT int EnteroCorto(double valor);

} // namespace kvr
