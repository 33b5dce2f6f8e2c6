// calculadora: the runtime's calculator on its own, to keep at hand on the desktop. The command
// line reaches the window as it is, so "calculadora +2" opens it at twice its design size.
#include <kvr/micalc.h>

#include <QApplication>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Calculadora"));
    // The window deletes itself when it closes; the program ends with it.
    auto *calc = new kvr::MiCalc;
    calc->show();
    calc->activateWindow();
    return app.exec();
}
