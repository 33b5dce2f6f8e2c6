// Sorting the grid's rows. Every row gets a byte key built from its key cells, such that
// comparing two keys byte by byte (shorter first when one ends) gives the mode's order; the
// rows are then sorted by those keys with the row's position as the last tie-break, which makes
// the sort stable in both directions. The keys exist only while the sort runs.
//
// Key bytes: 0x00 ends a column's text key, 0x01 separates the levels of a text key, and
// weights are 0x02 and above. A text key has up to three levels, as a desk collation does:
// letters without accents or case (n < ñ < o, á sorts with a), then accents, then case
// (lower case first). Trailing neutral weights of the second and third levels are dropped, so a
// plain lower-case ASCII text has a one-level key.
#include <kvr/rejilla.h>

#include <kvr/numeros.h>

#include "ordenradix.h"

#include <QChar>

#include <algorithm>
#include <string_view>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>

namespace kvr {

namespace {

enum : unsigned char { Fin = 0x00, Nivel = 0x01, Neutro = 0x02, Escape = 0xF0 };

// Accent weights of the second level.
enum : unsigned char { Agudo = 3, Grave, Circunflejo, Tilde, Dieresis, Anillo, Cedilla, Barra, OtroAcento };

struct Peso {
    unsigned char primario = 0; // 0: no single-byte weight, use the escape form
    unsigned char acento = Neutro;
    bool mayuscula = false;
};

unsigned char pesoLetra(char minuscula)
{
    // a..n, then ñ, then o..z, all above digits and punctuation.
    if (minuscula <= 'n')
        return static_cast<unsigned char>(0x81 + (minuscula - 'a'));
    return static_cast<unsigned char>(0x90 + (minuscula - 'o'));
}
constexpr unsigned char PesoEnye = 0x8F;

std::array<Peso, 256> construirTabla()
{
    std::array<Peso, 256> t{};
    for (int c = 0; c < 0x80; ++c) {
        if (c >= 'a' && c <= 'z')
            t[c] = {pesoLetra(char(c)), Neutro, false};
        else if (c >= 'A' && c <= 'Z')
            t[c] = {pesoLetra(char(c - 'A' + 'a')), Neutro, true};
        else
            t[c] = {static_cast<unsigned char>(std::max(c + 1, 2)), Neutro, false};
    }
    // Latin-1 letters: base letter and accent, upper case at 0xC0..0xDE, lower at 0xE0..0xFE.
    struct Base { char letra; unsigned char acento; };
    static const Base latin[31] = {
        {'a', Grave}, {'a', Agudo}, {'a', Circunflejo}, {'a', Tilde}, {'a', Dieresis}, {'a', Anillo},
        {'a', OtroAcento}, {'c', Cedilla}, {'e', Grave}, {'e', Agudo}, {'e', Circunflejo},
        {'e', Dieresis}, {'i', Grave}, {'i', Agudo}, {'i', Circunflejo}, {'i', Dieresis},
        {'d', OtroAcento}, {'~', 0}, {'o', Grave}, {'o', Agudo}, {'o', Circunflejo}, {'o', Tilde},
        {'o', Dieresis}, {0, 0}, {'o', Barra}, {'u', Grave}, {'u', Agudo}, {'u', Circunflejo},
        {'u', Dieresis}, {'y', Agudo}, {0, 0}};
    for (int i = 0; i < 31; ++i) {
        const Base b = latin[i];
        if (b.letra == 0)
            continue;
        const unsigned char primario = b.letra == '~' ? PesoEnye : pesoLetra(b.letra);
        const unsigned char acento = b.letra == '~' ? static_cast<unsigned char>(Neutro) : b.acento;
        t[0xC0 + i] = {primario, acento, true};
        t[0xE0 + i] = {primario, acento, false};
    }
    t[0xDF] = {pesoLetra('s'), OtroAcento, false}; // ß
    t[0xFF] = {pesoLetra('y'), Dieresis, false};   // ÿ
    t[0xAA] = {pesoLetra('a'), OtroAcento, false}; // ª
    t[0xBA] = {pesoLetra('o'), OtroAcento, false}; // º
    return t;
}

const std::array<Peso, 256> &tabla()
{
    static const std::array<Peso, 256> t = construirTabla();
    return t;
}

// Decodes one UTF-8 character (the grid only stores valid UTF-8).
inline char32_t leerUtf8(const unsigned char *&p)
{
    const unsigned char b = *p++;
    if (b < 0x80)
        return b;
    if (b < 0xE0) {
        const char32_t c = char32_t(b & 0x1F) << 6 | (p[0] & 0x3F);
        p += 1;
        return c;
    }
    if (b < 0xF0) {
        const char32_t c = char32_t(b & 0x0F) << 12 | char32_t(p[0] & 0x3F) << 6 | (p[1] & 0x3F);
        p += 2;
        return c;
    }
    const char32_t c = char32_t(b & 0x07) << 18 | char32_t(p[0] & 0x3F) << 12
                       | char32_t(p[1] & 0x3F) << 6 | (p[2] & 0x3F);
    p += 3;
    return c;
}

// Appends the collation key of a UTF-8 text, with two levels or, when `conMayusculas`, three.
// The accent and case levels are only written out from their first non-neutral weight on, so a
// plain lower-case text costs one byte of key per character and nothing more.
void claveTexto(std::vector<char> &out, const char *datos, std::size_t largo, bool conMayusculas)
{
    // Each level is written through a pointer into room made once: the first level takes at most
    // two bytes a byte of text (an escape of four for a character of two bytes or more), the other
    // two at most one a character, and three bytes of separators and end.
    thread_local std::vector<char> acentos, mayusculas;
    if (acentos.size() < largo) {
        acentos.resize(largo);
        mayusculas.resize(largo);
    }
    const std::size_t base = out.size();
    out.resize(base + 4 * largo + 3);
    char *d = out.data() + base;
    std::size_t nAcentos = 0, nMayusculas = 0; // written up to the last non-neutral weight
    const auto marcar = [](std::vector<char> &nivel, std::size_t &n, std::size_t posicion, char peso) {
        std::fill(nivel.begin() + std::ptrdiff_t(n), nivel.begin() + std::ptrdiff_t(posicion), char(Neutro));
        nivel[posicion] = peso;
        n = posicion + 1;
    };
    const auto &t = tabla();
    const unsigned char *p = reinterpret_cast<const unsigned char *>(datos);
    const unsigned char *fin = p + largo;
    for (std::size_t posicion = 0; p < fin; ++posicion) {
        if (*p < 0x80) {
            // ASCII: always a one-byte weight and no accent.
            const Peso &peso = t[*p++];
            *d++ = char(peso.primario);
            if (conMayusculas && peso.mayuscula)
                marcar(mayusculas, nMayusculas, posicion, char(3));
            continue;
        }
        const char32_t c = leerUtf8(p);
        Peso peso;
        if (c < 256) {
            peso = t[c];
        } else {
            peso.mayuscula = QChar::toCaseFolded(c) != c;
        }
        if (peso.primario) {
            *d++ = char(peso.primario);
        } else {
            const char32_t plegado = c < 256 ? c : QChar::toCaseFolded(c);
            *d++ = char(Escape);
            *d++ = char(plegado >> 16);
            *d++ = char(plegado >> 8);
            *d++ = char(plegado);
        }
        if (peso.acento != Neutro)
            marcar(acentos, nAcentos, posicion, char(peso.acento));
        if (conMayusculas && peso.mayuscula)
            marcar(mayusculas, nMayusculas, posicion, char(3));
    }
    if (nMayusculas || nAcentos) {
        *d++ = char(Nivel);
        d = std::copy_n(acentos.data(), nAcentos, d);
        if (nMayusculas) {
            *d++ = char(Nivel);
            d = std::copy_n(mayusculas.data(), nMayusculas, d);
        }
    }
    *d++ = char(Fin);
    out.resize(std::size_t(d - out.data()));
}

// Eight bytes whose byte order is the order of the numbers.
void claveNumero(std::vector<char> &out, double v)
{
    if (v == 0.0)
        v = 0.0; // -0 sorts with 0
    uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    bits = (bits & (uint64_t(1) << 63)) ? ~bits : bits | (uint64_t(1) << 63);
    for (int i = 7; i >= 0; --i)
        out.push_back(char(bits >> (i * 8)));
}

// A cell's number for the numeric modes: by the regional settings, else the leading number.
double numeroDe(const QString &texto)
{
    bool ok = false;
    const double v = ValorRegional(texto, &ok);
    if (ok)
        return v;
    try {
        return Val(texto);
    } catch (...) {
        return 0.0;
    }
}

bool puedeSerNumero(const char *datos, std::size_t largo)
{
    for (std::size_t i = 0; i < largo; ++i) {
        const char c = datos[i];
        if (c == ' ')
            continue;
        return (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.' || c == ',';
    }
    return false;
}

enum : unsigned char { ClaseVacia = 2, ClaseNumero = 3, ClaseTexto = 4 };

} // namespace

void Rejilla::Sort(int modo)
{
    if (modo < OrdenGenericoAsc || modo > OrdenTextoDesc || Cols() == 0)
        return;
    const int f0 = m_filasFijas;
    const int n = Rows() - f0;
    if (n < 2)
        return;
    const int c0 = std::min(m_col, m_colSel), c1 = std::max(m_col, m_colSel);
    const bool descendente = modo % 2 == 0;
    const int tipo = (modo + 1) / 2; // 1 generic, 2 numeric, 3 text without case, 4 text

    std::vector<char> claves;
    std::vector<uint32_t> inicios;
    inicios.reserve(std::size_t(n) + 1);
    std::size_t estimado = 0;
    for (int c = c0; c <= c1; ++c)
        estimado += m_columnas[std::size_t(c)].bytes.size() - m_columnas[std::size_t(c)].basura;
    claves.reserve(estimado + std::size_t(n) * std::size_t(c1 - c0 + 1) * 2);

    // Keys are built in the order of the row slots, which is the order of the cell texts in the
    // column buffers, so the texts are read front to back rather than all over memory.
    std::vector<uint32_t> posicionDe(m_ranuras, UINT32_MAX);
    for (int i = 0; i < n; ++i)
        posicionDe[ranura(f0 + i)] = uint32_t(i);
    std::vector<uint32_t> posicionDeClave;
    posicionDeClave.reserve(std::size_t(n));
    for (uint32_t r = 0; r < m_ranuras; ++r) {
        if (posicionDe[r] == UINT32_MAX)
            continue;
        posicionDeClave.push_back(posicionDe[r]);
        inicios.push_back(uint32_t(claves.size()));
        for (int c = c0; c <= c1; ++c) {
            const Columna &col = m_columnas[std::size_t(c)];
            const uint64_t ref = col.refs[r];
            const char *datos = col.bytes.data() + (ref >> 24);
            const std::size_t largo = std::size_t(ref & 0xFFFFFF);
            switch (tipo) {
            case 1:
                if (largo == 0) {
                    claves.push_back(char(ClaseVacia));
                    break;
                }
                if (puedeSerNumero(datos, largo)) {
                    bool ok = false;
                    const double v = ValorRegional(QString::fromUtf8(datos, qsizetype(largo)), &ok);
                    if (ok) {
                        claves.push_back(char(ClaseNumero));
                        claveNumero(claves, v);
                        break;
                    }
                }
                claves.push_back(char(ClaseTexto));
                claveTexto(claves, datos, largo, true);
                break;
            case 2:
                claveNumero(claves, largo ? numeroDe(QString::fromUtf8(datos, qsizetype(largo))) : 0.0);
                break;
            default:
                claveTexto(claves, datos, largo, tipo == 4);
                break;
            }
        }
    }
    inicios.push_back(uint32_t(claves.size()));
    std::vector<uint32_t>().swap(posicionDe); // not needed while sorting
    ordenarClaves(claves, inicios, descendente, posicionDeClave);
}

void Rejilla::OrdenarPorValores(const std::vector<std::optional<double>> &valores, bool descendente,
                                int colTexto)
{
    const Columna *textos = colTexto >= 0 && colTexto < Cols() ? &m_columnas[std::size_t(colTexto)]
                                                                 : nullptr;
    const int f0 = m_filasFijas;
    const int n = Rows() - f0;
    if (n < 2)
        return;
    std::vector<char> claves;
    std::vector<uint32_t> inicios;
    claves.reserve(std::size_t(n) * 9);
    inicios.reserve(std::size_t(n) + 1);
    for (int i = 0; i < n; ++i) {
        inicios.push_back(uint32_t(claves.size()));
        const std::optional<double> v = std::size_t(i) < valores.size() ? valores[std::size_t(i)]
                                                                         : std::nullopt;
        if (v && !std::isnan(*v)) {
            claves.push_back(char(ClaseNumero));
            claveNumero(claves, *v);
            continue;
        }
        const uint64_t ref = textos ? textos->refs[ranura(f0 + i)] : 0;
        if (ref & 0xFFFFFF) {
            claves.push_back(char(ClaseTexto));
            claveTexto(claves, textos->bytes.data() + (ref >> 24), std::size_t(ref & 0xFFFFFF), true);
        } else {
            claves.push_back(char(ClaseVacia));
        }
    }
    inicios.push_back(uint32_t(claves.size()));
    std::vector<uint32_t> posiciones(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i)
        posiciones[std::size_t(i)] = uint32_t(i);
    ordenarClaves(claves, inicios, descendente, posiciones);
}

void Rejilla::ordenarClaves(std::vector<char> &claves, std::vector<uint32_t> &inicios,
                            bool descendente, std::vector<uint32_t> &posiciones)
{
    // Keys are prefix-free, so turning every byte over turns their order around exactly; equal
    // keys still go in position order, which keeps the sort stable in both directions.
    if (descendente)
        for (char &b : claves)
            b = char(~static_cast<unsigned char>(b));
    // Rows already in order (a file saved sorted, a save after a sort) stay as they are, which is
    // what a stable sort would leave, for one pass over the keys in row order.
    {
        const std::size_t n = posiciones.size();
        std::vector<uint32_t> claveDeFila(n);
        for (std::size_t k = 0; k < n; ++k)
            claveDeFila[posiciones[k]] = uint32_t(k);
        const auto clave = [&](std::size_t fila) {
            const uint32_t k = claveDeFila[fila];
            return std::string_view(claves.data() + inicios[k], inicios[k + 1] - inicios[k]);
        };
        bool enOrden = true;
        for (std::size_t f = 1; f < n && enOrden; ++f)
            enOrden = clave(f - 1) <= clave(f);
        if (enOrden)
            return;
    }
    std::vector<uint32_t> orden = OrdenarClavesRadix(claves, inicios, posiciones);

    const bool a = avisar();
    if (a)
        paraOyentes([](OyenteRejilla *o) { o->antesDeReiniciar(); });
    const std::size_t f0 = std::size_t(m_filasFijas);
    const std::vector<uint32_t> datos(m_orden.begin() + std::ptrdiff_t(f0), m_orden.end());
    for (std::size_t i = 0; i < orden.size(); ++i)
        m_orden[f0 + i] = datos[orden[i]];
    if (a)
        paraOyentes([](OyenteRejilla *o) { o->reiniciada(); });
}

} // namespace kvr
