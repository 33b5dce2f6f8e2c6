// The demo host of the runtime: opens a window with a field of every type.
#include "demo.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Demostración KVR"));
    Demo demo;
    demo.show();
    return app.exec();
}
