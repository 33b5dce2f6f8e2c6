#include <kvr/identificacion.h>

#include <kvr/valores.h>

namespace kvr {

namespace {

bool cifras(QStringView s)
{
    for (QChar c : s)
        if (c < u'0' || c > u'9')
            return false;
    return !s.isEmpty();
}

// The mod-23 letter of a number, from LetraNIF's table. LetraNIF gives no letter to 0, whose
// remainder is that of 23.
QChar letraDe(qint64 numero)
{
    QString s = QString::number(numero == 0 ? 23 : numero) + u'?';
    LetraNIF(s);
    return s.back();
}

// The control digit of a CIF's seven digits: the digits in even places added, those in odd places
// doubled and their digits added, and the complement to ten of the last digit of the sum.
int digitoCIF(QStringView siete)
{
    int suma = 0;
    for (int i = 0; i < 7; ++i) {
        const int d = siete[i].digitValue();
        if (i % 2 == 0)
            suma += (2 * d) / 10 + (2 * d) % 10;
        else
            suma += d;
    }
    return (10 - suma % 10) % 10;
}

} // namespace

Identificacion ValidarIdentificacionFiscal(const QString &texto)
{
    Identificacion r;
    for (QChar c : texto)
        if (!c.isSpace() && c != u'.' && c != u'-')
            r.normalizada += c.toUpper();
    // The VAT number's country prefix, when what follows has an identifier's length.
    if (r.normalizada.size() == 11 && r.normalizada.startsWith(u"ES"))
        r.normalizada.remove(0, 2);

    const QString &n = r.normalizada;
    if (n.size() != 9)
        return r;
    const QChar primera = n[0], ultima = n[8];
    const QStringView centro = QStringView(n).mid(1, 7);
    if (cifras(QStringView(n).left(8))) {
        r.tipo = TipoIdentificacion::DNI;
        r.control = letraDe(n.left(8).toLongLong());
    } else if (cifras(centro) && QStringView(u"XYZ").contains(primera)) {
        r.tipo = TipoIdentificacion::NIE;
        r.control = letraDe((primera.unicode() - u'X') * 10'000'000LL + centro.toLongLong());
    } else if (cifras(centro) && QStringView(u"KLM").contains(primera)) {
        r.tipo = TipoIdentificacion::NIFEspecial;
        r.control = letraDe(centro.toLongLong());
    } else if (cifras(centro) && QStringView(u"ABCDEFGHJNPQRSUVW").contains(primera)) {
        r.tipo = TipoIdentificacion::CIF;
        const int d = digitoCIF(centro);
        const QChar digito = QChar(u'0' + d), letra = QStringView(u"JABCDEFGHI")[d];
        if (QStringView(u"ABEH").contains(primera))
            r.control = digito;
        else if (QStringView(u"NPQRSW").contains(primera))
            r.control = letra;
        else // either form is right; a wrong one is told the digit
            r.control = ultima == letra ? letra : digito;
    } else {
        return r;
    }
    r.valida = ultima == r.control;
    return r;
}

} // namespace kvr
