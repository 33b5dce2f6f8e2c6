#pragma once
// Helpers shared by the window suites: controls by name, the focused control, clicks, a modal
// box answered from a queued callback.
#include "comun/ficheros.h"

#include <kvr/visorrejilla.h>

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include <functional>

namespace prueba {

template <typename T = QWidget> T *control(const QWidget *w, QAnyStringView nombre)
{
    return w->findChild<T *>(nombre.toString());
}

// A box's button "Boton(i)"; the captions of the visible ones from left to right, "|" between.
inline QPushButton *boton(const QWidget *caja, int i)
{
    return caja->findChild<QPushButton *>(QStringLiteral("Boton(%1)").arg(i));
}
inline QString titulosVisibles(const QWidget *caja)
{
    QStringList t;
    for (int i = 2; i >= 0; --i)
        if (boton(caja, i)->isVisible())
            t << boton(caja, i)->text();
    return t.join(u'|');
}

inline QString nombreDelFoco()
{
    QWidget *f = QApplication::focusWidget();
    return f ? f->objectName() : QString();
}

// Types a text key by key; characters beyond ASCII (ñ, €) go as key events with their text, since
// QTest::keyClicks cannot send them.
inline void teclear(QWidget *w, const QString &texto)
{
    for (QChar c : texto) {
        if (c.unicode() < 128)
            QTest::keyClick(w, c.toLatin1());
        else
            QTest::sendKeyEvent(QTest::Click, w, Qt::Key_unknown, QString(c), Qt::NoModifier);
    }
}

inline void pulsar(QWidget *w)
{
    QTest::mouseClick(w, Qt::LeftButton);
    QCoreApplication::processEvents();
}

// Runs `accion` on the next modal window once it is shown and active, the application's focus
// in it. What the action sees is to be recorded and checked after the modal call returns. A
// window the action leaves open is closed after five seconds, so that a failing test fails
// instead of hanging.
inline void alAbrirse(std::function<void(QWidget *)> accion)
{
    QTimer::singleShot(0, qApp, [accion] {
        QWidget *caja = QApplication::activeModalWidget();
        if (!caja || !QTest::qWaitForWindowActive(caja))
            return;
        // The window system reports the box active a little before the application does.
        (void)QTest::qWaitFor([caja] { return QApplication::activeWindow() == caja; }, 1000);
        QPointer<QWidget> vigia(caja);
        QTimer::singleShot(5000, qApp, [vigia] {
            if (vigia && vigia->isVisible())
                vigia->close();
        });
        accion(caja);
    });
}

// Shows a window and waits until it is the active one (offscreen and under Xvfb alike).
inline bool mostrarActiva(QWidget *w)
{
    w->show();
    w->activateWindow();
    return QTest::qWaitForWindowActive(w);
}

// Answers the next message box by clicking its visible button of that caption (empty: Escape),
// leaving the box's text in `*mensaje` when given.
inline void responder(const QString &boton, QString *mensaje = nullptr)
{
    alAbrirse([boton, mensaje](QWidget *caja) {
        // The runtime's box names its text "Mensaje"; the desktop's box (a run-time error) is a QMessageBox.
        if (auto *m = caja->findChild<QLabel *>(QStringLiteral("Mensaje")); m && mensaje)
            *mensaje = m->text();
        else if (auto *q = qobject_cast<QMessageBox *>(caja); q && mensaje)
            *mensaje = q->text();
        if (boton.isEmpty()) {
            QTest::keyClick(caja, Qt::Key_Escape);
            return;
        }
        for (QPushButton *b : caja->findChildren<QPushButton *>())
            if (b->isVisible() && b->text() == boton) {
                QTest::mouseClick(b, Qt::LeftButton);
                return;
            }
    });
}

// Clicks the cell of a grid at a row of its model as shown (after sorting and hidden rows) and
// column, scrolling it into view first.
inline void clicCelda(kvr::VisorRejilla *v, int filaVista, int col, Qt::MouseButton boton = Qt::LeftButton)
{
    const QModelIndex i = v->model()->index(filaVista, v->modeloRejilla()->colVista(col));
    v->scrollTo(i);
    QTest::mouseClick(v->viewport(), boton, {}, v->visualRect(i).center());
    QCoreApplication::processEvents();
}

// Runs every test of a suite once under a comma-decimal locale and once under a point-decimal
// one: call from initTestCase_data(), and ponerLocaleGlobal() from init().
inline void localesData()
{
    QTest::addColumn<QString>("locale");
    QTest::newRow("es_ES") << QStringLiteral("es_ES");
    QTest::newRow("C") << QStringLiteral("C");
}
inline void ponerLocaleGlobal()
{
    QFETCH_GLOBAL(QString, locale);
    QLocale::setDefault(QLocale(locale));
}

} // namespace prueba
