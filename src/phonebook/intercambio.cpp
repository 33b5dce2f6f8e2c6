// Contacts in and out as CSV (see the header for the rules).
#include <kvr/intercambio.h>

#include <QFileInfo>
#include <QStringDecoder>

namespace kvr {

namespace {

// A header name as looked up: lower case, without accents, single blanks.
QString normal(const QString &t)
{
    QString n = t.normalized(QString::NormalizationForm_D);
    n.removeIf([](QChar c) { return c.category() == QChar::Mark_NonSpacing; });
    return n.toLower().simplified();
}

// The records of a CSV text, each a list of fields (RFC 4180: quotes, doubled quotes, line breaks
// inside quotes), with the line each record starts on.
QList<QPair<int, QStringList>> registros(const QString &t, QChar sep)
{
    QList<QPair<int, QStringList>> r;
    QStringList campos;
    QString campo;
    bool comillas = false, algo = false;
    int linea = 1, inicio = 1;
    const auto cerrar = [&] {
        campos << campo;
        if (algo || campos.size() > 1 || !campo.isEmpty())
            r.append({inicio, campos});
        campos.clear();
        campo.clear();
        algo = false;
    };
    for (qsizetype i = 0; i < t.size(); ++i) {
        const QChar c = t[i];
        if (comillas) {
            if (c == u'"' && i + 1 < t.size() && t[i + 1] == u'"') {
                campo += c;
                ++i;
            } else if (c == u'"') {
                comillas = false;
            } else if (c == u'\r' || c == u'\n') { // a line break inside a field, as "\n"
                if (c == u'\r' && i + 1 < t.size() && t[i + 1] == u'\n')
                    ++i;
                ++linea;
                campo += u'\n';
            } else {
                campo += c;
            }
        } else if (c == u'"') {
            comillas = true;
            algo = true;
        } else if (c == sep) {
            campos << campo;
            campo.clear();
            algo = true;
        } else if (c == u'\r' || c == u'\n') {
            if (c == u'\r' && i + 1 < t.size() && t[i + 1] == u'\n')
                ++i;
            cerrar();
            inicio = ++linea;
        } else {
            campo += c;
        }
    }
    if (algo || !campo.isEmpty() || !campos.isEmpty())
        cerrar();
    return r;
}

QString csv(const QString &campo)
{
    if (!campo.contains(u';') && !campo.contains(u'"') && !campo.contains(u'\n') && !campo.contains(u'\r'))
        return campo;
    QString c = campo;
    c.replace(u'"', QStringLiteral("\"\""));
    return u'"' + c + u'"';
}

} // namespace

FormatoContactos FormatoDeFichero(const QString &ruta)
{
    const QString ext = QFileInfo(ruta).suffix().toLower();
    if (ext == u"vcf" || ext == u"vcard")
        return FormatoContactos::VCard;
    if (ext == u"csv")
        return FormatoContactos::Csv;
    return FormatoContactos::Dat;
}

QList<QStringList> CamposCsv()
{
    return {
        {u"nombre"_qs, u"name"_qs, u"full name"_qs, u"nombre completo"_qs, u"display name"_qs,
         u"nombre para mostrar"_qs, u"formatted name"_qs},
        {u"telefono"_qs, u"phone"_qs, u"telephone"_qs, u"phone number"_qs, u"numero de telefono"_qs,
         u"mobile phone"_qs, u"telefono movil"_qs, u"movil"_qs, u"business phone"_qs, u"telefono del trabajo"_qs,
         u"home phone"_qs, u"telefono particular"_qs, u"primary phone"_qs, u"phone 1 - value"_qs},
        {u"fax"_qs, u"business fax"_qs, u"fax del trabajo"_qs, u"home fax"_qs, u"fax particular"_qs,
         u"numero de fax"_qs},
        {u"email"_qs, u"e-mail"_qs, u"correo"_qs, u"correo electronico"_qs, u"email address"_qs,
         u"e-mail address"_qs, u"direccion de correo electronico"_qs, u"e-mail 1 - value"_qs},
        {u"first name"_qs, u"given name"_qs, u"nombre de pila"_qs},
        {u"last name"_qs, u"family name"_qs, u"surname"_qs, u"apellidos"_qs, u"apellido"_qs},
    };
}

LecturaCsv LeerCsvContactos(QByteArrayView datos)
{
    LecturaCsv r;
    if (datos.startsWith("\xEF\xBB\xBF"))
        datos = datos.sliced(3);
    QStringDecoder utf8(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
    QString texto = utf8.decode(datos);
    if (utf8.hasError()) {
        QStringDecoder ventanas("windows-1252", QStringConverter::Flag::Stateless);
        texto = ventanas.isValid() ? ventanas.decode(datos) : QString::fromLatin1(datos);
    }
    // The separator is the one the header line uses more.
    const QString cabecera = texto.left(texto.indexOf(u'\n'));
    const QChar sep = cabecera.count(u';') > cabecera.count(u',') ? u';' : u',';
    const QList<QPair<int, QStringList>> filas = registros(texto, sep);
    if (filas.isEmpty()) {
        r.problema = QStringLiteral("no tiene línea de cabecera");
        return r;
    }
    // The column of each value: the first header among its names.
    const QList<QStringList> nombres = CamposCsv();
    QList<QList<int>> columnas(nombres.size());
    const QStringList titulos = filas.front().second;
    for (int c = 0; c < titulos.size(); ++c)
        for (qsizetype k = 0; k < nombres.size(); ++k)
            if (nombres[k].contains(normal(titulos[c])))
                columnas[k] << c;
    // "Nombre" beside "Apellidos" is the first name.
    if (!columnas[5].isEmpty() && columnas[4].isEmpty() && !columnas[0].isEmpty() && normal(titulos[columnas[0][0]]) == u"nombre")
        columnas[4] << columnas[0].takeFirst();
    if (columnas[0].isEmpty() && columnas[1].isEmpty() && columnas[2].isEmpty() && columnas[3].isEmpty()
        && columnas[4].isEmpty() && columnas[5].isEmpty()) {
        r.problema = QStringLiteral("la cabecera no nombra ninguna columna de nombre, teléfono, fax o correo: «%1»")
                         .arg(titulos.join(sep));
        return r;
    }
    for (qsizetype i = 1; i < filas.size(); ++i) {
        const QStringList &f = filas[i].second;
        const auto primero = [&f](const QList<int> &cols) {
            for (int c : cols)
                if (QString v = f.value(c).trimmed(); !v.isEmpty())
                    return v;
            return QString();
        };
        ContactoLeido l;
        l.donde = filas[i].first;
        l.contacto.nombre = primero(columnas[0]);
        if (l.contacto.nombre.isEmpty())
            l.contacto.nombre = QStringList{primero(columnas[4]), primero(columnas[5])}.join(u' ').trimmed();
        l.contacto.telefono = primero(columnas[1]);
        l.contacto.fax = primero(columnas[2]);
        l.contacto.email = primero(columnas[3]);
        if (l.contacto.nombre.isEmpty())
            l.contacto.nombre = l.contacto.email;
        if (l.contacto.nombre.isEmpty() && l.contacto.telefono.isEmpty() && l.contacto.fax.isEmpty()) {
            r.rechazados << QStringLiteral("línea %1: sin nombre, teléfono, fax ni correo").arg(l.donde);
            continue;
        }
        r.contactos << l;
    }
    return r;
}

QByteArray CsvDeContactos(const QList<ContactoVCard> &contactos)
{
    QString t = QStringLiteral("Nombre;Teléfono;Fax;eMail\r\n");
    for (const ContactoVCard &c : contactos)
        t += csv(c.nombre) + u';' + csv(c.telefono) + u';' + csv(c.fax) + u';' + csv(c.email) + QStringLiteral("\r\n");
    return "\xEF\xBB\xBF" + t.toUtf8();
}

} // namespace kvr
