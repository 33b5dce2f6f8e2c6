#pragma once
/// @file
/// MyBox: the runtime's own modal box for messages, questions, a value, a range or a choice from
/// a list. It has no caption bar of the desktop: its title is shown in its caption strip, and the
/// user moves it by dragging any free part of it. A new box is made for every call.
///
/// Icons (ElIcono, 1-based index into NIconos):
///    1 información     2 pregunta       3 advertencia    4 error crítico   5 impresora
///    6 grabar (disco)  7 borrar (papelera)  8 espera (reloj)  9 clave (candado)  10 buscar (lupa)
/// Any other index is an error of the icon list: MyMsgBox and MyInputBox throw
/// ErrorEjecucion(SubindiceFueraDeIntervalo) and show nothing.
///
/// Button sets (LosBotones), left to right, and result codes (by caption):
///    1 Aceptar    2 Aceptar Cancelar    3 Si No    4 Si No Cancelar
///    5 Abortar Reintentar Ignorar    6 Reintentar Cancelar
///    Aceptar 1, Cancelar 2, Abortar 3, Reintentar 4, Ignorar 5, Si 6, No 7; 0 when the box was
///    closed without a button (Escape).
/// BotonOmision: 1 focuses the leftmost button of the set, 2 the second, anything else the
/// rightmost. Any other set shows the three design buttons "Boton3" "Boton2" "Boton1" and gives
/// no focus.
///
/// Positions: Top and Left are in twips (1440 an inch); -1 centres the box on the screen in that
/// direction; a Formulario centres it over that window whatever Top and Left say.
///
/// The viewer box (MyVisorBox) shows a table in a small grid in place of the message. A click on
/// a data row chooses it, a double click chooses it and presses the leftmost answer button; from
/// the keyboard, moving the current cell onto a data row chooses it and Enter in the grid
/// confirms like a double click. The colour swatch RGBText (hidden unless a caller shows it)
/// opens the desktop's colour dialog.
#include <kvr/kvr_export.h>
#include <kvr/cajas.h>

#include <QDialog>
#include <QList>
#include <QPixmap>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>

class QPushButton;
namespace Ui {
class MyBox;
}

namespace kvr {

/// Indices of NIconos.
enum IconoCaja : int {
    IconoInformacion = 1, IconoPregunta = 2, IconoAdvertencia = 3, IconoError = 4,
    IconoImpresora = 5, IconoGrabar = 6, IconoBorrar = 7, IconoEspera = 8, IconoClave = 9,
    IconoBuscar = 10,
};
/// The number of pictures in the icon list (the last IconoCaja).
constexpr int NumeroIconos = 10;

/// Shows ElMensaje (";" starts a new line) under the title ElTitulo with icon ElIcono and the
/// button set LosBotones; returns the result code of the button pressed (0 if none was).
KVR_EXPORT float MyMsgBox(const QString &ElMensaje, const QString &ElTitulo, int ElIcono,
                          int LosBotones,
                          int BotonOmision, float Top = -1, float Left = -1, QWidget *Formulario = nullptr);

/// Asks for a value in a field that behaves by the descriptor TagDelCampo, for a range (a
/// descriptor ending in "(/)": two fields, DatoInicial and the result as lower bound + "ƒ" +
/// upper bound), or for a choice from a list (TagDelCampo "TABLA": DatoInicial is the list text
/// that LlenarCombo reads). "Aceptar" returns the value in its editing form (the chosen entry as
/// it stands for a list); "Cancelar" or closing the box returns "". A FicheroAyuda that names an
/// existing file shows the "Ayuda" button, which opens it in the mini help window.
KVR_EXPORT QString MyInputBox(const QString &ElMensaje, const QString &ElTitulo, int ElIcono,
                              const QString &TagDelCampo, const QString &DatoInicial = {}, float Top = -1,
                              float Left = -1, QWidget *Formulario = nullptr,
                              const QString &FicheroAyuda = {});

/// Shows the table Matriz under the column descriptor line Titulos (titles and widths, as
/// CargarVisor reads it) with the title ElTitulo and icon ElIcono. Matriz[i][j] goes to grid row
/// i, column j - 1; index 0 of either dimension is not shown, so hosts fill from 1. Every row
/// from 1 must hold the grid's column count plus one elements: a shorter row throws
/// ErrorEjecucion(SubindiceFueraDeIntervalo) before the box is shown; further elements are not
/// shown. With ColumnaDevolver (a column title, or "#n" for column n) the box offers "Aceptar"
/// and "Cancelar" (focus on "Cancelar") and returns the text of the chosen row in that column
/// when closed with "Aceptar"; a title no column has is reported and column 0 is used. Without
/// it only "Aceptar" is shown and a chosen row gives its column 0. No chosen row, "Cancelar" or
/// Escape: "".
KVR_EXPORT QString MyVisorBox(const QString &ElTitulo, const QString &Titulos,
                              const QVector<QStringList> &Matriz, int ElIcono,
                              const QString &ColumnaDevolver, float Top = -1, float Left = -1,
                              QWidget *Formulario = nullptr);

/// The box itself, which MyMsgBox, MyInputBox and MyVisorBox make, fill and show; a host needs it
/// only to look inside a box (see the file's description).
class KVR_EXPORT MyBox : public QDialog {
    Q_OBJECT
public:
    /// An empty box, not shown.
    explicit MyBox(QWidget *parent = nullptr);
    ~MyBox() override;

    /// Picture ElIcono (1 to NumeroIconos) of the icon list, 32 by 32 pixels. Another index
    /// throws ErrorEjecucion(SubindiceFueraDeIntervalo).
    static QPixmap NIconos(int ElIcono);

    /// The window's result variables, read after the modal display returns.
    ///@{
    float Resultado() const { return m_codigo; }
    QString TextoResultado() const { return m_texto; }
    QString TextoHasta() const { return m_texto2; }
    ///@}

    /// The parts of a call, in the order the public functions use them.
    ///@{
    void PonerMensaje(const QString &ElMensaje);
    void PonerTitulo(const QString &ElTitulo);
    void PonerIcono(int ElIcono);
    ///@}
    /// Button set, initial focus and position (Top and Left in twips, given back as computed).
    void DisponerBotones(int LosBotones, int BotonOmision, float &Top, float &Left,
                         QWidget *Formulario);
    /// Shows the field(s) or the list for TagDelCampo and fills them from DatoInicial.
    void PrepararPregunta(const QString &TagDelCampo, const QString &DatoInicial);
    /// Shows "Ayuda" for an existing help file.
    void PonerAyuda(const QString &FicheroAyuda);
    /// Hides the message and shows VisorMini with the columns of Titulos and the rows of Matriz
    /// (see MyVisorBox).
    void PrepararVisor(const QString &Titulos, const QVector<QStringList> &Matriz);
    /// The column whose text a chosen row gives: the one titled ColumnaDevolver (or "#n"), found
    /// by BuscarColumnaVisor; an empty title leaves column 0.
    void PonerColumnaDevolver(const QString &ColumnaDevolver);

    /// True when the range in CampoTexto and CampoHasta is in order (an open range always is).
    bool DesdeHastaOk();

    /// Tab position of a control among the box's controls, as the desktop's tab index: the
    /// control moves to `indice` and the others keep their order. The first visible control
    /// that can take the focus has it when the box is shown.
    void PonerIndiceTab(QWidget *control, int indice);

    /// Handlers, named after the controls and events that run them.
    ///@{
    void Form_Load();
    void Form_MouseDown(const QPoint &global);
    void Boton_Click(int Index);
    void Boton_KeyPress(int Index, int &KeyAscii);
    void Ayuda_Click();
    ///@}
    /// Row choice in the viewer: a data row under the pointer gives its text in the column to
    /// return; the double click then presses the leftmost visible answer button.
    ///@{
    void VisorMini_Click(int fila, int col);
    void VisorMini_DblClick(int fila, int col);
    ///@}
    /// The colour swatch: the colour dialog dlgColores, started from the swatch's colour; the
    /// colour chosen paints the swatch and goes into CampoTexto as the number red + 256 green +
    /// 65536 blue. Cancelling changes nothing.
    void RGBText_Click();

    /// Closing the box without a button (Escape, the window closed): result code 0.
    void reject() override;

protected:
    /// Qt's handlers of this window's events, reimplemented for the behaviour the class
    /// describes.
    ///@{
    bool eventFilter(QObject *objeto, QEvent *evento) override;
    void showEvent(QShowEvent *evento) override;
    void mousePressEvent(QMouseEvent *evento) override;
    void mouseMoveEvent(QMouseEvent *evento) override;
    void mouseReleaseEvent(QMouseEvent *evento) override;
    ///@}

private:
    void elegirFilaActual();
    void VisorMini_RowColChange();
    void aplicarOrdenTab();

    std::unique_ptr<Ui::MyBox> ui;
    QPushButton *m_botones[3] = {};
    QList<QWidget *> m_ordenTab;

    /// Result variables: the code of the button pressed, the value typed or chosen and the
    /// upper bound of a range.
    float m_codigo = 0;
    QString m_texto;
    QString m_texto2;
    /// Swallows the click that releasing a pressed-in button causes.
    bool m_guardaClic = false;
    /// Set when a button has closed the box: later clicks and keys find it gone.
    bool m_descargada = false;
    /// NoRecordarCampo as it was before the range box's fields raised it.
    bool m_noRecordarAntes = false;
    /// The grid column whose text a row choice returns (0: none asked for).
    int m_columnaDevolver = 0;
    /// A key pressed in VisorMini is being handled: a move of its current cell chooses the row.
    bool m_teclaEnVisor = false;

    /// Dragging by hand where the window system cannot move the window itself.
    bool m_arrastrando = false;
    QPoint m_desplazamiento;
};

} // namespace kvr
