// The phone book window on a real contacts file in a folder given by TLF, driven with real keys
// and clicks: the search, the entry panel and what each change leaves on disk, the picks of an
// e-mail address, the wheel, the hand-offs received by stand-in programs placed on disk (an
// xdg-open first on PATH, the fax program in the contacts folder), failed saves, and other
// phone book processes saving the same file.
#include <kvr/comunes.h>
#include <kvr/contactos.h>
#include <kvr/telefonos.h>
#include <kvr/utilidades.h>
#include <kvr/visorrejilla.h>

#include "comun/pruebas.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QWheelEvent>

using namespace kvr;
using namespace prueba;

namespace {

const QStringList Agenda = L({
    "Ana López|952 111 111|952 111 112|ana@lopez.es",
    "Bodega|NA 5||bodega@x.es",
    "Carlos Peña|600 000 000|| carlos@pena.es ",
    "Diego|611||juliana@ejemplo.es",
    "Eva|622||",
    "Francisco|633|952 000 000|fran@x.es",
});

QByteArray ficheroDe(const QStringList &contactos)
{
    QString texto = u"\tNombre\tTeléfono\tFax\teMail"_qs;
    for (const QString &c : contactos)
        texto += u"\r\t"_qs + QString(c).replace(u'|', u'\t');
    return BytesDeDos(texto + u"\r\n"_qs);
}

// The names in the file, in file order.
QStringList nombresEnDisco()
{
    Rejilla g;
    LeerFicheroContactos(RutaContactos(), g);
    QStringList r;
    for (int f = 1; f < g.Rows(); ++f)
        r << g.TextMatrix(f, 1);
    return r;
}

VisorRejilla *telfs(Telefonos *t) { return control<VisorRejilla>(t, "Telfs"); }
QLineEdit *tlf(Telefonos *t, int i) { return t->findChild<QLineEdit *>(u"Tlf(%1)"_qs.arg(i)); }

// The names of the rows the grid shows, top to bottom.
QStringList nombresVisibles(Telefonos *t)
{
    QAbstractItemModel *m = telfs(t)->model();
    QStringList r;
    for (int f = 0; f < m->rowCount(); ++f)
        r << m->index(f, 1).data().toString();
    return r;
}

QRect celda(Telefonos *t, const QString &nombre, int col)
{
    VisorRejilla *v = telfs(t);
    for (int f = 0; f < v->model()->rowCount(); ++f)
        if (v->model()->index(f, 1).data().toString() == nombre) {
            v->scrollTo(v->model()->index(f, col));
            return v->visualRect(v->model()->index(f, col));
        }
    return {};
}

void clicCelda(Telefonos *t, const QString &nombre, int col, Qt::MouseButton boton = Qt::LeftButton)
{
    QTest::mouseClick(telfs(t)->viewport(), boton, {}, celda(t, nombre, col).center());
    QCoreApplication::processEvents();
}

// Answers the next box with the button of that caption, keeping its text.
void responder(QString *texto, const QString &boton)
{
    alAbrirse([texto, boton](QWidget *caja) {
        *texto = control<QLabel>(caja, "Mensaje")->text();
        for (QPushButton *b : caja->findChildren<QPushButton *>())
            if (b->isVisible() && b->text() == boton) {
                QTest::mouseClick(b, Qt::LeftButton);
                return;
            }
    });
}

QString leerTexto(const QString &ruta) { return QString::fromUtf8(leer(ruta)); }

} // namespace

class TstTelefonos : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_registro;

    // A stand-in program: runs `cuerpo` and leaves what it printed in the record, whole.
    void ponerPrograma(const QString &ruta, const QByteArray &cuerpo)
    {
        const QByteArray r = QFile::encodeName(m_registro);
        escribir(ruta, "#!/bin/sh\n{ " + cuerpo + "; } > " + r + ".tmp && mv " + r + ".tmp " + r + "\n");
        QFile::setPermissions(ruta, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    }

    Telefonos *abrir()
    {
        auto *t = new Telefonos;
        t->show();
        QCoreApplication::processEvents();
        return t;
    }

private Q_SLOTS:
    void initTestCase()
    {
        // The desktop's opener: a stand-in first on PATH records what it was handed.
        static QTemporaryDir bin;
        m_registro = bin.filePath(u"registro"_qs);
        ponerPrograma(bin.filePath(u"xdg-open"_qs), "printf '%s\\n' \"$@\"");
        qputenv("PATH", QFile::encodeName(bin.path()) + ":" + qgetenv("PATH"));
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    }

    // Each test gets its own contacts folder with the sample phone book and the fax program.
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        qputenv("TLF", QFile::encodeName(m_dir->path()));
        escribir(RutaContactos(), ficheroDe(Agenda));
        QDir(m_dir->path()).mkdir(u"Telecopia"_qs);
        ponerPrograma(m_dir->filePath(u"Telecopia/Telecopia"_qs), "pwd; for a in \"$@\"; do printf '[%s]\\n' \"$a\"; done");
        QFile::remove(m_registro);
        EnviadoPor.clear();
    }
    void cleanup()
    {
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == u"Telefonos")
                delete w;
    }

    void busqueda_data()
    {
        QTest::addColumn<QString>("texto");
        QTest::addColumn<QStringList>("visibles");
        QTest::newRow("ana en nombre, entre columnas y en el correo")
            << u"ana"_qs << L({"Ana López", "Bodega", "Diego"});
        QTest::newRow("mayúsculas con eñe") << u"PEÑA"_qs << L({"Carlos Peña"});
        QTest::newRow("en el fax") << u"952 000"_qs << L({"Francisco"});
        QTest::newRow("nada") << u"zzz"_qs << QStringList();
    }
    void busqueda()
    {
        QFETCH(QString, texto);
        QFETCH(QStringList, visibles);
        Telefonos *t = abrir();
        QCOMPARE(t->FicheroContactos(), m_dir->filePath(u"TELEFONO.DAT"_qs));
        QCOMPARE(t->FechaContactos(), QFileInfo(RutaContactos()).lastModified());
        QLineEdit *busco = control<QLineEdit>(t, "BuscoTLF");
        busco->setFocus();
        teclear(busco, texto);
        QCOMPARE(nombresVisibles(t), visibles);
        busco->selectAll();
        QTest::keyClick(busco, Qt::Key_Backspace);
        QCOMPARE(nombresVisibles(t).size(), Agenda.size());
    }

    // Each change of the entry panel and what the file holds afterwards.
    void cambios_data()
    {
        QTest::addColumn<QString>("cambio");
        QTest::addColumn<QStringList>("enDisco");
        const QStringList todos = L({"Ana López", "Bodega", "Carlos Peña", "Diego", "Eva", "Francisco"});
        QTest::newRow("nuevo") << u"nuevo"_qs << L({"Alberto", "Ana López", "Bodega", "Carlos Peña", "Diego", "Eva", "Francisco"});
        QTest::newRow("editar") << u"editar"_qs << L({"Ana López", "Carlos Peña", "Diego", "Eva", "Francisco", "Zacarías"});
        QTest::newRow("suprimir, Si") << u"Si"_qs << L({"Ana López", "Bodega", "Carlos Peña", "Diego", "Francisco"});
        QTest::newRow("suprimir, No") << u"No"_qs << todos;
        QTest::newRow("sin nombre no se graba") << u"vacio"_qs << todos;
    }
    void cambios()
    {
        QFETCH(QString, cambio);
        QFETCH(QStringList, enDisco);
        Telefonos *t = abrir();
        QString pregunta;
        if (cambio == u"nuevo" || cambio == u"vacio") {
            pulsar(control<QPushButton>(t, "cmdNuevo"));
            QVERIFY(control<QWidget>(t, "LaEntrada")->isVisible());
            QVERIFY(!control<QWidget>(t, "Marco(1)")->isEnabled());
            QCOMPARE(nombreDelFoco(), u"Tlf(0)"_qs);
            if (cambio == u"nuevo")
                teclear(tlf(t, 0), u"Alberto"_qs);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return); // on like Tab
            QCoreApplication::processEvents();
            QCOMPARE(nombreDelFoco(), u"Tlf(1)"_qs);
            teclear(QApplication::focusWidget(), u"955"_qs);
            pulsar(control<QPushButton>(t, "cmdAceptar"));
        } else if (cambio == u"editar") {
            clicCelda(t, u"Bodega"_qs, 1);
            pulsar(control<QPushButton>(t, "cmdEditar"));
            QCOMPARE(tlf(t, 1)->text(), u"NA 5"_qs);
            tlf(t, 0)->selectAll();
            teclear(tlf(t, 0), u"Zacarías"_qs);
            pulsar(control<QPushButton>(t, "cmdAceptar"));
        } else {
            clicCelda(t, u"Eva"_qs, 2);
            responder(&pregunta, cambio);
            pulsar(control<QPushButton>(t, "cmdBorrar"));
            QCOMPARE(pregunta, u"¿ Confirma que desea ELIMINAR el contacto seleccionado ?"_qs);
        }
        QCOMPARE(nombresEnDisco(), enDisco);
        if (cambio == u"vacio") {
            QVERIFY(control<QWidget>(t, "LaEntrada")->isVisible());
            QCOMPARE(nombreDelFoco(), u"Tlf(0)"_qs);
        } else {
            QVERIFY(!control<QWidget>(t, "LaEntrada")->isVisible());
            // After a change, nothing is chosen; after "No", the contact still is.
            QCOMPARE(control<QWidget>(t, "cmdEditar")->isEnabled(), cambio == u"No");
            QVERIFY(telfs(t)->isEnabled());
        }
    }

    // An empty phone book: the new contact takes the blank row 1; no fax program, no "Fax".
    void nuevoEnAgendaVacia()
    {
        QFile::remove(RutaContactos());
        QDir(m_dir->filePath(u"Telecopia"_qs)).removeRecursively();
        Telefonos *t = abrir();
        QVERIFY(!control<QWidget>(t, "cmdFax")->isEnabled());
        QVERIFY(!t->FechaContactos().isValid());
        pulsar(control<QPushButton>(t, "cmdNuevo"));
        QCOMPARE(control<QLabel>(t, "Indice")->text(), u"1"_qs);
        teclear(tlf(t, 0), u"Ana"_qs);
        pulsar(control<QPushButton>(t, "cmdAceptar"));
        QCOMPARE(telfs(t)->rejilla().Rows(), 2);
        QCOMPARE(leer(RutaContactos()), ficheroDe(L({"Ana|||"})));
        QVERIFY(t->FechaContactos().isValid());
    }

    // A click on the titles chooses nothing; one on a contact shows its numbers.
    void clicCabecera()
    {
        Telefonos *t = abrir();
        QVERIFY(control<QWidget>(t, "cmdFax")->isEnabled());
        VisorRejilla *v = telfs(t);
        QTest::mouseClick(v->horizontalHeader()->viewport(), Qt::LeftButton, {},
                          QPoint(v->horizontalHeader()->sectionViewportPosition(1) + 5, 5));
        QVERIFY(!control<QWidget>(t, "cmdEditar")->isEnabled());
        QCOMPARE(control<QLabel>(t, "NumeroTlf")->text(), QString());
        QCOMPARE(nombresVisibles(t).first(), u"Ana López"_qs);
        clicCelda(t, u"Francisco"_qs, 1);
        QVERIFY(control<QWidget>(t, "cmdBorrar")->isEnabled());
        QCOMPARE(control<QLabel>(t, "NumeroTlf")->text(), u"633"_qs);
        QCOMPARE(control<QLabel>(t, "NumeroFax")->text(), u"952 000 000"_qs);
    }

    void clicDerecho_data()
    {
        QTest::addColumn<int>("col");
        QTest::addColumn<QString>("elegido");
        QTest::newRow("correo, sin blancos") << 4 << u"carlos@pena.es"_qs;
        QTest::newRow("otra celda") << 2 << u"antes"_qs;
    }
    void clicDerecho()
    {
        QFETCH(int, col);
        QFETCH(QString, elegido);
        ContactoElegido = u"antes"_qs;
        QPointer<Telefonos> t = abrir();
        clicCelda(t, u"Carlos Peña"_qs, col, Qt::RightButton);
        QTRY_VERIFY(!t);
        QCOMPARE(ContactoElegido, elegido);
    }

    // While active, a wheel turned anywhere over the window scrolls the grid a line a notch.
    void rueda()
    {
        QStringList muchos = Agenda;
        for (int i = 0; i < 200; ++i)
            muchos << u"Z%1|%1||"_qs.arg(i, 3, 10, QChar(u'0'));
        escribir(RutaContactos(), ficheroDe(muchos));
        Telefonos *t = abrir();
        t->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(t));
        VisorRejilla *v = telfs(t);
        v->setFocus();
        QCOMPARE(v->verticalScrollBar()->value(), 0);
        QWidget *sobre = control<QWidget>(t, "NumeroTlf");
        for (int muesca = 1; muesca <= 3; ++muesca) {
            QWheelEvent e(QPointF(5, 5), sobre->mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(sobre, &e);
            QCOMPARE(v->verticalScrollBar()->value(), muesca);
        }
    }

    // What the stand-in programs receive, and in which folder the fax program runs.
    void envios_data()
    {
        QTest::addColumn<QString>("gesto");
        QTest::addColumn<QString>("contacto");
        QTest::addColumn<QString>("enviadoPor");
        QTest::addColumn<QString>("recibido"); // "" when nothing is started
        QTest::newRow("correo con asunto") << u"doble4"_qs << u"Ana López"_qs << u"Almacén Sur"_qs
                                           << u"mailto:ana@lopez.es?Subject=Envio realizado por Almacén Sur\n"_qs;
        QTest::newRow("correo sin asunto") << u"doble4"_qs << u"Ana López"_qs << QString() << u"mailto:ana@lopez.es\n"_qs;
        QTest::newRow("contacto sin correo") << u"doble4"_qs << u"Eva"_qs << QString() << u"mailto:\n"_qs;
        QTest::newRow("botón eMail") << u"cmdEmail"_qs << QString() << u"Sur"_qs << u"mailto:?Subject=Envio realizado por Sur\n"_qs;
        QTest::newRow("fax") << u"doble3"_qs << u"Francisco"_qs << QString()
                             << u"%1/Telecopia\n[E(Francisco) F(952 000 000) ]\n"_qs;
        QTest::newRow("botón Fax") << u"cmdFax"_qs << QString() << QString() << u"%1/Telecopia\n"_qs;
        QTest::newRow("doble clic en los títulos") << u"cabecera"_qs << QString() << QString() << QString();
    }
    void envios()
    {
        QFETCH(QString, gesto);
        QFETCH(QString, contacto);
        QFETCH(QString, enviadoPor);
        QFETCH(QString, recibido);
        EnviadoPor = enviadoPor;
        Telefonos *t = abrir();
        QCOMPARE(t->ProgramaFax(), m_dir->filePath(u"Telecopia/Telecopia"_qs));
        VisorRejilla *v = telfs(t);
        if (gesto.startsWith(u"doble")) {
            const QPoint p = celda(t, contacto, gesto.back().digitValue()).center();
            QTest::mouseClick(v->viewport(), Qt::LeftButton, {}, p);
            QTest::mouseDClick(v->viewport(), Qt::LeftButton, {}, p);
        } else if (gesto == u"cabecera") {
            QTest::mouseDClick(v->horizontalHeader()->viewport(), Qt::LeftButton, {},
                               QPoint(v->horizontalHeader()->sectionViewportPosition(4) + 5, 5));
        } else {
            pulsar(control<QPushButton>(t, qPrintable(gesto)));
        }
        if (recibido.isEmpty()) {
            QTest::qWait(300);
            QVERIFY(!QFile::exists(m_registro));
        } else {
            QTRY_VERIFY(QFile::exists(m_registro));
            QCOMPARE(leerTexto(m_registro), recibido.contains(u"%1") ? recibido.arg(m_dir->path()) : recibido);
        }
    }

    // A save that cannot be written: a message naming the file, the window open, the contact
    // still in the grid and the remembered version untouched.
    void grabacionImposible()
    {
        QFile::setPermissions(RutaContactos(), QFileDevice::ReadOwner);
        Telefonos *t = abrir();
        const QDateTime antes = t->FechaContactos();
        pulsar(control<QPushButton>(t, "cmdNuevo"));
        teclear(tlf(t, 0), u"Nuevo"_qs);
        QString mensaje;
        responder(&mensaje, u"Aceptar"_qs);
        pulsar(control<QPushButton>(t, "cmdAceptar"));
        QVERIFY2(mensaje.contains(RutaContactos()), qPrintable(mensaje));
        QVERIFY(t->isVisible());
        QVERIFY(nombresVisibles(t).contains(u"Nuevo"_qs));
        QCOMPARE(t->FechaContactos(), antes);
        QCOMPARE(leer(RutaContactos()), ficheroDe(Agenda));
    }

    // Another phone book process saves first: this window is warned when its entry panel
    // opens, its save is refused with the message, and it then shows the other's contacts.
    void otroProcesoGraba()
    {
        Telefonos *t = abrir();
        QProcess otro;
        otro.start(QStringLiteral(AGENDA_PROCESO), {u"agregar"_qs, u"1"_qs, u"Otro"_qs});
        QVERIFY(otro.waitForFinished(30000));
        QCOMPARE(otro.readAllStandardOutput(), QByteArray("GRABADO Otro0\n"));
        pulsar(control<QPushButton>(t, "cmdNuevo"));
        QVERIFY(control<QWidget>(t, "FueModificado")->isVisible());
        teclear(tlf(t, 0), u"Mío"_qs);
        QString mensaje;
        responder(&mensaje, u"Aceptar"_qs);
        pulsar(control<QPushButton>(t, "cmdAceptar"));
        QCOMPARE(mensaje, u"Fichero de contactos fué modificado.\n\nSu cambio no pudo grabarse."_qs);
        QVERIFY(nombresVisibles(t).contains(u"Otro0"_qs));
        QVERIFY(!nombresVisibles(t).contains(u"Mío"_qs));
        QCOMPARE(nombresEnDisco().size(), Agenda.size() + 1);
    }

    // Four processes saving at once: every save that was not refused is in the final file.
    void cuatroProcesos()
    {
        std::vector<std::unique_ptr<QProcess>> procesos;
        for (int p = 0; p < 4; ++p) {
            procesos.push_back(std::make_unique<QProcess>());
            procesos.back()->start(QStringLiteral(AGENDA_PROCESO), {u"agregar"_qs, u"50"_qs, u"P%1-"_qs.arg(p)});
        }
        QStringList grabados;
        for (auto &p : procesos) {
            QVERIFY(p->waitForFinished(120000));
            for (const QByteArray &linea : p->readAllStandardOutput().split('\n'))
                if (linea.startsWith("GRABADO "))
                    grabados << QString::fromUtf8(linea.mid(8));
        }
        const QStringList final = nombresEnDisco();
        QVERIFY(!grabados.isEmpty());
        for (const QString &g : grabados)
            QVERIFY2(final.contains(g), qPrintable(g));
        QCOMPARE(final.size(), Agenda.size() + grabados.size());
    }
};

QTEST_MAIN(TstTelefonos)
#include "tst_telefonos.moc"
