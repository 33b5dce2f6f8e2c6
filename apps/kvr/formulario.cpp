#include "formulario.h"

#include <kvr/campos.h>
#include <kvr/valores.h>

#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kvr::orden {

QString CompletarTag(const QString &tag)
{
    QString t = tag.trimmed();
    if (t.isEmpty() || t.startsWith(u"TABLA"))
        return t;
    const QString mayusculas = t.toUpper();
    if (!mayusculas.contains(u"L("))
        t += QStringLiteral(" L(60)");
    if (!mayusculas.contains(u"A("))
        t += t.contains(u"T(N)") || t.contains(u"T(n)") ? QStringLiteral(" A(D)") : QStringLiteral(" A(I)");
    return t;
}

std::optional<QList<CampoFormulario>> LeerCampos(const QStringList &valores, QString &problema)
{
    QList<CampoFormulario> campos;
    for (const QString &v : valores) {
        const QStringList partes = v.split(u';');
        CampoFormulario c{partes.value(0).trimmed(), partes.value(1).trimmed(), partes.mid(2).join(u';')};
        if (c.etiqueta.isEmpty()) {
            problema = QStringLiteral("--campo necesita una etiqueta: «%1»").arg(v);
            return std::nullopt;
        }
        if (c.tag.isEmpty())
            c.tag = QStringLiteral("T(A) L(60) A(I)"); // any text, as "kvr entrada" asks by default
        c.tag = CompletarTag(c.tag);
        campos << c;
    }
    if (campos.isEmpty()) {
        problema = QStringLiteral("falta algún --campo");
        return std::nullopt;
    }
    return campos;
}

std::optional<QStringList> PedirFormulario(const QString &titulo, const QList<CampoFormulario> &campos,
                                           int ancho, int alto)
{
    QDialog caja;
    caja.setObjectName(QStringLiteral("Formulario"));
    caja.setWindowTitle(titulo);
    auto *raiz = new QVBoxLayout(&caja);
    auto *rejilla = new QFormLayout;
    raiz->addLayout(rejilla);
    QList<QLineEdit *> editores;
    for (qsizetype i = 0; i < campos.size(); ++i) {
        auto *campo = new QLineEdit(&caja);
        campo->setObjectName(QStringLiteral("Campo%1").arg(i + 1));
        campo->setText(campos[i].inicial);
        // The field routines filter its keys, switch its forms, and move on with Enter.
        kvr::PrepararCampo(campo, campos[i].tag);
        // The label is the field's buddy: a screen reader says it when the field takes the focus.
        rejilla->addRow(campos[i].etiqueta, campo);
        editores << campo;
    }
    auto *botones = new QDialogButtonBox(&caja);
    QPushButton *aceptar = botones->addButton(QStringLiteral("Aceptar"), QDialogButtonBox::AcceptRole);
    botones->addButton(QStringLiteral("Cancelar"), QDialogButtonBox::RejectRole);
    aceptar->setAutoDefault(true);
    raiz->addWidget(botones);
    QObject::connect(botones, &QDialogButtonBox::accepted, &caja, &QDialog::accept);
    QObject::connect(botones, &QDialogButtonBox::rejected, &caja, &QDialog::reject);
    caja.adjustSize();
    if (ancho > 0 || alto > 0)
        caja.resize(std::max(ancho, caja.minimumSizeHint().width()), std::max(alto, caja.minimumSizeHint().height()));
    editores.first()->setFocus();
    if (caja.exec() != QDialog::Accepted)
        return std::nullopt;
    // Each answer in its editing form ("02/03/2026", "1234.50"), as "kvr entrada" gives it: the
    // field shows its display form once the focus has left it.
    QStringList respuestas;
    for (qsizetype i = 0; i < editores.size(); ++i)
        respuestas << kvr::TextoEdicion(editores[i]->text(), campos[i].tag);
    return respuestas;
}

} // namespace kvr::orden
