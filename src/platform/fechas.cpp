#include <kvr/fechas.h>
#include <kvr/servicios.h>

namespace kvr {

namespace {

QString sinAcentos(const QString &s)
{
    QString d = s.normalized(QString::NormalizationForm_D);
    QString r;
    r.reserve(d.size());
    for (QChar c : d)
        if (c.category() != QChar::Mark_NonSpacing)
            r += c;
    return r.toLower();
}

QString nombreCorto(const QLocale &locale, int mes)
{
    QString n = locale.monthName(mes, QLocale::ShortFormat);
    if (n.endsWith(u'.'))
        n.chop(1);
    return n;
}

// The month a name stands for: the full or abbreviated name of the locale, or any prefix of
// three or more letters of the full name (so "sep" and "sept" both name September).
int mesPorNombre(const QString &palabra, const QLocale &locale)
{
    const QString p = sinAcentos(palabra);
    if (p.isEmpty())
        return 0;
    for (int m = 1; m <= 12; ++m) {
        const QString largo = sinAcentos(locale.monthName(m, QLocale::LongFormat));
        const QString corto = sinAcentos(nombreCorto(locale, m));
        if (p == largo || p == corto || (p.size() >= 3 && largo.startsWith(p)))
            return m;
    }
    return 0;
}

int anioDe(const QString &digitos)
{
    const int v = digitos.toInt();
    if (digitos.size() <= 2)
        return v < 30 ? 2000 + v : 1900 + v;
    if (digitos.size() > 4 || v < 100)
        return 0;
    return v;
}

} // namespace

std::optional<QDate> LeerFecha(const QString &texto, const QLocale &locale)
{
    struct Pieza { QString texto; bool numero; };
    QList<Pieza> piezas;
    const QString t = texto.trimmed();
    int i = 0;
    const int n = int(t.size());
    while (i < n) {
        // Separators between pieces: blanks and at most one of / - . ,
        int marcas = 0;
        while (i < n && (t[i].isSpace() || t[i] == u'/' || t[i] == u'-' || t[i] == u'.' || t[i] == u',')) {
            if (!t[i].isSpace())
                ++marcas;
            ++i;
        }
        if (i >= n) {
            // Only an abbreviated month name may end in its point ("12 sept.").
            if (marcas == 1 && !piezas.isEmpty() && !piezas.last().numero && t.endsWith(u'.'))
                break;
            return std::nullopt;
        }
        if (marcas > 1 || (piezas.isEmpty() && marcas > 0))
            return std::nullopt;
        const int ini = i;
        if (t[i].isDigit()) {
            while (i < n && t[i].isDigit())
                ++i;
            piezas.append({t.mid(ini, i - ini), true});
        } else if (t[i].isLetter()) {
            while (i < n && t[i].isLetter())
                ++i;
            piezas.append({t.mid(ini, i - ini), false});
        } else {
            return std::nullopt;
        }
        if (piezas.size() > 3)
            return std::nullopt;
    }
    if (piezas.size() < 2)
        return std::nullopt;

    int dia = 0, mes = 0, anio = 0;
    QStringList numeros;
    int nombres = 0;
    for (const Pieza &p : piezas) {
        if (p.numero) {
            if (p.texto.size() > 4)
                return std::nullopt;
            numeros.append(p.texto);
        } else {
            mes = mesPorNombre(p.texto, locale);
            if (mes == 0)
                return std::nullopt;
            ++nombres;
        }
    }
    if (nombres > 1)
        return std::nullopt;
    if (nombres == 1) {
        if (numeros.isEmpty() || numeros.size() > 2)
            return std::nullopt;
        dia = numeros[0].toInt();
        anio = numeros.size() == 2 ? anioDe(numeros[1]) : ServiciosActuales().Hoy().year();
    } else {
        dia = numeros[0].toInt();
        mes = numeros[1].toInt();
        anio = numeros.size() == 3 ? anioDe(numeros[2]) : ServiciosActuales().Hoy().year();
    }
    if (anio < 100 || anio > 9999 || !QDate::isValid(anio, mes, dia))
        return std::nullopt;
    return QDate(anio, mes, dia);
}

bool EsFecha(const QString &texto, const QLocale &locale)
{
    return LeerFecha(texto, locale).has_value();
}

QString FormatoFecha(const QDate &fecha, const QString &patron, const QLocale &locale)
{
    if (!fecha.isValid())
        return QString();
    QString r;
    int i = 0;
    const int n = int(patron.size());
    auto repeticiones = [&](QChar c) {
        int k = i;
        while (k < n && patron[k].toLower() == c)
            ++k;
        return k - i;
    };
    while (i < n) {
        const QChar c = patron[i].toLower();
        if (c == u'd') {
            const int k = repeticiones(u'd');
            if (k == 1) r += QString::number(fecha.day());
            else if (k == 2) r += QStringLiteral("%1").arg(fecha.day(), 2, 10, QChar(u'0'));
            else if (k == 3) r += locale.dayName(fecha.dayOfWeek(), QLocale::ShortFormat);
            else r += locale.dayName(fecha.dayOfWeek(), QLocale::LongFormat);
            i += k;
        } else if (c == u'm') {
            const int k = repeticiones(u'm');
            if (k == 1) r += QString::number(fecha.month());
            else if (k == 2) r += QStringLiteral("%1").arg(fecha.month(), 2, 10, QChar(u'0'));
            else if (k == 3) r += nombreCorto(locale, fecha.month());
            else r += locale.monthName(fecha.month(), QLocale::LongFormat);
            i += k;
        } else if (c == u'y') {
            const int k = repeticiones(u'y');
            if (k <= 2) r += QStringLiteral("%1").arg(fecha.year() % 100, 2, 10, QChar(u'0'));
            else r += QStringLiteral("%1").arg(fecha.year(), 4, 10, QChar(u'0'));
            i += k;
        } else {
            r += patron[i];
            ++i;
        }
    }
    return r;
}

qint64 SerieFecha(const QDate &fecha)
{
    return QDate(1899, 12, 30).daysTo(fecha);
}

QDate FechaDeSerie(qint64 serie)
{
    return QDate(1899, 12, 30).addDays(serie);
}

} // namespace kvr
