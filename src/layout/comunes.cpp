// Shared routines without widgets: the DOS code page, file existence, number formatters for
// grids and reports, reading a text file by lines and list texts.
#include <kvr/comunes.h>

#include "platform/palabras.h"
#include <kvr/error.h>
#include <kvr/ficheros.h>
#include <kvr/numeros.h>

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <array>
#include <bit>
#include <cstring>
#include <iconv.h>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kvr {

bool SinConvertirJuego = false;

namespace {

// CP850 is a single-byte set: each of its 256 bytes stands for one character of the Basic
// Multilingual Plane. The table is asked of glibc's iconv once, byte by byte, so the runtime
// agrees with `iconv -f CP850` exactly.
struct TablaDos {
    std::array<char16_t, 256> aTexto{};
    // Text to CP850 by direct index over the whole Basic Multilingual Plane: 64 KB, and no
    // hashing in the loop. Characters CP850 lacks hold "?".
    std::array<char, 65536> aDos{};

    TablaDos()
    {
        bool completa = leerDeIconv();
        if (!completa) {
            // Without glibc's CP850 module, ICU's IBM850 is the next maintained table; it swaps
            // three control characters, put back here to keep files identical.
            QStringDecoder icu("IBM850");
            if (icu.isValid()) {
                for (int b = 0; b < 256; ++b) {
                    const char c = char(b);
                    const QString t = icu.decode(QByteArrayView(&c, 1));
                    aTexto[size_t(b)] = t.size() == 1 ? t[0].unicode() : char16_t(b);
                }
                aTexto[0x1A] = 0x1A;
                aTexto[0x1C] = 0x1C;
                aTexto[0x7F] = 0x7F;
            } else {
                for (int b = 0; b < 256; ++b)
                    aTexto[size_t(b)] = char16_t(b);
            }
        }
        aDos.fill('?');
        for (int b = 255; b >= 0; --b)
            aDos[aTexto[size_t(b)]] = char(b);
        // NUL becomes a blank in both directions.
        aTexto[0] = u' ';
        aDos[0] = ' ';
        for (int b = 0; b < 256; ++b) {
            const char16_t c = aTexto[size_t(b)];
            Utf8 &u = aUtf8[size_t(b)];
            if (c < 0x80) {
                u = {{char(c)}, 1};
            } else if (c < 0x800) {
                u = {{char(0xC0 | (c >> 6)), char(0x80 | (c & 0x3F))}, 2};
            } else {
                u = {{char(0xE0 | (c >> 12)), char(0x80 | ((c >> 6) & 0x3F)), char(0x80 | (c & 0x3F))}, 3};
            }
        }
    }

    // Each CP850 byte as UTF-8 (every one lies in the Basic Multilingual Plane: 3 bytes at most).
    struct Utf8 {
        char b[3];
        uint8_t n;
    };
    std::array<Utf8, 256> aUtf8{};

    bool leerDeIconv()
    {
        iconv_t cd = iconv_open("UTF-16LE", "CP850");
        if (cd == iconv_t(-1)) // NOLINT(performance-no-int-to-ptr): iconv_open's documented failure value
            return false;
        bool ok = true;
        for (int b = 0; b < 256 && ok; ++b) {
            char entrada = char(b);
            unsigned char salida[4] = {};
            char *pe = &entrada;
            char *ps = reinterpret_cast<char *>(salida);
            size_t ne = 1, ns = sizeof salida;
            ok = iconv(cd, &pe, &ne, &ps, &ns) != size_t(-1) && ns == sizeof salida - 2;
            aTexto[size_t(b)] = char16_t(salida[0] | (salida[1] << 8));
        }
        iconv_close(cd);
        return ok;
    }
};

const TablaDos &tabla()
{
    static const TablaDos t;
    return t;
}

// Contacts files are almost all ASCII, which every direction keeps as it is (but NUL, which
// becomes a blank): the routines copy runs of ASCII in blocks and take only the other bytes
// through the table.
// Where, among the 16 bytes at `p`, the bytes that are not plain ASCII lie (above 0x7F, or NUL):
// bit i for byte i. Each routine copies 16 bytes at once and then handles only those.
inline unsigned especiales16(const char *p)
{
#if defined(__SSE2__)
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
    return unsigned(_mm_movemask_epi8(_mm_or_si128(v, _mm_cmpeq_epi8(v, _mm_setzero_si128()))));
#else
    unsigned m = 0;
    for (int i = 0; i < 16; ++i)
        if (static_cast<unsigned char>(p[i]) - 1u >= 0x7Fu)
            m |= 1u << i;
    return m;
#endif
}

// Four UTF-16 units, none 0 and none above 0x7F. (w - 1) & ~w sets the high bit of a unit where
// the first zero unit is, and possibly above it, so it is 0 only when no unit is zero.
inline bool asciiSinNulo16(uint64_t w)
{
    constexpr uint64_t Unos16 = 0x0001000100010001ULL;
    return ((w & 0xFF80FF80FF80FF80ULL) | ((w - Unos16) & ~w & 0x8000800080008000ULL)) == 0;
}


} // namespace

QString ConvertirJuego(const QString &texto, const QString &sentido)
{
    QString r = texto;
    r.replace(QChar(u'\0'), QChar(u' '));
    if (SinConvertirJuego)
        return r;
    const QString s = sentido.toLower();
    const TablaDos &t = tabla();
    if (s == u"win") {
        for (QChar &c : r) {
            if (c.unicode() < 256)
                c = QChar(t.aTexto[c.unicode()]);
        }
    } else if (s == u"dos") {
        for (QChar &c : r)
            c = QChar(char16_t(static_cast<unsigned char>(t.aDos[c.unicode()])));
    }
    return r;
}

QString TextoDeDos(const QByteArray &bytes)
{
    if (SinConvertirJuego)
        return QString::fromLatin1(bytes).replace(QChar(u'\0'), QChar(u' '));
    const TablaDos &t = tabla();
    QString r(bytes.size(), Qt::Uninitialized);
    char16_t *d = reinterpret_cast<char16_t *>(r.data());
    const char *p = bytes.constData();
    const char *const fin = p + bytes.size();
    while (fin - p >= 16) {
        // Sixteen bytes widened as they are, then the few that are not ASCII through the table.
        for (int i = 0; i < 16; ++i)
            d[i] = char16_t(static_cast<unsigned char>(p[i]));
        for (unsigned m = especiales16(p); m; m &= m - 1) {
            const int i = std::countr_zero(m);
            d[i] = t.aTexto[static_cast<unsigned char>(p[i])];
        }
        p += 16;
        d += 16;
    }
    while (p < fin)
        *d++ = t.aTexto[static_cast<unsigned char>(*p++)];
    return r;
}

QByteArray BytesDeDos(const QString &texto)
{
    if (SinConvertirJuego)
        return ConvertirJuego(texto, QString()).toLatin1();
    const TablaDos &t = tabla();
    QByteArray r(texto.size(), Qt::Uninitialized);
    char *d = r.data();
    const auto *p = reinterpret_cast<const char16_t *>(texto.utf16());
    const char16_t *const fin = p + texto.size();
    while (fin - p >= 8) {
        if (asciiSinNulo16(palabras::Palabra(p)) && asciiSinNulo16(palabras::Palabra(p + 4))) {
            for (int i = 0; i < 8; ++i)
                d[i] = char(p[i]);
        } else {
            for (int i = 0; i < 8; ++i)
                d[i] = t.aDos[p[i]];
        }
        p += 8;
        d += 8;
    }
    while (p < fin)
        *d++ = t.aDos[*p++];
    return r;
}

char *Utf8DeDos(std::string_view dos, char *d)
{
    if (SinConvertirJuego) {
        for (const char b : dos) {
            const unsigned char c = static_cast<unsigned char>(b);
            if (c == 0) {
                *d++ = ' ';
            } else if (c < 0x80) {
                *d++ = char(c);
            } else {
                *d++ = char(0xC0 | (c >> 6));
                *d++ = char(0x80 | (c & 0x3F));
            }
        }
        return d;
    }
    const TablaDos &t = tabla();
    const char *p = dos.data();
    const char *const fin = p + dos.size();
    const auto porTabla = [&t](char b, char *d) {
        const auto &u = t.aUtf8[static_cast<unsigned char>(b)];
        d[0] = u.b[0];
        d[1] = u.b[1];
        d[2] = u.b[2];
        return d + u.n;
    };
    // Sixteen bytes are copied at once (the output has room for three bytes each); the copy
    // counts up to the first byte that is not ASCII, which goes through the table.
    while (fin - p >= 16) {
        const unsigned m = especiales16(p);
        std::memcpy(d, p, 16);
        if (m == 0) {
            p += 16;
            d += 16;
        } else if ((m & (m - 1)) == 0) {
            // One byte to translate: the copy stands up to it, the table gives it.
            const int n = std::countr_zero(m);
            p += n;
            d = porTabla(*p++, d + n);
        } else {
            // Several: the whole block byte by byte is cheaper than restarting at each.
            for (int i = 0; i < 16; ++i)
                d = porTabla(p[i], d);
            p += 16;
        }
    }
    while (p < fin)
        d = porTabla(*p++, d);
    return d;
}

void Utf8DeDos(std::string_view dos, std::string &destino)
{
    const std::size_t inicio = destino.size();
    destino.resize(inicio + dos.size() * 3);
    char *fin = Utf8DeDos(dos, destino.data() + inicio);
    destino.resize(std::size_t(fin - destino.data()));
}

char *DosDeUtf8(std::string_view utf8, char *d)
{
    const TablaDos &t = tabla();
    const auto *p = reinterpret_cast<const unsigned char *>(utf8.data());
    const auto *fin = p + utf8.size();
    const auto continuacion = [&](int i) { return p + i < fin && (p[i] & 0xC0) == 0x80; };
    while (p < fin) {
        // Sixteen bytes copied at once (the output has room for one byte each), counted up to
        // the first that is not ASCII.
        if (fin - p >= 16) {
            const unsigned m = especiales16(reinterpret_cast<const char *>(p));
            std::memcpy(d, p, 16);
            const int n = m ? std::countr_zero(m) : 16;
            p += n;
            d += n;
            if (n == 16)
                continue;
        }
        const unsigned char c = *p;
        if (c < 0x80) {
            *d++ = c == 0 ? ' ' : char(c);
            ++p;
            continue;
        }
        char32_t cp;
        int largo;
        if (c >= 0xC2 && c < 0xE0 && continuacion(1)) {
            cp = char32_t(c & 0x1F) << 6 | (p[1] & 0x3F);
            largo = 2;
        } else if (c >= 0xE0 && c < 0xF0 && continuacion(1) && continuacion(2)) {
            cp = char32_t(c & 0x0F) << 12 | char32_t(p[1] & 0x3F) << 6 | (p[2] & 0x3F);
            largo = cp >= 0x800 ? 3 : 0;
        } else if (c >= 0xF0 && c < 0xF5 && continuacion(1) && continuacion(2) && continuacion(3)) {
            cp = 0x10000; // outside the plane CP850 draws from
            largo = 4;
        } else {
            cp = 0xFFFD;
            largo = 0;
        }
        if (largo == 0) { // not valid UTF-8: one byte is dropped and stands as "?"
            *d++ = '?';
            ++p;
            continue;
        }
        p += largo;
        if (SinConvertirJuego)
            *d++ = cp < 0x100 ? char(cp) : '?';
        else
            *d++ = cp < 0x10000 ? t.aDos[cp] : '?';
    }
    return d;
}

void DosDeUtf8(std::string_view utf8, QByteArray &destino)
{
    const qsizetype inicio = destino.size();
    destino.resize(inicio + qsizetype(utf8.size()));
    char *fin = DosDeUtf8(utf8, destino.data() + inicio);
    destino.resize(qsizetype(fin - destino.data()));
}

bool Existe(const QString &ruta, bool carpeta)
{
    if (ruta.isEmpty())
        return false;
    const QFileInfo fi(ruta);
    if (!fi.exists())
        return false;
    return !carpeta || fi.isDir();
}

QString FormatoImporte(const QString &valor, const QString &formato, bool conCeros)
{
    const double n = Val(valor);
    if (!conCeros && n == 0.0)
        return QString();
    return Formato(n, formato.isEmpty() ? QStringLiteral("#,##0.00") : formato);
}

QString FormatoFijo(double valor, int ancho, const QString &formato)
{
    if (ancho < -32768 || ancho > 32767)
        throw ErrorEjecucion(ErrorEjecucion::Desbordamiento);
    QString r = Formato(valor, formato.isEmpty() ? QStringLiteral("0.00") : formato);
    if (ancho >= 1) {
        if (r.size() < ancho)
            r.prepend(QString(ancho - r.size(), u' '));
        r = r.right(ancho);
    }
    const qsizetype coma = r.indexOf(u',');
    if (coma >= 0)
        r[coma] = u'.';
    return r;
}

QStringList LeerLineas(const QString &ruta)
{
    // A folder, a FIFO or a device is refused before it is opened: a FIFO would block.
    return LineasDeTexto(LeerFicheroOVacio(ruta));
}

QStringList LineasDeTexto(const QByteArray &bytes)
{

    QString texto;
    {
        // The decoder keeps a leading mark so that exactly one is taken as the file's own below.
        QStringDecoder utf8(QStringDecoder::Utf8,
                            QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
        texto = utf8.decode(bytes);
        if (utf8.hasError()) {
            QStringDecoder ansi("windows-1252");
            texto = ansi.isValid() ? QString(ansi.decode(bytes)) : QString::fromLatin1(bytes);
        }
    }
    if (texto.startsWith(QChar(0xFEFF)))
        texto.remove(0, 1);

    QStringList lineas;
    qsizetype inicio = 0;
    const qsizetype n = texto.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = texto[i];
        if (c == u'\r' || c == u'\n') {
            lineas.append(texto.mid(inicio, i - inicio));
            if (c == u'\r' && i + 1 < n && texto[i + 1] == u'\n')
                ++i;
            inicio = i + 1;
        }
    }
    if (inicio < n)
        lineas.append(texto.mid(inicio));
    return lineas;
}

QStringList EntradasDeLista(const QString &lista)
{
    if (lista.startsWith(u'@'))
        return LeerLineas(lista.mid(1));
    QString separador;
    if (lista.contains(u"<<"))
        separador = QStringLiteral("<<");
    if (lista.contains(u';'))
        separador = QStringLiteral(";");
    QStringList entradas;
    QString resto = lista;
    do {
        qsizetype p = separador.isEmpty() ? -1 : resto.indexOf(separador);
        if (p < 0) {
            entradas.append(resto);
            resto.clear();
        } else {
            entradas.append(resto.left(p));
            resto.remove(0, p + separador.size());
        }
    } while (!resto.isEmpty());
    return entradas;
}

int IndiceEnLista(const QStringList &nombres, const QString &actual)
{
    const qsizetype i = nombres.indexOf(actual);
    return i < 0 ? 0 : int(i);
}

} // namespace kvr
