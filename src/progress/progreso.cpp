#include <kvr/progreso.h>

#include "ui_progreso.h"

namespace kvr {

Progreso::Progreso(QWidget *parent) : QWidget(parent), ui(std::make_unique<Ui::Progreso>())
{
    ui->setupUi(this);
}

Progreso::~Progreso() = default;

void Progreso::Iniciar(float, float, const QString &) {}
void Progreso::Avanzar(float, bool) {}
QString Progreso::TextoTiempo(double) { return {}; }
void Progreso::Form_Load() {}
void Progreso::Form_MouseDown() {}
void Progreso::mousePressEvent(QMouseEvent *) {}

void BarraProgreso(int, float, bool, float, float, const QString &) {}

} // namespace kvr
