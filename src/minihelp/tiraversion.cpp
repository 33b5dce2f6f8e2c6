#include "tiraversion.h"

#include <QPainter>

namespace kvr {

TiraVersion::TiraVersion(QWidget *parent) : QFrame(parent) {}

void TiraVersion::Dibujar(const QString &texto)
{
    m_texto = texto;
    ++m_dibujos;
    update();
}

void TiraVersion::Limpiar()
{
    m_texto.clear();
    update();
}

void TiraVersion::paintEvent(QPaintEvent *evento)
{
    QFrame::paintEvent(evento);
    if (m_texto.isEmpty())
        return;
    QPainter p(this);
    p.setFont(font());
    p.setPen(palette().color(QPalette::WindowText));
    // Start = (strip size - text size) / 2 in both directions; the baseline follows from the top.
    const QFontMetrics fm(font());
    const int x = (width() - fm.horizontalAdvance(m_texto)) / 2;
    const int y = (height() - fm.height()) / 2;
    p.drawText(x, y + fm.ascent(), m_texto);
}

} // namespace kvr
