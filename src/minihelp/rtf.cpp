// The RTF reader: one pass over the bytes with a stack of group states. Every step moves forward
// by at least one byte, so the reading ends; the stack is capped, so memory follows the input.
#include <kvr/rtf.h>

#include <QStringDecoder>

#include <map>

namespace kvr {

QString ParrafoRtf::Texto() const
{
    QString t;
    for (const TramoRtf &r : tramos)
        t += r.texto;
    return t;
}

QString DocumentoRtf::Texto() const
{
    QStringList partes;
    partes.reserve(parrafos.size());
    for (const ParrafoRtf &p : parrafos)
        partes.append(p.Texto());
    return partes.join(u'\n');
}

QByteArray NombrePaginaCodigos(int pagina)
{
    switch (pagina) {
    case 437: return QByteArrayLiteral("IBM437");
    case 850: return QByteArrayLiteral("IBM850");
    case 852: return QByteArrayLiteral("IBM852");
    case 860: return QByteArrayLiteral("IBM860");
    case 863: return QByteArrayLiteral("IBM863");
    case 865: return QByteArrayLiteral("IBM865");
    case 866: return QByteArrayLiteral("IBM866");
    case 874: return QByteArrayLiteral("windows-874");
    case 932: return QByteArrayLiteral("Shift_JIS");
    case 936: return QByteArrayLiteral("GBK");
    case 949: return QByteArrayLiteral("windows-949");
    case 950: return QByteArrayLiteral("Big5");
    case 1250: case 1251: case 1252: case 1253: case 1254: case 1255: case 1256: case 1257:
    case 1258:
        return "windows-" + QByteArray::number(pagina);
    case 10000: return QByteArrayLiteral("macintosh");
    case 65001: return QByteArrayLiteral("UTF-8");
    default: return {};
    }
}

namespace {

// Code page of a font's character set (\fcharset); 0 when the document's own page applies.
int PaginaDeJuego(int juego)
{
    switch (juego) {
    case 77: return 10000;
    case 128: return 932;
    case 129: return 949;
    case 134: return 936;
    case 136: return 950;
    case 161: return 1253;
    case 162: return 1254;
    case 163: return 1258;
    case 177: return 1255;
    case 178: return 1256;
    case 186: return 1257;
    case 204: return 1251;
    case 222: return 874;
    case 238: return 1250;
    case 254: return 437;
    case 255: return 850;
    default: return 0;
    }
}

enum class Destino { Texto, Saltar, Fuentes, Colores };

struct PropiedadesParrafo {
    AlineacionRtf alineacion = AlineacionRtf::Izquierda;
    int sangriaIzquierda = 0, sangriaDerecha = 0, sangriaPrimera = 0;
    int espacioAntes = 0, espacioDespues = 0;
    QList<TabuladorRtf> tabuladores;
    TabuladorRtf::Tipo tipoSiguienteTab = TabuladorRtf::Izquierdo;
};

struct Estado {
    FormatoRtf formato;
    PropiedadesParrafo parrafo;
    Destino destino = Destino::Texto;
    int uc = 1;
};

// Destinations whose content is never shown.
bool DestinoOculto(QByteArrayView w)
{
    static const char *const ocultos[] = {
        "stylesheet", "info", "pict", "header", "headerl", "headerr", "headerf", "footer",
        "footerl", "footerr", "footerf", "footnote", "annotation", "atnid", "atnauthor",
        "atndate", "atnref", "fldinst", "xe", "tc", "txe", "rxe", "bkmkstart", "bkmkend",
        "datafield", "themedata", "colorschememapping", "latentstyles", "datastore",
        "listtable", "listoverridetable", "revtbl", "rsidtbl", "filetbl", "generator",
        "xmlnstbl", "pgdsctbl", "userprops", "docvar", "pnseclvl", "pntxta", "pntxtb",
        "template", "comment", "title", "subject", "author", "operator", "keywords", "doccomm",
        "company", "creatim", "revtim", "printim", "buptim", "nonshppict", "shppict", "shpinst",
        "sp", "sn", "sv", "objdata", "objclass", "objname", "objalias", "objsect", "ffdeftext",
        "ffformat", "ffhelptext", "ffname", "ffstattext", "ftnsep", "ftnsepc", "ftncn",
        "aftnsep", "aftnsepc", "aftncn", "mmathPr", "panose", "falt", "fname", "upr",
    };
    for (const char *o : ocultos)
        if (w == QByteArrayView(o))
            return true;
    return false;
}

class Lector {
public:
    explicit Lector(QByteArrayView datos) : d(datos) {}

    DocumentoRtf Leer()
    {
        pila.append(Estado{});
        while (p < d.size() && !terminado) {
            const char c = d[p];
            if (c == '{') {
                VolcarBytes();
                AbrirGrupo();
                ++p;
            } else if (c == '}') {
                VolcarBytes();
                CerrarGrupo();
                ++p;
            } else if (c == '\\') {
                ++p;
                LeerControl();
            } else {
                ++p;
                if (c != '\r' && c != '\n')
                    Caracter(static_cast<unsigned char>(c));
            }
        }
        VolcarBytes();
        if (!terminado)
            doc.completo = false;  // groups left open at the end
        if (terminado) {
            // Anything but blanks after the document's last brace is damage.
            for (qsizetype i = p; i < d.size(); ++i) {
                const char c = d[i];
                if (c != ' ' && c != '\r' && c != '\n' && c != '\t' && c != '\0') {
                    doc.completo = false;
                    break;
                }
            }
        }
        if (!actual.tramos.isEmpty())
            TerminarParrafo();
        return std::move(doc);
    }

private:
    Estado &E() { return pila.last(); }

    void AbrirGrupo()
    {
        saltar = 0;
        asterisco = false;
        if (pila.size() >= LimiteGruposRtf + 1) {
            ++desbordados;
            return;
        }
        pila.append(pila.last());
    }

    void CerrarGrupo()
    {
        saltar = 0;
        asterisco = false;
        if (desbordados > 0) {
            --desbordados;
            return;
        }
        if (pila.size() <= 1) {  // a brace closing a group never opened
            doc.completo = false;
            return;
        }
        if (E().destino == Destino::Fuentes)
            GuardarFuente();
        pila.removeLast();
        if (pila.size() == 1)  // the document's own group is closed
            terminado = true;
    }

    void GuardarFuente()
    {
        const QString nombre = nombreFuente.trimmed();
        if (fuenteActual >= 0 && !nombre.isEmpty() && !doc.fuentes.contains(fuenteActual))
            doc.fuentes.insert(fuenteActual, nombre);
        nombreFuente.clear();
    }

    // The code page for bytes given as \'hh or as raw 8-bit characters.
    int PaginaActual() const
    {
        int f = -1;
        if (pila.last().destino == Destino::Fuentes)
            f = fuenteActual;
        else
            f = pila.last().formato.fuente >= 0 ? pila.last().formato.fuente : doc.fuentePorOmision;
        const auto it = paginaFuente.find(f);
        return it != paginaFuente.end() && it->second ? it->second : doc.paginaCodigos;
    }

    void Byte(unsigned char b)
    {
        if (saltar > 0) {
            --saltar;
            return;
        }
        const Destino dest = E().destino;
        if (dest == Destino::Saltar || dest == Destino::Colores)
            return;
        const int pagina = PaginaActual();
        if (!pendientes.isEmpty() && pagina != paginaPendientes)
            VolcarBytes();
        paginaPendientes = pagina;
        pendientes.append(char(b));
    }

    QStringDecoder &Decodificador(int pagina)
    {
        auto it = decodificadores.find(pagina);
        if (it == decodificadores.end()) {
            QStringDecoder dec(NombrePaginaCodigos(pagina).constData(),
                               QStringConverter::Flag::Stateless);
            if (!dec.isValid())
                dec = QStringDecoder("windows-1252", QStringConverter::Flag::Stateless);
            if (!dec.isValid())
                dec = QStringDecoder(QStringConverter::Latin1, QStringConverter::Flag::Stateless);
            it = decodificadores.emplace(pagina, std::move(dec)).first;
        }
        return it->second;
    }

    void VolcarBytes()
    {
        if (pendientes.isEmpty())
            return;
        const QString t = Decodificador(paginaPendientes).decode(pendientes);
        pendientes.clear();
        Texto(t);
    }

    // Text in the current destination.
    void Texto(QStringView t)
    {
        switch (E().destino) {
        case Destino::Texto:
            if (!actual.tramos.isEmpty() && actual.tramos.last().formato == E().formato)
                actual.tramos.last().texto += t;
            else
                actual.tramos.append(TramoRtf{t.toString(), E().formato});
            break;
        case Destino::Fuentes:
            for (QChar c : t) {
                if (c == u';')
                    GuardarFuente();
                else if (nombreFuente.size() < 256)
                    nombreFuente += c;
            }
            break;
        default:
            break;
        }
    }

    void Caracter(unsigned char c)
    {
        if (c >= 0x80) {
            Byte(c);
            return;
        }
        VolcarBytes();
        if (saltar > 0) {
            --saltar;
            return;
        }
        if (E().destino == Destino::Colores) {
            if (c == ';') {
                doc.colores.append(color);
                color = ColorRtf{};
            }
            return;
        }
        if (c == '\t')
            Texto(u"\t");
        else if (c >= 0x20)
            Texto(QString(QChar(char16_t(c))));
    }

    void TerminarParrafo()
    {
        const PropiedadesParrafo &pp = E().parrafo;
        actual.alineacion = pp.alineacion;
        actual.sangriaIzquierda = pp.sangriaIzquierda;
        actual.sangriaDerecha = pp.sangriaDerecha;
        actual.sangriaPrimera = pp.sangriaPrimera;
        actual.espacioAntes = pp.espacioAntes;
        actual.espacioDespues = pp.espacioDespues;
        actual.tabuladores = pp.tabuladores;
        doc.parrafos.append(std::move(actual));
        actual = ParrafoRtf{};
    }

    void LeerControl()
    {
        if (p >= d.size())
            return;
        const char c = d[p];
        const bool letra = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (!letra) {
            ++p;
            Simbolo(c);
            return;
        }
        const qsizetype inicio = p;
        while (p < d.size() && ((d[p] >= 'a' && d[p] <= 'z') || (d[p] >= 'A' && d[p] <= 'Z')))
            ++p;
        const QByteArrayView palabra = d.sliced(inicio, std::min<qsizetype>(p - inicio, 32));
        bool conParametro = false;
        bool negativo = false;
        long long valor = 0;
        if (p < d.size() && d[p] == '-' && p + 1 < d.size() && d[p + 1] >= '0' && d[p + 1] <= '9') {
            negativo = true;
            ++p;
        }
        while (p < d.size() && d[p] >= '0' && d[p] <= '9') {
            conParametro = true;
            if (valor < 1'000'000'000'000LL)
                valor = valor * 10 + (d[p] - '0');
            ++p;
        }
        if (p < d.size() && d[p] == ' ')
            ++p;
        valor = std::clamp(valor, 0LL, 2'147'483'647LL);
        const int n = int(negativo ? -valor : valor);
        Palabra(palabra, conParametro, n);
    }

    void Simbolo(char c)
    {
        if (c == '\'') {
            int v = 0;
            int cifras = 0;
            while (cifras < 2 && p < d.size()) {
                const char h = d[p];
                int x = -1;
                if (h >= '0' && h <= '9') x = h - '0';
                else if (h >= 'a' && h <= 'f') x = h - 'a' + 10;
                else if (h >= 'A' && h <= 'F') x = h - 'A' + 10;
                if (x < 0)
                    break;
                v = v * 16 + x;
                ++cifras;
                ++p;
            }
            asterisco = false;
            if (cifras == 2)
                Byte(static_cast<unsigned char>(v));
            return;
        }
        VolcarBytes();
        if (c == '*') {
            asterisco = true;
            return;
        }
        asterisco = false;
        if (saltar > 0) {
            --saltar;
            return;
        }
        switch (c) {
        case '\\': case '{': case '}': Caracter(static_cast<unsigned char>(c)); break;
        case '~': Texto(u"\u00A0"); break;
        case '-': Texto(u"\u00AD"); break;
        case '_': Texto(u"\u2011"); break;
        case '\t': Texto(u"\t"); break;
        case '\n': case '\r':
            if (E().destino == Destino::Texto)
                TerminarParrafo();
            break;
        default: break;
        }
    }

    void Palabra(QByteArrayView w, bool conParametro, int n)
    {
        VolcarBytes();
        const bool conAsterisco = asterisco;
        asterisco = false;
        Estado &e = E();

        if (w == "bin") {
            // Binary data: skipped as a whole, never read as text.
            const qsizetype resto = d.size() - p;
            p += std::min<qsizetype>(std::max(n, 0), resto);
            return;
        }
        if (saltar > 0 && w != "par" && w != "pard") {
            --saltar;
            return;
        }
        saltar = 0;

        // Destinations.
        if (w == "fonttbl") { e.destino = Destino::Fuentes; fuenteActual = -1; return; }
        if (w == "colortbl") { e.destino = Destino::Colores; color = ColorRtf{}; return; }
        if (w == "ud") { e.destino = Destino::Texto; return; }
        if (DestinoOculto(w)) { e.destino = Destino::Saltar; return; }
        if (e.destino == Destino::Saltar)
            return;

        // Header and tables.
        if (w == "ansicpg") { if (!NombrePaginaCodigos(n).isEmpty()) doc.paginaCodigos = n; return; }
        if (w == "mac") { doc.paginaCodigos = 10000; return; }
        if (w == "pc") { doc.paginaCodigos = 437; return; }
        if (w == "pca") { doc.paginaCodigos = 850; return; }
        if (w == "deff") { doc.fuentePorOmision = n; return; }
        if (e.destino == Destino::Fuentes) {
            if (w == "f") { GuardarFuente(); fuenteActual = n; }
            else if (w == "fcharset") { if (fuenteActual >= 0) paginaFuente[fuenteActual] = PaginaDeJuego(n); }
            else if (w == "cpg") { if (fuenteActual >= 0 && !NombrePaginaCodigos(n).isEmpty()) paginaFuente[fuenteActual] = n; }
            else if (conAsterisco) e.destino = Destino::Saltar;
            return;
        }
        if (e.destino == Destino::Colores) {
            const int v = std::clamp(n, 0, 255);
            if (w == "red") { color.rojo = v; color.automatico = false; }
            else if (w == "green") { color.verde = v; color.automatico = false; }
            else if (w == "blue") { color.azul = v; color.automatico = false; }
            else if (conAsterisco) e.destino = Destino::Saltar;
            return;
        }

        FormatoRtf &f = e.formato;
        PropiedadesParrafo &pp = e.parrafo;
        const bool activo = !conParametro || n != 0;
        // Text and breaks.
        if (w == "par" || w == "sect" || w == "page" || w == "row") { TerminarParrafo(); return; }
        if (w == "line") { Texto(u"\u2028"); return; }
        if (w == "tab" || w == "cell" || w == "nestcell") { Texto(u"\t"); return; }
        if (w == "u") {
            const int u = n < 0 ? n + 65536 : n;
            // A code that is no character keeps its fallback visible.
            if (u > 0 && u < 65536) {
                Texto(QString(QChar(char16_t(u))));
                saltar = e.uc;
            }
            return;
        }
        if (w == "uc") { e.uc = std::clamp(n, 0, 16); return; }
        if (w == "emdash") { Texto(u"\u2014"); return; }
        if (w == "endash") { Texto(u"\u2013"); return; }
        if (w == "bullet") { Texto(u"\u2022"); return; }
        if (w == "lquote") { Texto(u"\u2018"); return; }
        if (w == "rquote") { Texto(u"\u2019"); return; }
        if (w == "ldblquote") { Texto(u"\u201C"); return; }
        if (w == "rdblquote") { Texto(u"\u201D"); return; }
        if (w == "emspace") { Texto(u"\u2003"); return; }
        if (w == "enspace") { Texto(u"\u2002"); return; }
        // Character formatting.
        if (w == "plain") { f = FormatoRtf{}; return; }
        if (w == "b") { f.negrita = activo; return; }
        if (w == "i") { f.cursiva = activo; return; }
        if (w == "strike" || w == "striked") { f.tachado = activo; return; }
        if (w == "ulnone") { f.subrayado = false; return; }
        if (w.startsWith("ul") && w != "ulc") { f.subrayado = activo; return; }
        if (w == "fs") { if (n > 0) f.medioPuntos = std::min(n, 3276); return; }
        if (w == "f") { f.fuente = n; return; }
        if (w == "cf") { f.color = n; return; }
        if (w == "cb" || w == "highlight" || w == "chcbpat") { f.fondo = n; return; }
        if (w == "super") { f.vertical = 1; return; }
        if (w == "sub") { f.vertical = -1; return; }
        if (w == "nosupersub") { f.vertical = 0; return; }
        // Paragraph formatting.
        if (w == "pard") { pp = PropiedadesParrafo{}; return; }
        if (w == "ql") { pp.alineacion = AlineacionRtf::Izquierda; return; }
        if (w == "qc") { pp.alineacion = AlineacionRtf::Centro; return; }
        if (w == "qr") { pp.alineacion = AlineacionRtf::Derecha; return; }
        if (w == "qj") { pp.alineacion = AlineacionRtf::Justificada; return; }
        if (w == "li") { pp.sangriaIzquierda = n; return; }
        if (w == "ri") { pp.sangriaDerecha = n; return; }
        if (w == "fi") { pp.sangriaPrimera = n; return; }
        if (w == "sb") { pp.espacioAntes = n; return; }
        if (w == "sa") { pp.espacioDespues = n; return; }
        if (w == "tqr") { pp.tipoSiguienteTab = TabuladorRtf::Derecho; return; }
        if (w == "tqc") { pp.tipoSiguienteTab = TabuladorRtf::Centrado; return; }
        if (w == "tqdec") { pp.tipoSiguienteTab = TabuladorRtf::Decimal; return; }
        if (w == "tx" || w == "tb") {
            if (pp.tabuladores.size() < 64)
                pp.tabuladores.append(TabuladorRtf{n, pp.tipoSiguienteTab});
            pp.tipoSiguienteTab = TabuladorRtf::Izquierdo;
            return;
        }
        // Any other destination marked as optional is skipped; other words are ignored.
        if (conAsterisco)
            e.destino = Destino::Saltar;
    }

    QByteArrayView d;
    qsizetype p = 0;
    bool terminado = false;
    DocumentoRtf doc;
    QList<Estado> pila;
    int desbordados = 0;
    bool asterisco = false;
    int saltar = 0;  // characters of a \u fallback still to skip
    QByteArray pendientes;
    int paginaPendientes = 1252;
    ParrafoRtf actual;
    int fuenteActual = -1;
    QString nombreFuente;
    std::map<int, int> paginaFuente;
    ColorRtf color;
    std::map<int, QStringDecoder> decodificadores;
};

DocumentoRtf LeerTextoPlano(QByteArrayView datos)
{
    DocumentoRtf doc;
    doc.completo = false;
    QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString texto = utf8.decode(datos);
    if (utf8.hasError()) {
        QStringDecoder ansi("windows-1252", QStringConverter::Flag::Stateless);
        texto = ansi.isValid() ? QString(ansi.decode(datos)) : QString::fromLatin1(datos);
    }
    texto.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    texto.replace(u'\r', u'\n');
    if (texto.endsWith(u'\n'))
        texto.chop(1);
    if (texto.startsWith(QChar(0xFEFF)))
        texto.remove(0, 1);
    if (texto.isEmpty())
        return doc;
    const QStringList lineas = texto.split(u'\n');
    for (const QString &l : lineas) {
        ParrafoRtf par;
        if (!l.isEmpty())
            par.tramos.append(TramoRtf{l, FormatoRtf{}});
        doc.parrafos.append(std::move(par));
    }
    return doc;
}

} // namespace

DocumentoRtf LeerRtf(QByteArrayView datos)
{
    qsizetype i = 0;
    while (i < datos.size() && (datos[i] == ' ' || datos[i] == '\r' || datos[i] == '\n' || datos[i] == '\t'))
        ++i;
    if (!datos.sliced(i).startsWith("{\\rtf"))
        return LeerTextoPlano(datos);
    return Lector(datos.sliced(i)).Leer();
}

} // namespace kvr
