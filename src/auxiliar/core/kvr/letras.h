#pragma once
/// @file
/// Amounts in words: whole numbers and money amounts written out in Spanish, in lower case, as a
/// cheque or an invoice total prints them ("mil doscientos treinta y cuatro euros con cincuenta y
/// seis céntimos"). Hosts upper-case the text themselves where they need to.
#include <kvr/kvr_core_export.h>

#include <QString>

namespace kvr {

/// A whole number in words, masculine and without apocope: 1 "uno", 21 "veintiuno", 21000
/// "veintiún mil", 1000000 "un millón". A negative number starts with "menos". Beyond
/// 999 999 999 999 either way: ErrorEjecucion 6 (overflow).
KVR_CORE_EXPORT QString NumeroEnLetras(qint64 numero);

/// A money amount in words, rounded half away from zero to cents: "EUR" (euros and céntimos,
/// "veintiún euros", "un millón de euros", no "con cero céntimos") or "ESP" (pesetas, feminine and
/// without céntimos: "veintiuna pesetas"). A negative amount starts with "menos". Out of range:
/// ErrorEjecucion 6; another currency: ErrorEjecucion 5.
KVR_CORE_EXPORT QString ImporteEnLetras(double importe,
                                        const QString &moneda = QStringLiteral("EUR"));

} // namespace kvr
