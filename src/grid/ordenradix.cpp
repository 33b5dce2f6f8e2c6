// The grid's sort of byte keys: a most-significant-digit radix sort (see the class below).
#include "ordenradix.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace kvr {

namespace {

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

std::vector<uint32_t> OrdenarClavesRadix(std::vector<char> &claves, std::vector<uint32_t> &inicios,
                                         std::vector<uint32_t> &posiciones)
{
    if (posiciones.size() < 2) // nothing to sort (the passes take at least one key)
        return posiciones;
    return OrdenRadix(claves, inicios, posiciones).ordenar();
}

} // namespace kvr
