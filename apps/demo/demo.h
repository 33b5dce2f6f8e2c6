#pragma once
// The demo host: one field of every type, so that a newcomer can try the field behaviour, and
// buttons that open the runtime's windows.
#include <QWidget>

class Demo : public QWidget {
    Q_OBJECT
public:
    explicit Demo(QWidget *parent = nullptr);

    // Path of one of the demo's sample files.
    static QString datos(const QString &nombre);

protected:
    // F4 opens the calculator and F8 the phone book from any field, as in every runtime window.
    void keyReleaseEvent(QKeyEvent *evento) override;
};
