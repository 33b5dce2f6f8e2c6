// Contacts as vCards and as CSV: what the phone book shows of vCards of each version and of the forms real
// address books write; a contact edited keeps what the phone book does not show; what is written
// is 3.0 that python3-vobject (an outside reader and writer of vCards) reads back the same, and
// vCards vobject writes are read right.
#include <kvr/intercambio.h>
#include <kvr/vcard.h>

#include "../comun/ficheros.h"

#include <QTest>

using namespace kvr;

namespace {

QString cuatro(const ContactoVCard &c)
{
    return QStringList{c.nombre, c.telefono, c.fax, c.email}.join(u'|');
}

// The one vCard of a text, read whole.
VCard una(const QByteArray &texto)
{
    const LecturaVCards l = LeerVCards(texto);
    if (!l.problema.isEmpty() || l.tarjetas.size() != 1)
        qWarning("lectura: %s (%lld)", qPrintable(l.problema), qlonglong(l.tarjetas.size()));
    return l.tarjetas.value(0);
}

// Runs a Python program with vobject on `entrada`: its standard output.
QByteArray vobject(const char *programa, const QByteArray &entrada)
{
    return prueba::ejecutar(u"/usr/bin/python3"_qs, {u"-c"_qs, QString::fromUtf8(programa)}, entrada);
}

} // namespace

class TstVCard : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void lectura_data()
    {
        QTest::addColumn<QByteArray>("texto");
        QTest::addColumn<QString>("esperado"); // nombre|teléfono|fax|correo
        QTest::newRow("3.0") << QByteArray("BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Ana Pérez\r\nN:Pérez;Ana;;;\r\n"
                                           "TEL;TYPE=WORK,VOICE:952 111 222\r\nTEL;TYPE=WORK,FAX:952 111 333\r\n"
                                           "EMAIL;TYPE=INTERNET:ana@x.es\r\nEND:VCARD\r\n")
                             << u"Ana Pérez|952 111 222|952 111 333|ana@x.es"_qs;
        QTest::newRow("fax primero, tipos en minúscula y repetidos")
            << QByteArray("BEGIN:VCARD\nVERSION:3.0\nfn:Bea\ntel;type=work;type=fax:91 1\ntel;type=cell:600 2\nEND:VCARD\n")
            << u"Bea|600 2|91 1|"_qs;
        QTest::newRow("tipos entre comillas, 4.0, tel:")
            << QByteArray("BEGIN:VCARD\r\nVERSION:4.0\r\nFN:Carlos\r\nTEL;VALUE=uri;TYPE=\"work,fax\":tel:+34-91-3\r\n"
                          "TEL;VALUE=uri;TYPE=\"home,voice\":tel:+34-600-4\r\nEMAIL:c@x.es\r\nEND:VCARD\r\n")
            << u"Carlos|+34-600-4|+34-91-3|c@x.es"_qs;
        QTest::newRow("2.1 tipos sueltos")
            << QByteArray("BEGIN:VCARD\r\nVERSION:2.1\r\nFN:Dora\r\nTEL;WORK;FAX:91 5\r\nTEL;HOME:91 6\r\n"
                          "EMAIL;INTERNET:d@x.es\r\nEND:VCARD\r\n")
            << u"Dora|91 6|91 5|d@x.es"_qs;
        // "Begoña Muñoz, Málaga" in UTF-8 and in Latin-1, quoted-printable, with a soft line break.
        QTest::newRow("2.1 quoted-printable UTF-8")
            << QByteArray("BEGIN:VCARD\r\nVERSION:2.1\r\nFN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:Bego=C3=B1a Mu=C3=\r\n"
                          "=B1oz, M=C3=A1laga\r\nEND:VCARD\r\n")
            << u"Begoña Muñoz, Málaga|||"_qs;
        QTest::newRow("2.1 quoted-printable Latin-1, forma suelta")
            << QByteArray("BEGIN:VCARD\r\nVERSION:2.1\r\nFN;CHARSET=ISO-8859-1;QUOTED-PRINTABLE:Bego=F1a Mu=F1oz, M=E1laga\r\n"
                          "END:VCARD\r\n")
            << u"Begoña Muñoz, Málaga|||"_qs;
        QTest::newRow("líneas plegadas y escapes")
            << QByteArray("BEGIN:VCARD\r\nVERSION:3.0\r\nFN:García\\, Hnos.\\; S.L. \\\\ Madri\r\n d\r\n"
                          "EMAIL:ventas@garcia-hermanos-sociedad-limitada-de-madrid.e\r\n\ts\r\nEND:VCARD\r\n")
            << u"García, Hnos.; S.L. \\ Madrid|||ventas@garcia-hermanos-sociedad-limitada-de-madrid.es"_qs;
        QTest::newRow("saltos escapados") << QByteArray("BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Almac\xC3\xA9n\\nCentral\\NNorte\r\nEND:VCARD\r\n")
                                          << u"Almacén\nCentral\nNorte|||"_qs;
        QTest::newRow("Latin-1 sin juego de caracteres, UTF-8 cortado al final")
            << QByteArray("BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Caf\xE9 Mar\xED" "a\r\nEMAIL:ana\xC3\r\nEND:VCARD\r\n")
            << u"Café María|||anaÃ"_qs;
        QTest::newRow("sin FN: el nombre de N")
            << QByteArray("BEGIN:VCARD\r\nVERSION:3.0\r\nN:Núñez;Íñigo;José;Dr.;\r\nEND:VCARD\r\n")
            << u"Dr. Íñigo José Núñez|||"_qs;
        QTest::newRow("sin FN ni N: el correo")
            << QByteArray("BEGIN:VCARD\r\nVERSION:3.0\r\nEMAIL:solo@x.es\r\nEND:VCARD\r\n") << u"solo@x.es|||solo@x.es"_qs;
        QTest::newRow("grupos de Apple")
            << QByteArray("BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Eva\r\nitem1.TEL;type=pref:93 7\r\nitem1.X-ABLabel:_$!<Work>!$_\r\n"
                          "END:VCARD\r\n")
            << u"Eva|93 7||"_qs;
    }
    void lectura()
    {
        QFETCH(QByteArray, texto);
        QFETCH(QString, esperado);
        QCOMPARE(cuatro(ContactoDeVCard(una(texto))), esperado);
    }

    // A text read only in part says why, and keeps the vCards read whole before the fault.
    void problemas_data()
    {
        QTest::addColumn<QByteArray>("texto");
        QTest::addColumn<QString>("problema");
        QTest::addColumn<int>("enteras");
        const QByteArray buena = "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:A\r\nEND:VCARD\r\n";
        QTest::newRow("cortada") << buena + "BEGIN:VCARD\r\nFN:B\r\n" << u"falta el final (END:VCARD) de la última vCard"_qs << 1;
        QTest::newRow("basura") << buena + "<html>\r\n" << u"la línea 5 no es una propiedad de vCard"_qs << 1;
        QTest::newRow("una dentro de otra") << "BEGIN:VCARD\r\nBEGIN:VCARD\r\n"_qba << u"la línea 2 empieza una vCard dentro de otra"_qs << 0;
        QTest::newRow("fuera") << "FN:suelta\r\n"_qba << u"la línea 1 está fuera de una vCard"_qs << 0;
        QTest::newRow("vacío") << QByteArray() << QString() << 0;
    }
    void problemas()
    {
        QFETCH(QByteArray, texto);
        QFETCH(QString, problema);
        QFETCH(int, enteras);
        const LecturaVCards l = LeerVCards(texto);
        QCOMPARE(l.problema, problema);
        QCOMPARE(l.tarjetas.size(), enteras);
    }

    // An edit changes the four values only: an address, a note, a folded photo, a group, an
    // unknown X- property and a second e-mail come out as they went in; a 2.1 vCard comes out as
    // 3.0 with its values decoded; lines end in CR LF and hold at most 75 octets.
    void edicionConserva()
    {
        const QByteArray foto = QByteArray(300, 'Q').toBase64();
        QByteArray texto = "BEGIN:VCARD\r\nVERSION:2.1\r\nN:Gil;Ana;;;\r\nFN:Ana Gil\r\n"
                           "ADR;WORK:;;Calle Mayor\\, 3;Madrid;;28013;España\r\nNOTE;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:Cliente=\r\n"
                           " desde 2019 =C3=B1\r\nTEL;WORK:91 1\r\nEMAIL;INTERNET:ana@x.es\r\nEMAIL;HOME:otra@x.es\r\n"
                           "X-KVR-CUENTA:430.1\r\nitem2.URL:https://x.es\r\nCATEGORIES:Clientes,Madrid\r\n";
        texto += "PHOTO;ENCODING=BASE64;TYPE=JPEG:" + foto.left(60) + "\r\n " + foto.mid(60) + "\r\nEND:VCARD\r\n";
        VCard t = una(texto);
        PonerContactoEnVCard(t, {u"GIL SANZ, ANA"_qs, u"91 9"_qs, u"91 8"_qs, u"ana.gil@x.es"_qs});
        const QByteArray escrito = EscribirVCard(t);
        for (const QByteArray &linea : escrito.split('\n')) {
            QVERIFY2(linea.isEmpty() || linea.endsWith('\r'), linea.constData());
            QVERIFY2(linea.size() <= 76, linea.constData());
        }
        const VCard r = una(escrito);
        QCOMPARE(r.version, u"3.0"_qs);
        QCOMPARE(cuatro(ContactoDeVCard(r)), u"GIL SANZ, ANA|91 9|91 8|ana.gil@x.es"_qs);
        QStringList resto;
        for (const PropiedadVCard &p : r.propiedades)
            if (p.nombre != u"UID")
                resto << (p.grupo.isEmpty() ? QString() : p.grupo + u'.') + p.nombre + u'=' + p.valor.left(40);
        QCOMPARE(resto, (QStringList{u"N=GIL SANZ;ANA;;;"_qs, u"FN=GIL SANZ\\, ANA"_qs,
                                     u"ADR=;;Calle Mayor\\, 3;Madrid;;28013;España"_qs, u"NOTE=Cliente desde 2019 ñ"_qs,
                                     u"TEL=91 9"_qs, u"EMAIL=ana.gil@x.es"_qs, u"EMAIL=otra@x.es"_qs, u"X-KVR-CUENTA=430.1"_qs,
                                     u"item2.URL=https://x.es"_qs, u"CATEGORIES=Clientes,Madrid"_qs,
                                     u"PHOTO="_qs + QString::fromLatin1(foto.left(40)), u"TEL=91 8"_qs}));
        QCOMPARE(r.propiedades[10].valor, QString::fromLatin1(foto));
        QVERIFY(!escrito.contains("QUOTED-PRINTABLE"));
        // A new contact: N from the name, a UID; emptying a value removes its property.
        VCard nueva;
        PonerContactoEnVCard(nueva, {u"Luis Martín Sanz"_qs, u"600 1"_qs, {}, {}});
        PonerContactoEnVCard(nueva, {u"Luis Martín Sanz"_qs, {}, {}, u"l@x.es"_qs});
        QStringList nombres;
        for (const PropiedadVCard &p : nueva.propiedades)
            nombres << p.nombre + u'=' + (p.nombre == u"UID" ? p.valor.left(9) : p.valor);
        QCOMPARE(nombres, (QStringList{u"FN=Luis Martín Sanz"_qs, u"N=Sanz;Luis Martín;;;"_qs, u"UID=urn:uuid:"_qs,
                                       u"EMAIL=l@x.es"_qs}));
    }

    // Ours read by vobject, vobject's read by us: the same four values, accents and escapes too.
    void conVobject()
    {
        const QList<ContactoVCard> contactos = {
            {u"Ñoño, Señora; «Comillas» y \\ barra"_qs, u"+34 952 000 111"_qs, u"952 000 112"_qs, u"ñ@ejemplo.es"_qs},
            {u"Ana"_qs, {}, u"91 1"_qs, {}},
            {u"Una persona con un nombre tan largo que la línea tiene que plegarse más de una vez, ¿verdad?"_qs,
             u"600"_qs, {}, u"larga@x.es"_qs}};
        QByteArray nuestros;
        for (const ContactoVCard &c : contactos) {
            VCard t;
            PonerContactoEnVCard(t, c);
            nuestros += EscribirVCard(t);
        }
        const char *leer = R"(
import sys, vobject
for c in vobject.readComponents(sys.stdin.read()):
    tel = [t.value for t in c.contents.get('tel', []) if 'FAX' not in [x.upper() for x in t.params.get('TYPE', [])]]
    fax = [t.value for t in c.contents.get('tel', []) if 'FAX' in [x.upper() for x in t.params.get('TYPE', [])]]
    mail = [e.value for e in c.contents.get('email', [])]
    print('|'.join([c.fn.value, (tel or [''])[0], (fax or [''])[0], (mail or [''])[0]]))
)";
        QStringList esperado;
        for (const ContactoVCard &c : contactos)
            esperado << cuatro(c);
        QCOMPARE(QString::fromUtf8(vobject(leer, nuestros)).trimmed().split(u'\n'), esperado);

        const char *escribir = R"(
import vobject
for fn, tel, fax, mail in [('Pérez, Ana; "la de Málaga"', '952 1', '952 2', 'ana@x.es'), ('Bob', '', '91 3', '')]:
    c = vobject.vCard()
    c.add('fn').value = fn
    c.add('n').value = vobject.vcard.Name(family=fn.split(',')[0], given='')
    if tel:
        t = c.add('tel'); t.value = tel; t.type_param = 'WORK'
    if fax:
        t = c.add('tel'); t.value = fax; t.type_paramlist = ['WORK', 'FAX']
    if mail:
        c.add('email').value = mail
    print(c.serialize(), end='')
)";
        const LecturaVCards suyos = LeerVCards(vobject(escribir, {}));
        QCOMPARE(suyos.problema, QString());
        QStringList leidos;
        for (const VCard &t : suyos.tarjetas)
            leidos << cuatro(ContactoDeVCard(t));
        QCOMPARE(leidos, (QStringList{u"Pérez, Ana; \"la de Málaga\"|952 1|952 2|ana@x.es"_qs, u"Bob||91 3|"_qs}));
    }

    // CSV as address books and spreadsheets export it: the separator the header uses, with or
    // without a byte-order mark, quoted fields (a ";" or a line break inside, doubled quotes),
    // Windows-1252 text, and the header names of Spanish and English exports.
    void csv_data()
    {
        QTest::addColumn<QByteArray>("texto");
        QTest::addColumn<QString>("esperado"); // contacts as nombre|teléfono|fax|correo, then rejected lines
        QTest::newRow("la nuestra") << "\xEF\xBB\xBFNombre;Tel\xC3\xA9" "fono;Fax;eMail\r\n\"P\xC3\xA9rez; Ana\";952 1;;a@x.es\r\n"_qba
                                    << u"Pérez; Ana|952 1||a@x.es"_qs;
        QTest::newRow("Outlook en español")
            << "Nombre,Apellidos,Tel\xC3\xA9" "fono m\xC3\xB3vil,Fax del trabajo,Direcci\xC3\xB3n de correo electr\xC3\xB3nico\n"
               "Ana,\"Gil \"\"la de Lugo\"\"\",600 1,982 2,ana@x.es\n,,,,\n"_qba
            << u"Ana Gil \"la de Lugo\"|600 1|982 2|ana@x.es\nlínea 3: sin nombre, teléfono, fax ni correo"_qs;
        QTest::newRow("Google en inglés")
            << "Name,Given Name,Family Name,E-mail 1 - Value,Phone 1 - Value\r\nBob Smith,Bob,Smith,b@x.com,+1 555\r\n"_qba
            << u"Bob Smith|+1 555||b@x.com"_qs;
        QTest::newRow("Windows-1252, nombre en dos columnas, salto dentro")
            << "First Name;Last Name;Business Phone;E-mail Address\r\nIb\xE1\xF1" "ez;\"Mu\xF1oz\r\nS.L.\";91 3;\r\n"_qba
            << u"Ibáñez Muñoz\nS.L.|91 3||"_qs;
        QTest::newRow("sin columnas conocidas") << "a,b,c\n1,2,3\n"_qba
                                                << u"la cabecera no nombra ninguna columna de nombre, teléfono, fax o correo: «a,b,c»"_qs;
    }
    void csv()
    {
        QFETCH(QByteArray, texto);
        QFETCH(QString, esperado);
        const LecturaCsv l = LeerCsvContactos(texto);
        QStringList visto;
        for (const ContactoLeido &c : l.contactos)
            visto << cuatro(c.contacto);
        visto << l.rechazados;
        if (!l.problema.isEmpty())
            visto << l.problema;
        QCOMPARE(visto.join(u'\n'), esperado);
    }
    // What is written is read back the same, and its bytes are the ones a Spanish spreadsheet
    // expects.
    void csvDeIdaYVuelta()
    {
        const QList<ContactoVCard> contactos = {{u"Pérez; Ana"_qs, u"952 1"_qs, {}, u"a@x.es"_qs},
                                                {u"Dos \"comillas\"\ny salto"_qs, {}, u"91"_qs, {}}};
        const QByteArray escrito = CsvDeContactos(contactos);
        QCOMPARE(escrito, "\xEF\xBB\xBFNombre;Tel\xC3\xA9" "fono;Fax;eMail\r\n\"P\xC3\xA9rez; Ana\";952 1;;a@x.es\r\n"
                          "\"Dos \"\"comillas\"\"\ny salto\";;91;\r\n"_qba);
        QStringList leidos;
        for (const ContactoLeido &c : LeerCsvContactos(escrito).contactos)
            leidos << cuatro(c.contacto);
        QCOMPARE(leidos, (QStringList{cuatro(contactos[0]), cuatro(contactos[1])}));
    }
};

QTEST_MAIN(TstVCard)
#include "tst_vcard.moc"
