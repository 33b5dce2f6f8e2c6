#pragma once
/// @file
/// The desk calculator's engine: what each key does to the state, what the display shows, what
/// goes onto the paper tape and what is meant for the clipboard. No widgets: the window MiCalc
/// mirrors the display and the tape in its controls and puts the copied text on the clipboard.
///
/// All state is text, as the calculator keeps it: numbers as their text with "." as decimal
/// point, lines as a number, one blank and the key that closed it ("5 +", "10 =").
#include <kvr/kvr_core_export.h>

#include <QString>
#include <QStringList>

#include <functional>

namespace kvr {

/// The line without its operator: when the second-last character is a blank, the line less its
/// last two characters; otherwise the line unchanged.
KVR_CORE_EXPORT QString SinOperador(const QString &linea);

/// Lenient reading: blanks anywhere are ignored, then a sign, digits and one "." are read up to
/// the first character that cannot continue the number. Never fails on text ("5 +" reads 5,
/// " =" reads 0); a number too large for a double raises ErrorEjecucion (overflow).
KVR_CORE_EXPORT double LeerNumero(const QString &texto);

/// The text of a typed key after the keyboard mapping: Enter (13) is "=", Backspace (8) is "<",
/// the letters n i c s e p are their capitals. Returns the index 0..23 of the key whose caption
/// equals it, or -1 when no key matches.
KVR_CORE_EXPORT int IndiceDeTecla(int keyAscii);

/// The clipboard text as it is typed into the calculator: when it holds a ",", every "." is
/// dropped (thousands marks) and every "," becomes "." (decimal comma); otherwise unchanged.
KVR_CORE_EXPORT QString TextoParaPegar(const QString &portapapeles);

/// The size factor of a calculator command line: true when the line, with a blank appended,
/// begins with "+"; the factor is the number after the "+", and 0 (or none) counts as 1.
KVR_CORE_EXPORT bool FactorDeLineaComandos(const QString &linea, double &factor);

/// The calculator's state and the keys that change it (see the file's description).
class KVR_CORE_EXPORT MotorCalculadora {
public:
    /// The captions of the 24 keys, by index: digits and point, "*" "<" "/" "%" "-" "S" "+" "="
    /// "N" "I" "C" "E" "P".
    ///@{
    static const QString &Teclas();
    static QString TeclaDe(int indice);
    static QString AyudaDe(int indice); ///< the key's tool tip, empty for most keys
    ///@}

    /// Pesetas per euro, and the divisor of percentages and tax rates.
    ///@{
    static constexpr double CambioPeseta = 166.386;
    static constexpr double Base = 100.0;
    ///@}

    MotorCalculadora();

    /// Performs one key. An arithmetic overflow, or a tax key at rate -100, raises ErrorEjecucion;
    /// the state then keeps whatever the key had already changed.
    void Tecla(int indice);
    /// Performs the key with this caption; false when no key has it.
    bool TeclaTexto(QChar caption);

    /// Advances the decimals 2, 3, 4, 5, 2 and reformats the display from its raw line. Tape
    /// lines already written keep their format.
    void CambiarDecimales();
    /// The decimals shown, 2 to 5.
    int Decimales() const { return m_decimales; }
    QString TextoDecimales() const; ///< "2d" ... "5d": the caption of the decimals button

    /// Shows a line: a non-empty line becomes the raw line; the caption is then rebuilt from it.
    void Visualizar(const QString &linea);
    /// Appends a line to the tape: the line formatted, or the display's caption when empty.
    void AnotarPapel(const QString &linea);

    /// The display: its caption (formatted with the locale's separators) and its raw line.
    ///@{
    QString Pantalla() const { return m_pantalla; }
    QString LineaPantalla() const { return m_lineaPantalla; }
    ///@}
    /// The whole tape, each line ended by "\r\n", and its lines.
    ///@{
    QString Papel() const { return m_papel; }
    QStringList LineasPapel() const;
    ///@}

    /// Observers, for the window: a tape line appended, the tape emptied, a text to copy.
    ///@{
    std::function<void(const QString &)> AlAnotar;
    std::function<void()> AlBorrarPapel;
    std::function<void(const QString &)> AlCopiar;
    ///@}

    /// The state, as the calculator keeps it.
    QString Entrada;     ///< the number being typed, as typed
    QString Pendiente;   ///< the pending first operand line, or empty
    QString Operando;    ///< the second operand line of the operation last closed
    QString Resultado;   ///< the last result line
    QString UltimoValor; ///< the last value, reused by an operator pressed with nothing typed

private:
    void operador(QChar k);
    void mostrarResultado();
    QString formatear(double valor) const;

    int m_decimales = 2;
    QString m_pantalla;
    QString m_lineaPantalla;
    QString m_papel;
};

} // namespace kvr
