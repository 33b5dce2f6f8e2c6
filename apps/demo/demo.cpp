#include "demo.h"

#include <kvr/kvr.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
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

    auto *botones = new QHBoxLayout;
    raiz->addLayout(botones);
    auto *calculadora = new QPushButton(QStringLiteral("Calculadora (F4)"), this);
    calculadora->setObjectName(QStringLiteral("cmdCalculadora"));
    connect(calculadora, &QPushButton::clicked, this, [] { kvr::MostrarVentana(QStringLiteral("MiCalc")); });
    botones->addWidget(calculadora);
    botones->addStretch();
    auto *salir = new QPushButton(QStringLiteral("Salir"), this);
    salir->setObjectName(QStringLiteral("cmdSalir"));
    connect(salir, &QPushButton::clicked, this, &QWidget::close);
    botones->addWidget(salir);
}

void Demo::keyReleaseEvent(QKeyEvent *evento)
{
    kvr::TeclasGlobales(evento, this);
    QWidget::keyReleaseEvent(evento);
}
