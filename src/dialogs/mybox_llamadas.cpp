// The box's public calls: each builds a box over its owner, fills it, shows it modally and reads
// the answer.
#include <kvr/mybox.h>

#include <kvr/cajas.h>
#include <kvr/valores.h>

#include <QApplication>
#include <QPointer>

#include <functional>
#include <memory>

namespace kvr {

namespace {

// The box is owned by the window it is shown over, or by the active window.
QWidget *padreDe(QWidget *Formulario)
{
    if (Formulario)
        return Formulario->window();
    return QApplication::activeWindow();
}

// Shows the box modally; false when it was destroyed meanwhile (its owner went away).
bool mostrarModal(MyBox *caja)
{
    QPointer<MyBox> vigia(caja);
    caja->exec();
    return !vigia.isNull();
}

// Builds a box over its owner, lets `preparar` fill it and shows it modally; null when the box was
// destroyed meanwhile with its owner.
std::unique_ptr<MyBox> mostrarCaja(QWidget *Formulario, const std::function<void(MyBox &)> &preparar)
{
    auto caja = std::make_unique<MyBox>(padreDe(Formulario));
    preparar(*caja);
    if (!mostrarModal(caja.get())) {
        (void)caja.release(); // already destroyed with its owner
        return nullptr;
    }
    return caja;
}

} // namespace

float MyMsgBox(const QString &ElMensaje, const QString &ElTitulo, int ElIcono, int LosBotones,
               int BotonOmision, float Top, float Left, QWidget *Formulario)
{
    const auto caja = mostrarCaja(Formulario, [&](MyBox &c) {
        c.PonerMensaje(ElMensaje);
        c.PonerTitulo(ElTitulo);
        c.PonerIcono(ElIcono);
        c.DisponerBotones(LosBotones, BotonOmision, Top, Left, Formulario);
    });
    return caja ? caja->Resultado() : float(CajaSinBoton);
}

QString MyInputBox(const QString &ElMensaje, const QString &ElTitulo, int ElIcono,
                   const QString &TagDelCampo, const QString &DatoInicial, float Top, float Left,
                   QWidget *Formulario, const QString &FicheroAyuda)
{
    const auto caja = mostrarCaja(Formulario, [&](MyBox &c) {
        c.PonerMensaje(ElMensaje);
        c.PonerTitulo(ElTitulo);
        c.PonerIcono(ElIcono);
        c.PonerAyuda(FicheroAyuda);
        // "Aceptar" and "Cancelar", "Aceptar" first; the question's control comes before both.
        c.DisponerBotones(2, 1, Top, Left, Formulario);
        c.PrepararPregunta(TagDelCampo, DatoInicial);
    });
    if (!caja || caja->Resultado() != float(CajaAceptar))
        return QString();
    switch (TipoDePregunta(TagDelCampo)) {
    case TipoPregunta::Lista:
        return caja->TextoResultado();
    case TipoPregunta::Rango:
        return UnirRango(TextoEdicion(caja->TextoResultado(), TagDelCampo),
                         TextoEdicion(caja->TextoHasta(), TagDelCampo));
    case TipoPregunta::Valor:
        break;
    }
    return TextoEdicion(caja->TextoResultado(), TagDelCampo);
}

QString MyVisorBox(const QString &ElTitulo, const QString &Titulos,
                   const QVector<QStringList> &Matriz, int ElIcono,
                   const QString &ColumnaDevolver, float Top, float Left, QWidget *Formulario)
{
    const auto caja = mostrarCaja(Formulario, [&](MyBox &c) {
        c.PonerTitulo(ElTitulo);
        c.PonerIcono(ElIcono);
        c.PrepararVisor(Titulos, Matriz);
        // Picking a row: "Aceptar" and "Cancelar", the focus on "Cancelar". Only looking: "Aceptar".
        if (ColumnaDevolver.isEmpty())
            c.DisponerBotones(1, 1, Top, Left, Formulario);
        else
            c.DisponerBotones(2, 2, Top, Left, Formulario);
        c.PonerColumnaDevolver(ColumnaDevolver);
    });
    if (!caja || caja->Resultado() != float(CajaAceptar))
        return QString();
    return caja->TextoResultado();
}

} // namespace kvr
