#pragma once
// The progress window "Progreso": a small caption-less window that a host shows while it works
// through a counted task, with a title, a bar, the percentage done, the time elapsed and the
// estimated total time of the task. The host drives it only through BarraProgreso; there is one
// such window at a time, a top-level widget found by its objectName "Progreso".
#include <QString>
#include <QWidget>

#include <memory>

namespace Ui { class Progreso; }

namespace kvr {

// Operations of BarraProgreso.
enum OperacionProgreso : int {
    ProgresoIniciar = 1,  // minimo, maximo, titulo: (re)starts the task, shows the window
    ProgresoCerrar = 2,   // closes and destroys the window
    ProgresoAvanzar = 3,  // valor, forzar: the position reached
    ProgresoOcultar = 4,
    ProgresoMostrar = 5,
};

// Runs one operation on the progress window (any other operation number does nothing). Every
// call lets pending window events run, so a host can call it at every step of a long loop; the
// texts are redrawn only about once per hundredth of the range, at the maximum and when forzar
// is true.
void BarraProgreso(int operacion, float valor = 0, bool forzar = false, float minimo = 0,
                   float maximo = 0, const QString &titulo = {});

class Progreso : public QWidget {
    Q_OBJECT
public:
    explicit Progreso(QWidget *parent = nullptr);
    ~Progreso() override;

    // The operations of BarraProgreso on this window.
    void Iniciar(float minimo, float maximo, const QString &titulo);
    void Avanzar(float valor, bool forzar);

    // "hh:mm:ss" of a number of seconds, hours cut to their last two digits.
    static QString TextoTiempo(double segundos);

    void Form_Load();
    void Form_MouseDown();

protected:
    void mousePressEvent(QMouseEvent *evento) override;

private:
    std::unique_ptr<Ui::Progreso> ui;
    float m_pasos = 0;          // advances since the last redraw
    float m_transcurrido = 0;   // seconds elapsed at the last redraw
};

} // namespace kvr
