#pragma once
// The title strip of the mini help window: one line of text drawn centred, as a picture box
// holds what was printed on it until it is cleared.
#include <QFrame>
#include <QString>

namespace kvr {

class TiraVersion : public QFrame {
    Q_OBJECT
    // What the strip shows and how many times a text was drawn on it since it was created.
    // Read by tests and pictures only, never bound: no change signal is worth its cost here.
    Q_PROPERTY(QString texto READ Texto) // clazy:exclude=qproperty-without-notify
    Q_PROPERTY(int dibujos READ Dibujos) // clazy:exclude=qproperty-without-notify
public:
    explicit TiraVersion(QWidget *parent = nullptr);

    // Draws `texto` centred (it replaces what was drawn before, in the same place).
    void Dibujar(const QString &texto);
    // Clears the drawing.
    void Limpiar();

    QString Texto() const { return m_texto; }
    int Dibujos() const { return m_dibujos; }

protected:
    void paintEvent(QPaintEvent *evento) override;

private:
    QString m_texto;
    int m_dibujos = 0;
};

} // namespace kvr
