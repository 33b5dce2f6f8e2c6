#pragma once
/// @file
/// The printer dialog "Impresora": the user picks one of the installed printers (the system's
/// CUPS queues, in their order) and the paper orientation before a print run. It changes nothing
/// on the printers: the choice goes back to the host in three globals, which the host reads after
/// the dialog closes and applies with AplicarImpresora.
///
///     kvr::Impresora dialogo;
///     dialogo.ProponerApaisado();        // optional: propose the other orientation
///     dialogo.exec();
///     if (!kvr::ImpresoraCancelada) {
///         QPrinter impresora;
///         kvr::AplicarImpresora(impresora);
///         ...
///     }
///
/// The dialog opens on the default destination with the orientation that queue prints in by
/// default (its "orientation-requested" option, which Qt does not report). With no printer
/// installed it still opens and says so; "Aceptar" then leaves ImpresoraElegida empty and
/// ImpresoraCancelada true. Closing it by Escape or by its window is the same as "Cancelar".
#include <kvr/kvr_export.h>

#include <QDialog>
#include <QIcon>
#include <QMap>
#include <QString>

#include <memory>

class QPlainTextEdit;
class QPrinter;
namespace Ui { class Impresora; }

namespace kvr {

/// Device name of the chosen printer, "Vertical" (portrait) or "Horizontal" (landscape), and
/// whether the user cancelled. "Cancelar" keeps the last accepted printer and orientation.
///@{
extern KVR_EXPORT QString ImpresoraElegida;
extern KVR_EXPORT QString OrientacionElegida;
extern KVR_EXPORT bool ImpresoraCancelada;
///@}

/// The pictures of the orientations, keyed "Vertical", "Horizontal" and "Incognita" (shown while
/// the orientation is not known, as with no printer). The child "MisIconos" of the dialog.
class KVR_EXPORT ListaIconos : public QObject {
    Q_OBJECT
public:
    /// The three pictures, from the library's resources; its object name is "MisIconos".
    explicit ListaIconos(QObject *parent = nullptr);
    /// The picture under `clave` (a null icon for another key), and the keys.
    ///@{
    QIcon Icono(const QString &clave) const { return m_iconos.value(clave); }
    QStringList Claves() const { return m_iconos.keys(); }
    ///@}

private:
    QMap<QString, QIcon> m_iconos;
};

/// The printer dialog (see the file's description).
class KVR_EXPORT Impresora : public QDialog {
    Q_OBJECT
public:
    /// Lists the print queues and proposes the default one with its orientation.
    explicit Impresora(QWidget *parent = nullptr);
    ~Impresora() override;

    /// Toggles the proposed orientation once, as a click on the paper button: landscape for a
    /// printer set to portrait, portrait for one set to landscape.
    void ProponerApaisado();

    /// Handlers, named after the controls and events that run them.
    ///@{
    void Form_Load();
    void ModoPapel_Click();
    void ListaImpresoras_Click();
    void cmdAceptar_Click();
    void cmdCancelar_Click();
    ///@}

    /// Qt's handlers of this window's events, reimplemented for the behaviour the class
    /// describes.
    ///@{
    void reject() override;
    ///@}

private:
    std::unique_ptr<Ui::Impresora> ui;
    ListaIconos *m_iconos = nullptr;
};

/// Puts the chosen printer and orientation on `impresora`: the printer named ImpresoraElegida
/// (unchanged when it is empty) and OrientacionElegida's page orientation, which is also asked of
/// the print queue, so that a queue that prints landscape by default does not turn a portrait
/// page. Call it after the dialog was accepted.
KVR_EXPORT void AplicarImpresora(QPrinter &impresora);

/// Default orientation of the print queue `cola` as the print system reports it: 1 portrait (also
/// when the queue has no such default), 2 landscape, 0 when the queue is unknown or the print
/// system cannot be reached.
KVR_EXPORT int OrientacionDeCola(const QString &cola);

/// The calculator tape's context menu: "Imprimir cinta…" asks with Impresora and prints the
/// tape's lines in a fixed-width font on the chosen queue and orientation; "Guardar cinta…" saves
/// them to a text file. Installed on the tape by the calculator window.
KVR_EXPORT void PonerMenuCinta(QPlainTextEdit *papel);
/// Prints `lineas` on the printer chosen with Impresora (the globals); false when nothing was
/// printed (cancelled, no printer, or the print system refused the job).
KVR_EXPORT bool ImprimirCinta(const QString &lineas, const QString &titulo);

} // namespace kvr
