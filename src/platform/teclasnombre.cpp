#include <kvr/teclasnombre.h>

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QWidget>

namespace kvr {

void EnviarTeclas(const QString &teclas, QWidget *destino)
{
    const QList<PulsacionTecla> pulsaciones = AnalizarTeclas(teclas);
    const bool conDestino = destino != nullptr;
    const QPointer<QWidget> vigia(destino);
    // One queued delivery a key, as a keyboard's buffer would give them: a key that moves the
    // focus sends the next one to the new focus, and a window opened by one gets the rest.
    for (const PulsacionTecla &p : pulsaciones) {
        QMetaObject::invokeMethod(qApp, [p, conDestino, vigia] {
            // A window with no focusable control takes the keys itself, as the active window.
            QWidget *w = conDestino ? vigia.data() : QApplication::focusWidget();
            if (!w && !conDestino)
                w = QApplication::activeWindow();
            if (!w)
                return;
            QKeyEvent abajo(QEvent::KeyPress, p.tecla, p.modificadores, p.texto);
            QCoreApplication::sendEvent(w, &abajo);
            QWidget *ahora = conDestino ? vigia.data() : QApplication::focusWidget();
            if (ahora) {
                QKeyEvent arriba(QEvent::KeyRelease, p.tecla, p.modificadores, p.texto);
                QCoreApplication::sendEvent(ahora, &arriba);
            }
        }, Qt::QueuedConnection);
    }
}

} // namespace kvr
