#pragma once
/// @file
/// The small seam through which the runtime reaches the operating system: the message box, the
/// input box, the application's title and the clock. A default is always in place (the widget
/// library installs one built on Qt's dialogs); a test or a host can put in its own with
/// PonerServicios.
#include <kvr/kvr_core_export.h>

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace kvr {

/// Positions and sizes of windows and boxes are given in twips: 1/1440 inch.
constexpr float TwipsPorPulgada = 1440.0f;

/// Button sets and icons of the desktop message box, to be added together: Critico + SoloAceptar.
enum BotonesMensaje : int {
    SoloAceptar = 0, AceptarCancelar = 1, AbortarReintentarIgnorar = 2, SiNoCancelar = 3,
    SiNo = 4, ReintentarCancelar = 5,
    Critico = 16, Pregunta = 32, Exclamacion = 48, Informacion = 64,
};
/// Answers of the message box: the button pressed.
enum RespuestaMensaje : int {
    RespAceptar = 1, RespCancelar = 2, RespAbortar = 3, RespReintentar = 4, RespIgnorar = 5,
    RespSi = 6, RespNo = 7,
};
/// The caption of the button that gives an answer ("Aceptar", "Cancelar", "Abortar", "Reintentar",
/// "Ignorar", "Si", "No"), the same in every box of the runtime; empty for any other number.
KVR_CORE_EXPORT QString TituloRespuesta(int respuesta);
/// The answer a caption gives, the other way round; 0 for a caption that is none of them.
KVR_CORE_EXPORT int RespuestaDeTitulo(QStringView titulo);

/// The operating system as the runtime sees it. Every method has a working default; a test or a
/// host derives from it, overrides what it needs and puts it in with PonerServicios.
class KVR_CORE_EXPORT Servicios {
public:
    virtual ~Servicios();

    /// Shows a message box (text, button set plus icon, title) and returns the button pressed.
    virtual int Mensaje(const QString &texto, int botones, const QString &titulo);
    /// Asks the user for a line of text (the desktop's input box): `pregunta` above the field,
    /// `titulo` as caption, `porOmision` already typed; its top-left corner at xTwips, yTwips on
    /// the screen (-1 centres it). Returns the text typed, with *aceptado true, or an empty text
    /// with *aceptado false when the user cancelled. Without a window system nobody answers: the
    /// default returns an empty text, not accepted.
    virtual QString Entrada(const QString &pregunta, const QString &titulo,
                            const QString &porOmision, int xTwips, int yTwips, bool *aceptado);
    /// The application's own title (the name a message box shows when none is given).
    ///@{
    virtual QString TituloAplicacion();
    virtual QDate Hoy();
    virtual QDateTime Ahora();
    ///@}
    /// Hands `destino` (a "mailto:" target, a web address, a file) to the desktop's opener as it
    /// stands. The result is whether an opener could be started, not what it did.
    virtual bool AbrirDocumento(const QString &destino);
    /// Starts `programa` with `argumentos` in the working folder `carpeta`, without waiting for it.
    /// False when it could not be started.
    virtual bool EjecutarPrograma(const QString &programa, const QStringList &argumentos,
                                  const QString &carpeta);
};

/// The services in use.
KVR_CORE_EXPORT Servicios &ServiciosActuales();
/// Puts in other services (nullptr goes back to the default) and returns the ones replaced.
/// The caller keeps ownership.
KVR_CORE_EXPORT Servicios *PonerServicios(Servicios *nuevos);
/// Used by the widget library to make its Qt implementation the default.
KVR_CORE_EXPORT void PonerServiciosPorOmision(Servicios *porOmision);

} // namespace kvr
