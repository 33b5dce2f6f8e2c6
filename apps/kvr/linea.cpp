#include "linea.h"

#include <QLocale>

#include <algorithm>

namespace kvr::orden {

Lectura LeerLinea(const QStringList &palabras, const ReglasOrden &e)
{
    Lectura r;
    Argumentos &a = r.argumentos;
    a.orden = e.nombre;
    const auto error = [&r](const QString &texto) {
        r.error = texto;
        return r;
    };
    bool soloPosicionales = false;
    for (qsizetype i = 0; i < palabras.size(); ++i) {
        const QString &s = palabras[i];
        if (soloPosicionales || !s.startsWith(u"--") || s.size() == 2) {
            if (s == u"--" && !soloPosicionales)
                soloPosicionales = true;
            else
                a.posicionales << s;
            continue;
        }
        if (s == u"--help") {
            r.ayuda = true;
            return r;
        }
        QString nombre = s.mid(2);
        std::optional<QString> valor;
        if (const qsizetype igual = nombre.indexOf(u'='); igual >= 0) {
            valor = nombre.mid(igual + 1);
            nombre.truncate(igual);
        }
        if (e.conValor.contains(nombre) || (e.ventana && nombre == u"timeout")) {
            if (!valor) {
                if (i + 1 >= palabras.size())
                    return error(QStringLiteral("falta el valor de --%1").arg(nombre));
                valor = palabras[++i];
            }
            a.opciones[nombre] = *valor;
            if (e.repetibles.contains(nombre))
                a.listas[nombre] << *valor;
        } else if (e.banderas.contains(nombre) && !valor) {
            a.opciones[nombre] = QString();
        } else {
            return error(QStringLiteral("opción no válida «%1»").arg(s));
        }
    }
    if (a.posicionales.size() < e.minimo)
        return error(QStringLiteral("faltan argumentos"));
    if (a.posicionales.size() > e.maximo)
        return error(QStringLiteral("sobra el argumento «%1»").arg(a.posicionales.value(e.maximo)));
    return r;
}

std::optional<double> LeerCantidad(const QString &texto, QString &problema)
{
    QString t = texto.trimmed();
    const bool negativo = t.startsWith(u'-');
    if (negativo || t.startsWith(u'+'))
        t.remove(0, 1);
    const qsizetype puntos = t.count(u'.'), comas = t.count(u',');
    QChar decimal, miles;
    if (puntos && comas) {
        decimal = t.lastIndexOf(u'.') > t.lastIndexOf(u',') ? u'.' : u',';
        miles = decimal == u'.' ? u',' : u'.';
        if (t.count(decimal) > 1)
            return std::nullopt;
    } else if (puntos + comas > 1) {
        miles = puntos ? u'.' : u',';
    } else if (puntos + comas == 1) {
        const QChar marca = puntos ? u'.' : u',';
        if (t.size() - t.indexOf(marca) - 1 == 3 && t.indexOf(marca) > 0) {
            const qsizetype m = t.indexOf(marca);
            problema = QStringLiteral("«%1» es ambigua: «%2» puede separar miles o decimales. Escriba %3 si son miles, "
                                      "o %4 si son decimales")
                           .arg(texto, QString(marca), t.left(m) + t.mid(m + 1), t.left(m) + u',' + t.mid(m + 1) + u'0');
            return std::nullopt;
        }
        decimal = marca;
    }
    QString entero = decimal.isNull() ? t : t.left(t.indexOf(decimal));
    const QString fraccion = decimal.isNull() ? QString() : t.mid(t.indexOf(decimal) + 1);
    if (!miles.isNull()) {
        // Groups of three after the first group of one to three digits.
        const QStringList grupos = entero.split(miles);
        for (qsizetype i = 0; i < grupos.size(); ++i)
            if (grupos[i].isEmpty() || grupos[i].size() > 3 || (i > 0 && grupos[i].size() != 3))
                return std::nullopt;
        entero = grupos.join(QString());
    }
    const auto soloCifras = [](const QString &s) {
        return std::all_of(s.begin(), s.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    };
    if ((entero.isEmpty() && fraccion.isEmpty()) || !soloCifras(entero) || !soloCifras(fraccion))
        return std::nullopt;
    bool ok = false;
    const double v = QLocale::c().toDouble(
        (entero.isEmpty() ? QStringLiteral("0") : entero) + (fraccion.isEmpty() ? QString() : u'.' + fraccion), &ok);
    if (!ok)
        return std::nullopt;
    return negativo ? -v : v;
}

std::optional<int> LeerSegundos(const QString &texto)
{
    bool ok = false;
    const double segundos = QLocale::c().toDouble(QString(texto).replace(u',', u'.'), &ok);
    if (!ok || !(segundos >= 0) || segundos > 86400)
        return std::nullopt;
    return int(segundos * 1000);
}

} // namespace kvr::orden
