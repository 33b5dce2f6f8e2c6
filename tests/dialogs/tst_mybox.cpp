// The message, input and viewer boxes on screen, answered through real key and mouse events
// from a queued callback (what the callback sees is recorded and checked after the call has
// returned); and the order of a range by the type of its fields, without a box.
#include <kvr/cajas.h>
#include <kvr/campos.h>
#include <kvr/error.h>
#include <kvr/mybox.h>

#include "comun/pruebas.h"
#include "registro.h"

#include <QColorDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollArea>

using namespace kvr;
using namespace prueba;

namespace {

// Plays a script of user actions on the viewer box, separated by blanks: "fila:N" clicks grid
// row N in its first shown column, "titulo:C" the title of column C, "doblefila:N" and
// "dobletitulo:C" double-click them; "tab", "abajo", "enter" and "escape" are keys for the
// focused control, any other word clicks the visible button of that caption. Stops when the box
// has gone; tells whether it is still open.
bool representar(QWidget *caja, const QString &guion)
{
    static const QHash<QString, Qt::Key> teclas{{u"tab"_qs, Qt::Key_Tab}, {u"abajo"_qs, Qt::Key_Down},
                                                {u"enter"_qs, Qt::Key_Return},
                                                {u"escape"_qs, Qt::Key_Escape}};
    QPointer<QWidget> vigia(caja);
    auto *visor = control<VisorRejilla>(caja, "VisorMini");
    QHeaderView *h = visor->horizontalHeader();
    for (const QString &paso : guion.split(u' ', Qt::SkipEmptyParts)) {
        if (!vigia || !vigia->isVisible())
            return false;
        const QString orden = paso.section(u':', 0, 0);
        const int n = paso.section(u':', 1, 1).toInt();
        using Clic = void (*)(QWidget *, Qt::MouseButton, Qt::KeyboardModifiers, QPoint, int);
        const Clic clic = orden.startsWith(u"doble") ? Clic(&QTest::mouseDClick) : Clic(&QTest::mouseClick);
        if (orden.endsWith(u"fila")) {
            const QModelIndex i = visor->model()->index(visor->modeloRejilla()->filaVista(n), visor->modeloRejilla()->colVista(1));
            visor->scrollTo(i);
            clic(visor->viewport(), Qt::LeftButton, {}, visor->visualRect(i).center(), -1);
        } else if (orden.endsWith(u"titulo"))
            clic(h->viewport(), Qt::LeftButton, {},
                 QPoint(h->sectionViewportPosition(n) + h->sectionSize(n) / 2, h->height() / 2), -1);
        else if (teclas.contains(orden))
            QTest::keyClick(QApplication::focusWidget(), teclas.value(orden));
        else
            for (QPushButton *b : caja->findChildren<QPushButton *>())
                if (b->isVisible() && b->text() == paso)
                    QTest::mouseClick(b, Qt::LeftButton);
        QCoreApplication::processEvents();
    }
    return vigia && vigia->isVisible();
}

const QString kTitulos = QStringLiteral(";Nombre#12;Teléfono#10;Ciudad#8");

// Three contacts; element 0 of every row and row 0 are not shown.
QVector<QStringList> contactos()
{
    return {{}, L({"", "A1", "Ana", "911 000 001", "Madrid"}), L({"", "A2", "Berta", "933 000 002", "Barcelona"}),
            L({"", "A3", "Carmen", "954 000 003", "Sevilla"})};
}

} // namespace

class TstMyBox : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // A message of any length is read whole: the box grows with it while the screen has room,
    // then scrolls; either way the buttons stay below the text and the box on the screen.
    void mensajeLargo_data()
    {
        QTest::addColumn<int>("lineas");
        QTest::addColumn<QString>("visto");
        QTest::newRow("tres líneas") << 3 << u"entero, en pantalla, botones debajo"_qs;
        QTest::newRow("doce líneas") << 12 << u"entero, en pantalla, botones debajo"_qs;
        QTest::newRow("quinientas líneas") << 500 << u"desplazable, en pantalla, botones debajo"_qs;
    }
    void mensajeLargo()
    {
        QFETCH(int, lineas);
        QStringList texto;
        for (int i = 1; i <= lineas; ++i)
            texto << u"Línea %1 del mensaje"_qs.arg(i);
        QString visto;
        alAbrirse([&visto](QWidget *caja) {
            auto *m = caja->findChild<QLabel *>(u"Mensaje"_qs);
            auto *area = caja->findChild<QScrollArea *>(u"MensajeDesplazable"_qs);
            const QRect texto(m->mapTo(caja, QPoint(0, 0)), area ? area->size() : m->size());
            bool debajo = true;
            for (QPushButton *b : caja->findChildren<QPushButton *>())
                if (b->isVisible())
                    debajo = debajo && b->y() >= texto.bottom() && b->geometry().bottom() < caja->height();
            QStringList v;
            v << (area ? u"desplazable"_qs : m->height() >= m->heightForWidth(m->width()) ? u"entero"_qs : u"cortado"_qs);
            v << (caja->screen()->availableGeometry().contains(caja->frameGeometry()) ? u"en pantalla"_qs : u"fuera"_qs);
            v << (debajo ? u"botones debajo"_qs : u"botones tapados"_qs);
            visto = v.join(u", "_qs);
            QTest::keyClick(caja, Qt::Key_Escape);
        });
        MyMsgBox(texto.join(u';'), u"Largo"_qs, IconoInformacion, 1, 1);
        QTEST(visto, "visto");
    }

    void init() { QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain)); }

    void rangoEnOrden_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("desde");
        QTest::addColumn<QString>("hasta");
        QTest::addColumn<QString>("enOrden"); // "sí", "no" or the run-time error raised
        const char *f = "T(F) L(10) A(I) (/)", *n = "T(N) L(10) A(D) (/)";
        // Dates and amounts are read by the locale's rules, in both; amounts by value.
        QTest::newRow("es_ES fecha mostrada") << "es_ES" << f << "01 feb 2009" << "31 ene 2009" << "no";
        QTest::newRow("C fecha mostrada") << "C" << f << "01 Feb 2009" << "31 Jan 2009" << "no";
        QTest::newRow("es_ES N agrupado") << "es_ES" << n << "1.000,00" << "999,50" << "no";
        QTest::newRow("C N agrupado") << "C" << n << "1,000.00" << "999.50" << "no";
        QTest::newRow("fecha igual") << "es_ES" << f << "01/02/2009" << "01 feb 2009" << "sí";
        QTest::newRow("desde en blanco") << "es_ES" << f << "   " << "01/01/2000" << "sí";
        QTest::newRow("hasta vacío") << "es_ES" << f << "31/12/2009" << "" << "sí";
        QTest::newRow("n negativo") << "es_ES" << "T(n) L(10) A(D) (/)" << "-5" << "-6" << "no";
        // "D" reads the shown texts with "." as the decimal point, unconverted.
        QTest::newRow("D con coma") << "es_ES" << "T(D) L(6) A(D) (/)" << "1,5" << "1,2" << "sí";
        QTest::newRow("D por valor, no por texto") << "es_ES" << "T(D) L(4) A(D) (/)" << "  12" << "   3" << "no";
        QTest::newRow("texto por códigos") << "es_ES" << "T(m) L(5) A(I) (/)" << "Z" << "Á" << "sí";
        QTest::newRow("fecha ilegible") << "es_ES" << f << "31/02/2009" << "01/03/2009" << "<error 13>";
    }
    void rangoEnOrden()
    {
        QFETCH(QString, locale); QFETCH(QString, tag); QFETCH(QString, desde);
        QFETCH(QString, hasta); QFETCH(QString, enOrden);
        QLocale::setDefault(QLocale(locale));
        QCOMPARE(resultado([&] { return RangoEnOrden(desde, hasta, tag) ? u"sí"_qs : u"no"_qs; }), enOrden);
    }

    void juegosDeBotones_data()
    {
        QTest::addColumn<int>("juego");
        QTest::addColumn<int>("omision");
        QTest::addColumn<QString>("visto"); // the visible captions, then the focused button
        QTest::addColumn<float>("codigo");
        QTest::newRow("2 segundo") << 2 << 2 << "Aceptar|Cancelar Boton(0)" << 2.0f;
        QTest::newRow("3 primero: Si") << 3 << 1 << "Si|No Boton(1)" << 6.0f;
        QTest::newRow("4 otro") << 4 << 9 << "Si|No|Cancelar Boton(0)" << 2.0f;
        QTest::newRow("5 segundo") << 5 << 2 << "Abortar|Reintentar|Ignorar Boton(1)" << 4.0f;
        QTest::newRow("6 primero") << 6 << 1 << "Reintentar|Cancelar Boton(1)" << 4.0f;
        // An unknown set keeps the design's buttons; their captions give no code.
        QTest::newRow("7 desconocido") << 7 << 1 << "Boton3|Boton2|Boton1 Boton(2)" << 0.0f;
    }
    // The set's captions and initial focus; Enter on the focused button answers with its code.
    void juegosDeBotones()
    {
        QFETCH(int, juego); QFETCH(int, omision); QFETCH(QString, visto); QFETCH(float, codigo);
        QString vistos;
        alAbrirse([&](QWidget *caja) {
            vistos = titulosVisibles(caja) + u' ' + nombreDelFoco();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        });
        QCOMPARE(MyMsgBox(QStringLiteral("¿Seguro?"), QStringLiteral("Prueba"), 2, juego, omision), codigo);
        QCOMPARE(vistos, visto);
    }

    // A ";" of the message starts a line, and all lines fit; the title shows in the caption strip
    // and the window's, the icon beside the message. Escape, as closing the box, answers 0. A
    // mouse click answers and the pressed button springs back; a second Enter that follows at
    // once finds the box gone.
    void respuestas()
    {
        QString visto;
        bool cabe = false, marcado = true;
        alAbrirse([&](QWidget *caja) {
            auto *m = control<QLabel>(caja, "Mensaje");
            const QSize icono = control<QLabel>(caja, "Imagen")->pixmap().size();
            visto = QStringList{m->text(), control<QLabel>(caja, "etiTitulo")->text(), caja->windowTitle(),
                                QStringLiteral("%1x%2").arg(icono.width()).arg(icono.height())}.join(u'|');
            cabe = m->sizeHint().height() >= 3 * m->fontMetrics().lineSpacing();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        });
        QCOMPARE(MyMsgBox(u"<b>A</b>;;B"_qs, QStringLiteral("Título ñ"), IconoAdvertencia, 1, 1), 0.0f);
        QCOMPARE(visto, u"<b>A</b>\n\nB|Título ñ|Título ñ|32x32"_qs);
        QVERIFY(cabe);

        alAbrirse([&](QWidget *caja) {
            pulsar(boton(caja, 1));
            marcado = boton(caja, 1)->isChecked();
        });
        QCOMPARE(MyMsgBox(QStringLiteral("¿Borrar?"), QString(), IconoBorrar, 3, 0), 6.0f);
        QVERIFY(!marcado);

        alAbrirse([&](QWidget *caja) {
            QTest::keyClick(boton(caja, 1), Qt::Key_Return);
            QTest::keyClick(boton(caja, 0), Qt::Key_Return);
        });
        QCOMPARE(MyMsgBox(QStringLiteral("¿Reintentar?"), QString(), 4, 6, 1), 4.0f);
    }

    // The box follows the mouse dragged by its caption strip or its free surface.
    void arrastrar()
    {
        QPoint antes, despues, trasEtiqueta;
        alAbrirse([&](QWidget *caja) {
            antes = caja->pos();
            QWidget *tira = control(caja, "etiTitulo");
            QTest::mousePress(tira, Qt::LeftButton, {}, QPoint(50, 8));
            QTest::mouseMove(tira, QPoint(80, 28));
            QTest::mouseRelease(tira, Qt::LeftButton, {}, QPoint(80, 28));
            despues = caja->pos();
            QWidget *fondo = control(caja, "Contenedor");
            QTest::mousePress(fondo, Qt::LeftButton, {}, QPoint(150, 120));
            QTest::mouseMove(fondo, QPoint(140, 125));
            QTest::mouseRelease(fondo, Qt::LeftButton, {}, QPoint(140, 125));
            trasEtiqueta = caja->pos();
            pulsar(boton(caja, 0));
        });
        MyMsgBox(QStringLiteral("x"), QString(), 1, 1, 1, 1500, 1500);
        QCOMPARE(despues - antes, QPoint(30, 20));
        QCOMPARE(trasEtiqueta - despues, QPoint(-10, 5));
    }

    // The ten icons exist, are 32 by 32 and are all different. A wrong call is an error and
    // shows no box: an icon index outside them, a row of data shorter than the grid.
    void iconos()
    {
        QList<QImage> vistas;
        for (int i = 1; i <= NumeroIconos; ++i) {
            const QImage img = MyBox::NIconos(i).toImage();
            QCOMPARE(img.size(), QSize(32, 32));
            QVERIFY2(!vistas.contains(img), qPrintable(QString::number(i)));
            vistas << img;
        }
        QVector<QStringList> corta = contactos();
        corta[2].removeLast();
        bool vista = false;
        alAbrirse([&](QWidget *caja) {
            vista = true;
            caja->close();
        });
        for (int malo : {0, -1, 11})
            QCOMPARE(errorDe([malo] { MyMsgBox(u"x"_qs, QString(), malo, 1, 1); }),
                     int(ErrorEjecucion::SubindiceFueraDeIntervalo));
        QCOMPARE(errorDe([&corta] { MyVisorBox(u"x"_qs, kTitulos, corta, 1, u"Nombre"_qs); }),
                 int(ErrorEjecucion::SubindiceFueraDeIntervalo));
        QCoreApplication::processEvents();
        QVERIFY(!vista);
    }

    void preguntas_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("inicial");
        QTest::addColumn<QString>("tecleado"); // typed into the focused control
        QTest::addColumn<QString>("vistos"); // the focused control, the field and the range's second one as shown
        QTest::addColumn<QString>("resultado"); // empty: refused, the box stays open
        const auto rango = [](const char *d, const char *h) {
            return UnirRango(QString::fromUtf8(d), QString::fromUtf8(h));
        };
        const char *fecha = "T(F) L(10) A(I) (/)", *numero = "T(N) L(10) A(D) (/)";
        QTest::newRow("N") << "T(N) L(12) A(D)" << "" << "1234,5" << "CampoTexto 1.234,50" << "1234.50";
        QTest::newRow("H") << "T(H) L(5) A(I)" << "" << "9.5" << "CampoTexto 09:05" << "09:05";
        QTest::newRow("rango al revés") << fecha << rango("31/12/2009", "01/01/2009") << ""
                                        << "CampoTexto 31 dic 2009|01 ene 2009" << "";
        QTest::newRow("rango sin separador") << fecha << "01/02/2009" << "" << "CampoTexto |" << rango("", "");
        QTest::newRow("rango 9 10") << numero << rango("9", "10") << "" << "CampoTexto 9,00|10,00"
                                    << rango("9.00", "10.00");
        // "TABLA": the entry chosen in the list comes back as it stands.
        QTest::newRow("lista punto y coma") << "TABLA" << "Uno;Dos ;Tres" << "D" << "cbxTabla " << "Dos ";
        QTest::newRow("lista <<") << "TABLA" << "Norte<<Sur<<Este" << "E" << "cbxTabla " << "Este";
    }
    // What the user types in the field, which has the focus, shows in its display form when the
    // field is left, and comes back in its editing form. A range's bounds stand on one line under
    // their labels, filled in their display form; "Aceptar" is refused while the range is out of
    // order, and "Cancelar" then closes the box with an empty answer. A list takes the field's place.
    void preguntas()
    {
        QFETCH(QString, tag); QFETCH(QString, inicial); QFETCH(QString, tecleado);
        QFETCH(QString, vistos); QFETCH(QString, resultado);
        ServiciosGrabados grabados;
        QString visto;
        bool abiertaTrasAceptar = false, disposicion = false;
        alAbrirse([&](QWidget *caja) {
            auto *d = control<QLineEdit>(caja, "CampoTexto");
            auto *h = control<QLineEdit>(caja, "CampoHasta");
            QWidget *lista = control(caja, "cbxTabla");
            visto = nombreDelFoco();
            disposicion = (!h->isVisible()
                           || (d->y() == h->y() && d->width() == h->width() && d->geometry().right() < h->x()
                               && control(caja, "etiDesde")->isVisible() && control(caja, "etiHasta")->isVisible()))
                          && (!lista->isVisible()
                              || (lista->pos() == d->pos() && lista->width() == d->width() && !d->isVisible()));
            QTest::keyClicks(QApplication::focusWidget(), tecleado);
            pulsar(boton(caja, 1)); // leaving the field shows it in its display form
            visto += u' ' + d->text() + (h->isVisibleTo(caja) ? u'|' + h->text() : QString());
            abiertaTrasAceptar = caja->isVisible();
            if (abiertaTrasAceptar)
                pulsar(boton(caja, 0));
        });
        QCOMPARE(MyInputBox(QStringLiteral("Dato:"), QString(), 2, tag, inicial), resultado);
        QCOMPARE(visto, vistos);
        QVERIFY(disposicion);
        QCOMPARE(abiertaTrasAceptar, resultado.isEmpty());
        QVERIFY(grabados.mensajes.isEmpty());
    }

    void ayuda_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("fichero");
        QTest::addColumn<QString>("visto"); // the help button's file, the window it opens, the focus after it
        const QString f = QStringLiteral(KVR_DATOS_RTF "/ayuda_simbolos.rtf");
        QTest::newRow("vuelve al campo") << "T(m) L(9) A(I)" << f << f + u" kvr::MiniHelp CampoTexto"_qs;
        // In the range box the field left last is the caller's, in a window the box blocks: the
        // focus stays in the box.
        QTest::newRow("rango: queda en la caja") << "T(m) L(9) A(I) (/)" << f << f + u" kvr::MiniHelp Ayuda"_qs;
        QTest::newRow("sin fichero no hay botón") << "T(m) L(9) A(I)" << f + u".no"_qs << u"oculta CampoTexto"_qs;
    }
    // The help button opens the mini help window modally and then gives the focus back to the
    // field left last.
    void ayuda()
    {
        QFETCH(QString, tag); QFETCH(QString, fichero); QFETCH(QString, visto);
        QLineEdit anfitrion;
        anfitrion.show();
        UltimoCampo = &anfitrion;
        QString vistos;
        alAbrirse([&](QWidget *caja) {
            QWidget *ayuda = control(caja, "Ayuda");
            vistos = ayuda->isVisible() ? TagDe(ayuda) : u"oculta"_qs;
            QTest::keyClicks(control(caja, "CampoTexto"), QStringLiteral("abc"));
            QTimer::singleShot(0, qApp, [&] {
                QWidget *m = QApplication::activeModalWidget();
                if (!m || m == caja || !m->isModal())
                    return;
                vistos += u' ' + QString::fromLatin1(m->metaObject()->className());
                pulsar(control(m, "cmdCerrar"));
            });
            if (ayuda->isVisible())
                pulsar(ayuda);
            vistos += u' ' + nombreDelFoco();
            pulsar(boton(caja, 0));
        });
        MyInputBox(QStringLiteral("x"), QString(), 1, tag, {}, -1, -1, nullptr, fichero);
        QCOMPARE(vistos, visto);
    }

    void elegir_data()
    {
        QTest::addColumn<QString>("columna");
        QTest::addColumn<QString>("guion");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("columna por número") << "#3" << "fila:3 Aceptar" << "Sevilla";
        QTest::newRow("sin columna: la columna 0") << "" << "fila:2 Aceptar" << "A2";
        QTest::newRow("Aceptar sin fila") << "Ciudad" << "Aceptar" << "";
        // A click on a title chooses nothing; a double click there accepts the row chosen.
        QTest::newRow("títulos") << "Ciudad" << "fila:1 titulo:2 dobletitulo:1" << "Madrid";
        QTest::newRow("doble clic confirma") << "Nombre" << "doblefila:2" << "Berta";
        QTest::newRow("Escape tras elegir") << "Nombre" << "fila:2 escape" << "";
        QTest::newRow("flechas y Enter en la rejilla") << "Ciudad" << "tab abajo abajo enter" << "Sevilla";
    }
    // A row is chosen by a click or a key and confirmed by "Aceptar", a double click or Enter;
    // the result is its text in the column asked for. Picking offers "Aceptar" and "Cancelar"
    // with the focus on "Cancelar"; looking only offers "Aceptar".
    void elegir()
    {
        QFETCH(QString, columna); QFETCH(QString, guion); QFETCH(QString, esperado);
        QString visto;
        bool abierta = true;
        alAbrirse([&](QWidget *caja) {
            visto = titulosVisibles(caja) + u' ' + nombreDelFoco();
            abierta = representar(caja, guion);
        });
        const QString r = MyVisorBox(QStringLiteral("Contactos"), kTitulos, contactos(), IconoBuscar, columna);
        QVERIFY2(!abierta, "el guion no cerró la caja");
        QCOMPARE(r, esperado);
        QCOMPARE(visto, columna.isEmpty() ? u"Aceptar Boton(0)"_qs : u"Aceptar|Cancelar Boton(0)"_qs);
    }

    void colores_data()
    {
        QTest::addColumn<bool>("aceptar");
        // The dialog's first colour, then the field, the swatch and whether the box stayed in place.
        QTest::addColumn<QString>("visto");
        // The number is red + 256 green + 65536 blue.
        QTest::newRow("aceptado") << true << "#c86432 1971210 #0a141e quieta";
        QTest::newRow("cancelado") << false << "#c86432  #c86432 quieta";
    }
    // A click on the colour swatch opens the colour dialog at the swatch's colour; the colour
    // accepted there goes to the swatch and, as a number, to the field.
    void colores()
    {
        QFETCH(bool, aceptar); QFETCH(QString, visto);
        QString vistos;
        alAbrirse([&](QWidget *caja) {
            auto *rgb = control<QLabel>(caja, "RGBText");
            rgb->show();
            QPalette p = rgb->palette();
            p.setColor(QPalette::Window, QColor(200, 100, 50));
            rgb->setPalette(p);
            auto *campo = control<QLineEdit>(caja, "CampoTexto");
            const QPoint antes = caja->pos();
            QTimer::singleShot(0, qApp, [&] {
                auto *dlg = qobject_cast<QColorDialog *>(QApplication::activeModalWidget());
                if (!dlg)
                    return;
                vistos = dlg->currentColor().name() + u' ';
                dlg->setCurrentColor(QColor(10, 20, 30));
                aceptar ? dlg->accept() : dlg->reject();
            });
            QTest::mouseClick(rgb, Qt::LeftButton);
            QCoreApplication::processEvents();
            // The swatch's press does not drag the box.
            vistos += campo->text() + u' ' + rgb->palette().color(QPalette::Window).name()
                      + (caja->isVisible() && caja->pos() == antes ? u" quieta"_qs : u" movida"_qs);
            QTest::mouseClick(boton(caja, 0), Qt::LeftButton);
        });
        MyVisorBox(QStringLiteral("Colores"), kTitulos, contactos(), 1, QString());
        QCOMPARE(vistos, visto);
    }
};

QTEST_MAIN(TstMyBox)
#include "tst_mybox.moc"
