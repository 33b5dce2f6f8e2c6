// A host that links the installed runtime: gives a field its behaviour, types into it and leaves
// it, and checks the display form.
#include <kvr/kvr.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QVBoxLayout>
#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QLocale::setDefault(QLocale::c());
    QWidget ventana;
    auto *l = new QVBoxLayout(&ventana);
    auto *importe = new QLineEdit(&ventana);
    auto *otro = new QLineEdit(&ventana);
    l->addWidget(importe);
    l->addWidget(otro);
    kvr::PrepararCampo(importe, QStringLiteral("T(N) L(12) A(D)"));
    importe->setText(QStringLiteral("1234.5"));
    otro->setFocus();
    ventana.show();
    ventana.activateWindow();
    QElapsedTimer reloj;
    reloj.start();
    while (!ventana.isActiveWindow() && reloj.elapsed() < 5000)
        QCoreApplication::processEvents();
    importe->setFocus(Qt::TabFocusReason); // entered: editing form
    QCoreApplication::processEvents();
    const bool edicion = importe->text() == QStringLiteral("1234.50");
    otro->setFocus(Qt::TabFocusReason);    // left: display form
    QCoreApplication::processEvents();
    const QString visto = importe->text();
    std::printf("%s\n", qPrintable(visto));
    return edicion && visto == QStringLiteral("1,234.50") ? 0 : 1;
}
