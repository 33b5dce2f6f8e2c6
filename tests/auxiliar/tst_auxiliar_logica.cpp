// The auxiliary modules' logic, without windows: amounts in words, tax identifiers, the
// send-keys syntax and INI files.
#include "comun/ficheros.h"

#include <kvr/analisisteclas.h>
#include <kvr/identificacion.h>
#include <kvr/ini.h>
#include <kvr/letras.h>

#include <QKeySequence>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;
using prueba::resultado;

namespace {

// A file as an older program leaves it: Windows-1252, CR LF, comments, odd spacing, a key twice,
// a section twice under another case, a line with no "=", and no line end at the end.
const QByteArray kViejo =
    "; Notas de la aplicaci\xf3n\r\n"
    "[General]\r\n"
    "Usuario = Pepe P\xe9rez \r\n"
    "  Ruta=C:\\DATOS\r\n"
    "usuario=segundo\r\n"
    "Vac\xed" "a=\r\n"
    "Comillas = \"  hola  \"\r\n"
    "\r\n"
    "[general]\r\n"
    "Usuario=otra secci\xf3n\r\n"
    "[A\xf1o 2026]\r\n"
    "Importe=1.234,56 \x80\r\n"
    ";Clave=comentario\r\n"
    "SinIgual\r\n"
    "\xdaltima=s\xed";

} // namespace

class TstAuxiliarLogica : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    const QString m_notas = m_dir.filePath(u"Notas.INI"_qs); // the notes file, with "TLF" set to the folder

private Q_SLOTS:
    // A name written into an ASCII file is found again: in Windows-1252 when it fits and its
    // bytes cannot pass for UTF-8, in UTF-8 otherwise.
    void iniNombreNuevo_data()
    {
        QTest::addColumn<QString>("seccion");
        QTest::addColumn<QByteArray>("cabecera"); // the section's line as written
        QTest::newRow("Windows-1252") << u"Año"_qs << QByteArray("[A\xF1o]");
        QTest::newRow("bytes que parecen UTF-8") << u"Æˆ"_qs << QByteArray("[\xC3\x86\xCB\x86]");
        QTest::newRow("fuera de Windows-1252") << u"Ωmega"_qs << QByteArray("[\xCE\xA9mega]");
    }
    void iniNombreNuevo()
    {
        QFETCH(QString, seccion);
        const QByteArray texto = GrabarIniEnTexto("; notas\r\n", seccion, u"b"_qs, u"v"_qs);
        QFETCH(QByteArray, cabecera);
        QVERIFY2(texto.contains(cabecera), texto.constData());
        QCOMPARE(LeerIniDeTexto(texto, seccion, u"b"_qs), u"v"_qs);
    }

    // One row a rule. No currency: NumeroEnLetras; "<error N>": the run-time error it raises.
    void enLetras_data()
    {
        QTest::addColumn<double>("cifra");
        QTest::addColumn<QString>("moneda");
        QTest::addColumn<QString>("esperado");
        const QString N, E = u"EUR"_qs, P = u"ESP"_qs;
        const QString maximo = u"novecientos noventa y nueve mil novecientos noventa y nueve millones "
                               "novecientos noventa y nueve mil novecientos noventa y nueve"_qs;
        QTest::newRow("cien") << 100.0 << N << u"cien"_qs;
        QTest::newRow("mil un millones") << 1001000000.0 << N << u"mil un millones"_qs;
        QTest::newRow("veintiún mil uno") << 21001.0 << N << u"veintiún mil uno"_qs;
        QTest::newRow("negativo, veintiuno sin apócope") << -121.0 << N << u"menos ciento veintiuno"_qs;
        QTest::newRow("máximo") << 999999999999.0 << N << maximo;
        QTest::newRow("sobre el máximo") << 1e12 << N << u"<error 6>"_qs;
        QTest::newRow("bajo el mínimo") << -1e12 << N << u"<error 6>"_qs;
        QTest::newRow("de tras millones") << 1e6 << E << u"un millón de euros"_qs;
        QTest::newRow("redondeo de lo escrito") << 1.005 << E << u"un euro con un céntimo"_qs;
        QTest::newRow("negativo se aleja de cero") << -0.005 << E << u"menos cero euros con un céntimo"_qs;
        QTest::newRow("negativo que redondea a cero") << -0.004 << E << u"cero euros"_qs;
        QTest::newRow("importe máximo") << 999999999999.99 << E << maximo + u" euros con noventa y nueve céntimos"_qs;
        QTest::newRow("redondea al billón") << 999999999999.995 << E << u"<error 6>"_qs;
        QTest::newRow("infinito") << qInf() << E << u"<error 6>"_qs;
        QTest::newRow("otra moneda") << 1.0 << u"USD"_qs << u"<error 5>"_qs;
        QTest::newRow("una peseta") << 1.0 << P << u"una peseta"_qs;
        QTest::newRow("miles femeninos") << 221000.0 << P << u"doscientas veintiuna mil pesetas"_qs;
        QTest::newRow("millones masculinos") << 2e8 << P << u"doscientos millones de pesetas"_qs;
        QTest::newRow("pesetas enteras") << 29.5 << P << u"treinta pesetas"_qs;
        QTest::newRow("pesetas sin doble redondeo") << 0.495 << P << u"cero pesetas"_qs;
    }
    void enLetras()
    {
        QFETCH(double, cifra);
        QFETCH(QString, moneda);
        QFETCH(QString, esperado);
        const auto enLetras = [&] {
            return moneda.isNull() ? NumeroEnLetras(qint64(cifra)) : ImporteEnLetras(cifra, moneda);
        };
        QCOMPARE(resultado(enLetras), esperado);
    }

    // What the generated batch below cannot see: how a text is cleaned, the cases without a
    // kind, and which form of a CIF's control each organisation letter takes. Expected: kind,
    // valid, the text cleaned and the control it should have.
    void validar_data()
    {
        QTest::addColumn<QString>("texto");
        QTest::addColumn<QString>("esperado");
        // A5878044: odd places 5,7,0,4 doubled 10,14,0,8 -> 1+5+0+8 = 14, even places 8,8,4 = 20,
        // sum 34, control 6 (letter F).
        QTest::newRow("DNI cero") << u"00000000T"_qs << u"DNI sí 00000000T T"_qs;
        QTest::newRow("puntos, guion y minúscula") << u" 12.345.678-z "_qs << u"DNI sí 12345678Z Z"_qs;
        QTest::newRow("CIF A sin letra") << u"A5878044F"_qs << u"CIF no A5878044F 6"_qs;
        QTest::newRow("CIF P sin dígito") << u"P58780446"_qs << u"CIF no P58780446 F"_qs;
        QTest::newRow("CIF G con letra") << u"G5878044F"_qs << u"CIF sí G5878044F F"_qs;
        QTest::newRow("NIF-IVA ES") << u"ES A-58780446"_qs << u"CIF sí A58780446 6"_qs;
        QTest::newRow("corto") << u"1234567Z"_qs << u"? no 1234567Z "_qs;
        QTest::newRow("letra de organización que no es") << u"I5878044F"_qs << u"? no I5878044F "_qs;
    }
    void validar()
    {
        QFETCH(QString, texto);
        QFETCH(QString, esperado);
        const Identificacion id = ValidarIdentificacionFiscal(texto);
        const QStringList tipos = {u"?"_qs, u"DNI"_qs, u"NIE"_qs, u"NIF"_qs, u"CIF"_qs};
        const QString control = id.control.isNull() ? QString() : QString(id.control);
        const QString valida = id.valida ? u"sí"_qs : u"no"_qs;
        QCOMPARE(QStringList({tipos[int(id.tipo)], valida, id.normalizada, control}).join(u' '), esperado);
    }

    // Generated identifiers of every kind (DNI, NIE, K/L/M, CIF, with a letter or a digit) against
    // python-stdnum: the control we give must be the one it accepts.
    void comparadoConStdnum()
    {
        const QString python = QFileInfo::exists(u"/usr/bin/python3"_qs) ? u"/usr/bin/python3"_qs : u"python3"_qs;
        const QString primeras = u"0123456789XYZKLMABCDEFGHJNPQRSUVW"_qs;
        QRandomGenerator azar(2026);
        QStringList nuestras;
        for (int i = 0; i < 2000; ++i) {
            const QString cuerpo = primeras[azar.bounded(int(primeras.size()))]
                + QStringLiteral("%1").arg(azar.bounded(10'000'000), 7, 10, QChar(u'0'));
            nuestras << cuerpo + ValidarIdentificacionFiscal(cuerpo + u'?').control;
        }
        // The control we give a body with a wrong one, checked by stdnum: it prints each identifier
        // it calls invalid, then how many it saw.
        const QString programa = uR"(
import sys
from stdnum.es import nif
print(*[n for n in sys.argv[1:] if not nif.is_valid(n)], len(sys.argv) - 1)
)"_qs;
        QProcess p;
        p.start(python, QStringList{u"-c"_qs, programa} + nuestras);
        QVERIFY(p.waitForFinished(30000));
        if (p.readAllStandardError().contains("No module named 'stdnum'"))
            QSKIP("python3-stdnum is not installed");
        QCOMPARE(QString::fromUtf8(p.readAll()), u"2000\n"_qs);
    }

    // The key strokes of a send-keys text, each as "Modifiers+Key[text]"; a text with a syntax
    // error raises error 5.
    void analizar_data()
    {
        QTest::addColumn<QString>("teclas");
        QTest::addColumn<QString>("pulsaciones");
        QTest::newRow("caracteres") << u"aB1ñ"_qs << u"A[a] Shift+B[B] 1[1] Ñ[ñ]"_qs;
        QTest::newRow("tilde es Intro") << u"~"_qs << u"Return[\r]"_qs;
        QTest::newRow("nombres, sin mayúsculas") << u"{ENTER}{tab}{Esc}{bs}{DEL}{INS}{PgDn}{F16}"_qs
            << u"Return[\r] Tab[\t] Esc[\x1b] Backspace[\b] Del[\x7f] Ins[] PgDown[] F16[]"_qs;
        QTest::newRow("repetición") << u"{TAB 3}{a 2}"_qs << u"Tab[\t] Tab[\t] Tab[\t] A[a] A[a]"_qs;
        QTest::newRow("mayúsculas y tabulador") << u"+{TAB}"_qs << u"Shift+Backtab[\t]"_qs;
        QTest::newRow("alt, control y mayúsculas") << u"%{F4}^+a"_qs << u"Alt+F4[] Ctrl+Shift+A[\x01]"_qs;
        QTest::newRow("grupo") << u"+(ab)c"_qs << u"Shift+A[A] Shift+B[B] C[c]"_qs;
        QTest::newRow("escapados") << u"{+}{^}{%}{~}{(}{)}{{}{}}"_qs << u"+[+] ^[^] %[%] ~[~] ([(] )[)] {[{] }[}]"_qs;
        QTest::newRow("texto literal") << TeclasLiterales(u"1+(2)%"_qs) << u"1[1] +[+] ([(] 2[2] )[)] %[%]"_qs;
        QTest::newRow("llave sin cerrar") << u"a{TAB"_qs << u"<error 5>"_qs;
        QTest::newRow("grupo sin cerrar") << u"+(ab"_qs << u"<error 5>"_qs;
        QTest::newRow("paréntesis de más") << u"ab)"_qs << u"<error 5>"_qs;
        QTest::newRow("modificador sin tecla") << u"a^"_qs << u"<error 5>"_qs;
        QTest::newRow("cuenta excesiva") << u"{TAB 10000}"_qs << u"<error 5>"_qs;
    }
    void analizar()
    {
        QFETCH(QString, teclas);
        QFETCH(QString, pulsaciones);
        const auto analizar = [&] {
            QStringList r;
            for (const PulsacionTecla &p : AnalizarTeclas(teclas)) {
                const QKeySequence tecla(QKeyCombination(p.modificadores, Qt::Key(p.tecla)));
                r << tecla.toString() + u'[' + p.texto + u']';
            }
            return r.join(u' ');
        };
        QCOMPARE(resultado(analizar), pulsaciones);
    }

    // Each call against what it returns (a read's value, a refused one's error) and the bytes it
    // leaves: a write or delete changes only its own lines, a refused one leaves the file as it
    // was. The order is "?section|key" to read (default "omisión"), "section|key|value" to write,
    // "section|key" to delete a key, "section" to delete it all.
    void ini_data()
    {
        QTest::addColumn<QByteArray>("antes");
        QTest::addColumn<QString>("orden");
        QTest::addColumn<QByteArray>("visto");
        const QByteArray &V = kViejo;
        QTest::newRow("leer: blancos y mayúsculas") << V << u"?general|USUARIO"_qs << "Pepe Pérez" + V;
        QTest::newRow("leer: vacía no es la omisión") << V << u"?General|vacía"_qs << V;
        QTest::newRow("leer: comillas") << V << u"?General|Comillas"_qs << "  hola  " + V;
        QTest::newRow("leer: sección con eñe") << V << u"?AÑO 2026|importe"_qs << "1.234,56 €" + V;
        QTest::newRow("leer: última línea sin fin") << V << u"?año 2026|ÚLTIMA"_qs << "sí" + V;
        QTest::newRow("leer: comentario no es clave") << V << u"?Año 2026|;Clave"_qs << "omisión" + V;
        QTest::newRow("leer: línea sin igual") << V << u"?Año 2026|SinIgual"_qs << "omisión" + V;
        QTest::newRow("leer: clave de otra sección") << V << u"?Año 2026|Usuario"_qs << "omisión" + V;
        QTest::newRow("leer: sin sección") << V << u"?Falta|Usuario"_qs << "omisión" + V;
        QTest::newRow("leer: sin fichero, hasta que se escribe") << QByteArray() << u"?a|b"_qs
            << QByteArray("omisión<no se pudo leer>");
        QTest::newRow("valor de una clave") << V << u"general|USUARIO|Ana Núñez"_qs
            << QByteArray(V).replace("Usuario = Pepe P\xe9rez \r\n", "Usuario = Ana N\xfa\xf1" "ez\r\n");
        QTest::newRow("clave nueva tras la última de su sección") << V << u"General|Nueva|1"_qs
            << QByteArray(V).replace("hola  \"\r\n", "hola  \"\r\nNueva=1\r\n");
        // The last line has no line end: it gets one.
        QTest::newRow("sección nueva") << V << u"Nueva|k|v"_qs << V + "\r\n\r\n[Nueva]\r\nk=v\r\n";
        QTest::newRow("carácter que Windows-1252 no tiene") << V << u"General|Ruta|Łódź"_qs
            << QByteArray(V).replace("Ruta=C:\\DATOS", "Ruta=?\xf3" "d?");
        QTest::newRow("borrar clave") << V << u"GENERAL|ruta"_qs << QByteArray(V).replace("  Ruta=C:\\DATOS\r\n", "");
        QTest::newRow("borrar clave que falta") << V << u"General|Falta"_qs << V;
        QTest::newRow("borrar sección y su línea en blanco") << V << u"general"_qs
            << V.mid(V.indexOf("[general]")).prepend("; Notas de la aplicaci\xf3n\r\n");
        QTest::newRow("borrar la última sección") << V << u"Año 2026"_qs << V.left(V.indexOf("[A\xf1o"));
        QTest::newRow("fichero nuevo en Windows-1252") << QByteArray() << u"Notas|Día|café"_qs
            << QByteArray("[Notas]\r\nD\xed" "a=caf\xe9\r\n");
        QTest::newRow("fichero nuevo en UTF-8 si hace falta") << QByteArray() << u"Notas|k|Łódź"_qs
            << QByteArray("[Notas]\r\nk=\xc5\x81\xc3\xb3" "d\xc5\xba\r\n");
        QTest::newRow("UTF-8 sigue en UTF-8 y LF") << QByteArray("[S]\nk=a\xc3\xb1o\n") << u"S|j|é"_qs
            << QByteArray("[S]\nk=a\xc3\xb1o\nj=\xc3\xa9\n");
        // Found by the fuzzer: a mark at the start of a key is part of its name, not dropped as the
        // file's own mark is.
        QTest::newRow("marca al principio de clave") << QByteArray("\xEF\xBB\xBF[S]\r\n\xEF\xBB\xBFk=1\r\n")
            << u"S|\uFEFFk|2"_qs << QByteArray("\xEF\xBB\xBF[S]\r\n\xEF\xBB\xBFk=2\r\n");
        QTest::newRow("sección con corchete") << V << u"a]b|k|v"_qs << "<error 5>" + V;
        QTest::newRow("clave con igual") << V << u"s|k=1|v"_qs << "<error 5>" + V;
        QTest::newRow("valor con salto") << V << u"s|k|v\r\nw=1"_qs << "<error 5>" + V;
        QTest::newRow("clave que sería comentario") << V << u"s|;k|v"_qs << "<error 5>" + V;
        QTest::newRow("nombre que Windows-1252 no tiene") << V << u"Łódź|k|v"_qs << "<error 5>" + V;
    }
    void ini()
    {
        QFETCH(QByteArray, antes);
        QFETCH(QString, orden);
        QFETCH(QByteArray, visto);
        // The notes file is in the phone book's "TLF" folder.
        qputenv("TLF", QFile::encodeName(m_dir.path()));
        QFile::remove(m_notas);
        if (!antes.isEmpty())
            prueba::escribir(m_notas, antes);
        const QString f = FicheroNotas();
        const QStringList o = orden.split(u'|');
        const auto llamada = [&] {
            if (o[0].startsWith(u'?'))
                return LeerIni(f, o[0].mid(1), o[1], u"omisión"_qs);
            if (o.size() == 3)
                GrabarIni(f, o[0], o[1], o[2]);
            else
                BorrarIni(f, o[0], o.value(1));
            return QString();
        };
        const QByteArray devuelto = resultado(llamada).toUtf8(); // before the file is read back
        QCOMPARE(devuelto + prueba::leer(m_notas), visto);
    }
    // An INI file that is a folder: error 75, for writes and deletions alike.
    void iniQueEsUnaCarpeta()
    {
        QCOMPARE(resultado([&] { GrabarIni(m_dir.path(), u"s"_qs, u"k"_qs, u"v"_qs); return QString(); }), u"<error 75>"_qs);
        QCOMPARE(resultado([&] { BorrarIni(m_dir.path(), u"s"_qs, u"k"_qs); return QString(); }), u"<error 75>"_qs);
    }
};

QTEST_GUILESS_MAIN(TstAuxiliarLogica)
#include "tst_auxiliar_logica.moc"
