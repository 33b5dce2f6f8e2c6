// telefonos: the family's phone book on its own. When the window closes, the e-mail address the
// user picked (a click or right click on a contact's e-mail) is printed on standard output, so a
// script can ask for an address:  destino=$(telefonos) && enviar "$destino"
// Exit status 0 when an address was picked, 1 when none was.
#include <kvr/telefonos.h>

#include <QApplication>
#include <QTextStream>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Telefonos"));
    // The window deletes itself when it closes; the program ends with it.
    auto *agenda = new kvr::Telefonos;
    if (!agenda->Cargada()) {
        // The contacts file could not be read; the error was shown.
        delete agenda;
        return 2;
    }
    agenda->show();
    agenda->activateWindow();
    const int r = app.exec();
    if (r != 0)
        return r;
    if (kvr::ContactoElegido.isEmpty())
        return 1;
    QTextStream(stdout) << kvr::ContactoElegido << Qt::endl;
    return 0;
}
