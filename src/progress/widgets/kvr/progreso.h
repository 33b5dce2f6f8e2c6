#pragma once
/// @file
/// The progress window "Progreso": a small caption-less window that a host shows while it works
/// through a counted task, with a title, a bar, the percentage done, the time elapsed and the
/// estimated total time of the task. The host drives it only through BarraProgreso; there is one
/// such window at a time, a top-level widget found by its objectName "Progreso". It is dragged by
/// its background.
///
///     kvr::BarraProgreso(kvr::ProgresoIniciar, 0, false, 1, n, QStringLiteral("Copiando…"));
///     for (int i = 1; i <= n; ++i) { trabajar(i); kvr::BarraProgreso(kvr::ProgresoAvanzar, i); }
///     kvr::BarraProgreso(kvr::ProgresoCerrar);
///
/// The times are read from the seam's clock (ServiciosActuales().Ahora()) as seconds since
/// midnight: a task that runs past midnight shows a negative elapsed time, as no correction is made.
#include <kvr/kvr_export.h>

#include <QString>
#include <QWidget>

#include <memory>

namespace Ui { class Progreso; }

namespace kvr {

/// Operations of BarraProgreso.
enum OperacionProgreso : int {
    ProgresoIniciar = 1,  ///< minimo, maximo, titulo: (re)starts a task and shows the window
    ProgresoCerrar = 2,   ///< closes and destroys the window
    ProgresoAvanzar = 3,  ///< valor, forzar: the position reached
    ProgresoOcultar = 4,
    ProgresoMostrar = 5,  ///< shows the window again (making one if there is none)
};

/// Runs one operation on the progress window; any other operation number does nothing. Every
/// operation lets pending window events run, so a host can call it at every step of a long loop
/// and its own windows stay responsive. An advance redraws the bar and the texts only once per
/// hundredth of the maximum's worth of calls, at the maximum itself, on the first advance after a
/// start and when forzar is true. Advancing, hiding or closing without a window does nothing.
KVR_EXPORT void BarraProgreso(int operacion, float valor = 0, bool forzar = false, float minimo = 0,
                              float maximo = 0, const QString &titulo = {});

/// The progress window, made and driven by BarraProgreso (see the file's description).
class KVR_EXPORT Progreso : public QWidget {
    Q_OBJECT
public:
    /// A window at 0 %, not shown.
    explicit Progreso(QWidget *parent = nullptr);
    ~Progreso() override;

    /// Operations 1 and 3 of BarraProgreso on this window, without letting events run (BarraProgreso
    /// does that). A maximum not above the minimum becomes minimum + 1. A value outside the range
    /// leaves the bar where it was, while the percentage and the times are still shown for it.
    ///@{
    void Iniciar(float minimo, float maximo, const QString &titulo);
    void Avanzar(float valor, bool forzar);
    ///@}

    /// "hh:mm:ss" of a number of seconds; the hours show only their last two digits (100 hours
    /// read 00:00:00).
    static QString TextoTiempo(float segundos);

    /// Handlers, named after the events that run them: the window's load, and a press on its
    /// background, which starts dragging it.
    ///@{
    void Form_Load();
    void Form_MouseDown();
    ///@}

protected:
    /// Qt's handlers of this window's events, reimplemented for the behaviour the class
    /// describes.
    ///@{
    void mousePressEvent(QMouseEvent *evento) override;
    void closeEvent(QCloseEvent *evento) override;
    ///@}

private:
    void redibujar(float valor);

    std::unique_ptr<Ui::Progreso> ui;
    /// The bar's range and value as the host gives them (fractions too); the QProgressBar shows
    /// them rounded to whole numbers.
    float m_minimo = 0;
    float m_maximo = 100;
    /// True from a start to the first advance, while Barra's tag reads "INICIO" (kept here too, as
    /// looking a dynamic property up by name at every advance costs more than the advance itself).
    bool m_inicio = false;
    float m_pasos = 0;          ///< advances since the last redraw
    float m_transcurrido = 0;   ///< seconds elapsed at the last redraw
};

} // namespace kvr
