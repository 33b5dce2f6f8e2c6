#include <kvr/bandeja.h>

#include <kvr/utilidades.h>

#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QSystemTrayIcon>

namespace kvr {

namespace {

QPointer<QSystemTrayIcon> g_icono;

// The runtime's icon: the letters of its name on a rounded square, drawn so that no image file
// or image plug-in is needed.
QIcon iconoRuntime()
{
    QIcon icono;
    for (int lado : {16, 22, 32, 48, 64}) {
        QPixmap p(lado, lado);
        p.fill(Qt::transparent);
        QPainter pintor(&p);
        pintor.setRenderHint(QPainter::Antialiasing);
        pintor.setBrush(QColor(0x1F, 0x4E, 0x8C));
        pintor.setPen(Qt::NoPen);
        pintor.drawRoundedRect(QRectF(0, 0, lado, lado), lado / 6.0, lado / 6.0);
        QFont letra = pintor.font();
        letra.setBold(true);
        letra.setPixelSize(lado >= 32 ? lado * 3 / 8 : lado * 5 / 8);
        pintor.setFont(letra);
        pintor.setPen(Qt::white);
        pintor.drawText(QRect(0, 0, lado, lado), Qt::AlignCenter,
                        lado >= 32 ? QStringLiteral("KVR") : QStringLiteral("K"));
        pintor.end();
        icono.addPixmap(p);
    }
    return icono;
}

} // namespace

QMenu *MenuBandeja(QWidget *padre)
{
    auto *menu = new QMenu(padre);
    menu->addAction(QStringLiteral("Calculadora"), [] { MostrarVentana(QStringLiteral("MiCalc")); });
    menu->addAction(QStringLiteral("Teléfonos"), [] { MostrarVentana(QStringLiteral("Telefonos")); });
    menu->addSeparator();
    menu->addAction(QStringLiteral("Salir"), [] {
        if (g_icono)
            g_icono->deleteLater();
        QCoreApplication::quit();
    });
    return menu;
}

bool IconoBandeja(const QString &consejo)
{
    if (!QSystemTrayIcon::isSystemTrayAvailable())
        return false;
    if (!g_icono) {
        g_icono = new QSystemTrayIcon(iconoRuntime(), qApp);
        // The menu lives as long as the icon; a QMenu takes no QObject parent of another kind.
        QMenu *menu = MenuBandeja();
        QObject::connect(g_icono, &QObject::destroyed, menu, &QObject::deleteLater);
        g_icono->setContextMenu(menu);
    }
    g_icono->setToolTip(consejo);
    g_icono->show();
    return true;
}

} // namespace kvr
