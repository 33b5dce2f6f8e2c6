#include "kvr/buscador.h"

#include <QChar>

#include <algorithm>
#include <cstring>

namespace kvr {

namespace {

void ponerUtf8(char32_t c, std::string &d)
{
    if (c < 0x80) {
        d.push_back(char(c));
    } else if (c < 0x800) {
        d.push_back(char(0xC0 | (c >> 6)));
        d.push_back(char(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
        d.push_back(char(0xE0 | (c >> 12)));
        d.push_back(char(0x80 | ((c >> 6) & 0x3F)));
        d.push_back(char(0x80 | (c & 0x3F)));
    } else {
        d.push_back(char(0xF0 | (c >> 18)));
        d.push_back(char(0x80 | ((c >> 12) & 0x3F)));
        d.push_back(char(0x80 | ((c >> 6) & 0x3F)));
        d.push_back(char(0x80 | (c & 0x3F)));
    }
}

} // namespace

void MayusculasUtf8(std::string_view texto, std::string &destino)
{
    const auto *p = reinterpret_cast<const unsigned char *>(texto.data());
    const auto *fin = p + texto.size();
    while (p < fin) {
        const unsigned char c = *p;
        if (c < 0x80) {
            destino.push_back(char(c >= 'a' && c <= 'z' ? c - 32 : c));
            ++p;
            continue;
        }
        // The grid holds valid UTF-8; anything else is copied as it stands.
        int largo = c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC0 ? 2 : 1;
        if (fin - p < largo)
            largo = 1;
        char32_t cp = 0;
        if (largo == 2)
            cp = char32_t(c & 0x1F) << 6 | (p[1] & 0x3F);
        else if (largo == 3)
            cp = char32_t(c & 0x0F) << 12 | char32_t(p[1] & 0x3F) << 6 | (p[2] & 0x3F);
        if (largo == 2 || largo == 3)
            ponerUtf8(QChar::toUpper(cp), destino);
        else
            destino.append(reinterpret_cast<const char *>(p), std::size_t(largo));
        p += largo;
    }
}

void IndiceBusqueda::Vaciar()
{
    std::string().swap(m_texto);
    std::vector<uint32_t>().swap(m_inicios);
}

void IndiceBusqueda::Construir(const Rejilla &grid, const std::vector<int> &columnas, int primeraFila)
{
    Vaciar();
    const int filas = grid.Rows() - primeraFila;
    if (filas <= 0)
        return;
    m_inicios.reserve(std::size_t(filas));
    m_texto.reserve(std::size_t(grid.BytesTexto()) + std::size_t(filas));
    for (int f = primeraFila; f < grid.Rows(); ++f) {
        m_inicios.push_back(uint32_t(m_texto.size()));
        for (const int c : columnas)
            if (c < grid.Cols())
                MayusculasUtf8(grid.CeldaUtf8(f, c), m_texto);
        m_texto.push_back('\0');
    }
}

std::vector<unsigned char> IndiceBusqueda::Buscar(const QString &texto) const
{
    std::string aguja;
    const QByteArray utf8 = texto.toUtf8();
    MayusculasUtf8(std::string_view(utf8.constData(), std::size_t(utf8.size())), aguja);
    // A NUL ends a row's text here, so it cannot be part of what is looked for.
    aguja.erase(std::remove(aguja.begin(), aguja.end(), '\0'), aguja.end());
    std::vector<unsigned char> dentro(m_inicios.size(), aguja.empty() ? 1 : 0);
    if (aguja.empty() || m_inicios.empty())
        return dentro;
    const char *base = m_texto.data();
    const char *p = base;
    const char *const fin = base + m_texto.size();
    while (p < fin) {
        const void *hallado = memmem(p, std::size_t(fin - p), aguja.data(), aguja.size());
        if (!hallado)
            break;
        const uint32_t en = uint32_t(static_cast<const char *>(hallado) - base);
        const std::size_t fila = std::size_t(std::upper_bound(m_inicios.begin(), m_inicios.end(), en) - m_inicios.begin()) - 1;
        dentro[fila] = 1;
        // One match is enough for a row: go on from the next one.
        if (fila + 1 >= m_inicios.size())
            break;
        p = base + m_inicios[fila + 1];
    }
    return dentro;
}

} // namespace kvr
