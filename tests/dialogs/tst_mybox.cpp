// The box on screen, answered through real key and mouse events from a queued callback; what
// the callback sees is recorded and checked after the call has returned.
#include <kvr/campos.h>
#include <kvr/error.h>
#include <kvr/escala.h>
#include <kvr/layout.h>
#include <kvr/mybox.h>
#include <kvr/valores.h>

#include "comun/pruebas.h"
#include "registro.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>

using namespace kvr;

using namespace prueba;

namespace {

QString rango(const char *desde, const char *hasta)
{
    return UnirRango(QString::fromUtf8(desde), QString::fromUtf8(hasta));
}

} // namespace

class TstMyBox : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
        FechaTrabajo = QDate(2026, 11, 21);
    }
    void cleanup()
    {
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
        QuitarPantallaSimulada();
    }

    void juegosDeBotones_data()
    {
        QTest::addColumn<int>("juego");
        QTest::addColumn<int>("omision");
        QTest::addColumn<QString>("titulos");
        QTest::addColumn<QString>("foco");
        QTest::addColumn<float>("codigo");
        QTest::newRow("2 segundo") << 2 << 2 << "Aceptar|Cancelar" << "Boton(0)" << 2.0f;
        QTest::newRow("3 primero: Si") << 3 << 1 << "Si|No" << "Boton(1)" << 6.0f;
        QTest::newRow("4 otro") << 4 << 9 << "Si|No|Cancelar" << "Boton(0)" << 2.0f;
        QTest::newRow("5 segundo") << 5 << 2 << "Abortar|Reintentar|Ignorar" << "Boton(1)" << 4.0f;
        QTest::newRow("6 primero") << 6 << 1 << "Reintentar|Cancelar" << "Boton(1)" << 4.0f;
        // An unknown set keeps the design's buttons; their captions give no code.
        QTest::newRow("7 desconocido") << 7 << 1 << "Boton3|Boton2|Boton1" << "" << 0.0f;
    }
    // The set's captions and initial focus; Enter on the focused button answers with its code.
    void juegosDeBotones()
    {
        QFETCH(int, juego); QFETCH(int, omision); QFETCH(QString, titulos); QFETCH(QString, foco);
        QFETCH(float, codigo);
        QString vistos, enfocado;
        alAbrirse([&](QWidget *caja) {
            vistos = titulosVisibles(caja);
            enfocado = nombreDelFoco();
            QWidget *destino = foco.isEmpty() ? boton(caja, 0) : QApplication::focusWidget();
            QTest::keyClick(destino, Qt::Key_Return);
        });
        const float r = MyMsgBox(QStringLiteral("¿Seguro?"), QStringLiteral("Prueba"), 2, juego, omision);
        QCOMPARE(vistos, titulos);
        if (!foco.isEmpty())
            QCOMPARE(enfocado, foco);
        QCOMPARE(r, codigo);
    }

    void mensajeYTitulo_data()
    {
        QTest::addColumn<QString>("mensaje");
        QTest::addColumn<QString>("lineas"); // joined by "|"
        QTest::newRow("A;;B") << "A;;B" << "A||B";
        QTest::newRow("sin separador") << "<b>tal cual</b>" << "<b>tal cual</b>";
    }
    // The message's lines, the title in the caption strip and the icon; Escape answers 0.
    void mensajeYTitulo()
    {
        QFETCH(QString, mensaje); QFETCH(QString, lineas);
        QString vistas;
        QString titulo, tituloVentana;
        QSize icono;
        int alturaMensaje = 0, alturaLinea = 0;
        alAbrirse([&](QWidget *caja) {
            auto *m = control<QLabel>(caja, "Mensaje");
            vistas = m->text().split(u'\n').join(u'|');
            alturaMensaje = m->sizeHint().height();
            alturaLinea = m->fontMetrics().lineSpacing();
            titulo = control<QLabel>(caja, "etiTitulo")->text();
            tituloVentana = caja->windowTitle();
            icono = control<QLabel>(caja, "Imagen")->pixmap().size();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        });
        const float r = MyMsgBox(mensaje, QStringLiteral("Título ñ"), IconoAdvertencia, 1, 1);
        QCOMPARE(vistas, lineas);
        QVERIFY(alturaMensaje >= lineas.count(u'|') * alturaLinea + alturaLinea);
        QCOMPARE(titulo, QStringLiteral("Título ñ"));
        QCOMPARE(tituloVentana, titulo);
        QCOMPARE(icono, QSize(32, 32));
        QCOMPARE(r, 0.0f);
    }

    // The ten icons exist, are 32 by 32 and are all different; other indices are an error and
    // show no box.
    void iconos()
    {
        QList<QImage> vistas;
        for (int i = 1; i <= NumeroIconos; ++i) {
            const QImage img = MyBox::NIconos(i).toImage();
            QCOMPARE(img.size(), QSize(32, 32));
            QVERIFY2(!vistas.contains(img), qPrintable(QString::number(i)));
            vistas << img;
        }
        for (int malo : {0, -1, 11}) {
            bool lanzado = false;
            try {
                MyMsgBox(QStringLiteral("x"), QString(), malo, 1, 1);
            } catch (const ErrorEjecucion &e) {
                lanzado = e.numero() == ErrorEjecucion::SubindiceFueraDeIntervalo;
            }
            QVERIFY(lanzado);
            QVERIFY(!QApplication::activeModalWidget());
        }
    }

    // A mouse click answers, the pressed button springs back, and a second Enter that follows
    // at once finds the box gone.
    void clicYDobleEnter()
    {
        bool marcado = true;
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

        // Closing the window without a button.
        alAbrirse([&](QWidget *caja) { caja->close(); });
        QCOMPARE(MyMsgBox(QStringLiteral("x"), QString(), 1, 4, 1), 0.0f);
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

    void valorPorTipo_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("tecleado");
        QTest::addColumn<QString>("mostrado");
        QTest::addColumn<QString>("resultado");
        for (const char *loc : {"es_ES", "C"}) {
            const bool es = QByteArray(loc) == "es_ES";
            auto fila = [&](const char *caso) -> QTestData & { return QTest::addRow("%s %s", loc, caso) << QString::fromLatin1(loc); };
            fila("N") << "T(N) L(12) A(D)" << "1234,5" << (es ? "1.234,50" : "1,234.50") << "1234.50";
            fila("F completa") << "T(F) L(10) A(I)" << "1205" << (es ? "12 may 2026" : "12 May 2026") << "12/05/2026";
        }
        QTest::newRow("H") << "es_ES" << "T(H) L(5) A(I)" << "9.5" << "09:05" << "09:05";
    }
    // What the user types, shown in its display form when the field is left, comes back in its
    // editing form.
    void valorPorTipo()
    {
        QFETCH(QString, locale); QFETCH(QString, tag); QFETCH(QString, tecleado);
        QFETCH(QString, mostrado); QFETCH(QString, resultado);
        QLocale::setDefault(QLocale(locale));
        ServiciosGrabados grabados;
        QString foco, visto;
        alAbrirse([&](QWidget *caja) {
            foco = nombreDelFoco();
            auto *campo = control<QLineEdit>(caja, "CampoTexto");
            QTest::keyClicks(campo, tecleado);
            QCoreApplication::processEvents();
            QTest::mousePress(boton(caja, 1), Qt::LeftButton);
            visto = campo->text();
            QTest::mouseRelease(boton(caja, 1), Qt::LeftButton);
        });
        const QString r = MyInputBox(QStringLiteral("Dato:"), QStringLiteral("Entrada"), 2, tag);
        QCOMPARE(foco, QStringLiteral("CampoTexto"));
        QCOMPARE(visto, mostrado);
        QCOMPARE(r, resultado);
        QVERIFY(grabados.mensajes.isEmpty());
    }

    void rangos_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("inicial");
        QTest::addColumn<QString>("desde");
        QTest::addColumn<QString>("hasta");
        QTest::addColumn<QString>("resultado"); // empty: refused, the box stays open
        const QString fecha = QStringLiteral("T(F) L(10) A(I) (/)");
        QTest::newRow("fecha abierta") << fecha << rango("01/02/2009", "") << "01 feb 2009" << ""
                                       << rango("01/02/2009", "");
        QTest::newRow("fecha al revés") << fecha << rango("31/12/2009", "01/01/2009") << "31 dic 2009"
                                        << "01 ene 2009" << "";
        QTest::newRow("sin separador") << fecha << "01/02/2009" << "" << "" << rango("", "");
        QTest::newRow("texto A a") << QStringLiteral("T(m) L(5) A(I) (/)") << rango("A", "a") << "A" << "a" << rango("A", "a");
        const QString numero = QStringLiteral("T(N) L(10) A(D) (/)");
        QTest::newRow("números 9 10") << numero << rango("9", "10") << "9,00" << "10,00" << rango("9.00", "10.00");
        const QString digitos = QStringLiteral("T(D) L(4) A(D) (/)");
    }
    // Both bounds on one line, filled in their display form; "Aceptar" is refused while the
    // range is out of order, and "Cancelar" then closes the box with an empty answer.
    void rangos()
    {
        QFETCH(QString, tag); QFETCH(QString, inicial); QFETCH(QString, desde);
        QFETCH(QString, hasta); QFETCH(QString, resultado);
        ServiciosGrabados grabados;
        QString vistoDesde, vistoHasta, foco;
        bool abiertaTrasAceptar = false, mismaLinea = false, etiquetas = false;
        alAbrirse([&](QWidget *caja) {
            auto *d = control<QLineEdit>(caja, "CampoTexto");
            auto *h = control<QLineEdit>(caja, "CampoHasta");
            foco = nombreDelFoco();
            vistoHasta = h->text();
            mismaLinea = d->y() == h->y() && d->width() == h->width() && d->geometry().right() < h->x();
            etiquetas = control(caja, "etiDesde")->isVisible() && control(caja, "etiHasta")->isVisible();
            pulsar(boton(caja, 1));
            vistoDesde = d->text();
            abiertaTrasAceptar = caja->isVisible();
            if (abiertaTrasAceptar)
                pulsar(boton(caja, 0));
        });
        const QString r = MyInputBox(QStringLiteral("Periodo"), QString(), 2, tag, inicial);
        QCOMPARE(foco, QStringLiteral("CampoTexto"));
        QCOMPARE(vistoDesde, desde);
        QCOMPARE(vistoHasta, hasta);
        QVERIFY(mismaLinea);
        QVERIFY(etiquetas);
        QCOMPARE(abiertaTrasAceptar, resultado.isEmpty());
        QCOMPARE(r, resultado);
        QVERIFY(grabados.mensajes.isEmpty());
    }

    void lista_data()
    {
        QTest::addColumn<QString>("lista");
        QTest::addColumn<int>("bajadas");
        QTest::addColumn<QString>("resultado");
        QTest::newRow("punto y coma") << "Uno;Dos ;Tres" << 1 << "Dos ";
        QTest::newRow("<<") << "Norte<<Sur<<Este" << 2 << "Este";
    }
    // "TABLA": the list takes the field's place and the chosen entry comes back as it stands.
    void lista()
    {
        QFETCH(QString, lista); QFETCH(int, bajadas); QFETCH(QString, resultado);
        bool enSuSitio = false, campoOculto = false;
        QString foco;
        alAbrirse([&](QWidget *caja) {
            auto *combo = control<QComboBox>(caja, "cbxTabla");
            QWidget *campo = control(caja, "CampoTexto");
            enSuSitio = combo->x() == campo->x() && combo->y() == campo->y() && combo->width() == campo->width();
            campoOculto = !campo->isVisible();
            foco = nombreDelFoco();
            for (int i = 0; i < bajadas; ++i)
                QTest::keyClick(combo, Qt::Key_Down);
            pulsar(boton(caja, 1));
        });
        QCOMPARE(MyInputBox(QStringLiteral("Elija"), QString(), 2, QStringLiteral("TABLA"), lista), resultado);
        QVERIFY(enSuSitio);
        QVERIFY(campoOculto);
        QCOMPARE(foco, QStringLiteral("cbxTabla"));
    }

    // The help button shows only for an existing file; it opens the mini help window modally
    // and then gives the focus back to the field left last.
    void ayuda()
    {
        const QString fichero = QStringLiteral(KVR_DATOS_RTF "/ayuda_simbolos.rtf");
        QVERIFY(QFile::exists(fichero));
        bool visible = false, ayudaModal = false;
        QString clase, foco, tagAyuda;
        alAbrirse([&](QWidget *caja) {
            QWidget *ayuda = control(caja, "Ayuda");
            visible = ayuda->isVisible();
            tagAyuda = TagDe(ayuda);
            QTest::keyClicks(control(caja, "CampoTexto"), QStringLiteral("abc"));
            QTimer::singleShot(0, qApp, [&] {
                QWidget *m = QApplication::activeModalWidget();
                clase = m ? QString::fromLatin1(m->metaObject()->className()) : QString();
                ayudaModal = m && m != caja && m->isModal();
                if (auto *cerrar = m ? m->findChild<QPushButton *>(QStringLiteral("cmdCerrar")) : nullptr)
                    pulsar(cerrar);
            });
            pulsar(ayuda);
            foco = nombreDelFoco();
            pulsar(boton(caja, 0));
        });
        MyInputBox(QStringLiteral("x"), QString(), 1, QStringLiteral("T(m) L(9) A(I)"), {}, -1, -1, nullptr, fichero);
        QVERIFY(visible);
        QCOMPARE(tagAyuda, fichero);
        QCOMPARE(clase, QStringLiteral("kvr::MiniHelp"));
        QVERIFY(ayudaModal);
        QCOMPARE(foco, QStringLiteral("CampoTexto"));

        // In the range box the field left last is the caller's, in a window the box blocks:
        // the focus stays in the box.
        QLineEdit anfitrion;
        anfitrion.show();
        UltimoCampo = &anfitrion;
        QWidget *ventanaDelFoco = nullptr, *laCaja = nullptr;
        alAbrirse([&](QWidget *caja) {
            laCaja = caja;
            QTimer::singleShot(0, qApp, [] { QApplication::activeModalWidget()->close(); });
            pulsar(control(caja, "Ayuda"));
            ventanaDelFoco = QApplication::focusWidget() ? QApplication::focusWidget()->window() : nullptr;
            pulsar(boton(caja, 0));
        });
        MyInputBox(QStringLiteral("x"), QString(), 1, QStringLiteral("T(m) L(9) A(I) (/)"), {}, -1, -1, nullptr, fichero);
        QVERIFY(ventanaDelFoco && ventanaDelFoco == laCaja);

        alAbrirse([&](QWidget *caja) {
            visible = control(caja, "Ayuda")->isVisible();
            pulsar(boton(caja, 0));
        });
        MyInputBox(QStringLiteral("x"), QString(), 1, QStringLiteral("T(m) L(9) A(I)"), {}, -1, -1,
                   nullptr, fichero + QStringLiteral(".no"));
        QVERIFY(!visible);
    }
};

QTEST_MAIN(TstMyBox)
#include "tst_mybox.moc"
