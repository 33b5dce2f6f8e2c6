#pragma once
/// @file
/// Run-time errors of the runtime: an operation that the desktop runtime would stop with a
/// numbered error (an invalid argument, an overflow, an unreadable date, a file error) throws
/// ErrorEjecucion instead. Window handlers catch it and show it with the message box.
#include <kvr/kvr_core_export.h>

#include <QByteArray>
#include <QString>
#include <exception>
#include <functional>

namespace kvr {

/// A numbered run-time error: what() is "Error n: description".
class KVR_CORE_EXPORT ErrorEjecucion : public std::exception {
public:
    /// Numbers of the errors the runtime raises, with the desktop runtime's numbering.
    enum Numero : int {
        ArgumentoNoValido = 5,
        Desbordamiento = 6,
        SubindiceFueraDeIntervalo = 9,
        DivisionPorCero = 11,
        TiposNoCoinciden = 13,
        ArchivoNoEncontrado = 53,
        ErrorEntradaSalida = 57,
        AccesoDenegado = 75,
    };

    /// Error `numero`; without `descripcion`, the runtime's own Spanish text for that number.
    ErrorEjecucion(int numero, const QString &descripcion = {});

    /// The error's number and its Spanish description.
    ///@{
    int numero() const noexcept { return m_numero; }
    QString descripcion() const { return m_descripcion; }
    ///@}
    /// "Error n: description", in UTF-8.
    const char *what() const noexcept override { return m_utf8.constData(); }

    /// The standard Spanish description of an error number ("Desbordamiento", ...).
    static QString DescripcionDe(int numero);

private:
    int m_numero;
    QString m_descripcion;
    QByteArray m_utf8;
};

/// Runs a window's event handler. An ErrorEjecucion it throws stops the handler where it was and
/// is shown through the seam's message box ("Error <n>: <text>", critical icon, the application's
/// title); the window goes on as the handler left it. `alFallar`, when given, runs before the
/// message (a window puts its display in order behind the box). False when an error was shown.
KVR_CORE_EXPORT bool EjecutarManejador(const std::function<void()> &manejador,
                                       const std::function<void()> &alFallar = {});

/// The one way a window wires a signal to its event handler:
///     connect(ui->cmdAceptar, &QPushButton::clicked, this, Manejador(this, &Ventana::cmdAceptar_Click));
/// The handler runs through EjecutarManejador. Without `fijos` it gets the signal's arguments it
/// takes (those it does not take are left, as a connection to a slot leaves them); with them, it
/// gets those instead (the index of a control array: Manejador(this, &Ventana::tecla_Click, i)).
template <class Ventana, class... Parametros, class... Fijos>
auto Manejador(Ventana *ventana, void (Ventana::*metodo)(Parametros...), Fijos... fijos)
{
    if constexpr (sizeof...(Fijos) == 0)
        return [ventana, metodo](Parametros... argumentos) {
            EjecutarManejador([&] { (ventana->*metodo)(argumentos...); });
        };
    else
        return [ventana, metodo, fijos...] { EjecutarManejador([&] { (ventana->*metodo)(fijos...); }); };
}

} // namespace kvr
