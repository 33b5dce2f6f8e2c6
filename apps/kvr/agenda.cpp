#include "agenda.h"

#include <kvr/contactos.h>
#include <kvr/error.h>
#include <kvr/ficheros.h>
#include <kvr/intercambio.h>
#include <kvr/rejilla.h>
#include <kvr/vcard.h>

#include <QCryptographicHash>
#include <QSaveFile>
#include <QSet>
#include <QUuid>

#include <cstdio>

namespace kvr::orden {

namespace {

void decir(FILE *f, const QString &t)
{
    (void)std::fputs((t + u'\n').toUtf8().constData(), f);
}

int fallo(const QString &t)
{
    decir(stderr, QStringLiteral("kvr telefonos: ") + t);
    return 2;
}

// A value as the contacts file can hold it: no TAB or line break (they would split the contact).
QString limpio(QString v)
{
    for (QChar &c : v)
        if (c == u'\t' || c == u'\r' || c == u'\n')
            c = u' ';
    return v.trimmed();
}

QString clave(const ContactoVCard &c)
{
    return QStringList{limpio(c.nombre), limpio(c.telefono), limpio(c.fax), limpio(c.email)}.join(u'\t');
}

// Whether "TLF" names a CardDAV server rather than a folder.
bool esServidor()
{
    const QString tlf = qEnvironmentVariable("TLF");
    return tlf.startsWith(u"http://", Qt::CaseInsensitive) || tlf.startsWith(u"https://", Qt::CaseInsensitive);
}

QList<ContactoVCard> contactosDe(const Rejilla &g)
{
    QList<ContactoVCard> r;
    for (int f = 1; f < g.Rows(); ++f) {
        ContactoVCard c{g.TextMatrix(f, ColNombre), g.TextMatrix(f, ColTelefono), g.TextMatrix(f, ColFax),
                        g.TextMatrix(f, ColEmail)};
        if (!clave(c).remove(u'\t').isEmpty())
            r << c;
    }
    return r;
}

} // namespace

int ImportarContactos(const QString &fichero)
{
    if (esServidor())
        return fallo(QStringLiteral("la agenda en un servidor CardDAV (TLF=%1) aún no puede importar").arg(qEnvironmentVariable("TLF")));
    QByteArray datos;
    if (const auto f = LeerFicheroRegular(fichero, datos))
        return fallo(QStringLiteral("no se puede leer «%1»: %2").arg(fichero, f->causa));
    QList<ContactoLeido> leidos;
    QStringList rechazados;
    switch (FormatoDeFichero(fichero)) {
    case FormatoContactos::VCard: {
        const LecturaVCards l = LeerVCards(datos);
        if (!l.problema.isEmpty())
            return fallo(QStringLiteral("«%1» no es un fichero de vCards entero: %2").arg(fichero, l.problema));
        int n = 0;
        for (const VCard &t : l.tarjetas) {
            ContactoLeido c{ContactoDeVCard(t), {}, ++n};
            for (const PropiedadVCard &p : t.propiedades)
                if (p.nombre == u"UID")
                    c.uid = p.valor;
            leidos << c;
        }
        break;
    }
    case FormatoContactos::Csv: {
        const LecturaCsv l = LeerCsvContactos(datos);
        if (!l.problema.isEmpty())
            return fallo(QStringLiteral("«%1»: %2").arg(fichero, l.problema));
        leidos = l.contactos;
        rechazados = l.rechazados;
        break;
    }
    case FormatoContactos::Dat: {
        Rejilla g;
        QString noCabe;
        ContactosDeTexto(datos, g, &noCabe);
        if (!noCabe.isEmpty())
            return fallo(QStringLiteral("«%1» no es un fichero de contactos: %2").arg(fichero, noCabe));
        int n = 0;
        for (const ContactoVCard &c : contactosDe(g))
            leidos << ContactoLeido{c, {}, ++n};
        break;
    }
    }

    const qsizetype total = leidos.size() + rechazados.size();
    Rejilla agenda;
    const QString ruta = RutaContactos();
    SelloFichero sello;
    try {
        sello = LeerFicheroContactos(ruta, agenda);
    } catch (const ErrorEjecucion &e) {
        return fallo(e.descripcion());
    }
    QSet<QString> hay;
    for (const ContactoVCard &c : contactosDe(agenda))
        hay.insert(clave(c));
    int anadidos = 0, omitidos = 0;
    for (const ContactoLeido &l : std::as_const(leidos)) {
        const QString k = clave(l.contacto);
        if (limpio(l.contacto.nombre).isEmpty()) {
            rechazados << (l.uid.isEmpty() ? QStringLiteral("contacto %1").arg(l.donde) : QStringLiteral("UID %1").arg(l.uid))
                              + QStringLiteral(": sin nombre");
            continue;
        }
        if (hay.contains(k)) { // the same four values are there already: importing again adds nothing
            ++omitidos;
            continue;
        }
        hay.insert(k);
        // A blank first row (a new phone book's) takes the first contact.
        if (anadidos == 0 && agenda.Rows() == 2 && contactosDe(agenda).isEmpty())
            agenda.PonerRows(1);
        agenda.AddItem(u'\t' + k);
        ++anadidos;
    }
    if (anadidos > 0) {
        switch (GrabarFicheroContactos(ruta, agenda, sello)) {
        case ResultadoGrabacion::Grabado: break;
        case ResultadoGrabacion::Modificado:
            return fallo(QStringLiteral("otro programa cambió %1 mientras se importaba: no se ha grabado nada; repita la orden").arg(ruta));
        case ResultadoGrabacion::Ocupado:
            return fallo(QStringLiteral("otro programa está grabando %1: no se ha grabado nada; repita la orden").arg(ruta));
        }
    }
    for (const QString &r : std::as_const(rechazados))
        decir(stderr, QStringLiteral("kvr telefonos: rechazado, ") + r);
    decir(stdout, QStringLiteral("leídos %1, añadidos %2, actualizados 0, omitidos %3 (ya estaban), rechazados %4")
                      .arg(total)
                      .arg(anadidos)
                      .arg(omitidos)
                      .arg(rechazados.size()));
    return rechazados.isEmpty() ? 0 : 1;
}

int ExportarContactos(const QString &fichero)
{
    if (esServidor())
        return fallo(QStringLiteral("la agenda en un servidor CardDAV (TLF=%1) aún no puede exportar").arg(qEnvironmentVariable("TLF")));
    Rejilla agenda;
    try {
        LeerFicheroContactos(RutaContactos(), agenda);
    } catch (const ErrorEjecucion &e) {
        return fallo(e.descripcion());
    }
    const QList<ContactoVCard> contactos = contactosDe(agenda);
    QByteArray datos;
    switch (FormatoDeFichero(fichero)) {
    case FormatoContactos::VCard:
        for (const ContactoVCard &c : contactos) {
            // The UID follows from the four values: exporting twice gives the same vCards, and a
            // server that imports them twice keeps one copy.
            const QByteArray resumen = QCryptographicHash::hash(clave(c).toUtf8(), QCryptographicHash::Sha1);
            VCard t;
            t.propiedades << PropiedadVCard{{}, u"UID"_qs, {}, u"urn:uuid:"_qs
                + QUuid::fromRfc4122(resumen.left(16)).toString(QUuid::WithoutBraces)};
            PonerContactoEnVCard(t, c);
            datos += EscribirVCard(t);
        }
        break;
    case FormatoContactos::Csv:
        datos = CsvDeContactos(contactos);
        break;
    case FormatoContactos::Dat:
        datos = TextoContactos(agenda);
        break;
    }
    QSaveFile f(fichero);
    if (!f.open(QIODevice::WriteOnly) || f.write(datos) != datos.size() || !f.commit())
        return fallo(QStringLiteral("no se puede escribir «%1»: %2").arg(fichero, f.errorString()));
    decir(stdout, QStringLiteral("exportados %1 contactos a %2").arg(contactos.size()).arg(fichero));
    return 0;
}

} // namespace kvr::orden
