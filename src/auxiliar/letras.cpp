#include <kvr/letras.h>

#include <kvr/error.h>

#include <QStringList>

#include <cmath>

namespace kvr {

namespace {

constexpr qint64 kMaximo = 999'999'999'999;

// How a group ending in one is written: "uno" alone, "un" before a noun or "mil", "una" for a
// feminine noun (which also makes the hundreds feminine: "doscientas").
enum class Forma { Uno, Un, Una };

QString unidadesYDecenas(int n, Forma forma)
{
    static const char *const hasta29[] = {
        "", "uno", "dos", "tres", "cuatro", "cinco", "seis", "siete", "ocho", "nueve",
        "diez", "once", "doce", "trece", "catorce", "quince", "dieciséis", "diecisiete",
        "dieciocho", "diecinueve", "veinte", "veintiuno", "veintidós", "veintitrés",
        "veinticuatro", "veinticinco", "veintiséis", "veintisiete", "veintiocho", "veintinueve"};
    static const char *const decenas[] = {"", "", "", "treinta", "cuarenta", "cincuenta",
                                          "sesenta", "setenta", "ochenta", "noventa"};
    if (n == 1)
        return forma == Forma::Uno ? u"uno"_qs : forma == Forma::Un ? u"un"_qs : u"una"_qs;
    if (n == 21)
        return forma == Forma::Uno ? u"veintiuno"_qs
            : forma == Forma::Un   ? u"veintiún"_qs
                                   : u"veintiuna"_qs;
    if (n < 30)
        return QString::fromUtf8(hasta29[n]);
    QString r = QString::fromUtf8(decenas[n / 10]);
    if (n % 10)
        r += u" y "_qs + unidadesYDecenas(n % 10, forma);
    return r;
}

// 1 to 999.
QString grupo(int n, Forma forma)
{
    static const char *const centenas[] = {"", "ciento", "doscient", "trescient", "cuatrocient",
                                           "quinient", "seiscient", "setecient", "ochocient",
                                           "novecient"};
    if (n == 100)
        return u"cien"_qs;
    QStringList partes;
    if (n >= 100) {
        QString c = QString::fromUtf8(centenas[n / 100]);
        if (n >= 200)
            c += forma == Forma::Una ? u"as"_qs : u"os"_qs;
        partes << c;
    }
    if (n % 100)
        partes << unidadesYDecenas(n % 100, forma);
    return partes.join(u' ');
}

// 1 to 999 999: the thousands take the apocope ("veintiún mil"), or the feminine.
QString hastaMillon(int n, Forma forma)
{
    QStringList partes;
    const int miles = n / 1000, resto = n % 1000;
    if (miles == 1)
        partes << u"mil"_qs;
    else if (miles > 1)
        partes << grupo(miles, forma == Forma::Una ? Forma::Una : Forma::Un) + u" mil"_qs;
    if (resto)
        partes << grupo(resto, forma);
    return partes.join(u' ');
}

// 0 to 999 999 999 999. The millions count the masculine noun "millón" whatever the currency.
QString enLetras(qint64 n, Forma forma, bool *acabaEnMillones = nullptr)
{
    if (acabaEnMillones)
        *acabaEnMillones = false;
    if (n == 0)
        return u"cero"_qs;
    const int millones = int(n / 1'000'000), resto = int(n % 1'000'000);
    QStringList partes;
    if (millones == 1)
        partes << u"un millón"_qs;
    else if (millones > 1)
        partes << hastaMillon(millones, Forma::Un) + u" millones"_qs;
    if (resto)
        partes << hastaMillon(resto, forma);
    else if (acabaEnMillones)
        *acabaEnMillones = true;
    return partes.join(u' ');
}

[[noreturn]] void desbordamiento()
{
    throw ErrorEjecucion(ErrorEjecucion::Desbordamiento);
}

// |importe| in units of 10^-decimales (0 or 2), rounded half away from zero on the amount's
// decimal digits: 1.005 is taken as written, not as the binary 1.00499999... that holds it.
qint64 redondeado(double importe, int decimales)
{
    const double a = std::fabs(importe);
    if (!std::isfinite(a) || a >= 1e12)
        desbordamiento();
    const int enteras = a < 1 ? 1 : int(std::floor(std::log10(a))) + 1;
    const QString texto = QString::number(a, 'f', std::max(2, 15 - enteras));
    const qsizetype punto = texto.indexOf(u'.');
    qint64 r = texto.left(punto).toLongLong();
    for (int i = 1; i <= decimales; ++i)
        r = r * 10 + texto.at(punto + i).digitValue();
    if (texto.at(punto + decimales + 1) >= u'5')
        ++r;
    return r;
}

} // namespace

QString NumeroEnLetras(qint64 numero)
{
    if (numero > kMaximo || numero < -kMaximo)
        desbordamiento();
    const QString texto = enLetras(numero < 0 ? -numero : numero, Forma::Uno);
    return numero < 0 ? u"menos "_qs + texto : texto;
}

QString ImporteEnLetras(double importe, const QString &moneda)
{
    const bool euros = moneda.compare(u"EUR", Qt::CaseInsensitive) == 0;
    if (!euros && moneda.compare(u"ESP", Qt::CaseInsensitive) != 0)
        throw ErrorEjecucion(ErrorEjecucion::ArgumentoNoValido);
    // Pesetas have no céntimos: whole pesetas.
    const qint64 centimos = euros ? redondeado(importe, 2) : redondeado(importe, 0) * 100;
    const qint64 unidades = centimos / 100, resto = centimos % 100;
    if (unidades > kMaximo)
        desbordamiento();

    bool deMillones = false;
    QString texto = enLetras(unidades, euros ? Forma::Un : Forma::Una, &deMillones);
    if (deMillones)
        texto += u" de"_qs;
    if (euros)
        texto += unidades == 1 ? u" euro"_qs : u" euros"_qs;
    else
        texto += unidades == 1 ? u" peseta"_qs : u" pesetas"_qs;
    if (resto)
        texto += u" con "_qs + enLetras(resto, Forma::Un)
            + (resto == 1 ? u" céntimo"_qs : u" céntimos"_qs);
    if (importe < 0 && centimos > 0)
        texto.prepend(u"menos "_qs);
    return texto;
}

} // namespace kvr
