// The auxiliary modules: amounts in words, tax identifiers, the send-keys syntax and the keys
// delivered to widgets, INI files, ZIP backups (with their progress window) and the tray icon.
#include "comun/pruebas.h"
#include "registro.h"

#include <kvr/bandeja.h>
#include <kvr/copias.h>
#include <kvr/identificacion.h>
#include <kvr/ini.h>
#include <kvr/letras.h>
#include <kvr/teclasnombre.h>

#include <QKeySequence>
#include <QLineEdit>
#include <QMenu>
#include <QSystemTrayIcon>

#include <zlib.h>


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

// One entry of a hand-made archive: what a hostile archive can say that no honest tool writes.
struct Cruda {
    QByteArray nombre;
    QByteArray datos;                // uncompressed
    bool enlace = false;             // a Unix symbolic link whose target is `datos`
    qint64 tamanoDeclarado = -1;     // a size other than the real one
};

QByteArray zipCrudo(const QList<Cruda> &entradas)
{
    QByteArray zip, central;
    QDataStream z(&zip, QIODevice::WriteOnly), c(&central, QIODevice::WriteOnly);
    z.setByteOrder(QDataStream::LittleEndian);
    c.setByteOrder(QDataStream::LittleEndian);
    for (const Cruda &e : entradas) {
        const bool deflate = e.datos.size() > 64;
        const QByteArray comprimidos = deflate ? qCompress(e.datos).mid(6).chopped(4) : e.datos;
        const auto crc = crc32(0, reinterpret_cast<const Bytef *>(e.datos.data()), uInt(e.datos.size()));
        const auto tamano = quint32(e.tamanoDeclarado >= 0 ? e.tamanoDeclarado : e.datos.size());
        const auto desplazamiento = quint32(zip.size());
        // Version 2.0, UTF-8 name, the method, a fixed date, the CRC, both sizes, the name's length.
        const auto cabecera = [&](QDataStream &s) {
            s << quint16(20) << quint16(0x0800) << quint16(deflate ? 8 : 0) << quint32(0x5C210000)
              << quint32(crc) << quint32(comprimidos.size()) << tamano << quint16(e.nombre.size()) << quint16(0);
        };
        z << quint32(0x04034b50);
        cabecera(z);
        z.writeRawData(e.nombre.constData(), int(e.nombre.size()));
        z.writeRawData(comprimidos.constData(), int(comprimidos.size()));
        c << quint32(0x02014b50) << quint16((3 << 8) | 20); // made on Unix
        cabecera(c);
        c << quint16(0) << quint16(0) << quint16(0) << quint32((e.enlace ? 0120777u : 0100644u) << 16)
          << desplazamiento;
        c.writeRawData(e.nombre.constData(), int(e.nombre.size()));
    }
    const auto inicio = quint32(zip.size());
    z.writeRawData(central.constData(), int(central.size()));
    z << quint32(0x06054b50) << quint32(0) << quint16(entradas.size()) << quint16(entradas.size())
      << quint32(central.size()) << inicio << quint16(0);
    return zip;
}

// Every entry's permission bits below a folder, sorted, as find(1) lists them.
QByteArrayList modos(const QString &carpeta)
{
    QByteArrayList r = prueba::ejecutar(u"find"_qs, {carpeta, u"-mindepth"_qs, u"1"_qs, u"-printf"_qs, u"%P %m\\n"_qs})
                           .split('\n');
    std::sort(r.begin(), r.end());
    return r;
}

} // namespace

class TstAuxiliar : public QObject {
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    const QString m_origen = m_dir.filePath(u"origen"_qs); // holds "datos" (the tree) and "Notas.INI"
    const QString m_deZip = m_dir.filePath(u"de zip.zip"_qs); // Info-ZIP's archive of the tree
    const QString m_notas = m_dir.filePath(u"Notas.INI"_qs); // the notes file, with "TLF" set to the folder

    QString ruta(const QString &r) const { return m_dir.filePath(r); }

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

    void initTestCase()
    {
        const QString d = m_origen + u"/datos"_qs;
        QVERIFY(QDir().mkpath(d + u"/Año 2026/Facturación"_qs));
        QVERIFY(QDir().mkpath(d + u"/ñandú/más vacía"_qs));
        prueba::escribir(d + u"/Año 2026/Facturación/café €.txt"_qs, "Caf\xc3\xa9 con leche\r\n");
        prueba::escribir(d + u"/Año 2026/vacío.txt"_qs, QByteArray());
        prueba::escribir(d + u"/.oculto"_qs, "oculto");
        // Read and written in many pieces, and more than the full disk below lets through packed.
        QByteArray ruido(2 << 20, Qt::Uninitialized);
        QRandomGenerator(9).fillRange(reinterpret_cast<quint32 *>(ruido.data()), ruido.size() / 4);
        prueba::escribir(d + u"/ñandú/grande.bin"_qs, QByteArray("Apunte;EUR\n").repeated(1 << 17) + ruido);
        prueba::escribir(m_origen + u"/Notas.INI"_qs, "[General]\r\nClave=1\r\n");
        // Private and executable files keep their permission bits both ways.
        QFile::setPermissions(m_origen + u"/Notas.INI"_qs, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        QFile::setPermissions(d + u"/.oculto"_qs, QFileDevice::Permissions(0x7755));
        QVERIFY(QDir::setCurrent(m_origen));
        QCOMPARE(QProcess::execute(u"zip"_qs, {u"-r"_qs, u"-q"_qs, m_deZip, u"datos"_qs, u"Notas.INI"_qs}), 0);
    }

    // Ours made, Info-ZIP's unzip extracts it; Info-ZIP's zip made, ours restores it. The
    // progress reported on the way rises to 1.
    void idaYVuelta_data()
    {
        QTest::addColumn<bool>("nuestraCopia");
        QTest::newRow("copia nuestra, unzip") << true;
        QTest::newRow("copia de zip, restaurada aquí") << false;
    }
    void idaYVuelta()
    {
        QFETCH(bool, nuestraCopia);
        ServiciosGrabados servicios;
        const QString zip = ruta(u"ida.zip"_qs), destino = ruta(QString::fromUtf8(QTest::currentDataTag()));
        QList<double> avisos;
        const AvisoProgreso aviso = [&](double f) { avisos << f; };
        if (nuestraCopia) {
            QVERIFY(CrearZip({m_origen + u"/datos/"_qs, m_origen + u"/Notas.INI"_qs}, zip, aviso));
            QCOMPARE(QProcess::execute(u"unzip"_qs, {u"-q"_qs, zip, u"-d"_qs, destino}), 0);
        } else {
            QVERIFY(ExtraerZip(m_deZip, destino, aviso));
        }
        QCOMPARE(QProcess::execute(u"diff"_qs, {u"-r"_qs, u"--no-dereference"_qs, m_origen, destino}), 0);
        QCOMPARE(modos(destino), modos(m_origen));
        QVERIFY(avisos.size() > 5 && std::is_sorted(avisos.begin(), avisos.end()));
        QCOMPARE(avisos.back(), 1.0);
    }

    // Each refused with a message, nothing written in the folder or outside it, no file left
    // half-written (a good file before the bad one is taken back too).
    void hostiles_data()
    {
        QTest::addColumn<QByteArray>("archivo");
        QTest::addColumn<QString>("mensaje");
        const QByteArray fuera = QFile::encodeName(ruta(u"fuera.txt"_qs));
        const Cruda bien{"bien.txt", "1"};
        const QString quedaFuera = u"quedaría fuera"_qs, apuntaFuera = u"apunta fuera"_qs, danada = u"dañada"_qs;
        QTest::newRow("ruta absoluta") << zipCrudo({bien, {fuera, "x"}}) << quedaFuera;
        // With Windows' separators, and behind a folder.
        QTest::newRow("punto punto") << zipCrudo({bien, {"a\\..\\..\\fuera.txt", "x"}}) << quedaFuera;
        QTest::newRow("unidad") << zipCrudo({{"C:/fuera.txt", "x"}}) << quedaFuera;
        QTest::newRow("enlace absoluto") << zipCrudo({bien, {"enlace", "/etc", true}}) << apuntaFuera;
        QTest::newRow("enlace relativo fuera") << zipCrudo({{"sub/enlace", "../../fuera.txt", true}}) << apuntaFuera;
        // Through the link to the folder itself that the folder already holds.
        QTest::newRow("enlace por otro ya puesto") << zipCrudo({{"aqui/enlace", "../fuera.txt", true}}) << apuntaFuera;
        QTest::newRow("escribir a través de un enlace") << zipCrudo({{"enlace", "sub", true}, {"enlace/x.txt", "x"}})
                                                        << u"dentro de un enlace"_qs;
        QTest::newRow("CRC") << zipCrudo({bien, {"malo.txt", "datos"}}).replace("datos", "datoS") << u"CRC"_qs;
        // A bomb: 1 MB that says it is 1000 bytes.
        QTest::newRow("declara de menos") << zipCrudo({bien, {"bomba", QByteArray(1 << 20, 0), false, 1000}}) << danada;
        QTest::newRow("declara de más") << zipCrudo({{"corto", QByteArray(100, 'b'), false, 101}}) << danada;
        QTest::newRow("truncada") << zipCrudo({bien, {"otro.txt", QByteArray(1000, 'c')}}).chopped(30)
                                  << u"no es un archivo ZIP"_qs;
    }
    void hostiles()
    {
        QFETCH(QByteArray, archivo);
        QFETCH(QString, mensaje);
        QTemporaryDir dir;
        const QString zip = dir.filePath(u"hostil.zip"_qs), destino = dir.filePath(u"destino/dentro"_qs);
        prueba::escribir(zip, archivo);
        // A link already in the folder to the folder itself, which an entry can go through.
        QVERIFY(QDir().mkpath(destino) && QFile::link(u"."_qs, destino + u"/aqui"_qs));
        ServiciosGrabados servicios;
        QVERIFY(!RestaurarCopia(zip, destino));
        QCOMPARE(servicios.mensajes.size(), 1);
        const QString texto = servicios.mensajes[0].texto;
        QVERIFY2(texto.contains(mensaje) && texto.contains(u"No se ha restaurado nada."_qs), qPrintable(texto));
        const auto lista = [](const QString &carpeta) {
            return QDir(carpeta).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
        };
        QCOMPARE(lista(dir.path()) + lista(destino + u"/.."_qs) + lista(destino),
                 (QStringList{u"destino"_qs, u"hostil.zip"_qs, u"dentro"_qs, u"aqui"_qs}));
        QVERIFY(!QFileInfo::exists(ruta(u"fuera.txt"_qs)));
    }

    // A disk that fills up half way: the restore takes back what it wrote (the files before the
    // big one included) and the backup leaves no archive; an older archive stays as it was.
    void discoLleno()
    {
        const QString destino = ruta(u"lleno"_qs);
        const QByteArray viejo = prueba::leer(m_deZip);
        ServiciosGrabados servicios;
        auto lleno = std::make_unique<prueba::DiscoLleno>(1 << 20);
        const bool restaurada = RestaurarCopia(m_deZip, destino, true);
        const bool sobreLaVieja = CopiaSeguridad({m_origen + u"/datos"_qs}, m_deZip, true);
        const bool nueva = CopiaSeguridad({m_origen + u"/datos"_qs}, ruta(u"nueva.zip"_qs));
        lleno.reset();
        QVERIFY(!restaurada && !sobreLaVieja && !nueva);
        QVERIFY(prueba::leer(m_deZip) == viejo);
        QCOMPARE(servicios.mensajes.size(), 3);
        const QString textos = servicios.mensajes[0].texto + u'|' + servicios.mensajes[1].texto;
        QVERIFY2(textos.startsWith(u"No se puede escribir"_qs) && textos.contains(u"error de escritura"_qs),
                 qPrintable(textos));
        // No folder restored, no new archive, no temporary file beside the old one.
        const QStringList quedan = QDir(m_dir.path()).entryList({u"lleno"_qs, u"nueva.zip"_qs, u"*de zip.zip?*"_qs},
                                                                QDir::AllEntries | QDir::Hidden);
        QVERIFY2(quedan.isEmpty(), qPrintable(quedan.join(u' ')));
    }

    // Keys arrive once the caller is back in the event loop and follow the focus as it moves;
    // with a target, they go there whatever has the focus. A syntax error sends nothing.
    void enviar()
    {
        QWidget ventana;
        QLineEdit uno(&ventana), dos(&ventana);
        QVERIFY(prueba::mostrarActiva(&ventana));
        uno.setFocus();
        EnviarTeclas(u"Año{TAB}dos+(x)"_qs);
        QCOMPARE(uno.text(), QString());
        QCoreApplication::processEvents();
        QCOMPARE(uno.text() + u'|' + dos.text(), u"Año|dosX"_qs);
        EnviarTeclas(u"{BS}{HOME}z"_qs, &uno);
        QVERIFY_THROWS_EXCEPTION(ErrorEjecucion, EnviarTeclas(u"ab{NADA}"_qs));
        QCoreApplication::processEvents();
        QCOMPARE(uno.text() + u'|' + dos.text(), u"zAñ|dosX"_qs);
    }

    // Offscreen there is no notification area: the call says so and puts up nothing. The menu's
    // entries open their windows; the last one ends the application.
    void bandeja()
    {
        QVERIFY(!IconoBandeja(u"Contabilidad"_qs));
        QVERIFY(qApp->findChildren<QSystemTrayIcon *>().isEmpty());
        std::unique_ptr<QMenu> m(MenuBandeja());
        QStringList hechos;
        for (QAction *a : m->actions().first(2)) {
            a->trigger();
            for (QWidget *w : QApplication::topLevelWidgets())
                if (w->isVisible()) {
                    hechos << a->text() + u'>' + w->objectName();
                    w->close();
                }
        }
        QCOMPARE(hechos, (QStringList{u"Calculadora>MiCalc"_qs, u"Teléfonos>Telefonos"_qs}));
        QTimer::singleShot(0, m->actions().last(), &QAction::trigger);
        QTimer::singleShot(5000, qApp, [] { QCoreApplication::exit(1); }); // a failure, not a hang
        QCOMPARE(QCoreApplication::exec(), 0);
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
        QTest::newRow("el fichero es una carpeta") << V << u"s|k|v"_qs << "<error 75>" + V;
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
        const QString f = visto.startsWith("<error 75>") ? m_dir.path() : FicheroNotas(); // 75: the file is a folder
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
};

QTEST_MAIN(TstAuxiliar)
#include "tst_auxiliar.moc"
