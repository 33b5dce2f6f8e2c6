#include <kvr/rtimekvr.h>
#include <kvr/servicios.h>

#include <QCalendarWidget>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDateEdit>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPrintDialog>
#include <QPrinter>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QStorageInfo>
#include <QTabWidget>
#include <QTableView>
#include <QTextEdit>
#include <QTimer>
#include <QToolBar>
#include <QTreeView>
#include <QTreeWidget>
#include <QVBoxLayout>
#ifdef KVR_CON_WEBENGINE
#include <QWebEngineView>
#endif

namespace kvr {

namespace {
template <typename T>
T *comun(QWidget *marco, const char *nombre)
{
    auto *w = new T(marco);
    w->setObjectName(QString::fromLatin1(nombre));
    marco->layout()->addWidget(w);
    return w;
}
} // namespace

RTimeKVR::RTimeKVR(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("RTimeKVR"));
    setWindowTitle(QStringLiteral("Runtime KVR"));
    auto *raiz = new QVBoxLayout(this);
    auto *marco = new QGroupBox(QStringLiteral("Objetos Comunes"), this);
    marco->setObjectName(QStringLiteral("Frame1"));
    raiz->addWidget(marco);
    new QVBoxLayout(marco);

    // The stand-ins of the desktop's controls, one of each kind.
#ifdef KVR_CON_WEBENGINE
    comun<QWebEngineView>(marco, "WebBrowser1");
#endif
    comun<QTextEdit>(marco, "RichTextBox1")->setAcceptRichText(true);
    comun<QSpinBox>(marco, "UpDown1");
    comun<QDateEdit>(marco, "DTPicker1")->setCalendarPopup(true);
    comun<QProgressBar>(marco, "ProgressBar1");
    comun<QTreeWidget>(marco, "TreeView1");
    comun<QListWidget>(marco, "ImageList1")->setViewMode(QListView::IconMode);
    comun<QToolBar>(marco, "Toolbar1");
    comun<QStatusBar>(marco, "StatusBar1");
    comun<QTableView>(marco, "MSFlexGrid1");
    comun<QTabWidget>(marco, "SSTab1");
    auto *dialogo = new QColorDialog(this);
    dialogo->setObjectName(QStringLiteral("CommonDialog1"));
    comun<QLabel>(marco, "Picture1");
    comun<QLineEdit>(marco, "Text1");
    auto *temporizador = new QTimer(this);
    temporizador->setObjectName(QStringLiteral("Timer1"));
    comun<QPushButton>(marco, "Command1");
    comun<QCheckBox>(marco, "Check1");
    comun<QRadioButton>(marco, "Option1");
    comun<QComboBox>(marco, "Combo1");
    comun<QListWidget>(marco, "List1");
    auto *unidades = comun<QComboBox>(marco, "Drive1");
    for (const QStorageInfo &v : QStorageInfo::mountedVolumes())
        unidades->addItem(v.rootPath());
    auto *sistema = new QFileSystemModel(this);
    comun<QTreeView>(marco, "Dir1")->setModel(sistema);
    comun<QListView>(marco, "File1")->setModel(sistema);
    comun<QLabel>(marco, "Label1");
    comun<QLabel>(marco, "Image1");
}

QStringList RTimeKVR::ObjetosComunes() const
{
    QStringList nombres;
    const auto *marco = findChild<QGroupBox *>(QStringLiteral("Frame1"));
    for (const QObject *o : marco->children())
        if (o->isWidgetType())
            nombres << o->objectName();
    for (const QObject *o : children())
        if (o->objectName() == u"CommonDialog1" || o->objectName() == u"Timer1")
            nombres << o->objectName();
    return nombres;
}

void RTimeKVR::Form_Load()
{
    ServiciosActuales().Mensaje(QStringLiteral("Programa no ejecutable. Instalador de Runtime."),
                                Critico + SoloAceptar, QStringLiteral("Aviso de Runtime KVR"));
    close();
}

int EjecutarRTimeKVR()
{
    RTimeKVR form;
    form.Form_Load();
    return 0;
}

} // namespace kvr
