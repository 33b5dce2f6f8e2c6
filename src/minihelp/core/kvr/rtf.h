#pragma once
/// @file
/// Reader of rich-text (RTF) files, independent of widgets: it turns the bytes of a file into a
/// neutral list of paragraphs made of runs of uniformly formatted text, plus the font and colour
/// tables. The widget library builds a QTextDocument from it (kvr/rtfdocumento.h).
///
/// The reader is lenient: damaged, truncated or unbalanced input gives back whatever text could be
/// read, it never throws, every byte is looked at a bounded number of times and the memory used
/// grows with the input only (nesting deeper than LimiteGruposRtf keeps the innermost state).
#include <kvr/kvr_core_export.h>

#include <QByteArrayView>
#include <QList>
#include <QMap>
#include <QString>

namespace kvr {

/// Groups nested deeper than this share the state of the deepest kept group.
inline constexpr int LimiteGruposRtf = 256;

/// One entry of the colour table; `automatico` is the empty entry (the reader's default colour).
struct KVR_CORE_EXPORT ColorRtf {
    int rojo = 0;  ///< red, 0 to 255
    int verde = 0; ///< green, 0 to 255
    int azul = 0;  ///< blue, 0 to 255
    bool automatico = true;            ///< the empty entry: no colour of its own
    bool operator==(const ColorRtf &) const = default; ///< same components and kind
};

/// Character formatting of a run.
struct KVR_CORE_EXPORT FormatoRtf {
    bool negrita = false;  ///< bold
    bool cursiva = false;  ///< italic
    bool subrayado = false; ///< underlined
    bool tachado = false;  ///< struck through
    int medioPuntos = 24;  ///< font size in half points (`\fs`): 24 is 12 pt
    int fuente = -1;       ///< number in the font table, -1 when no font was named
    int color = 0;         ///< index in the colour table; 0 (or out of range) is automatic
    int fondo = 0;         ///< background colour index, 0 none
    int vertical = 0;      ///< 1 superscript, -1 subscript
    bool operator==(const FormatoRtf &) const = default; ///< the same formatting in every respect
};

/// A run: text in one character format.
struct KVR_CORE_EXPORT TramoRtf {
    QString texto;      ///< the run's text
    FormatoRtf formato; ///< its format
};

/// Alignment of a paragraph.
enum class AlineacionRtf { Izquierda, Centro, Derecha, Justificada };

/// A tab stop of a paragraph.
struct KVR_CORE_EXPORT TabuladorRtf {
    /// How text aligns at the stop: left, centred, right, or on the decimal point.
    enum Tipo { Izquierdo, Centrado, Derecho, Decimal };
    int posicion = 0;  ///< twips from the left margin
    Tipo tipo = Izquierdo; ///< its kind
    bool operator==(const TabuladorRtf &) const = default; ///< same position and kind
};

/// A paragraph: its runs and the paragraph formatting in force at its end.
struct KVR_CORE_EXPORT ParrafoRtf {
    AlineacionRtf alineacion = AlineacionRtf::Izquierda; ///< its alignment
    int sangriaIzquierda = 0;  ///< twips
    int sangriaDerecha = 0;    ///< twips
    int sangriaPrimera = 0;    ///< first line, relative to the left indent
    int espacioAntes = 0;      ///< twips
    int espacioDespues = 0;    ///< twips
    QList<TabuladorRtf> tabuladores; ///< its tab stops, in order
    QList<TramoRtf> tramos;    ///< its text, run by run
    /// The text of all runs joined.
    QString Texto() const;
};

/// A whole document as LeerRtf read it.
struct KVR_CORE_EXPORT DocumentoRtf {
    QMap<int, QString> fuentes;  ///< font number -> family name
    QList<ColorRtf> colores;     ///< the colour table, in order
    QList<ParrafoRtf> parrafos;  ///< the paragraphs, in order
    int fuentePorOmision = -1;   ///< `\deff`
    int paginaCodigos = 1252;    ///< `\ansicpg` (or the one of `\mac`, `\pc`, `\pca`)
    /// False when the input did not start with `{\rtf`, or ended with groups still open, or
    /// closed more groups than it opened.
    bool completo = true;
    /// The paragraphs' texts joined with "\n"; line breaks inside a paragraph are U+2028.
    QString Texto() const;
};

/// Reads RTF bytes. Input that is not RTF at all (no `{\rtf` at its start) is read as plain text:
/// UTF-8 when it is valid UTF-8, Windows-1252 otherwise, one paragraph a line.
KVR_CORE_EXPORT DocumentoRtf LeerRtf(QByteArrayView datos);

/// The name of the code page's converter for QStringDecoder ("windows-1252", "IBM850"...), or an
/// empty text when the number is not a code page the reader knows.
KVR_CORE_EXPORT QByteArray NombrePaginaCodigos(int pagina);

} // namespace kvr
