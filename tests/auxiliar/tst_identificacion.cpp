#include <kvr/identificacion.h>

#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

using namespace kvr;
using T = TipoIdentificacion;

class TstIdentificacion : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void validar_data()
    {
        QTest::addColumn<QString>("texto");
        QTest::addColumn<T>("tipo");
        QTest::addColumn<bool>("valida");
        QTest::addColumn<QString>("normalizada");
        QTest::addColumn<QString>("control");
        // Check characters worked by hand: 12345678 mod 23 = 14 (Z); X1234567 -> 1234567 mod 23 =
        // 19 (L); Y1234567 -> 11234567 mod 23 = 10 (X); CIF A5878044: odd places 5,7,0,4 doubled
        // 10,14,0,8 -> 1+5+0+8 = 14, even places 8,8,4 = 20, sum 34, control 6 (letter F).
        QTest::newRow("DNI") << u"12345678Z"_qs << T::DNI << true << u"12345678Z"_qs << u"Z"_qs;
        QTest::newRow("DNI mal") << u"12345678A"_qs << T::DNI << false << u"12345678A"_qs << u"Z"_qs;
        QTest::newRow("DNI cero") << u"00000000T"_qs << T::DNI << true << u"00000000T"_qs << u"T"_qs;
        QTest::newRow("DNI con puntos, guion y minúscula") << u" 12.345.678-z "_qs << T::DNI << true << u"12345678Z"_qs << u"Z"_qs;
        QTest::newRow("NIE X") << u"X1234567L"_qs << T::NIE << true << u"X1234567L"_qs << u"L"_qs;
        QTest::newRow("NIE Y mal") << u"Y1234567L"_qs << T::NIE << false << u"Y1234567L"_qs << u"X"_qs;
        QTest::newRow("NIE Z") << u"z-0000000-m"_qs << T::NIE << true << u"Z0000000M"_qs << u"M"_qs;
        QTest::newRow("NIF K") << u"K1234567L"_qs << T::NIFEspecial << true << u"K1234567L"_qs << u"L"_qs;
        QTest::newRow("NIF M mal") << u"M1234567A"_qs << T::NIFEspecial << false << u"M1234567A"_qs << u"L"_qs;
        QTest::newRow("CIF A con dígito") << u"A58780446"_qs << T::CIF << true << u"A58780446"_qs << u"6"_qs;
        QTest::newRow("CIF A con letra no") << u"A5878044F"_qs << T::CIF << false << u"A5878044F"_qs << u"6"_qs;
        QTest::newRow("CIF P con letra") << u"P5878044F"_qs << T::CIF << true << u"P5878044F"_qs << u"F"_qs;
        QTest::newRow("CIF G con letra") << u"G5878044F"_qs << T::CIF << true << u"G5878044F"_qs << u"F"_qs;
        QTest::newRow("CIF G con dígito") << u"G58780446"_qs << T::CIF << true << u"G58780446"_qs << u"6"_qs;
        QTest::newRow("CIF G mal pide dígito") << u"G58780447"_qs << T::CIF << false << u"G58780447"_qs << u"6"_qs;
        QTest::newRow("CIF control cero") << u"B00000000"_qs << T::CIF << true << u"B00000000"_qs << u"0"_qs;
        QTest::newRow("NIF-IVA ES") << u"ES A-58780446"_qs << T::CIF << true << u"A58780446"_qs << u"6"_qs;
        QTest::newRow("corto") << u"1234567Z"_qs << T::Desconocido << false << u"1234567Z"_qs << QString();
        QTest::newRow("letra de organización que no es") << u"I5878044F"_qs << T::Desconocido << false << u"I5878044F"_qs << QString();
    }
    void validar()
    {
        QFETCH(QString, texto);
        QFETCH(T, tipo);
        QFETCH(bool, valida);
        QFETCH(QString, normalizada);
        QFETCH(QString, control);
        const Identificacion id = ValidarIdentificacionFiscal(texto);
        QCOMPARE(id.tipo, tipo);
        QCOMPARE(id.valida, valida);
        QCOMPARE(id.normalizada, normalizada);
        QCOMPARE(control.isEmpty() ? QChar() : control[0], id.control);
    }

    // Many generated identifiers of every kind, checked against python-stdnum: our control for
    // the body with a wrong character, and both validations of the body with ours.
    void comparadoConStdnum_data()
    {
        QTest::addColumn<QString>("letras");
        QTest::newRow("DNI") << QString();
        QTest::newRow("NIE") << u"XYZ"_qs;
        QTest::newRow("NIF especial") << u"KLM"_qs;
        QTest::newRow("CIF") << u"ABCDEFGHJNPQRSUVW"_qs;
    }
    void comparadoConStdnum()
    {
        QFETCH(QString, letras);
        const QString python = QFileInfo::exists(u"/usr/bin/python3"_qs) ? u"/usr/bin/python3"_qs : u"python3"_qs;
        QProcess p;
        p.start(python, {u"-c"_qs, u"import stdnum.es.nif"_qs});
        if (!p.waitForFinished() || p.exitCode() != 0)
            QSKIP("python3-stdnum is not installed");

        QRandomGenerator azar(2026);
        QStringList cuerpos, nuestras;
        for (int i = 0; i < 400; ++i) {
            QString cuerpo = letras.isEmpty() ? QString() : QString(letras[azar.bounded(int(letras.size()))]);
            while (cuerpo.size() < 8)
                cuerpo += QChar(u'0' + azar.bounded(10));
            const Identificacion id = ValidarIdentificacionFiscal(cuerpo + u'?');
            QVERIFY(!id.valida);
            QVERIFY(ValidarIdentificacionFiscal(cuerpo + id.control).valida);
            cuerpos << cuerpo;
            nuestras << cuerpo + id.control;
        }
        // For each body: stdnum's check characters and its verdict on ours.
        const QString programa = uR"(
import sys
from stdnum.es import nif, cif, dni
for linea in sys.stdin.read().split():
    cuerpo, nuestra = linea[:8], linea
    if cuerpo[0] in 'ABCDEFGHJNPQRSUVW':
        cs = cif.calc_check_digits(cuerpo)
    elif cuerpo[0] in 'XYZ':
        cs = dni.calc_check_digit(str('XYZ'.index(cuerpo[0])) + cuerpo[1:])
    elif cuerpo[0] in 'KLM':
        cs = dni.calc_check_digit(cuerpo[1:])
    else:
        cs = dni.calc_check_digit(cuerpo)
    print(cs, nif.is_valid(nuestra))
)"_qs;
        p.start(python, {u"-c"_qs, programa});
        p.write(nuestras.join(u'\n').toUtf8());
        p.closeWriteChannel();
        QVERIFY(p.waitForFinished(30000));
        QCOMPARE(p.exitCode(), 0);
        const QStringList salida = QString::fromUtf8(p.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(salida.size(), nuestras.size());
        for (qsizetype i = 0; i < salida.size(); ++i) {
            const QStringList campos = salida[i].split(u' ');
            const QString suyas = campos[0];
            const QChar nuestra = nuestras[i].back();
            // A CIF's pair is digit and letter; ours must be one of them, the other kinds agree.
            QVERIFY2(suyas.contains(nuestra), qPrintable(nuestras[i] + u" / "_qs + suyas));
            QVERIFY2(campos[1] == u"True", qPrintable(nuestras[i]));
        }
    }
};

QTEST_GUILESS_MAIN(TstIdentificacion)
#include "tst_identificacion.moc"
