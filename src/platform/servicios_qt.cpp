// The Qt implementation of the operating-system seam, made the default as soon as the widget
// library is loaded.
#include "kvr/servicios.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

namespace kvr {

namespace {

class ServiciosQt final : public Servicios {
public:
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
        struct Boton { QString texto; int respuesta; QMessageBox::ButtonRole rol; };
        QList<Boton> juego;
        switch (botones & 7) {
        case AceptarCancelar:
            juego = {{QStringLiteral("Aceptar"), RespAceptar, QMessageBox::AcceptRole},
                     {QStringLiteral("Cancelar"), RespCancelar, QMessageBox::RejectRole}};
            break;
        case AbortarReintentarIgnorar:
            juego = {{QStringLiteral("Abortar"), RespAbortar, QMessageBox::RejectRole},
                     {QStringLiteral("Reintentar"), RespReintentar, QMessageBox::AcceptRole},
                     {QStringLiteral("Ignorar"), RespIgnorar, QMessageBox::ActionRole}};
            break;
        case SiNoCancelar:
            juego = {{QStringLiteral("Sí"), RespSi, QMessageBox::YesRole},
                     {QStringLiteral("No"), RespNo, QMessageBox::NoRole},
                     {QStringLiteral("Cancelar"), RespCancelar, QMessageBox::RejectRole}};
            break;
        case SiNo:
            juego = {{QStringLiteral("Sí"), RespSi, QMessageBox::YesRole},
                     {QStringLiteral("No"), RespNo, QMessageBox::NoRole}};
            break;
        case ReintentarCancelar:
            juego = {{QStringLiteral("Reintentar"), RespReintentar, QMessageBox::AcceptRole},
                     {QStringLiteral("Cancelar"), RespCancelar, QMessageBox::RejectRole}};
            break;
        default:
            juego = {{QStringLiteral("Aceptar"), RespAceptar, QMessageBox::AcceptRole}};
            break;
        }
        QList<QPair<QAbstractButton *, int>> respuestas;
        for (const Boton &b : juego)
            respuestas.append({caja.addButton(b.texto, b.rol), b.respuesta});
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
};

ServiciosQt g_serviciosQt;
[[maybe_unused]] const bool g_registrados = (PonerServiciosPorOmision(&g_serviciosQt), true);

} // namespace
} // namespace kvr
