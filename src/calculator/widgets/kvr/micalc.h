#pragma once
/// @file
/// The calculator window "Calculadora": a display, a key pad, a paper tape that can be shown or
/// hidden, a decimals button, a paste button, an always-on-top toggle and a close button, around
/// the engine of motorcalculadora.h. The window has no caption and is dragged by its background.
///
/// The window deletes itself when it closes (Salir, Escape): create it with new. From any window
/// of the runtime, F4 opens it by its name "MiCalc".
#include <kvr/kvr_export.h>
#include <kvr/motorcalculadora.h>

#include <QWidget>

#include <memory>

class QPushButton;
namespace Ui { class MiCalc; }

namespace kvr {

/// The calculator window (see the file's description).
class KVR_EXPORT MiCalc : public QWidget {
    Q_OBJECT
public:
    /// A calculator at zero; it deletes itself when it closes.
    explicit MiCalc(QWidget *parent = nullptr);
    ~MiCalc() override;

    /// Public function kept for the hosts that call it: does nothing, returns an empty text.
    QString Evaluar(QString &Expresion);

    /// The engine behind the window (its state, display and tape).
    const MotorCalculadora &Motor() const { return m_motor; }

    /// Handlers, named after the controls and events that run them.
    ///@{
    void Form_Load();
    void Form_KeyPress(int &KeyAscii);
    void Form_KeyUp(int KeyCode, int Shift);
    void Form_MouseDown();
    void Pantalla_MouseDown(Qt::MouseButton Button);
    void tecla_Click(int Index);
    void decimales_Click();
    void Pegar_Click();
    void VerPapel_Click();
    void FijarUp_Click();
    void Salir_Click();
    ///@}

protected:
    /// Qt's handlers of this window's events, reimplemented for the behaviour the class
    /// describes.
    ///@{
    bool eventFilter(QObject *objeto, QEvent *evento) override;
    void mousePressEvent(QMouseEvent *evento) override;
    ///@}

private:
    void mostrar();
    void vigilar(QWidget *w);

    std::unique_ptr<Ui::MiCalc> ui;
    QPushButton *m_teclas[24] = {};
    MotorCalculadora m_motor;
};

} // namespace kvr
