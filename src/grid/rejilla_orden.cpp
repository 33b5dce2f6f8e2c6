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
    thread_local std::string acentos, mayusculas;
    acentos.clear();
    mayusculas.clear();
    const auto &t = tabla();
    const unsigned char *p = reinterpret_cast<const unsigned char *>(datos);
    const unsigned char *fin = p + largo;
    std::size_t posicion = 0;
    while (p < fin) {
        const char32_t c = leerUtf8(p);
        Peso peso;
        if (c < 256) {
            peso = t[c];
        } else {
            peso.mayuscula = QChar::toCaseFolded(c) != c;
        }
        if (peso.primario) {
            out.push_back(char(peso.primario));
        } else {
            const char32_t plegado = c < 256 ? c : QChar::toCaseFolded(c);
            const char escape[4] = {char(Escape), char(plegado >> 16), char(plegado >> 8), char(plegado)};
            out.insert(out.end(), escape, escape + 4);
        }
        if (peso.acento != Neutro) {
            acentos.resize(posicion, char(Neutro));
            acentos.push_back(char(peso.acento));
        }
        if (conMayusculas && peso.mayuscula) {
            mayusculas.resize(posicion, char(Neutro));
            mayusculas.push_back(char(3));
        }
        ++posicion;
    }
    if (!mayusculas.empty()) {
        out.push_back(char(Nivel));
        out.insert(out.end(), acentos.begin(), acentos.end());
        out.push_back(char(Nivel));
        out.insert(out.end(), mayusculas.begin(), mayusculas.end());
    } else if (!acentos.empty()) {
        out.push_back(char(Nivel));
        out.insert(out.end(), acentos.begin(), acentos.end());
    }
    out.push_back(char(Fin));
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

// Sorts byte keys held one after another in a buffer, with the row's position as the last
// tie-break. Keys are prefix-free (no key is the beginning of another), so two keys equal up to
// some byte either both end there or both go on.
//
// Most sorts of a large grid are limited by memory, not by comparisons: a key read at random
// costs far more than one read in order. So this is a most-significant-digit radix sort that
// moves the key bytes themselves, not just references to them: each pass reads a range of keys
// front to back and copies every key into the part of a second buffer that belongs to its next
// byte (or next two bytes), so that the keys of a part lie together. When a part is small enough
// to stay in cache it is finished with a comparison sort on 16-byte prefixes. Passes go
// between the two buffers; a part whose keys all share their next bytes skips those bytes
// without being moved, and a part whose keys are all equal is put in position order.
class OrdenRadix {
public:
    // `claves` holds the keys of the rows in the order of `inicios` (n + 1 offsets) and
    // `posiciones` (the row's position among the rows sorted, for each key).
    OrdenRadix(std::vector<char> &claves, std::vector<uint32_t> &inicios, std::vector<uint32_t> &posiciones)
        : m_n(posiciones.size())
    {
        m_bytes[0] = reinterpret_cast<unsigned char *>(claves.data());
        m_offs[0] = inicios.data();
        m_pos[0] = posiciones.data();
        // The second buffers are written before they are read: no need to clear them.
        m_otroBytes.reset(new unsigned char[claves.size()]);
        m_otroOffs.reset(new uint32_t[m_n + 1]);
        m_otroPos.reset(new uint32_t[m_n]);
        m_bytes[1] = m_otroBytes.get();
        m_offs[1] = m_otroOffs.get();
        m_pos[1] = m_otroPos.get();
        m_otroOffs[0] = inicios[0];
        m_otroOffs[m_n] = inicios[m_n];
    }

    // The positions of the rows in key order.
    std::vector<uint32_t> ordenar()
    {
        m_salida.assign(m_n, 0);
        m_pendientes.push_back({0, m_n, 0, 0});
        while (!m_pendientes.empty()) {
            const Tramo t = m_pendientes.back();
            m_pendientes.pop_back();
            tramo(t);
        }
        return std::move(m_salida);
    }

private:
    struct Tramo {
        std::size_t desde, hasta; // records [desde, hasta)
        std::size_t hecho;        // key bytes all of them share
        int buffer;               // which of the two buffers holds them
    };

    // A part is finished by comparisons when it has few keys or its keys fit in cache.
    static constexpr std::size_t PocasClaves = 64;
    static constexpr std::size_t BytesLocales = std::size_t(192) * 1024;
    // Parts of more keys than this are split by two bytes at a time.
    static constexpr std::size_t ParaDosBytes = 1 << 16;

    struct Elemento {
        uint64_t prefijo, prefijo2; // 16 key bytes from the part's shared bytes on
        uint32_t posicion;
        uint32_t registro;
    };

    void tramo(const Tramo &t)
    {
        const std::size_t n = t.hasta - t.desde;
        const uint32_t *offs = m_offs[t.buffer];
        const uint32_t *pos = m_pos[t.buffer];
        if (n == 1) {
            m_salida[t.desde] = pos[t.desde];
            return;
        }
        if (offs[t.desde + 1] - offs[t.desde] <= t.hecho) {
            // Every key ended: all are equal, so the positions decide.
            uint32_t *s = m_salida.data() + t.desde;
            std::copy(pos + t.desde, pos + t.hasta, s);
            if (!std::is_sorted(s, s + n))
                std::sort(s, s + n);
            return;
        }
        if (n <= PocasClaves || offs[t.hasta] - offs[t.desde] <= BytesLocales) {
            comparar(t);
            return;
        }
        repartir(t, n > ParaDosBytes ? 2 : 1);
    }

    // Byte `i` of key `r` in a buffer, 0 past its end.
    static unsigned char byteDe(const unsigned char *bytes, const uint32_t *offs, std::size_t r, std::size_t i)
    {
        const std::size_t largo = offs[r + 1] - offs[r];
        return i < largo ? bytes[offs[r] + i] : 0;
    }

    void repartir(const Tramo &t, int ancho)
    {
        const unsigned char *bytes = m_bytes[t.buffer];
        const uint32_t *offs = m_offs[t.buffer];
        const uint32_t *pos = m_pos[t.buffer];
        const std::size_t cubos = ancho == 2 ? 65536 : 256;
        const auto cuboDe = [&](std::size_t r) {
            std::size_t c = byteDe(bytes, offs, r, t.hecho);
            if (ancho == 2)
                c = c << 8 | byteDe(bytes, offs, r, t.hecho + 1);
            return c;
        };
        m_cuenta.assign(cubos, 0);
        m_bytesCubo.assign(cubos, 0);
        for (std::size_t r = t.desde; r < t.hasta; ++r) {
            const std::size_t c = cuboDe(r);
            ++m_cuenta[c];
            m_bytesCubo[c] += offs[r + 1] - offs[r];
        }
        const std::size_t n = t.hasta - t.desde;
        const std::size_t primero = cuboDe(t.desde);
        if (m_cuenta[primero] == n) {
            // One part only: skip every byte the keys share, without moving them.
            std::size_t comun = offs[t.desde + 1] - offs[t.desde];
            const unsigned char *k0 = bytes + offs[t.desde];
            for (std::size_t r = t.desde + 1; r < t.hasta && comun > t.hecho; ++r) {
                const unsigned char *k = bytes + offs[r];
                const std::size_t tope = std::min<std::size_t>(comun, offs[r + 1] - offs[r]);
                std::size_t i = t.hecho;
                while (i < tope && k[i] == k0[i])
                    ++i;
                comun = i;
            }
            if (comun > t.hecho)
                m_pendientes.push_back({t.desde, t.hasta, comun, t.buffer});
            else
                comparar(t); // cannot happen with prefix-free keys; never loop
            return;
        }
        // Where each part starts, in records and in bytes.
        std::size_t registro = t.desde, byte = offs[t.desde];
        for (std::size_t c = 0; c < cubos; ++c) {
            const uint32_t k = m_cuenta[c];
            if (k == 0)
                continue;
            if (k > 1)
                m_pendientes.push_back({registro, registro + k, t.hecho + std::size_t(ancho), 1 - t.buffer});
            m_cuenta[c] = uint32_t(registro);
            const uint32_t b = m_bytesCubo[c];
            m_bytesCubo[c] = uint32_t(byte);
            registro += k;
            byte += b;
        }
        unsigned char *destino = m_bytes[1 - t.buffer];
        uint32_t *offsDestino = m_offs[1 - t.buffer];
        uint32_t *posDestino = m_pos[1 - t.buffer];
        for (std::size_t r = t.desde; r < t.hasta; ++r) {
            const std::size_t c = cuboDe(r);
            const uint32_t j = m_cuenta[c]++;
            const uint32_t largo = offs[r + 1] - offs[r];
            const uint32_t o = m_bytesCubo[c];
            m_bytesCubo[c] = o + largo;
            std::memcpy(destino + o, bytes + offs[r], largo);
            offsDestino[j] = o;
            posDestino[j] = pos[r];
        }
        offsDestino[t.hasta] = offs[t.hasta];
        unicos(t);
    }

    // Writes out the parts of one key left by the last pass (they need no more sorting).
    void unicos(const Tramo &t)
    {
        // After the pass, m_cuenta[c] is where part c ends (an empty part ends where it starts);
        // parts of more than one key were put on the list before the pass.
        const uint32_t *pos = m_pos[1 - t.buffer];
        std::size_t inicio = t.desde;
        for (std::size_t c = 0; c < m_cuenta.size() && inicio < t.hasta; ++c) {
            const std::size_t fin = m_cuenta[c];
            if (fin <= inicio)
                continue;
            if (fin - inicio == 1)
                m_salida[inicio] = pos[inicio];
            inicio = fin;
        }
    }

    void comparar(const Tramo &t)
    {
        const unsigned char *bytes = m_bytes[t.buffer];
        const uint32_t *offs = m_offs[t.buffer];
        const uint32_t *pos = m_pos[t.buffer];
        const std::size_t d = t.hecho;
        m_elementos.resize(t.hasta - t.desde);
        for (std::size_t r = t.desde; r < t.hasta; ++r) {
            const unsigned char *k = bytes + offs[r];
            const std::size_t largo = offs[r + 1] - offs[r];
            uint64_t p1 = 0, p2 = 0;
            if (largo >= d + 16) {
                for (std::size_t b = 0; b < 8; ++b)
                    p1 = p1 << 8 | k[d + b];
                for (std::size_t b = 8; b < 16; ++b)
                    p2 = p2 << 8 | k[d + b];
            } else {
                for (std::size_t b = d; b < d + 8; ++b)
                    p1 = p1 << 8 | (b < largo ? k[b] : 0);
                for (std::size_t b = d + 8; b < d + 16; ++b)
                    p2 = p2 << 8 | (b < largo ? k[b] : 0);
            }
            m_elementos[r - t.desde] = {p1, p2, pos[r], uint32_t(r)};
        }
        const std::size_t resto = d + 16;
        std::sort(m_elementos.begin(), m_elementos.end(), [&](const Elemento &x, const Elemento &y) {
            if (x.prefijo != y.prefijo)
                return x.prefijo < y.prefijo;
            if (x.prefijo2 != y.prefijo2)
                return x.prefijo2 < y.prefijo2;
            // Equal so far: the rest of the keys, then the position.
            const std::size_t lx = offs[x.registro + 1] - offs[x.registro];
            const std::size_t ly = offs[y.registro + 1] - offs[y.registro];
            if (lx > resto || ly > resto) {
                const std::size_t ax = lx > resto ? lx - resto : 0;
                const std::size_t ay = ly > resto ? ly - resto : 0;
                const int c = std::memcmp(bytes + offs[x.registro] + resto,
                                          bytes + offs[y.registro] + resto, std::min(ax, ay));
                if (c != 0)
                    return c < 0;
                if (ax != ay)
                    return ax < ay;
            }
            return x.posicion < y.posicion;
        });
        for (std::size_t i = 0; i < m_elementos.size(); ++i)
            m_salida[t.desde + i] = m_elementos[i].posicion;
    }

    std::size_t m_n;
    unsigned char *m_bytes[2];
    uint32_t *m_offs[2];
    uint32_t *m_pos[2];
    std::unique_ptr<unsigned char[]> m_otroBytes;
    std::unique_ptr<uint32_t[]> m_otroOffs, m_otroPos;
    std::vector<uint32_t> m_salida;
    std::vector<uint32_t> m_cuenta, m_bytesCubo;
    std::vector<Tramo> m_pendientes;
    std::vector<Elemento> m_elementos;
};

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
    std::vector<uint32_t> orden = OrdenRadix(claves, inicios, posiciones).ordenar();

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
