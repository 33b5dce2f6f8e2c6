#pragma once
/// @file
/// The runtime's start-up window. Started by itself the runtime is not a program: it says so and
/// ends. The never-shown form holds one widget of every kind the runtime's windows use, so that
/// an installation lacking one of them fails at start-up rather than when a host opens a window.
#include <kvr/kvr_export.h>

#include <QWidget>

namespace kvr {

/// The start-up form, never shown (see the file's description).
class KVR_EXPORT RTimeKVR : public QWidget {
    Q_OBJECT
public:
    /// Builds the form with one widget of every kind.
    explicit RTimeKVR(QWidget *parent = nullptr);

    /// Shows the notice "Programa no ejecutable. Instalador de Runtime." and closes the form.
    void Form_Load();

    /// The object names of the common widgets the form holds, in the frame "Objetos Comunes".
    QStringList ObjetosComunes() const;
};

/// What the start-up program does: create the form, load it, and return the exit code.
KVR_EXPORT int EjecutarRTimeKVR();

} // namespace kvr
