// Facturas: the example host of the Runtime KVR. The invoices go to "facturas.txt" in the user's
// data folder, or to the file named on the command line.
#include "factura.h"

#include <kvr/layout.h>

#include <QApplication>
#include <QDir>
#include <QStandardPaths>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Facturas"));
    QString fichero = QApplication::arguments().value(1);
    if (fichero.isEmpty()) {
        const QString carpeta = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        QDir().mkpath(carpeta);
        fichero = carpeta + QStringLiteral("/facturas.txt");
    }
    Factura factura(fichero);
    // The layout factor, once, from the first window and the screen: this window takes it now,
    // and every later one in its Form_Load.
    float ancho = 0, alto = 0;
    kvr::Redimensionar(&factura, ancho, alto, false);
    factura.show();
    factura.activateWindow();
    return app.exec();
}
