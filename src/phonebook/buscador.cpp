#include <kvr/buscador.h>

#include "platform/palabras.h"

#include <QChar>

#include <algorithm>
#include <bit>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kvr {

namespace {

char *ponerUtf8(char32_t c, char *d)
{
    if (c < 0x80) {
        *d++ = char(c);
    } else if (c < 0x800) {
        *d++ = char(0xC0 | (c >> 6));
        *d++ = char(0x80 | (c & 0x3F));
    } else {
        // Upper case stays in the Basic Multilingual Plane.
        *d++ = char(0xE0 | (c >> 12));
        *d++ = char(0x80 | ((c >> 6) & 0x3F));
        *d++ = char(0x80 | (c & 0x3F));
    }
    return d;
}

// Eight ASCII bytes, none NUL, upper-cased at once: a byte from 'a' to 'z' loses 0x20. Adding
// 0x1F sets a byte's high bit from 'a' up, adding 0x05 from '{' up; no byte carries into the
// next, as none is above 0x7F.
inline bool mayusculasAscii(const unsigned char *p, char *d)
{
    using palabras::Altos, palabras::Unos;
    uint64_t w = palabras::Palabra(p);
    if (palabras::HayAltoOCero(w))
        return false;
    const uint64_t minusculas = (w + 0x1F * Unos) & ~(w + 0x05 * Unos) & Altos;
    w -= minusculas >> 2;
    std::memcpy(d, &w, sizeof w);
    return true;
}

} // namespace

char *MayusculasUtf8(std::string_view texto, char *d)
{
    const auto *p = reinterpret_cast<const unsigned char *>(texto.data());
    const auto *fin = p + texto.size();
    while (p < fin) {
        if (fin - p >= 8 && mayusculasAscii(p, d)) {
            p += 8;
            d += 8;
            continue;
        }
        const unsigned char c = *p;
        if (c < 0x80) {
            *d++ = char(c >= 'a' && c <= 'z' ? c - 32 : c == 0 ? ' ' : c);
            ++p;
            continue;
        }
        // The grid holds valid UTF-8; anything else is copied as it stands.
        int largo = c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC0 ? 2 : 1;
        if (fin - p < largo)
            largo = 1;
        if (largo == 2 || largo == 3) {
            const char32_t cp = largo == 2 ? char32_t(c & 0x1F) << 6 | (p[1] & 0x3F)
                                           : char32_t(c & 0x0F) << 12 | char32_t(p[1] & 0x3F) << 6 | (p[2] & 0x3F);
            d = ponerUtf8(QChar::toUpper(cp), d);
        } else {
            std::memcpy(d, p, std::size_t(largo));
            d += largo;
        }
        p += largo;
    }
    return d;
}

void MayusculasUtf8(std::string_view texto, std::string &destino)
{
    const std::size_t inicio = destino.size();
    destino.resize(inicio + texto.size() * 2);
    char *fin = MayusculasUtf8(texto, destino.data() + inicio);
    destino.resize(std::size_t(fin - destino.data()));
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
    // Upper case is at most twice as long in UTF-8 (two bytes that become three), so each row
    // makes sure of room for twice its bytes before writing.
    m_texto.resize(std::size_t(grid.BytesTexto()) + std::size_t(filas) * 4);
    std::size_t usado = 0;
    for (int f = primeraFila; f < grid.Rows(); ++f) {
        grid.Precargar(f + 16, false);
        grid.Precargar(f + 8, true);
        std::string_view celdas[8];
        std::size_t largo = 1, n = 0;
        for (const int c : columnas)
            if (c < grid.Cols() && n < 8) {
                celdas[n] = grid.CeldaUtf8(f, c);
                largo += celdas[n++].size() * 2;
            }
        if (m_texto.size() < usado + largo)
            m_texto.resize(std::max(m_texto.size() * 3 / 2, usado + largo));
        m_inicios.push_back(uint32_t(usado));
        char *d = m_texto.data() + usado;
        for (std::size_t i = 0; i < n; ++i)
            d = MayusculasUtf8(celdas[i], d);
        *d++ = '\0';
        usado = std::size_t(d - m_texto.data());
    }
    m_texto.resize(usado);
    m_texto.shrink_to_fit();
}

namespace {

// The first place of `aguja` (not empty) in [p, fin), or nullptr. Sixteen places are tried at
// once by their first and last bytes; only places where both agree are compared whole.
const char *hallar(const char *p, const char *const fin, std::string_view aguja)
{
    const std::size_t n = aguja.size();
#if defined(__SSE2__)
    const __m128i primero = _mm_set1_epi8(aguja.front()), ultimo = _mm_set1_epi8(aguja.back());
    while (std::size_t(fin - p) >= n - 1 + 16) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + n - 1));
        for (auto m = unsigned(_mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(a, primero), _mm_cmpeq_epi8(b, ultimo))));
             m; m &= m - 1) {
            const char *q = p + std::countr_zero(m);
            if (n <= 2 || std::memcmp(q + 1, aguja.data() + 1, n - 2) == 0)
                return q;
        }
        p += 16;
    }
#endif
    // The last places (fewer than sixteen), or all of them without SSE2, one by one.
    for (; fin - p >= std::ptrdiff_t(n); ++p)
        if (*p == aguja.front() && std::memcmp(p + 1, aguja.data() + 1, n - 1) == 0)
            return p;
    return nullptr;
}

std::string agujaDe(const QString &texto)
{
    std::string aguja;
    const QByteArray utf8 = texto.toUtf8();
    MayusculasUtf8(std::string_view(utf8.constData(), std::size_t(utf8.size())), aguja);
    return aguja;
}

} // namespace

std::vector<unsigned char> IndiceBusqueda::Buscar(const QString &texto) const
{
    const std::string aguja = agujaDe(texto);
    std::vector<unsigned char> dentro(m_inicios.size(), aguja.empty() ? 1 : 0);
    if (aguja.empty() || m_inicios.empty())
        return dentro;
    // One pass over the whole text: each match found gives its row, which is looked for forward
    // from the last one, since matches come in row order.
    const char *base = m_texto.data();
    const char *p = base;
    const char *const fin = base + m_texto.size();
    std::size_t fila = 0;
    const std::size_t filas = m_inicios.size();
    while (p < fin) {
        const char *hallado = hallar(p, fin, aguja);
        if (!hallado)
            break;
        const auto en = uint32_t(hallado - base);
        while (fila + 1 < filas && m_inicios[fila + 1] <= en)
            ++fila;
        dentro[fila] = 1;
        // One match is enough for a row: go on from the next one.
        if (fila + 1 >= filas)
            break;
        p = base + m_inicios[++fila];
    }
    return dentro;
}

std::vector<unsigned char> IndiceBusqueda::Buscar(const QString &texto, const std::vector<unsigned char> &candidatos) const
{
    // When most rows are candidates, one pass over the whole text is quicker than a search per
    // row; it finds the same rows, since a row that holds the longer text holds the shorter.
    if (candidatos.size() != m_inicios.size()
        || std::size_t(std::count(candidatos.begin(), candidatos.end(), 1)) > candidatos.size() / 4)
        return Buscar(texto);
    const std::string aguja = agujaDe(texto);
    if (aguja.empty())
        return std::vector<unsigned char>(m_inicios.size(), 1);
    std::vector<unsigned char> dentro(m_inicios.size(), 0);
    const char *base = m_texto.data();
    const std::size_t filas = m_inicios.size();
    for (std::size_t f = 0; f < filas; ++f) {
        if (!candidatos[f])
            continue;
        // The row's text runs to its NUL, the byte before the next row's text.
        const std::size_t hasta = f + 1 < filas ? m_inicios[f + 1] - 1 : m_texto.size() - 1;
        dentro[f] = hallar(base + m_inicios[f], base + hasta, aguja) != nullptr;
    }
    return dentro;
}

} // namespace kvr
