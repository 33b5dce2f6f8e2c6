#pragma once
// A recorder for the operating-system seam: remembers every message, answers with a preset
// button and gives a fixed date, so tests observe what the runtime tells the user.
#include <kvr/servicios.h>

#include <QList>

struct MensajeGrabado {
    QString texto;
    int botones;
    QString titulo;
};

struct EntradaGrabada {
    QString pregunta;
    QString titulo;
    QString porOmision;
    int xTwips;
    int yTwips;
};

class ServiciosGrabados : public kvr::Servicios {
public:
    ServiciosGrabados() { m_antes = kvr::PonerServicios(this); }
    ~ServiciosGrabados() override { kvr::PonerServicios(m_antes); }

    int Mensaje(const QString &texto, int botones, const QString &titulo) override
    {
        mensajes.append({texto, botones, titulo});
        return respuesta;
    }
    QString Entrada(const QString &pregunta, const QString &titulo, const QString &porOmision,
                    int xTwips, int yTwips, bool *aceptado) override
    {
        entradas.append({pregunta, titulo, porOmision, xTwips, yTwips});
        if (aceptado)
            *aceptado = aceptarEntrada;
        return aceptarEntrada ? respuestaEntrada : QString();
    }
    QString TituloAplicacion() override { return QStringLiteral("Aplicación de prueba"); }
    QDate Hoy() override { return hoy; }
    QDateTime Ahora() override { return QDateTime(hoy, QTime(10, 30)); }

    QList<MensajeGrabado> mensajes;
    int respuesta = kvr::RespAceptar;
    // Input boxes asked, and how they are answered.
    QList<EntradaGrabada> entradas;
    bool aceptarEntrada = false;
    QString respuestaEntrada;
    QDate hoy = QDate(2026, 11, 21);

private:
    kvr::Servicios *m_antes = nullptr;
};
