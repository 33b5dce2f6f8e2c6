#pragma once
/// @file
/// The table editor window "Edición de Tablas": a one-column table kept in a text file (see
/// tablas.h) listed in the grid VisorTabla, one element a row, and edited in the field Elemento,
/// whose behaviour comes from its tag text. A click on a row puts that row's element into the
/// field; "Aceptar" stores the field into that row, or appends it when no row was chosen;
/// "Grabar" saves the table to its file; "Salir" closes the window, asking first when there are
/// changes not saved.
///
/// A host makes the window with new, prepares it with Dimensionar and shows it:
///     auto *t = new kvr::frmTablas;
///     t->Dimensionar(this, u"/datos/provincias.txt"_qs, u"Provincia#25"_qs);
///     t->show();
/// The window deletes itself when it closes. State kept in tag texts, as hosts expect: the
/// table's file is the window's own tag text (property "tag"), the modified mark "MODIFICADO" is
/// the grid's Tag.
///
/// File errors (an unreadable or unwritable file) are shown in the desktop's message box and the
/// window stays usable; a failed save leaves the file on disk as it was.
#include <kvr/kvr_export.h>

#include <QString>
#include <QWidget>

#include <memory>

namespace Ui {
class frmTablas;
}

namespace kvr {

class VisorRejilla;

/// The grid's Tag while the table has changes not saved.
inline const QString MarcaModificado = QStringLiteral("MODIFICADO");

/// The table editor window (see the file's description).
class KVR_EXPORT frmTablas : public QWidget {
    Q_OBJECT
public:
    /// An empty editor; Dimensionar gives it its table. It deletes itself when it closes.
    explicit frmTablas(QWidget *parent = nullptr);
    ~frmTablas() override;

    /// Prepares the window: the table file `TagFormulario` (kept as the window's tag text), the
    /// grid's columns from the descriptor line `TituloVisor` (column 0 holds the elements), the
    /// field's descriptor `TagElemento`; sizes the grid to its column 0 and the window to the
    /// grid, and puts the window at the top-left corner of `Formulario`. With `Cargar` the file
    /// is loaded at once (an empty file name asks for one, for this load only).
    void Dimensionar(QWidget *Formulario, const QString &TagFormulario, const QString &TituloVisor,
                     const QString &TagElemento = QStringLiteral("T(M) L(15) A(I)"),
                     bool Cargar = true);

    /// The grid, the row being edited (0: none, Aceptar appends) and whether the table has
    /// changes not saved.
    ///@{
    VisorRejilla *VisorTabla() const;
    int FilaEditada() const { return m_filaEditada; }
    bool Modificado() const;
    ///@}

    /// Handlers, named after the controls and events that run them.
    ///@{
    void Form_Load();
    void VisorTabla_Click();
    void Elemento_Change();
    void cmdAceptar_Click();
    void cmdGrabar_Click();
    void cmdSalir_Click();
    ///@}

protected:
    /// Qt's handlers of this window's events, reimplemented for the behaviour the class
    /// describes.
    ///@{
    void closeEvent(QCloseEvent *evento) override;
    void keyReleaseEvent(QKeyEvent *evento) override;
    bool eventFilter(QObject *objeto, QEvent *evento) override;
    ///@}

private:
    void ponerMarca(const QString &marca);
    /// The exit question; true when the window may close.
    bool puedeSalir();
    /// The grid's top-left corner on the screen, in twips.
    void posicionVisor(int &leftTwips, int &topTwips) const;
    /// Loads or saves the table file named by the window's tag (an empty name asks for one, and
    /// the answer serves this call only) and clears the change mark.
    void ficheroTabla(const QString &operacion);

    std::unique_ptr<Ui::frmTablas> ui;
    /// The row whose element is in the field (0: a new element).
    int m_filaEditada = 0;
    /// True while the program itself puts a row's text into the field.
    bool m_cargando = false;
    /// Set once the exit has been decided, so closing does not ask again.
    bool m_saliendo = false;
};

} // namespace kvr
