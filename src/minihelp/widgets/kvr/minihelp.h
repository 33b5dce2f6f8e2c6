#pragma once
/// @file
/// The mini help window: a rich-text help file or a web page, under a one-line title strip that
/// shows, unless told otherwise, the program's name and version. A host creates it, fills it with
/// CargarAyuda or MiExplorer, and shows it (show() or exec()); cmdCerrar closes it.
///
/// Web pages are shown inside the window when the library was built with QtWebEngine
/// (KVR_CON_WEBENGINE). Without it, MiExplorer hands the page to the desktop's browser and the
/// window shows where the page went.
#include <kvr/kvr_export.h>

#include <QDialog>
#include <QString>

#include <memory>

namespace Ui {
class MiniHelp;
}
class QWebEngineLoadingInfo;

namespace kvr {

/// The mini help window (see the file's description).
class KVR_EXPORT MiniHelp : public QDialog {
    Q_OBJECT
public:
    /// An empty help window, not shown.
    explicit MiniHelp(QWidget *parent = nullptr);
    ~MiniHelp() override;

    /// Shows the rich-text (RTF) file `Fichero` in TextoAyuda. A missing or unreadable file
    /// throws ErrorEjecucion (ArchivoNoEncontrado, AccesoDenegado), for the host to handle; a
    /// damaged file shows what could be read of it.
    void CargarAyuda(const QString &Fichero);

    /// Shows the web page `URL` and waits, letting window events run, until it has loaded.
    /// A page that cannot be reached (or answers with an HTTP error) sets `Problema` and closes
    /// the window. Without QtWebEngine the page opens in the desktop's browser: `Problema` is true
    /// only when no browser could be started. `Problema` is otherwise false on return.
    void MiExplorer(const QString &URL, bool &Problema);

    /// Clears the title strip and draws `Titulo` in it (the default line when empty).
    void TituloMiniWeb(const QString &Titulo);

    /// Whether a navigation has failed since the window was created (never cleared).
    bool ErrorNavegacion() const { return m_errorNavegacion; }

    /// The default title line: "Programa " + application name + "  -  " + "Versión " +
    /// major.minor.revision, read from QCoreApplication's name and version. Missing parts of the
    /// version count as 0 ("2" gives 2.0.0, an empty version 0.0.0); a fourth part and any text
    /// after the numbers are left out ("2.1.34.7" and "2.1.34-beta" give 2.1.34).
    static QString TextoVersion();

protected:
    /// Qt's handlers of this window's events, reimplemented for the behaviour the class
    /// describes.
    ///@{
    void closeEvent(QCloseEvent *evento) override;
    ///@}
    /// F4 and F8 open the calculator and the phone book from the help window too.
    void keyReleaseEvent(QKeyEvent *evento) override;

private:
    void Form_Load();
    void cmdCerrar_Click();
    void MostrarVersion(const QString &Texto);
    void MiniWeb_Resultado(bool error);

    std::unique_ptr<Ui::MiniHelp> ui;
    QWidget *m_web = nullptr;  ///< the web view (or the label that stands in for it)
    bool m_errorNavegacion = false;
    bool m_ocupado = false;
};

} // namespace kvr
