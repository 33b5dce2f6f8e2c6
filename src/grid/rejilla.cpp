#include <kvr/rejilla.h>

#include <kvr/error.h>

#include <QStringDecoder>
#include <QStringList>

#include <algorithm>
#include <cstring>

namespace kvr {

namespace {

constexpr uint64_t MaxLargo = (uint64_t(1) << 24) - 1;

inline uint64_t largoDe(uint64_t ref) { return ref & MaxLargo; }
inline uint64_t inicioDe(uint64_t ref) { return ref >> 24; }

// UTF-16 to UTF-8, in place of what `out` held. A lone surrogate becomes U+FFFD.
void aUtf8(QStringView texto, std::string &out)
{
    out.clear();
    const char16_t *p = texto.utf16();
    const char16_t *fin = p + texto.size();
    while (p < fin) {
        char32_t c = *p++;
        if (c < 0x80) {
            out.push_back(char(c));
            continue;
        }
        if (c >= 0xD800 && c <= 0xDFFF) {
            if (c <= 0xDBFF && p < fin && *p >= 0xDC00 && *p <= 0xDFFF)
                c = 0x10000 + ((c - 0xD800) << 10) + (char32_t(*p++) - 0xDC00);
            else
                c = 0xFFFD;
        }
        if (c < 0x800) {
            out.push_back(char(0xC0 | (c >> 6)));
            out.push_back(char(0x80 | (c & 0x3F)));
        } else if (c < 0x10000) {
            out.push_back(char(0xE0 | (c >> 12)));
            out.push_back(char(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(char(0x80 | (c & 0x3F)));
        } else {
            out.push_back(char(0xF0 | (c >> 18)));
            out.push_back(char(0x80 | ((c >> 12) & 0x3F)));
            out.push_back(char(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(char(0x80 | (c & 0x3F)));
        }
    }
}

[[noreturn]] void errorFila()
{
    throw ErrorEjecucion(ErrorFilaNoValida, QStringLiteral("Valor de fila no válido"));
}

[[noreturn]] void errorCol()
{
    throw ErrorEjecucion(ErrorColumnaNoValida, QStringLiteral("Valor de columna no válido"));
}

} // namespace

OyenteRejilla::~OyenteRejilla() = default;

Rejilla::Rejilla()
{
    PonerCols(2);
    PonerRows(2);
}

Rejilla::~Rejilla() = default;

void Rejilla::AgregarOyente(OyenteRejilla *oyente)
{
    if (oyente && std::find(m_oyentes.begin(), m_oyentes.end(), oyente) == m_oyentes.end())
        m_oyentes.push_back(oyente);
}

void Rejilla::QuitarOyente(OyenteRejilla *oyente)
{
    m_oyentes.erase(std::remove(m_oyentes.begin(), m_oyentes.end(), oyente), m_oyentes.end());
}

bool Rejilla::avisar()
{
    if (m_redraw)
        return true;
    m_pendiente = true;
    return false;
}

void Rejilla::comprobarFila(int fila) const
{
    if (fila < 0 || fila >= Rows())
        errorFila();
}

void Rejilla::comprobarCol(int col) const
{
    if (col < 0 || col >= Cols())
        errorCol();
}

uint32_t Rejilla::nuevaRanura()
{
    if (!m_libres.empty()) {
        const uint32_t r = m_libres.back();
        m_libres.pop_back();
        return r;
    }
    for (Columna &c : m_columnas)
        c.refs.push_back(0);
    if (!m_altos.empty())
        m_altos.push_back(-1);
    return m_ranuras++;
}

void Rejilla::liberarRanura(uint32_t r)
{
    for (std::size_t c = 0; c < m_columnas.size(); ++c) {
        Columna &col = m_columnas[c];
        col.basura += largoDe(col.refs[r]);
        col.refs[r] = 0;
        if (!m_negritas.empty())
            m_negritas.erase(uint64_t(r) << 32 | c);
    }
    if (!m_altos.empty())
        ponerAltoRanura(r, -1);
    m_libres.push_back(r);
}

void Rejilla::compactar(Columna &c)
{
    std::vector<char> nuevos;
    nuevos.reserve(c.bytes.size() - c.basura);
    for (uint64_t &ref : c.refs) {
        const uint64_t largo = largoDe(ref);
        if (largo == 0) {
            ref = 0;
            continue;
        }
        const uint64_t inicio = nuevos.size();
        nuevos.insert(nuevos.end(), c.bytes.begin() + std::ptrdiff_t(inicioDe(ref)),
                      c.bytes.begin() + std::ptrdiff_t(inicioDe(ref) + largo));
        ref = inicio << 24 | largo;
    }
    c.bytes.swap(nuevos);
    c.basura = 0;
}

void Rejilla::escribir(Columna &c, uint32_t r, const char *datos, std::size_t largo)
{
    if (largo > MaxLargo)
        throw ErrorEjecucion(ErrorEjecucion::Desbordamiento,
                             QStringLiteral("Texto demasiado largo para una celda"));
    uint64_t &ref = c.refs[r];
    const uint64_t viejo = largoDe(ref);
    if (largo <= viejo) {
        // Same room or less: overwrite in place (a canonical rewrite makes no garbage).
        if (largo)
            std::memcpy(c.bytes.data() + inicioDe(ref), datos, largo);
        c.basura += viejo - largo;
        ref = largo ? (inicioDe(ref) << 24 | largo) : 0;
    } else {
        c.basura += viejo;
        const uint64_t inicio = c.bytes.size();
        c.bytes.insert(c.bytes.end(), datos, datos + largo);
        ref = inicio << 24 | largo;
    }
    if (c.basura > (std::size_t(1) << 16) && c.basura > c.bytes.size() / 2)
        compactar(c);
}

void Rejilla::escribirTexto(Columna &c, uint32_t r, QStringView texto)
{
    thread_local std::string utf8;
    aUtf8(texto, utf8);
    escribir(c, r, utf8.data(), utf8.size());
}

void Rejilla::ajustarActual()
{
    const int ultimaFila = std::max(0, Rows() - 1);
    const int ultimaCol = std::max(0, Cols() - 1);
    m_fila = std::min(m_fila, ultimaFila);
    m_filaSel = std::min(m_filaSel, ultimaFila);
    m_col = std::min(m_col, ultimaCol);
    m_colSel = std::min(m_colSel, ultimaCol);
}

void Rejilla::PonerRows(int filas)
{
    if (filas < m_filasFijas)
        errorFila();
    const int antes = Rows();
    if (filas == antes)
        return;
    const bool a = avisar();
    if (filas > antes) {
        if (a)
            paraOyentes([&](OyenteRejilla *o) { o->antesDeInsertarFilas(antes, filas - 1); });
        m_orden.reserve(std::size_t(filas));
        for (int i = antes; i < filas; ++i)
            m_orden.push_back(nuevaRanura());
        if (a)
            paraOyentes([](OyenteRejilla *o) { o->filasInsertadas(); });
    } else {
        if (a)
            paraOyentes([&](OyenteRejilla *o) { o->antesDeQuitarFilas(filas, antes - 1); });
        for (int i = filas; i < antes; ++i)
            liberarRanura(m_orden[std::size_t(i)]);
        m_orden.resize(std::size_t(filas));
        ajustarActual();
        if (a)
            paraOyentes([](OyenteRejilla *o) { o->filasQuitadas(); });
    }
}

void Rejilla::PonerCols(int columnas)
{
    if (columnas < m_colsFijas)
        errorCol();
    const int antes = Cols();
    if (columnas == antes)
        return;
    const bool a = avisar();
    if (columnas > antes) {
        if (a)
            paraOyentes([&](OyenteRejilla *o) { o->antesDeInsertarColumnas(antes, columnas - 1); });
        m_columnas.resize(std::size_t(columnas));
        for (int c = antes; c < columnas; ++c)
            m_columnas[std::size_t(c)].refs.assign(m_ranuras, 0);
        if (a)
            paraOyentes([](OyenteRejilla *o) { o->columnasInsertadas(); });
    } else {
        if (a)
            paraOyentes([&](OyenteRejilla *o) { o->antesDeQuitarColumnas(columnas, antes - 1); });
        m_columnas.resize(std::size_t(columnas));
        if (!m_negritas.empty())
            std::erase_if(m_negritas, [&](uint64_t k) { return int(k & 0xFFFFFFFF) >= columnas; });
        ajustarActual();
        if (a)
            paraOyentes([](OyenteRejilla *o) { o->columnasQuitadas(); });
    }
}

void Rejilla::PonerFixedRows(int filas)
{
    if (filas < 0 || filas > Rows())
        errorFila();
    if (filas == m_filasFijas)
        return;
    const bool a = avisar();
    if (a)
        paraOyentes([](OyenteRejilla *o) { o->antesDeReiniciar(); });
    m_filasFijas = filas;
    if (a)
        paraOyentes([](OyenteRejilla *o) { o->reiniciada(); });
}

void Rejilla::PonerFixedCols(int columnas)
{
    if (columnas < 0 || columnas > Cols())
        errorCol();
    if (columnas == m_colsFijas)
        return;
    const bool a = avisar();
    if (a)
        paraOyentes([](OyenteRejilla *o) { o->antesDeReiniciar(); });
    m_colsFijas = columnas;
    if (a)
        paraOyentes([](OyenteRejilla *o) { o->reiniciada(); });
}

void Rejilla::PonerRow(int fila)
{
    comprobarFila(fila);
    m_fila = m_filaSel = fila;
    if (avisar())
        paraOyentes([&](OyenteRejilla *o) { o->celdaActualCambiada(m_fila, m_col); });
}

void Rejilla::PonerCol(int col)
{
    comprobarCol(col);
    m_col = m_colSel = col;
    if (avisar())
        paraOyentes([&](OyenteRejilla *o) { o->celdaActualCambiada(m_fila, m_col); });
}

void Rejilla::PonerRowSel(int fila)
{
    comprobarFila(fila);
    m_filaSel = fila;
}

void Rejilla::PonerColSel(int col)
{
    comprobarCol(col);
    m_colSel = col;
}

QString Rejilla::TextMatrix(int fila, int col) const
{
    const std::string_view bytes = CeldaUtf8(fila, col);
    if (bytes.empty())
        return {};
    // QString::fromUtf8 drops a leading byte-order mark; in a cell it is the user's character.
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
        return utf8.decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
    }
    return QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
}

void Rejilla::PonerTextMatrix(int fila, int col, const QString &texto)
{
    comprobarFila(fila);
    comprobarCol(col);
    escribirTexto(m_columnas[std::size_t(col)], ranura(fila), texto);
    if (avisar())
        paraOyentes([&](OyenteRejilla *o) { o->celdasCambiadas(fila, col, fila, col); });
}

int Rejilla::ColWidth(int col) const
{
    comprobarCol(col);
    return m_columnas[std::size_t(col)].ancho;
}

void Rejilla::PonerColWidth(int col, int twips)
{
    comprobarCol(col);
    m_columnas[std::size_t(col)].ancho = std::max(-1, twips);
    if (avisar())
        paraOyentes([&](OyenteRejilla *o) { o->columnaCambiada(col); });
}

int Rejilla::ColAlignment(int col) const
{
    comprobarCol(col);
    return m_columnas[std::size_t(col)].alineacion;
}

void Rejilla::PonerColAlignment(int col, int alineacion)
{
    comprobarCol(col);
    if (alineacion < 0 || alineacion > AlinGeneral)
        throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido);
    m_columnas[std::size_t(col)].alineacion = alineacion;
    if (avisar())
        paraOyentes([&](OyenteRejilla *o) { o->columnaCambiada(col); });
}

int Rejilla::FixedAlignment(int col) const
{
    comprobarCol(col);
    return m_columnas[std::size_t(col)].alineacionFija;
}

void Rejilla::PonerFixedAlignment(int col, int alineacion)
{
    comprobarCol(col);
    if (alineacion < 0 || alineacion > AlinGeneral)
        throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido);
    m_columnas[std::size_t(col)].alineacionFija = alineacion;
    if (avisar())
        paraOyentes([&](OyenteRejilla *o) { o->columnaCambiada(col); });
}

int Rejilla::RowHeight(int fila) const
{
    comprobarFila(fila);
    if (m_altos.empty())
        return AltoFilaPorOmision;
    const int32_t alto = m_altos[ranura(fila)];
    return alto < 0 ? AltoFilaPorOmision : alto;
}

void Rejilla::ponerAltoRanura(uint32_t r, int32_t twips)
{
    if (m_altos.empty()) {
        if (twips < 0)
            return;
        m_altos.assign(m_ranuras, -1);
    }
    int32_t &alto = m_altos[r];
    m_altosEspeciales += std::size_t(twips >= 0) - std::size_t(alto >= 0);
    m_ocultas += std::size_t(twips == 0) - std::size_t(alto == 0);
    alto = twips;
}

void Rejilla::PonerRowHeight(int fila, int twips)
{
    comprobarFila(fila);
    if (twips < -1)
        throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido);
    ponerAltoRanura(ranura(fila), twips);
    if (avisar())
        paraOyentes([&](OyenteRejilla *o) { o->filaCambiada(fila); });
}

std::vector<std::pair<int, int>> Rejilla::AltosEspeciales() const
{
    std::vector<std::pair<int, int>> altos;
    if (m_altosEspeciales == 0)
        return altos;
    for (int f = 0; f < Rows(); ++f) {
        const int32_t alto = m_altos[ranura(f)];
        if (alto >= 0)
            altos.emplace_back(f, alto);
    }
    return altos;
}

bool Rejilla::FilasMostradas(int desde, std::vector<int> &filas) const
{
    filas.clear();
    if (m_ocultas == 0)
        return false;
    filas.reserve(std::size_t(std::max(0, Rows() - desde)));
    for (int f = std::max(desde, 0); f < Rows(); ++f)
        if (m_altos[ranura(f)] != 0)
            filas.push_back(f);
    return true;
}

void Rejilla::PonerFilasVisibles(int primera, const std::vector<unsigned char> &visibles)
{
    if (visibles.empty())
        return;
    comprobarFila(primera);
    comprobarFila(primera + int(visibles.size()) - 1);
    if (m_altos.empty()) {
        if (std::find(visibles.begin(), visibles.end(), 0) == visibles.end())
            return; // nothing hidden, nothing to hide
        m_altos.assign(m_ranuras, -1);
    }
    bool cambio = false;
    for (std::size_t i = 0; i < visibles.size(); ++i) {
        const uint32_t r = ranura(primera + int(i));
        if ((m_altos[r] == 0) == !visibles[i])
            continue;
        ponerAltoRanura(r, visibles[i] ? -1 : 0);
        cambio = true;
    }
    if (cambio && avisar()) {
        paraOyentes([](OyenteRejilla *o) { o->antesDeReiniciar(); });
        paraOyentes([](OyenteRejilla *o) { o->reiniciada(); });
    }
}

std::vector<int> Rejilla::FilasOcultas() const
{
    std::vector<int> ocultas;
    if (m_ocultas == 0)
        return ocultas;
    ocultas.reserve(m_ocultas);
    for (int f = 0; f < Rows(); ++f)
        if (m_altos[ranura(f)] == 0)
            ocultas.push_back(f);
    return ocultas;
}

bool Rejilla::NegritaCelda(int fila, int col) const
{
    comprobarFila(fila);
    comprobarCol(col);
    return m_negritas.count(uint64_t(ranura(fila)) << 32 | uint32_t(col)) != 0;
}

void Rejilla::PonerNegritaCelda(int fila, int col, bool negrita)
{
    comprobarFila(fila);
    comprobarCol(col);
    const uint64_t clave = uint64_t(ranura(fila)) << 32 | uint32_t(col);
    if (negrita)
        m_negritas.insert(clave);
    else
        m_negritas.erase(clave);
    if (avisar())
        paraOyentes([&](OyenteRejilla *o) { o->celdasCambiadas(fila, col, fila, col); });
}

void Rejilla::PonerRedraw(bool redraw)
{
    if (redraw == m_redraw)
        return;
    m_redraw = redraw;
    if (redraw && m_pendiente) {
        m_pendiente = false;
        paraOyentes([](OyenteRejilla *o) { o->antesDeReiniciar(); });
        paraOyentes([](OyenteRejilla *o) { o->reiniciada(); });
    }
    paraOyentes([&](OyenteRejilla *o) { o->redrawCambiado(redraw); });
}

void Rejilla::PonerVisible(bool visible)
{
    if (visible == m_visible)
        return;
    m_visible = visible;
    paraOyentes([&](OyenteRejilla *o) { o->visibleCambiado(visible); });
}

void Rejilla::Clear()
{
    for (Columna &c : m_columnas) {
        std::vector<char>().swap(c.bytes);
        std::fill(c.refs.begin(), c.refs.end(), 0);
        c.basura = 0;
    }
    m_negritas.clear();
    if (avisar() && Rows() > 0 && Cols() > 0)
        paraOyentes([&](OyenteRejilla *o) { o->celdasCambiadas(0, 0, Rows() - 1, Cols() - 1); });
}

std::string_view Rejilla::CeldaUtf8(int fila, int col) const
{
    comprobarFila(fila);
    comprobarCol(col);
    const Columna &c = m_columnas[std::size_t(col)];
    const uint64_t ref = c.refs[ranura(fila)];
    return std::string_view(c.bytes.data() + inicioDe(ref), largoDe(ref));
}

void Rejilla::Precargar(int fila, bool textos) const
{
    if (fila < 0 || fila >= Rows())
        return;
    const uint32_t r = ranura(fila);
    for (const Columna &c : m_columnas) {
        if (textos)
            __builtin_prefetch(c.bytes.data() + inicioDe(c.refs[r]));
        else
            __builtin_prefetch(c.refs.data() + r);
    }
}

qint64 Rejilla::BytesTexto() const
{
    qint64 total = 0;
    for (const Columna &c : m_columnas)
        total += qint64(c.bytes.size() - c.basura);
    return total;
}

qint64 Rejilla::BytesOcupados() const
{
    qint64 total = sizeof(*this);
    for (const Columna &c : m_columnas)
        total += qint64(sizeof(Columna) + c.bytes.capacity() + c.refs.capacity() * sizeof(uint64_t));
    total += qint64((m_orden.capacity() + m_libres.capacity()) * sizeof(uint32_t));
    total += qint64(m_altos.capacity() * sizeof(int32_t));
    // The bold cells' hash set: one node and one bucket pointer an entry, roughly.
    total += qint64(m_negritas.size() * 24 + m_negritas.bucket_count() * sizeof(void *));
    return total;
}

} // namespace kvr
