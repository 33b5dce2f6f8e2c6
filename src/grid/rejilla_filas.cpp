// Rows added and removed, one at a time or in bulk from UTF-8 bytes, and the grid's clip (the
// selection as tab-separated text).
#include <kvr/rejilla.h>

#include <kvr/error.h>

#include <QStringList>

#include <cstring>

namespace kvr {

namespace {

// Whether the bytes are well-formed UTF-8 (no cut or overlong sequence, no surrogate, nothing past
// U+10FFFF). ASCII runs are passed eight bytes at a time.
bool Utf8Valido(std::string_view t)
{
    const auto *p = reinterpret_cast<const unsigned char *>(t.data());
    const auto *const fin = p + t.size();
    while (p < fin) {
        if (fin - p >= 8) {
            uint64_t ocho;
            std::memcpy(&ocho, p, 8);
            if (!(ocho & 0x8080808080808080ULL)) {
                p += 8;
                continue;
            }
        }
        const unsigned char b = *p;
        if (b < 0x80) {
            ++p;
            continue;
        }
        int largo;
        unsigned char min2 = 0x80, max2 = 0xBF;
        if (b >= 0xC2 && b <= 0xDF) {
            largo = 2;
        } else if (b >= 0xE0 && b <= 0xEF) {
            largo = 3;
            if (b == 0xE0)
                min2 = 0xA0;
            else if (b == 0xED)
                max2 = 0x9F;
        } else if (b >= 0xF0 && b <= 0xF4) {
            largo = 4;
            if (b == 0xF0)
                min2 = 0x90;
            else if (b == 0xF4)
                max2 = 0x8F;
        } else {
            return false;
        }
        if (fin - p < largo || p[1] < min2 || p[1] > max2)
            return false;
        for (int i = 2; i < largo; ++i)
            if ((p[i] & 0xC0) != 0x80)
                return false;
        p += largo;
    }
    return true;
}

} // namespace

void Rejilla::AddItem(const QString &texto, int posicion)
{
    if (posicion == -1)
        posicion = Rows();
    if (posicion != Rows())
        comprobarFila(posicion); // a new last row, or before a row that exists
    const uint32_t r = nuevaRanura();
    const QStringView todo(texto);
    qsizetype desde = 0;
    for (std::size_t c = 0; c < m_columnas.size() && desde <= todo.size(); ++c) {
        qsizetype tab = todo.indexOf(u'\t', desde);
        if (tab < 0)
            tab = todo.size();
        if (tab > desde)
            escribirTexto(m_columnas[c], r, todo.mid(desde, tab - desde));
        desde = tab + 1;
    }
    const bool a = avisar();
    if (a)
        paraOyentes([&](OyenteRejilla *o) { o->antesDeInsertarFilas(posicion, posicion); });
    m_orden.insert(m_orden.begin() + posicion, r);
    if (a)
        paraOyentes([](OyenteRejilla *o) { o->filasInsertadas(); });
}

void Rejilla::AgregarFilaUtf8(const std::string_view *celdas, int numero)
{
    const uint32_t r = nuevaRanura();
    const int n = std::min(numero, Cols());
    for (int c = 0; c < n; ++c) {
        if (celdas[c].empty())
            continue;
        // Everything that reads the grid's bytes trusts them to be UTF-8: a cell that is not
        // (a sequence cut short, a stray continuation byte) is stored with U+FFFD in its place.
        if (Utf8Valido(celdas[c])) {
            escribir(m_columnas[std::size_t(c)], r, celdas[c].data(), celdas[c].size());
        } else {
            const QByteArray limpio = QString::fromUtf8(celdas[c].data(), qsizetype(celdas[c].size())).toUtf8();
            escribir(m_columnas[std::size_t(c)], r, limpio.constData(), std::size_t(limpio.size()));
        }
    }
    const int posicion = Rows();
    const bool a = avisar();
    if (a)
        paraOyentes([&](OyenteRejilla *o) { o->antesDeInsertarFilas(posicion, posicion); });
    m_orden.push_back(r);
    if (a)
        paraOyentes([](OyenteRejilla *o) { o->filasInsertadas(); });
}

void Rejilla::Reservar(int filas, const std::vector<std::size_t> &bytes)
{
    if (filas > 0) {
        const std::size_t n = m_orden.size() + std::size_t(filas);
        m_orden.reserve(n);
        for (Columna &c : m_columnas)
            c.refs.reserve(std::size_t(m_ranuras) + std::size_t(filas));
        if (!m_altos.empty())
            m_altos.reserve(std::size_t(m_ranuras) + std::size_t(filas));
    }
    for (std::size_t c = 0; c < bytes.size() && c < m_columnas.size(); ++c)
        m_columnas[c].bytes.reserve(m_columnas[c].bytes.size() + bytes[c]);
}

void Rejilla::RemoveItem(int fila)
{
    comprobarFila(fila);
    if (fila < m_filasFijas || Rows() - m_filasFijas <= 1)
        throw ErrorEjecucion(ErrorQuitarUltimaFila,
                             QStringLiteral("No se puede quitar la última fila no fija"));
    const bool a = avisar();
    if (a)
        paraOyentes([&](OyenteRejilla *o) { o->antesDeQuitarFilas(fila, fila); });
    liberarRanura(ranura(fila));
    m_orden.erase(m_orden.begin() + fila);
    ajustarActual();
    if (a)
        paraOyentes([](OyenteRejilla *o) { o->filasQuitadas(); });
}

QString Rejilla::Clip() const
{
    if (Rows() == 0 || Cols() == 0)
        return {};
    const int f0 = std::min(m_fila, m_filaSel), f1 = std::max(m_fila, m_filaSel);
    const int c0 = std::min(m_col, m_colSel), c1 = std::max(m_col, m_colSel);
    QString texto;
    for (int f = f0; f <= f1; ++f) {
        if (f > f0)
            texto += u'\r';
        for (int c = c0; c <= c1; ++c) {
            if (c > c0)
                texto += u'\t';
            texto += TextMatrix(f, c);
        }
    }
    return texto;
}

void Rejilla::PonerClip(const QString &texto)
{
    if (Rows() == 0 || Cols() == 0)
        return;
    const int f0 = std::min(m_fila, m_filaSel), f1 = std::max(m_fila, m_filaSel);
    const int c0 = std::min(m_col, m_colSel), c1 = std::max(m_col, m_colSel);
    QString limpio = texto;
    limpio.replace(QStringLiteral("\r\n"), QStringLiteral("\r")).replace(u'\n', u'\r');
    const QStringList filas = limpio.split(u'\r');
    for (int i = 0; i < filas.size() && f0 + i <= f1; ++i) {
        const QStringList celdas = filas[i].split(u'\t');
        for (int j = 0; j < celdas.size() && c0 + j <= c1; ++j)
            escribirTexto(m_columnas[std::size_t(c0) + std::size_t(j)], ranura(f0 + i), celdas[j]);
    }
    // One notification for the whole rectangle.
    if (avisar())
        paraOyentes([&](OyenteRejilla *o) { o->celdasCambiadas(f0, c0, f1, c1); });
}

} // namespace kvr
