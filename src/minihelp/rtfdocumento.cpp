// Builds a QTextDocument from the reader's paragraphs and runs.
#include <kvr/rtfdocumento.h>

#include <kvr/error.h>

#include <QColor>
#include <QFile>
#include <QFileInfo>
#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextOption>

namespace kvr {

namespace {

// Designs and documents are laid out at 96 dpi: 15 twips a pixel.
constexpr double TwipsPorPixel = 15.0;

QTextBlockFormat FormatoBloque(const ParrafoRtf &p)
{
    QTextBlockFormat f;
    switch (p.alineacion) {
    case AlineacionRtf::Izquierda: f.setAlignment(Qt::AlignLeft); break;
    case AlineacionRtf::Centro: f.setAlignment(Qt::AlignHCenter); break;
    case AlineacionRtf::Derecha: f.setAlignment(Qt::AlignRight); break;
    case AlineacionRtf::Justificada: f.setAlignment(Qt::AlignJustify); break;
    }
    f.setLeftMargin(std::max(0, p.sangriaIzquierda) / TwipsPorPixel);
    f.setRightMargin(std::max(0, p.sangriaDerecha) / TwipsPorPixel);
    f.setTextIndent(p.sangriaPrimera / TwipsPorPixel);
    f.setTopMargin(std::max(0, p.espacioAntes) / TwipsPorPixel);
    f.setBottomMargin(std::max(0, p.espacioDespues) / TwipsPorPixel);
    if (!p.tabuladores.isEmpty()) {
        QList<QTextOption::Tab> tabs;
        for (const TabuladorRtf &t : p.tabuladores) {
            QTextOption::TabType tipo = QTextOption::LeftTab;
            switch (t.tipo) {
            case TabuladorRtf::Izquierdo: tipo = QTextOption::LeftTab; break;
            case TabuladorRtf::Centrado: tipo = QTextOption::CenterTab; break;
            case TabuladorRtf::Derecho: tipo = QTextOption::RightTab; break;
            case TabuladorRtf::Decimal: tipo = QTextOption::DelimiterTab; break;
            }
            tabs.append(QTextOption::Tab(std::max(0, t.posicion) / TwipsPorPixel, tipo,
                                         t.tipo == TabuladorRtf::Decimal ? QChar(u',') : QChar()));
        }
        f.setTabPositions(tabs);
    }
    return f;
}

QTextCharFormat FormatoCaracter(const FormatoRtf &r, const DocumentoRtf &doc)
{
    QTextCharFormat f;
    f.setFontWeight(r.negrita ? QFont::Bold : QFont::Normal);
    f.setFontItalic(r.cursiva);
    f.setFontUnderline(r.subrayado);
    f.setFontStrikeOut(r.tachado);
    f.setFontPointSize(r.medioPuntos / 2.0);
    const int fuente = r.fuente >= 0 ? r.fuente : doc.fuentePorOmision;
    const auto nombre = doc.fuentes.constFind(fuente);
    if (nombre != doc.fuentes.constEnd())
        f.setFontFamilies(QStringList{*nombre});
    const auto color = [&doc](int i, QColor *c) {
        if (i <= 0 || i >= doc.colores.size() || doc.colores[i].automatico)
            return false;
        const ColorRtf &k = doc.colores[i];
        *c = QColor(k.rojo, k.verde, k.azul);
        return true;
    };
    QColor c;
    if (color(r.color, &c))
        f.setForeground(c);
    if (color(r.fondo, &c))
        f.setBackground(c);
    if (r.vertical > 0)
        f.setVerticalAlignment(QTextCharFormat::AlignSuperScript);
    else if (r.vertical < 0)
        f.setVerticalAlignment(QTextCharFormat::AlignSubScript);
    return f;
}

} // namespace

void RtfEnDocumento(const DocumentoRtf &rtf, QTextDocument *destino)
{
    if (!destino)
        return;
    const bool deshacer = destino->isUndoRedoEnabled();
    destino->setUndoRedoEnabled(false);
    destino->clear();
    QTextCursor cursor(destino);
    cursor.beginEditBlock();
    bool primero = true;
    for (const ParrafoRtf &p : rtf.parrafos) {
        const QTextBlockFormat bloque = FormatoBloque(p);
        QTextCharFormat inicial;
        if (!p.tramos.isEmpty())
            inicial = FormatoCaracter(p.tramos.first().formato, rtf);
        if (primero) {
            cursor.setBlockFormat(bloque);
            cursor.setBlockCharFormat(inicial);
        } else {
            cursor.insertBlock(bloque, inicial);
        }
        primero = false;
        for (const TramoRtf &t : p.tramos)
            cursor.insertText(t.texto, FormatoCaracter(t.formato, rtf));
    }
    cursor.endEditBlock();
    destino->setUndoRedoEnabled(deshacer);
}

bool CargarRtf(const QString &fichero, QTextDocument *destino)
{
    QFile f(fichero);
    if (!QFileInfo(fichero).isFile())
        throw ErrorEjecucion(ErrorEjecucion::ArchivoNoEncontrado,
                             QStringLiteral("No se encontró el archivo de ayuda %1").arg(fichero));
    if (!f.open(QIODevice::ReadOnly))
        throw ErrorEjecucion(ErrorEjecucion::AccesoDenegado,
                             QStringLiteral("No se puede leer el archivo de ayuda %1").arg(fichero));
    const QByteArray datos = f.readAll();
    f.close();
    const DocumentoRtf rtf = LeerRtf(datos);
    RtfEnDocumento(rtf, destino);
    return rtf.completo;
}

} // namespace kvr
