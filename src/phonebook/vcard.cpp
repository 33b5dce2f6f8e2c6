// vCards read in every version and written as 3.0 (see the header for the rules).
#include <kvr/vcard.h>

#include <QStringDecoder>
#include <QUuid>

#include <optional>

namespace kvr {

namespace {

// The physical lines of a text, without their ends (CR LF, LF or CR alone).
QList<QByteArrayView> lineasFisicas(QByteArrayView datos)
{
    QList<QByteArrayView> lineas;
    qsizetype inicio = 0;
    for (qsizetype i = 0; i < datos.size(); ++i) {
        const char c = datos[i];
        if (c != '\r' && c != '\n')
            continue;
        lineas << datos.sliced(inicio, i - inicio);
        if (c == '\r' && i + 1 < datos.size() && datos[i + 1] == '\n')
            ++i;
        inicio = i + 1;
    }
    if (inicio < datos.size())
        lineas << datos.sliced(inicio);
    return lineas;
}

// Where the name and parameters of a content line end: the first ':' outside double quotes.
qsizetype dosPuntos(QByteArrayView linea)
{
    bool comillas = false;
    for (qsizetype i = 0; i < linea.size(); ++i) {
        if (linea[i] == '"')
            comillas = !comillas;
        else if (linea[i] == ':' && !comillas)
            return i;
    }
    return -1;
}

// Splits at `sep` outside double quotes.
QList<QByteArrayView> partir(QByteArrayView texto, char sep)
{
    QList<QByteArrayView> partes;
    bool comillas = false;
    qsizetype inicio = 0;
    for (qsizetype i = 0; i < texto.size(); ++i) {
        if (texto[i] == '"')
            comillas = !comillas;
        else if (texto[i] == sep && !comillas) {
            partes << texto.sliced(inicio, i - inicio);
            inicio = i + 1;
        }
    }
    partes << texto.sliced(inicio);
    return partes;
}

// Whether a content line's name and parameters say its value is quoted-printable (2.1:
// "ENCODING=QUOTED-PRINTABLE" or the bare "QUOTED-PRINTABLE").
bool esQuotedPrintable(QByteArrayView cabecera)
{
    const QList<QByteArrayView> partes = partir(cabecera, ';');
    for (qsizetype i = 1; i < partes.size(); ++i) {
        const QByteArray par = partes[i].toByteArray().trimmed().toUpper();
        if (par == "QUOTED-PRINTABLE" || par == "ENCODING=QUOTED-PRINTABLE")
            return true;
    }
    return false;
}

QByteArray decodificarQP(QByteArrayView v)
{
    QByteArray r;
    r.reserve(v.size());
    for (qsizetype i = 0; i < v.size(); ++i) {
        if (v[i] == '=' && i + 2 < v.size()) {
            bool ok = false;
            const int b = v.sliced(i + 1, 2).toByteArray().toInt(&ok, 16);
            if (ok) {
                r += char(b);
                i += 2;
                continue;
            }
        }
        if (v[i] == '=' && i == v.size() - 1)
            break; // a soft line break left at the very end
        r += v[i];
    }
    return r;
}

QString aTexto(const QByteArray &bytes, const QString &juego)
{
    if (!juego.isEmpty() && juego.compare(u"UTF-8", Qt::CaseInsensitive) != 0) {
        QStringDecoder d(juego.toLatin1().constData(), QStringConverter::Flag::Stateless);
        if (d.isValid()) {
            QString t = d.decode(bytes);
            if (!d.hasError())
                return t;
        }
    }
    // Stateless: a sequence cut at the end is an error here, not a state kept for more bytes.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
    QString t = utf8.decode(bytes);
    if (utf8.hasError()) // not UTF-8 and no charset said: the bytes as Latin-1, nothing lost
        t = QString::fromLatin1(bytes);
    return t;
}

// A parameter value without its double quotes, which only delimit it (a value cannot hold one).
QString sinComillas(QByteArrayView v)
{
    return QString::fromUtf8(v).remove(u'"');
}

// A property's or parameter's name: double quotes only delimit parameter values, and a ';' or
// ':' they enclosed cannot stand in a name; all three are dropped, so that the line reads the
// same once written again.
QString limpio(QByteArrayView nombre)
{
    QString n = QString::fromUtf8(nombre);
    n.removeIf([](QChar c) { return c == u'"' || c == u';' || c == u':'; });
    return n.trimmed();
}

// One content line read into a property; nothing for a line that is not one.
std::optional<PropiedadVCard> leerPropiedad(QByteArrayView linea)
{
    const qsizetype dp = dosPuntos(linea);
    if (dp <= 0)
        return std::nullopt;
    const QList<QByteArrayView> cabecera = partir(linea.first(dp), ';');
    PropiedadVCard p;
    QString nombre = limpio(cabecera.front());
    if (const qsizetype punto = nombre.indexOf(u'.'); punto > 0) {
        p.grupo = nombre.left(punto);
        nombre = nombre.mid(punto + 1);
    }
    p.nombre = nombre.toUpper();
    if (p.nombre.isEmpty())
        return std::nullopt;
    bool qp = false;
    QString juego;
    for (qsizetype i = 1; i < cabecera.size(); ++i) {
        const QByteArrayView par = cabecera[i];
        const qsizetype igual = par.indexOf('=');
        QString clave, valor;
        if (igual < 0) { // 2.1: a bare value
            valor = sinComillas(par).trimmed();
            const QString v = valor.toUpper();
            clave = v == u"QUOTED-PRINTABLE" || v == u"BASE64" || v == u"8BIT" || v == u"7BIT" ? QStringLiteral("ENCODING")
                                                                                           : QStringLiteral("TYPE");
        } else {
            clave = limpio(par.first(igual)).toUpper();
            valor = sinComillas(par.sliced(igual + 1)).trimmed();
        }
        if (clave == u"ENCODING" && valor.compare(u"QUOTED-PRINTABLE", Qt::CaseInsensitive) == 0)
            qp = true;
        if (clave == u"CHARSET")
            juego = valor;
        p.parametros.append({clave, valor});
    }
    const QByteArrayView valor = linea.sliced(dp + 1);
    p.valor = aTexto(qp ? decodificarQP(valor) : valor.toByteArray(), juego);
    return p;
}

bool es(const PropiedadVCard &p, QStringView nombre)
{
    return p.nombre == nombre;
}

bool esFax(const PropiedadVCard &p)
{
    return TiposVCard(p).contains(u"fax"_qs);
}

// The first property that `cumple` accepts, as an index (-1 when none).
template <typename F> qsizetype primera(const VCard &t, F &&cumple)
{
    for (qsizetype i = 0; i < t.propiedades.size(); ++i)
        if (cumple(t.propiedades[i]))
            return i;
    return -1;
}

QString sinTel(QString v)
{
    if (v.startsWith(u"tel:", Qt::CaseInsensitive))
        v = v.mid(4);
    return v;
}

QByteArray plegar(const QByteArray &linea)
{
    // At most 75 octets a line; a continuation starts with one blank (which counts). A cut never
    // falls inside a UTF-8 sequence.
    QByteArray r;
    qsizetype i = 0;
    int limite = 75;
    while (linea.size() - i > limite) {
        qsizetype corte = i + limite;
        while (corte > i && (static_cast<unsigned char>(linea[corte]) & 0xC0) == 0x80)
            --corte;
        r += linea.mid(i, corte - i);
        r += "\r\n ";
        i = corte;
        limite = 74;
    }
    r += linea.mid(i);
    r += "\r\n";
    return r;
}

// A parameter value as written: quoted when it holds ':' or ';', or ',' unless it is a list (a
// double quote cannot be written inside one and is left out).
QString citar(QString v, bool lista = false)
{
    v.remove(u'"');
    return v.contains(u':') || v.contains(u';') || (!lista && v.contains(u',')) ? u'"' + v + u'"' : v;
}

} // namespace

LecturaVCards LeerVCards(QByteArrayView datos)
{
    LecturaVCards r;
    const QList<QByteArrayView> fisicas = lineasFisicas(datos);
    // Logical lines: folded continuations joined; a quoted-printable value ending in "=" goes on
    // on the next line (2.1's soft line break).
    QList<QByteArray> lineas;
    QList<int> numeros; // the physical line each logical one starts on, for the messages
    for (qsizetype i = 0; i < fisicas.size(); ++i) {
        const QByteArrayView f = fisicas[i];
        if (!lineas.isEmpty() && !f.isEmpty() && (f[0] == ' ' || f[0] == '\t')) {
            lineas.back() += f.sliced(1);
            continue;
        }
        QByteArray l = f.toByteArray();
        const qsizetype dp = dosPuntos(l);
        if (dp > 0 && esQuotedPrintable(QByteArrayView(l).first(dp)))
            while (l.endsWith('=') && i + 1 < fisicas.size()) {
                l.chop(1);
                l += fisicas[++i]; // a blank that starts the next line is part of the value
            }
        lineas << l;
        numeros << int(i + 1);
    }
    std::optional<VCard> actual;
    for (qsizetype i = 0; i < lineas.size(); ++i) {
        const QByteArray &l = lineas[i];
        if (l.trimmed().isEmpty())
            continue;
        const std::optional<PropiedadVCard> p = leerPropiedad(l);
        if (!p) {
            r.problema = QStringLiteral("la línea %1 no es una propiedad de vCard").arg(numeros[i]);
            return r;
        }
        if (es(*p, u"BEGIN") && p->valor.trimmed().compare(u"VCARD", Qt::CaseInsensitive) == 0) {
            if (actual) {
                r.problema = QStringLiteral("la línea %1 empieza una vCard dentro de otra").arg(numeros[i]);
                return r;
            }
            actual.emplace();
        } else if (!actual) {
            r.problema = QStringLiteral("la línea %1 está fuera de una vCard").arg(numeros[i]);
            return r;
        } else if (es(*p, u"END") && p->valor.trimmed().compare(u"VCARD", Qt::CaseInsensitive) == 0) {
            r.tarjetas << *actual;
            actual.reset();
        } else if (es(*p, u"VERSION")) {
            actual->version = p->valor.trimmed();
        } else {
            actual->propiedades << *p;
        }
    }
    if (actual)
        r.problema = QStringLiteral("falta el final (END:VCARD) de la última vCard");
    return r;
}

QByteArray EscribirVCard(const VCard &tarjeta)
{
    QByteArray r = "BEGIN:VCARD\r\nVERSION:3.0\r\n";
    for (const PropiedadVCard &p : tarjeta.propiedades) {
        QString cabecera = p.grupo.isEmpty() ? p.nombre : p.grupo + u'.' + p.nombre;
        QStringList tipos;
        for (const auto &[clave, valor] : p.parametros) {
            if (clave == u"ENCODING" || clave == u"CHARSET")
                continue;
            if (clave == u"TYPE") {
                tipos << valor;
                continue;
            }
            cabecera += u';' + clave + u'=' + citar(valor);
        }
        if (!tipos.isEmpty())
            cabecera += QStringLiteral(";TYPE=") + citar(tipos.join(u','), true);
        // A value decoded from quoted-printable may hold line breaks, which 3.0 writes escaped.
        QString valor = p.valor;
        valor.replace(QStringLiteral("\r\n"), QStringLiteral("\\n"));
        valor.replace(u'\r', QStringLiteral("\\n"));
        valor.replace(u'\n', QStringLiteral("\\n"));
        r += plegar((cabecera + u':' + valor).toUtf8());
    }
    r += "END:VCARD\r\n";
    return r;
}

QString TextoDeVCard(const QString &escrito)
{
    // A line break is "\n" however it came (escaped, or a CR LF or CR decoded from 2.1's
    // quoted-printable).
    QString t;
    t.reserve(escrito.size());
    for (qsizetype i = 0; i < escrito.size(); ++i) {
        const QChar c = escrito[i];
        if (c == u'\\' && i + 1 < escrito.size()) {
            const QChar s = escrito[++i];
            t += s == u'n' || s == u'N' ? QChar(u'\n') : s;
        } else if (c == u'\r') {
            t += u'\n';
            if (i + 1 < escrito.size() && escrito[i + 1] == u'\n')
                ++i;
        } else {
            t += c;
        }
    }
    return t;
}

QString EscaparVCard(const QString &texto)
{
    QString t;
    t.reserve(texto.size());
    for (const QChar c : texto) {
        if (c == u'\\' || c == u',' || c == u';')
            t += u'\\';
        if (c == u'\r')
            continue;
        t += c == u'\n' ? QStringLiteral("\\n") : QString(c);
    }
    return t;
}

QStringList TiposVCard(const PropiedadVCard &propiedad)
{
    QStringList tipos;
    for (const auto &[clave, valor] : propiedad.parametros)
        if (clave == u"TYPE")
            for (const QString &v : valor.split(u',', Qt::SkipEmptyParts))
                tipos << v.trimmed().toLower();
    return tipos;
}

ContactoVCard ContactoDeVCard(const VCard &tarjeta)
{
    ContactoVCard c;
    const auto valor = [&tarjeta](qsizetype i) { return i < 0 ? QString() : TextoDeVCard(tarjeta.propiedades[i].valor).trimmed(); };
    c.nombre = valor(primera(tarjeta, [](const PropiedadVCard &p) { return es(p, u"FN"); }));
    c.telefono = sinTel(valor(primera(tarjeta, [](const PropiedadVCard &p) { return es(p, u"TEL") && !esFax(p); })));
    c.fax = sinTel(valor(primera(tarjeta, [](const PropiedadVCard &p) { return es(p, u"TEL") && esFax(p); })));
    c.email = valor(primera(tarjeta, [](const PropiedadVCard &p) { return es(p, u"EMAIL"); }));
    if (c.nombre.isEmpty()) {
        if (const qsizetype n = primera(tarjeta, [](const PropiedadVCard &p) { return es(p, u"N"); }); n >= 0) {
            // Family;Given;Additional;Prefixes;Suffixes, each escaped: read as one writes a name.
            QStringList campos;
            QString campo;
            const QString &v = tarjeta.propiedades[n].valor;
            for (qsizetype i = 0; i < v.size(); ++i) {
                if (v[i] == u'\\' && i + 1 < v.size()) {
                    campo += v[i];
                    campo += v[++i];
                } else if (v[i] == u';') {
                    campos << TextoDeVCard(campo).trimmed();
                    campo.clear();
                } else {
                    campo += v[i];
                }
            }
            campos << TextoDeVCard(campo).trimmed();
            QStringList partes;
            for (const int k : {3, 1, 2, 0, 4})
                if (!campos.value(k).isEmpty())
                    partes << campos.value(k);
            c.nombre = partes.join(u' ');
        }
    }
    if (c.nombre.isEmpty())
        c.nombre = c.email;
    return c;
}

QString NDeNombre(const QString &nombre)
{
    const QString n = nombre.simplified();
    QString familia, dado;
    if (const qsizetype coma = n.indexOf(u','); coma >= 0) {
        familia = n.left(coma).trimmed();
        dado = n.mid(coma + 1).trimmed();
    } else if (const qsizetype blanco = n.lastIndexOf(u' '); blanco >= 0) {
        familia = n.mid(blanco + 1);
        dado = n.left(blanco);
    } else {
        familia = n;
    }
    return EscaparVCard(familia) + u';' + EscaparVCard(dado) + QStringLiteral(";;;");
}

void PonerContactoEnVCard(VCard &tarjeta, const ContactoVCard &contacto)
{
    QList<PropiedadVCard> &ps = tarjeta.propiedades;
    // Replaces the value of the first property `cumple` accepts, adds `nueva` when there is none,
    // removes it when the value is emptied.
    const auto poner = [&ps, &tarjeta](auto &&cumple, const QString &valor, PropiedadVCard nueva) {
        const qsizetype i = primera(tarjeta, cumple);
        if (valor.isEmpty()) {
            if (i >= 0)
                ps.removeAt(i);
            return;
        }
        if (i >= 0) {
            ps[i].valor = EscaparVCard(valor);
            return;
        }
        nueva.valor = EscaparVCard(valor);
        ps << nueva;
    };
    const ContactoVCard antes = ContactoDeVCard(tarjeta);
    const bool hayN = primera(tarjeta, [](const PropiedadVCard &p) { return es(p, u"N"); }) >= 0;
    poner([](const PropiedadVCard &p) { return es(p, u"FN"); }, contacto.nombre, {{}, u"FN"_qs, {}, {}});
    if (!hayN || antes.nombre != contacto.nombre) {
        const qsizetype i = primera(tarjeta, [](const PropiedadVCard &p) { return es(p, u"N"); });
        if (i >= 0)
            ps[i].valor = NDeNombre(contacto.nombre);
        else
            ps.insert(std::min<qsizetype>(1, ps.size()), {{}, u"N"_qs, {}, NDeNombre(contacto.nombre)});
    }
    poner([](const PropiedadVCard &p) { return es(p, u"TEL") && !esFax(p); }, contacto.telefono,
          {{}, u"TEL"_qs, {{u"TYPE"_qs, u"VOICE"_qs}}, {}});
    poner([](const PropiedadVCard &p) { return es(p, u"TEL") && esFax(p); }, contacto.fax,
          {{}, u"TEL"_qs, {{u"TYPE"_qs, u"FAX"_qs}}, {}});
    poner([](const PropiedadVCard &p) { return es(p, u"EMAIL"); }, contacto.email,
          {{}, u"EMAIL"_qs, {{u"TYPE"_qs, u"INTERNET"_qs}}, {}});
    if (primera(tarjeta, [](const PropiedadVCard &p) { return es(p, u"UID"); }) < 0)
        ps << PropiedadVCard{{}, u"UID"_qs, {}, u"urn:uuid:"_qs + QUuid::createUuid().toString(QUuid::WithoutBraces)};
    tarjeta.version = QStringLiteral("3.0");
}

} // namespace kvr
