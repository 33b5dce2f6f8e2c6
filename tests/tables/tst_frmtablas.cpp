// The table editor on screen, driven by real clicks and keys: choosing a row, editing it,
// appending, saving (the file on disk checked after each save), leaving with and without
// changes (the exit box answered from a queued callback), the file-name prompt and file errors.
#include <kvr/cajas.h>
#include <kvr/campos.h>
#include <kvr/escala.h>
#include <kvr/frmtablas.h>
#include <kvr/mivisor.h>
#include <kvr/mybox.h>
#include <kvr/rejilla.h>
#include <kvr/utilidades.h>
#include <kvr/visorrejilla.h>

#include "comun/pruebas.h"
#include "registro.h"

#include <QDir>
#include <QFrame>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

using namespace kvr;
using namespace prueba;

namespace {

const QByteArray provincias("ALAVA\r\nALBACETE\r\nALICANTE\r\nALMERIA\r\n");

// What the exit box showed, recorded inside the callback and checked afterwards.
struct Caja {
    bool vista = false;
    QString mensaje;
    bool centrada = false;
};

// Answers the next modal box by clicking its button `nombre` (empty: Escape), recording it.
void responder(Caja &caja, const QString &nombre, QWidget *sobre)
{
    alAbrirse([&caja, nombre, sobre](QWidget *m) {
        caja.vista = true;
        caja.mensaje = control<QLabel>(m, "Mensaje")->text();
        const QPoint d = m->frameGeometry().center() - sobre->frameGeometry().center();
        caja.centrada = d.manhattanLength() <= 4;
        if (nombre.isEmpty())
            QTest::keyClick(m, Qt::Key_Escape);
        else
            QTest::mouseClick(control<QPushButton>(m, nombre), Qt::LeftButton);
    });
}

QStringList elementos(frmTablas *t)
{
    const Rejilla &g = t->VisorTabla()->rejilla();
    QStringList r;
    for (int f = 1; f < g.Rows(); ++f)
        r.append(g.TextMatrix(f, 0));
    return r;
}

void clicFila(frmTablas *t, int fila)
{
    VisorRejilla *v = t->VisorTabla();
    const QModelIndex i = v->model()->index(v->modeloRejilla()->filaVista(fila), 0);
    v->scrollTo(i);
    QTest::mouseClick(v->viewport(), Qt::LeftButton, {}, v->visualRect(i).center());
}

void clic(frmTablas *t, const char *boton)
{
    QTest::mouseClick(control<QPushButton>(t, boton), Qt::LeftButton);
}

} // namespace

class TstFrmTablas : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_tabla;
    QPointer<frmTablas> m_t;

    // A table editor on the sample file, shown and active.
    frmTablas *abrir(const QString &fichero, bool cargar = true, const QString &tag = u"T(M) L(15) A(I)"_qs)
    {
        m_t = new frmTablas;
        m_t->Dimensionar(nullptr, fichero, u"Provincia#25"_qs, tag, cargar);
        m_t->show();
        if (!QTest::qWaitForWindowActive(m_t))
            qWarning("la ventana no se activó");
        return m_t;
    }
    QLineEdit *elemento() { return control<QLineEdit>(m_t, "Elemento"); }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_tabla = m_dir.filePath(u"provincias.txt"_qs);
    }
    void init()
    {
        FactorX = FactorY = 0.0f;
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
        escribir(m_tabla, provincias);
    }
    void cleanup()
    {
        delete m_t; // a window that did not close by itself
    }

    void dimensionar_data()
    {
        QTest::addColumn<QString>("titulo");
        QTest::addColumn<int>("anchoVisorTwips");
        QTest::newRow("25 caracteres") << u"Provincia#25"_qs << 25 * 120 + 320;
        // Too narrow for the three buttons: the grid keeps them apart.
        QTest::newRow("2 caracteres: ancho mínimo") << u"Sí#2"_qs << -1;
    }
    void dimensionar()
    {
        QFETCH(QString, titulo); QFETCH(int, anchoVisorTwips);
        QWidget anfitrion;
        anfitrion.setGeometry(130, 90, 500, 400);
        anfitrion.show();
        QVERIFY(QTest::qWaitForWindowExposed(&anfitrion));
        m_t = new frmTablas;
        const int alto = m_t->height();
        m_t->Dimensionar(&anfitrion, m_tabla, titulo);
        QCOMPARE(m_t->windowTitle(), u"Edición de Tablas"_qs);
        QCOMPARE(TagDe(m_t), m_tabla);
        QCOMPARE(elementos(m_t), (QStringList{u"ALAVA"_qs, u"ALBACETE"_qs, u"ALICANTE"_qs, u"ALMERIA"_qs}));
        QVERIFY(!m_t->Modificado());
        QCOMPARE(TagDe(elemento()), u"T(M) L(15) A(I)"_qs);
        QCOMPARE(m_t->pos(), anfitrion.pos());
        QCOMPARE(m_t->height(), alto);

        // The grid is as wide as its column (titles in twips, 120 a character, and its margin),
        // never so narrow that the buttons below it overlap.
        VisorRejilla *v = m_t->VisorTabla();
        const auto px = [&](int twips) { return int(std::lround(twips * v->logicalDpiX() / 1440.0)); };
        if (anchoVisorTwips > 0)
            QCOMPARE(v->width(), px(anchoVisorTwips));
        QVERIFY(control(m_t, "cmdAceptar")->geometry().right() < control(m_t, "cmdGrabar")->x());
        QVERIFY(control(m_t, "cmdGrabar")->geometry().right() < control(m_t, "cmdSalir")->x());
        // Every control stays inside the window.
        for (const char *n : {"VisorTabla", "Elemento", "Marco", "cmdAceptar", "cmdGrabar", "cmdSalir"})
            QVERIFY2(m_t->rect().contains(control(m_t, n)->geometry()), n);
    }

    // Choosing row 3 puts it in the field without marking the table; the first key does.
    void elegirEditarYGrabar()
    {
        abrir(m_tabla);
        clicFila(m_t, 3);
        QCOMPARE(elemento()->text(), u"ALICANTE"_qs);
        QCOMPARE(m_t->FilaEditada(), 3);
        QCOMPARE(nombreDelFoco(), u"Elemento"_qs);
        QVERIFY(!m_t->Modificado());
        QCOMPARE(elemento()->selectedText(), u"ALICANTE"_qs); // the field selects all on entry
        QTest::keyClicks(elemento(), u"asturias"_qs);
        QVERIFY(m_t->Modificado());
        QCOMPARE(elemento()->text(), u"ASTURIAS"_qs); // T(M): upper case

        clic(m_t, "cmdAceptar");
        QCOMPARE(elementos(m_t), (QStringList{u"ALAVA"_qs, u"ALBACETE"_qs, u"ASTURIAS"_qs, u"ALMERIA"_qs}));
        QCOMPARE(elemento()->text(), QString());
        QCOMPARE(m_t->FilaEditada(), 0);
        QCOMPARE(nombreDelFoco(), u"Elemento"_qs);
        // Again with the field empty: an empty element is appended.
        clic(m_t, "cmdAceptar");
        QCOMPARE(elementos(m_t).size(), 5);
        QCOMPARE(elementos(m_t).last(), QString());

        ServiciosGrabados s; // a question would be recorded here
        clic(m_t, "cmdGrabar");
        QVERIFY(s.mensajes.isEmpty());
        QVERIFY(s.entradas.isEmpty());
        QVERIFY(!m_t->Modificado());
        QCOMPARE(leer(m_tabla), QByteArray("ALAVA\r\nALBACETE\r\nASTURIAS\r\nALMERIA\r\n"));

        // Salir on a clean table closes without a box.
        Caja caja;
        responder(caja, u"Boton(0)"_qs, m_t);
        clic(m_t, "cmdSalir");
        QTRY_VERIFY(!m_t);
        QCoreApplication::processEvents();
        QVERIFY(!caja.vista);
    }

    void clicSinEleccion_data()
    {
        QTest::addColumn<bool>("titulos");
        QTest::newRow("en los títulos") << true;
        QTest::newRow("bajo la última fila") << false;
    }
    void clicSinEleccion()
    {
        QFETCH(bool, titulos);
        abrir(m_tabla);
        VisorRejilla *v = m_t->VisorTabla();
        if (titulos)
            QTest::mouseClick(v->horizontalHeader()->viewport(), Qt::LeftButton, {}, QPoint(20, 5));
        else
            QTest::mouseClick(v->viewport(), Qt::LeftButton, {}, QPoint(20, v->viewport()->height() - 3));
        QCOMPARE(m_t->FilaEditada(), 0);
        QCOMPARE(elemento()->text(), QString());
    }

    // The field switches a chosen element to its editing form and back: that is not editing.
    void elegirNoMarca_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QByteArray>("disco");
        QTest::addColumn<QString>("editando");
        QTest::newRow("texto") << u"T(M) L(15) A(I)"_qs << QByteArray("ALAVA\r\n") << u"ALAVA"_qs;
        QTest::newRow("importe") << u"T(n) L(10) D(2) A(D)"_qs << QByteArray("1.234,50\r\n") << u"1234.50"_qs;
    }
    void elegirNoMarca()
    {
        QFETCH(QString, tag); QFETCH(QByteArray, disco); QFETCH(QString, editando);
        escribir(m_tabla, disco);
        abrir(m_tabla, true, tag);
        QCOMPARE(TagDe(elemento()), tag);
        clicFila(m_t, 1);
        QCOMPARE(nombreDelFoco(), u"Elemento"_qs);
        QCOMPARE(elemento()->text(), editando);
        QVERIFY(!m_t->Modificado());
        // Stored back unchanged, in the form the field shows once it is left.
        clic(m_t, "cmdAceptar");
        clic(m_t, "cmdGrabar");
        QCOMPARE(leer(m_tabla), disco);
    }

    // Choosing a row whose text the field already holds must not swallow the next key.
    void elegirMismoTexto()
    {
        abrir(m_tabla);
        clicFila(m_t, 2);
        clic(m_t, "cmdAceptar"); // stores the same text back: the table is marked
        clic(m_t, "cmdGrabar");
        QVERIFY(!m_t->Modificado());
        clicFila(m_t, 2);
        // Chosen again by Enter on the grid (for the keyboard), with the same text.
        QTest::keyClick(m_t->VisorTabla(), Qt::Key_Return);
        QCOMPARE(m_t->FilaEditada(), 2);
        QCOMPARE(nombreDelFoco(), u"Elemento"_qs);
        QTest::keyClicks(elemento(), u"x"_qs);
        QVERIFY(m_t->Modificado());
    }

    void salir_data()
    {
        QTest::addColumn<QString>("boton");
        QTest::addColumn<bool>("cerrada");
        QTest::newRow("Cancelar se queda") << u"Boton(0)"_qs << false;
        QTest::newRow("Aceptar sale sin grabar") << u"Boton(1)"_qs << true;
        QTest::newRow("Escape se queda") << QString() << false;
    }
    void salir()
    {
        QFETCH(QString, boton); QFETCH(bool, cerrada);
        abrir(m_tabla);
        clicFila(m_t, 1);
        QTest::keyClicks(elemento(), u"arab"_qs);
        Caja caja;
        responder(caja, boton, m_t);
        clic(m_t, "cmdSalir");
        QVERIFY(caja.vista);
        QCOMPARE(caja.mensaje, TextoMensaje(u"Datos han sido modificados.;;¿ Desea salir sin grabar ?"_qs));
        QVERIFY(caja.centrada);
        if (cerrada)
            QTRY_VERIFY(!m_t);
        else {
            QCoreApplication::processEvents();
            QVERIFY(m_t && m_t->isVisible());
            QVERIFY(m_t->Modificado());
            QCOMPARE(elemento()->text(), u"ARAB"_qs); // the pending edit is still there
        }
        QCOMPARE(leer(m_tabla), provincias);
    }

    // Closing from the title bar asks the same question when there are changes.
    void cerrarVentana()
    {
        abrir(m_tabla);
        DevolverFoco(elemento());
        QTest::keyClicks(elemento(), u"b"_qs);
        Caja caja;
        responder(caja, u"Boton(0)"_qs, m_t);
        QVERIFY(!m_t->close());
        QVERIFY(caja.vista);
        QVERIFY(m_t);
        Caja otra;
        responder(otra, u"Boton(1)"_qs, m_t);
        QVERIFY(m_t->close());
        QVERIFY(otra.vista);
        QTRY_VERIFY(!m_t);
    }

    // Without a file name the load asks once and "Grabar" every time; no answer is kept.
    void sinNombre()
    {
        ServiciosGrabados s;
        s.aceptarEntrada = true;
        s.respuestaEntrada = m_tabla;
        abrir(QString(), true);
        QCOMPARE(s.entradas.size(), 1);
        QCOMPARE(s.entradas[0].pregunta, u"Path y Nombre del fichero a CARGAR"_qs);
        QCOMPARE(elementos(m_t).size(), 4);
        QCOMPARE(TagDe(m_t), QString());
        s.entradas.clear();
        s.respuestaEntrada = m_dir.filePath(u"nueva.txt"_qs);
        m_t->VisorTabla()->rejilla().PonerRows(2);
        PonerCelda(m_t->VisorTabla()->rejilla(), 1, 0, QString());
        DevolverFoco(elemento());
        QTest::keyClicks(elemento(), u"soria"_qs);
        clic(m_t, "cmdAceptar");
        clic(m_t, "cmdGrabar");
        clic(m_t, "cmdGrabar");
        QCOMPARE(s.entradas.size(), 2);
        QCOMPARE(s.entradas[1].pregunta, u"Path y Nombre del fichero a REGRABAR"_qs);
        // At the grid's corner on the screen.
        const QPoint esquina = m_t->VisorTabla()->mapToGlobal(QPoint(0, 0));
        QCOMPARE(s.entradas[1].xTwips, int(std::lround(esquina.x() * 1440.0 / m_t->logicalDpiX())));
        QCOMPARE(s.entradas[1].yTwips, int(std::lround(esquina.y() * 1440.0 / m_t->logicalDpiY())));
        QCOMPARE(TagDe(m_t), QString());
        QCOMPARE(leer(s.respuestaEntrada), QByteArray("SORIA\r\n"));
        QVERIFY(!m_t->Modificado());

        // Cancelled: nothing written, and the mark is cleared all the same.
        QTest::keyClicks(elemento(), u"teruel"_qs);
        clic(m_t, "cmdAceptar");
        s.aceptarEntrada = false;
        clic(m_t, "cmdGrabar");
        QCOMPARE(s.entradas.size(), 3);
        QVERIFY(!m_t->Modificado());
        QCOMPARE(leer(s.respuestaEntrada), QByteArray("SORIA\r\n"));
        QVERIFY(s.mensajes.isEmpty());
    }

    // The desktop's own input box, as a host without a recorder gets it: Spanish buttons, the
    // question, at the grid's corner; the name typed there is where the table goes.
    void cajaDeEntradaReal()
    {
        abrir(QString(), false);
        DevolverFoco(elemento());
        QTest::keyClicks(elemento(), u"zamora"_qs);
        clic(m_t, "cmdAceptar");
        const QString destino = m_dir.filePath(u"real.txt"_qs);
        struct Vista {
            bool vista = false;
            QString titulo, pregunta;
            QStringList botones;
            QPoint esquina;
        } v;
        QTimer::singleShot(0, qApp, [&v, destino] {
            auto *caja = qobject_cast<QInputDialog *>(QApplication::activeModalWidget());
            if (!caja || !QTest::qWaitForWindowExposed(caja))
                return;
            v.vista = true;
            v.titulo = caja->windowTitle();
            v.pregunta = caja->labelText();
            for (auto *b : caja->findChildren<QPushButton *>())
                v.botones.append(b->text());
            v.botones.sort();
            v.esquina = caja->pos();
            auto *campo = caja->findChild<QLineEdit *>();
            campo->setFocus();
            QTest::keyClicks(campo, destino);
            for (auto *b : caja->findChildren<QPushButton *>())
                if (b->text() == u"Aceptar")
                    QTest::mouseClick(b, Qt::LeftButton);
        });
        clic(m_t, "cmdGrabar");
        QVERIFY(v.vista);
        QCOMPARE(v.titulo, u"Editor de Tablas de PQD"_qs);
        QCOMPARE(v.pregunta, u"Path y Nombre del fichero a REGRABAR"_qs);
        QCOMPARE(v.botones, (QStringList{u"Aceptar"_qs, u"Cancelar"_qs}));
        QCOMPARE(v.esquina, m_t->VisorTabla()->mapToGlobal(QPoint(0, 0)));
        QCOMPARE(leer(destino), QByteArray("ZAMORA\r\n"));
    }
};

QTEST_MAIN(TstFrmTablas)
#include "tst_frmtablas.moc"
