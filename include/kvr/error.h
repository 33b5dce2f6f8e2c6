#pragma once
// Run-time errors of the runtime: an operation that the desktop runtime would stop with a
// numbered error (an invalid argument, an overflow, an unreadable date, a file error) throws
// ErrorEjecucion instead. Window handlers catch it and show it with the message box.
#include <QByteArray>
#include <QString>
#include <exception>

namespace kvr {

class ErrorEjecucion : public std::exception {
public:
    // Numbers of the errors the runtime raises, with the desktop runtime's numbering.
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

    ErrorEjecucion(int numero, const QString &descripcion = {});

    int numero() const noexcept { return m_numero; }
    QString descripcion() const { return m_descripcion; }
    const char *what() const noexcept override { return m_utf8.constData(); }

    // The standard Spanish description of an error number ("Desbordamiento", ...).
    static QString DescripcionDe(int numero);

private:
    int m_numero;
    QString m_descripcion;
    QByteArray m_utf8;
};

} // namespace kvr
