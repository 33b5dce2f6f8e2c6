// The viewer box on screen: real clicks, double clicks and keys on its grid and buttons, sent
// from a queued callback once the box is up; what the callback sees is checked after the call
// has returned.
#include <kvr/error.h>
#include <kvr/mybox.h>
#include <kvr/visorrejilla.h>

#include "comun/pruebas.h"
#include "registro.h"

#include <QColorDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>


using namespace kvr;

using namespace prueba;

namespace {

QPushButton *botonTitulado(QWidget *caja, const QString &titulo)
{
    for (int i = 0; i < 3; ++i) {
        if (boton(caja, i)->isVisible() && boton(caja, i)->text() == titulo)
            return boton(caja, i);
    }
    return nullptr;
}
// The middle of a data row's cell in the first visible column, in viewport coordinates.
QPoint centroDeFila(VisorRejilla *visor, int fila)
{
    int col = 0;
    while (visor->isColumnHidden(col))
        ++col;
    const QModelIndex i = visor->model()->index(visor->modeloRejilla()->filaVista(fila), col);
    visor->scrollTo(i);
    return visor->visualRect(i).center();
}
QPoint centroDeTitulo(VisorRejilla *visor, int col)
{
    QHeaderView *h = visor->horizontalHeader();
    return QPoint(h->sectionViewportPosition(col) + h->sectionSize(col) / 2, h->height() / 2);
}

// Plays a script of user actions on the box, separated by blanks: "fila:N" clicks grid row N,
// "doble:N" double-clicks it, "titulo:C" clicks the title of column C, "dobletitulo:C"
// double-clicks it, "tab", "abajo", "enter" and "escape" are keys for the focused control, any
// other word clicks the visible button of that caption. Stops when the box has gone.
void representar(QWidget *caja, const QString &guion)
{
    QPointer<QWidget> vigia(caja);
    auto *visor = control<VisorRejilla>(caja, "VisorMini");
    for (const QString &paso : guion.split(u' ', Qt::SkipEmptyParts)) {
        if (!vigia || !vigia->isVisible())
            return;
        const QString orden = paso.section(u':', 0, 0);
        const int n = paso.section(u':', 1, 1).toInt();
        if (orden == u"fila")
            QTest::mouseClick(visor->viewport(), Qt::LeftButton, {}, centroDeFila(visor, n));
        else if (orden == u"doble")
            QTest::mouseDClick(visor->viewport(), Qt::LeftButton, {}, centroDeFila(visor, n));
        else if (orden == u"titulo")
            QTest::mouseClick(visor->horizontalHeader()->viewport(), Qt::LeftButton, {},
                              centroDeTitulo(visor, n));
        else if (orden == u"dobletitulo")
            QTest::mouseDClick(visor->horizontalHeader()->viewport(), Qt::LeftButton, {},
                               centroDeTitulo(visor, n));
        else if (orden == u"tab")
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        else if (orden == u"abajo")
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
        else if (orden == u"enter")
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        else if (orden == u"escape")
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        else if (QPushButton *b = botonTitulado(caja, paso))
            QTest::mouseClick(b, Qt::LeftButton);
        else
            QFAIL(qPrintable(QStringLiteral("paso desconocido: ") + paso));
        QCoreApplication::processEvents();
    }
}

const QString kTitulos = QStringLiteral(";Nombre#12;Teléfono#10;Ciudad#8");

// Three contacts; element 0 of every row and row 0 are not shown.
QVector<QStringList> contactos()
{
    return {
        {},
        {QString(), QStringLiteral("A1"), QStringLiteral("Ana"), QStringLiteral("911 000 001"),
         QStringLiteral("Madrid")},
        {QString(), QStringLiteral("A2"), QStringLiteral("Berta"), QStringLiteral("933 000 002"),
         QStringLiteral("Barcelona")},
        {QString(), QStringLiteral("A3"), QStringLiteral("Carmen"), QStringLiteral("954 000 003"),
         QStringLiteral("Sevilla")},
    };
}

} // namespace

class TstMyVisorBox : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain)); }

    void elegir_data()
    {
        QTest::addColumn<QString>("columna");
        QTest::addColumn<QString>("guion");
        QTest::addColumn<QString>("esperado");
        QTest::newRow("columna por número") << "#3" << "fila:3 Aceptar" << "Sevilla";
        QTest::newRow("sin columna: la columna 0") << "" << "fila:2 Aceptar" << "A2";
        QTest::newRow("Aceptar sin fila") << "Ciudad" << "Aceptar" << "";
        QTest::newRow("el título no cambia la fila") << "Ciudad" << "fila:1 titulo:2 Aceptar" << "Madrid";
        QTest::newRow("doble clic confirma") << "Nombre" << "doble:2" << "Berta";
        QTest::newRow("doble clic en el título acepta lo elegido")
            << "Nombre" << "fila:3 dobletitulo:1" << "Carmen";
        QTest::newRow("Escape tras elegir") << "Nombre" << "fila:2 escape" << "";
        QTest::newRow("flecha en la rejilla y Aceptar") << "Nombre" << "tab abajo Aceptar" << "Berta";
        QTest::newRow("Enter en la rejilla confirma") << "Ciudad" << "tab abajo abajo enter" << "Sevilla";
        QTest::newRow("Tab sale de la rejilla") << "Nombre" << "fila:1 tab enter" << "Ana";
    }
    // A row is chosen by a click or a key and confirmed by "Aceptar", a double click or Enter;
    // the result is its text in the column asked for.
    void elegir()
    {
        QFETCH(QString, columna); QFETCH(QString, guion); QFETCH(QString, esperado);
        QString botones, foco;
        bool abierta = true;
        alAbrirse([&](QWidget *caja) {
            botones = titulosVisibles(caja);
            foco = nombreDelFoco();
            QPointer<QWidget> vigia(caja);
            representar(caja, guion);
            abierta = vigia && vigia->isVisible();
        });
        const QString r = MyVisorBox(QStringLiteral("Contactos"), kTitulos, contactos(),
                                     IconoBuscar, columna);
        QVERIFY2(!abierta, "el guion no cerró la caja");
        QCOMPARE(r, esperado);
        // Picking offers "Aceptar" and "Cancelar" with the focus on "Cancelar"; looking only
        // offers "Aceptar".
        QCOMPARE(botones, columna.isEmpty() ? QStringLiteral("Aceptar")
                                            : QStringLiteral("Aceptar|Cancelar"));
        QCOMPARE(foco, QStringLiteral("Boton(0)"));
    }

    // A row shorter than the grid is the caller's error: it is raised and no box is shown.
    void matrizCorta()
    {
        QWidget *vista = nullptr;
        QTimer guardia;
        guardia.setSingleShot(true);
        connect(&guardia, &QTimer::timeout, this, [&] {
            if ((vista = QApplication::activeModalWidget()))
                vista->close();
        });
        guardia.start(0);
        QVector<QStringList> m = contactos();
        m[2].removeLast();
        int numero = 0;
        try {
            MyVisorBox(QStringLiteral("x"), kTitulos, m, 1, QStringLiteral("Nombre"));
        } catch (const ErrorEjecucion &e) {
            numero = e.numero();
        }
        QCOMPARE(numero, int(ErrorEjecucion::SubindiceFueraDeIntervalo));
        QCoreApplication::processEvents();
        QVERIFY(!vista);
    }

    void colores_data()
    {
        QTest::addColumn<bool>("aceptar");
        QTest::addColumn<QColor>("elegido");
        QTest::addColumn<QString>("campo");
        QTest::addColumn<QColor>("muestra");
        // The number is red + 256 green + 65536 blue.
        QTest::newRow("aceptado") << true << QColor(10, 20, 30) << "1971210" << QColor(10, 20, 30);
        QTest::newRow("cancelado") << false << QColor(10, 20, 30) << "previo" << QColor(200, 100, 50);
    }
    // A click on the colour swatch opens the colour dialog at the swatch's colour.
    void colores()
    {
        QFETCH(bool, aceptar); QFETCH(QColor, elegido); QFETCH(QString, campo);
        QFETCH(QColor, muestra);
        QString nombreDialogo, textoCampo;
        QColor inicial, final;
        QPoint antes, despues;
        bool cajaAbierta = false;
        alAbrirse([&](QWidget *caja) {
            auto *rgb = control<QLabel>(caja, "RGBText");
            rgb->show();
            QPalette p = rgb->palette();
            p.setColor(QPalette::Window, QColor(200, 100, 50));
            rgb->setPalette(p);
            control<QLineEdit>(caja, "CampoTexto")->setText(QStringLiteral("previo"));
            antes = caja->pos();
            QTimer::singleShot(0, qApp, [&] {
                auto *dlg = qobject_cast<QColorDialog *>(QApplication::activeModalWidget());
                if (!dlg)
                    return;
                nombreDialogo = dlg->objectName();
                inicial = dlg->currentColor();
                dlg->setCurrentColor(elegido);
                if (aceptar)
                    dlg->accept();
                else
                    dlg->reject();
            });
            QTest::mouseClick(rgb, Qt::LeftButton);
            QCoreApplication::processEvents();
            despues = caja->pos();
            textoCampo = control<QLineEdit>(caja, "CampoTexto")->text();
            final = rgb->palette().color(QPalette::Window);
            cajaAbierta = caja->isVisible();
            QTest::mouseClick(boton(caja, 0), Qt::LeftButton);
        });
        MyVisorBox(QStringLiteral("Colores"), kTitulos, contactos(), 1, QString());
        QCOMPARE(nombreDialogo, QStringLiteral("dlgColores"));
        QCOMPARE(inicial, QColor(200, 100, 50));
        QCOMPARE(textoCampo, campo);
        QCOMPARE(final, muestra);
        QVERIFY(cajaAbierta);
        QCOMPARE(despues, antes); // the swatch's press does not drag the box
    }
};

QTEST_MAIN(TstMyVisorBox)
#include "tst_myvisorbox.moc"
