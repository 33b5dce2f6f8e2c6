#pragma once
/// @file
/// Rich-text help files in a QTextDocument: the RTF reader of kvr/rtf.h builds the document.
#include <kvr/kvr_export.h>
#include <kvr/rtf.h>

#include <QString>

class QTextDocument;

namespace kvr {

/// Replaces the contents of `destino` with the paragraphs of `rtf`: runs keep their bold, italic,
/// underline, strike-out, size, font family, colours and raised or lowered position; paragraphs
/// keep their alignment, indents, spacing and tab stops (twips converted at 96 dpi).
KVR_EXPORT void RtfEnDocumento(const DocumentoRtf &rtf, QTextDocument *destino);

/// Reads the RTF file `fichero` into `destino`. Throws ErrorEjecucion (ArchivoNoEncontrado) when
/// the file does not exist and (AccesoDenegado) when it cannot be read; a damaged file shows
/// what could be read. Returns whether the file was read to its end without damage.
KVR_EXPORT bool CargarRtf(const QString &fichero, QTextDocument *destino);

} // namespace kvr
