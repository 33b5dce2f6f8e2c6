// RTimeKVR: the runtime started by itself shows its notice and ends.
#include <kvr/rtimekvr.h>

#include <QApplication>

int main(int argc, char *argv[])
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("RTimeKVR"));
    return kvr::EjecutarRTimeKVR();
}
