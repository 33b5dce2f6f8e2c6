// The demo host of the runtime: opens a window with a field of every type.
#include "demo.h"

#include <kvr/contactos.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

int main(int argc, char *argv[])
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Demostración KVR"));
    // The demo's phone book is a copy of its sample file in a folder of its own, so that trying
    // it out never touches the user's real contacts; a TLF given from outside is respected.
    if (qEnvironmentVariableIsEmpty("TLF")) {
        const QString carpeta = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
                                + QStringLiteral("/kvr/demo/");
        QDir().mkpath(carpeta);
        if (!QFile::exists(carpeta + QStringLiteral("TELEFONO.DAT"))) {
            QFile::copy(Demo::datos(QStringLiteral("TELEFONO.DAT")), carpeta + QStringLiteral("TELEFONO.DAT"));
            QFile::setPermissions(carpeta + QStringLiteral("TELEFONO.DAT"),
                                  QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup);
        }
        qputenv("TLF", QFile::encodeName(carpeta));
    }
    Demo demo;
    demo.show();
    // With no window manager (a bare X server) nothing gives the window the focus.
    demo.activateWindow();
    return app.exec();
}
