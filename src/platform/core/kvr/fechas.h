#pragma once
/// @file
/// Date reading and formatting the way a Spanish desktop does it: day/month/year order, two-digit
/// years in the window 1930-2029, month names of the locale.
#include <kvr/kvr_core_export.h>

#include <QDate>
#include <QLocale>
#include <QString>
#include <optional>

namespace kvr {

/// Reads a date in day/month/year order. Parts are separated by "/", "-", "." or blanks; the month
/// may be a number or a month name of the locale (full or abbreviated, any case, with or without a
/// final "."). Two parts are day and month of the current year. Years of one or two digits fall in
/// 1930-2029; three- and four-digit years are taken as they are (100 to 9999). An impossible date
/// (31/02) gives nullopt.
///@{
KVR_CORE_EXPORT std::optional<QDate> LeerFecha(const QString &texto,
                                               const QLocale &locale = QLocale());
KVR_CORE_EXPORT bool EsFecha(const QString &texto, const QLocale &locale = QLocale());
///@}

/// Formats a date with a pattern of "d", "dd", "m", "mm", "mmm", "mmmm", "yy", "yyyy" and literal
/// separators: "dd/mm/yyyy", "dd mmm yyyy", "dd mmmm". Month names come from the locale.
KVR_CORE_EXPORT QString FormatoFecha(const QDate &fecha, const QString &patron,
                                     const QLocale &locale = QLocale());

/// Date serial numbers: days since 30/12/1899 (day 1 is 31/12/1899, 2 is 01/01/1900).
///@{
KVR_CORE_EXPORT qint64 SerieFecha(const QDate &fecha);
KVR_CORE_EXPORT QDate FechaDeSerie(qint64 serie);
///@}

} // namespace kvr
