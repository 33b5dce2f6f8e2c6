#pragma once
/// @file
/// Field descriptor tags: entries "key(value)" in a field's tag text, such as "T(M) L(15) A(I)".
#include <kvr/kvr_core_export.h>

#include <QString>
#include <optional>

namespace kvr {

/// Value of `clave` in `tag`, or nullopt when the key is absent. The search is a plain,
/// case-sensitive substring search for the key followed by the opening delimiter; the first
/// occurrence counts. `delimitadores` holds the opening and the closing character ("()" when
/// empty). A missing T, L or A is reported through the message box of the services as an
/// incomplete descriptor. A key without a closing delimiter throws ErrorEjecucion.
KVR_CORE_EXPORT std::optional<QString> LeerTag(const QString &tag, const QString &clave,
                                               const QString &delimitadores = {});

/// `tag` with `clave` set to `valor`: the first entry of the key is replaced, or " clave(valor)"
/// is appended. A key without a closing delimiter throws ErrorEjecucion.
KVR_CORE_EXPORT QString PonerTag(const QString &tag, const QString &clave, const QString &valor,
                                 const QString &delimitadores = {});

} // namespace kvr
