#pragma once
/// @file
/// Small shared routines without widgets: the DOS code page of the files shared with older
/// programs, a file-existence test, two number formatters for grids and reports, reading a text
/// file by lines and splitting a list text into entries.
#include <kvr/kvr_core_export.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <string>
#include <string_view>

namespace kvr {

/// While true, ConvertirJuego only puts blanks in place of NUL characters (no code-page work).
extern KVR_CORE_EXPORT bool SinConvertirJuego;

/// Conversion between the DOS code page 850 and text. A QString is Unicode, so the two
/// directions are defined on the bytes a QString carries as Latin-1 code units:
///  - "win": every code unit 0x00-0xFF of `texto` is taken as a CP850 byte (as a CP850 file
///    read with QString::fromLatin1 holds them) and replaced by the character it stands for.
///    Code units above 0xFF are not bytes and pass through unchanged.
///  - "dos": every character is replaced by its CP850 byte, as a Latin-1 code unit (write the
///    result with toLatin1 to get the file's bytes). A character that CP850 lacks becomes "?".
/// `sentido` is compared without regard to case; any other direction converts nothing. In every
/// case NUL characters become blanks. The byte table is glibc iconv's CP850 (so 0x1A, 0x1C and
/// 0x7F stay the ASCII control characters, where ICU's IBM850 swaps them).
KVR_CORE_EXPORT QString ConvertirJuego(const QString &texto, const QString &sentido);
/// The same conversions straight from and to a CP850 file's bytes (NUL also becomes a blank).
///@{
KVR_CORE_EXPORT QString TextoDeDos(const QByteArray &bytes);
KVR_CORE_EXPORT QByteArray BytesDeDos(const QString &texto);
///@}
/// The same conversions between CP850 bytes and UTF-8 bytes, appended to `destino`, for bulk
/// files that go straight into a grid's UTF-8 buffers. A UTF-8 sequence that is not valid
/// becomes "?", like a character CP850 lacks.
///@{
KVR_CORE_EXPORT void Utf8DeDos(std::string_view dos, std::string &destino);
KVR_CORE_EXPORT void DosDeUtf8(std::string_view utf8, QByteArray &destino);
///@}
/// The same into a buffer the caller sized (3 bytes a CP850 byte; 1 byte a UTF-8 byte); the
/// result is the end of what was written.
///@{
KVR_CORE_EXPORT char *Utf8DeDos(std::string_view dos, char *destino);
KVR_CORE_EXPORT char *DosDeUtf8(std::string_view utf8, char *destino);
///@}

/// True when `ruta` exists; when `carpeta` is true it must also be a folder. An empty path or one
/// that cannot be read gives false.
KVR_CORE_EXPORT bool Existe(const QString &ruta, bool carpeta = false);

/// The number at the start of `valor` (read with Val, "." decimal) formatted with `formato`
/// ("#,##0.00" when empty). With `conCeros` false a zero gives an empty string (a blank cell).
KVR_CORE_EXPORT QString FormatoImporte(const QString &valor, const QString &formato = {},
                                       bool conCeros = true);
/// `valor` formatted with `formato` ("0.00" when empty); with `ancho` 1 or more, right-aligned in
/// exactly `ancho` characters (blanks in front, cut to the last `ancho`). Then the first "," of
/// the text becomes ".", so the decimal point is "." whatever the regional settings (a grouping
/// "," of a grouped format is the one replaced then). `ancho` is a 16-bit number: outside
/// -32768..32767 throws ErrorEjecucion(Desbordamiento).
KVR_CORE_EXPORT QString FormatoFijo(double valor, int ancho, const QString &formato = {});

/// The lines of a text file (line ends CR LF, LF or CR; a final line end adds no empty line).
/// UTF-8 when the file is valid UTF-8, otherwise the Windows single-byte set (windows-1252).
/// A path that does not exist gives no lines; a path that exists but cannot be read (a folder, a
/// FIFO, a device, no permission) throws ErrorEjecucion(AccesoDenegado) with the cause.
KVR_CORE_EXPORT QStringList LeerLineas(const QString &ruta);
/// The same lines from a file's bytes.
KVR_CORE_EXPORT QStringList LineasDeTexto(const QByteArray &bytes);

/// The entries of a list text as LlenarCombo puts them in a list: "@path" gives the lines of that
/// file; otherwise the text is cut at ";" if it holds one, else at "<<" if it holds one, else it
/// is a single entry. A trailing separator adds no empty entry; an empty text is one empty entry.
KVR_CORE_EXPORT QStringList EntradasDeLista(const QString &lista);

/// Index of the first name in `nombres` equal to `actual`; 0 when none is.
KVR_CORE_EXPORT int IndiceEnLista(const QStringList &nombres, const QString &actual);

} // namespace kvr
