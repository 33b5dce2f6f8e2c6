// Table files and the table editor, on real files in a temporary folder. The file routine: what a
// save puts on disk byte for byte, what a load puts in the grid, the overwrite question and file
// errors that must leave the old file as it was. The editor on screen, driven by real clicks and
// keys: choosing a row, editing it, appending, saving (the file on disk checked after each save),
// leaving with and without changes, the file-name prompt.
#include <kvr/cajas.h>
#include <kvr/error.h>
#include <kvr/frmtablas.h>
#include <kvr/mivisor.h>
#include <kvr/tablas.h>
#include <kvr/utilidades.h>

#include "comun/pruebas.h"
#include "registro.h"

#include <QInputDialog>
#include <QLineEdit>


using namespace kvr;
using namespace prueba;

namespace {

const QByteArray provincias("ALAVA\r\nALBACETE\r\nALICANTE\r\nALMERIA\r\n");

// A one-column table grid: titles in row 0, elements from row 1. Its column is a fixed one, as
// in a new grid (the editor's is not), so that a load must clear it as well.
void llenar(Rejilla &g, const QStringList &elementos)
{
    CargarVisor(g, u"Provincia#25"_qs);
    for (int i = 0; i < elementos.size(); ++i)
        PonerCelda(g, i + 1, 0, elementos[i]);
}

} // namespace

class TstTablas : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_tabla;
    QPointer<frmTablas> m_t;
    QWidget m_anfitrion; // the host window the editor is put over

    QString ruta(const QString &nombre) const { return m_dir.filePath(nombre); }
    // A table editor over the host, with the default field tag and a title too narrow for the
    // three buttons, shown and active.
    void abrir(const QString &fichero)
    {
        m_t = new frmTablas;
        m_t->Dimensionar(&m_anfitrion, fichero, u"Sí#2"_qs);
        QVERIFY(mostrarActiva(m_t));
    }
    QLineEdit *elemento() { return control<QLineEdit>(m_t, "Elemento"); }
    void clicFila(int fila) { clicCelda(m_t->VisorTabla(), fila - 1, 0); }
    void clic(const char *boton) { pulsar(control(m_t, boton)); }
    // The row being edited, the field's text, the focused control and the table's mark.
    QString estado()
    {
        return u"%1 «%2» %3 %4"_qs.arg(m_t->FilaEditada()).arg(elemento()->text(), nombreDelFoco(),
                                         m_t->Modificado() ? u"modificado"_qs : u"limpio"_qs);
    }

private Q_SLOTS:
    void init()
    {
        m_anfitrion.setGeometry(130, 90, 500, 400);
        m_tabla = ruta(u"provincias.txt"_qs);
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
        escribir(m_tabla, provincias);
    }
    void cleanup()
    {
        delete m_t; // a window that did not close by itself
    }

    // The file routine. A save: the questions asked, if any, then what it puts on disk byte for
    // byte. Only GRABAR over an old file asks, and the answer decides whether the old file is
    // kept. A load: what it puts in the grid ("|" between the elements).
    void fichero_data()
    {
        QTest::addColumn<QString>("operacion");
        QTest::addColumn<int>("respuesta");
        QTest::addColumn<QByteArray>("disco"); // the file before, if any
        QTest::addColumn<QStringList>("elementos"); // the grid before
        QTest::addColumn<QByteArray>("visto");
        const QString R = u"REGRABAR"_qs, G = u"GRABAR"_qs, C = u"CARGAR"_qs;
        const int A = RespAceptar;
        const QByteArray viejo = "VIEJO\r\n";
        const QStringList nuevo = L({"NUEVO"}), cinco = L({"a", "b", "c", "d", "e"});
        QTest::newRow("vacíos y solo blancos fuera, blancos alrededor y tabulador se quedan") << R << A
            << QByteArray() << L({"ALAVA", "", "   ", " A ", "", "\t"}) << QByteArray("ALAVA\r\n A \r\n\t\r\n");
        QTest::newRow("acentos, eñe y euro en UTF-8")
            << R << A << QByteArray() << L({"CÁCERES", "A CORUÑA", "5 €"})
            << QByteArray("C\xc3\x81" "CERES\r\nA CORU\xc3\x91" "A\r\n5 \xe2\x82\xac\r\n");
        QTest::newRow("primer elemento con marca de orden: el fichero lleva la suya") << R << A << QByteArray()
            << QStringList{QChar(0xFEFF) + u"A"_qs} << QByteArray("\xef\xbb\xbf\xef\xbb\xbf" "A\r\n");
        QTest::newRow("GRABAR existente, Aceptar") << G << A << viejo << nuevo << QByteArray("pregunta, NUEVO\r\n");
        QTest::newRow("GRABAR existente, Cancelar") << G << int(RespCancelar) << viejo << nuevo
                                                    << QByteArray("pregunta, VIEJO\r\n");
        QTest::newRow("GRABAR nuevo no pregunta") << G << A << QByteArray() << nuevo << QByteArray("NUEVO\r\n");
        QTest::newRow("REGRABAR existente no pregunta") << R << int(RespCancelar) << viejo << nuevo
                                                        << QByteArray("NUEVO\r\n");
        QTest::newRow("operación desconocida") << u"BORRAR"_qs << A << viejo << nuevo << viejo;
        QTest::newRow("cargar: Windows-1252, blancos tal cual, línea vacía en medio") << C << A
            << QByteArray(" C\xe1" "ceres \r\n\r\nA Coru\xf1" "a\r\n\x80 5  \r\n") << QStringList()
            << QByteArray(" Cáceres ||A Coruña|€ 5  ");
        QTest::newRow("cargar: más líneas que filas, la rejilla crece")
            << C << A << QByteArray("1\r\n2\r\n3\r\n4\r\n") << L({"x"}) << QByteArray("1|2|3|4");
        QTest::newRow("cargar: menos líneas, el resto en blanco, las filas se quedan")
            << C << A << QByteArray("NUEVO\r\n") << cinco << QByteArray("NUEVO||||");
        QTest::newRow("cargar: marca de orden del fichero fuera, la del texto se queda") << C << A
            << QByteArray("\xef\xbb\xbf\xef\xbb\xbf" "A\r\n\xef\xbb\xbf" "B\r\n") << QStringList()
            << QByteArray("\xef\xbb\xbf" "A|\xef\xbb\xbf" "B");
        QTest::newRow("cargar: fichero que no existe") << C << A << QByteArray() << cinco << QByteArray("||||");
    }
    void fichero()
    {
        QFETCH(QString, operacion);
        QFETCH(int, respuesta);
        QFETCH(QByteArray, disco);
        QFETCH(QStringList, elementos);
        QFETCH(QByteArray, visto);
        ServiciosGrabados s;
        s.respuesta = respuesta;
        QString fichero = ruta(QString::fromUtf8(QTest::currentDataTag())); // one file a row
        if (!disco.isEmpty())
            escribir(fichero, disco);
        Rejilla g;
        llenar(g, elementos);
        FicheroTabla(operacion, fichero, g);
        const QString pregunta = u"Fichero "_qs + fichero + u" existe en disco. Se Sobreescribirá."_qs;
        QString preguntas;
        for (const MensajeGrabado &m : s.mensajes)
            preguntas += m.texto == pregunta && m.botones == 49 ? u"pregunta, "_qs : m.texto + u", "_qs;
        const QString cargado = ElementosTabla(g).join(u'|');
        QCOMPARE(preguntas.toUtf8() + (operacion == u"CARGAR" ? cargado.toUtf8() : leer(fichero)), visto);
    }

    // File errors raise the error with the file's name and leave every file as it was. The
    // process may not write files beyond 64 bytes: a save cut short by that (a full disk alike)
    // leaves the old file whole, with no temporary file left beside it.
    void errores_data()
    {
        QTest::addColumn<QString>("operacion");
        QTest::addColumn<QString>("nombre");
        QTest::addColumn<int>("numero");
        QTest::newRow("cargar una carpeta") << u"CARGAR"_qs << u"corta"_qs << 75;
        QTest::newRow("grabar sobre una carpeta") << u"REGRABAR"_qs << u"corta"_qs << 75;
        QTest::newRow("grabar en carpeta que no existe") << u"REGRABAR"_qs << u"falta/tabla.txt"_qs << 76;
        QTest::newRow("escritura interrumpida") << u"REGRABAR"_qs << u"corta/tabla.txt"_qs << 57;
    }
    void errores()
    {
        QFETCH(QString, operacion);
        QFETCH(QString, nombre);
        QFETCH(int, numero);
        QDir(m_dir.path()).mkpath(u"corta"_qs);
        escribir(ruta(u"corta/tabla.txt"_qs), "ANTES\r\n");
        Rejilla g;
        llenar(g, QStringList(100, u"ELEMENTO"_qs));
        QString fichero = ruta(nombre);
        QString visto; // the error's number and description
        try {
            const prueba::DiscoLleno lleno(64);
            FicheroTabla(operacion, fichero, g);
        } catch (const ErrorEjecucion &e) {
            visto = QString::number(e.numero()) + u' ' + e.descripcion();
        }
        QVERIFY2(visto.startsWith(QString::number(numero) + u' ') && visto.contains(fichero), qPrintable(visto));
        QCOMPARE(leer(ruta(u"corta/tabla.txt"_qs)), QByteArray("ANTES\r\n"));
        // No temporary file beside it, the folder still a folder, no missing folder made.
        QCOMPARE(QDir(ruta(u"corta"_qs)).entryList(QDir::Files | QDir::Hidden)
                     + QDir(m_dir.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                 L({"tabla.txt", "corta"}));
    }

    // Put at the host's corner; the grid, though its title is narrow, keeps the three buttons
    // apart, and the window holds them all. A click below the last row chooses nothing; choosing
    // row 3 puts it in the field without marking the table; the first key does; "Aceptar" stores
    // the field in the chosen row, or appends it when none is chosen, and marks the table even
    // when nothing changed. Choosing again a row whose text the field already holds (by Enter on
    // the grid, for the keyboard) must not swallow the next key.
    void elegirEditarYGrabar()
    {
        abrir(m_tabla);
        QCOMPARE(m_t->pos(), m_anfitrion.pos());
        QVERIFY(control(m_t, "cmdAceptar")->geometry().right() < control(m_t, "cmdGrabar")->x());
        QVERIFY(control(m_t, "cmdGrabar")->geometry().right() < control(m_t, "cmdSalir")->x());
        for (const char *n : {"VisorTabla", "Elemento", "Marco", "cmdAceptar", "cmdGrabar", "cmdSalir"})
            QVERIFY2(m_t->rect().contains(control(m_t, n)->geometry()), n);
        VisorRejilla *v = m_t->VisorTabla();
        QTest::mouseClick(v->viewport(), Qt::LeftButton, {}, QPoint(20, v->viewport()->height() - 3));
        QCOMPARE(estado(), u"0 «» VisorTabla limpio"_qs);
        clicFila(3);
        QCOMPARE(estado(), u"3 «ALICANTE» Elemento limpio"_qs);
        QTest::keyClicks(elemento(), u"asturias"_qs);
        QCOMPARE(estado(), u"3 «ASTURIAS» Elemento modificado"_qs);
        clic("cmdAceptar");
        QCOMPARE(estado(), u"0 «» Elemento modificado"_qs);
        QTest::keyClicks(elemento(), u"avila"_qs);
        clic("cmdAceptar");
        clic("cmdGrabar");
        QCOMPARE(leer(m_tabla), QByteArray("ALAVA\r\nALBACETE\r\nASTURIAS\r\nALMERIA\r\nAVILA\r\n"));
        clicFila(2);
        clic("cmdAceptar");
        QCOMPARE(estado(), u"0 «» Elemento modificado"_qs);
        clic("cmdGrabar");
        clicFila(2);
        v->setFocus();
        QTest::keyClick(v, Qt::Key_Return);
        QCOMPARE(estado(), u"2 «ALBACETE» Elemento limpio"_qs);
        QTest::keyClicks(elemento(), u"x"_qs);
        QCOMPARE(estado(), u"2 «X» Elemento modificado"_qs);
        clic("cmdAceptar");
        clic("cmdGrabar");
        QCOMPARE(leer(m_tabla), QByteArray("ALAVA\r\nX\r\nASTURIAS\r\nALMERIA\r\nAVILA\r\n"));
        // Salir on a clean table closes without a box (one answered "Cancelar" would keep it open).
        responder(u"Cancelar"_qs);
        clic("cmdSalir");
        QTRY_VERIFY(!m_t);
        // An amount: the field switches a chosen one to its editing form and back, which is not
        // editing; stored back unchanged, in the form the field shows once it is left.
        escribir(m_tabla, "1.234,50\r\n");
        m_t = new frmTablas;
        m_t->Dimensionar(nullptr, m_tabla, u"Importe#10"_qs, u"T(n) L(10) D(2) A(D)"_qs);
        QVERIFY(mostrarActiva(m_t));
        clicFila(1);
        QCOMPARE(estado(), u"1 «1234.50» Elemento limpio"_qs);
        clic("cmdAceptar");
        clic("cmdGrabar");
        QCOMPARE(leer(m_tabla), QByteArray("1.234,50\r\n"));
    }

    // With changes, Salir or closing from the title bar asks in a box centred over the editor;
    // only "Aceptar" leaves, "Cancelar" or Escape keep the pending edit.
    void salir_data()
    {
        QTest::addColumn<bool>("barra");
        QTest::addColumn<QString>("boton");
        QTest::newRow("Salir, Aceptar sale sin grabar") << false << u"Boton(1)"_qs;
        QTest::newRow("Salir, Escape se queda") << false << QString();
        QTest::newRow("barra de título, Cancelar se queda") << true << u"Boton(0)"_qs;
        QTest::newRow("barra de título, Aceptar sale") << true << u"Boton(1)"_qs;
    }
    void salir()
    {
        QFETCH(bool, barra);
        QFETCH(QString, boton);
        const bool cerrada = boton == u"Boton(1)"; // "Aceptar"
        abrir(m_tabla);
        clicFila(1);
        QTest::keyClicks(elemento(), u"arab"_qs);
        QString mensaje;
        int desvio = -1;
        alAbrirse([&](QWidget *caja) {
            mensaje = control<QLabel>(caja, "Mensaje")->text();
            desvio = (caja->frameGeometry().center() - m_t->frameGeometry().center()).manhattanLength();
            boton.isEmpty() ? QTest::keyClick(caja, Qt::Key_Escape) : pulsar(control(caja, boton));
        });
        if (barra)
            QCOMPARE(m_t->close(), cerrada);
        else
            clic("cmdSalir");
        QCOMPARE(mensaje, TextoMensaje(u"Datos han sido modificados.;;¿ Desea salir sin grabar ?"_qs));
        QVERIFY2(desvio >= 0 && desvio <= 4, qPrintable(QString::number(desvio)));
        QCoreApplication::processEvents();
        QTRY_COMPARE(m_t.isNull(), cerrada);
        if (!cerrada)
            QCOMPARE(m_t->Modificado() ? elemento()->text() : QString(), u"ARAB"_qs); // still marked, still there
        QCOMPARE(leer(m_tabla), provincias);
    }

    // Without a file name the load asks once and "Grabar" every time (no answer is kept), in the
    // desktop's own input box as a host without a recorder gets it: Spanish buttons, the question,
    // at the grid's corner; the name given there is where the table goes. Cancelled, nothing is
    // written and the mark is cleared all the same.
    void sinNombre()
    {
        QString visto;
        QPoint donde;
        const auto contestar = [&visto, &donde](const QString &nombre) {
            alAbrirse([&visto, &donde, nombre](QWidget *caja) {
                auto *entrada = qobject_cast<QInputDialog *>(caja);
                visto += caja->windowTitle() + u" | "_qs + entrada->labelText() + u" | "_qs
                    + entrada->okButtonText() + u',' + entrada->cancelButtonText();
                donde = caja->pos();
                entrada->setTextValue(nombre);
                QTest::keyClick(caja, nombre.isEmpty() ? Qt::Key_Escape : Qt::Key_Return);
            });
        };
        contestar(m_tabla);
        abrir(QString());
        DevolverFoco(elemento());
        QTest::keyClicks(elemento(), u"soria"_qs);
        clic("cmdAceptar");
        const QString destino = ruta(u"real.txt"_qs);
        contestar(destino);
        clic("cmdGrabar");
        QCOMPARE(donde, m_t->VisorTabla()->mapToGlobal(QPoint(0, 0)));
        QCOMPARE(leer(destino), provincias + "SORIA\r\n");
        QTest::keyClicks(elemento(), u"teruel"_qs);
        clic("cmdAceptar");
        contestar(QString());
        clic("cmdGrabar");
        QVERIFY(!m_t->Modificado());
        QCOMPARE(leer(destino), provincias + "SORIA\r\n");
        const QString caja = u"Editor de Tablas de PQD | Path y Nombre del fichero a %1 | Aceptar,Cancelar"_qs;
        QCOMPARE(visto, caja.arg(u"CARGAR"_qs) + caja.arg(u"REGRABAR"_qs) + caja.arg(u"REGRABAR"_qs));
    }
};

QTEST_MAIN(TstTablas)
#include "tst_tablas.moc"
