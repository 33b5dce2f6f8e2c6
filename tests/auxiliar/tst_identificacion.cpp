#include <kvr/identificacion.h>

#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

using namespace kvr;

class TstIdentificacion : public QObject {
    Q_OBJECT
private Q_SLOTS:
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
        QTest::newRow("CIF G mal pide dígito") << u"G58780447"_qs << u"CIF no G58780447 6"_qs;
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
            QString cuerpo(primeras[azar.bounded(int(primeras.size()))]);
            while (cuerpo.size() < 8)
                cuerpo += QChar(u'0' + azar.bounded(10));
            nuestras << cuerpo + ValidarIdentificacionFiscal(cuerpo + u'?').control;
        }
        // The control we give a body with a wrong one, checked by stdnum: it prints each identifier
        // it calls invalid, then how many it saw.
        const QString programa = uR"(
import sys
from stdnum.es import nif
nuestras = sys.stdin.read().split()
print(*[n for n in nuestras if not nif.is_valid(n)], len(nuestras))
)"_qs;
        QProcess p;
        p.start(python, {u"-c"_qs, programa});
        p.write(nuestras.join(u'\n').toUtf8());
        p.closeWriteChannel();
        QVERIFY(p.waitForFinished(30000));
        if (p.readAllStandardError().contains("No module named 'stdnum'"))
            QSKIP("python3-stdnum is not installed");
        QCOMPARE(QString::fromUtf8(p.readAll()), u"2000\n"_qs);
    }
};

QTEST_GUILESS_MAIN(TstIdentificacion)
#include "tst_identificacion.moc"
