// The keystroke rules of data-entry fields: which characters a field accepts, which it changes
// and when the focus moves on.
#include <kvr/numeros.h>
#include <kvr/tags.h>
#include <kvr/teclas.h>
#include <kvr/valores.h>

namespace kvr {

DecisionTecla DecidirTecla(const QString &tag, const QString &texto, int inicioSeleccion,
                           int largoSeleccion, int codigo)
{
    DecisionTecla d;
    if (codigo == 8) {
        d.codigo = 8;
        return d;
    }
    if (codigo == 13) {
        d.accion = DecisionTecla::Tabulador;
        return d;
    }
    if (codigo == u'+') {
        d.accion = DecisionTecla::PorOmision;
        return d;
    }
    const QString tipo = LeerTag(tag, QStringLiteral("T")).value_or(QString());
    QString decimales = LeerTag(tag, QStringLiteral("D")).value_or(QString());
    const int largo = EnteroCorto(Val(LeerTag(tag, QStringLiteral("L")).value_or(QString())));
    if (decimales.isEmpty() && tipo.toUpper() == u"N")
        decimales = QStringLiteral("2");

    QChar c{char16_t(codigo)};
    bool aceptado = false;
    static const QString digitos = QStringLiteral("0123456789");

    if (tipo == u"N" || tipo == u"n" || tipo == u"C") {
        if (c == u',')
            c = u'.';
        const double dec = Val(decimales);
        // A minus only at the start and only in signed fields, one point, nothing but digits.
        const bool rechazado = (c == u'-' && (inicioSeleccion != 0 || tipo != u"N"))
                               || (c == u'.' && texto.contains(u'.')) || !QStringLiteral("0123456789.-").contains(c);
        if (rechazado) {
            aceptado = false;
        } else if (dec <= 0 && tipo != u"C") {
            aceptado = c != u'.';
        } else {
            const qsizetype p = texto.indexOf(u'.') + 1; // counted from 1, 0 when absent
            aceptado = !(p > 0 && inicioSeleccion > p && double(texto.size() - p) == dec);
        }
    } else if (tipo == u"D") {
        aceptado = digitos.contains(c);
    } else if (tipo == u"F") {
        if (c == u'-' || c == u'.')
            c = u'/';
        if (c == u'/')
            aceptado = !(texto.count(u'/') == 2 || texto.endsWith(u'/') || inicioSeleccion == 0);
        else
            aceptado = digitos.contains(c);
    } else if (tipo == u"H") {
        if (c == u'/' || c == u'.')
            c = u':';
        if (c == u':')
            aceptado = !texto.contains(u':');
        else
            aceptado = digitos.contains(c);
    } else if (tipo == u"M" || tipo == u"X") {
        c = c.toUpper();
        aceptado = true;
        if (tipo == u"X" && c == u'?') {
            QString s = texto + u'?';
            LetraNIF(s);
            if (s.isEmpty())
                aceptado = false; // nothing to type: the number had no letter
            else
                c = s.back();
        }
    } else {
        aceptado = true;
    }

    if (!aceptado)
        return d;
    d.codigo = c.unicode();
    const qsizetype n = texto.size();
    if (largoSeleccion == 0 && n == largo - 1) {
        d.tabTrasEntregar = true;
    } else if (largoSeleccion == 0 && n == largo) {
        d.codigo = 0;
        d.accion = DecisionTecla::Tabulador;
    }
    return d;
}

} // namespace kvr
