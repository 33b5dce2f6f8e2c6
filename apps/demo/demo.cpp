#include "demo.h"

#include <kvr/kvr.h>

#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QGroupBox>
#include <QThread>
#include <QVBoxLayout>

namespace {

struct Ejemplo {
    const char *nombre;
    const char *etiqueta;
    const char *tag;
};

// One field of every type; the tag is shown beside each so that it can be read and changed.
const Ejemplo kCampos[] = {
    {"txtImporte", "Importe (N)", "T(N) L(12) A(D) D(2) +(1000)"},
    {"txtUnidades", "Unidades sin signo (n)", "T(n) L(8) A(D) D(0) +(1)"},
    {"txtCuenta", "Cuenta (C)", "T(C) L(8) A(I) +(43.1)"},
    {"txtCodigoD", "Código a la derecha (D, A(D))", "T(D) L(6) A(D)"},
    {"txtCodigoC", "Código con ceros (D, A(C))", "T(D) L(6) A(C) +(45)"},
    {"txtCodigoI", "Código a la izquierda (D, A(I))", "T(D) L(6) A(I)"},
    {"txtFecha", "Fecha (F)", "T(F) L(10) A(I)"},
    {"txtDiaMes", "Día y mes (f)", "T(f) L(10) A(I)"},
    {"txtHora", "Hora (H)", "T(H) L(5) A(I) +(09:00)"},
    {"txtProvincia", "Mayúsculas (M)", "T(M) L(15) A(I) +(MADRID)"},
    {"txtNIF", "NIF (X, teclee ? tras los dígitos)", "T(X) L(9) A(I)"},
    {"txtNotas", "Texto libre", "T(m) L(30) A(I)"},
};

} // namespace

QString Demo::datos(const QString &nombre)
{
    // The demo's sample files: beside the program once installed, else in the source tree.
    QString instalado = QCoreApplication::applicationDirPath() + QStringLiteral("/../share/kvr/demo/") + nombre;
    if (QFileInfo::exists(instalado))
        return instalado;
    return QStringLiteral(KVR_DEMO_DATOS "/") + nombre;
}

Demo::Demo(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("Demo"));
    setWindowTitle(QStringLiteral("Runtime KVR - Demostración"));
    auto *raiz = new QVBoxLayout(this);
    auto *ayuda = new QLabel(QStringLiteral(
        "Cada campo filtra sus teclas según su descriptor. Intro pasa al siguiente campo, "
        "«+» pone el valor por omisión y el campo lleno pasa solo al siguiente."), this);
    ayuda->setWordWrap(true);
    raiz->addWidget(ayuda);

    auto *form = new QFormLayout;
    raiz->addLayout(form);
    for (const Ejemplo &e : kCampos) {
        auto *campo = new QLineEdit(this);
        campo->setObjectName(QString::fromLatin1(e.nombre));
        kvr::PrepararCampo(campo, QString::fromUtf8(e.tag));
        // The row's label sits beside a layout, not the field, so the field is named after it.
        campo->setAccessibleName(QString::fromUtf8(e.etiqueta));
        campo->setAccessibleDescription(QString::fromUtf8(e.tag));
        auto *fila = new QHBoxLayout;
        fila->addWidget(campo, 1);
        auto *tag = new QLabel(QString::fromUtf8(e.tag), this);
        tag->setStyleSheet(QStringLiteral("color: gray"));
        fila->addWidget(tag);
        form->addRow(QString::fromUtf8(e.etiqueta), fila);
    }
    auto *activo = new QCheckBox(QStringLiteral("Cliente activo"), this);
    activo->setObjectName(QStringLiteral("chkActivo"));
    kvr::PrepararCampo(activo, QStringLiteral("T(m) L(1) A(I) +(1)"));
    form->addRow(QStringLiteral("Casilla (+ la marca)"), activo);

    auto *mes = new QComboBox(this);
    mes->setObjectName(QStringLiteral("cbxMes"));
    mes->addItems({QStringLiteral("Enero"), QStringLiteral("Febrero"), QStringLiteral("Marzo"),
                   QStringLiteral("Abril"), QStringLiteral("Mayo"), QStringLiteral("Junio")});
    kvr::PrepararCampo(mes, QStringLiteral("T(m) L(10) A(I) +(Marzo)"));
    form->addRow(QStringLiteral("Lista (+ elige Marzo)"), mes);
    kvr::AccesibleComoLista(mes);

    // The runtime's boxes: a message with each button set, a value of each field type, a date
    // range, a choice from a list, and the help window.
    auto *cajas = new QGroupBox(QStringLiteral("Cajas de diálogo"), this);
    raiz->addWidget(cajas);
    auto *rejillaCajas = new QFormLayout(cajas);
    auto *resultado = new QLabel(QStringLiteral("Resultado: "), this);
    resultado->setObjectName(QStringLiteral("etiResultado"));

    auto *juego = new QComboBox(cajas);
    juego->setObjectName(QStringLiteral("cbxBotones"));
    juego->addItems({QStringLiteral("1 Aceptar"), QStringLiteral("2 Aceptar, Cancelar"),
                     QStringLiteral("3 Sí, No"), QStringLiteral("4 Sí, No, Cancelar"),
                     QStringLiteral("5 Abortar, Reintentar, Ignorar"), QStringLiteral("6 Reintentar, Cancelar")});
    auto *mensaje = new QPushButton(QStringLiteral("Mensaje"), cajas);
    mensaje->setObjectName(QStringLiteral("cmdMensaje"));
    connect(mensaje, &QPushButton::clicked, this, [this, juego, resultado] {
        const int botones = juego->currentIndex() + 1;
        const float r = kvr::MyMsgBox(QStringLiteral("Mensaje de prueba con el juego de botones %1.;;"
                                                     "El punto y coma separa las líneas.").arg(botones),
                                      QStringLiteral("Demostración"), botones <= 4 ? botones : 3, botones, 1,
                                      -1, -1, this);
        resultado->setText(QStringLiteral("Resultado: %1").arg(r));
    });
    juego->setAccessibleName(QStringLiteral("Juego de botones"));
    kvr::AccesibleComoLista(juego);
    auto *filaMensaje = new QHBoxLayout;
    filaMensaje->addWidget(juego, 1);
    filaMensaje->addWidget(mensaje);
    rejillaCajas->addRow(QStringLiteral("Juego de botones"), filaMensaje);

    auto *tipo = new QComboBox(cajas);
    tipo->setObjectName(QStringLiteral("cbxTipo"));
    for (const Ejemplo &e : kCampos)
        tipo->addItem(QString::fromUtf8(e.etiqueta), QString::fromUtf8(e.tag));
    auto *pedir = new QPushButton(QStringLiteral("Pedir un dato"), cajas);
    pedir->setObjectName(QStringLiteral("cmdPedir"));
    connect(pedir, &QPushButton::clicked, this, [this, tipo, resultado] {
        const QString r = kvr::MyInputBox(QStringLiteral("Teclee un dato de tipo:;") + tipo->currentText(),
                                          QStringLiteral("Entrada de datos"), 2, tipo->currentData().toString(),
                                          {}, -1, -1, this, datos(QStringLiteral("ayuda_demo.rtf")));
        resultado->setText(QStringLiteral("Resultado: «%1»").arg(r));
    });
    tipo->setAccessibleName(QStringLiteral("Tipo de campo"));
    kvr::AccesibleComoLista(tipo);
    auto *filaPedir = new QHBoxLayout;
    filaPedir->addWidget(tipo, 1);
    filaPedir->addWidget(pedir);
    rejillaCajas->addRow(QStringLiteral("Tipo de campo"), filaPedir);

    auto *filaOtras = new QHBoxLayout;
    auto *rango = new QPushButton(QStringLiteral("Rango de fechas"), cajas);
    rango->setObjectName(QStringLiteral("cmdRango"));
    connect(rango, &QPushButton::clicked, this, [this, resultado] {
        const QString r = kvr::MyInputBox(QStringLiteral("Fechas del listado"), QStringLiteral("Rango"), 2,
                                          QStringLiteral("T(F) L(10) A(I) (/)"),
                                          QStringLiteral("01/01/2026") + QChar(0x0192) + QStringLiteral("31/12/2026"),
                                          -1, -1, this);
        resultado->setText(QStringLiteral("Resultado: «%1»").arg(r));
    });
    auto *lista = new QPushButton(QStringLiteral("Elegir de una lista"), cajas);
    lista->setObjectName(QStringLiteral("cmdLista"));
    connect(lista, &QPushButton::clicked, this, [this, resultado] {
        const QString r = kvr::MyInputBox(QStringLiteral("Elija una forma de pago"), QStringLiteral("Lista"), 2,
                                          QStringLiteral("TABLA"),
                                          QStringLiteral("Contado;Transferencia;Recibo a 30 días;Recibo a 60 días"),
                                          -1, -1, this);
        resultado->setText(QStringLiteral("Resultado: «%1»").arg(r));
    });
    auto *ayudaBoton = new QPushButton(QStringLiteral("Ayuda"), cajas);
    ayudaBoton->setObjectName(QStringLiteral("cmdAyuda"));
    connect(ayudaBoton, &QPushButton::clicked, this, [this] {
        kvr::MiniHelp ayuda(this);
        try {
            ayuda.CargarAyuda(datos(QStringLiteral("ayuda_demo.rtf")));
        } catch (const kvr::ErrorEjecucion &e) {
            kvr::MyMsgBox(e.descripcion(), QStringLiteral("Ayuda"), 4, 1, 1);
            return;
        }
        ayuda.exec();
    });
    auto *visor = new QPushButton(QStringLiteral("Elegir un cliente"), cajas);
    visor->setObjectName(QStringLiteral("cmdVisor"));
    connect(visor, &QPushButton::clicked, this, [this, resultado] {
        // Row and column 0 of the matrix are not shown: the data starts at (1, 1).
        const QVector<QStringList> clientes = {
            {},
            {QString(), QStringLiteral("430001"), QStringLiteral("Ferretería Ibáñez"), QStringLiteral("Zaragoza"), QStringLiteral("1.250,00")},
            {QString(), QStringLiteral("430002"), QStringLiteral("Construcciones Muñoz"), QStringLiteral("León"), QStringLiteral("98,40")},
            {QString(), QStringLiteral("430003"), QStringLiteral("Librería Cervantes"), QStringLiteral("Alcalá"), QStringLiteral("12.003,75")},
            {QString(), QStringLiteral("430004"), QStringLiteral("Talleres Peñalver"), QStringLiteral("Cádiz"), QStringLiteral("0,00")},
        };
        const QString r = kvr::MyVisorBox(QStringLiteral("Clientes"),
                                          QStringLiteral("Código#7;Nombre#24;Ciudad#10;Saldo#10>"), clientes, 10,
                                          QStringLiteral("Nombre"), -1, -1, this);
        resultado->setText(QStringLiteral("Resultado: «%1»").arg(r));
    });
    filaOtras->addWidget(visor);
    filaOtras->addWidget(rango);
    filaOtras->addWidget(lista);
    filaOtras->addWidget(ayudaBoton);
    rejillaCajas->addRow(filaOtras);
    rejillaCajas->addRow(resultado);

    auto *botones = new QHBoxLayout;
    raiz->addLayout(botones);
    auto *tabla = new QPushButton(QStringLiteral("Editor de tablas"), this);
    tabla->setObjectName(QStringLiteral("cmdTabla"));
    connect(tabla, &QPushButton::clicked, this, [this] {
        // The sample table is copied once to the user's data folder, so that it can be saved.
        const QString carpeta = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        QDir().mkpath(carpeta);
        const QString fichero = carpeta + QStringLiteral("/provincias.txt");
        if (!QFileInfo::exists(fichero))
            QFile::copy(datos(QStringLiteral("provincias.txt")), fichero);
        QFile(fichero).setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        auto *editor = new kvr::frmTablas;
        editor->Dimensionar(this, fichero, QStringLiteral("Provincia#25"), QStringLiteral("T(M) L(25) A(I)"), true);
        editor->show();
    });
    botones->addWidget(tabla);
    auto *calculadora = new QPushButton(QStringLiteral("Calculadora (F4)"), this);
    calculadora->setObjectName(QStringLiteral("cmdCalculadora"));
    connect(calculadora, &QPushButton::clicked, this, [] { kvr::MostrarVentana(QStringLiteral("MiCalc")); });
    botones->addWidget(calculadora);
    auto *telefonos = new QPushButton(QStringLiteral("Teléfonos (F8)"), this);
    telefonos->setObjectName(QStringLiteral("cmdTelefonos"));
    connect(telefonos, &QPushButton::clicked, this, [resultado] {
        // The address picked (a click on an e-mail) is shown once the phone book closes.
        auto *agenda = qobject_cast<kvr::Telefonos *>(kvr::AbrirVentana(QStringLiteral("Telefonos")));
        if (agenda)
            connect(agenda, &QObject::destroyed, resultado, [resultado] {
                resultado->setText(QStringLiteral("Resultado: contacto elegido «%1»").arg(kvr::ContactoElegido));
            });
    });
    botones->addWidget(telefonos);
    auto *impresora = new QPushButton(QStringLiteral("Impresora"), this);
    impresora->setObjectName(QStringLiteral("cmdImpresora"));
    connect(impresora, &QPushButton::clicked, this, [this, resultado] {
        kvr::Impresora dialogo(this);
        dialogo.exec();
        resultado->setText(kvr::ImpresoraCancelada
                               ? QStringLiteral("Resultado: impresión cancelada")
                               : QStringLiteral("Resultado: impresora «%1», papel %2")
                                     .arg(kvr::ImpresoraElegida, kvr::OrientacionElegida));
    });
    botones->addWidget(impresora);
    auto *progreso = new QPushButton(QStringLiteral("Tarea con progreso"), this);
    progreso->setObjectName(QStringLiteral("cmdProgreso"));
    connect(progreso, &QPushButton::clicked, this, [progreso] {
        // A counted task of about four seconds: 400 steps of 10 ms, each one reported.
        progreso->setEnabled(false);
        const int pasos = 400;
        kvr::BarraProgreso(kvr::ProgresoIniciar, 0, false, 1, pasos,
                           QStringLiteral("Tarea de demostración"));
        for (int i = 1; i <= pasos; ++i) {
            QThread::msleep(10);
            kvr::BarraProgreso(kvr::ProgresoAvanzar, float(i));
        }
        kvr::BarraProgreso(kvr::ProgresoCerrar);
        progreso->setEnabled(true);
    });
    botones->addWidget(progreso);
    botones->addStretch();
    auto *salir = new QPushButton(QStringLiteral("Salir"), this);
    salir->setObjectName(QStringLiteral("cmdSalir"));
    connect(salir, &QPushButton::clicked, this, &QWidget::close);
    botones->addWidget(salir);

    // Auxiliary modules: an amount in words or a tax identifier checked as it is typed, a ZIP
    // backup of the demo's data folder with the progress window, and the tray icon.
    auto *auxiliares = new QHBoxLayout;
    raiz->addLayout(auxiliares);
    auto *texto = new QLineEdit(this);
    texto->setObjectName(QStringLiteral("CampoImporteONif"));
    texto->setPlaceholderText(QStringLiteral("Importe (1234.56) o NIF"));
    texto->setAccessibleName(QStringLiteral("Importe o NIF"));
    auto *enLetras = new QLabel(this);
    enLetras->setObjectName(QStringLiteral("etiEnLetras"));
    connect(texto, &QLineEdit::textChanged, enLetras, [enLetras](const QString &t) {
        bool numero = false;
        const double v = t.toDouble(&numero);
        if (!numero) {
            const kvr::Identificacion id = kvr::ValidarIdentificacionFiscal(t);
            static const char *const tipos[] = {"desconocido", "DNI", "NIE", "NIF", "CIF"};
            enLetras->setText(QStringLiteral("%1 %2, control %3").arg(QString::fromUtf8(tipos[int(id.tipo)]),
                id.valida ? QStringLiteral("válido") : QStringLiteral("no válido"), QString(id.control)));
            return;
        }
        try {
            enLetras->setText(kvr::ImporteEnLetras(v).toUpper());
        } catch (const kvr::ErrorEjecucion &e) {
            enLetras->setText(e.descripcion());
        }
    });
    auxiliares->addWidget(texto);
    auxiliares->addWidget(enLetras, 1);
    auto *copia = new QPushButton(QStringLiteral("Copia de seguridad"), this);
    copia->setObjectName(QStringLiteral("cmdCopia"));
    connect(copia, &QPushButton::clicked, this, [resultado] {
        const QString zip = QDir::tempPath() + QStringLiteral("/kvr-demo-copia.zip");
        if (kvr::CopiaSeguridad({QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)}, zip, true))
            resultado->setText(QStringLiteral("Resultado: copia en %1").arg(zip));
    });
    auxiliares->addWidget(copia);
    kvr::IconoBandeja(QStringLiteral("Demo de Runtime KVR"));

    // What the runtime is, in two lines, above everything else.
    auto *queEs = new QLabel(QStringLiteral(
        "<b>Runtime KVR</b>: las ventanas y rutinas de campo que comparten las aplicaciones de gestión.<br>"
        "Calculadora, agenda, cajas de mensaje y de datos, tablas, ayuda, impresora y progreso; "
        "también desde guiones con la orden «kvr»."), this);
    queEs->setObjectName(QStringLiteral("etiQueEs"));
    queEs->setWordWrap(true);
    raiz->insertWidget(0, queEs);
}

void Demo::keyReleaseEvent(QKeyEvent *evento)
{
    kvr::TeclasGlobales(evento, this);
    QWidget::keyReleaseEvent(evento);
}
