#include <kvr/ini.h>

#include <kvr/error.h>
#include <kvr/ficheros.h>

#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QStringDecoder>

#include <algorithm>


namespace kvr {

namespace {

// Windows-1252's characters for the bytes 0x80-0x9F (0 where the code page has none); the other
// bytes are Latin-1.
constexpr char16_t kAnsi80[32] = {
    0x20AC, 0, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039,
    0x0152, 0, 0x017D, 0, 0, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0, 0x017E, 0x0178};

QString desdeAnsi(QByteArrayView b)
{
    QString s(b.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < b.size(); ++i) {
        const auto c = uchar(b[i]);
        s[i] = QChar(c >= 0x80 && c < 0xA0 && kAnsi80[c - 0x80] ? kAnsi80[c - 0x80] : char16_t(c));
    }
    return s;
}

// A character Windows-1252 lacks becomes "?", as the desktop's ANSI calls write it.
QByteArray aAnsi(const QString &s)
{
    QByteArray b;
    b.reserve(s.size());
    for (QChar c : s) {
        const char16_t u = c.unicode();
        char byte = '?';
        if (u < 0x80 || (u >= 0xA0 && u <= 0xFF)) {
            byte = char(u);
        } else {
            for (int i = 0; i < 32; ++i)
                if (kAnsi80[i] == u)
                    byte = char(0x80 + i);
        }
        b += byte;
    }
    return b;
}

bool cabeEnAnsi(const QString &s)
{
    return desdeAnsi(aAnsi(s)) == s;
}

// One line of the file, by its bytes: [inicio, fin) without its line end, up to `siguiente` with it.
struct Linea {
    enum Tipo { Otra, Seccion, Clave };
    Tipo tipo = Otra;
    qsizetype inicio = 0, fin = 0, siguiente = 0;
    QString nombre;            // the section's or the key's name, trimmed
    qsizetype valor = 0;       // the key's value starts here (after "=" and its blanks)
};

struct Ini {
    QByteArray bytes;
    bool utf8 = false;         // the file's text is UTF-8 (valid, with non-ASCII bytes or a BOM)
    bool ascii = true;
    QByteArray finLinea = "\r\n";
    QList<Linea> lineas;

    QString texto(qsizetype desde, qsizetype hasta) const
    {
        const QByteArrayView b = QByteArrayView(bytes).sliced(desde, hasta - desde);
        if (!utf8)
            return desdeAnsi(b);
        // A mark at the start of a line is text (the file's own was skipped): kept, not dropped.
        QStringDecoder d(QStringDecoder::Utf8,
                         QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
        return d.decode(b);
    }
    QByteArray codificar(const QString &s) const
    {
        return utf8 ? s.toUtf8() : aAnsi(s);
    }

    // The first section of that name, as [cabecera, último): `último` is the last line that is
    // neither blank nor a comment (the header itself when it holds none), and `fin` the line
    // where the next section begins.
    bool seccion(const QString &nombre, qsizetype &cabecera, qsizetype &ultimo, qsizetype &fin) const
    {
        for (cabecera = 0; cabecera < lineas.size(); ++cabecera)
            if (lineas[cabecera].tipo == Linea::Seccion
                && lineas[cabecera].nombre.compare(nombre, Qt::CaseInsensitive) == 0)
                break;
        if (cabecera == lineas.size())
            return false;
        ultimo = cabecera;
        for (fin = cabecera + 1; fin < lineas.size() && lineas[fin].tipo != Linea::Seccion; ++fin) {
            const QString t = texto(lineas[fin].inicio, lineas[fin].fin).trimmed();
            if (!t.isEmpty() && !t.startsWith(u';'))
                ultimo = fin;
        }
        return true;
    }
    qsizetype clave(qsizetype desde, qsizetype hasta, const QString &nombre) const
    {
        for (qsizetype i = desde; i < hasta; ++i)
            if (lineas[i].tipo == Linea::Clave
                && lineas[i].nombre.compare(nombre, Qt::CaseInsensitive) == 0)
                return i;
        return -1;
    }
};

bool esBlanco(char c)
{
    return c == ' ' || c == '\t';
}

Ini analizar(QByteArray bytes)
{
    Ini ini;
    ini.bytes = std::move(bytes);
    const QByteArray &b = ini.bytes;
    for (char c : b)
        if (uchar(c) >= 0x80) {
            ini.ascii = false;
            break;
        }
    if (!ini.ascii || b.startsWith("\xEF\xBB\xBF")) {
        QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        // Decoded only to learn whether the bytes are UTF-8 (the decoding happens on the
        // conversion to QString, not in decode() itself).
        (void)QString(utf8.decode(b));
        ini.utf8 = !utf8.hasError();
    }
    if (!b.contains("\r\n") && b.contains('\n'))
        ini.finLinea = "\n";

    qsizetype i = b.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    while (i < b.size()) {
        Linea l;
        l.inicio = i;
        while (i < b.size() && b[i] != '\n' && b[i] != '\r')
            ++i;
        l.fin = i;
        if (i < b.size() && b[i] == '\r')
            ++i;
        if (i < b.size() && b[i] == '\n')
            ++i;
        l.siguiente = i;

        qsizetype p = l.inicio;
        while (p < l.fin && esBlanco(b[p]))
            ++p;
        if (p < l.fin && b[p] == '[') {
            const qsizetype cierre = b.lastIndexOf(']', l.fin - 1);
            if (cierre > p) {
                l.tipo = Linea::Seccion;
                l.nombre = ini.texto(p + 1, cierre).trimmed();
            }
        } else if (p < l.fin && b[p] != ';') {
            const qsizetype igual = b.indexOf('=', p);
            if (igual >= 0 && igual < l.fin) {
                l.tipo = Linea::Clave;
                l.nombre = ini.texto(p, igual).trimmed();
                l.valor = igual + 1;
                while (l.valor < l.fin && esBlanco(b[l.valor]))
                    ++l.valor;
            }
        }
        ini.lineas.append(l);
    }
    return ini;
}

void comprobarNombre(const QString &s, QStringView prohibidos)
{
    for (QChar c : s)
        if (c == u'\r' || c == u'\n' || prohibidos.contains(c))
            throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido);
}

// Bytes to put in after line `l` (or at the start when l < 0), beginning on a line of their own.
void insertarTras(Ini &ini, qsizetype l, QByteArray nuevo)
{
    qsizetype en = 0;
    if (l >= 0) {
        const Linea &linea = ini.lineas[l];
        en = linea.siguiente;
        if (linea.siguiente == linea.fin) // the file's last line has no line end
            nuevo.prepend(ini.finLinea);
    }
    ini.bytes.insert(en, nuevo);
}

} // namespace

QString LeerIniDeTexto(const QByteArray &bytes, const QString &seccion, const QString &clave,
                       const QString &porOmision)
{
    const Ini ini = analizar(bytes);
    qsizetype cabecera, ultimo, fin;
    if (!ini.seccion(seccion.trimmed(), cabecera, ultimo, fin))
        return porOmision;
    const qsizetype i = ini.clave(cabecera + 1, fin, clave.trimmed());
    if (i < 0)
        return porOmision;
    QString v = ini.texto(ini.lineas[i].valor, ini.lineas[i].fin).trimmed();
    if (v.size() >= 2 && (v.front() == u'"' || v.front() == u'\'') && v.back() == v.front())
        v = v.mid(1, v.size() - 2);
    return v;
}

QString LeerIni(const QString &fichero, const QString &seccion, const QString &clave,
                const QString &porOmision)
{
    return LeerIniDeTexto(LeerFicheroOVacio(fichero), seccion, clave, porOmision);
}

QByteArray GrabarIniEnTexto(const QByteArray &bytes, const QString &seccion, const QString &clave,
                            const QString &valor)
{
    const QString s = seccion.trimmed(), k = clave.trimmed();
    if (s.isEmpty() || k.isEmpty())
        throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido);
    comprobarNombre(s, u"]");
    comprobarNombre(k, u"=");
    // A key written as ";x" or "[x" would be read back as a comment or a section.
    if (k.startsWith(u';') || k.startsWith(u'['))
        throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido);
    comprobarNombre(valor, {});

    Ini ini = analizar(bytes);
    // A file with nothing but ASCII takes the older programs' code page when the new text fits
    // in it, and UTF-8 otherwise; a file already in one of them keeps it.
    // But when the new text's Windows-1252 bytes happen to be valid UTF-8 ("Æˆ" is C6 88, which
    // is UTF-8 for "ƈ"), the file would read back as UTF-8 and its new names could not be found:
    // it is written in UTF-8 then.
    if (ini.ascii) {
        const QByteArray ansi = aAnsi(s + u' ' + k + u' ' + valor);
        QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        (void)QString(utf8.decode(ansi)); // decodes on the conversion
        const bool ambiguo = !utf8.hasError() && std::any_of(ansi.begin(), ansi.end(), [](char c) { return uchar(c) >= 0x80; });
        ini.utf8 = !cabeEnAnsi(s + k + valor) || ambiguo;
    }
    // A value Windows-1252 cannot hold loses those characters, as on the desktop; a name that
    // lost them could not be found again.
    else if (!ini.utf8 && !cabeEnAnsi(s + k))
        throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido);

    qsizetype cabecera, ultimo, fin;
    if (!ini.seccion(s, cabecera, ultimo, fin)) {
        QByteArray nuevo;
        if (!ini.lineas.isEmpty())
            nuevo += ini.finLinea; // a blank line between sections
        nuevo += '[' + ini.codificar(s) + ']' + ini.finLinea + ini.codificar(k) + '='
            + ini.codificar(valor) + ini.finLinea;
        insertarTras(ini, ini.lineas.size() - 1, nuevo);
    } else if (const qsizetype i = ini.clave(cabecera + 1, fin, k); i >= 0) {
        // Only the value changes: the key as it was written and the blanks after "=" stay.
        const Linea &l = ini.lineas[i];
        ini.bytes.replace(l.valor, l.fin - l.valor, ini.codificar(valor));
    } else {
        insertarTras(ini, ultimo, ini.codificar(k) + '=' + ini.codificar(valor) + ini.finLinea);
    }
    return ini.bytes;
}

void GrabarIni(const QString &fichero, const QString &seccion, const QString &clave,
               const QString &valor)
{
    GrabarFicheroTexto(fichero, GrabarIniEnTexto(LeerFicheroOVacio(fichero), seccion, clave, valor));
}

std::optional<QByteArray> BorrarIniDeTexto(const QByteArray &bytes, const QString &seccion, const QString &clave)
{
    Ini ini = analizar(bytes);
    qsizetype cabecera, ultimo, fin;
    if (!ini.seccion(seccion.trimmed(), cabecera, ultimo, fin))
        return std::nullopt;
    if (clave.trimmed().isEmpty()) {
        // The header, its keys and comments, and the blank lines after its last key; comments
        // after those belong to what follows.
        qsizetype hasta = ultimo + 1;
        while (hasta < fin
               && ini.texto(ini.lineas[hasta].inicio, ini.lineas[hasta].fin).trimmed().isEmpty())
            ++hasta;
        const qsizetype desde = ini.lineas[cabecera].inicio;
        const qsizetype finBytes = hasta < ini.lineas.size() ? ini.lineas[hasta].inicio : ini.bytes.size();
        ini.bytes.remove(desde, finBytes - desde);
    } else {
        const qsizetype i = ini.clave(cabecera + 1, fin, clave.trimmed());
        if (i < 0)
            return std::nullopt;
        ini.bytes.remove(ini.lineas[i].inicio, ini.lineas[i].siguiente - ini.lineas[i].inicio);
    }
    return ini.bytes;
}

void BorrarIni(const QString &fichero, const QString &seccion, const QString &clave)
{
    if (const auto nuevo = BorrarIniDeTexto(LeerFicheroOVacio(fichero), seccion, clave))
        GrabarFicheroTexto(fichero, *nuevo);
}

QString FicheroNotas()
{
    return CarpetaContactos() + QStringLiteral("Notas.INI");
}

} // namespace kvr
