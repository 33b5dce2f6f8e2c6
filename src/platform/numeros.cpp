#include <kvr/numeros.h>
#include <kvr/error.h>

#include <charconv>
#include <cmath>
#include <string>

namespace kvr {

namespace {

bool esBlanco(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

double leerAscii(const std::string &s)
{
    if (s.empty())
        return 0.0;
    double v = 0.0;
    const char *first = s.data();
    if (*first == '+')
        ++first;
    auto [ptr, ec] = std::from_chars(first, s.data() + s.size(), v);
    if (ec == std::errc::result_out_of_range) {
        // Underflow reads as zero; overflow is the runtime's overflow error.
        bool subdesbordamiento = false;
        if (const auto e = s.find_first_of("eE"); e != std::string::npos)
            subdesbordamiento = s.find('-', e) != std::string::npos;
        if (subdesbordamiento)
            return 0.0;
        throw ErrorEjecucion(ErrorEjecucion::Desbordamiento);
    }
    if (ec != std::errc())
        return 0.0;
    return v;
}

// Collects the longest number at the start of the text (blanks skipped) into plain ASCII.
std::string prefijoNumerico(const QString &texto)
{
    std::string out;
    bool digitos = false, punto = false;
    int i = 0;
    const int n = int(texto.size());
    auto saltar = [&] { while (i < n && esBlanco(texto[i])) ++i; };
    saltar();
    if (i < n && (texto[i] == u'-' || texto[i] == u'+')) {
        out += char(texto[i].unicode());
        ++i;
    }
    for (;; ++i) {
        saltar();
        if (i >= n)
            break;
        const QChar c = texto[i];
        if (c >= u'0' && c <= u'9') {
            out += char(c.unicode());
            digitos = true;
        } else if (c == u'.' && !punto) {
            out += '.';
            punto = true;
        } else {
            break;
        }
    }
    if (!digitos)
        return {};
    // Optional exponent: E or D, optional sign, at least one digit.
    if (i < n && (texto[i] == u'e' || texto[i] == u'E' || texto[i] == u'd' || texto[i] == u'D')) {
        std::string exp = "e";
        int j = i + 1;
        auto saltarJ = [&] { while (j < n && esBlanco(texto[j])) ++j; };
        saltarJ();
        if (j < n && (texto[j] == u'-' || texto[j] == u'+'))
            exp += char(texto[j++].unicode());
        bool alguno = false;
        for (;; ++j) {
            saltarJ();
            if (j >= n || texto[j] < u'0' || texto[j] > u'9')
                break;
            exp += char(texto[j].unicode());
            alguno = true;
        }
        if (alguno)
            out += exp;
    }
    return out;
}

} // namespace

double Val(const QString &texto)
{
    return leerAscii(prefijoNumerico(texto));
}

double ValorRegional(const QString &texto, bool *ok, const QLocale &locale)
{
    if (ok)
        *ok = false;
    const QString t = texto.trimmed();
    if (t.isEmpty())
        return 0.0;
    const QString dec = locale.decimalPoint();
    const QString grp = locale.groupSeparator();
    const QChar cdec = dec.isEmpty() ? QChar(u'.') : dec.at(0);
    const QChar cgrp = grp.isEmpty() ? QChar(u',') : grp.at(0);

    int i = 0;
    const int n = int(t.size());
    std::string out;
    if (t[i] == u'-' || t[i] == u'+') {
        out += char(t[i].unicode());
        ++i;
        while (i < n && esBlanco(t[i]))
            ++i;
    }
    // Integer part, with group separators remembered by their position among the digits.
    std::string entera;
    QList<int> grupos;
    for (; i < n; ++i) {
        const QChar c = t[i];
        if (c >= u'0' && c <= u'9')
            entera += char(c.unicode());
        else if (c == cgrp && c != cdec)
            grupos.append(int(entera.size()));
        else
            break;
    }
    bool hayDecimal = false;
    std::string fraccion;
    if (i < n && t[i] == cdec) {
        hayDecimal = true;
        for (++i; i < n && t[i] >= u'0' && t[i] <= u'9'; ++i)
            fraccion += char(t[i].unicode());
    }
    std::string exponente;
    if (i < n && (t[i] == u'e' || t[i] == u'E') && !(entera.empty() && fraccion.empty()) ) {
        int j = i + 1;
        std::string e = "e";
        if (j < n && (t[j] == u'-' || t[j] == u'+'))
            e += char(t[j++].unicode());
        bool alguno = false;
        for (; j < n && t[j] >= u'0' && t[j] <= u'9'; ++j) {
            e += char(t[j].unicode());
            alguno = true;
        }
        if (alguno) {
            exponente = e;
            i = j;
        }
    }
    if (i != n || (entera.empty() && fraccion.empty()))
        return 0.0;

    // Well-placed group separators (three digits between them and after the last) are
    // thousands marks. A single misplaced "." or "," in a text with no decimal character is the
    // other convention's decimal point (1234.50 typed under a comma-decimal setting).
    bool bienAgrupado = true;
    for (int k = 0; k < grupos.size(); ++k) {
        const int fin = k + 1 < grupos.size() ? grupos[k + 1] : int(entera.size());
        if (grupos[k] == 0 || fin - grupos[k] != 3)
            bienAgrupado = false;
    }
    if (!bienAgrupado && !hayDecimal && grupos.size() == 1 && (cgrp == u'.' || cgrp == u',')) {
        fraccion = entera.substr(size_t(grupos[0]));
        entera = entera.substr(0, size_t(grupos[0]));
        hayDecimal = true;
    }
    out += entera.empty() ? std::string("0") : entera;
    if (!fraccion.empty())
        out += "." + fraccion;
    out += exponente;
    const double v = leerAscii(out);
    if (ok)
        *ok = true;
    return v;
}

bool EsNumeroRegional(const QString &texto, const QLocale &locale)
{
    bool ok = false;
    try {
        ValorRegional(texto, &ok, locale);
    } catch (const ErrorEjecucion &) {
        return true; // a number, only too large to hold
    }
    return ok;
}

namespace {

struct Seccion {
    QString prefijo, sufijo;
    int enterosMinimos = 0;  // "0" placeholders before the point
    int decimalesFijos = 0;  // "0" after the point
    int decimalesOpcionales = 0; // "#" after the point
    bool agrupar = false;
    bool punto = false;
    bool porcentaje = false;
    bool tieneNumero = false;
};

Seccion analizar(const QString &patron)
{
    Seccion s;
    int ini = -1, fin = -1;
    for (int i = 0; i < patron.size(); ++i) {
        const QChar c = patron[i];
        if (c == u'#' || c == u'0' || ((c == u',' || c == u'.') && ini >= 0)) {
            if (ini < 0)
                ini = i;
            fin = i;
        } else if (c == u'.' && ini < 0) {
            // a leading point: "#.00" style without integer placeholders (".00")
            ini = fin = i;
        }
    }
    if (ini < 0) {
        s.prefijo = patron;
        s.porcentaje = patron.contains(u'%');
        return s;
    }
    s.tieneNumero = true;
    s.prefijo = patron.left(ini);
    s.sufijo = patron.mid(fin + 1);
    s.porcentaje = patron.contains(u'%');
    bool despuesPunto = false;
    for (int i = ini; i <= fin; ++i) {
        const QChar c = patron[i];
        if (c == u'.') {
            if (!despuesPunto) {
                despuesPunto = true;
                s.punto = true;
            }
        } else if (c == u',') {
            if (!despuesPunto)
                s.agrupar = true;
        } else if (c == u'0') {
            if (despuesPunto)
                ++s.decimalesFijos;
            else
                ++s.enterosMinimos;
        } else if (c == u'#') {
            if (despuesPunto)
                ++s.decimalesOpcionales;
        }
    }
    return s;
}

// Digits of |valor| rounded half away from zero to `decimales` places, working on the
// 15-significant-digit decimal form. Returns the integer digits and the fraction digits.
void redondear(double valor, int decimales, std::string &entera, std::string &fraccion)
{
    char buf[64];
    auto r = std::to_chars(buf, buf + sizeof buf, std::fabs(valor), std::chars_format::scientific, 14);
    std::string sci(buf, r.ptr);
    const auto epos = sci.find('e');
    const int exp10 = std::stoi(sci.substr(epos + 1));
    std::string digitos;
    for (size_t k = 0; k < epos; ++k)
        if (sci[k] != '.')
            digitos += sci[k];
    // Value = 0.d1d2d3... x 10^(exp10+1)
    int puntoEn = exp10 + 1; // digits before the decimal point
    if (std::fabs(valor) == 0.0) {
        digitos = "0";
        puntoEn = 1;
    }
    // Align so that the decimal point sits at index `puntoEn` in `digitos`.
    if (puntoEn <= 0) {
        digitos.insert(0, size_t(1) + size_t(-static_cast<long long>(puntoEn)), '0');
        puntoEn = 1;
    }
    if (int(digitos.size()) < puntoEn)
        digitos.append(size_t(puntoEn - int(digitos.size())), '0');
    const int necesarios = puntoEn + decimales;
    if (int(digitos.size()) > necesarios) {
        const bool subir = digitos[size_t(necesarios)] >= '5';
        digitos.resize(size_t(necesarios));
        if (subir) {
            int k = necesarios - 1;
            while (k >= 0 && digitos[size_t(k)] == '9') {
                digitos[size_t(k)] = '0';
                --k;
            }
            if (k >= 0) {
                ++digitos[size_t(k)];
            } else {
                digitos.insert(digitos.begin(), '1');
                ++puntoEn;
            }
        }
    } else {
        digitos.append(size_t(necesarios - int(digitos.size())), '0');
    }
    entera = digitos.substr(0, size_t(puntoEn));
    fraccion = digitos.substr(size_t(puntoEn));
    const auto nz = entera.find_first_not_of('0');
    entera = nz == std::string::npos ? std::string() : entera.substr(nz);
}

} // namespace

QString Formato(double valor, const QString &patron, const QLocale &locale)
{
    if (std::isnan(valor) || std::isinf(valor))
        return QString();
    // Sections: positive;negative;zero, as the desktop runtime reads them.
    const QStringList secciones = patron.split(u';');
    QString texto = secciones.value(0);
    bool signoPropio = false;
    if (valor < 0 && secciones.size() > 1 && !secciones[1].isEmpty()) {
        texto = secciones[1];
        signoPropio = true;
    }
    const Seccion s = analizar(texto);
    if (s.porcentaje)
        valor *= 100.0;
    if (!s.tieneNumero)
        return s.prefijo;
    const int decimales = s.decimalesFijos + s.decimalesOpcionales;
    std::string entera, fraccion;
    redondear(valor, decimales, entera, fraccion);
    // Optional decimals drop their trailing zeros.
    while (int(fraccion.size()) > s.decimalesFijos && !fraccion.empty() && fraccion.back() == '0')
        fraccion.pop_back();
    const bool cero = entera.empty() && fraccion.find_first_not_of('0') == std::string::npos;
    if (cero && secciones.size() > 2 && !secciones[2].isEmpty())
        return Formato(0.0, secciones[2], locale);
    if (int(entera.size()) < s.enterosMinimos)
        entera.insert(0, size_t(s.enterosMinimos - int(entera.size())), '0');

    QString grupo = locale.groupSeparator();
    QString decimal = locale.decimalPoint();
    QString parteEntera;
    const int n = int(entera.size());
    for (int k = 0; k < n; ++k) {
        if (s.agrupar && k > 0 && (n - k) % 3 == 0)
            parteEntera += grupo;
        parteEntera += QLatin1Char(entera[size_t(k)]);
    }
    QString r = s.prefijo;
    if (valor < 0 && !cero && !signoPropio)
        r.prepend(u'-');
    r += parteEntera;
    if (s.punto)
        r += decimal;
    r += QString::fromLatin1(fraccion.data(), qsizetype(fraccion.size()));
    r += s.sufijo;
    return r;
}

QString TextoNumero(double valor)
{
    if (valor == 0.0)
        return QStringLiteral("0");
    char buf[64];
    auto r = std::to_chars(buf, buf + sizeof buf, valor);
    QString s = QString::fromLatin1(buf, r.ptr - buf);
    s.replace(u'e', u'E');
    return s;
}

int EnteroCorto(double valor)
{
    if (std::isnan(valor))
        throw ErrorEjecucion(ErrorEjecucion::Desbordamiento);
    const double r = std::nearbyint(valor);
    if (r < -32768.0 || r > 32767.0)
        throw ErrorEjecucion(ErrorEjecucion::Desbordamiento);
    return int(r);
}

} // namespace kvr
