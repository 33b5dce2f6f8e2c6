#pragma once
// kvr formulario: several fields in one box, each one behaving as its own tag says.
#include <QString>
#include <QStringList>

#include <optional>

namespace kvr::orden {

// One field of the form as written on the command line: "Label;TAG" or "Label;TAG;initial".
struct CampoFormulario {
    QString etiqueta;
    QString tag;
    QString inicial;
};
// A tag from the command line with the entries a field cannot do without: a missing alignment is
// right-aligned for amounts (T(N), T(n)) and left-aligned otherwise, a missing length is 60, so
// that "T(F) L(10)" asks for a date as written.
QString CompletarTag(const QString &tag);

// Reads "--campo" values; a value without a label is refused (`problema` says which).
std::optional<QList<CampoFormulario>> LeerCampos(const QStringList &valores, QString &problema);

// Shows the form and waits: the answers in field order when accepted, nothing when cancelled.
// `ancho` / `alto` (pixels, 0 for its natural size) size the box.
std::optional<QStringList> PedirFormulario(const QString &titulo, const QList<CampoFormulario> &campos,
                                           int ancho, int alto);

} // namespace kvr::orden
