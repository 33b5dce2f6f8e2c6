// A host that uses nothing of the runtime but a message box, linked with --as-needed: the linker
// then records libkvr only, and libkvr must find libkvr_core by itself. The box is answered with
// Escape as soon as it is up, so the host prints 0.
#include <kvr/mybox.h>

#include <QApplication>
#include <QKeyEvent>
#include <QTimer>
#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QTimer respuesta;
    QObject::connect(&respuesta, &QTimer::timeout, [] {
        if (QWidget *caja = QApplication::activeModalWidget()) {
            QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
            QApplication::sendEvent(caja, &escape);
        }
    });
    respuesta.start(50);
    const int r = kvr::MyMsgBox(QStringLiteral("Anfitrión;en marcha"), QStringLiteral("Prueba"), 1, 1, 1);
    std::printf("%d\n", r);
    return r == 0 ? 0 : 1;
}
