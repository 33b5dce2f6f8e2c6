#pragma once
/// @file
/// The family's shared phone book "Telefonos": the contacts of TELEFONO.DAT (see contactos.h) in
/// the grid Telfs, a search field BuscoTLF that keeps only the rows holding its text, buttons to
/// add, edit and delete contacts in the entry panel LaEntrada, and hand-offs of a contact's
/// e-mail to the desktop's mail program and of its fax number to the family's fax program.
///
/// F8 opens it from any runtime window (MostrarVentana("Telefonos")); a host may also make it with
/// new and show it. The window deletes itself when it closes. A click or right click on a
/// contact's e-mail cell puts the address, trimmed, into ContactoElegido; a right click also
/// closes the window, so a host can use the phone book to pick an address.
///
/// Saves never overwrite a file somebody else saved since this window read it: the save is
/// refused with a message and the window shows the other version. A save that cannot be written
/// leaves the contact in the grid and the file as it was.
#include <kvr/kvr_export.h>
#include <kvr/contactos.h>

#include <QDateTime>
#include <QString>
#include <QWidget>

#include <memory>
#include <string>
#include <vector>

namespace Ui {
class Telefonos;
}

namespace kvr {

class VisorRejilla;

/// The e-mail address last picked in a phone book (trimmed), for the host to read once it closes.
extern KVR_EXPORT QString ContactoElegido;
/// The sender's name that the host sets, put into the subject of the e-mails started here.
extern KVR_EXPORT QString EnviadoPor;

/// The phone book window (see the file's description).
class KVR_EXPORT Telefonos : public QWidget {
    Q_OBJECT
public:
    /// Reads the contacts file named by "TLF" (CarpetaContactos) and the fax program's name;
    /// the window deletes itself when closed.
    explicit Telefonos(QWidget *parent = nullptr);
    ~Telefonos() override;

    /// Fills the grid from the contacts file (sorted by name) and goes back to browsing.
    void CargarContactos();
    /// Sorts the grid and saves it over the contacts file, unless somebody else saved the file
    /// since this window last read or wrote it: then the save is refused with a message and the
    /// file is loaded again. Done when it returns.
    void GrabarContactos();
    /// Starts an e-mail ("mailto:", with the current row's address when ConContacto) and the fax
    /// program (with the current row's name and fax number when ConContacto).
    ///@{
    void EnviarCorreo(bool ConContacto);
    void EnviarFax(bool ConContacto);
    ///@}

    /// The contacts file's path.
    QString FicheroContactos() const { return m_fichero; }
    /// Modification time of the contacts file as this window last read or wrote it.
    QDateTime FechaContactos() const { return m_sello.fecha(); }
    /// The family's fax program started by EnviarFax ("Telecopia/Telecopia" in the contacts
    /// folder).
    QString ProgramaFax() const { return m_programaFax; }
    /// True while the grid is being filled (its change handlers do nothing meanwhile).
    bool Cargando() const { return m_cargando; }
    /// False when the window could not load its contacts file (a folder, a FIFO or a device in its
    /// place, a file that cannot be read): the error was shown and the window is never shown; it
    /// deletes itself when asked to show.
    bool Cargada() const { return m_cargada; }

    /// Handlers, named after the controls and events that run them.
    ///@{
    void Form_Load();
    void BuscoTLF_Change();
    void Telfs_Click(int fila, int col);
    void Telfs_RowColChange();
    void Telfs_MouseDown(int fila, int col);
    void Telfs_DblClick(int fila, int col);
    void cmdNuevo_Click();
    void cmdEditar_Click();
    void cmdBorrar_Click();
    void cmdAceptar_Click();
    void cmdCancelar_Click();
    void cmdEmail_Click();
    void cmdFax_Click();
    void cmdSalir_Click();
    ///@}

    /// Shows the window, or deletes it when its contacts could not be loaded (see Cargada).
    void setVisible(bool visible) override;

protected:
    /// Qt's handlers of this window's events, reimplemented for the behaviour the class
    /// describes.
    ///@{
    bool event(QEvent *evento) override;
    void closeEvent(QCloseEvent *evento) override;
    bool eventFilter(QObject *objeto, QEvent *evento) override;
    void keyReleaseEvent(QKeyEvent *evento) override;
    ///@}

private:
    class Indice;
    struct Moviendo;

    void AbrirEntrada();
    void elegirFila(int fila, int col);
    void modoConsulta();
    bool ficheroCambiado() const;
    void mensajeError(const QString &texto);
    Rejilla &grid();

    std::unique_ptr<Ui::Telefonos> ui;
    std::unique_ptr<Indice> m_indice;
    QString m_fichero;
    QString m_programaFax;
    SelloFichero m_sello;
    bool m_cargando = false;
    bool m_moviendo = false;
    bool m_cargada = true;
    bool m_sinGrabar = false;
    QString m_soloConsulta;
};

} // namespace kvr
