#include <kvr/valores.h>
#include <kvr/error.h>
#include <kvr/fechas.h>
#include <kvr/numeros.h>
#include <kvr/servicios.h>
#include <kvr/tags.h>

#include <cmath>

namespace kvr {

QDate FechaTrabajo;

namespace {

QString leer(const QString &tag, const QString &clave)
{
    return LeerTag(tag, clave).value_or(QString());
}

// String(n, c) of the desktop runtime: a negative count is an argument error.
QString repetir(int n, QChar c)
{
    if (n < 0)
        throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido);
    return QString(n, c);
}

QString derecha(const QString &s, int n)
{
    if (n < 0)
        throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido);
    return s.right(n);
}

QString izquierda(const QString &s, int n)
{
    if (n < 0)
        throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido);
    return s.left(n);
}

QString sinBlancosIzquierda(const QString &s)
{
    qsizetype i = 0;
    while (i < s.size() && s[i] == u' ')
        ++i;
    return s.mid(i);
}

QString sinBlancos(const QString &s)
{
    qsizetype i = 0, j = s.size();
    while (i < j && s[i] == u' ')
        ++i;
    while (j > i && s[j - 1] == u' ')
        --j;
    return s.mid(i, j - i);
}

int decimalesDe(const QString &tag)
{
    QString d = LeerTag(tag, QStringLiteral("D")).value_or(QString());
    if (d.isEmpty())
        d = QStringLiteral("2");
    return EnteroCorto(Val(d));
}

QString dosUltimas(double v)
{
    return TextoNumero(1000.0 + v).right(2);
}

} // namespace

QString FormatearCampo(const QString &valor, const QString &tag)
{
    const QString tipo = leer(tag, QStringLiteral("T"));
    const int largo = EnteroCorto(Val(leer(tag, QStringLiteral("L"))));
    const QString ajuste = leer(tag, QStringLiteral("A"));

    if (tipo == u"N" || tipo == u"n") {
        const int decimales = decimalesDe(tag);
        if (sinBlancos(valor).isEmpty())
            return QString();
        const QString patron = decimales <= 0 ? QStringLiteral("#,##0")
                                              : QStringLiteral("#,##0.") + repetir(decimales, u'0');
        return Formato(Val(valor), patron);
    }
    if (tipo == u"D") {
        if (sinBlancos(valor).isEmpty())
            return QString();
        if (ajuste == u"D")
            return derecha(repetir(largo, u' ') + sinBlancosIzquierda(valor), largo);
        if (ajuste == u"C")
            return derecha(repetir(largo, u'0') + sinBlancosIzquierda(valor), largo);
        if (ajuste == u"I")
            return izquierda(sinBlancos(valor) + repetir(largo, u' '), largo);
        return QString();
    }
    if (tipo == u"F" || tipo == u"f") {
        const QString completa = CompletarFecha(valor);
        if (completa.isEmpty())
            return QString();
        const auto fecha = LeerFecha(completa);
        return FormatoFecha(*fecha, tipo == u"F" ? QStringLiteral("dd mmm yyyy") : QStringLiteral("dd mmmm"));
    }
    if (tipo == u"X") {
        QString s = valor;
        LetraNIF(s);
        return s;
    }
    if (tipo == u"H") {
        const qsizetype p = valor.indexOf(u':');
        const QString antes = p < 0 ? valor : valor.left(p);
        const QString despues = p < 0 ? QString() : valor.mid(p + 1);
        return dosUltimas(Val(antes)) + u':' + dosUltimas(Val(despues));
    }
    if (tipo == u"C") {
        QString s = valor;
        CompletarCuenta(s);
        return s;
    }
    return valor;
}

QString TextoEdicion(const QString &valor, const QString &tag)
{
    const QString tipo = leer(tag, QStringLiteral("T"));
    if (tipo == u"N" || tipo == u"n") {
        // A negative decimal count edits as whole numbers.
        const int decimales = std::max(0, decimalesDe(tag));
        QString r = valor;
        bool ok = false;
        double v = 0;
        try {
            v = ValorRegional(valor, &ok);
        } catch (const ErrorEjecucion &) {
            ok = false; // too large to be a number: left as it stands
        }
        if (ok)
            r = Formato(v, QStringLiteral("#.") + QString(decimales, u'0'));
        const qsizetype coma = r.indexOf(u',');
        if (coma >= 0)
            r[coma] = u'.';
        if (r.endsWith(u'.'))
            r.chop(1);
        if (r.startsWith(u'.'))
            r.prepend(u'0');
        return r;
    }
    if (tipo == u"F" || tipo == u"f") {
        const auto fecha = LeerFecha(valor);
        return fecha ? FormatoFecha(*fecha, QStringLiteral("dd/mm/yyyy")) : valor;
    }
    return valor;
}

QString HoyDMA()
{
    return ServiciosActuales().Hoy().toString(QStringLiteral("dd/MM/yyyy"));
}

QString CompletarFecha(const QString &valor)
{
    const qsizetype barras = valor.count(u'/');
    if (FechaTrabajo.isNull())
        FechaTrabajo = QDate::fromString(HoyDMA(), QStringLiteral("dd/MM/yyyy"));
    const QString mes = QString::number(FechaTrabajo.month());
    const QString anio = QString::number(FechaTrabajo.year());
    QString r;
    switch (barras) {
    case 0: {
        const qsizetype n = valor.size();
        if (n == 1 || n == 2)
            r = valor + u'/' + mes + u'/' + anio;
        else if (n == 3 || n == 4)
            r = valor.left(2) + u'/' + valor.mid(2) + u'/' + anio;
        else
            r = valor.left(2) + u'/' + valor.mid(2, 2) + u'/' + valor.mid(4);
        break;
    }
    case 1:
        r = valor.endsWith(u'/') ? valor + mes + u'/' + anio : valor + u'/' + anio;
        break;
    case 2:
        r = valor.endsWith(u'/') ? valor + anio : valor;
        break;
    default:
        r = valor;
        break;
    }
    return EsFecha(r) ? r : QString();
}

void LetraNIF(QString &s)
{
    if (!s.endsWith(u'?') || s.endsWith(QStringLiteral("(?")))
        return;
    static const QString tabla = QStringLiteral("00T 04R 08W 13A 17G 21M 26Y 30F 34P 39D 43X 47B "
                                                "52N 56J 60Z 65S 69Q 73V 78H 82L 86C 91K 95E");
    const double x = Val(s);
    const double q = x / 23.0;
    const double codigo = std::floor((q - std::floor(q)) * 100.0) + 100.0;
    const QString dos = TextoNumero(codigo).right(2);
    const qsizetype p = tabla.indexOf(dos);
    const QChar letra = p >= 0 ? tabla.at(p + 2) : QChar(u'?');
    s.chop(1);
    if (Val(s) > 0)
        s += letra;
}

void CompletarCuenta(QString &s)
{
    s = sinBlancos(s);
    if (s.isEmpty())
        return;
    const qsizetype punto = s.indexOf(u'.');
    if (punto >= 0) {
        const int p = int(punto) + 1; // counted from 1
        const QString resto = QStringLiteral("00000000") + s.mid(punto + 1);
        s = s.left(punto) + derecha(resto, 9 - p);
        return;
    }
    if (s.size() >= 3) {
        const QString dos = s.left(2);
        const bool grupoCorto = dos == u"40" || dos == u"41" || dos == u"43" || dos == u"44";
        const qsizetype largoPrefijo = grupoCorto ? 2 : 3;
        s = s.left(largoPrefijo) + repetir(8 - int(s.size()), u'0') + s.mid(largoPrefijo);
        return;
    }
    s = (s + QStringLiteral("00000000")).left(8);
}

} // namespace kvr
