#pragma once
// An invoice-entry form on the Runtime KVR: the form is designed in Qt Designer (factura.ui), its
// fields declare their type in the dynamic property "tag", and the runtime gives them their
// behaviour. Copy this folder to start a host of your own.
#include <QString>
#include <QStringList>
#include <QWidget>

#include <memory>

namespace Ui {
class Factura;
}

class Factura : public QWidget {
    Q_OBJECT
public:
    // The invoices are kept one per line in `fichero` (customer, NIF, date, amount, tab-separated).
    explicit Factura(const QString &fichero, QWidget *parent = nullptr);
    ~Factura() override;

    // Whether the form holds typed data that was not saved.
    bool HayCambios() const { return m_cambios; }

    // Handlers, named after the control and the event that run them, as the family's forms
    // name them.
    void Form_Load();
    void cmdCliente_Click();
    void cmdGrabar_Click();
    void cmdListado_Click();
    void cmdSalir_Click();
    void Campo_Change();

    // The saved invoices dated from `desde` to `hasta` (both "dd/mm/yyyy"), one line each, ready
    // to print.
    QStringList Listado(const QString &desde, const QString &hasta) const;

protected:
    void keyPressEvent(QKeyEvent *evento) override;
    void keyReleaseEvent(QKeyEvent *evento) override;
    void closeEvent(QCloseEvent *evento) override;

private:
    // Adds the invoice on the form to the file; false (and the user told why) when it was not.
    bool Grabar();
    void Imprimir(const QStringList &lineas, const QString &titulo);

    std::unique_ptr<Ui::Factura> ui;
    QString m_fichero;
    bool m_cambios = false;
};
