// The Qt implementation of the operating-system seam. It becomes the default when the host's
// application object is built (Qt runs the widget library's start-up function then, or at once
// when the library is loaded into a running application): every box it shows needs that object,
// and a host's own services put in with PonerServicios stay in front of it.
#include <kvr/servicios.h>

#include <QApplication>
#include <QDesktopServices>
#include <QUrl>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>

namespace kvr {

namespace {

class ServiciosQt final : public Servicios {
public:
    bool AbrirDocumento(const QString &destino) override
    {
        // The platform's URL service (under X11 and Wayland the desktop's own opener, which
        // receives the address percent-encoded); a platform without one, such as offscreen,
        // answers false and the freedesktop opener is started directly with the target as built.
        if (QDesktopServices::openUrl(QUrl(destino, QUrl::TolerantMode)))
            return true;
        return Servicios::AbrirDocumento(destino);
    }

    int Mensaje(const QString &texto, int botones, const QString &titulo) override
    {
        if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
            return Servicios::Mensaje(texto, botones, titulo);
        QMessageBox caja;
        caja.setWindowTitle(titulo.isEmpty() ? TituloAplicacion() : titulo);
        caja.setText(texto);
        switch (botones & 0x70) {
        case Critico: caja.setIcon(QMessageBox::Critical); break;
        case Pregunta: caja.setIcon(QMessageBox::Question); break;
        case Exclamacion: caja.setIcon(QMessageBox::Warning); break;
        case Informacion: caja.setIcon(QMessageBox::Information); break;
        default: break;
        }
        struct Boton { int respuesta; QMessageBox::ButtonRole rol; };
        QList<Boton> juego;
        switch (botones & 7) {
        case AceptarCancelar:
            juego = {{RespAceptar, QMessageBox::AcceptRole}, {RespCancelar, QMessageBox::RejectRole}};
            break;
        case AbortarReintentarIgnorar:
            juego = {{RespAbortar, QMessageBox::RejectRole}, {RespReintentar, QMessageBox::AcceptRole},
                     {RespIgnorar, QMessageBox::ActionRole}};
            break;
        case SiNoCancelar:
            juego = {{RespSi, QMessageBox::YesRole}, {RespNo, QMessageBox::NoRole},
                     {RespCancelar, QMessageBox::RejectRole}};
            break;
        case SiNo:
            juego = {{RespSi, QMessageBox::YesRole}, {RespNo, QMessageBox::NoRole}};
            break;
        case ReintentarCancelar:
            juego = {{RespReintentar, QMessageBox::AcceptRole}, {RespCancelar, QMessageBox::RejectRole}};
            break;
        default:
            juego = {{RespAceptar, QMessageBox::AcceptRole}};
            break;
        }
        QList<QPair<QAbstractButton *, int>> respuestas;
        for (const Boton &b : juego)
            respuestas.append({caja.addButton(TituloRespuesta(b.respuesta), b.rol), b.respuesta});
        caja.setDefaultButton(qobject_cast<QPushButton *>(respuestas.first().first));
        if (respuestas.size() == 1)
            caja.setEscapeButton(respuestas.first().first);
        caja.exec();
        for (const auto &r : respuestas)
            if (caja.clickedButton() == r.first)
                return r.second;
        // Closed without a button: the cancel-like answer of the set.
        return (botones & 7) == SiNo ? RespNo : (botones & 7) == 0 ? RespAceptar : RespCancelar;
    }

    QString Entrada(const QString &pregunta, const QString &titulo, const QString &porOmision,
                    int xTwips, int yTwips, bool *aceptado) override
    {
        if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
            return Servicios::Entrada(pregunta, titulo, porOmision, xTwips, yTwips, aceptado);
        QInputDialog caja(QApplication::activeWindow());
        caja.setWindowTitle(titulo.isEmpty() ? TituloAplicacion() : titulo);
        caja.setLabelText(pregunta);
        caja.setTextValue(porOmision);
        caja.setOkButtonText(TituloRespuesta(RespAceptar));
        caja.setCancelButtonText(TituloRespuesta(RespCancelar));
        if (xTwips >= 0 || yTwips >= 0) {
            // Twips to pixels at the screen's logical dpi; a direction left at -1 stays centred.
            caja.adjustSize();
            const QScreen *pantalla = QGuiApplication::primaryScreen();
            const QRect area = pantalla ? pantalla->availableGeometry() : QRect();
            const double dpiX = pantalla ? pantalla->logicalDotsPerInchX() : 96.0;
            const double dpiY = pantalla ? pantalla->logicalDotsPerInchY() : 96.0;
            const int x = xTwips >= 0 ? int(xTwips * dpiX / TwipsPorPulgada)
                                      : area.x() + (area.width() - caja.width()) / 2;
            const int y = yTwips >= 0 ? int(yTwips * dpiY / TwipsPorPulgada)
                                      : area.y() + (area.height() - caja.height()) / 2;
            caja.move(x, y);
        }
        const bool si = caja.exec() == QDialog::Accepted;
        if (aceptado)
            *aceptado = si;
        return si ? caja.textValue() : QString();
    }
};

void usarServiciosQt()
{
    static ServiciosQt qt;
    PonerServiciosPorOmision(&qt);
}

} // namespace
} // namespace kvr

using kvr::usarServiciosQt;
Q_COREAPP_STARTUP_FUNCTION(usarServiciosQt)
