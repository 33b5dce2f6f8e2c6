// The example host's own test: what an office user does on the form, offscreen. The runtime's
// boxes are modal; each one is answered from a timer, as a user would answer it.
#include "factura.h"
#include "ui_factura.h"

#include <kvr/mybox.h>
#include <kvr/servicios.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>

namespace {

// The clock of the test: dates typed short are completed from 15 March 2026.
class Reloj : public kvr::Servicios {
public:
    QDate Hoy() override { return {2026, 3, 15}; }
};

// Answers the next modal box that opens with `respuesta` (called with the box). The wait belongs
// to `dueno`: deleting it stops a wait for a box that never opened.
void Responder(QObject *dueno, std::function<void(QWidget *)> respuesta)
{
    auto *espera = new QTimer(dueno);
    QObject::connect(espera, &QTimer::timeout, [espera, respuesta] {
        if (QWidget *caja = QApplication::activeModalWidget()) {
            espera->deleteLater();
            respuesta(caja);
        }
    });
    espera->start(10);
}

// Presses the button captioned `titulo` in the box.
void Pulsar(QWidget *caja, const QString &titulo)
{
    for (QPushButton *b : caja->findChildren<QPushButton *>())
        if (b->isVisible() && b->text().remove(u'&') == titulo)
            return b->click();
    QFAIL(qPrintable(QStringLiteral("la caja no tiene el botón ") + titulo));
}

void Teclear(QLineEdit *campo, const char *texto)
{
    campo->setFocus();
    QTest::keyClicks(campo, QString::fromLatin1(texto));
    QTest::keyClick(campo, Qt::Key_Return);
}

QString Contenido(const QString &fichero)
{
    QFile f(fichero);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

} // namespace

class PruebaFactura : public QObject {
    Q_OBJECT
    Reloj m_reloj;
    QTemporaryDir m_carpeta;
    QString m_fichero;
    std::unique_ptr<Factura> m_factura;
    std::unique_ptr<QObject> m_esperas;

private Q_SLOTS:
    void initTestCase()
    {
        // The office's regional settings: amounts as 1.234,50.
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
        kvr::PonerServicios(&m_reloj);
    }
    void cleanupTestCase() { kvr::PonerServicios(nullptr); }

    void init()
    {
        m_fichero = m_carpeta.filePath(QStringLiteral("%1-%2.txt").arg(QString::fromLatin1(QTest::currentTestFunction()),
                                                                        QString::fromLatin1(QTest::currentDataTag())));
        m_esperas = std::make_unique<QObject>();
        m_factura = std::make_unique<Factura>(m_fichero);
        m_factura->show();
        QApplication::processEvents();
    }
    void cleanup()
    {
        m_esperas.reset();
        m_factura.reset();
    }

    // Each field completes what was typed by its tag, and the saved line holds the values as
    // the user meant them.
    void grabar_data()
    {
        QTest::addColumn<QByteArrayList>("tecleado"); // cliente, NIF, fecha, importe
        QTest::addColumn<QString>("linea");
        QTest::newRow("cortos") << QByteArrayList{"102", "12345678?", "5", "1234.5"}
                                << "000102\t12345678Z\t05/03/2026\t1234.50\n";
        QTest::newRow("enteros") << QByteArrayList{"000104", "71222333X", "28/02/2025", "-7"}
                                 << "000104\t71222333X\t28/02/2025\t-7.00\n";
    }
    void grabar()
    {
        QFETCH(QByteArrayList, tecleado);
        QFETCH(QString, linea);
        const char *campos[] = {"txtCliente", "txtNIF", "txtFecha", "txtImporte"};
        for (int i = 0; i < 4; ++i)
            Teclear(m_factura->findChild<QLineEdit *>(QString::fromLatin1(campos[i])), tecleado[i].constData());
        QVERIFY(m_factura->HayCambios());
        m_factura->findChild<QPushButton *>(QStringLiteral("cmdGrabar"))->click();
        QCOMPARE(Contenido(m_fichero), linea);
        QVERIFY(!m_factura->HayCambios());
    }

    // F2 opens the customer list; a click on the third customer and "Aceptar" fill the code, name and NIF.
    void cliente()
    {
        Responder(m_esperas.get(), [](QWidget *caja) {
            auto *rejilla = caja->findChild<QAbstractItemView *>();
            const QModelIndex tercero = rejilla->model()->index(2, 1);
            QTest::mouseClick(rejilla->viewport(), Qt::LeftButton, {}, rejilla->visualRect(tercero).center());
            Pulsar(caja, QStringLiteral("Aceptar"));
        });
        QTest::keyClick(m_factura.get(), Qt::Key_F2);
        QCOMPARE(m_factura->findChild<QLineEdit *>(QStringLiteral("txtCliente"))->text(), u"000103");
        QCOMPARE(m_factura->findChild<QLabel *>(QStringLiteral("lblNombre"))->text(), u"Librería Cervantes");
        QCOMPARE(m_factura->findChild<QLineEdit *>(QStringLiteral("txtNIF"))->text(), u"50333444F");
    }

    // Leaving with an invoice typed and not saved asks first.
    void salir_data()
    {
        QTest::addColumn<QString>("respuesta");
        QTest::addColumn<bool>("cerrada");
        QTest::addColumn<QString>("grabado");
        QTest::addColumn<bool>("pendiente"); // typed and not saved
        QTest::newRow("cancelar") << "Cancelar" << false << "" << true;
        QTest::newRow("no") << "No" << true << "" << true;
        QTest::newRow("si") << "Si" << true << "000101\t\t01/03/2026\t10.00\n" << false;
    }
    void salir()
    {
        QFETCH(QString, respuesta);
        QFETCH(bool, cerrada);
        QFETCH(QString, grabado);
        QFETCH(bool, pendiente);
        Teclear(m_factura->findChild<QLineEdit *>(QStringLiteral("txtCliente")), "101");
        Teclear(m_factura->findChild<QLineEdit *>(QStringLiteral("txtFecha")), "1");
        Teclear(m_factura->findChild<QLineEdit *>(QStringLiteral("txtImporte")), "10");
        QString pregunta;
        Responder(m_esperas.get(), [&](QWidget *caja) {
            for (const QLabel *l : caja->findChildren<QLabel *>())
                pregunta += l->text() + u' ';
            Pulsar(caja, respuesta);
        });
        m_factura->findChild<QPushButton *>(QStringLiteral("cmdSalir"))->click();
        QVERIFY2(pregunta.contains(u"La factura no está grabada."), qPrintable(pregunta));
        QCOMPARE(!m_factura->isVisible(), cerrada);
        QCOMPARE(Contenido(m_fichero), grabado);
        QCOMPARE(m_factura->HayCambios(), pendiente);
    }

    // The listing takes the saved invoices of the range asked for, and only those.
    void listado()
    {
        QFile f(m_fichero);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("000101\tB50123457\t28/02/2026\t10.00\n"
                "000102\t12345678Z\t01/03/2026\t1234.50\n"
                "000103\t50333444F\t31/03/2026\t-3.00\n"
                "000104\t71222333X\t01/04/2026\t99.99\n");
        f.close();
        const QStringList lineas = m_factura->Listado(QStringLiteral("01/03/2026"), QStringLiteral("31/03/2026"));
        QCOMPARE(lineas.size(), 2);
        QVERIFY(lineas[0].startsWith(u"01/03/2026  000102  12345678Z"));
        QVERIFY2(lineas[0].endsWith(u"1.234,50"), qPrintable(lineas[0]));
        QVERIFY(lineas[1].startsWith(u"31/03/2026  000103"));
    }
};

QTEST_MAIN(PruebaFactura)
#include "prueba_factura.moc"
