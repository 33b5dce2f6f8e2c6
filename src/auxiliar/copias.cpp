#include <kvr/copias.h>

#include <kvr/progreso.h>

#include <cmath>

namespace kvr {

namespace {

// The progress window over a task counted in per thousand, redrawn when the figure moves.
class Barra {
public:
    Barra(bool activa, const QString &titulo) : m_activa(activa)
    {
        if (m_activa)
            BarraProgreso(ProgresoIniciar, 0, false, 0, 1000, titulo);
    }
    ~Barra()
    {
        if (m_activa)
            BarraProgreso(ProgresoCerrar);
    }
    AvisoProgreso aviso()
    {
        if (!m_activa)
            return {};
        return [this](double f) {
            const int v = int(std::lround(f * 1000));
            if (v != m_ultimo) {
                m_ultimo = v;
                BarraProgreso(ProgresoAvanzar, float(v), v == 1000);
            }
        };
    }

private:
    bool m_activa;
    int m_ultimo = -1;
};

} // namespace

bool CopiaSeguridad(const QStringList &rutas, const QString &zip, bool conProgreso)
{
    Barra barra(conProgreso, QStringLiteral("Copia de seguridad"));
    return CrearZip(rutas, zip, barra.aviso());
}

bool RestaurarCopia(const QString &zip, const QString &carpeta, bool conProgreso)
{
    Barra barra(conProgreso, QStringLiteral("Restaurar copia"));
    return ExtraerZip(zip, carpeta, barra.aviso());
}

} // namespace kvr
